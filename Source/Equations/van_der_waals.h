// SPDX-License-Identifier: MIT
// The van der Waals equation, gas_type 2 (module van_der_waals_gas).
//
// Equation   P = Rgas T/(v - b) - a/v^2
// Given      reduced T [T_ref], v [v_ref]; the file has no parameters of this model
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b; Zc = 3/8 replaces the fluid's own value. For qualitative use only:
//            the densities and vapor pressures are far from those of real fluids
// Reference  J. D. van der Waals, Over de continuiteit van den gas- en vloeistoftoestand (1873)
#pragma once

#include "Equations/separated_attraction.h"

namespace equations {

struct van_der_waals {
    static constexpr std::size_t terms = 1;
    static constexpr bool athermal_attraction = true;
    double Rgas = 0;
    double a = 0;
    double b = 0;

    double covolume() const { return b; }
    double repulsion() const { return Rgas; }

    /// q = 1
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
inline void initialise(van_der_waals &p, gas_constants &fluid, records::error_text &message) {
    if (lacks_critical_data(fluid, "van der Waals model is not applicable. ", "In init_vdWG, module van_der_waals_gas.",
                            message))
        return;
    set_critical_reference(fluid, fluid.R * 0.375 * fluid.Tc / fluid.Pc, 0.375);
    p.Rgas = 1.0;
    p.a = 3.0;
    p.b = 1.0 / 3.0;
}

} // namespace equations
