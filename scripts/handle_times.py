# SPDX-License-Identifier: MIT
"""Draws the time per state of a handle's array call over the p-T plane, from the CSV of handle_times --map, and prints
the largest time in units of the median. Fails if it is above 5.

    handle_times.py CSV PICTURE TITLE
"""
import csv
import statistics
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402  (the backend comes first)


def main(table, picture, title):
    with open(table, encoding="utf-8") as text:
        rows = [{key: float(value) for key, value in row.items()} for row in csv.DictReader(text)]
    times = [row["time"] for row in rows]
    median = statistics.median(times)
    ratio = max(times) / median
    print(f"{title}: {len(rows)} places, median {median:.0f} exp, largest {max(times):.0f} exp, ratio {ratio:.1f}")
    figure, axes = plt.subplots(figsize=(7, 4.2), layout="constrained")
    dots = axes.scatter([row["t/tc"] for row in rows], [row["p/pc"] for row in rows], c=times, s=11, marker="s",
                        cmap="viridis", vmin=0)
    axes.set(yscale="log", xlabel="$T/T_c$", ylabel="$p/p_c$", title=title)
    axes.plot(1, 1, "o", color="white", markeredgecolor="black", markersize=6)
    axes.annotate("critical point", (1, 1), (6, 6), textcoords="offset points", color="white")
    figure.colorbar(dots, label="time per state in units of std::exp")
    figure.savefig(picture, dpi=110)
    return 0 if ratio <= 5 else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
