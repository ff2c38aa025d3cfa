// SPDX-License-Identifier: MIT
#include "Algebra/lin_algebra.h"

#include "Algebra/kdet.h"
#include "Algebra/two_by_two.h"
#include "Records/console.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace lin_algebra {

records::error_text linalg_errmsg;

namespace {

constexpr std::string_view not_square = " Matrix A is not square.";
constexpr std::string_view in_inverse = " In FUNCTION inverse, MODULE lin_algebra. STOP";
constexpr std::string_view in_determinant = " In FUNCTION determinant, MODULE lin_algebra. STOP";

bool square(const matrix_view &A, std::string_view place) {
    if (A.rows == A.columns)
        return true;
    linalg_errmsg.report({not_square, place});
    return false;
}

void report_size(std::size_t order, std::string_view place) {
    std::string number = std::to_string(order);
    if (number.size() > 3)
        number = "***";
    number.insert(0, 3 - number.size(), ' ');
    linalg_errmsg.report({" Matrix of size", number, " not implemented", place});
}

/// A without one row and one column.
template <class Matrix>
struct struck_out {
    const Matrix &A;
    std::size_t without_row;
    std::size_t without_column;

    double operator()(std::size_t row, std::size_t column) const {
        return A(row + (row >= without_row ? 1 : 0), column + (column >= without_column ? 1 : 0));
    }
};

template <class Matrix>
double determinant_2(const Matrix &A) {
    return two_by_two::determinant({A(1, 1), A(2, 1), A(1, 2), A(2, 2)});
}

/// The minor of a matrix of order 3.
template <class Matrix>
double minor_2(const Matrix &A, std::size_t row, std::size_t column) {
    return determinant_2(struck_out<Matrix>{A, row, column});
}

template <class Matrix>
double determinant_3(const Matrix &A) {
    return A(1, 1) * minor_2(A, 1, 1) - A(2, 1) * minor_2(A, 2, 1) + A(3, 1) * minor_2(A, 3, 1);
}

double square_determinant(const matrix_view &A) {
    switch (A.rows) {
    case 1:
        return A(1, 1);
    case 2:
        return determinant_2(A);
    case 3:
        return determinant_3(A);
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
        const two_by_two::matrix inverted = two_by_two::inverse({A(1, 1), A(2, 1), A(1, 2), A(2, 2)}, det);
        std::copy(inverted.begin(), inverted.end(), result.begin());
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

double minor(const matrix_view &A, std::size_t row, std::size_t column) {
    if (A.rows != A.columns)
        console::stop({not_square, " in FUNCTION minor, MODULE lin_algebra", " STOP. "});
    if (row < 1 || row > A.rows || column < 1 || column > A.columns)
        return std::numeric_limits<double>::quiet_NaN();
    const struck_out<matrix_view> left{A, row, column};
    switch (const std::size_t order = A.rows - 1) {
    case 0:
        return 1.0;
    case 1:
        return left(1, 1);
    case 2:
        return determinant_2(left);
    case 3:
        return determinant_3(left);
    default: {
        std::vector<double> elements;
        elements.reserve(order * order);
        for (std::size_t j = 1; j <= order; ++j)
            for (std::size_t i = 1; i <= order; ++i)
                elements.push_back(left(i, j));
        return kdet(kfact({elements, order, order}));
    }
    }
}

std::array<double, 3> vec_prod(std::span<const double> a, std::span<const double> b) {
    if (a.size() != 3 || b.size() != 3)
        console::stop({" Inconsistent size of the vectors.", " in FUNCTION vec_prod, MODULE lin_algebra"});
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

} // namespace lin_algebra
