// SPDX-License-Identifier: MIT
#include "Algebra/lin_algebra.h"
#include "Tests/Support/thermodynamics.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gmock/gmock.h>

namespace {

using namespace thermodynamics;
using gas_properties::gas;
using ideal_specific_heat::errmsg;

using lin_algebra::linalg_errmsg;

// The pairs' properties, from the operations at (T, v).
double enthalpy(double T, double v) {
    return e__T_v(T, v) + v * P__T_v(T, v);
}
double square_of_sound(double T, double v) {
    std::array<double, 2> dP{};
    dP__dT_dv(T, v, dP);
    return v * v * (T * (dP[0] * dP[0]) / cv__T_v(T, v) - dP[1]);
}
struct slopes {
    gradient P, e, cv;
    hessian P2;
    slopes(double T, double v) : P{}, e{}, cv{}, P2{} {
        dP__dT_dv(T, v, P);
        de__dT_dv(T, v, e);
        dcv__dT_dv(T, v, cv);
        d2P__dT2_dv2(T, v, P2);
    }
};
gradient enthalpy_slopes(double T, double v) {
    const slopes d(T, v);
    return {v * d.P[0] + d.e[0], P__T_v(T, v) + d.e[1] + v * d.P[1]};
}
gradient entropy_slopes(double T, double v) {
    return {cv__T_v(T, v) / T, (P__T_v(T, v) + slopes(T, v).e[1]) / T};
}
double square_of_sound_slope(double T, double v) {
    const slopes d(T, v);
    const double cv = cv__T_v(T, v);
    return v * v * (d.P[0] / cv * (d.P[0] * (1 - T * d.cv[0] / cv) + 2 * T * d.P2[0]) - d.P2[2]);
}
double first_v(double s, double T) {
    return std::exp(s - gas.s_0 - ideal_specific_heat::psi__T(T));
}

/// A solver in one unknown, in the words of its table: the unknown's bound, f, df/dx and the first guess.
struct solver_1d {
    const char *name;
    double (*solve)(double y, double other, guess start);
    double &bound;
    double (*f)(double T, double v);
    double (*slope)(double T, double v);
    double (*first)(double y, double other);

    bool finds_T() const { return &bound == &Tmin; }
    double f_at(double x, double other) const { return finds_T() ? f(x, other) : f(other, x); }
    double slope_at(double x, double other) const { return finds_T() ? slope(x, other) : slope(other, x); }
    /// What is asked of which a state is the answer, and the unknown there.
    struct question {
        double y, other, x;
    };
    question about(double T, double v) const { return {given(f(T, v)), finds_T() ? v : T, finds_T() ? T : v}; }
    /// For sound the target is the square of what is given.
    double target(double y) const { return f == square_of_sound ? y * y : y; }
    double given(double target_value) const { return f == square_of_sound ? std::sqrt(target_value) : target_value; }
    std::string message() const { return std::string("ERROR: in ") + name; }
};
const solver_1d solvers_1d[] = {
    {"T__e_v", T__e_v, Tmin, e__T_v, [](double T, double v) { return slopes(T, v).e[0]; },
     [](double e, double) { return (e - gas.e_0) / gas.cv_ref; }},
    {"T__P_v", T__P_v, Tmin, P__T_v, [](double T, double v) { return slopes(T, v).P[0]; },
     [](double P, double v) { return P * v; }},
    {"v__P_T", v__P_T, vmin, P__T_v, [](double T, double v) { return slopes(T, v).P[1]; },
     [](double P, double T) { return T / P; }},
    {"T__s_v", T__s_v, Tmin, s__T_v, [](double T, double v) { return entropy_slopes(T, v)[0]; },
     [](double s, double v) { return std::pow(std::exp(s) / v, 1 / gas.cv_ref); }},
    {"v__s_T", v__s_T, vmin, s__T_v, [](double T, double v) { return entropy_slopes(T, v)[1]; }, first_v},
    {"T__h_v", T__h_v, Tmin, enthalpy, [](double T, double v) { return enthalpy_slopes(T, v)[0]; },
     [](double h, double) { return (h - gas.e_0) / (gas.cv_ref + 1); }},
    {"T__c_v", T__c_v, Tmin, square_of_sound, square_of_sound_slope,
     [](double c, double) { return gas.cv_ref * (c * c) / (gas.cv_ref + 1); }},
};
const solver_1d &solver(std::string_view name) {
    return *std::find_if(std::begin(solvers_1d), std::end(solvers_1d), [&](const auto &s) { return s.name == name; });
}

struct run {
    double x;
    bool converged;
    int evaluations;
};

/// Newton's method as it is written down.
run newton(const solver_1d &with, double y, double other, double x) {
    for (int i = 1; i <= 50; ++i) {
        if (x < with.bound)
            x = with.bound;
        const double r = with.f_at(x, other) - with.target(y);
        if (std::abs(r) < 1.0e-9)
            return {x, true, i};
        x = x - r / with.slope_at(x, other);
    }
    return {x, false, 50};
}

/// A solver in T and v.
struct solver_2d {
    const char *name;
    double (*solve)(double y1, double y2, guess T, guess v);
    double (*f1)(double T, double v);
    double (*f2)(double T, double v);
    gradient (*row1)(double T, double v);
    gradient (*row2)(double T, double v);
    double (*first_T)(double y1, double y2);
    double (*first_v)(double y2, double T);

