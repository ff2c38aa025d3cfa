// SPDX-License-Identifier: MIT
// The C++ face must compile alone and without exceptions; each of its templates is used once.
#include "ostrel.hpp"

template class ostrel::result<double>;
template class ostrel::result<ostrel::table>;

int main() {
    auto fluid = ostrel::fluid::try_open("toluene");
    if (!fluid)
        return fluid.error().status;
    const auto values = fluid->try_values<"d, cp">("pt", 1e5, 400);
    const auto table = fluid->try_evaluate("pt", "d", {}, {});
    const auto phases = fluid->try_saturation("t", "d", {});
    const auto found = ostrel::try_find("toluene");
    return values.status() + table.status() + phases.status() + found.status();
}
