using System;

namespace Orvane
{
    /// <summary>The base of all failures. A status word other than 9000 is an answer, not a
    /// failure.</summary>
    public class OrvaneException : Exception
    {
        public OrvaneException(string message) : base(message) { }
    }

    /// <summary>A failed statement, with its code from RunScript, SetVarValue or GetVarValue. A statement
    /// with a code from 1 to 8 can fail too: the message is then the one that it left.</summary>
    public class ScriptException : OrvaneException
    {
        public ScriptException(int code, string message) : base(message) { Code = code; }

        public int Code { get; }
    }

    /// <summary>A reader that doesn't open, reset, answer or close.</summary>
    public class ReaderException : OrvaneException
    {
        public ReaderException(string message) : base(message) { }
    }

    /// <summary>Input that is refused before it is used.</summary>
    public class DataException : OrvaneException
    {
        public DataException(string message) : base(message) { }
    }
}
