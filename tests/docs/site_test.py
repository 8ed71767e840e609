#!/usr/bin/env python3
"""The site and the functions' manual pages as they are installed: site_test.py PREFIX"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

root = pathlib.Path(__file__).resolve().parents[2]
prefix = pathlib.Path(sys.argv[1]).resolve()
site = prefix / "share/doc/orvane/html"
failures = []


def expect(condition, what):
    if not condition:
        failures.append(what)


# A page reads only files that stand beside it, which are there.
for page in site.rglob("*.html"):
    for address in re.findall(r'<(?:link|script|img|use)\b[^>]* (?:href|src)="([^"#]+)', page.read_text(encoding="utf-8")):
        expect((page.parent / address.split("?")[0]).is_file(), f"{page.name} reads {address}")
for style in site.rglob("*.css"):
    for address in re.findall(r"(?:url\(|@import )[\"']?((?!data:)[^\"')]+)", style.read_text(encoding="utf-8")):
        expect((style.parent / address).is_file(), f"{style.name} reads {address}")
expect("sendcommand" in (site / "searchindex.js").read_text(encoding="utf-8"), "the index of the search lacks a function")
expect("prefers-color-scheme: dark" in (site / "_static/styles/furo.css").read_text(encoding="utf-8"),
       "the pages stay light in a browser that asks for dark ones")

# Each function has a manual page, which names each parameter.
prototypes = re.findall(r"ORVANE_API [^;]*?(\w+)\(([^;]*)\);", (root / "include/orvane.h").read_text(encoding="utf-8"))
expect(len(prototypes) == 40, f"{len(prototypes)} functions")
for name, parameters in [*prototypes, ("orvane", "void")]:
    shown = subprocess.run(["man", "--warnings", "-l", prefix / f"share/man/man3/{name}.3"], text=True, capture_output=True,
                           env=dict(os.environ, LC_ALL="C.UTF-8", MANWIDTH="80"))
    expect(shown.returncode == 0 and not shown.stderr, f"man 3 {name}: {shown.stderr}")
    expect(re.search(rf"^NAME\n +{name} +- +\w", shown.stdout, re.M), f"man 3 {name} sums nothing up")
    for parameter in re.findall(r"(\w+)(?:,|$)", parameters.replace("void", "")):
        expect(re.search(rf"^ {{7}}{parameter}\b", shown.stdout, re.M), f"man 3 {name} lacks {parameter}")

# The examples of these pages print what stands beside them.
with tempfile.TemporaryDirectory() as folder:
    source = root / "site/examples.c"
    subprocess.run(["gcc", "-std=c99", "-pedantic", "-Wall", "-Wextra", "-Werror", "-o", "examples", source, f"-I{prefix}/include",
                    f"-L{prefix}/lib", "-lorvane"], cwd=folder, check=True)
    path = f"{prefix}/lib/orvane/simulators:{prefix}/lib"
    printed = subprocess.run(["./examples"], cwd=folder, env=dict(os.environ, LD_LIBRARY_PATH=path), text=True,
                             capture_output=True)
    expected = re.findall(r"printf\(.*\);? /\* (.*) \*/$", source.read_text(encoding="utf-8"), re.M)
    expect(printed.stdout.split("\n")[:-1] == expected, f"the examples print {printed.stdout}{printed.stderr}")

print("\n".join(failures), file=sys.stderr)
sys.exit(bool(failures))
