// SPDX-License-Identifier: MIT
// Searching a column of the saturation table: the neighbours of a value, and the range of the column.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace thermodynamics {

/// A place between the elements i1 and i2 of a vector; w is the weight of i2.
struct interpolation {
    std::size_t i1;
    std::size_t i2;
    double w;
    double of(std::span<const double> y) const { return (1.0 - w) * y[i1] + w * y[i2]; }
};

/// The neighbours of x, which must not be out of range; xx must have two elements or more.
interpolation locate(double x, std::span<const double> xx);
/// Whether x lies outside the elements; a NaN never does.
bool out_of_range(double x, std::span<const double> xx);
/// Reports the range of a vector in errmsg; its elements are multiplied by `scale`, and then `shift` is subtracted.
void report_range(std::string_view what, std::span<const double> xx, double scale, double shift,
                  std::string_view symbol, std::string_view unit);

} // namespace thermodynamics
