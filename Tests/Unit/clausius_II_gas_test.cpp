// SPDX-License-Identifier: MIT
#include "Tests/Support/thermodynamics.h"

namespace {

using namespace clausius_II_gas;
using gas_properties::gas;
using ideal_specific_heat::phi__T;
using ideal_specific_heat::phip__T;
using ideal_specific_heat::phipp__T;
using ideal_specific_heat::psi__T;

struct clausius_II_gas_test : support::thermodynamics_test {};

const support::model_case &clausius = support::case_of(7);

TEST_F(clausius_II_gas_test, init_takes_the_parameters_from_the_critical_point) {
    support::read_well(support::gas_section, support::vapor_fluid);
    for (const double Zc : {0.2294, 0.25, 0.2746, 0.375}) {
        SCOPED_TRACE(Zc);
        gas.Zc = Zc;
        gas.omega = 1e9;
        init_CIIG();
        const double R = gas.R, Tc = gas.Tc, Pc = gas.Pc, vc = gas.vc;
        EXPECT_EQ(vc, Zc * R * Tc / Pc);
        EXPECT_EQ(gas.v_ref, vc);
        EXPECT_EQ(gas.Z_ref, Zc);
        EXPECT_EQ(gas.Zc, Zc);
        EXPECT_EQ(gas.T_ref, Zc * Tc);
        EXPECT_EQ(gas.P_ref, Pc);
        EXPECT_EQ(gas.c_ref, std::sqrt(Pc * vc));
        EXPECT_EQ(active.Rgas, 1.0);
        EXPECT_DOUBLE_EQ(active.a, 27.0 / 64.0 / (Zc * Zc * Zc));
        EXPECT_DOUBLE_EQ(active.b, 1 - 1 / (4 * Zc));
        EXPECT_DOUBLE_EQ(active.c, 3 / (8 * Zc) - 1);
    }
    EXPECT_EQ(support::shared_text(), "No errors");
}

// At the critical point of the van der Waals gas the equation has no translation.
TEST_F(clausius_II_gas_test, the_van_der_Waals_compressibility_gives_its_covolume) {
    support::read_well(support::gas_section, support::vapor_fluid);
    gas.Zc = 0.375;
    init_CIIG();
    EXPECT_DOUBLE_EQ(active.a, 8.0);
    EXPECT_DOUBLE_EQ(active.b, 1.0 / 3.0);
    EXPECT_EQ(active.c, 0.0);
}

TEST_F(clausius_II_gas_test, the_critical_point_is_met) {
    for (const char *Zc : {"0.2294", "0.2746", "0.3"}) {
        SCOPED_TRACE(Zc);
        std::string fluid = support::vapor_fluid;
        fluid.replace(fluid.find("0.2746"), 6, Zc);
        support::load({"", 7, fluid, ""}, support::heat_cases[0]);
        const double T = 1 / gas.Zc;
        // The terms of P, dP/dv and d2P/dv2 are below 10, 30 and 150 there.
        EXPECT_NEAR(P__T_v__CIIG(T, 1.0), 1.0, 10 * 8 * support::epsilon);
        EXPECT_NEAR(dP__dT_dv__CIIG(T, 1.0)[1], 0.0, 30 * 8 * support::epsilon);
        EXPECT_NEAR(d2P__dT2_dv2__CIIG(T, 1.0)[3], 0.0, 150 * 8 * support::epsilon);
    }
}

// Below Zc = 1/4 the covolume is negative and so is the minimum, which is then no bound at all.
TEST_F(clausius_II_gas_test, the_minimum_volume_of_a_small_compressibility_is_negative) {
    support::read_well(support::gas_section, support::vapor_fluid);
    gas.Zc = 0.2294;
    init_CIIG();
    EXPECT_LT(active.b, 0.0);
    EXPECT_EQ(minimum_specific_volume__CIIG(), active.b * 1.000000000001);
}

TEST_F(clausius_II_gas_test, the_factors_are_handed_out) {
    support::load(clausius, support::heat_cases[0]);
    const double a = active.a, c = active.c, T = 3.1, v = 0.7;
    std::array<double, 4> q{}, f{};
    Q_f__T_v__CIIG(T, v, q, f);
    const double w = v + c;
    const double expected_q[] = {a / T, -a / (T * T), 2 * a / (T * T * T), -6 * a / (T * T * T * T)};
    const double expected_f[] = {1 / w, -1 / (w * w), 2 / (w * w * w), -6 / (w * w * w * w)};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_DOUBLE_EQ(q[i], expected_q[i]);
        EXPECT_DOUBLE_EQ(f[i], expected_f[i]);
    }
}

