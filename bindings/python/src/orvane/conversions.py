"""Octets, text, numbers and times. Hexadecimal text with an odd number of digits is refused."""
from __future__ import annotations

import ctypes
from typing import Union

from .errors import DataError
from .library import area, decode, encode, encode_name, native


def is_decimal(text: str) -> bool:
    """True if a text has only the digits 0 to 9, at least one."""
    octets = encode(text)
    return bool(octets) and native.CheckAsciiNum(octets, 0, len(octets)) == 0


def is_hex(text: str) -> bool:
    """True if a text has only hexadecimal digits, at least one, and no blanks."""
    octets = encode(text)
    return bool(octets) and native.CheckAsciiNum(octets, 1, len(octets)) == 0


def to_hex(octets: bytes) -> str:
    """Octets as upper-case digits."""
    text = area(2 * len(octets) + 1)
    native.HexToAscii(bytes(octets), text, len(octets))
    return text.value.decode()


def to_octets(hex: str) -> bytes:
    """The octets of a hexadecimal text."""
    text = encode(hex)
    digits = len(text) - text.count(b" ")
    if digits % 2:
        raise DataError(f"hexadecimal text of {digits} digits")
    octets = area(digits // 2 + 1)
    if digits and not native.AsciiToHex(text, octets, len(text)):
        raise DataError("hexadecimal text with another character")
    return octets.raw[:digits // 2]


def to_escapes(hex: str) -> str:
    r"""Hexadecimal text with \x before every two digits, as C and others write octets."""
    if not is_hex(hex) or len(hex) % 2:
        raise DataError("no hexadecimal text of whole octets")
    text = area(2 * len(hex) + 1)
    native.AsciiToHexStr(hex.encode(), text, len(hex))
    return text.value.decode()


def to_number(octets: Union[str, bytes]) -> int:
    """The number that 1 to 4 octets form, most significant first; or 2, 4, 6 or 8 digits."""
    number = ctypes.c_int32()
    if isinstance(octets, str):
        done = (is_hex(octets) and len(octets) in (2, 4, 6, 8)
                and native.HexStrToInt(octets.encode(), ctypes.byref(number), len(octets)))
    else:
        done = native.HexToInt(octets, ctypes.byref(number), len(octets))
    if not done:
        raise DataError("a number has 1 to 4 octets")
    return number.value


def _int32(number: int) -> int:
    if not -2**31 <= number < 2**31:
        raise DataError(f"{number} has more than 32 bits")
    return number


def number_to_hex(number: int) -> str:
    """The significant octets of a number as 2, 4, 6 or 8 digits."""
    text, length = area(9), ctypes.c_int32()
    native.IntToHexStr(text, _int32(number), ctypes.byref(length))
    return text.value.decode()


def number_to_octets(number: int) -> bytes:
    """The same as octets."""
    octets, count = area(4), ctypes.c_int32()
    native.IntToHex(octets, _int32(number), ctypes.byref(count))
    return octets.raw[4 - count.value:]


def url_encode(text: str) -> str:
    """Escapes everything except ASCII letters and digits."""
    octets = encode(text)
    encoded = area(3 * len(octets) + 1)
    native.URLEncode(octets, encoded)
    return encoded.value.decode()


def url_decode(text: str) -> str:
    """Reverses url_encode and turns + into a blank. Does not check the escapes."""
    octets = encode(text)
    length = at = 0
    while at < len(octets):
        at += 3 if octets[at:at + 1] == b"%" and len(octets) - at > 2 else 1
        length += 1
    decoded = area(len(octets) + 1)
    native.URLDecode(octets, decoded)
    return decode(decoded.raw[:length])


def stamp() -> int:
    """The stamp of the current second: the Unix time minus 28800."""
    value = ctypes.c_uint32()
    native.GetTimeStampInt(ctypes.byref(value))
    return value.value


def stamp_text(milliseconds: bool = False) -> str:
    """The same in decimal, followed by three digits of milliseconds on request."""
    text = area(15)
    native.GetTimeStampStr(text, int(milliseconds))
    return text.value.decode()


def time_text() -> str:
    """The current time in UTC, YYYY-MM-DD hh:mm:ss."""
    text = area(33)
    native.GetTimeStr(text)
    return text.value.decode()


def time_of(stamp: int) -> str:
    """The time of a stamp."""
    if not 0 <= stamp < 2**32:
        raise DataError(f"{stamp} is no stamp")
    text = area(33)
    native.GetTimeStrFromTimeStampInt(text, stamp)
    return text.value.decode()


def time_of_text(stamp_text: str, milliseconds: bool = False) -> str:
    """The time of a text from stamp_text(True), with a colon and milliseconds on request."""
    if not 4 <= len(encode(stamp_text)) <= 25:
        raise DataError("no stamp with milliseconds")
    text = area(37)
    native.GetTimeStrFromTimeStampStr(text, encode(stamp_text), int(milliseconds))
    return text.value.decode()


def log_text(path: str, text: str) -> None:
    """Appends a text to a file. On Windows each line feed becomes CR LF."""
    native.AsciiLog(encode_name(path), encode(text))


def log_hex(path: str, octets: bytes) -> None:
    """Appends octets as hexadecimal text."""
    native.HexLog(encode_name(path), bytes(octets), len(octets))
