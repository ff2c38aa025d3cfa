// SPDX-License-Identifier: MIT
// States of a fluid over its whole stable surface, and how well a handle finds each of them from every pair of inputs.
//
// The states and their values are those of Tests/Support/wide_surface.h. The error of a state that was found is in
// units of its conditioning: a unit is what a change of the two inputs by one in the last place does to it, by the
// partial derivatives at the state. To the change of u, h and s counts the rounding of the terms that they are the sum
// of, since their zeros are far from those of the terms, and T, v, P and q have their own last place.
//
// These states are not determined by the inputs, and are counted but not compared:
//   twin        "th": another state of lower density has the same values. On a surface whose line of saturation ends:
//               a gas below t_sat_min, in pairs without t, if a state at or above t_sat_min has the same values
//   fold        "pv" and "ts" of SRK and PR where dP/dT < 0 at constant volume
//   tie         "pt": the pressure is that of saturation within rounding, so that either phase is right
//   dim         a unit is more than a hundredth of the state, as in "tu" of a gas that is nearly ideal. In "su": the
//   state
//               that was found has the same values within rounding. A cold liquid and the mixtures beside it, in which
//               the pressure is nearly 0, differ in u by less than that
#pragma once

#include "Tests/Support/wide_surface.h"
#include "ostrel_fluid.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace convergence {

using support::wide;
using support::wide_state;
using support::wide_surface;

/// The words and the codes of the models.
struct model {
    const char *word;
    int code;
};
inline constexpr model models[] = {{"vdw", 2}, {"mh", 3}, {"srk", 4}, {"pr", 5}, {"rk", 6}, {"cii", 7}};
inline constexpr const char *fluids[] = {"ammonia",  "argon", "benzene", "co2",      "d5",       "d6",      "helium",
                                         "hydrogen", "mdm",   "methane", "methanol", "mlinolen", "nbutane", "neon",
                                         "nnonadec", "r134a", "r245fa",  "sf6",      "toluene",  "water"};
inline constexpr const char *pairs[] = {"tv", "td", "pt", "pv", "pd", "ph", "ps", "pq", "ts", "tq", "vh",
                                        "vs", "vu", "dh", "ds", "du", "hs", "pu", "su", "th", "tu"};
/// A state is found if its error is less than this many units.
inline constexpr wide limit = 32;

/// A failure with an error of more units than this one is a wrong state; the others only lack digits.
inline constexpr wide wrong_from = 10000;

inline constexpr wide unit = std::numeric_limits<double>::epsilon();

/// A quantity with its derivatives, and by how much one in the last place changes it.
struct quantity {
    wide x, T, v, last_place;
};

enum class place { single, mixture, nowhere };
struct known_state {
    place where = place::nowhere;
    wide_state at;
    wide_surface::line line; ///< at its temperature, if there is one
};

/// How many states there were with one pair, and what came of them. Failures include the wrong ones.
struct tally {
    long states = 0, failures = 0, wrong = 0, twins = 0, folds = 0, ties = 0, dim = 0;
    long plain_states = 0, plain_failures = 0;
    wide sum = 0, largest = 0;
    double time = 0, longest = 0; ///< s
    void add(const tally &other) {
        states += other.states, failures += other.failures, wrong += other.wrong, twins += other.twins,
            folds += other.folds;
        ties += other.ties, dim += other.dim, sum += other.sum, time += other.time;
        plain_states += other.plain_states, plain_failures += other.plain_failures;
        largest = std::max(largest, other.largest);
        longest = std::max(longest, other.longest);
    }
    long compared() const { return states - twins - folds - ties - dim; }
};
using tallies = std::map<std::string, tally>;

class fluid_states {
public:
    fluid_states(const std::string &folder, const std::string &name, const std::string &model)
        : surface_(support::wide_fluid(folder + "/" + name + ".osd"), model), name_(name), model_(model) {
        ostrel_fluid *opened = nullptr;
        if (ostrel_fluid_open_file((folder + "/" + name + ".osd").c_str(), ("model=" + model).c_str(), &opened) != 0)
            throw std::runtime_error(ostrel_last_message());
        handle_.reset(opened);
        T_ = surface_.fluid().Tc;
        P_ = surface_.fluid().Pc;
        energy_ = surface_.fluid().R() * T_;
        v_ = energy_ / P_;
        lowest_ = ostrel_fluid_constant(opened, "t_sat_min");
    }

