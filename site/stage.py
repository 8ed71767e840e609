#!/usr/bin/env python3
"""Puts what the site is made of into a folder for Sphinx: stage.py FOLDER VERSION [OPTIONS]

The pages are those of docs/, with README.md as index.md; OPTIONS is a page of all options, as orvane_pages writes it.
Links between them lead where they lead in the sources; those to other files to copies of these.
"""
import os
import pathlib
import re
import shutil
import sys

import reference

root = pathlib.Path(__file__).resolve().parents[1]
folder, version, *options = sys.argv[1:]
folder = pathlib.Path(folder)
chapters = {
    "For card people": "first-hour cheat-sheet recipes program options messages cryptography simulated-card readers",
    "For embedders": "host calling functions limits language crypto-module",
    "For maintainers": "inside CONTRIBUTING",
    "Appendices": "windows packages editors/README CHANGELOG",
}
pages = [page.relative_to(root).as_posix() for pattern in ("*.md", "docs/*.md", "editors/*.md")
         for page in sorted(root.glob(pattern))]
languages = {".c": "C", ".cpp": "C++", ".py": "Python", ".js": "JavaScript", ".cs": "C#"}


def staged(file):
    """Where a file of the sources stands on the site."""
    return "index.md" if file == "README.md" else re.sub("^docs/(.*)", r"\1", file)


def read(name):
    return (root / name).read_text(encoding="utf-8")


def write(name, paragraphs, mode="w"):
    (folder / name).parent.mkdir(parents=True, exist_ok=True)
    with open(folder / name, mode, encoding="utf-8") as out:
        out.writelines(paragraph + "\n\n" for paragraph in paragraphs)


def contents(options, names):
    return ["```{toctree}\n:hidden:\n%s\n%s\n```" % (options, "\n".join(names))]


def stage(name):
    text = read(name)
    here = os.path.dirname(name)

    def link(match):
        words, target, anchor = match.groups(default="")
        file = os.path.normpath(os.path.join(here, target))
        if (root / file).is_dir():
            return words
        if not (root / file).is_file():
            return match[0]
        if file not in pages:
            (folder / staged(file)).parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(root / file, folder / staged(file))
        return f"[{words}]({staged(file)}{anchor})"

    # A link that is an item by itself: the program stands there itself.
    def program(match):
        words, target, suffix = match.groups()
        language = languages[suffix]
        code = read(os.path.join(here, target))
        return f"````{{tab}} {language}\n`{words}`\n```{language.lower()}\n{code}```\n````"

    text = re.sub(rf"^- \[(.*)\]\((\S*({'|'.join(map(re.escape, languages))}))\)$", program, text, flags=re.M)
    text = re.sub(r"\[([^]]*)\]\(([^)#:\s]+)(#[^)\s]*)?\)", link, text)
    if name.startswith("docs/"):
        text = re.sub(rf"(?<!\[)`({'|'.join(each.name for each in functions.functions)})`", r"[`\1`](functions/\1.md)", text)
    write(staged(name), [text])


functions = reference.Pages(read("include/orvane.h"), read("site/examples.c"))
shutil.rmtree(folder, ignore_errors=True)
folder.mkdir(parents=True)
for file in ("conf.py", "style.css", "marks.js"):
    shutil.copyfile(root / "site" / file, folder / file)
write("VERSION", [version])
for page in pages:
    stage(page)
for page in options:
    shutil.copyfile(page, folder / "options.md")

for function in functions.functions:
    write(f"functions/{function.name}.md", functions.page(function))
write("functions/orvane.md", functions.rules())
write("functions.md", functions.index(), "a")
write("functions.md", contents("", ["functions/orvane", *(f"functions/{each.name}" for each in functions.functions)]), "a")
for caption, names in chapters.items():
    names = [name for name in names.split() if (folder / f"{name}.md").exists()]
    write("index.md", contents(f":caption: {caption}\n", names), "a")
