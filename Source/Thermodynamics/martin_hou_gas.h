// SPDX-License-Identifier: MIT
// Module martin_hou_gas: the operations of the Martin-Hou equation on one set of parameters. The equation stands in
// Equations/martin_hou.h.
#pragma once

#include "Thermodynamics/operations.h"

namespace martin_hou_gas OSTREL_VISIBLE {

OSTREL_DECLARE_MODULE(martin_hou, MHG)
void Q_f__T_v__MHG(double T, double v, std::array<std::array<double, 4>, 4> &q,
                   std::array<std::array<double, 4>, 4> &f);

/// The coefficients in v/vc and T/Tc from Zc [-], Pc [Pa], Tc [K] and Tb [K].
void compute_coeff_adim(double Zc, double Pc, double Tc, double Tb);
/// The coefficients in v [m3/kg] and T [K], P in Pa, for the specific gas constant in `active.Rgas` [J/(kg K)].
void compute_coeff_dim(double Zc, double Pc, double Tc, double Tb);

} // namespace martin_hou_gas