    const wide_surface &surface() const { return surface_; }
    const ostrel_fluid *handle() const { return handle_.get(); }
    wide unit_of(char letter) const {
        switch (letter) {
        case 't':
            return T_;
        case 'p':
            return P_;
        case 'v':
            return v_;
        case 'd':
            return 1 / v_;
        case 's':
            return surface_.fluid().R();
        case 'q':
            return 1;
        default:
            return energy_;
        }
    }

    /// The line at t. Where the handle refuses the phases since cv of the liquid is negative, the search starts at the
    /// next temperature that has them.
    wide_surface::line line_at(double t) const {
        double liquid = 0, vapor = 0, warm = t;
        if (!(t < T_) || !(t >= lowest_))
            return {};
        while (ostrel_fluid_saturation(handle(), "t", "v", 1, &warm, &liquid, &vapor, nullptr) != 0)
            if ((warm *= 1.002) > T_)
                return {};
        wide_surface::line found = surface_.saturated(warm / T_, liquid / v_, vapor / v_);
        for (; warm > t && found.found; found = surface_.saturated(warm / T_, found.liquid.v, found.vapor.v))
            warm = std::max(warm / 1.002, t);
        return found;
    }
    /// What the surface has at t and v; `line` is that of t.
    known_state look(wide T, wide v, const wide_surface::line &line) const {
        known_state found;
        found.line = line;
        if (!(v > surface_.b) || v <= 0)
            return found;
        found.at = surface_.at(T, v);
        if (T < 1 && line.found) {
            if (v > line.liquid.v && v < line.vapor.v) {
                found.where = place::mixture;
                found.at = surface_.mixture(line, v);
                if (line.liquid.cv <= 0 || line.vapor.cv <= 0)
                    found.where = place::nowhere;
                return found;
            }
            if (!falls(T, v, v < line.liquid.v ? line.liquid.v : 1e4L * v))
                return found;
        } else if (!falls(T, v, 1e4L * v)) {
            return found;
        }
        if (found.at.cv > 0 && found.at.P > 0)
            found.where = place::single;
        return found;
    }

    static quantity value_of(char letter, const wide_state &z) {
        const wide h_v = z.T * z.P_T + z.v * z.P_v;
        switch (letter) {
        case 't':
            return {z.T, 1, 0, unit * z.T};
        case 'p':
            return {z.P, z.P_T, z.P_v, unit * z.P};
        case 'v':
            return {z.v, 0, 1, unit * z.v};
        case 'd':
            return {1 / z.v, 0, -1 / (z.v * z.v), unit / z.v};
        case 'h':
            return {z.h(), z.cv + z.v * z.P_T, h_v, unit * (z.u_size + std::abs(z.P * z.v))};
        case 's':
            return {z.s, z.cv / z.T, z.P_T, unit * z.s_size};
        case 'u':
            return {z.u, z.cv, z.u_v, unit * z.u_size};
        default:
            return {z.q, z.q_T, z.q_v, unit * z.q};
        }
    }

    /// One unit of T, v, P and q for a pair at a state.
    struct units {
        wide T, v, P, q;
    };
    static units units_of(quantity a, quantity b, const wide_state &z, const wide_surface::line &line) {
        a.last_place += std::abs(a.T) * unit * z.T_size;
        b.last_place += std::abs(b.T) * unit * z.T_size;
        const wide own_T = z.T + z.T_size;
        const wide det = std::abs(a.T * b.v - a.v * b.T);
        const auto of = [&](wide T, wide v, wide own) {
            return (std::abs(T * b.v - v * b.T) * a.last_place + std::abs(a.T * v - a.v * T) * b.last_place) / det +
                   own;
        };
        units result = {of(1, 0, unit * z.T), of(0, 1, unit * z.v),
                        of(z.P_T, z.P_v, unit * (z.P + std::abs(z.P_T) * z.T_size)), 1};
        if (z.q == z.q) { // an own last place of T moves both phases
            const wide edges = (1 - z.q) * line.liquid.v + z.q * line.vapor.v + z.v;
            result.q = of(z.q_T, z.q_v, unit * (z.q + std::abs(z.q_T) * own_T + edges * z.q_v));
            result.v += unit * std::abs(z.q_T / z.q_v) * own_T;
            result.P += unit * z.P_T * own_T;
        }
        return result;
    }

