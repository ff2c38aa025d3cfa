# SPDX-License-Identifier: MIT
"""Asks the library: the deviations of every model from the reference tables, and what every fluid of the catalogue
answers under every model."""
import collections
import decimal
import json
import multiprocessing
import pathlib
import statistics
import tempfile

from accuracy.facts import (CHOICES, FLUIDS, MAKE, MODELS, OPTIONS, REGIONS, ROOT, SATURATING, SATURATION, STATES,
                            TABLE, columns, conductivity_factor, sublimes)
from ostrel_library import Failed, Fluid, Library, child

# Deviations from the reference tables.

# The deviation in per cent at one place, T/Tc and p/Pc (None along the saturation curve); None if there is no answer.
Point = collections.namedtuple("Point", "Tr pr deviation")
REFERENCE_SATURATION = {"psat": "p_Pa", "dl": "rho_l_kg_m3", "dv": "rho_v_kg_m3", "hvap": "hvap_J_kg",
                        "cpl": "cp_l_J_kgK", "wl": "w_l_m_s", "etal": "mu_l_Pas", "lambdal": "lambda_l_W_mK"}
REFERENCE_STATE = {"d": "rho_kg_m3", "h": "h_J_kg", "cp": "cp_J_kgK", "w": "w_m_s", "gamma": "Gamma",
                   "eta": "mu_Pas", "lambda": "lambda_W_mK"}


def deviation(ours, reference):
    return 100 * (ours / reference - 1)


class Handles:
    """One fluid through a handle. All answers are in SI units; a request may raise Failed."""

    # The library's names of the outputs.
    STATE = {"d": "d", "h": "h", "cp": "cp", "w": "c", "gamma": "fundamental", "eta": "eta", "lambda": "lambda"}
    VAPOR = 1  # of the output phase

    def __init__(self, handle):
        self.handle, self.Tc, self.R = handle, handle.constant("t_crit"), handle.constant("r_gas")

    def state(self, T, p, region):
        """A state that is liquid where the reference has a vapor is none."""
        values = self.handle.state("pt", p, T, [*self.STATE.values(), "phase"])
        if region == "vapor" and values["phase"] != self.VAPOR:
            raise Failed("another phase")
        return {key: values[name] for key, name in self.STATE.items()}

    def saturated(self, T):
        liquid, vapor = self.handle.saturation(T, ["p", "d", "h", "cp", "c", "eta", "lambda"])
        return {"psat": liquid["p"], "dl": liquid["d"], "dv": vapor["d"], "hvap": vapor["h"] - liquid["h"],
                "cpl": liquid["cp"], "wl": liquid["c"], "etal": liquid["eta"], "lambdal": liquid["lambda"]}


class EntryPoints:
    """The same through the entry points of the library."""

    def __init__(self, library_path, folder, fluid):
        self.library, self.fluid, self.factor = Library(library_path, folder), fluid, conductivity_factor(fluid)
        self.Tc, self.R = self.library.info(fluid, "t_crit"), 8.314 / self.library.info(fluid, "m_mol")

    def _at(self, T, d):
        library, fluid = self.library, self.fluid
        return {"d": d, "h": library.prop(fluid, "td", T, d, "h"), "cp": library.cp(T, d), "w": library.c(T, d),
                "gamma": library.fundamental_derivative(T, d), "eta": library.prop(fluid, "td", T, d, "eta"),
                "lambda": self.factor * library.prop(fluid, "td", T, d, "lambda")}

    def state(self, T, p, _):
        return self._at(T, self.library.prop(self.fluid, "pt", p, T, "d"))

    def saturated(self, T):
        library, fluid = self.library, self.fluid
        d_l, d_v = (library.prop(fluid, "tq", T, q, "d") for q in (0, 1))
        if not d_l > 1.5 * d_v:
            raise Failed("equal phases")
        psat, liquid = library.prop(fluid, "tq", T, 1, "p"), self._at(T, d_l)
        return {"psat": psat, "dl": d_l, "dv": d_v, "hvap": library.prop(fluid, "td", T, d_v, "h") - liquid["h"],
                **{f"{key}l": liquid[key] for key in ("cp", "w", "eta", "lambda")}}


def answer(request, *arguments):
    """The numbers, or nothing if the request fails."""
    try:
        return request(*arguments)
    except Failed:
        return {}


def saturation_deviations(served, rows):
    """(quantity, point) along the saturation curve."""
    for row in rows:
        ours = answer(served.saturated, float(row["T_K"]))
        for key, column in REFERENCE_SATURATION.items():
            if row[column]:
                yield key, Point(float(row["Tr"]), None, deviation(ours[key], float(row[column])) if ours else None)


