// SPDX-License-Identifier: MIT
// The identities between pressure, energy, entropy and heat capacity. Each is written once and tested for every model
// with every heat capacity at every state, within the rounding of its terms.
#include "Tests/Support/rounding.h"
#include "Tests/Support/thermodynamics.h"

namespace {

using support::expect_derivative;
using support::expect_same;
using support::stepped;
using support::tracked;
using thermodynamics::active_ideal_part;

/// All operations at one state, with the bounds of their rounding errors.
struct evaluated {
#define OSTREL_SCALAR_MEMBER(unused, operation)      tracked operation;
#define OSTREL_ARRAY_MEMBER(unused, operation, size) std::array<tracked, size> operation;
    tracked T, v;
    OSTREL_SCALAR_OPERATIONS(OSTREL_SCALAR_MEMBER, )
    OSTREL_ARRAY_OPERATIONS(OSTREL_ARRAY_MEMBER, )

    template <class Model>
    evaluated(const Model &model, double temperature, double volume) : T(temperature), v(volume) {
#define OSTREL_EVALUATE(unused, operation, ...) \
    operation = separated_attraction::operation(model, active_ideal_part(), T, v);
        OSTREL_SCALAR_OPERATIONS(OSTREL_EVALUATE, )
        OSTREL_ARRAY_OPERATIONS(OSTREL_EVALUATE, )
    }
};

struct identity {
    const char *name;
    tracked (*left)(const evaluated &);
    tracked (*right)(const evaluated &);
};
constexpr identity identities[] = {
    {"de/dv = T dP/dT - P", [](const evaluated &at) { return at.de__dT_dv[1]; },
     [](const evaluated &at) { return at.T * at.dP__dT_dv[0] - at.P__T_v; }},
    {"cv = de/dT", [](const evaluated &at) { return at.cv__T_v; }, [](const evaluated &at) { return at.de__dT_dv[0]; }},
    {"dcv/dv = T d2P/dT2", [](const evaluated &at) { return at.dcv__dT_dv[1]; },
     [](const evaluated &at) { return at.T * at.d2P__dT2_dv2[0]; }},
    {"d2e/dT2 = dcv/dT", [](const evaluated &at) { return at.d2e__dT2_dv2[0]; },
     [](const evaluated &at) { return at.dcv__dT_dv[0]; }},
    {"d2e/dTdv = dcv/dv", [](const evaluated &at) { return at.d2e__dT2_dv2[1]; },
     [](const evaluated &at) { return at.dcv__dT_dv[1]; }},
    {"d2e/dv2 = T d2P/dTdv - dP/dv", [](const evaluated &at) { return at.d2e__dT2_dv2[3]; },
     [](const evaluated &at) { return at.T * at.d2P__dT2_dv2[1] - at.dP__dT_dv[1]; }},
};

TEST(identities, of_every_model_and_heat_capacity) {
    support::for_each_state([](const auto &model, double T, double v) {
        const evaluated at(model, T, v);
        for (const identity &is : identities) {
            SCOPED_TRACE(is.name);
            expect_same(is.left(at), is.right(at));
        }
    });
}

TEST(identities, mixed_second_derivatives_are_one_number) {
    support::for_each_state([](double T, double v) {
        std::array<double, 4> d2P{}, d2e{};
        thermodynamics::d2P__dT2_dv2(T, v, d2P);
        thermodynamics::d2e__dT2_dv2(T, v, d2e);
        EXPECT_EQ(d2P[1], d2P[2]);
        EXPECT_EQ(d2e[1], d2e[2]);
    });
}

TEST(identities, entropy_by_the_complex_step) {
    support::for_each_state([](const auto &model, double T, double v) {
        const evaluated at(model, T, v);
        const auto s = [&](auto t, auto w) { return separated_attraction::s__T_v(model, active_ideal_part(), t, w); };
        {
            SCOPED_TRACE("ds/dT = cv/T");
            expect_derivative(
                at.cv__T_v / at.T, [&](auto t) { return s(t, decltype(t)(v)); }, T);
        }
        {
            SCOPED_TRACE("ds/dv = dP/dT");
            expect_derivative(
                at.dP__dT_dv[0], [&](auto w) { return s(decltype(w)(T), w); }, v);
        }
    });
}

TEST(identities, energy_and_entropy_are_zero_at_the_reference_point) {
    support::for_each_loaded([](const auto &model) {
        const double T = 1.0 / gas_properties::gas.Z_ref;
        const evaluated at(model, T, 1.0);
        EXPECT_EQ(thermodynamics::e__T_v(T, 1.0), at.e__T_v.value);
        EXPECT_EQ(thermodynamics::s__T_v(T, 1.0), at.s__T_v.value);
        expect_same(at.e__T_v, 0.0);
        expect_same(at.s__T_v, 0.0);
    });
}

TEST(identities, enthalpy_is_exactly_e_plus_Pv) {
    support::for_each_state([](double T, double v) {
        EXPECT_EQ(thermodynamics::h__T_v(T, v), thermodynamics::e__T_v(T, v) + thermodynamics::P__T_v(T, v) * v);
    });
}

// The complex step differentiates rho and rho e as functions of (T, v). Cramer's rule solves the 2x2 system for the
// derivatives of P by them. The operation itself does neither.
TEST(identities, pressure_derivatives_in_density_and_energy_density) {
    support::for_each_state([](const auto &model, double T, double v) {
        const evaluated at(model, T, v);
        const auto P = [&](auto t, auto w) { return separated_attraction::P__T_v(model, active_ideal_part(), t, w); };
        const auto re = [&](auto t, auto w) {
            return separated_attraction::e__T_v(model, active_ideal_part(), t, w) / w;
        };
        const tracked P_T = stepped([&](auto t) { return P(t, decltype(t)(v)); }, T);
        const tracked P_v = stepped([&](auto w) { return P(decltype(w)(T), w); }, v);
        const tracked re_T = stepped([&](auto t) { return re(t, decltype(t)(v)); }, T);
        const tracked re_v = stepped([&](auto w) { return re(decltype(w)(T), w); }, v);
        const tracked r_v = stepped([&](auto w) { return 1.0 / w; }, v);

        // P_T = P_re re_T and P_v = P_re re_v + P_r r_v
        const tracked re_T_bound = at.de__dT_dv[0] / at.v;
        const tracked re_v_bound = at.de__dT_dv[1] / at.v - at.e__T_v / (at.v * at.v);
        const tracked P_re = at.dP__dT_dv[0] / re_T_bound;
        const tracked P_r = (at.dP__dT_dv[1] - P_re * re_v_bound) / (tracked(-1.0) / (at.v * at.v));
        const auto [dP_dre, dP_dr] = thermodynamics::dP__dre_dr__T_v(T, v);
        expect_same({dP_dre, P_re.bound}, P_T / re_T);
        expect_same({dP_dr, P_r.bound}, (P_v - P_T * (re_v / re_T)) / r_v);
    });
}

TEST(identities, extended_state_agrees_with_its_parts) {
    support::for_each_state([](double T, double v) {
        const auto extended = thermodynamics::eos_ext__T_v(T, v);
        const auto basic = thermodynamics::eos__T_v(T, v);
        EXPECT_TRUE(std::equal(basic.begin(), basic.end(), extended.begin()));
        EXPECT_EQ(extended, thermodynamics::eos_ext__eos(basic));
        const auto dP = thermodynamics::dP__dre_dr__T_v(T, v);
        EXPECT_EQ(extended[5], dP[0]);
        EXPECT_EQ(extended[6], dP[1]);
    });
}

// Along an isentrope d(rho e)/d(rho) = e + P v, so that c2 also equals dP/d(rho) + (e + P v) dP/d(rho e).
TEST(identities, speed_of_sound_two_ways) {
    support::for_each_state([](const auto &model, double T, double v) {
        const evaluated at(model, T, v);
        const auto &[P_T, P_v] = at.dP__dT_dv;
        const tracked direct = at.v * at.v * ((at.T / at.cv__T_v) * (P_T * P_T) - P_v);
        const tracked P_re = P_T / (at.de__dT_dv[0] / at.v);
        const tracked re_v = at.de__dT_dv[1] / at.v - at.e__T_v / (at.v * at.v);
        const tracked P_r = (P_v - P_re * re_v) / (tracked(-1.0) / (at.v * at.v));
        const tracked isentrope = P_r + (at.e__T_v + at.P__T_v * at.v) * P_re;
        const auto extended = thermodynamics::eos_ext__T_v(T, v);
        const double c2 = extended[4] * extended[4];
        const double other = extended[6] + (extended[2] + extended[3] * v) * extended[5];
        expect_same(direct, isentrope);
        if (direct.value > direct.bound * support::unit_roundoff) {
            expect_same({c2, direct.bound + 4 * c2}, direct);
            expect_same({other, isentrope.bound}, isentrope);
        }
    });
}

} // namespace
