// SPDX-License-Identifier: MIT
#include "Studies/cycle.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

using studies::cycle_definition;
using studies::cycle_figures;
using studies::cycle_kind;
using studies::cycle_process;
using studies::cycle_result;
using studies::point;
using studies::solve;

cycle_definition organic() {
    cycle_definition wanted;
    wanted.evaporator_p = 15e5;
    wanted.evaporator_superheat = 10;
    wanted.condenser_t = 320;
    wanted.pump_efficiency = 0.7;
    wanted.turbine_efficiency = 0.85;
    return wanted;
}
cycle_definition regenerated() {
    cycle_definition wanted = organic();
    wanted.evaporator_drop = 0.4e5;
    wanted.condenser_drop = 500;
    wanted.condenser_subcooling = 3;
    wanted.regenerator_effectiveness = 0.8;
    wanted.regenerator_drop_hot = 300;
    wanted.regenerator_drop_cold = 0.2e5;
    return wanted;
}
cycle_definition supercritical() {
    cycle_definition wanted = organic();
    wanted.evaporator_superheat.reset();
    wanted.evaporator_p = 50e5;
    wanted.evaporator_t_out = 620;
    wanted.regenerator_pinch = 8;
    return wanted;
}
cycle_definition steam() {
    cycle_definition wanted;
    wanted.evaporator_p = 40e5;
    wanted.evaporator_superheat = 60;
    wanted.condenser_t = 310;
    wanted.turbine_efficiency = 0.9;
    return wanted;
}
cycle_definition refrigerator() {
    cycle_definition wanted;
    wanted.kind = cycle_kind::compression;
    wanted.evaporator_t = 263.15;
    wanted.evaporator_superheat = 4;
    wanted.evaporator_drop = 0.1e5;
    wanted.condenser_t = 308.15;
    wanted.condenser_drop = 0.1e5;
    wanted.compressor_efficiency = 0.75;
    return wanted;
}
cycle_definition with_exchanger() {
    cycle_definition wanted = refrigerator();
    wanted.exchanger_effectiveness = 0.6;
    wanted.exchanger_drop_cold = 0.03e5;
    wanted.exchanger_drop_hot = 0.2e5;
    return wanted;
}
cycle_definition transcritical() {
    cycle_definition wanted;
    wanted.kind = cycle_kind::compression;
    wanted.evaporator_t = 268.15;
    wanted.gas_cooler_p = 95e5;
    wanted.gas_cooler_t_out = 308.15;
    wanted.gas_cooler_drop = 1e5;
    wanted.compressor_efficiency = 0.7;
    wanted.exchanger_pinch = 12;
    return wanted;
}

struct example {
    const char *name;
    const char *fluid;
    cycle_definition wanted;
};
std::vector<example> examples() {
    return {{"organic", "toluene", organic()},
            {"regenerated", "toluene", regenerated()},
            {"supercritical", "toluene", supercritical()},
            {"siloxane", "mdm",
             [] {
                 cycle_definition wanted = regenerated();
                 wanted.evaporator_p = 10e5;
                 return wanted;
             }()},
            {"steam", "water", steam()},
            {"refrigerator", "r134a", refrigerator()},
            {"with_exchanger", "r134a", with_exchanger()},
            {"transcritical", "co2", transcritical()},
            {"into_the_dome_from_above", "co2", [] {
                 cycle_definition wanted = organic();
                 wanted.evaporator_superheat.reset();
                 wanted.evaporator_p = 90e5;
                 wanted.evaporator_t_out = 312;
                 wanted.condenser_t = 270;
                 return wanted;
             }()}};
}

void PrintTo(const example &one, std::ostream *out) {
    *out << one.name;
}

class each_cycle : public testing::TestWithParam<example> {
protected:
    const ostrel::fluid fluid = ostrel::fluid::open(GetParam().fluid);
    const cycle_result cycle = solve(fluid, GetParam().wanted);
};

/// [J/kg] The largest change of enthalpy in a cycle.
double largest_flow(const cycle_result &cycle) {
    const auto [least, most] =
        std::ranges::minmax(cycle.states, {}, [](const studies::cycle_state &state) { return state.at.h; });
    return most.at.h - least.at.h;
}

bool is_work(const cycle_process &process) {
    return process.name == "pump" || process.name == "turbine" || process.name == "compressor";
}

