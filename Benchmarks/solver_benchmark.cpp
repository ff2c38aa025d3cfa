// SPDX-License-Identifier: MIT
// The cost of a request by input pair and model, of a saturation request, and of building the saturation table.
//
//   solver_benchmark                          measures times
//   solver_benchmark --count MODEL PAIR N     makes N requests, for scripts/count_instructions; PAIR may be "table"
#include "Thermodynamics/thermodynamics.h"
#include "ostrel.h"

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

constexpr std::string_view models[] = {"IG", "VDW", "MH", "SRK", "PR", "RK", "CII", "IZG"};
constexpr std::string_view pairs[] = {"tv", "td", "pt", "pv", "pd", "ph", "ps", "ts",
                                      "vh", "vs", "vu", "dh", "ds", "du", "hs"};
constexpr std::string_view saturation_pairs[] = {"pq", "tq"};

/// A folder with the same fluid in every model; it goes away with the program.
class fluids {
public:
    fluids() {
        std::string name = (std::filesystem::temp_directory_path() / "ostrel-benchmark-XXXXXX").string();
        path_ = mkdtemp(name.data());
        for (std::size_t i = 0; i < std::size(models); ++i)
            std::ofstream(path_ / (std::string(models[i]) + ".osd"))
                << "names\nmodel fluid\nlabel\nconstants\n44.0\nT\n304.1282\n72.8\n0.2746\n184.0\n0\n0\n"
                << i + 1 << (i == 7 ? "\n0.9\n" : "\n") << "F\n5\n472.3\n4\n2*957.3 1952.2 3280.5\n"
                << "1\n1e-5\n1\n0.02\n";
        setenv("OSTREL_FLUIDS", path_.c_str(), 1);
    }
    fluids(const fluids &) = delete;
    fluids &operator=(const fluids &) = delete;
    ~fluids() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

private:
    std::filesystem::path path_;
};

struct answer {
    double value;
    bool ok;
};
answer ask(std::string_view model, std::string_view pair, double input1, double input2, std::string_view output) {
    char text[256];
    const double value = ostrel_prop(model.data(), pair.data(), &input1, &input2, output.data(), text, model.size(),
                                     pair.size(), output.size(), sizeof text);
    return {value, std::string_view(text, 9) == "No errors"};
}

/// Both inputs of a pair at one state of a dense vapor, 1.1 of the critical temperature.
std::array<double, 2> inputs(std::string_view model, std::string_view pair) {
    if (pair == "pq")
        return {2.5e6, 1.0};
    if (pair == "tq")
        return {265.0, 1.0};
    const auto value = [&](char letter) { return ask(model, "tv", 334.541, 0.01, std::string_view(&letter, 1)).value; };
    return {value(pair[0]), value(pair[1])};
}

/// Requests that differ a little, so that none is answered from the kept state; false if one fails.
bool request(std::string_view model, std::string_view pair, const std::array<double, 2> &at, std::size_t number) {
    const double factor = 1 + 1e-7 * static_cast<double>(number % 1000);
    const answer got = ask(model, pair, at[0] * factor, at[1], "t");
    benchmark::DoNotOptimize(got.value);
    return got.ok;
}

/// Loads the model; for a saturation pair builds its table, since one that stands is kept for all fluids.
std::array<double, 2> prepare(std::string_view model, std::string_view pair) {
    const std::array<double, 2> at = inputs(model, "tv");
    request(model, "tv", at, 0);
    if (std::ranges::find(saturation_pairs, pair) != std::end(saturation_pairs))
        thermodynamics::init_saturation_curves();
    return inputs(model, pair);
}

void measure_request(benchmark::State &state, std::string_view model, std::string_view pair) {
    const std::array<double, 2> at = prepare(model, pair);
    std::size_t number = 0;
    bool ok = request(model, pair, at, number);
    for (auto _ : state)
        ok = request(model, pair, at, ++number) && ok;
    if (!ok)
        state.SkipWithError("does not converge");
}

void measure_table(benchmark::State &state, std::string_view model) {
    prepare(model, "tv");
    for (auto _ : state)
        thermodynamics::init_saturation_curves();
}

int count(std::string_view model, std::string_view pair, std::size_t times) {
    const bool table = pair == "table";
    const std::array<double, 2> at = prepare(model, table ? "tv" : pair);
    bool ok = true;
    for (std::size_t i = 1; i <= times; ++i)
        if (table)
            thermodynamics::init_saturation_curves();
        else
            ok = request(model, pair, at, i) && ok;
    if (!ok)
        std::fprintf(stderr, "%s %s does not converge\n", std::string(model).c_str(), std::string(pair).c_str());
    return ok ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
    const fluids folder;
    if (argc == 5 && std::string_view(argv[1]) == "--count")
        return count(argv[2], argv[3], std::strtoul(argv[4], nullptr, 10));
    const auto add = [](std::string_view pair, std::string_view model) {
        const std::string name = std::string(pair) + "/" + std::string(model);
        if (pair == "table")
            benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) { measure_table(state, model); });
        else
            benchmark::RegisterBenchmark(name.c_str(),
                                         [=](benchmark::State &state) { measure_request(state, model, pair); });
    };
    for (const std::string_view pair : pairs)
        for (const std::string_view model : models)
            add(pair, model);
    for (const std::string_view pair : {saturation_pairs[0], saturation_pairs[1], std::string_view("table")})
        for (const std::string_view model : models)
            if (model != "IG" && model != "IZG") // they have no curve
                add(pair, model);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
