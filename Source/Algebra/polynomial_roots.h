// SPDX-License-Identifier: MIT
// The real roots of a polynomial in an interval.
//
// Computes   the roots of c_0 + c_1 x + ... + c_n x^n between `low` and `high`, ascending
// Given      the coefficients
// Accuracy   rounding of the polynomial's value. Between the roots of its derivative the polynomial is monotonic, so
//            that every change of sign is found by bisection and Newton's method; a double root, at which the computed
//            sign does not change, is not reported
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace polynomial_roots {

template <class Real, std::size_t count>
struct found {
    std::array<Real, count> root{};
    std::size_t number = 0;
};

template <class Real, std::size_t count>
Real value(const std::array<Real, count> &c, Real x) {
    Real result = c[count - 1];
    for (std::size_t k = count - 1; k-- > 0;)
        result = result * x + c[k];
    return result;
}

template <class Real, std::size_t count>
std::array<Real, count - 1> derivative(const std::array<Real, count> &c) {
    std::array<Real, count - 1> result;
    for (std::size_t k = 1; k < count; ++k)
        result[k - 1] = c[k] * static_cast<Real>(k);
    return result;
}

/// The root between two places at which the polynomial has different signs.
template <class Real, std::size_t count>
Real between(const std::array<Real, count> &c, Real low, Real high) {
    const std::array<Real, count - 1> slope = derivative(c);
    const bool rises = value(c, high) > 0;
    Real x = (low + high) / 2;
    for (int step = 0; step < 200; ++step) {
        const Real y = value(c, x);
        ((y > 0) == rises ? high : low) = x;
        Real next = x - y / value(slope, x);
        if (!(next > low && next < high))
            next = (low + high) / 2;
        if (next == x || next == low || next == high)
            return next;
        x = next;
    }
    return x;
}

template <class Real, std::size_t count>
found<Real, count - 1> within(const std::array<Real, count> &c, Real low, Real high) {
    found<Real, count - 1> result;
    const auto take = [&](Real a, Real b) {
        const Real at_a = value(c, a);
        const Real at_b = value(c, b);
        if ((at_a > 0) != (at_b > 0) && at_a != 0)
            result.root[result.number++] = between(c, a, b);
    };
    if constexpr (count == 2) {
        take(low, high);
    } else {
        const auto turns = within(derivative(c), low, high);
        Real begin = low;
        for (std::size_t k = 0; k < turns.number; ++k) {
            take(begin, turns.root[k]);
            begin = turns.root[k];
        }
        take(begin, high);
    }
    return result;
}

} // namespace polynomial_roots
