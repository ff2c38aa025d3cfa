# SPDX-License-Identifier: MIT
"""The Helmholtz energy a(T, v) of the eight models and of the five heat capacities, each written once. Everything else
follows from it by differentiation.

All quantities are reduced: T by T_ref, v by v_ref, a by P_ref v_ref = R T_ref, pressures by P_ref. The equations of
state of the models stand beside their integrals, and are compared with -da/dv at every state.
"""
from mpmath import mp, mpf

from taylor import Inputs, Taylor, exp, log, scales, sensitivities, sqrt


def soave(p, T):
    # The square root counts as a rounded result, since 1 minus it loses digits that the inputs do not show.
    return p["c_a"] * (1 + p["fw"] * (1 - p.rounded("sqrt(Zc T)", sqrt(p["Zc"] * T)))) ** 2


def polar(p, v):
    """(v + (1 + sqrt 2) b)/(v + (1 - sqrt 2) b)"""
    root = mp.sqrt(2)
    return p.rounded("ratio", (v + p.rounded("1 + sqrt 2", 1 + root) * p["b"]) /
                     (v + p.rounded("1 - sqrt 2", 1 - root) * p["b"]))


def martin_hou_q(p, T):
    A, B, C = p.list("aa"), p.list("bb"), p.list("cc")
    E = exp(-p["kk"] * T)
    return [A[i] + B[i] * T + C[i] * E for i in range(4)]


class Model:
    """A model. `a` is the Helmholtz energy without the part of the ideal gas, `P` the equation of state."""

    def __init__(self, suffix, gas_type, a, P, covolume=lambda p: 0):
        self.suffix = suffix
        self.gas_type = gas_type
        self.a = a
        self.P = P
        self.covolume = covolume


def covolume(values):
    return values["b"]


MODELS = (
    Model("IG", 1,
          lambda p, T, v: -p["Rgas"] * T * log(v),
          lambda p, T, v: p["Rgas"] * T / v),
    Model("IZG", 8,
          lambda p, T, v: -p["Z_const"] * p["Rgas"] * T * log(v),
          lambda p, T, v: p["Z_const"] * p["Rgas"] * T / v),
    Model("vdWG", 2,
          lambda p, T, v: -p["Rgas"] * T * log(v - p["b"]) - p["a"] / v,
          lambda p, T, v: p["Rgas"] * T / (v - p["b"]) - p["a"] / v ** 2, covolume),
    Model("RKG", 6,
          lambda p, T, v: -p["Rgas"] * T * log(v - p["b"]) -
          p["a"] / (p["b"] * sqrt(T)) * log(p.rounded("ratio", (v + p["b"]) / v)),
          lambda p, T, v: p["Rgas"] * T / (v - p["b"]) - p["a"] / (sqrt(T) * v * (v + p["b"])), covolume),
    Model("SRKG", 4,
          lambda p, T, v: -p["Rgas"] * T * log(v - p["b"]) -
          soave(p, T) / p["b"] * log(p.rounded("ratio", (v + p["b"]) / v)),
          lambda p, T, v: p["Rgas"] * T / (v - p["b"]) - soave(p, T) / (v * (v + p["b"])), covolume),
    Model("PRG", 5,
          lambda p, T, v: -p["Rgas"] * T * log(v - p["b"]) -
          soave(p, T) / (2 * p.rounded("sqrt 2", mp.sqrt(2)) * p["b"]) * log(polar(p, v)),
          lambda p, T, v: p["Rgas"] * T / (v - p["b"]) - soave(p, T) / (v * v + 2 * p["b"] * v - p["b"] ** 2),
          covolume),
    Model("CIIG", 7,
          lambda p, T, v: -p["Rgas"] * T * log(v - p["b"]) - p["a"] / (T * (v + p["c"])),
          lambda p, T, v: p["Rgas"] * T / (v - p["b"]) - p["a"] / (T * (v + p["c"]) ** 2), covolume),
    Model("MHG", 3,
          lambda p, T, v: -p["Rgas"] * T * log(v - p["b"]) +
          sum(q * (v - p["b"]) ** -(i + 1) / (i + 1) for i, q in enumerate(martin_hou_q(p, T))),
          lambda p, T, v: p["Rgas"] * T / (v - p["b"]) +
          sum(q * (v - p["b"]) ** -(i + 2) for i, q in enumerate(martin_hou_q(p, T))), covolume),
)