    struct verdict {
        wide error = 0; ///< in units; infinite if there was no state
        wide T_unit = 0, v_unit = 0;
        ostrel_state found;
        double time = 0;
    };
    verdict solve(const std::string &pair, const known_state &known) const {
        const quantity a = value_of(pair[0], known.at), b = value_of(pair[1], known.at);
        const auto first = static_cast<double>(a.x * unit_of(pair[0]));
        const auto second = static_cast<double>(b.x * unit_of(pair[1]));
        verdict result;
        const auto start = std::chrono::steady_clock::now();
        ostrel_fluid_solve(handle(), pair.c_str(), 1, &first, &second, &result.found);
        result.time = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        units of = units_of(a, b, known.at, known.line);
        if (known.line.found) { // where a unit reaches across the edge of the dome, the other side counts, too
            for (const wide_state *edge : {&known.line.liquid, &known.line.vapor}) {
                if (std::abs(known.at.v - edge->v) > 2 * limit * of.v)
                    continue;
                const wide_state other = known.where == place::mixture ? surface_.at(known.at.T, known.at.v)
                                                                       : surface_.mixture(known.line, known.at.v);
                const units more = units_of(value_of(pair[0], other), value_of(pair[1], other), other, known.line);
                of.T = std::max(of.T, more.T), of.v = std::max(of.v, more.v), of.P = std::max(of.P, more.P);
            }
        }
        result.T_unit = of.T;
        result.v_unit = of.v;
        if (result.found.status != OSTREL_OK) {
            result.error = std::numeric_limits<wide>::infinity();
            return result;
        }
        const auto distance = [](wide found, wide truth, wide in) { return std::abs(found - truth) / in; };
        result.error =
            std::max({distance(result.found.t / T_, known.at.T, of.T), distance(result.found.v / v_, known.at.v, of.v),
                      distance(result.found.p / P_, known.at.P, of.P)});
        if (known.where == place::mixture && result.found.q == result.found.q)
            result.error = std::max(result.error, distance(result.found.q, known.at.q, of.q));
        if (!(result.error >= 0))
            result.error = std::numeric_limits<wide>::infinity();
        return result;
    }
    /// Whether the state that was found has the inputs of the pair, too.
    bool also_has(const std::string &pair, const known_state &known, const ostrel_state &found) const {
        const known_state other = look(found.t / T_, found.v / v_, line_at(found.t));
        if (other.where == place::nowhere)
            return false;
        for (const char letter : {pair[0], pair[1]}) {
            const quantity wanted = value_of(letter, known.at), there = value_of(letter, other.at);
            const wide room = wanted.last_place + there.last_place + std::abs(there.T) * unit * other.at.T +
                              std::abs(there.v) * unit * other.at.v +
                              unit * (std::abs(there.T) * other.at.T_size + std::abs(wanted.T) * known.at.T_size);
            if (!(std::abs(wanted.x - there.x) <= limit * room))
                return false;
        }
        return true;
    }

    /// Whether what was found is another solution of "pv" or "ts" beyond a fold, which is the one that is meant.
    bool nearer_to_ideal(const std::string &pair, const known_state &known, const ostrel_state &found) const {
        if (pair == "ts")
            return also_has(pair, known, found);
        if (pair != "pv" && pair != "pd")
            return false;
        const wide T = found.t / T_, ideal = known.at.P * known.at.v;
        return std::abs(surface_.at(T, found.v / v_).P / known.at.P - 1) < 1e-12L &&
               std::abs(T - ideal) < std::abs(known.at.T - ideal);
    }
    /// The limit, in units. The searches for Martin and Hou's saturation have more rounding than the inputs.
    wide limit_at(const known_state &known) const {
        return model_ == "mh" && known.where == place::mixture ? 16 * limit : limit;
    }

