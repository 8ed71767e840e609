"""The tables of names in docs/packages.md name what each binding has; Python and Node have the header's values."""
import pathlib
import re
import sys

root = pathlib.Path(__file__).resolve().parents[2]
sources = ["include/orvane.hpp", "bindings/python/src/orvane/*.py", "bindings/node/index.d.ts", "bindings/csharp/*.cs",
           "bindings/node/lib/*.js", "include/orvane.h"]
cpp, python, types, csharp, node, header = [
    "\n".join(path.read_text(encoding="utf-8") for path in sorted(root.glob(pattern))) for pattern in sources]

page = (root / "docs/packages.md").read_text(encoding="utf-8")
shared, others = [re.search(rf"\n\| {head} \|.*?\n\n", page, re.S)[0] for head in ("For", "Other names")]
missing = set()


def look(name, text):
    if not re.search(rf"\b{name}\b", text):
        missing.add(name)


names = re.findall(r"`(\w+)`(:?)", shared)
for name, is_type in names:
    look(name, cpp), look(name, csharp)
    look(name if is_type else re.sub(r"\B([A-Z])", r"_\1", name).lower(), python)
    look(name if is_type else name[0].lower() + name[1:], types)
for row in others.strip().splitlines()[2:]:
    for text, column in zip((cpp, python, types, csharp), row.split("|")[2:-1]):
        for name in re.findall(r"`([\w.]+)`", column):
            look(name.split(".")[-1], text)


def values(text, body):
    return {name.replace("_", "").upper(): value for name, value in re.findall(r"(\w+)(?: =|:) (-?\d+)", re.search(body, text, re.S)[1])}


for enum, prefix in (("ReaderKind", "ReaderKind"), ("StatementKind", "Kind"), ("ScriptCode", "Script")):
    expected = {name[len(prefix):]: value for name, value in values(header, rf"enum {enum} {{(.*?)}}").items()}
    for text, body in ((python, rf"class {enum}\(enum.IntEnum\):\n(.*?)\n\n"), (node, rf"{enum} = Object.freeze\({{(.*?)}}"),
                       (types, rf"{enum}: Readonly<{{(.*?)}}")):
        if values(text, body) != expected:
            missing.add(f"{enum} as in the header: {body}")
sys.exit(f"{len(names)} names; nobody has {missing}" if missing or len(names) < 40 else 0)
