# SPDX-License-Identifier: MIT
"""Saturation lines of the cubic equations by high-precision arithmetic, and the table that the library evaluates.

At one temperature a cubic equation of state has the dimensionless form

    Pi = r - r^2/(t (1 + m r + n r^2)),    Pi = P b/(R T),  r = b/(v - b),  t = b R T/a(T),

so that its saturation line depends on t only (for Clausius II, b stands for b + c and v for v + c). The table has, in
pieces of t/t_c, polynomials for

    Lambda = -tau ln(Pi/Pi_c)/(1 - tau),   tau r_l/r_c,   r_g/Pi,       tau = t/t_c.

Near the critical point they are functions of sigma = sqrt(1 - tau), elsewhere of tau. Run scripts/make_saturation_lines.
"""
import sys

import mpmath as mp

FAMILIES = {"van_der_waals": (2, 1), "redlich_kwong": (3, 2), "peng_robinson": (4, 2)}  # m, n
DEGREE = 11
PIECES_IN_SIGMA = 10
SIGMA_STEP = mp.mpf("0.0725")  # the last piece ends at 0.725, where tau is below 0.5
OCTAVES = 7  # below tau = 0.5, each in four pieces; the last one ends where every pressure has underflowed


class Family:
    def __init__(self, name):
        self.name = name
        self.m, self.n = FAMILIES[name]
        self.use_digits(60)

    def use_digits(self, digits):
        mp.mp.dps = digits
        m, n = self.m, self.n
        self.r_c = mp.findroot(lambda r: 1 - 3 * n * r**2 - m * n * r**3, 0.4)
        self.t_c = self.r_c * (2 + m * self.r_c) / self.d(self.r_c) ** 2
        self.Pi_c = self.Pi(self.r_c, self.t_c)

    def d(self, r):
        return 1 + self.m * r + self.n * r * r

    def Pi(self, r, t):
        return r - r * r / (t * self.d(r))

    def slope(self, r, t):
        return 1 - r * (2 + self.m * r) / (t * self.d(r) ** 2)

    def attraction(self, z):
        """The integral of dz/(z^2 + m z + n) from z to infinity; z = 1/r."""
        if self.name == "van_der_waals":
            return 1 / (z + 1)
        if self.name == "redlich_kwong":
            return mp.log1p(1 / (z + 1))
        root = mp.sqrt(2)
        return mp.log1p(2 * root / (z + 2 - root)) / (2 * root)

    def gibbs(self, r, t):
        return mp.log(r) - self.attraction(1 / r) / t + self.Pi(r, t) * (1 / r + 1)

    def root(self, Pi, t, liquid):
        """Newton's method from the outer side of the root, where it converges monotonically."""
        r = Pi + 1 / (self.n * t) if liquid else Pi
        limit = mp.mpf(10) ** (-2 * mp.mp.dps // 3)
        for _ in range(1000):
            step = (self.Pi(r, t) - Pi) / self.slope(r, t)
            r -= step
            if abs(step) <= r * limit:
                return r - (self.Pi(r, t) - Pi) / self.slope(r, t)
        raise RuntimeError("no root")

    def spinodal(self, t, liquid):
        low, high = (self.r_c, 10 + 10 / t**2) if liquid else (mp.mpf(0), self.r_c)
        for _ in range(mp.mp.prec):
            middle = (low + high) / 2
            if (self.slope(middle, t) < 0) == liquid:
                low = middle
            else:
                high = middle
        return (low + high) / 2

    def saturation(self, tau):
        """Pi, r_l and r_g where both phases have the same Pi and the same Gibbs energy."""
        t = tau * self.t_c
        high = mp.log(self.Pi(self.spinodal(t, False), t))
        lowest = self.Pi(self.spinodal(t, True), t)
        low = mp.log(lowest) if lowest > 0 else high - 2000
        x = mp.log(self.Pi_c) - 3 * (1 - tau) / tau
        for _ in range(500):
            if not low < x < high:
                x = (low + high) / 2
            Pi = mp.exp(x)
            r_l, r_g = self.root(Pi, t, True), self.root(Pi, t, False)
            difference = self.gibbs(r_l, t) - self.gibbs(r_g, t)
            if difference > 0:
                low = x
            else:
                high = x
            step = difference / ((1 / r_l - 1 / r_g) * Pi)
            if abs(step) < mp.mpf(10) ** (-mp.mp.dps // 2):
                Pi = mp.exp(x - step)
                return Pi, self.root(Pi, t, True), self.root(Pi, t, False)
            x -= step
        raise RuntimeError("no saturation")

    def tabulated(self, tau):
        digits = 50 + int(mp.mpf("0.45") / (tau * self.t_c))
        self.use_digits(digits)
        Pi, r_l, r_g = self.saturation(tau)
        return -tau * mp.log(Pi / self.Pi_c) / (1 - tau), tau * r_l / self.r_c, r_g / Pi


def pieces():
    """(whether in sigma, begin, end)"""
    for k in range(PIECES_IN_SIGMA):
        yield True, k * SIGMA_STEP, (k + 1) * SIGMA_STEP
    for octave in range(1, OCTAVES + 1):
        begin = mp.mpf(2) ** (-octave - 1)
        for quarter in range(4):
            yield False, begin * (1 + mp.mpf(quarter) / 4), begin * (1 + mp.mpf(quarter + 1) / 4)


def fit(family, in_sigma, begin, end):
    """The coefficients of x^0 ... x^DEGREE for x from -1 to 1, by interpolation at the zeros of Chebyshev's polynomial."""
    count = DEGREE + 1
    mp.mp.dps = 50
    nodes = [mp.cos(mp.pi * (2 * k + 1) / (2 * count)) for k in range(count)]
    values = []
    for x in nodes:
        place = (begin + end) / 2 + (end - begin) / 2 * x
        values.append(family.tabulated(1 - place**2 if in_sigma else place))
        mp.mp.dps = 50
    matrix = mp.matrix(count, count)
    for i, x in enumerate(nodes):
        for j in range(count):
            matrix[i, j] = x**j
    return [mp.lu_solve(matrix, mp.matrix([v[f] for v in values])) for f in range(3)]


def write_table(out):
    out.write("// SPDX-License-Identifier: MIT\n"
              "// Made by scripts/make_saturation_lines; do not edit. [piece][power of x][function], see saturated_cubic.h.\n"
              "// clang-format off\n#pragma once\n\nnamespace saturated_cubic {\n\n"
              f"inline constexpr int coefficients = {DEGREE + 1};\n"
              f"inline constexpr int pieces_in_sigma = {PIECES_IN_SIGMA};\n"
              f"inline constexpr double sigma_step = {float(SIGMA_STEP)!r};\n"
              f"inline constexpr int pieces = {len(list(pieces()))};\n")
    for name in FAMILIES:
        family = Family(name)
        out.write(f"\ninline constexpr double {name}_table[pieces][coefficients][3] = {{\n")
        for piece in pieces():
            columns = fit(family, *piece)
            out.write("    {" + ",\n     ".join(
                "{" + ", ".join(repr(float(columns[f][j])) for f in range(3)) + "}" for j in range(DEGREE + 1)) + "},\n")
        out.write("};\n")
    out.write("\n} // namespace saturated_cubic\n")


def write_points(out):
    """Points between the nodes, for the tests."""
    out.write("# family tau ln(Pi/Pi_c) r_l/r_c r_g/Pi, made by scripts/make_saturation_lines\n")
    for name in FAMILIES:
        family = Family(name)
        taus = [1 - mp.mpf(10) ** -k for k in range(8, 0, -1)] + [1 - mp.mpf(k) / 61 for k in range(1, 61)]
        taus += [mp.mpf(2) ** (-mp.mpf(k) / 5) / 61 for k in range(8)]
        for tau in taus:
            tau = mp.mpf(float(tau))
            Lambda, liquid, vapor = family.tabulated(tau)
            out.write(" ".join([name, repr(float(tau)), mp.nstr(-(1 - tau) / tau * Lambda, 25),
                                mp.nstr(liquid / tau, 25), mp.nstr(vapor, 25)]) + "\n")
            mp.mp.dps = 50


if __name__ == "__main__":
    with open(sys.argv[1], "w", encoding="utf-8") as table:
        write_table(table)
    with open(sys.argv[2], "w", encoding="utf-8") as points:
        write_points(points)