    /// Tries every pair at a state. Failures are told with the shortest way to see them again.
    void judge(const known_state &known, tallies &counts, std::vector<std::string> &told) const {

        for (const std::string pair : pairs) {
            const bool has_q = pair[1] == 'q';
            if (known.where == place::mixture ? pair == "pt" : has_q)
                continue;
            tally &count = counts[pair];
            ++count.states;
            if ((model_ == "srk" || model_ == "pr") && (pair == "pv" || pair == "pd" || pair == "ts") &&
                known.at.P_T < 0) {
                ++count.folds;
                continue;
            }
            const verdict was = solve(pair, known);
            count.time += was.time;
            count.longest = std::max(count.longest, was.time);
            if (was.error < limit_at(known)) {
                count.sum += was.error;
                count.largest = std::max(count.largest, was.error);
                continue;
            }
            if (!(was.T_unit < 0.01L * known.at.T && was.v_unit < 0.01L * known.at.v)) {
                ++count.dim;
                continue;
            }
            const bool solved = was.found.status == OSTREL_OK;
            if (pair == "pt" && known.line.found) {
                const wide psat = known.line.vapor.P;
                if (std::abs(known.at.P - psat) < 4 * unit * (psat + known.line.P_T * known.at.T)) {
                    ++count.ties;
                    continue;
                }
            }
            if (solved && pair == "th" && was.found.v / v_ > known.at.v && also_has(pair, known, was.found)) {
                ++count.twins;
                continue;
            }
            if (solved && pair == "su" && also_has(pair, known, was.found)) {
                ++count.dim;
                continue;
            }
            if (solved && pair[0] != 't' && pair != "pt" && known.at.T * T_ < lowest_ && was.found.t >= lowest_ &&
                also_has(pair, known, was.found)) {
                ++count.twins;
                continue;
            }
            if (solved && (model_ == "srk" || model_ == "pr") && nearer_to_ideal(pair, known, was.found)) {
                ++count.folds;
                continue;
            }
            ++count.failures;
            count.wrong += !(was.error < wrong_from);
            if (++told_[pair] <= 3) {
                char text[500];
                std::snprintf(
                    text, sizeof text,
                    "%s model=%s \"%s\" %.17g %.17g: T/Tc %.12g v/vc %.12g P/Pc %.6g q %.6g; status %d, "
                    "T/Tc %.12g v/vc %.12g P/Pc %.6g q %.6g (relative errors of T %.1e, of v %.1e), error %.3g%s",
                    name_.c_str(), model_.c_str(), pair.c_str(), was.found.first, was.found.second,
                    static_cast<double>(known.at.T), static_cast<double>(known.at.v / surface_.Zc),
                    static_cast<double>(known.at.P), static_cast<double>(known.at.q), was.found.status,
                    static_cast<double>(was.found.t / T_), static_cast<double>(was.found.v / v_ / surface_.Zc),
                    static_cast<double>(was.found.p / P_), was.found.q,
                    static_cast<double>(was.found.t / T_ / known.at.T - 1),
                    static_cast<double>(was.found.v / v_ / known.at.v - 1), static_cast<double>(was.error),
                    solved && also_has(pair, known, was.found) ? ", a state with the same values" : "");
                told.emplace_back(text);
            }
        }
    }

    /// Tries every pair at `count` states of a sequence that is the same each time.
    template <class Also>
    void judge_many(long count, tallies &counts, std::vector<std::string> &told, Also also) const {
        std::seed_seq seed(name_.begin(), name_.end());
        std::mt19937_64 numbers(seed);
        for (long found = 0, tries = 0; found < count && tries < 20 * count; ++tries)
            if (const auto known = drawn(numbers)) {
                judge(*known, counts, told);
                also(++found, *known);
            }
    }

