// SPDX-License-Identifier: MIT
#include "Studies/nozzle.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace {

using studies::choking;
using studies::expand;
using studies::nozzle_result;
using studies::nozzle_step;
using studies::point_at;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Whether one of the notes has these words.
bool says(const nozzle_result &flow, std::string_view words) {
    for (const std::string &note : flow.notes)
        if (note.find(words) != std::string::npos)
            return true;
    return false;
}

const nozzle_step *step_named(const nozzle_result &flow, std::string_view place) {
    for (const nozzle_step &step : flow.steps)
        if (step.place == place)
            return &step;
    return nullptr;
}

// A monatomic ideal gas has cp = 5/2 R at every temperature, so that the formulas for a perfect gas hold.
TEST(nozzle, perfect_gas) {
    const auto argon = ostrel::fluid::open("argon", "model=ig");
    constexpr double k = 5.0 / 3.0;
    const double p0 = 8e5;
    const double t0 = 450;
    // The gas of the file has cv = 3/2 R in its own digits.
    ASSERT_NEAR(argon.value("pt", p0, t0, "cp_cv"), k, 1e-6);
    const double gamma = argon.value("pt", p0, t0, "cp_cv");
    const double r_gas = argon.constant("r_gas");
    const nozzle_result flow = expand(argon, point_at(argon, "pt", p0, t0, "test"), 2e4, 40);
    ASSERT_EQ(flow.steps.size(), 42);
    for (const nozzle_step &step : flow.steps) {
        // From the ratio of pressures: M from the isentropic formula, and all others from M.
        const double mach2 = 2 / (gamma - 1) * (std::pow(step.at.p / p0, -(gamma - 1) / gamma) - 1);
        const double mach = std::sqrt(std::max(0.0, mach2));
        const double t = t0 / (1 + (gamma - 1) / 2 * mach2);
        EXPECT_NEAR(step.mach, mach, 1e-7);
        EXPECT_NEAR(step.at.t, t, 1e-10 * t);
        EXPECT_NEAR(step.sound, std::sqrt(gamma * r_gas * t), 1e-10 * step.sound);
        EXPECT_NEAR(step.fundamental, (gamma + 1) / 2, 1e-10);
        if (step.mach == 0) {
            EXPECT_TRUE(std::isinf(step.area_ratio));
            continue;
        }
        const double area =
            std::pow(2 / (gamma + 1) * (1 + (gamma - 1) / 2 * mach2), (gamma + 1) / (2 * gamma - 2)) / mach;
        EXPECT_NEAR(step.area_ratio, area, 1e-10 * area);
    }
    ASSERT_TRUE(flow.throat.has_value());
    EXPECT_EQ(flow.how, choking::sonic);
    EXPECT_NEAR(flow.throat->at.p, p0 * std::pow(2 / (gamma + 1), gamma / (gamma - 1)), 1e-9 * p0);
    EXPECT_NEAR(flow.throat->at.t, t0 * 2 / (gamma + 1), 1e-9 * t0);
    EXPECT_NEAR(flow.throat->mach, 1, 1e-13);
    EXPECT_TRUE(flow.notes.empty());
}

/// What holds for every flow, along its steps.
void check_flow(const ostrel::fluid &fluid, const nozzle_result &flow) {
    const auto &total = flow.steps.front().at;
    ASSERT_TRUE(flow.throat.has_value());
    double p_before = std::numeric_limits<double>::infinity();
    for (const nozzle_step &step : flow.steps) {
        EXPECT_LE(step.at.p, p_before);
        p_before = step.at.p;
        EXPECT_NEAR(step.at.s, total.s, 1e-11 * std::abs(total.s) + 1e-9);
        EXPECT_NEAR(step.velocity * step.velocity / 2, total.h - step.at.h, 1e-12 * std::abs(total.h));
        EXPECT_NEAR(step.mass_flux, step.at.d * step.velocity, 1e-12 * step.mass_flux);
        EXPECT_NEAR(step.mach * step.sound, step.velocity, 1e-12 * step.velocity);
        EXPECT_GE(step.area_ratio, 1 - 1e-12) << step.at.p;
        if (step.place == "saturation line" || step.place == "throat" || step.at.p == total.p)
            continue;
        // The speed of sound against the slope of pressure over density along the isentrope.
        const double width = 1e-4 * step.at.p;
        const double d_above = fluid.value("ps", step.at.p + width, total.s, "d");
        const double d_below = fluid.value("ps", step.at.p - width, total.s, "d");
        const double slope = 2 * width / (d_above - d_below);
        EXPECT_NEAR(step.sound * step.sound / slope, 1, 1e-5) << step.at.p;
    }
    // The throat is the place of the largest mass flux.
    for (const double factor : {0.99, 0.999, 1.001, 1.01}) {
        const auto near = point_at(fluid, "ps", flow.throat->at.p * factor, total.s, "test");
        if (near.p < total.p) {
            EXPECT_LT(near.d * std::sqrt(2 * (total.h - near.h)), flow.throat->mass_flux * (1 - 1e-9)) << factor;
        }
    }
}

