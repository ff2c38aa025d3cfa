// SPDX-License-Identifier: MIT
// Module peng_robinson_gas: the Peng-Robinson equation, gas_type 5.
//
// Equation   P = Rgas T/(v - b) - c_a alpha(T)/(v^2 + 2 b v - b^2), alpha = (1 + fw (1 - sqrt(T/Tc)))^2
// Given      reduced T [T_ref], v [v_ref]; b, c_a and fw follow from Tc, Pc and omega, no file parameters
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b; Zc = 0.32138 in place of the fluid's own
// Accuracy   (T, v) = (1/Zc, 1) is near, not at, the critical point of the equation with its rounded constants
// Reference  D.-Y. Peng, D. B. Robinson, Ind. Eng. Chem. Fundam. 15 (1976) 59
#pragma once

#include "Thermodynamics/cubic_attraction.h"
#include "Thermodynamics/operations.h"

namespace peng_robinson_gas OSTREL_VISIBLE {

struct parameters : cubic_attraction::soave_parameters {
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> f(Real v) const {
        return {cubic_attraction::peng_robinson_f(b, v)};
    }
};

/// Derives b, c_a and fw; reports a fluid without critical data, or a critical volume that is not found.
void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message);

extern parameters active;
OSTREL_DECLARE_MODEL(PRG)
OSTREL_DECLARE_FACTORS(PRG)

} // namespace peng_robinson_gas
