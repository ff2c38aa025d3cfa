// SPDX-License-Identifier: MIT
// States of fluid handles against handles.txt: arithmetic of 60 digits, the Helmholtz energy by differentiation, which
// shares nothing with the library (make_handle_vectors.py has the form of the file).
#include "Tests/Support/handles.h"

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

namespace {

using wide = long double;
constexpr double epsilon = std::numeric_limits<double>::epsilon();

/// A quantity and its derivatives with respect to t and v.
struct gradient {
    wide x, t, v;
};
struct line_point {
    double t;
    wide p, v_l, v_g;
    double c_p, c_l, c_g; ///< conditioning
};
struct output {
    std::string name;
    wide x;
    double scale; ///< its conditioning times its value
};
struct state_point {
    double t, v;
    bool mixture;
    wide q;
    std::map<char, gradient> of; ///< by letter
    std::vector<output> outputs;
};
struct reference_fluid {
    std::string name, options;
    std::vector<line_point> line;
    std::vector<state_point> states;

    std::string label() const { return name + " model=" + options; }
};

const std::vector<reference_fluid> &reference_fluids() {
    static const std::vector<reference_fluid> all = [] {
        std::vector<reference_fluid> result;
        std::ifstream in(OSTREL_TESTS "/Reference/handles.txt");
        for (std::string text; std::getline(in, text);) {
            if (text.starts_with('#'))
                continue;
            std::istringstream words(text);
            std::string kind;
            words >> kind;
            const auto number = [&] {
                std::string word;
                words >> word;
                return std::stold(word);
            };
            const auto narrow = [&] { return static_cast<double>(number()); };
            if (kind == "fluid") {
                reference_fluid one;
                words >> one.name;
                std::getline(words, one.options);
                one.options.erase(0, 1);
                result.push_back(one);
            } else if (kind == "line") {
                line_point one{};
                one.t = narrow();
                one.p = number(), one.v_l = number(), one.v_g = number();
                one.c_p = narrow(), one.c_l = narrow(), one.c_g = narrow();
                result.back().line.push_back(one);
            } else if (kind == "state") {
                state_point one{};
                one.t = narrow();
                one.v = narrow();
                std::string q;
                words >> q;
                one.mixture = q != "-";
                one.q = one.mixture ? std::stold(q) : 0;
                for (const char letter : {'p', 'h', 's', 'u'}) {
                    gradient &of = one.of[letter];
                    of.x = number(), of.t = number(), of.v = number();
                }
                const wide v = one.v;
                one.of['t'] = {one.t, 1, 0};
                one.of['v'] = {v, 0, 1};
                one.of['d'] = {1 / v, 0, -1 / (v * v)};
                result.back().states.push_back(one);
            } else {
                output one{};
                words >> one.name;
                one.x = number();
                one.scale = narrow();
                result.back().states.back().outputs.push_back(one);
            }
            EXPECT_FALSE(words.fail()) << text;
        }
        return result;
    }();
    return all;
}

support::handle &open(support::handle &handle, const reference_fluid &fluid) {
    EXPECT_EQ(
        handle.open_file(OSTREL_TESTS "/../Fluids/" + fluid.name + ".osd", ("model=" + fluid.options).c_str()).status,
        OSTREL_OK);
    return handle;
}
double relative(wide found, wide truth) {
    return static_cast<double>(std::abs(found / truth - 1));
}

TEST(handles_reference, has_every_model) {
    std::map<std::string, int> lines, states;
    for (const reference_fluid &fluid : reference_fluids()) {
        lines[fluid.options] += static_cast<int>(fluid.line.size());
        states[fluid.options] += static_cast<int>(fluid.states.size());
    }
    EXPECT_EQ(lines.size(), 7U);
    for (const auto &[options, count] : lines) {
        EXPECT_GE(count, options.ends_with("translated") ? 3 : 8) << options;
        EXPECT_GE(states[options], 11) << options;
    }
}

// The promise: psat and both volumes within 1e-12 plus 2e-13 times their conditioning.
TEST(handles_reference, saturation) {
    for (const reference_fluid &fluid : reference_fluids()) {
        support::handle handle;
        open(handle, fluid);
        for (const line_point &point : fluid.line) {
            SCOPED_TRACE(fluid.label() + " at " + std::to_string(point.t) + " K");
            double liquid[2], vapor[2];
            int status = -1;
            ASSERT_EQ(ostrel_fluid_saturation(handle, "t", "p,v", 1, &point.t, liquid, vapor, &status), OSTREL_OK);
            EXPECT_LE(relative(liquid[0], point.p), 1e-12 + 2e-13 * point.c_p);
            EXPECT_LE(relative(liquid[1], point.v_l), 1e-12 + 2e-13 * point.c_l);
            EXPECT_LE(relative(vapor[1], point.v_g), 1e-12 + 2e-13 * point.c_g);
            EXPECT_EQ(support::bits(liquid[0]), support::bits(vapor[0]));
            // The other way round, from the pressure; the conditioning of X in p is that in t divided by that of p.
            const auto p = static_cast<double>(point.p);
            double back_l[2], back_g[2];
            ASSERT_EQ(ostrel_fluid_saturation(handle, "p", "t,v", 1, &p, back_l, back_g, &status), OSTREL_OK);
            EXPECT_LE(relative(back_l[0], point.t), 1e-12);
            EXPECT_LE(relative(back_l[1], point.v_l), 1e-12 + 2e-13 * point.c_l);
            EXPECT_LE(relative(back_g[1], point.v_g), 1e-12 + 2e-13 * point.c_g);
        }
    }
}

constexpr char letters[] = {'t', 'p', 'v', 'd', 'h', 's', 'u'};

/// Every derivative of the list, with its bits from one call.
const std::vector<std::string> &derivatives() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> result;
        for (const auto &row : support::rows_of("derivatives"))
            result.push_back(row.name);
        return result;
    }();
    return names;
}
std::vector<double> asked(const support::handle &handle, double t, double v, const std::vector<std::string> &names,
                          int &status) {
    std::string list;
    for (const std::string &name : names)
        list += (list.empty() ? "" : ",") + name;
    std::vector<double> values(names.size());
    ostrel_fluid_evaluate(handle, "tv", list.c_str(), 1, &t, &v, values.data(), &status);
    return values;
}

