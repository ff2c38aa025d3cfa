// SPDX-License-Identifier: MIT
#include "Thermodynamics/saturation_table.h"

#include "Thermodynamics/ideal_specific_heat.h"
#include "Thermodynamics/thermodynamics.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace thermodynamics {

using ideal_specific_heat::errmsg;

std::vector<double> TTs;
std::vector<double> PPs;
std::vector<double> vvls;
std::vector<double> vvgs;

namespace {

std::string fixed_point(double value) {
    char text[400];
    auto *const end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 3).ptr;
    return {text, end};
}

/// The smallest and the largest element. A NaN behind the first element, which a failed build may leave, is ignored.
struct extremes {
    double low;
    double high;
    explicit extremes(std::span<const double> xx) : low(xx[0]), high(xx[0]) {
        for (const double x : xx) {
            low = std::min(low, x);
            high = std::max(high, x);
        }
    }
};

} // namespace

interpolation locate(double x, std::span<const double> xx) {
    const std::size_t N = xx.size();
    std::size_t k = 0;
    double nearest = std::abs(xx[0] - x);
    for (std::size_t i = 1; i < N; ++i) {
        const double distance = std::abs(xx[i] - x);
        if (distance < nearest) {
            nearest = distance;
            k = i;
        }
    }
    std::size_t first = k;
    if (k == N - 1)
        first = N - 2;
    else if (k > 0 && !((x < xx[k] && xx[k + 1] <= xx[k]) || (x >= xx[k] && xx[k] < xx[k + 1])))
        first = k - 1;
    return {first, first + 1, (x - xx[first]) / (xx[first + 1] - xx[first])};
}

bool out_of_range(double x, std::span<const double> xx) {
    // Nearly always x lies between the ends.
    if ((x >= xx.front() && x <= xx.back()) || (x <= xx.front() && x >= xx.back()))
        return false;
    const extremes range(xx);
    return x < range.low || x > range.high;
}

void report_range(std::string_view what, std::span<const double> xx, double scale, double shift,
                  std::string_view symbol, std::string_view unit) {
    const extremes range(xx);
    errmsg.report(
        {what, fixed_point(range.low * scale - shift), symbol, fixed_point(range.high * scale - shift), unit});
}

void seek_in_vector(double x, std::span<const double> xx, std::int32_t &i1, std::int32_t &i2, double &w) {
    if (xx.size() < 2 || out_of_range(x, xx)) {
        errmsg.report({"x is not in xx."});
        return;
    }
    const interpolation found = locate(x, xx);
    i1 = static_cast<std::int32_t>(found.i1 + 1);
    i2 = static_cast<std::int32_t>(found.i2 + 1);
    w = found.w;
}

} // namespace thermodynamics
