// SPDX-License-Identifier: MIT
#include "Tests/thermodynamics_support.h"

namespace {

using namespace thermodynamics;

struct thermodynamics_derived_test : support::thermodynamics_test {};

TEST_F(thermodynamics_derived_test, enthalpy_is_exactly_e_plus_P_v) {
    support::for_each_state(
        [](const auto &, double T, double v) { EXPECT_EQ(h__T_v(T, v), e__T_v(T, v) + P__T_v(T, v) * v); });
}

TEST_F(thermodynamics_derived_test, dP_dre_dr_is_its_formula) {
    support::for_each_state([](const auto &, double T, double v) {
        std::array<double, 2> dP{}, de{};
        dP__dT_dv(T, v, dP);
        de__dT_dv(T, v, de);
        const auto [P_T, P_v] = dP;
        const auto [e_T, e_v] = de;
        const double e = e__T_v(T, v);
        const auto [dP_dre, dP_dr] = dP__dre_dr__T_v(T, v);
        EXPECT_EQ(dP_dre, P_T / (e_T / v));
        EXPECT_EQ(dP_dr, (P_v - P_T * ((e_v / v - e / (v * v)) / (e_T / v))) / (-1.0 / (v * v)));
    });
}

// For an ideal gas of constant heat capacity P = (rho e - rho e_0)/cv.
TEST_F(thermodynamics_derived_test, dP_dre_dr_of_an_ideal_gas) {
    support::load(support::model_cases[1], support::heat_cases[1]);
    const double cv = 3.5, e_0 = gas_properties::gas.e_0;
    const auto [dP_dre, dP_dr] = dP__dre_dr__T_v(1.3, 0.4);
    EXPECT_DOUBLE_EQ(dP_dre, 1 / cv);
    EXPECT_DOUBLE_EQ(dP_dr, -e_0 / cv);
}

TEST_F(thermodynamics_derived_test, dP_dre_dr_is_the_pair_of_the_extended_state) {
    support::for_each_state([](const auto &, double T, double v) {
        const auto extended = eos_ext__T_v(T, v);
        const auto pair = dP__dre_dr__T_v(T, v);
        EXPECT_EQ(pair[0], extended[5]);
        EXPECT_EQ(pair[1], extended[6]);
    });
}

TEST_F(thermodynamics_derived_test, without_a_model_there_is_nothing_to_divide) {
    EXPECT_EQ(h__T_v(1.0, 1.0), 0.0);
    const auto [dP_dre, dP_dr] = dP__dre_dr__T_v(1.0, 1.0);
    EXPECT_TRUE(std::isnan(dP_dre));
    EXPECT_TRUE(std::isnan(dP_dr));
    EXPECT_EQ(support::shared_text(), "No errors");
}

} // namespace
