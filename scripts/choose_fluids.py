# SPDX-License-Identifier: MIT
"""Finds the choices that scripts/make_fluids makes for each fluid: digits of Pc with which every model loads, a default
model that answers every input pair (if the pair is a search, at nine of ten states or more), and whether Chung's
dense gas serves its viscosity and conductivity. All are tried with the built library itself."""
import csv
import importlib.machinery
import importlib.util
import math
import pathlib
import tempfile

from ostrel_library import Failed, Library, child
from published_transport import Chung, R

ROOT = pathlib.Path(__file__).resolve().parent.parent
EQUATIONS_OF_STATE = ("COOLPROP", "HEOS", "PYCHEMQT")  # sources of constants, Fluids/README.md
# The model with the most accurate vapor pressure comes first (Documentation/Accuracy.md). Peng-Robinson and Martin-Hou
# are no defaults: the saturation table of the first collapses for most fluids, the solvers of the other meet singular
# Jacobians.
PREFERENCE = ("srk", "rk", "cii", "vdw", "ig")
# "hs" is left out: from its ideal-gas first values it reaches the vapor of few fluids under any model.
PAIRS = ("tv", "td", "pt", "pv", "pd", "ph", "ps", "ts", "vh", "vs", "vu", "dh", "ds", "du")


def generator():
    loader = importlib.machinery.SourceFileLoader("make_fluids", str(ROOT / "scripts/make_fluids"))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("make_fluids", loader))
    loader.exec_module(module)
    return module


def candidates(row, make):
    """Pc in atm, then its neighbours in the last digit, the nearest first."""
    yield make.first_digits(row)
    for step in range(1, 400):
        yield make.first_digits(row, step)
        yield make.first_digits(row, -step)


def loads(library, folder, make, row, model, Pc_atm):
    """Whether the fluid loads under the model. Each file has a name of its own, so that the library reads it."""
    loads.count += 1
    name = f"f{loads.count}"
    file = folder / f"{name}.osd"
    file.write_text(make.parameter_file(row, model, Pc_atm, "0.9" if model == "izg" else None), encoding="utf-8")
    try:
        library.prop(name, "td", 1.1 * float(row["Tc"]), 0.1, "p")
        return True
    except Failed:
        return False
    finally:
        file.unlink()


loads.count = 0


def choose_digits(row, make, library_path, folder):
    library = Library(library_path, folder)
    sensitive = ("pr", "srk", "rk")
    for Pc_atm in candidates(row, make):
        if all(loads(library, folder, make, row, model, Pc_atm) for model in sensitive):
            if not all(loads(library, folder, make, row, model, Pc_atm) for model in make.MODELS):
                break
            return Pc_atm
    return ""


def vapor_states(library, fluid, Tc, Pc):
    """(T, p) of superheated vapor, up to a tenth of the model's own saturation pressure, and of the gas above Tc.
    Nearer to saturation, for many fluids no model answers "ph" and "ps" from their default first values."""
    for T in (0.7, 0.8, 0.9, 0.95):
        p_sat = library.prop(fluid, "tq", T * Tc, 1, "p")
        for fraction in (0.02, 0.05, 0.1):
            yield T * Tc, fraction * p_sat
    for T in (1.05, 1.2, 1.5):
        for fraction in (0.02, 0.1, 0.3, 0.6):
            yield T * Tc, fraction * Pc


