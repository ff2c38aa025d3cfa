# SPDX-License-Identifier: MIT
"""Sphinx makes the site with these settings; scripts/site starts it."""
import functools
import pathlib
import re
import subprocess

from docutils import nodes

HERE = pathlib.Path(__file__).resolve().parent
NORMALIZE = pathlib.Path("/usr/share/javascript/normalize.css/normalize.css")

project = "Ostrel"
author = "the authors of Ostrel"
release = version = (HERE.parent.parent / "VERSION").read_text(encoding="utf-8").strip()
html_title = f"Ostrel {version}"
html_theme = "furo"
html_copy_source = html_show_sourcelink = html_show_copyright = html_show_sphinx = False
html_permalinks_icon = "#"
# Excerpts in the list of what a search has found would be read over the network.
html_show_search_summary = False
html_use_index = False
html_static_path = [str(HERE / "static")]
html_css_files = ["site.css"]
html_math_renderer = "katex"

extensions = ["myst_parser", "sphinx_copybutton"]
exclude_patterns = []
myst_enable_extensions = ["dollarmath"]
myst_heading_anchors = 4
# Blocks without a language are shell lines, tables of results or sessions of Python.
highlight_language = "default"
copybutton_prompt_text = r"\$ |>>> |\.\.\. "
copybutton_prompt_is_regexp = True


@functools.cache
def formula(text, kind):
    done = subprocess.run(["node", HERE / "formula.cjs", kind], input=text, capture_output=True, text=True)
    if done.returncode != 0:
        raise SystemExit(f"{text}: {done.stderr}")
    return done.stdout


def visit_inline(translator, node):
    translator.body.append(formula(node.astext(), "inline"))
    raise nodes.SkipNode


def visit_block(translator, node):
    """Formulas that stand beside each other stand below each other where there is no room."""
    parts = "".join(f"<div>{formula(part, 'block')}</div>" for part in node.astext().split(r"\qquad"))
    translator.body.append(f'<div class="formula">{parts}</div>')
    raise nodes.SkipNode


def prepare(app, doctree):
    """Pictures are links to themselves, for screens on which they are small. The length of a cell says how narrow its
    column may be there."""
    for picture in doctree.findall(nodes.image):
        picture["width"] = "100%"
    for cell in doctree.findall(nodes.entry):
        length = len(cell.astext())
        cell["classes"].append("short" if length <= 18 else "middle" if length <= 90 else "long")


def add_formula_style(app, page, template, context, doctree):
    """Only pages with formulas load their style and their fonts."""
    if 'class="katex' in context.get("body", ""):
        app.add_css_file("katex/katex.min.css")


def complete_theme(app, exception):
    """Debian's build of the theme lacks the colours for readers whose system is dark, and refers to a style sheet and a
    script that only a server would find."""
    static = pathlib.Path(app.outdir) / "_static"
    styles, script = static / "styles/furo.css", static / "scripts/furo.js"
    text = re.sub("@import .*;", lambda _: NORMALIZE.read_text(encoding="utf-8"), styles.read_text(encoding="utf-8"), count=1)
    dark = re.search(r'  body\[data-theme="dark"\] \{\n(.*?)\}', text, re.S)[1]
    styles.write_text(text + "@media not print { @media (prefers-color-scheme: dark) {\n"
                      f'body:not([data-theme="light"]) {{\n{dark}}} }} }}\n', encoding="utf-8")
    spy, main = static / "scripts/gumshoe-patched.js", script.read_text(encoding="utf-8")
    script.write_text(spy.read_text(encoding="utf-8") + re.sub("^import .*\n", "", main), encoding="utf-8")
    spy.unlink()


def setup(app):
    app.connect("doctree-read", prepare)
    app.connect("build-finished", complete_theme)
    app.add_html_math_renderer("katex", (visit_inline, None), (visit_block, None))
    app.connect("html-page-context", add_formula_style)
