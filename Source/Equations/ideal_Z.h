// SPDX-License-Identifier: MIT
// The ideal gas with a constant compressibility factor, gas_type 8 (module ideal_Z_gas).
//
// Equation   P v = Z Rgas T
// Given      reduced T [T_ref], v [v_ref]; Z_const in one record of the file
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      every fluid, near the state whose compressibility factor Z is. A fluid with critical data
//            gets Zc = Z and T_ref = Z Tc in place of its own. One without them keeps its T_ref, so that
//            P_ref v_ref is Z R T_ref: its pressures come out Z times, its heat capacities 1/Z times theirs
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
