// SPDX-License-Identifier: MIT
// Newton's method without damping on an equation of state, in one unknown or in T and v together.
//
// Computes   the state at which properties have given values
// Given      an equation with the bounds Tmin and vmin, target values and first values, all reduced
// Returned   the T or v at which the residual is below 1e-9; if 50 steps are not enough the last value, not converged
// Valid      the solution is not bracketed: from a poor first value, or inside the two-phase region, a search may fail
// Accuracy   residuals below 1e-9 in reduced units
// Reference  I. Newton, J. Raphson; W. H. Press et al., Numerical Recipes (2007) ch. 9.4 and 9.6
#pragma once

#include "Algebra/lin_algebra.h"
#include "Algebra/two_by_two.h"
#include "Equations/equation.h"
#include "Equations/state_quantities.h"

#include <cmath>

namespace plain_newton {

inline constexpr double tolerance = 1.0e-9;
inline constexpr int most_steps = 50;

/// The result of a search.
struct result {
    double x; ///< the unknown; in a search for T and v it is the volume
    bool converged;
};

/// x, but at least the lower bound. A NaN stays a NaN until all steps are used.
inline double lifted(double x, double lower_bound) {
    return x < lower_bound ? lower_bound : x;
}

/// The search in one unknown; at(x) gives the state for the value x.
template <class Quantity, class StateAt, class Slope>
OSTREL_INLINE result in_one_unknown(double target, double x, double lower_bound, const StateAt &at, Slope slope) {
    for (int step = 0; step < most_steps; ++step) {
        x = lifted(x, lower_bound);
        const auto state = at(x);
        const double residual = Quantity::value(state.all()) - target;
        if (std::abs(residual) < tolerance)
            return {x, true};
        x -= residual / slope(state.all());
    }
    return {x, false};
}

template <class Quantity, class Model>
OSTREL_INLINE result in_T(const equations::equation<Model> &equation, double target, double v, double T) {
    return in_one_unknown<Quantity>(target, T, equation.lowest.Tmin, equation.template at_volume<Quantity::caloric>(v),
                                    [](const auto &p) { return Quantity::slope_T(p); });
}

template <class Quantity, class Model>
OSTREL_INLINE result in_v(const equations::equation<Model> &equation, double target, double T, double v) {
    return in_one_unknown<Quantity>(target, v, equation.lowest.vmin,
                                    equation.template at_temperature<Quantity::caloric>(T),
                                    [](const auto &p) { return Quantity::slope_v(p); });
}

/// The search in T and v together. A singular Jacobian ends this search and every later one of this kind, because no
/// search clears linalg_errmsg.
template <class First, class Second, class Model>
OSTREL_INLINE result in_T_v(const equations::equation<Model> &equation, double target1, double target2, double T,
                            double v) {
    for (int step = 0; step < most_steps; ++step) {
        v = lifted(v, equation.lowest.vmin);
        T = lifted(T, equation.lowest.Tmin);
        const auto state = equation.template at<First::caloric | Second::caloric>(T, v);
        const auto p = state.all();
        const double F1 = First::value(p) - target1;
        const double F2 = Second::value(p) - target2;
        if (std::abs(F1) < tolerance && std::abs(F2) < tolerance)
            return {v, true};
        const auto row1 = First::slopes(p);
        const auto row2 = Second::slopes(p);
        const two_by_two::matrix J = {row1[0], row2[0], row1[1], row2[1]};
        two_by_two::matrix inverted{};
        lin_algebra::inverse({J, 2, 2}, inverted);
        if (!lin_algebra::linalg_errmsg.clear())
            return {v, false};
        const auto [dT, dv] = two_by_two::product(inverted, {F1, F2});
        T -= dT;
        v -= dv;
    }
    return {v, false};
}

} // namespace plain_newton
