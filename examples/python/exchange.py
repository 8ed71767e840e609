"""A script host in Python: runs a script on the simulated card and prints what goes to and fro.

    python3 exchange.py ../exchange.orv [PREFIX]

PREFIX is where Orvane is installed, /usr if it is not told; on Windows the folder of orvane.dll.
"""
import ctypes
import pathlib
import sys

# The codes of RunScript, and the kind of PC/SC readers: enum StatementKind and others in orvane.h.
ASSIGNMENT, EXPRESSION, RESET, DOLLAR, STOP, COMPARE, NOTHING_TO_RUN = 0, 1, 4, 5, 6, 7, 100
PCSC = 3
NARROW = "mbcs" if sys.platform == "win32" else "utf-8"  # names of readers


class ReaderInfo(ctypes.Structure):
    _fields_ = [("kind", ctypes.c_int32), ("has_port", ctypes.c_int32), ("port", ctypes.c_int32),
                ("name", ctypes.c_char * 256), ("reserved", ctypes.c_int32)]


class TagdictData(ctypes.Structure):
    _fields_ = [("tag", ctypes.c_char * 20), ("short_text", ctypes.c_char * 200),
                ("long_text", ctypes.c_char * 1024)]


class Orvane:
    """The functions that a script host needs. Scripts are UTF-8, names of readers in the system's
    narrow character set; buffers have the room that orvane.h asks for."""

    def __init__(self, prefix):
        windows = sys.platform == "win32"
        library = prefix / ("orvane.dll" if windows else "lib/liborvane.so")
        simulator = prefix / ("simulators/winscard.dll" if windows
                              else "lib/orvane/simulators/libwinscard.so")
        self._orvane = ctypes.CDLL(str(library))
        for name, *parameters in (("RunScript", ctypes.c_char_p, ctypes.c_char_p),
                                  ("SetVarValue", ctypes.c_char_p, ctypes.c_char_p),
                                  ("OpenReaderA", ctypes.c_char_p, ctypes.c_int32),
                                  ("CloseReader",),
                                  ("Reset", ctypes.c_char_p),
                                  ("SendCommand", ctypes.c_char_p, ctypes.c_int32,
                                   ctypes.c_char_p),
                                  ("GetReaderList", ctypes.c_int32, ctypes.c_void_p,
                                   ctypes.c_int32, ctypes.c_int32),
                                  ("UpTagdictData", ctypes.c_void_p),
                                  ("FindTagdictData", ctypes.c_char_p, ctypes.c_void_p)):
            function = getattr(self._orvane, name)
            function.argtypes, function.restype = parameters, ctypes.c_int32
        # The library looks for the PC/SC module when a reader is opened, and takes what is loaded
        # under its name by then.
        self._simulator = ctypes.CDLL(str(simulator))

    def run(self, statement):
        """The statement's code and text."""
        text = ctypes.create_string_buffer(512)
        code = self._orvane.RunScript(statement.encode(), text)
        return code, text.value.decode(errors="replace")

    def set_variable(self, name, value):
        self._orvane.SetVarValue(name.encode(), value.encode())

    def open_reader(self, name, kind):
        if not self._orvane.OpenReaderA(name.encode(NARROW), kind):
            sys.exit(f"can't open {name}")

    def list_readers(self, kind):
        """The names. 32 records hold every list that asks for no ports and for at most 32."""
        records = (ReaderInfo * 32)()
        count = self._orvane.GetReaderList(kind, records, 0, len(records))
        return [record.name.decode(NARROW, "replace") for record in records[:count]]

    def note_tag(self, tag, meaning):
        """Edits the tag dictionary in memory, and gives what it holds then. FlushTagdict would write
        it to dictdata.bin in the current folder."""
        entry = TagdictData(tag.encode(), meaning.encode())
        if not (self._orvane.UpTagdictData(ctypes.byref(entry))
                and self._orvane.FindTagdictData(tag.encode(), ctypes.byref(entry))):
            sys.exit(f"can't note {tag}")
        return entry.tag.decode(), entry.short_text.decode()

    def close_reader(self):
        self._orvane.CloseReader()

    def reset(self):
        """The card's ATR."""
        atr = ctypes.create_string_buffer(1025)
        if not self._orvane.Reset(atr):
            sys.exit("no answer to reset")
        return atr.value.decode()

    def send(self, command):
        """The data and the status word of the card's answer. A PC/SC reader gives the data, or
        9000 where there is none. Without success it gives the first two octets of what came: the
        status word, unless data stood before it."""
        answer = ctypes.create_string_buffer(8193)
        done = self._orvane.SendCommand(command.encode(), len(command), answer)
        text = answer.value.decode()
        if not done and not text:
            sys.exit(f"no answer to {command}")
        if not done and text == "9000":
            sys.exit(f"no status word in the answer to {command}")
        if not done:
            return "", text
        return "" if text == "9000" else text, "9000"


def send(orvane, command):
    # Where a variable is not defined the text is a message: nothing of it may reach a card. A
    # script command that fails leaves the text shorter, which doesn't show here; for cards that
    # matter, try each on its own before, as the program orvane does.
    if len(command) < 8 or len(command) % 2 or not set(command) <= set("0123456789ABCDEF"):
        sys.exit(f"no command: {command}")
    print(">> ", command)
    data, status_word = orvane.send(command)
    print("<< ", *filter(None, (data, status_word)))
    orvane.set_variable("%RESP", data)
    orvane.set_variable("%SW", status_word)


def run(orvane, statement):
    """Runs one statement and does what it asks of its host. False at the end of the script."""
    code, text = orvane.run(statement)
    if code == DOLLAR:
        print(statement)
    elif code == RESET:
        atr = orvane.reset()
        print("ATR", atr)
        orvane.set_variable("%ATR", atr)
    elif code == EXPRESSION:
        send(orvane, text)
    elif code == COMPARE:
        if text != "1":
            sys.exit(f"not as expected: {statement}")
        print("ok ", statement)
    elif code not in (ASSIGNMENT, NOTHING_TO_RUN, STOP):
        sys.exit(f"can't run: {statement}")
    return code != STOP


def main(script, prefix="/usr"):
    orvane = Orvane(pathlib.Path(prefix).resolve())
    for name in orvane.list_readers(PCSC):
        print("reader", name)
    orvane.open_reader("Simulated Reader 0", PCSC)
    for line in pathlib.Path(script).read_text(encoding="utf-8-sig").splitlines():
        if not run(orvane, line):
            break
    orvane.close_reader()
    print("tag", *orvane.note_tag("5F20", "Cardholder Name"))


if len(sys.argv) not in (2, 3):
    sys.exit(__doc__)
main(*sys.argv[1:])
