# SPDX-License-Identifier: MIT
"""Draws the pictures of Accuracy.md: a small panel for each model, with its own scale, and a line for each fluid."""
import io

import matplotlib

matplotlib.use("svg")
from matplotlib import lines, pyplot, ticker  # noqa: E402

from accuracy.facts import COLUMN_NAMES, FLUIDS, MODELS, columns  # noqa: E402
from accuracy.pages import BAND, HOPELESS, sections  # noqa: E402
from slim_svg import slim  # noqa: E402

matplotlib.rcParams.update({"svg.fonttype": "none", "font.size": 7, "axes.linewidth": 0.5, "xtick.major.width": 0.5,
                            "ytick.major.width": 0.5, "xtick.major.size": 2.5, "ytick.major.size": 2.5,
                            "font.sans-serif": ["DejaVu Sans", "Verdana", "Arial"]})
# Colors that the color-blind can tell apart (M. Okabe, K. Ito). The other fluids are grey and mostly near one of these.
COLORS = {"argon": "#56b4e9", "propane": "#009e73", "co2": "#000000", "r134a": "#cc79a7", "toluene": "#e69f00",
          "mdm": "#d55e00", "water": "#0072b2"}
OTHERS = "#c4c4c4"
LINE = 7.2  # points between two labels


def curve(comparison, keys, fluid, model):
    """(T/Tc, deviation) of the states of the highest pressure at each temperature, in the order of the temperatures."""
    highest = {}
    for key in keys:
        for point in comparison.asked(key, fluid, model):
            if point.Tr not in highest or point.pr > highest[point.Tr].pr:
                highest[point.Tr] = point
    return [(Tr, point.deviation) for Tr, point in sorted(highest.items()) if point.deviation is not None]


def limits(curves):
    """The range of all lines and of zero, with some room. A line that goes far beyond all others is cut."""
    furthest = [sorted([0, 0, *(max(sign * value for _, value in points) for points in curves)]) for sign in (-1, 1)]
    span = sum(values[-2] for values in furthest)
    below, above = (min(values[-1], values[-2] + max(span, 0.1 * values[-1])) for values in furthest)
    room = 0.05 * (below + above)
    return -below - room, above + room


def end_of(points, bottom, top):
    """The last place (x, y) of a line that is within the limits."""
    for (x1, y1), (x2, y2) in zip(points[::-1], points[-2::-1]):
        if bottom <= y1 <= top:
            return x1, y1
        edge = top if y1 > top else bottom
        if min(y1, y2) <= edge <= max(y1, y2):
            return x1 + (x2 - x1) * (edge - y1) / (y2 - y1), edge
    return points[-1]


def spread(heights, lowest, highest):
    """Heights that are at least one line apart, near the given ones and within the limits, in the same order."""
    groups = []  # the members, from the lowest to the highest, and the height of the lowest
    for place in sorted(range(len(heights)), key=heights.__getitem__):
        groups.append(([place], 0))
        while True:
            members = groups.pop()[0]
            foot = sum(heights[member] - i * LINE for i, member in enumerate(members)) / len(members)
            foot = max(min(foot, highest - (len(members) - 1) * LINE), lowest)
            if groups and groups[-1][1] + len(groups[-1][0]) * LINE > foot:
                groups[-1] = groups[-1][0] + members, 0
            else:
                groups.append((members, foot))
                break
    return {member: foot + i * LINE for members, foot in groups for i, member in enumerate(members)}


def clusters(ends):
    """Lists of the fluids whose lines end at nearly the same T/Tc."""
    result = []
    for fluid in sorted(ends, key=lambda fluid: ends[fluid][0]):
        if result and ends[fluid][0] - ends[result[-1][-1]][0] < 0.055:
            result[-1].append(fluid)
        else:
            result.append([fluid])
    return result


def label(axis, curves, left):
    """Names at the left or right ends of the lines, moved apart where they would overlap; thin lines lead to them."""
    figure = axis.figure
    in_points = matplotlib.transforms.Affine2D().scale(1 / 72) + figure.dpi_scale_trans
    to_points = axis.transData + in_points.inverted()
    lowest, highest = in_points.inverted().transform(axis.get_window_extent())[:, 1] + (3, -3)
    ends = {fluid: end_of(line[::-1] if left else line, *axis.get_ylim()) for fluid, line in curves.items()}
    for fluids in clusters(ends):
        starts = [to_points.transform(ends[fluid]) for fluid in fluids]
        gap = 8 if len(fluids) > 1 else 4
        x = min(x for x, _ in starts) - gap if left else max(x for x, _ in starts) + gap
        heights = spread([y for _, y in starts], lowest, highest)
        crossed = any(line[0][0] < ends[fluids[0]][0] < line[-1][0] for line in curves.values())
        for i, (fluid, start) in enumerate(zip(fluids, starts)):
            figure.add_artist(lines.Line2D((start[0], x), (start[1], heights[i]), color=COLORS[fluid], linewidth=0.4,
                                           transform=in_points))
            figure.text(x + (-1 if left else 1), heights[i], fluid, transform=in_points, va="center_baseline",
                        ha="right" if left else "left", color=COLORS[fluid], fontsize=6.5,
                        bbox={"color": "#ffffffb0", "linewidth": 0, "pad": 0.2} if crossed else None)