TEST_P(each_cycle, closes_its_energy_balance) {
    const double scale = largest_flow(cycle);
    const cycle_figures &figures = cycle.figures;
    const bool rankine = GetParam().wanted.kind == cycle_kind::rankine;
    const double work = rankine ? figures.net_work : -figures.compressor_work;
    EXPECT_NEAR(figures.heat_in - figures.heat_out, work, 1e-12 * scale);
    if (rankine) {
        EXPECT_NEAR(figures.efficiency * figures.heat_in, figures.turbine_work - figures.pump_work, 1e-12 * scale);
    } else {
        EXPECT_NEAR(figures.cop_heating - figures.cop_cooling, 1, 1e-12 * figures.cop_heating);
    }
    // The same from the states at the ends of the processes.
    double works = 0;
    double heats = 0;
    double internal = 0;
    for (const cycle_process &process : cycle.processes) {
        const double change = cycle.states[process.to].at.h - cycle.states[process.from].at.h;
        (is_work(process) ? works : heats) += change;
        if (process.name.find(" side") != std::string_view::npos)
            internal += change;
        if (process.name == "valve") {
            EXPECT_EQ(change, 0);
        }
    }
    EXPECT_NEAR(works, -work, 1e-12 * scale);
    EXPECT_NEAR(heats, work, 1e-12 * scale);
    EXPECT_NEAR(internal, 0, 1e-12 * scale);
}

TEST_P(each_cycle, obeys_the_second_law) {
    double internal = 0;
    for (const cycle_process &process : cycle.processes) {
        const double change = cycle.states[process.to].at.s - cycle.states[process.from].at.s;
        if (is_work(process) || process.name == "valve") {
            EXPECT_GE(change, -1e-10) << process.name;
        }
        if (process.name.find(" side") != std::string_view::npos)
            internal += change;
    }
    EXPECT_GE(internal, -1e-10);
    double hottest = 0;
    double coldest = 1e9;
    for (const auto &state : cycle.states) {
        hottest = std::max(hottest, state.at.t);
        coldest = std::min(coldest, state.at.t);
    }
    if (GetParam().wanted.kind == cycle_kind::rankine) {
        EXPECT_LT(cycle.figures.efficiency, 1 - coldest / hottest);
    } else {
        EXPECT_LT(cycle.figures.cop_heating, hottest / (hottest - coldest) * 1.5);
    }
}

TEST_P(each_cycle, has_processes_that_are_smooth_and_closed) {
    std::size_t at = 0;
    for (const cycle_process &process : cycle.processes) {
        EXPECT_EQ(process.from, at) << process.name;
        at = process.to;
        const auto &points = process.points;
        ASSERT_GE(points.size(), 65) << process.name;
        EXPECT_EQ(points.front().h, cycle.states[process.from].at.h);
        EXPECT_EQ(points.front().p, cycle.states[process.from].at.p);
        EXPECT_EQ(points.back().h, cycle.states[process.to].at.h);
        EXPECT_EQ(points.back().p, cycle.states[process.to].at.p);
        for (std::size_t i = 1; i < points.size(); ++i) {
            const point &a = points[i - 1];
            const point &b = points[i];
            // Where a state between the phases follows a single-phase state, one of them is on the saturation line.
            const bool crosses = std::isnan(a.q) != std::isnan(b.q);
            if (crosses) {
                const double q = std::isnan(a.q) ? b.q : a.q;
                EXPECT_TRUE(std::abs(q) < 1e-9 || std::abs(q - 1) < 1e-9) << process.name << ' ' << q;
            }
            EXPECT_LE(std::abs(b.s - a.s), 0.1 * std::abs(points.back().s - points.front().s) + 20) << process.name;
            // All are states of the fluid.
            EXPECT_NEAR(fluid.value("ph", b.p, b.h, "s"), b.s, 1e-8 * std::abs(b.s) + 1e-8) << process.name;
        }
    }
    EXPECT_EQ(at, 0);
}

