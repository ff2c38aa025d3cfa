// SPDX-License-Identifier: MIT
// kdet: the determinant of a factored matrix of any order.
//
// Equation   det A = the product of U's diagonal, its sign changed by each exchange of rows; 1 for order 0
// Given      what kfact returned, no units
// Returned   the determinant; 0 for a singular matrix
// Valid      a matrix that was not factored is reported on the console and ends the process with exit status 1.
//            A column of zeros makes 0, also beside infinities.
// Accuracy   that of A with its elements off by the errors of its factors (kfact.h), so 0 may come out as a
//            number of rounding's size
#pragma once

#include "Algebra/kfact.h"

namespace lin_algebra OSTREL_VISIBLE {

double kdet(const factored_matrix &A);

} // namespace lin_algebra