def panel(axis, curves, saturation):
    """The lines {fluid: points} of a model."""
    axis.set_xlim(*((0.44, 1) if saturation else (0.73, 2.2)))
    axis.set_xticks((0.6, 0.7, 0.8, 0.9, 1) if saturation else (0.8, 1, 1.2, 1.4, 1.6, 1.8))
    bottom, top = limits(curves.values())
    axis.set_ylim(bottom, top)
    axis.axhspan(max(-BAND, bottom), min(BAND, top), color="#ececec", linewidth=0, clip_on=False)
    axis.axhline(0, color="#909090", linewidth=0.4, clip_on=False)
    for fluid in sorted(curves, key=list(COLORS).__contains__):
        axis.plot(*zip(*curves[fluid]), color=COLORS.get(fluid, OTHERS), linewidth=1.1 if fluid in COLORS else 0.8,
                  clip_on=any(not bottom <= y <= top for _, y in curves[fluid]))
    axis.patch.set_visible(False)
    axis.yaxis.set_major_locator(ticker.MaxNLocator(4, steps=[1, 2, 5, 10]))
    axis.yaxis.set_major_formatter(lambda value, _: f"{value:+g}".replace("-", "\N{MINUS SIGN}") if value else "0")
    for side in ("top", "right"):
        axis.spines[side].set_visible(False)


def title_of(model):
    return COLUMN_NAMES[model] + (f" ({model})" if model in MODELS else "")


def figure_of(comparison, keys, models, unit):
    """A picture, as text."""
    saturation = " " not in keys[0]
    panels = {}
    for model in models:
        median = comparison.median(keys[0], model)
        if median is not None and median <= HOPELESS:
            curves = {fluid: curve(comparison, keys, fluid, model) for fluid in FLUIDS.values()}
            panels[model] = {fluid: points for fluid, points in curves.items() if points}
    across = 4 if len(panels) > 6 else 3
    rows = -(-len(panels) // across)
    width, height = 9 / across, 1.75
    figure, axes = pyplot.subplots(rows, across, figsize=(9, rows * height), squeeze=False)
    figure.subplots_adjust(left=0.42 / 9, right=1 - 0.1 / 9, bottom=0.34 / height / rows, top=1 - 0.2 / height / rows,
                           wspace=0.42 / (width - 0.42), hspace=0.4 / (height - 0.4))
    for axis in axes.flat[len(panels):]:
        axis.set_axis_off()
    for axis, (model, curves) in zip(axes.flat, panels.items()):
        panel(axis, curves, saturation)
        unit_of_row = f", {unit}" if axis in axes[:, 0] else ""
        axis.set_title(f"{title_of(model)}{unit_of_row}", loc="left", fontsize=7.5, pad=3)
    for place, axis in enumerate(axes.flat[:len(panels)]):
        if place + across < len(panels):
            axis.tick_params(bottom=False, labelbottom=False)
        else:
            axis.set_xlabel("T/Tc", labelpad=1)
    figure.canvas.draw()
    for axis, curves in zip(axes.flat, panels.values()):
        label(axis, {fluid: curves[fluid] for fluid in COLORS if fluid in curves}, saturation)
    written = io.StringIO()
    figure.savefig(written)
    pyplot.close(figure)
    return slim(written.getvalue())


def draw(comparison, folder):
    """The picture of each section of the page."""
    folder.mkdir(exist_ok=True)
    for file in folder.glob("*.svg"):
        file.unlink()
    for title, name, quantities in sections():
        keys = [quantity.key for quantity in quantities if quantity.region != "dense"]
        first = quantities[0]
        models = columns(first.region, first.of_volume) if first.region == "saturation" else MODELS
        unit = "% of R Tc" if first.remark.startswith("in ") else "%"
        folder.joinpath(name).write_text(figure_of(comparison, keys, models, unit), encoding="utf-8")
