// SPDX-License-Identifier: MIT
// Determinants of matrices of small integers, without any rounding.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace support {

/// The determinant by Bareiss's elimination, whose divisions leave no remainder. The elements stand in column order;
/// all minors must be below 2^31.
inline double exact_determinant(const std::vector<double> &elements, std::size_t n) {
    std::vector<std::int64_t> a(elements.begin(), elements.end());
    const auto at = [&](std::size_t i, std::size_t j) -> std::int64_t & { return a[j * n + i]; };
    std::int64_t before = 1, sign = 1;
    for (std::size_t k = 0; k + 1 < n; ++k) {
        std::size_t pivot = k;
        while (pivot < n && at(pivot, k) == 0)
            ++pivot;
        if (pivot == n)
            return 0.0;
        if (pivot != k) {
            sign = -sign;
            for (std::size_t j = 0; j < n; ++j)
                std::swap(at(k, j), at(pivot, j));
        }
        for (std::size_t i = k + 1; i < n; ++i)
            for (std::size_t j = k + 1; j < n; ++j)
                at(i, j) = (at(i, j) * at(k, k) - at(i, k) * at(k, j)) / before;
        before = at(k, k);
    }
    return n == 0 ? 1.0 : static_cast<double>(sign * at(n - 1, n - 1));
}

/// The elements of a matrix without one row and one column, which both count from 1.
inline std::vector<double> struck_out(const std::vector<double> &elements, std::size_t n, std::size_t row,
                                      std::size_t column) {
    std::vector<double> left;
    for (std::size_t i = 0; i < n * n; ++i)
        if (i % n != row - 1 && i / n != column - 1)
            left.push_back(elements[i]);
    return left;
}

inline std::vector<double> random_integers(std::mt19937 &random, std::size_t count, int largest) {
    std::uniform_int_distribution<int> any(-largest, largest);
    std::vector<double> result(count);
    std::generate(result.begin(), result.end(), [&] { return any(random); });
    return result;
}

inline std::vector<double> random_reals(std::mt19937 &random, std::size_t count) {
    std::uniform_real_distribution<double> any(-1.0, 1.0);
    std::vector<double> result(count);
    std::generate(result.begin(), result.end(), [&] { return any(random); });
    return result;
}

} // namespace support
