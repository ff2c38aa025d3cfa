# SPDX-License-Identifier: MIT
"""Liquid and vapor in equilibrium have equal pressure and equal a + P v at one temperature."""
from mpmath import mp, mpf

import helmholtz
from taylor import Inputs, Taylor


def isotherm(model, parameters, T):
    """P(v) and the Gibbs energy g(v) without the part of the ideal gas, from a."""
    p = Inputs(parameters)

    def at(v):
        a = model.a(p, Taylor.constant(T, 1), Taylor.variable(v, (0, 1), 1))
        P = -a.c[2]
        return P, a.c[0] + P * v

    return at


def bisect(f, low, high, steps=24):
    sign = f(low) > 0
    for _ in range(steps):
        middle = (low + high) / 2
        if (f(middle) > 0) == sign:
            low = middle
        else:
            high = middle
    return (low + high) / 2


def volumes(model, parameters, T, b):
    """(v_g, v_l, P) of the model at T, to the working precision: by Maxwell's construction, then Newton's method."""
    at = isotherm(model, parameters, T)
    with mp.workdps(15):
        # The turning points of the loop, next to the critical volume.
        below = [1 - (1 - b) * mpf(k) / 200 for k in range(1, 198)]
        above = [mp.exp(mpf(k) / 25) for k in range(1, 100)]
        P_below, P_above = [at(v)[0] for v in below], [at(v)[0] for v in above]
        low = next(k for k in range(1, len(below)) if P_below[k + 1] > P_below[k])
        high = next(k for k in range(1, len(above)) if P_above[k + 1] < P_above[k])

        def both(P):
            v_l = bisect(lambda v: at(v)[0] - P, below[-1], below[low])
            v_g = bisect(lambda x: at(mp.exp(x))[0] - P, mp.log(above[high]), mp.log(mpf(10) ** 7))
            return mp.exp(v_g), v_l

        def difference(P):
            v_g, v_l = both(P)
            return at(v_g)[1] - at(v_l)[1]

        start = both(bisect(difference, max(P_below[low], mpf(10) ** -5), P_above[high]))

    def residuals(v_g, v_l):
        (P_g, g_g), (P_l, g_l) = at(v_g), at(v_l)
        return g_g - g_l, P_g - P_l

    found = mp.findroot(residuals, start, tol=mpf(10) ** -80)
    return found[0], found[1], at(found[0])[0]


def state_at(model, parameters, P, start):
    """(T, v_g, v_l) at P, found from a state close by."""
    def residuals(T, v_g, v_l):
        at = isotherm(model, parameters, T)
        (P_g, g_g), (P_l, g_l) = at(v_g), at(v_l)
        return g_g - g_l, P_g - P, P_l - P

    return tuple(mp.findroot(residuals, start, tol=mpf(10) ** -80))


def phase(model, form, parameters, heat, gas, T, v):
    """Pressure and Gibbs energy at (T, v), with their derivatives: Quantities T, v, P, mu."""
    where = {**parameters, **heat, **gas}
    p = Inputs(where)
    at_T = Taylor.variable(T, (1, 0))
    a = model.a(p, at_T, Taylor.variable(v, (0, 1))) + helmholtz.ideal_part(form, p, at_T) + p["e_0"] - at_T * p["s_0"]
    P, e, s = helmholtz.from_a(a, T)
    volume = Taylor.variable(v, (0, 1), 2)
    mu = e + P * volume - Taylor.variable(T, (1, 0), 2) * s
    return [helmholtz.Quantity(f) for f in (Taylor.variable(T, (1, 0), 2), volume, P, mu)]


def per_residual(first, second):
    """The errors that (v_g, v_l) can have for residuals up to 1: |inverse of the Jacobian| times (1, 1)."""
    (a, b), (c, d) = first, second
    determinant = a * d - b * c
    return (abs(d) + abs(b)) / abs(determinant), (abs(c) + abs(a)) / abs(determinant)


def at_temperature(model, form, parameters, heat, gas, T, b):
    """P, v_g, v_l at T, each with its error per unit of the residuals in mu and P."""
    v_g, v_l, P = volumes(model, parameters, T, b)
    g, l = (phase(model, form, parameters, heat, gas, T, v) for v in (v_g, v_l))
    off_g, off_l = per_residual((g[3].v.value, -l[3].v.value), (g[2].v.value, -l[2].v.value))
    return [(P, abs(g[2].v.value) * off_g), (v_g, off_g), (v_l, off_l)]


def at_pressure(model, form, parameters, heat, gas, P, near):
    """T, v_g, v_l at P, each with its error per unit of the residuals in mu and T. `near` is such a state close by."""
    T, v_g, v_l = state_at(model, parameters, P, near)
    g, l = (phase(model, form, parameters, heat, gas, T, v) for v in (v_g, v_l))

    def along(side, X):
        return helmholtz.partial(side[X], side[1], side[2]).value

    off_g, off_l = per_residual((along(g, 3), -along(l, 3)), (along(g, 0), -along(l, 0)))
    return [(T, abs(along(g, 0)) * off_g), (v_g, off_g), (v_l, off_l)]
