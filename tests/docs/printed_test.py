#!/usr/bin/env python3
"""Runs what README.md and docs/ print: printed_test.py PLACE FOLDER [WINE]

Commands stand in blocks of one of these kinds, and nowhere else.

A block fenced as "console PLACE" holds commands, each behind "$ ", and what they print; a line "..."
stands for any number of lines, and a command without such lines may print anything. A command ends
with 0 unless its output says "exit code N". PLACE is where the reader stands:
  checkout   in the project's folder; FOLDER stands for build/default
  installed  in a folder of the reader's own, FOLDER being the prefix
  zip        in FOLDER, where the zip was unpacked, at the prompt of WINE
A block fenced as "text FILE" is a file that an installed reader writes for the commands below it.
In a block "console PLACE reader" a reader and a card are needed: simulated ones stand in. Those of
"console zip sh" are package_test.sh's. A block fenced as "sh" has scripts of the project, which take long.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

place, folder, wine = sys.argv[1], pathlib.Path(sys.argv[2]).resolve(), sys.argv[3:]
root = pathlib.Path(__file__).resolve().parents[2]
failures = 0
count = 0


def matches(printed, expected):
    pattern = "".join(r"(?:.*\n)*" if line.strip() == "..." else re.escape(line) + r"\n" for line in expected)
    return re.fullmatch(pattern, printed) is not None


def run(page, command, expected, cwd, env):
    global failures, count
    count += 1
    code = 0
    if expected and (ends := re.fullmatch(r"exit code (\d+)", expected[-1])):
        code, expected = int(ends[1]), expected[:-1]
    if wine:
        command = [*wine, "cmd", "/c", command]
    ran = subprocess.run(command, shell=not wine, cwd=cwd, env=env, stdin=subprocess.DEVNULL, text=True,
                         encoding="utf-8", errors="replace", stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    printed = ran.stdout.replace("\r\n", "\n")
    if ran.returncode != code or (expected and not matches(printed, expected)):
        failures += 1
        print(f"{page}: {command}\nexit code {ran.returncode}\n{printed}", file=sys.stderr)


# Commands that stand where nothing runs them. One word and what it may be told, as in "orvane shell", is
# none, and what stands before a message, as in "orvane recorder: ...".
def strays(text):
    tools = (r"(?:orvane|build/[^\s`]+|\.\.?[/\\][^\s`]+|cmake|ctest|cc|gcc|[^\s`]+-gcc|python3|pkg-config|xargs|mkdir|cp|copy|rm|"
             r"sudo|apt)")
    fences = re.compile(r"^```([^\n]*)\n(.*?)^```$", re.M | re.S)
    for kind, block in fences.findall(text):
        if kind == "sh":
            yield from re.findall(r"^(?!script/).+", block, re.M)
        elif not re.fullmatch(r"console (?:checkout|(?:installed|zip)(?: reader)?|zip sh)|c|cpp|python|js|csharp|text(?: [\w.]+)?|yaml|cmake|orvane", kind):
            yield f"```{kind}"
    prose = fences.sub("", text)
    yield from re.findall(rf"^(?: {{4,}}|\t)(?:\$ )?{tools} .*", prose, re.M)
    yield from re.findall(rf"`{tools} [^ `:]+ [^`]+`", prose)


scratch = pathlib.Path(tempfile.mkdtemp())
if not wine:  # a shell takes a path apart at its blanks
    (scratch / "folder").symlink_to(folder)
    folder = scratch / "folder"
prefix = folder if place == "installed" else scratch / "prefix"
cwd = {"checkout": root, "installed": scratch, "zip": folder}[place]
env = dict(os.environ, NO_COLOR="1", LC_ALL="C.UTF-8", PKG_CONFIG_PATH=f"{prefix}/lib/pkgconfig",
           PATH=f"{prefix / 'bin'}:{os.environ['PATH']}")
for page in [root / "README.md", *sorted((root / "docs").glob("*.md"))]:
    text = page.read_text(encoding="utf-8")
    for stray in strays(text):
        failures += 1
        print(f"{page.name}: not in a block that is run: {stray}", file=sys.stderr)
    blocks = rf"^```(?:text ([\w.]+)|console {place}( reader)?)\n(.*?)^```$"
    for file, reader, block in re.findall(blocks, text, re.M | re.S):
        if file:
            (scratch / file).write_text(block, encoding="utf-8")
            continue
        for command, output in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", block, re.M):
            command = command.replace("build/default", str(folder)).replace("FOLDER", str(prefix))
            if reader:
                command = re.sub(r"^orvane \w+", r"\g<0> --simulate", command)
            run(page.name, command, output.split("\n")[:-1], cwd, env)
shutil.rmtree(scratch)
print(f"{count} commands, {failures} failed")
sys.exit(1 if failures or not count else 0)
