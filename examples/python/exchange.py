"""A script host in Python: runs a script on the simulated card and prints what goes to and fro."""
import pathlib
import sys

import orvane
from orvane import Assignment, Command, Comparison, Note, Nothing, ReaderKind, ResetRequest, Script, Stop


def run(reader, statement):
    """Runs one statement and does what it asks. False at the end of the script."""
    result = Script.run(statement)
    if isinstance(result, Note):
        print(statement)
    elif isinstance(result, ResetRequest):
        atr = reader.reset()
        print("ATR", atr)
        Script.set("%ATR", atr)
    elif isinstance(result, Command):
        print(">> ", result.hex)
        response = reader.send(result.hex)
        print("<< ", *filter(None, (response.data, response.status_word)))
        Script.set("%RESP", response.data)
        Script.set("%SW", response.status_word)
    elif isinstance(result, Comparison):
        if not result.met:
            raise orvane.Error(f"not as expected: {statement}")
        print("ok ", statement)
    elif not isinstance(result, (Nothing, Assignment, Stop)):
        # A value for nobody, or a reader or slot that this host lacks.
        raise orvane.Error(f"can't run {statement}")
    return not isinstance(result, Stop)


def main(script):
    orvane.load_simulators()  # without this line a real PC/SC reader is looked for
    for info in orvane.Reader.list(ReaderKind.PCSC):
        print("reader", info.name)
    with orvane.Reader.open(ReaderKind.PCSC, "Simulated Reader 0") as reader:
        for line in pathlib.Path(script).read_text(encoding="utf-8-sig").splitlines():
            if not run(reader, line):
                break


if len(sys.argv) != 2:
    sys.exit("usage: exchange.py SCRIPT")
try:
    main(sys.argv[1])
except (orvane.Error, OSError) as failure:
    sys.exit(str(failure))
