#!/usr/bin/env python3
"""Holds docs/messages.md and the texts of the code to each other.

A text of the code that has three words, or two where something fails, stands on the page. What the page's tables
have as code in their first column is a text of the code; "…" stands for what varies, with a plural behind it.
"""
import pathlib
import re
import sys

root = pathlib.Path(__file__).resolve().parents[2]
sources = ["host/**/*.cpp", "host/**/*.h", "recordings/**/*.cpp", "recorder/**/*.cpp", "src/commands/*.cpp",
           "src/engine/*.cpp", "simulators/common/module.cpp", "simulators/common/replayed_card.cpp",
           "include/orvane.hpp", "bindings/python/src/**/*.py", "bindings/node/lib/*.js", "bindings/csharp/*.cs"]
# What these say is help, the names of fields and kinds, or SQL: a message of theirs stands in a statement that fails.
others = r"host/(options|reader_address|status_word|(decode|pages)/.*|desk/vocabulary|batch/database_store)\.(cpp|h)"

quoted = r'"(?:[^"\\\n]|\\.)*"'
tokens = re.compile(rf"""
    //[^\n]* | /\*.*?\*/ | "{{3}}.*?"{{3}} | R"(\w*)\(.*?\)\1" | ^\s*\#[^\n]* | help={quoted}
    | (?P<text>{quoted}(?:\s*{quoted})* | '(?:[^'\\\n]|\\.)*' | `[^`]*`)""", re.S | re.M | re.X)
fails = re.compile(r"Failure\(|\b(?:Malformed|Fail|Refuse|Report)\(|\b(?:fault|throw|raise)\b")
two_words = re.compile(r"[a-z']+[,:;]? [a-z'(-]+\b|[^\x00-\xff]{3}")  # or Chinese
three_words = re.compile(r"[a-z']+[,:;]? [A-Za-z%@'(-]+[,:;]? [a-z'(-]+\b")


# The texts of a source, each with the code of its statement that stands before it.
def texts(source):
    begin, statement = 0, ""
    for token in tokens.finditer(source):
        statement = (statement + source[begin:token.start()]).split(";")[-1]
        begin = token.end()
        if token["text"]:
            pieces = re.findall(quoted, token["text"]) if token["text"][0] == '"' else [token["text"]]
            yield statement, re.sub(r'\\(["\\])', r"\1", "".join(piece[1:-1] for piece in pieces))


known, wanted = [], []
for file in sorted(file for pattern in sources for file in root.glob(pattern)):
    name = file.relative_to(root).as_posix()
    for statement, text in texts(file.read_text(encoding="utf-8")):
        known.append(text)
        for part in re.split(r"\\n|%[.\d]*[a-z]+|\$?\{[^}]*\}", text):
            told = two_words if fails.search(statement) else None if re.fullmatch(others, name) else three_words
            if told and told.search(part):
                wanted.append((name, part.strip()))

page = (root / "docs/messages.md").read_text(encoding="utf-8")
shown = [message for row in re.findall(r"^\| (.*?) \|", page, re.M) for message in re.findall(r"`([^`]+)`", row)]
all_known, all_shown = "\n".join(known), "\n".join(shown)
faults = [f"{name}: not in docs/messages.md: {part}" for name, part in wanted if part not in all_shown]
faults += [f"docs/messages.md: not in the code: {part} ({message})" for message in shown
           for part in re.split(r"…(?: [a-z]+s\b)?", message) if part.strip() not in all_known]
print(*faults, f"{len(wanted)} texts, {len(shown)} messages, {len(faults)} faults", sep="\n")
sys.exit(1 if faults or not wanted or not shown else 0)