/// How far computed values may be off the truth.
struct judge {
    double factor; ///< of the last place
    double largest = 0;
    std::string at{};
    void compare(const std::string &what, wide found, wide truth, wide scale) {
        const auto error = static_cast<double>(std::abs(found - truth) / (epsilon * scale));
        if (!(error <= largest)) {
            largest = error;
            at = what;
        }
        EXPECT_LE(error, factor) << what << ": " << found << " for " << truth;
    }
};

double factor_of(const reference_fluid &fluid) {
    // The coefficients of Martin and Hou are sums that cancel.
    return fluid.options == "mh" ? 300 : 24;
}

TEST(handles_reference, quantities_of_states) {
    for (const reference_fluid &fluid : reference_fluids()) {
        support::handle handle;
        open(handle, fluid);
        judge judged{factor_of(fluid)};
        const double energy = handle.constant("r_gas") * handle.constant("t_crit");
        for (const state_point &state : fluid.states) {
            SCOPED_TRACE(fluid.label() + " tv " + std::to_string(state.t) + " " + std::to_string(state.v));
            const std::vector<std::string> names = {"p", "h", "s", "u", "q"};
            int status = -1;
            const std::vector<double> values = asked(handle, state.t, state.v, names, status);
            EXPECT_EQ(status, OSTREL_OK);
            const double cp = ostrel_fluid_value(handle, "td", handle.constant("t_crit") * 2, 1e-3, "cp", nullptr);
            for (std::size_t k = 0; k < 4; ++k) {
                const gradient &of = state.of.at(names[k][0]);
                wide scale = std::abs(of.x) + std::abs(state.t * of.t) + std::abs(state.v * of.v);
                if (k == 1 || k == 3)
                    scale += energy + cp * state.t; // the zeros are not those of the terms
                if (k == 2)
                    scale += 10 * cp;
                judged.compare(names[k], values[k], of.x, scale);
            }
            EXPECT_EQ(std::isnan(values[4]), !state.mixture);
            if (state.mixture) {
                EXPECT_NEAR(values[4], static_cast<double>(state.q), 1e-9);
            }
        }
        RecordProperty(fluid.label(), std::to_string(judged.largest) + " " + judged.at);
    }
}

TEST(handles_reference, outputs_of_one_phase) {
    for (const reference_fluid &fluid : reference_fluids()) {
        support::handle handle;
        open(handle, fluid);
        judge judged{factor_of(fluid)};
        const double cp = ostrel_fluid_value(handle, "td", handle.constant("t_crit") * 2, 1e-3, "cp", nullptr);
        for (const state_point &state : fluid.states) {
            if (state.mixture)
                continue;
            SCOPED_TRACE(fluid.label() + " tv " + std::to_string(state.t) + " " + std::to_string(state.v));
            std::vector<std::string> names;
            for (const output &one : state.outputs)
                names.push_back(one.name);
            int status = -1;
            const std::vector<double> values = asked(handle, state.t, state.v, names, status);
            EXPECT_EQ(status, OSTREL_OK);
            ASSERT_EQ(names.size(), 18U);
            for (std::size_t k = 0; k < names.size(); ++k) {
                const output &one = state.outputs[k];
                wide scale = std::abs(one.x) + one.scale;
                if (one.name == "a" || one.name == "g")
                    scale += 10 * cp * state.t;
                if (std::abs(one.x) < 1e-40L && values[k] == 0) // rounding of the 60 digits
                    continue;
                judged.compare(one.name, values[k], one.x, scale);
            }
        }
        RecordProperty(fluid.label(), std::to_string(judged.largest) + " " + judged.at);
    }
}