TEST_P(each_cycle, has_the_corners_of_its_exchangers) {
    for (const cycle_process &process : cycle.processes) {
        const point &from = cycle.states[process.from].at;
        const point &to = cycle.states[process.to].at;
        for (std::size_t i = process.from + 1; i != process.to && i < cycle.states.size(); ++i) {
            const point &corner = cycle.states[i].at;
            EXPECT_TRUE(corner.q == 0 || corner.q == 1);
            // The pressure changes in proportion to the heat.
            const double part = (corner.h - from.h) / (to.h - from.h);
            EXPECT_GT(part, 0);
            EXPECT_LT(part, 1);
            EXPECT_NEAR(corner.p, from.p + part * (to.p - from.p), 1e-11 * corner.p);
        }
    }
}

/// [K] The least difference of two sides in counterflow by brute force.
double walked(const ostrel::fluid &fluid, const std::function<double(double)> &t_hot, const point &cold,
              const point &hot, double sign) {
    double least = 1e9;
    constexpr int count = 4000;
    for (int i = 0; i <= count; ++i) {
        const double x = static_cast<double>(i) / count;
        const double t = fluid.value("ph", cold.p + x * (hot.p - cold.p), cold.h + x * (hot.h - cold.h), "t");
        least = std::min(least, sign * (t_hot(x) - t));
    }
    return least;
}

TEST_P(each_cycle, has_the_pinch_of_its_internal_exchanger) {
    if (std::isnan(cycle.figures.internal_heat))
        return;
    const point *ends[4] = {};
    for (const cycle_process &process : cycle.processes)
        if (process.name.find(" side") != std::string_view::npos) {
            const bool hot = process.name.find("hot") != std::string_view::npos;
            ends[hot ? 0 : 2] = &cycle.states[process.from].at;
            ends[hot ? 1 : 3] = &cycle.states[process.to].at;
        }
    const point *const hot_in = ends[0];
    const point *const hot_out = ends[1];
    const point *const cold_in = ends[2];
    const point *const cold_out = ends[3];
    const auto t_hot = [&](double x) {
        return fluid.value("ph", hot_out->p + x * (hot_in->p - hot_out->p), hot_out->h + x * (hot_in->h - hot_out->h),
                           "t");
    };
    const double least = walked(fluid, t_hot, *cold_in, *cold_out, 1);
    EXPECT_NEAR(cycle.figures.internal_pinch, least, 0.02);
    EXPECT_LE(cycle.figures.internal_pinch, least + 1e-9);
    const cycle_definition &wanted = GetParam().wanted;
    for (const auto &asked : {wanted.regenerator_pinch, wanted.exchanger_pinch})
        if (asked) {
            EXPECT_NEAR(cycle.figures.internal_pinch, *asked, 1e-9);
        }
    // The effectiveness is a part of the heat at which one side reaches the other one's inlet, or the vapor its dew
    // point.
    if (wanted.regenerator_effectiveness) {
        const double hot_bound =
            hot_in->h - std::max(fluid.value("pt", hot_out->p, cold_in->t, "h"), fluid.value("pq", hot_out->p, 1, "h"));
        const double cold_bound = fluid.value("pt", cold_out->p, hot_in->t, "h") - cold_in->h;
        EXPECT_NEAR(cycle.figures.internal_heat, *wanted.regenerator_effectiveness * std::min(hot_bound, cold_bound),
                    1e-9 * cycle.figures.internal_heat);
    }
}

INSTANTIATE_TEST_SUITE_P(cycle, each_cycle, testing::ValuesIn(examples()),
                         [](const auto &one) { return std::string(one.param.name); });

// The same cycle by hand.
TEST(cycle, organic_rankine_from_property_calls) {
    const auto toluene = ostrel::fluid::open("toluene");
    const cycle_result cycle = solve(toluene, organic());
    const auto [p_low, h1, s1] = toluene.values<"p, h, s">("tq", 320, 0);
    const double h2 = h1 + (toluene.value("ps", 15e5, s1, "h") - h1) / 0.7;
    const double t3 = toluene.value("pq", 15e5, 1, "t") + 10;
    const auto [h3, s3, d3] = toluene.values<"h, s, d">("pt", 15e5, t3);
    const double h4s = toluene.value("ps", p_low, s3, "h");
    const double h4 = h3 - 0.85 * (h3 - h4s);
    const double d4 = toluene.value("ph", p_low, h4, "d");
    EXPECT_NEAR(cycle.figures.efficiency, (h3 - h4 - (h2 - h1)) / (h3 - h2), 1e-12);
    EXPECT_NEAR(cycle.figures.volume_ratio, d3 / d4, 1e-12 * d3 / d4);
    EXPECT_TRUE(std::isnan(cycle.figures.mass_flow));

    cycle_definition sized = organic();
    sized.flow_power = 1e6;
    const cycle_figures figures = solve(toluene, sized).figures;
    const double mass = 1e6 / (h3 - h4 - (h2 - h1));
    EXPECT_NEAR(figures.mass_flow, mass, 1e-11 * mass);
    EXPECT_NEAR(figures.size_parameter, std::sqrt(mass / d4) / std::pow(h3 - h4s, 0.25), 1e-11);
    EXPECT_NEAR(figures.net_power, 1e6, 1e-6);
}

