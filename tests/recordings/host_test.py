#!/usr/bin/env python3
"""A host in another language is recorded and replayed by what its environment says: host_test.py BUILD_FOLDER"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

build = pathlib.Path(sys.argv[1]).resolve()
HOST = f"""
import ctypes
orvane = ctypes.CDLL("{build}/liborvane.so")
text = ctypes.create_string_buffer(8193)
assert orvane.OpenReaderA(b"Simulated Reader 0", 3)
for command in (b"00A40000021001", b"0020008008241234FFFFFFFFFF", b"00B2010C00"):
    print(orvane.SendCommand(command, len(command), text), text.value.decode())
"""


def run(**environment):
    environment["LD_LIBRARY_PATH"] = f"{build}/recorder:{build}/simulators"
    ran = subprocess.run([sys.executable, "-c", HOST], env=dict(os.environ, **environment), text=True, capture_output=True)
    return ran.stdout, ran.stderr, ran.returncode


os.chdir(tempfile.mkdtemp())
plain = run()
assert plain[1:] == ("", 0) and os.listdir() == [], plain
assert run(ORVANE_RECORD="s") == plain
recorded = open("s").read()
assert re.search('"0020008008[*]{16}","sw":"9000","hidden":"data of VERIFY"', recorded), recorded
assert run(ORVANE_RECORD="t", ORVANE_RECORD_SECRETS="1") == plain
assert '"0020008008241234FFFFFFFFFF"' in open("t").read()
assert os.stat("t").st_mode & 0o77 == 0
assert run(ORVANE_CARD="s", ORVANE_RECORD="u") == plain
assert re.sub(r'"begun.*?,|,"at_us.*', "", open("u").read()) == re.sub(r'"begun.*?,|,"at_us.*', "", recorded)

open("other", "w").write(re.sub('.*"0020008008.*\n', "", recorded))
out, err, _ = run(ORVANE_CARD="other")
assert out.split("\n")[1] == "0 6F00" and out.split("\n")[2] == plain[0].split("\n")[2], out
assert err == ("orvane simulator: command 3 is not as recorded\n  sent      0020008008****************\n"
               "  recorded  00B2010C00  other:5\n"), err
for environment, trouble in (({"ORVANE_RECORD": "/"}, "orvane recorder: can't write the recording: "),
                             ({"ORVANE_CARD": "none"}, "orvane simulator: there is no card, as ORVANE_CARD is no recording: none: ")):
    out, err, code = run(**environment)
    assert "9000" not in out and err.startswith(trouble), (out, err)
