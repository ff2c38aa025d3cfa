// SPDX-License-Identifier: MIT
// The calls of the handles, whatever they compute: their arguments, statuses and arrays.
#include "Tests/Support/allocations.h"
#include "Tests/Support/handles.h"

#include <array>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <gmock/gmock.h>

namespace {

using support::bits;
using support::opened_fluid;
using support::rows_of;
using testing::AllOf;
using testing::Each;
using testing::HasSubstr;
using testing::StartsWith;

constexpr double marked = -123.5; // what arrays hold that nobody has written

struct requests : testing::Test {
    opened_fluid fluid;
    std::array<double, 4> p{1e5, 2e5, 3e5, 4e5}, t{400, 410, 420, 430};
    std::array<double, 8> values{marked, marked, marked, marked, marked, marked, marked, marked}, more = values;
    std::array<int, 4> status{-7, -7, -7, -7};
    std::array<ostrel_state, 4> states{};

    void expect_refused(int result) {
        EXPECT_EQ(result, OSTREL_BAD_ARGUMENT);
        EXPECT_THAT(values, Each(marked));
        EXPECT_THAT(more, Each(marked));
        EXPECT_THAT(status, Each(-7));
        const ostrel_state unwritten{};
        for (const ostrel_state &state : states)
            EXPECT_EQ(std::memcmp(&state, &unwritten, sizeof state), 0);
    }
};

TEST_F(requests, unknown_inputs_write_nothing) {
    for (const char *const inputs : {"xx", "", "p", "pp", static_cast<const char *>(nullptr)}) {
        expect_refused(ostrel_fluid_evaluate(fluid, inputs, "d", 4, p.data(), t.data(), values.data(), status.data()));
        expect_refused(
            ostrel_fluid_evaluate_parallel(fluid, inputs, "d", 4, p.data(), t.data(), values.data(), status.data(), 2));
        expect_refused(ostrel_fluid_solve(fluid, inputs, 4, p.data(), t.data(), states.data()));
    }
}

TEST_F(requests, unknown_outputs_write_nothing) {
    for (const char *const outputs : {"xx", "", "d,", "d,xx", static_cast<const char *>(nullptr)}) {
        expect_refused(
            ostrel_fluid_evaluate(fluid, "pt", outputs, 4, p.data(), t.data(), values.data(), status.data()));
        expect_refused(ostrel_fluid_evaluate_parallel(fluid, "pt", outputs, 4, p.data(), t.data(), values.data(),
                                                      status.data(), 2));
        expect_refused(
            ostrel_fluid_saturation(fluid, "t", outputs, 4, t.data(), values.data(), more.data(), status.data()));
        expect_refused(ostrel_fluid_outputs(fluid, outputs, 4, states.data(), values.data(), status.data()));
    }
}

TEST_F(requests, inputs_of_saturation) {
    for (const char *const input : {"t", "p", " T ", "P\t"})
        EXPECT_LT(ostrel_fluid_saturation(fluid, input, "t", 0, nullptr, nullptr, nullptr, nullptr), 10) << input;
    expect_refused(
        ostrel_fluid_saturation(fluid, nullptr, "d", 4, t.data(), values.data(), more.data(), status.data()));
    for (const char *const input : {"", " ", "v", "q", "tp", "pt", "t,", "t p", "temperature"}) {
        expect_refused(
            ostrel_fluid_saturation(fluid, input, "d", 4, t.data(), values.data(), more.data(), status.data()));
        EXPECT_THAT(ostrel_last_message(), HasSubstr("t or p")) << input;
    }
}

TEST_F(requests, null_pointers_are_refused) {
    const ostrel_fluid *const none = nullptr;
    expect_refused(ostrel_fluid_evaluate(none, "pt", "d", 4, p.data(), t.data(), values.data(), status.data()));
    EXPECT_THAT(ostrel_last_message(), StartsWith("fluid: a null pointer"));
    expect_refused(ostrel_fluid_evaluate(fluid, "pt", "d", 4, nullptr, t.data(), values.data(), status.data()));
    EXPECT_THAT(ostrel_last_message(), StartsWith("first: a null pointer"));
    expect_refused(ostrel_fluid_evaluate(fluid, "pt", "d", 4, p.data(), nullptr, values.data(), status.data()));
    EXPECT_THAT(ostrel_last_message(), StartsWith("second: a null pointer"));
    expect_refused(ostrel_fluid_evaluate(fluid, "pt", "d", 4, p.data(), t.data(), nullptr, status.data()));
    EXPECT_THAT(ostrel_last_message(), StartsWith("values: a null pointer"));
    expect_refused(
        ostrel_fluid_evaluate_parallel(none, "pt", "d", 4, p.data(), t.data(), values.data(), status.data(), 2));
    expect_refused(ostrel_fluid_evaluate_parallel(fluid, "pt", "d", 4, p.data(), t.data(), nullptr, status.data(), 2));
    expect_refused(ostrel_fluid_saturation(none, "t", "d", 4, t.data(), values.data(), more.data(), status.data()));
    expect_refused(ostrel_fluid_saturation(fluid, "t", "d", 4, nullptr, values.data(), more.data(), status.data()));
    EXPECT_THAT(ostrel_last_message(), StartsWith("values_in: a null pointer"));
    expect_refused(ostrel_fluid_solve(none, "pt", 4, p.data(), t.data(), states.data()));
    expect_refused(ostrel_fluid_solve(fluid, "pt", 4, nullptr, t.data(), states.data()));
    expect_refused(ostrel_fluid_solve(fluid, "pt", 4, p.data(), nullptr, states.data()));
    expect_refused(ostrel_fluid_solve(fluid, "pt", 4, p.data(), t.data(), nullptr));
    EXPECT_THAT(ostrel_last_message(), StartsWith("states: a null pointer"));
    expect_refused(ostrel_fluid_outputs(none, "d", 4, states.data(), values.data(), status.data()));
    expect_refused(ostrel_fluid_outputs(fluid, "d", 4, nullptr, values.data(), status.data()));
    expect_refused(ostrel_fluid_outputs(fluid, "d", 4, states.data(), nullptr, status.data()));

    int one = -1;
    for (const auto &[inputs, output] : {std::pair<const char *, const char *>(nullptr, "d"), {"pt", nullptr}}) {
        EXPECT_EQ(bits(ostrel_fluid_value(fluid, inputs, 1e5, 400, output, &one)), support::bits_of_nan);
        EXPECT_EQ(one, OSTREL_BAD_ARGUMENT);
        one = -1;
    }
    EXPECT_EQ(bits(ostrel_fluid_value(none, "pt", 1e5, 400, "d", &one)), support::bits_of_nan);
    EXPECT_EQ(one, OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(bits(ostrel_fluid_value(none, "pt", 1e5, 400, "d", nullptr)), support::bits_of_nan);
    EXPECT_EQ(bits(ostrel_fluid_constant(none, "m_mol")), support::bits_of_nan);
    EXPECT_EQ(bits(ostrel_fluid_constant(fluid, nullptr)), support::bits_of_nan);
    EXPECT_EQ(ostrel_fluid_text(none, "name"), nullptr);
    EXPECT_EQ(ostrel_fluid_text(fluid, nullptr), nullptr);
    EXPECT_EQ(ostrel_list(nullptr, 0, "name"), nullptr);
    EXPECT_EQ(ostrel_list("inputs", 0, nullptr), nullptr);
}

TEST_F(requests, no_states_need_no_arrays_but_right_texts) {
    const auto evaluate = [&](const ostrel_fluid *of, const char *inputs, const char *outputs) {
        const int one = ostrel_fluid_evaluate(of, inputs, outputs, 0, nullptr, nullptr, nullptr, nullptr);
        EXPECT_EQ(one, ostrel_fluid_evaluate_parallel(of, inputs, outputs, 0, nullptr, nullptr, nullptr, nullptr, 3));
        return one;
    };
    EXPECT_EQ(evaluate(fluid, "pt", "d,dp/dd|u"), OSTREL_OK);
    EXPECT_EQ(evaluate(fluid, "px", "d"), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(evaluate(fluid, "pt", "x"), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(evaluate(fluid, nullptr, "d"), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(evaluate(fluid, "pt", nullptr), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(evaluate(nullptr, "pt", "d"), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(ostrel_fluid_saturation(fluid, "t", "d", 0, nullptr, nullptr, nullptr, nullptr), OSTREL_OK);
    EXPECT_EQ(ostrel_fluid_saturation(fluid, "x", "d", 0, nullptr, nullptr, nullptr, nullptr), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(ostrel_fluid_saturation(fluid, "t", "x", 0, nullptr, nullptr, nullptr, nullptr), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(ostrel_fluid_solve(fluid, "pt", 0, nullptr, nullptr, nullptr), OSTREL_OK);
    EXPECT_EQ(ostrel_fluid_solve(fluid, "pz", 0, nullptr, nullptr, nullptr), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(ostrel_fluid_outputs(fluid, "d", 0, nullptr, nullptr, nullptr), OSTREL_OK);
    EXPECT_EQ(ostrel_fluid_outputs(fluid, "dd", 0, nullptr, nullptr, nullptr), OSTREL_BAD_ARGUMENT);
}

TEST_F(requests, arrays_have_the_promised_places) {
    EXPECT_EQ(ostrel_fluid_evaluate(fluid, "pt", "t,p", 3, p.data(), t.data(), values.data(), status.data()),
              OSTREL_OK);
    EXPECT_THAT(values, testing::ElementsAre(400, 1e5, 410, 2e5, 420, 3e5, marked, marked));
    EXPECT_THAT(status, testing::ElementsAre(0, 0, 0, -7));
}

TEST_F(requests, a_phase_that_nobody_wants_is_not_written) {
    const double temperature = 350;
    EXPECT_EQ(ostrel_fluid_saturation(fluid, "t", "t,q", 1, &temperature, values.data(), more.data(), status.data()),
              OSTREL_OK);
    EXPECT_EQ(values[0], 350);
    EXPECT_EQ(more[0], 350);
    EXPECT_EQ(values[2], marked);
    EXPECT_EQ(more[2], marked);
    EXPECT_THAT(status, testing::ElementsAre(0, -7, -7, -7));
    values.fill(marked);
    EXPECT_EQ(ostrel_fluid_saturation(fluid, "t", "t", 1, &temperature, values.data(), nullptr, nullptr), OSTREL_OK);
    EXPECT_EQ(values[0], 350);
    EXPECT_EQ(ostrel_fluid_saturation(fluid, "t", "t", 1, &temperature, nullptr, more.data(), nullptr), OSTREL_OK);
    EXPECT_EQ(ostrel_fluid_saturation(fluid, "t", "t", 1, &temperature, nullptr, nullptr, status.data()), OSTREL_OK);
}

TEST_F(requests, failed_states_are_NaN_and_the_others_are_not) {
    p[1] = std::numeric_limits<double>::quiet_NaN();
    t[2] = -1;
    for (int *const wanted : {status.data(), static_cast<int *>(nullptr)}) {
        values.fill(marked);
        EXPECT_EQ(ostrel_fluid_evaluate(fluid, "pt", "t,p", 4, p.data(), t.data(), values.data(), wanted),
                  OSTREL_NOT_A_NUMBER);
        for (const std::size_t place : {2U, 3U, 4U, 5U})
            EXPECT_EQ(bits(values[place]), support::bits_of_nan);
        EXPECT_EQ(values[0], 400);
        EXPECT_EQ(values[7], 4e5);
    }
    EXPECT_THAT(status, testing::ElementsAre(0, OSTREL_NOT_A_NUMBER, OSTREL_OUT_OF_RANGE, 0));
    int one = -1;
    EXPECT_EQ(bits(ostrel_fluid_value(fluid, "pt", 1e5, -1, "t", &one)), support::bits_of_nan);
    EXPECT_EQ(one, OSTREL_OUT_OF_RANGE);
}

TEST_F(requests, the_first_of_many_failed_states_is_told) {
    constexpr std::size_t count = 1000; // more than are computed at a time where nobody wants statuses
    std::vector<double> pressures(count, 1e5), temperatures(count, 400), volumes(count);
    for (const std::size_t failed : {300U, 310U, 700U})
        temperatures[failed] = -1;
    temperatures[999] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(
        ostrel_fluid_evaluate(fluid, "pt", "v", count, pressures.data(), temperatures.data(), volumes.data(), nullptr),
        OSTREL_OUT_OF_RANGE);
    EXPECT_THAT(ostrel_last_message(), testing::HasSubstr("state 300 "));
}

TEST_F(requests, surfaces_take_t_with_v_or_d_only) {
    const opened_fluid surface("toluene", "states=surface");
    for (const auto &row : rows_of("inputs"))
        for (const std::string &pair : {row.name, std::string(row.name.rbegin(), row.name.rend())}) {
            const bool known = row.name == "tv" || row.name == "td";
            const int found = ostrel_fluid_evaluate(surface, pair.c_str(), "p", 0, nullptr, nullptr, nullptr, nullptr);
            EXPECT_EQ(found, known ? OSTREL_OK : OSTREL_BAD_ARGUMENT) << pair;
            EXPECT_EQ(ostrel_fluid_solve(surface, pair.c_str(), 0, nullptr, nullptr, nullptr), found);
            if (!known) {
                EXPECT_THAT(ostrel_last_message(),
                            AllOf(StartsWith("inputs " + pair), HasSubstr("t with v or d only")));
            }
        }
    int one = -1;
    ostrel_fluid_value(surface, "pt", 1e5, 400, "d", &one);
    EXPECT_EQ(one, OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(ostrel_fluid_saturation(surface, "t", "p", 0, nullptr, nullptr, nullptr, nullptr), OSTREL_BAD_ARGUMENT);
}

TEST_F(requests, every_way_gives_the_same_bits) {
    constexpr std::size_t count = 1000;
    std::vector<double> first(count), second(count);
    for (std::size_t i = 0; i < count; ++i) {
        first[i] = 1e3 * static_cast<double>(i) - 5e3;
        second[i] = 600 + 0.1 * static_cast<double>(i);
    }
    const char *const outputs = "d,t,p,h,dp/dd|u";
    std::vector<double> wanted(5 * count), got(5 * count);
    std::vector<int> statuses(count), other(count);
    const int result =
        ostrel_fluid_evaluate(fluid, "pt", outputs, count, first.data(), second.data(), wanted.data(), statuses.data());
    EXPECT_EQ(result, OSTREL_OUT_OF_RANGE);
    const std::string message = ostrel_last_message();
    const auto same = [&] { return std::memcmp(wanted.data(), got.data(), wanted.size() * sizeof(double)) == 0; };

    for (const unsigned workers : {0U, 1U, 2U, 3U, 7U, 100U, ~0U})
        for (int *const of_states : {other.data(), static_cast<int *>(nullptr)}) {
            std::fill(got.begin(), got.end(), marked);
            ostrel_fluid_constant(fluid, "another message");
            EXPECT_EQ(ostrel_fluid_evaluate_parallel(fluid, "pt", outputs, count, first.data(), second.data(),
                                                     got.data(), of_states, workers),
                      result);
            EXPECT_TRUE(same());
            EXPECT_EQ(message, ostrel_last_message());
            if (of_states != nullptr) {
                EXPECT_EQ(other, statuses);
            }
        }
    EXPECT_EQ(ostrel_fluid_evaluate(fluid, "tp", outputs, count, second.data(), first.data(), got.data(), nullptr),
              result);
    EXPECT_TRUE(same());
    for (std::size_t i = 0; i < count; i += 37) {
        int one = -1;
        EXPECT_EQ(bits(ostrel_fluid_value(fluid, "pt", first[i], second[i], "h", &one)), bits(wanted[5 * i + 3]));
        EXPECT_EQ(one, statuses[i]);
    }
    std::vector<ostrel_state> solved(count);
    EXPECT_EQ(ostrel_fluid_solve(fluid, "pt", count, first.data(), second.data(), solved.data()), result);
    EXPECT_EQ(ostrel_fluid_outputs(fluid, outputs, count, solved.data(), got.data(), other.data()), result);
    EXPECT_TRUE(same());
    EXPECT_EQ(other, statuses);
}

TEST_F(requests, the_first_failed_state_of_many_workers_is_the_first_of_all) {
    constexpr std::size_t count = 100'000;
    std::vector<double> first(count, 1e5), second(count, 400), values_of_all(count);
    for (const std::size_t failing : {count - 1, count / 2, std::size_t{4097}, std::size_t{0}}) {
        second[failing] = -static_cast<double>(failing) - 1;
        EXPECT_EQ(ostrel_fluid_evaluate_parallel(fluid, "pt", "t", count, first.data(), second.data(),
                                                 values_of_all.data(), nullptr, 8),
                  OSTREL_OUT_OF_RANGE);
        EXPECT_THAT(ostrel_last_message(), HasSubstr("state " + std::to_string(failing) + ' '));
    }
}

TEST_F(requests, evaluating_allocates_nothing) {
    const char *const sixteen = "t,p,v,d,t,p,v,d,t,p,v,d,t,p,dp/dd|u,phase";
    std::array<double, 64> many{};
    const double temperatures[] = {350, 360, 1e9};
    const long before = support::allocations;
    EXPECT_EQ(ostrel_fluid_evaluate(fluid, "pt", sixteen, 4, p.data(), t.data(), many.data(), status.data()),
              OSTREL_OK);
    EXPECT_EQ(ostrel_fluid_evaluate(fluid, "tp", sixteen, 4, p.data(), t.data(), many.data(), nullptr), OSTREL_OK);
    ostrel_fluid_value(fluid, "pt", 1e5, 400, "isentropic_exponent", nullptr);
    ostrel_fluid_solve(fluid, "pt", 4, p.data(), t.data(), states.data());
    ostrel_fluid_outputs(fluid, sixteen, 4, states.data(), many.data(), nullptr);
    ostrel_fluid_saturation(fluid, "t", "t,p,v,d", 3, temperatures, many.data(), many.data() + 16, status.data());
    EXPECT_EQ(support::allocations, before);
    // Failed states do not allocate either.
    t[3] = -1;
    EXPECT_EQ(ostrel_fluid_evaluate(fluid, "pt", sixteen, 4, p.data(), t.data(), many.data(), nullptr),
              OSTREL_OUT_OF_RANGE);
    ostrel_fluid_value(fluid, "pt", -1, 400, "d", nullptr);
    EXPECT_EQ(support::allocations, before);
    ostrel_fluid_constant(fluid, "m_mol");
    ostrel_fluid_text(fluid, "name");
    ostrel_list("outputs", 3, "unit");
    ostrel_status_text(3);
    EXPECT_EQ(support::allocations, before);
}

TEST_F(requests, memory_that_is_out_is_a_status) {
    std::string outputs = "t";
    for (int i = 0; i < 20; ++i)
        outputs += ",t";
    std::vector<double> many(21 * 4, marked);
    support::allocations = 0;
    support::first_failure = 0;
    const int found =
        ostrel_fluid_evaluate(fluid, "pt", outputs.c_str(), 4, p.data(), t.data(), many.data(), status.data());
    int one = -1;
    const double value = ostrel_fluid_value(fluid, "pt", 1e5, 400, "unknown", &one);
    // Without memory for threads, the calling one does all the work.
    std::array<double, 4> all{};
    const int alone = ostrel_fluid_evaluate_parallel(fluid, "pt", "t", 4, p.data(), t.data(), all.data(), nullptr, 4);
    support::first_failure = support::unlimited;
    EXPECT_EQ(found, OSTREL_OUT_OF_MEMORY);
    EXPECT_THAT(many, Each(marked));
    EXPECT_THAT(status, Each(-7));
    EXPECT_EQ(one, OSTREL_OUT_OF_MEMORY);
    EXPECT_EQ(bits(value), support::bits_of_nan);
    EXPECT_EQ(alone, OSTREL_OK);
    EXPECT_EQ(all, t);
}

TEST_F(requests, workers_without_memory) {
    constexpr std::size_t count = 10'000;
    std::vector<double> first(count, 1e5), second(count, 400), got(count);
    for (long failing = 0; failing < 4; ++failing) {
        support::allocations = 0;
        support::first_failure = failing;
        const int found = ostrel_fluid_evaluate_parallel(fluid, "pt", "t", count, first.data(), second.data(),
                                                         got.data(), nullptr, 4);
        support::first_failure = support::unlimited;
        EXPECT_EQ(found, OSTREL_OK);
        EXPECT_EQ(got, second);
    }
}

TEST_F(requests, environment_of_the_host_neither_counts_nor_changes) {
    constexpr std::size_t count = 500;
    std::vector<double> first(count), second(count, 400), wanted(2 * count), got(2 * count);
    for (std::size_t i = 0; i < count; ++i)
        first[i] = 1e5 / (1.0 + static_cast<double>(i));
    ASSERT_EQ(ostrel_fluid_evaluate(fluid, "pt", "d,h", count, first.data(), second.data(), wanted.data(), nullptr),
              OSTREL_OK);
    for (const int mode : {FE_UPWARD, FE_TOWARDZERO, FE_DOWNWARD}) {
        for (const unsigned workers : {1U, 3U}) {
            std::fesetround(mode);
            const int found = ostrel_fluid_evaluate_parallel(fluid, "pt", "d,h", count, first.data(), second.data(),
                                                             got.data(), nullptr, workers);
            const int after = std::fegetround();
            std::fesetround(FE_TONEAREST);
            EXPECT_EQ(found, OSTREL_OK);
            EXPECT_EQ(after, mode);
            EXPECT_EQ(std::memcmp(wanted.data(), got.data(), wanted.size() * sizeof(double)), 0);
        }
        std::fesetround(mode);
        const opened_fluid other;
        const double value = ostrel_fluid_value(other, "pt", first[3], 400, "d", nullptr);
        const double m_mol = other.constant("m_mol"), d_crit = other.constant("d_crit");
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(bits(value), bits(wanted[6]));
        EXPECT_EQ(bits(m_mol), bits(fluid.constant("m_mol")));
        EXPECT_EQ(bits(d_crit), bits(fluid.constant("d_crit")));
    }
}

TEST_F(requests, lists_end_and_have_all_their_parts) {
    for (const auto &[kind, count] :
         {std::pair("inputs", 21U), std::pair("outputs", 32U), std::pair("derivatives", 280U),
          std::pair("constants", 17U), std::pair("texts", 12U), std::pair("models", 8U), std::pair("options", 6U),
          std::pair("statuses", 11U)}) {
        const auto rows = rows_of(kind);
        EXPECT_EQ(rows.size(), count) << kind;
        for (const auto &row : rows)
            EXPECT_NE(row.description, "") << row.name;
        for (const std::size_t index : {rows.size(), rows.size() + 1, std::size_t{1'000'000}, ~std::size_t{0}})
            for (const char *const part : {"name", "unit", "description"})
                EXPECT_EQ(ostrel_list(kind, index, part), nullptr);
        EXPECT_EQ(ostrel_list(kind, 0, "names"), nullptr);
        EXPECT_THAT(ostrel_last_message(), HasSubstr("name, unit, description"));
    }
    EXPECT_EQ(ostrel_list("output", 0, "name"), nullptr);
    EXPECT_THAT(ostrel_last_message(),
                HasSubstr("inputs, outputs, derivatives, constants, texts, models, options, statuses"));
}

TEST_F(requests, units_of_the_lists) {
    const auto unit_of = [](const char *kind, std::string_view name) {
        for (const auto &row : rows_of(kind))
            if (row.name == name)
                return row.unit;
        return std::string("(none)");
    };
    for (const auto &[name, unit] :
         {std::pair("t", "K"), std::pair("p", "Pa"), std::pair("v", "m3/kg"), std::pair("d", "kg/m3"),
          std::pair("h", "J/kg"), std::pair("u", "J/kg"), std::pair("s", "J/(kg K)"), std::pair("q", "1"),
          std::pair("c", "m/s"), std::pair("kappa_t", "1/Pa"), std::pair("eta", "Pa s"), std::pair("lambda", "W/(m K)"),
          std::pair("jt", "K/Pa")})
        EXPECT_EQ(unit_of("outputs", name), unit);
    EXPECT_EQ(unit_of("inputs", "pt"), "Pa, K");
    EXPECT_EQ(unit_of("constants", "m_mol"), "kg/mol");
    EXPECT_EQ(unit_of("texts", "name"), "");
    EXPECT_EQ(unit_of("models", "srk"), "");
    EXPECT_EQ(unit_of("options", "phase"), "liquid|vapor");
    EXPECT_EQ(unit_of("options", "folder"), "");
    EXPECT_EQ(unit_of("statuses", "OSTREL_BAD_FILE"), "12");
}

TEST_F(requests, every_listed_constant_and_text_is_served) {
    ostrel_fluid_constant(fluid, "none");
    const std::string message = ostrel_last_message();
    for (const auto &row : rows_of("constants")) {
        fluid.constant(row.name.c_str());
        EXPECT_THAT(message, HasSubstr(row.name));
    }
    for (const auto &row : rows_of("texts"))
        EXPECT_NE(ostrel_fluid_text(fluid, row.name.c_str()), nullptr) << row.name;
    EXPECT_EQ(message, ostrel_last_message());
    EXPECT_EQ(ostrel_fluid_text(fluid, "none"), nullptr);
    EXPECT_THAT(ostrel_last_message(), AllOf(StartsWith("text \"none\""), HasSubstr("heat_capacity")));
    for (const char *const name : {"", "M_MOL", " m_mol", "m_mol ", "m"})
        EXPECT_EQ(bits(fluid.constant(name)), support::bits_of_nan);
}

TEST_F(requests, the_texts_of_a_fluid_stay_where_they_are) {
    const char *const name = ostrel_fluid_text(fluid, "name");
    const opened_fluid other("propane");
    EXPECT_EQ(ostrel_fluid_text(fluid, "name"), name);
    EXPECT_STREQ(name, "toluene");
}

} // namespace
