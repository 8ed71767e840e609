using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Runtime.InteropServices;

namespace Orvane
{
    /// <summary>What differs between the kinds of reader.</summary>
    public static class ReaderRules
    {
        /// <summary>True for the kinds whose answers end in a status word.</summary>
        public static bool HasStatusWord(ReaderKind kind)
        {
            return kind != ReaderKind.Fm8201 && kind != ReaderKind.Tcp && kind != ReaderKind.Icr;
        }

        /// <summary>The most octets of a command to a reader of this kind.</summary>
        public static int LongestCommand(ReaderKind kind)
        {
            if (kind == ReaderKind.D8 || kind == ReaderKind.Wd) return 255;
            return kind == ReaderKind.S5009 || kind == ReaderKind.S5009Ats ? 133 : 4096;
        }

        /// <summary>The most octets of data in an answer, without its status word.</summary>
        public static int MostData(ReaderKind kind)
        {
            if (kind == ReaderKind.S5009 || kind == ReaderKind.S5009Ats) return 126;
            return kind == ReaderKind.TyUsb || kind == ReaderKind.TyCom ? 256 : 254;
        }
    }

    public sealed class ReaderInfo
    {
        public ReaderKind Kind { get; internal set; }
        public int? Port { get; internal set; }
        public string Name { get; internal set; }
    }

    /// <summary>A card's answer.</summary>
    public sealed class Response
    {
        private Response(string data, string statusWord, bool ok)
        {
            Data = data;
            StatusWord = statusWord;
            Ok = ok;
        }

        /// <summary>Hexadecimal text.</summary>
        public string Data { get; }

        /// <summary>Four digits; empty if it is not known or the kind has none.</summary>
        public string StatusWord { get; }

        /// <summary>True if the exchange ended in 9000 or, for a kind without status words, succeeded.
        /// Otherwise StatusWord is the answer's first two octets: the beginning of the data, if there is
        /// any.</summary>
        public bool Ok { get; }

        /// <summary>The data's octets.</summary>
        public byte[] Octets { get { return Conversions.ToOctets(Data); } }

        /// <summary>Splits the text from SendCommand by the rules of the kind; null if there was no
        /// answer.</summary>
        public static Response Read(ReaderKind kind, int result, string text)
        {
            if (!ReaderRules.HasStatusWord(kind)) return result != 0 ? new Response(text, "", true) : null;
            if (result == 0)
            {
                // This answer does not end in 9000: if it begins so, it must not look like success.
                return text == "" ? null : new Response("", text == "9000" ? "" : text, false);
            }
            bool keeps = kind == ReaderKind.Wd || kind == ReaderKind.S5009 || kind == ReaderKind.S5009Ats;
            bool replies = kind == ReaderKind.TyUsb || kind == ReaderKind.TyCom;
            // For the kinds 1 and 2 all text is data; the others give 9000 if there is no data.
            bool ends = keeps ? text.EndsWith("9000", StringComparison.Ordinal) : !replies && text == "9000";
            return new Response(ends ? text.Substring(0, text.Length - 4) : text, "9000", true);
        }
    }

    /// <summary>One of the sixteen readers that a process can have open. Dispose of it: a forgotten reader
    /// stays open, because closing it could fall between two calls to another.</summary>
    public sealed class Reader : IDisposable
    {
        private const int Closed = 16;
        private const int RecordSize = 272;
        private static readonly bool[] taken = new bool[Closed];
        private int number = Closed;

        private Reader(ReaderKind kind, string what, Func<int> opening)
        {
            Kind = kind;
            lock (Native.Gate)
            {
                int free = Array.IndexOf(taken, false);
                if (free < 0) throw new ReaderException("sixteen readers are open");
                Native.SetReader((uint)free);
                if (opening() == 0) throw new ReaderException(what + " doesn't open");
                number = free;
                taken[free] = true;
            }
        }

        /// <summary>The readers of one kind.</summary>
        /// <param name="ports">How many to list if the kind cannot find its ports.</param>
        public static List<ReaderInfo> List(ReaderKind kind, int ports = 0)
        {
            if (ports < 0 || ports > 256) throw new DataException("a list has 0 to 256 ports");
            int most = Math.Max(ports + 1, 64);
            var records = new byte[most * RecordSize];
            int count;
            lock (Native.Gate) count = Native.GetReaderList(kind, records, ports, most);
            return Enumerable.Range(0, count).Select(at => Info(records, at * RecordSize)).ToList();
        }

        private static ReaderInfo Info(byte[] records, int at)
        {
            bool hasPort = BitConverter.ToInt32(records, at + 4) != 0;
            return new ReaderInfo
            {
                Kind = (ReaderKind)BitConverter.ToInt32(records, at),
                Port = hasPort ? BitConverter.ToInt32(records, at + 8) : (int?)null,
                Name = Native.Name(records.Skip(at + 12).Take(256).ToArray()),
            };
        }

