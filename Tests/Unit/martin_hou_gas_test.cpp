// SPDX-License-Identifier: MIT
#include "Tests/Support/critical_models.h"

namespace {

using namespace martin_hou_gas;
using gas_properties::gas;
using support::critical_data;
using support::tracked;

struct martin_hou_gas_test : support::thermodynamics_test {};

const critical_data fluids[] = {{400.0, 4.0e6, 20.0, 0.27, 0.3, 270.0},
                                {304.1282, 7376460.0, 44.0, 0.2746, 0.225, 184.0},
                                {471.11, 4407600.0, 137.37, 0.279, 0.19, 296.92},
                                {564.1, 1415000.0, 236.53, 0.27, 0.529, 425.66}};

/// The coefficients in v/vc and T/Tc, step by step.
struct construction {
    double beta, b, A1, A2, A3, B1, B2, B4, C1, C2, C4;
};
construction construct(double Zc, double Pc, double Tc, double Tb) {
    const double e5 = 0.004190228549984579;
    construction k{};
    k.beta = (20.533 - 31.883 * Zc) * Zc;
    const double theta = Tb / Tc, z = 1.0 / Zc;
    k.b = 1.0 - k.beta / (15.0 * Zc);
    const double m = (9.654921 / Tc + 2.505308) - 0.0006492324 * Tc;
    const double tau = 0.9869 - 0.6751 * Zc;
    const double d = 1.0 - k.b, d2 = d * d;
    const double G = (9.0 * d - 3.8 * z) * d;
    const double X = (-35.0 - std::pow(theta, 6.0)) + 36.0 / theta + 42.0 * std::log(theta);
    const double H = z * m * k.b + G;
    const double Em = e5 - std::exp(-5.475 * m), Etau = e5 - std::exp(-5.475 * tau), h = 0.5 - k.b;
    k.C1 = ((((1.0 - Zc) * z * tau + k.b) * z * tau + G) * (m - 1.0) - (tau - 1.0) * H) /
           (Etau * (m - 1.0) - (tau - 1.0) * Em);
    k.B1 = (-H + Em * k.C1) / (m - 1.0);
    k.C2 = ((d * d2 - h * h * h) * k.C1) / (h * h - d2);
    k.A1 = (G - k.C1 * e5) - k.B1;
    k.C4 = -(d * d2 * k.C1) - d2 * k.C2;
    k.A3 = 12.0 * d2 * d2 - 3.4 * d * d * d * z;
    k.B4 = (0.8 * z - 3.0 * d) * d2 * d2 + (0.0 - k.C4 * e5);
    k.B2 = ((((0.315 * X - std::log(101325.0 / Pc)) / (0.0838 * X - std::log(theta))) * d - z) * d + (0.0 - k.B1)) * d +
           (0.0 - k.B4 / d2);
    k.A2 = (5.4 * z - 17.0 * d) * d * d + ((0.0 - k.C2 * e5) - k.B2);
    return k;
}

TEST_F(martin_hou_gas_test, init_builds_the_coefficients_in_the_written_order) {
    for (const critical_data &fluid : fluids) {
        SCOPED_TRACE(fluid.Tc);
        support::use_record(fluid);
        active.aa.fill(9.0);
        active.bb.fill(9.0);
        active.cc.fill(9.0);
        const auto before = gas;
        init_MHG();
        EXPECT_EQ(support::shared_text(), "No errors");
        support::expect_critical_reference(before, gas.R * gas.Tc * gas.Zc / gas.Pc, fluid.Zc);
        const construction k = construct(fluid.Zc, fluid.Pc, fluid.Tc, fluid.Tb);
        EXPECT_EQ(active.Rgas, 1.0);
        EXPECT_EQ(active.beta, k.beta);
        EXPECT_EQ(active.b, k.b);
        EXPECT_EQ(active.kk, 5.475 * fluid.Zc);
        EXPECT_EQ(active.aa, (std::array{k.A1, k.A2, k.A3, 0.0}));
        EXPECT_EQ(active.bb, (std::array{k.B1 * fluid.Zc, k.B2 * fluid.Zc, 0.0, k.B4 * fluid.Zc}));
        EXPECT_EQ(active.cc, (std::array{k.C1, k.C2, 0.0, k.C4}));
    }
}

TEST_F(martin_hou_gas_test, the_exponential_at_the_critical_temperature) {
    EXPECT_DOUBLE_EQ(std::exp(-5.475), 0.004190228549984579);
}

TEST_F(martin_hou_gas_test, three_coefficients_are_zero) {
    for (const critical_data &fluid : fluids) {
        support::use_record(fluid);
        init_MHG();
        EXPECT_EQ(active.aa[3], 0.0);
        EXPECT_EQ(active.bb[2], 0.0);
        EXPECT_EQ(active.cc[2], 0.0);
        for (const double coefficient : {active.aa[0], active.aa[1], active.aa[2], active.bb[0], active.bb[1],
                                         active.bb[3], active.cc[0], active.cc[1], active.cc[3]})
            EXPECT_NE(coefficient, 0.0);
    }
}

TEST_F(martin_hou_gas_test, the_critical_point_is_met_to_rounding) {
    for (const critical_data &fluid : fluids) {
        SCOPED_TRACE(fluid.Tc);
        support::use_record(fluid);
        init_MHG();
        const double T = 1 / gas.Zc;
        const auto ideal = thermodynamics::active_ideal_part();
        // The coefficients carry an error of their own, about that of the terms.
        const auto expect = [&](double computed, const tracked &terms, double exact) {
            EXPECT_NEAR(computed, exact, 4 * terms.bound * support::unit_roundoff);
            EXPECT_LT(terms.bound * support::unit_roundoff, 1e-11);
        };
        using namespace separated_attraction;
        expect(P__T_v__MHG(T, 1.0), P__T_v(active, ideal, tracked(T), tracked(1)), 1.0);
        expect(dP__dT_dv__MHG(T, 1.0)[1], dP__dT_dv(active, ideal, tracked(T), tracked(1))[1], 0.0);
        expect(d2P__dT2_dv2__MHG(T, 1.0)[3], d2P__dT2_dv2(active, ideal, tracked(T), tracked(1))[3], 0.0);
    }
}

TEST_F(martin_hou_gas_test, a_fluid_of_compressibility_0_27) {
    support::use_record(fluids[0]);
    init_MHG();
    EXPECT_NEAR(active.b, 0.2050273, 0.5e-7);
    EXPECT_NEAR(P__T_v__MHG(1 / 0.27, 1.0), 1.0, 1e-15 * 5);
}

// The conditions the coefficients are made from: T in Tc, compressibility factors and volumes in the
// equation's own units.
TEST_F(martin_hou_gas_test, the_construction_meets_its_conditions) {
    for (const critical_data &fluid : fluids) {
        SCOPED_TRACE(fluid.Tc);
        support::use_record(fluid);
        init_MHG();
        const double Zc = gas.Zc, T = 1 / Zc;
        // The critical isometric is straight: no second derivative by T at any temperature.
        for (const double at : {0.7, 1.0, 1.4})
            EXPECT_NEAR(d2P__dT2_dv2__MHG(at * T, 1.0)[0], 0.0, 1e-12) << at;
        // Its slope is that of the vapor pressure through the boiling point.
        const double theta = fluid.Tb / fluid.Tc;
        const double X = -35 - std::pow(theta, 6) + 36 / theta + 42 * std::log(theta);
        const double slope = (0.315 * X - std::log(101325 / fluid.Pc)) / (0.0838 * X - std::log(theta));
        EXPECT_NEAR(dP__dT_dv__MHG(T, 1.0)[0] / Zc, slope, 1e-11);
        // At the Boyle temperature m the second virial coefficient is zero.
        const double m = 9.654921 / fluid.Tc + 2.505308 - 0.0006492324 * fluid.Tc;
        std::array<std::array<double, 4>, 4> q{}, f{};
        Q_f__T_v__MHG(m * T, 1.0, q, f);
        EXPECT_NEAR(m * T * active.b + q[0][0], 0.0, 1e-12);
    }
}

TEST_F(martin_hou_gas_test, meaningless_constants_give_no_message) {
    for (const critical_data &fluid :
         {critical_data{400.0, 4.0e6, 20.0, 0.27, 0.3, 400.0}, {400.0, 4.0e6, 20.0, 0.0}}) {
        support::use_record(fluid);
        init_MHG();
        EXPECT_EQ(support::shared_text(), "No errors");
        EXPECT_FALSE(std::isfinite(active.bb[1]));
    }
}

TEST_F(martin_hou_gas_test, the_builder_in_critical_units_is_init_before_the_scaling) {
    for (const critical_data &fluid : fluids) {
        support::use_record(fluid);
        active.Rgas = 17.0;
        const auto before = gas;
        compute_coeff_adim(fluid.Zc, fluid.Pc, fluid.Tc, fluid.Tb);
        support::expect_record(before);
        EXPECT_EQ(active.Rgas, 17.0);
        const auto unscaled = active;
        init_MHG();
        EXPECT_EQ(unscaled.kk, 5.475);
        EXPECT_EQ(unscaled.b, active.b);
        EXPECT_EQ(unscaled.beta, active.beta);
        EXPECT_EQ(unscaled.aa, active.aa);
        EXPECT_EQ(unscaled.cc, active.cc);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_EQ(unscaled.bb[i] * fluid.Zc, active.bb[i]);
    }
}

// Pressure in Pa over volume in m3/kg and temperature in K is the reduced one times Pc.
TEST_F(martin_hou_gas_test, the_builder_in_SI_units_gives_the_same_pressure) {
    for (const critical_data &fluid : fluids) {
        SCOPED_TRACE(fluid.Tc);
        support::use_record(fluid);
        init_MHG();
        const auto reduced = active;
        const double vc = gas.vc, T_ref = gas.T_ref, Pc = gas.Pc;
        active.Rgas = gas.R;
        compute_coeff_dim(fluid.Zc, fluid.Pc, fluid.Tc, fluid.Tb);
        EXPECT_EQ(active.Rgas, gas.R);
        EXPECT_DOUBLE_EQ(active.b, reduced.b * vc);
        EXPECT_DOUBLE_EQ(active.kk * fluid.Tc, 5.475);
        EXPECT_EQ(active.aa[3], 0.0);
        EXPECT_EQ(active.bb[2], 0.0);
        EXPECT_EQ(active.cc[2], 0.0);
        const auto ideal = thermodynamics::active_ideal_part();
        for (const auto &[T, v] : {std::pair(0.8, 30.0), {1.0, 1.0}, {1.3, 2.0}, {1.1, 0.7}, {2.5, 0.5}}) {
            const double t = T / fluid.Zc;
            const tracked expected = separated_attraction::P__T_v(reduced, ideal, tracked(t), tracked(v));
            // The scaled coefficients carry a few roundings more.
            EXPECT_NEAR(P__T_v__MHG(t * T_ref, v * vc) / Pc, expected.value,
                        8 * expected.bound * support::unit_roundoff);
        }
    }
}

TEST_F(martin_hou_gas_test, the_operations_are_their_formulas) {
    support::for_each_state_of(support::case_of(3), [](double temperature, double volume) {
        const auto &p = active;
        const tracked T = temperature, w = tracked(volume) - tracked(p.b), kk = p.kk, E = exp(-kk * T);
        support::tracked_factors<4> q, f;
        tracked power = 1;
        for (std::size_t k = 0; k < 4; ++k) {
            const tracked aa = p.aa[k], bb = p.bb[k], cc = p.cc[k], i = static_cast<double>(k + 1);
            q[k] = {aa + T * bb + E * cc, bb - kk * E * cc, kk * kk * E * cc, -(kk * kk * kk * E * cc)};
            power *= w;
            f[k] = {-(tracked(1) / (i * power)), tracked(1) / (power * w), -((i + tracked(1)) / (power * w * w)),
                    (i + tracked(1)) * (i + tracked(2)) / (power * w * w * w)};
        }
        std::array<std::array<double, 4>, 4> computed_q{}, computed_f{};
        Q_f__T_v__MHG(temperature, volume, computed_q, computed_f);
        support::expect_factors(computed_q, q);
        support::expect_factors(computed_f, f);
        support::expect_formulas(q, f, p.b, temperature, volume);
    });
}

} // namespace
