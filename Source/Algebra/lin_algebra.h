// SPDX-License-Identifier: MIT
// Module lin_algebra: inverse and determinant of very small dense matrices.
//
// Computes   A^-1 and det A for orders 1, 2 and 3 by explicit formulas
// Given      the elements in column order, no units
// Returned   elements in column order; after a failure the result is left unchanged
// Valid      orders 1 to 3; anything else, and a determinant of exactly 0, is reported in linalg_errmsg
// Reference  Cramer's rule
#pragma once

#include "Records/error_text.h"
#include "visibility.h"

#include <cstddef>
#include <span>

namespace lin_algebra OSTREL_VISIBLE {

/// "No errors" until the first failure; never reset, so that every later check finds the failure.
extern records::error_text linalg_errmsg;

struct matrix_view {
    std::span<const double> elements; ///< column by column
    std::size_t rows;
    std::size_t columns;

    double operator()(std::size_t row, std::size_t column) const { return elements[(column - 1) * rows + row - 1]; }
};

/// Writes the inverse of A into `result`, which has A's shape.
void inverse(const matrix_view &A, std::span<double> result);
/// The determinant; 0 after a failure.
double determinant(const matrix_view &A);

} // namespace lin_algebra
