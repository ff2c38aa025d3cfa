// SPDX-License-Identifier: MIT
#include "Algebra/lin_algebra.h"

#include "Tests/Support/child_process.h"
#include "Tests/Support/exact_determinant.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace lin_algebra;

constexpr double epsilon = std::numeric_limits<double>::epsilon();
constexpr double mark = 7.25;

struct lin_algebra_test : testing::Test {
    lin_algebra_test() { linalg_errmsg.reset(); }
    ~lin_algebra_test() override { linalg_errmsg.reset(); }
};

std::string text() {
    EXPECT_EQ(linalg_errmsg.padded().size(), 256U);
    return std::string(linalg_errmsg.trimmed());
}

/// The inverse of a matrix of any shape, given in columns. Marks stay where nothing is written.
std::vector<double> inverted(const std::vector<double> &elements, std::size_t rows, std::size_t columns) {
    std::vector<double> result(elements.size(), mark);
    inverse({elements, rows, columns}, result);
    return result;
}
std::vector<double> inverted(const std::vector<double> &elements, std::size_t order) {
    return inverted(elements, order, order);
}

std::vector<double> counted(std::size_t size) {
    std::vector<double> result(size);
    std::iota(result.begin(), result.end(), 1.0);
    return result;
}

const std::string not_square = " Matrix A is not square.";
const std::string singular = " Matrix A is singular. In FUNCTION inverse, MODULE lin_algebra. STOP";
const std::string in_inverse = " In FUNCTION inverse, MODULE lin_algebra. STOP";
const std::string in_determinant = " In FUNCTION determinant, MODULE lin_algebra. STOP";

TEST_F(lin_algebra_test, starts_without_a_failure) {
    EXPECT_EQ(text(), "No errors");
}

TEST_F(lin_algebra_test, determinants) {
    EXPECT_EQ(determinant({std::vector{-3.5}, 1, 1}), -3.5);
    // The columns are (1, 3) and (2, 4).
    EXPECT_EQ(determinant({std::vector{1.0, 3.0, 2.0, 4.0}, 2, 2}), -2.0);
    EXPECT_EQ(determinant({std::vector{2.0, -1.0, 0.5, 1.0, 4.0, -2.0, 3.0, 5.0, 7.0}, 3, 3}), 76.0 + 13.0 - 3.5);
    EXPECT_EQ(determinant({std::vector{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0}, 3, 3}), 1.0);
    // Two rows are exchanged.
    EXPECT_EQ(determinant({std::vector{0.0, 1.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0}, 3, 3}), -1.0);
    EXPECT_EQ(determinant({std::vector{0.0, 0.0}, 0, 0}), 0.0);
}

TEST_F(lin_algebra_test, a_determinant_of_order_3_is_expanded_along_the_first_column) {
    const std::vector<double> A = {0.1, 0.7, -0.3, 1.3, 0.2, 0.9, 1.1, -0.6, 0.4};
    const auto a = [&](int row, int column) { return A[static_cast<std::size_t>((column - 1) * 3 + row - 1)]; };
    EXPECT_EQ(determinant({A, 3, 3}), a(1, 1) * (a(2, 2) * a(3, 3) - a(2, 3) * a(3, 2)) -
                                          a(2, 1) * (a(1, 2) * a(3, 3) - a(1, 3) * a(3, 2)) +
                                          a(3, 1) * (a(1, 2) * a(2, 3) - a(1, 3) * a(2, 2)));
}

TEST_F(lin_algebra_test, inverses_of_small_matrices) {
    EXPECT_EQ(inverted({4.0}, 1), std::vector{0.25});
    EXPECT_EQ(inverted({1.0, 3.0, 2.0, 4.0}, 2), (std::vector{4.0 / -2.0, -3.0 / -2.0, -2.0 / -2.0, 1.0 / -2.0}));
    // The first matrix is diagonal, the second a cyclic exchange, whose inverse is its transpose.
    EXPECT_EQ(inverted({2.0, 0.0, 0.0, 0.0, 4.0, 0.0, 0.0, 0.0, 8.0}, 3),
              (std::vector{0.5, 0.0, 0.0, 0.0, 0.25, 0.0, 0.0, 0.0, 0.125}));
    EXPECT_EQ(inverted({0.0, 1.0, 0.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0}, 3),
              (std::vector{0.0, 0.0, 1.0, 1.0, 0.0, 0.0, 0.0, 1.0, 0.0}));
    EXPECT_EQ(text(), "No errors");
}

// An element of the adjugate is exact to a few units of its terms, and an element of A times the adjugate too.
TEST_F(lin_algebra_test, a_matrix_times_its_inverse_is_the_unit_matrix) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> any(-2.0, 2.0);
    for (int i = 0; i < 2000; ++i)
        for (std::size_t n = 1; n <= 3; ++n) {
            std::vector<double> A(n * n);
            std::generate(A.begin(), A.end(), [&] { return any(random); });
            const double det = determinant({A, n, n});
            const auto inverse = inverted(A, n);
            for (std::size_t row = 0; row < n; ++row)
                for (std::size_t column = 0; column < n; ++column) {
                    long double sum = row == column ? -1 : 0;
                    for (std::size_t k = 0; k < n; ++k)
                        sum += static_cast<long double>(A[k * n + row]) * inverse[column * n + k];
                    // There are at most 18 products of n factors up to 2, divided by the determinant.
                    EXPECT_LE(std::abs(static_cast<double>(sum)), 18 * 8 * 4 * epsilon * (1 + 1 / std::abs(det)))
                        << n << ", det " << det;
                }
        }
    EXPECT_EQ(text(), "No errors");
}