def power_terms(constant, coefficients, exponents, t):
    result = constant * t * (1 - log(t))
    for a, n in zip(coefficients, exponents):
        result -= a * t ** (n + 1) / (n * (n + 1))
    return result


def interval(h, T):
    """The number, from 0, of the last interval that contains T."""
    bounds = [*h["T_k"], mp.inf]
    return max(k for k in range(len(bounds) - 1) if bounds[k] < T < bounds[k + 1])


def piecewise(p, t):
    """The piecewise form. Its constants of integration are inputs, as in the library."""
    h = p.values
    k = interval(h, t.value)
    first = sum(h["n_k"][:k])
    last = first + h["n_k"][k]
    return power_terms(p.list("cv_0_k", k, k + 1)[0], p.list("a_ik", first, last), p.list("n_ik", first, last), t) + \
        p.list("phi0_k", k, k + 1)[0] - t * p.list("psi0_k", k, k + 1)[0]


def einstein(p, t):
    return p["cv_0"] * t * (1 - log(t)) + \
        sum(p["R"] * t * log(1 - p.rounded(f"exp({k})", exp(-Tv / t))) for k, Tv in enumerate(p.list("Tv")))


# phi - t psi of the ideal gas at t [K], in J/kg. Its second derivative is -cv/t. The constants of integration are those
# of the closed forms.
HEATS = {
    1: lambda p, t: p["cv_0"] * t * (1 - log(t)),
    2: lambda p, t: -p["cv_oo_Tc"] * p["Tc"] * (t / p["Tc"]) ** (p["np"] + 1) / (p["np"] * (p["np"] + 1)),
    3: lambda p, t: power_terms(p["cv_0"], p.list("a_i"), p.list("n_i"), t),
    4: piecewise,
    5: einstein,
}


def cv_of_form(form, p, T):
    """cv [J/(kg K)] at T [K], by the forms themselves, for the comparison with -T a''."""
    if form == 1:
        return p["cv_0"]
    if form == 2:
        return p["cv_oo_Tc"] * (T / p["Tc"]) ** p["np"]
    if form == 3:
        return p["cv_0"] + sum(a * T ** n for a, n in zip(p.list("a_i"), p.list("n_i")))
    if form == 4:
        h = p.values
        k = interval(h, T)
        first = sum(h["n_k"][:k])
        last = first + h["n_k"][k]
        return p.list("cv_0_k", k, k + 1)[0] + \
            sum(a * T ** n for a, n in zip(p.list("a_ik", first, last), p.list("n_ik", first, last)))
    result = p["cv_0"]
    for k, Tv in enumerate(p.list("Tv")):
        E = p.rounded(f"exp({k})", mp.exp(-Tv / T))
        result += p["R"] * (Tv / T) ** 2 * E / (1 - E) ** 2
    return result


def ideal_part(form, p, T):
    """The part of the ideal gas in units of R T_ref; T is reduced."""
    return HEATS[form](p, T * p["T_ref"]) / (p["R"] * p["T_ref"])


# A caller computes everything else from these: P and e with first and second derivatives, and s. The rounding of the
# two derivatives of s counts too.
PRIMITIVES = ("P", "P_T", "P_v", "P_TT", "P_Tv", "P_vv", "e", "e_T", "e_v", "e_TT", "e_Tv", "e_vv", "s")
ROUNDED = ("s_T", "s_v")


def from_a(a, T):
    """P, e and s as polynomials, from the polynomial a of degree 3 at temperature T."""
    P = -a.along_v()
    s = -a.along_T()
    e = a + Taylor.variable(T, (1, 0)) * s
    return P, e, s


