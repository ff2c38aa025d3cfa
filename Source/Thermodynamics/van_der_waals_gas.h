// SPDX-License-Identifier: MIT
// Module van_der_waals_gas: the van der Waals equation, gas_type 2.
//
// Equation   P = Rgas T/(v - b) - a/v^2
// Given      reduced T [T_ref], v [v_ref]; no parameters in the file
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b; Zc = 3/8 in place of the fluid's own. For qualitative use:
//            densities and vapor pressures are far from those of real fluids
// Reference  J. D. van der Waals, Over de continuiteit van den gas- en vloeistoftoestand (1873)
#pragma once

#include "Thermodynamics/operations.h"

namespace van_der_waals_gas OSTREL_VISIBLE {

struct parameters {
    static constexpr std::size_t terms = 1;
    double Rgas = 0;
    double a = 0;
    double b = 0;

    double covolume() const { return b; }
    double repulsion() const { return Rgas; }

    /// q = 1, so that the attraction is f' = -a/v^2
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> q(Real) const {
        return {{{Real(1), Real(0), Real(0), Real(0)}}};
    }
    /// f = a/v
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> f(Real v) const {
        const Real v2 = v * v;
        return {{{a / v, -a / v2, 2.0 * a / (v2 * v), -6.0 * a / (v2 * v2)}}};
    }
};

/// Sets a and b; reports a fluid without critical data.
void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message);

extern parameters active;
OSTREL_DECLARE_MODEL(vdWG)

} // namespace van_der_waals_gas
