#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""How far equations of state are from the reference equation of a fluid: on the saturation line and in the dense gas.

    models_and_references.py [FLUID [FOLDER]]      writes models_and_references.png into FOLDER, without it into the
                                                   current one; FLUID is a name in the reference tables, as MDM

The reference numbers are those of Documentation/Reference, whose first lines say where they come from; the name of the
fluid's reference equation stands above the picture. Documentation/Accuracy.md compares all fluids and quantities.
"""
import csv
import pathlib
import sys

import numpy as np
import numpy.typing as npt
from matplotlib.figure import Figure

import ostrel

REFERENCE = pathlib.Path(__file__).resolve().parents[2] / "Documentation/Reference"
MODELS = {"srk": {"model": "srk"}, "srk, translated": {"model": "srk", "volume": "translated"}, "pr": {"model": "pr"},
          "pr, translated": {"model": "pr", "volume": "translated"}}
#: These have no saturation line, or one that is far off.
MODELS_OF_VAPOR = {"mh, vapor": {"model": "mh", "states": "metastable", "phase": "vapor"}, "ideal gas": {"model": "ig"}}
GAMMA_ISOTHERM = 0.96  # of the critical temperature


def rows_of(table: str, fluid: str) -> list[dict[str, str]]:
    with open(REFERENCE / f"{table}.csv", encoding="utf-8", newline="") as file:
        rows = list(csv.DictReader(line for line in file if not line.startswith("#")))
    found = [row for row in rows if row["fluid"] == fluid]
    if not found:
        raise SystemExit(f"there is no {fluid}; there are {', '.join(dict.fromkeys(row['fluid'] for row in rows))}")
    return found


def column(rows: list[dict[str, str]], name: str) -> npt.NDArray[np.float64]:
    return np.array([float(row[name]) for row in rows])


def main() -> None:
    name = sys.argv[1] if len(sys.argv) > 1 else "MDM"
    folder = pathlib.Path(sys.argv[2] if len(sys.argv) > 2 else ".")
    (facts,) = rows_of("fluids", name)
    saturation = rows_of("saturation", name)
    vapor = [row for row in rows_of("states", name)
             if row["region"] == "vapour" and float(row["Tr"]) == GAMMA_ISOTHERM]
    t, p_sat, liquid, gas = (column(saturation, key) for key in ("T_K", "p_Pa", "rho_l_kg_m3", "rho_v_kg_m3"))
    t_vapor, p_vapor, gamma = (column(vapor, key) for key in ("T_K", "p_Pa", "Gamma"))
    t_reduced, isotherm = column(saturation, "Tr"), np.linspace(0.0, p_vapor.max(), 200)[1:]

    figure = Figure(figsize=(11, 8), layout="constrained")
    (dome, pressure), (volume, dense) = figure.subplots(2, 2)
    figure.suptitle(f"{name}: models (lines) and the reference equation {facts['eos_bibkey']} (black dots)")
    print(f"mean size of the deviations from {facts['eos_bibkey']} [%]")
    print(f"{name:16}{'p sat':>8}{'d liquid':>10}{'d vapor':>9}{'Gamma':>8}")
    for number, (model, options) in enumerate((MODELS | MODELS_OF_VAPOR).items()):
        fluid = ostrel.Fluid(facts["CAS"], **options)
        style = {"color": f"C{number}", "linestyle": "--" if "volume" in options else "-"}
        sizes = {}
        if model in MODELS:
            (p, d_liquid), (_, d_vapor) = fluid.saturated("t", t, ["p", "d"])
            sizes = {"p": p / p_sat - 1, "liquid": d_liquid / liquid - 1, "vapor": d_vapor / gas - 1}
            curve = np.linspace(t[0], fluid.t_crit, 200)
            for phase in fluid.saturated("t", curve, "d"):
                dome.plot(phase, curve, **style, label=model if phase[0] < phase[-1] else None)
            volume.plot(t_reduced, sizes["liquid"] * 100, **style, marker=".", label=model)
            if "volume" not in options:  # a translation does not change the pressure
                pressure.plot(t_reduced, sizes["p"] * 100, **style, marker=".", label=model)
        sizes["gamma"] = fluid("pt", p_vapor, t_vapor, "fundamental") / gamma - 1
        dense.plot(isotherm * 1e-5, fluid("pt", isotherm, t_vapor[0], "fundamental"), **style, label=model)
        columns = {"p": 8, "liquid": 10, "vapor": 9, "gamma": 8}
        print(f"{model:16}" + "".join(f"{np.abs(sizes[key]).mean() * 100:{width}.2f}" if key in sizes else " " * width
                                      for key, width in columns.items()))

    dome.plot(np.concatenate([liquid, gas[::-1]]), np.concatenate([t, t[::-1]]), "ko", markersize=4, label="reference")
    dense.plot(p_vapor * 1e-5, gamma, "ko", markersize=4, label="reference")
    for ax in (pressure, volume):
        ax.axhline(0.0, color="black", linewidth=0.8)
        ax.set_xlabel("temperature / critical temperature [1]")
    pressure.set_ylabel("deviation of the saturation pressure [%]")
    volume.set_ylabel("deviation of the saturated liquid's density [%]")
    dome.set_xlabel("density of the saturated phases [kg/m³]")
    dome.set_ylabel("temperature [K]")
    dense.set_xlabel(f"pressure of the vapor at {t_vapor[0]:.1f} K [bar]")
    dense.set_ylabel("fundamental derivative $\\Gamma$ [1]")
    for ax in (dome, pressure, volume, dense):
        ax.grid(alpha=0.3)
        ax.legend(fontsize="small")
    folder.mkdir(parents=True, exist_ok=True)
    figure.savefig(folder / "models_and_references.png", dpi=120)


if __name__ == "__main__":
    main()
