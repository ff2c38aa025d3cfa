// SPDX-License-Identifier: MIT
// The C++ face of the handles. What the library computes is tested through the C interface; here the tests look at what
// the face adds: names at compile time, sizes, results, failures and lifetimes.
#include "Tests/Support/handles.h"
#include "ostrel.hpp"

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using ostrel::unchecked;
using support::bits;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

static_assert(std::is_nothrow_move_constructible_v<ostrel::fluid> && std::is_nothrow_move_assignable_v<ostrel::fluid>);
static_assert(!std::is_copy_constructible_v<ostrel::fluid> && !std::is_copy_assignable_v<ostrel::fluid>);
static_assert(std::forward_iterator<ostrel::list::iterator>);
static_assert(std::sentinel_for<std::default_sentinel_t, ostrel::list::iterator>);

const char *const fluids = OSTREL_TESTS "/../Fluids";

ostrel::fluid toluene() {
    return ostrel::fluid::open("toluene");
}

// ---- Names

template <class List>
std::vector<std::string> words(const List &list) {
    return {std::begin(list), std::end(list)};
}
std::vector<std::string> listed(const char *kind) {
    std::vector<std::string> result;
    for (const auto &row : support::rows_of(kind))
        result.push_back(row.name);
    return result;
}

TEST(ostrel_hpp, names_are_those_of_the_library) {
    EXPECT_EQ(words(ostrel::names::inputs), listed("inputs"));
    EXPECT_EQ(words(ostrel::names::outputs), listed("outputs"));
    EXPECT_EQ(words(ostrel::names::constants), listed("constants"));
    EXPECT_EQ(words(ostrel::names::texts), listed("texts"));
    const auto options = support::rows_of("options");
    ASSERT_EQ(options.size(), std::size(ostrel::names::options));
    for (std::size_t i = 0; i < options.size(); ++i) {
        EXPECT_EQ(ostrel::names::options[i].key, options[i].name);
        EXPECT_EQ(ostrel::names::options[i].values, options[i].unit);
    }
}

/// Every text of `letters` with the form dX/dY|Z is a derivative here if it is one in the library's list.
TEST(ostrel_hpp, derivatives_are_those_of_the_library) {
    const auto list = listed("derivatives");
    const std::string letters = "tpvdhsuqxTPVDHSU";
    std::size_t found = 0;
    for (const char X : letters)
        for (const char Y : letters)
            for (const char Z : letters) {
                std::string name = std::string("d") + X + "/d" + Y + "|" + Z, small = name;
                for (char &c : small)
                    c = ostrel::names::lower(c);
                const bool known = std::find(list.begin(), list.end(), small) != list.end();
                ASSERT_EQ(ostrel::names::is_derivative(name), known) << name;
                found += known;
            }
    EXPECT_EQ(found, list.size() * 8); // two cases of three letters
    for (const char *const name : {"", "dp/dt", "dp/dt|v ", "dp/dt|vv", "dp-dt|v", "xp/dt|v", "dp/xt|v", "dp/dt/v"})
        EXPECT_FALSE(ostrel::names::is_derivative(name)) << name;
}

/// Texts that are nearly right, made of good ones by exchanging, leaving out, doubling and adding characters.
class nearly_right {
public:
    explicit nearly_right(std::vector<std::string> seeds) : seeds_(std::move(seeds)) {}
    std::string next() {
        std::string text = seeds_[below(seeds_.size())];
        for (std::size_t changes = below(4); changes > 0; --changes) {
            static constexpr std::string_view letters = "tpvdhsuqTP ,;=|/\t_ac";
            const std::size_t at = below(text.size() + 1);
            switch (below(4)) {
            case 0:
                text.insert(at, 1, letters[below(letters.size())]);
                break;
            case 1:
                text.erase(at, 1);
                break;
            case 2:
                text.insert(at, text.substr(at, 1 + below(3)));
                break;
            default:
                text.insert(at, seeds_[below(seeds_.size())]);
            }
        }
        return text;
    }

private:
    std::size_t below(std::size_t end) { return static_cast<std::size_t>(random_() % end); }

