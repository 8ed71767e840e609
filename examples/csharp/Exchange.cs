// A script host in C#: runs a script on the simulated card and prints what goes to and fro.
using System;
using System.IO;
using System.Linq;
using Orvane;

static class Exchange
{
    /// <summary>Runs one statement and does what it asks.</summary>
    /// <returns>False at the end of the script.</returns>
    static bool Run(Reader reader, string statement)
    {
        var result = Script.Run(statement);
        if (result is Note) Console.WriteLine(statement);
        else if (result is ResetRequest) Script.Set("%ATR", Shown("ATR ", reader.Reset()));
        else if (result is Command) Send(reader, ((Command)result).Hex);
        else if (result is Comparison)
        {
            if (!((Comparison)result).Met) throw new OrvaneException("not as expected: " + statement);
            Console.WriteLine("ok  " + statement);
        }
        else if (!(result is Nothing || result is Assignment || result is Stop))
        {
            // A value for nobody, or a reader or slot that this host lacks.
            throw new OrvaneException("can't run " + statement);
        }
        return !(result is Stop);
    }

    static void Send(Reader reader, string command)
    {
        var response = reader.Send(Shown(">>  ", command));
        Console.WriteLine("<<  " + (response.Data == "" ? "" : response.Data + " ") + response.StatusWord);
        Script.Set("%RESP", response.Data);
        Script.Set("%SW", response.StatusWord);
    }

    static string Shown(string label, string text)
    {
        Console.WriteLine(label + text);
        return text;
    }

    static int Main(string[] arguments)
    {
        try
        {
            if (arguments.Length != 1) throw new OrvaneException("usage: Exchange SCRIPT");
            Simulators.Load(); // without this line a real PC/SC reader is looked for
            foreach (var info in Reader.List(ReaderKind.Pcsc)) Console.WriteLine("reader " + info.Name);
            using (var reader = Reader.Open(ReaderKind.Pcsc, "Simulated Reader 0"))
                File.ReadLines(arguments[0]).All(statement => Run(reader, statement));
            return 0;
        }
        catch (Exception failure) when (failure is OrvaneException || failure is IOException)
        {
            Console.Error.WriteLine(failure.Message);
            return 1;
        }
    }
}
