// SPDX-License-Identifier: MIT
// States of a fluid for measurements of handles: spread over the vapor below Tc, the liquid, the supercritical states
// and the dome, the same in every run.
#pragma once

#include "ostrel_fluid.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace benchmarks {

/// An open handle.
class handle {
public:
    handle(const std::string &name, const std::string &options) {
        if (ostrel_fluid_open(name.c_str(), options.c_str(), &fluid_) != OSTREL_OK) {
            std::fprintf(stderr, "%s\n", ostrel_last_message());
            std::exit(1);
        }
    }
    handle(const handle &) = delete;
    handle &operator=(const handle &) = delete;
    ~handle() { ostrel_fluid_close(fluid_); }
    const ostrel_fluid *get() const { return fluid_; }
    double constant(const char *name) const { return ostrel_fluid_constant(fluid_, name); }

private:
    ostrel_fluid *fluid_ = nullptr;
};

/// The numbers are evenly spread between 0 and 1, and the same everywhere.
class spread {
public:
    double operator()() {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<double>(state_ >> 11) * 0x1p-53;
    }

private:
    std::uint64_t state_ = 1;
};

enum class region { vapor, liquid, supercritical, dome };
inline constexpr std::array<std::string_view, 4> region_names = {"vapor", "liquid", "supercritical", "dome"};
inline constexpr std::size_t batch = 256;

/// 256 states of a region, by t and v.
struct states {
    std::vector<double> t;
    std::vector<double> v;

    states(const handle &fluid, region where) {
        spread u;
        const double Tc = fluid.constant("t_crit");
        const double pc = fluid.constant("p_crit");
        const double lowest = std::max(0.6 * Tc, 1.01 * fluid.constant("t_sat_min"));
        while (t.size() < batch) {
            double T = where == region::supercritical ? Tc * (1.02 + 1.5 * u()) : lowest + (0.97 * Tc - lowest) * u();
            double second = 0.02 + 0.96 * u();
            const char *pair = "tq";
            if (where != region::dome) {
                pair = "tp";
                const double psat = ostrel_fluid_value(fluid.get(), "tq", T, 0.0, "p", nullptr);
                if (where == region::vapor)
                    second = psat * (0.05 + 0.9 * u());
                else if (where == region::liquid)
                    second = std::fmin(psat * (1.05 + 10.0 * u()), 5.0 * pc);
                else
                    second = pc * 0.05 * std::pow(80.0, u());
            }
            int status = 0;
            const double volume = ostrel_fluid_value(fluid.get(), pair, T, second, "v", &status);
            if (status == OSTREL_OK) {
                t.push_back(T);
                v.push_back(volume);
            }
        }
    }
    states() = default;
};

/// The states of the single phases in turns.
inline states mixed(const handle &fluid) {
    const states parts[3] = {{fluid, region::vapor}, {fluid, region::liquid}, {fluid, region::supercritical}};
    states all;
    for (std::size_t i = 0; i < batch; ++i) {
        all.t.push_back(parts[i % 3].t[i]);
        all.v.push_back(parts[i % 3].v[i]);
    }
    return all;
}

/// One array call: a pair of inputs, its outputs, and the values of the inputs at some states.
struct query {
    std::string inputs;
    std::string outputs;
    std::vector<double> first;
    std::vector<double> second;
    std::vector<double> values;
    std::vector<int> status;

    query(const handle &fluid, const std::string &pair, const std::string &wanted, const states &at)
        : inputs(pair), outputs(wanted), first(batch), second(batch), values(batch * 16), status(batch) {
        const auto one = [&](char letter, std::vector<double> &into) {
            const char name[2] = {letter, '\0'};
            ostrel_fluid_evaluate(fluid.get(), "tv", name, batch, at.t.data(), at.v.data(), into.data(), nullptr);
        };
        one(pair[0], first);
        one(pair[1], second);
    }
    bool run(const handle &fluid) {
        const int result = ostrel_fluid_evaluate(fluid.get(), inputs.c_str(), outputs.c_str(), batch, first.data(),
                                                 second.data(), values.data(), status.data());
        return result == OSTREL_OK || result == OSTREL_TWO_PHASE;
    }
};

/// The calls that the table of times has, with the aim in units of std::exp for one phase and inside the dome (0:
/// none).
struct measured {
    const char *inputs;
    const char *outputs;
    const char *options;
    double aim;
    double aim_in_dome;
};
inline constexpr measured measurements[] = {
    {"tv", "p", "states=surface", 1.5, 0},
    {"tv", "p", "", 4, 0},
    {"tv", "p,h,s,cp,c", "", 30, 0},
    {"pt", "d", "", 20, 0},
    {"ph", "t", "", 120, 200},
    {"ps", "t", "", 120, 200},
    {"hs", "p,t", "", 250, 200},
    {"du", "p,t,c", "", 60, 200},
    {"pu", "t", "", 0, 0},
    {"ts", "p", "", 0, 0},
    {"pd", "t", "", 0, 0},
    {"vs", "t", "", 0, 0},
    {"su", "t", "", 0, 0},
};

} // namespace benchmarks
