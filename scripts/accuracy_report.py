# SPDX-License-Identifier: MIT
"""Compares every model with reference equations of state, for Documentation/Accuracy.md and its pictures, and tries
every fluid under every model, for Documentation/Catalogue.md."""
import collections
import csv
import io
import json
import pathlib
import statistics
import sys
import tempfile

from choose_fluids import generator
from ostrel_library import Failed, Library, child
from slim_svg import slim

ROOT = pathlib.Path(__file__).resolve().parent.parent
REFERENCE = ROOT / "Documentation/Reference"
PAGE = ROOT / "Documentation/Accuracy.md"
CATALOGUE = ROOT / "Documentation/Catalogue.md"
PICTURES = ROOT / "Documentation/Accuracy"
MODELS = ("srk", "pr", "rk", "vdw", "mh", "cii", "ig", "izg")
FLUIDS = {  # name in the reference tables: name in Fluids/
    "Argon": "argon", "Nitrogen": "nitrogen", "Methane": "methane", "Ethane": "ethane", "n-Propane": "propane",
    "n-Butane": "nbutane", "Toluene": "toluene", "CarbonDioxide": "co2", "R134a": "r134a", "MDM": "mdm",
    "Ammonia": "ammonia", "Water": "water"}
# With Chung's models the library's conductivity is this many times smaller than in W/(m K).
CONDUCTIVITY_FACTOR = 418.4**2 / 1e4

Quantity = collections.namedtuple("Quantity", "key title where remark")
SATURATED = "saturation, 0.6 to 0.99 Tc"
VAPOR = "vapor, 0.75 to 0.95 Tc and 0.01 to 0.97 of the saturation pressure"
GAS = "gas, 1.02 to 1.8 Tc and 0.01 to 0.8 Pc"
DENSE = "supercritical, 1.02 to 1.8 Tc and 1.15 to 2.5 Pc"
QUANTITIES = (
    Quantity("psat", "Saturation pressure", SATURATED, ""),
    Quantity("dl", "Density of the saturated liquid", SATURATED, ""),
    Quantity("dv", "Density of the saturated vapor", SATURATED, ""),
    Quantity("hvap", "Enthalpy of vaporisation", SATURATED, ""),
    *(Quantity(f"{key} {region}", title, where, remark)
      for region, where in (("vapor", VAPOR), ("gas", GAS), ("dense", DENSE))
      for key, title, remark in (
          ("d", "Density at given t, p", ""),
          ("h", "Enthalpy difference to the most dilute state", "in per cent of R Tc"),
          ("cp", "Isobaric heat capacity", ""),
          ("w", "Speed of sound", ""),
          ("eta", "Viscosity", ""),
          ("lambda", "Thermal conductivity", "the library's values times 17.506, of water and ammonia times 175.06"))),
)
REGIONS = {"vapour": "vapor", "gas_T_above_Tc": "gas", "supercritical": "dense"}


def read(name):
    with open(REFERENCE / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(line for line in file if not line.startswith("#")))


def number(row, key):
    return float(row[key]) if row[key] else None


def deviation(ours, reference):
    return 100 * (ours / reference - 1)


def saturation(library, fluid, rows):
    """(key, Tr, deviation or message) along the saturation curve."""
    for row in rows:
        T, Tr = float(row["T_K"]), float(row["Tr"])
        try:
            d_l, d_v = (library.prop(fluid, "tq", T, q, "d") for q in (0, 1))
            if not d_l > 1.5 * d_v:
                raise Failed("equal phases")
            ours = {"psat": library.prop(fluid, "tq", T, 1, "p"), "dl": d_l, "dv": d_v,
                    "hvap": library.prop(fluid, "td", T, d_v, "h") - library.prop(fluid, "td", T, d_l, "h")}
        except Failed as failure:
            for key in ("psat", "dl", "dv", "hvap"):
                yield key, Tr, str(failure)
            continue
        for key, column in (("psat", "p_Pa"), ("dl", "rho_l_kg_m3"), ("dv", "rho_v_kg_m3"), ("hvap", "hvap_J_kg")):
            yield key, Tr, deviation(ours[key], float(row[column]))