double pressure_of(const cycle_result &cycle, std::string_view place) {
    return std::ranges::find(cycle.states, place, &studies::cycle_state::place)->at.p;
}

TEST(cycle, pressure_drops) {
    const auto toluene = ostrel::fluid::open("toluene");
    const cycle_result power = solve(toluene, regenerated());
    const double p_liquid = toluene.value("tq", 320, 0, "p");
    EXPECT_NEAR(pressure_of(power, "pump inlet"), p_liquid, 1e-9 * p_liquid);
    EXPECT_NEAR(pressure_of(power, "condenser inlet"), p_liquid + 500, 1e-9 * p_liquid);
    EXPECT_NEAR(pressure_of(power, "turbine outlet"), p_liquid + 800, 1e-9 * p_liquid);
    EXPECT_NEAR(pressure_of(power, "turbine inlet"), 15e5, 1e-3);
    EXPECT_NEAR(pressure_of(power, "evaporator inlet"), 15.4e5, 1e-3);
    EXPECT_NEAR(pressure_of(power, "pump outlet"), 15.6e5, 1e-3);

    const auto r134a = ostrel::fluid::open("r134a");
    const cycle_result cold = solve(r134a, with_exchanger());
    const double p_low = r134a.value("tq", 263.15, 1, "p");
    const double p_high = r134a.value("tq", 308.15, 0, "p");
    EXPECT_NEAR(pressure_of(cold, "evaporator outlet"), p_low, 1e-3);
    EXPECT_NEAR(pressure_of(cold, "evaporator inlet"), p_low + 0.1e5, 1e-3);
    EXPECT_NEAR(pressure_of(cold, "compressor inlet"), p_low - 0.03e5, 1e-3);
    EXPECT_NEAR(pressure_of(cold, "compressor outlet"), p_high + 0.1e5, 1e-3);
    EXPECT_NEAR(pressure_of(cold, "condenser outlet"), p_high, 1e-3);
    EXPECT_NEAR(pressure_of(cold, "valve inlet"), p_high - 0.2e5, 1e-3);
}

TEST(cycle, refrigerator_from_property_calls) {
    const auto r134a = ostrel::fluid::open("r134a");
    const cycle_figures figures = solve(r134a, refrigerator()).figures;
    const double p_low = r134a.value("tq", 263.15, 1, "p");
    const double p_high = r134a.value("tq", 308.15, 0, "p");
    const auto [h1, s1, d1] = r134a.values<"h, s, d">("pt", p_low, 267.15);
    const double h2 = h1 + (r134a.value("ps", p_high + 0.1e5, s1, "h") - h1) / 0.75;
    const double h3 = r134a.value("pq", p_high, 0, "h");
    EXPECT_NEAR(figures.cop_cooling, (h1 - h3) / (h2 - h1), 1e-10);
    EXPECT_NEAR(figures.volumetric_capacity, (h1 - h3) * d1, 1e-10 * figures.volumetric_capacity);
    EXPECT_NEAR(figures.pressure_ratio, (p_high + 0.1e5) / p_low, 1e-12);
}

// Steam at 3 MPa and 350 degC to 75 kPa, from the steam tables: 2727.9 kJ/kg of heat, an efficiency of 26.0 %, and a
// quality of 0.886 (GATE 2016, mechanical engineering, question 57). The cubic equation differs by a few per cent.
TEST(cycle, published_steam_cycle) {
    const auto water = ostrel::fluid::open("water");
    cycle_definition wanted;
    wanted.evaporator_p = 30e5;
    wanted.evaporator_t_out = 623.15;
    wanted.condenser_p = 75e3;
    const cycle_result cycle = solve(water, wanted);
    EXPECT_NEAR(cycle.figures.efficiency, 0.26, 0.04 * 0.26);
    EXPECT_NEAR(cycle.figures.heat_in, 2727.9e3, 0.05 * 2727.9e3);
    const auto exhaust = std::ranges::find(cycle.states, "turbine outlet", &studies::cycle_state::place);
    EXPECT_NEAR(exhaust->at.q, 0.886, 0.02);
}

