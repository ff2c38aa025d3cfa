// SPDX-License-Identifier: MIT
// Module soave_redlich_kwong_gas: the Soave-Redlich-Kwong equation, gas_type 4.
//
// Equation   P = Rgas T/(v - b) - c_a alpha(T)/(v (v + b)), alpha = (1 + fw (1 - sqrt(T/Tc)))^2
// Given      reduced T [T_ref], v [v_ref]; b, c_a and fw follow from Tc, Pc and omega, no file parameters
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b; Zc = 1/3 in place of the fluid's own
// Accuracy   the critical point as far as cubic_attraction.h finds it
// Reference  G. Soave, Chem. Eng. Sci. 27 (1972) 1197; fw = 0.48 + 1.574 w - 0.176 w^2
#pragma once

#include "Thermodynamics/cubic_attraction.h"
#include "Thermodynamics/operations.h"

namespace soave_redlich_kwong_gas OSTREL_VISIBLE {

struct parameters : cubic_attraction::soave_parameters {
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> f(Real v) const {
        return {cubic_attraction::redlich_kwong_f(b, v)};
    }
};

/// Derives b, c_a and fw; reports a fluid without critical data, or a critical volume that is not found.
void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message);

extern parameters active;
OSTREL_DECLARE_MODEL(SRKG)
OSTREL_DECLARE_FACTORS(SRKG)

} // namespace soave_redlich_kwong_gas
