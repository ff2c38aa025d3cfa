// SPDX-License-Identifier: MIT
// The ideal gas, gas_type 1 (module ideal_gas).
//
// Equation   P v = Rgas T
// Given      reduced T [T_ref], v [v_ref]; the file has no parameters of this model
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      every fluid, at densities far below the critical density. A fluid with critical data gets Zc = 1 and
//            T_ref = Tc instead of its own values
// Reference  E. Clapeyron, J. de l'Ecole Polytechnique 14 (1834) 153
#pragma once

#include "Equations/separated_attraction.h"

namespace equations {

struct ideal_gas : separated_attraction::no_attraction {
    double Rgas = 0;

    double repulsion() const { return Rgas; }
};

/// Completes the fluid's reference point; never fails.
inline void initialise(ideal_gas &p, gas_constants &fluid, records::error_text &) {
    complete_ideal_reference(fluid, 1.0);
    p.Rgas = 1.0;
}

} // namespace equations
