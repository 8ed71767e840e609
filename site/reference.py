"""The function reference, a page a call, from the comments of orvane.h.

A function's comment begins with a sentence that sums it up. Behind it stand, between blank lines, its parameters, set in
by two blanks, and paragraphs; those that begin with "Result:" or "Errors:" get a heading. What stands behind
"/* ---- TITLE" holds for all functions up to the next title.
"""
import re
import textwrap
from collections import defaultdict, namedtuple

Function = namedtuple("Function", "name prototype summary parameters parts section")
Type = namedtuple("Type", "name text members section")


def plain(comment):
    return re.sub(r"^ ?\* ?", "", comment, flags=re.M).strip("\n ")


def one_line(text):
    return " ".join(text.split())


def parse_function(text, prototype, section):
    summary, *paragraphs = text.split("\n\n")
    parameters, parts = {}, defaultdict(list)
    for paragraph in paragraphs:
        if paragraph.startswith("  "):
            for item in re.split(r"\n(?=  \w)", paragraph):
                name, meaning = item.split(None, 1)
                parameters[name] = one_line(meaning)
        else:
            part, rest = re.fullmatch(r"(?:(Result|Errors): )?(.*)", paragraph, re.S).groups()
            parts[part].append(rest[0].upper() + rest[1:])
    name = re.search(r"(\w+)\(", prototype)[1]
    return Function(name, one_line(prototype) + ";", one_line(summary), parameters, parts, section)


def parse(header):
    """Its functions and types, the texts of its sections by title, and the text at its head."""
    functions, types, sections, title = [], [], {}, None
    head, *comments = re.findall(
        r"/\*((?:(?!\*/).)*)\*/(?:\nORVANE_API ([^;]*);|\n(?:typedef struct|enum) (\w+) \{\n(.*?)\n\})?", header, re.S)
    for comment, prototype, name, body in comments:
        text = plain(comment)
        if begin := re.match(r"---- (.*?) -+\n", text):
            title = begin[1]
            sections[title] = text[begin.end():].strip("\n")
        elif prototype:
            functions.append(parse_function(text, prototype, title))
        elif name:
            members = re.findall(r"^  (\w[^\n]*?)[,;]?(?: +/\*(.*?)\*/)?$", body, re.M | re.S)
            types.append(Type(name, text, [(member, one_line(note)) for member, note in members], title))
    return functions, types, sections, plain(head[0])


class Pages:
    def __init__(self, header, examples):
        self.functions, self.types, self.sections, self.head = parse(header)
        self.examples = dict(re.findall(r"^static void (\w+)_example\(void\) \{\n(.*?)^\}$", examples, re.M | re.S))
        names = "|".join(function.name for function in self.functions)
        words = "|".join([each.name for each in self.types] + re.findall(r"\b(?:Kind|Script|ReaderKind)[A-Z]\w*", header))
        self.pattern = re.compile(rf"""(`[^`]*`)|(\w+\("[^)]*\)|@\w+(?:\([^)]*\))?|%[A-Z]+\b|\b(?:{words}|[a-z]+[A-Z]\w*)\b(?!\.\w))"""
                                  rf"""|\b({names})\b|[\\*<\[]""")

    def marked(self, text):
        def mark(match):
            quoted, word, function = match.groups()
            return quoted or (f"`{word}`" if word else f"[`{function}`]({function}.md)" if function else "\\" + match[0])
        return self.pattern.sub(mark, text)

    def paragraphs(self, text):
        return "\n\n".join(f"```text\n{textwrap.dedent(paragraph)}\n```" if paragraph.startswith("  ") else self.marked(paragraph)
                           for paragraph in text.split("\n\n"))

    def items(self, items):
        return "\n\n".join(f"`{term}`" + (f"\n: {self.marked(meaning)}" if meaning else "") for term, meaning in items)

    def summary(self, text):
        """On a manual page it stands beside the name already."""
        return f"```{{only}} html\n{text}\n```"

    def type(self, each, heading):
        return [f"{heading} {each.name}", self.paragraphs(each.text), self.items(each.members)]

    def page(self, function):
        neighbours = [each.name for each in self.functions if each.section == function.section and each != function]
        text = "\n".join([function.prototype, *function.parameters.values(), *(sum(function.parts.values(), []))])
        lines = [f"# {function.name}", self.summary(function.summary), "## Synopsis",
                 f"```c\n#include <orvane.h>\n\n{function.prototype}\n```"]
        if function.parameters:
            lines += ["## Parameters", self.items(function.parameters.items())]
        for part in ("Result", "Errors", None):
            if part in function.parts:
                lines += [f"## {part or 'Notes'}", *map(self.marked, function.parts[part])]
        if function.name in self.examples:
            lines += ["## Example", f"```c\n{textwrap.dedent(self.examples[function.name])}```"]
        for each in self.types:
            words = [each.name, *(member.split(" = ")[0] for member, _ in each.members)]
            if re.search(rf"\b(?:{'|'.join(map(re.escape, words))})\b", text):
                lines += self.type(each, "##")
        lines += [f"## About {function.section[0].lower() + function.section[1:]}", self.paragraphs(self.sections[function.section]),
                  "## See also", ", ".join(f"[{name}(3)]({name}.md)" for name in [*neighbours, "orvane"])]
        return lines

    def rules(self):
        about, *head = self.head.split("\n\n")
        lines = ["# Rules for all functions", self.summary("Runs card scripts and drives smart-card readers."), "## Synopsis",
                 "```c\n#include <orvane.h>\n```", "## Description", self.marked("\n\n".join(head))]
        for title, text in self.sections.items():
            lines += [f"## {title}", self.paragraphs(text),
                      ", ".join(f"[{each.name}(3)]({each.name}.md)" for each in self.functions if each.section == title)]
            for each in self.types:
                if each.section == title:
                    lines += self.type(each, "###")
        return lines

    def index(self):
        lines = ["[Rules for all functions](functions/orvane.md), and the types"]
        for title in self.sections:
            lines += [f"## {title}", "| | |\n|---|---|\n" + "\n".join(
                f"| [`{each.name}`](functions/{each.name}.md) | {each.summary} |"
                for each in self.functions if each.section == title)]
        return lines
