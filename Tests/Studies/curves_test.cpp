// SPDX-License-Identifier: MIT
#include "Studies/curves.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

using studies::axis_range;
using studies::diagram;
using studies::diagram_kind;
using studies::diagram_kinds;
using studies::diagram_point;
using studies::isoline;
using studies::make_diagram;
using studies::polyline;
using studies::property;
using studies::text_of;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool sanitized = true;
#elif defined(__has_feature)
constexpr bool sanitized = __has_feature(address_sanitizer);
#else
constexpr bool sanitized = false;
#endif

struct fluid_choice {
    const char *name;
    const char *options;
};
/// Wet, dry and quantum fluids, and equations whose saturation lines end.
constexpr fluid_choice choices[] = {
    {"water", ""},
    {"d5", ""},
    {"co2", ""},
    {"r134a", ""},
    {"helium", ""},
    {"water", "model=mh"},
    {"water", "model=cii"},
    {"mdm", "model=mh"},
    {"acetacid", "model=cii"},
    {"co2", "model=ig"},
    {"toluene", "model=vdw"},
};

ostrel::fluid opened(const fluid_choice &choice) {
    return ostrel::fluid::open(choice.name, ostrel::unchecked(choice.options));
}

/// Calls a function for each diagram of the choices.
template <class Check>
void for_each_diagram(Check check) {
    for (const fluid_choice &choice : choices) {
        const ostrel::fluid fluid = opened(choice);
        for (const diagram_kind &kind : diagram_kinds()) {
            SCOPED_TRACE(std::string(choice.name) + " " + choice.options + " " + std::string(kind.name));
            check(fluid, make_diagram(fluid, {.kind = &kind}));
        }
    }
}

double place(double value, axis_range in, property of) {
    return text_of(of).logarithmic ? std::log(value / in.low) / std::log(in.high / in.low)
                                   : (value - in.low) / (in.high - in.low);
}
/// In the square in which both axes go from 0 to 1.
diagram_point in_square(const diagram &all, diagram_point at) {
    return {place(at.x, all.x, all.kind->x), place(at.y, all.y, all.kind->y)};
}
double distance(const diagram &all, diagram_point a, diagram_point b) {
    const diagram_point first = in_square(all, a);
    const diagram_point second = in_square(all, b);
    return std::hypot(first.x - second.x, first.y - second.y);
}
bool visible(const diagram &all, diagram_point at) {
    const diagram_point square = in_square(all, at);
    return square.x >= 0 && square.x <= 1 && square.y >= 0 && square.y <= 1;
}
std::size_t points_of(const diagram &all) {
    std::size_t count = all.dome.size();
    for (const isoline &line : all.lines)
        for (const polyline &piece : line.pieces)
            count += piece.size();
    return count;
}

/// Finite numbers, no jumps, and neither empty nor crowded.
void check_shape(const diagram &all) {
    ASSERT_GE(all.lines.size(), 5U);
    ASSERT_LE(all.lines.size(), 45U);
    ASSERT_LE(points_of(all), 8000U);
    ASSERT_LT(all.x.low, all.x.high);
    ASSERT_LT(all.y.low, all.y.high);
    const auto check_piece = [&](const polyline &piece, const std::string &what) {
        ASSERT_GE(piece.size(), 2U) << what;
        for (std::size_t i = 0; i < piece.size(); ++i) {
            ASSERT_TRUE(std::isfinite(piece[i].x) && std::isfinite(piece[i].y)) << what;
            if (i > 0 && visible(all, piece[i - 1]) && visible(all, piece[i])) {
                // Every point is a state on the line, so that short chords leave no room for a stray one.
                ASSERT_LT(distance(all, piece[i - 1], piece[i]), 0.09)
                    << what << " " << piece[i].x << " " << piece[i].y;
            }
        }
    };
    for (const isoline &line : all.lines)
        for (const polyline &piece : line.pieces)
            check_piece(piece, std::string(text_of(line.what).letter) + " = " + std::to_string(line.value));
    if (!all.dome.empty()) {
        check_piece(all.dome, "dome");
        const std::size_t sides = all.kind->x == property::t ? 1 : 2;
        ASSERT_EQ(all.dome.size(), sides * all.dome_peak + 1);
    }
}

/// The value of a line's property at a point, from the handle alone; NaN if the point is no state.
double value_at(const ostrel::fluid &fluid, const diagram &all, property what, diagram_point at) {
    const std::string pair = std::string(text_of(all.kind->x).letter) + std::string(text_of(all.kind->y).letter);
    return fluid.try_value(ostrel::unchecked(pair), at.x, at.y, ostrel::unchecked(std::string(text_of(what).letter)))
        .value_or(NAN);
}

