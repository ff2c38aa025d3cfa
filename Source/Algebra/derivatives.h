// SPDX-License-Identifier: MIT
// Module derivatives: derivatives of any function by central differences.
//
// Equation   first:  (f(x + h) - f(x - h))/(2 h),          h = max(|x|, x_scale) 1e-7 sgn(x)
//            second: (f(x + h) - 2 f(x) + f(x - h))/h^2,   h = max(|x|, x_scale) sqrt(1e-7) sgn(x)
// Given      f, x, and x_scale in the unit of x: the size of x where x is about 0
// Returned   the derivative, in the units of f and x
// Valid      where f has values at x - h and x + h, and x and x_scale are not both 0 (that gives NaN). The second
//            derivative needs 1e-150 < max(|x|, x_scale) < 1e157; beyond, h^2 underflows or overflows and the result
//            is NaN or 0
// Accuracy   error for an f that is exact to its last digit, with L = max(|x|, x_scale) and the derivatives near x:
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

/// The first derivative of f(x, pp) by x. The parameters pp are passed on unchanged.
double df_dx_pp(algebra::function_ref<double(double, std::span<const double>)> f, double x, double x_scale,
                std::span<const double> pp);

// These take a function of a vector. They return one partial derivative for each component of x, in the order of x.
// x_scale has an element for each component; missing elements count as 0.

/// The gradient.
std::vector<double> df_dxx(algebra::function_ref<double(std::span<const double>)> f, std::span<const double> x,
                           std::span<const double> x_scale);
/// The gradient of f(x, pp).
std::vector<double> df_dxx_pp(algebra::function_ref<double(std::span<const double>, std::span<const double>)> f,
                              std::span<const double> x, std::span<const double> x_scale, std::span<const double> pp);
/// The second derivative by each component alone, which is the diagonal of the Hessian.
std::vector<double> d2f_dxx2(algebra::function_ref<double(std::span<const double>)> f, std::span<const double> x,
                             std::span<const double> x_scale);

} // namespace derivatives
