// SPDX-License-Identifier: MIT
#include "Algebra/non_lin_algebra.h"

#include <algorithm>
#include <cmath>

namespace non_lin_algebra {

std::array<std::complex<double>, 3> solve_eq_3(double a, double b, double c) {
    constexpr double root_3 = 1.7320508075688772;
    constexpr double third_turn = 2.0943951023931953;
    constexpr double two_thirds_turn = 4.1887902047863905;
    const double p = (3.0 * b - a * a) / 3.0;
    const double q = ((2.0 * (a * a) - 9.0 * b) * a + 27.0 * c) / 27.0;
    const double D = p * p * p / 27.0 + q * q / 4.0;
    const double shift = a / 3.0;
    if (D >= 0.0) {
        const auto cube_root = [](double x) { return (x < 0.0 ? -1.0 : 1.0) * std::cbrt(std::abs(x)); };
        const double r = std::sqrt(D);
        const double u = cube_root(-q / 2.0 + r);
        const double w = cube_root(-q / 2.0 - r);
        const double real = -(u + w) / 2.0 - shift;
        const double imaginary = root_3 / 2.0 * (u - w);
        return {{{u + w - shift, 0.0}, {real, imaginary}, {real, -imaginary}}};
    }
    const double m = 2.0 * std::sqrt(-p / 3.0);
    // Rounding may lift the cosine of a double root just above 1.
    const double angle = std::acos(std::clamp(3.0 * q / (p * m), -1.0, 1.0)) / 3.0;
    return {{{m * std::cos(angle) - shift, 0.0},
             {m * std::cos(angle + third_turn) - shift, 0.0},
             {m * std::cos(angle + two_thirds_turn) - shift, 0.0}}};
}

} // namespace non_lin_algebra