def states(library, fluid, rows, R, Tc, conductivity_factor):
    """(key, Tr, deviation or message) of single-phase states. Of enthalpies, the differences to the first state of the
    list are compared."""
    first = None
    for row in rows:
        T, p, Tr, region = float(row["T_K"]), float(row["p_Pa"]), float(row["Tr"]), REGIONS[row["region"]]
        reference = {"d": number(row, "rho_kg_m3"), "h": number(row, "h_J_kg"), "cp": number(row, "cp_J_kgK"),
                     "w": number(row, "w_m_s"), "eta": number(row, "mu_Pas"), "lambda": number(row, "lambda_W_mK")}
        try:
            d = library.prop(fluid, "pt", p, T, "d")
            ours = {"d": d, "h": library.prop(fluid, "td", T, d, "h"), "cp": library.cp(T, d), "w": library.c(T, d),
                    "eta": library.prop(fluid, "td", T, d, "eta"),
                    "lambda": conductivity_factor * library.prop(fluid, "td", T, d, "lambda")}
        except Failed as failure:
            for key in reference:
                yield f"{key} {region}", Tr, str(failure)
            continue
        if first is None:
            first = ours["h"], reference["h"]
        for key, value in reference.items():
            if key == "h":
                yield f"h {region}", Tr, 100 * ((ours["h"] - first[0]) - (value - first[1])) / (R * Tc)
            elif value is not None:
                yield f"{key} {region}", Tr, deviation(ours[key], value)


def compare(fluid, model, folder, library_path, conductivity_factor, saturation_rows, state_rows):
    library = Library(library_path, folder)
    Tc, R = library.info(fluid, "t_crit"), 8.314 / library.info(fluid, "m_mol")
    result = []
    # The states come first, since a saturation request may leave a singular Jacobian, which spoils all later searches.
    result += states(library, fluid, state_rows, R, Tc, conductivity_factor)
    if model not in ("ig", "izg"):
        result += saturation(library, fluid, saturation_rows)
    return json.dumps(result)


def mean_Z(rows, M):
    """Compressibility factor of the gas: the mean over the vapor states, as one would choose it for a turbine."""
    values = [float(row["p_Pa"]) / (float(row["rho_kg_m3"]) * 8314 / M * float(row["T_K"]))
              for row in rows if row["region"] == "vapour"]
    return f"{statistics.mean(values):.4f}"


def measure(library_path):
    """results[quantity][fluid, model]: the (Tr, deviation or message) of its states."""
    make = generator()
    table = {row["short"]: row for row in make.read_table("fluids.csv")}
    choices = {choice["fluid"]: choice for choice in make.read_table("choices.csv")}
    by_fluid = {name: [[row for row in read(file) if row["fluid"] == name] for file in ("saturation.csv", "states.csv")]
                for name in FLUIDS}
    results = collections.defaultdict(lambda: collections.defaultdict(list))
    with tempfile.TemporaryDirectory() as place:
        for name, fluid in FLUIDS.items():
            for model in MODELS:
                Z = mean_Z(by_fluid[name][1], float(table[fluid]["MM"])) if model == "izg" else None
                dense = choices[fluid]["transport"] == "dense"
                factor = CONDUCTIVITY_FACTOR * (1 if dense else 10)  # viscosity 4 or 5 with conductivity 2
                text = make.parameter_file(table[fluid], model, choices[fluid]["Pc_atm"], Z, choices[fluid]["Tb"], dense)
                pathlib.Path(place, f"{fluid}.osd").write_text(text, encoding="utf-8")
                for key, Tr, value in json.loads(
                        child(compare, fluid, model, place, library_path, factor, *by_fluid[name])):
                    results[key][fluid, model].append((Tr, value))
    return results


def cell(points):
    """'mean / largest' of the deviations' sizes, and the number of states that answered if not all did."""
    sizes = [abs(value) for _, value in points if not isinstance(value, str)]
    if not points:
        return ""
    if not sizes:
        return "–"
    text = f"{statistics.mean(sizes):.3g} / {max(sizes):.3g}"
    return text if len(sizes) == len(points) else f"{text} ({len(sizes)} of {len(points)})"