def answers_every_pair(row, file, library_path):
    """'yes' and the states at which a search from its default first values misses; or the reason why the model does not
    pass."""
    Tc, Pc = float(row["Tc"]), float(row["Pc"])
    library = Library(library_path, file.parent)
    fluid = file.stem

    def value(pair, a, b, output):
        return library.prop(fluid, pair, a, b, output)

    def finds(pair, a, b, T, d):
        try:
            return (math.isclose(value(pair, a, b, "t"), T, rel_tol=1e-5)
                    and math.isclose(value(pair, a, b, "d"), d, rel_tol=1e-4))
        except Failed:
            return False

    try:
        for T in (0.7 * Tc, 0.9 * Tc):
            p = value("tq", T, 1, "p")
            if not value("tq", T, 0, "d") > 2 * value("tq", T, 1, "d"):
                return f"saturation table collapsed at {T / Tc:.2f} Tc"
            if not math.isclose(value("pq", p, 1, "t"), T, rel_tol=1e-5):
                return f"pq misses tq at {T / Tc:.2f} Tc"
        states = list(vapor_states(library, fluid, Tc, Pc))
        misses = []
        for T, p in states:
            d = value("pt", p, T, "d")
            known = {"t": T, "p": p, "d": d, "v": 1 / d}
            known.update((output, value("td", T, d, output)) for output in ("h", "s", "u"))
            misses += [f"{pair} at {T / Tc:.4g} Tc {p / Pc:.2g} Pc"
                       for pair in PAIRS if not finds(pair, known[pair[0]], known[pair[1]], T, d)]
            for output in ("eta", "lambda"):
                if not value("td", T, d, output) > 0:
                    return f"{output} not positive at {T / Tc:.4g} Tc, {p / Pc:.2g} Pc"
    except Failed as failure:
        return str(failure)
    if any(sum(miss.startswith(pair) for miss in misses) > len(states) / 10 for pair in PAIRS):
        return "misses " + ", ".join(misses)
    return " ".join(["yes"] + (["misses " + ", ".join(misses)] if misses else []))


def saturation_pressure(row, file, library_path):
    """p_sat [Pa] at the true boiling temperature, as text."""
    library = Library(library_path, file.parent)
    return repr(library.prop(file.stem, "tq", float(row["Tb"]), 1, "p"))


def boiling_point(row, make, library_path, file, model, Pc_atm):
    """Tb of the file if it is not the table's Tb_edm, which gives the table's acentric factor. If that factor is not of
    an equation of state and the model misses 1 atm at the true boiling temperature by more than 3 %, the factor and the
    boiling temperature disagree. The measured boiling temperature is then trusted: Tb is the one with which the model
    has 1 atm there. Empty otherwise."""
    def miss(Tb):
        file.write_text(make.parameter_file(row, model, Pc_atm, Tb=Tb), encoding="utf-8")
        pressure = child(saturation_pressure, row, file, library_path)
        return float(pressure) / 101325 - 1 if pressure else math.nan

    first = float(row["Tb_edm"])
    if make.sources(row)["omega"] in EQUATIONS_OF_STATE or abs(miss(row["Tb_edm"])) <= 0.03:
        return ""
    # The pressure falls when the acentric factor grows, and the factor grows with Tb.
    low, high = 0.95 * first, min(1.05 * first, 0.97 * float(row["Tc"]))
    for _ in range(25):
        middle = (low + high) / 2
        if miss(f"{middle:.6f}") > 0:
            low = middle
        else:
            high = middle
    Tb = f"{middle:.3f}"
    return Tb if abs(miss(Tb)) < 1e-3 else ""


TEMPERATURES = (0.6, 0.65, 0.7, 0.75, 0.8, 0.85, 0.9, 0.95, 0.98, 1, 1.02, 1.05, 1.1, 1.2, 1.35, 1.5, 1.75, 2, 2.5, 3)
DENSITIES = 40  # that many steps from the dilute gas to the largest density
ENTRY_POINTS_FACTOR = 418.4**2 / 1e4  # from the library's unit of conductivity to W/(m K)


