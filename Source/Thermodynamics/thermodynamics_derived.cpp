// SPDX-License-Identifier: MIT
// Derived properties: the chain rule on the model's exact derivatives in (T, v).
#include "Thermodynamics/thermodynamics.h"

namespace thermodynamics {

double h__T_v(double T, double v) {
    return e__T_v(T, v) + P__T_v(T, v) * v;
}

std::array<double, 2> dP__dre_dr__T_v(double T, double v) {
    std::array<double, 2> dP{};
    std::array<double, 2> de{};
    dP__dT_dv(T, v, dP);
    de__dT_dv(T, v, de);
    const double e = e__T_v(T, v);
    const double v2 = v * v;
    // rho e = e/v, so that d(rho e)/dT = e_T/v and d(rho e)/dv = e_v/v - e/v^2; d(rho)/dv = -1/v^2.
    return {dP[0] / (de[0] / v), (dP[1] - dP[0] * ((de[1] / v - e / v2) / (de[0] / v))) / (-1.0 / v2)};
}

} // namespace thermodynamics
