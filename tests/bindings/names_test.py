"""The table of names in docs/bindings.md names what each binding has; Python and Node have the header's values."""
import pathlib
import re
import sys

root = pathlib.Path(__file__).resolve().parents[2]
sources = ["include/orvane.hpp", "bindings/python/src/orvane/*.py", "bindings/node/index.d.ts", "bindings/csharp/*.cs",
           "bindings/node/lib/*.js", "include/orvane.h"]
cpp, python, types, csharp, node, header = [
    "\n".join(path.read_text(encoding="utf-8") for path in sorted(root.glob(pattern))) for pattern in sources]

page = (root / "docs/bindings.md").read_text(encoding="utf-8")
table = re.search(r"\n\| \| C\+\+ \| Python .*?\n\n", page, re.S)[0]
rows = [row.split("|")[2:-1] for row in table.strip().splitlines()[2:]]
missing = {name for row in rows for text, column in zip((cpp, python, types, csharp), row)
           for name in re.findall(r"`'?([\w:.]+)'?`", column)
           if not re.search(rf"\b{re.split('[.:]+', name)[-1]}\b", text)}
missing -= {"std::variant", "with", "using", "examples", "type"}


def values(text, body):
    return {name.replace("_", "").upper(): value for name, value in re.findall(r"(\w+)(?: =|:) (-?\d+)", re.search(body, text, re.S)[1])}


for enum, prefix in (("ReaderKind", "ReaderKind"), ("StatementKind", "Kind"), ("ScriptCode", "Script")):
    expected = {name[len(prefix):]: value for name, value in values(header, rf"enum {enum} {{(.*?)}}").items()}
    for text, body in ((python, rf"class {enum}\(enum.IntEnum\):\n(.*?)\n\n"), (node, rf"{enum} = Object.freeze\({{(.*?)}}"),
                       (types, rf"{enum}: Readonly<{{(.*?)}}")):
        if values(text, body) != expected:
            missing.add(f"{enum} as in the header: {body}")
sys.exit(f"{len(rows)} rows; nobody has {missing}" if missing or len(rows) < 20 else 0)
