// SPDX-License-Identifier: MIT
// The cost of one request through the entry point: with a new state, with the kept state, and with
// another fluid than the one before.
#include "ostrel.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <string_view>

namespace {

double ask(std::string_view fluid, double temperature, double volume, std::string_view output) {
    char text[256];
    return ostrel_prop(fluid.data(), "tv", &temperature, &volume, output.data(), text, fluid.size(), 2, output.size(),
                       sizeof text);
}

// One fluid of each model; toluene's heat capacity has 37 Einstein terms, which show in "u" but not in "p".
constexpr std::string_view fluids[] = {"nitrogen", "argon", "toluene"};
constexpr std::string_view outputs[] = {"p", "u"};

void request(benchmark::State &state, double step) {
    setenv("OSTREL_FLUIDS", OSTREL_FLUID_FILES, 1);
    const std::string_view fluid = fluids[state.range(0)];
    const std::string_view output = outputs[state.range(1)];
    double temperature = 400.0;
    benchmark::DoNotOptimize(ask(fluid, temperature, 0.2, output));
    for (auto _ : state) {
        temperature += step;
        benchmark::DoNotOptimize(ask(fluid, temperature, 0.2, output));
    }
    state.SetLabel(std::string(fluid) + " " + std::string(output));
}

void new_state(benchmark::State &state) {
    request(state, 1e-9);
}
BENCHMARK(new_state)->ArgsProduct({{0, 1, 2}, {0, 1}});

void kept_state(benchmark::State &state) {
    request(state, 0.0);
}
BENCHMARK(kept_state)->ArgsProduct({{0, 1, 2}, {0, 1}});

void new_fluid(benchmark::State &state) {
    setenv("OSTREL_FLUIDS", OSTREL_FLUID_FILES, 1);
    bool other = false;
    for (auto _ : state) {
        other = !other;
        benchmark::DoNotOptimize(ask(other ? "water" : "toluene", 400.0, 0.2, "p"));
    }
}
BENCHMARK(new_fluid);

} // namespace
