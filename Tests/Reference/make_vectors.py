#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the vectors of this folder anew, with the same bytes every time. scripts/make_reference_vectors runs it, which
takes some minutes.

Nothing here is computed with the library or read from its sources. The equations of state, the heat capacities and the
correlations stand in helmholtz.py, martin_hou.py and transport.py as they are published.

The set proves that there is no mistake in any model, any form of the heat capacity, the sum of both, the quantities
that follow from them, the initialisation and transport. No model knows the form and no form knows the model. The set
therefore does not have every pair of them, and a number that one of them does not change is recorded once:

  P, e, s, cv, derivatives   Every model has two fluids with different forms, and ten places for each fluid. All forms
                             with both sets of coefficients are among these sixteen pairs of model and fluid.
  the ideal gas alone        Every form with both sets of coefficients has ten temperatures.
  h, mu, c, cp, Gamma, ...   One of the two fluids of every model has them, at the ten places. All forms are among them.
  initialisation             Thirteen fluids have all forms, and coefficients with and without dimension.
                             Each is loaded under two models, and every model has three fluids or more. The numbers that
                             no model changes are recorded under the first model only.
  saturation                 Every model that has saturated states has one form for each fluid.
  transport                  Twelve fluids have all models of it. A law of the temperature alone is recorded for the
                             fluids that use it and for those with a constant viscosity. Reduced and constant
                             coefficients are recorded at three places of nine.
