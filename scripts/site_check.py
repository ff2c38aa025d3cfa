#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks a site that has been built: every link and every file that a page needs is there, with its anchor; nothing is
fetched from elsewhere; the index of the search has every page.

    site_check.py SITE
"""
import pathlib
import re
import sys
import urllib.parse

NEEDED = re.compile(r'<(?:img|script|link|iframe|source)\b[^>]*?\s(?:src|href)="([^"]*)"')
LINK = re.compile(r'<a\b[^>]*?\shref="([^"]*)"')
ANCHOR = re.compile(r'\sid="([^"]*)"')
OF_STYLE = re.compile(r'url\(["\']?(?!data:|#)([^"\')]+)|@import\s+["\']([^"\']+)')


def main():
    site = pathlib.Path(sys.argv[1]).resolve()
    pages = {page: page.read_text(encoding="utf-8") for page in site.rglob("*.html")
             if site / "calculator" not in page.parents}
    anchors = {page: set(ANCHOR.findall(text)) for page, text in pages.items()}
    complaints, links, elsewhere = [], 0, set()

    def look(page, link, needed):
        parts = urllib.parse.urlsplit(link)
        if parts.scheme or parts.netloc:
            elsewhere.add(link)
            if needed and parts.scheme != "data":
                complaints.append(f"{page.relative_to(site)} fetches {link}")
            return
        target = (page.parent / urllib.parse.unquote(parts.path)).resolve() if parts.path else page
        if not target.exists() or not target.is_relative_to(site) or parts.path.startswith("/"):
            complaints.append(f"{page.relative_to(site)}: there is no {link}")
        elif parts.fragment and target in anchors and urllib.parse.unquote(parts.fragment) not in anchors[target]:
            complaints.append(f"{page.relative_to(site)}: there is no place {link}")

    for page, text in pages.items():
        for pattern in NEEDED, LINK:
            for link in pattern.findall(text):
                links += 1
                look(page, link.replace("&amp;", "&"), pattern is NEEDED)
    for sheet in (site / "_static").rglob("*.css"):
        for names in OF_STYLE.findall(sheet.read_text(encoding="utf-8")):
            look(sheet, "".join(names), True)
    index = (site / "searchindex.js").read_text(encoding="utf-8")
    for page in pages:
        name = str(page.relative_to(site).with_suffix(""))
        if name not in ("search", "genindex") and f'"{name}"' not in index:
            complaints.append(f"the search does not know {name}")
    size = sum(file.stat().st_size for file in site.rglob("*") if file.is_file())
    print(*complaints[:40], f"{len(pages)} pages, {links} links within, {size / 1e6:.0f} MB",
          *(f"elsewhere: {link}" for link in sorted(elsewhere)), sep="\n")
    return 1 if complaints else 0


sys.exit(main())
