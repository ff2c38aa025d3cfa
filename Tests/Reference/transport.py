# SPDX-License-Identifier: MIT
"""Viscosity and thermal conductivity, from the published correlations with the library's deliberate differences.

T.-H. Chung, M. Ajlan, L. L. Lee, K. E. Starling, Ind. Eng. Chem. Res. 27 (1988) 671; P. D. Neufeld, A. R. Janzen,
R. A. Aziz, J. Chem. Phys. 57 (1972) 1100; L. I. Stiel, G. Thodos, AIChE J. 7 (1961) 611; W. Sutherland, Phil. Mag. 36
(1893) 507. Three things differ on purpose: the sine of the collision integral has a tenth of its published constant,
the viscosity of the dilute gas is in 0.1 Pa s, and the conductivity is multiplied by 10^4/418.4 instead of 418.4.
"""
from mpmath import mp, mpf

import helmholtz

E_ROWS = """
 6.32402    50.4119    -51.6801    1189.02
 0.0012102  -0.0011536 -0.0062571  0.037283
 5.28346    254.209    -168.481    3898.27
 6.62263    38.0957    -8.46414    31.4178
 19.7454    7.63034    -14.3544    31.5267
 -1.89992   -12.5367   4.98529     -18.1507
 24.2745    3.44945    -11.2913    69.3466
 0.79716    1.11764    0.012348    -4.11661
 -0.23816   0.067695   -0.8163     4.02528
 0.068629   0.34793    0.59256     -0.72663
"""
B_ROWS = """
 2.41657    0.74824    -0.91858    121.721
 -0.50924   -1.50936   -49.9912    69.9834
 6.61069    5.62073    64.7599     27.0389
 14.5425    -8.91387   -5.63794    74.3435
 0.79274    0.82019    -0.69369    6.31734
 -5.8634    12.8005    9.58926     -65.5292
 81.171     114.158    -60.841     466.775
"""


def collision_integral(p, T_star):
    c = p.constant
    return c("1.16145") * T_star ** -c("0.14874") + c("0.52487") * mp.exp(-c("0.7732") * T_star) + \
        c("2.16178") * mp.exp(-c("2.43787") * T_star) - c("0.0006435") * T_star ** c("0.14874") * \
        mp.sin(p.rounded("argument", c("1.80323") * T_star ** -c("0.7683") - c("7.27371")))


def shape(p):
    c = p.constant
    return 1 - c("0.2756") * p["omega"] + c("0.059035") * p["mur"] ** 4 + p["kh"]


def beta(p):
    c = p.constant
    return c("0.7862") - c("0.7109") * p["omega"] + c("1.3168") * p["omega"] ** 2


def coefficients(p, rows, count):
    result = []
    for row in rows.split("\n")[1:count + 1]:
        c = [p.constant(text) for text in row.split()]
        result.append(c[0] + c[1] * p["omega"] + c[2] * p["mur"] ** 4 + c[3] * p["kh"])
    return result


def molar_volume(p):
    return 1000 * p["vc"] * p["MM"]


def two_thirds(x):
    return x ** (mpf(2) / 3)


def T_star(p, T):
    return p.constant("1.2593") * T / p["Tc"]


def dilute_viscosity(p, T):
    return p.constant("4.0785e-5") * shape(p) * mp.sqrt(p["MM"] * T) / \
        (two_thirds(molar_volume(p)) * collision_integral(p, T_star(p, T)))


def y_of(p, v):
    return p["vc"] / (6 * v)


def G2_of(p, y, rows):
    C = coefficients(p, rows, 5)
    G1 = (1 - y / 2) / p.rounded("1 - y", 1 - y) ** 3
    terms = (C[0] * (1 - mp.exp(-C[3] * y)) / y, C[1] * mp.exp(C[4] * y) * G1, C[2] * G1)
    return sum(p.rounded(f"G2 {k}", term) for k, term in enumerate(terms)) / (C[0] * C[3] + C[1] + C[2])


def dense_viscosity(p, T, v, mu0):
    y = y_of(p, v)
    G2 = G2_of(p, y, E_ROWS)
    E = coefficients(p, E_ROWS, 10)
    t = T_star(p, T)
    mu_dense = E[6] * y ** 2 * G2 * mp.exp(E[7] + E[8] / t + E[9] / t ** 2)
    return (mu0 * (1 / G2 + E[5] * y) + p.constant("3.6344e-5") * mp.sqrt(p["MM"] * p["Tc"]) /
            two_thirds(molar_volume(p)) * mu_dense) / 10


def corresponding_states(p, T):
    c = p.constant
    return c("3.4e-7") * mp.sqrt(p["MM"]) * two_thirds(p["Pc"] / 101325) / p["Tc"] ** (mpf(1) / 6) * \
        (T / p["Tc"]) ** c("0.94")


def sutherland(p, T):
    return p["mu_ref_s"] * (T / p["T_ref_s"]) ** mpf("1.5") * (p["T_ref_s"] + p["Tchar_s"]) / (T + p["Tchar_s"])


