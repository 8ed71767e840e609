"""Sphinx's settings, for the folder that stage.py fills."""
import pathlib
import re

from pygments.lexer import RegexLexer
from pygments.token import Comment, Generic, Name, Number, String, Text


class OrvaneLexer(RegexLexer):
    """Card scripts, and behind an arrow what the library gives."""
    tokens = {"root": [(r"^\s*[;/][^→\n]*", Comment), ("→", Generic.Output), (r'"[^"\n]*"', String), (r"%\w+", Name.Variable),
                       (r"[@$]\w+", Name.Function), (r"\b[0-9A-Fa-f]+\b", Number), (r"\w+|.|\n", Text)]}


project = "Orvane"
author = project
version = release = (pathlib.Path(__file__).parent / "VERSION").read_text().strip()
today = release  # not the day of the build
smartquotes = False
extensions = ["myst_parser", "sphinx_copybutton", "sphinx_inline_tabs"]
nitpicky = True
# GitHub knows nothing of these.
myst_disable_syntax = ["myst_line_comment", "myst_block_break", "myst_target", "myst_role", "footnote_def", "footnote_ref"]
myst_heading_anchors = 4
myst_enable_extensions = ["deflist"]  # for the reference
suppress_warnings = ["myst.header"]
copybutton_prompt_text = r"\$ (?![A-Z][a-z ])"  # but for a script's headings: it is copied whole
copybutton_prompt_is_regexp = True

html_theme = "furo"
html_title = f"Orvane {version}"
html_static_path = ["style.css", "marks.js"]
html_css_files = ["style.css"]
html_js_files = ["marks.js"]
html_copy_source = False
html_show_sphinx = html_show_copyright = False
html_use_index = False


def summary(page):
    return page.read_text().split("\n")[3].rstrip(".").replace("\\", r"\e")


functions = sorted((pathlib.Path(__file__).parent / "functions").glob("*.md"))
man_pages = [(f"functions/{page.stem}", page.stem, summary(page), "", 3) for page in functions]
man_make_section_directory = True


def plain_scripts(app, page, template, context, doctree):
    """No modules, which browsers take from no disk, and none of the libraries of Sphinx 5 that these pages don't call."""
    context["script_files"] = [each for each in context["script_files"]
                               if not re.search("jquery|underscore|frameworks", str(each.filename))]
    for each in context["script_files"]:
        each.attributes.pop("type", None)


def bundle(app, exception):
    """Puts what Debian's furo imports or lacks in its place, and the licences beside it all."""
    if app.builder.name != "html":
        return
    static = pathlib.Path(app.outdir, "_static")
    script, style = static / "scripts/furo.js", static / "styles/furo.css"
    scrolling = script.with_name("gumshoe-patched.js").read_text()
    script.write_text(re.sub("^import .*", lambda match: scrolling, script.read_text()))
    rules = re.sub(r"@import url\((/javascript/.*?)\);", lambda match: pathlib.Path("/usr/share" + match[1]).read_text(),
                   style.read_text())
    if "prefers-color-scheme" not in rules:  # Debian 12 lacks the browser's own choice of dark
        dark = re.search(r'body\[data-theme="dark"\] (\{.*?\})', rules, re.S)[1]
        rules += '@media screen and (prefers-color-scheme: dark) { body:not([data-theme="light"]) %s }\n' % dark
    style.write_text(rules)
    (static / "licences").mkdir(exist_ok=True)
    for package in ("furo", "node-normalize.css", "python3-sphinx-copybutton", "python3-sphinx-inline-tabs", "sphinx-common"):
        licence = pathlib.Path("/usr/share/doc", package, "copyright")
        if licence.exists():
            (static / f"licences/{package}.txt").write_bytes(licence.read_bytes())


def setup(app):
    app.add_lexer("orvane", OrvaneLexer)
    app.connect("html-page-context", plain_scripts)
    app.connect("build-finished", bundle)
