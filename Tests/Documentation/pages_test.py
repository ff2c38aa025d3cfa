#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The pages of the documentation: their links lead somewhere, and the front page has the figures of the other pages.

    pages_test.py SOURCE_FOLDER [TEST...]

Links to other sites are listed and not tried.
"""
import pathlib
import re
import sys
import tempfile
import unittest

ROOT = pathlib.Path(sys.argv[1]).resolve()
FENCE = re.compile(r"^```.*?^```$", re.M | re.S)
BLOCK = re.compile(r"^```(\w*)\n(.*?)^```$", re.M | re.S)
FILE = re.compile(r"(?:/\*|//|!|#) ([\w-]+\.\w+)\b")
CODE = re.compile(r"`[^`\n]*`")
LINK = re.compile(r"\]\(([^)\s]+)\)")
HEADING = re.compile(r"^#+ +(.+?) *$", re.M)


def pages(root):
    return [file for pattern in ("*.md", "Documentation/*.md", "Fluids/*.md") for file in sorted(root.glob(pattern))]


def text_of(file):
    return FENCE.sub("", file.read_text(encoding="utf-8"))


def anchors(file):
    """As viewers of Markdown make them from headings."""
    found = []
    for heading in HEADING.findall(text_of(file)):
        plain = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).replace("`", "")
        anchor = re.sub(r"[^\w\- ]", "", plain.lower()).replace(" ", "-")
        before = sum(1 for other in found if re.fullmatch(rf"{re.escape(anchor)}(-\d+)?", other))
        found.append(f"{anchor}-{before}" if before else anchor)
    return set(found)


def broken(root):
    """The links that lead nowhere, and those to other sites."""
    nowhere, elsewhere = [], []
    for page in pages(root):
        for link in LINK.findall(CODE.sub("", text_of(page))):
            if "://" in link:
                elsewhere.append(link)
                continue
            name, _, anchor = link.partition("#")
            target = (page.parent / name).resolve() if name else page
            if not target.is_relative_to(root) or not target.exists():
                nowhere.append(f"{page.relative_to(root)}: there is no {link}")
            elif anchor and anchor not in anchors(target):
                nowhere.append(f"{page.relative_to(root)}: there is no heading {link}")
    return nowhere, elsewhere


def not_run(page):
    """The first lines of the blocks of code that no test runs: each must be a file of a later command, or commands."""
    blocks = BLOCK.findall(page)
    unused = []
    for place, (language, text) in enumerate(blocks):
        later = "\n".join(text for kind, text in blocks[place + 1:] if kind in ("sh", "console", "cmake"))
        file = FILE.match(text)
        if language in ("sh", "console"):
            used = "$ " in text
        elif file:
            used = ("$ cmake" if file[1] == "CMakeLists.txt" else file[1]) in later
        else:
            used = language in ("text", "ts")  # what a program prints; the tests of the browser page run lines for it
        if not used:
            unused.append(text.split("\n", 1)[0])
    return unused


class Pages(unittest.TestCase):
    def test_links(self):
        nowhere, elsewhere = broken(ROOT)
        self.assertEqual(nowhere, [])
        self.assertGreater(len(pages(ROOT)), 15)
        print(*sorted(set(elsewhere)) or ["no links to other sites"], sep="\n")

    def test_every_block_of_code_is_run(self):
        unused = {page.name: not_run(page.read_text(encoding="utf-8")) for page in pages(ROOT)}
        self.assertEqual({name: lines for name, lines in unused.items() if lines}, {})
        self.assertEqual(not_run("```c\n/* a.c */\n```\n```console\n$ cc a.c\n```\n```c\n/* b.c */\n```\n```c\nint x;\n```\n"),
                         ["/* b.c */", "int x;"])

    def test_files_and_folders_in_code(self):
        """A path of the repository, such as `Tests/Vectors`, names something; the last part may be a beginning."""
        folders = "|".join(file.name for file in ROOT.iterdir() if file.is_dir() and file.name[0] not in ".b")
        paths = {(page.name, path) for page in pages(ROOT)
                 for path in re.findall(rf"(?<![\w/])((?:{folders})/[\w./-]*\w)", text_of(page))}
        self.assertGreater(len(paths), 50)
        self.assertEqual([f"{page}: {path}" for page, path in sorted(paths) if "NAME" not in path and
                          not (ROOT / path).exists() and not list(ROOT.glob(f"{path}*"))], [])

    def test_every_page_is_in_the_contents_of_the_site(self):
        contents = (ROOT / "Documentation/Site/contents.md").read_text(encoding="utf-8")
        missing = [str(page.relative_to(ROOT)) for page in pages(ROOT) if page != ROOT / "README.md"
                   and not re.search(rf"^{page.relative_to(ROOT).with_suffix('')}$", contents, re.M)]
        self.assertEqual(missing, [])

    def test_broken_links_are_found(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder).resolve()
            (root / "a.md").write_text("# A `b` c\n[x](#a-b-c) [y](b.md) `[no](no.md)`\n```\n# D\n```\n[z](#d) [u](../v)\n",
                                       encoding="utf-8")
            self.assertEqual(broken(root)[0], ["a.md: there is no b.md", "a.md: there is no heading #d",
                                               "a.md: there is no ../v"])

    def test_figures_of_the_front_page(self):
        """They are those of the summary of Accuracy.md, and of the costs in Evidence.md, with fewer digits."""
        front = (ROOT / "README.md").read_text(encoding="utf-8")

        def below(heading, page):
            lines = page.split(f"\n{heading}\n", 1)[1].lstrip("\n").splitlines()
            rows = [[cell.strip() for cell in line.strip("|").split("|")]
                    for line in lines[:next((i for i, line in enumerate(lines) if not line.startswith("|")), len(lines))]]
            return rows[0], {row[0]: row for row in rows[2:]}

        def row_under(first):
            lines = front.splitlines()
            return [float(cell) for cell in lines[lines.index(next(
                line for line in lines if line.startswith(f"| {first} |"))) + 2].strip("|").split("|")]

        accuracy = (ROOT / "Documentation/Accuracy.md").read_text(encoding="utf-8")
        head, saturation = below("Saturation, 0.6 to 0.99 Tc:", accuracy)
        vapor_head, vapor = below("Vapor, 0.75 to 0.96 Tc and 0.01 to 0.97 of the saturation pressure:", accuracy)
        pr, vapor_pr = head.index("pr"), vapor_head.index("pr")
        exact = [saturation["Saturation pressure"][pr], vapor["Density at given t, p"][vapor_pr],
                 vapor["Speed of sound"][vapor_pr], saturation["Enthalpy of vaporisation"][pr],
                 saturation["Density of the saturated liquid"][head.index("pr translated")]]
        for shown, figure in zip(row_under("vapor pressure"), exact, strict=True):
            self.assertAlmostEqual(shown, float(figure), delta=0.051)

        evidence = (ROOT / "Documentation/Evidence.md").read_text(encoding="utf-8")
        rows = {row[0]: row for row in ([cell.strip() for cell in line.strip("|").split("|")]
                                        for line in evidence.splitlines() if line.startswith("|"))}
        fast = ['"tv" → p', '"pt" → d', '"ph" → t', '"hs" → p, t', "saturation at t → p, both d"]
        for shown, row in zip(row_under("pressure from t and v"), fast, strict=True):
            self.assertAlmostEqual(shown, float(rows[row][3]), delta=0.51, msg=row)


unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
