// SPDX-License-Identifier: MIT
#include "Algebra/kdet.h"

#include "Tests/Support/child_process.h"
#include "Tests/Support/exact_determinant.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>

namespace {

using namespace lin_algebra;
using support::exact_determinant;
using support::expect_stop;
using support::random_integers;
using support::struck_out;

constexpr double epsilon = std::numeric_limits<double>::epsilon();

double factored_determinant(const std::vector<double> &elements, std::size_t n) {
    return kdet(kfact({elements, n, n}));
}

TEST(kdet_test, a_matrix_that_was_not_factored_stops) {
    const std::string text = " ERROR: MUST FACTOR WITH KFACT\n BEFORE COMPUTING DETERMINANT\n";
    expect_stop([] { kdet({}); }, text);
    expect_stop([] { kdet(kfact({std::vector<double>(6), 2, 3})); }, text);
}

TEST(kdet_test, a_singular_matrix_has_0) {
    EXPECT_EQ(factored_determinant({0.0}, 1), 0.0);
    EXPECT_EQ(factored_determinant({1.0, 2.0, 2.0, 4.0}, 2), 0.0);
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(factored_determinant({0.0, 0.0, 1.0, infinity}, 2), 0.0);
}

TEST(kdet_test, the_product_neither_overflows_nor_vanishes_on_its_way) {
    const auto diagonal = [](double a, double b, double c) {
        return factored_determinant({a, 0.0, 0.0, 0.0, b, 0.0, 0.0, 0.0, c}, 3);
    };
    // Powers of two multiply without rounding.
    EXPECT_EQ(diagonal(0x1p-1000, 0x1p-1000, 0x1p1000), 0x1p-1000);
    EXPECT_EQ(diagonal(-0x1p1000, 0x1p900, 0x1.8p-1000), -0x1.8p900);
    EXPECT_EQ(diagonal(0x1p-1074, 0x1p-1074, 0x1p1000), 0.0);
    EXPECT_EQ(diagonal(0x1p1000, 0x1p1000, 1.0), std::numeric_limits<double>::infinity());
    EXPECT_EQ(factored_determinant(std::vector<double>{0x1p-1074}, 1), 0x1p-1074);
}

TEST(kdet_test, simple_matrices) {
    EXPECT_EQ(factored_determinant({}, 0), 1.0);
    EXPECT_EQ(factored_determinant({-3.5}, 1), -3.5);
    EXPECT_EQ(factored_determinant({2.0, 0.0, 0.0, -4.0}, 2), -8.0);
    EXPECT_EQ(factored_determinant({1.0, 4.0, 2.0, 6.0}, 2), -2.0);
    EXPECT_TRUE(std::isnan(factored_determinant({0.0, std::nan(""), 1.0, 0.0}, 2)));
}

TEST(kdet_test, each_exchange_of_rows_changes_the_sign) {
    // These are all 120 orders of five rows.
    std::vector<std::size_t> order(5);
    std::iota(order.begin(), order.end(), 0U);
    do {
        std::vector<double> P(25, 0.0);
        int inversions = 0;
        for (std::size_t i = 0; i < 5; ++i) {
            P[i * 5 + order[i]] = 1.0;
            for (std::size_t k = 0; k < i; ++k)
                inversions += order[k] > order[i] ? 1 : 0;
        }
        EXPECT_EQ(factored_determinant(P, 5), inversions % 2 == 0 ? 1.0 : -1.0);
    } while (std::next_permutation(order.begin(), order.end()));
}

// The derivative of det A by an element is its cofactor, and |L| |U| <= n 2^(n - 1) max|a| bounds the errors of the
// elements; in practice |L| |U| is a few times |A|.
TEST(kdet_test, determinants_of_integers) {
    std::mt19937 random(1);
    for (std::size_t n = 1; n <= 8; ++n)
        for (int i = 0; i < 100; ++i) {
            const auto A = random_integers(random, n * n, 9);
            double cofactors = 0;
            for (std::size_t row = 1; row <= n; ++row)
                for (std::size_t column = 1; column <= n; ++column)
                    cofactors += std::abs(exact_determinant(struck_out(A, n, row, column), n - 1));
            EXPECT_NEAR(factored_determinant(A, n), exact_determinant(A, n),
                        static_cast<double>(n) * epsilon * 9 * cofactors)
                << n;
        }
}

TEST(kdet_test, agrees_with_the_explicit_formulas) {
    std::mt19937 random(2);
    for (std::size_t n = 1; n <= 3; ++n)
        for (int i = 0; i < 200; ++i) {
            const auto A = support::random_reals(random, n * n);
            EXPECT_NEAR(factored_determinant(A, n), determinant({A, n, n}), 50 * epsilon);
        }
}

// The elements are 1/(i + j - 1); the determinant is a quotient of factorials.
TEST(kdet_test, a_notoriously_difficult_matrix) {
    const double exact[] = {1.0, 1.0 / 12, 1.0 / 2160, 1.0 / 6048000, 1.0 / 266716800000.0};
    double condition = 1;
    for (std::size_t n = 1; n <= 5; ++n, condition *= 34) {
        std::vector<double> H;
        for (std::size_t j = 1; j <= n; ++j)
            for (std::size_t i = 1; i <= n; ++i)
                H.push_back(1.0 / static_cast<double>(i + j - 1));
        EXPECT_NEAR(factored_determinant(H, n) / exact[n - 1], 1.0, 4 * epsilon * condition) << n;
    }
}

} // namespace