"""
import csv
import itertools
import multiprocessing
import pathlib
import random
import sys
import textwrap

from mpmath import mp, mpf

import helmholtz
import martin_hou
import saturation
import transport
from taylor import Inputs, Taylor, scales, sensitivities

FOLDER = pathlib.Path(__file__).resolve().parent


def number(x):
    return mp.nstr(x, 30)


def judged(pairs):
    return " ".join(f"{number(x)} {mp.nstr(scale, 3)}" for x, scale in pairs)


# States.

def critical(suffix, Zc, Tc=300.0, Pc=5e6, Tb=200.0):
    """The reduced parameters of a fluid, as exact doubles, and its critical point (T, v)."""
    one = {"Rgas": 1.0}
    cube = mp.cbrt(2)
    a_rk, b_rk = 1 / (9 * (cube - 1)), (cube - 1) / 3
    if suffix == "IG":
        return one, 1 / Zc, 1.0
    if suffix == "IZG":
        return {**one, "Z_const": Zc}, 1 / Zc, 1.0
    if suffix == "vdWG":  # the second fluid is in units of a point that is not the critical one
        f = Zc / 0.375
        return {**one, "a": float(3 / f), "b": float(f * f / 3)}, float(8 / (3 * f ** 3)), f * f
    if suffix == "RKG":
        f = mpf(Zc) * 3
        third = mpf(1) / 3
        return ({**one, "a": float(a_rk / third ** mpf("2.5") / f), "b": float(b_rk * 3 * f)},
                float(3 / f ** (mpf(4) / 3)), float(f))
    if suffix == "SRKG":
        return ({**one, "b": float(b_rk * 3), "c_a": float(a_rk * 9), "fw": float(0.48 + 1.3 * Zc),
                 "Zc": float(mpf(1) / 3)}, 3.0, 1.0)
    if suffix == "PRG":
        own = mp.findroot(lambda z: 1 / (z - mpf("0.0778")) - 1 -
                          mpf("0.45724") / (z * z + 2 * mpf("0.0778") * z - mpf("0.0778") ** 2), mpf("0.3214"))
        return ({**one, "b": float(mpf("0.0778") / own), "c_a": float(mpf("0.45724") / own ** 2),
                 "fw": float(0.37 + 1.4 * Zc), "Zc": float(own)}, float(1 / own), 1.0)
    if suffix == "CIIG":
        return ({**one, "a": float(mpf(27) / 64 / mpf(Zc) ** 3), "b": float(1 - 1 / (4 * mpf(Zc))),
                 "c": float(3 / (8 * mpf(Zc)) - 1)}, 1 / Zc, 1.0)
    found = martin_hou.coefficients(Inputs({"Zc": Zc, "Tc": Tc, "Pc": Pc, "Tb": Tb}))
    return ({**one, **{key: [float(x) for x in value] if isinstance(value, list) else float(value)
                       for key, value in found.items()}}, 1 / Zc, 1.0)


def heat_capacity(form, fluid, R, Tc):
    """Coefficients as exact doubles, J/(kg K) and K."""
    if form == 1:
        return {"cv_0": (655.3, 1840.25)[fluid]}
    if form == 2:
        return {"cv_oo_Tc": (640.7, 1510.5)[fluid], "np": (0.41, -0.37)[fluid], "Tc": Tc}
    if form == 3:
        return ({"cv_0": 310.4, "a_i": [1.4, -6.0e-4, 9000.0], "n_i": [1.0, 2.0, -0.5]},
                {"cv_0": 95.6, "a_i": [4.41, -3.1e-3, 1.05e-6, -1.2e-10], "n_i": [1.0, 2.0, 3.0, 4.0]})[fluid]
    if form == 4:
        h = ({"T_k": [20.0, 180.0, 290.0, 450.0, 900.0], "cv_0_k": [420.0, 350.0, 610.5, 380.0, 900.0],
              "n_k": [1, 2, 0, 3, 1], "a_ik": [0.7, 1.3, -6.0e-4, 1.1, -2.0e-4, 3000.0, 310.5],
              "n_ik": [1.0, 1.0, 2.0, 1.0, 2.0, -0.5, 0.05]},
             {"T_k": [0.5, 320.0, 1300.0], "cv_0_k": [800.0, 650.0, 2100.0], "n_k": [2, 1, 2],
              "a_ik": [2.5, -7.0e-4, 2.4, 0.31, -1.0e-5], "n_ik": [1.0, 1.9, 1.0, 1.0, 2.0]})[fluid]
        return {name: [x if isinstance(x, int) else float(x) for x in value]
                for name, value in join_intervals(h).items()}
    return ({"cv_0": 472.3, "Tv": [957.3, 957.3, 1952.2, 3280.5]},
            {"cv_0": 1036.5, "Tv": [231.0, 1190.7, 1190.7, 1190.7, 4246.1]})[fluid]


def join_intervals(h):
    """The constants that make phi and psi continuous, in full precision."""
    K = len(h["cv_0_k"])
    phi0, psi0 = [mpf(0)] * K, [mpf(0)] * K
    for k in range(1, K):
        bound = Taylor.variable(mpf(h["T_k"][k]), (1, 0))
        sides = []
        for j in (k - 1, k):
            first = sum(h["n_k"][:j])
            last = first + h["n_k"][j]
            a = helmholtz.power_terms(mpf(h["cv_0_k"][j]), [mpf(x) for x in h["a_ik"][first:last]],
                                      [mpf(x) for x in h["n_ik"][first:last]], bound)
            sides.append((a.c[0] - bound.value * a.c[1], -a.c[1]))
        phi0[k] = phi0[k - 1] + sides[0][0] - sides[1][0]
        psi0[k] = psi0[k - 1] + sides[0][1] - sides[1][1]
    return {**h, "phi0_k": phi0, "psi0_k": psi0}


def exact_reference(chance, R, T_ref, P_ref):
    """Constants near these with P_ref v_ref = R T_ref without any rounding: each is a product of two short numbers."""
    def short(x):
        exponent = mp.floor(mp.log(abs(x), 2)) - 23
        return float(mp.nint(x / mpf(2) ** exponent) * mpf(2) ** exponent)

    r = short(2000 * (1 + chance.random()))
    t = short(P_ref / r)
    r2, t2 = short(R / r), short(T_ref / t)
    gas = {"R": r * r2, "T_ref": t * t2, "P_ref": r * t, "v_ref": r2 * t2}
    assert mpf(gas["R"]) * mpf(gas["T_ref"]) == mpf(gas["P_ref"]) * mpf(gas["v_ref"])
    assert mpf(gas["R"]) == mpf(r) * mpf(r2) and mpf(gas["v_ref"]) == mpf(r2) * mpf(t2)
    return gas


# "T" is T over the critical temperature; "v" is v over the critical volume, "w" is (v - b)/(vc - b), "b" is v/b - 1.
PLACES = ((("T", 1.1), ("v", 1e4)), (("T", 0.47), ("v", 3e6)), (("T", 7.9), ("v", 2e5)), (("T", 0.83), ("v", 15.0)),
          (("T", 1.5), ("w", 0.7)), (("T", 1 + 1e-3), ("v", 1 - 1e-3)), (("T", 1 - 1e-6), ("v", 1 + 1e-6)),
          (("T", 0.62), ("w", 0.23)), (("T", 4.1), ("w", 0.08)), (("T", 1.3), ("b", 1e-3)))


def place(chance, at, b, T_c, v_c, fluid):
    (_, T), (kind, v) = at
    jitter = 1 + 0.2 * (chance.random() - 0.5)
    if abs(T - 1) < 0.01:  # the second fluid lies on the other side of the critical point
        side = 1 if fluid == 0 else -1
        return T_c * (1 + side * (T - 1) * jitter), v_c * (1 + side * (v - 1) * jitter)
    T = T_c * T * jitter
    if kind == "v":
        return T, v_c * v * jitter
    if kind == "w":
        return T, b + (v_c - b) * v * jitter
    return T, (b * (1 + (v if fluid == 0 else v * 1e-3) * jitter) if b > 0 else v_c * v)


def settings(suffix, parameters, heat, gas, form):
    lines = [f"set {suffix}.{name} {values(value)}" for name, value in parameters.items()]
    lines += [f"set gas.{name} {value!r}" for name, value in gas.items()]
    lines.append(f"set heat.function_type {form}")
    if form == 4:
        rows = max(heat["n_k"])
        heat = {**heat, "T_k": [*heat["T_k"], sys.float_info.max], "terms": rows}
        for name in ("a_ik", "n_ik"):
            columns, flat = [], iter(heat[name])
            for count in heat["n_k"]:
                columns += [*itertools.islice(flat, count), *[0.0] * (rows - count)]
            heat[name] = columns
    return lines + [f"set heat.{name} {values(value)}" for name, value in heat.items()]


def values(value):
    return " ".join(repr(x) for x in value) if isinstance(value, list) else repr(value)


def load(model, form, fluid):
    """Reduced parameters, heat capacity, record and critical point of one of two fluids."""
    chance = random.Random(1000 * model.gas_type + 10 * form + fluid)
    Zc = (0.2746, 0.2915)[fluid]
    if model.suffix in ("vdWG", "RKG") and fluid == 0:
        Zc = {"vdWG": 0.375, "RKG": 1 / 3}[model.suffix]
    if model.suffix == "IG":
        Zc = 1.0
    parameters, T_c, v_c = critical(model.suffix, Zc, (304.1, 562.0)[fluid], (7.38e6, 4.9e6)[fluid],
                                    (185.0, 352.0)[fluid])
    Tc, R = (304.1, 562.0)[fluid], (188.9, 106.4)[fluid]
    gas = exact_reference(chance, R, Tc / T_c, (7.38e6, 4.9e6)[fluid])
    heat = heat_capacity(form, fluid, R, float(gas["T_ref"] * T_c))
    gas = {**gas, "Z_ref": 1 / T_c, "Zc": 1 / T_c, "e_0": 0.0, "s_0": 0.0}
    # Energy and entropy are zero at the reference point.
    at = dict(helmholtz.state(model, form, parameters, heat, gas, 1 / gas["Z_ref"], 1.0, {"model"}))
    gas["e_0"], gas["s_0"] = (float(-at[operation][0][0]) for operation in ("e__T_v", "s__T_v"))
    return chance, parameters, heat, gas, T_c, v_c


def state_lines(index):
    model = helmholtz.MODELS[index]
    lines = []
    for fluid in range(2):
        form = (index + 2 * fluid) % 5 + 1
        groups = {"model"}
        if index < len(helmholtz.HEATS):  # the models from there on have the same forms with the same coefficients
            groups.add("ideal gas")
        if fluid == index % 2:
            groups.add("derived")
        chance, parameters, heat, gas, T_c, v_c = load(model, form, fluid)
        lines.append(f"model {model.gas_type} {model.suffix}")
        lines += settings(model.suffix, parameters, heat, gas, form)
        b = model.covolume(parameters)
        for at in PLACES:
            T, v = place(chance, at, b, T_c, v_c, fluid)
            lines.append(f"at {T!r} {v!r}")
            for operation, pairs in helmholtz.state(model, form, parameters, heat, gas, T, v, groups):
                lines.append(f"{operation} {judged(pairs)}")
    return lines


# Transport.

# Viscosity model, conductivity model, whether there are critical data, heat capacity.
TRANSPORT = ((1, 1, True, 1), (2, 2, True, 5), (3, 3, True, 5), (3, 3, True, 3), (4, 1, True, 4), (5, 2, True, 2),
             (6, 3, True, 1), (1, 3, True, 5), (4, 2, True, 3), (5, 4, False, 5), (6, 4, False, 3), (1, 4, False, 1))
# The codes of the viscosity models that these laws of the temperature alone are.
LAWS = {"corresp_state_viscosity": 4, "sutherland_law_viscosity": 5, "linear_viscosity": 6}
POLAR = ((0.22394, 0.0, 0.0), (0.34429, 1.28006, 0.075908), (0.644, 0.75358, 0.174823), (-0.219, 0.3, 0.0))
# (T/Tc or, without critical data, T/T_ref; v/v_ref).
TRANSPORT_PLACES = ((0.71, 900.0), (1.02, 3.1e6), (1.7, 40.0), (6.3, 7.7), (1.31, 1.9), (1.1, 1.06), (1.06, 0.83),
                    (2.9, 0.61), (0.66, 0.43))


def transport_lines():
    lines = []
    for x in (0.3, 0.47, 0.8, 1.0, 1.2593, 1.9, 3.3, 7.0, 15.5, 42.0, 100.0):
        base, slopes = sensitivities(lambda p: [transport.collision_integral(p, p["T_star"])], {"T_star": x})
        lines += [f"at {x!r} 0", f"collision_integral {judged(zip(base, scales(base, slopes)))}"]
    for n, (viscosity, conductivity, vapor, form) in enumerate(TRANSPORT):
        chance = random.Random(n)
        T_c = 3.1
        Tc, Pc, MM = 250.0 + 400.0 * chance.random(), 2e6 + 6e6 * chance.random(), 16.0 + 90.0 * chance.random()
        gas = exact_reference(chance, 8314.0 / MM, Tc / T_c, Pc)
        omega, mur, kh = POLAR[n % len(POLAR)]
        gas |= {"MM": MM}
        if vapor:
            gas |= {"Tc": Tc, "Pc": Pc, "vc": gas["v_ref"], "omega": omega, "mur": mur, "kh": kh}
        models = {"viscosity_model": viscosity, "thermal_cond_model": conductivity, "mu_const": 1.23e-5,
                  "kk_const": 0.0417, "mu_ref_s": 1.79e-5, "T_ref_s": 300.0, "Tchar_s": 109.3, "mu_ref_l": 1.33e-5,
                  "T_ref_l": 310.5, "Pr": 0.713}
        heat = heat_capacity(form, n % 2, gas["R"], Tc)
        equation = {"Rgas": 1.0, "a": 0.5, "b": 0.25}
        lines += ["model 2 vdWG", *settings("vdWG", equation, heat, {**gas, "vapor": int(vapor)}, form)]
        lines += [f"set transport.{name} {value!r}" for name, value in models.items()]
        everything = {**heat, **gas, **models, **equation, "form": form, "vapor": vapor}
        lines.append("initialise")
        reference = {}
        shape = {name: len(found) for name, found in transport.at_initialisation(Inputs(everything)).items()}
        base, slopes = sensitivities(lambda p: flat(transport.at_initialisation(p)), everything)
        at = 0
        for name, count in shape.items():
            pairs = list(zip(base, scales(base, slopes)))[at:at + count]
            reference[name] = pairs[0]
            lines.append(f"transport.{name} {judged(pairs)}")
            at += count
        for number_of_place, (t, w) in enumerate(TRANSPORT_PLACES):
            one_of_three = number_of_place % 3 == 0
            if (viscosity, conductivity) == (1, 1) and not one_of_three:
                continue
            t *= T_c if vapor else 1.0
            if form == 4 and t * gas["T_ref"] > 1e4:
                continue
            lines.append(f"at {t!r} {w!r}")
            where = {**everything, "t": t, "w": w}
            found = transport.at_state(Inputs(where), t, w)
            base, slopes = sensitivities(lambda p: flat(transport.at_state(p, t, w)), where)
            scale = scales(base, slopes)
            at = 0
            for name, results in found.items():
                pairs = list(zip(base, scale))[at:at + len(results)]
                at += len(results)
                if viscosity not in (1, LAWS.get(name, viscosity)):
                    continue
                lines.append(f"{name} {judged(pairs)}")
                if name == "transport_coefficients_dim" and one_of_three:
                    reduced = []
                    for (x, x_scale), (ref, ref_scale) in zip(pairs, (reference["mu_ref"], reference["kk_ref"])):
                        reduced.append((x / ref, abs(x / ref) * (1 + x_scale / abs(x) + ref_scale / abs(ref))))
                    lines.append(f"transport_coefficients {judged(reduced)}")
    return lines


def flat(named):
    return [x for values_ in named.values() for x in values_]


# Initialisation.

FLUIDS = ("nitrogen", "co2", "water", "methane", "propane", "r134a", "toluene", "ammonia", "argon", "benzene", "mdm",
          "ethanol", "hydrogen")
INPUTS = ("MM", "Tc", "Pc_atm", "Zc", "Tb")
OF_THE_FLUID = ("gas.R", "gas.omega", "gas.Pc", "gas.P_ref")  # the same under every model


def rounded_text(x):
    return f"{x:.9g}"


def heat_of(row, n):
    """Form, whether dimensionless, and the coefficients of a file: cv/R and T/T_ref if dimensionless, else cv and T."""
    form, adim = n % 5 + 1, (n + n // 5) % 2 == 1
    R = 1.0 if adim else 8314.0 / float(row["MM"])

    def c(x):
        return float(rounded_text(x * R))

    if form == 1:
        return form, adim, {"cv_0": c(float(row["cp298"]) - 1)}
    if form == 2:
        return form, adim, {"cv_oo_Tc": c(float(row["cp298"]) - 1), "np": 0.41}
    if form == 3:
        a = [float(row[f"cp_a{i}"]) for i in range(5)]
        return form, adim, {"cv_0": c(a[0] - 1), "a_i": [c(x) for x in a[1:]], "n_i": [1.0, 2.0, 3.0, 4.0]}
    if form == 4:
        bounds = [0.05, 2.0, 4.5] if adim else [1.0, 130.0, 900.0]
        return form, adim, {"T_k": bounds, "cv_0_k": [c(2.6), c(2.1), c(5.5)], "n_k": [1, 2, 0],
                            "a_ik": [c(0.003), c(0.0065), c(-2.1e-6)], "n_ik": [1.0, 1.0, 1.9]}
    theta = [float(t) for t, count in zip(row["pu_theta"].split(";"), row["pu_n"].split(";"))
             for _ in range(min(int(count), 3))]
    return form, adim, {"cv_0": c(float(row["pu_c0"]) - 1), "Tv": [t / 128.0 for t in theta] if adim else theta}


def records(row, Pc_atm, gas_type, Z_const, heat):
    lines = ["Names", row["short"], row["formula"], "Constants", row["MM"], "T", row["Tc"], Pc_atm, row["Zc"],
             row["Tb_edm"], "0", "0", str(gas_type)]
    return [*lines, *([repr(Z_const)] if gas_type == 8 else []), *heat_records(heat)]


def heat_records(heat):
    form, adim, h = heat
    lines = ["T" if adim else "F", str(form)]
    if form == 2:
        return lines + [f"{h['cv_oo_Tc']!r} {h['np']!r}"]
    if form == 4:
        lines += [str(len(h["n_k"])), values(h["T_k"]), values(h["cv_0_k"]), values(h["n_k"])]
        for k, count in enumerate(h["n_k"]):
            first = sum(h["n_k"][:k])
            lines += [values(h[name][first:first + count]) for name in ("a_ik", "n_ik")]
        return lines
    if form == 3:
        lines.append(str(len(h["a_i"])))
    lines.append(repr(h["cv_0"]))
    if form == 3:
        return lines + [values(h["a_i"]), values(h["n_i"])]
    return lines + ([str(len(h["Tv"])), values(h["Tv"])] if form == 5 else [])


def peng_robinson_Zc(A, B, near):
    """The compressibility factor at Tc and Pc."""
    return mp.findroot(lambda z: A[1] / (z - B) - A[2] - A[0] / (z * z + 2 * B * z - B * B), near)


def initialised(p, model, heat):
    """Everything that loading derives from a fluid's records, by the library's names. `x` moves the critical volume."""
    form, adim, coefficients = heat
    X = model.suffix
    MM, Tc, Pc_atm, Zc, Tb = (p[name] for name in INPUTS)
    R = 8314 / MM
    Pc = p.rounded("Pc", Pc_atm * 101325)
    theta = Tb / Tc
    factor = p.rounded("1 - theta", 1 - theta)
    omega = 3 * p.rounded("log", mp.log10(p.rounded("atm", Pc / 101325))) * theta / factor / 7 - 1
    cube = mp.cbrt(2)
    own = {}
    if X == "IG":
        Z = mpf(1)
    elif X == "IZG":
        Z = p["Z_const"]
        own["Z_const"] = Z
    elif X == "vdWG":
        Z = mpf("0.375")
        own = {"a": mpf(3), "b": p.rounded("1/3", mpf(1) / 3)}
    elif X in ("RKG", "SRKG"):
        Z = (1 + p["x"]) / 3
        a = p.rounded("a", 1 / (9 * (cube - 1)))
        own["b"] = p.rounded("b", (cube - 1) / 3) / Z
        if X == "RKG":
            own["a"] = a / Z ** mpf("2.5")
        else:
            own |= {"c_a": a / Z ** 2, "Zc": Z,
                    "fw": p.constant("0.48") + (p.constant("1.574") - p.constant("0.176") * omega) * omega}
    elif X == "PRG":
        A = (p.constant("0.45724"), p.rounded("RTc/(v - b)", mpf(1)), p.rounded("Pc of the search", mpf(1)))
        B = p.constant("0.0778")
        Z = peng_robinson_Zc(A, B, mpf("0.3214"))
        c = p.constant
        own = {"b": B / Z, "c_a": A[0] / Z ** 2, "Zc": Z,
               "fw": c("0.37464") + (c("1.54226") - c("0.26992") * omega) * omega}
    else:
        Z = Zc
        if X == "CIIG":
            own = {"a": mpf(27) / 64 / Z ** 3, "b": 1 - p.rounded("1/(4Zc)", 1 / (4 * Z)),
                   "c": p.rounded("3/(8Zc)", 3 / (8 * Z)) - 1}
        else:
            # The coefficients take Pc in Pa.
            class Data:
                constant, rounded = p.constant, p.rounded

                def __getitem__(self, name):
                    return Pc if name == "Pc" else p[name]
            own = martin_hou.coefficients(Data())
    vc = p.rounded("vc", Z * R * Tc / Pc)
    T_ref = p.rounded("T_ref", Z * Tc)

    h = {}
    for name, value in coefficients.items():
        unit = R if adim and name in ("cv_0", "cv_oo_Tc", "a_i", "cv_0_k", "a_ik") else \
            T_ref if adim and name in ("Tv", "T_k") else 1
        h[name] = value if name == "n_k" else \
            [x * unit for x in p.list(name)] if isinstance(value, list) else p[name] * unit
    if form == 2:
        h["Tc"] = Tc
    if form == 4:
        h = join_intervals(h)
    cv = helmholtz.cv_of_form(form, Inputs({**h, "R": R}), Tc)
    T = 1 / Z
    inner = Inputs({**h, **own, "R": R, "T_ref": T_ref, "Rgas": mpf(1)})
    a = model.a(inner, Taylor.variable(T, (1, 0)), Taylor.variable(mpf(1), (0, 1))) + \
        helmholtz.ideal_part(form, inner, Taylor.variable(T, (1, 0)))
    y = dict(zip(helmholtz.PRIMITIVES, helmholtz.primitives(a, T)))
    vmin = mpf("1e-12") if X in ("IG", "IZG") else own["b"] * p.constant("1.000000000001")
    result = {"gas.R": R, "gas.omega": omega, "gas.Pc": Pc, "gas.P_ref": Pc, "gas.vc": vc, "gas.v_ref": vc,
              "gas.Zc": Z, "gas.Z_ref": Z, "gas.T_ref": T_ref, "gas.c_ref": mp.sqrt(Pc * vc), "gas.e_0": -y["e"],
              "gas.s_0": -y["s"], "gas.cv_ref": cv / R, "gas.cv0_ref": cv, "gas.cp0_ref": cv + R,
              "thermodynamics.vmin": vmin * p.constant("1.000000001")}
    for name, value in own.items():
        result |= {f"{X}.{name}({i})": x for i, x in enumerate(value)} if isinstance(value, list) else \
            {f"{X}.{name}": value}
    return result


SHIFT = mpf(10) ** -8


def table(name, key):
    with open(FOLDER.parent.parent / "Fluids" / name, encoding="utf-8", newline="") as file:
        return {row[key]: row for row in csv.DictReader(file)}


def initialisation_lines(n):
    """The lines of one fluid under every fourth model."""
    name = FLUIDS[n]
    row, Pc_atm = table("fluids.csv", "short")[name], table("choices.csv", "fluid")[name]["Pc_atm"]
    heat = heat_of(row, n)
    Z_const = 0.91
    lines = []
    for index in range(n % 4, len(helmholtz.MODELS), 4):
        model = helmholtz.MODELS[index]
        known = OF_THE_FLUID if index >= 4 else ()
        lines.append("fluid")
        lines += [f"| {record}" for record in records(row, Pc_atm, model.gas_type, Z_const, heat)]
        lines.append("load")
        where = {"MM": float(row["MM"]), "Tc": float(row["Tc"]), "Pc_atm": float(Pc_atm), "Zc": float(row["Zc"]),
                 "Tb": float(row["Tb_edm"]), "Z_const": Z_const, "x": 0.0, **heat[2]}

        def found(p):
            return list(initialised(p, model, heat).values())

        names = list(initialised(Inputs(where), model, heat))
        base, slopes = sensitivities(found, where)
        pairs = zip(base, scales(base, slopes))
        if model.suffix not in ("RKG", "SRKG"):
            lines += [f"{key} {judged([pair])}" for key, pair in zip(names, pairs) if key not in known]
            continue
        # Differences give the coefficients of x, x^2 and x^3.
        at = {i: found(Inputs({**where, "x": i * SHIFT})) for i in (-2, -1, 1, 2)}
        for k, (key, pair) in enumerate(zip(names, pairs)):
            if key in known:
                continue
            f = {i: results[k] for i, results in at.items()}
            along = ((8 * (f[1] - f[-1]) - (f[2] - f[-2])) / (12 * SHIFT),
                     (f[1] - 2 * base[k] + f[-1]) / (2 * SHIFT ** 2),
                     (f[2] - f[-2] - 2 * (f[1] - f[-1])) / (12 * SHIFT ** 3))
            cleaned = (c if abs(c) > mpf(10) ** -15 * abs(base[k]) else mpf(0) for c in along)
            lines.append(f"along {key} {judged([pair])} " + " ".join(mp.nstr(c, 12) for c in cleaned))
    return lines


# MM [kg/kmol], T_ref [K], P_ref [atm], v_ref [m3/kg].
REFERENCE = {"MM": 28.0134, "T_ref": 298.15, "P_ref_atm": 0.97, "v_ref": 0.9, "Z_const": 0.91}


def reference_fluid(p, suffix, heat):
    """Everything that loading derives for a fluid without critical data under an ideal-gas model."""
    form, adim, coefficients = heat
    R, T_ref = 8314 / p["MM"], p["T_ref"]
    P_ref = p.rounded("P_ref", p["P_ref_atm"] * 101325)
    Z = p["Z_const"] if suffix == "IZG" else mpf(1)
    v_ref = p.rounded("v", Z * R * T_ref / P_ref)
    h = {name: [x * (T_ref if adim else 1) for x in p.list(name)] if name == "Tv" else
         p.list(name) if isinstance(value, list) else p[name] * (R if adim else 1)
         for name, value in coefficients.items()}
    inner = Inputs({**h, "R": R})
    T = p.rounded("1/Z", 1 / Z) * T_ref
    a = helmholtz.HEATS[form](inner, Taylor.variable(T, (1, 0)))
    phi, psi = a.c[0] - T * a.c[1], -a.c[1]
    cv = helmholtz.cv_of_form(form, inner, T_ref)
    return {"gas.R": R, "gas.P_ref": P_ref, "gas.T_ref": T_ref, "gas.v_ref": v_ref, "gas.Z_ref": Z,
            "gas.c_ref": mp.sqrt(P_ref * v_ref), "gas.e_0": -phi / (P_ref * v_ref), "gas.s_0": -psi / R,
            "gas.cv_ref": helmholtz.cv_of_form(form, inner, T) * T_ref / (P_ref * v_ref), "gas.cv0_ref": cv,
            "gas.cp0_ref": cv + R}


def reference_fluid_lines():
    lines = []
    for model in (model for model in helmholtz.MODELS if model.suffix in ("IG", "IZG")):
        for heat in ((1, True, {"cv_0": 2.503}), (3, False, {"cv_0": 640.5, "a_i": [0.31, 4100.0], "n_i": [1.0, -0.5]}),
                     (5, True, {"cv_0": 2.5, "Tv": [11.1, 15.3]}), (5, False, {"cv_0": 741.9, "Tv": [3352.0]})):
            lines += ["fluid", *(f"| {record}" for record in (
                "Names", "reference fluid", "label", "Constants", repr(REFERENCE["MM"]), "F", repr(REFERENCE["T_ref"]),
                repr(REFERENCE["P_ref_atm"]), repr(REFERENCE["v_ref"]), "0", "0", str(model.gas_type),
                *([repr(REFERENCE["Z_const"])] if model.suffix == "IZG" else []), *heat_records(heat))), "load"]
            where = {**REFERENCE, **heat[2]}
            names = list(reference_fluid(Inputs(where), model.suffix, heat))
            base, slopes = sensitivities(lambda p: list(reference_fluid(p, model.suffix, heat).values()), where)
            lines += [f"{key} {judged([pair])}" for key, pair in zip(names, zip(base, scales(base, slopes)))]
    return lines


# Saturation.

def first_values(model, parameters, T_c, b):
    """A short table of the curve for Peng-Robinson, since the library does not find its own: T, P, v_g, v_l in turn."""
    if model.suffix != "PRG":
        return ""
    table = []
    for fraction in (0.993, 0.975, 0.93, 0.875, 0.82, 0.76):
        T = mpf(fraction) * T_c
        v_g, v_l, P = saturation.volumes(model, parameters, T, b)
        table += [mp.nstr(x, 4) for x in (T, P, v_g, v_l)]
    return " " + " ".join(table)


def saturation_lines(index):
    model = helmholtz.MODELS[index]
    if model.suffix in ("IG", "IZG"):
        return []
    lines = []
    for fluid in range(1 if model.suffix in ("vdWG", "RKG") else 2):
        form = 5 if fluid == 0 else 3
        _, parameters, heat, gas, T_c, _ = load(model, form, fluid)
        b = parameters["b"]
        lines.append(f"model {model.gas_type} {model.suffix}")
        lines += settings(model.suffix, parameters, heat, gas, form)
        lines.append("curve" + first_values(model, parameters, T_c, b))
        for fraction in (0.99, 0.96, 0.9, 0.85, 0.79):
            T = fraction * T_c
            lines.append(f"at {T!r} 0")
            found = saturation.at_temperature(model, form, parameters, heat, gas, mpf(T), b)
            lines.append(f"saturation__T {judged(found)}")
            P = float(found[0][0])
            near = (mpf(T), found[1][0], found[2][0])
            lines.append(f"at {P!r} 0")
            lines.append(f"saturation__P {judged(saturation.at_pressure(model, form, parameters, heat, gas, P, near))}")
    return lines


# Files.

SCALE = ("Beside each number stands its scale: its magnitude, plus the changes that relative changes of 1 in T, in "
         "v, in every parameter and constant, and in some intermediate results would make in it. These results are "
         "the ratio in a logarithm and an exponential close to 1: the printed form cannot avoid their rounding, and "
         "the inputs do not show it.")
DERIVED = ("A number that is computed from P, e, s and their derivatives has other changes in its scale: for each of"
           " these, the number's partial derivative by it times its own scale.")
FILES = {
    "states.txt":
        "The eight models, each with two fluids and two forms of the heat capacity, at 160 states. Everything follows "
        "from the Helmholtz energy by differentiation. " +
        SCALE +
        " " +
        DERIVED,
    "initialisation.txt":
        "Everything that loading derives from the records of 13 fluids of the catalogue, each under two of the "
        "eight models, and of fluids without critical data under the ideal-gas models. " +
        SCALE +
        " Redlich-Kwong and Soave-Redlich-Kwong search for the critical volume, which is a triple root. By rule the "
        "search ends where the residual is zero in doubles, within some 1e-5 of the root. A line 'along' gives a "
        "parameter at the root and how it moves with the volume. The parameter is judged at the volume that was "
        "found, and the error of that volume by the residual. All other numbers, also Peng-Robinson's critical "
        "volume, are judged by their scales.",
    "saturation.txt":
        "States of liquid and vapor in equilibrium, (P, v_g, v_l) at T and (T, v_g, v_l) at P, solved to 40 "
        "digits. Beside each number stands the error that it can have if the residuals of the search, in the Gibbs "
        "energy and in P or T, are up to 1. The search ends at 1e-6 or 1e-5.",
    "transport.txt":
        "The collision integral, and the transport models term by term for 12 fluids, some of them without "
        "critical data. " +
        SCALE,
}
LICENSE = "# SPDX-License-Identifier: MIT\n"
COMMAND = "# Made by scripts/make_reference_vectors.\n"


def jobs():
    """(file, function, arguments) in the order of the files."""
    for model in range(len(helmholtz.MODELS)):
        yield "states.txt", state_lines, (model,)
    for n in range(len(FLUIDS)):
        yield "initialisation.txt", initialisation_lines, (n,)
    yield "initialisation.txt", reference_fluid_lines, ()
    for model in range(len(helmholtz.MODELS)):
        yield "saturation.txt", saturation_lines, (model,)
    yield "transport.txt", transport_lines, ()


def done(job):
    file, function, arguments = job
    return file, function(*arguments)


def main():
    content = {file: [] for file in FILES}
    with multiprocessing.Pool() as pool:
        for file, lines in pool.imap(done, list(jobs())):
            content[file] += lines
    for file, lines in content.items():
        head = "".join(f"# {line}\n" for line in textwrap.wrap(FILES[file], 116))
        (FOLDER / file).write_text(LICENSE + head + COMMAND + "".join(line + "\n" for line in lines), encoding="utf-8")
        print(f"{file}: {len(lines)} lines")


if __name__ == "__main__":
    main()
