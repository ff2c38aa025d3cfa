// SPDX-License-Identifier: MIT
// The quantities whose values searches are given, with their derivatives at a state.
//
// Computes   value(p); for a search in T or in v its derivative slope_T(p) or slope_v(p); for a search in both
//            slopes(p), the derivatives with respect to T and v. `caloric` names the functions of the ideal gas in them
// Given      p, the reduced derived properties of a state (derived_properties.h)
// Returned   e and h [P_ref v_ref], P [P_ref], s [R], c^2 [P_ref v_ref], and derivatives in these units
#pragma once

#include "Equations/derived_properties.h"
#include "visibility.h"

namespace state_quantities {

using separated_attraction::gradient;

struct energy {
    static constexpr unsigned caloric = ideal_gas_heat::energy | ideal_gas_heat::heat;
    OSTREL_INLINE static double value(const auto &p) { return p.at.e(p.ideal); }
    OSTREL_INLINE static double slope_T(const auto &p) { return p.at.de(p.ideal)[0]; }
};
struct pressure {
    static constexpr unsigned caloric = 0;
    OSTREL_INLINE static double value(const auto &p) { return p.at.P(); }
    OSTREL_INLINE static double slope_T(const auto &p) { return p.at.dP()[0]; }
    OSTREL_INLINE static double slope_v(const auto &p) { return p.at.dP()[1]; }
    OSTREL_INLINE static gradient<double> slopes(const auto &p) { return p.at.dP(); }
};
struct entropy {
    static constexpr unsigned caloric = ideal_gas_heat::entropy | ideal_gas_heat::heat;
    OSTREL_INLINE static double value(const auto &p) { return p.at.s(p.ideal); }
    OSTREL_INLINE static double slope_T(const auto &p) { return p.at.cv(p.ideal) / p.T; }
    OSTREL_INLINE static double slope_v(const auto &p) { return p.ds()[1]; }
    OSTREL_INLINE static gradient<double> slopes(const auto &p) { return p.ds(); }
};
struct enthalpy {
    static constexpr unsigned caloric = ideal_gas_heat::energy | ideal_gas_heat::heat;
    OSTREL_INLINE static double value(const auto &p) { return p.h(); }
    OSTREL_INLINE static double slope_T(const auto &p) { return p.dh()[0]; }
    OSTREL_INLINE static gradient<double> slopes(const auto &p) { return p.dh(); }
};
/// The square of the speed of sound.
struct sound {
    static constexpr unsigned caloric = ideal_gas_heat::heat | ideal_gas_heat::heat_slope;
    OSTREL_INLINE static double value(const auto &p) {
        const auto [P_T, P_v] = p.at.dP();
        return p.v * p.v * (p.T * (P_T * P_T) / p.at.cv(p.ideal) - P_v);
    }
    OSTREL_INLINE static double slope_T(const auto &p) {
        const double P_T = p.at.dP()[0];
        const auto [P_TT, P_vT, P_Tv, P_vv] = p.at.d2P();
        const double cv = p.at.cv(p.ideal);
        const double cv_T = p.at.dcv(p.ideal)[0];
        return p.v * p.v * ((P_T / cv) * (P_T * (1.0 - p.T * cv_T / cv) + 2.0 * p.T * P_TT) - P_Tv);
    }
};

} // namespace state_quantities
