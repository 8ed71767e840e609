"""The functions of orvane.h, and the conversion of texts for them. For the package's own use."""
from __future__ import annotations

import ctypes
import os
import pathlib
import sys
import threading
from typing import Any, Sequence, Tuple

from .errors import DataError

WINDOWS = sys.platform == "win32"
FOLDER = pathlib.Path(__file__).resolve().parent / "native"

# Only one thread at a time may call the library: it has no locks of its own.
lock = threading.RLock()


class ReaderRecord(ctypes.Structure):
    _fields_ = [("kind", ctypes.c_int32), ("has_port", ctypes.c_int32), ("port", ctypes.c_int32),
                ("name", ctypes.c_char * 256), ("reserved", ctypes.c_int32)]


class TagdictRecord(ctypes.Structure):
    _fields_ = [("tag", ctypes.c_char * 20), ("short_text", ctypes.c_char * 200),
                ("long_text", ctypes.c_char * 1024)]


def _load() -> ctypes.CDLL:
    """The package's own library, or else the system's."""
    own = FOLDER / ("orvane.dll" if WINDOWS else "liborvane.so")
    return ctypes.CDLL(str(own) if own.exists() else "orvane.dll" if WINDOWS else "liborvane.so.1")


native = _load()

_text, _area, _int, _out = ctypes.c_char_p, ctypes.c_char_p, ctypes.c_int32, ctypes.c_void_p
_signatures: Sequence[Tuple[Any, ...]] = (
    ("RunScript", _int, _text, _area),
    ("SetVarValue", _int, _text, _text),
    ("GetVarValue", _int, _text),
    ("GetReaderList", _int, _int, _out, _int, _int),
    ("SetReader", _int, ctypes.c_uint32),
    ("OpenReader", _int, _int, _int, _int),
    ("OpenReaderA", _int, _text, _int),
    ("CloseReader", _int),
    ("Reset", _int, _area),
    ("ChangeSlot", None, _text),
    ("SendCommand", _int, _text, _int, _area),
    ("URLEncode", None, _text, _area),
    ("URLDecode", None, _text, _area),
    ("HexToAscii", None, _text, _area, _int),
    ("AsciiToHex", _int, _text, _area, _int),
    ("AsciiToHexStr", _int, _text, _area, _int),
    ("CheckAsciiNum", _int, _text, _int, _int),
    ("HexStrToInt", _int, _text, _out, _int),
    ("HexToInt", _int, _text, _out, _int),
    ("IntToHex", _int, _area, _int, _out),
    ("IntToHexStr", _int, _area, _int, _out),
    ("GetTimeStampInt", None, _out),
    ("GetTimeStampStr", None, _area, _int),
    ("GetTimeStr", None, _area),
    ("GetTimeStrFromTimeStampInt", None, _area, ctypes.c_uint32),
    ("GetTimeStrFromTimeStampStr", None, _area, _text, _int),
    ("AsciiLog", None, _text, _text),
    ("HexLog", None, _text, _text, _int),
    ("TagParsing_Init", ctypes.c_void_p),
    ("TagParsing_Parse", _int, ctypes.c_void_p, _text),
    ("TagParsing_GetTag", _int, ctypes.c_void_p, _text, _area),
    ("TagParsing_Free", None, ctypes.c_void_p),
    ("GetTagdict", _int, _out, _out),
    ("FindTagdictData", _int, _text, _out),
    ("AddTagdictData", _int, _out),
    ("DeleteTagdictData", _int, _text),
    ("UpTagdictData", _int, _out),
    ("FlushTagdict", _int))
for _name, _result, *_parameters in _signatures:
    _function = getattr(native, _name)
    _function.argtypes, _function.restype = _parameters, _result


def _checked(octets: bytes) -> bytes:
    if 0 in octets:
        raise DataError("a text has a zero octet in it")
    return octets


def encode(text: str) -> bytes:
    """Text as UTF-8. Octets that are not UTF-8 become surrogates and back: nothing is lost."""
    return _checked(text.encode("utf-8", "surrogateescape"))


def decode(octets: bytes) -> str:
    return octets.decode("utf-8", "surrogateescape")


def encode_name(name: str) -> bytes:
    """The name of a reader or a log file: in the ANSI code page on Windows."""
    try:
        return _checked(name.encode("mbcs", "strict") if WINDOWS else os.fsencode(name))
    except UnicodeEncodeError as error:
        raise DataError(f"{name} has letters that the system's character set lacks") from error


def decode_name(octets: bytes) -> str:
    return octets.decode("mbcs", "replace") if WINDOWS else os.fsdecode(octets)


def area(size: int) -> "ctypes.Array[ctypes.c_char]":
    return ctypes.create_string_buffer(size)
