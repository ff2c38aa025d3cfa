// SPDX-License-Identifier: MIT
// The algebra of all equations of state whose attraction is a sum of products of a function of T and one of v.
//
// Computes   pressure, energy, entropy, isochoric heat capacity and their exact derivatives
// Equation   P = Rgas T/(v - b) + sum over i of q_i(T) f_i'(v);  e = e_0 + phi + sum (T q_i' - q_i) f_i;
//            s = psi + sum q_i' f_i + s_0 + Rgas ln(v - b)
// Given      a model (described below), an ideal part, and reduced T [T_ref] and v [v_ref]
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and derivatives in these units
// Valid      v > b, T > 0; elsewhere the results are what IEEE arithmetic makes of the formulas, never a failure
// Reference  H. B. Callen, Thermodynamics and an Introduction to Thermostatistics (1985) ch. 3 and 7: e and s
//            from P by the Maxwell relations
#pragma once

#include "Equations/ideal_gas_heat.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace separated_attraction {

/// For each attraction term a factor and its first three derivatives: q, q', q'', q''' or f, f', f'', f'''.
template <class Real, std::size_t terms>
using factors = std::array<std::array<Real, 4>, terms>;

/// Calls use(0) to use(count - 1) without a loop: in a loop, compilers also compute the parts of each term that nobody
/// uses.
template <std::size_t count, class Use>
OSTREL_INLINE void for_each_index(Use use) {
    [&]<std::size_t... i>(std::index_sequence<i...>) {
        (use(i), ...);
    }
    (std::make_index_sequence<count>());
}

/// First derivatives: (d/dT at constant v, d/dv at constant T).
template <class Real>
using gradient = std::array<Real, 2>;

/// Second derivatives in column order: (TT, vT, Tv, vv).
template <class Real>
using hessian = std::array<Real, 4>;

/// The part of a state that does not depend on the model: the heat capacity and the offsets of the reference state.
struct ideal_part {
    const ideal_gas_heat::heat_capacity &heat;
    double e_0;
    double s_0;

    template <class Real>
    OSTREL_INLINE Real phi(Real T) const {
        return phi_reduced(heat, T);
    }
    template <class Real>
    OSTREL_INLINE Real psi(Real T) const {
        return psi_reduced(heat, T);
    }
    template <class Real>
    OSTREL_INLINE Real phip(Real T) const {
        return phip_reduced(heat, T);
    }
    template <class Real>
    OSTREL_INLINE Real phipp(Real T) const {
        return phipp_reduced(heat, T);
    }
};

/// The ideal part at one temperature: its functions `these` are computed once and together.
template <unsigned these>
class ideal_part_at {
public:
    double e_0;
    double s_0;

    ideal_part_at(const ideal_part &ideal, double T) : e_0(ideal.e_0), s_0(ideal.s_0) {
        if constexpr (these != 0)
            values_ = ideal_gas_heat::evaluate_reduced<these>(ideal.heat, T);
    }
    double phi(double) const requires((these & ideal_gas_heat::energy) != 0) { return values_.phi; }
    double psi(double) const requires((these & ideal_gas_heat::entropy) != 0) { return values_.psi; }
    double phip(double) const requires((these & ideal_gas_heat::heat) != 0) { return values_.cv; }
    double phipp(double) const requires((these & ideal_gas_heat::heat_slope) != 0) { return values_.dcv; }

private:
    ideal_gas_heat::caloric<double> values_;
};

/// A model is a struct of reduced parameters with
///   terms          the number of attraction terms, 0 to 4
///   covolume()     b [v_ref]
///   repulsion()    the factor of T/(v - b), which is Rgas for most models
///   q(T), f(v)     the factors of its terms
/// and, if q is the same at every T, athermal_attraction = true. Models without attraction derive from this struct and
/// add repulsion().
struct no_attraction {
    static constexpr std::size_t terms = 0;
    static double covolume() { return 0; }
    template <class Real>
    OSTREL_INLINE static factors<Real, terms> q(Real) {
        return {};
    }
    template <class Real>
    OSTREL_INLINE static factors<Real, terms> f(Real) {
        return {};
    }
};

/// Whether q is the same at every T. Its derivatives are then left out of the formulas: as zeros they would make a NaN
/// of an infinite T or f.
template <class Model>
consteval bool athermal() {
    if constexpr (requires { Model::athermal_attraction; })
        return Model::athermal_attraction;
    else
        return false;
}

/// The half of a state that depends on the temperature, and below it the half that depends on the volume. A search with
/// fixed T or v evaluates one half only once.
template <class Model, class Real>
struct temperature_side {
    Real T;
    factors<Real, Model::terms> qq;

    OSTREL_INLINE temperature_side(const Model &model, Real temperature) : T(temperature), qq(model.q(temperature)) {}
};
template <class Model, class Real>
struct volume_side {
    Real v;
    Real w; ///< v - b
    factors<Real, Model::terms> ff;

    OSTREL_INLINE volume_side(const Model &model, Real volume)
        : v(volume), w(volume - model.covolume()), ff(model.f(volume)) {}
};

