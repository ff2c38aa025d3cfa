# SPDX-License-Identifier: MIT
"""Diagrams of a fluid with matplotlib: ts, ph, pv, hs and pt, the first letter for the vertical axis.

>>> import matplotlib, ostrel
>>> matplotlib.use("Agg")
>>> toluene = ostrel.Fluid("toluene")
>>> ax = ostrel.plot.ts(toluene)
>>> ax.get_xlabel(), ax.get_ylabel()
('specific entropy $s$ [J/(kg K)]', 'temperature $T$ [K]')
>>> expansion = toluene.state(s=300.0, p=[20e5, 10e5, 5e5])
>>> lines = ax.plot(expansion.s, expansion.T, "o-")
"""
from __future__ import annotations

import importlib
from typing import TYPE_CHECKING, Any, Callable

import numpy as np

from . import _core
from .fluid import Fluid

__all__ = ["diagram"] + [name for name, _, _ in _core.diagram_kinds()]

_PROPERTIES = _core.properties()


def _scaled(values: Any, letter: str, units: str) -> Any:
    _, factor, offset = _core.shown_unit(_PROPERTIES[letter][2], units)
    return (values - offset) / factor


def _unit(letter: str, units: str) -> str:
    name = _core.shown_unit(_PROPERTIES[letter][2], units)[0]
    return "" if name == "1" else name


def _in_axes(ax: Any, points: Any) -> Any:
    """Points, of which each coordinate goes from 0 to 1 in the axes."""
    return (ax.transData + ax.transAxes.inverted()).transform(points)


def _label(ax: Any, text: str, points: Any, color: str, placed: list[Any]) -> None:
    """Writes a line's value where the line is farthest from what stands there already."""
    shown = _in_axes(ax, points)
    shown = shown[(np.abs(shown - 0.5) < (0.45, 0.48)).all(axis=1)]
    if not len(shown):
        return
    distance = np.min([np.hypot(*(shown - other).T) for other in placed], axis=0) if placed else shown[:, 0]
    place = shown[np.argmax(distance)]
    placed.append(place)
    ax.text(*place, text, transform=ax.transAxes, color=color, fontsize="xx-small", ha="center", va="center",
            bbox={"facecolor": "white", "edgecolor": "none", "pad": 0.5, "alpha": 0.8})


def diagram(kind: str, fluid: Fluid, ax: Any = None, *, x: tuple[float, float] | None = None,
            y: tuple[float, float] | None = None, lines: str | None = None, units: str = "si",
            labels: bool = True, free: Any = None) -> Any:
    """Draws the saturation line and isolines of a fluid, and returns the axes.

    kind     "ts", "ph", "pv", "hs" or "pt"
    ax       axes of matplotlib; without them, those of a new figure
    x, y     [SI] ends of the axes; chosen from the fluid if they are not given
    lines    letters of the properties that have isolines, such as "pq"; "" for none
    units    "si", or "engineering" for bar, degC, kJ/kg and other units of engineers
    labels   whether each isoline has its value written on it
    free     points, in the units of the diagram, near which no value should be written
    """
    letters = {name: (of_x, of_y) for name, of_x, of_y in _core.diagram_kinds()}
    x_range, y_range, dome, critical, isolines = _core.diagram(fluid._handle, kind, x, y, lines, units)
    of_x, of_y = letters[kind]

    def drawn(points: Any) -> tuple[Any, Any]:
        return _scaled(points[..., 0], of_x, units), _scaled(points[..., 1], of_y, units)

    if ax is None:
        pyplot: Any = importlib.import_module("matplotlib.pyplot")
        ax = pyplot.figure().add_subplot()
    for letter, limits, scale, limit, label in ((of_x, x_range, ax.set_xscale, ax.set_xlim, ax.set_xlabel),
                                                (of_y, y_range, ax.set_yscale, ax.set_ylim, ax.set_ylabel)):
        name, symbol, _, _, logarithmic = _PROPERTIES[letter]
        scale("log" if logarithmic else "linear")
        limit(*_scaled(np.array(limits), letter, units))
        label(f"{name} ${symbol}$ [{_unit(letter, units) or '1'}]")
    colors: dict[str, str] = {}
    placed = [] if free is None else list(_in_axes(ax, free))
    for letter, value, pieces in isolines:
        family = None if letter in colors else _PROPERTIES[letter][3]
        color = colors.setdefault(letter, f"C{len(colors)}")
        for piece in pieces:
            ax.plot(*drawn(piece), color=color, linewidth=0.7, label=family)
            family = None
        if labels and pieces:
            text = f"{_scaled(value, letter, units):.4g} {_unit(letter, units)}".strip()
            _label(ax, text, np.column_stack(drawn(np.concatenate(pieces))), color, placed)
    if len(dome):
        ax.plot(*drawn(dome), color="black", linewidth=1.4, label="saturation line")
    if critical is not None:
        ax.plot(*drawn(np.array(critical)), color="black", marker="o", markersize=3, linestyle="")
    ax.set_title(f"{fluid.name}, {fluid.model}")
    ax.legend(fontsize="x-small")
    return ax


def _of_kind(kind: str) -> Callable[..., Any]:
    def draw(fluid: Fluid, ax: Any = None, **options: Any) -> Any:
        return diagram(kind, fluid, ax, **options)

    draw.__name__ = draw.__qualname__ = kind
    draw.__doc__ = f'Draws a diagram as ``diagram("{kind}", fluid, ax, ...)`` does.'
    return draw


for _kind, _, _ in _core.diagram_kinds():
    globals()[_kind] = _of_kind(_kind)

if TYPE_CHECKING:
    def __getattr__(name: str) -> Callable[..., Any]: ...
