// SPDX-License-Identifier: MIT
// The Soave-Redlich-Kwong equation, gas_type 4 (module soave_redlich_kwong_gas).
//
// Equation   P = Rgas T/(v - b) - c_a alpha(T)/(v (v + b)), alpha = (1 + fw (1 - sqrt(T/Tc)))^2
// Given      reduced T [T_ref], v [v_ref]; b, c_a and fw follow from Tc, Pc and omega, not from the file
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b; Zc = 1/3 replaces the fluid's own value
// Accuracy   that of the critical volume, see cubic_attraction.h
// Reference  G. Soave, Chem. Eng. Sci. 27 (1972) 1197; fw = 0.48 + 1.574 omega - 0.176 omega^2
#pragma once

#include "Equations/cubic_attraction.h"

namespace equations {

struct soave_redlich_kwong : cubic_attraction::soave_parameters {
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> f(Real v) const {
        return {cubic_attraction::redlich_kwong_f(b, v)};
    }
};

/// The coefficient of the temperature factor.
inline double soave_fw(double omega) {
    return 0.48 + (1.574 - 0.176 * omega) * omega;
}

/// Derives b, c_a and fw; reports a fluid without critical data, or a critical volume that is not found.
inline void initialise(soave_redlich_kwong &p, gas_constants &fluid, records::error_text &message) {
    if (lacks_critical_data(fluid, "Soave-Redlich-Kwong model is not applicable. ",
                            "In init_SRKG, module soave_redlich_kwong_gas.", message))
        return;
    const double Tc = fluid.Tc;
    const double Pc = fluid.Pc;
    const double RTc = fluid.R * Tc;
    p.c_a = (RTc * RTc) * 0.4274802335403413 / Pc;
    p.b = Tc * 0.08664034996495773 * fluid.R / Pc;
    p.fw = soave_fw(fluid.omega);
    p.reduce(fluid, cubic_attraction::redlich_kwong_denominator, 1e-14, " ERROR:  v__P_T__SRKG. STOP", message);
}

} // namespace equations