def state_deviations(served, rows):
    """(quantity, point) of single-phase states. Of enthalpies, the differences to the first state that answers are
    compared."""
    first = None
    for row in rows:
        reference = {key: float(row[column]) for key, column in REFERENCE_STATE.items() if row[column]}
        region = REGIONS[row["region"]]
        ours = answer(served.state, float(row["T_K"]), float(row["p_Pa"]), region)
        if first is None and ours:
            first = ours["h"] - reference["h"]
        for key, value in reference.items():
            if not ours:
                result = None
            elif key == "h":
                result = 100 * (ours["h"] - value - first) / (served.R * served.Tc)
            else:
                result = deviation(ours[key], value)
            yield f"{key} {region}", Point(float(row["Tr"]), float(row["pr"]), result)


def all_deviations(fluid, served, saturating):
    # The states come first, since a saturation request of the entry points may leave a singular Jacobian, which spoils
    # all later searches.
    yield from state_deviations(served, STATES[fluid])
    if saturating:
        yield from saturation_deviations(served, SATURATION[fluid])


def entry_point_deviations(fluid, model, folder, library_path):
    return json.dumps(list(all_deviations(fluid, EntryPoints(library_path, folder, fluid), model in SATURATING)))


def handle_deviations(fluid, column, folder, library_path):
    """The folder has a file of the fluid; only the Z of the ideal gas needs its own."""
    with Fluid(library_path, folder, fluid, OPTIONS[column]) as handle:
        yield from all_deviations(fluid, Handles(handle), column in columns("saturation"))


def mean_Z(fluid):
    """Compressibility factor of the gas: the mean over the vapor states, as one would choose it for a turbine."""
    M = float(TABLE[fluid]["MM"])
    values = [float(row["p_Pa"]) / (float(row["rho_kg_m3"]) * 8314 / M * float(row["T_K"]))
              for row in STATES[fluid] if REGIONS[row["region"]] == "vapor"]
    return f"{statistics.mean(values):.4f}"


def write_file(folder, fluid, model, Z=None, Pc_atm=None):
    """The fluid's parameter file under a model, in a folder for it."""
    choice = CHOICES[fluid]
    text = MAKE.parameter_file(TABLE[fluid], model, Pc_atm or choice["Pc_atm"], Z, choice["Tb"],
                               choice["transport"] == "dense")
    pathlib.Path(folder, f"{fluid}.osd").write_text(text, encoding="utf-8")


def deviations(library_path):
    """result[quantity][fluid, model]: its points, at the same places for every model; through handles and through the
    entry points."""
    handles, entry_points = (collections.defaultdict(lambda: collections.defaultdict(list)) for _ in range(2))
    with tempfile.TemporaryDirectory() as folder:
        for fluid in FLUIDS.values():
            for model in columns("vapor"):
                if model in MODELS:
                    write_file(folder, fluid, model, mean_Z(fluid) if model == "izg" else None)
                    for key, point in json.loads(child(entry_point_deviations, fluid, model, folder, library_path)):
                        entry_points[key][fluid, model].append(Point(*point))
                for key, point in handle_deviations(fluid, model, folder, library_path):
                    handles[key][fluid, model].append(point)
    return handles, entry_points


# The catalogue.

LINE_TEMPERATURES = (0.5, 0.6, 0.7, 0.8, 0.9, 0.99)  # over Tc


def lines(library_path):
    """Through handles, for each fluid and model: at which of LINE_TEMPERATURES there are saturated states, and the
    deviation of the saturation pressure at Tb from 1 atm in per cent, None without an answer."""
    result = {}
    for fluid in CHOICES:
        Tc, Tb = (float(TABLE[fluid][name] or "nan") for name in ("Tc", "Tb"))
        for model in SATURATING:
            with Fluid(library_path, ROOT / "Fluids", fluid, f"model={model}") as handle:
                stands = [bool(answer(handle.saturation, T * Tc, ["p"])) for T in LINE_TEMPERATURES]
                at_Tb = answer(handle.saturation, Tb, ["p"])
            at_Tb = round(deviation(at_Tb[0]["p"], 101325), 2) if at_Tb and not sublimes(fluid) else None
            result[fluid, model] = stands, at_Tb
    return result


# With this model the saturation table ends in equal phases for most fluids, and for some rounding decides where.
DELICATE = "pr"


def sign(fluid, folder, library_path):
    """What "tq" does at 0.7 and 0.9 Tc, as the head of the catalogue explains it."""
    library, Tc = Library(library_path, folder), float(TABLE[fluid]["Tc"])
    try:
        library.prop(fluid, "td", 1.1 * Tc, 1, "p")
    except Failed:
        return "!"
    try:
        pairs = [[library.prop(fluid, "tq", T * Tc, q, "d") for q in (0, 1)] for T in (0.7, 0.9)]
    except Failed:
        return "-"
    return "s" if all(d_l > 2 * d_v for d_l, d_v in pairs) else "="


NEIGHBOURS = 8  # on each side


