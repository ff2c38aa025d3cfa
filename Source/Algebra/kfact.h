// SPDX-License-Identifier: MIT
// kfact: the factors of a square matrix of any order, from which kdet and kvert make determinant and inverse.
//
// Equation   P A = L U, where P exchanges rows so that each pivot is the largest element left in its column
// Given      A in column order, no units
// Returned   one array in column order that holds L below the diagonal (the ones on L's own diagonal are left out) and
//            U on and above the diagonal; and the exchanges P
// Valid      a pivot of exactly 0 makes the matrix singular; a pivot of the size of rounding errors does not. A matrix
//            that is not square is not factored. Elements of very different sizes are not scaled. NaN and infinity
//            are carried through, but a matrix with a column of zeros is singular even then
// Accuracy   |P A - L U| <= n 2.2e-16 |L| |U|, element by element, for order n
// Reference  G. H. Golub, C. F. Van Loan, Matrix Computations (2013), 3.4
#pragma once

#include "Algebra/lin_algebra.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace lin_algebra OSTREL_VISIBLE {

/// The result of kfact. kdet and kvert rely on its lengths and pivots.
struct factored_matrix {
    enum class states { not_factored, factored, singular };

    states state = states::not_factored;
    std::size_t order = 0;
    std::vector<double> factors;     ///< L and U, column by column
    std::vector<std::size_t> pivots; ///< step k, from 0, exchanged row k with this row, k itself or one below

    /// Row and column count from 1.
    double operator()(std::size_t row, std::size_t column) const {
        return matrix_view{factors, order, order}(row, column);
    }
};

factored_matrix kfact(const matrix_view &A);

/// The beginning of the message about a matrix that was not factored.
inline constexpr std::string_view must_factor = "ERROR: MUST FACTOR WITH KFACT";

} // namespace lin_algebra