def primitives(a, T):
    P, e, s = from_a(a, T)
    result = []
    for f in (P, e):
        result += [f.c[0], f.c[1], f.c[2], 2 * f.c[3], f.c[4], 2 * f.c[5]]
    return result + [s.c[0]]


class Quantity:
    """A quantity: its value and its two derivatives, each a polynomial."""

    def __init__(self, f, along_T=None, along_v=None):
        self.f = f
        self.T = along_T or f.along_T()
        self.v = along_v or f.along_v()


def jacobian(X, Y):
    return X.T * Y.v - X.v * Y.T


def partial(X, Y, Z):
    """(dX/dY)_Z"""
    return jacobian(X, Z) / jacobian(Y, Z)


def derived(values):
    """(operation, its components) of every derived property, from T, v and the primitives."""
    y = {name: values[name] for name in PRIMITIVES}
    T = Quantity(Taylor.variable(values["T"], (1, 0), 2))
    v = Quantity(Taylor.variable(values["v"], (0, 1), 2))

    def second(n):
        return Quantity(Taylor(2, [y[n], y[n + "_T"], y[n + "_v"], y[n + "_TT"] / 2, y[n + "_Tv"], y[n + "_vv"] / 2]))

    P, e = second("P"), second("e")
    # de = T ds - P dv
    s_T = e.T / T.f * values["s_T"]
    s_v = (e.v + P.f) / T.f * values["s_v"]
    s = Quantity(Taylor(1, [y["s"], s_T.value, s_v.value]), s_T, s_v)
    h = Quantity(e.f + P.f * v.f)
    mu = Quantity(h.f - T.f * s.f, h.T - s.f - T.f * s_T, h.v - T.f * s_v)
    rho = Quantity(v.f ** -1)
    E = Quantity(e.f / v.f)
    c2 = partial(P, rho, s)
    stiffness = Quantity(partial(P, v, s))
    G = values["v"] ** 3 / (2 * c2.value) * partial(stiffness, v, s).value
    P_E, P_rho = Quantity(partial(P, E, rho)), Quantity(partial(P, rho, E))
    mixed = partial(P_E, rho, E).value

    def gradient(X):
        return [X.T.value, X.v.value]

    def pair(X, Y, Z):
        return [partial(X, Y, Z).value, partial(X, Z, Y).value]

    result = [
        ("h__T_v", [h.f.value]), ("mu__T_v", [mu.f.value]), ("c2__T_v", [c2.value]),
        ("c__T_v", [mp.sqrt(c2.value)] if c2.value > 0 else []),
        ("cp__T_v", [values["T"] * partial(s, T, P).value]), ("G__T_v", [G]),
        ("dh__dT_dv", gradient(h)), ("ds__dT_dv", gradient(s)), ("dmu__dT_dv", gradient(mu)),
        ("dT__dP_dv__T_v", pair(T, P, v)), ("de__dP_dv__T_v", pair(e, P, v)), ("ds__dP_dv__T_v", pair(s, P, v)),
        ("dmu__dP_dv", pair(mu, P, v)), ("dP__de_dr__T_v", pair(P, e, rho)), ("dP__dre_dr__T_v", pair(P, E, rho)),
        ("d2P__dre2_dr2__T_v", [partial(P_E, E, rho).value, mixed, mixed, partial(P_rho, rho, E).value]),
        ("d2P__dre_dr__dT_dv", [P_E.T.value, P_rho.T.value, P_E.v.value, P_rho.v.value]),
        ("dP__ds_dv", pair(P, s, v)), ("dP__ds_dT", pair(P, s, T)), ("dv__ds_dT", pair(v, s, T)),
    ]
    return result


def without_noise(x, scale):
    """Exact zeros where a derivative vanishes identically. Only the rounding of 70 digits is left then, and in a scale
    the rounding of a difference over a step of 1e-20."""
    return (x, scale) if scale > mpf(10) ** -44 else (mpf(0), mpf(0))


def flattened(operations):
    return [x for _, components in operations for x in components]


def close(x, y, digits=40):
    return abs(x - y) <= mpf(10) ** -digits * (abs(x) + abs(y)) + mpf(10) ** -55


