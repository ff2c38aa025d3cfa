// SPDX-License-Identifier: MIT
// The algebra of all equations of state of the form with separated attraction.
//
// Computes   pressure, energy, entropy, isochoric heat capacity and their exact derivatives
// Equation   P = Rgas T/(v - b) + sum over i of q_i(T) f_i'(v);  e = e_0 + phi + sum (T q_i' - q_i) f_i;
//            s = psi + sum q_i' f_i + s_0 + Rgas ln(v - b)
// Given      a model (below), an ideal part, and reduced T [T_ref] and v [v_ref]
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], derivatives in the same units
// Valid      v > b, T > 0; elsewhere the IEEE results of the formulas, never a failure
// Reference  H. B. Callen, Thermodynamics and an Introduction to Thermostatistics (1985) ch. 3 and 7: e and s
//            from P by the Maxwell relations
#pragma once

#include "Thermodynamics/ideal_specific_heat.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace separated_attraction {

/// Per attraction term a factor and its first three derivatives: q, q', q'', q''' or f, f', f'', f'''.
template <class Real, std::size_t terms>
using factors = std::array<std::array<Real, 4>, terms>;

/// First derivatives: (d/dT at constant v, d/dv at constant T).
template <class Real>
using gradient = std::array<Real, 2>;

/// Second derivatives in column order: (TT, vT, Tv, vv).
template <class Real>
using hessian = std::array<Real, 4>;

/// What does not depend on the model: the heat capacity and the offsets of the reference state.
struct ideal_part {
    const ideal_specific_heat::heat_capacity &heat;
    double e_0;
    double s_0;
};

/// The ideal part of the active fluid.
inline ideal_part active_ideal_part() {
    return {ideal_specific_heat::active, gas_properties::gas.e_0, gas_properties::gas.s_0};
}

/// A model is a struct of reduced parameters with
///   terms          the number of attraction terms, 0 to 4
///   covolume()     b in v_ref
///   repulsion()    the factor of T/(v - b), Rgas for most
///   q(T), f(v)     the factors of its terms
/// Models without attraction derive from this, which leaves them `repulsion`.
struct no_attraction {
    static constexpr std::size_t terms = 0;
    static double covolume() { return 0; }
    template <class Real>
    static factors<Real, terms> q(Real) {
        return {};
    }
    template <class Real>
    static factors<Real, terms> f(Real) {
        return {};
    }
};

/// One state of a model: all that is wanted at one (T, v) comes from one evaluation of q and f.
template <class Model, class Real>
struct state_point {
    static constexpr std::size_t terms = Model::terms;

    Real T;
    Real v;
    Real w;           ///< v - b
    double repulsion; ///< factor of T/(v - b)
    factors<Real, terms> qq;
    factors<Real, terms> ff;

    state_point(const Model &model, Real temperature, Real volume)
        : T(temperature), v(volume), w(volume - model.covolume()), repulsion(model.repulsion()),
          qq(model.q(temperature)), ff(model.f(volume)) {}

    /// Sum over the terms of a product formed from q, q', q'', q''' and f, f', f'', f'''.
    template <class Term>
    Real sum(Term term) const {
        Real result = 0;
        for (std::size_t i = 0; i < terms; ++i)
            result += term(qq[i], ff[i]);
        return result;
    }

