"""Native.cs declares the functions and values of orvane.h: csharp_declarations.py HEADER SOURCE"""
import re
import sys

NUMBERS = {"int32_t": "int", "uint32_t": "uint"}


def kinds(parameters, number):
    """What each parameter is: a kind of number, or a pointer."""
    return [number(each.split()) for each in parameters.split(",") if each.strip() not in ("", "void")]


def in_c(words):
    return "pointer" if "*" in "".join(words) else NUMBERS[words[0]]


def in_csharp(words):
    return {"int": "int", "uint": "uint", "ReaderKind": "int"}.get(words[0], "pointer")


header, source = (open(path, encoding="utf-8").read() for path in sys.argv[1:])
source = re.sub(r"\[MarshalAs\([^)]*\)\] ", "", source)
declared = {name: (result, kinds(parameters, in_c))
            for result, name, parameters in re.findall(
                r"ORVANE_API (\w+\s?\*?) ?(\w+)\(([^)]*)\);", header)}
offered = {name: (result, kinds(parameters, in_csharp))
           for result, name, parameters in re.findall(
               r"CallingConvention = C\)\]\s+internal static extern (\w+) (\w+)\(([^)]*)\);", source)}
results = {"int32_t": "int", "void": "void", "TagParser*": "IntPtr"}
declared = {name: (results[result.replace(" ", "")], parameters)
            for name, (result, parameters) in declared.items()}
for name in sorted(declared.keys() | offered.keys()):
    if declared.get(name) != offered.get(name):
        print(f"{name}: {declared.get(name)} in C, {offered.get(name)} in C#")
if declared != offered or len(declared) != 40:
    sys.exit(f"{len(declared)} functions in C, {len(offered)} in C#")

PREFIXES = {"StatementKind": "Kind", "ScriptCode": "Script", "ReaderKind": "ReaderKind"}
values, same = [sorted((name, prefix + member, int(value))
                       for name, body in re.findall(r"enum (\w+)\s*{([^}]*)}", text)
                       for prefix in [PREFIXES[name] if text is source else ""]
                       for member, value in re.findall(r"^\s*(\w+) = (-?\d+)", body, re.M))
                for text in (header, source)]
if values != same or len(values) < 20:
    sys.exit(f"values in C and in C# alone: {set(values) ^ set(same)}")
