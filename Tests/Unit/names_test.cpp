// SPDX-License-Identifier: MIT
#include "Tests/Support/handles.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <gmock/gmock.h>
#include <set>

namespace {

using support::bits;
using support::opened_fluid;
using support::rows_of;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

/// Every list of the names of the library, each with all of its names once.
std::set<std::string> names_in(const char *kind) {
    std::set<std::string> names;
    for (const auto &row : rows_of(kind))
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
    return names;
}

struct names : testing::Test {
    opened_fluid fluid;

    int status_of(const char *inputs, const char *output) const {
        int status = -1;
        const double value = ostrel_fluid_value(fluid, inputs, 400, 0.5, output, &status);
        if (status >= OSTREL_BAD_ARGUMENT) {
            EXPECT_EQ(bits(value), support::bits_of_nan);
        }
        return status;
    }
};

TEST_F(names, every_pair_in_either_order_and_case) {
    const std::set<std::string> pairs = names_in("inputs");
    EXPECT_EQ(pairs, (std::set<std::string>{"tv", "td", "pt", "pv", "pd", "ph", "ps", "pq", "ts", "tq", "vh",
                                            "vs", "vu", "dh", "ds", "du", "hs", "pu", "su", "th", "tu"}));
    for (const std::string &pair : pairs)
        for (const std::string &written : {pair, std::string(pair.rbegin(), pair.rend())})
            for (const std::string &text :
                 {written, upper(written), " " + written + "\t ", written.substr(0, 1) + upper(written.substr(1))})
                EXPECT_LT(status_of(text.c_str(), "t"), OSTREL_BAD_ARGUMENT) << text;
}

TEST_F(names, every_other_pair_is_refused_with_the_pairs) {
    const std::set<std::string> pairs = names_in("inputs");
    for (char first = 1; first < 127; ++first)
        for (char second = 1; second < 127; ++second) {
            const auto small = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
            const std::string text{first, second};
            if (pairs.count({small(first), small(second)}) + pairs.count({small(second), small(first)}) > 0)
                continue;
            ASSERT_EQ(status_of(text.c_str(), "t"), OSTREL_BAD_ARGUMENT) << text;
        }
    for (const char *const text : {"", " ", "p", "ptq", "p t", "pt,", "p,t", "\xE9t", "pt pt", "p\tt"}) {
        EXPECT_EQ(status_of(text, "t"), OSTREL_BAD_ARGUMENT) << text;
        EXPECT_THAT(ostrel_last_message(), AllOf(StartsWith("inputs \""), HasSubstr("tv, td, pt"))) << text;
    }
}

TEST_F(names, letters_keep_their_places) {
    int status = -1;
    EXPECT_EQ(ostrel_fluid_value(fluid, "tp", 400, 1e5, "t", &status), 400);
    EXPECT_EQ(ostrel_fluid_value(fluid, "pt", 1e5, 400, "t", &status), 400);
    EXPECT_EQ(ostrel_fluid_value(fluid, "TP", 400, 1e5, "p", &status), 1e5);
    EXPECT_EQ(status, OSTREL_OK);
}

TEST_F(names, every_output_in_either_case) {
    const std::set<std::string> outputs = names_in("outputs");
    EXPECT_EQ(outputs, (std::set<std::string>{"t",       "p",       "v",           "d",        "h",
                                              "s",       "u",       "q",           "cv",       "dp_dt",
                                              "dp_dv",   "d2p_dt2", "d2p_dv2",     "d2p_dtdv", "dcv_dt",
                                              "eta",     "lambda",  "g",           "a",        "cp",
                                              "c",       "z",       "fundamental", "cp_cv",    "isentropic_exponent",
                                              "kappa_t", "beta_p",  "jt",          "prandtl",  "tsat",
                                              "psat",    "phase"}));
    for (const std::string &output : outputs)
        for (const std::string &text : {output, upper(output), "\t " + output + "  "})
            EXPECT_EQ(status_of("tv", text.c_str()), OSTREL_OK) << text;
}

TEST_F(names, names_that_are_nearly_right_are_refused) {
    std::set<std::string> known = names_in("outputs");
    for (const std::string &output : std::set<std::string>(known))
        for (std::size_t i = 0; i <= output.size(); ++i)
            for (const std::string &piece :
                 {std::string("x"), std::string("_"), std::string(" "), std::string("\xE9")}) {
                std::string longer = output;
                longer.insert(i, piece);
                std::string changed = output;
                changed.replace(std::min(i, output.size() - 1), 1, piece);
                for (const std::string &text : {longer, changed, output.substr(0, i)}) {
                    if (std::string_view(text).find_first_not_of(' ') != std::string::npos &&
                        known.count(text.substr(text.find_first_not_of(' '),
                                                text.find_last_not_of(' ') + 1 - text.find_first_not_of(' '))) > 0)
                        continue;
                    EXPECT_EQ(status_of("tv", text.c_str()), OSTREL_BAD_ARGUMENT) << '"' << text << '"';
                }
            }
}

TEST_F(names, unknown_outputs_are_refused_with_the_outputs) {
    EXPECT_EQ(status_of("tv", "visc"), OSTREL_BAD_ARGUMENT);
    EXPECT_THAT(ostrel_last_message(),
                AllOf(StartsWith("output \"visc\""), HasSubstr("t, p, v"), HasSubstr("phase"), HasSubstr("dX/dY|Z")));
    EXPECT_EQ(status_of("tv", "lamda"), OSTREL_BAD_ARGUMENT);
    EXPECT_THAT(ostrel_last_message(), HasSubstr("did you mean lambda?"));
    EXPECT_EQ(status_of("tv", " "), OSTREL_BAD_ARGUMENT);
    EXPECT_THAT(ostrel_last_message(), StartsWith("output \"\": a name is empty; outputs are t, p"));
}

TEST_F(names, every_derivative) {
    const std::string letters = "tpvdhsu";
    const std::set<std::string> derivatives = names_in("derivatives");
    EXPECT_EQ(derivatives.size(), 7U * 40U);
    for (const char X : letters + "qx ")
        for (const char Y : letters + "qx ")
            for (const char Z : letters + "qx ") {
                const std::string text = {'d', X, '/', 'd', Y, '|', Z};
                const bool known = letters.find(X) != letters.npos && letters.find(Y) != letters.npos &&
                                   letters.find(Z) != letters.npos && Y != Z && !(Y == 'v' && Z == 'd') &&
                                   !(Y == 'd' && Z == 'v');
                EXPECT_EQ(derivatives.count(text) == 1, known) << text;
                for (const std::string &written : {text, upper(text), ' ' + text})
                    EXPECT_EQ(status_of("tv", written.c_str()), known ? OSTREL_OK : OSTREL_BAD_ARGUMENT) << written;
            }
    for (const char *const text : {"dp/dd", "dp/dd|", "dp/dd|uu", "dp/dd |u", "d p/dd|u", "ddp/dd|u", "dp/pd|u",
                                   "pd/dd|u", "dp|dd/u", "dp/dd|u|s", "dp/dt|v,", "/", "|"})
        EXPECT_EQ(status_of("tv", text), OSTREL_BAD_ARGUMENT) << text;
    EXPECT_EQ(status_of("tv", "dp/dv|d"), OSTREL_BAD_ARGUMENT);
    EXPECT_THAT(ostrel_last_message(), HasSubstr("Y and Z differ and are not v with d"));
}

TEST_F(names, units_of_derivatives) {
    const auto rows = rows_of("derivatives");
    const auto unit_of = [&](const std::string &name) {
        for (const auto &row : rows)
            if (row.name == name)
                return row.unit;
        return std::string("(none)");
    };
    EXPECT_EQ(unit_of("dp/dt|v"), "Pa/K");
    EXPECT_EQ(unit_of("dp/dd|u"), "Pa/(kg/m3)");
    EXPECT_EQ(unit_of("dh/ds|p"), "(J/kg)/(J/(kg K))");
    EXPECT_EQ(unit_of("dh/dt|p"), "(J/kg)/K");
    EXPECT_EQ(unit_of("dh/du|p"), "1");
    EXPECT_EQ(unit_of("dt/dt|v"), "1");
}

TEST_F(names, lists_of_outputs) {
    const double t = 400, v = 0.5;
    double values[3] = {-1, -1, -1};
    const auto evaluate = [&](const char *outputs) {
        return ostrel_fluid_evaluate(fluid, "tv", outputs, 1, &t, &v, values, nullptr);
    };
    EXPECT_EQ(evaluate(" v ,\tT,v"), OSTREL_OK);
    EXPECT_THAT(values, testing::ElementsAre(0.5, 400, 0.5));
    for (const char *const outputs : {"", " ", ",", "t,", ",t", "t,,v", "t, ,v", "t;v", "t v", "t,p,none"})
        EXPECT_EQ(evaluate(outputs), OSTREL_BAD_ARGUMENT) << outputs;
    EXPECT_THAT(values, testing::ElementsAre(0.5, 400, 0.5));
    EXPECT_EQ(status_of("tv", "t,v"), OSTREL_BAD_ARGUMENT);
}

TEST_F(names, any_number_of_outputs) {
    const double t[] = {400, 500}, v[] = {0.5, 0.25};
    for (const std::size_t count : {1U, 15U, 16U, 17U, 32U, 1000U}) {
        std::string outputs;
        for (std::size_t i = 0; i < count; ++i)
            outputs += i == 0 ? "v" : i % 2 == 0 ? ",v" : ",t";
        std::vector<double> values(2 * count, -1);
        ASSERT_EQ(ostrel_fluid_evaluate(fluid, "tv", outputs.c_str(), 2, t, v, values.data(), nullptr), OSTREL_OK);
        for (std::size_t i = 0; i < values.size(); ++i)
            EXPECT_EQ(values[i], i % count % 2 == 0 ? v[i / count] : t[i / count]);
    }
}

TEST_F(names, long_names_are_refused) {
    const std::string longest(1 << 20, 'p');
    EXPECT_EQ(status_of(longest.c_str(), "t"), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(status_of("tv", longest.c_str()), OSTREL_BAD_ARGUMENT);
    EXPECT_LT(std::strlen(ostrel_last_message()), 1024U);
}

} // namespace
