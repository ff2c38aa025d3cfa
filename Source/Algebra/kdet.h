// SPDX-License-Identifier: MIT
// kdet: the determinant of a factored matrix of any order.
//
// Equation   det A = the product of U's diagonal; each exchange of rows changes its sign; 1 for order 0
// Given      the result of kfact, no units
// Returned   the determinant; 0 for a singular matrix
// Valid      a matrix that was not factored is reported on the console and ends the process with exit status 1.
//            A column of zeros gives 0, even beside infinities
// Accuracy   the determinant is exact for a matrix that differs from A by the errors of its factors (kfact.h), so that
//            0 may come out as a number of the size of rounding errors
#pragma once

#include "Algebra/kfact.h"

namespace lin_algebra OSTREL_VISIBLE {

double kdet(const factored_matrix &A);

} // namespace lin_algebra
