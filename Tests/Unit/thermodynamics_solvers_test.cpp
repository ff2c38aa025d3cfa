// SPDX-License-Identifier: MIT
#include "Tests/thermodynamics_support.h"

namespace {

using namespace thermodynamics;
using gas_properties::gas;
using ideal_specific_heat::errmsg;

struct thermodynamics_solvers_test : support::thermodynamics_test {
    /// An ideal gas whose e(T) is -1/T^2: it comes near 0 from below and never reaches it, and a Newton
    /// step towards e = 0 takes T to 1.5 T.
    static void load_slow_energy() {
        support::load({"", 1, support::vapor_fluid, ""}, {"", "F\n2\n100.0 -3.0\n"});
        const double scale = ideal_specific_heat::phi__T(1.0);
        ideal_specific_heat::active.cv_oo_Tc /= -scale;
        gas.e_0 = 0;
    }
};

TEST_F(thermodynamics_solvers_test, temperature_from_energy_for_every_model_and_heat_capacity) {
    support::for_each_loaded([](const auto &) {
        for (const double Tr : {0.9, 1.3, 2.9})
            for (const double v : {0.4, 1.7, 100.0}) {
                SCOPED_TRACE(testing::Message() << Tr << ", " << v);
                const double e = e__T_v(Tr / gas.Z_ref, v);
                EXPECT_NEAR(e__T_v(T__e_v(e, v), v), e, 1e-9);
                EXPECT_NEAR(e__T_v(T__e_v(e, v, 0.95 * Tr / gas.Z_ref), v), e, 1e-9);
            }
    });
    EXPECT_EQ(support::shared_text(), "No errors");
}

TEST_F(thermodynamics_solvers_test, the_first_temperature_is_that_of_a_constant_heat_capacity) {
    support::load(support::model_cases[0], support::heat_cases[0]);
    const double e = e__T_v(1.7, 1.0);
    EXPECT_EQ(T__e_v(e, 1.0), (e - gas.e_0) / gas.cv_ref);
    gas.cv_ref *= 2;
    const double start = (e - gas.e_0) / gas.cv_ref;
    std::array<double, 2> de{};
    de__dT_dv(start, 1.0, de);
    EXPECT_EQ(T__e_v(e, 1.0), start - (e__T_v(start, 1.0) - e) / de[0]);
}

TEST_F(thermodynamics_solvers_test, a_start_temperature_with_a_residual_below_the_tolerance_is_returned) {
    support::load(support::model_cases[0], support::heat_cases[0]);
    std::array<double, 2> de{};
    de__dT_dv(1.7, 1.0, de);
    const double e = e__T_v(1.7, 1.0);
    const double inside = 1.7 + 0.99e-9 / de[0], outside = 1.7 + 1.01e-9 / de[0];
    EXPECT_EQ(T__e_v(e, 1.0, inside), inside);
    EXPECT_NE(T__e_v(e, 1.0, outside), outside);
}

TEST_F(thermodynamics_solvers_test, a_start_below_Tmin_is_lifted) {
    support::load(support::model_cases[0], support::heat_cases[0]);
    EXPECT_EQ(T__e_v(e__T_v(Tmin, 1.0), 1.0, -5.0), 1e-6);
    Tmin = 0.25;
    EXPECT_EQ(T__e_v(e__T_v(0.25, 1.0), 1.0, 0.1), 0.25);
}

TEST_F(thermodynamics_solvers_test, the_fiftieth_evaluation_is_the_last) {
    load_slow_energy();
    // The residual of evaluation n is (1.5^(n-1) start)^-2: start where that of evaluation 50 is `last`.
    const auto start_for = [](double last) { return 1 / (std::sqrt(last) * std::pow(1.5, 49)); };
    Tmin = 0;
    const double succeeds = start_for(0.6e-9), fails = start_for(1.5e-9);
    EXPECT_NEAR(T__e_v(0.0, 1.0, succeeds) / (succeeds * std::pow(1.5, 49)), 1.0, 1e-12);
    EXPECT_EQ(support::shared_text(), "No errors");
    // The last step is taken, its residual is not looked at any more.
    EXPECT_NEAR(T__e_v(0.0, 1.0, fails) / (fails * std::pow(1.5, 50)), 1.0, 1e-12);
    EXPECT_EQ(support::shared_text(), "ERROR: in T__e_v");
}

TEST_F(thermodynamics_solvers_test, an_unreachable_energy_is_reported) {
    for (const auto &model : support::model_cases) {
        if (model.gas_type == 7)
            continue;
        SCOPED_TRACE(model.name);
        support::load(model, support::heat_cases[8]);
        const double T = T__e_v(e__T_v(0.0, 1.0) - 1.0, 1.0);
        std::string text = "ERROR: in T__e_v";
        text.resize(256, ' ');
        EXPECT_EQ(errmsg.padded(), text);
        EXPECT_LT(T, 1e-6);
    }
}

TEST_F(thermodynamics_solvers_test, a_NaN_is_not_lifted_and_ends_in_the_message) {
    support::load(support::model_cases[0], support::heat_cases[0]);
    EXPECT_TRUE(std::isnan(T__e_v(std::nan(""), 1.0)));
    EXPECT_EQ(support::shared_text(), "ERROR: in T__e_v");
    errmsg.reset();
    EXPECT_TRUE(std::isnan(T__e_v(1.0, 1.0, std::nan(""))));
    EXPECT_EQ(support::shared_text(), "ERROR: in T__e_v");
}

TEST_F(thermodynamics_solvers_test, a_success_keeps_an_old_message) {
    support::load(support::model_cases[0], support::heat_cases[0]);
    errmsg.report({"some failure"});
    EXPECT_DOUBLE_EQ(T__e_v(e__T_v(1.7, 1.0), 1.0), 1.7);
    EXPECT_EQ(support::shared_text(), "some failure");
}

} // namespace
