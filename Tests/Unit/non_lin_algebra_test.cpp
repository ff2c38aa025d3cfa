// SPDX-License-Identifier: MIT
#include "Algebra/non_lin_algebra.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

using namespace non_lin_algebra;
using complex = std::complex<double>;
using wide = std::complex<long double>;

constexpr double epsilon = std::numeric_limits<double>::epsilon();

void expect_roots(const std::array<complex, 3> &computed, const std::array<complex, 3> &expected, double allowed) {
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(computed[i].real(), expected[i].real(), allowed) << "root " << i + 1;
        EXPECT_NEAR(computed[i].imag(), expected[i].imag(), allowed) << "root " << i + 1;
    }
}

TEST(non_lin_algebra_test, three_zeros) {
    for (const complex root : solve_eq_3(0.0, 0.0, 0.0))
        EXPECT_EQ(root, complex(0.0, 0.0));
}

TEST(non_lin_algebra_test, three_real_roots_come_largest_smallest_middle) {
    expect_roots(solve_eq_3(-6.0, 11.0, -6.0), {3.0, 1.0, 2.0}, 16 * epsilon);
    expect_roots(solve_eq_3(0.0, -7.0, 6.0), {2.0, -3.0, 1.0}, 16 * epsilon);
    expect_roots(solve_eq_3(6.0, 11.0, 6.0), {-1.0, -3.0, -2.0}, 16 * epsilon);
    expect_roots(solve_eq_3(0.0, -4.0, 0.0), {2.0, -2.0, 0.0}, 16 * epsilon);
    for (const complex root : solve_eq_3(-6.0, 11.0, -6.0))
        EXPECT_EQ(root.imag(), 0.0);
}

TEST(non_lin_algebra_test, a_single_real_root_comes_first_then_the_positive_imaginary_part) {
    const double half_root_3 = std::sqrt(3.0) / 2;
    expect_roots(solve_eq_3(0.0, 0.0, -1.0), {1.0, {-0.5, half_root_3}, {-0.5, -half_root_3}}, 4 * epsilon);
    // These are (x + 1)(x^2 + 4) and (x - 5)(x^2 - 2 x + 10).
    expect_roots(solve_eq_3(1.0, 4.0, 4.0), {-1.0, {0.0, 2.0}, {0.0, -2.0}}, 16 * epsilon);
    expect_roots(solve_eq_3(-7.0, 20.0, -50.0), {5.0, {1.0, 3.0}, {1.0, -3.0}}, 32 * epsilon);
    // x^3 + 8 shows that the cube roots keep their sign.
    expect_roots(solve_eq_3(0.0, 0.0, 8.0), {-2.0, {1.0, std::sqrt(3.0)}, {1.0, -std::sqrt(3.0)}}, 8 * epsilon);
    const auto roots = solve_eq_3(1.0, 4.0, 4.0);
    EXPECT_EQ(roots[0].imag(), 0.0);
    EXPECT_EQ(roots[1], std::conj(roots[2]));
}

TEST(non_lin_algebra_test, a_triple_root_whose_coefficients_are_exact) {
    for (const double root : {1.0, -2.0, 3.0, -0.5})
        for (const complex found : solve_eq_3(-3 * root, 3 * root * root, -root * root * root))
            EXPECT_EQ(found, complex(root, 0.0));
}

// For (x - 1)^2 (x + 2), p = -3, q = 2 and D = 0 are exact.
TEST(non_lin_algebra_test, a_double_root_comes_after_the_single_one) {
    for (const auto &[c, single] : {std::pair(2.0, -2.0), {-2.0, 2.0}}) {
        const auto roots = solve_eq_3(0.0, -3.0, c);
        EXPECT_DOUBLE_EQ(roots[0].real(), single);
        EXPECT_DOUBLE_EQ(roots[1].real(), -single / 2);
        EXPECT_DOUBLE_EQ(roots[2].real(), -single / 2);
        for (const complex root : roots)
            EXPECT_EQ(root.imag(), 0.0);
    }
}