    std::vector<std::string> seeds_;
    std::mt19937 random_{1};
};

/// The compiler's answer to texts must be the library's; both answers must occur.
template <class Here, class There>
void compare(std::vector<std::string> seeds, Here here, There there) {
    nearly_right texts(std::move(seeds));
    int right = 0, wrong = 0;
    for (int i = 0; i < 4000; ++i) {
        const std::string text = texts.next();
        const bool known = there(text.c_str());
        ASSERT_EQ(here(text), known) << '"' << text << "\", " << ostrel_last_message();
        ++(known ? right : wrong);
    }
    EXPECT_GT(right, 400);
    EXPECT_GT(wrong, 400);
}

TEST(ostrel_hpp, the_compiler_accepts_what_the_library_accepts) {
    const ostrel::fluid fluid = toluene();
    const auto understood = [](int status) { return status < OSTREL_BAD_ARGUMENT; };
    compare({"pt", " TP", "uh", "qt ", "h", "q"}, ostrel::names::is_pair, [&](const char *text) {
        return understood(ostrel_fluid_evaluate(fluid.handle(), text, "t", 0, nullptr, nullptr, nullptr, nullptr));
    });
    compare({"d", "cp,", "dp/dt|v", "dT/dP|h , cv", "t,p", " isentropic_exponent", "kappa_t"},
            ostrel::names::are_outputs, [&](const char *text) {
                return understood(
                    ostrel_fluid_evaluate(fluid.handle(), "pt", text, 0, nullptr, nullptr, nullptr, nullptr));
            });
    compare({"cp", "dp/dd|v", "Dp/dt|v", " h", "psat "}, ostrel::names::is_output, [&](const char *text) {
        int status = OSTREL_OK;
        ostrel_fluid_value(fluid.handle(), "pt", 1e5, 400, text, &status);
        return understood(status);
    });
    compare({"t", "P ", "\tp"}, ostrel::names::is_saturation_input, [&](const char *text) {
        return understood(ostrel_fluid_saturation(fluid.handle(), text, "d", 0, nullptr, nullptr, nullptr, nullptr));
    });
    compare({"t_crit", "m_mol", "v_min", "omega"}, ostrel::names::is_constant, [&](const char *text) {
        const auto all = listed("constants");
        return std::find(all.begin(), all.end(), text) != all.end();
    });
    compare({"name", "text", "options"}, ostrel::names::is_text,
            [&](const char *text) { return ostrel_fluid_text(fluid.handle(), text) != nullptr; });
    const std::string parameters(fluid.text("text"));
    compare({"model=pr", "states=stable;", "", " phase = liquid ; states= metastable", "volume=equation;",
             "reference=nbp", "model=srk; volume=translated", "states=metastable;phase=vapor"},
            ostrel::names::are_options, [&](const char *text) {
                support::handle handle;
                return understood(handle.open_text(parameters, text).status);
            });
    EXPECT_TRUE(ostrel::names::are_options("folder=/some/place; model=pr"));
    EXPECT_FALSE(ostrel::names::are_options("folder= "));
    EXPECT_TRUE(ostrel::names::are_options("folder=metastable"));
    EXPECT_FALSE(ostrel::names::are_options("folder=metastable; phase=liquid"));
}

// ---- Opening, and lifetimes

TEST(ostrel_hpp, a_fluid_opens_in_every_way) {
    const std::string file = std::string(fluids) + "/toluene.osd";
    std::stringstream text;
    text << std::ifstream(file).rdbuf();
    for (const ostrel::fluid &one : {ostrel::fluid::open("108-88-3"), ostrel::fluid::open("toluene", "model=srk"),
                                     ostrel::fluid::open_file(file), ostrel::fluid::open_text(text.str())})
        EXPECT_EQ(one.constant("t_crit"), 591.75);
    EXPECT_EQ(ostrel::fluid::open("toluene", "model=pr").text("model"), "pr");
    EXPECT_EQ(ostrel::fluid::open_text(text.str(), "model=rk").text("model"), "rk");
    EXPECT_EQ(ostrel::fluid::open_file(file, "model=vdw").text("model"), "vdw");
}

