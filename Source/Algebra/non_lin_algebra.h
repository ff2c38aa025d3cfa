// SPDX-License-Identifier: MIT
// Module non_lin_algebra: the roots of a cubic.
//
// Equation   x^3 + a x^2 + b x + c = 0
// Returned   three complex roots, not sorted; if only one is real, it comes first
// Accuracy   rounding of the coefficients p and q of the depressed cubic, x^3 + p x + q = 0. A double root loses half
//            of the digits. One real root and a complex pair lose up to two thirds of the digits where |p| is small
//            against |q|^(2/3)
// Reference  G. Cardano, Ars Magna (1545); F. Viete for three real roots
#pragma once

#include "visibility.h"

#include <array>
#include <complex>

namespace non_lin_algebra OSTREL_VISIBLE {

std::array<std::complex<double>, 3> solve_eq_3(double a, double b, double c);

} // namespace non_lin_algebra
