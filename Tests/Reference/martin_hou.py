# SPDX-License-Identifier: MIT
"""The coefficients of the Martin-Hou equation, from the nine conditions that its authors impose, as a linear system.

J. J. Martin, Y.-C. Hou, AIChE J. 1 (1955) 142; J. J. Martin, R. M. Kapoor, N. De Nevers, AIChE J. 5 (1959) 159.
Volumes are divided by vc, pressures by Pc, temperatures by Tc.
"""
from mpmath import matrix, mp, mpf

UNKNOWN = ("A1", "A2", "A3", "B1", "B2", "B4", "C1", "C2", "C4")


def coefficients(p):
    """b, aa, bb, cc, kk from Inputs with Zc, Pc [Pa], Tc [K], Tb [K]."""
    Zc, Pc, Tc, Tb = p["Zc"], p["Pc"], p["Tc"], p["Tb"]
    c = p.constant
    z = 1 / Zc
    b = 1 - (c("20.533") - c("31.883") * Zc) / 15
    d = 1 - b
    k = c("5.475")
    m = c("9.654921") / Tc + c("2.505308") - c("6.492324e-4") * Tc
    tau = c("0.9869") - c("0.6751") * Zc
    theta = Tb / Tc
    # The slope dP/dT of the critical isometric is Riedel's parameter.
    X = 36 / theta + 42 * mp.log(theta) - 35 - theta ** 6
    slope = (c("0.315") * X - mp.log(p.constant("101325") / Pc)) / (c("0.0838") * X - mp.log(theta))
    E = p.rounded("exp(-5.475)", mp.exp(-k))
    rows, sides = [], []

    def impose(side, **factors):
        rows.append([mpf(factors.get(name, 0)) for name in UNKNOWN])
        sides.append(side)

    # The critical isotherm fixes the factors of 1/(v - b)^2 to 1/(v - b)^5 at Tc.
    impose(9 * d ** 2 - c("3.8") * z * d, A1=1, B1=1, C1=E)
    impose(c("5.4") * z * d ** 2 - 17 * d ** 3, A2=1, B2=1, C2=E)
    impose(12 * d ** 4 - c("3.4") * z * d ** 3, A3=1)
    impose(c("0.8") * z * d ** 4 - 3 * d ** 5, B4=1, C4=E)
    # At the Boyle temperature m the second virial coefficient is 0. The isotherm at tau starts with the slope of a line
    # to the critical point.
    impose(-b * z * m, A1=1, B1=m, C1=mp.exp(-k * m))
    impose(-b * z * tau - (1 - Zc) * (z * tau) ** 2, A1=1, B1=tau, C1=mp.exp(-k * tau))
    # The isometrics at vc and vc/2 are straight.
    h = mpf(1) / 2 - b
    impose(0, C1=d ** 3, C2=d ** 2, C4=1)
    impose(0, C1=h ** 3, C2=h ** 2, C4=1)
    impose(slope - z / d, B1=d ** -2, B2=d ** -3, B4=d ** -5)
    found = dict(zip(UNKNOWN, mp.lu_solve(matrix(rows), matrix(sides))))
    # The library's reduced temperature is T/(Zc Tc).
    return {"b": b, "kk": k * Zc, "aa": [found["A1"], found["A2"], found["A3"], mpf(0)],
            "bb": [found["B1"] * Zc, found["B2"] * Zc, mpf(0), found["B4"] * Zc],
            "cc": [found["C1"], found["C2"], mpf(0), found["C4"]]}
