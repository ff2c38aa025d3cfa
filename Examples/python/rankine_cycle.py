#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""An organic Rankine cycle with toluene and a regenerator: its states, its figures and its T-s diagram.

    rankine_cycle.py [FOLDER]      writes rankine_cycle.png into FOLDER, without it into the current one

The second panel shows how the efficiency follows from the pressures: each curve belongs to one temperature of the
condenser. `Cycle.changed` solves the same cycle with other values; values have SI units, or units of their own.
"""
import pathlib
import sys

import numpy as np
from matplotlib.figure import Figure

import ostrel

DEFINITION = {
    "fluid": "toluene", "model": "pr", "kind": "rankine",
    "evaporator": {"p": "20 bar", "superheat": "5 K"},
    "condenser": {"t": "50 degC"},
    "pump": {"efficiency": 0.7},
    "turbine": {"efficiency": 0.85},
    "regenerator": {"effectiveness": 0.8},
    "flow": {"power": "500 kW"},
}


def main() -> None:
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".")
    cycle = ostrel.Cycle(DEFINITION)

    print(f"{'':3}{'place':32}{'p bar':>8}{'t degC':>9}{'h kJ/kg':>10}{'s kJ/(kg K)':>13}  phase")
    for number, (place, state) in enumerate(cycle.states.items(), 1):
        print(f"{number:<3}{place:32}{state.p * 1e-5:8.3f}{state.T - 273.15:9.2f}{state.h * 1e-3:10.2f}"
              f"{state.s * 1e-3:13.4f}  {state.phase_name}")
    print(f"efficiency {cycle.efficiency * 100:.2f} %, net work {cycle.net_work * 1e-3:.2f} kJ/kg, "
          f"mass flow {cycle.mass_flow:.3f} kg/s")

    figure = Figure(figsize=(12, 5), layout="constrained")
    left, right = figure.subplots(1, 2)
    cycle.plot("ts", left, units="engineering", lines="p", x=(-1800.0, 700.0), y=(280.0, 640.0))
    left.set_title(f"{cycle.fluid.name}: numbers are those of the states")

    pressures = np.linspace(4e5, 36e5, 33)
    for condenser in (30.0, 50.0, 70.0):
        varied = [cycle.changed({"condenser.t": f"{condenser} degC", "evaporator.p": p}) for p in pressures]
        right.plot(pressures * 1e-5, [one.efficiency * 100 for one in varied], label=f"{condenser:.0f} degC")
    right.plot(cycle.values["evaporator.p"] * 1e-5, cycle.efficiency * 100, "ko", label="the cycle on the left")
    right.set_xlabel("pressure in the evaporator [bar]")
    right.set_ylabel("efficiency [%]")
    right.set_title("net work / heat")
    right.grid(alpha=0.3)
    right.legend(title="condenser")
    folder.mkdir(parents=True, exist_ok=True)
    figure.savefig(folder / "rankine_cycle.png", dpi=120)


if __name__ == "__main__":
    main()
