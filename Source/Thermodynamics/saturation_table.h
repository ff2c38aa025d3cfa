// SPDX-License-Identifier: MIT
// The saturation table: its place between two points, and its range.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace thermodynamics {

/// A place between two elements of a vector.
struct interpolation {
    std::size_t i1;
    std::size_t i2;
    double w;
    double of(std::span<const double> y) const { return (1.0 - w) * y[i1] + w * y[i2]; }
};

/// The neighbours of x, which lies between the elements of a vector of two or more.
interpolation locate(double x, std::span<const double> xx);
/// Whether x lies outside the elements; a NaN never does.
bool out_of_range(double x, std::span<const double> xx);
/// Reports in errmsg the range of a vector, its elements times `scale` less `shift`.
void report_range(std::string_view what, std::span<const double> xx, double scale, double shift,
                  std::string_view symbol, std::string_view unit);

} // namespace thermodynamics
