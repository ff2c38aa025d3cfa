// SPDX-License-Identifier: MIT
// The algebra of derived properties: the chain rule, applied to a model's exact derivatives at one state.
//
// Given      a state point of separated_attraction.h and the ideal part, reduced
// Returned   h and mu [P_ref v_ref], c [c_ref], cp [R], Gamma [-], and partial derivatives in these units
// Valid      where the model is valid; zero divisors and a negative c^2 give the IEEE results of the formulas
// Reference  H. B. Callen, Thermodynamics (1985) ch. 7; P. A. Thompson, Phys. Fluids 14 (1971) 1843 (Gamma)
#pragma once

#include "Equations/separated_attraction.h"
#include "visibility.h"

namespace derived_properties {

using separated_attraction::gradient;
using separated_attraction::hessian;

/// The derived properties of one state. Each of them computes only the parts of the state that it uses.
template <class Point, class Ideal = separated_attraction::ideal_part>
struct properties {
    using Real = decltype(Point::T);

    const Point &at;
    const Ideal &ideal;
    Real T = at.T;
    Real v = at.v;

    OSTREL_INLINE Real h() const { return at.e(ideal) + at.P() * v; }
    Real mu() const { return at.e(ideal) + at.P() * v - T * at.s(ideal); }
    Real c2() const {
        const auto [P_T, P_v] = at.dP();
        return v * v * ((T / at.cv(ideal)) * (P_T * P_T) - P_v);
    }
    Real c() const {
        using std::sqrt;
        return sqrt(c2());
    }
    Real cp() const {
        const auto [P_T, P_v] = at.dP();
        return at.cv(ideal) - T * (P_T * P_T) / P_v;
    }
    Real G() const {
        const auto [P_T, P_v] = at.dP();
        const auto [P_TT, P_vT, P_Tv, P_vv] = at.d2P();
        const Real T_cv = T / at.cv(ideal);
        const Real c2 = v * v * (T_cv * (P_T * P_T) - P_v);
        const Real slope = T_cv * P_T;
        return (v * v * v / (2.0 * c2)) * (P_vv - 3.0 * T_cv * P_T * P_Tv +
                                           slope * slope * (3.0 * P_TT + (P_T / T) * (1.0 - T_cv * at.dcv(ideal)[0])));
    }

    OSTREL_INLINE gradient<Real> dh() const {
        const auto [P_T, P_v] = at.dP();
        const auto [e_T, e_v] = at.de(ideal);
        return {e_T + v * P_T, e_v + at.P() + v * P_v};
    }
    OSTREL_INLINE gradient<Real> ds() const { return {at.cv(ideal) / T, (at.P() + at.de(ideal)[1]) / T}; }
    gradient<Real> dmu() const {
        const auto [P_T, P_v] = at.dP();
        const auto [e_T, e_v] = at.de(ideal);
        const auto [s_T, s_v] = ds();
        return {e_T - T * s_T - at.s(ideal) + v * P_T, e_v - T * s_v + v * P_v + at.P()};
    }

    /// ((dX/dP)_v, (dX/dv)_P) of a quantity X with the gradient (X_T, X_v).
    gradient<Real> in_P_v(const gradient<Real> &X) const {
        const auto [P_T, P_v] = at.dP();
        return {X[0] / P_T, X[1] - X[0] * P_v / P_T};
    }
    gradient<Real> dT_in_P_v() const {
        const auto [P_T, P_v] = at.dP();
        return {1.0 / P_T, -P_v / P_T};
    }
    gradient<Real> de_in_P_v() const { return in_P_v(at.de(ideal)); }
    gradient<Real> ds_in_P_v() const { return in_P_v(ds()); }
    gradient<Real> dmu_in_P_v() const { return in_P_v(dmu()); }

    /// ((dP/ds)_v, (dP/dv)_s)
    gradient<Real> dP_in_s_v() const {
        const auto [P_T, P_v] = at.dP();
        const auto [s_T, s_v] = ds();
        return {P_T / s_T, P_v - P_T * s_v / s_T};
    }
    /// ((dP/ds)_T, (dP/dT)_s)
    gradient<Real> dP_in_s_T() const {
        const auto [P_T, P_v] = at.dP();
        const auto [s_T, s_v] = ds();
        return {P_v / s_v, P_T - P_v * s_T / s_v};
    }
    /// ((dv/ds)_T, (dv/dT)_s)
    gradient<Real> dv_in_s_T() const {
        const auto [s_T, s_v] = ds();
        return {1.0 / s_v, -s_T / s_v};
    }
    /// ((dP/de)_rho, (dP/drho)_e)
    gradient<Real> dP_in_e_r() const {
        const auto [P_T, P_v] = at.dP();
        const auto [e_T, e_v] = at.de(ideal);
        return {P_T / e_T, (P_v - P_T * e_v / e_T) / (-1.0 / (v * v))};
    }
    /// ((dP/d(rho e))_rho, (dP/drho)_(rho e)), where rho e = e/v.
    gradient<Real> dP_in_re_r() const {
        const auto [P_T, P_v] = at.dP();
        const auto [e_T, e_v] = at.de(ideal);
        const Real v2 = v * v;
        return {P_T / (e_T / v), (P_v - P_T * ((e_v / v - at.e(ideal) / v2) / (e_T / v))) / (-1.0 / v2)};
    }
    /// Derivatives of dP_in_re_r() = (A, B) with respect to T and v: (A_T, B_T, A_v, B_v).
    hessian<Real> dP_in_re_r_gradient() const { return in_re_r().gradient; }
    /// Second derivatives of P with respect to (rho e, rho), in column order.
    hessian<Real> d2P_in_re_r() const {
        const auto [pair_gradient, E_T, E_v] = in_re_r();
        const auto [A_T, B_T, A_v, B_v] = pair_gradient;
        const Real mixed = B_T / E_T;
        return {A_T / E_T, mixed, mixed, -(v * v) * (B_v - E_v / E_T * B_T)};
    }

private:
    /// The parts from which both matrices are made; E is rho e.
    struct in_conservative {
        hessian<Real> gradient;
        Real E_T;
        Real E_v;
    };
    in_conservative in_re_r() const {
        const Real v2 = v * v;
        const auto [P_T, P_v] = at.dP();
        const auto [P_TT, P_vT, P_Tv, P_vv] = at.d2P();
        const auto [e_T, e_v] = at.de(ideal);
        const auto [e_TT, e_vT, e_Tv, e_vv] = at.d2e(ideal);
        const Real e = at.e(ideal);
        const Real E_T = e_T / v;
        const Real E_v = e_v / v - e / v2;
        const Real E_TT = e_TT / v;
        const Real E_Tv = e_Tv / v - e_T / v2;
        const Real E_vv = e_vv / v - 2.0 * e_v / v2 + 2.0 * e / (v2 * v);
        const Real A = P_T / E_T;
        const Real A_T = (P_TT - A * E_TT) / E_T;
        const Real A_v = (P_Tv - A * E_Tv) / E_T;
        const Real B_T = -v2 * (P_Tv - A_T * E_v - A * E_Tv);
        const Real B_v = -2.0 * v * (P_v - A * E_v) - v2 * (P_vv - A_v * E_v - A * E_vv);
        return {{A_T, B_T, A_v, B_v}, E_T, E_v};
    }
};

} // namespace derived_properties