def table_of(results, quantity):
    models = [model for model in MODELS if any(results[quantity.key][fluid, model] for fluid in FLUIDS.values())]
    lines = ["| fluid | " + " | ".join(models) + " |", "|---" * (len(models) + 1) + "|"]
    for fluid in FLUIDS.values():
        cells = [cell(results[quantity.key][fluid, model]) for model in models]
        if any(cells):
            lines.append(f"| {fluid} | " + " | ".join(cells) + " |")
    return "\n".join(lines)


def summary(results):
    """The median over the fluids of the mean deviation, for each quantity and model."""
    lines = ["| quantity | " + " | ".join(MODELS) + " |", "|---" * (len(MODELS) + 1) + "|"]
    where = None
    for quantity in QUANTITIES:
        if quantity.where != where:
            where = quantity.where
            lines.append(f"| *{where}* |" + " |" * len(MODELS))
        cells = []
        for model in MODELS:
            means = []
            for fluid in FLUIDS.values():
                points = results[quantity.key][fluid, model]
                sizes = [abs(value) for _, value in points if not isinstance(value, str)]
                if sizes and len(sizes) >= len(points) / 2:
                    means.append(statistics.mean(sizes))
            cells.append(f"{statistics.median(means):.3g}" if len(means) >= len(FLUIDS) / 2 else "–")
        lines.append(f"| {quantity.title}{' (' + quantity.remark + ')' if quantity.remark else ''} | "
                     + " | ".join(cells) + " |")
    return "\n".join(lines)


def curve(points):
    """The mean deviation at each temperature."""
    at = collections.defaultdict(list)
    for Tr, value in points:
        if not isinstance(value, str):
            at[Tr].append(value)
    return sorted((Tr, statistics.mean(values)) for Tr, values in at.items())


def picture(results, keys, unit, file):
    """Deviation over reduced temperature, with one small panel for each model and one line for each fluid."""
    import matplotlib
    matplotlib.use("svg")
    matplotlib.rcParams.update({"svg.fonttype": "none", "font.size": 7,
                                "font.sans-serif": ["DejaVu Sans", "Verdana", "Arial"]})
    from matplotlib import pyplot
    curves = {(fluid, model): curve([point for key in keys for point in results[key][fluid, model]])
              for fluid in FLUIDS.values() for model in MODELS}
    models = [model for model in MODELS if any(curves[fluid, model] for fluid in FLUIDS.values())]
    rows = (len(models) + 3) // 4
    height = 0.6 + 1.9 * rows
    figure, axes = pyplot.subplots(rows, 4, figsize=(9, height), sharex=True, sharey=True, squeeze=False)
    sizes = sorted(abs(value) for points in curves.values() for _, value in points)
    limit = max(1.0, sizes[int(0.9 * (len(sizes) - 1))])
    colors = pyplot.get_cmap("tab20").colors
    for axis, model in zip(axes.flat, models):
        for color, fluid in zip(colors, FLUIDS.values()):
            if curves[fluid, model]:
                axis.plot(*zip(*curves[fluid, model]), color=color, label=fluid, linewidth=1)
        axis.axhline(0, color="black", linewidth=0.5)
        axis.set_title(model, loc="left", fontweight="bold", pad=2)
        axis.set_ylim(-limit, limit)
    for axis in axes.flat[len(models):]:
        axis.set_axis_off()
    for axis in axes.flat[max(0, len(models) - 4):len(models)]:
        axis.set_xlabel("T/Tc")
        axis.tick_params(labelbottom=True)
    for axis in axes[:, 0]:
        axis.set_ylabel(unit)
    labels = {label: handle for axis in axes.flat for handle, label in zip(*axis.get_legend_handles_labels())}
    figure.legend(labels.values(), labels.keys(), loc="lower center", ncol=12, frameon=False, handlelength=1,
                  columnspacing=0.8)
    figure.tight_layout(rect=(0, 0.3 / height, 1, 1))
    written = io.StringIO()
    figure.savefig(written)
    file.write_text(slim(written.getvalue()), encoding="utf-8")
    pyplot.close(figure)


