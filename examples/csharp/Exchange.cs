// A script host in C#: runs a script on the simulated card and prints what goes to and fro. It takes
// the script and the simulator that stands in for the PC/SC module:
//
//   Exchange ../exchange.orv /usr/lib/orvane/simulators/libwinscard.so
//
// Put this file and Orvane.cs in a console project for .NET 5 or later. Where the system does not
// find liborvane.so or orvane.dll by itself, it has to stand beside the program.
using System;
using System.IO;
using System.Linq;
using System.Runtime.InteropServices;
using System.Text;

static class Exchange
{
    static int Main(string[] arguments)
    {
        try
        {
            if (arguments.Length != 2) throw new Exception("usage: Exchange SCRIPT SIMULATOR");
            // The library looks for the PC/SC module when a reader is opened, and takes what is
            // loaded under its name by then.
            NativeLibrary.Load(Path.GetFullPath(arguments[1]));
            ListReaders();
            Need(Orvane.OpenReaderA("Simulated Reader 0", ReaderKind.Pcsc), "open Simulated Reader 0");
            File.ReadLines(arguments[0]).All(Run);
            Orvane.CloseReader();
            NoteTag("5F20", "Cardholder Name");
            return 0;
        }
        catch (Exception failure)
        {
            Console.Error.WriteLine(failure.Message);
            return 1;
        }
    }

    /// <summary>32 records hold every list that asks for no ports and for at most 32.</summary>
    static void ListReaders()
    {
        var list = new ReaderInfo[32];
        int count = Orvane.GetReaderList(ReaderKind.Pcsc, list, 0, list.Length);
        foreach (var reader in list.Take(count)) Console.WriteLine("reader " + Orvane.Name(reader.Name));
    }

    /// <summary>Edits the tag dictionary in memory; FlushTagdict would write it to dictdata.bin in
    /// the current folder.</summary>
    static void NoteTag(string tag, string meaning)
    {
        var entry = new TagdictData { Tag = new byte[20], ShortText = new byte[200], LongText = new byte[1024] };
        Encoding.UTF8.GetBytes(tag).CopyTo(entry.Tag, 0);
        Encoding.UTF8.GetBytes(meaning).CopyTo(entry.ShortText, 0);
        Need(Orvane.UpTagdictData(ref entry), "note " + tag);
        Need(Orvane.FindTagdictData(tag, out entry), "find " + tag);
        Console.WriteLine("tag " + Orvane.Text(entry.Tag) + " " + Orvane.Text(entry.ShortText));
    }

    /// <summary>Runs one statement and does what it asks of its host.</summary>
    /// <returns>False at the end of the script.</returns>
    static bool Run(string statement)
    {
        var result = new byte[512];
        int code = Orvane.RunScript(statement, result);
        string text = Orvane.Text(result);
        if (code == (int)ScriptCode.NothingToRun) return true;
        switch ((StatementKind)code)
        {
            case StatementKind.Assignment:
                return true;
            case StatementKind.Dollar:
                Console.WriteLine(statement);
                return true;
            case StatementKind.Reset:
                ResetCard();
                return true;
            case StatementKind.Expression:
                Send(text);
                return true;
            case StatementKind.Compare:
                Need(text == "1" ? 1 : 0, "accept " + statement);
                Console.WriteLine("ok  " + statement);
                return true;
            case StatementKind.Stop:
                return false;
            default: // a failure, or a statement that this host doesn't know
                throw new Exception("can't run " + statement);
        }
    }

    static void ResetCard()
    {
        var atr = new byte[1025];
        Need(Orvane.Reset(atr), "reset the card");
        Console.WriteLine("ATR " + Orvane.Text(atr));
        Orvane.SetVarValue("%ATR", Orvane.Text(atr));
    }

    /// <summary>A PC/SC reader answers with the data, or with 9000 where there is none. Without
    /// success it gives the first two octets of what came: the status word, unless data stood before
    /// it.</summary>
    static void Send(string command)
    {
        // Where a variable is not defined the text is a message: nothing of it may reach a card. A
        // script command that fails leaves the text shorter, which doesn't show here; for cards that
        // matter, try each on its own before, as the program orvane does.
        bool digits = Orvane.CheckAsciiNum(command, 1, command.Length) == 0;
        Need(digits && command.Length >= 8 && command.Length % 2 == 0 ? 1 : 0, "send " + command);
        Console.WriteLine(">>  " + command);
        var buffer = new byte[8193];
        bool done = Orvane.SendCommand(command, command.Length, buffer) == 1;
        string answer = Orvane.Text(buffer);
        Need(done ? 1 : answer.Length, "get an answer to " + command);
        Need(done || answer != "9000" ? 1 : 0, "tell the status word of " + command);
        string statusWord = done ? "9000" : answer;
        string data = answer == statusWord ? "" : answer;
        Console.WriteLine("<<  " + (data == "" ? statusWord : data + " " + statusWord));
        Orvane.SetVarValue("%RESP", data);
        Orvane.SetVarValue("%SW", statusWord);
    }

    static void Need(int result, string what)
    {
        if (result == 0) throw new Exception("can't " + what);
    }
}
