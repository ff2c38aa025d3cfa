// SPDX-License-Identifier: MIT
#include "Tests/Support/entry_points.h"
#include "library_state.h"

namespace {

/// The values of all variables as they are when the library has just been loaded.
const library_state::kept as_loaded = library_state::keep();

/// Whether all variables that can be compared are equal; the parameters of models, transport and heat capacity are
/// looked at one by one in the tests.
bool equal(const library_state::kept &a, const library_state::kept &b) {
    const auto same = []<class Value>(const Value &x, const Value &y) {
        if constexpr (requires { x == y; })
            return x == y;
        else
            return true;
    };
    return [&]<std::size_t... i>(std::index_sequence<i...>) {
        return (same(std::get<i>(a), std::get<i>(b)) && ...);
    }
    (std::make_index_sequence<std::tuple_size_v<library_state::kept>>());
}

struct library_state_ : testing::Test {
    library_state_() {
        library_state::forget_everything();
        setenv("OSTREL_FLUIDS", OSTREL_TESTS "/../Fluids", 1);
    }
    ~library_state_() override { library_state::forget_everything(); }
};

TEST_F(library_state_, forgetting_everything_gives_the_values_of_a_library_just_loaded) {
    ASSERT_TRUE(support::ask("water", "tq", 400, 1, "v").ok());
    EXPECT_FALSE(equal(library_state::keep(), as_loaded));
    library_state::forget_everything();
    EXPECT_TRUE(equal(library_state::keep(), as_loaded));
    EXPECT_EQ(ostrel::os_input1, -8888.8);
    EXPECT_EQ(ostrel::os_input2, -8888.8);
    EXPECT_EQ(gas_properties::gas.Tc, 0);
    EXPECT_EQ(soave_redlich_kwong_gas::active.b, 0);
    EXPECT_EQ(transport_properties::active.Tc, 0);
    EXPECT_TRUE(ideal_specific_heat::active.Tv.empty());
    EXPECT_TRUE(thermodynamics::TTs.empty());
    EXPECT_EQ(thermodynamics::vmin, 0);
}

TEST_F(library_state_, what_is_kept_can_be_restored) {
    const auto state = [] { return support::ask("water", "tq", 400, 0, "v"); };
    const double before = state().value;
    const library_state::kept kept = library_state::keep();
    ASSERT_TRUE(support::ask("toluene", "pt", 1e5, 500, "h").ok());
    library_state::forget_everything();
    library_state::restore(kept);
    EXPECT_TRUE(equal(library_state::keep(), kept));
    EXPECT_EQ(state().value, before);
    EXPECT_EQ(gas_properties::gas.MM, std::get<equations::gas_constants>(kept).MM);
    EXPECT_EQ(support::ask("water", "tv", 600, 0.1, "p").value, [] {
        library_state::forget_everything();
        return support::ask("water", "tv", 600, 0.1, "p").value;
    }());
}

// A fluid forgotten leaves the table and the kept state.
TEST_F(library_state_, forgetting_the_fluid_leaves_what_outlives_it) {
    ASSERT_TRUE(support::ask("water", "tq", 400, 1, "v").ok());
    const double T = ostrel::T;
    library_state::forget_fluid();
    EXPECT_EQ(gas_properties::gas.Tc, 0);
    EXPECT_EQ(thermodynamics::gas_type, 0);
    EXPECT_EQ(thermodynamics::Tmin, 0);
    EXPECT_FALSE(thermodynamics::TTs.empty());
    EXPECT_EQ(ostrel::T, T);
    EXPECT_EQ(ostrel::os_fluid.trimmed(), "water");
}

} // namespace
