"""What can't be done is raised. A status word other than 9000 is an answer, and no failure."""
from __future__ import annotations


class Error(Exception):
    """What every failure is."""


class ScriptError(Error):
    """A statement that failed, with its code of RunScript, SetVarValue or GetVarValue. Statements with
    the codes 1 to 8 can fail too: the text is then the message that they left."""

    def __init__(self, code: int, message: str) -> None:
        super().__init__(message)
        self.code = code


class ReaderError(Error):
    """A reader that doesn't open, reset, answer or close."""


class DataError(Error, ValueError):
    """Input that is refused before anything is done with it."""
