// SPDX-License-Identifier: MIT
#include "Algebra/derivatives.h"

#include <algorithm>
#include <cmath>

namespace derivatives {
namespace {

using vector = std::span<const double>;

double step(double x, double x_scale, double c) {
    return std::max(x_scale, std::abs(x)) * c * (x >= 0.0 ? 1.0 : -1.0);
}

/// Applies a rule for one variable to each component of x.
std::vector<double> by_component(double (&rule)(algebra::function_ref<double(double)>, double, double),
                                 algebra::function_ref<double(vector)> f, vector x, vector x_scale) {
    std::vector<double> moved(x.begin(), x.end());
    std::vector<double> result(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) {
        const auto f_i = [&](double x_i) {
            moved[i] = x_i;
            return f(moved);
        };
        result[i] = rule(f_i, x[i], i < x_scale.size() ? x_scale[i] : 0.0);
        moved[i] = x[i];
    }
    return result;
}

} // namespace

double df_dx(algebra::function_ref<double(double)> f, double x, double x_scale) {
    const double h = step(x, x_scale, 1.0e-7);
    return (f(x + h) - f(x - h)) / (2.0 * h);
}

double d2f_dx2(algebra::function_ref<double(double)> f, double x, double x_scale) {
    const double h = step(x, x_scale, 0.00031622776601683794);
    return (f(x + h) - 2.0 * f(x) + f(x - h)) / (h * h);
}

double df_dx_pp(algebra::function_ref<double(double, vector)> f, double x, double x_scale, vector pp) {
    return df_dx([&](double at) { return f(at, pp); }, x, x_scale);
}

std::vector<double> df_dxx(algebra::function_ref<double(vector)> f, vector x, vector x_scale) {
    return by_component(df_dx, f, x, x_scale);
}

std::vector<double> df_dxx_pp(algebra::function_ref<double(vector, vector)> f, vector x, vector x_scale, vector pp) {
    return df_dxx([&](vector at) { return f(at, pp); }, x, x_scale);
}

std::vector<double> d2f_dxx2(algebra::function_ref<double(vector)> f, vector x, vector x_scale) {
    return by_component(d2f_dx2, f, x, x_scale);
}

} // namespace derivatives
