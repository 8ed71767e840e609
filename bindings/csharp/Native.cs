// The functions of liborvane.so and orvane.dll. orvane.h describes each of them; this file says how they are
// called:
//
//   - An input text is a string if it is a script or a variable, which goes out as UTF-8, or the name of a
//     reader or a file, which goes out in the system's narrow character set (the ANSI code page on Windows);
//     a character that this set lacks throws. Every other input text is UTF-8 with a terminating zero, made
//     by Bytes().
//   - An output text, octets or a record are a byte[] of the caller with the room that orvane.h asks for: no
//     function knows the size. Text() reads a script's output up to the terminator, Name() a reader's name.
//   - A single output number is an out parameter.
using System;
using System.Runtime.InteropServices;
using System.Text;

namespace Orvane
{
    public enum StatementKind
    {
        Assignment = 0,
        Expression = 1,
        SetReader = 2,
        SetSlot = 3,
        Reset = 4,
        Dollar = 5,
        Stop = 6,
        Compare = 7,
        OpenReader = 8,
    }

    public enum ScriptCode
    {
        NoEngine = -1,
        Done = 0,
        NothingToRun = 100,
        UndefinedVariable = 1001,
        EmptyName = 1002,
        Exception = 1024,
    }

    public enum ReaderKind
    {
        TyUsb = 1,
        TyCom = 2,
        Pcsc = 3,
        Wd = 4,
        D8 = 5,
        Fm8201 = 6,
        S5009 = 7,
        S5009Ats = 8,
        Tcp = 10,
        Icr = 11,
        Bsit = 12,
    }

    [BestFitMapping(false, ThrowOnUnmappableChar = true)]
    internal static class Native
    {
        // orvane.dll on Windows, liborvane.so on Linux: found by the system's search or beside the program.
        private const string Library = "orvane";
        private const CallingConvention C = CallingConvention.Cdecl;

        /// <summary>Only one thread at a time may call the library: it has no locks of its own.</summary>
        internal static readonly object Gate = new object();

        /// <summary>Refuses a text with a zero in it, which the library would take for the end.</summary>
        internal static string Checked(string text)
        {
            if (text.IndexOf('\0') >= 0) throw new DataException("a text has a zero octet in it");
            return text;
        }

        /// <summary>UTF-8 with a terminating zero.</summary>
        internal static byte[] Bytes(string text) { return Encoding.UTF8.GetBytes(Checked(text) + '\0'); }

        /// <summary>The content of a buffer, up to its terminator.</summary>
        internal static string Text(byte[] buffer)
        {
            int length = Array.IndexOf(buffer, (byte)0);
            return Encoding.UTF8.GetString(buffer, 0, length < 0 ? buffer.Length : length);
        }

        /// <summary>A name of GetReaderList, up to its terminator.</summary>
        internal static string Name(byte[] buffer)
        {
            int length = Array.IndexOf(buffer, (byte)0);
            var place = GCHandle.Alloc(buffer, GCHandleType.Pinned);
            try
            {
                return Marshal.PtrToStringAnsi(place.AddrOfPinnedObject(), length < 0 ? buffer.Length : length);
            }
            finally
            {
                place.Free();
            }
        }

        // ---- Scripts ----

        /// <param name="result">512 bytes.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int RunScript(
            [MarshalAs(UnmanagedType.LPUTF8Str)] string script, byte[] result);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int SetVarValue(
            [MarshalAs(UnmanagedType.LPUTF8Str)] string name,
            [MarshalAs(UnmanagedType.LPUTF8Str)] string value);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int GetVarValue([MarshalAs(UnmanagedType.LPUTF8Str)] string name);

        // ---- Readers ----

        /// <param name="list">Records of 272 octets: max if max is above 0 and limits the kind, else the
        /// larger of count + 1 and 16.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int GetReaderList(ReaderKind kind, byte[] list, int count, int max);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int SetReader(uint index);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int OpenReader(int port, ReaderKind kind, int baud);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int OpenReaderA(string name, ReaderKind kind);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int CloseReader();