def state(model, form, parameters, heat, gas, T, v, groups):
    """(operation, [(value, scale), ...]) of the operations in these groups at one state."""
    T_double, v_double = T, v
    T, v = mpf(T), mpf(v)

    def attraction(p):
        at_T, at_v = p["T"], p["v"]
        a = model.a(p, Taylor.variable(at_T, (1, 0)), Taylor.variable(at_v, (0, 1)))
        return primitives(a, at_T)

    def ideal(p):
        return primitives(ideal_part(form, p, Taylor.variable(p["T"], (1, 0))), p["T"])

    def offsets(p):
        # The offsets add e_0 - T s_0 to the Helmholtz energy.
        return primitives(p["e_0"] - Taylor.variable(p["T"], (1, 0)) * p["s_0"], p["T"])

    where = {"T": T_double, "v": v_double}
    parts = [sensitivities(attraction, {**parameters, **where}), sensitivities(ideal, {**heat, **gas, **where}),
             sensitivities(offsets, {**gas, **where})]
    base = [sum(values) for values in zip(*(part[0] for part in parts))]
    slopes = {}
    for _, found in parts:
        for name, slope in found.items():
            slopes[name] = [x + y for x, y in zip(slope, slopes[name])] if name in slopes else slope
    y = dict(zip(PRIMITIVES, base))
    scale = dict(zip(PRIMITIVES, scales(base, slopes)))

    # The integrals are compared with the functions that were integrated.
    assert close(y["P"], model.P(Inputs(parameters), T, v)), (model.suffix, T, v)
    ideal_y = dict(zip(PRIMITIVES, parts[1][0]))
    assert close(ideal_y["e_T"], cv_of_form(form, Inputs({**heat, **gas}), T * gas["T_ref"]) / gas["R"]), (form, T)

    def entries(*names):
        return [without_noise(y[name], scale[name]) for name in names]

    result = []
    if "model" in groups:
        result += [("P__T_v", entries("P")), ("e__T_v", entries("e")), ("s__T_v", entries("s")),
                   ("cv__T_v", entries("e_T")), ("dP__dT_dv", entries("P_T", "P_v")),
                   ("de__dT_dv", entries("e_T", "e_v")), ("dcv__dT_dv", entries("e_TT", "e_Tv")),
                   ("d2P__dT2_dv2", entries("P_TT", "P_Tv", "P_Tv", "P_vv")),
                   ("d2e__dT2_dv2", entries("e_TT", "e_Tv", "e_Tv", "e_vv"))]
    if "ideal gas" in groups:
        ideal_scale = dict(zip(PRIMITIVES, scales(parts[1][0], parts[1][1])))
        R = mpf(gas["R"])
        for operation, name, factor in (("phi__T", "e", 1), ("phip__T", "e_T", 1), ("phipp__T", "e_TT", 1),
                                        ("psi__T", "s", 1), ("cv_oo__Tdim", "e_T", R)):
            result.append((operation, [without_noise(ideal_y[name] * factor, ideal_scale[name] * factor)]))
    if "derived" not in groups:
        return result

    # A property that is computed from the primitives carries the errors of all of them, each independent of the others.
    values = {"T": T, "v": v, "s_T": mpf(1), "s_v": mpf(1), **y}
    operations = derived(values)
    found = flattened(operations)
    judged = {**scale, "T": abs(T), "v": abs(v), "s_T": mpf(1), "s_v": mpf(1)}
    total = [abs(x) for x in found]
    for name in values:
        if values[name] == 0:
            continue
        step = abs(values[name]) * mpf(10) ** -20
        moved = flattened(derived({**values, name: values[name] + step}))
        slope = [(b - a) / step for a, b in zip(found, moved)]
        total = [t + abs(d) * judged[name] for t, d in zip(total, slope)]
    at = 0
    for operation, components in operations:
        if components:
            result.append((operation, [without_noise(x, total[at + k]) for k, x in enumerate(components)]))
        at += len(components)
    return result
