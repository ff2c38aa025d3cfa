// SPDX-License-Identifier: MIT
// Every shipped fluid must load under every model, and answer in the vapor and on the saturation curve.
#include "Tests/Support/frame.h"

#include <cmath>

namespace {

using support::answer;
using support::ask;
using support::ask_info;

constexpr std::size_t shards = 8;

/// The shipped fluids in eight parts, which run side by side.
struct catalogue : support::frame_test, testing::WithParamInterface<std::size_t> {
    template <class Visit>
    void for_each_fluid(Visit visit) const {
        const std::vector<std::string> fluids = support::shipped_fluids();
        for (std::size_t i = GetParam(); i < fluids.size(); i += shards) {
            SCOPED_TRACE(fluids[i]);
            support::fresh_frame(support::shipped_folder);
            visit(fluids[i]);
        }
    }
};
INSTANTIATE_TEST_SUITE_P(part, catalogue, testing::Range(std::size_t{0}, shards));

double value(const answer &given) {
    EXPECT_EQ(given.text, "No errors");
    return given.value;
}

/// Whether the model in use has saturated states: the ideal gases have none, Peng-Robinson's table collapses for most
/// fluids, and Martin-Hou's solvers fail.
bool has_saturation() {
    switch (thermodynamics::gas_type) {
    case 2:
    case 4:
    case 6:
    case 7:
        return true;
    default:
        return false;
    }
}

TEST_P(catalogue, loads_and_answers) {
    for_each_fluid([](const std::string &fluid) {
        const double Tc = value(ask_info(fluid, "t_crit"));
        const double Pc = value(ask_info(fluid, "p_crit"));
        const double d = value(ask(fluid, "pt", 0.3 * Pc, 1.2 * Tc, "d"));
        const double Z = 0.3 * Pc / (d * gas_properties::gas.R * 1.2 * Tc);
        EXPECT_GT(Z, 0.8);
        EXPECT_LE(Z, 1.0 + 1e-12);
        for (const char *output : {"cv", "eta", "lambda"}) {
            EXPECT_GT(value(ask(fluid, "pt", 0.3 * Pc, 1.2 * Tc, output)), 0) << output;
        }
        if (!has_saturation())
            return;
        for (const double T_r : {0.7, 0.9}) {
            const double v_g = value(ask(fluid, "tq", T_r * Tc, 1, "v"));
            const double v_l = value(ask(fluid, "tq", T_r * Tc, 0, "v"));
            EXPECT_GT(v_g, 2 * v_l) << T_r;
            const double p = value(ask(fluid, "tq", T_r * Tc, 1, "p"));
            EXPECT_NEAR(value(ask(fluid, "pq", p, 1, "t")), T_r * Tc, 1e-5 * T_r * Tc);
            EXPECT_GT(value(ask(fluid, "tq", T_r * Tc, 1, "eta")), 0);
        }
    });
}

TEST_P(catalogue, every_file_loads_under_every_model) {
    for_each_fluid([](const std::string &fluid) {
        for (std::int32_t type = 1; type <= 8; ++type) {
            SCOPED_TRACE(type);
            support::fresh_fluid();
            ostrel::read_init_fluiddatafile(support::shipped_folder + ("/" + fluid) + ".osd");
            ASSERT_EQ(support::shared_text(), "No errors");
            thermodynamics::gas_type = type;
            ideal_Z_gas::active.Z_const = 0.9;
            thermodynamics::init_thermodynamics();
            EXPECT_EQ(support::shared_text(), "No errors");
            transport_properties::init_transport_properties();
            EXPECT_EQ(support::shared_text(), "No errors");
            EXPECT_GT(thermodynamics::P__T_v(1.1 / gas_properties::gas.Z_ref, 10.0), 0);
        }
    });
}

TEST(catalogue_size, three_hundred_fluids_with_names_that_are_kept) {
    const std::vector<std::string> fluids = support::shipped_fluids();
    EXPECT_GE(fluids.size(), 300u);
    EXPECT_LE(fluids.size(), 500u); // the list of fluids has no room for more
    for (const std::string &fluid : fluids)
        EXPECT_LE(fluid.size(), 8u) << fluid;
}

} // namespace
