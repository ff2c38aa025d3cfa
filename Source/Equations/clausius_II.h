// SPDX-License-Identifier: MIT
// The Clausius II equation, gas_type 7 (module clausius_II_gas).
//
// Equation   P = Rgas T/(v - b) - a/(T (v + c)^2), a volume-translated van der Waals form
// Given      reduced T [T_ref], v [v_ref]; a, b and c follow from the critical point, not from the file
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b. The equation meets the fluid's critical point and Zc exactly, but not
//            its liquid densities and vapor pressures far below that point. If Zc < 0.25, as for water, b and the lower
//            bound of v are negative, and the equation holds in the gas only
// Reference  R. Clausius, Ann. Phys. 245 (1880) 337
#pragma once

#include "Equations/separated_attraction.h"

namespace equations {

struct clausius_II {
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

/// Derives a, b and c from the critical point; reports a fluid without critical data.
inline void initialise(clausius_II &p, gas_constants &fluid, records::error_text &message) {
    if (lacks_critical_data(fluid, "Clausius-II model is not applicable. ", "In init_CIIG, module clausius_II_gas.",
                            message))
        return;
    const double Zc = fluid.Zc;
    const double vc = Zc * fluid.R * fluid.Tc / fluid.Pc;
    set_critical_reference(fluid, vc, Zc);
    p.Rgas = 1.0;
    p.a = (fluid.R * (fluid.Tc * fluid.Tc) * vc / Zc * 0.421875) / (fluid.Pc * Zc * fluid.Tc * (vc * vc));
    p.b = (1.0 - 1.0 / (4.0 * Zc)) * vc / vc;
    p.c = (3.0 / (8.0 * Zc) - 1.0) * vc / vc;
}

} // namespace equations