TEST(curves, points_lie_on_their_lines) {
    std::size_t checked = 0;
    for_each_diagram([&](const ostrel::fluid &fluid, const diagram &all) {
        // A move by so much along the axes.
        constexpr double step = 1e-7;
        const auto moved = [&](double value, axis_range in, property of) {
            return text_of(of).logarithmic ? value * (1 + step) : value + step * (in.high - in.low);
        };
        for (const isoline &line : all.lines)
            for (const polyline &piece : line.pieces)
                for (std::size_t i = 1; i + 1 < piece.size(); i += 3) {
                    const diagram_point at = piece[i];
                    const double here = value_at(fluid, all, line.what, at);
                    const double beside = value_at(fluid, all, line.what, {moved(at.x, all.x, all.kind->x), at.y});
                    const double above = value_at(fluid, all, line.what, {at.x, moved(at.y, all.y, all.kind->y)});
                    // On the saturation line of pt two phases have the same place.
                    const bool saturated =
                        all.kind->x == property::t &&
                        std::abs(fluid.try_value("pt", at.y, at.x, "psat").value_or(0) / at.y - 1) < 1e-6;
                    if (!std::isfinite(here) || !std::isfinite(beside) || !std::isfinite(above) || saturated)
                        continue;
                    ++checked;
                    EXPECT_LE(std::abs(here - line.value),
                              std::abs(here - beside) + std::abs(here - above) + 1e-9 * std::abs(line.value))
                        << text_of(line.what).letter << " = " << line.value << " at " << at.x << ", " << at.y;
                }
    });
    EXPECT_GT(checked, 15000U);
}

TEST(curves, shapes) {
    for_each_diagram([](const ostrel::fluid &, const diagram &all) { check_shape(all); });
}

TEST(curves, domes_are_closed_and_smooth) {
    for_each_diagram([](const ostrel::fluid &fluid, const diagram &all) {
        const bool has_line = std::isfinite(fluid.constant("t_sat_min"));
        ASSERT_EQ(!all.dome.empty(), has_line);
        ASSERT_EQ(all.critical.has_value(), has_line);
        if (!has_line)
            return;
        EXPECT_EQ(all.dome[all.dome_peak].x, all.critical->x);
        EXPECT_EQ(all.dome[all.dome_peak].y, all.critical->y);
        const std::string letters[] = {std::string(text_of(all.kind->x).letter),
                                       std::string(text_of(all.kind->y).letter)};
        const auto saturated = [&](double t, double q, int axis) {
            return fluid.try_value("tq", t, q, ostrel::unchecked(letters[axis])).value_or(NAN);
        };
        const double t_crit = fluid.constant("t_crit");
        EXPECT_EQ(all.critical->x, saturated(t_crit, 0, 0));
        EXPECT_EQ(all.critical->y, saturated(t_crit, 0, 1));
        EXPECT_NEAR(place(all.dome.front().x, all.x, all.kind->x),
                    place(saturated(all.t_low, 0, 0), all.x, all.kind->x), 1e-7);
        // The direction changes little from chord to chord.
        for (std::size_t i = 2; i < all.dome.size(); ++i) {
            const diagram_point a = in_square(all, all.dome[i - 2]);
            const diagram_point b = in_square(all, all.dome[i - 1]);
            const diagram_point c = in_square(all, all.dome[i]);
            const double first = std::hypot(b.x - a.x, b.y - a.y);
            const double second = std::hypot(c.x - b.x, c.y - b.y);
            const double turn = std::abs((b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x)) / (first * second);
            EXPECT_TRUE(std::min(first, second) < 2e-3 || turn < 0.25) << b.x << " " << b.y << " " << turn;
        }
    });
}

TEST(curves, corners_are_points) {
    const ostrel::fluid fluid = ostrel::fluid::open("toluene");
    const auto has_point = [](const isoline &line, double x, double y) {
        return std::ranges::any_of(line.pieces, [&](const polyline &piece) {
            return std::ranges::any_of(piece, [&](diagram_point at) { return at.x == x && at.y == y; });
        });
    };
    std::size_t isobars = 0;
    for (const isoline &line : make_diagram(fluid, {.kind = studies::diagram_kind_named("ts"), .families = "p"}).lines)
        for (const double q : {0.0, 1.0})
            if (const auto corner = fluid.try_values<"s, t">("pq", line.value, q)) {
                ++isobars;
                EXPECT_TRUE(has_point(line, (*corner)[0], (*corner)[1])) << line.value << " " << q;
            }
    EXPECT_GE(isobars, 8U);
    std::size_t isotherms = 0;
    for (const isoline &line : make_diagram(fluid, {.kind = studies::diagram_kind_named("ph"), .families = "t"}).lines)
        for (const double q : {0.0, 1.0})
            if (const auto corner = fluid.try_values<"h, p">("tq", line.value, q)) {
                ++isotherms;
                EXPECT_TRUE(has_point(line, (*corner)[0], (*corner)[1])) << line.value << " " << q;
            }
    EXPECT_GE(isotherms, 6U);
}

