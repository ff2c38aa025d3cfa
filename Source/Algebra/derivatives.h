// SPDX-License-Identifier: MIT
// Module derivatives: derivatives of any function by central differences.
//
// Equation   first:  (f(x + h) - f(x - h))/(2 h),          h = max(|x|, x_scale) 1e-7 sgn(x)
//            second: (f(x + h) - 2 f(x) + f(x - h))/h^2,   h = max(|x|, x_scale) sqrt(1e-7) sgn(x)
// Given      f, x, and x_scale in the unit of x: its size where it is about 0
// Returned   the derivative, in the units of f and x
// Valid      f has values at x - h and x + h; x and x_scale not both 0, which gives NaN. For the second derivative
//            1e-150 < max(|x|, x_scale) < 1e157: h^2 underflows or overflows beyond, into NaN or 0
// Accuracy   for f good to its last digit and L = max(|x|, x_scale), with the derivatives near x:
//            first: 2.3e-9 (|f|/L + |f'|) + 2e-15 L^2 |f'''|
//            second: 1e-8 |f|/L^2 + 2.3e-9 |f'|/L + 1e-12 |f''| + 1e-8 L^2 |f''''|
// Reference  M. Abramowitz, I. A. Stegun, Handbook of Mathematical Functions (1964), 25.3.21 and 25.3.23
#pragma once

#include "Algebra/function_ref.h"
#include "visibility.h"

#include <span>
#include <vector>

namespace derivatives OSTREL_VISIBLE {

double df_dx(algebra::function_ref<double(double)> f, double x, double x_scale);
double d2f_dx2(algebra::function_ref<double(double)> f, double x, double x_scale);

/// Of f(x, pp), whose parameters pp are passed on as they are.
double df_dx_pp(algebra::function_ref<double(double, std::span<const double>)> f, double x, double x_scale,
                std::span<const double> pp);

// Of a function of a vector: one partial derivative per component of x, in its order. x_scale has an element for
// each component; missing ones count as 0.

/// The gradient.
std::vector<double> df_dxx(algebra::function_ref<double(std::span<const double>)> f, std::span<const double> x,
                           std::span<const double> x_scale);
/// The gradient of f(x, pp).
std::vector<double> df_dxx_pp(algebra::function_ref<double(std::span<const double>, std::span<const double>)> f,
                              std::span<const double> x, std::span<const double> x_scale, std::span<const double> pp);
/// The second derivatives by each component alone: the diagonal of the Hessian.
std::vector<double> d2f_dxx2(algebra::function_ref<double(std::span<const double>)> f, std::span<const double> x,
                             std::span<const double> x_scale);

} // namespace derivatives
