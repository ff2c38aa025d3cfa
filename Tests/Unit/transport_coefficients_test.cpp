// SPDX-License-Identifier: MIT
// Viscosity and thermal conductivity: what an initialisation takes, derives and refuses, and every model against
// formulas of the test's own.
#include "Tests/Support/critical_models.h"

#include <bit>
#include <functional>
#include <gmock/gmock.h>

namespace {

using gas_properties::gas;
using support::epsilon;
using support::shared_text;
using support::tracked;
using transport::parameters;
using transport_properties::active;
using transport_properties::transport_coefficients;
using transport_properties::transport_coefficients_dim;

struct transport_coefficients_test : support::thermodynamics_test {};

/// Nonpolar, heavy, polar and associating fluids.
struct fluid_case {
    const char *name;
    std::string section;
};
const fluid_case vapors[] = {
    {"nitrogen", "names\nnitrogen\nN2\nconstants\n28.0134\nT\n126.192\n33.514\n0.289\n77.355\n0\n0\n"},
    {"siloxane", "names\nMDM\nMDM\nconstants\n236.53\nT\n564.1\n13.96\n0.27\n425.7\n0.26\n0\n"},
    {"ammonia", "names\nammonia\nNH3\nconstants\n17.031\nT\n405.5\n112.05\n0.244\n239.8\n1.13\n0\n"},
    {"methanol", "names\nmethanol\nCH3OH\nconstants\n32.042\nT\n512.6\n79.91\n0.224\n337.7\n0.91\n0.215\n"},
    {"water", "names\nwater\nH2O\nconstants\n18.015\nT\n647.1\n217.7\n0.229\n373.1\n1.28\n0.076\n"},
};
const std::string constant_Z = "8\n0.27\n";
const std::string ideal = "1\n";
const std::string einstein = "T\n5\n2.5\n2\n4.1 11.7\n";

constexpr std::int32_t viscosity_codes[] = {1, 2, 3, 4, 5, 6};
constexpr std::int32_t conductivity_codes[] = {1, 2, 3, 4};

bool accepted(std::int32_t viscosity, std::int32_t conductivity, bool vapor = true) {
    return (viscosity != 2 && viscosity != 3) || (viscosity == conductivity && vapor);
}

std::string transport_text(std::int32_t viscosity, std::int32_t conductivity) {
    const auto records = [](std::int32_t code, std::initializer_list<const char *> of_code) {
        const bool known = code >= 1 && code <= static_cast<std::int32_t>(of_code.size());
        return std::to_string(code) + "\n" + (known ? of_code.begin()[code - 1] : "");
    };
    return records(viscosity, {"1.1e-5\n", "", "", "", "1.7e-5 273.15 110.4\n", "1.3e-5 300.0\n"}) +
           records(conductivity, {"0.017\n", "", "", "0.71\n"});
}

/// Reads a section from lines, which need no file.
void read_lines(const support::section &what, const std::string &text) {
    support::read_well(what, text, support::source::lines);
}

void read_and_initialise_thermodynamics(const std::string &fluid, const std::string &model = constant_Z,
                                        const std::string &heat = einstein) {
    read_lines(support::thermodynamics_section, fluid + model + heat);
    thermodynamics::init_thermodynamics();
    EXPECT_EQ(shared_text(), "No errors");
}

void read_and_initialise_transport(std::int32_t viscosity, std::int32_t conductivity) {
    read_lines(support::transport_section, transport_text(viscosity, conductivity));
    transport_properties::init_transport_properties();
}

/// A fluid into the library as just loaded.
void load(const std::string &fluid, std::int32_t viscosity, std::int32_t conductivity,
          const std::string &model = constant_Z) {
    support::fresh_fluid();
    read_and_initialise_thermodynamics(fluid, model);
    read_and_initialise_transport(viscosity, conductivity);
}

/// Calls visit() for every vapor with one pair of models.
void for_each_vapor(std::int32_t viscosity, std::int32_t conductivity, const std::function<void()> &visit) {
    for (const fluid_case &fluid : vapors) {
        SCOPED_TRACE(fluid.name);
        load(fluid.section, viscosity, conductivity);
        visit();
    }
}

/// Calls visit() for the fluid without critical data with every pair that needs none.
void for_each_pair_without_critical_data(const std::function<void()> &visit) {
    for (const std::int32_t viscosity : {1, 5, 6})
        for (const std::int32_t conductivity : {1, 4}) {
            SCOPED_TRACE(testing::Message() << viscosity << ", " << conductivity);
            support::fresh_fluid();
            // Left by a vapor before it.
            active.Tc = 647.1;
            active.vc = 0.003;
            read_and_initialise_thermodynamics(support::reference_fluid, ideal);
            read_and_initialise_transport(viscosity, conductivity);
            visit();
        }
}

template <class Visit>
void for_each_pair(Visit visit) {
    for (const std::int32_t viscosity : viscosity_codes)
        for (const std::int32_t conductivity : conductivity_codes) {
            SCOPED_TRACE(testing::Message() << "models " << viscosity << " and " << conductivity);
            visit(viscosity, conductivity);
        }
}

/// Calls visit(viscosity, conductivity) for every vapor with every pair of models that it accepts, initialised.
template <class Visit>
void for_each_vapor_and_pair(Visit visit) {
    for (const fluid_case &fluid : vapors)
        for_each_pair([&](std::int32_t viscosity, std::int32_t conductivity) {
            if (!accepted(viscosity, conductivity))
                return;
            SCOPED_TRACE(fluid.name);
            load(fluid.section, viscosity, conductivity);
            EXPECT_EQ(shared_text(), "No errors");
            visit(viscosity, conductivity);
        });
}

constexpr double reduced_temperatures[] = {0.37, 0.6, 1.0, 1.7, 12.3, 12.316};
constexpr double reduced_volumes[] = {0.21, 0.4, 1.0, 4.1, 1e3, 1e9};

/// Calls visit(T, v) at states given as multiples of the critical point, in K and m3/kg.
template <class Visit>
void for_each_state(Visit visit) {
    for (const double Tr : reduced_temperatures)
        for (const double vr : reduced_volumes) {
            SCOPED_TRACE(testing::Message() << "T/Tc " << Tr << ", v/vc " << vr);
            visit(Tr * active.Tc, vr * active.vc);
        }
}

struct pair_of_coefficients {
    double viscosity, conductivity;
};
pair_of_coefficients at_dim(double T, double v) {
    pair_of_coefficients result{-1, -1};
    transport_coefficients_dim(T, v, result.viscosity, result.conductivity);
    return result;
}
pair_of_coefficients at(double t, double vr) {
    pair_of_coefficients result{-1, -1};
    transport_coefficients(t, vr, result.viscosity, result.conductivity);
    return result;
}

/// The whole state of the module, bit by bit.
using bits = std::array<std::uint64_t, sizeof(parameters) / sizeof(double)>;
bits whole_state() {
    static_assert(sizeof(parameters) == 2 * sizeof(std::int32_t) + (8 + 13 + 4 + 10 + 7 + 2) * sizeof(double));
    return std::bit_cast<bits>(active);
}

// Initialisation.

TEST_F(transport_coefficients_test, the_state_starts_at_zero) {
    EXPECT_EQ(whole_state(), bits{});
    EXPECT_EQ(gas.mu_ref, 0);
    EXPECT_EQ(gas.kk_ref, 0);
}

TEST_F(transport_coefficients_test, pairs_that_do_not_go_together_are_refused_and_change_nothing) {
    const std::string mismatch =
        "Viscosity and thermal conductivity model do not match.  In init_trasport_properties. STOP";
    const std::string name = "nitrogen" + std::string(24, ' ');
    const auto not_a_vapor = [&](const char *kind) {
        return "The gas " + name + " is not a vapor: " + kind + " gas viscosity model is not applicable. " +
               "In init_transport_properties.";
    };
    int refused = 0, taken = 0;
    for (const bool vapor : {true, false})
        for (const std::int32_t viscosity : {-1, 0, 1, 2, 3, 4, 5, 6, 7})
            for (const std::int32_t conductivity : {-1, 0, 1, 2, 3, 4, 5}) {
                SCOPED_TRACE(testing::Message() << vapor << ", " << viscosity << ", " << conductivity);
                // The state of another fluid is in memory.
                support::fresh_fluid();
                read_and_initialise_thermodynamics(vapors[4].section);
                read_and_initialise_transport(3, 3);
                read_and_initialise_thermodynamics(vapor ? vapors[0].section : support::reference_fluid,
                                                   vapor ? constant_Z : ideal);
                read_lines(support::transport_section, transport_text(viscosity, conductivity));
                const bits before = whole_state();
                const auto fluid_before = gas;
                transport_properties::init_transport_properties();
                const bool dense = viscosity == 3, dilute = viscosity == 2;
                const std::string expected = (dense || dilute) && conductivity != viscosity ? mismatch
                                             : dense && !vapor                              ? not_a_vapor("Dense")
                                             : dilute && !vapor                             ? not_a_vapor("Diluite")
                                                                                            : "No errors";
                EXPECT_EQ(shared_text(), expected);
                EXPECT_EQ(expected == "No errors", accepted(viscosity, conductivity, vapor));
                if (expected == "No errors") {
                    ++taken;
                    EXPECT_NE(whole_state(), before);
                    continue;
                }
                ++refused;
                EXPECT_EQ(whole_state(), before);
                support::expect_record(fluid_before);
            }
    EXPECT_EQ(refused, 2 * 2 * 6 + 2);
    EXPECT_EQ(taken, 2 * 7 * 7 + 2);
}

TEST_F(transport_coefficients_test, a_refusal_quotes_the_name_in_its_32_characters) {
    read_and_initialise_thermodynamics("a\n" + std::string(40, 'n') + "\nc\nd\n28.0\nF\n300.0\n1.0\n0.9\n0.0\n0.0\n",
                                       ideal);
    read_and_initialise_transport(2, 2);
    EXPECT_EQ(shared_text(), "The gas " + std::string(32, 'n') +
                                 " is not a vapor: Diluite gas viscosity model is not applicable. "
                                 "In init_transport_properties.");
}

TEST_F(transport_coefficients_test, an_old_message_neither_stops_an_initialisation_nor_goes_away) {
    read_and_initialise_thermodynamics(vapors[0].section);
    ideal_specific_heat::errmsg.report({"an old message"});
    read_and_initialise_transport(3, 3);
    EXPECT_EQ(shared_text(), "an old message");
    EXPECT_GT(gas.mu_ref, 0);
    EXPECT_EQ(active.m_mole, 28.0134);
    read_and_initialise_transport(3, 1);
    EXPECT_THAT(shared_text(), testing::StartsWith("Viscosity and thermal conductivity model do not match."));
}

TEST_F(transport_coefficients_test, a_vapor_hands_over_its_constants_and_critical_data) {
    for_each_vapor_and_pair([](std::int32_t, std::int32_t) {
        EXPECT_EQ(active.m_mole, gas.MM);
        EXPECT_EQ(active.Rgas, gas.R);
        EXPECT_EQ(active.T_ref, gas.T_ref);
        EXPECT_EQ(active.P_ref, gas.P_ref);
        EXPECT_EQ(active.v_ref, gas.v_ref);
        EXPECT_EQ(active.Z_ref, gas.Z_ref);
        EXPECT_EQ(active.Pc, gas.Pc);
        EXPECT_EQ(active.Tc, gas.Tc);
        EXPECT_EQ(active.vc, gas.vc);
        EXPECT_EQ(active.Zc, gas.Zc);
        EXPECT_EQ(active.omega, gas.omega);
        EXPECT_EQ(active.mur, gas.mur);
        EXPECT_EQ(active.kh, gas.kh);
        // The values are not zero, so that none of them can be taken for another by accident.
        for (const double value : {gas.MM, gas.R, gas.T_ref, gas.P_ref, gas.v_ref, gas.Z_ref, gas.Tc, gas.omega})
            EXPECT_NE(value, 0);
        EXPECT_NE(gas.T_ref, gas.Tc);
    });
}

TEST_F(transport_coefficients_test, a_fluid_without_critical_data_leaves_those_of_the_vapor_before_it) {
    read_and_initialise_thermodynamics(vapors[4].section);
    read_and_initialise_transport(3, 3);
    const parameters before = active;
    read_and_initialise_thermodynamics("a\nb\nc\nd\n28.0\nF\n300.0\n1.1\n0.9\n0.3\n0.4\n", ideal);
    read_and_initialise_transport(5, 4);
    EXPECT_EQ(shared_text(), "No errors");
    EXPECT_EQ(gas.mur, 0.3);
    EXPECT_EQ(active.m_mole, 28);
    EXPECT_EQ(active.Rgas, 8314.0 / 28);
    EXPECT_EQ(active.T_ref, 300);
    EXPECT_EQ(active.P_ref, 1.1 * 101325);
    EXPECT_EQ(active.v_ref, gas.v_ref);
    EXPECT_NE(active.v_ref, before.v_ref);
    EXPECT_EQ(active.Z_ref, 1);
    for (const auto value : {&parameters::Tc, &parameters::Pc, &parameters::vc, &parameters::Zc, &parameters::omega,
                             &parameters::mur, &parameters::kh, &parameters::fc, &parameters::beta}) {
        EXPECT_EQ(active.*value, before.*value);
        EXPECT_NE(active.*value, 0);
    }
    EXPECT_EQ(active.aa, before.aa);
    EXPECT_EQ(active.bb, before.bb);
}

TEST_F(transport_coefficients_test, coefficients_are_derived_for_the_models_that_use_them) {
    for_each_pair([](std::int32_t viscosity, std::int32_t conductivity) {
        if (!accepted(viscosity, conductivity))
            return;
        support::fresh_fluid();
        read_and_initialise_thermodynamics(vapors[3].section);
        active.fc = active.beta = 7.25;
        active.aa.fill(7.25);
        active.bb.fill(7.25);
        read_and_initialise_transport(viscosity, conductivity);
        EXPECT_EQ(active.fc != 7.25, viscosity == 2 || viscosity == 3);
        EXPECT_EQ(active.beta != 7.25, conductivity == 2 || conductivity == 3);
        for (const double E : active.aa)
            EXPECT_EQ(E != 7.25, viscosity == 3);
        for (const double B : active.bb)
            EXPECT_EQ(B != 7.25, conductivity == 3);
    });
}

// Chung, Ajlan, Lee, Starling, Ind. Eng. Chem. Res. 27 (1988) 671: factors of 1, omega, mur^4 and kappa.
constexpr double table_II[10][4] = {
    {6.32402, 50.4119, -51.6801, 1189.02},    {0.12102e-2, -0.11536e-2, -0.62571e-2, 0.37283e-1},
    {5.28346, 254.209, -168.481, 3898.27},    {6.62263, 38.0957, -8.46414, 31.4178},
    {19.7454, 7.63034, -14.3544, 31.5267},    {-1.89992, -12.5367, 4.98529, -18.1507},
    {24.2745, 3.44945, -11.2913, 69.3466},    {0.79716, 1.11764, 0.12348e-1, -4.11661},
    {-0.23816, 0.67695e-1, -0.8163, 4.02528}, {0.68629e-1, 0.34793, 0.59256, -0.72663}};
constexpr double table_IV[7][4] = {{2.41657, 0.74824, -0.91858, 121.721}, {-0.50924, -1.50936, -49.9912, 69.9834},
                                   {6.61069, 5.62073, 64.7599, 27.0389},  {14.5425, -8.91387, -5.63794, 74.3435},
                                   {0.79274, 0.82019, -0.69369, 6.31734}, {-5.8634, 12.8005, 9.58926, -65.5292},
                                   {81.171, 114.158, -60.841, 466.775}};

/// Compares with a sum of products; the rounding of each product is allowed.
void expect_sum(double computed, std::initializer_list<long double> terms) {
    long double sum = 0, magnitudes = 0;
    for (const long double term : terms) {
        sum += term;
        magnitudes += std::abs(term);
    }
    EXPECT_NEAR(computed, static_cast<double>(sum), static_cast<double>(3 * epsilon * magnitudes));
}

TEST_F(transport_coefficients_test, coefficients_are_linear_in_omega_the_fourth_power_of_mur_and_kappa) {
    for_each_vapor(3, 3, [] {
        const long double omega = gas.omega, mur4 = std::pow(static_cast<long double>(gas.mur), 4), kappa = gas.kh;
        const auto expect_row = [&](double computed, const double(&row)[4]) {
            expect_sum(computed, {row[0], row[1] * omega, row[2] * mur4, row[3] * kappa});
        };
        for (std::size_t i = 0; i < 10; ++i)
            expect_row(active.aa[i], table_II[i]);
        for (std::size_t i = 0; i < 7; ++i)
            expect_row(active.bb[i], table_IV[i]);
        expect_row(active.fc, {1, -0.2756, 0.059035, 1});
        expect_sum(active.beta, {0.7862, -0.7109 * omega, 1.3168 * omega * omega});
    });
}

/// Expects 1, up to the rounding of T = t T_ref and v = vr v_ref.
void expect_one(const pair_of_coefficients &reduced, double room = 16 * epsilon) {
    EXPECT_NEAR(reduced.viscosity, 1, room);
    EXPECT_NEAR(reduced.conductivity, 1, room);
}

TEST_F(transport_coefficients_test, references_are_the_values_at_the_critical_point) {
    for_each_vapor_and_pair([](std::int32_t, std::int32_t) {
        const auto [mu, k] = at_dim(gas.Tc, gas.vc);
        EXPECT_EQ(active.mu_ref, mu);
        EXPECT_EQ(active.kk_ref, k);
        EXPECT_EQ(gas.mu_ref, mu);
        EXPECT_EQ(gas.kk_ref, k);
        EXPECT_GT(mu, 0);
        EXPECT_NE(k, 0);
        // They are not the values at T_ref = Zc Tc. A constant viscosity does not show the difference.
        if (active.viscosity_model != 1) {
            EXPECT_NE(at_dim(gas.T_ref, gas.v_ref).viscosity, mu);
        }
    });
}

TEST_F(transport_coefficients_test, critical_data_count_also_where_references_are_others) {
    read_and_initialise_thermodynamics(vapors[0].section);
    // With every model these equal the critical values, so the test changes them.
    gas.P_ref *= 1.125;
    gas.v_ref *= 1.25;
    gas.Z_ref *= 1.5;
    read_and_initialise_transport(3, 3);
    EXPECT_EQ(active.Pc, gas.Pc);
    EXPECT_EQ(active.vc, gas.vc);
    EXPECT_EQ(active.Zc, gas.Zc);
    EXPECT_EQ(active.P_ref, gas.P_ref);
    EXPECT_EQ(active.v_ref, gas.v_ref);
    EXPECT_EQ(active.Z_ref, gas.Z_ref);
    EXPECT_EQ(gas.mu_ref, at_dim(gas.Tc, gas.vc).viscosity);
    EXPECT_NE(gas.mu_ref, at_dim(gas.Tc, gas.v_ref).viscosity);
    expect_one(at(gas.Tc / gas.T_ref, gas.vc / gas.v_ref));
}

TEST_F(transport_coefficients_test, references_of_a_fluid_without_critical_data_are_those_at_its_reference_point) {
    for_each_pair_without_critical_data([] {
        const auto [mu, k] = at_dim(gas.T_ref, gas.v_ref);
        EXPECT_EQ(active.mu_ref, mu);
        EXPECT_EQ(active.kk_ref, k);
        EXPECT_EQ(gas.mu_ref, mu);
        EXPECT_EQ(gas.kk_ref, k);
        EXPECT_GT(mu, 0);
        EXPECT_GT(k, 0);
    });
}

TEST_F(transport_coefficients_test, both_are_one_at_the_reference_point) {
    for_each_vapor_and_pair([](std::int32_t, std::int32_t) { expect_one(at(gas.Tc / gas.T_ref, gas.vc / gas.v_ref)); });
    for_each_pair_without_critical_data([] { expect_one(at(1, 1)); });
}

TEST_F(transport_coefficients_test, both_are_one_at_the_critical_point_of_every_model) {
    for (const support::model_case &model : support::model_cases)
        for (const support::heat_case &heat : support::heat_cases) {
            if (&model.fluid != &support::vapor_fluid)
                continue;
            support::load(model, heat);
            // A constant Prandtl number has a test of its own.
            for_each_pair([&](std::int32_t viscosity, std::int32_t conductivity) {
                if (!accepted(viscosity, conductivity) || conductivity == 4)
                    return;
                SCOPED_TRACE(std::string(model.name) + ", " + heat.name);
                read_and_initialise_transport(viscosity, conductivity);
                expect_one(at(gas.Tc / gas.T_ref, gas.vc / gas.v_ref));
            });
        }
}

TEST_F(transport_coefficients_test, a_prandtl_number_and_a_critical_point_have_no_common_conductivity) {
    // At the critical point cp is finite for ideal gases only. For the others its reciprocal vanishes, up to rounding.
    for (const support::model_case &model : support::model_cases) {
        if (&model.fluid != &support::vapor_fluid)
            continue;
        SCOPED_TRACE(model.name);
        support::load(model, support::heat_cases[0]);
        read_and_initialise_transport(5, 4);
        EXPECT_EQ(shared_text(), "No errors");
        const double far = at_dim(1.5 * gas.Tc, 10 * gas.vc).conductivity;
        EXPECT_TRUE(std::isfinite(far) && far > 0) << far;
        const bool is_ideal = model.gas_type == 1 || model.gas_type == 8;
        EXPECT_EQ(std::isfinite(gas.kk_ref) && std::abs(gas.kk_ref) < 100 * far, is_ideal) << gas.kk_ref;
        // If the reference is finite, scaling back gives the conductivity again.
        const double back = at(1.5 * gas.Tc / gas.T_ref, 10 * gas.vc / gas.v_ref).conductivity * gas.kk_ref;
        EXPECT_EQ(std::isnan(back), std::isinf(gas.kk_ref));
        if (!std::isnan(back)) {
            EXPECT_NEAR(back / far, 1, 1e-12);
        }
    }
}

TEST_F(transport_coefficients_test, a_second_fluid_has_the_numbers_it_has_alone) {
    const auto numbers = [](const fluid_case &fluid, std::int32_t viscosity, std::int32_t conductivity) {
        read_and_initialise_thermodynamics(fluid.section);
        read_and_initialise_transport(viscosity, conductivity);
        const auto [mu, k] = at_dim(1.3 * gas.Tc, 2.1 * gas.vc);
        const auto [eta, lambda] = at(4.1, 3.2);
        return std::array{mu, k, eta, lambda, gas.mu_ref, gas.kk_ref};
    };
    for_each_pair([&](std::int32_t viscosity, std::int32_t conductivity) {
        if (!accepted(viscosity, conductivity))
            return;
        support::fresh_fluid();
        const auto alone = numbers(vapors[1], viscosity, conductivity);
        support::fresh_fluid();
        numbers(vapors[4], 3, 3);
        numbers(vapors[2], 2, 2);
        EXPECT_EQ(numbers(vapors[1], viscosity, conductivity), alone);
    });
}

// The formulas.

/// The same formulas written independently: with other functions, in another order, with more digits.
namespace independent {

using real = long double;

/// A result and the sum of the magnitudes of its terms.
struct result {
    real value;
    real magnitude;
};

real collision_integral(real T_star) {
    const real l = std::log(T_star);
    real sum = -0.0006435 * std::exp(0.14874 * l) * std::sin(1.80323 * std::exp(-0.7683 * l) - 7.27371);
    sum += 2.16178 / std::exp(2.43787 * T_star);
    sum += 0.52487 / std::exp(0.7732 * T_star);
    return sum + 1.16145 / std::exp(0.14874 * l);
}

/// (1 - 0.5 y)/(1 - y)^3.
real G1(real y) {
    const real gap = 1 / (1 - y);
    return gap * gap * (1 + y / 2 * gap);
}

template <std::size_t count>
real G2(const std::array<double, count> &E, real y) {
    const real half = real(E[3]) * y / 2;
    const real attraction = real(E[0]) * 2 * std::exp(-half) * std::sinh(half) / y;
    const real repulsion = G1(y) * (real(E[1]) * std::pow(std::exp(y), real(E[4])) + E[2]);
    return (attraction + repulsion) / (real(E[0]) * E[3] + (real(E[1]) + E[2]));
}

real area(const parameters &p) {
    return std::cbrt(std::pow(real(1000) * p.m_mole * p.vc, real(2)));
}

real dilute(const parameters &p, real T) {
    return p.fc / area(p) / collision_integral(1.2593 * T / p.Tc) * std::sqrt(real(p.m_mole)) * std::sqrt(T) *
           real(4.0785e-5);
}

result viscosity(const parameters &p, real T, real v) {
    const auto alone = [](real value) { return result{value, std::abs(value)}; };
    switch (p.viscosity_model) {
    case 1:
        return alone(p.mu_const);
    case 2:
        return alone(dilute(p, T));
    case 3: {
        const real y = p.vc / v / 6, g = G2(p.aa, y), T_star = 1.2593 * T / p.Tc;
        const real first = dilute(p, T) / g, second = dilute(p, T) * p.aa[5] * y;
        const real third = real(3.6344e-5) * std::sqrt(real(p.m_mole)) * std::sqrt(real(p.Tc)) / area(p) * p.aa[6] * y *
                           y * g * std::exp(real(p.aa[7])) * std::exp((p.aa[8] + p.aa[9] / T_star) / T_star);
        return {(first + second + third) * real(0.1),
                (std::abs(first) + std::abs(second) + std::abs(third)) * real(0.1)};
    }
    case 4:
        return alone(real(3.4e-7) * std::sqrt(real(p.m_mole)) *
                     std::exp(2 * std::log(p.Pc / real(101325)) / 3 - std::log(real(p.Tc)) / 6 +
                              real(0.94) * std::log(T / p.Tc)));
    case 5: {
        const real ratio = T / p.T_ref_s;
        return alone(p.mu_ref_s * ratio * std::sqrt(ratio) * (real(p.T_ref_s) + p.Tchar_s) / (T + p.Tchar_s));
    }
    case 6:
        return alone(p.mu_ref_l / real(p.T_ref_l) * T);
    default:
        return alone(0);
    }
}

/// Psi of Chung's conductivity, with the ideal gas's cv [R].
real psi(const parameters &p, real T, real cv) {
    const real alpha = cv - real(1.5), Tr = T / p.Tc, Z = real(10.5) * Tr * Tr + 2;
    const real below = 0.6366 + p.beta * (Z + real(1.061) * alpha);
    return (below + alpha * (0.26665 * Z - real(1.061) * p.beta + 0.28288 * alpha + 0.215)) / below;
}

result conductivity(const parameters &p, real T, real v, real cv, real cp) {
    const real calories = 10000 / real(418.4);
    switch (p.thermal_cond_model) {
    case 1:
        return {p.kk_const, std::abs(p.kk_const)};
    case 2: {
        const result mu = viscosity(p, T, v);
        const real factor = calories / p.m_mole * real(7.452) * psi(p, T, cv);
        return {factor * mu.value, std::abs(factor) * mu.magnitude};
    }
    case 3: {
        const real y = p.vc / v / 6, g = G2(p.bb, y);
        const real k0 =
            p.viscosity_model == 3 ? calories / p.m_mole * real(7.452) * psi(p, T, cv) * dilute(p, T) : real(0);
        const real first = k0 / g, second = k0 * p.bb[5] * y;
        const real third = calories * real(0.0003039) * std::sqrt(real(p.Tc)) / std::sqrt(real(p.m_mole)) / area(p) *
                           p.bb[6] * std::sqrt(T / p.Tc) * g * y * y;
        return {first + second + third, std::abs(first) + std::abs(second) + std::abs(third)};
    }
    case 4: {
        const result mu = viscosity(p, T, v);
        const real factor = cp / p.Pr * p.Rgas;
        return {factor * mu.value, std::abs(factor) * mu.magnitude};
    }
    default:
        return {0, 0};
    }
}

} // namespace independent

/// The rounding of the numbers that the algebra computes from parameters alone, in units of support::unit_roundoff:
/// powers and roots of constants, and the sum in the denominator of G2, in which terms may cancel.
double constant_rounding(const parameters &p) {
    double room = 12;
    const auto denominator = [&](const auto &E) {
        const tracked sum = tracked(E[0]) * E[3] + E[1] + E[2];
        room += 2 * sum.bound / std::abs(sum.value);
    };
    if (p.viscosity_model == 3)
        denominator(p.aa);
    if (p.thermal_cond_model == 3)
        denominator(p.bb);
    return room;
}

void expect_close(const tracked &computed, const independent::result &expected, double room) {
    const double allowed = (computed.bound + room * static_cast<double>(expected.magnitude)) * support::unit_roundoff;
    EXPECT_LE(std::abs(static_cast<double>(computed.value - expected.value)), allowed)
        << computed.value << " and " << expected.value;
    // The bound is narrow enough to be of use.
    EXPECT_LT(allowed, 1e-11 * static_cast<double>(expected.magnitude));
}

TEST_F(transport_coefficients_test, every_pair_agrees_with_formulas_of_its_own) {
    for_each_vapor_and_pair([](std::int32_t, std::int32_t) {
        for_each_state([](double T, double v) {
            const double cv = ideal_specific_heat::cv_oo__Tdim(T);
            const double cp = thermodynamics::cp__T_v(T / gas.T_ref, v / gas.v_ref);
            const auto [mu, k] = transport::evaluate(
                active, tracked(T), tracked(v), [&] { return tracked(cv); }, [&] { return tracked(cp); });
            const auto found = at_dim(T, v);
            EXPECT_EQ(found.viscosity, mu.value);
            EXPECT_EQ(found.conductivity, k.value);
            const double room = constant_rounding(active);
            expect_close(mu, independent::viscosity(active, T, v), room);
            expect_close(k, independent::conductivity(active, T, v, cv / static_cast<long double>(gas.R), cp), room);
        });
    });
}

TEST_F(transport_coefficients_test, the_collision_integral_holds_from_cold_to_hot) {
    for (double T_star = 0.1; T_star < 500; T_star *= 1.07) {
        SCOPED_TRACE(T_star);
        const tracked computed = transport::collision_integral(tracked(T_star));
        const auto expected = independent::collision_integral(T_star);
        expect_close(computed, {expected, expected}, 2);
        // The sine changes it by less than its factor.
        const double without = 1.16145 * std::pow(T_star, -0.14874) + 0.52487 * std::exp(-0.7732 * T_star) +
                               2.16178 * std::exp(-2.43787 * T_star);
        EXPECT_LE(std::abs(computed.value - without), 0.00065 * std::pow(T_star, 0.14874));
    }
}

TEST_F(transport_coefficients_test, reduced_coefficients_are_the_dimensional_ones_over_their_references) {
    for_each_vapor_and_pair([](std::int32_t, std::int32_t conductivity) {
        for (const auto &[t, vr] : {std::pair(2.9, 40.0), {4.3, 0.7}, {9.1, 1e4}}) {
            const auto [eta, lambda] = at(t, vr);
            const double T = t * gas.T_ref, v = vr * gas.v_ref;
            const auto [mu, k] = at_dim(T, v);
            EXPECT_EQ(eta, mu / gas.mu_ref);
            if (conductivity != 4) {
                EXPECT_EQ(lambda, k / gas.kk_ref);
                continue;
            }
            // cp is taken at the reduced arguments as they were given, or at T/T_ref and v/v_ref.
            const auto of_cp = [&, mu = mu](double cp) { return mu * gas.R * cp / 0.71; };
            EXPECT_EQ(lambda, of_cp(thermodynamics::cp__T_v(t, vr)) / gas.kk_ref);
            EXPECT_EQ(k, of_cp(thermodynamics::cp__T_v(T / gas.T_ref, v / gas.v_ref)));
        }
    });
}

TEST_F(transport_coefficients_test, a_prandtl_number_is_that_of_its_viscosity_conductivity_and_heat_capacity) {
    for (const support::model_case &model : support::model_cases) {
        SCOPED_TRACE(model.name);
        support::load(model, support::heat_cases[1]);
        for (const std::int32_t viscosity : {1, 5, 6}) {
            read_and_initialise_transport(viscosity, 4);
            const double T = 1.4 * gas.T_ref / gas.Z_ref, v = 3.3 * gas.v_ref;
            const auto [mu, k] = at_dim(T, v);
            const double cp = thermodynamics::cp__T_v(T / gas.T_ref, v / gas.v_ref) * gas.R;
            EXPECT_NEAR(mu * cp / k, 0.71, 1e-15);
        }
    }
}

TEST_F(transport_coefficients_test, single_formulas_are_those_of_the_models) {
    using namespace transport;
    using namespace transport_properties;
    for (const fluid_case &fluid : vapors) {
        SCOPED_TRACE(fluid.name);
        support::fresh_fluid();
        read_and_initialise_thermodynamics(fluid.section);
        // This reads the numbers of all laws and, last, the coefficients of the dense gas.
        for (const auto &[viscosity, conductivity] : {std::pair(5, 1), {6, 4}, {2, 2}, {3, 3}})
            read_and_initialise_transport(viscosity, conductivity);
        for_each_state([](double T, double v) {
            const auto of_models = [&](std::int32_t viscosity, std::int32_t conductivity) {
                active.viscosity_model = viscosity;
                active.thermal_cond_model = conductivity;
                return at_dim(T, v);
            };
            const auto dilute = of_models(2, 2), dense = of_models(3, 3), dense_term = of_models(5, 3);
            const double corresponding = of_models(4, 1).viscosity, sutherland = of_models(5, 1).viscosity;
            const double linear = of_models(6, 1).viscosity;
            // The single formulas do not depend on the active models.
            for (const std::int32_t code : {0, 1, 3}) {
                active.viscosity_model = active.thermal_cond_model = code;
                EXPECT_EQ(diluite_gas_viscosity(T), dilute.viscosity);
                double mu0 = -1;
                EXPECT_EQ(dense_gas_viscosity(T, v, mu0), dense.viscosity);
                EXPECT_EQ(mu0, dilute.viscosity);
                EXPECT_EQ(corresp_state_viscosity(T), corresponding);
                EXPECT_EQ(sutherland_law_viscosity(T), sutherland);
                EXPECT_EQ(linear_viscosity(T), linear);
                EXPECT_EQ(diluite_gas_thermal_cond(T, mu0), dilute.conductivity);
                EXPECT_EQ(dense_gas_thermal_cond(T, v, 0), dense_term.conductivity);
                EXPECT_NEAR(dense_gas_thermal_cond(T, v, diluite_gas_thermal_cond(T, mu0)), dense.conductivity,
                            4 * epsilon * std::abs(dense.conductivity));
            }
        });
    }
}

TEST_F(transport_coefficients_test, sutherlands_and_the_linear_law_meet_their_reference_values) {
    read_and_initialise_thermodynamics(vapors[0].section);
    read_and_initialise_transport(6, 1);
    read_and_initialise_transport(5, 1);
    EXPECT_EQ(transport_properties::sutherland_law_viscosity(273.15), 1.7e-5);
    EXPECT_EQ(transport_properties::linear_viscosity(300), 1.3e-5);
    EXPECT_DOUBLE_EQ(transport_properties::linear_viscosity(750), 2.5 * 1.3e-5);
    // At high temperature the law becomes sqrt(T).
    EXPECT_NEAR(transport_properties::sutherland_law_viscosity(4e12) /
                    transport_properties::sutherland_law_viscosity(1e12),
                2, 1e-9);
    EXPECT_EQ(active.fc, 0);
}

TEST_F(transport_coefficients_test, corresponding_states_grow_as_the_power_of_the_temperature) {
    for_each_vapor(4, 2, [] {
        EXPECT_DOUBLE_EQ(at_dim(0.7 * gas.Tc, 1).viscosity / gas.mu_ref, std::pow(0.7, 0.94));
        EXPECT_EQ(at_dim(0.7 * gas.Tc, 1).viscosity, at_dim(0.7 * gas.Tc, 1e-3).viscosity);
    });
}

// Properties that the pairs have in common.

TEST_F(transport_coefficients_test, conductivity_2_takes_the_viscosity_of_the_active_model) {
    for (const fluid_case &fluid : vapors) {
        SCOPED_TRACE(fluid.name);
        double ratio = 0;
        for (const std::int32_t viscosity : {1, 2, 4, 5, 6}) {
            load(fluid.section, viscosity, 2);
            const double T = 1.4 * gas.Tc;
            const auto [mu, k] = at_dim(T, gas.vc);
            EXPECT_EQ(k, transport_properties::diluite_gas_thermal_cond(T, mu));
            if (ratio != 0) {
                EXPECT_NEAR(k / mu / ratio, 1, 4 * epsilon);
            }
            ratio = k / mu;
            if (viscosity == 5) {
                EXPECT_EQ(mu, transport_properties::sutherland_law_viscosity(T));
            }
        }
    }
}

TEST_F(transport_coefficients_test, conductivity_3_without_the_dense_viscosity_lacks_the_dilute_gas) {
    for (const fluid_case &fluid : vapors) {
        SCOPED_TRACE(fluid.name);
        load(fluid.section, 3, 3);
        const double T = 1.4 * gas.Tc;
        const double whole = at_dim(T, gas.vc).conductivity;
        double first = 0;
        for (const std::int32_t viscosity : {1, 4, 5, 6, 0, 9}) {
            SCOPED_TRACE(viscosity);
            load(fluid.section, viscosity, 3);
            EXPECT_EQ(shared_text(), "No errors");
            const double k = at_dim(T, gas.vc).conductivity;
            // B7 of a strongly polar fluid is negative.
            EXPECT_EQ(k > 0, active.bb[6] > 0);
            EXPECT_LT(std::abs(k), whole);
            // The dense part vanishes with the square of the density, and does not depend on the viscosity.
            EXPECT_NEAR(at_dim(T, 1e10 * gas.vc).conductivity / at_dim(T, 1e8 * gas.vc).conductivity, 1e-4, 1e-10);
            if (first != 0) {
                EXPECT_EQ(k, first);
            }
            first = k;
            // It does not depend on the heat capacity either.
            ideal_specific_heat::active.cv_0 *= 2;
            EXPECT_EQ(at_dim(T, gas.vc).conductivity, k);
        }
    }
}

TEST_F(transport_coefficients_test, a_model_calls_for_the_heat_capacity_it_needs_only) {
    for_each_vapor_and_pair([](std::int32_t, std::int32_t conductivity) {
        int ideal_calls = 0, isobaric_calls = 0;
        transport::evaluate(
            active, gas.Tc, gas.vc, [&] { return ++ideal_calls, 600.0; }, [&] { return ++isobaric_calls, 3.5; });
        EXPECT_EQ(ideal_calls, conductivity == 2 || conductivity == 3);
        EXPECT_EQ(isobaric_calls, conductivity == 4);
    });
}

TEST_F(transport_coefficients_test, a_monatomic_dilute_gas_conducts_as_kinetic_theory_says) {
    // k = 15/4 R mu in W/(m K) with mu in Pa s; the library's conductivities are 418.4^2/10^4 times smaller.
    read_and_initialise_thermodynamics(vapors[0].section, constant_Z, "T\n1\n1.5\n");
    read_and_initialise_transport(3, 3);
    const auto [mu, k] = at_dim(2 * gas.Tc, 1e20 * gas.vc);
    EXPECT_NEAR(k * (418.4 * 418.4 / 1e4) / (3.75 * gas.R * mu), 1, 1e-4);
    EXPECT_DOUBLE_EQ(transport::conductivity_unit, 1e4 / 418.4);
    read_and_initialise_transport(2, 2);
    const auto dilute = at_dim(2 * gas.Tc, 1e20 * gas.vc);
    EXPECT_NEAR(dilute.conductivity, k, 8 * epsilon * k);
    EXPECT_NEAR(dilute.viscosity * 0.1, mu, 8 * epsilon * mu);
}

// Limits.

TEST_F(transport_coefficients_test, the_dense_gas_becomes_the_dilute_gas_over_all_decades) {
    for_each_vapor(3, 3, [] {
        for (const double Tr : {0.6, 1.0, 3.0}) {
            const double T = Tr * gas.Tc, mu0 = transport_properties::diluite_gas_viscosity(T);
            const double k0 = transport_properties::diluite_gas_thermal_cond(T, mu0);
            // The slope of 1/G2 + E6 y at y = 0, from G1 = 1 + 2.5 y and (1 - e^(-E4 y))/y = E4 - E4^2 y/2.
            const auto slope = [](const auto &E) {
                return E[5] - (E[1] * (E[4] + 2.5) + 2.5 * E[2] - E[0] * E[3] * E[3] / 2) / (E[0] * E[3] + E[1] + E[2]);
            };
            for (int decade = -2; decade >= -300; --decade) {
                SCOPED_TRACE(decade);
                const double y = std::pow(10.0, decade);
                const auto [mu, k] = at_dim(T, gas.vc / (6 * y));
                const double mu_rest = mu / (0.1 * mu0) - 1, k_rest = k / k0 - 1;
                if (decade <= -4) {
                    const double room = 2e4 * y * y + 16 * epsilon;
                    EXPECT_NEAR(mu_rest, slope(active.aa) * y, room);
                    EXPECT_NEAR(k_rest, slope(active.bb) * y, room);
                }
                EXPECT_LT(std::abs(mu_rest), 100 * y + 16 * epsilon);
                EXPECT_LT(std::abs(k_rest), 100 * y + 16 * epsilon);
            }
        }
    });
}

TEST_F(transport_coefficients_test, reduced_viscosities_of_dilute_and_dense_gas_have_the_same_unit) {
    for_each_vapor(2, 2, [] {
        const double mu_ref = gas.mu_ref, eta = at(5, 1e12).viscosity;
        read_and_initialise_transport(3, 3);
        // Each has its own reference at the critical point, where the dense gas is thicker than the dilute one.
        EXPECT_NEAR(at(5, 1e12).viscosity * gas.mu_ref, 0.1 * eta * mu_ref, 1e-9 * eta * mu_ref);
        EXPECT_GT(gas.mu_ref, 0.1 * mu_ref);
        EXPECT_LT(gas.mu_ref, 10 * 0.1 * mu_ref);
    });
}

TEST_F(transport_coefficients_test, viscosity_and_conductivity_of_a_hot_nonpolar_gas_grow_with_its_density) {
    for (const fluid_case &fluid : {vapors[0], vapors[1]}) {
        SCOPED_TRACE(fluid.name);
        load(fluid.section, 3, 3);
        auto before = at_dim(2 * gas.Tc, 2 * gas.vc);
        for (double vr = 1.9; vr > 0.19; vr -= 0.1) {
            const auto found = at_dim(2 * gas.Tc, vr * gas.vc);
            EXPECT_GT(found.viscosity, before.viscosity) << vr;
            EXPECT_GT(found.conductivity, before.conductivity) << vr;
            before = found;
        }
    }
}

TEST_F(transport_coefficients_test, a_sixth_of_the_critical_volume_divides_by_zero) {
    for_each_vapor(3, 3, [] {
        const auto near = at_dim(gas.Tc, gas.vc / 6 * (1 + 1e-5));
        EXPECT_GT(std::abs(near.viscosity), 1e9 * gas.mu_ref);
        EXPECT_GT(std::abs(near.conductivity), 1e9 * gas.kk_ref);
        // At this volume y is exactly 1.
        active.vc = 6.0 / 256;
        const auto [mu, k] = at_dim(gas.Tc, 1.0 / 256);
        EXPECT_FALSE(std::isfinite(mu)) << mu;
        EXPECT_FALSE(std::isfinite(k)) << k;
        EXPECT_TRUE(std::isfinite(transport_properties::diluite_gas_viscosity(gas.Tc)));
    });
}

TEST_F(transport_coefficients_test, an_unknown_code_gives_zero_and_a_reduced_value_that_is_none) {
    for (const std::int32_t code : {-1, 0, 7, 2147483647}) {
        SCOPED_TRACE(code);
        load(vapors[2].section, code, 1);
        EXPECT_EQ(shared_text(), "No errors");
        EXPECT_EQ(at_dim(500, 0.1).viscosity, 0);
        EXPECT_EQ(at_dim(500, 0.1).conductivity, 0.017);
        EXPECT_EQ(gas.mu_ref, 0);
        EXPECT_TRUE(std::isnan(at(4, 10).viscosity));
        EXPECT_EQ(at(4, 10).conductivity, 1);
        read_and_initialise_transport(5, code < 5 ? code : 5);
        EXPECT_EQ(shared_text(), "No errors");
        EXPECT_EQ(at_dim(500, 0.1).conductivity, 0);
        EXPECT_EQ(gas.kk_ref, 0);
        EXPECT_TRUE(std::isnan(at(4, 10).conductivity));
        EXPECT_GT(at(4, 10).viscosity, 0);
    }
}

TEST_F(transport_coefficients_test, constants_of_zero_divide_by_zero) {
    read_and_initialise_thermodynamics(vapors[0].section);
    read_lines(support::transport_section, "1\n0.0\n1\n0.0\n");
    transport_properties::init_transport_properties();
    EXPECT_EQ(shared_text(), "No errors");
    EXPECT_TRUE(std::isnan(at(4, 10).viscosity));
    EXPECT_TRUE(std::isnan(at(4, 10).conductivity));
    read_lines(support::transport_section, "5\n1e-5 300 110\n4\n0.0\n");
    transport_properties::init_transport_properties();
    EXPECT_EQ(at_dim(300, 1).conductivity, std::numeric_limits<double>::infinity());
}

TEST_F(transport_coefficients_test, models_that_want_critical_data_are_not_refused_without_them) {
    for (const auto &[viscosity, conductivity] : {std::pair(4, 1), {5, 2}, {5, 3}, {4, 3}}) {
        SCOPED_TRACE(testing::Message() << viscosity << ", " << conductivity);
        load(support::reference_fluid, viscosity, conductivity, ideal);
        EXPECT_EQ(shared_text(), "No errors");
        const auto [eta, lambda] = at(1.2, 2);
        EXPECT_EQ(std::isfinite(eta), viscosity != 4);
        EXPECT_EQ(std::isfinite(lambda), conductivity == 1);
        // After a vapor the models use the data of that vapor.
        read_and_initialise_thermodynamics(vapors[0].section);
        read_and_initialise_transport(3, 3);
        read_and_initialise_thermodynamics(support::reference_fluid, ideal);
        read_and_initialise_transport(viscosity, conductivity);
        EXPECT_EQ(active.Tc, 126.192);
        expect_one(at(1, 1));
        EXPECT_GT(at(1.2, 2).conductivity, 0);
    }
}

} // namespace