// R134a from saturated vapor at -10 degC to saturated liquid at 28 degC, 5 kg/min, compressed from 241.35 to
// 267.9 kJ/kg and throttled at 88.61 kJ/kg: a textbook's exercise with its tables.
TEST(cycle, published_refrigerator) {
    const auto r134a = ostrel::fluid::open("r134a");
    cycle_definition wanted;
    wanted.kind = cycle_kind::compression;
    wanted.evaporator_t = 263.15;
    wanted.condenser_t = 301.15;
    wanted.flow_mass = 5.0 / 60.0;
    const cycle_figures figures = solve(r134a, wanted).figures;
    EXPECT_NEAR(figures.cop_cooling, (241.35 - 88.61) / (267.9 - 241.35), 0.3);
    EXPECT_NEAR(figures.heat_flow_in, (241.35 - 88.61) * 1e3 * 5 / 60, 0.03 * 12.7e3);
    EXPECT_NEAR(figures.net_power, (267.9 - 241.35) * 1e3 * 5 / 60, 0.06 * 2.2e3);
}

// Between two near temperatures a cycle of saturated states nears the reversible one: the heat that warms the liquid is
// a small part.
TEST(cycle, carnot_limit) {
    const auto water = ostrel::fluid::open("water");
    double last = 0;
    for (const double difference : {8.0, 4.0, 2.0, 1.0}) {
        cycle_definition wanted;
        wanted.evaporator_t = 400 + difference;
        wanted.condenser_t = 400;
        wanted.source_t = wanted.evaporator_t;
        wanted.sink_t = wanted.condenser_t;
        const cycle_figures figures = solve(water, wanted).figures;
        EXPECT_LT(figures.second_law, 1);
        EXPECT_GT(figures.second_law, 1 - 0.002 * difference);
        EXPECT_GT(figures.second_law, last);
        last = figures.second_law;
        EXPECT_NEAR(figures.source_pinch, 0, 1e-9);
    }
}

TEST(cycle, streams_outside) {
    const auto toluene = ostrel::fluid::open("toluene");
    cycle_definition wanted = organic();
    wanted.source_t = 620;
    wanted.source_t_out = 480;
    wanted.sink_t = 290;
    wanted.sink_mass = 20;
    wanted.sink_cp = 4180;
    wanted.flow_mass = 3;
    const cycle_result cycle = solve(toluene, wanted);
    const cycle_figures &figures = cycle.figures;
    EXPECT_NEAR(figures.sink_t_out, 290 + figures.heat_flow_out / (20 * 4180), 1e-9);
    EXPECT_EQ(figures.source_t_out, 480);
    const auto state = [&](std::string_view place) {
        return std::ranges::find(cycle.states, place, &studies::cycle_state::place)->at;
    };
    const auto source = [](double x) { return 480 + x * 140; };
    const auto sink = [&](double x) { return 290 + x * (figures.sink_t_out - 290); };
    EXPECT_NEAR(figures.source_pinch, walked(toluene, source, state("pump outlet"), state("turbine inlet"), 1), 0.02);
    EXPECT_NEAR(figures.sink_pinch, walked(toluene, sink, state("pump inlet"), state("turbine outlet"), -1), 0.02);
    const double t_source = 140 / std::log(620.0 / 480.0);
    const double t_sink = (figures.sink_t_out - 290) / std::log(figures.sink_t_out / 290);
    EXPECT_NEAR(figures.second_law, figures.efficiency / (1 - t_sink / t_source), 1e-12);

    // A stream with both temperatures and a mass flow tells the fluid's mass flow.
    wanted.flow_mass.reset();
    wanted.source_mass = 10;
    wanted.source_cp = 2000;
    const cycle_figures derived = solve(toluene, wanted).figures;
    EXPECT_NEAR(derived.mass_flow * derived.heat_in, 10 * 2000 * 140.0, 1e-6);
}