TEST_F(clausius_II_gas_test, the_operations_are_their_formulas) {
    for (const auto &heat : support::heat_cases) {
        SCOPED_TRACE(heat.name);
        support::load(clausius, heat);
        gas.e_0 = -3.5;
        gas.s_0 = 4.25;
        for (const auto &[T, v] : {std::pair(4.4, 130.0), {3.6, 1.02}, {9.1, 0.31}}) {
            std::array<double, 4> q{}, f{};
            Q_f__T_v__CIIG(T, v, q, f);
            const double w = v - active.b;
            EXPECT_DOUBLE_EQ(P__T_v__CIIG(T, v), q[0] * f[1] + T / w);
            EXPECT_DOUBLE_EQ(dP__dT_dv__CIIG(T, v)[0], q[1] * f[1] + 1 / w);
            EXPECT_DOUBLE_EQ(dP__dT_dv__CIIG(T, v)[1], q[0] * f[2] - T / (w * w));
            const auto d2P = d2P__dT2_dv2__CIIG(T, v);
            EXPECT_DOUBLE_EQ(d2P[0], q[2] * f[1]);
            EXPECT_DOUBLE_EQ(d2P[1], q[1] * f[2] - 1 / (w * w));
            EXPECT_EQ(d2P[2], d2P[1]);
            EXPECT_DOUBLE_EQ(d2P[3], q[0] * f[3] + 2 * T / (w * w * w));
            EXPECT_DOUBLE_EQ(e__T_v__CIIG(T, v), -3.5 + phi__T(T) + (T * q[1] - q[0]) * f[0]);
            EXPECT_DOUBLE_EQ(de__dT_dv__CIIG(T, v)[0], phip__T(T) + q[2] * T * f[0]);
            EXPECT_DOUBLE_EQ(de__dT_dv__CIIG(T, v)[1], (T * q[1] - q[0]) * f[1]);
            const auto d2e = d2e__dT2_dv2__CIIG(T, v);
            EXPECT_DOUBLE_EQ(d2e[0], phipp__T(T) + (q[3] * T + q[2]) * f[0]);
            EXPECT_DOUBLE_EQ(d2e[1], q[2] * T * f[1]);
            EXPECT_EQ(d2e[2], d2e[1]);
            EXPECT_DOUBLE_EQ(d2e[3], (T * q[1] - q[0]) * f[2]);
            EXPECT_DOUBLE_EQ(s__T_v__CIIG(T, v), psi__T(T) + q[1] * f[0] + 4.25 + std::log(w));
            EXPECT_DOUBLE_EQ(cv__T_v__CIIG(T, v), phip__T(T) + T * q[2] * f[0]);
            EXPECT_DOUBLE_EQ(dcv__dT_dv__CIIG(T, v)[0], phipp__T(T) + (q[3] * T + q[2]) * f[0]);
            EXPECT_DOUBLE_EQ(dcv__dT_dv__CIIG(T, v)[1], T * q[2] * f[1]);
        }
    }
}

TEST_F(clausius_II_gas_test, at_no_temperature_the_attraction_is_infinite) {
    support::load(clausius, support::heat_cases[0]);
    EXPECT_EQ(P__T_v__CIIG(0.0, 1.0), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(support::shared_text(), "No errors");
}

} // namespace