TEST(ostrel_hpp, failed_openings_tell_status_and_message) {
    const auto expect = [](auto open, int status, const char *part) {
        ostrel::result<ostrel::fluid> result = open();
        ASSERT_FALSE(result);
        EXPECT_EQ(result.status(), status);
        EXPECT_EQ(result.error().status, status);
        EXPECT_THAT(result.error().message, HasSubstr(part));
        try {
            std::move(result).value();
            FAIL();
        } catch (const ostrel::failure &problem) {
            EXPECT_EQ(problem.status(), status);
            EXPECT_THAT(problem.what(), HasSubstr(part));
        }
    };
    using ostrel::fluid;
    expect([] { return fluid::try_open("tolune"); }, OSTREL_CANNOT_OPEN, "did you mean toluene");
    expect([] { return fluid::try_open("toluene", unchecked("model=no")); }, OSTREL_BAD_ARGUMENT, "no value of model");
    expect([] { return fluid::try_open_file("/no/such/file.osd"); }, OSTREL_CANNOT_OPEN, "/no/such/file.osd");
    expect([] { return fluid::try_open_text("nothing"); }, OSTREL_BAD_FILE, "");
    expect([] { return fluid::try_open_database("/no/such/file.sqlite", "x"); }, OSTREL_CANNOT_OPEN, "");
    EXPECT_THROW(fluid::open("tolune"), ostrel::failure);
    EXPECT_THROW(fluid::open_file("/no/such/file.osd"), ostrel::failure);
    EXPECT_THROW(fluid::open_text("nothing"), ostrel::failure);
    EXPECT_THROW(fluid::open_database("/no/such/file.sqlite", "x"), ostrel::failure);
}

TEST(ostrel_hpp, a_fluid_moves_with_its_handle) {
    ostrel::fluid first = toluene();
    const ostrel_fluid *const handle = first.handle();
    const std::string_view name = first.text("name");
    ostrel::fluid second = std::move(first);
    EXPECT_EQ(second.handle(), handle);
    EXPECT_EQ(first.handle(), nullptr);
    EXPECT_EQ(name.data(), second.text("name").data());
    EXPECT_EQ(first.try_value("pt", 1e5, 400, "d").status(), OSTREL_BAD_ARGUMENT);
    EXPECT_TRUE(std::isnan(first.constant("t_crit")));
    EXPECT_EQ(first.text("name").data(), nullptr);
    first = ostrel::fluid::open("water");
    second = std::move(first);
    EXPECT_EQ(second.text("name"), ostrel::fluid::open("water").text("name"));
    ostrel_fluid *const released = second.release();
    EXPECT_EQ(second.handle(), nullptr);
    EXPECT_EQ(ostrel::fluid(released).handle(), released);
}