    std::string message() const { return std::string("ERROR: in ") + name; }
};
double first_T_of_h(double h, double) {
    return (h - gas.e_0) / (gas.cv_ref + 1);
}
gradient pressure_slopes(double T, double v) {
    return slopes(T, v).P;
}
const solver_2d solvers_2d[] = {
    {"v__h_P", v__h_P, enthalpy, P__T_v, enthalpy_slopes, pressure_slopes, first_T_of_h,
     [](double P, double T) { return T / P; }},
    {"v__s_P", v__s_P, s__T_v, P__T_v, entropy_slopes, pressure_slopes,
     [](double s, double P) { return std::pow(std::exp(s) * P, 1 / (gas.cv_ref + 1)); },
     [](double P, double T) { return T / P; }},
    {"v__h_s", v__h_s, enthalpy, s__T_v, enthalpy_slopes, entropy_slopes, first_T_of_h, first_v},
};

struct run_2d {
    double T;
    double v;
    bool converged;
    int evaluations;
};
run_2d newton(const solver_2d &with, double y1, double y2, double T, double v) {
    for (int i = 1; i <= 50; ++i) {
        if (v < vmin)
            v = vmin;
        if (T < Tmin)
            T = Tmin;
        const double F1 = with.f1(T, v) - y1;
        const double F2 = with.f2(T, v) - y2;
        if (std::abs(F1) < 1.0e-9 && std::abs(F2) < 1.0e-9)
            return {T, v, true, i};
        const gradient a = with.row1(T, v);
        const gradient b = with.row2(T, v);
        const double det = a[0] * b[1] - a[1] * b[0];
        if (det == 0)
            return {T, v, false, i};
        T = T - (b[1] * F1 - a[1] * F2) / det;
        v = v - (a[0] * F2 - b[0] * F1) / det;
    }
    return {T, v, false, 50};
}

/// States in units of the reference point.
struct place {
    double T;
    double v;
};
constexpr place places[] = {{0.8, 30.0}, {0.95, 8.0}, {1.0, 3.0}, {1.2, 1.1}, {1.6, 0.7}, {3.0, 500.0}, {0.75, 0.38}};
constexpr const char *constant_heat = "T\n1\n3.5\n";
constexpr const char *einstein_heat = support::heat_cases[8].records;

struct thermodynamics_solvers_test : support::thermodynamics_test {
    thermodynamics_solvers_test() { linalg_errmsg.reset(); }