        /// <summary>Opens the reader of this name, as List gives it; a payment HSM by its address.</summary>
        public static Reader Open(ReaderKind kind, string name)
        {
            Native.Checked(name);
            try
            {
                return new Reader(kind, name, () => Native.OpenReaderA(name, kind));
            }
            catch (ArgumentException)
            {
                throw new DataException(name + " has letters that the system's character set lacks");
            }
        }

        /// <summary>Opens the reader on this port.</summary>
        public static Reader OpenPort(ReaderKind kind, int port)
        {
            return new Reader(kind, "port " + port, () => Native.OpenReader(port, kind, 9600));
        }

        public ReaderKind Kind { get; }

        public bool IsOpen { get { return number != Closed; } }

        /// <summary>Wakes the card and gives its ATR in hexadecimal, or what the kind gives instead. Does not
        /// reset a card in a PC/SC reader.</summary>
        public string Reset()
        {
            var atr = new byte[1025];
            lock (Native.Gate)
            {
                Select();
                if (Native.Reset(atr) == 0) throw new ReaderException("no answer to reset");
            }
            return Native.Text(atr);
        }

        /// <summary>Chooses a card slot. Its meaning depends on the kind.</summary>
        public void ChooseSlot(byte slot)
        {
            lock (Native.Gate)
            {
                Select();
                Native.ChangeSlot(Native.Bytes(Conversions.ToHex(new[] { slot })));
            }
        }

        /// <summary>Sends a command of hexadecimal digits, blanks allowed. Throws DataException and sends
        /// nothing for any other text, for less than four octets (except for kinds without status words), and
        /// for more than the reader takes. If a payment HSM does not answer, the reader is closed, so that a
        /// late answer is not taken for the next command's.</summary>
        public Response Send(string hex) { return Send(Conversions.ToOctets(hex)); }

        /// <summary>Sends the octets of a command. Otherwise the same.</summary>
        public Response Send(byte[] octets)
        {
            var answer = new byte[8193];
            lock (Native.Gate)
            {
                Select();
                int least = ReaderRules.HasStatusWord(Kind) ? 4 : 1, most = ReaderRules.LongestCommand(Kind);
                if (octets.Length < least || octets.Length > most)
                {
                    throw new DataException("a command of " + octets.Length + " octets: this reader takes " +
                                            least + " to " + most);
                }
                string digits = Conversions.ToHex(octets);
                int result = Native.SendCommand(Native.Bytes(digits), digits.Length, answer);
                Response response = Response.Read(Kind, result, Native.Text(answer));
                if (response != null) return response;
                if (Kind == ReaderKind.Tcp) Release();
            }
            throw new ReaderException("no answer from the card or its reader");
        }

        /// <summary>Closes the reader. Throws if its library refuses, but the reader is then closed too. Does
        /// nothing on a closed reader.</summary>
        public void Close()
        {
            lock (Native.Gate)
            {
                if (IsOpen && !Release()) throw new ReaderException("the reader's library refuses to close it");
            }
        }

        /// <summary>Closes the reader and ignores a refusal of its library.</summary>
        public void Dispose()
        {
            lock (Native.Gate)
            {
                if (IsOpen) Release();
            }
        }

        private void Select()
        {
            if (!IsOpen) throw new ReaderException("the reader is closed");
            Native.SetReader((uint)number);
        }

        private bool Release()
        {
            Select();
            taken[number] = false;
            number = Closed;
            return Native.CloseReader() != 0;
        }
    }

    /// <summary>Stand-ins for the libraries of reader makers.</summary>
    public static class Simulators
    {
        /// <summary>Replaces the vendors' libraries by the simulators beside this assembly or in a folder,
        /// for the rest of the process. Call it before a reader is listed or opened.</summary>
        public static void Load(string folder = null)
        {
            folder = folder ?? Path.Combine(Path.GetDirectoryName(typeof(Simulators).Assembly.Location), "simulators");
            bool windows = Path.DirectorySeparatorChar == '\\';
            string pattern = windows ? "*.dll" : "*.so";
            string[] modules = Directory.Exists(folder) ? Directory.GetFiles(folder, pattern) : new string[0];
            if (modules.Length == 0) throw new ReaderException("there are no simulators in " + folder);
            foreach (string module in modules)
            {
                string file = Path.GetFullPath(module);
                if ((windows ? LoadLibraryW(file) : dlopen(file, 2)) == IntPtr.Zero)
                    throw new ReaderException("can't load " + file);
            }
        }

        [DllImport("kernel32.dll", CharSet = CharSet.Unicode)]
        private static extern IntPtr LoadLibraryW(string file);

        [DllImport("libdl.so.2")]
        private static extern IntPtr dlopen([MarshalAs(UnmanagedType.LPUTF8Str)] string file, int flags);
    }
}