def dense_gas_serves(row, file, make, library_path):
    """'yes' if Chung's dense gas is sensible from 0.6 to 3 Tc, both as the entry points have it and as it was
    published; otherwise what is wrong. The states reach up to 2.5 critical densities of the fluid, as far as the model
    goes (1.05 covolumes), and stand outside the model's dome."""
    library, fluid = Library(library_path, file.parent), file.stem
    Tc, Pc = library.info(fluid, "t_crit"), library.info(fluid, "p_crit")
    specific = R / float(row["MM"])
    vc = float(row["Zc"]) * specific * Tc / Pc
    published = Chung(row, file_omega(row, file, Pc), lambda T: make.cv_over_R(row, T))
    largest = min(2.5, vc / (1.05 * library.smallest_volume()))

    def by_entry_points(T, v):
        return library.prop(fluid, "tv", T, v, "eta"), library.prop(fluid, "tv", T, v, "lambda") * ENTRY_POINTS_FACTOR

    for T_r in TEMPERATURES:
        T = T_r * Tc
        mu = published.dilute_viscosity(T)
        forms = {"entry points": (by_entry_points, by_entry_points(T, 1e6 * vc), 0.6),
                 "published": (lambda T, v: published.dense(T, vc / v), (mu, published.dilute_conductivity(T, mu)), 0.7)}
        try:
            liquid, vapor = (library.prop(fluid, "tq", T, q, "v") for q in (0, 1)) if T_r < 1 else (0, 0)
        except Failed:
            liquid, vapor = 0, 0
        for name, (values, dilute, lowest) in forms.items():
            where = f"{name}, {T_r:g} Tc"
            if not dilute[1] >= 0.99 * 15 / 4 * specific * dilute[0] > 0:
                return f"{where}: dilute conductivity below that of a monatomic gas"
            if row["suth_mu"] and float(row["suth_Tmin"]) <= T <= float(row["suth_Tmax"]):
                if not lowest <= dilute[0] / make.sutherland(row, T) <= 1.3:
                    return f"{where}: dilute viscosity far from Sutherland's law"
            for step in range(1, DENSITIES + 1):
                v = vc / (largest * step / DENSITIES)
                if liquid < v < vapor:
                    continue
                for value, thin, what in zip(values(T, v), dilute, ("viscosity", "conductivity")):
                    if not value >= thin / 2:
                        return f"{where}, {vc / v:.3g} critical densities: {what} {value / thin:.2g} of the dilute gas"
    return "yes"


def file_omega(row, file, Pc):
    """The acentric factor that the library derives from the Tb of a parameter file."""
    Tb, Tc = float(file.read_text(encoding="utf-8").splitlines()[9].split()[0]), float(row["Tc"])
    return 3 / 7 * math.log10(Pc / 101325) * Tb / (Tc - Tb) - 1


def choose(row, make, library_path, folder):
    """(model, Pc_atm, Tb, transport, remark), or (None, reason)."""
    try:
        make.parameter_file(row, "srk", "1")
    except make.NotMade as reason:
        return None, str(reason)
    Pc_atm = child(choose_digits, row, make, library_path, folder)
    if not Pc_atm:
        return None, "no digits of Pc with which all models load"
    file = folder / f"{row['short']}.osd"
    refused = []
    for model in PREFERENCE:
        Tb = boiling_point(row, make, library_path, file, model, Pc_atm)
        file.write_text(make.parameter_file(row, model, Pc_atm, Tb=Tb), encoding="utf-8")
        dense = make.knows_chung(row) and child(dense_gas_serves, row, file, make, library_path) == "yes"
        file.write_text(make.parameter_file(row, model, Pc_atm, Tb=Tb, dense=dense), encoding="utf-8")
        answer = child(answers_every_pair, row, file, library_path) or "died"
        if answer.startswith("yes"):
            return model, Pc_atm, Tb, "dense" if dense else "dilute", "; ".join(refused + ([answer[4:]] if answer[4:] else []))
        refused.append(f"{model}: {answer}")
    return None, "; ".join(refused)


def write_choices(rows, library_path):
    make = generator()
    with tempfile.TemporaryDirectory() as folder, \
            open(ROOT / "Fluids/choices.csv", "w", encoding="utf-8", newline="") as output, \
            open(ROOT / "Fluids/left_out.csv", "w", encoding="utf-8", newline="") as left_out:
        chosen = csv.writer(output, lineterminator="\n")
        chosen.writerow(("fluid", "model", "Pc_atm", "Tb", "transport", "remark"))
        missing = csv.writer(left_out, lineterminator="\n")
        missing.writerow(("fluid", "reason"))
        for name, row in rows.items():
            choice = choose(row, make, library_path, pathlib.Path(folder))
            if choice[0]:
                chosen.writerow((name, *choice))
            else:
                missing.writerow((name, choice[1]))
