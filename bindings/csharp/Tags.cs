using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;

namespace Orvane
{
    /// <summary>Parses BER-TLV data. Every element of the tree, also a child, is found under its
    /// tag.</summary>
    public sealed class TagTree : IDisposable
    {
        private readonly object use = new object();
        private IntPtr parser;

        public TagTree()
        {
            parser = Native.TagParsing_Init();
            if (parser == IntPtr.Zero) throw new OutOfMemoryException();
        }

        public TagTree(string hex) : this() { Parse(hex); }

        ~TagTree() { Dispose(); }

        public void Dispose()
        {
            lock (use)
            {
                Native.TagParsing_Free(parser);
                parser = IntPtr.Zero;
            }
            GC.SuppressFinalize(this);
        }

        /// <summary>Adds the elements of a hexadecimal text. Throws DataException at the first malformed
        /// element; those before it are kept.</summary>
        public void Parse(string hex)
        {
            lock (use)
            {
                if (Native.TagParsing_Parse(parser, Native.Bytes(hex)) == 0)
                    throw new DataException("malformed BER-TLV data, or a tag above one octet");
            }
            GC.KeepAlive(this);
        }

        /// <summary>The value of the last element with a tag, in hexadecimal; null if there is no such
        /// element.</summary>
        public string Find(string tag)
        {
            var record = new byte[2050];
            int found;
            lock (use) found = Native.TagParsing_GetTag(parser, Native.Bytes(tag), record);
            GC.KeepAlive(this);
            return found == 0 ? null : Native.Text(record.Skip(4).ToArray());
        }
    }

    /// <summary>A record of the dictionary.</summary>
    public sealed class TagEntry
    {
        internal const int Size = 1244;
        // Where the texts of a record begin, and where it ends.
        private static readonly int[] places = { 0, 20, 220, Size };

        /// <summary>Throws DataException for texts of more than 19, 199 and 1,023 bytes.</summary>
        public TagEntry(string tag, string shortText, string longText = "")
        {
            Tag = tag;
            ShortText = shortText;
            LongText = longText;
            Record();
        }

        internal TagEntry(byte[] records, int at)
        {
            var texts = Enumerable.Range(0, 3)
                .Select(field => Native.Text(records.Skip(at + places[field])
                                                    .Take(places[field + 1] - places[field]).ToArray())).ToArray();
            Tag = texts[0];
            ShortText = texts[1];
            LongText = texts[2];
        }

        public string Tag { get; }
        public string ShortText { get; }
        public string LongText { get; }

        internal byte[] Record()
        {
            var record = new byte[Size];
            var texts = new[] { Tag, ShortText, LongText }.Select(Native.Bytes).ToArray();
            for (int field = 0; field < 3; ++field)
            {
                if (texts[field].Length > places[field + 1] - places[field])
                    throw new DataException("a text of the dictionary is too long");
                texts[field].CopyTo(record, places[field]);
            }
            return record;
        }
    }

    /// <summary>The process's dictionary of tags, in the file dictdata.bin of the current
    /// folder.</summary>
    public static class TagDictionary
    {
        private static bool loaded, changed;
        private static int fileRecords, added;

        /// <summary>The whole list. Its size is known if only this class uses the dictionary in this process.
        /// Throws DataException if records were added and there is no file yet (flush first), and if another
        /// program changed the file while it was read.</summary>
        public static List<TagEntry> List()
        {
            lock (Native.Gate)
            {
                LoadFile();
                if (!loaded && added == 0) return new List<TagEntry>();
                if (!loaded) throw new DataException("there is no dictdata.bin yet: flush first");
                if (changed) throw new DataException("dictdata.bin changed while it was read");
                var records = new byte[checked((fileRecords + added + 1) * TagEntry.Size)];
                int count;
                if (Native.GetTagdict(records, out count) == 0) throw new OutOfMemoryException();
                return Enumerable.Range(0, count).Select(at => new TagEntry(records, at * TagEntry.Size)).ToList();
            }
        }

        /// <summary>The first record with a tag, in either case; null if there is none.</summary>
        public static TagEntry Find(string tag)
        {
            var record = new byte[TagEntry.Size];
            lock (Native.Gate)
            {
                LoadFile();
                return Native.FindTagdictData(Native.Bytes(tag), record) == 0 ? null : new TagEntry(record, 0);
            }
        }

        /// <summary>Adds a record at the end. False if its tag is there, in either case.</summary>
        public static bool Add(TagEntry entry)
        {
            lock (Native.Gate)
            {
                LoadFile();
                ++added;
                return Native.AddTagdictData(entry.Record()) != 0;
            }
        }

        /// <summary>Replaces the record with exactly this tag, or adds it. False if the tag is there in
        /// another case.</summary>
        public static bool Replace(TagEntry entry)
        {
            lock (Native.Gate)
            {
                LoadFile();
                ++added;
                return Native.UpTagdictData(entry.Record()) != 0;
            }
        }

        /// <summary>Removes the first record with exactly this tag. False if there is none.</summary>
        public static bool Remove(string tag)
        {
            lock (Native.Gate)
            {
                LoadFile();
                return Native.DeleteTagdictData(Native.Bytes(tag)) != 0;
            }
        }

        /// <summary>Writes the list to the file. A failed write is not reported.</summary>
        public static void Flush()
        {
            lock (Native.Gate)
            {
                LoadFile();
                Native.FlushTagdict();
                fileRecords = Math.Max(fileRecords, FileNow.Look().Records);
            }
        }

        // The library reads the file in the first call that finds it, and does not say how much it was.
        private static void LoadFile()
        {
            if (loaded) return;
            FileNow before = FileNow.Look();
            Native.FindTagdictData(Native.Bytes(""), new byte[TagEntry.Size]);
            FileNow after = FileNow.Look();
            loaded = before.Read && after.Read;
            changed = changed || !before.Equals(after);
            fileRecords = Math.Max(fileRecords, Math.Max(before.Records, after.Records));
        }

        // What the library would read now: the stated number of records, each of at least three octets.
        private struct FileNow
        {
            public bool Read;
            public int Records;
            public long Size;
            public DateTime Time;

            public static FileNow Look()
            {
                try
                {
                    // Does not open a file too short for a count: it may not be a regular one.
                    if (new FileInfo("dictdata.bin").Length < 4) return new FileNow();
                    var octets = new byte[4];
                    using (var file = new FileStream("dictdata.bin", FileMode.Open, FileAccess.Read,
                                                     FileShare.ReadWrite | FileShare.Delete))
                    {
                        file.Read(octets, 0, 4);
                        int said = Math.Max(BitConverter.ToInt32(octets, 0), 0);
                        return new FileNow
                        {
                            Read = true,
                            Records = (int)Math.Min(said, file.Length / 3),
                            Size = file.Length,
                            Time = File.GetLastWriteTimeUtc("dictdata.bin"),
                        };
                    }
                }
                catch (IOException)
                {
                    return new FileNow();
                }
                catch (UnauthorizedAccessException)
                {
                    return new FileNow();
                }
            }
        }
    }
}