def linear(p, T):
    return p["mu_ref_l"] * T / p["T_ref_l"]


def cv(p, T):
    return helmholtz.cv_of_form(p.values["form"], p, T)


def unit(p):
    return p.rounded("unit", mpf(10) ** 4 / mpf("418.4"))


def dilute_conductivity(p, T, mu):
    c = p.constant
    alpha = p.rounded("cv/R", cv(p, T) / p["R"]) - mpf("1.5")
    Z = 2 + mpf("10.5") * (T / p["Tc"]) ** 2
    b = beta(p)
    psi = 1 + alpha * (c("0.215") + c("0.28288") * alpha - c("1.061") * b + c("0.26665") * Z) / \
        (c("0.6366") + b * Z + c("1.061") * alpha * b)
    return unit(p) * c("7.452") * mu * psi / p["MM"]


def dense_conductivity(p, T, v, k0):
    """The conductivity of the dense gas, from that of the dilute gas, k0."""
    y = y_of(p, v)
    G2 = G2_of(p, y, B_ROWS)
    B = coefficients(p, B_ROWS, 7)
    return k0 * (1 / G2 + B[5] * y) + unit(p) * p.constant("0.0003039") * mp.sqrt(p["Tc"] / p["MM"]) / \
        two_thirds(molar_volume(p)) * B[6] * y ** 2 * G2 * mp.sqrt(T / p["Tc"])


def prandtl(p, T, v, mu):
    """The conductivity by a constant Prandtl number, with cp of van der Waals's equation. In reduced form,
    cp/R = cv/R + 1/(1 - 2 a (v - b)^2/(T v^3))."""
    t, w = T / p["T_ref"], v / p["v_ref"]
    ratio = p.rounded("ratio", 2 * p["a"] * (w - p["b"]) ** 2 / (t * w ** 3))
    return mu * p["R"] * (cv(p, T) / p["R"] + 1 / (1 - ratio)) / p["Pr"]


def both(p, T, v):
    """Viscosity and conductivity by the chosen models."""
    mu0 = mpf(0)
    viscosity, conductivity = p.values["viscosity_model"], p.values["thermal_cond_model"]
    if viscosity == 1:
        mu = p["mu_const"]
    elif viscosity == 2:
        mu = dilute_viscosity(p, T)
    elif viscosity == 3:
        mu0 = dilute_viscosity(p, T)
        mu = dense_viscosity(p, T, v, mu0)
    else:
        mu = {4: corresponding_states, 5: sutherland, 6: linear}[viscosity](p, T)
    if conductivity == 1:
        return [mu, p["kk_const"]]
    if conductivity == 2:
        return [mu, dilute_conductivity(p, T, mu)]
    if conductivity == 3:
        return [mu, dense_conductivity(p, T, v, dilute_conductivity(p, T, mu0))]
    return [mu, prandtl(p, T, v, mu)]


def at_initialisation(p):
    """The derived constants of the two models, in the order of the library's names."""
    viscosity, conductivity = p.values["viscosity_model"], p.values["thermal_cond_model"]
    result = {}
    if viscosity in (2, 3):
        result["fc"] = [shape(p)]
    if viscosity == 3:
        result["aa"] = coefficients(p, E_ROWS, 10)
    if conductivity in (2, 3):
        result["beta"] = [beta(p)]
    if conductivity == 3:
        result["bb"] = coefficients(p, B_ROWS, 7)
    vapor = p.values["vapor"]
    mu, k = both(p, p["Tc"] if vapor else p["T_ref"], p["vc"] if vapor else p["v_ref"])
    return {**result, "mu_ref": [mu], "kk_ref": [k]}


def at_state(p, t, w):
    """Every operation at reduced T and v for which the fluid's models have the constants."""
    T, v = p["t"] * p["T_ref"], p["w"] * p["v_ref"]
    result = {"transport_coefficients_dim": both(p, T, v), "sutherland_law_viscosity": [sutherland(p, T)],
              "linear_viscosity": [linear(p, T)]}
    if not p.values["vapor"]:
        return result
    result["corresp_state_viscosity"] = [corresponding_states(p, T)]
    if p.values["viscosity_model"] in (2, 3):
        result["diluite_gas_viscosity"] = [dilute_viscosity(p, T)]
    if p.values["viscosity_model"] == 3:
        mu0 = dilute_viscosity(p, T)
        result["dense_gas_viscosity"] = [dense_viscosity(p, T, v, mu0), mu0]
        result["density_factors_of_viscosity"] = [y_of(p, v), G2_of(p, y_of(p, v), E_ROWS)]
    if p.values["thermal_cond_model"] in (2, 3):
        result["diluite_gas_thermal_cond"] = [dilute_conductivity(p, T, p["mu_const"])]
    if p.values["thermal_cond_model"] == 3:
        result["dense_gas_thermal_cond"] = [dense_conductivity(p, T, v, p["kk_const"])]
        result["density_factors_of_conductivity"] = [y_of(p, v), G2_of(p, y_of(p, v), B_ROWS)]
    return result
