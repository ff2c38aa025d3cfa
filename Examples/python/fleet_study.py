#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A fleet of heat sources: which fluid and which evaporation temperature give an organic Rankine cycle most power?

    fleet_study.py [--sources N] [--processes N | --cluster ADDRESS] [FOLDER]      writes fleet_study.png into FOLDER

Each source is a stream of hot water or gas with its own temperature, at a site with its own temperature of the
condenser. For each source and each fluid, the study solves cycles at 40 evaporation temperatures. Its functions take
arrays of numpy as well as arrays of Dask: with the latter, blocks of sources are computed by threads of this process, by
processes of this machine (--processes), or by the workers of a cluster (--cluster, where a scheduler listens). 25000
sources are 4 million cycles.
"""
import argparse
import contextlib
import pathlib
import tempfile
from typing import Any

import dask
import dask.array
import numpy as np
from matplotlib.figure import Figure

import ostrel

FLUIDS = {"isobutane": "isobutan", "pentane": "npentane", "cyclopentane": "cyclopen", "toluene": "toluene"}
STEPS, BLOCK = 40, 500  # evaporation temperatures; sources of a block
PINCH, LIFT = 10.0, 20.0  # K, smallest difference to the source; smallest one of evaporation and condensation
TURBINE, PUMP = 0.85, 0.7  # efficiencies


def powers(fluid: ostrel.Fluid, source: Any, sink: Any) -> Any:
    """Net power of the cycle for 1 W/K of the source's stream [K], by source and evaporation temperature.

    source   [K] temperatures with which the streams arrive, in a column
    sink     [K] condensation temperatures, in a column
    """
    highest = np.minimum(source - PINCH, 0.97 * fluid.t_crit)
    evaporation = sink + LIFT + (highest - sink - LIFT) * np.linspace(0.0, 1.0, STEPS)
    p_low, h_liquid, s_liquid = fluid("tq", sink, 0.0, ["p", "h", "s"])
    h_boiling = fluid("tq", evaporation, 0.0, "h")
    p_high, h_vapor, s_vapor = fluid("tq", evaporation, 1.0, ["p", "h", "s"])
    h_pumped = h_liquid + (fluid("ps", p_high, s_liquid, "h") - h_liquid) / PUMP
    turbine = (h_vapor - fluid("ps", p_low, s_vapor, "h")) * TURBINE

    # The stream must stay hotter than the fluid where this begins to boil, and where it comes from the pump.
    boiled = (source - PINCH - evaporation) / (h_vapor - h_boiling)
    heated = (source - PINCH - sink) / (h_vapor - h_pumped)
    return np.minimum(boiled, heated) * (turbine - (h_pumped - h_liquid))


def study(source: Any, sink: Any) -> list[Any]:
    """For each fluid, the largest power [K] of each source and the step at which it is found."""
    results = []
    for file in FLUIDS.values():
        power = powers(ostrel.Fluid(file, model="pr"), source[:, None], sink[:, None])
        results += [power.max(axis=1), power.argmax(axis=1)]
    return results


def use_processes(arguments: argparse.Namespace, ends: contextlib.ExitStack) -> None:
    """Starts or finds the processes that compute; without any the threads of this process do."""
    if not arguments.cluster and not arguments.processes:
        return
    import distributed

    cluster = arguments.cluster or ends.enter_context(distributed.LocalCluster(
        n_workers=arguments.processes, threads_per_worker=1, host="127.0.0.1", dashboard_address="127.0.0.1:0",
        local_directory=ends.enter_context(tempfile.TemporaryDirectory())))
    ends.enter_context(distributed.Client(cluster))


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", nargs="?", default=".", type=pathlib.Path)
    parser.add_argument("--sources", type=int, default=1000)
    parser.add_argument("--processes", type=int, default=0)
    parser.add_argument("--cluster")
    arguments = parser.parse_args()

    random = np.random.default_rng(1)
    source, sink = random.uniform(360.0, 650.0, arguments.sources), random.uniform(290.0, 325.0, arguments.sources)
    with contextlib.ExitStack() as ends:
        use_processes(arguments, ends)
        lazy = [dask.array.from_array(values, chunks=BLOCK) for values in (source, sink)]
        found = np.array(dask.compute(*study(*lazy)))
    power, step = found[::2], found[1::2].astype(int)
    best = power.argmax(axis=0)

    print(f"{power.size * STEPS} cycles")
    print(f"{'fluid':14}{'best for':>9}{'sources at K':>15}{'mean power W/(W/K)':>20}")
    for number, fluid in enumerate(FLUIDS):
        mine = best == number
        between = f"{source[mine].min():.0f} to {source[mine].max():.0f}" if mine.any() else "none"
        print(f"{fluid:14}{mine.sum():9}{between:>15}" + (f"{power[number, mine].mean():20.3f}" if mine.any() else ""))

    figure = Figure(figsize=(12, 5), layout="constrained")
    left, right = figure.subplots(1, 2)
    for number, fluid in enumerate(FLUIDS):
        mine = best == number
        highest = np.minimum(source - PINCH, 0.97 * ostrel.Fluid(FLUIDS[fluid]).t_crit)
        evaporation = sink + LIFT + (highest - sink - LIFT) * step[number] / (STEPS - 1)
        left.scatter(source[mine], power[number, mine], s=6, color=f"C{number}", label=fluid)
        right.scatter(source[mine], evaporation[mine], s=6, color=f"C{number}", label=fluid)
    right.plot([source.min(), source.max()], [source.min(), source.max()], color="gray", linewidth=0.8,
               label="temperature of the source")
    left.set_ylabel("largest net power / heat capacity rate of the source [W/(W/K)]")
    right.set_ylabel("evaporation temperature [K]")
    for ax in (left, right):
        ax.set_xlabel("temperature of the source [K]")
        ax.grid(alpha=0.3)
        ax.legend(title="best fluid", markerscale=3)
    figure.suptitle(f"{arguments.sources} sources; the spread comes from condensation at 290 to 325 K")
    arguments.folder.mkdir(parents=True, exist_ok=True)
    figure.savefig(arguments.folder / "fleet_study.png", dpi=120)


if __name__ == "__main__":
    main()
