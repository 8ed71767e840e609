#!/usr/bin/env python3
"""Runs what README.md and docs/ print: printed_test.py PLACE FOLDER [WINE]

A block fenced as "console PLACE" holds commands, each behind "$ ", and what they print; a line "..."
stands for any number of lines, and a command without such lines may print anything. A command ends
with 0 unless its output says "exit code N". PLACE is where the reader stands:
  checkout   in the project's folder; FOLDER stands for build/default
  installed  in a folder of the reader's own, FOLDER being the prefix
  zip        in FOLDER, where the zip was unpacked; WINE runs programs
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
        program, *arguments = command.split()
        command = [*wine, folder / f"{program}.exe", *arguments]
    ran = subprocess.run(command, shell=not wine, cwd=cwd, env=env, stdin=subprocess.DEVNULL, text=True,
                         encoding="utf-8", errors="replace", stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    printed = ran.stdout.replace("\r\n", "\n")
    if ran.returncode != code or (expected and not matches(printed, expected)):
        failures += 1
        print(f"{page}: {command}\nexit code {ran.returncode}\n{printed}", file=sys.stderr)


scratch = pathlib.Path(tempfile.mkdtemp())
prefix = folder if place == "installed" else scratch / "prefix"
cwd = {"checkout": root, "installed": scratch, "zip": folder}[place]
env = dict(os.environ, NO_COLOR="1", PKG_CONFIG_PATH=f"{prefix}/lib/pkgconfig",
           PATH=f"{prefix / 'bin'}:{os.environ['PATH']}")
for page in [root / "README.md", *sorted((root / "docs").glob("*.md"))]:
    for block in re.findall(rf"^```console {place}\n(.*?)^```$", page.read_text(), re.M | re.S):
        for command, output in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", block, re.M):
            command = command.replace("build/default", str(folder)).replace("FOLDER", str(prefix))
            run(page.name, command, output.split("\n")[:-1], cwd, env)
shutil.rmtree(scratch)
print(f"{count} commands, {failures} failed")
sys.exit(1 if failures or not count else 0)
