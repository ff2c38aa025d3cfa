# SPDX-License-Identifier: MIT
"""What is compared: the reference tables, the fluids, the models and the quantities; and where the constants of the
fluids come from. Nothing here asks the library."""
import collections
import csv
import pathlib

from choose_fluids import ENTRY_POINTS_FACTOR, EQUATIONS_OF_STATE, generator

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
REFERENCE = ROOT / "Documentation/Reference"

MAKE = generator()
TABLE = {row["short"]: row for row in MAKE.read_table("fluids.csv")}
CHOICES = {choice["fluid"]: choice for choice in MAKE.read_table("choices.csv")}

MODELS = ("srk", "pr", "rk", "vdw", "mh", "cii", "ig", "izg")
MODEL_NAMES = {model: MAKE.MODELS[model][1] for model in MODELS}
SATURATING = MODELS[:6]
VOLUME_MODELS = ("srk", "pr", "rk")  # these have the option volume=translated
TRANSLATED = {model: f"{model} translated" for model in VOLUME_MODELS}
COLUMN_NAMES = MODEL_NAMES | {TRANSLATED[model]: f"{MODEL_NAMES[model]}, translated" for model in VOLUME_MODELS}
VAPOR_BRANCH = "mh vapor"
OPTIONS = {model: f"model={model}" for model in MODELS} | {  # of the handle of each column
    TRANSLATED[model]: f"model={model}; volume=translated" for model in VOLUME_MODELS} | {
    VAPOR_BRANCH: "model=mh; states=metastable; phase=vapor"}
FLUIDS = {  # name in the reference tables: name in Fluids/
    "Argon": "argon", "Nitrogen": "nitrogen", "Methane": "methane", "Ethane": "ethane", "n-Propane": "propane",
    "n-Butane": "nbutane", "Toluene": "toluene", "CarbonDioxide": "co2", "R134a": "r134a", "MDM": "mdm",
    "Ammonia": "ammonia", "Water": "water"}


def read(name):
    """The rows of a reference table, for each fluid by its name in Fluids/."""
    with open(REFERENCE / name, encoding="utf-8", newline="") as file:
        rows = list(csv.DictReader(line for line in file if not line.startswith("#")))
    return {fluid: [row for row in rows if row["fluid"] == name] for name, fluid in FLUIDS.items()}


SATURATION, STATES = read("saturation.csv"), read("states.csv")
REGIONS = {"vapour": "vapor", "gas_T_above_Tc": "gas", "supercritical": "dense"}


def span(rows, key):
    """'lowest to highest' of a column."""
    values = [float(row[key]) for row in rows]
    return f"{min(values):.3g} to {max(values):.3g}"


def places():
    """Where the states of the saturation curve and of each region are, in words."""
    words = {"saturation": f"saturation, {span(sum(SATURATION.values(), []), 'Tr')} Tc"}
    for name, region in REGIONS.items():
        rows = [row for row in sum(STATES.values(), []) if row["region"] == name]
        pressures = f"{span(rows, 'pr')} Pc" if region != "vapor" else "0.01 to 0.97 of the saturation pressure"
        kind = "supercritical" if region == "dense" else region
        words[region] = f"{kind}, {span(rows, 'Tr')} Tc and {pressures}"
    return words


def dense_places():
    """{p/Pc: where the supercritical states of this pressure are, in words}."""
    rows = [row for row in sum(STATES.values(), []) if REGIONS[row["region"]] == "dense"]
    return {float(pressure): f"{span([row for row in rows if row['pr'] == pressure], 'Tr')} Tc and {pressure} Pc"
            for pressure in sorted({row["pr"] for row in rows}, key=float)}


def conductivity_factor(fluid):
    """From the library's conductivity to W/(m K); ten times larger beside another viscosity than Chung's dense gas."""
    return ENTRY_POINTS_FACTOR * (1 if CHOICES[fluid]["transport"] == "dense" else 10)


def conductivity_remark():
    factors = collections.defaultdict(list)
    for fluid in FLUIDS.values():
        factors[conductivity_factor(fluid)].append(fluid)
    (usual, _), *others = sorted(factors.items())
    return f"the library's values times {usual:.5g}" + "".join(
        f", of {' and '.join(fluids)} times {factor:.5g}" for factor, fluids in others)


# `of_volume`: a translation of the volume changes the quantity.
Quantity = collections.namedtuple("Quantity", "key region title remark of_volume")
QUANTITIES = (
    *(Quantity(key, "saturation", title, "", of_volume) for key, title, of_volume in (
        ("psat", "Saturation pressure", False),
        ("dl", "Density of the saturated liquid", True),
        ("dv", "Density of the saturated vapor", True),
        ("hvap", "Enthalpy of vaporisation", False),
        ("cpl", "Isobaric heat capacity of the saturated liquid", False),
        ("wl", "Speed of sound in the saturated liquid", True),
        ("etal", "Viscosity of the saturated liquid", True),
        ("lambdal", "Thermal conductivity of the saturated liquid", True))),
    *(Quantity(f"{key} {region}", region, title, remark, of_volume)
      for region in REGIONS.values()
      for key, title, remark, of_volume in (
          ("d", "Density at given t, p", "", True),
          ("h", "Enthalpy difference to the most dilute state", "in per cent of R Tc", True),
          ("cp", "Isobaric heat capacity", "", False),
          ("w", "Speed of sound", "", True),
          ("gamma", "Fundamental derivative of gas dynamics", "", True),
          ("eta", "Viscosity", "", True),
          ("lambda", "Thermal conductivity", "", True))),
)


def columns_of_models(region):
    return SATURATING if region == "saturation" else MODELS


def columns(region, of_volume=True):
    """The columns of a table: the models that have states of the region, and the further options of handles."""
    return [column for model in columns_of_models(region)
            for column in (model, of_volume and TRANSLATED.get(model),
                           model == "mh" and region == "vapor" and VAPOR_BRANCH) if column]


# The sources of the constants.

CRITICAL_POINT = ("Tc", "Pc", "Vc")
CURVE = (*CRITICAL_POINT, "omega")  # on these the curve of a cubic equation depends


def all_from_equations(row, quantities):
    """Whether all these constants of a row of the table come from reference equations of state."""
    tags = MAKE.sources(row)
    return all(tags[quantity] in EQUATIONS_OF_STATE for quantity in quantities)


def source_counts():
    """The number of rows, of those whose critical point comes from a reference equation, of those whose acentric factor
    does, too; and the same for the fluids of the comparison."""
    def count(rows):
        return len(rows), *(sum(all_from_equations(row, what) for row in rows) for what in (CRITICAL_POINT, CURVE))
    return count(TABLE.values()), count([TABLE[fluid] for fluid in FLUIDS.values()])


def heat_capacity_from_equation(row):
    """Whether the heat capacity of the parameter file is fitted to that of a reference equation."""
    tag = MAKE.sources(row)["cp" if MAKE.heat_capacity_fit(row)[0] == "polynomial" else "pu"]
    return any(source in tag for source in EQUATIONS_OF_STATE)


def other_critical_points():
    """How often each other source gives the critical temperature, the most frequent first."""
    tags = (MAKE.sources(row)["Tc"] for row in TABLE.values() if not all_from_equations(row, CRITICAL_POINT))
    return collections.Counter(tags).most_common()


def boiling_point_fitted(fluid):
    """Whether the Tb of the file was chosen so that the default model has 1 atm at the true boiling temperature."""
    return bool(CHOICES[fluid]["Tb"])


def sublimes(fluid):
    return TABLE[fluid]["notes"].startswith("sublimes")
