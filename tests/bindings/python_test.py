"""The Python package does what the rows of cases.txt say. Run by pytest where the wheel is installed."""
import os
import pathlib
import re

import orvane
from orvane import Reader, ReaderKind, Response, Script, TagDictionary, TagEntry, TagTree

ROWS = pathlib.Path(__file__).parent / "cases.txt"


def expand(text):
    return re.sub(r"\{(?:(.+?)\*(\d+)|zero)\}", lambda m: m[1] * int(m[2]) if m[1] else "\0", text)


def join(*words):
    return " ".join(filter(None, words))


def yes_or_no(value):
    return "yes" if value else "no"


def statement(result):
    field = next(iter(vars(result).values()), "")
    return join(type(result).__name__, yes_or_no(field) if isinstance(field, bool) else field)


def answer(response):
    return join(response.data, response.status_word, "ok" if response.ok else "") if response else "none"


def meaning(entry):
    return join(entry.tag, entry.short_text, entry.long_text) if entry else "none"


class Operations:
    reader = None
    tree = TagTree()

    def open(self, kind, name):
        self.reader = Reader.open(ReaderKind(int(kind)), name)

    def open_port(self, kind, port):
        self.reader = Reader.open_port(ReaderKind(int(kind)), int(port))

    run = staticmethod(lambda text: statement(Script.run(text)))
    set = staticmethod(Script.set)
    get = staticmethod(Script.get)
    has = staticmethod(lambda name: yes_or_no(Script.has(name)))
    list = staticmethod(lambda kind, ports=0: ", ".join(
        join(each.name, str(each.port or "")) for each in Reader.list(ReaderKind(int(kind)), int(ports))))
    reset = lambda self, _: self.reader.reset()
    slot = lambda self, slot: self.reader.choose_slot(int(slot))
    send = lambda self, command: answer(self.reader.send(command))
    send_octets = lambda self, command: answer(self.reader.send(orvane.to_octets(command)))
    close = lambda self, _: self.reader.close()
    response = staticmethod(lambda kind, result, text: answer(Response.read(int(kind), int(result), text)))
    parse = tree.parse
    find = staticmethod(lambda tag: "none" if (value := Operations.tree.find(tag)) is None else value)
    dictionary = staticmethod(lambda _: ", ".join(each.tag for each in TagDictionary.list()) or "none")
    note = staticmethod(lambda *texts: yes_or_no(TagDictionary.add(TagEntry(*texts))))
    replace = staticmethod(lambda *texts: yes_or_no(TagDictionary.replace(TagEntry(*texts))))
    meaning = staticmethod(lambda tag: meaning(TagDictionary.find(tag)))
    remove = staticmethod(lambda tag: yes_or_no(TagDictionary.remove(tag)))
    flush = staticmethod(lambda _: TagDictionary.flush())
    to_octets = staticmethod(lambda text: orvane.to_hex(orvane.to_octets(text)))
    to_escapes = staticmethod(orvane.to_escapes)
    is_hex = staticmethod(lambda text: yes_or_no(orvane.is_hex(text)))
    is_decimal = staticmethod(lambda text: yes_or_no(orvane.is_decimal(text)))
    to_number = staticmethod(lambda text: str(orvane.to_number(text)))
    octets_to_number = staticmethod(lambda text: str(orvane.to_number(orvane.to_octets(text))))
    number_to_hex = staticmethod(lambda text: orvane.number_to_hex(int(text)))
    number_to_octets = staticmethod(lambda text: orvane.to_hex(orvane.number_to_octets(int(text))))
    url_encode = staticmethod(orvane.url_encode)
    url_decode = staticmethod(orvane.url_decode)
    time_of = staticmethod(lambda text: orvane.time_of(int(text)))
    time_of_text = staticmethod(lambda text, milliseconds="": orvane.time_of_text(text, bool(milliseconds)))

    def outcome(self, name, arguments):
        try:
            result = getattr(self, name)(*arguments)
            return "done" if result is None else result
        except orvane.ScriptError as error:
            return f"ScriptError {error.code}"
        except orvane.Error as error:
            return type(error).__name__


def test_rows(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    orvane.load_simulators()
    operations, wrong, count = Operations(), [], 0
    for row in ROWS.read_text(encoding="utf-8").splitlines():
        columns = row.split(" |")
        if len(columns) != 3 or row.startswith("#"):
            continue
        count += 1
        arguments = [expand(each[1:]) for each in columns[1].split(" ::")]
        outcome = operations.outcome(columns[0], arguments)
        if outcome != expand(columns[2][1:]):
            wrong.append(f"{row}\n  gives {outcome}")
    assert not wrong and count > 100, "\n".join(wrong)


def test_octets_that_are_no_utf8_are_not_lost():
    Script.run("%X = @HEX2ASC(41FF)")
    Script.set("%Y", Script.get("%X"))
    assert Script.run("@ASC2HEX(%Y)") == orvane.Value("41FF")


def test_fixture(card):
    assert card.send("00A40000021001").ok