TEST(curves, isentropes_of_a_dry_fluid_enter_the_dome_twice) {
    // The saturated vapor of a siloxane has the same entropy at two temperatures.
    const ostrel::fluid fluid = ostrel::fluid::open("d5");
    const double s = fluid.value("tq", 0.99 * fluid.constant("t_crit"), 1, "s");
    studies::diagram_request asked{.kind = studies::diagram_kind_named("ph"), .families = "s"};
    asked.values[static_cast<std::size_t>(property::s)] = {s};
    const diagram all = make_diagram(fluid, asked);
    ASSERT_EQ(all.lines.size(), 1U);
    std::size_t corners = 0;
    for (const polyline &piece : all.lines[0].pieces)
        for (const diagram_point at : piece)
            if (const auto vapor = fluid.try_value("pq", at.y, 1, "h"); vapor && std::abs(*vapor - at.x) < 1e-6)
                ++corners;
    EXPECT_EQ(corners, 2U);
}

TEST(curves, lines_are_monotonic) {
    for_each_diagram([](const ostrel::fluid &, const diagram &all) {
        for (const isoline &line : all.lines) {
            const bool by_x = (line.what == property::p && all.kind->x == property::s) ||
                              (line.what == property::t && all.kind->name == "pv");
            if (!by_x)
                continue;
            for (const polyline &piece : line.pieces)
                for (std::size_t i = 1; i < piece.size(); ++i)
                    ASSERT_LT(piece[i - 1].x, piece[i].x) << text_of(line.what).letter << " = " << line.value;
        }
    });
}

TEST(curves, limits_of_the_fluid) {
    const auto lowest = [](const fluid_choice &choice) {
        return make_diagram(opened(choice), {.kind = studies::diagram_kind_named("ts")});
    };
    const diagram water = lowest({"co2", ""});
    EXPECT_EQ(water.t_low_reason, studies::lowest_temperature::triple_point);
    EXPECT_EQ(water.t_low, ostrel::fluid::open("co2").constant("t_triple"));
    const diagram ended = lowest({"water", "model=cii"});
    EXPECT_EQ(ended.t_low_reason, studies::lowest_temperature::line_end);
    EXPECT_NEAR(ended.t_low, ostrel::fluid::open("water", "model=cii").constant("t_sat_min"), 1e-5);
    EXPECT_EQ(lowest({"co2", "model=mh"}).t_low_reason, studies::lowest_temperature::liquid);
    EXPECT_EQ(lowest({"d5", ""}).t_low_reason, studies::lowest_temperature::chosen);
    // Martin-Hou's helium has no saturation line.
    EXPECT_TRUE(lowest({"helium", "model=mh"}).dome.empty());
}

TEST(curves, extrapolated_heat_capacities) {
    // That of r236fa is fitted from 200 to 450 K, and its triple temperature is 179.6 K.
    const auto said = [](std::string_view kind, std::optional<axis_range> t, studies::unit_system units) {
        const ostrel::fluid fluid = ostrel::fluid::open("r236fa");
        const diagram made = make_diagram(fluid, {.kind = studies::diagram_kind_named(kind), .y = t});
        return studies::extrapolation_of(fluid, made, units);
    };
    const auto si = studies::unit_system::si;
    EXPECT_EQ(said("ts", axis_range{210, 420}, si),
              "h and s are extrapolated below 200 K, where the fit of the heat capacity begins.");
    EXPECT_EQ(said("ts", axis_range{210, 700}, studies::unit_system::engineering),
              "h and s are extrapolated below −73.15 °C and above 176.85 °C, where the fit of the heat capacity begins "
              "and ends.");
    EXPECT_EQ(said("pt", std::nullopt, si), "");
    const ostrel::fluid steam = ostrel::fluid::open("water");
    const diagram hot = make_diagram(steam, {.kind = studies::diagram_kind_named("ts"), .y = axis_range{300, 1300}});
    EXPECT_EQ(studies::extrapolation_of(steam, hot, si),
              "h and s are extrapolated above 1000 K, where the fit of the heat capacity ends.");
    EXPECT_EQ(studies::extrapolation_of(steam, make_diagram(steam, {.kind = hot.kind}), si), "");
}

