"""Walks the lists of docs/inside.md that begin with "Adding": a step names the files that mention the list's example,
found by the line that the page shows; all of them but pages and examples are named by a step."""
import pathlib
import re
import shutil
import subprocess
import sys

root = pathlib.Path(__file__).resolve().parents[2]
if not (root / ".git").exists() or not shutil.which("git"):
    print("skipped: no sources that git knows")
    sys.exit(77)
page = (root / "docs/inside.md").read_text(encoding="utf-8")
sections = re.findall(r"^## (Adding .*)\n((?:(?!## ).*\n)*)", page, re.M)
faults = [] if len(sections) == 4 else ["there are not four lists"]
for title, text in sections:
    search = re.search(r"`git grep (-\w+) '?(.*?)'?`", text)
    found = set(subprocess.run(["git", "grep", "--untracked", search[1], "-e", search[2]], cwd=root,
                               stdout=subprocess.PIPE, text=True, check=True).stdout.split())
    named = set()
    for step in re.findall(r"^\d+\. (.*(?:\n   .*)*)", text, re.M):
        files = re.findall(r"`((?:[\w.-]+/)+[\w-]+\.[\w.-]+)`", step)
        faults += [] if files else [f"{title}: a step names no file: {step}"]
        named |= set(files)
    sources = {file for file in found if not re.match(r"(docs|examples|fuzz/corpus)/|\w+\.md", file)}
    faults += [f"{title}: {file} is named without need" for file in named - found]
    faults += [f"{title}: no step names {file}" for file in sources - named]
sys.exit("\n".join(faults) or 0)
