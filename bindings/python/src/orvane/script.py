"""Statements, their results, and variables."""
from __future__ import annotations

import enum
import re
from dataclasses import dataclass
from typing import Callable, Dict, Union

from .errors import DataError, ScriptError
from .library import area, decode, encode, lock, native


class StatementKind(enum.IntEnum):
    ASSIGNMENT = 0
    EXPRESSION = 1
    SET_READER = 2
    SET_SLOT = 3
    RESET = 4
    DOLLAR = 5
    STOP = 6
    COMPARE = 7
    OPEN_READER = 8


class ScriptCode(enum.IntEnum):
    NO_ENGINE = -1
    DONE = 0
    NOTHING_TO_RUN = 100
    UNDEFINED_VARIABLE = 1001
    EMPTY_NAME = 1002
    EXCEPTION = 1024


@dataclass(frozen=True)
class Nothing:
    """An empty statement or a comment."""


@dataclass(frozen=True)
class Assignment:
    """A value was stored; this is its first 511 bytes. A failed script command leaves its message or
    nothing in the value, so let scripts compare the lengths of computed values."""
    value: str


@dataclass(frozen=True)
class Command:
    """An expression of whole octets in hexadecimal, at least four: send it to the card."""
    hex: str


@dataclass(frozen=True)
class Value:
    """Any other expression, perhaps empty; do not send it to a card."""
    text: str


@dataclass(frozen=True)
class ReaderChoice:
    """@setreader(reader)"""
    reader: str


@dataclass(frozen=True)
class SlotChoice:
    """@setslot(slot)"""
    slot: str


@dataclass(frozen=True)
class OpenRequest:
    """@OPENREADER(reader)"""
    reader: str


@dataclass(frozen=True)
class ResetRequest:
    """@reset()"""


@dataclass(frozen=True)
class Note:
    """$ and a text for the host; read it from the statement."""


@dataclass(frozen=True)
class Stop:
    """@stop()"""


@dataclass(frozen=True)
class Comparison:
    """@compare(left, right, expected); met is true if the outcome is the expected one."""
    met: bool


Result = Union[Nothing, Assignment, Command, Value, ReaderChoice, SlotChoice, OpenRequest,
               ResetRequest, Note, Stop, Comparison]

_ARGUMENTS: Dict[int, Callable[[str], Result]] = {
    StatementKind.SET_READER: ReaderChoice, StatementKind.SET_SLOT: SlotChoice,
    StatementKind.OPEN_READER: OpenRequest}


def _names_undefined(code: int, text: str) -> bool:
    # In an expression the message of a failed command is in upper case like the rest.
    if code == StatementKind.ASSIGNMENT:
        return False
    return text.endswith('" not define ') or (
        code == StatementKind.EXPRESSION and '" NOT DEFINE ' in text)


def _expression(statement: str, text: str) -> Result:
    if not text and statement.lstrip(" \t")[:1] in ("(", ")", ","):
        raise ScriptError(StatementKind.EXPRESSION, "a statement can't begin with ( ) or ,")
    return Command(text) if re.fullmatch("(?:[0-9A-F]{2}){4,}", text) else Value(text)


def _host_command(code: int, text: str) -> Result:
    if code == StatementKind.COMPARE:
        if text not in ("0", "1"):
            raise ScriptError(code, "an operand of @compare failed")
        return Comparison(text == "1")
    if code in (StatementKind.RESET, StatementKind.STOP):
        if text:
            raise ScriptError(code, "@reset() and @stop() have to stand alone")
        return ResetRequest() if code == StatementKind.RESET else Stop()
    if not text:
        raise ScriptError(code, "an argument is empty, or failed")
    return _ARGUMENTS[code](text)


def _check(code: int, name: str) -> None:
    if code != ScriptCode.DONE:
        raise ScriptError(code, {ScriptCode.UNDEFINED_VARIABLE: f"there is no {name}",
                                 ScriptCode.EMPTY_NAME: "a variable without name",
                                 }.get(ScriptCode(code), "no memory"))


class Script:
    """The process's script engine and its variables."""

    @staticmethod
    def run(statement: str) -> Result:
        """Runs one statement. Raises ScriptError if it fails: an undefined variable, an empty or failed
        argument of a command for the host, @reset() or @stop() that does not stand alone, "(", ")" or
        "," at its beginning, a text above 511 bytes, no memory."""
        result = area(512)
        with lock:
            code = native.RunScript(encode(statement), result)
        text = decode(result.value)
        if code in (ScriptCode.NO_ENGINE, ScriptCode.EXCEPTION):
            raise ScriptError(code, "a text above 511 bytes, or no memory")
        if _names_undefined(code, text):
            raise ScriptError(code, text)
        if code == StatementKind.ASSIGNMENT:
            return Assignment(text)
        if code == StatementKind.EXPRESSION:
            return _expression(statement, text)
        if code == StatementKind.DOLLAR:
            return Note()
        return Nothing() if code == ScriptCode.NOTHING_TO_RUN else _host_command(code, text)

    @staticmethod
    def set(name: str, value: str) -> None:
        """Stores a variable. Scripts can read it only if its name begins with %."""
        with lock:
            _check(native.SetVarValue(encode(name), encode(value)), name)

    @staticmethod
    def has(name: str) -> bool:
        """True if a variable exists."""
        with lock:
            code = int(native.GetVarValue(encode(name)))
        if code != ScriptCode.UNDEFINED_VARIABLE:
            _check(code, name)
        return code == ScriptCode.DONE

    @staticmethod
    def get(name: str) -> str:
        """The whole value of a variable, with its letters' case. The name begins with %. Reads the
        value in pieces, through the variable ORVANE.PIECE, which no script can read."""
        if not name.startswith("%") or re.search(r"[ \t(),]", name):
            raise DataError("a variable that can be read has a name with % in front and no separator")
        value, piece = b"", area(512)
        with lock:
            _check(native.GetVarValue(encode(name)), name)
            while True:
                call = b"ORVANE.PIECE=@strmid(%s,%d,511)" % (encode(name), len(value))
                _check(native.RunScript(call, piece), name)
                value += piece.value
                if len(piece.value) < 511:
                    break
            native.SetVarValue(b"ORVANE.PIECE", b"")
        return decode(value)
