// SPDX-License-Identifier: MIT
// Module redlich_kwong_gas: the Redlich-Kwong equation, gas_type 6.
//
// Equation   P = Rgas T/(v - b) - a/(sqrt(T) v (v + b))
// Given      reduced T [T_ref], v [v_ref]; a and b follow from Tc and Pc, no file parameters
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b; Zc = 1/3 in place of the fluid's own
// Accuracy   the critical point as far as cubic_attraction.h finds it
// Reference  O. Redlich, J. N. S. Kwong, Chem. Rev. 44 (1949) 233
#pragma once

#include "Thermodynamics/cubic_attraction.h"
#include "Thermodynamics/operations.h"

namespace redlich_kwong_gas OSTREL_VISIBLE {

struct parameters {
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
void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message);

extern parameters active;
OSTREL_DECLARE_MODEL(RKG)
OSTREL_DECLARE_FACTORS(RKG)

} // namespace redlich_kwong_gas
