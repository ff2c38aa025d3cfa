// SPDX-License-Identifier: MIT
// Prints the time per state of the array calls of fluid handles, with std::exp as the yardstick in the same run.
//
//   handle_times [FLUID]                      the table, for Soave-Redlich-Kwong and Peng-Robinson
//   handle_times --map FLUID MODEL PAIR       CSV: t/tc, p/pc and the time per state [exp] over the p-T plane
//
// The yardstick is the throughput of std::exp in a loop over 256 arguments. Times are the least of many rounds.
#include "Benchmarks/handle_states.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace {

using benchmarks::batch;
using benchmarks::handle;

/// The least time of a call [ns].
template <class Call>
double least_time(Call call, int rounds = 400) {
    double least = std::numeric_limits<double>::infinity();
    for (int round = 0; round < rounds; ++round) {
        const auto begin = std::chrono::steady_clock::now();
        call();
        const auto end = std::chrono::steady_clock::now();
        least = std::min(least, std::chrono::duration<double, std::nano>(end - begin).count());
    }
    return least;
}

double yardstick() {
    std::array<double, batch> x{};
    for (std::size_t i = 0; i < batch; ++i)
        x[i] = -1.0 + static_cast<double>(i) / 128.0;
    volatile double sink = 0;
    return least_time([&] {
               double sum = 0;
               for (const double one : x)
                   sum += std::exp(one);
               sink = sum;
           }) /
           batch;
}

void print_aim(double aim) {
    if (aim > 0)
        std::printf(" %6g", aim);
    else
        std::printf(" %6s", "-");
}

void table(const std::string &name) {
    for (const std::string model : {"srk", "pr"}) {
        const double unit = yardstick();
        std::printf("%s, %s; std::exp %.2f ns. Times per state in std::exp:\n", name.c_str(), model.c_str(), unit);
        std::printf("%-6s %-12s %-8s %6s %6s %6s %6s %6s %6s %6s\n", "inputs", "outputs", "states", "aim", "mixed",
                    "vapor", "liquid", "sup.c.", "aim", "dome");
        for (const benchmarks::measured &row : benchmarks::measurements) {
            const handle fluid(name, "model=" + model + (*row.options != '\0' ? std::string("; ") + row.options : ""));
            const handle stable(name, "model=" + model);
            std::printf("%-6s %-12s %-8s", row.inputs, row.outputs, *row.options != '\0' ? "surface" : "stable");
            print_aim(row.aim);
            const auto print = [&](const benchmarks::states &at) {
                benchmarks::query query(stable, row.inputs, row.outputs, at);
                std::printf(" %6.1f", least_time([&] { query.run(fluid); }) / batch / unit);
            };
            print(benchmarks::mixed(stable));
            print({stable, benchmarks::region::vapor});
            print({stable, benchmarks::region::liquid});
            print({stable, benchmarks::region::supercritical});
            print_aim(row.aim_in_dome);
            print({stable, benchmarks::region::dome});
            std::printf("\n");
        }
        const handle fluid(name, "model=" + model);
        const benchmarks::states dome(fluid, benchmarks::region::dome);
        std::vector<double> p(batch), liquid(2 * batch), vapor(2 * batch);
        ostrel_fluid_evaluate(fluid.get(), "tv", "p", batch, dome.t.data(), dome.v.data(), p.data(), nullptr);
        const auto saturation = [&](const char *input, const std::vector<double> &at) {
            return least_time([&] {
                       ostrel_fluid_saturation(fluid.get(), input, "p,d", batch, at.data(), liquid.data(), vapor.data(),
                                               nullptr);
                   }) /
                   batch / unit;
        };
        std::printf("saturation at t -> p, both d: aim 25, %.1f\n", saturation("t", dome.t));
        std::printf("saturation at p -> t, both d: aim 40, %.1f\n", saturation("p", p));
        const benchmarks::states vapor_states(fluid, benchmarks::region::vapor);
        double in_array = 0;
        {
            benchmarks::query query(fluid, "ph", "t", vapor_states);
            in_array = least_time([&] { query.run(fluid); }) / batch / unit;
            volatile double sink = 0;
            const double alone =
                least_time([&] {
                    for (std::size_t i = 0; i < batch; ++i)
                        sink = ostrel_fluid_value(fluid.get(), "ph", query.first[i], query.second[i], "t", nullptr);
                }) /
                batch / unit;
            std::printf("one state by ostrel_fluid_value, beyond its share of an array: aim 15, %.1f\n",
                        alone - in_array);
        }
        const auto opening = [&](const std::string &by) {
            return least_time([&] { const handle opened(by, "model=" + model); }, 60) / unit;
        };
        // 20 and 50 microseconds, where std::exp takes 2.7 ns
        std::printf("opening by file name: aim 7400, %.0f; by alias: aim 18500, %.0f\n\n", opening(name),
                    opening("R600"));
    }
}

void map(const std::string &name, const std::string &model, const std::string &pair) {
    const handle fluid(name, "model=" + model);
    const double unit = yardstick();
    const double Tc = fluid.constant("t_crit");
    const double pc = fluid.constant("p_crit");
    constexpr int columns = 60;
    constexpr int rows = 48;
    std::printf("t/tc,p/pc,time\n");
    for (int i = 0; i < columns; ++i) {
        for (int k = 0; k < rows; ++k) {
            benchmarks::states at;
            benchmarks::spread u;
            const double T = Tc * (0.4 + 2.0 * i / columns);
            const double p = pc * std::pow(10.0, -3.0 + 5.0 * k / rows);
            while (at.t.size() < batch) { // a small cell around the point
                const double t = T * (1.0 + 0.01 * u());
                int status = 0;
                const double v = ostrel_fluid_value(fluid.get(), "tp", t, p * (1.0 + 0.05 * u()), "v", &status);
                if (status != OSTREL_OK)
                    break;
                at.t.push_back(t);
                at.v.push_back(v);
            }
            if (at.t.size() < batch)
                continue;
            benchmarks::query query(fluid, pair, "t,v", at);
            std::printf("%.5f,%.6g,%.1f\n", T / Tc, p / pc, least_time([&] { query.run(fluid); }, 12) / batch / unit);
        }
    }
}

} // namespace

int main(int count, char **words) {
    if (count > 4 && std::string_view(words[1]) == "--map")
        map(words[2], words[3], words[4]);
    else
        table(count > 1 ? words[1] : "nbutane");
}