HEAD = """# Accuracy

How far the models are from reference equations of state, for twelve fluids. Made by `scripts/accuracy_report` from the
parameter files as `scripts/make_fluids` writes them and the tables in `Documentation/Reference`; nothing is fitted to
them but the heat capacities. [Choosing-a-model.md](Choosing-a-model.md) says what follows from it.

Deviations are (ours / reference - 1) in per cent; cells show the mean and the largest size over the states, and in
brackets how many states answered, where not all did. "–": none did. Models: srk Soave-Redlich-Kwong, pr Peng-Robinson,
rk Redlich-Kwong, vdw van der Waals, mh Martin-Hou, cii Clausius II, ig ideal gas, izg ideal gas with constant Z (the
mean over the vapor states). Saturation is asked by "tq", the other states by "pt" from the default first values. Phases
whose densities differ by less than 1.5 times count as not answered. The pictures show the mean over each isotherm, of
single-phase states up to 0.8 Pc; lines that leave a panel are beyond its ends.
"""


def write(results):
    PICTURES.mkdir(exist_ok=True)
    for file in PICTURES.glob("*.svg"):
        file.unlink()
    parts = [HEAD, "## Summary\n\nMedian over the fluids of the mean deviation, in per cent. \"–\": fewer than half of the "
                   "fluids answer at half of their states.\n", summary(results), ""]
    titles = dict.fromkeys(quantity.title for quantity in QUANTITIES)
    for title in titles:
        tables = [quantity for quantity in QUANTITIES if quantity.title == title]
        name = tables[0].key.split(" ")[0] + ".svg"
        shown = [quantity.key for quantity in tables if quantity.where != DENSE]
        unit = "% of R Tc" if tables[0].remark.startswith("in ") else "deviation, %"
        picture(results, shown, unit, PICTURES / name)
        parts += [f"## {title}", ""]
        if tables[0].remark:
            parts += [tables[0].remark[0].upper() + tables[0].remark[1:] + ".", ""]
        parts += [f"![{title}: deviation over reduced temperature](Accuracy/{name})", ""]
        for quantity in tables:
            parts += [f"{quantity.where[0].upper()}{quantity.where[1:]}:", "", table_of(results, quantity), ""]
    PAGE.write_text("\n".join(parts), encoding="utf-8")


CATALOGUE_HEAD = """# Catalogue

The {count} fluids of `Fluids/` that come from the table, and what each equation of state does for them, made by
`scripts/accuracy_report`. All load under all eight models: the last digits of Pc are chosen so. In the columns:

- **s** saturation: "tq" at 0.7 and 0.9 Tc has a liquid more than twice as dense as the vapor;
- **=** the saturation table stands, but its phases are equal or nearly so at one of them;
- **-** there is no saturated state at one of them: no table, out of its range, or the search failed;
- **!** the fluid does not load.

The default is {defaults}. p_sat at Tb is the default model's saturation pressure at the true normal boiling
temperature over 101325 Pa, less 1, in per cent: {good} of {count} fluids are within 3 %.
"""

SEARCH_HEAD = """## What the searches find

Of {fluids} fluids under their default models, in per cent: how many find the state by "ph", "ps" and "hs" from the
default first values, at a temperature and a fraction of the saturation pressure or of Pc. What is missing to 100 fails
with a message or, worse, answers another state with the same two values, of liquid density or denser: ask for a second
output where that would matter, or use "pt".
"""


def saturates(fluid, Tc, folder, library_path):
    """One of the signs that CATALOGUE_HEAD explains."""
    library = Library(library_path, folder)
    try:
        library.prop(fluid, "td", 1.1 * Tc, 1, "p")
    except Failed:
        return "!"
    try:
        pairs = [[library.prop(fluid, "tq", T * Tc, q, "d") for q in (0, 1)] for T in (0.7, 0.9)]
    except Failed:
        return "-"
    return "s" if all(d_l > 2 * d_v for d_l, d_v in pairs) else "="


def pressure_at_Tb(row, folder, library_path):
    """Deviation of the saturation pressure at Tb from 1 atm in per cent; empty if the fluid sublimes there."""
    if row["notes"].startswith("sublimes"):
        return ""
    try:
        p = Library(library_path, folder).prop(row["short"], "tq", float(row["Tb"]), 1, "p")
    except Failed:
        return "no answer"
    return f"{deviation(p, 101325):.2f}"