TEST(curves, requests) {
    const ostrel::fluid fluid = ostrel::fluid::open("r134a");
    const diagram_kind *const ph = studies::diagram_kind_named("ph");
    const diagram asked =
        make_diagram(fluid, {.kind = ph, .x = axis_range{-2e5, 5e4}, .y = axis_range{1e5, 5e6}, .families = "q"});
    EXPECT_EQ(asked.x.low, -2e5);
    EXPECT_EQ(asked.y.high, 5e6);
    for (const isoline &line : asked.lines)
        EXPECT_EQ(line.what, property::q);
    EXPECT_EQ(asked.lines.size(), 9U);
    EXPECT_TRUE(make_diagram(fluid, {.kind = ph, .families = ""}).lines.empty());
    // Round values are those of the shown unit.
    for (const isoline &line : make_diagram(fluid, {.kind = ph, .families = "t"}).lines)
        EXPECT_NEAR(std::remainder(line.value - 273.15, 10), 0, 1e-9);
    for (const isoline &line :
         make_diagram(fluid, {.kind = ph, .families = "t", .units = studies::unit_system::si}).lines)
        EXPECT_NEAR(std::remainder(line.value, 10), 0, 1e-9);
    // A temperature that is asked for is drawn, unless the fluid has a limit there.
    const diagram cold =
        make_diagram(ostrel::fluid::open("d5"), {.kind = studies::diagram_kind_named("ts"), .y = axis_range{240, 700}});
    EXPECT_EQ(cold.t_low, 240);
    EXPECT_THROW(make_diagram(fluid, {.kind = ph, .x = axis_range{-9e9, -8e9}}), studies::no_diagram);
    EXPECT_EQ(studies::diagram_kind_named("st"), nullptr);
}

TEST(curves, round_values) {
    using studies::round_values;
    using list = std::vector<double>;
    EXPECT_EQ(round_values(0.11, 0.62, 6, false), (list{0.2, 0.3, 0.4, 0.5, 0.6}));
    EXPECT_EQ(round_values(-7, 12, 5, false), (list{-5, 0, 5, 10}));
    EXPECT_EQ(round_values(0.9, 25, 10, true), (list{1, 2, 5, 10, 20}));
    EXPECT_EQ(round_values(0.0009, 2, 8, true), (list{0.001, 0.005, 0.01, 0.05, 0.1, 0.5, 1}));
    EXPECT_EQ(round_values(1e-5, 10, 8, true), (list{1e-5, 1e-4, 1e-3, 0.01, 0.1, 1, 10}));
    EXPECT_TRUE(round_values(1, 1, 5, false).empty());
    EXPECT_TRUE(round_values(-1, 1, 5, true).empty());
    EXPECT_TRUE(round_values(NAN, 1, 5, false).empty());
    EXPECT_TRUE(round_values(0, INFINITY, 5, false).empty());
    for (const double high : {3.7, 41.0, 999.0, 1e5})
        for (const std::size_t most : {3U, 7U, 12U}) {
            const list values = round_values(-1.3, high, most, false);
            EXPECT_LE(values.size(), most);
            EXPECT_GE(values.size(), most / 3);
        }
}

TEST(curves, states_in_a_plane) {
    const ostrel::fluid fluid = ostrel::fluid::open("water");
    const double p[] = {1e5, -1.0};
    const double t[] = {400, 500};
    ostrel::state states[2];
    EXPECT_FALSE(fluid.try_solve("pt", p, t, states));
    const polyline points = studies::in_plane(fluid, *studies::diagram_kind_named("ph"), states);
    ASSERT_EQ(points.size(), 2U);
    EXPECT_EQ(points[0].x, fluid.value("pt", 1e5, 400, "h"));
    EXPECT_EQ(points[0].y, 1e5);
    EXPECT_TRUE(std::isnan(points[1].x) && std::isnan(points[1].y));
}

TEST(curves, all_fluids) {
    // With sanitizers all of them would take minutes.
    constexpr std::size_t step = sanitized ? 12 : 1;
    const std::vector<ostrel::found_fluid> fluids = ostrel::find("");
    ASSERT_GT(fluids.size(), 100U);
    for (std::size_t i = 0; i < fluids.size(); i += step) {
        const ostrel::fluid fluid = ostrel::fluid::open(fluids[i].file);
        for (const diagram_kind &kind : diagram_kinds()) {
            SCOPED_TRACE(fluids[i].file + " " + std::string(kind.name));
            const diagram all = make_diagram(fluid, {.kind = &kind});
            check_shape(all);
            EXPECT_FALSE(all.dome.empty());
        }
    }
}

} // namespace
