// SPDX-License-Identifier: MIT
// Asks through the C++ face of a handle for the density that is an input itself.
#include "ostrel.hpp"

#include <cstdio>

int main() try {
    const auto toluene = ostrel::fluid::open("toluene", "model=pr");
    const auto [t, d] = toluene.values<"t, d">("td", 500, 5);
    std::printf("%g K, %g kg/m3, %s\n", t, d, toluene.text("model").data());
    return t == 500 && d == 5 ? 0 : 1;
} catch (const ostrel::failure &problem) {
    std::printf("%s\n", problem.what());
    return 1;
}
