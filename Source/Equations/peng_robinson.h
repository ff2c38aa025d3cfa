// SPDX-License-Identifier: MIT
// The Peng-Robinson equation, gas_type 5 (module peng_robinson_gas).
//
// Equation   P = Rgas T/(v - b) - c_a alpha(T)/(v^2 + 2 b v - b^2), alpha = (1 + fw (1 - sqrt(T/Tc)))^2
// Given      reduced T [T_ref], v [v_ref]; b, c_a and fw follow from Tc, Pc and omega, not from the file
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b; Zc = 0.32138 replaces the fluid's own value
// Accuracy   the constants are rounded: (T, v) = (1/Zc, 1) is near the critical point of the equation, but not at it
// Reference  D.-Y. Peng, D. B. Robinson, Ind. Eng. Chem. Fundam. 15 (1976) 59
#pragma once

#include "Equations/cubic_attraction.h"

namespace equations {

struct peng_robinson : cubic_attraction::soave_parameters {
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> f(Real v) const {
        return {cubic_attraction::peng_robinson_f(b, v)};
    }
};

/// The coefficient of the temperature factor.
inline double peng_robinson_fw(double omega) {
    return 0.37464 + (1.54226 - 0.26992 * omega) * omega;
}

/// Derives b, c_a and fw; reports a fluid without critical data, or a critical volume that is not found.
inline void initialise(peng_robinson &p, gas_constants &fluid, records::error_text &message) {
    if (lacks_critical_data(fluid, "Peng-Robinson model is not applicable. ", "In init_PRG, module peng_robinson_gas.",
                            message))
        return;
    const double Tc = fluid.Tc;
    const double Pc = fluid.Pc;
    const double RTc = fluid.R * Tc;
    p.c_a = RTc * 0.45724 * RTc / Pc;
    p.b = Tc * 0.0778 * fluid.R / Pc;
    p.fw = peng_robinson_fw(fluid.omega);
    p.reduce(fluid, cubic_attraction::peng_robinson_denominator, 1e-10, " ERROR:  v__P_T__PRG. STOP", message);
}

} // namespace equations
