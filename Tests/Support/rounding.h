// SPDX-License-Identifier: MIT
// Judges rounding errors: with a number that carries the bound of its own error, and with the complex step.
#pragma once

#include <array>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <limits>

namespace support {

/// Half a unit in the last place of 1: the largest relative error of one operation.
inline constexpr double unit_roundoff = std::numeric_limits<double>::epsilon() / 2;

/// A double and the bound of its rounding error in units of `unit_roundoff`, to first order. Every operation multiplies
/// the bounds of its operands by the magnitudes of its partial derivatives, and adds its own error. Functions of the
/// mathematical library are assumed to be correct to one unit in the last place. Reference: J. H. Wilkinson, Rounding
/// Errors in Algebraic Processes (1963).
struct tracked {
    double value = 0;
    double bound = 0;

    tracked() = default;
    tracked(double exact) : value(exact) {}
    tracked(double computed, double error) : value(computed), bound(error) {}

    tracked &operator+=(const tracked &other) { return *this = *this + other; }
    tracked &operator*=(const tracked &other) { return *this = *this * other; }

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
    friend tracked expm1(const tracked &a) { return from_library(std::expm1(a.value), std::exp(a.value) * a.bound); }
    friend tracked sin(const tracked &a) {
        return from_library(std::sin(a.value), std::abs(std::cos(a.value)) * a.bound);
    }
    friend tracked log(const tracked &a) { return from_library(std::log(a.value), a.bound / std::abs(a.value)); }
    friend tracked pow(const tracked &a, double exponent) {
        const double value = std::pow(a.value, exponent);
        return from_library(value, std::abs(exponent * value / a.value) * a.bound);
    }
    friend tracked pow(const tracked &a, const tracked &exponent) { return pow(a, exponent.value); }
    friend tracked sqrt(const tracked &a) {
        const double value = std::sqrt(a.value);
        return rounded(value, a.bound / (2 * value));
    }
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

inline constexpr double step_length = 1e-40; // in the imaginary part
/// df/dx by the complex step. Only the rounding of the steps of f makes an error, since no difference of f is taken.
template <class Function>
double complex_step(Function f, double x) {
    return f(std::complex<double>(x, step_length)).imag() / step_length;
}

/// A value and its derivative, computed with the rules of calculus. To first order they are the real and the imaginary
/// part of a complex step. They give the bound of its rounding error, which can be large where the derivatives of parts
/// of the function cancel.
struct dual {
    tracked value = 0;
    tracked slope = 0;

    dual() = default;
    dual(double constant) : value(constant) {}
    dual(const tracked &value_, const tracked &slope_) : value(value_), slope(slope_) {}

    dual &operator+=(const dual &other) { return *this = *this + other; }
    dual &operator*=(const dual &other) { return *this = *this * other; }

    friend dual operator-(const dual &a) { return {-a.value, -a.slope}; }
    friend dual operator+(const dual &a, const dual &b) { return {a.value + b.value, a.slope + b.slope}; }
    friend dual operator-(const dual &a, const dual &b) { return {a.value - b.value, a.slope - b.slope}; }
    friend dual operator*(const dual &a, const dual &b) {
        return {a.value * b.value, a.value * b.slope + a.slope * b.value};
    }
    friend dual operator/(const dual &a, const dual &b) {
        return {a.value / b.value, (a.slope * b.value - a.value * b.slope) / (b.value * b.value)};
    }
    friend bool operator==(const dual &a, const dual &b) { return a.value == b.value; }
    friend dual exp(const dual &a) { return {exp(a.value), exp(a.value) * a.slope}; }
    friend dual log(const dual &a) { return {log(a.value), a.slope / a.value}; }
    friend dual sqrt(const dual &a) { return {sqrt(a.value), a.slope / (tracked(2.0) * sqrt(a.value))}; }
    friend dual pow(const dual &a, double exponent) {
        const tracked power = exp(exponent * log(a.value));
        return {power, power * (exponent * a.slope / a.value)};
    }
    friend dual pow(const dual &a, const dual &exponent) { return pow(a, exponent.value.value); }
    friend double real_part(const dual &a) { return a.value.value; }
};

/// The complex step of f at x with its bound. The error of a complex operation counts as three times that of the rule
/// of calculus for which it stands. Where nothing cancels, the bound is some 1e-15 of the value. f gives a number, or
/// an array of numbers that are stepped together.
inline tracked stepped(const std::complex<double> &step, const dual &ruled) {
    return {step.imag() / step_length, 3 * ruled.slope.bound};
}
template <std::size_t count>
std::array<tracked, count> stepped(const std::array<std::complex<double>, count> &steps,
                                   const std::array<dual, count> &ruled) {
    std::array<tracked, count> result;
    for (std::size_t i = 0; i < count; ++i)
        result[i] = stepped(steps[i], ruled[i]);
    return result;
}
template <class Function>
auto stepped(Function f, double x) -> decltype(stepped(f(std::complex<double>()), f(dual()))) {
    return stepped(f(std::complex<double>(x, step_length)), f(dual(x, 1.0)));
}

/// Checks a derivative against the complex step of f at x.
template <class Function>
void expect_derivative(const tracked &analytic, Function f, double x) {
    expect_same(analytic, stepped(f, x));
}

} // namespace support
