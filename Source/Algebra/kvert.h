// SPDX-License-Identifier: MIT
// kvert: the inverse of a factored matrix of any order.
//
// Equation   L U x = P e, column by column of the inverse
// Given      the result of kfact, no units
// Returned   the elements of the inverse in column order
// Valid      a matrix that is singular or was not factored is reported on the console and ends the process with exit
//            status 1
// Accuracy   |A X - 1| <= 3 n 2.2e-16 (P^-1 |L| |U| |X|), element by element, for order n
// Reference  N. J. Higham, Accuracy and Stability of Numerical Algorithms (2002), 14.3
#pragma once

#include "Algebra/kfact.h"

#include <vector>

namespace lin_algebra OSTREL_VISIBLE {

std::vector<double> kvert(const factored_matrix &A);

} // namespace lin_algebra
