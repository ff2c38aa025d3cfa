// SPDX-License-Identifier: MIT
#include "Equations/derived_properties.h"
#include "Tests/Support/rounding.h"
#include "Tests/Support/thermodynamics.h"

#include <functional>

namespace {

using namespace thermodynamics;
using gas_properties::gas;
using ideal_specific_heat::errmsg;
using support::expect_same;
using support::stepped;
using support::tracked;
using thermodynamics::active_ideal_part;

struct thermodynamics_derived_test : support::thermodynamics_test {};

/// What is differentiated by complex steps. A and B are dP/d(rho e) and dP/drho.
enum quantity { pressure, enthalpy, gibbs_energy, entropy, isentropic_slope, A, B, energy_density, quantities };

template <class Model, class Number>
std::array<Number, quantities> quantities_at(const Model &model, Number T, Number v) {
    const separated_attraction::state_point point(model, T, v);
    const auto ideal = active_ideal_part();
    const derived_properties::properties<separated_attraction::state_point<Model, Number>> p{point, ideal};
    const auto [P_T, P_v] = point.dP();
    const auto [P_re, P_r] = p.dP_in_re_r();
    return {point.P(),
            p.h(),
            p.mu(),
            point.s(ideal),
            P_v - point.T / point.cv(ideal) * P_T * P_T,
            P_re,
            P_r,
            point.e(ideal) / point.v};
}

/// All that the model says of one state, with bounds, so that the tests of it are compiled once and not for each model.
struct evaluated {
    tracked T, v, P, e, s, cv, P_T, P_v, e_T, e_v, s_T, s_v;
    // The derived properties by their own formulas.
    std::array<tracked, 2> dh, dmu, ds;
    tracked cp, c2, G;
    std::array<tracked, 4> dP_in_re_r_gradient, d2P_in_re_r;
    // Complex steps.
    std::array<tracked, quantities> slope_T, slope_v;

