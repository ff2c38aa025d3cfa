// SPDX-License-Identifier: MIT
// Module lin_algebra: inverse and determinant of very small dense matrices, minors, vector product.
//
// Computes   A^-1 and det A for orders 1, 2 and 3 by explicit formulas; minors of any order; a x b
// Given      the elements in column order, no units
// Returned   elements in column order; after a failure the result is left unchanged
// Valid      inverse, determinant: orders 1 to 3; another shape, and a singular matrix to invert (its determinant is
//            exactly 0), is reported in linalg_errmsg. minor, vec_prod: a wrong shape is reported on the console and
//            ends the process with exit status 1. kfact.h serves inverses and determinants of any order
// Accuracy   a few roundings of the largest product in the formula; for minors in matrices of order 5 and more, see
//            kdet.h
// Reference  Cramer's rule
#pragma once

#include "Records/error_text.h"
#include "visibility.h"

#include <array>
#include <cstddef>
#include <span>

namespace lin_algebra OSTREL_VISIBLE {

/// "No errors" until the first failure. The text is never reset, so that every later check finds the failure.
extern records::error_text linalg_errmsg;

struct matrix_view {
    std::span<const double> elements; ///< column by column, rows times columns of them
    std::size_t rows;
    std::size_t columns;

    double operator()(std::size_t row, std::size_t column) const { return elements[(column - 1) * rows + row - 1]; }
};

/// Writes the inverse of A into `result`, which has A's shape.
void inverse(const matrix_view &A, std::span<double> result);
/// The determinant; 0 after a failure.
double determinant(const matrix_view &A);

/// The determinant of the square matrix A without one row and one column (both count from 1). It does not have the sign
/// of a cofactor. It is 1 for order 1, and NaN for a row or column that A does not have.
double minor(const matrix_view &A, std::size_t row, std::size_t column);

/// The vector product a x b, in the product of their units. Both have three components.
std::array<double, 3> vec_prod(std::span<const double> a, std::span<const double> b);

} // namespace lin_algebra