TEST(nozzle, steam_that_becomes_wet_before_the_throat) {
    const auto water = ostrel::fluid::open("water");
    const nozzle_result flow = expand(water, point_at(water, "pt", 20e5, 500, "test"), 1.03e5, 17);
    check_flow(water, flow);
    EXPECT_EQ(flow.how, choking::sonic);
    EXPECT_NEAR(flow.throat->mach, 1, 1e-12);
    EXPECT_GT(flow.throat->at.q, 0.9);
    EXPECT_TRUE(std::isnan(flow.throat->fundamental));
    const nozzle_step *const line = step_named(flow, "saturation line");
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->at.q, 1);
    // Both speeds of sound on the line stand next to each other.
    const nozzle_step &behind = *(line + 1);
    EXPECT_EQ(behind.place, "saturation line");
    EXPECT_EQ(behind.at.p, line->at.p);
    EXPECT_EQ(behind.velocity, line->velocity);
    EXPECT_LT(behind.sound, 0.95 * line->sound);
    EXPECT_TRUE(says(flow, "jumps from"));
    EXPECT_TRUE(says(flow, "mixture of both phases"));
}

TEST(nozzle, hot_water_chokes_on_the_saturation_line) {
    const auto water = ostrel::fluid::open("water");
    const nozzle_result flow = expand(water, point_at(water, "pt", 20e5, 480, "test"), 1e5);
    check_flow(water, flow);
    EXPECT_EQ(flow.how, choking::saturation_line);
    // The throat is where the saturated liquid has the entropy of the total state.
    EXPECT_EQ(flow.throat->at.q, 0);
    EXPECT_NEAR(water.value("pq", flow.throat->at.p, 0, "s"), flow.steps.front().at.s, 1e-9);
    const nozzle_step *const line = step_named(flow, "saturation line");
    const nozzle_step *const throat = step_named(flow, "throat");
    ASSERT_TRUE(line != nullptr && throat != nullptr);
    EXPECT_LT(line->mach, 0.1);
    EXPECT_GT(throat->mach, 1);
    EXPECT_NEAR(line->sound, water.value("pq", line->at.p, 0, "c"), 1e-9 * line->sound);
    EXPECT_TRUE(says(flow, "the flow chokes"));
    // Behind the line the Mach number first falls.
    EXPECT_GT(throat->mach, (throat + 1)->mach);
    EXPECT_TRUE(says(flow, "the Mach number falls"));
}

TEST(nozzle, saturated_liquid_and_a_mixture_as_total_states) {
    const auto water = ostrel::fluid::open("water");
    for (const double q : {0.0, 0.3, 1.0}) {
        const nozzle_result flow = expand(water, point_at(water, "pq", 10e5, q, "test"), 1.01e5, 13);
        check_flow(water, flow);
        EXPECT_EQ(flow.how, choking::sonic) << q;
    }
}

TEST(nozzle, a_fluid_that_dries_in_expansion) {
    const auto mdm = ostrel::fluid::open("mdm");
    const nozzle_result flow = expand(mdm, point_at(mdm, "pt", 14.5e5, 565, "test"), 1e5, 11);
    check_flow(mdm, flow);
    // Into the dome as a liquid and out of it as a vapor.
    std::vector<nozzle_step> lines;
    std::ranges::copy_if(flow.steps, std::back_inserter(lines),
                         [](const nozzle_step &step) { return step.place == "saturation line"; });
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0].at.q, 0);
    EXPECT_EQ(lines[2].at.q, 1);
    // The mixture's speed of sound is the lower one, on both sides.
    EXPECT_NEAR(lines[0].sound, mdm.value(lines[0].at.state, "c"), 1e-9);
    EXPECT_LT(lines[1].sound, lines[0].sound);
    EXPECT_LT(lines[2].sound, lines[3].sound);
    EXPECT_NEAR(lines[3].sound, mdm.value(lines[3].at.state, "c"), 1e-9);
    EXPECT_TRUE(says(flow, "the fundamental derivative is below 1, so that the speed of sound rises"));
}

TEST(nozzle, throat_behind_the_outlet) {
    const auto nitrogen = ostrel::fluid::open("nitrogen");
    const auto total = point_at(nitrogen, "pt", 10e5, 300, "test");
    const nozzle_result slow = expand(nitrogen, total, 8e5);
    const nozzle_result fast = expand(nitrogen, total, 2e5);
    ASSERT_TRUE(slow.throat && fast.throat);
    EXPECT_NEAR(slow.throat->at.p, fast.throat->at.p, 1e-4);
    EXPECT_EQ(step_named(slow, "throat"), nullptr);
    ASSERT_NE(step_named(fast, "throat"), nullptr);
    EXPECT_NEAR(slow.steps.back().area_ratio, fast.throat->mass_flux / slow.steps.back().mass_flux, 1e-9);
    EXPECT_TRUE(says(slow, "stays below the speed of sound"));
    EXPECT_FALSE(says(fast, "stays below the speed of sound"));
}

TEST(nozzle, outlets_that_cannot_be) {
    const auto nitrogen = ostrel::fluid::open("nitrogen");
    const auto total = point_at(nitrogen, "pt", 10e5, 300, "test");
    for (const double p : {10e5, 11e5, 0.0, -1e5, nan})
        EXPECT_THROW(expand(nitrogen, total, p), studies::impossible) << p;
    try {
        expand(nitrogen, total, 20e5);
        ADD_FAILURE();
    } catch (const studies::impossible &reason) {
        EXPECT_STREQ(reason.what(), "nozzle: the outlet's pressure is 20 bar; it must be above 0 and below the total "
                                    "pressure, 10 bar");
    }
}

} // namespace
