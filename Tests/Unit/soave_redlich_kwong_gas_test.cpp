// SPDX-License-Identifier: MIT
#include "Tests/Support/critical_models.h"

namespace {

using namespace soave_redlich_kwong_gas;
using gas_properties::gas;
using support::critical_data;
using support::tracked;

struct soave_redlich_kwong_gas_test : support::thermodynamics_test {};

constexpr support::model_case soave = {"Soave-Redlich-Kwong", 4, support::vapor_fluid, ""};

/// The constants in SI units before they are reduced.
struct dimensional {
    double c_a;
    double b;
    double fw;
};
dimensional dimensional_constants() {
    const double R = gas.R, Tc = gas.Tc, Pc = gas.Pc, omega = gas.omega;
    const double RTc = R * Tc;
    return {RTc * RTc * 0.4274802335403413 / Pc, Tc * 0.08664034996495773 * R / Pc,
            0.48 + (1.574 - 0.176 * omega) * omega};
}

support::critical_search search(const dimensional &p, int most = 100) {
    const double RTc = gas.R * gas.Tc;
    return support::search_critical_volume(RTc, gas.Pc, p.b, p.c_a * (1.0 + p.fw * (1.0 - std::sqrt(gas.Tc / gas.Tc))),
                                           false, 1e-14, most);
}

void expect_dimensional(const dimensional &p) {
    EXPECT_EQ(active.Rgas, gas.R);
    EXPECT_EQ(active.c_a, p.c_a);
    EXPECT_EQ(active.b, p.b);
    EXPECT_EQ(active.fw, p.fw);
}

const critical_data fluids[] = {{400.0, 4.2e6},
                                {304.1282, 7376460.0, 44.0, 0.2746, 0.225},
                                {425.1, 3796000.0, 58.123, 0.274, 0.2},
                                {300.0, 5066250.0},
                                {410.0, 3.5e6},
                                {425.0, 4.4e6},
                                {500.0, 3.7e6},
                                {410.0, 5.0e6, 18.0},
                                {500.0, 4.2e6, 31.0}};

TEST_F(soave_redlich_kwong_gas_test, init_finds_the_critical_volume_and_reduces_the_constants) {
    for (const critical_data &fluid : fluids) {
        SCOPED_TRACE(testing::Message() << fluid.Tc << " K, " << fluid.Pc << " Pa");
        support::use_record(fluid);
        const auto before = gas;
        const dimensional p = dimensional_constants();
        const auto [v, found] = search(p);
        ASSERT_TRUE(found);
        init_SRKG();
        EXPECT_EQ(support::shared_text(), "No errors");
        const double Zc = gas.Pc * v / (gas.R * gas.Tc);
        support::expect_critical_reference(before, v, Zc);
        EXPECT_NE(gas.Zc, fluid.Zc);
        EXPECT_EQ(active.Rgas, 1.0);
        EXPECT_EQ(active.b, p.b / v);
        EXPECT_EQ(active.Zc, Zc);
        EXPECT_EQ(active.fw, p.fw);
        EXPECT_EQ(active.c_a, p.c_a / (v * gas.Pc * v));
    }
}

// The residual is flat at its triple root: steps of some 1e-9 Pa in it are 1e-5 in the volume.
TEST_F(soave_redlich_kwong_gas_test, the_compressibility_is_a_third_whatever_that_of_the_fluid) {
    for (const double Zc : {0.2, 0.27, 0.31}) {
        support::use_record({400.0, 4.2e6, 20.0, Zc});
        init_SRKG();
        EXPECT_NEAR(gas.Zc, 1.0 / 3.0, 2e-5);
        EXPECT_NE(gas.Zc, 1.0 / 3.0);
    }
}

TEST_F(soave_redlich_kwong_gas_test, an_old_message_leaves_the_dimensional_constants_and_the_record) {
    support::use_record({400.0, 4.2e6});
    const auto before = gas;
    ASSERT_TRUE(search(dimensional_constants()).found);
    ideal_specific_heat::errmsg.report({"earlier"});
    init_SRKG();
    EXPECT_EQ(support::shared_text(), "earlier");
    support::expect_record(before);
    expect_dimensional(dimensional_constants());
}

TEST_F(soave_redlich_kwong_gas_test, a_critical_volume_that_is_not_found_is_reported) {
    for (const critical_data &fluid : {critical_data{294.0, 1.9e6}, {294.0, 3.8e6}, {294.0, 7.6e6}}) {
        SCOPED_TRACE(testing::Message() << fluid.Tc << " K, " << fluid.Pc << " Pa");
        for (const bool earlier : {false, true}) {
            support::use_record(fluid);
            const auto before = gas;
            ASSERT_FALSE(search(dimensional_constants(), 1000).found);
            if (earlier)
                ideal_specific_heat::errmsg.report({"earlier"});
            init_SRKG();
            std::string text = " ERROR:  v__P_T__SRKG. STOP";
            text.resize(256, ' ');
            EXPECT_EQ(ideal_specific_heat::errmsg.padded(), text);
            support::expect_record(before);
            expect_dimensional(dimensional_constants());
        }
    }
}

// The residual of the hundredth evaluation still counts, that of the hundred and first does not.
TEST_F(soave_redlich_kwong_gas_test, the_hundredth_evaluation_is_the_last) {
    support::use_record({407.0, 2608000.0});
    ASSERT_FALSE(search(dimensional_constants(), 99).found);
    ASSERT_TRUE(search(dimensional_constants(), 100).found);
    init_SRKG();
    EXPECT_EQ(support::shared_text(), "No errors");
    EXPECT_EQ(active.Rgas, 1.0);

    support::use_record({711.0, 2.3e6});
    ASSERT_FALSE(search(dimensional_constants(), 100).found);
    ASSERT_TRUE(search(dimensional_constants(), 101).found);
    init_SRKG();
    EXPECT_EQ(support::shared_text(), " ERROR:  v__P_T__SRKG. STOP");
    EXPECT_EQ(active.Rgas, gas.R);
}

// Nothing of the fluid before is left.
TEST_F(soave_redlich_kwong_gas_test, the_constants_of_a_failure_are_those_of_its_own_fluid) {
    support::use_record({400.0, 4.2e6});
    init_SRKG();
    EXPECT_EQ(active.Rgas, 1.0);
    gas.Tc = 294.0;
    gas.Pc = 1.9e6;
    init_SRKG();
    EXPECT_EQ(support::shared_text(), " ERROR:  v__P_T__SRKG. STOP");
    expect_dimensional(dimensional_constants());
}

TEST_F(soave_redlich_kwong_gas_test, a_fluid_without_critical_data_is_reported_and_nothing_changes) {
    support::load(soave, support::heat_cases[0]);
    const auto before = active;
    support::expect_not_a_vapor(init_SRKG, "Soave-Redlich-Kwong model is not applicable. ",
                                "In init_SRKG, module soave_redlich_kwong_gas.");
    EXPECT_EQ(active.Rgas, before.Rgas);
    EXPECT_EQ(active.b, before.b);
    EXPECT_EQ(active.c_a, before.c_a);
    EXPECT_EQ(active.fw, before.fw);
    EXPECT_EQ(active.Zc, before.Zc);
}

// (1/Zc, 1) is as near the critical point as the critical volume was found: x off it P is x^3 off 1, dP/dv x^2
// and d2P/dv2 x.
TEST_F(soave_redlich_kwong_gas_test, the_critical_point_is_met_as_far_as_it_was_found) {
    support::load(soave, support::heat_cases[0]);
    const double T = 1 / gas.Zc;
    EXPECT_NEAR(P__T_v__SRKG(T, 1.0), 1.0, 1e-13);
    EXPECT_NEAR(dP__dT_dv__SRKG(T, 1.0)[1], 0.0, 1e-8);
    EXPECT_NEAR(d2P__dT2_dv2__SRKG(T, 1.0)[3], 0.0, 1e-3);
    EXPECT_NE(d2P__dT2_dv2__SRKG(T, 1.0)[3], 0.0);
}

TEST_F(soave_redlich_kwong_gas_test, the_operations_are_their_formulas) {
    for (const auto &heat : support::heat_cases) {
        SCOPED_TRACE(heat.name);
        support::load(soave, heat);
        const double b = active.b;
        for (const auto &at : support::states) {
            SCOPED_TRACE(at.name);
            const double T = at.T / gas.Zc, v = b + at.w * (1 - b);
            const support::tracked_factors<1> q = support::soave_q(active.c_a, active.fw, active.Zc, T);
            const support::tracked_factors<1> f = support::redlich_kwong_f(b, v);
            std::array<std::array<double, 4>, 1> computed_q{}, computed_f{};
            Q_f__T_v__SRKG(T, v, computed_q[0], computed_f[0]);
            support::expect_factors(computed_q, q);
            support::expect_factors(computed_f, f);
            support::expect_formulas(q, f, b, T, v);
        }
    }
}

// At the critical temperature the temperature factor is 1, and it falls with the slope -fw sqrt(Zc T).
TEST_F(soave_redlich_kwong_gas_test, the_temperature_factor_is_one_at_the_critical_temperature) {
    support::load(soave, support::heat_cases[0]);
    std::array<double, 4> q{}, f{};
    Q_f__T_v__SRKG(1 / gas.Zc, 1.0, q, f);
    EXPECT_DOUBLE_EQ(q[0], active.c_a);
    EXPECT_DOUBLE_EQ(q[1] / gas.Zc, -active.fw * active.c_a);
}

TEST_F(soave_redlich_kwong_gas_test, the_slope_of_the_temperature_factor_follows_the_acentric_factor) {
    for (const auto &[omega, fw] : {std::pair(0.0, 0.48), {0.5, 1.223}, {-0.4, -0.17776}}) {
        support::use_record({400.0, 4.2e6, 20.0, 0.27, omega});
        init_SRKG();
        EXPECT_NEAR(active.fw, fw, 4 * support::epsilon) << omega;
    }
}

TEST_F(soave_redlich_kwong_gas_test, the_minimum_volume_is_just_above_the_covolume) {
    support::load(soave, support::heat_cases[0]);
    EXPECT_EQ(minimum_specific_volume__SRKG(), active.b * 1.000000000001);
    EXPECT_EQ(thermodynamics::vmin, active.b * 1.000000000001 * 1.000000001);
}

TEST_F(soave_redlich_kwong_gas_test, needs_no_parameters_and_has_none) {
    const support::temporary_folder folder;
    records::file_reader reader(folder.write("fluid.osd", "1.0\n"));
    read_param_SRKG(reader);
    EXPECT_EQ(reader.record_number(), 0);
    records::record_writer writer;
    write_param_SRKG(writer);
    EXPECT_EQ(writer.text(), "");
}

TEST_F(soave_redlich_kwong_gas_test, arguments_are_not_checked) {
    support::load(soave, support::heat_cases[0]);
    EXPECT_EQ(P__T_v__SRKG(2.0, active.b), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(s__T_v__SRKG(2.0, active.b / 2)));
    EXPECT_EQ(support::shared_text(), "No errors");
}

} // namespace