    template <class Model>
    evaluated(const Model &model, double temperature, double volume) : T(temperature), v(volume) {
        const separated_attraction::state_point point(model, T, v);
        const auto ideal = active_ideal_part();
        P = point.P();
        e = point.e(ideal);
        s = point.s(ideal);
        cv = point.cv(ideal);
        const auto dP = point.dP(), de = point.de(ideal);
        P_T = dP[0], P_v = dP[1], e_T = de[0], e_v = de[1];
        s_T = cv / T;
        s_v = (P + e_v) / T;
        const derived_properties::properties<separated_attraction::state_point<Model, tracked>> p{point, ideal};
        dh = p.dh(), dmu = p.dmu(), ds = p.ds();
        cp = p.cp(), c2 = p.c2(), G = p.G();
        dP_in_re_r_gradient = p.dP_in_re_r_gradient(), d2P_in_re_r = p.d2P_in_re_r();
        slope_T = stepped([&](auto t) { return quantities_at(model, t, decltype(t)(volume)); }, temperature);
        slope_v = stepped([&](auto w) { return quantities_at(model, decltype(w)(temperature), w); }, volume);
    }
};

void for_each_evaluated(const std::function<void(const evaluated &at, double T, double v)> &visit) {
    support::for_each_state([&](const auto &model, double T, double v) { visit(evaluated(model, T, v), T, v); });
}

void expect_formula(double computed, const tracked &formula) {
    if (std::isinf(computed) && computed == formula.value)
        return; // divided by dP/dv = 0 at the critical point
    expect_same({computed, formula.bound}, formula);
}
void expect_formulas(const char *name, const gradient &computed, const tracked &first, const tracked &second) {
    SCOPED_TRACE(name);
    expect_formula(computed[0], first);
    expect_formula(computed[1], second);
}

TEST_F(thermodynamics_derived_test, every_operation_at_T_and_v_is_its_formula) {
    for_each_evaluated([](const evaluated &at, double T, double v) {
        const tracked one = 1, rho_slope = tracked(-1) / (at.v * at.v);
        const tracked c2 = at.v * at.v * ((at.T / at.cv) * at.P_T * at.P_T - at.P_v);
        expect_formula(h__T_v(T, v), at.e + at.P * at.v);
        expect_formula(mu__T_v(T, v), at.e + at.P * at.v - at.T * at.s);
        expect_formula(c2__T_v(T, v), c2);
        expect_formula(cp__T_v(T, v), at.cv - at.T * at.P_T * at.P_T / at.P_v);
        expect_formulas("dh", dh__dT_dv(T, v), at.e_T + at.v * at.P_T, at.e_v + at.P + at.v * at.P_v);
        expect_formulas("ds", ds__dT_dv(T, v), at.s_T, at.s_v);
        expect_formulas("dmu", dmu__dT_dv(T, v), at.e_T - at.T * at.s_T - at.s + at.v * at.P_T,
                        at.e_v - at.T * at.s_v + at.v * at.P_v + at.P);
        expect_formulas("dT/dP", dT__dP_dv__T_v(T, v), one / at.P_T, -at.P_v / at.P_T);
        expect_formulas("de/dP", de__dP_dv__T_v(T, v), at.e_T / at.P_T, at.e_v - at.e_T * at.P_v / at.P_T);
        expect_formulas("ds/dP", ds__dP_dv__T_v(T, v), at.s_T / at.P_T, at.s_v - at.s_T * at.P_v / at.P_T);
        expect_formulas("dP/de", dP__de_dr__T_v(T, v), at.P_T / at.e_T,
                        (at.P_v - at.P_T * at.e_v / at.e_T) / rho_slope);
        expect_formulas("dP/dre", dP__dre_dr__T_v(T, v), at.P_T / (at.e_T / at.v),
                        (at.P_v - at.P_T * ((at.e_v / at.v - at.e / (at.v * at.v)) / (at.e_T / at.v))) / rho_slope);
    });
}

TEST_F(thermodynamics_derived_test, the_speed_of_sound_is_the_root_of_its_square) {
    support::for_each_state([](double T, double v) {
        const double c2 = c2__T_v(T, v), c = c__T_v(T, v);
        ASSERT_GE(c2, 0.0);
        EXPECT_EQ(c, std::sqrt(c2));
        EXPECT_NEAR(c * c, c2, 2 * support::epsilon * c2);
    });
}

TEST_F(thermodynamics_derived_test, an_unstable_state_has_no_speed_of_sound) {
    support::load(support::model_cases[4], support::heat_cases[0]);
    EXPECT_LT(c2__T_v(4.0 / 3.0, 1.0), 0.0);
    EXPECT_TRUE(std::isnan(c__T_v(4.0 / 3.0, 1.0)));
    EXPECT_EQ(support::shared_text(), "No errors");
}

TEST_F(thermodynamics_derived_test, the_slope_of_T_in_P_is_one_over_that_of_P) {
    support::for_each_state([](double T, double v) {
        gradient dP{};
        dP__dT_dv(T, v, dP);
        EXPECT_EQ(dT__dP_dv__T_v(T, v)[0], 1.0 / dP[0]);
        EXPECT_DOUBLE_EQ(dT__dP_dv__T_v(T, v)[0] * dP[0], 1.0);
    });
    support::load(support::model_cases[0], support::heat_cases[0]);
    EXPECT_EQ(dT__dP_dv__T_v(1.3, 0.25)[0] * 4.0, 1.0);
}

TEST_F(thermodynamics_derived_test, the_entropy_derivatives_are_cv_and_the_Gibbs_relation_to_the_bit) {
    support::for_each_state([](double T, double v) {
        gradient de{};
        de__dT_dv(T, v, de);
        EXPECT_EQ(ds__dT_dv(T, v), (gradient{cv__T_v(T, v) / T, (P__T_v(T, v) + de[1]) / T}));
    });
}

TEST_F(thermodynamics_derived_test, gradients_are_the_complex_steps_of_their_quantities) {
    for_each_evaluated([](const evaluated &at, double T, double v) {
        const auto check = [&](const char *name, quantity of, const gradient &computed,
                               const std::array<tracked, 2> &bounds) {
            SCOPED_TRACE(name);
            expect_same({computed[0], bounds[0].bound}, at.slope_T[of]);
            expect_same({computed[1], bounds[1].bound}, at.slope_v[of]);
        };
        check("h", enthalpy, dh__dT_dv(T, v), at.dh);
        check("mu", gibbs_energy, dmu__dT_dv(T, v), at.dmu);
        check("s", entropy, ds__dT_dv(T, v), at.ds);
    });
}

// cp = (dh/dT)_P and c2 = -v2 (dP/dv)_s, from the complex steps of P, h and s alone.
TEST_F(thermodynamics_derived_test, heat_capacity_and_speed_of_sound_from_their_definitions) {
    for_each_evaluated([](const evaluated &at, double T, double v) {
        const tracked P_T = at.slope_T[pressure], P_v = at.slope_v[pressure];
        const tracked cp = at.slope_T[enthalpy] - at.slope_v[enthalpy] * P_T / P_v;
        expect_same({cp__T_v(T, v), at.cp.bound}, cp);
        const tracked dP_dv_s = P_v - P_T * at.slope_v[entropy] / at.slope_T[entropy];
        expect_same({c2__T_v(T, v), at.c2.bound}, -(at.v * at.v * dP_dv_s));
    });
}

// v3/(2 c2) (d2P/dv2)_s: along an isentrope dT/dv = -T P_T/cv, and the slope (dP/dv)_s is stepped along it.
TEST_F(thermodynamics_derived_test, the_fundamental_derivative_is_the_curvature_of_the_isentrope) {
    for_each_evaluated([](const evaluated &at, double T, double v) {
        const tracked curvature = at.slope_v[isentropic_slope] - at.slope_T[isentropic_slope] * at.T * at.P_T / at.cv;
        expect_same({G__T_v(T, v), at.G.bound}, at.v * at.v * at.v / (tracked(2) * at.c2) * curvature);
    });
}

// An ideal gas of constant heat capacity: Gamma = (gamma + 1)/2 and c2 = gamma P v.
TEST_F(thermodynamics_derived_test, the_properties_of_an_ideal_gas_of_constant_heat_capacity) {
    support::load(support::model_cases[1], support::heat_cases[1]);
    const double cv = 3.5, gamma = 4.5 / 3.5, e_0 = gas.e_0;
    for (const auto &[T, v] : {std::pair(1.3, 0.4), {0.5, 100.0}}) {
        EXPECT_DOUBLE_EQ(G__T_v(T, v), (gamma + 1) / 2);
        EXPECT_DOUBLE_EQ(c2__T_v(T, v), gamma * T);
        EXPECT_DOUBLE_EQ(cp__T_v(T, v), 4.5);
        EXPECT_DOUBLE_EQ(h__T_v(T, v), e_0 + 4.5 * T);
        EXPECT_DOUBLE_EQ(dh__dT_dv(T, v)[0], 4.5);
        EXPECT_NEAR(dh__dT_dv(T, v)[1], 0.0, 4 * T / v * support::epsilon);
        const auto [dP_dre, dP_dr] = dP__dre_dr__T_v(T, v);
        EXPECT_DOUBLE_EQ(dP_dre, 1 / cv);
        EXPECT_DOUBLE_EQ(dP_dr, -e_0 / cv);
        // P is linear in rho e and rho.
        for (const double second : d2P__dre2_dr2__T_v(T, v))
            EXPECT_NEAR(second, 0.0, 1e-13);
    }
}

// The pair (A, B) stepped, and from its derivatives in T and v those in rho e and rho by Cramer's rule.
TEST_F(thermodynamics_derived_test, second_derivatives_in_energy_density_and_density) {
    for_each_evaluated([](const evaluated &at, double T, double v) {
        const tracked A_T = at.slope_T[A], A_v = at.slope_v[A], B_T = at.slope_T[B], B_v = at.slope_v[B];
        const tracked re_T = at.slope_T[energy_density], re_v = at.slope_v[energy_density];
        const tracked r_v = tracked(-1) / (at.v * at.v);
        const auto check = [](const char *name, const hessian &computed, const std::array<tracked, 4> &bounds,
                              const std::array<tracked, 4> &expected) {
            for (std::size_t i = 0; i < 4; ++i) {
                SCOPED_TRACE(testing::Message() << name << ", element " << i);
                expect_same({computed[i], bounds[i].bound}, expected[i]);
            }
        };
        check("in T and v", d2P__dre_dr__dT_dv(T, v), at.dP_in_re_r_gradient, {A_T, B_T, A_v, B_v});
        const hessian second = d2P__dre2_dr2__T_v(T, v);
        check("in rho e and rho", second, at.d2P_in_re_r,
              {A_T / re_T, B_T / re_T, (A_v - A_T * re_v / re_T) / r_v, (B_v - B_T * re_v / re_T) / r_v});
        EXPECT_TRUE(second[1] == second[2] || std::isnan(second[1]));
    });
}

/// Pressure as a function of energy density and density: T by Newton's method at long double.
template <class Model>
long double P__re_r(const Model &model, long double re, long double r, long double T) {
    const auto ideal = active_ideal_part();
    const long double v = 1 / r;
    for (int i = 0; i < 30; ++i)
        T -= (separated_attraction::e__T_v(model, ideal, T, v) - re * v) /
             separated_attraction::de__dT_dv(model, ideal, T, v)[0];
    return separated_attraction::P__T_v(model, ideal, T, v);
}
long double P__re_r(long double re, long double r, long double T) {
    long double P = 0;
    support::with_active_model([&](const auto &model) { P = P__re_r(model, re, r, T); });
    return P;
}

// Nothing analytic: differences of fourth order of the pressure itself.
TEST_F(thermodynamics_derived_test, derivatives_in_energy_density_and_density_by_differences) {
    for (const auto &model_case : support::model_cases) {
        SCOPED_TRACE(model_case.name);
        support::load(model_case, support::heat_cases[8]);
        for (const auto &[Tr, v] : {std::pair(1.3, 1.4), {0.9, 40.0}, {1.2, 0.6}}) {
            SCOPED_TRACE(testing::Message() << Tr << ", " << v);
            const double T = Tr / gas.Z_ref, r = 1 / v, re = e__T_v(T, v) / v;
            const long double step_re = 1e-3L * e__T_v(1.0, 1e9) / v + 1e-3L / v, step_r = 1e-3L * r;
            const auto P = [&](int i, int k) { return P__re_r(re + i * step_re, r + k * step_r, T); };
            const auto first = [](auto f, long double h) { return (8 * (f(1) - f(-1)) - (f(2) - f(-2))) / (12 * h); };
            const auto second = [](auto f, long double h) {
                return (16 * (f(1) + f(-1)) - (f(2) + f(-2)) - 30 * f(0)) / (12 * h * h);
            };
            const auto in_re = [&](int i) { return P(i, 0); };
            const auto in_r = [&](int k) { return P(0, k); };
            const long double mixed =
                first([&](int k) { return first([&](int i) { return P(i, k); }, step_re); }, step_r);
            const gradient dP = dP__dre_dr__T_v(T, v);
            const hessian d2P = d2P__dre2_dr2__T_v(T, v);
            const auto near = [](double computed, long double difference, double scale) {
                EXPECT_NEAR(computed, static_cast<double>(difference), 1e-7 * scale);
            };
            near(dP[0], first(in_re, step_re), std::abs(dP[0]));
            near(dP[1], first(in_r, step_r), std::abs(dP[1]) + v);
            near(d2P[0], second(in_re, step_re), v + v * v);
            near(d2P[1], mixed, v + v * v);
            near(d2P[3], second(in_r, step_r), v + v * v);
        }
    }
}

TEST_F(thermodynamics_derived_test, without_a_model_there_is_nothing_to_divide) {
    EXPECT_EQ(h__T_v(1.0, 1.0), 0.0);
    EXPECT_EQ(mu__T_v(1.0, 1.0), 0.0);
    EXPECT_EQ(ds__dT_dv(2.0, 1.0), (gradient{0.0, 0.0}));
    for (const auto &result : {dP__dre_dr__T_v(1.0, 1.0), dP__de_dr__T_v(1.0, 1.0), de__dP_dv__T_v(1.0, 1.0)}) {
        EXPECT_TRUE(std::isnan(result[0]));
        EXPECT_TRUE(std::isnan(result[1]));
    }
    EXPECT_EQ(dT__dP_dv__T_v(1.0, 1.0)[0], std::numeric_limits<double>::infinity());
    for (const double result : {c2__T_v(1.0, 1.0), c__T_v(1.0, 1.0), cp__T_v(1.0, 1.0), G__T_v(1.0, 1.0)})
        EXPECT_TRUE(std::isnan(result));
    EXPECT_EQ(support::shared_text(), "No errors");
}

// At other pairs

/// One operation after a search: how it is asked, what is searched and from what, and what it then is.
template <class Result>
struct after_search {
    const char *name;
    void (*operation)(double, double, Result &, guess);
    double (*first)(double T, double v);
    double (*search)(double, double, guess);
    bool unknown_is_T; ///< and v is given, else the other way round
    Result (*expected)(double T, double v);
    const char *failure;
};

gradient chained(double T, double v, gradient (*combine)(const gradient &dP, const gradient &ds)) {
    gradient dP{};
    dP__dT_dv(T, v, dP);
    return combine(dP, ds__dT_dv(T, v));
}
gradient dP_in_s_v(double T, double v) {
    return chained(T, v, [](const gradient &dP, const gradient &ds) {
        return gradient{dP[0] / ds[0], dP[1] - dP[0] * ds[1] / ds[0]};
    });
}
gradient dP_in_s_T(double T, double v) {
    return chained(T, v, [](const gradient &dP, const gradient &ds) {
        return gradient{dP[1] / ds[1], dP[0] - dP[1] * ds[0] / ds[1]};
    });
}
gradient dv_in_s_T(double T, double v) {
    return chained(T, v, [](const gradient &, const gradient &ds) { return gradient{1 / ds[1], -ds[0] / ds[1]}; });
}
gradient dmu_in_P_v(double T, double v) {
    gradient dP{};
    dP__dT_dv(T, v, dP);
    const gradient dmu = dmu__dT_dv(T, v);
    return {dmu[0] / dP[0], dmu[1] - dmu[0] * dP[1] / dP[0]};
}

const after_search<double> scalars[] = {
    {"mu__P_v", mu__P_v, P__T_v, T__P_v, true, mu__T_v, "ERROR: in T__P_v"},
    {"c__P_v", c__P_v, P__T_v, T__P_v, true, c__T_v, "ERROR: in T__P_v"},
    {"G__P_v", G__P_v, P__T_v, T__P_v, true, G__T_v, "ERROR: in T__P_v"},
};
const after_search<gradient> pairs[] = {
    {"dT__dP_dv", dT__dP_dv, P__T_v, T__P_v, true, dT__dP_dv__T_v, "ERROR: in T__P_v"},
    {"de__dP_dv", de__dP_dv, P__T_v, T__P_v, true, de__dP_dv__T_v, "ERROR: in T__P_v"},
    {"ds__dP_dv", ds__dP_dv, P__T_v, T__P_v, true, ds__dP_dv__T_v, "ERROR: in T__P_v"},
    {"dmu__dP_dv", dmu__dP_dv, P__T_v, T__P_v, true, dmu_in_P_v, "ERROR: in T__P_v"},
    {"dP__de_dr", dP__de_dr, e__T_v, T__e_v, true, dP__de_dr__T_v, "ERROR: in T__e_v"},
    {"dP__dre_dr", dP__dre_dr, e__T_v, T__e_v, true, dP__dre_dr__T_v, "ERROR: in T__e_v"},
    {"dP__ds_dv", dP__ds_dv, s__T_v, T__s_v, true, dP_in_s_v, "ERROR: in T__s_v"},
    {"dP__ds_dT", dP__ds_dT, s__T_v, v__s_T, false, dP_in_s_T, "ERROR: in v__s_T"},
    {"dv__ds_dT", dv__ds_dT, s__T_v, v__s_T, false, dv_in_s_T, "ERROR: in v__s_T"},
};
const after_search<hessian> matrices[] = {
    {"d2P__dre2_dr2", d2P__dre2_dr2, e__T_v, T__e_v, true, d2P__dre2_dr2__T_v, "ERROR: in T__e_v"},
};

template <class Visit>
void for_each_after_search(Visit visit) {
    const auto all = [&](const auto &rows) {
        for (const auto &row : rows) {
            SCOPED_TRACE(row.name);
            visit(row);
        }
    };
    all(scalars);
    all(pairs);
    all(matrices);
}

template <class Result>
Result marked() {
    Result result{};
    std::fill_n(reinterpret_cast<double *>(&result), sizeof result / sizeof(double), 7.25);
    return result;
}

constexpr std::pair<double, double> regular_states[] = {{1.3, 1.7}, {0.95, 30.0}, {1.6, 0.8}};

TEST_F(thermodynamics_derived_test, at_other_pairs_they_are_those_of_the_state_that_was_found) {
    for (const auto &model : support::model_cases) {
        SCOPED_TRACE(model.name);
        support::load(model, support::heat_cases[8]);
        for (const auto &[Tr, v] : regular_states) {
            const double T = Tr / gas.Z_ref;
            SCOPED_TRACE(testing::Message() << Tr << ", " << v);
            for_each_after_search([&, v = v](const auto &row) {
                using Result = decltype(row.expected(T, v));
                const double first = row.first(T, v), second = row.unknown_is_T ? v : T;
                const double exact = row.unknown_is_T ? T : v;
                for (const guess start : {guess(), guess(1.01 * exact)}) {
                    errmsg.reset();
                    const double found = row.search(first, second, start);
                    if (!errmsg.clear()) {
                        EXPECT_FALSE(start) << "from a start next to the solution";
                        continue;
                    }
                    EXPECT_NEAR(found, exact, 1e-6 * exact);
                    Result result = marked<Result>();
                    row.operation(first, second, result, start);
                    EXPECT_EQ(result, row.unknown_is_T ? row.expected(found, v) : row.expected(T, found));
                    EXPECT_EQ(support::shared_text(), "No errors");
                }
            });
        }
    }
}

// A start within the tolerance is the state that is evaluated.
TEST_F(thermodynamics_derived_test, the_start_value_is_where_the_search_begins) {
    for (const auto &model : support::model_cases) {
        SCOPED_TRACE(model.name);
        support::load(model, support::heat_cases[8]);
        for_each_after_search([&](const auto &row) {
            using Result = decltype(row.expected(1.0, 1.0));
            const double T = 1.3 / gas.Z_ref, v = 1.7;
            const double exact = row.unknown_is_T ? T : v;
            const double start = exact * (1 + 1e-11);
            Result result = marked<Result>();
            row.operation(row.first(T, v), row.unknown_is_T ? v : T, result, start);
            EXPECT_EQ(result, row.unknown_is_T ? row.expected(start, v) : row.expected(T, start));
            EXPECT_NE(result, row.expected(T, v));
        });
    }
}

TEST_F(thermodynamics_derived_test, while_a_message_stands_nothing_is_written) {
    support::load(support::model_cases[2], support::heat_cases[8]);
    for_each_after_search([&](const auto &row) {
        using Result = decltype(row.expected(1.0, 1.0));
        errmsg.report({"some failure"});
        Result result = marked<Result>();
        const double T = 1.3 / gas.Z_ref, v = 1.7;
        row.operation(row.first(T, v), row.unknown_is_T ? v : T, result, row.unknown_is_T ? T : v);
        EXPECT_EQ(result, marked<Result>());
        EXPECT_EQ(support::shared_text(), "some failure");
    });
}

TEST_F(thermodynamics_derived_test, a_search_that_fails_writes_its_message_and_no_result) {
    support::load(support::model_cases[2], support::heat_cases[8]);
    for_each_after_search([&](const auto &row) {
        using Result = decltype(row.expected(1.0, 1.0));
        errmsg.reset();
        Result result = marked<Result>();
        row.operation(std::nan(""), 1.7, result, {});
        EXPECT_EQ(result, marked<Result>());
        EXPECT_EQ(support::shared_text(), row.failure);
    });
}

TEST_F(thermodynamics_derived_test, along_an_isentrope_the_pressure_falls_with_the_speed_of_sound) {
    for (const auto &model : support::model_cases) {
        SCOPED_TRACE(model.name);
        support::load(model, support::heat_cases[8]);
        const double T = 1.3 / gas.Z_ref, v = 1.7;
        gradient dP{};
        dP__ds_dv(s__T_v(T, v), v, dP, T);
        EXPECT_NEAR(dP[1], -c2__T_v(T, v) / (v * v), 1e-13 * c2__T_v(T, v));
    }
}

} // namespace
