// SPDX-License-Identifier: MIT
// The Redlich-Kwong equation, gas_type 6 (module redlich_kwong_gas).
//
// Equation   P = Rgas T/(v - b) - a/(sqrt(T) v (v + b))
// Given      reduced T [T_ref], v [v_ref]; a and b follow from Tc and Pc, not from the file
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b; Zc = 1/3 replaces the fluid's own value
// Accuracy   that of the critical volume, see cubic_attraction.h
// Reference  O. Redlich, J. N. S. Kwong, Chem. Rev. 44 (1949) 233
#pragma once

#include "Equations/cubic_attraction.h"

namespace equations {

struct redlich_kwong {
    static constexpr std::size_t terms = 1;
    double Rgas = 0;
    double a = 0;
    double b = 0;

    double covolume() const { return b; }
    double repulsion() const { return Rgas; }

    /// q = a/sqrt(T)
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> q(Real T) const {
        using std::sqrt;
        const Real root = sqrt(T);
        return {{{a / root, -a / (2.0 * T * root), 3.0 * a / (4.0 * (T * T) * root),
                  -15.0 * a / (8.0 * (T * T * T) * root)}}};
    }
    /// f = ln((v + b)/v)/b
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> f(Real v) const {
        return {cubic_attraction::redlich_kwong_f(b, v)};
    }
};

/// Derives a and b; reports a fluid without critical data, or a critical volume that is not found.
inline void initialise(redlich_kwong &p, gas_constants &fluid, records::error_text &message) {
    if (lacks_critical_data(fluid, "Redlich-Kwong model is not applicable. ", "In init_RKG, module redlich_kwong_gas.",
                            message))
        return;
    const double Tc = fluid.Tc;
    const double Pc = fluid.Pc;
    p.Rgas = fluid.R;
    p.a = (Tc * std::sqrt(Tc) * Tc * p.Rgas * p.Rgas / Pc) * 0.4274802335403413;
    p.b = (p.Rgas * Tc / Pc) * 0.08664034996495773;
    const double v =
        cubic_attraction::critical_volume(fluid, p.b, p.a / std::sqrt(Tc), cubic_attraction::redlich_kwong_denominator,
                                          1e-10, " ERROR:  v__P_T__RKG. STOP", message);
    if (!message.clear())
        return;
    set_critical_reference(fluid, v, Pc * v / (p.Rgas * Tc));
    p.Rgas = 1.0;
    p.b = p.b / v;
    p.a = p.a / (v * Pc * v * std::sqrt(Tc * fluid.Zc));
}

} // namespace equations