        /// <param name="atrHex">1,025 bytes.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int Reset(byte[] atrHex);

        [DllImport(Library, CallingConvention = C)]
        internal static extern void ChangeSlot(byte[] slotHex);

        /// <param name="respHex">8,193 bytes.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int SendCommand(byte[] cmdHex, int hexLen, byte[] respHex);

        // ---- Conversions: nothing is terminated, so pass buffers of zeros ----

        /// <param name="text">Bytes, with a zero at the end.</param>
        /// <param name="output">Three times the length of text.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern void URLEncode(byte[] text, byte[] output);

        /// <param name="output">The length of text.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern void URLDecode(byte[] text, byte[] output);

        /// <param name="text">2 * count bytes.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern void HexToAscii(byte[] octets, byte[] text, int count);

        /// <param name="octets">Half as many bytes as there are digits, rounded up.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int AsciiToHex(byte[] text, byte[] octets, int length);

        /// <param name="output">4 * ((length + 1) / 2) bytes.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int AsciiToHexStr(byte[] text, byte[] output, int length);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int CheckAsciiNum(byte[] text, int allowHex, int length);

        /// <param name="value">Not written on failure.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int HexStrToInt(byte[] text, out int value, int length);

        /// <param name="value">Not written on failure.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int HexToInt(byte[] octets, out int value, int count);

        /// <param name="output">4 bytes; the octets begin at 4 - count.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int IntToHex(byte[] output, int value, out int count);

        /// <param name="output">8 bytes.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int IntToHexStr(byte[] output, int value, out int length);

        // ---- Character sets: bytes on both sides, and a text that does not convert ends the process ----

        /// <param name="text">Bytes of the ANSI code page, with a zero at the end.</param>
        /// <param name="output">Three times the length of text.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern void ASCII2UTF_8(byte[] text, byte[] output);

        /// <param name="text">UTF-8, with a zero at the end.</param>
        /// <param name="output">Four times the length of text.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern void UTF_82ASCII(byte[] text, byte[] output);

        // ---- Time ----

        [DllImport(Library, CallingConvention = C)]
        internal static extern void GetTimeStampInt(out uint stamp);

        /// <param name="output">14 bytes.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern void GetTimeStampStr(byte[] output, int withMs);

        /// <param name="output">32 bytes.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern void GetTimeStr(byte[] output);

        /// <param name="output">32 bytes.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern void GetTimeStrFromTimeStampInt(byte[] output, uint stamp);

        /// <param name="output">36 bytes.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern void GetTimeStrFromTimeStampStr(byte[] output, byte[] stampText, int withMs);

        // ---- Log files ----

        [DllImport(Library, CallingConvention = C)]
        internal static extern void AsciiLog(string path, byte[] text);

        [DllImport(Library, CallingConvention = C)]
        internal static extern void HexLog(string path, byte[] octets, int count);

        // ---- Tags ----

        /// <returns>A parser for the three functions below; release it with the last of them.</returns>
        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr TagParsing_Init();

        [DllImport(Library, CallingConvention = C)]
        internal static extern int TagParsing_Parse(IntPtr parser, byte[] text);

        /// <param name="output">2,050 bytes: the length in the first 4, then the value.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int TagParsing_GetTag(IntPtr parser, byte[] tag, byte[] output);

        [DllImport(Library, CallingConvention = C)]
        internal static extern void TagParsing_Free(IntPtr parser);

        /// <param name="records">Room for every record of the dictionary, of 1,244 octets each.</param>
        [DllImport(Library, CallingConvention = C)]
        internal static extern int GetTagdict(byte[] records, out int count);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int FindTagdictData(byte[] tag, byte[] record);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int AddTagdictData(byte[] record);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int DeleteTagdictData(byte[] tag);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int UpTagdictData(byte[] record);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int FlushTagdict();
    }
}
