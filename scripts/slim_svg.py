# SPDX-License-Identifier: MIT
"""Makes pictures small: slim() those that Matplotlib wrote, slim_cairo() those of the command. In the first, coordinates
are rounded to a tenth of a point, each style is written once as a class, and groups, names and metadata to which nothing
refers are left out.

    slim_svg.py FILE      prints the small picture of one that Matplotlib wrote
"""
import itertools
import pathlib
import re
import sys
from xml.etree import ElementTree

SVG = "http://www.w3.org/2000/svg"
HREF = "{http://www.w3.org/1999/xlink}href"
NUMBER = re.compile(r"-?\d+\.\d+")


def rounded(text):
    return NUMBER.sub(lambda number: f"{float(number[0]):.1f}".removesuffix(".0"), text)


def path(text):
    """Path data. A line has its first point and then the steps, in tenths of a point, without letters."""
    if re.search("[^MLz0-9. \\n-]|M.*M", text, re.S):
        return re.sub(r"\s*([A-Za-z])\s*", r"\1", rounded(text)).strip()
    tenths = [round(10 * float(number)) for number in re.findall(r"[-0-9.]+", text)]
    steps = tenths[:2] + [after - before for before, after in zip(tenths, tenths[2:])]
    written = " ".join(re.sub(r"^(-?)0\.", r"\1.", f"{step / 10:g}") for step in steps)
    return f"m{written.replace(' -', '-')}{'z' if 'z' in text else ''}"


def style_of(element):
    """Its properties, which it loses."""
    return dict(re.findall(r"([\w-]+): *([^;]+)", element.attrib.pop("style", "")))


def drawn(element, definitions):
    """The elements that draw something, in their order. `definitions` receives those to which others refer."""
    for child in element:
        name = child.tag.removeprefix(f"{{{SVG}}}")
        if name == "defs":
            definitions += [entry for entry in child if not entry.tag.endswith("style")]
        elif name == "g" and not child.attrib.keys() - {"id"}:
            yield from drawn(child, definitions)
        elif name != "metadata":
            yield child


def slim(text):
    """The small picture of a picture's text."""
    old = ElementTree.fromstring(text)
    definitions = []
    elements = list(drawn(old, definitions))
    names = {entry.attrib.pop("id"): f"d{number}" for number, entry in enumerate(definitions)}
    referred = dict(zip(names, map(style_of, definitions)))
    classes, families = {}, {}

    def tidy(element, style):
        element.attrib.pop("id", None)
        for key, value in element.items():
            element.set(key, path(value) if key == "d" else rounded(value))
        if element.get("transform", "").startswith("rotate(-0 "):
            del element.attrib["transform"]
        if HREF in element.attrib:
            name = element.attrib.pop(HREF)[1:]
            element.set("href", f"#{names[name]}")
            style = dict(style.items() - referred[name].items())
        if "font" in style:  # all texts have the same family
            weight, size, family = re.fullmatch(r"(?:(\w+) )?([\d.]+px) (.*)", style.pop("font")).groups()
            families.setdefault(family)
            style |= {"font-size": size} | ({"font-weight": weight} if weight else {})
        if style:
            text = ";".join(f"{key}:{value}" for key, value in sorted(style.items()))
            element.set("class", classes.setdefault(text, f"c{len(classes)}"))

    for name, entry in zip(names, definitions):
        tidy(entry, referred[name])
        entry.set("id", names[name])
        for child in entry:
            tidy(child, style_of(child))
    for element in elements:
        for part in element.iter():
            tidy(part, style_of(part))

    new = ElementTree.Element(old.tag, {key: old.get(key) for key in ("width", "height", "viewBox")})
    style = ElementTree.SubElement(new, f"{{{SVG}}}style")
    style.text = "".join(entry.text for entry in old.iter(style.tag))
    style.text += "".join(f"\ntext{{font-family:{family}}}" for family in families)
    style.text += "".join(f"\n.{name}{{{text}}}" for text, name in classes.items())
    ElementTree.SubElement(new, f"{{{SVG}}}defs").extend(definitions)
    for clip, group in itertools.groupby(elements, lambda element: element.attrib.pop("clip-path", "")):
        place = new
        if clip:
            name = clip.removeprefix("url(#").removesuffix(")")
            place = ElementTree.SubElement(new, f"{{{SVG}}}g", {"clip-path": f"url(#{names[name]})"})
        place.extend(group)
    for element in new.iter():
        element.tail = "\n"
        if len(element):
            element.text = "\n"
    ElementTree.register_namespace("", SVG)
    return ElementTree.tostring(new, encoding="unicode").replace(" />", "/>")


def relative(data, decimals):
    """Path data of M, L, C and Z with the steps between its points, which are rounded to some decimals."""
    unit = 10**decimals
    x = y = start_x = start_y = 0
    written = ""
    for letter, text in re.findall("([MLCZ])([^MLCZ]*)", data):
        if letter == "Z":
            x, y = start_x, start_y
            written += "z"
            continue
        numbers = [round(unit * float(number)) for number in text.split()]
        steps = [number - (x, y)[i % 2] for i, number in enumerate(numbers)]
        x, y = numbers[-2:]
        if letter == "M":
            start_x, start_y = x, y
        places = " ".join(re.sub(r"^(-?)0\.", r"\1.", f"{step / unit:.{decimals}f}".rstrip("0").rstrip(".")) or "0"
                          for step in steps)
        written += letter.lower() + places.replace(" -", "-")
    return re.sub("m[^a-z]*$", "", written)  # a move at the end draws nothing


def slim_cairo(picture):
    """A small picture of a picture that Cairo wrote: the paths of lines have one decimal, those of letters two, a style
    is a class, and letters that are not drawn are left out."""
    def shorter(text, decimals):
        text = re.sub(r'\bd="([^"]*)"', lambda path: f'd="{relative(path[1], decimals)}"', text)
        text = re.sub(r' ([xy])="(-?[\d.]+)"', lambda place: f' {place[1]}="{round(float(place[2]), 1):g}"', text)
        return re.sub(r"(\d+\.\d+)%", lambda share: f"{float(share[1]):.1f}%".replace(".0%", "%"), text)

    letters, end, rest = picture.partition("</defs>")
    drawn = set(re.findall(r'xlink:href="#(glyph[\d-]+)"', rest))
    letters = re.sub(r'<symbol[^>]*id="([^"]*)">.*?</symbol>\n',
                     lambda letter: letter[0] if letter[1] in drawn else "", letters, flags=re.S)
    picture = shorter(letters, 2) + end + shorter(rest, 1)
    classes = {}
    picture = re.sub(r'style="([^"]*)"', lambda style: f'class="{classes.setdefault(style[1], f"c{len(classes)}")}"',
                     picture)
    rules = "".join(f".{name}{{{style.strip()}}}" for style, name in classes.items())
    picture = re.sub(r"(<svg[^>]*>)", lambda start: f"{start[1]}<style>{rules}</style>", picture, count=1)
    return re.sub(r"^ +", "", picture, flags=re.M).replace("glyph", "g")


if __name__ == "__main__":
    print(slim(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8")))