    /// A state of a repeatable sequence; none if the numbers that were drawn have none.
    std::optional<known_state> drawn(std::mt19937_64 &numbers) const {
        const auto uniform = [&] { return static_cast<double>(numbers() >> 11) * 0x1p-53; };
        const auto power = [&](double low, double high) { return std::pow(10.0, low + (high - low) * uniform()); };
        const double kind = uniform();
        const auto Tc = static_cast<double>(T_);
        if (kind < 0.45) { // the dome and both sides of its edge
            double t = Tc * (uniform() < 0.5 ? 1 - power(-8, -0.155) : 0.3 + 0.7 * uniform());
            if (!(t > lowest_))
                t = lowest_ + (Tc - lowest_) * uniform();
            const auto line = line_at(t);
            if (!line.found)
                return std::nullopt;
            wide v = 0;
            if (kind < 0.25) {
                double q = uniform();
                if (const double chosen = uniform(); chosen < 0.4)
                    q = chosen < 0.2 ? power(-10, 0) : 1 - power(-10, 0);
                v = line.liquid.v + q * (line.vapor.v - line.liquid.v);
            } else {
                const double away = power(-10, -3);
                v = uniform() < 0.5 ? line.liquid.v - (line.liquid.v - surface_.b) * away : line.vapor.v * (1 + away);
            }
            return rounded(t, v, line);
        }
        double t = Tc * 0.3 * std::exp(std::log(10 / 0.3) * uniform());
        wide v = 0;
        if (kind < 0.6) { // around the critical point
            t = Tc * (1 + (uniform() < 0.5 ? -1 : 1) * power(-8, -3));
            v = surface_.Zc * (1 + (uniform() < 0.5 ? -1 : 1) * power(-8, -3));
        } else { // the gas down to 1e-6 Pa, and up to the densest liquid
            const bool dilute = kind < 0.75;
            const wide low = dilute ? 1e-6L / P_ / (t / T_) : 1e-3L, dense = 30;
            v = std::max<wide>(surface_.b, 0) + 1 / (low * std::exp(std::log(dense / low) * uniform()));
        }
        return rounded(t, v, line_at(t));
    }

private:
    std::optional<known_state> rounded(double t, wide v, const wide_surface::line &line) const {
        known_state known = look(t / T_, static_cast<double>(v * v_) / v_, line);
        if (known.where == place::nowhere || known.at.P * P_ < 1e-6L)
            return std::nullopt;
        return known;
    }
    /// Whether the pressure falls with the volume from v to `to`: at steps of 4 % of v - b, and where it falls least
    /// between them.
    bool falls(wide T, wide v, wide to) const {
        if (!(surface_.at(T, v).P_v < 0))
            return false;
        const bool loops = model_ == "mh" || ((model_ == "srk" || model_ == "pr") && T > 3) || T < 1;
        if (!loops)
            return true;
        const wide base = std::max<wide>(surface_.b, 0);
        const auto slope = [&](wide w) { return -surface_.helmholtz(T, base + w).vv * w * w; }; // of P in ln w, times w
        wide before = slope((v - base) / 1.04L), here = slope(v - base);
        for (wide w = v - base; base + w < std::min<wide>(to, 50); w *= 1.04L) {
            const wide next = slope(w * 1.04L);
            if (!(here < 0))
                return false;
            if (here >= before && here >= next) {
                wide low = std::max(w / 1.04L, v - base), high = std::min(w * 1.04L, to - base);
                for (int step = 0; step < 60; ++step) {
                    const wide a = low + (high - low) * 0.382L, b = low + (high - low) * 0.618L;
                    if (slope(a) > 0 || slope(b) > 0)
                        return false;
                    (slope(a) > slope(b) ? high : low) = slope(a) > slope(b) ? b : a;
                }
            }
            before = here;
            here = next;
        }
        return true;
    }

    struct closer {
        void operator()(ostrel_fluid *fluid) const { ostrel_fluid_close(fluid); }
    };
    wide_surface surface_;
    std::string name_, model_;
    std::unique_ptr<ostrel_fluid, closer> handle_;
    wide T_ = 0, P_ = 0, v_ = 0, energy_ = 0;
    double lowest_ = 0;
    mutable std::map<std::string, int> told_; ///< failures of each pair
};

} // namespace convergence
