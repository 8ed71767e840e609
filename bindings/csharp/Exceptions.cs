using System;

namespace Orvane
{
    /// <summary>What every failure is. A status word other than 9000 is an answer, and no failure.</summary>
    public class OrvaneException : Exception
    {
        public OrvaneException(string message) : base(message) { }
    }

    /// <summary>A statement that failed, with its code of RunScript, SetVarValue or GetVarValue.
    /// Statements with the codes 1 to 8 can fail too: the message is then the one that they left.</summary>
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

    /// <summary>Input that is refused before anything is done with it.</summary>
    public class DataException : OrvaneException
    {
        public DataException(string message) : base(message) { }
    }
}
