// SPDX-License-Identifier: MIT
// Organic Rankine cycles at several evaporation pressures: the turbine's states, the work and the heat.
//
//   rankine_cycle [FLUID [CONDENSER_K]]
#include "ostrel.hpp"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr double efficiency = 0.8; // of the turbine and of the pump
constexpr double superheat = 5;    // K, at the turbine's inlet

struct cycle {
    double t_inlet;  // K, before the turbine
    double t_outlet; // K, behind the turbine
    double q_outlet; // vapor quality there; NaN if it is dry
    double work;     // J/kg, of the turbine less that of the pump
    double heat;     // J/kg
};

cycle computed(const ostrel::fluid &fluid, double p_high, double t_condenser) {
    const auto [p_low, h_liquid, s_liquid] = fluid.values<"p, h, s">("tq", t_condenser, 0);
    const double h_pumped = h_liquid + (fluid.value("ps", p_high, s_liquid, "h") - h_liquid) / efficiency;

    const double t_inlet = fluid.value("pq", p_high, 1, "t") + superheat;
    const auto [h_inlet, s_inlet] = fluid.values<"h, s">("pt", p_high, t_inlet);
    const double h_ideal = fluid.value("ps", p_low, s_inlet, "h");
    const double h_outlet = h_inlet - efficiency * (h_inlet - h_ideal);
    const auto [t_outlet, q_outlet] = fluid.values<"t, q">("ph", p_low, h_outlet);
    return {t_inlet, t_outlet, q_outlet, h_inlet - h_outlet - (h_pumped - h_liquid), h_inlet - h_pumped};
}

} // namespace

int main(int argc, char **argv) try {
    const auto fluid = ostrel::fluid::open(argc > 1 ? argv[1] : "toluene");
    const double t_condenser = argc > 2 ? std::atof(argv[2]) : 320;

    std::printf("%s, condenser at %.0f K\n", fluid.text("name").data(), t_condenser);
    std::printf("%10s%12s%12s%10s%12s%12s%12s\n", "p bar", "t inlet K", "t outlet K", "outlet", "w kJ/kg", "q kJ/kg",
                "w/q %");
    for (const double part : {0.1, 0.2, 0.4, 0.6, 0.8}) {
        const double p_high = part * fluid.constant("p_crit");
        const cycle one = computed(fluid, p_high, t_condenser);
        std::printf("%10.2f%12.2f%12.2f%10s%12.2f%12.2f%12.2f\n", p_high * 1e-5, one.t_inlet, one.t_outlet,
                    one.q_outlet >= 0 ? "wet" : "dry", one.work * 1e-3, one.heat * 1e-3, 100 * one.work / one.heat);
    }

    // A state that is not there is no reason to end: the result says why.
    if (const auto none = fluid.try_value("pq", 1e8, 1, "t"); !none)
        std::printf("%d: %s\n", none.error().status, none.error().message.c_str());
    return 0;
} catch (const ostrel::failure &problem) {
    std::fprintf(stderr, "%s\n", problem.what());
    return 1;
}