/// One state of a model: all results at (T, v) come from one evaluation of q and f. The argument `ideal` is an
/// ideal_part, or an ideal_part_at of the same temperature.
template <class Model, class Real>
struct state_point : temperature_side<Model, Real>, volume_side<Model, Real> {
    static constexpr std::size_t terms = Model::terms;

    using temperature_side<Model, Real>::T;
    using temperature_side<Model, Real>::qq;
    using volume_side<Model, Real>::v;
    using volume_side<Model, Real>::w;
    using volume_side<Model, Real>::ff;
    double repulsion; ///< factor of T/(v - b)

    OSTREL_INLINE state_point(const Model &model, const temperature_side<Model, Real> &at_T,
                              const volume_side<Model, Real> &at_v)
        : temperature_side<Model, Real>(at_T), volume_side<Model, Real>(at_v), repulsion(model.repulsion()) {}
    OSTREL_INLINE state_point(const Model &model, Real temperature, Real volume)
        : state_point(model, temperature_side(model, temperature), volume_side(model, volume)) {}

    /// The sum over the terms of term(q, f), where q holds q, q', q'', q''' and f holds f, f', f'', f'''.
    template <class Term>
    OSTREL_INLINE Real sum(Term term) const {
        Real result = 0;
        for_each_index<terms>([&](std::size_t i) { result += term(qq[i], ff[i]); });
        return result;
    }

    /// Such a sum where every term has a derivative of q as a factor.
    template <class Term>
    OSTREL_INLINE Real sum_of_slopes(Term term) const {
        if constexpr (athermal<Model>())
            return Real(0);
        else
            return sum(term);
    }

    OSTREL_INLINE Real P() const {
        return sum([](const auto &q, const auto &f) { return q[0] * f[1]; }) + repulsion * T / w;
    }
    OSTREL_INLINE gradient<Real> dP() const {
        return {sum_of_slopes([](const auto &q, const auto &f) { return q[1] * f[1]; }) + repulsion / w,
                sum([](const auto &q, const auto &f) { return q[0] * f[2]; }) - repulsion * T / (w * w)};
    }
    OSTREL_INLINE hessian<Real> d2P() const {
        const Real mixed =
            sum_of_slopes([](const auto &q, const auto &f) { return q[1] * f[2]; }) - repulsion / (w * w);
        return {sum_of_slopes([](const auto &q, const auto &f) { return q[2] * f[1]; }), mixed, mixed,
                sum([](const auto &q, const auto &f) { return q[0] * f[3]; }) + 2.0 * repulsion * T / (w * w * w)};
    }
    template <class Ideal>
    OSTREL_INLINE Real e(const Ideal &ideal) const {
        return ideal.e_0 + ideal.phi(T) + sum([this](const auto &q, const auto &f) { return of_energy(q) * f[0]; });
    }
    template <class Ideal>
    OSTREL_INLINE Real s(const Ideal &ideal) const {
        using std::log;
        return ideal.psi(T) + sum_of_slopes([](const auto &q, const auto &f) { return q[1] * f[0]; }) + ideal.s_0 +
               repulsion * log(w);
    }
    template <class Ideal>
    OSTREL_INLINE Real cv(const Ideal &ideal) const {
        return ideal.phip(T) + cv_attraction();
    }
    template <class Ideal>
    OSTREL_INLINE gradient<Real> dcv(const Ideal &ideal) const {
        return {ideal.phipp(T) + dcv_dT_attraction(), dcv_dv_attraction()};
    }
    template <class Ideal>
    OSTREL_INLINE gradient<Real> de(const Ideal &ideal) const {
        return {cv(ideal), sum([this](const auto &q, const auto &f) { return of_energy(q) * f[1]; })};
    }
    template <class Ideal>
    OSTREL_INLINE hessian<Real> d2e(const Ideal &ideal) const {
        return {ideal.phipp(T) + dcv_dT_attraction(), dcv_dv_attraction(), dcv_dv_attraction(),
                sum([this](const auto &q, const auto &f) { return of_energy(q) * f[2]; })};
    }

private:
    /// The factor of f in the energy.
    OSTREL_INLINE Real of_energy(const std::array<Real, 4> &q) const {
        if constexpr (athermal<Model>())
            return -q[0];
        else
            return T * q[1] - q[0];
    }
    Real cv_attraction() const {
        return sum_of_slopes([this](const auto &q, const auto &f) { return T * q[2] * f[0]; });
    }
    Real dcv_dT_attraction() const {
        return sum_of_slopes([this](const auto &q, const auto &f) { return (q[3] * T + q[2]) * f[0]; });
    }
    Real dcv_dv_attraction() const {
        return sum_of_slopes([this](const auto &q, const auto &f) { return T * q[2] * f[1]; });
    }
};

// The operations that every module has: reduced T [T_ref] and v [v_ref], results in the units above.

/// The lowest volume [v_ref]: b (1 + 1e-12), or 1e-12 for models without attraction, whose b is 0.
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
