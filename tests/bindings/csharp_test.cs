// The class library does what the rows of cases.txt say: csharp_test CASES, in a folder of its own.
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Text.RegularExpressions;
using Orvane;

static class CsharpTest
{
    static Reader reader;
    static readonly TagTree tree = new TagTree();

    static string Join(params string[] words) { return string.Join(" ", words.Where(word => !string.IsNullOrEmpty(word))); }

    static string Listed(IEnumerable<string> texts) { return texts.Any() ? string.Join(", ", texts) : "none"; }

    static string YesOrNo(bool value) { return value ? "yes" : "no"; }

    static string Done(Action action) { action(); return "done"; }

    static ReaderKind Kind(string number) { return (ReaderKind)int.Parse(number); }

    static string Describe(Result result)
    {
        object field = result.GetType().GetProperties().Select(each => each.GetValue(result)).FirstOrDefault();
        return Join(result.GetType().Name, field is bool ? YesOrNo((bool)field) : (string)field);
    }

    static string Describe(Response it)
    {
        return it == null ? "none" : Join(it.Data, it.StatusWord, it.Ok ? "ok" : "");
    }

    static string Describe(TagEntry it) { return it == null ? "none" : Join(it.Tag, it.ShortText, it.LongText); }

    static TagEntry Entry(string[] a) { return new TagEntry(a[0], a[1], a.Length > 2 ? a[2] : ""); }

    static readonly Dictionary<string, Func<string[], string>> operations = new Dictionary<string, Func<string[], string>>
    {
        { "run", a => Describe(Script.Run(a[0])) },
        { "set", a => Done(() => Script.Set(a[0], a[1])) },
        { "get", a => Script.Get(a[0]) },
        { "has", a => YesOrNo(Script.Has(a[0])) },
        { "list", a => Listed(Reader.List(Kind(a[0]), a.Length > 1 ? int.Parse(a[1]) : 0)
                                    .Select(each => Join(each.Name, each.Port.ToString()))) },
        { "open", a => Done(() => reader = Reader.Open(Kind(a[0]), a[1])) },
        { "open_port", a => Done(() => reader = Reader.OpenPort(Kind(a[0]), int.Parse(a[1]))) },
        { "reset", a => reader.Reset() },
        { "slot", a => Done(() => reader.ChooseSlot(byte.Parse(a[0]))) },
        { "send", a => Describe(reader.Send(a[0])) },
        { "send_octets", a => Describe(reader.Send(Conversions.ToOctets(a[0]))) },
        { "close", a => Done(reader.Close) },
        { "response", a => Describe(Response.Read(Kind(a[0]), int.Parse(a[1]), a[2])) },
        { "parse", a => Done(() => tree.Parse(a[0])) },
        { "find", a => tree.Find(a[0]) ?? "none" },
        { "dictionary", a => Listed(TagDictionary.List().Select(each => each.Tag)) },
        { "note", a => YesOrNo(TagDictionary.Add(Entry(a))) },
        { "replace", a => YesOrNo(TagDictionary.Replace(Entry(a))) },
        { "meaning", a => Describe(TagDictionary.Find(a[0])) },
        { "remove", a => YesOrNo(TagDictionary.Remove(a[0])) },
        { "flush", a => Done(TagDictionary.Flush) },
        { "to_octets", a => Conversions.ToHex(Conversions.ToOctets(a[0])) },
        { "to_escapes", a => Conversions.ToEscapes(a[0]) },
        { "is_hex", a => YesOrNo(Conversions.IsHex(a[0])) },
        { "is_decimal", a => YesOrNo(Conversions.IsDecimal(a[0])) },
        { "to_number", a => Conversions.ToNumber(a[0]).ToString() },
        { "octets_to_number", a => Conversions.ToNumber(Conversions.ToOctets(a[0])).ToString() },
        { "number_to_hex", a => Conversions.NumberToHex(int.Parse(a[0])) },
        { "number_to_octets", a => Conversions.ToHex(Conversions.NumberToOctets(int.Parse(a[0]))) },
        { "url_encode", a => Conversions.UrlEncode(a[0]) },
        { "url_decode", a => Conversions.UrlDecode(a[0]) },
        { "time_of", a => Conversions.TimeOf(uint.Parse(a[0])) },
        { "time_of_text", a => Conversions.TimeOfText(a[0], a.Length > 1) },
    };

    static string Outcome(string name, string[] arguments)
    {
        try
        {
            return operations[name](arguments);
        }
        catch (OrvaneException failure)
        {
            var script = failure as ScriptException;
            return failure.GetType().Name.Replace("Exception", "Error") + (script == null ? "" : " " + script.Code);
        }
    }

    static string Expand(string text)
    {
        text = text.Length > 0 ? text.Substring(1) : "";
        return Regex.Replace(text, @"\{(?:(.+?)\*(\d+)|zero)\}", match => match.Groups[2].Success
            ? string.Concat(Enumerable.Repeat(match.Groups[1].Value, int.Parse(match.Groups[2].Value))) : "\0");
    }

    static string[] Split(string text, string mark) { return text.Split(new[] { mark }, StringSplitOptions.None); }

    static int Main(string[] arguments)
    {
        Simulators.Load();
        int count = 0, failed = 0;
        foreach (string row in File.ReadLines(arguments[0]).Where(each => !each.StartsWith("#")))
        {
            string[] columns = Split(row, " |");
            if (columns.Length != 3) continue;
            ++count;
            string outcome = Outcome(columns[0], Split(columns[1], " ::").Select(Expand).ToArray());
            if (outcome == Expand(columns[2])) continue;
            ++failed;
            Console.WriteLine(row + "\n  gives " + outcome);
        }
        Console.WriteLine(count + " rows, " + failed + " failed");
        return count > 100 && failed == 0 ? 0 : 1;
    }
}
