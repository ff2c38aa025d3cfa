// SPDX-License-Identifier: MIT
// The formulas that the cubic equations of state of the Redlich-Kwong family have in common.
//
// Computes   the volume factor f(v) for the denominator D(v) of the attraction, Soave's temperature factor q(T), and
//            the critical volume, which is the root of R Tc/(v - b) - Pc - a(Tc)/D(v)
// Given      co-volume and attraction constants: reduced for f and q, in SI units for the critical volume
// Accuracy   the search for the critical volume ends when the residual is within the tolerance. It finds a triple root
//            (Redlich-Kwong, Soave) only to 1e-6 ... 2e-5, in 30 to 60 steps. The relative error of f(v) is eps v/b; in
//            the dilute gas it appears in dcv/dT most, which keeps 9 digits at v = 3e6
// Reference  G. Soave, Chem. Eng. Sci. 27 (1972) 1197
#pragma once

#include "Equations/separated_attraction.h"
#include "visibility.h"

#include <array>
#include <cmath>
#include <string_view>

namespace cubic_attraction {

/// f with f' = -1/(v (v + b)).
template <class Real>
OSTREL_INLINE std::array<Real, 4> redlich_kwong_f(double b, Real v) {
    using std::log;
    const Real D = (v + b) * v;
    return {log((v + b) / v) / b, -1.0 / D, (2.0 * v + b) / (D * D),
            -2.0 * (3.0 * (v * v + v * b) + b * b) / (D * D * D)};
}

/// f with f' = -1/(v^2 + 2 b v - b^2).
template <class Real>
OSTREL_INLINE std::array<Real, 4> peng_robinson_f(double b, Real v) {
    using std::log;
    constexpr double one_plus_root_2 = 2.414213562373095;
    constexpr double one_minus_root_2 = -0.41421356237309515;
    constexpr double root_2 = 1.4142135623730951;
    const Real D = (2.0 * v - b) * b + v * v;
    return {log((v + one_plus_root_2 * b) / (v + one_minus_root_2 * b)) / (2.0 * root_2 * b), -1.0 / D,
            2.0 * (v + b) / (D * D), -2.0 * ((5.0 * b + 6.0 * v) * b + 3.0 * (v * v)) / (D * D * D)};
}

/// q = c_a (1 + fw (1 - sqrt(Zc T)))^2; Zc T is the temperature divided by the critical temperature.
template <class Real>
OSTREL_INLINE std::array<Real, 4> soave_q(double c_a, double fw, double Zc, Real T) {
    using std::sqrt;
    const Real root = sqrt(Zc / T);
    const Real alpha = 1.0 + fw * (1.0 - sqrt(Zc * T));
    const Real g = Zc * fw + alpha * root;
    return {c_a * (alpha * alpha), -fw * c_a * root * alpha, (fw * c_a / (2.0 * T)) * g,
            -(3.0 * c_a * fw / (4.0 * (T * T))) * g};
}

/// The denominator of the attraction: D(v) and D'(v).
struct denominator {
    double value;
    double slope;
};
inline denominator redlich_kwong_denominator(double b, double v) {
    return {v * (v + b), v + b + v};
}
inline denominator peng_robinson_denominator(double b, double v) {
    return {(2.0 * v - b) * b + v * v, 2.0 * (v + b)};
}

/// The critical volume [m3/kg] by Newton's method from the volume of the ideal gas, for b [m3/kg]; reports `failure`
/// after 100 steps. `tolerance` [Pa] is nearly always below the rounding of the residual, about 1e-9 Pa; then the
/// search ends only at a residual of exactly zero.
inline double critical_volume(const equations::gas_constants &fluid, double b, double a_Tc,
                              denominator (*D)(double b, double v), double tolerance, std::string_view failure,
                              records::error_text &message) {
    const double RTc = fluid.R * fluid.Tc;
    double v = RTc / fluid.Pc;
    for (int step = 0; step < 100; ++step) {
        const auto [value, slope] = D(b, v);
        const double F = RTc / (v - b) - fluid.Pc - a_Tc / value;
        if (std::abs(F) < tolerance)
            return v;
        v -= F / (-RTc / ((v - b) * (v - b)) + a_Tc * slope / (value * value));
    }
    message.report({failure});
    return v;
}

/// The parts that models with Soave's temperature factor have in common; each adds its volume factor f(v).
struct soave_parameters {
    static constexpr std::size_t terms = 1;
    double Rgas = 0;
    double b = 0;
    double c_a = 0; ///< attraction constant at the critical temperature
    double fw = 0;  ///< coefficient of the temperature factor
    double Zc = 0;  ///< the model's own critical compressibility

    double covolume() const { return b; }
    double repulsion() const { return Rgas; }
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> q(Real T) const {
        return {soave_q(c_a, fw, Zc, T)};
    }

    /// Finds the critical volume from b and c_a in SI units, completes the fluid's reference point and reduces b and
    /// c_a. After a message b, c_a and Rgas stay in SI units, and the fluid stays as it is.
    void reduce(equations::gas_constants &fluid, denominator (*D)(double b, double v), double tolerance,
                std::string_view failure, records::error_text &message) {
        Rgas = fluid.R;
        const double a_Tc = c_a * (1.0 + fw * (1.0 - std::sqrt(fluid.Tc / fluid.Tc)));
        const double v = critical_volume(fluid, b, a_Tc, D, tolerance, failure, message);
        if (!message.clear())
            return;
        Zc = fluid.Pc * v / (Rgas * fluid.Tc);
        set_critical_reference(fluid, v, Zc);
        Rgas = 1.0;
        b = b / v;
        c_a = c_a / (v * fluid.Pc * v);
    }
};

} // namespace cubic_attraction
