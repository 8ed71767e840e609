using System;
using System.Linq;
using System.Text;

namespace Orvane
{
    /// <summary>Octets, text, numbers, times and logs. Hexadecimal text with an odd number of digits is
    /// refused.</summary>
    public static class Conversions
    {
        /// <summary>True if a text has only the digits 0 to 9, at least one.</summary>
        public static bool IsDecimal(string text) { return HasDigitsAlone(text, 0); }

        /// <summary>True if a text has only hexadecimal digits, at least one, and no blanks.</summary>
        public static bool IsHex(string text) { return HasDigitsAlone(text, 1); }

        private static bool HasDigitsAlone(string text, int hex)
        {
            byte[] octets = Native.Bytes(text);
            return octets.Length > 1 && Native.CheckAsciiNum(octets, hex, octets.Length - 1) == 0;
        }

        /// <summary>Octets as upper-case digits.</summary>
        public static string ToHex(byte[] octets)
        {
            var text = new byte[2 * octets.Length];
            Native.HexToAscii(octets, text, octets.Length);
            return Encoding.ASCII.GetString(text);
        }

        /// <summary>The octets of a hexadecimal text.</summary>
        public static byte[] ToOctets(string hex)
        {
            byte[] text = Native.Bytes(hex);
            int digits = hex.Length - hex.Count(each => each == ' ');
            if (digits % 2 != 0) throw new DataException("hexadecimal text of " + digits + " digits");
            var octets = new byte[text.Length];
            if (digits > 0 && Native.AsciiToHex(text, octets, text.Length - 1) == 0)
                throw new DataException("hexadecimal text with another character");
            Array.Resize(ref octets, digits / 2);
            return octets;
        }

        /// <summary>Hexadecimal text with \x before every two digits, as C and others write
        /// octets.</summary>
        public static string ToEscapes(string hex)
        {
            if (!IsHex(hex) || hex.Length % 2 != 0) throw new DataException("no hexadecimal text of whole octets");
            var text = new byte[2 * hex.Length];
            Native.AsciiToHexStr(Native.Bytes(hex), text, hex.Length);
            return Encoding.ASCII.GetString(text);
        }

        /// <summary>The number that 1 to 4 octets form, most significant first.</summary>
        public static int ToNumber(byte[] octets)
        {
            int number;
            if (Native.HexToInt(octets, out number, octets.Length) == 0)
                throw new DataException("a number has 1 to 4 octets");
            return number;
        }

        /// <summary>The same for 2, 4, 6 or 8 digits.</summary>
        public static int ToNumber(string hex)
        {
            int number = 0;
            if (!IsHex(hex) || hex.Length % 2 != 0 || hex.Length > 8 ||
                Native.HexStrToInt(Native.Bytes(hex), out number, hex.Length) == 0)
                throw new DataException("a number has 2, 4, 6 or 8 hexadecimal digits");
            return number;
        }

        /// <summary>The significant octets of a number as 2, 4, 6 or 8 digits.</summary>
        public static string NumberToHex(int number)
        {
            var text = new byte[9];
            int length;
            Native.IntToHexStr(text, number, out length);
            return Native.Text(text);
        }

        /// <summary>The same as octets.</summary>
        public static byte[] NumberToOctets(int number)
        {
            var octets = new byte[4];
            int count;
            Native.IntToHex(octets, number, out count);
            return octets.Skip(4 - count).ToArray();
        }

        /// <summary>Escapes everything except ASCII letters and digits.</summary>
        public static string UrlEncode(string text)
        {
            byte[] octets = Native.Bytes(text);
            var encoded = new byte[3 * octets.Length];
            Native.URLEncode(octets, encoded);
            return Native.Text(encoded);
        }

        /// <summary>Reverses UrlEncode and turns + into a blank. Does not check the escapes.</summary>
        public static string UrlDecode(string text)
        {
            byte[] octets = Native.Bytes(text);
            int end = octets.Length - 1, length = 0;
            for (int at = 0; at < end; ++length) at += octets[at] == '%' && end - at > 2 ? 3 : 1;
            var decoded = new byte[octets.Length];
            Native.URLDecode(octets, decoded);
            return Encoding.UTF8.GetString(decoded, 0, length);
        }

        /// <summary>The stamp of the current second: the Unix time minus 28800.</summary>
        public static uint Stamp()
        {
            uint stamp;
            Native.GetTimeStampInt(out stamp);
            return stamp;
        }

        /// <summary>The same in decimal, followed by three digits of milliseconds on request.</summary>
        public static string StampText(bool milliseconds = false)
        {
            var text = new byte[15];
            Native.GetTimeStampStr(text, milliseconds ? 1 : 0);
            return Native.Text(text);
        }

        /// <summary>The current time in UTC, YYYY-MM-DD hh:mm:ss.</summary>
        public static string TimeText()
        {
            var text = new byte[33];
            Native.GetTimeStr(text);
            return Native.Text(text);
        }

        /// <summary>The time of a stamp.</summary>
        public static string TimeOf(uint stamp)
        {
            var text = new byte[33];
            Native.GetTimeStrFromTimeStampInt(text, stamp);
            return Native.Text(text);
        }

        /// <summary>The time of a text from StampText(true), followed by a colon and the milliseconds on
        /// request.</summary>
        public static string TimeOfText(string stampText, bool milliseconds = false)
        {
            byte[] stamp = Native.Bytes(stampText);
            if (stamp.Length < 5 || stamp.Length > 26) throw new DataException("no stamp with milliseconds");
            var text = new byte[37];
            Native.GetTimeStrFromTimeStampStr(text, stamp, milliseconds ? 1 : 0);
            return Native.Text(text);
        }

        /// <summary>Appends a text to a file. On Windows each line feed becomes CR LF.</summary>
        public static void LogText(string path, string text)
        {
            Native.AsciiLog(Native.Checked(path), Native.Bytes(text));
        }

        /// <summary>Appends octets as hexadecimal text.</summary>
        public static void LogHex(string path, byte[] octets)
        {
            Native.HexLog(Native.Checked(path), octets, octets.Length);
        }
    }
}
