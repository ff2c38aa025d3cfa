// SPDX-License-Identifier: MIT
#include "Tests/Support/critical_models.h"

namespace {

using namespace van_der_waals_gas;
using gas_properties::gas;
using support::tracked;

struct van_der_waals_gas_test : support::thermodynamics_test {};

const support::model_case &van_der_waals = support::case_of(2);

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
    support::for_each_state_of(van_der_waals, [](double T, double volume) {
        const tracked a = 3.0, v = volume;
        const support::tracked_factors<1> q = {{{1, 0, 0, 0}}};
        const support::tracked_factors<1> f = {
            {{a / v, -(a / (v * v)), tracked(2) * a / (v * v * v), -(tracked(6) * a / (v * v * v * v))}}};
        support::expect_formulas(q, f, 1.0 / 3.0, T, volume);
    });
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

// What does not depend on the volume, or on the attraction, is a number also where the attraction is infinite.
TEST_F(van_der_waals_gas_test, no_volume_and_no_temperature_spoils_what_does_not_know_it) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    support::load(van_der_waals, support::heat_cases[8]);
    const double T = 2.0;
    for (const double v : {0.0, 1e-200, infinite, nan}) {
        SCOPED_TRACE(v);
        EXPECT_EQ(cv__T_v__vdWG(T, v), ideal_specific_heat::phip__T(T));
        EXPECT_EQ(de__dT_dv__vdWG(T, v)[0], ideal_specific_heat::phip__T(T));
        EXPECT_EQ(dcv__dT_dv__vdWG(T, v)[0], ideal_specific_heat::phipp__T(T));
        EXPECT_EQ(dcv__dT_dv__vdWG(T, v)[1], 0.0);
        EXPECT_EQ(d2P__dT2_dv2__vdWG(T, v)[0], 0.0);
        EXPECT_EQ(d2e__dT2_dv2__vdWG(T, v)[0], ideal_specific_heat::phipp__T(T));
        EXPECT_EQ(d2e__dT2_dv2__vdWG(T, v)[1], 0.0);
    }
    EXPECT_DOUBLE_EQ(dP__dT_dv__vdWG(T, 0.0)[0], -3.0);
    EXPECT_DOUBLE_EQ(d2P__dT2_dv2__vdWG(T, 0.0)[1], -9.0);
    EXPECT_EQ(e__T_v__vdWG(T, 0.0), -infinite);

    support::load(van_der_waals, support::heat_cases[0]);
    EXPECT_EQ(e__T_v__vdWG(infinite, 1.0), infinite);
    EXPECT_EQ(de__dT_dv__vdWG(infinite, 1.0)[1], 3.0);
    EXPECT_EQ(d2e__dT2_dv2__vdWG(infinite, 1.0)[3], -6.0);
    EXPECT_EQ(cv__T_v__vdWG(infinite, 1.0), ideal_specific_heat::phip__T(1.0));
    EXPECT_EQ(dcv__dT_dv__vdWG(infinite, 1.0)[0], 0.0);
}

} // namespace