TEST(handles_reference, derivatives_at_states) {
    ASSERT_EQ(derivatives().size(), 280U);
    for (const reference_fluid &fluid : reference_fluids()) {
        support::handle handle;
        open(handle, fluid);
        judge judged{factor_of(fluid)};
        for (const state_point &state : fluid.states) {
            SCOPED_TRACE(fluid.label() + (state.mixture ? " mixture" : "") + " tv " + std::to_string(state.t) + " " +
                         std::to_string(state.v));
            int status = -1;
            const std::vector<double> values = asked(handle, state.t, state.v, derivatives(), status);
            EXPECT_EQ(status, state.mixture ? OSTREL_TWO_PHASE : OSTREL_OK);
            // How much the derivatives change with t and v, from the handle itself, is only the scale of their errors.
            const double step = 1e-7;
            int ignored = 0;
            const std::vector<double> warm = asked(handle, state.t * (1 + step), state.v, derivatives(), ignored),
                                      wide_v = asked(handle, state.t, state.v * (1 + step), derivatives(), ignored);
            for (std::size_t k = 0; k < values.size(); ++k) {
                const std::string &name = derivatives()[k]; // "dX/dY|Z"
                const gradient &X = state.of.at(name[1]), &Y = state.of.at(name[4]), &Z = state.of.at(name[6]);
                const wide above = X.t * Z.v - X.v * Z.t, below = Y.t * Z.v - Y.v * Z.t;
                if (below == 0) {
                    EXPECT_TRUE(std::isnan(values[k])) << name << " " << values[k];
                    continue;
                }
                const wide truth = above / below;
                if (truth == 0) {
                    EXPECT_EQ(values[k], 0) << name;
                    continue;
                }
                const wide scale = std::abs(truth) +
                                   (std::abs(wide(warm[k]) - values[k]) + std::abs(wide(wide_v[k]) - values[k])) / step;
                judged.compare(name, values[k], truth, scale * (state.mixture ? 100 : 1)); // the line's rounding, too
            }
        }
        RecordProperty(fluid.label(), std::to_string(judged.largest) + " " + judged.at);
    }
}

// Differences of states that were solved: Z is held and Y moved, as a host would do it.
TEST(handles_reference, derivatives_are_differences_of_solved_states) {
    int compared = 0;
    for (const reference_fluid &fluid : reference_fluids()) {
        support::handle handle;
        open(handle, fluid);
        for (const state_point &state : fluid.states) {
            const double z = ostrel_fluid_value(handle, "tv", state.t, state.v, "z", nullptr);
            if (!(state.mixture || (z < 0.99 && z > 0.05 && std::abs(state.t / handle.constant("t_crit") - 1) > 0.1)))
                continue;
            if (state.mixture && !(state.q > 0.05L && state.q < 0.95L))
                continue; // the differences would leave the dome
            for (const char *const pair : {"ph", "ps", "pv", "vs", "vu", "du", "hs", "ts", "pu", "su"}) {
                double inputs[2], values[7];
                int status = -1;
                for (std::size_t k = 0; k < 2; ++k)
                    inputs[k] =
                        ostrel_fluid_value(handle, "tv", state.t, state.v, std::string(1, pair[k]).c_str(), &status);
                const double step = 1e-6 * (std::abs(inputs[0]) + (pair[0] == 'h' ? 1e5 : pair[0] == 's' ? 1e3 : 0.0));
                const double moved[2] = {inputs[0] + step, inputs[0] - step}, held[2] = {inputs[1], inputs[1]};
                double around[14];
                ASSERT_EQ(ostrel_fluid_evaluate(handle, pair, "t,p,v,d,h,s,u", 2, moved, held, around, nullptr),
                          OSTREL_OK);
                std::string names;
                for (const char letter : letters)
                    names += std::string(names.empty() ? "d" : ",d") + letter + "/d" + pair[0] + "|" + pair[1];
                ostrel_fluid_evaluate(handle, "tv", names.c_str(), 1, &state.t, &state.v, values, nullptr);
                for (std::size_t k = 0; k < 7; ++k) {
                    if (letters[k] == pair[1])
                        continue;
                    const double difference = (around[k] - around[7 + k]) / (2 * step);
                    const double size = std::abs(around[k] * 1e-8 / step);
                    EXPECT_NEAR(values[k], difference, 2e-4 * std::abs(difference) + size)
                        << fluid.label() << " " << pair << " d" << letters[k] << (state.mixture ? " mixture" : "");
                    ++compared;
                }
            }
        }
    }
    EXPECT_GT(compared, 1000);
}

} // namespace
