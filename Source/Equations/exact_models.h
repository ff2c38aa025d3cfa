// SPDX-License-Identifier: MIT
// The models as fluid handles use them: with the exact critical point, and with logarithms that keep their digits in
// the dilute gas.
//
// Equation   Redlich-Kwong and Soave: Zc = 1/3, b = (2^(1/3) - 1)/3 R Tc/Pc, a = (R Tc)^2/(9 (2^(1/3) - 1) Pc);
//            Peng-Robinson: Zc = 0.307401308698703, b = 0.0777960739038885 R Tc/Pc, a = 0.457235528921382 (R Tc)^2/Pc
// Given      the constants of the fluid
// Returned   reduced parameters: b [v_ref], a [P_ref v_ref^2] times a power of T_ref
// Accuracy   rounding; f(v) too, for any v
// Reference  as in the headers of the models
#pragma once

#include "Equations/models.h"

#include <numbers>

namespace equations {

template <class Model>
struct exact_model : Model {};

namespace exact {

// The critical constants without dimensions: Zc, b Pc/(R Tc) and a Pc/(R Tc)^2.
inline constexpr double cube_root_of_2_less_1 = 0.25992104989487316;
struct critical_constants {
    double Zc;
    double b;
    double a;
    constexpr double reduced_b() const { return b / Zc; }
    constexpr double reduced_a() const { return a / (Zc * Zc); }
};
inline constexpr critical_constants redlich_kwong = {1.0 / 3.0, cube_root_of_2_less_1 / 3.0,
                                                     1.0 / (9.0 * cube_root_of_2_less_1)};
inline constexpr critical_constants peng_robinson = {0.30740130869870386, 0.077796073903888456, 0.45723552892138218};

/// Replaces f by its value for the excess of the quotient whose logarithm it has.
template <class Real>
OSTREL_INLINE std::array<Real, 4> with_excess(std::array<Real, 4> f, Real excess, double divisor) {
    using std::log1p;
    f[0] = log1p(excess) / divisor;
    return f;
}

} // namespace exact

template <class Model>
struct exact_redlich_kwong : Model {
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, 1> f(Real v) const {
        return {exact::with_excess(cubic_attraction::redlich_kwong_f(this->b, v), this->b / v, this->b)};
    }
};
template <>
struct exact_model<redlich_kwong> : exact_redlich_kwong<redlich_kwong> {};
template <>
struct exact_model<soave_redlich_kwong> : exact_redlich_kwong<soave_redlich_kwong> {};
template <>
struct exact_model<peng_robinson> : peng_robinson {
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, 1> f(Real v) const {
        constexpr double root = std::numbers::sqrt2;
        const double width = 2.0 * root * b;
        return {exact::with_excess(cubic_attraction::peng_robinson_f(b, v), width / (v + (1.0 - root) * b), width)};
    }
};

/// Makes the exact critical point of a fluid with critical data the reference point.
inline void set_exact_reference(gas_constants &fluid, double Zc) {
    set_critical_reference(fluid, Zc * fluid.R * fluid.Tc / fluid.Pc, Zc);
}

inline void initialise(exact_model<redlich_kwong> &p, gas_constants &fluid, records::error_text &message) {
    if (lacks_critical_data(fluid, "Redlich-Kwong model is not applicable. ", "", message))
        return;
    constexpr exact::critical_constants c = exact::redlich_kwong;
    set_exact_reference(fluid, c.Zc);
    p.Rgas = 1.0;
    p.b = c.reduced_b();
    p.a = c.reduced_a() / std::sqrt(c.Zc);
}
template <class Model>
void initialise_soave(Model &p, gas_constants &fluid, const exact::critical_constants &c) {
    set_exact_reference(fluid, c.Zc);
    p.Rgas = 1.0;
    p.Zc = c.Zc;
    p.b = c.reduced_b();
    p.c_a = c.reduced_a();
}
inline void initialise(exact_model<soave_redlich_kwong> &p, gas_constants &fluid, records::error_text &message) {
    if (lacks_critical_data(fluid, "Soave-Redlich-Kwong model is not applicable. ", "", message))
        return;
    initialise_soave(p, fluid, exact::redlich_kwong);
    p.fw = soave_fw(fluid.omega);
}
inline void initialise(exact_model<peng_robinson> &p, gas_constants &fluid, records::error_text &message) {
    if (lacks_critical_data(fluid, "Peng-Robinson model is not applicable. ", "", message))
        return;
    initialise_soave(p, fluid, exact::peng_robinson);
    p.fw = peng_robinson_fw(fluid.omega);
}

#define OSTREL_EXACT_MODEL(unused, type, Model, ...) , exact_model<Model>
/// The parameters of one model in the exact form; the index of the variant is the model's code.
using any_exact_model = std::variant<no_model OSTREL_MODELS(OSTREL_EXACT_MODEL, )>;
#undef OSTREL_EXACT_MODEL

} // namespace equations
