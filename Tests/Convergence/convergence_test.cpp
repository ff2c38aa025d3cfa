// SPDX-License-Identifier: MIT
// A sample of the states that scripts/convergence tries: every pair of inputs finds each of them.
#include "Tests/Convergence/convergence.h"

#include <gtest/gtest.h>

namespace {

struct sample {
    const char *model;
    long states; ///< of each of the 20 fluids
};
class convergence_of : public testing::TestWithParam<sample> {};

const sample samples[] = {{"vdw", 300}, {"mh", 60}, {"srk", 300}, {"pr", 300}, {"rk", 300}, {"cii", 300}};
INSTANTIATE_TEST_SUITE_P(model, convergence_of, testing::ValuesIn(samples),
                         [](const auto &each) { return std::string(each.param.model); });

TEST_P(convergence_of, every_pair_finds_the_state) {
    convergence::tallies counts;
    std::vector<std::string> told;
    for (const char *const fluid : convergence::fluids)
        convergence::fluid_states(OSTREL_TESTS "/../Fluids", fluid, GetParam().model)
            .judge_many(GetParam().states, counts, told, [](long, const auto &) {});
    convergence::tally all;
    EXPECT_EQ(counts.size(), std::size(convergence::pairs));
    for (const auto &[pair, count] : counts) {
        EXPECT_GT(count.compared(), pair == "pq" || pair == "tq" ? 250 : 700) << pair;
        EXPECT_LT(count.sum / static_cast<convergence::wide>(count.compared()), 8) << pair;
        all.add(count);
    }
    EXPECT_EQ(all.failures, 0);
    if (HasFailure())
        for (const std::string &text : told)
            ADD_FAILURE() << text;
}

// Where lines end, to three digits.
TEST(convergence, lines_that_end) {
    const struct {
        const char *fluid, *model;
        double near; ///< Tc
    } ends[] = {{"water", "cii", 0.640},
                {"ammonia", "cii", 0.317},
                {"nbutane", "mh", 0.811},
                {"water", "mh", 0.952},
                {"co2", "mh", 0.791}};
    for (const auto &end : ends) {
        SCOPED_TRACE(std::string(end.fluid) + " model=" + end.model);
        const convergence::fluid_states states(OSTREL_TESTS "/../Fluids", end.fluid, end.model);
        const double t = ostrel_fluid_constant(states.handle(), "t_sat_min");
        EXPECT_NEAR(t / ostrel_fluid_constant(states.handle(), "t_crit"), end.near, 0.0006);
        int status = -1;
        EXPECT_TRUE(std::isnan(ostrel_fluid_value(states.handle(), "tq", t * (1 - 1e-9), 0, "p", &status)));
        EXPECT_EQ(status, OSTREL_NO_SATURATION);
    }
}

} // namespace