SEARCHED = [(T, fraction, "p_sat") for T in (0.6, 0.7, 0.8, 0.9, 0.95) for fraction in (0.02, 0.1, 0.3, 0.6, 0.95)]
SEARCHED += [(T, fraction, "Pc") for T in (1.02, 1.1, 1.2, 1.5) for fraction in (0.02, 0.1, 0.3, 0.6, 0.95)]


def searches(fluid, Tc, Pc, library_path):
    """For each state of SEARCHED and for "ph", "ps" and "hs": whether the pair finds the state that "pt" found."""
    library = Library(library_path, ROOT / "Fluids")
    found = []
    for T_r, fraction, of in SEARCHED:
        T = T_r * Tc
        try:
            p = fraction * (library.prop(fluid, "tq", T, 1, "p") if of == "p_sat" else Pc)
        except Failed:
            return ""
        d = library.prop(fluid, "pt", p, T, "d")
        h, s = (library.prop(fluid, "td", T, d, output) for output in "hs")
        for pair, first, second in (("ph", p, h), ("ps", p, s), ("hs", h, s)):
            try:
                found.append(abs(library.prop(fluid, pair, first, second, "d") / d - 1) < 1e-4)
            except Failed:
                found.append(False)
    return json.dumps(found)


def search_table(choices, table, library_path):
    """The share of fluids in per cent, for each isotherm and pressure; a fluid whose saturation fails is left out."""
    counts, fluids = [0] * (3 * len(SEARCHED)), 0
    for choice in choices:
        row = table[choice["fluid"]]
        answer = child(searches, row["short"], float(row["Tc"]), float(row["Pc"]), library_path)
        if answer:
            fluids += 1
            counts = [count + found for count, found in zip(counts, json.loads(answer))]
    lines = ["| T/Tc | pair | 0.02 | 0.1 | 0.3 | 0.6 | 0.95 |", "|---" * 7 + "|"]
    for i in range(0, len(SEARCHED), 5):
        T_r, _, of = SEARCHED[i]
        for j, pair in enumerate(("ph", "ps", "hs")):
            shares = [f"{100 * counts[3 * k + j] / fluids:.0f}" for k in range(i, i + 5)]
            lines.append(f"| {f'{T_r}, of {of}' if j == 0 else ''} | {pair} | " + " | ".join(shares) + " |")
    return fluids, "\n".join(lines)


def write_catalogue(library_path):
    make = generator()
    table = {row["short"]: row for row in make.read_table("fluids.csv")}
    choices = make.read_table("choices.csv")
    lines = []
    good = 0
    with tempfile.TemporaryDirectory() as place:
        for choice in choices:
            row = table[choice["fluid"]]
            file = pathlib.Path(place, f"{row['short']}.osd")
            signs = []
            for model in MODELS:
                Z = "0.9" if model == "izg" else None
                file.write_text(make.parameter_file(row, model, choice["Pc_atm"], Z, choice["Tb"]), encoding="utf-8")
                signs.append(child(saturates, row["short"], float(row["Tc"]), place, library_path))
            file.write_text(make.parameter_file(row, choice["model"], choice["Pc_atm"], Tb=choice["Tb"]), encoding="utf-8")
            at_Tb = child(pressure_at_Tb, row, place, library_path)
            if at_Tb.lstrip("-")[:1].isdigit() and abs(float(at_Tb)) <= 3:
                good += 1
            elif at_Tb:
                at_Tb = f"**{at_Tb}**"
            file.unlink()
            lines.append(f"| {row['short']} | {row['name']} | {row['family']} | {choice['model']} | "
                         + " | ".join(signs) + f" | {at_Tb} | {choice['remark']} |")
    fluids, searched = search_table(choices, table, library_path)
    defaults = sorted({choice["model"] for choice in choices})
    heading = "| file | name | family | default | " + " | ".join(MODELS) + " | p_sat at Tb, % | remark |"
    CATALOGUE.write_text("\n".join(
        [CATALOGUE_HEAD.format(count=len(choices), defaults=" or ".join(make.MODELS[code][1] for code in defaults),
                               good=good),
         SEARCH_HEAD.format(fluids=fluids), searched, "", "## Fluids", "", heading,
         "|---" * (heading.count("|") - 1) + "|", *lines, ""]), encoding="utf-8")


if __name__ == "__main__":
    write(measure(sys.argv[1]))
    write_catalogue(sys.argv[1])
