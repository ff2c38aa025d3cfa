#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The phases of a fluid, and one of its isotherms in stable, metastable and unstable states.

    phases.py [FOLDER [KIND]]      writes phases.png into FOLDER, without it into the current one; KIND is png or svg

The left diagram has the phases of stable states, which are those of equilibrium. The right one has the isotherm of the
equation itself (states="surface"), which falls with volume but for the part between the spinodals: there no phase can
stay. Between the saturation line and the spinodal a single phase can be superheated or subcooled (states="metastable").
"""
import pathlib
import sys

import matplotlib
import numpy as np
import numpy.typing as npt
from matplotlib.axes import Axes
from matplotlib.figure import Figure

import ostrel

FLUID, MODEL = "toluene", "pr"
T_REDUCED = 0.95  # of the isotherm
T_RANGE, V_RANGE, P_RANGE = (0.6, 1.4), (0.3, 30.0), (0.0, 1.6)  # of the diagrams, to the critical values
ARROW = {"arrowstyle": "-", "linewidth": 0.6}

Column = npt.NDArray[np.float64]


def spinodal(surface: ostrel.Fluid, t: Column, stable: Column, unstable: Column) -> Column:
    """Volumes where dp/dv is zero, between a stable and an unstable volume of each temperature."""
    for _ in range(50):
        middle = (stable + unstable) / 2
        falls = surface("tv", t, middle, "dp_dv") < 0
        stable, unstable = np.where(falls, middle, stable), np.where(falls, unstable, middle)
    return stable


def draw(figure: Figure) -> None:
    fluid = ostrel.Fluid(FLUID, model=MODEL)
    surface = ostrel.Fluid(FLUID, model=MODEL, states="surface")
    t_c, p_c = fluid.t_crit, fluid.p_crit
    v_c = float(fluid("tq", t_c, 0.0, "v"))

    # The saturation line and the spinodals; at the critical point they meet.
    t = np.linspace(0.45, 0.9999, 400) * t_c
    (p, v_liquid), v_vapor = fluid("tq", t, 0.0, ["p", "v"]), fluid("tq", t, 1.0, "v")
    ends = [spinodal(surface, t, stable, np.full_like(t, v_c)) for stable in (v_liquid, v_vapor)]
    spinodals = [(v, surface("tv", t, v, "p")) for v in ends]

    phases, isotherm = figure.subplots(1, 2, sharey=True)
    phases.plot(t / t_c, p / p_c, color="C0", linewidth=1.5)
    phases.plot([1, 1, T_RANGE[1]], [P_RANGE[1], 1, 1], color="black", linewidth=0.8)
    phases.plot([1, 1], [P_RANGE[0], 1], color="black", linewidth=0.8)
    phases.plot(1, 1, "ko", markersize=5, zorder=3)
    # Each name is the fluid's own answer for the place where it stands.
    for t_here, p_here in [(0.8, 0.9), (0.9, 0.15), (1.15, 0.5), (1.15, 1.3)]:
        state = fluid.state(T=t_here * t_c, p=p_here * p_c)
        print(f"t/tc {t_here:4.2f}  p/pc {p_here:4.2f}  {state.d:8.3f} kg/m3  phase {state.phase:.0f}, {state.phase_name}")
        phases.text(t_here, p_here, state.phase_name, ha="center", va="center")
    boiling = fluid.state(T=0.9 * t_c, q=0.5)
    print(f"t/tc 0.90  q    0.50  {boiling.d:8.3f} kg/m3  phase {boiling.phase:.0f}, {boiling.phase_name}")
    phases.annotate(f"{boiling.phase_name}: on this line", (0.9, boiling.p / p_c), (0.62, 0.62), arrowprops=ARROW)
    phases.set(title="Phases of stable states", xlabel="temperature / critical temperature", xlim=T_RANGE,
               ylabel="pressure / critical pressure", ylim=P_RANGE)

    dome_v, dome_p = np.concatenate([v_liquid, [v_c], v_vapor[::-1]]), np.concatenate([p, [p_c], p[::-1]])
    isotherm.fill(dome_v / v_c, dome_p / p_c, color="C0", alpha=0.15, linewidth=0)
    isotherm.plot(dome_v / v_c, dome_p / p_c, color="C0", linewidth=1.5)
    isotherm.plot(1, 1, "ko", markersize=5, zorder=3)
    isotherm.set(title=f"The isotherm of {T_REDUCED} critical temperatures", xlabel="volume / critical volume",
                 xscale="log", xlim=V_RANGE)
    ticks = [0.3, 0.5, 1, 2, 5, 10, 20]
    isotherm.set_xticks(ticks, labels=[f"{tick:g}" for tick in ticks])
    isotherm.set_xticks([], minor=True)

    surface_t = T_REDUCED * t_c
    liquid, vapor = fluid.saturation(T=surface_t)
    ends_here = [float(spinodal(surface, np.array([surface_t]), np.array([end.v]), np.array([v_c]))[0])
                 for end in (liquid, vapor)]
    p_ends = [float(surface("tv", surface_t, end, "p")) for end in ends_here]
    print(f"t/tc {T_REDUCED}: saturated at {liquid.p * 1e-5:.4f} bar, spinodals at "
          f"{p_ends[0] * 1e-5:.4f} bar (liquid) and {p_ends[1] * 1e-5:.4f} bar (vapor)")
    for values, pressures in spinodals:
        isotherm.plot(values / v_c, pressures / p_c, "--", color="C3", linewidth=1)

    def part(first: float, last: float, line: str, **style: float) -> None:
        along = np.geomspace(first, last, 200)
        isotherm.plot(along / v_c, surface("tv", surface_t, along, "p") / p_c, line, color="black", **style)

    part(0.3 * v_c, liquid.v, "-", linewidth=2)
    part(vapor.v, V_RANGE[1] * v_c, "-", linewidth=2)
    isotherm.plot([liquid.v / v_c, vapor.v / v_c], [liquid.p / p_c] * 2, "-", color="black", linewidth=2)
    part(liquid.v, ends_here[0], "-", linewidth=1)
    part(ends_here[1], vapor.v, "-", linewidth=1)
    part(ends_here[0], ends_here[1], ":", linewidth=1)
    label_parts(isotherm, liquid, vapor, v_c, p_c, p_ends)


def label_parts(ax: Axes, liquid: ostrel.State, vapor: ostrel.State, v_c: float, p_c: float, p_ends: list[float]) -> None:
    for text, place, at in [
        ("stable liquid", (0.7, 1.45), (0.475, 1.45)),
        ("superheated liquid", (0.7, 0.06), (liquid.v / v_c * 1.06, (liquid.p + p_ends[0]) / 2 / p_c)),
        ("no phase can stay", (1.0, 0.25), (0.9, 0.57)),
        ("two phases\nin equilibrium", (2.6, 1.2), (1.4, liquid.p / p_c)),
        ("subcooled vapor", (5.0, 0.98), (vapor.v / v_c * 0.85, (vapor.p + p_ends[1]) / 2 / p_c)),
        ("stable vapor", (9.0, 0.55), (7.0, 0.34)),
        ("spinodal", (3.6, 0.06), (4.5, 0.21)),
    ]:
        ax.annotate(text, at, place, arrowprops=ARROW, fontsize=9)


def main() -> None:
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".")
    kind = sys.argv[2] if len(sys.argv) > 2 else "png"
    matplotlib.rcParams |= {"svg.fonttype": "none", "svg.hashsalt": "phases"}
    figure = Figure(figsize=(10, 4.6), layout="constrained")
    draw(figure)
    folder.mkdir(parents=True, exist_ok=True)
    figure.savefig(folder / f"phases.{kind}", dpi=120, metadata={"Date": None} if kind == "svg" else None)


if __name__ == "__main__":
    main()
