// SPDX-License-Identifier: MIT
// Module clausius_II_gas: the Clausius II equation, gas_type 7.
//
// Equation   P = Rgas T/(v - b) - a/(T (v + c)^2), a volume-translated van der Waals form
// Given      reduced T [T_ref], v [v_ref]; a, b, c follow from the critical point, no file parameters
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b; the critical point and Zc of the fluid are met exactly,
//            liquid densities and vapor pressures far below it are not. With Zc < 0.25, as water has, b and
//            the lower bound of v are negative: the equation still holds in the gas
// Reference  R. Clausius, Ann. Phys. 245 (1880) 337
#pragma once

#include "Thermodynamics/operations.h"

namespace clausius_II_gas OSTREL_VISIBLE {

struct parameters {
    static constexpr std::size_t terms = 1;
    double Rgas = 0;
    double a = 0;
    double b = 0;
    double c = 0;

    double covolume() const { return b; }
    double repulsion() const { return Rgas; }

    /// q = a/T
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> q(Real T) const {
        const Real T2 = T * T;
        return {{{a / T, -a / T2, 2.0 * a / (T2 * T), -6.0 * a / (T2 * T2)}}};
    }
    /// f = 1/(v + c)
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> f(Real v) const {
        const Real w = v + c;
        const Real w2 = w * w;
        return {{{1.0 / w, -1.0 / w2, 2.0 / (w2 * w), -6.0 / (w2 * w2)}}};
    }
};

/// Derives a, b, c from the critical point; reports a fluid without critical data.
void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message);

extern parameters active;
OSTREL_DECLARE_MODEL(CIIG)
OSTREL_DECLARE_FACTORS(CIIG)

} // namespace clausius_II_gas