def neighbours(Pc_atm):
    """Pc with its tenth digit moved."""
    value = decimal.Decimal(Pc_atm)
    unit = decimal.Decimal(1).scaleb(value.as_tuple().exponent)
    return [str(value + sign * step * unit) for step in range(1, NEIGHBOURS + 1) for sign in (-1, 1)]


def certain_sign(fluid, model, folder, library_path):
    """The sign, with a question mark if a neighbouring Pc, with which the fluid loads, has another one."""
    Pc_atm = CHOICES[fluid]["Pc_atm"]
    signs = []
    for Pc_atm in (Pc_atm, *(neighbours(Pc_atm) if model == DELICATE else [])):
        write_file(folder, fluid, model, "0.9" if model == "izg" else None, Pc_atm)
        signs.append(child(sign, fluid, folder, library_path))
    return signs[0] + ("?" if set(signs) - {signs[0], "!"} else "")


def pressure_at_Tb(fluid, folder, library_path):
    """Deviation of the saturation pressure at Tb from 1 atm in per cent."""
    try:
        p = Library(library_path, folder).prop(fluid, "tq", float(TABLE[fluid]["Tb"]), 1, "p")
    except Failed:
        return "no answer"
    return f"{deviation(p, 101325):.2f}"


def catalogue_row(fluid, library_path):
    """The row of a fluid, by the headings of the page. A fluid that sublimes has no pressure at Tb."""
    with tempfile.TemporaryDirectory() as folder:
        signs = {model: certain_sign(fluid, model, folder, library_path) for model in MODELS}
    at_Tb = "" if sublimes(fluid) else child(pressure_at_Tb, fluid, ROOT / "Fluids", library_path)
    facts, choice = TABLE[fluid], CHOICES[fluid]
    return {"file": fluid, "name": facts["name"], "family": facts["family"], "default": choice["model"], **signs,
            "p_sat at Tb, %": at_Tb, "remark": choice["remark"]}


SEARCH_PAIRS = ("ph", "ps", "hs")
SEARCH_FRACTIONS = (0.02, 0.1, 0.3, 0.6, 0.95)
SEARCH_ISOTHERMS = [(T, "p_sat") for T in (0.6, 0.7, 0.8, 0.9, 0.95)] + [(T, "Pc") for T in (1.02, 1.1, 1.2, 1.5)]


def searches(fluid, library_path):
    """found[isotherm][pair]: for each fraction whether the pair finds the state that "pt" found; empty if a saturated
    state is missing."""
    library = Library(library_path, ROOT / "Fluids")
    Tc, Pc = float(TABLE[fluid]["Tc"]), float(TABLE[fluid]["Pc"])
    found = []
    for T_r, of in SEARCH_ISOTHERMS:
        found.append([[] for _ in SEARCH_PAIRS])
        T = T_r * Tc
        for fraction in SEARCH_FRACTIONS:
            try:
                p = fraction * (library.prop(fluid, "tq", T, 1, "p") if of == "p_sat" else Pc)
            except Failed:
                return ""
            d = library.prop(fluid, "pt", p, T, "d")
            h, s = (library.prop(fluid, "td", T, d, output) for output in "hs")
            for answers, (pair, first, second) in zip(found[-1], (("ph", p, h), ("ps", p, s), ("hs", h, s))):
                try:
                    answers.append(abs(library.prop(fluid, pair, first, second, "d") / d - 1) < 1e-4)
                except Failed:
                    answers.append(False)
    return json.dumps(found)


def handle_searches(library_path):
    """How many of the same states handles find of all fluids, and how many they were asked for."""
    found = asked = 0
    for fluid in CHOICES:
        with Fluid(library_path, ROOT / "Fluids", fluid, OPTIONS[CHOICES[fluid]["model"]]) as handle:
            Tc, Pc = handle.constant("t_crit"), handle.constant("p_crit")
            for T_r, of in SEARCH_ISOTHERMS:
                T = T_r * Tc
                highest = handle.saturation(T, "p")[0]["p"] if of == "p_sat" else Pc
                for fraction in SEARCH_FRACTIONS:
                    state = handle.state("pt", fraction * highest, T, "phsd")
                    for first, second in SEARCH_PAIRS:
                        d = answer(handle.state, first + second, state[first], state[second], "d").get("d", 0)
                        found += abs(d / state["d"] - 1) < 1e-4
                        asked += 1
    return found, asked


def of_fluid(arguments):
    fluid, library_path = arguments
    return catalogue_row(fluid, library_path), child(searches, fluid, library_path)


def catalogue(library_path):
    """The rows of all fluids; and what the searches find of each fluid that has all saturated states."""
    with multiprocessing.Pool() as pool:
        answers = pool.map(of_fluid, [(fluid, library_path) for fluid in CHOICES], chunksize=4)
    return [row for row, _ in answers], [json.loads(found) for _, found in answers if found]
