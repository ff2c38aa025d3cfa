// SPDX-License-Identifier: MIT
// The ideal gas with a constant compressibility factor, gas_type 8 (module ideal_Z_gas).
//
// Equation   P v = Z Rgas T
// Given      reduced T [T_ref], v [v_ref]; one record of the file has Z = Z_const
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      every fluid, near a state that has the compressibility factor Z. A fluid with critical data gets Zc = Z
//            and T_ref = Z Tc instead of its own values. A fluid without them keeps T_ref, and P_ref v_ref becomes
//            Z R T_ref: its pressures are wrong by the factor Z and its heat capacities by 1/Z
// Reference  the definition of the compressibility factor, Z = P v/(R T)
#pragma once

#include "Equations/separated_attraction.h"

namespace equations {

struct ideal_Z : separated_attraction::no_attraction {
    double Rgas = 0;
    double Z_const = 0;

    double repulsion() const { return Z_const * Rgas; }
};

/// Completes the fluid's reference point; never fails.
inline void initialise(ideal_Z &p, gas_constants &fluid, records::error_text &) {
    complete_ideal_reference(fluid, p.Z_const);
    p.Rgas = 1.0;
}

} // namespace equations