TEST_F(lin_algebra_test, a_determinant_of_exactly_zero_is_singular) {
    EXPECT_EQ(inverted({1.0, 2.0, 2.0, 4.0}, 2), std::vector<double>(4, mark));
    EXPECT_EQ(text(), singular);
    linalg_errmsg.reset();
    EXPECT_EQ(inverted({0.0}, 1), std::vector<double>(1, mark));
    EXPECT_EQ(text(), singular);
    linalg_errmsg.reset();
    EXPECT_EQ(inverted(counted(9), 3), std::vector<double>(9, mark));
    EXPECT_EQ(text(), singular);
}

TEST_F(lin_algebra_test, a_tiny_determinant_is_not_singular) {
    EXPECT_EQ(inverted({1e-150, 0.0, 0.0, 1e-150}, 2), (std::vector{1e-150 / 1e-300, -0.0, -0.0, 1e-150 / 1e-300}));
    const double above = 1 + epsilon;
    EXPECT_EQ(inverted({1.0, 1.0, 1.0, above}, 2)[3], 1 / epsilon);
    EXPECT_EQ(text(), "No errors");
}

TEST_F(lin_algebra_test, a_NaN_is_not_singular) {
    const double nan = std::nan("");
    EXPECT_TRUE(std::isnan(inverted({nan, 0.0, 0.0, 1.0}, 2)[0]));
    EXPECT_EQ(text(), "No errors");
}

TEST_F(lin_algebra_test, other_shapes_are_reported) {
    for (const auto &[rows, columns] : {std::pair<std::size_t, std::size_t>(1, 2), {2, 1}, {2, 3}, {3, 2}, {4, 5}}) {
        SCOPED_TRACE(testing::Message() << rows << " by " << columns);
        const auto A = counted(rows * columns);
        linalg_errmsg.reset();
        EXPECT_EQ(inverted(A, rows, columns), std::vector<double>(rows * columns, mark));
        EXPECT_EQ(text(), not_square + in_inverse);
        EXPECT_EQ(determinant({A, rows, columns}), 0.0);
        EXPECT_EQ(text(), not_square + in_determinant);
    }
}

TEST_F(lin_algebra_test, orders_above_3_are_reported_with_their_number_in_three_characters) {
    for (const auto &[order, number] :
         {std::pair<std::size_t, std::string>(4, "  4"), {5, "  5"}, {10, " 10"}, {999, "999"}, {1000, "***"}}) {
        SCOPED_TRACE(order);
        auto A = std::vector<double>(order * order);
        for (std::size_t i = 0; i < order; ++i)
            A[i * order + i] = 2.0;
        const std::string expected = " Matrix of size" + number + " not implemented" + in_determinant;
        linalg_errmsg.reset();
        EXPECT_EQ(inverted(A, order), std::vector<double>(order * order, mark));
        EXPECT_EQ(text(), expected);
        linalg_errmsg.reset();
        EXPECT_EQ(determinant({A, order, order}), 0.0);
        EXPECT_EQ(text(), expected);
    }
}

TEST_F(lin_algebra_test, a_success_keeps_the_failure_before_it) {
    inverted({1.0, 2.0, 2.0, 4.0}, 2);
    EXPECT_EQ(inverted({4.0}, 1), std::vector{0.25});
    EXPECT_EQ(determinant({std::vector{2.0}, 1, 1}), 2.0);
    EXPECT_EQ(text(), singular);
}

// A determinant of zero is only looked for until the first failure.
TEST_F(lin_algebra_test, after_a_failure_a_singular_matrix_is_divided_by_zero) {
    determinant({counted(6), 2, 3});
    const auto result = inverted({1.0, 2.0, 2.0, 4.0}, 2);
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(result, (std::vector{infinity, -infinity, -infinity, infinity}));
    EXPECT_EQ(inverted({0.0}, 1), std::vector{infinity});
    EXPECT_EQ(text(), not_square + in_determinant);
}

TEST_F(lin_algebra_test, a_later_failure_replaces_the_text) {
    determinant({counted(6), 2, 3});
    inverted(counted(16), 4);
    EXPECT_EQ(text(), " Matrix of size  4 not implemented" + in_determinant);
    inverted(counted(6), 3, 2);
    EXPECT_EQ(text(), not_square + in_inverse);
}

TEST_F(lin_algebra_test, the_result_may_be_the_matrix) {
    const std::vector<std::vector<double>> matrices = {
        {4.0}, {1.0, 3.0, 2.0, 5.0}, {2.0, -1.0, 0.5, 1.0, 4.0, -2.0, 3.0, 5.0, 7.0}};
    for (std::size_t n = 1; n <= 3; ++n) {
        std::vector<double> A = matrices[n - 1];
        const auto expected = inverted(A, n);
        inverse({A, n, n}, A);
        EXPECT_EQ(A, expected);
    }
}

