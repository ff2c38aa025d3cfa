#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes handles.txt, the vectors of the states of fluid handles, anew. scripts/make_reference_vectors runs it, which
takes some minutes. Nothing here is computed with the library or read from its sources (see surface.py).

    fluid NAME OPTIONS                         what the following lines are of
    line t p v_l v_g c_p c_l c_g               saturation at t [K] in SI units, and d ln(p, v_l, v_g)/d ln t
    state t v q X X_t X_v ...                  with X = p, h, s, u, in SI units; q is "-" for one phase
    has NAME X S                               another output there; S is the sum of |t X_t| and |v X_v|
"""
import multiprocessing
import pathlib
import sys

from mpmath import mp, mpf

import surface
from surface import Surface

FOLDER = pathlib.Path(__file__).resolve().parent
CHOICES = (("nbutane", "mh"), ("water", "mh"), ("water", "cii"), ("ammonia", "cii"), ("toluene", "vdw"), ("d6", "rk"),
           ("nbutane", "srk"), ("mlinolen", "srk"), ("nnonadec", "pr"), ("helium", "vdw"),
           ("water", "pr; volume=translated"))
LOWEST = {("nbutane", "mh"): mpf("0.816"), ("water", "mh"): mpf("0.96"), ("water", "cii"): mpf("0.7"),
          ("ammonia", "cii"): mpf("0.32")}  # Tc; these lines end
TEMPERATURES = ("0.3", "0.45", "0.7", "0.9", "0.97", "0.999", "0.99999", "0.99999999")


def number(x):
    return mp.nstr(x, 25)


def rounded(x):
    return mpf(float(x))


def lines_of(choice):
    name, options = choice
    model = options.split(";")[0]
    s = Surface(*surface.records(FOLDER.parent.parent / "Fluids" / f"{name}.osd"), model, "translated" in options)
    lines = [f"fluid {name} {options}"]
    lowest = LOWEST.get(choice, 0)
    t_unit, v_unit, p_unit, R = s.T_ref, s.v_ref, s.P_ref, s.R
    energy = p_unit * v_unit
    known = {}
    for Tr in TEMPERATURES:
        if mpf(Tr) < lowest or ("translated" in options and Tr not in ("0.45", "0.7", "0.97")):
            continue
        t = rounded(mpf(Tr) * s.fluid["Tc"])
        T = t / t_unit
        v_l, v_g, P = s.saturation(T)
        known[Tr] = (t, v_l, v_g)
        step = mpf(10) ** -12
        warm, cold = (s.saturation(T * (1 + sign * step), (v_l, v_g)) for sign in (1, -1))
        slopes = [(warm[k] - cold[k]) / (2 * step) for k in range(3)]
        slopes = [slopes[2] / P, slopes[0] / (v_l - s.offset), slopes[1] / (v_g - s.offset)]
        lines.append(" ".join(["line", repr(float(t)), number(P * p_unit), number((v_l - s.offset) * v_unit),
                               number((v_g - s.offset) * v_unit), *(mp.nstr(abs(x), 6) for x in slopes)]))

    def told(t, V_given, between):
        v_si = rounded(V_given * v_unit)
        T, V = t / t_unit, v_si / v_unit
        if between:
            q, values = surface.gradients_of_mixture(s, T, V)
        else:
            values = surface.gradients(s, T, V)
        words = ["state", repr(float(t)), repr(float(v_si)), number(q) if between else "-"]
        for (x, x_T, x_v), unit in zip(values, (p_unit, energy, R, energy)):
            words += [number(x * unit), number(x_T * unit / t_unit), number(x_v * unit / v_unit)]
        lines.append(" ".join(words))
        if between:
            return
        step = mpf(10) ** -12
        here = surface.scalars(s, T, V)
        warm, wide = surface.scalars(s, T * (1 + step), V), surface.scalars(s, T, V * (1 + step))
        for output, x in here.items():
            lines.append(f"has {output} {number(x)} {mp.nstr((abs(warm[output] - x) + abs(wide[output] - x)) / step, 4)}")

    Tc = s.fluid["Tc"]
    for Tr, p_SI in (("0.6", "1e-6"), ("3", "1e-6"), ("1.5", "1e-3")):
        t = rounded(mpf(Tr) * Tc)
        told(t, t / t_unit / (mpf(p_SI) / p_unit), False)
    near = [(1 + mpf("1e-4"), 1 + mpf("1e-3")), (1 + mpf("1e-6"), 1 - mpf("1e-3")), (mpf("1.3"), mpf("2.5")),
            (mpf(3), mpf("0.9"))]
    for Tr, v in near:
        told(rounded(Tr * Tc), v - s.offset, False)
    coldest = min(known, key=mpf)
    for Tr in (coldest, "0.97"):
        t, v_l, v_g = known[Tr]
        told(t, s.b + (v_l - s.b) * mpf("0.999") - s.offset, False)
        told(t, v_g * mpf("1.001") - s.offset, False)
    if "translated" not in options:
        for Tr, q in ((coldest, "0.001"), ("0.97", "0.3"), ("0.999", "0.9")):
            t, v_l, v_g = known[Tr]
            told(t, v_l + mpf(q) * (v_g - v_l), True)
    return "\n".join(lines) + "\n"


def main():
    texts = []
    with multiprocessing.Pool(int(sys.argv[1]) if len(sys.argv) > 1 else None) as pool:
        for text in pool.imap(lines_of, CHOICES, 1):
            texts.append(text)
            print(text.split("\n", 1)[0], flush=True)
    (FOLDER / "handles.txt").write_text("# Made by scripts/make_reference_vectors; do not edit.\n" + "".join(texts),
                                        encoding="utf-8")


if __name__ == "__main__":
    main()