    Real P() const {
        return sum([](const auto &q, const auto &f) { return q[0] * f[1]; }) + repulsion * T / w;
    }
    gradient<Real> dP() const {
        return {sum([](const auto &q, const auto &f) { return q[1] * f[1]; }) + repulsion / w,
                sum([](const auto &q, const auto &f) { return q[0] * f[2]; }) - repulsion * T / (w * w)};
    }
    hessian<Real> d2P() const {
        const Real mixed = sum([](const auto &q, const auto &f) { return q[1] * f[2]; }) - repulsion / (w * w);
        return {sum([](const auto &q, const auto &f) { return q[2] * f[1]; }), mixed, mixed,
                sum([](const auto &q, const auto &f) { return q[0] * f[3]; }) + 2.0 * repulsion * T / (w * w * w)};
    }
    Real e(const ideal_part &ideal) const {
        return ideal.e_0 + phi_reduced(ideal.heat, T) +
               sum([this](const auto &q, const auto &f) { return (T * q[1] - q[0]) * f[0]; });
    }
    Real s(const ideal_part &ideal) const {
        using std::log;
        return psi_reduced(ideal.heat, T) + sum([](const auto &q, const auto &f) { return q[1] * f[0]; }) + ideal.s_0 +
               repulsion * log(w);
    }
    Real cv(const ideal_part &ideal) const { return phip_reduced(ideal.heat, T) + cv_attraction(); }
    gradient<Real> dcv(const ideal_part &ideal) const {
        return {phipp_reduced(ideal.heat, T) + dcv_dT_attraction(), dcv_dv_attraction()};
    }
    gradient<Real> de(const ideal_part &ideal) const {
        return {cv(ideal), sum([this](const auto &q, const auto &f) { return (T * q[1] - q[0]) * f[1]; })};
    }
    hessian<Real> d2e(const ideal_part &ideal) const {
        return {phipp_reduced(ideal.heat, T) + dcv_dT_attraction(), dcv_dv_attraction(), dcv_dv_attraction(),
                sum([this](const auto &q, const auto &f) { return (T * q[1] - q[0]) * f[2]; })};
    }

private:
    Real cv_attraction() const {
        return sum([this](const auto &q, const auto &f) { return T * q[2] * f[0]; });
    }
    Real dcv_dT_attraction() const {
        return sum([this](const auto &q, const auto &f) { return (q[3] * T + q[2]) * f[0]; });
    }
    Real dcv_dv_attraction() const {
        return sum([this](const auto &q, const auto &f) { return T * q[2] * f[1]; });
    }
};

// The operations of the model contract, each one line on the state point.

/// b and a little more; models without attraction have no co-volume either.
template <class Model>
double minimum_specific_volume(const Model &model) {
    return Model::terms == 0 ? 1.0e-12 : model.covolume() * 1.000000000001;
}
template <class Model, class Real>
Real P__T_v(const Model &model, const ideal_part &, Real T, Real v) {
    return state_point(model, T, v).P();
}
template <class Model, class Real>
gradient<Real> dP__dT_dv(const Model &model, const ideal_part &, Real T, Real v) {
    return state_point(model, T, v).dP();
}
template <class Model, class Real>
hessian<Real> d2P__dT2_dv2(const Model &model, const ideal_part &, Real T, Real v) {
    return state_point(model, T, v).d2P();
}
template <class Model, class Real>
Real e__T_v(const Model &model, const ideal_part &ideal, Real T, Real v) {
    return state_point(model, T, v).e(ideal);
}
template <class Model, class Real>
gradient<Real> de__dT_dv(const Model &model, const ideal_part &ideal, Real T, Real v) {
    return state_point(model, T, v).de(ideal);
}
template <class Model, class Real>
hessian<Real> d2e__dT2_dv2(const Model &model, const ideal_part &ideal, Real T, Real v) {
    return state_point(model, T, v).d2e(ideal);
}
template <class Model, class Real>
Real s__T_v(const Model &model, const ideal_part &ideal, Real T, Real v) {
    return state_point(model, T, v).s(ideal);
}
template <class Model, class Real>
Real cv__T_v(const Model &model, const ideal_part &ideal, Real T, Real v) {
    return state_point(model, T, v).cv(ideal);
}
template <class Model, class Real>
gradient<Real> dcv__dT_dv(const Model &model, const ideal_part &ideal, Real T, Real v) {
    return state_point(model, T, v).dcv(ideal);
}

} // namespace separated_attraction
