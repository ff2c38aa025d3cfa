// SPDX-License-Identifier: MIT
#include "Algebra/kfact.h"

#include "Tests/Support/exact_determinant.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <numeric>

namespace {

using namespace lin_algebra;
using support::random_integers;
using support::random_reals;
using testing::ElementsAre;
using states = factored_matrix::states;

constexpr double epsilon = std::numeric_limits<double>::epsilon();

TEST(kfact_test, stores_L_below_the_diagonal_and_U_on_and_above_it) {
    // The rows (1, 2) and (4, 6) are exchanged; the multiplier is 1/4.
    const auto A = kfact({std::vector{1.0, 4.0, 2.0, 6.0}, 2, 2});
    EXPECT_EQ(A.state, states::factored);
    EXPECT_EQ(A.order, 2U);
    EXPECT_THAT(A.factors, ElementsAre(4.0, 0.25, 6.0, 0.5));
    EXPECT_THAT(A.pivots, ElementsAre(1, 1));
    EXPECT_EQ(A(1, 2), 6.0);
    EXPECT_EQ(A(2, 1), 0.25);
    // The rows are (2, 1, 1), (4, 0, 2), (8, 4, 0). Each step exchanges rows, and their multipliers with them.
    const auto B = kfact({std::vector{2.0, 4.0, 8.0, 1.0, 0.0, 4.0, 1.0, 2.0, 0.0}, 3, 3});
    EXPECT_THAT(B.factors, ElementsAre(8.0, 0.5, 0.25, 4.0, -2.0, 0.0, 0.0, 2.0, 1.0));
    EXPECT_THAT(B.pivots, ElementsAre(2, 1, 2));
}

TEST(kfact_test, of_equal_pivots_the_first_is_taken) {
    EXPECT_THAT(kfact({std::vector{1.0, -1.0, 1.0, 1.0}, 2, 2}).pivots, ElementsAre(0, 1));
}

TEST(kfact_test, only_square_matrices_are_factored) {
    const std::vector<double> elements(6, 1.0);
    EXPECT_EQ(kfact({elements, 2, 3}).state, states::not_factored);
    EXPECT_EQ(kfact({elements, 3, 2}).state, states::not_factored);
    EXPECT_EQ(kfact({{}, 0, 3}).state, states::not_factored);
    EXPECT_EQ(factored_matrix{}.state, states::not_factored);
    EXPECT_EQ(kfact({{}, 0, 0}).state, states::factored);
}

TEST(kfact_test, a_pivot_of_exactly_0_is_singular) {
    EXPECT_EQ(kfact({std::vector{0.0}, 1, 1}).state, states::singular);
    EXPECT_EQ(kfact({std::vector{-0.0}, 1, 1}).state, states::singular);
    EXPECT_EQ(kfact({std::vector{1.0, 2.0, 2.0, 4.0}, 2, 2}).state, states::singular);
    EXPECT_EQ(kfact({std::vector{0.0, 0.0, 1.0, 2.0}, 2, 2}).state, states::singular) << "in the first step";
    EXPECT_EQ(kfact({std::vector<double>(25, 0.0), 5, 5}).state, states::singular);
    EXPECT_EQ(kfact({std::vector{5e-324}, 1, 1}).state, states::factored);
    EXPECT_EQ(kfact({std::vector{0.0, 1.0, 1.0, 0.0}, 2, 2}).state, states::factored) << "only a row to exchange";
}

TEST(kfact_test, a_NaN_is_not_singular) {
    const double nan = std::nan("");
    for (const auto &elements : {std::vector{nan, 0.0, 0.0, 1.0}, {0.0, nan, 1.0, 0.0}, {0.0, nan, nan, 0.0}})
        EXPECT_EQ(kfact({elements, 2, 2}).state, states::factored);
    EXPECT_EQ(kfact({std::vector{0.0, nan, 0.0, 1.0, 1.0, 1.0, 1.0, 2.0, 3.0}, 3, 3}).state, states::factored);
}

/// A with its rows exchanged as in the steps of kfact.
std::vector<double> exchanged(std::vector<double> A, const factored_matrix &factored) {
    const std::size_t n = factored.order;
    for (std::size_t k = 0; k < n; ++k)
        for (std::size_t j = 0; j < n; ++j)
            std::swap(A[j * n + k], A[j * n + factored.pivots[k]]);
    return A;
}

void expect_factors(const std::vector<double> &A, std::size_t n) {
    SCOPED_TRACE(n);
    const auto factored = kfact({A, n, n});
    ASSERT_EQ(factored.order, n);
    const auto PA = exchanged(A, factored);
    for (std::size_t row = 1; row <= n; ++row)
        for (std::size_t column = 1; column <= n; ++column) {
            long double sum = 0, sizes = 0;
            for (std::size_t k = 1; k <= std::min(row, column); ++k) {
                const long double term = (k == row ? 1.0L : factored(row, k)) * factored(k, column);
                sum += term;
                sizes += std::abs(term);
            }
            EXPECT_LE(std::abs(sum - PA[(column - 1) * n + row - 1]), static_cast<double>(n) * epsilon * sizes)
                << row << ", " << column;
            if (row > column) {
                EXPECT_LE(std::abs(factored(row, column)), 1.0);
            }
        }
}

TEST(kfact_test, the_product_of_the_factors_is_the_matrix_with_rows_exchanged) {
    std::mt19937 random(1);
    for (std::size_t n = 1; n <= 40; ++n)
        expect_factors(random_reals(random, n * n), n);
    // Many of these are singular, and their factors are as good.
    int singular = 0;
    for (int i = 0; i < 500; ++i) {
        const auto A = random_integers(random, 16, 1);
        expect_factors(A, 4);
        singular += kfact({A, 4, 4}).state == states::singular ? 1 : 0;
    }
    EXPECT_GT(singular, 100);
    EXPECT_LT(singular, 400);
}

} // namespace