    static void load(std::int32_t type, const char *heat = einstein_heat) {
        support::load(support::case_of(type), {"", heat});
    }
    /// Runs the check with every model.
    static void for_each_model(const std::function<void()> &check) {
        for (std::int32_t type = 1; type <= 8; ++type) {
            SCOPED_TRACE(gas_names[static_cast<std::size_t>(type) - 1]);
            load(type);
            check();
        }
    }
    static void for_each_model_and_1d_solver(const std::function<void(const solver_1d &)> &check) {
        for_each_model_and(solvers_1d, check);
    }
    static void for_each_model_and_2d_solver(const std::function<void(const solver_2d &)> &check) {
        for_each_model_and(solvers_2d, check);
    }
    template <class Solver, std::size_t count>
    static void for_each_model_and(const Solver (&solvers)[count], const std::function<void(const Solver &)> &check) {
        for_each_model([&] {
            for (const Solver &with : solvers) {
                SCOPED_TRACE(with.name);
                errmsg.reset();
                check(with);
            }
        });
    }
    /// The singular matrix that the first solve after it meets.
    static void make_an_inversion_fail() {
        std::array<double, 4> unused{};
        lin_algebra::inverse({std::array<double, 4>{1, 2, 2, 4}, 2, 2}, unused);
        ASSERT_FALSE(linalg_errmsg.clear());
    }
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
    support::for_each_loaded([] {
        for (const double Tr : {0.9, 1.3, 2.9})
            for (const double v : {0.4, 1.7, 100.0}) {
                SCOPED_TRACE(testing::Message() << Tr << ", " << v);
                const double e = e__T_v(Tr / gas.Z_ref, v);
                // The first guess knows nothing of attraction: too far off in a dense real gas.
                if (v > 1 || gas_type == 1 || gas_type >= 7) {
                    EXPECT_NEAR(e__T_v(T__e_v(e, v), v), e, 1e-9);
                }
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
        if (model.gas_type >= 4 && model.gas_type <= 7)
            continue; // energies without a lower bound
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

// First guesses. A first guess that is a solution already is returned as it is; the tolerance leaves room to see
// that it was no Newton step that led there.

TEST_F(thermodynamics_solvers_test, first_guesses_that_need_the_heat_capacity) {
    constexpr double inside = 0.5e-9;
    for_each_model([] {
        const double T = 1.2 / gas.Z_ref, v = 2.3;
        const auto expect_first = [&](const solver_1d &with, double k_of_target(double y, double T, double v)) {
            SCOPED_TRACE(with.name);
            const double y = with.given(with.f(T, v) + inside);
            gas.cv_ref = k_of_target(y, T, v);
            const double first = with.first(y, v);
            ASSERT_NEAR(first, T, 1e-14);
            ASSERT_NE(std::abs(with.f(first, v) - with.target(y)), 0.0);
            EXPECT_EQ(with.solve(y, v, {}), first);
        };
        expect_first(solver("T__e_v"), [](double e, double T1, double) { return (e - gas.e_0) / T1; });
        expect_first(solver("T__s_v"),
                     [](double s, double T1, double v1) { return (s - std::log(v1)) / std::log(T1); });
        expect_first(solver("T__h_v"), [](double h, double T1, double) { return (h - gas.e_0) / T1 - 1; });
        expect_first(solver("T__c_v"), [](double c, double T1, double) { return T1 / (c * c - T1); });
        EXPECT_EQ(support::shared_text(), "No errors");
    });
}

TEST_F(thermodynamics_solvers_test, first_guesses_from_pressure) {
    // So thin a gas has any temperature and any such volume at this pressure.
    for_each_model([] {
        EXPECT_EQ(T__P_v(3e-10, 1e10), 3e-10 * 1e10);
        EXPECT_EQ(v__P_T(3e-10, 2.5), 2.5 / 3e-10);
        EXPECT_EQ(support::shared_text(), "No errors");
    });
}

TEST_F(thermodynamics_solvers_test, the_first_volume_from_entropy_subtracts_the_offset_and_psi) {
    for_each_model([] {
        // In a gas of constant Z the entropy grows with Z ln v.
        const double T = 1.7, v = gas_type == 8 ? 1.0 : 1e11, s = s__T_v(T, v) + 0.5e-9;
        const double first = first_v(s, T);
        ASSERT_LT(std::abs(s__T_v(T, first) - s), 1e-9);
        EXPECT_EQ(v__s_T(s, T), first);
        EXPECT_EQ(support::shared_text(), "No errors");
    });
}

TEST_F(thermodynamics_solvers_test, for_the_ideal_gas_the_first_guesses_from_pressure_are_exact) {
    load(1);
    for (const double T : {0.25, 1.7, 40.0})
        for (const double v : {0.5, 3.1, 7e3}) {
            const double P = P__T_v(T, v);
            EXPECT_EQ(T__P_v(P, v), P * v);
            EXPECT_EQ(v__P_T(P, T), T / P);
        }
    EXPECT_EQ(support::shared_text(), "No errors");
}

TEST_F(thermodynamics_solvers_test, first_guesses_in_two_unknowns) {
    for_each_model([] {
        const double T = 1.7, v = 1e11, P = T / v, h = enthalpy(T, v) + 0.5e-9, s = s__T_v(T, v) + 0.5e-9;
        const auto expect_first = [](const solver_2d &with, double y1, double y2) {
            SCOPED_TRACE(with.name);
            const double first_T = with.first_T(y1, y2), first = with.first_v(y2, first_T);
            ASSERT_LT(std::abs(with.f1(first_T, first) - y1), 1e-9);
            ASSERT_LT(std::abs(with.f2(first_T, first) - y2), 1e-9);
            EXPECT_EQ(with.solve(y1, y2, {}, {}), first);
        };
        gas.cv_ref = (h - gas.e_0) / T - 1;
        expect_first(solvers_2d[0], h, P);
        if (gas_type != 8)
            expect_first(solvers_2d[2], h, s);
        gas.cv_ref = std::log(std::exp(s) * P) / std::log(T) - 1;
        expect_first(solvers_2d[1], s, P);
        EXPECT_EQ(support::shared_text(), "No errors");
    });
}

TEST_F(thermodynamics_solvers_test, the_first_volume_follows_a_given_temperature) {
    for_each_model([] {
        const double T = 1.7, v = 1e11;
        gas.cv_ref = 1e-3; // so that the temperature's own first guess would be far off
        const double P = T / v, h = enthalpy(T, v), s = s__T_v(T, v);
        EXPECT_EQ(v__h_P(h, P, T), T / P);
        EXPECT_EQ(v__s_P(s__T_v(T, T / P), P, T), T / P);
        if (gas_type != 8) {
            EXPECT_EQ(v__h_s(h, s, T), first_v(s, T));
        }
        EXPECT_EQ(support::shared_text(), "No errors");
    });
}

// Iterations

TEST_F(thermodynamics_solvers_test, one_unknown_is_found_by_plain_Newton_steps) {
    int several_steps = 0;
    for_each_model_and_1d_solver([&](const solver_1d &with) {
        for (const place &at : places) {
            SCOPED_TRACE(testing::Message() << at.T << ", " << at.v);
            const auto [y, other, x] = with.about(at.T / gas.Z_ref, at.v);
            for (const double start : {with.first(y, other), 1.02 * x, 0.97 * x}) {
                const run expected = newton(with, y, other, start);
                errmsg.reset();
                const double found =
                    start == with.first(y, other) ? with.solve(y, other, {}) : with.solve(y, other, start);
                EXPECT_EQ(support::shared_text(), expected.converged ? "No errors" : with.message());
                if (expected.converged) {
                    EXPECT_NEAR(found, expected.x, 1e-12 * std::abs(expected.x));
                    EXPECT_LT(std::abs(with.f_at(found, other) - with.target(y)), 1e-9);
                    several_steps += expected.evaluations > 3;
                }
            }
        }
    });
    EXPECT_GT(several_steps, 300);
}

TEST_F(thermodynamics_solvers_test, two_unknowns_are_found_by_plain_Newton_steps) {
    int several_steps = 0;
    for_each_model_and_2d_solver([&](const solver_2d &with) {
        for (const place &at : places) {
            const double T = at.T / gas.Z_ref, v = at.v;
            SCOPED_TRACE(testing::Message() << at.T << ", " << at.v);
            const double y1 = with.f1(T, v), y2 = with.f2(T, v);
            const double first_T = with.first_T(y1, y2), first = with.first_v(y2, first_T);
            const run_2d starts[] = {newton(with, y1, y2, first_T, first), newton(with, y1, y2, 1.02 * T, 0.98 * v)};
            for (const run_2d &expected : starts) {
                errmsg.reset();
                linalg_errmsg.reset();
                const double found =
                    &expected == starts ? with.solve(y1, y2, {}, {}) : with.solve(y1, y2, 1.02 * T, 0.98 * v);
                EXPECT_EQ(support::shared_text(), expected.converged ? "No errors" : with.message());
                if (expected.converged) {
                    EXPECT_NEAR(found, expected.v, 1e-10 * expected.v);
                    several_steps += expected.evaluations > 3;
                }
            }
        }
    });
    EXPECT_GT(several_steps, 100);
}

TEST_F(thermodynamics_solvers_test, a_given_first_value_within_the_tolerance_is_returned) {
    for_each_model_and_1d_solver([](const solver_1d &with) {
        const auto [y, other, x] = with.about(1.2 / gas.Z_ref, 2.3);
        const double step = 1e-9 / with.slope_at(x, other);
        EXPECT_EQ(with.solve(y, other, x + 0.9 * step), x + 0.9 * step);
        EXPECT_EQ(with.solve(y, other, x - 0.9 * step), x - 0.9 * step);
        EXPECT_NE(with.solve(y, other, x + 1.1 * step), x + 1.1 * step);
        EXPECT_NE(with.solve(y, other, x - 1.1 * step), x - 1.1 * step);
        EXPECT_EQ(support::shared_text(), "No errors");
    });
}

TEST_F(thermodynamics_solvers_test, both_residuals_must_be_within_the_tolerance) {
    for_each_model_and_2d_solver([](const solver_2d &with) {
        const double T = 1.2 / gas.Z_ref, v = 2.3, y1 = with.f1(T, v), y2 = with.f2(T, v);
        EXPECT_EQ(with.solve(y1 + 0.9e-9, y2 - 0.9e-9, T, v), v);
        EXPECT_NE(with.solve(y1 + 1.1e-9, y2, T, v), v);
        EXPECT_NE(with.solve(y1, y2 - 1.1e-9, T, v), v);
        EXPECT_EQ(support::shared_text(), "No errors");
    });
}

TEST_F(thermodynamics_solvers_test, a_residual_of_exactly_the_tolerance_is_not_enough) {
    load(1, "T\n1\n1.0\n"); // e, h and c2 are T times a power of two
    gas.e_0 = 0;
    gas.s_0 = 1e-9;
    Tmin = 0;
    // For every solver the x at which f is 1e-9, and the target is zero.
    const auto x_of_tolerance = [](const solver_1d &with) {
        double x = with.f == s__T_v ? 1.0 : with.finds_T() ? 1e-9 / with.f(1.0, 1.0) : 1e9;
        for (int i = 0; i < 8 && with.f_at(x, 1.0) > 1e-9; ++i)
            x = std::nextafter(x, 0.0);
        for (int i = 0; i < 8 && with.f_at(x, 1.0) < 1e-9; ++i)
            x = std::nextafter(x, 1.0);
        return x;
    };
    for (const solver_1d &with : solvers_1d) {
        SCOPED_TRACE(with.name);
        ideal_specific_heat::active.T_ref = with.f == s__T_v ? 1.0 : gas.T_ref; // psi(1) = 0
        const double x = x_of_tolerance(with);
        ASSERT_EQ(with.f_at(x, 1.0), 1.0e-9);
        EXPECT_NE(with.solve(0.0, 1.0, x), x);
        const double y = 1e-15; // for sound its square is lost
        if (with.f != square_of_sound) {
            EXPECT_EQ(with.solve(y, 1.0, x), x);
        }
    }
    EXPECT_NE(v__h_P(enthalpy(1.0, 1e9), 0.0, 1.0, 1e9), 1e9);
    EXPECT_EQ(v__h_P(enthalpy(0.999, 1e9), 0.0, 0.999, 1e9), 1e9);
    EXPECT_NE(v__s_P(s__T_v(1.0, 1e9), 0.0, 1.0, 1e9), 1e9);
    EXPECT_EQ(v__s_P(s__T_v(0.999, 1e9), 0.0, 0.999, 1e9), 1e9);
    const double T_of_tolerance = x_of_tolerance(solver("T__h_v"));
    ASSERT_EQ(enthalpy(T_of_tolerance, 1.0), 1.0e-9);
    EXPECT_NE(v__h_P(0.0, T_of_tolerance, T_of_tolerance, 1.0), 1.0);
    EXPECT_EQ(v__h_P(1e-15, T_of_tolerance, T_of_tolerance, 1.0), 1.0);
    ideal_specific_heat::active.T_ref = 1.0;
    EXPECT_NE(v__h_s(enthalpy(1.0, 1.0), 0.0, 1.0, 1.0), 1.0);
    EXPECT_EQ(v__h_s(enthalpy(1.0, 1.0), 1e-12, 1.0, 1.0), 1.0);
}

TEST_F(thermodynamics_solvers_test, a_first_value_below_the_bound_is_lifted) {
    for_each_model_and_1d_solver([](const solver_1d &with) {
        const double T = 1.2 / gas.Z_ref, v = 2.3;
        Tmin = T;
        vmin = v;
        const auto [y, other, x] = with.about(T, v);
        for (const double below : {-5.0, 0.0, 0.5 * with.bound})
            EXPECT_EQ(with.solve(y, other, below), with.bound);
        EXPECT_EQ(support::shared_text(), "No errors");
    });
    for_each_model_and_2d_solver([](const solver_2d &with) {
        const double T = 1.2 / gas.Z_ref, v = 2.3, y1 = with.f1(T, v), y2 = with.f2(T, v);
        Tmin = T;
        vmin = v;
        for (const double below : {-5.0, 0.0, 1.0})
            EXPECT_EQ(with.solve(y1, y2, below, below), v);
        EXPECT_EQ(support::shared_text(), "No errors");
    });
}

TEST_F(thermodynamics_solvers_test, an_iterate_below_the_bound_is_lifted) {
    // The step from 50 leads below zero, since s is a logarithm of T; from Tmin the solution is found.
    load(1, constant_heat);
    const double s = s__T_v(1.7, 2.3);
    ASSERT_LT(50.0 - (s__T_v(50.0, 2.3) - s) * 50.0 / cv__T_v(50.0, 2.3), 0.0);
    EXPECT_NEAR(T__s_v(s, 2.3, 50.0), 1.7, 1e-9);
    EXPECT_NEAR(v__s_T(s, 1.7, 50.0), 2.3, 1e-9);
    EXPECT_EQ(support::shared_text(), "No errors");
}

// The cap

TEST_F(thermodynamics_solvers_test, the_fiftieth_pressure_is_the_last) {
    // Towards P = 0 every step doubles the volume of an ideal gas. All numbers are powers of two.
    load(1, constant_heat);
    const double succeeds = std::ldexp(1.0, 19), fails = std::ldexp(1.0, 20);
    EXPECT_EQ(v__P_T(0.0, succeeds, 1.0), std::ldexp(1.0, 49));
    EXPECT_EQ(support::shared_text(), "No errors");
    EXPECT_EQ(v__P_T(0.0, fails, 1.0), std::ldexp(1.0, 50));
    EXPECT_EQ(support::shared_text(), "ERROR: in v__P_T");
    errmsg.reset();
    EXPECT_EQ(v__h_P(enthalpy(succeeds, 1.0), 0.0, succeeds, 1.0), std::ldexp(1.0, 49));
    EXPECT_EQ(support::shared_text(), "No errors");
    EXPECT_EQ(v__h_P(enthalpy(fails, 1.0), 0.0, fails, 1.0), std::ldexp(1.0, 50));
    EXPECT_EQ(support::shared_text(), "ERROR: in v__h_P");
}

TEST_F(thermodynamics_solvers_test, a_slow_solve_returns_what_fifty_steps_give) {
    struct slow {
        const char *name;
        std::int32_t type;
        const char *heat;
        double y;
        double other;
        double start;
    };
    constexpr const char *falling_heat = "T\n2\n3.5 -3.0\n";
    const slow cases[] = {
        {"T__e_v", 1, falling_heat, 1e3, 1.0, 1e-30},   {"T__P_v", 6, constant_heat, 0.0, 1.0, 1e-60},
        {"v__P_T", 1, constant_heat, 0.0, 1.0, 1e-20},  {"T__s_v", 1, constant_heat, 1.0, 1.0, 1e-300},
        {"v__s_T", 1, constant_heat, 1.0, 1.0, 1e-300}, {"T__h_v", 1, falling_heat, 1e3, 1.0, 1e-30},
        {"T__c_v", 1, falling_heat, 0.0, 1.0, 1e20},
    };
    for (const slow &at : cases) {
        SCOPED_TRACE(at.name);
        const solver_1d &with = solver(at.name);
        load(at.type, at.heat);
        Tmin = vmin = 0;
        const run expected = newton(with, at.y, at.other, at.start);
        ASSERT_FALSE(expected.converged);
        ASSERT_GT(std::abs(with.f_at(expected.x, at.other) - with.target(at.y)), 1.0); // still on its way
        const double found = with.solve(at.y, at.other, at.start);
        EXPECT_NEAR(found / expected.x, 1.0, 1e-11);
        EXPECT_EQ(support::shared_text(), with.message());
    }
    const auto expect_slow = [](const solver_2d &with, double y1, double y2, double T, double v) {
        SCOPED_TRACE(with.name);
        load(1, constant_heat);
        Tmin = vmin = 0;
        const run_2d expected = newton(with, y1, y2, T, v);
        ASSERT_FALSE(expected.converged);
        EXPECT_NEAR(with.solve(y1, y2, T, v) / expected.v, 1.0, 1e-11);
        EXPECT_EQ(support::shared_text(), with.message());
    };
    expect_slow(solvers_2d[0], 4.5 * 1e9 + 3.0, 0.0, 1e9, 1.0);
    expect_slow(solvers_2d[1], 96.0, 0.0, 1e12, 1.0);
    expect_slow(solvers_2d[2], 4.5, 1.0, 1.0, 1e-100);
}

TEST_F(thermodynamics_solvers_test, a_failed_solve_returns_its_last_value_as_it_is) {
    // Below every value that f has above the bound: each step starts at the bound and leads below it.
    load(1, constant_heat);
    for (const solver_1d &with : solvers_1d) {
        if (!with.finds_T() && with.f == P__T_v)
            continue;
        SCOPED_TRACE(with.name);
        errmsg.reset();
        Tmin = vmin = 0.5;
        const double y = with.f == square_of_sound ? 0.3 : with.f_at(0.5, 1.0) - 0.2;
        const double last = 0.5 - (with.f_at(0.5, 1.0) - with.target(y)) / with.slope_at(0.5, 1.0);
        ASSERT_LT(last, 0.5);
        EXPECT_DOUBLE_EQ(with.solve(y, 1.0, {}), last);
        std::string text = with.message();
        ASSERT_EQ(text.size(), 16U);
        text.resize(256, ' ');
        EXPECT_EQ(errmsg.padded(), text);
    }
}

TEST_F(thermodynamics_solvers_test, a_zero_derivative_ends_in_the_message) {
    load(1, "T\n1\n0.0\n");
    EXPECT_FALSE(std::isfinite(T__e_v(gas.e_0 + 1.0, 1.0, 1.0)));
    EXPECT_EQ(support::shared_text(), "ERROR: in T__e_v");
    EXPECT_FALSE(std::isfinite(T__s_v(gas.s_0 + 1.0, 1.0, 1.0)));
    EXPECT_EQ(support::shared_text(), "ERROR: in T__s_v");
    EXPECT_FALSE(std::isfinite(v__P_T(1.0, 0.0, 1.0)));
    EXPECT_EQ(support::shared_text(), "ERROR: in v__P_T");
}

TEST_F(thermodynamics_solvers_test, whatever_is_asked_ends_with_a_result_or_the_message) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double odd[] = {
        std::numeric_limits<double>::quiet_NaN(), infinity, -infinity, 1e300, -1e300, 1e-300, 0.0, -1.0, -1e6, 1e6};
    for_each_model_and_1d_solver([&](const solver_1d &with) {
        for (const double y : odd)
            for (const double other : {odd[0], infinity, -1.0, 0.0, 1e-3, 1.0, 1e300})
                for (const guess first : {guess(), guess(odd[0]), guess(-1.0), guess(1e300)}) {
                    errmsg.reset();
                    const double x = with.solve(y, other, first);
                    if (support::shared_text() == "No errors") {
                        EXPECT_LT(std::abs(with.f_at(x, other) - with.target(y)), 1e-9) << y << ", " << other;
                    } else {
                        EXPECT_EQ(support::shared_text(), with.message());
                    }
                    if (std::isnan(y) || (first && std::isnan(*first))) {
                        EXPECT_EQ(support::shared_text(), with.message()) << y << ", " << other;
                    }
                }
    });
    for_each_model_and_2d_solver([&](const solver_2d &with) {
        for (const double y1 : odd)
            for (const double y2 : odd) {
                errmsg.reset();
                linalg_errmsg.reset();
                with.solve(y1, y2, {}, {});
                if (std::isnan(y1) || std::isnan(y2)) {
                    EXPECT_EQ(support::shared_text(), with.message());
                } else {
                    EXPECT_THAT(support::shared_text(), testing::AnyOf("No errors", with.message()));
                }
            }
    });
}

// The singular Jacobian

TEST_F(thermodynamics_solvers_test, a_singular_Jacobian_ends_the_solve_at_the_lifted_volume) {
    for (const solver_2d &with : {solvers_2d[0], solvers_2d[1]}) {
        SCOPED_TRACE(with.name);
        load(1, constant_heat);
        linalg_errmsg.reset();
        Tmin = 0;
        vmin = 0.75;
        // At T = 0 the pressure of an ideal gas does not depend on v.
        EXPECT_EQ(v__h_P(1.0, 1.0, 0.0, 0.5), 0.75);
        EXPECT_EQ(support::shared_text(), "ERROR: in v__h_P");
        EXPECT_EQ(linalg_errmsg.trimmed(), " Matrix A is singular. In FUNCTION inverse, MODULE lin_algebra. STOP");
    }
}

TEST_F(thermodynamics_solvers_test, after_a_failed_inversion_every_solve_in_two_unknowns_fails_at_its_first_step) {
    for_each_model_and_2d_solver([](const solver_2d &with) {
        const double T = 1.2 / gas.Z_ref, v = 2.3, y1 = with.f1(T, v), y2 = with.f2(T, v);
        linalg_errmsg.reset();
        EXPECT_NEAR(with.solve(y1, y2, 1.01 * T, 1.01 * v), v, 1e-8);
        EXPECT_EQ(support::shared_text(), "No errors");
        make_an_inversion_fail();
        EXPECT_EQ(with.solve(y1, y2, 1.01 * T, 1.01 * v), 1.01 * v);
        EXPECT_EQ(support::shared_text(), with.message());
        errmsg.reset();
        vmin = 3.0;
        EXPECT_EQ(with.solve(y1, y2, 1.01 * T, v), 3.0);
        EXPECT_EQ(support::shared_text(), with.message());
        errmsg.reset();
        vmin = 1.0;
        // Where no step is needed nothing is inverted.
        EXPECT_EQ(with.solve(y1, y2, T, v), v);
        EXPECT_EQ(support::shared_text(), "No errors");
        linalg_errmsg.reset();
    });
}

TEST_F(thermodynamics_solvers_test, a_failed_inversion_does_not_touch_solves_in_one_unknown) {
    make_an_inversion_fail();
    for_each_model_and_1d_solver([](const solver_1d &with) {
        const auto [y, other, x] = with.about(1.2 / gas.Z_ref, 2.3);
        EXPECT_NEAR(with.solve(y, other, 1.01 * x), x, 1e-7);
        EXPECT_EQ(support::shared_text(), "No errors");
    });
}

// Composites

/// A composite in the words of its table.
struct composite {
    const char *name;
    double (*evaluate)(double y, double other, guess start);
    const char *solved_by;
    double (*direct)(double T, double v);
};
constexpr composite composites[] = {
    {"P__e_v", P__e_v, "T__e_v", P__T_v}, {"P__s_T", P__s_T, "v__s_T", P__T_v}, {"P__c_v", P__c_v, "T__c_v", P__T_v},
    {"P__h_v", P__h_v, "T__h_v", P__T_v}, {"e__P_v", e__P_v, "T__P_v", e__T_v}, {"s__P_v", s__P_v, "T__P_v", s__T_v},
};

TEST_F(thermodynamics_solvers_test, composites_evaluate_at_the_solved_state) {
    for_each_model([] {
        for (const composite &of : composites) {
            SCOPED_TRACE(of.name);
            const solver_1d &with = solver(of.solved_by);
            const double T = 1.1 / gas.Z_ref, v = 5.1;
            const auto [y, other, x] = with.about(T, v);
            const auto direct = [&](double at) { return with.finds_T() ? of.direct(at, v) : of.direct(T, at); };
            const double step = 1e-9 / with.slope_at(x, other);
            EXPECT_EQ(of.evaluate(y, other, x + 0.7 * step), direct(x + 0.7 * step));
            EXPECT_EQ(of.evaluate(y, other, {}), direct(with.solve(y, other, {})));
            EXPECT_EQ(of.evaluate(y, other, 1.1 * x), direct(with.solve(y, other, 1.1 * x)));
            EXPECT_EQ(support::shared_text(), "No errors");
        }
    });
}

TEST_F(thermodynamics_solvers_test, composites_answer_zero_after_a_failure) {
    load(1, constant_heat);
    for (const composite &of : composites) {
        SCOPED_TRACE(of.name);
        errmsg.reset();
        EXPECT_EQ(of.evaluate(std::nan(""), 1.0, {}), 0.0);
        EXPECT_EQ(support::shared_text(), solver(of.solved_by).message());
    }
}

TEST_F(thermodynamics_solvers_test, composites_answer_zero_while_a_message_stands) {
    for_each_model([] {
        for (const composite &of : composites) {
            SCOPED_TRACE(of.name);
            const solver_1d &with = solver(of.solved_by);
            const auto [y, other, x] = with.about(1.2 / gas.Z_ref, 2.3);
            errmsg.report({"ERROR: in T__e_v"});
            EXPECT_EQ(of.evaluate(y, other, x), 0.0);
            EXPECT_EQ(support::shared_text(), "ERROR: in T__e_v");
            errmsg.reset();
            EXPECT_NE(of.evaluate(y, other, x), 0.0);
        }
    });
}

TEST_F(thermodynamics_solvers_test, composites_answer_zero_without_a_model) {
    load(1);
    for (const std::int32_t type : {-1, 0, 9, 2147483647}) {
        gas_type = type;
        for (const composite &of : composites)
            for (const double y : {0.0, 1.0, std::nan("")})
                EXPECT_EQ(of.evaluate(y, 1.0, {}), 0.0) << of.name;
    }
}

} // namespace
