"""The table of names in docs/bindings.md names what each binding has."""
import pathlib
import re
import sys

root = pathlib.Path(__file__).resolve().parents[2]
sources = ["include/orvane.hpp", "bindings/python/src/orvane/*.py", "bindings/node/index.d.ts", "bindings/csharp/*.cs"]
texts = ["\n".join(path.read_text(encoding="utf-8") for path in root.glob(pattern)) for pattern in sources]
table = re.search(r"\n\| \| C\+\+ \| Python .*?\n\n", (root / "docs/bindings.md").read_text(encoding="utf-8"), re.S)[0]
rows = [row.split("|")[2:-1] for row in table.strip().splitlines()[2:]]
missing = {name for row in rows for text, column in zip(texts, row) for name in re.findall(r"`'?([\w:.]+)'?`", column)
           if not re.search(rf"\b{re.split('[.:]+', name)[-1]}\b", text)}
missing -= {"std::variant", "with", "using", "examples", "type"}
sys.exit(f"{len(rows)} rows; nobody has {missing}" if missing or len(rows) < 20 else 0)