// Where D is rounded, a double root splits by half of the digits, into two real roots or into a complex pair.
TEST(non_lin_algebra_test, a_double_root_with_rounded_coefficients_is_found_to_half_the_digits) {
    for (const double twice : {0.1, 0.3, -1.7})
        for (const double once : {0.7, -0.9, 2.3}) {
            SCOPED_TRACE(testing::Message() << twice << " twice, " << once);
            const auto roots = solve_eq_3(-(2 * twice + once), twice * twice + 2 * twice * once, -twice * twice * once);
            int near_twice = 0, near_once = 0;
            for (const complex root : roots) {
                near_twice += std::abs(root - twice) < 1e-6;
                near_once += std::abs(root - once) < 1e-13;
            }
            EXPECT_EQ(near_twice, 2);
            EXPECT_EQ(near_once, 1);
        }
}

/// The root next to x by Newton's method at long double.
wide polished(wide x, long double a, long double b, long double c) {
    for (int i = 0; i < 60; ++i) {
        const wide slope = (3.0L * x + 2 * a) * x + b;
        if (slope == wide(0))
            break;
        x -= (((x + a) * x + b) * x + c) / slope;
    }
    return x;
}

/// The error that the smaller of Cardano's two cube roots can have: its radicand is the difference of q/2 and r, which
/// cancel where p is small.
double cancelled(double p, double q) {
    const double large = std::cbrt(std::abs(q) / 2 + std::sqrt(p * p * p / 27 + q * q / 4));
    const double small = std::abs(p) / (3 * large);
    const double error = epsilon * large * large * large;
    return std::min(error / (3 * small * small), std::cbrt(error));
}

// Compares roots with those at long double. An error in the coefficients p and q, of some units of their terms, moves a
// root x by that error over the slope at x.
TEST(non_lin_algebra_test, random_cubics_against_long_double) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> any(-4.0, 4.0);
    int real_roots = 0, pairs = 0;
    for (int i = 0; i < 20000; ++i) {
        const double a = any(random), b = any(random), c = any(random);
        const auto roots = solve_eq_3(a, b, c);
        const double q_terms = (2 * std::abs(a * a * a) + 9 * std::abs(a * b) + 27 * std::abs(c)) / 27;
        const double p_terms = std::abs(b) + a * a / 3;
        const double p = (3 * b - a * a) / 3;
        const double q = ((2 * a * a - 9 * b) * a + 27 * c) / 27;
        const double lost = roots[1].imag() == 0.0 ? 0.0 : cancelled(p, q);
        wide sum = 0, product = 1;
        for (const complex root : roots) {
            const wide exact = polished(root, a, b, c);
            const complex x(static_cast<double>(exact.real()), static_cast<double>(exact.imag()));
            const double y = std::abs(x + a / 3);
            const double slope = std::abs((3.0 * x + 2 * a) * x + b);
            const double moved = (q_terms + p_terms * y + y * y * y) * epsilon / slope;
            EXPECT_LE(std::abs(root - x),
                      16 * (moved + lost + (std::abs(x) + std::abs(a) + std::sqrt(std::abs(p))) * epsilon))
                << a << " " << b << " " << c << ": " << root;
            sum += exact;
            product *= exact;
        }
        // All three roots were found, and none twice.
        EXPECT_LE(std::abs(sum + static_cast<long double>(a)), 1e-12L) << a << " " << b << " " << c;
        EXPECT_LE(std::abs(product + static_cast<long double>(c)), 1e-11L) << a << " " << b << " " << c;
        if (roots[1].imag() == 0.0) {
            ++real_roots;
            EXPECT_GE(roots[0].real(), roots[2].real());
            EXPECT_GE(roots[2].real(), roots[1].real());
        } else {
            ++pairs;
            EXPECT_GT(roots[1].imag(), 0.0);
            EXPECT_EQ(roots[2], std::conj(roots[1]));
        }
    }
    EXPECT_GT(real_roots, 2000);
    EXPECT_GT(pairs, 2000);
}

// Rounding lifts the cosine of the angle above 1.
TEST(solve_eq_3, a_double_root_within_rounding_has_no_NaN) {
    for (const auto &root :
         non_lin_algebra::solve_eq_3(-0.46064433838650665, -2.1388603932965173, -0.92854248822036234)) {
        EXPECT_LT(std::abs(((root - 0.46064433838650665) * root - 2.1388603932965173) * root - 0.92854248822036234),
                  1e-12);
        EXPECT_EQ(root.imag(), 0.0);
    }
}

} // namespace
