// SPDX-License-Identifier: MIT
#include "Studies/units.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using studies::in_unit;
using studies::parse_difference;
using studies::parse_value;
using studies::shown_unit;
using studies::unit_system;

TEST(units, values_with_and_without_a_unit) {
    struct {
        const char *text, *si;
        double value;
    } const rows[] = {
        {"1e5", "Pa", 1e5},           {"1.2bar", "Pa", 1.2e5},
        {" 1.2 bar ", "Pa", 1.2e5},   {"+12 kPa", "Pa", 12e3},
        {"1 atm", "Pa", 101325},      {"1 psi", "Pa", 6894.757293168361},
        {"400K", "K", 400},           {"126.85degC", "K", 400},
        {"-40 degF", "K", 233.15},    {"-40°C", "K", 233.15},
        {"350 kJ/kg", "J/kg", 350e3}, {"-1.5 kJ/(kg K)", "J/(kg K)", -1.5e3},
        {"0.998 kg/l", "kg/m3", 998}, {"2 cm3/g", "m3/kg", 2e-3},
        {"50 %", "1", 0.5},           {"0.5", "1", 0.5},
        {"36 t/h", "kg/s", 10},       {"7", "furlong", 7},
    };
    for (const auto &row : rows)
        EXPECT_NEAR(parse_value(row.text, row.si), row.value, 1e-15 * std::abs(row.value) + 6e-14) << row.text;
    EXPECT_TRUE(std::isnan(parse_value("nan", "K")));
    EXPECT_TRUE(std::isinf(parse_value("-inf", "J/kg")));
}

TEST(units, texts_that_are_no_values) {
    struct {
        const char *text, *si, *message;
    } const rows[] = {
        {"1.2bar", "K", "\"1.2bar\" is a pressure; the units of a temperature are K, degC, °C or degF"},
        {"12 furlong", "m3/kg",
         "\"12 furlong\": there is no unit \"furlong\"; the units of a specific volume are m3/kg, m³/kg, cm3/g or "
         "l/kg"},
        {"5 bar", "1", "\"5 bar\" is a pressure; a number without a unit, or with %, is wanted"},
        {"", "K", "\"\" is not a number, with or without a unit"},
        {"bar", "Pa", "\"bar\" is not a number, with or without a unit"},
        {"+-5", "Pa", "\"+-5\" is not a number, with or without a unit"},
        {"++5", "Pa", "\"++5\" is not a number, with or without a unit"},
        {"1,5", "K", "\"1,5\": there is no unit \",5\"; the units of a temperature are K, degC, °C or degF"},
        {"1e999", "K", "\"1e999\" is outside the range of numbers"},
        {"1 \x1b", "K", "\"1 ?\": there is no unit \"?\"; the units of a temperature are K, degC, °C or degF"},
        {"400k", "K", "\"400k\": there is no unit \"k\"; the units of a temperature are K, degC, °C or degF"},
    };
    for (const auto &row : rows) {
        try {
            parse_value(row.text, row.si);
            ADD_FAILURE() << row.text;
        } catch (const studies::wrong_value &reason) {
            EXPECT_STREQ(reason.what(), row.message);
        }
    }
}

TEST(units, differences_have_no_zero_of_their_own) {
    EXPECT_EQ(parse_difference("10 degC", "K"), 10.0);
    EXPECT_EQ(parse_difference("18 degF", "K"), 10.0);
    EXPECT_EQ(parse_difference("0.1 bar", "Pa"), 1e4);
    EXPECT_EQ(studies::parse_range("5degC:20degC:4", "K", true).at(1), 10.0);
    EXPECT_EQ(studies::parse_range("18 degF", "K", true).first, 10.0);
}

TEST(units, ranges) {
    const studies::range linear = studies::parse_range("1bar:2 bar:5", "Pa");
    EXPECT_EQ(linear.count, 5U);
    EXPECT_EQ(linear.at(0), 1e5);
    EXPECT_EQ(linear.at(1), 1.25e5);
    EXPECT_EQ(linear.at(4), 2e5);
    const studies::range logarithmic = studies::parse_range("1e3:1e7:5:log", "Pa");
    EXPECT_NEAR(logarithmic.at(1), 1e4, 1e-9);
    EXPECT_EQ(logarithmic.at(4), 1e7);
    EXPECT_EQ(studies::parse_range("300 K", "K").count, 1U);
    EXPECT_EQ(studies::parse_range("27 degC", "K").at(0), 300.15);
    EXPECT_EQ(studies::parse_range("5:5:1", "K").at(0), 5.0);
    for (const auto &[text, message] : {
             std::pair("1:2", "is not a range; write VALUE, FIRST:LAST:COUNT or FIRST:LAST:COUNT:log"),
             std::pair("1:2:3:lin", "is not a range"),
             std::pair("1:2:3:log:4", "is not a range"),
             std::pair("1:2bar:3", "one end has a unit and the other has none"),
             std::pair("1:2:0", "\"0\" is not a number of values"),
             std::pair("1:2:1.5", "\"1.5\" is not a number of values"),
             std::pair("1:2:99999999999999999999999", "is not a number of values"),
             std::pair("0:2:3:log", "both ends of a logarithmic range must be above 0"),
             std::pair("1:x:3", "\"x\" is not a number"),
             std::pair("", "is not a number"),
         }) {
        try {
            studies::parse_range(text, "Pa");
            ADD_FAILURE() << text;
        } catch (const studies::wrong_value &reason) {
            EXPECT_NE(std::string_view(reason.what()).find(message), std::string_view::npos) << reason.what();
        }
    }
}

TEST(units, every_unit_comes_back) {
    for (const studies::unit &one : studies::units()) {
        const std::string text = "25 " + std::string(one.name);
        EXPECT_NEAR(in_unit(parse_value(text, one.si), one), 25.0, 2e-13) << one.name;
        // The SI unit of each is in the table, and stands for itself.
        EXPECT_EQ(parse_value("25 " + std::string(one.si), one.si), 25.0) << one.si;
        EXPECT_NE(studies::quantity_of(one.si), "value") << one.si;
    }
}

TEST(units, systems) {
    EXPECT_EQ(shown_unit("Pa", unit_system::si).name, "Pa");
    EXPECT_EQ(shown_unit("Pa", unit_system::engineering).name, "bar");
    EXPECT_EQ(in_unit(400.0, shown_unit("K", unit_system::engineering)), 126.85000000000002);
    EXPECT_EQ(shown_unit("Pa/K", unit_system::engineering).name, "Pa/K");
    EXPECT_EQ(in_unit(3.0, shown_unit("Pa/K", unit_system::engineering)), 3.0);
}

} // namespace
