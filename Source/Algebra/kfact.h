// SPDX-License-Identifier: MIT
// kfact: the factors of a square matrix of any order, from which kdet and kvert make determinant and inverse.
//
// Equation   P A = L U by rows exchanged so that each pivot is the largest element left in its column
// Given      A in column order, no units
// Returned   in column order and in one array: L, whose diagonal of ones is left out, below the diagonal, U on and
//            above it; and the exchanges P
// Valid      a pivot of exactly 0 makes the matrix singular; one of rounding's size does not. A matrix that is not
//            square is not factored. Elements of very different sizes are not scaled. NaN and infinity go
//            through, but a matrix with a column of zeros is singular all the same
// Accuracy   |P A - L U| <= n 2.2e-16 |L| |U|, element by element, for order n
// Reference  G. H. Golub, C. F. Van Loan, Matrix Computations (2013), 3.4
#pragma once

#include "Algebra/lin_algebra.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace lin_algebra OSTREL_VISIBLE {

/// As kfact returns it: kdet and kvert rely on the lengths and pivots.
struct factored_matrix {
    enum class states { not_factored, factored, singular };

    states state = states::not_factored;
    std::size_t order = 0;
    std::vector<double> factors;     ///< L and U, column by column
    std::vector<std::size_t> pivots; ///< step k, from 0, exchanged row k for this one, k or below it

    /// Row and column from 1.
    double operator()(std::size_t row, std::size_t column) const {
        return matrix_view{factors, order, order}(row, column);
    }
};

factored_matrix kfact(const matrix_view &A);

/// How the complaint about a matrix that was not factored begins.
inline constexpr std::string_view must_factor = "ERROR: MUST FACTOR WITH KFACT";

} // namespace lin_algebra
