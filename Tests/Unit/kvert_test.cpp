// SPDX-License-Identifier: MIT
#include "Algebra/kvert.h"

#include "Tests/Support/child_process.h"
#include "Tests/Support/exact_determinant.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>

namespace {

using namespace lin_algebra;
using support::exact_determinant;
using support::expect_stop;
using support::random_integers;
using support::random_reals;
using support::struck_out;
using testing::ElementsAre;

constexpr double epsilon = std::numeric_limits<double>::epsilon();

std::vector<double> inverted(const std::vector<double> &elements, std::size_t n) {
    return kvert(kfact({elements, n, n}));
}

TEST(kvert_test, a_singular_matrix_stops) {
    expect_stop([] { inverted({1.0, 2.0, 2.0, 4.0}, 2); }, " MATRIX HAS NO INVERSE\n");
    expect_stop([] { inverted({0.0}, 1); }, " MATRIX HAS NO INVERSE\n");
}

TEST(kvert_test, a_matrix_that_was_not_factored_stops) {
    const std::string text = " ERROR: MUST FACTOR WITH KFACT\n BEFORE COMPUTING INVERSE\n";
    expect_stop([] { kvert({}); }, text);
    expect_stop([] { kvert(kfact({std::vector<double>(6), 3, 2})); }, text);
}

TEST(kvert_test, simple_matrices) {
    EXPECT_TRUE(inverted({}, 0).empty());
    EXPECT_THAT(inverted({4.0}, 1), ElementsAre(0.25));
    EXPECT_THAT(inverted({1.0, 4.0, 2.0, 6.0}, 2), ElementsAre(-3.0, 2.0, 1.0, -0.5));
    EXPECT_THAT(inverted({1e-300, 0.0, 0.0, 1e300}, 2), ElementsAre(1 / 1e-300, 0.0, 0.0, 1 / 1e300));
    // The inverse of a cyclic exchange of rows is its transpose. The three exchanges must be undone in their order.
    EXPECT_THAT(inverted({0.0, 1.0, 0.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0}, 3),
                ElementsAre(0.0, 0.0, 1.0, 1.0, 0.0, 0.0, 0.0, 1.0, 0.0));
    EXPECT_THAT(inverted({0.0, 0.0, 1.0, 1.0, 0.0, 0.0, 0.0, 1.0, 0.0}, 3),
                ElementsAre(0.0, 1.0, 0.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0));
    EXPECT_TRUE(std::isnan(inverted({std::nan(""), 0.0, 0.0, 1.0}, 2)[0]));
}

/// Compares |A X - 1| with the bound in the head of kvert.h; P^-1 |L| |U| |X| is summed in long double.
void expect_inverse(const std::vector<double> &A, std::size_t n) {
    SCOPED_TRACE(n);
    const auto factored = kfact({A, n, n});
    const auto X = kvert(factored);
    ASSERT_EQ(X.size(), n * n);
    std::vector<std::size_t> row_of(n); // for each row of the factors, its row in A
    for (std::size_t i = 0; i < n; ++i)
        row_of[i] = i;
    for (std::size_t k = 0; k < n; ++k)
        std::swap(row_of[k], row_of[factored.pivots[k]]);
    for (std::size_t column = 0; column < n; ++column) {
        std::vector<long double> Ux(n, 0.0L);
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t k = i; k < n; ++k)
                Ux[i] += std::abs(static_cast<long double>(factored(i + 1, k + 1)) * X[column * n + k]);
        for (std::size_t i = 0; i < n; ++i) {
            long double residual = row_of[i] == column ? -1 : 0, bound = Ux[i];
            for (std::size_t k = 0; k < n; ++k)
                residual += static_cast<long double>(A[k * n + row_of[i]]) * X[column * n + k];
            for (std::size_t k = 0; k < i; ++k)
                bound += std::abs(static_cast<long double>(factored(i + 1, k + 1))) * Ux[k];
            EXPECT_LE(std::abs(residual), 3 * static_cast<double>(n) * epsilon * bound) << row_of[i] << ", " << column;
        }
    }
}

TEST(kvert_test, a_matrix_times_its_inverse_is_the_unit_matrix) {
    std::mt19937 random(1);
    for (std::size_t n = 1; n <= 40; ++n)
        expect_inverse(random_reals(random, n * n), n);
    for (int i = 0; i < 500; ++i) {
        const auto A = random_integers(random, 25, 2);
        if (exact_determinant(A, 5) != 0.0)
            expect_inverse(A, 5);
    }
}

TEST(kvert_test, inverses_of_integers) {
    std::mt19937 random(2);
    for (std::size_t n = 1; n <= 7; ++n)
        for (int i = 0; i < 50; ++i) {
            const auto A = random_integers(random, n * n, 9);
            const double det = exact_determinant(A, n);
            if (det == 0.0)
                continue;
            std::vector<double> exact(n * n);
            double largest = 0;
            for (std::size_t row = 1; row <= n; ++row)
                for (std::size_t column = 1; column <= n; ++column) {
                    const double sign = (row + column) % 2 == 0 ? 1.0 : -1.0;
                    double &element = exact[(row - 1) * n + column - 1]; // transposed
                    element = sign * exact_determinant(struck_out(A, n, row, column), n - 1) / det;
                    largest = std::max(largest, std::abs(element));
                }
            const auto X = inverted(A, n);
            // The condition number is at most n^2 9 times the largest element.
            const double order = static_cast<double>(n);
            for (std::size_t k = 0; k < n * n; ++k)
                EXPECT_NEAR(X[k], exact[k], 3 * order * epsilon * order * order * 9 * largest * largest) << n;
        }
}

// All elements 27720/(i + j - 1) are integers. The inverse of 1/(i + j - 1) has integer elements, which binomials give.
TEST(kvert_test, a_notoriously_difficult_matrix) {
    constexpr std::size_t n = 6;
    constexpr double condition = 1.5e7;
    const auto binomial = [](std::size_t of, std::size_t k) {
        double result = 1;
        for (std::size_t i = 1; i <= k; ++i)
            result = result * static_cast<double>(of - k + i) / static_cast<double>(i);
        return result;
    };
    std::vector<double> H, exact;
    for (std::size_t j = 1; j <= n; ++j)
        for (std::size_t i = 1; i <= n; ++i) {
            H.push_back(27720.0 / static_cast<double>(i + j - 1));
            exact.push_back(((i + j) % 2 == 0 ? 1.0 : -1.0) * static_cast<double>(i + j - 1) *
                            binomial(n + i - 1, n - j) * binomial(n + j - 1, n - i) *
                            std::pow(binomial(i + j - 2, i - 1), 2) / 27720.0);
        }
    expect_inverse(H, n);
    const auto X = inverted(H, n);
    for (std::size_t k = 0; k < n * n; ++k)
        EXPECT_NEAR(X[k] / exact[k], 1.0, epsilon * condition);
    EXPECT_EQ(exact.front() * 27720.0, 36.0);
}

TEST(kvert_test, agrees_with_the_explicit_formulas) {
    std::mt19937 random(3);
    for (std::size_t n = 1; n <= 3; ++n)
        for (int i = 0; i < 200; ++i) {
            const auto A = random_reals(random, n * n);
            std::vector<double> expected(n * n);
            inverse({A, n, n}, expected);
            const auto X = inverted(A, n);
            double largest = 0;
            for (const double element : expected)
                largest = std::max(largest, std::abs(element));
            for (std::size_t k = 0; k < n * n; ++k)
                EXPECT_NEAR(X[k], expected[k], 30 * epsilon * largest * std::max(1.0, largest) * 3);
        }
}

} // namespace
