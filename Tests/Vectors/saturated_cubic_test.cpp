// SPDX-License-Identifier: MIT
// The saturation lines of the cubic equations without dimensions, against points of high-precision arithmetic between
// the nodes of the library's table. A line of the file has
//   family tau ln(Pi/Pi_c) r_l/r_c r_g/Pi
#include "Equations/saturated_cubic.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

struct point {
    const saturated_cubic::family *family;
    std::string where;
    double tau;
    long double log_Pi, r_l, r_g_per_Pi;
};
std::vector<point> points() {
    const std::map<std::string, const saturated_cubic::family *> families = {
        {"van_der_waals", &saturated_cubic::van_der_waals},
        {"redlich_kwong", &saturated_cubic::redlich_kwong},
        {"peng_robinson", &saturated_cubic::peng_robinson}};
    std::ifstream in(OSTREL_TESTS "/Vectors/saturated_cubic.txt");
    std::vector<point> result;
    for (std::string text; std::getline(in, text);) {
        if (text.starts_with('#'))
            continue;
        std::istringstream line(text);
        std::string name;
        point one{};
        line >> name >> one.tau >> one.log_Pi >> one.r_l >> one.r_g_per_Pi;
        EXPECT_TRUE(line) << text;
        one.family = families.at(name);
        one.where = text;
        result.push_back(one);
    }
    return result;
}

double relative(long double found, long double truth) {
    return static_cast<double>(std::abs(found / truth - 1));
}

TEST(saturated_cubic, meets_points_of_high_precision) {
    double largest[3] = {};
    for (const point &one : points()) {
        SCOPED_TRACE(one.where);
        const auto found = saturated_cubic::saturation(*one.family, one.tau, 1.0 - one.tau);
        const long double r_l = one.r_l * one.family->r_c;
        const long double r_g = one.r_g_per_Pi * one.family->Pi_c * std::exp(one.log_Pi);
        // Near the critical point both r depend on 1 - tau, whose last place tau has.
        const double conditioning = epsilon / std::sqrt(1.0 - one.tau);
        EXPECT_LT(relative(found.log_Pi, one.log_Pi), 8 * epsilon);
        EXPECT_LT(relative(found.r_l, r_l), 8 * epsilon + conditioning);
        EXPECT_LT(relative(found.r_g, r_g),
                  (8 + 4 * std::abs(static_cast<double>(one.log_Pi))) * epsilon + conditioning);
        largest[0] = std::max(largest[0], relative(found.log_Pi, one.log_Pi));
        largest[1] = std::max(largest[1], relative(found.r_l, r_l));
        largest[2] = std::max(largest[2], relative(found.r_g, r_g));
    }
    RecordProperty("largest", std::to_string(largest[0] / epsilon) + " " + std::to_string(largest[1] / epsilon) + " " +
                                  std::to_string(largest[2] / epsilon));
}

TEST(saturated_cubic, has_three_families_down_to_the_lowest_pressures) {
    std::map<const saturated_cubic::family *, int> count;
    double lowest = 0;
    for (const point &one : points()) {
        ++count[one.family];
        lowest = std::min(lowest, static_cast<double>(one.log_Pi));
    }
    EXPECT_EQ(count.size(), 3U);
    for (const auto &[family, number] : count)
        EXPECT_EQ(number, 76);
    EXPECT_LT(lowest, -500);
}

// The slope is that of the line, by differences.
TEST(saturated_cubic, slope_of_the_logarithm) {
    for (const point &one : points()) {
        SCOPED_TRACE(one.where);
        const double away = 1.0 - one.tau;
        const double step = 1e-4 * std::min(away, one.tau);
        const auto at = [&](double change) {
            return saturated_cubic::saturation(*one.family, one.tau + change, away - change).log_Pi;
        };
        const double slope = (8 * (at(step) - at(-step)) - (at(2 * step) - at(-2 * step))) / (12 * step) * one.tau;
        EXPECT_NEAR(saturated_cubic::saturation(*one.family, one.tau, away).slope / slope, 1, 1e-8);
    }
}

// The phases of a line lie on the isotherm at its pressure, on both sides of r_c.
TEST(saturated_cubic, phases_are_roots_of_the_isotherm) {
    for (const point &one : points()) {
        SCOPED_TRACE(one.where);
        const double away = 1.0 - one.tau;
        const auto found = saturated_cubic::saturation(*one.family, one.tau, away);
        const double Pi = one.family->Pi_c * std::exp(found.log_Pi);
        const double from_critical = one.family->Pi_c * std::expm1(found.log_Pi);
        const saturated_cubic::isotherm at(*one.family, one.tau, away);
        const double conditioning = 4 * epsilon / away;
        if (Pi > 0) {
            EXPECT_LT(relative(at.gas(Pi, from_critical), found.r_g), 1e-12 + conditioning);
        }
        EXPECT_LT(relative(at.liquid(Pi, from_critical), found.r_l), 1e-12 + conditioning);
        EXPECT_LT(found.r_g, at.gas_spinodal());
        EXPECT_LT(at.gas_spinodal(), one.family->r_c);
        EXPECT_GT(at.liquid_spinodal(), one.family->r_c);
        EXPECT_GT(found.r_l, at.liquid_spinodal());
    }
}

} // namespace
