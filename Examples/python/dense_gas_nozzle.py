#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Expansion of a dense gas in a nozzle, where the fundamental derivative is below one.

    dense_gas_nozzle.py [FOLDER]      writes dense_gas_nozzle.png into FOLDER, without it into the current one

The flow of octamethyltrisiloxane is steady and isentropic and starts at rest: s = s0 and h + velocity²/2 = h0. The
fundamental derivative Gamma = 1 + (d/c) dc/dd|s is (gamma + 1)/2 > 1 in an ideal gas of constant heat capacity, so that
the speed of sound falls in an expansion. Where Gamma is below one, it rises. The same fluid as an ideal gas, with the
same heat capacity, shows what a designer would miss.
"""
import pathlib
import sys
from typing import NamedTuple

import numpy as np
import numpy.typing as npt
from matplotlib.figure import Figure

import ostrel

P_TOTAL, T_TOTAL, P_OUTLET = 14e5, 570.0, 1e5  # Pa, K, Pa
MODELS = {"pr": "Peng-Robinson", "ig": "ideal gas"}

Column = npt.NDArray[np.float64]


class Flow(NamedTuple):
    """Along the expansion."""

    p: Column  #: [Pa]
    velocity: Column  #: [m/s]
    sound: Column  #: [m/s]
    mach: Column  #: [1]
    area: Column  #: [1] to that of the throat
    fundamental: Column  #: [1]
    p_throat: float  #: [Pa]


def expanded(fluid: ostrel.Fluid) -> Flow:
    total = fluid.state(p=P_TOTAL, T=T_TOTAL)

    def flow(p: Column | float) -> tuple[ostrel.State, Column]:
        at = fluid.state(s=total.s, p=p)
        return at, np.sqrt(2 * np.maximum(total.h - at.h, 0.0))

    below, above = P_OUTLET, P_TOTAL  # the flow is supersonic at the first one, subsonic at the second one
    while above - below > 1e-9 * P_TOTAL:
        middle = (below + above) / 2
        at, velocity = flow(middle)
        below, above = (middle, above) if velocity > at.c else (below, middle)
    throat, velocity = flow(above)
    largest_flux = throat.d * velocity

    p = np.geomspace(0.99 * P_TOTAL, P_OUTLET, 300)
    at, velocity = flow(p)
    return Flow(p, velocity, at.c, velocity / at.c, largest_flux / (at.d * velocity), at.fundamental, above)


def main() -> None:
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".")
    flows = {model: expanded(ostrel.Fluid("mdm", model=model)) for model in MODELS}

    print(f"{'':16}{'p bar':>8}{'velocity':>10}{'c m/s':>9}{'Mach':>8}{'A/A*':>8}{'Gamma':>8}")
    for model, flow in flows.items():
        for i in range(0, len(flow.p), 59):
            print(f"{MODELS[model] if i == 0 else '':16}{flow.p[i] * 1e-5:8.3f}{flow.velocity[i]:10.2f}"
                  f"{flow.sound[i]:9.2f}{flow.mach[i]:8.4f}{flow.area[i]:8.3f}{flow.fundamental[i]:8.4f}")
        print(f"{'':16}throat at {flow.p_throat * 1e-5:.4f} bar")

    figure = Figure(figsize=(10, 7.5), layout="constrained")
    axes = figure.subplots(2, 2, sharex=True)
    figure.suptitle(f"MDM expands from {P_TOTAL * 1e-5:.0f} bar and {T_TOTAL:.0f} K; dots are the throats")
    panels = {"fundamental": "fundamental derivative $\\Gamma$ [1]", "sound": "speed of sound [m/s]",
              "mach": "Mach number [1]", "area": "area / area of the throat [1]"}
    for ax, (quantity, label) in zip(axes.flat, panels.items()):
        for (model, flow), line in zip(flows.items(), ("-", "--")):
            values = getattr(flow, quantity)
            ax.plot(flow.p * 1e-5, values, line, color="black", label=MODELS[model])
            at_throat = np.interp(flow.p_throat, flow.p[::-1], values[::-1])
            ax.plot(flow.p_throat * 1e-5, at_throat, "ko", markersize=5)
        ax.set_ylabel(label)
        ax.grid(alpha=0.3)
    gamma, _, mach, area = axes.flat
    gamma.set_ylim(0.3, 1.1)
    gamma.axhspan(0.3, 1.0, color="C0", alpha=0.15)
    gamma.text(1.1, 0.35, "$\\Gamma < 1$: the speed of sound rises", color="C0", ha="right")
    mach.axhline(1.0, color="gray", linewidth=0.8)
    for ax in axes[1]:
        ax.set_xlabel("pressure [bar], falling along the nozzle")
    gamma.set_xscale("log")
    gamma.set_xlim(P_TOTAL * 1e-5, P_OUTLET * 1e-5)
    gamma.set_xticks([14, 10, 7, 5, 3, 2, 1.5, 1], labels=["14", "10", "7", "5", "3", "2", "1.5", "1"])
    gamma.set_xticks([], minor=True)
    mach.legend()
    folder.mkdir(parents=True, exist_ok=True)
    figure.savefig(folder / "dense_gas_nozzle.png", dpi=120)


if __name__ == "__main__":
    main()
