"""Runs card scripts and drives smart-card readers.

The class of a statement's result says what it asks of the host:

    for line in script:
        result = Script.run(line)
        if isinstance(result, ResetRequest):
            reader.reset()
        elif isinstance(result, Command):
            response = reader.send(result.hex)
            Script.set("%RESP", response.data)
            Script.set("%SW", response.status_word)
"""
from .conversions import (is_decimal, is_hex, log_hex, log_text, number_to_hex, number_to_octets, stamp,
                          stamp_text, time_of, time_of_text, time_text, to_escapes, to_hex, to_number,
                          to_octets, url_decode, url_encode)
from .errors import DataError, Error, ReaderError, ScriptError
from .readers import (Reader, ReaderInfo, ReaderKind, Response, has_status_word, load_simulators,
                      longest_command, most_data)
from .script import (Assignment, Command, Comparison, Note, Nothing, OpenRequest, ReaderChoice,
                     ResetRequest, Result, Script, ScriptCode, SlotChoice, StatementKind, Stop, Value)
from .tags import TagDictionary, TagEntry, TagTree

__all__ = [
    "Assignment", "Command", "Comparison", "DataError", "Error", "Note", "Nothing", "OpenRequest",
    "Reader", "ReaderChoice", "ReaderError", "ReaderInfo", "ReaderKind", "ResetRequest", "Response",
    "Result", "Script", "ScriptCode", "ScriptError", "SlotChoice", "StatementKind", "Stop",
    "TagDictionary", "TagEntry", "TagTree", "Value", "has_status_word", "is_decimal", "is_hex",
    "load_simulators", "log_hex", "log_text", "longest_command", "most_data", "number_to_hex",
    "number_to_octets", "stamp", "stamp_text", "time_of", "time_of_text", "time_text", "to_escapes",
    "to_hex", "to_number", "to_octets", "url_decode", "url_encode",
]
