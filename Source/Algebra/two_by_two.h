// SPDX-License-Identifier: MIT
// Matrices of order 2, whose elements stand in column order.
//
// Computes   det A, A^-1 and products with a vector
// Given      elements without units
// Valid      any elements; a division by a determinant of 0 gives the IEEE results
// Accuracy   a few roundings of the largest product in the formula
// Reference  Cramer's rule
#pragma once

#include "visibility.h"

#include <array>

namespace two_by_two {

using vector = std::array<double, 2>;
using matrix = std::array<double, 4>;

OSTREL_INLINE double determinant(const matrix &A) {
    return A[0] * A[3] - A[2] * A[1];
}

/// The inverse of A, whose determinant is given.
OSTREL_INLINE matrix inverse(const matrix &A, double det) {
    return {A[3] / det, -A[1] / det, -A[2] / det, A[0] / det};
}

OSTREL_INLINE vector product(const matrix &A, const vector &x) {
    return {A[0] * x[0] + A[2] * x[1], A[1] * x[0] + A[3] * x[1]};
}

} // namespace two_by_two
