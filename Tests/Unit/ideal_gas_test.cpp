// SPDX-License-Identifier: MIT
#include "Tests/Support/thermodynamics.h"

namespace {

using namespace ideal_gas;
using gas_properties::gas;
using ideal_specific_heat::phi__T;
using ideal_specific_heat::phip__T;
using ideal_specific_heat::phipp__T;
using ideal_specific_heat::psi__T;

struct ideal_gas_test : support::thermodynamics_test {};

TEST_F(ideal_gas_test, init_completes_a_reference_fluid) {
    support::read_well(support::gas_section, support::reference_fluid);
    gas.Zc = gas.vc = gas.Tc = 7.25;
    init_IG();
    EXPECT_EQ(gas.v_ref, gas.R * 300.0 / 101325.0);
    EXPECT_EQ(gas.Z_ref, 1.0);
    EXPECT_EQ(gas.c_ref, std::sqrt(101325.0 * gas.v_ref));
    EXPECT_EQ(gas.T_ref, 300.0);
    EXPECT_EQ(gas.P_ref, 101325.0);
    EXPECT_EQ(gas.Zc, 7.25);
    EXPECT_EQ(gas.vc, 7.25);
    EXPECT_EQ(gas.Tc, 7.25);
    EXPECT_EQ(active.Rgas, 1.0);
    EXPECT_EQ(support::shared_text(), "No errors");
}

TEST_F(ideal_gas_test, init_overwrites_the_critical_compressibility_of_a_vapor) {
    support::read_well(support::gas_section, support::vapor_fluid);
    init_IG();
    EXPECT_EQ(gas.vc, gas.R * gas.Tc / gas.Pc);
    EXPECT_EQ(gas.v_ref, gas.vc);
    EXPECT_EQ(gas.Zc, 1.0);
    EXPECT_EQ(gas.Z_ref, 1.0);
    EXPECT_EQ(gas.T_ref, gas.Tc);
    EXPECT_EQ(gas.P_ref, gas.Pc);
    EXPECT_EQ(gas.c_ref, std::sqrt(gas.Pc * gas.vc));
    EXPECT_EQ(active.Rgas, 1.0);
    // Another model starts from the section, which is read again.
    support::read_well(support::gas_section, support::vapor_fluid);
    EXPECT_EQ(gas.Zc, 0.2746);
}

TEST_F(ideal_gas_test, needs_no_parameters_and_has_none) {
    EXPECT_EQ(active.Rgas, 0.0);
    const support::temporary_folder folder;
    records::file_reader reader(folder.write("fluid.osd", "1.0\n"));
    read_param_IG(reader);
    EXPECT_EQ(reader.record_number(), 0);
    records::record_writer writer;
    write_param_IG(writer);
    EXPECT_EQ(writer.text(), "");
    EXPECT_EQ(minimum_specific_volume__IG(), 1.0e-12);
}

TEST_F(ideal_gas_test, pressure_at_the_reference_point_is_one) {
    support::load(support::model_cases[0], support::heat_cases[0]);
    EXPECT_EQ(P__T_v__IG(1.0, 1.0), 1.0);
}

TEST_F(ideal_gas_test, the_operations_are_their_formulas) {
    using vector = std::array<double, 2>;
    using matrix = std::array<double, 4>;
    for (const auto &heat : support::heat_cases) {
        SCOPED_TRACE(heat.name);
        support::load(support::model_cases[0], heat);
        gas.e_0 = -3.5;
        gas.s_0 = 4.25;
        for (const auto &[T, v] : {std::pair(1.0, 1.0), {0.7, 130.0}, {2.3, 0.02}}) {
            EXPECT_EQ(P__T_v__IG(T, v), T / v);
            EXPECT_EQ(dP__dT_dv__IG(T, v), (vector{1 / v, -T / (v * v)}));
            EXPECT_EQ(d2P__dT2_dv2__IG(T, v), (matrix{0.0, -1 / (v * v), -1 / (v * v), 2 * T / (v * v * v)}));
            EXPECT_DOUBLE_EQ(e__T_v__IG(T, v), phi__T(T) - 3.5);
            EXPECT_EQ(de__dT_dv__IG(T, v), (vector{phip__T(T), 0.0}));
            EXPECT_EQ(d2e__dT2_dv2__IG(T, v), (matrix{phipp__T(T), 0.0, 0.0, 0.0}));
            EXPECT_DOUBLE_EQ(s__T_v__IG(T, v), psi__T(T) + 4.25 + std::log(v));
            EXPECT_EQ(cv__T_v__IG(T, v), phip__T(T));
            EXPECT_EQ(dcv__dT_dv__IG(T, v), (vector{phipp__T(T), 0.0}));
        }
    }
}

TEST_F(ideal_gas_test, arguments_are_not_checked) {
    support::load(support::model_cases[0], support::heat_cases[0]);
    EXPECT_EQ(P__T_v__IG(1.0, 0.0), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(s__T_v__IG(1.0, -1.0)));
    EXPECT_EQ(s__T_v__IG(0.0, 1.0), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(support::shared_text(), "No errors");
}

} // namespace
