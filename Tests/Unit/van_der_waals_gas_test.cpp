// SPDX-License-Identifier: MIT
#include "Tests/Support/critical_models.h"

namespace {

using namespace van_der_waals_gas;
using gas_properties::gas;
using support::tracked;

struct van_der_waals_gas_test : support::thermodynamics_test {};

constexpr support::model_case van_der_waals = {"van der Waals", 2, support::vapor_fluid, ""};

TEST_F(van_der_waals_gas_test, init_replaces_the_compressibility_of_the_fluid) {
    for (const support::critical_data &fluid :
         {support::critical_data{400.0, 4.0e6}, {304.1282, 7376460.0, 44.0, 0.2746}, {5.19, 227460.0, 4.0026, 0.3}}) {
        SCOPED_TRACE(fluid.Tc);
        support::use_record(fluid);
        const auto before = gas;
        init_vdWG();
        support::expect_critical_reference(before, gas.R * 0.375 * gas.Tc / gas.Pc, 0.375);
        EXPECT_EQ(active.Rgas, 1.0);
        EXPECT_EQ(active.a, 3.0);
        EXPECT_EQ(active.b, 1.0 / 3.0);
    }
    EXPECT_EQ(support::shared_text(), "No errors");
}

TEST_F(van_der_waals_gas_test, an_old_message_stands_and_does_not_stop_init) {
    support::use_record({400.0, 4.0e6});
    ideal_specific_heat::errmsg.report({"earlier"});
    init_vdWG();
    EXPECT_EQ(support::shared_text(), "earlier");
    EXPECT_EQ(active.a, 3.0);
    EXPECT_EQ(gas.Zc, 0.375);
}

TEST_F(van_der_waals_gas_test, a_fluid_without_critical_data_is_reported_and_nothing_changes) {
    active.a = 7.0;
    active.b = 8.0;
    support::expect_not_a_vapor(init_vdWG, "van der Waals model is not applicable. ",
                                "In init_vdWG, module van_der_waals_gas.");
    EXPECT_EQ(active.Rgas, 0.0);
    EXPECT_EQ(active.a, 7.0);
    EXPECT_EQ(active.b, 8.0);
}

TEST_F(van_der_waals_gas_test, the_critical_point_is_at_8_3_and_1) {
    support::load(van_der_waals, support::heat_cases[0]);
    const double T = 8.0 / 3.0;
    EXPECT_DOUBLE_EQ(1 / gas.Z_ref, T);
    // The terms of P, dP/dv and d2P/dv2 are 4 and 3, 6 and 6, 18 and 18.
    EXPECT_NEAR(P__T_v__vdWG(T, 1.0), 1.0, 4 * 4 * support::epsilon);
    EXPECT_NEAR(dP__dT_dv__vdWG(T, 1.0)[1], 0.0, 6 * 4 * support::epsilon);
    EXPECT_NEAR(d2P__dT2_dv2__vdWG(T, 1.0)[3], 0.0, 18 * 4 * support::epsilon);
    EXPECT_DOUBLE_EQ(dP__dT_dv__vdWG(T, 1.0)[0], 1.5);
}

TEST_F(van_der_waals_gas_test, the_operations_are_their_formulas) {
    for (const auto &heat : support::heat_cases) {
        SCOPED_TRACE(heat.name);
        support::load(van_der_waals, heat);
        const tracked a = 3.0;
        const double b = 1.0 / 3.0;
        for (const auto &at : support::states) {
            SCOPED_TRACE(at.name);
            const double T = at.T / 0.375, volume = b + at.w * (1 - b);
            const tracked v = volume;
            const support::tracked_factors<1> q = {{{1, 0, 0, 0}}};
            const support::tracked_factors<1> f = {
                {{a / v, -(a / (v * v)), tracked(2) * a / (v * v * v), -(tracked(6) * a / (v * v * v * v))}}};
            support::expect_formulas(q, f, b, T, volume);
        }
    }
}

// No attraction in them: exactly zero, and the ideal gas exactly.
TEST_F(van_der_waals_gas_test, the_heat_capacity_is_that_of_the_ideal_gas) {
    support::load(van_der_waals, support::heat_cases[8]);
    for (const double T : {1.1, 2.0, 2.9})
        for (const double v : {0.4, 1.0, 900.0}) {
            EXPECT_EQ(cv__T_v__vdWG(T, v), ideal_specific_heat::phip__T(T));
            EXPECT_EQ(de__dT_dv__vdWG(T, v)[0], ideal_specific_heat::phip__T(T));
            EXPECT_EQ(dcv__dT_dv__vdWG(T, v)[0], ideal_specific_heat::phipp__T(T));
            EXPECT_EQ(dcv__dT_dv__vdWG(T, v)[1], 0.0);
            EXPECT_EQ(d2P__dT2_dv2__vdWG(T, v)[0], 0.0);
            EXPECT_EQ(d2e__dT2_dv2__vdWG(T, v)[1], 0.0);
        }
}

TEST_F(van_der_waals_gas_test, the_minimum_volume_is_just_above_the_covolume) {
    support::load(van_der_waals, support::heat_cases[0]);
    EXPECT_EQ(minimum_specific_volume__vdWG(), active.b * 1.000000000001);
    EXPECT_EQ(thermodynamics::vmin, active.b * 1.000000000001 * 1.000000001);
}

TEST_F(van_der_waals_gas_test, needs_no_parameters_and_has_none) {
    const support::temporary_folder folder;
    records::file_reader reader(folder.write("fluid.osd", "1.0\n"));
    read_param_vdWG(reader);
    EXPECT_EQ(reader.record_number(), 0);
    records::record_writer writer;
    write_param_vdWG(writer);
    EXPECT_EQ(writer.text(), "");
}

TEST_F(van_der_waals_gas_test, arguments_are_not_checked) {
    support::load(van_der_waals, support::heat_cases[0]);
    EXPECT_EQ(P__T_v__vdWG(2.0, active.b), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(s__T_v__vdWG(2.0, active.b / 2)));
    EXPECT_EQ(support::shared_text(), "No errors");
}

} // namespace
