# SPDX-License-Identifier: MIT
"""Viscosity and thermal conductivity in SI units by Chung's method as it was published (T.-H. Chung, M. Ajlan,
L. L. Lee, K. E. Starling, Ind. Eng. Chem. Res. 27 (1988) 671), for a row of Fluids/fluids.csv."""
import math

R = 8314  # J/(kmol K), the gas constant of the library
# A row c0, c1, c2, c3 stands for c0 + c1 omega + c2 mu_r^4 + c3 kappa.
VISCOSITY = (
    (6.32402, 50.4119, -51.6801, 1189.02), (0.0012102, -0.0011536, -0.0062571, 0.037283),
    (5.28346, 254.209, -168.481, 3898.27), (6.62263, 38.0957, -8.46414, 31.4178),
    (19.7454, 7.63034, -14.3544, 31.5267), (-1.89992, -12.5367, 4.98529, -18.1507),
    (24.2745, 3.44945, -11.2913, 69.3466), (0.79716, 1.11764, 0.012348, -4.11661),
    (-0.23816, 0.067695, -0.8163, 4.02528), (0.068629, 0.34793, 0.59256, -0.72663))
CONDUCTIVITY = (
    (2.41657, 0.74824, -0.91858, 121.721), (-0.50924, -1.50936, -49.9912, 69.9834),
    (6.61069, 5.62073, 64.7599, 27.0389), (14.5425, -8.91387, -5.63794, 74.3435),
    (0.79274, 0.82019, -0.69369, 6.31734), (-5.8634, 12.8005, 9.58926, -65.5292),
    (81.171, 114.158, -60.841, 466.775))


class Chung:
    """One fluid, with the acentric factor of its parameter file and cv_over_R(T) of its ideal gas."""

    def __init__(self, row, omega, cv_over_R):
        self.M, self.Tc = float(row["MM"]), float(row["Tc"])
        self.Vc = 1000 * float(row["Zc"]) * R * self.Tc / float(row["Pc"])  # cm3/mol
        self.omega, self.cv_over_R = omega, cv_over_R
        mu_r4, kappa = float(row["mu_r"] or 0) ** 4, float(row["kappa"] or 0)
        self.Fc = 1 - 0.2756 * omega + 0.059035 * mu_r4 + kappa
        self.E, self.B = ([a + b * omega + c * mu_r4 + d * kappa for a, b, c, d in table]
                          for table in (VISCOSITY, CONDUCTIVITY))

    def dilute_viscosity(self, T):
        x = 1.2593 * T / self.Tc
        integral = (1.16145 / x**0.14874 + 0.52487 * math.exp(-0.7732 * x) + 2.16178 * math.exp(-2.43787 * x)
                    - 0.0006435 * x**0.14874 * math.sin(18.0323 * x**-0.7683 - 7.27371))
        return 4.0785e-6 * self.Fc * math.sqrt(self.M * T) / (self.Vc ** (2 / 3) * integral)

    def dilute_conductivity(self, T, mu):
        """From the viscosity mu [Pa s] of the dilute gas, by whichever formula."""
        beta = 0.7862 - 0.7109 * self.omega + 1.3168 * self.omega**2
        alpha, Z = self.cv_over_R(T) - 1.5, 2 + 10.5 * (T / self.Tc) ** 2
        psi = 1 + alpha * (0.215 + 0.28288 * alpha - 1.061 * beta + 0.26665 * Z) / (
            0.6366 + beta * Z + 1.061 * alpha * beta)
        return 418.4 * 7.452 * 10 * mu * psi / self.M

    def dense(self, T, density_r):
        """Viscosity and conductivity at a density in units of the critical density."""
        y, mu0 = density_r / 6, self.dilute_viscosity(T)
        G1 = (1 - y / 2) / (1 - y) ** 3

        def G2(E):
            rise = -math.expm1(-E[3] * y)
            return (E[0] * rise / y + (E[1] * math.exp(E[4] * y) + E[2]) * G1) / (E[0] * E[3] + E[1] + E[2])

        E, B, x = self.E, self.B, 1.2593 * T / self.Tc
        rest = E[6] * y * y * G2(E) * math.exp(E[7] + E[8] / x + E[9] / (x * x))
        viscosity = mu0 * (1 / G2(E) + E[5] * y) + 3.6344e-6 * math.sqrt(self.M * self.Tc) / self.Vc ** (2 / 3) * rest
        rest = 418.4 * 0.0003039 * math.sqrt(self.Tc / self.M) / self.Vc ** (2 / 3) * B[6] * y * y * G2(B)
        conductivity = (self.dilute_conductivity(T, mu0) * (1 / G2(B) + B[5] * y) + rest * math.sqrt(T / self.Tc))
        return viscosity, conductivity
