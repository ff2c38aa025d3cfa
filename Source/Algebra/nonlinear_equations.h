// SPDX-License-Identifier: MIT
// Module nonlinear_equations: a root of one equation in one unknown.
//
// Equation   f(x) = f_sh
// Given      f and its derivative df, first value or interval in the unit of x, f_sh in the unit of f, rel_tol [1]
// Returned   x, in its unit
// Valid      a relative tolerance above 2.220446049250313e-16; a smaller one is replaced by ten times this number, with
//            a warning on the console. A failure is reported on the console, in Italian, and ends the process with
//            exit status 1
// Accuracy   newton: the last step is below rel_tol |x|; bisection: the last interval is at most rel_tol |x|. Near a
//            root of exactly 0 newton rarely reaches this: it then ends as if it had found no root
// Reference  I. Newton, De analysi (1669), as J. Raphson put it (1690); B. Bolzano (1817)
#pragma once

#include "Algebra/function_ref.h"
#include "visibility.h"

#include <cstdint>
#include <optional>

// The greatest number of iterations and f_sh are kept from one call to the next, and both routines share one f_sh. A
// call without them takes the values that were passed last, or 50 and 0 if none were passed before.
namespace nonlinear_equations OSTREL_VISIBLE {

/// Newton's method from the first value x0. `n_max` gives the greatest number of iterations and receives the number
/// that were made. The routine stops the process where |df| < 2.220446049250313e-16, and after the last iteration,
/// which a NaN always reaches; at a terminal it waits for a line from the operator before that. It takes an infinite x
/// for a root if the step is finite.
double newton(algebra::function_ref<double(double)> f, algebra::function_ref<double(double)> df, double x0,
              double rel_tol, std::int32_t *n_max = nullptr, std::optional<double> f_sh = std::nullopt);

/// Bisection in [a, b] or [b, a]. The routine stops the process where f - f_sh has the same sign at both ends, also
/// where the product of the two would be rounded to 0. The search ends when it meets the tolerance or an exact root. It
/// also ends, and returns the middle, when no number is left between the ends, and before its first step if an end is
/// infinite or the interval or rel_tol is NaN. A NaN of f counts as a value of the sign at a: the search goes to b.
double bisection(algebra::function_ref<double(double)> f, double a, double b, double rel_tol,
                 std::optional<double> f_sh = std::nullopt);

} // namespace nonlinear_equations
