// SPDX-License-Identifier: MIT
// Measures the time of every path in paths.h; --benchmark_filter=EXPRESSION selects paths. The name of a request is its
// pair, its model and, unless it is the pressure, its output.
#include "Benchmarks/paths.h"

#include <benchmark/benchmark.h>

int main(int argc, char **argv) {
    const benchmarks::fluids folder;
    for (const benchmarks::path &path : benchmarks::paths())
        benchmark::RegisterBenchmark(path.name.c_str(), [path](benchmark::State &state) {
            path.prepare();
            bool ok = true;
            for (auto _ : state)
                ok = path.run() && ok;
            if (!ok)
                state.SkipWithError("does not converge");
        });
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
}
