// SPDX-License-Identifier: MIT
// Inverse solvers: plain Newton iterations, without damping.
//
// Computes   x with f(x) = y
// Given      a first x, its lower bound, and a function that gives the residual f(x) - y and f'(x)
// Returned   the x at which the residual was below 1e-9; after 50 steps the last x and a message
// Accuracy   |f(x) - y| < 1e-9 in reduced units
#include "Thermodynamics/thermodynamics.h"

#include <cmath>

namespace thermodynamics {

using gas_properties::gas;
using ideal_specific_heat::errmsg;

namespace {

constexpr double tolerance = 1.0e-9;
constexpr int most_steps = 50;

/// A NaN is not lifted: it stays until the steps are used up.
double lifted(double x, double lower_bound) {
    return x < lower_bound ? lower_bound : x;
}

template <class Residual, class Derivative>
double newton(double x, double lower_bound, Residual residual, Derivative derivative, std::string_view failure) {
    for (int step = 0; step < most_steps; ++step) {
        x = lifted(x, lower_bound);
        const double r = residual(x);
        if (std::abs(r) < tolerance)
            return x;
        x -= r / derivative(x);
    }
    errmsg.report({failure});
    return x;
}

double energy_slope(double T, double v) {
    std::array<double, 2> de{};
    de__dT_dv(T, v, de);
    return de[0];
}

} // namespace

double T__e_v(double e, double v, std::optional<double> T_start) {
    return newton(
        T_start ? *T_start : (e - gas.e_0) / gas.cv_ref, Tmin, [&](double T) { return e__T_v(T, v) - e; },
        [&](double T) { return energy_slope(T, v); }, "ERROR: in T__e_v");
}

} // namespace thermodynamics