TEST(cycle, definitions_that_cannot_be) {
    const auto toluene = ostrel::fluid::open("toluene");
    const auto r134a = ostrel::fluid::open("r134a");
    const auto water = ostrel::fluid::open("water");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct {
        const char *change;
        const ostrel::fluid &fluid;
        cycle_definition from;
        std::function<void(cycle_definition &)> make;
        const char *message;
    } const rows[] = {
        {"condenser above evaporator", toluene, organic(), [](auto &c) { c.condenser_t = 550; },
         "the condenser's pressure is 24.7424 bar, not below the evaporator's pressure, 15 bar"},
        {"drop", toluene, organic(), [](auto &c) { c.condenser_drop = 15e5; },
         "the turbine's outlet pressure is 15.1041 bar, not below its inlet pressure, 15 bar"},
        {"efficiency", toluene, organic(), [](auto &c) { c.turbine_efficiency = 1.1; },
         "turbine.efficiency is 1.1; it must be above 0 and not above 1"},
        {"no efficiency", toluene, organic(), [](auto &c) { c.pump_efficiency = 0; },
         "pump.efficiency is 0; it must be above 0 and not above 1"},
        {"not a number", toluene, organic(), [&](auto &c) { c.evaporator_p = nan; },
         "evaporator.p is nan bar; it must be above 0"},
        {"infinite", toluene, organic(),
         [](auto &c) { c.evaporator_superheat = std::numeric_limits<double>::infinity(); },
         "evaporator.superheat is inf K; it must be 0 or above"},
        {"condensation above the critical point", toluene, organic(),
         [](auto &c) {
             c.condenser_t.reset();
             c.condenser_p = 60e5;
         },
         "condenser.p is 60 bar; it must be below the critical pressure of toluene, 41.26 bar, since nothing condenses "
         "above"},
        {"condenser's temperature", toluene, organic(), [](auto &c) { c.condenser_t = 600; },
         "condenser.t is 326.85 degC; saturation ends below the critical temperature of toluene, 318.6 degC"},
        {"supercritical without t_out", toluene, organic(), [](auto &c) { c.evaporator_p = 50e5; },
         "evaporator.p is 50 bar, above the critical pressure of toluene, 41.26 bar; there evaporator.t_out is needed, "
         "and no superheat"},
        {"two pressures", toluene, organic(), [](auto &c) { c.evaporator_t = 500; },
         "evaporator.p and evaporator.t are both given; only one of them can hold"},
        {"no pressure", toluene, organic(), [](auto &c) { c.evaporator_p.reset(); },
         "evaporator.p or evaporator.t is wanted"},
        {"cold outlet", toluene, organic(),
         [](auto &c) {
             c.evaporator_superheat.reset();
             c.evaporator_t_out = 450;
         },
         "evaporator.t_out is 176.85 degC; at 15 bar it must be at or above the saturation temperature, 241.267 degC"},
        {"regenerator from cold to hot", water, steam(), [](auto &c) { c.regenerator_effectiveness = 0.5; },
         "regenerator: the turbine's outlet is at 36.85 degC and the pump's outlet at"},
        {"regenerator without room", toluene, regenerated(),
         [](auto &c) {
             c.regenerator_effectiveness.reset();
             c.regenerator_pinch = 300;
         },
         "which leaves no room for a pinch of 300 K; take it out, or change the pressures"},
        {"regenerator that the pressure drop cools", water, steam(),
         [](auto &c) {
             c.evaporator_superheat = 0;
             c.condenser_p = 2e5;
             c.condenser_t.reset();
             c.condenser_subcooling = 20;
             c.regenerator_drop_hot = 2e5;
             c.regenerator_pinch = 25;
         },
         ", and its pressure drop leaves no room for a pinch of 25 K; take it out, or change the pressures"},
        {"drops of no regenerator", toluene, organic(), [](auto &c) { c.regenerator_drop_hot = 1e3; },
         "regenerator.drop_hot is given without regenerator.effectiveness or regenerator.pinch; without one of these "
         "there is no regenerator"},
        {"another kind", toluene, organic(), [](auto &c) { c.compressor_efficiency = 0.7; },
         "compressor.efficiency does not belong to a cycle of the kind rankine"},
        {"turbine in a refrigerator", r134a, refrigerator(), [](auto &c) { c.turbine_efficiency = 0.7; },
         "turbine.efficiency does not belong to a cycle of the kind compression"},
        {"both coolers", r134a, refrigerator(), [](auto &c) { c.gas_cooler_p = 90e5; },
         "condenser.t is given beside a gas_cooler; a cycle has a condenser or a gas cooler"},
        {"hot condenser outlet", r134a, refrigerator(), [](auto &c) { c.condenser_t_out = 320; },
         "condenser.t_out is 46.85 degC; at 8.98665 bar it must be at or below"},
        {"evaporator above condenser", r134a, refrigerator(), [](auto &c) { c.evaporator_t = 330; },
         "the evaporator's pressure is 15.9519 bar, not below the pressure before the valve, 8.98665 bar"},
        {"cold source", toluene, organic(), [](auto &c) { c.source_t = 500; },
         "source: in the evaporator heat would have to flow from 226.85 degC to 251.267 degC"},
        {"source that warms", toluene, organic(),
         [](auto &c) {
             c.source_t = 600;
             c.source_t_out = 610;
         },
         "source.t_out is 336.85 degC, but the source gives heat, so that it must be below its inlet, 326.85 degC"},
        {"source without flow", toluene, organic(),
         [](auto &c) {
             c.source_t = 600;
             c.source_mass = 1;
             c.source_cp = 2000;
         },
         "source.mass needs flow.mass, flow.power or source.t_out beside it"},
        {"too little source", toluene, organic(),
         [](auto &c) {
             c.source_t = 600;
             c.source_mass = 1;
             c.source_cp = 2000;
             c.flow_mass = 10;
         },
         "source: it would leave below 0 K; its mass flow is too small"},
        {"two flows", toluene, organic(),
         [](auto &c) {
             c.flow_mass = 1;
             c.source_t = 600;
             c.source_t_out = 550;
             c.source_mass = 1;
             c.source_cp = 2000;
         },
         "the mass flow follows twice, from flow.mass and from the heat of the source; leave out one of them"},
        {"no inlet", toluene, organic(), [](auto &c) { c.sink_t_out = 300; }, "sink.t_out is given without sink.t"},
    };
    for (const auto &row : rows) {
        cycle_definition wanted = row.from;
        row.make(wanted);
        try {
            solve(row.fluid, wanted);
            ADD_FAILURE() << row.change;
        } catch (const studies::impossible &reason) {
            EXPECT_NE(std::string(reason.what()).find(row.message), std::string::npos)
                << row.change << ": " << reason.what();
        }
    }
}

