"""Failures are exceptions. A status word other than 9000 is an answer, not a failure."""
from __future__ import annotations


class Error(Exception):
    """The base of all failures."""


class ScriptError(Error):
    """A failed statement, with its code from RunScript, SetVarValue or GetVarValue. A statement with a
    code from 1 to 8 can fail too: the text is then the message that it left."""

    def __init__(self, code: int, message: str) -> None:
        super().__init__(message)
        self.code = code


class ReaderError(Error):
    """A reader that doesn't open, reset, answer or close."""


class DataError(Error, ValueError):
    """Input that is refused before it is used."""
