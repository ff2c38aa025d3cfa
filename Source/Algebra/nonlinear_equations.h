// SPDX-License-Identifier: MIT
// Module nonlinear_equations: a root of one equation in one unknown.
//
// Equation   f(x) = f_sh
// Given      f and its derivative df, first value or interval in the unit of x, f_sh in the unit of f, rel_tol [1]
// Returned   x, in its unit
// Valid      a relative tolerance above 2.220446049250313e-16; a smaller one is replaced by ten times this, with a
//            warning on the console. What fails is reported on the console, in Italian, and ends the process with
//            exit status 1.
// Accuracy   newton: the last step is below rel_tol |x|, bisection: the last interval is not above it. Near a root of
//            exactly 0 newton's last step rarely is: it then ends as if it had found nothing.
// Reference  I. Newton, De analysi (1669), as J. Raphson put it (1690); B. Bolzano (1817)
#pragma once

#include "Algebra/function_ref.h"
#include "visibility.h"

#include <cstdint>
#include <optional>

// The greatest number of iterations and f_sh are kept from one call to the next, one f_sh for both routines: a call
// without them takes what was passed last, 50 and 0 before that.
namespace nonlinear_equations OSTREL_VISIBLE {

/// From the first value x0. `n_max` gives the greatest number of iterations and receives the number it took.
/// Stops the process after the last iteration, which a NaN always reaches, and where |df| < 2.220446049250313e-16; at a
/// terminal it waits for a line from the operator before that. An infinite x is taken for a root, its step being
/// finite.
double newton(algebra::function_ref<double(double)> f, algebra::function_ref<double(double)> df, double x0,
              double rel_tol, std::int32_t *n_max = nullptr, std::optional<double> f_sh = std::nullopt);

/// In [a, b] or [b, a]; stops the process where f - f_sh has the same sign at both ends, also where their product would
/// be rounded to 0. Besides meeting the tolerance the search ends, with the middle as it is, once no number is left
/// between the ends, which an infinite end is at once, and where the interval or rel_tol is NaN.
/// A NaN of f counts as a value of the sign at a: the search goes on towards b.
double bisection(algebra::function_ref<double(double)> f, double a, double b, double rel_tol,
                 std::optional<double> f_sh = std::nullopt);

} // namespace nonlinear_equations
