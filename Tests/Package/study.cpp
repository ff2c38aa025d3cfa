// SPDX-License-Identifier: MIT
// Solves a cycle with the library of studies: its heat and its work must balance.
#include "Studies/cycle.h"

#include <cmath>
#include <cstdio>

int main() try {
    const auto toluene = ostrel::fluid::open("toluene", "model=pr");
    studies::cycle_definition wanted;
    wanted.evaporator_p = 10e5;
    wanted.condenser_t = 320;
    const studies::cycle_figures found = studies::solve(toluene, wanted).figures;
    std::printf("efficiency %.4f\n", found.efficiency);
    const double left = found.heat_in - found.heat_out - found.net_work;
    return std::abs(left) < 1e-9 * found.heat_in && found.efficiency > 0.1 && found.efficiency < 0.4 ? 0 : 1;
} catch (const std::exception &problem) {
    std::printf("%s\n", problem.what());
    return 1;
}