TEST(ostrel_hpp, unchecked_names_are_checked_by_the_library) {
    const ostrel::fluid fluid = toluene();
    EXPECT_EQ(fluid.value(unchecked(std::string("pt")), 1e5, 400, unchecked("t")), 400);
    EXPECT_EQ(fluid.try_value(unchecked("px"), 1, 2, "d").status(), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(fluid.try_value("pt", 1e5, 400, unchecked("dd")).status(), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(fluid.try_value("pt", 1e5, 400, unchecked(nullptr)).status(), OSTREL_BAD_ARGUMENT);
    EXPECT_TRUE(std::isnan(fluid.constant(unchecked("t_krit"))));
    EXPECT_EQ(fluid.text(unchecked("nom")).data(), nullptr);
    EXPECT_NE(fluid.text("aliases").data(), nullptr);
    EXPECT_EQ(fluid.try_evaluate("pt", unchecked("d,"), {}, {}).status(), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(fluid.try_evaluate("pt", unchecked(nullptr), {}, {}).status(), OSTREL_BAD_ARGUMENT);
}

// ---- One state

TEST(ostrel_hpp, one_state) {
    const ostrel::fluid fluid = toluene();
    const double d = ostrel_fluid_value(fluid.handle(), "pt", 1e5, 400, "d", nullptr);
    EXPECT_EQ(bits(fluid.value("pt", 1e5, 400, "d")), bits(d));
    EXPECT_EQ(bits(*fluid.try_value("tp", 400, 1e5, "D")), bits(d));
    const auto [t, again, slope] = fluid.values<"t, d,dp/dd|u">("pt", 1e5, 400);
    EXPECT_EQ(t, 400);
    EXPECT_EQ(bits(again), bits(d));
    EXPECT_EQ(bits(slope), bits(fluid.value("pt", 1e5, 400, "dp/dd|u")));
    const ostrel::state state = fluid.solve("pt", 1e5, 400);
    EXPECT_EQ(bits(fluid.value(state, "d")), bits(d));
    EXPECT_EQ(state.t, 400);
}

TEST(ostrel_hpp, one_state_that_fails) {
    const ostrel::fluid fluid = toluene();
    const auto told = fluid.try_value("pt", -1, 400, "d");
    EXPECT_EQ(told.status(), OSTREL_OUT_OF_RANGE);
    EXPECT_THAT(told.error().message, HasSubstr("p = -1 Pa"));
    EXPECT_EQ(told.value_or(7), 7);
    EXPECT_EQ(fluid.try_value("pt", 1e5, 400, "t").value_or(7), 400);
    EXPECT_EQ(fluid.try_values<"d, cv">("tq", 400, 0.5).status(), OSTREL_TWO_PHASE);
    EXPECT_EQ(fluid.try_solve("tq", 700, 0.5).status(), OSTREL_NO_SATURATION);
    EXPECT_THROW(fluid.value("pt", -1, 400, "d"), ostrel::failure);
    EXPECT_THROW(fluid.values<"d">("pt", -1, 400), ostrel::failure);
    EXPECT_THROW(fluid.solve("pt", -1, 400), ostrel::failure);
    EXPECT_THROW(fluid.value(ostrel::state{}, unchecked("x")), ostrel::failure);
}

// ---- Many states

struct ostrel_hpp_states : testing::Test {
    const ostrel::fluid fluid = toluene();
    const std::array<double, 3> t{300, 400, 700}, q{0, 0.5, 0.5}; // good, cv fails, no saturation
    std::array<double, 6> values{};
    std::array<int, 3> status{};
    std::array<double, 6> expected{};
    std::array<int, 3> expected_status{};
    int answer = ostrel_fluid_evaluate(fluid.handle(), "tq", "p,cv", 3, t.data(), q.data(), expected.data(),
                                       expected_status.data());

    void expect_same(std::span<const double> found, std::span<const int> statuses) const {
        ASSERT_EQ(found.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_EQ(bits(found[i]), bits(expected[i])) << i;
        EXPECT_EQ(std::vector(statuses.begin(), statuses.end()),
                  std::vector(expected_status.begin(), expected_status.end()));
    }
};

TEST_F(ostrel_hpp_states, into_arrays) {
    ASSERT_EQ(answer, OSTREL_TWO_PHASE);
    const auto result = fluid.try_evaluate("tq", "p,cv", t, q, values, status);
    EXPECT_EQ(result.status(), OSTREL_TWO_PHASE);
    EXPECT_THAT(result.error().message, HasSubstr("state 1 "));
    expect_same(values, status);
    values.fill(0);
    status.fill(-1);
    EXPECT_EQ(fluid.try_evaluate_parallel("tq", "p,cv", t, q, values, status, 3).status(), OSTREL_TWO_PHASE);
    expect_same(values, status);
    values.fill(0);
    EXPECT_THROW(fluid.evaluate("tq", "p,cv", t, q, values), ostrel::failure);
    expect_same(values, status);
    values.fill(0);
    EXPECT_THROW(fluid.evaluate_parallel("tq", "p,cv", t, q, values), ostrel::failure);
    expect_same(values, status);
    EXPECT_TRUE(
        fluid.try_evaluate("tq", "p,cv", std::span(t).first(1), std::span(q).first(1), std::span(values).first(2)));
    EXPECT_TRUE(fluid.try_evaluate("tq", "p,cv", {}, {}, {}));
}

TEST_F(ostrel_hpp_states, as_tables) {
    for (const ostrel::table &table :
         {fluid.evaluate("tq", "p,cv", t, q), fluid.evaluate_parallel("tq", "p,cv", t, q, 2)}) {
        EXPECT_EQ(table.size(), 3U);
        EXPECT_EQ(table.outputs(), 2U);
        EXPECT_FALSE(table.ok());
        EXPECT_EQ(table.first_fault()->status, OSTREL_TWO_PHASE);
        EXPECT_THAT(table.first_fault()->message, HasSubstr("state 1 "));
        expect_same(table.values(), table.status());
        EXPECT_EQ(bits(table(1, 0)), bits(expected[2]));
        EXPECT_EQ(bits(table[1][0]), bits(expected[2]));
        EXPECT_EQ(table[2].size(), 2U);
    }
    const ostrel::table good = fluid.evaluate("tq", "p", std::span(t).first(2), std::span(q).first(2));
    EXPECT_TRUE(good.ok());
    EXPECT_FALSE(good.first_fault());
    EXPECT_TRUE(fluid.evaluate("tq", "p", {}, {}).ok());
    EXPECT_THROW(fluid.evaluate(unchecked("xx"), "p", t, q), ostrel::failure);
    EXPECT_EQ(fluid.try_evaluate(unchecked("xx"), "p", t, q).status(), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(fluid.try_evaluate_parallel(unchecked("xx"), "p", t, q).status(), OSTREL_BAD_ARGUMENT);
}

TEST_F(ostrel_hpp_states, solved_first) {
    std::array<ostrel::state, 3> states{};
    EXPECT_EQ(fluid.try_solve("tq", t, q, states).status(), OSTREL_NO_SATURATION);
    EXPECT_EQ(fluid.try_outputs("p,cv", states, values, status).status(), OSTREL_TWO_PHASE);
    expect_same(values, status);
    EXPECT_THROW(fluid.solve("tq", t, q, states), ostrel::failure);
    EXPECT_THROW(fluid.outputs("p,cv", states, values), ostrel::failure);
}

TEST_F(ostrel_hpp_states, saturation) {
    std::array<double, 6> liquid{}, vapor{}, other{};
    EXPECT_EQ(fluid.try_saturation("t", "p,h", t, liquid, vapor, status).status(), OSTREL_NO_SATURATION);
    EXPECT_THAT(status, ElementsAre(OSTREL_OK, OSTREL_OK, OSTREL_NO_SATURATION));
    EXPECT_EQ(bits(liquid[0]), bits(expected[0]));
    EXPECT_GT(vapor[1], liquid[1]);
    EXPECT_EQ(fluid.try_saturation("t", "p,h", t, {}, other).status(), OSTREL_NO_SATURATION);
    for (std::size_t i = 0; i < other.size(); ++i)
        EXPECT_EQ(bits(other[i]), bits(vapor[i])) << i;
    EXPECT_THROW(fluid.saturation("t", "p,h", t, liquid, {}), ostrel::failure);
    const ostrel::saturated both = fluid.saturation("t", "p,h", t);
    EXPECT_EQ(bits(both.liquid(1, 1)), bits(liquid[3]));
    EXPECT_EQ(bits(both.vapor(1, 1)), bits(vapor[3]));
    for (const ostrel::table &phase : {both.liquid, both.vapor}) {
        EXPECT_EQ(phase.status()[2], OSTREL_NO_SATURATION);
        EXPECT_EQ(phase.first_fault()->status, OSTREL_NO_SATURATION);
    }
    EXPECT_TRUE(fluid.saturation("t", "p", std::span(t).first(2)).vapor.ok());
    EXPECT_THROW(fluid.saturation(unchecked("h"), "p", t), ostrel::failure);
}

TEST_F(ostrel_hpp_states, arrays_of_wrong_sizes_are_refused) {
    const std::array<double, 2> two{};
    std::array<double, 5> five{};
    std::array<int, 2> two_statuses{};
    std::array<ostrel::state, 3> states{};
    const auto expect = [](const ostrel::result<void> &result, const char *message) {
        EXPECT_EQ(result.status(), OSTREL_BAD_ARGUMENT);
        ASSERT_FALSE(result);
        EXPECT_THAT(result.error().message, StartsWith(message));
    };
    expect(fluid.try_evaluate("tq", "p,cv", t, two, values), "second: an array of 2 elements; 3 states need 1 each");
    expect(fluid.try_evaluate("tq", "p,cv", t, q, five), "values: an array of 5 elements; 3 states need 2 each");
    expect(fluid.try_evaluate("tq", "p,cv", t, q, {}), "values: an array of 0 ");
    expect(fluid.try_evaluate("tq", "p,cv", t, q, values, two_statuses), "status: an array of 2 ");
    expect(fluid.try_evaluate_parallel("tq", "p,cv", t, q, five), "values: ");
    expect(fluid.try_saturation("t", "p,cv", t, five, values), "liquid: ");
    expect(fluid.try_saturation("t", "p,cv", t, values, five), "vapor: ");
    expect(fluid.try_saturation("t", "p,cv", t, values, {}, two_statuses), "status: ");
    expect(fluid.try_solve("tq", t, two, states), "second: ");
    expect(fluid.try_solve("tq", t, q, std::span(states).first(2)), "states: ");
    expect(fluid.try_outputs("p,cv", states, five), "values: ");
    expect(fluid.try_outputs("p,cv", states, values, two_statuses), "status: ");
    EXPECT_EQ(fluid.try_evaluate("tq", "p", t, two).status(), OSTREL_BAD_ARGUMENT);
    EXPECT_THAT(five, ElementsAre(0, 0, 0, 0, 0));
}

// ---- What there is

TEST(ostrel_hpp, lists) {
    using ostrel::kind;
    const std::pair<kind, const char *> kinds[] = {
        {kind::inputs, "inputs"},       {kind::outputs, "outputs"},  {kind::derivatives, "derivatives"},
        {kind::constants, "constants"}, {kind::texts, "texts"},      {kind::models, "models"},
        {kind::options, "options"},     {kind::statuses, "statuses"}};
    for (const auto &[which, word] : kinds) {
        const auto rows = support::rows_of(word);
        ASSERT_FALSE(rows.empty());
        EXPECT_EQ(ostrel::list(which).size(), rows.size());
        std::size_t i = 0;
        for (const ostrel::row &row : ostrel::list(which)) {
            EXPECT_EQ(row.name, rows[i].name);
            EXPECT_EQ(row.unit, rows[i].unit);
            EXPECT_EQ(row.description, rows[i].description);
            ++i;
        }
        EXPECT_EQ(i, rows.size());
    }
    auto at = ostrel::list(kind::outputs).begin();
    EXPECT_EQ((*at++).name, "t");
    EXPECT_EQ((*at).name, "p");
    EXPECT_FALSE(at == ostrel::list(kind::outputs).begin());
}

TEST(ostrel_hpp, every_status_of_the_list_has_its_text) {
    for (const ostrel::row &row : ostrel::list(ostrel::kind::statuses))
        EXPECT_EQ(ostrel::status_text(std::stoi(std::string(row.unit))), row.description);
}

TEST(ostrel_hpp, fluids_are_found) {
    const auto found = ostrel::find("toluene");
    ASSERT_FALSE(found.empty());
    EXPECT_EQ(found.front().file, "toluene");
    EXPECT_FALSE(found.front().name.empty());
    EXPECT_GT(ostrel::find("").size(), 300U);
    EXPECT_TRUE(ostrel::find("no fluid has such a name").empty());
    EXPECT_TRUE(ostrel::try_find("water"));
}

TEST(ostrel_hpp, a_folder_that_cannot_be_read_is_a_fault) {
    const std::string before = std::getenv("OSTREL_FLUIDS");
    ASSERT_EQ(setenv("OSTREL_FLUIDS", "/no/such/folder", 1), 0);
    EXPECT_EQ(ostrel::try_find("water").status(), OSTREL_CANNOT_OPEN);
    EXPECT_THROW(ostrel::find("water"), ostrel::failure);
    EXPECT_THAT(ostrel::last_message(), HasSubstr("/no/such/folder"));
    ASSERT_EQ(setenv("OSTREL_FLUIDS", before.c_str(), 1), 0);
}

} // namespace
