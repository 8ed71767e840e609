using System.IO;
using System.Text;
using System.Text.RegularExpressions;

namespace Orvane
{
    /// <summary>The result of a statement: one of the classes below.</summary>
    public abstract class Result { }

    /// <summary>An empty statement or a comment.</summary>
    public sealed class Nothing : Result { }

    /// <summary>A value was stored; this is its first 511 bytes. A failed script command leaves its message
    /// or nothing in the value, so let scripts compare the lengths of computed values.</summary>
    public sealed class Assignment : Result
    {
        internal Assignment(string value) { Value = value; }

        public string Value { get; }
    }

    /// <summary>An expression of whole octets in hexadecimal, at least four: send it to the card.</summary>
    public sealed class Command : Result
    {
        internal Command(string hex) { Hex = hex; }

        public string Hex { get; }
    }

    /// <summary>Any other expression, perhaps empty; do not send it to a card.</summary>
    public sealed class Value : Result
    {
        internal Value(string text) { Text = text; }

        public string Text { get; }
    }

    /// <summary>@setreader(reader)</summary>
    public sealed class ReaderChoice : Result
    {
        internal ReaderChoice(string reader) { Reader = reader; }

        public string Reader { get; }
    }

    /// <summary>@setslot(slot)</summary>
    public sealed class SlotChoice : Result
    {
        internal SlotChoice(string slot) { Slot = slot; }

        public string Slot { get; }
    }

    /// <summary>@OPENREADER(reader)</summary>
    public sealed class OpenRequest : Result
    {
        internal OpenRequest(string reader) { Reader = reader; }

        public string Reader { get; }
    }

    /// <summary>@reset()</summary>
    public sealed class ResetRequest : Result { }

    /// <summary>$ and a text for the host; read it from the statement.</summary>
    public sealed class Note : Result { }

    /// <summary>@stop()</summary>
    public sealed class Stop : Result { }

    /// <summary>@compare(left, right, expected)</summary>
    public sealed class Comparison : Result
    {
        internal Comparison(bool met) { Met = met; }

        /// <summary>True if the outcome is the expected one.</summary>
        public bool Met { get; }
    }

    /// <summary>The process's script engine and its variables. In texts that are not UTF-8, wrong bytes
    /// become U+FFFD.</summary>
    public static class Script
    {
        /// <summary>Runs one statement. Throws ScriptException if it fails: an undefined variable, an empty
        /// or failed argument of a command for the host, @reset() or @stop() that does not stand alone, "(",
        /// ")" or "," at its beginning, a text above 511 bytes, no memory.</summary>
        public static Result Run(string statement)
        {
            var area = new byte[512];
            int code;
            lock (Native.Gate) code = Native.RunScript(Native.Checked(statement), area);
            string text = Native.Text(area);
            if (code == (int)ScriptCode.NoEngine || code == (int)ScriptCode.Exception)
                throw new ScriptException(code, "a text above 511 bytes, or no memory");
            if (code == (int)ScriptCode.NothingToRun) return new Nothing();
            var kind = (StatementKind)code;
            if (NamesUndefined(kind, text)) throw new ScriptException(code, text);
            switch (kind)
            {
                case StatementKind.Assignment: return new Assignment(text);
                case StatementKind.Expression: return Expression(statement, text);
                case StatementKind.SetReader: return new ReaderChoice(Argument(code, text));
                case StatementKind.SetSlot: return new SlotChoice(Argument(code, text));
                case StatementKind.OpenReader: return new OpenRequest(Argument(code, text));
                case StatementKind.Dollar: return new Note();
                case StatementKind.Compare:
                    if (text != "0" && text != "1")
                        throw new ScriptException(code, "an operand of @compare failed");
                    return new Comparison(text == "1");
                default:
                    if (text != "") throw new ScriptException(code, "@reset() and @stop() have to stand alone");
                    return kind == StatementKind.Stop ? (Result)new Stop() : new ResetRequest();
            }
        }

        /// <summary>Stores a variable. Scripts can read it only if its name begins with %.</summary>
        public static void Set(string name, string value)
        {
            lock (Native.Gate) Check(Native.SetVarValue(Native.Checked(name), Native.Checked(value)), name);
        }

        /// <summary>True if a variable exists.</summary>
        public static bool Has(string name)
        {
            int code;
            lock (Native.Gate) code = Native.GetVarValue(Native.Checked(name));
            if (code != (int)ScriptCode.UndefinedVariable) Check(code, name);
            return code == (int)ScriptCode.Done;
        }

        /// <summary>The whole value of a variable, with its letters' case. The name begins with %. Reads the
        /// value in pieces, through the variable ORVANE.PIECE, which no script can read.</summary>
        public static string Get(string name)
        {
            if (!Regex.IsMatch(Native.Checked(name), @"^%[^ \t(),]*$"))
                throw new DataException("a variable that can be read has a name with % in front and no separator");
            var value = new MemoryStream();
            lock (Native.Gate)
            {
                Check(Native.GetVarValue(name), name);
                int length;
                do
                {
                    var area = new byte[512];
                    Check(Native.RunScript("ORVANE.PIECE=@strmid(" + name + "," + value.Length + ",511)", area), name);
                    length = System.Array.IndexOf(area, (byte)0);
                    value.Write(area, 0, length);
                } while (length == 511);
                Native.SetVarValue("ORVANE.PIECE", "");
            }
            return Encoding.UTF8.GetString(value.ToArray());
        }

        // In an expression the message of a failed command is in upper case like the rest.
        private static bool NamesUndefined(StatementKind kind, string text)
        {
            if (kind == StatementKind.Assignment) return false;
            return text.EndsWith("\" not define ", System.StringComparison.Ordinal)
                || (kind == StatementKind.Expression && text.Contains("\" NOT DEFINE "));
        }

        private static string Argument(int code, string text)
        {
            if (text == "") throw new ScriptException(code, "an argument is empty, or failed");
            return text;
        }

        private static Result Expression(string statement, string text)
        {
            if (text == "" && Regex.IsMatch(statement, @"^[ \t]*[(),]"))
                throw new ScriptException((int)StatementKind.Expression, "a statement can't begin with ( ) or ,");
            if (Regex.IsMatch(text, @"\A([0-9A-F]{2}){4,}\z")) return new Command(text);
            return new Value(text);
        }

        private static void Check(int code, string name)
        {
            switch ((ScriptCode)code)
            {
                case ScriptCode.Done: return;
                case ScriptCode.UndefinedVariable: throw new ScriptException(code, "there is no " + name);
                case ScriptCode.EmptyName: throw new ScriptException(code, "a variable without name");
                default: throw new ScriptException(code, "no memory");
            }
        }
    }
}
