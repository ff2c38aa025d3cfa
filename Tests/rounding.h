// SPDX-License-Identifier: MIT
// Judging rounding errors: a number that carries the bound of its own error, and the complex step.
#pragma once

#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <limits>

namespace support {

/// Half a unit in the last place of 1: the largest relative error of one operation.
inline constexpr double unit_roundoff = std::numeric_limits<double>::epsilon() / 2;

/// A double and the bound of its rounding error in units of `unit_roundoff`, to first order. Every
/// operation hands on its operands' bounds as its derivative does and adds its own error: the sum of the
/// magnitudes of all terms. Functions of the mathematical library are taken to be good to one unit in
/// the last place. Reference: J. H. Wilkinson, Rounding Errors in Algebraic Processes (1963).
struct tracked {
    double value = 0;
    double bound = 0;

    tracked() = default;
    tracked(double exact) : value(exact) {}
    tracked(double computed, double error) : value(computed), bound(error) {}

    tracked &operator+=(const tracked &other) { return *this = *this + other; }

    friend tracked operator-(const tracked &a) { return {-a.value, a.bound}; }
    friend tracked operator+(const tracked &a, const tracked &b) {
        return rounded(a.value + b.value, a.bound + b.bound);
    }
    friend tracked operator-(const tracked &a, const tracked &b) { return a + -b; }
    friend tracked operator*(const tracked &a, const tracked &b) {
        return rounded(a.value * b.value, std::abs(a.value) * b.bound + std::abs(b.value) * a.bound);
    }
    friend tracked operator/(const tracked &a, const tracked &b) {
        const double value = a.value / b.value;
        return rounded(value, (a.bound + std::abs(value) * b.bound) / std::abs(b.value));
    }
    friend bool operator==(const tracked &a, const tracked &b) { return a.value == b.value; }
    friend tracked exp(const tracked &a) {
        const double value = std::exp(a.value);
        return from_library(value, value * a.bound);
    }
    friend tracked log(const tracked &a) { return from_library(std::log(a.value), a.bound / std::abs(a.value)); }
    friend tracked pow(const tracked &a, double exponent) {
        const double value = std::pow(a.value, exponent);
        return from_library(value, std::abs(exponent * value / a.value) * a.bound);
    }
    friend tracked pow(const tracked &a, const tracked &exponent) { return pow(a, exponent.value); }
    friend double real_part(const tracked &a) { return a.value; }

private:
    static tracked rounded(double value, double handed_on) { return {value, handed_on + std::abs(value)}; }
    static tracked from_library(double value, double handed_on) { return {value, handed_on + 2 * std::abs(value)}; }
};

/// Checks that two computations of the same number differ by no more than their rounding.
inline void expect_same(const tracked &a, const tracked &b) {
    const double allowed = (a.bound + b.bound) * unit_roundoff;
    EXPECT_LE(std::abs(a.value - b.value), allowed) << a.value << " and " << b.value;
}

/// df/dx by the complex step: exact to rounding, for there is no difference to cancel.
template <class Function>
double complex_step(Function f, double x) {
    constexpr double step = 1e-40;
    return f(std::complex<double>(x, step)).imag() / step;
}

/// Checks a derivative against its complex step. The step goes through the same terms with a few more
/// operations each, so it is given three times the error of the derivative; for a derivative whose terms
/// do not cancel all of this is some 1e-15 of its value.
inline void expect_derivative(const tracked &analytic, double stepped) {
    expect_same(analytic, {stepped, 3 * analytic.bound});
}

} // namespace support