TEST(cycle, fluids_without_what_a_cycle_needs) {
    const auto message = [](const char *options) {
        try {
            solve(ostrel::fluid::open("toluene", ostrel::unchecked(options)), organic());
        } catch (const studies::impossible &reason) {
            return std::string(reason.what());
        }
        return std::string("a cycle");
    };
    EXPECT_EQ(message("model=ig"),
              "toluene has no saturation line with the equation ig, and a cycle needs one; choose another equation");
    EXPECT_EQ(message("states=metastable; phase=vapor"),
              "a cycle needs states of equilibrium; open the fluid with states=stable, the standard");
    EXPECT_EQ(message("model=pr"), "a cycle");
}

TEST(cycle, keys_and_figures_have_names_of_their_own) {
    std::vector<std::string> names;
    for (const studies::cycle_key &key : studies::cycle_keys()) {
        const std::string name = std::string(key.section) + "." + std::string(key.name);
        EXPECT_EQ(studies::cycle_key_named(name), &key);
        names.push_back(name);
    }
    for (const studies::cycle_figure &figure : studies::cycle_figure_list())
        names.emplace_back(figure.name);
    std::ranges::sort(names);
    EXPECT_EQ(std::ranges::adjacent_find(names), names.end());
    EXPECT_EQ(studies::cycle_key_named("evaporator"), nullptr);
    EXPECT_EQ(studies::cycle_key_named("evaporator.q"), nullptr);
    // Every member of a definition and of the figures has its row.
    EXPECT_EQ(studies::cycle_keys().size() * sizeof(cycle_definition::value),
              sizeof(cycle_definition) - offsetof(cycle_definition, evaporator_p));
    EXPECT_EQ(studies::cycle_figure_list().size() * sizeof(double), sizeof(cycle_figures));
}

} // namespace
