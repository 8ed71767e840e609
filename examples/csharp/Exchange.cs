// A script host in C#: runs a script on the simulated card and prints what goes to and fro.
//
//   Exchange ../exchange.orv
//
// Put this file in a console project that has the package Orvane.
using System;
using System.IO;
using System.Linq;
using Orvane;

static class Exchange
{
    static int Main(string[] arguments)
    {
        try
        {
            if (arguments.Length != 1) throw new OrvaneException("usage: Exchange SCRIPT");
            Simulators.Load(); // without this line a real PC/SC reader is looked for
            foreach (var info in Reader.List(ReaderKind.Pcsc)) Console.WriteLine("reader " + info.Name);
            using (var reader = Reader.Open(ReaderKind.Pcsc, "Simulated Reader 0"))
                File.ReadLines(arguments[0]).All(statement => Run(reader, statement));
            TagDictionary.Replace(new TagEntry("5F20", "Cardholder Name"));
            var entry = TagDictionary.Find("5F20");
            Console.WriteLine("tag " + entry.Tag + " " + entry.ShortText);
            return 0;
        }
        catch (Exception failure) when (failure is OrvaneException || failure is IOException)
        {
            Console.Error.WriteLine(failure.Message);
            return 1;
        }
    }

    /// <summary>Runs one statement and does what it asks of its host.</summary>
    /// <returns>False at the end of the script.</returns>
    static bool Run(Reader reader, string statement)
    {
        var result = Script.Run(statement);
        if (result is Note) Console.WriteLine(statement);
        else if (result is ResetRequest) ResetCard(reader);
        else if (result is Command) Send(reader, ((Command)result).Hex);
        else if (result is Comparison)
        {
            if (!((Comparison)result).Met) throw new OrvaneException("not as expected: " + statement);
            Console.WriteLine("ok  " + statement);
        }
        else if (!(result is Nothing || result is Assignment || result is Stop))
        {
            // A value for nobody, or a reader or slot that this host has no other of.
            throw new OrvaneException("can't run " + statement);
        }
        return !(result is Stop);
    }

    static void ResetCard(Reader reader)
    {
        string atr = reader.Reset();
        Console.WriteLine("ATR " + atr);
        Script.Set("%ATR", atr);
    }

    static void Send(Reader reader, string command)
    {
        Console.WriteLine(">>  " + command);
        var response = reader.Send(command);
        Console.WriteLine("<<  " + (response.Data == "" ? "" : response.Data + " ") + response.StatusWord);
        Script.Set("%RESP", response.Data);
        Script.Set("%SW", response.StatusWord);
    }
}
