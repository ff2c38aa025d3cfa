// SPDX-License-Identifier: MIT
#include "Algebra/lin_algebra.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace lin_algebra {

records::error_text linalg_errmsg;

namespace {

constexpr std::string_view in_inverse = " In FUNCTION inverse, MODULE lin_algebra. STOP";
constexpr std::string_view in_determinant = " In FUNCTION determinant, MODULE lin_algebra. STOP";

bool square(const matrix_view &A, std::string_view place) {
    if (A.rows == A.columns)
        return true;
    linalg_errmsg.report({" Matrix A is not square.", place});
    return false;
}

void report_size(std::size_t order, std::string_view place) {
    std::string number = std::to_string(order);
    if (number.size() > 3)
        number = "***";
    number.insert(0, 3 - number.size(), ' ');
    linalg_errmsg.report({" Matrix of size", number, " not implemented", place});
}

/// The 2x2 determinant left when A's row and column are struck out of a matrix of order 3.
double minor_2(const matrix_view &A, std::size_t row, std::size_t column) {
    const std::size_t r1 = row == 1 ? 2 : 1;
    const std::size_t r2 = row == 3 ? 2 : 3;
    const std::size_t c1 = column == 1 ? 2 : 1;
    const std::size_t c2 = column == 3 ? 2 : 3;
    return A(r1, c1) * A(r2, c2) - A(r1, c2) * A(r2, c1);
}

double square_determinant(const matrix_view &A) {
    switch (A.rows) {
    case 1:
        return A(1, 1);
    case 2:
        return A(1, 1) * A(2, 2) - A(1, 2) * A(2, 1);
    case 3:
        return A(1, 1) * minor_2(A, 1, 1) - A(2, 1) * minor_2(A, 2, 1) + A(3, 1) * minor_2(A, 3, 1);
    default:
        report_size(A.rows, in_determinant);
        return 0.0;
    }
}

} // namespace

double determinant(const matrix_view &A) {
    return square(A, in_determinant) ? square_determinant(A) : 0.0;
}

void inverse(const matrix_view &A, std::span<double> result) {
    if (!square(A, in_inverse))
        return;
    const double det = square_determinant(A);
    if (linalg_errmsg.clear() && det == 0.0) {
        linalg_errmsg.report({" Matrix A is singular.", in_inverse});
        return;
    }
    switch (A.rows) {
    case 1:
        result[0] = 1.0 / A(1, 1);
        break;
    case 2: {
        const double inverted[] = {A(2, 2) / det, -A(2, 1) / det, -A(1, 2) / det, A(1, 1) / det};
        std::copy(std::begin(inverted), std::end(inverted), result.begin());
        break;
    }
    case 3: {
        double inverted[9];
        for (std::size_t row = 1; row <= 3; ++row)
            for (std::size_t column = 1; column <= 3; ++column) {
                const double cofactor = (row + column) % 2 == 0 ? minor_2(A, row, column) : -minor_2(A, row, column);
                inverted[(row - 1) * 3 + column - 1] = cofactor / det; // transposed
            }
        std::copy(std::begin(inverted), std::end(inverted), result.begin());
        break;
    }
    default:
        break; // the determinant has reported the size
    }
}

} // namespace lin_algebra
