// SPDX-License-Identifier: MIT
#include "Studies/points.h"

#include "Studies/units.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace studies {
namespace {

std::optional<point> solved(const ostrel::fluid &fluid, ostrel::input_pair pair, double first, double second) {
    const auto state = fluid.try_solve(pair, first, second);
    if (!state)
        return std::nullopt;
    std::array<double, 6> values{};
    if (!fluid.try_outputs("t, p, h, s, d, q", std::span(&*state, 1), values))
        return std::nullopt;
    return point{*state, values[0], values[1], values[2], values[3], values[4], values[5]};
}

/// -1, 0 or 1: on which side of a saturated phase a property is.
int side_of(double value, double saturated, double scale) {
    constexpr double as_good_as_equal = 1e-10;
    const double difference = value - saturated;
    if (!(std::abs(difference) > as_good_as_equal * scale)) // also a NaN, where there is no saturation
        return 0;
    return difference < 0 ? -1 : 1;
}

} // namespace

point point_at(const ostrel::fluid &fluid, ostrel::input_pair pair, double first, double second,
               std::string_view place) {
    if (auto found = solved(fluid, pair, first, second))
        return *found;
    throw impossible(std::string(place) + ": " + std::string(ostrel::last_message()));
}

void need_equilibrium(const ostrel::fluid &fluid, std::string_view what) {
    if (fluid.text("options").find("states=stable") == std::string_view::npos)
        throw impossible(std::string(what) + " needs states of equilibrium; open the fluid with states=stable, the "
                                             "standard");
}

std::optional<saturated_points> saturation_at(const ostrel::fluid &fluid, double p) {
    const auto liquid = solved(fluid, "pq", p, 0);
    const auto vapor = solved(fluid, "pq", p, 1);
    if (!liquid || !vapor)
        return std::nullopt;
    return saturated_points{*liquid, *vapor};
}

std::vector<crossing> crossings(const ostrel::fluid &fluid, const path &along, point_property watched,
                                std::size_t intervals) {
    const double p_crit = fluid.constant("p_crit");
    const auto critical = saturation_at(fluid, p_crit);
    if (!critical)
        return {}; // an ideal model
    // Above the critical pressure both phases continue as the critical state, so that a path that comes from there
    // changes its side once.
    const auto saturation = [&](double p) { return p < p_crit ? saturation_at(fluid, p) : critical; };
    struct node {
        double at;
        std::array<int, 2> sides;
    };
    const auto node_at = [&](double at) {
        const point on = along(at);
        node result = {at, {}};
        if (const auto there = saturation(on.p)) {
            const double scale = std::abs(there->vapor.*watched - there->liquid.*watched) +
                                 1e-3 * std::abs(critical->vapor.*watched - on.*watched);
            result.sides[0] = side_of(on.*watched, there->liquid.*watched, scale);
            result.sides[1] = side_of(on.*watched, there->vapor.*watched, scale);
        }
        return result;
    };
    constexpr std::size_t liquid = 0;
    constexpr std::size_t vapor = 1;
    std::vector<crossing> found;
    // The last node that was not on the line itself, for each phase.
    std::array<node, 2> left = {node_at(0), node_at(0)};
    for (std::size_t i = 1; i <= intervals; ++i) {
        const node right = node_at(static_cast<double>(i) / static_cast<double>(intervals));
        for (const std::size_t phase : {liquid, vapor}) {
            if (right.sides[phase] == 0)
                continue;
            const node from = std::exchange(left[phase], right);
            if (from.sides[phase] * right.sides[phase] >= 0)
                continue;
            const auto distance = [&](double at) {
                const point on = along(at);
                const auto there = saturation(on.p);
                return there ? on.*watched - (phase == vapor ? there->vapor : there->liquid).*watched
                             : std::numeric_limits<double>::quiet_NaN();
            };
            const double at = root(distance, from.at, right.at);
            const double p = along(at).p;
            if (p < p_crit)
                if (const auto there = saturation_at(fluid, p))
                    found.push_back({at, phase == vapor ? there->vapor : there->liquid, phase == vapor});
        }
    }
    std::ranges::sort(found, {}, &crossing::at);
    return found;
}

std::vector<point> sampled(const path &along, const std::vector<crossing> &corners, std::size_t intervals) {
    auto next = corners.begin();
    std::vector<point> points;
    for (std::size_t i = 0; i <= intervals; ++i) {
        const double at = static_cast<double>(i) / static_cast<double>(intervals);
        for (; next != corners.end() && next->at < at; ++next)
            points.push_back(next->saturated);
        points.push_back(along(at));
    }
    return points;
}

double root(const std::function<double(double)> &function, double a, double b) {
    // Regula falsi in the form of Illinois; every fourth step halves the interval, so that it always ends.
    constexpr double last_digits = 4 * std::numeric_limits<double>::epsilon();
    double value_a = function(a);
    double value_b = function(b);
    if (value_a == 0)
        return a;
    for (int step = 0; step < 200 && value_b != 0; ++step) {
        const double middle = a + (b - a) / 2;
        double next = step % 4 == 3 ? middle : b - value_b * (b - a) / (value_b - value_a);
        if (!(next > std::min(a, b) && next < std::max(a, b)))
            next = middle;
        const double moved = std::abs(next - b);
        const double value = function(next);
        if ((value < 0) != (value_b < 0)) {
            a = b;
            value_a = value_b;
        } else {
            value_a /= 2;
        }
        b = next;
        value_b = value;
        if (moved <= last_digits * std::abs(b) || std::abs(b - a) <= last_digits * std::abs(b))
            break;
    }
    return b;
}

double argument_of_least(const std::function<double(double)> &function, double a, double b) {
    const double golden = (std::sqrt(5.0) - 1) / 2;
    double inner_a = b - golden * (b - a);
    double inner_b = a + golden * (b - a);
    double value_a = function(inner_a);
    double value_b = function(inner_b);
    for (int step = 0; step < 40; ++step) {
        if (value_a < value_b) {
            b = std::exchange(inner_b, inner_a);
            value_b = value_a;
            inner_a = b - golden * (b - a);
            value_a = function(inner_a);
        } else {
            a = std::exchange(inner_a, inner_b);
            value_a = value_b;
            inner_b = a + golden * (b - a);
            value_b = function(inner_b);
        }
    }
    return value_a < value_b ? inner_a : inner_b;
}

namespace {

std::string text_of(double value, std::string_view unit) {
    std::array<char, 32> text{};
    char *const end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6).ptr;
    return std::string(text.data(), end) + (unit == "1" ? "" : " " + std::string(unit));
}

} // namespace

std::string shown(double value, std::string_view si) {
    const unit in = shown_unit(si, unit_system::engineering);
    return text_of(in_unit(value, in), in.name);
}

std::string shown_difference(double value, std::string_view si) {
    unit in = shown_unit(si, unit_system::engineering);
    if (in.offset != 0)
        in = shown_unit(si, unit_system::si);
    return text_of(in_unit(value, in), in.name);
}

} // namespace studies
