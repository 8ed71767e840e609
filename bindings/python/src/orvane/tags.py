"""BER-TLV data, and the dictionary of tags."""
from __future__ import annotations

import ctypes
import os
import weakref
from dataclasses import dataclass
from typing import List, Optional, Tuple

from .errors import DataError
from .library import TagdictRecord, area, decode, encode, lock, native


class TagTree:
    """Parses BER-TLV data. Every element of the tree, also a child, is found under its tag."""

    def __init__(self, hex: Optional[str] = None) -> None:
        self._parser = native.TagParsing_Init()
        if not self._parser:
            raise MemoryError
        weakref.finalize(self, native.TagParsing_Free, self._parser)
        if hex is not None:
            self.parse(hex)

    def parse(self, hex: str) -> None:
        """Adds the elements of a hexadecimal text. Raises DataError at the first malformed element;
        those before it are kept."""
        with lock:
            if not native.TagParsing_Parse(self._parser, encode(hex)):
                raise DataError("malformed BER-TLV data, or a tag above one octet")

    def find(self, tag: str) -> Optional[str]:
        """The value of the last element with a tag, in hexadecimal; none if there is no such element."""
        record = area(2050)
        with lock:
            if not native.TagParsing_GetTag(self._parser, encode(tag), record):
                return None
        return record.raw[4:].split(b"\0", 1)[0].decode()


@dataclass(frozen=True)
class TagEntry:
    """A record of the dictionary."""
    tag: str
    short_text: str
    long_text: str = ""

    def _record(self) -> TagdictRecord:
        texts = [encode(text) for text in (self.tag, self.short_text, self.long_text)]
        for text, room in zip(texts, (20, 200, 1024)):
            if len(text) >= room:
                raise DataError("a text of the dictionary is too long")
        return TagdictRecord(*texts)


def _entry(record: TagdictRecord) -> TagEntry:
    return TagEntry(decode(record.tag), decode(record.short_text), decode(record.long_text))


_File = Tuple[bool, int, int, int]  # readable; number of records, size, time


def _look() -> _File:
    """What the library would read now: the stated number of records, each of at least three octets."""
    try:
        if not os.path.isfile("dictdata.bin"):
            return False, 0, 0, 0
        with open("dictdata.bin", "rb") as file:
            said = int.from_bytes(file.read(4), "little", signed=True)
            status = os.fstat(file.fileno())
    except OSError:
        return False, 0, 0, 0
    return True, min(max(said, 0), status.st_size // 3), status.st_size, status.st_mtime_ns


class TagDictionary:
    """The process's dictionary of tags, in the file dictdata.bin of the current folder."""

    _loaded, _known, _file_records, _added = False, True, 0, 0

    @classmethod
    def list(cls) -> "List[TagEntry]":
        """The whole list. Its size is known if only this class uses the dictionary in this process.
        Raises DataError if records were added and there is no file yet (flush first), and if another
        program changed the file while it was read."""
        with lock:
            cls._load()
            if not cls._loaded and not cls._added:
                return []
            if not cls._loaded:
                raise DataError("there is no dictdata.bin yet: flush first")
            if not cls._known:
                raise DataError("dictdata.bin changed while it was read")
            records = (TagdictRecord * (cls._file_records + cls._added + 1))()
            count = ctypes.c_int32()
            if not native.GetTagdict(records, ctypes.byref(count)):
                raise MemoryError
            return [_entry(record) for record in records[:count.value]]

    @classmethod
    def find(cls, tag: str) -> Optional[TagEntry]:
        """The first record with a tag, in either case."""
        record = TagdictRecord()
        with lock:
            cls._load()
            found = native.FindTagdictData(encode(tag), ctypes.byref(record))
        return _entry(record) if found else None

    @classmethod
    def add(cls, entry: TagEntry) -> bool:
        """Adds a record at the end. False if its tag is there, in either case."""
        with lock:
            cls._load()
            cls._added += 1
            return bool(native.AddTagdictData(ctypes.byref(entry._record())))

    @classmethod
    def replace(cls, entry: TagEntry) -> bool:
        """Replaces the record with exactly this tag, or adds it. False if the tag is there in another
        case."""
        with lock:
            cls._load()
            cls._added += 1
            return bool(native.UpTagdictData(ctypes.byref(entry._record())))

    @classmethod
    def remove(cls, tag: str) -> bool:
        """Removes the first record with exactly this tag. False if there is none."""
        with lock:
            cls._load()
            return bool(native.DeleteTagdictData(encode(tag)))

    @classmethod
    def flush(cls) -> None:
        """Writes the list to the file. A failed write is not reported."""
        with lock:
            cls._load()
            native.FlushTagdict()
            cls._file_records = max(cls._file_records, _look()[1])

    @classmethod
    def _load(cls) -> None:
        """The library reads the file in the first call that finds it, and does not say how much it
        was."""
        if cls._loaded:
            return
        before = _look()
        native.FindTagdictData(b"", ctypes.byref(TagdictRecord()))
        after = _look()
        cls._loaded = before[0] and after[0]
        cls._known = cls._known and before == after
        cls._file_records = max(cls._file_records, before[1], after[1])