TEST_F(lin_algebra_test, minors_leave_out_a_row_and_a_column) {
    // The rows are (1, 2, 10), (3, 5, 6), (7, 8, 9).
    const std::vector<double> elements = {1.0, 3.0, 7.0, 2.0, 5.0, 8.0, 10.0, 6.0, 9.0};
    const matrix_view A{elements, 3, 3};
    EXPECT_EQ(minor(A, 1, 1), 5.0 * 9.0 - 6.0 * 8.0);
    EXPECT_EQ(minor(A, 1, 2), 3.0 * 9.0 - 6.0 * 7.0);
    EXPECT_EQ(minor(A, 2, 3), 1.0 * 8.0 - 2.0 * 7.0);
    EXPECT_EQ(minor(A, 3, 1), 2.0 * 6.0 - 10.0 * 5.0);
    EXPECT_EQ(minor({std::vector{1.0, 3.0, 2.0, 4.0}, 2, 2}, 1, 2), 3.0);
    EXPECT_EQ(minor({std::vector{7.0}, 1, 1}, 1, 1), 1.0);
    EXPECT_EQ(text(), "No errors");
}

TEST_F(lin_algebra_test, minors_of_integers) {
    std::mt19937 random(3);
    for (std::size_t n = 1; n <= 7; ++n)
        for (int i = 0; i < 20; ++i) {
            const auto A = support::random_integers(random, n * n, 9);
            for (std::size_t row = 1; row <= n; ++row)
                for (std::size_t column = 1; column <= n; ++column) {
                    const double exact = support::exact_determinant(support::struck_out(A, n, row, column), n - 1);
                    // Explicit formulas are exact for integers, factors have rounding errors. Hadamard's bound for a
                    // determinant of order 6 or less is 22^6.
                    EXPECT_NEAR(minor({A, n, n}, row, column), exact, n <= 4 ? 0.0 : 22e6 * 5.2 * 10 * epsilon)
                        << n << ": " << row << ", " << column;
                }
        }
    EXPECT_EQ(text(), "No errors");
}

TEST_F(lin_algebra_test, the_minor_of_a_singular_remainder_is_0) {
    std::vector<double> A(25, 0.0);
    A[24] = 1.0;
    EXPECT_EQ(minor({A, 5, 5}, 1, 1), 0.0);
    EXPECT_EQ(text(), "No errors");
}

TEST_F(lin_algebra_test, there_is_no_minor_outside_the_matrix) {
    const auto A = counted(9);
    for (const auto &[row, column] : {std::pair<std::size_t, std::size_t>(0, 1), {1, 0}, {4, 1}, {1, 4}, {9, 9}})
        EXPECT_TRUE(std::isnan(minor({A, 3, 3}, row, column)));
    EXPECT_TRUE(std::isnan(minor({{}, 0, 0}, 1, 1)));
}

TEST_F(lin_algebra_test, the_minor_of_another_shape_stops) {
    for (const auto &[rows, columns] : {std::pair<std::size_t, std::size_t>(2, 3), {3, 2}, {1, 5}}) {
        const auto A = counted(rows * columns);
        support::expect_stop(
            [&, r = rows, c = columns] {
                minor({A, r, c}, 1, 1);
            },
            "  Matrix A is not square.\n  in FUNCTION minor, MODULE lin_algebra\n  STOP. \n");
    }
}

TEST_F(lin_algebra_test, vector_products) {
    const std::vector<double> x = {1.0, 0.0, 0.0}, y = {0.0, 1.0, 0.0}, z = {0.0, 0.0, 1.0};
    EXPECT_THAT(vec_prod(x, y), testing::ElementsAreArray(z));
    EXPECT_THAT(vec_prod(y, z), testing::ElementsAreArray(x));
    EXPECT_THAT(vec_prod(z, x), testing::ElementsAreArray(y));
    EXPECT_THAT(vec_prod(y, x), testing::ElementsAre(0.0, 0.0, -1.0));
    EXPECT_THAT(vec_prod(std::vector{1.0, 2.0, 3.0}, std::vector{-4.0, 7.0, 5.0}),
                testing::ElementsAre(-11.0, -17.0, 15.0));
    EXPECT_THAT(vec_prod(std::vector{2.0, -3.0, 5.0}, std::vector{4.0, -6.0, 10.0}),
                testing::ElementsAre(0.0, 0.0, 0.0));
}

TEST_F(lin_algebra_test, vectors_of_other_sizes_stop) {
    for (const auto &[a, b] :
         {std::pair<std::size_t, std::size_t>(2, 3), {3, 2}, {3, 4}, {2, 2}, {4, 4}, {0, 0}, {0, 3}})
        support::expect_stop([size_a = a, size_b = b] { vec_prod(counted(size_a), counted(size_b)); },
                             "  Inconsistent size of the vectors.\n  in FUNCTION vec_prod, MODULE lin_algebra\n");
}

} // namespace
