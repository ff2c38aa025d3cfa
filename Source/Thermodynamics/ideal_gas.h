// SPDX-License-Identifier: MIT
// Module ideal_gas: the ideal gas, gas_type 1.
//
// Equation   P v = Rgas T
// Given      reduced T [T_ref], v [v_ref]; no parameters in the file
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      every fluid; densities far below the critical one. A fluid with critical data gets
//            Zc = 1 and T_ref = Tc in place of its own
// Reference  E. Clapeyron, J. de l'Ecole Polytechnique 14 (1834) 153
#pragma once

#include "Thermodynamics/operations.h"

namespace ideal_gas OSTREL_VISIBLE {

struct parameters : separated_attraction::no_attraction {
    double Rgas = 0;

    double repulsion() const { return Rgas; }
};

/// Completes the fluid's reference point; never fails.
void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message);

extern parameters active;
OSTREL_DECLARE_MODEL(IG)

} // namespace ideal_gas
