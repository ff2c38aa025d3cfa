// SPDX-License-Identifier: MIT
// Module martin_hou_gas: the operations of the Martin-Hou equation on one set of parameters. The equation stands in
// Equations/martin_hou.h.
#pragma once

#include "Thermodynamics/operations.h"

namespace martin_hou_gas OSTREL_VISIBLE {

OSTREL_DECLARE_MODULE(martin_hou, MHG)
void Q_f__T_v__MHG(double T, double v, std::array<std::array<double, 4>, 4> &q,
                   std::array<std::array<double, 4>, 4> &f);

/// Computes the coefficients for v/vc and T/Tc, from Zc [-], Pc [Pa], Tc [K] and Tb [K].
void compute_coeff_adim(double Zc, double Pc, double Tc, double Tb);
/// Computes the coefficients for v [m3/kg], T [K] and P [Pa], from Zc [-], Pc [Pa], Tc [K] and Tb [K]; the specific gas
/// constant is taken from `active.Rgas`, which must be in J/(kg K).
void compute_coeff_dim(double Zc, double Pc, double Tc, double Tb);

} // namespace martin_hou_gas
