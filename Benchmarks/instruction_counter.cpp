// SPDX-License-Identifier: MIT
// Under callgrind, this program leaves one dump for each path of paths.h, with the cost of a few passes. The trigger of
// the dump is the number of passes and the path's name. scripts/count_instructions reads the dumps.
#include "Benchmarks/paths.h"

#include <valgrind/callgrind.h>

int main() {
    const benchmarks::fluids folder;
    int failures = 0;
    for (const benchmarks::path &path : benchmarks::paths()) {
        const int passes = path.costly ? 1 : 20;
        path.prepare();
        const std::string trigger = std::to_string(passes) + " " + path.name;
        bool ok = path.run();
        CALLGRIND_ZERO_STATS;
        for (int pass = 0; pass < passes; ++pass)
            ok = path.run() && ok;
        CALLGRIND_DUMP_STATS_AT(trigger.c_str());
        if (!ok) {
            std::fprintf(stderr, "%s does not converge\n", path.name.c_str());
            ++failures;
        }
    }
    return failures == 0 ? 0 : 1;
}
