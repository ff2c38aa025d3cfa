// SPDX-License-Identifier: MIT
// What the ideal gas and the ideal gas of constant Z satisfy: the formulas of the second, with a Z of 1 for the first.
#include "Tests/Support/critical_models.h"
#include "Tests/Support/modules.h"

namespace {

using gas_properties::gas;
using ideal_specific_heat::phi__T;
using ideal_specific_heat::phip__T;
using ideal_specific_heat::phipp__T;
using ideal_specific_heat::psi__T;

struct ideal_model {
    const char *name;
    std::int32_t gas_type;
    double Z;
    const char *records;
};
std::ostream &operator<<(std::ostream &out, const ideal_model &model) {
    return out << model.name;
}

struct ideal_models_test : support::thermodynamics_test, testing::WithParamInterface<ideal_model> {
    const support::module_operations &module = support::module_of(GetParam().gas_type);
    const double Z = GetParam().Z;

    /// Reads a fluid's constants and the model's own, and initialises the model with them.
    void init_on(const std::string &fluid) const {
        support::read_well(support::gas_section, fluid);
        gas.vc = 7.25;
        if (!gas.vapor)
            gas.Zc = gas.Tc = 7.25;
        ideal_Z_gas::active.Z_const = Z;
        module.init();
        EXPECT_EQ(support::shared_text(), "No errors");
        EXPECT_EQ(gas.c_ref, std::sqrt(gas.P_ref * gas.v_ref));
        EXPECT_EQ(module.numbers().at(0), 1.0) << "the reduced gas constant";
        EXPECT_EQ(ideal_Z_gas::active.Z_const, Z);
    }
    void load(const support::heat_case &heat) const {
        support::load({"", GetParam().gas_type, support::vapor_fluid, GetParam().records}, heat);
    }
};

TEST_P(ideal_models_test, init_completes_a_reference_fluid) {
    init_on(support::reference_fluid);
    EXPECT_EQ(gas.v_ref, Z * gas.R * 300.0 / 101325.0);
    EXPECT_EQ(gas.Z_ref, Z);
    EXPECT_EQ(gas.T_ref, 300.0);
    EXPECT_EQ(gas.P_ref, 101325.0);
    EXPECT_EQ(gas.Zc, 7.25);
    EXPECT_EQ(gas.vc, 7.25);
    EXPECT_EQ(gas.Tc, 7.25);
}

TEST_P(ideal_models_test, init_replaces_the_critical_compressibility_of_a_vapor) {
    init_on(support::vapor_fluid);
    EXPECT_EQ(gas.vc, Z * gas.R * gas.Tc / gas.Pc);
    EXPECT_EQ(gas.v_ref, gas.vc);
    EXPECT_EQ(gas.Zc, Z);
    EXPECT_EQ(gas.Z_ref, Z);
    EXPECT_EQ(gas.T_ref, Z * gas.Tc);
    EXPECT_EQ(gas.P_ref, gas.Pc);
    // Another model starts from the section, which is read again.
    support::read_well(support::gas_section, support::vapor_fluid);
    EXPECT_EQ(gas.Zc, 0.2746);
}

TEST_P(ideal_models_test, pressure_at_the_reference_point_is_one) {
    load(support::heat_cases[0]);
    EXPECT_EQ(module.P__T_v(1.0 / Z, 1.0), 1.0);
}

TEST_P(ideal_models_test, the_operations_are_their_formulas) {
    using vector = std::array<double, 2>;
    using matrix = std::array<double, 4>;
    for (const auto &heat : support::heat_cases) {
        SCOPED_TRACE(heat.name);
        load(heat);
        gas.e_0 = -3.5;
        gas.s_0 = 4.25;
        for (const auto &[T, v] : {std::pair(1.0, 1.0), {0.7, 130.0}, {2.3, 0.02}}) {
            EXPECT_EQ(module.P__T_v(T, v), T * Z / v);
            EXPECT_EQ(module.dP__dT_dv(T, v), (vector{Z / v, -Z * T / (v * v)}));
            EXPECT_EQ(module.d2P__dT2_dv2(T, v), (matrix{0.0, -Z / (v * v), -Z / (v * v), 2 * Z * T / (v * v * v)}));
            EXPECT_DOUBLE_EQ(module.e__T_v(T, v), phi__T(T) - 3.5);
            EXPECT_EQ(module.de__dT_dv(T, v), (vector{phip__T(T), 0.0}));
            EXPECT_EQ(module.d2e__dT2_dv2(T, v), (matrix{phipp__T(T), 0.0, 0.0, 0.0}));
            EXPECT_DOUBLE_EQ(module.s__T_v(T, v), psi__T(T) + 4.25 + Z * std::log(v));
            EXPECT_EQ(module.cv__T_v(T, v), phip__T(T));
            EXPECT_EQ(module.dcv__dT_dv(T, v), (vector{phipp__T(T), 0.0}));
        }
    }
}

TEST_P(ideal_models_test, arguments_are_not_checked) {
    load(support::heat_cases[0]);
    EXPECT_EQ(module.P__T_v(1.0, 0.0), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(module.s__T_v(1.0, -1.0)));
    EXPECT_EQ(module.s__T_v(0.0, 1.0), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(support::shared_text(), "No errors");
}

INSTANTIATE_TEST_SUITE_P(, ideal_models_test,
                         testing::Values(ideal_model{"ideal_gas", 1, 1.0, ""},
                                         ideal_model{"ideal_Z_gas_below_1", 8, 0.8, "0.8\n"},
                                         ideal_model{"ideal_Z_gas_above_1", 8, 1.1, "1.1\n"}),
                         testing::PrintToStringParamName());

} // namespace
