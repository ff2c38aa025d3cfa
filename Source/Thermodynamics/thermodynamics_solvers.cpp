// SPDX-License-Identifier: MIT
// Inverse solvers: plain Newton iterations, without damping, in one unknown or in T and v together.
//
// Computes   the state at which properties have given values
// Given      target values, optional first guesses, the bounds Tmin and vmin; all reduced
// Returned   the T or v at which the residual was below 1e-9; after 50 steps the last one and a message
// Valid      nothing is bracketed: from a poor guess, or inside the two-phase region, a solve may fail
// Accuracy   residuals below 1e-9 in reduced units
// Reference  I. Newton, J. Raphson; W. H. Press et al., Numerical Recipes (2007) ch. 9.4 and 9.6
#include "Algebra/lin_algebra.h"
#include "Thermodynamics/model_choice.h"

#include <cmath>

namespace thermodynamics {

using gas_properties::gas;
using ideal_specific_heat::errmsg;
using separated_attraction::active_ideal_part;
using separated_attraction::gradient;

namespace {

constexpr double tolerance = 1.0e-9;
constexpr int most_steps = 50;

using guess = std::optional<double>;

/// A NaN is not lifted: it stays until the steps are used up.
double lifted(double x, double lower_bound) {
    return x < lower_bound ? lower_bound : x;
}

// What the solvers are solved for: a value, its derivatives to T and v where it has them, the derivative that a
// one-dimensional solve uses, and what of the ideal gas all these want.
struct energy {
    static constexpr unsigned caloric = ideal_specific_heat::energy | ideal_specific_heat::heat;
    static double value(const auto &p) { return p.at.e(p.ideal); }
    static double slope_T(const auto &p) { return p.at.de(p.ideal)[0]; }
};
struct pressure {
    static constexpr unsigned caloric = 0;
    static double value(const auto &p) { return p.at.P(); }
    static double slope_T(const auto &p) { return p.at.dP()[0]; }
    static double slope_v(const auto &p) { return p.at.dP()[1]; }
    static gradient<double> slopes(const auto &p) { return p.at.dP(); }
};
struct entropy {
    static constexpr unsigned caloric = ideal_specific_heat::entropy | ideal_specific_heat::heat;
    static double value(const auto &p) { return p.at.s(p.ideal); }
    static double slope_T(const auto &p) { return p.at.cv(p.ideal) / p.T; }
    static double slope_v(const auto &p) { return p.ds()[1]; }
    static gradient<double> slopes(const auto &p) { return p.ds(); }
};
struct enthalpy {
    static constexpr unsigned caloric = ideal_specific_heat::energy | ideal_specific_heat::heat;
    static double value(const auto &p) { return p.h(); }
    static double slope_T(const auto &p) { return p.dh()[0]; }
    static gradient<double> slopes(const auto &p) { return p.dh(); }
};
/// The square of the speed of sound.
struct sound {
    static constexpr unsigned caloric = ideal_specific_heat::heat | ideal_specific_heat::heat_slope;
    static double value(const auto &p) {
        const auto [P_T, P_v] = p.at.dP();
        return p.v * p.v * (p.T * (P_T * P_T) / p.at.cv(p.ideal) - P_v);
    }
    static double slope_T(const auto &p) {
        const double P_T = p.at.dP()[0];
        const auto [P_TT, P_vT, P_Tv, P_vv] = p.at.d2P();
        const double cv = p.at.cv(p.ideal);
        const double cv_T = p.at.dcv(p.ideal)[0];
        return p.v * p.v * ((P_T / cv) * (P_T * (1.0 - p.T * cv_T / cv) + 2.0 * p.T * P_TT) - P_Tv);
    }
};

/// Newton's method in one unknown; `at` gives the state for a value of it.
template <class Quantity, class StateAt, class Slope>
double newton(double target, double x, double lower_bound, std::string_view failure, const StateAt &at, Slope slope) {
    for (int step = 0; step < most_steps; ++step) {
        x = lifted(x, lower_bound);
        const auto state = at(x);
        const double residual = Quantity::value(state.all()) - target;
        if (std::abs(residual) < tolerance)
            return x;
        x -= residual / slope(state.all());
    }
    errmsg.report({failure});
    return x;
}

template <class Quantity>
double solve_T(double target, double v, double T, std::string_view failure) {
    const auto solve = [&]<class Model>(const Model &model) {
        return newton<Quantity>(target, T, Tmin, failure,
                                isochore<Model, Quantity::caloric>(model, active_ideal_part(), v),
                                [](const auto &p) { return Quantity::slope_T(p); });
    };
    return with_model(solve, [&] { return T; });
}

template <class Quantity>
double solve_v(double target, double T, double v, std::string_view failure) {
    const auto solve = [&]<class Model>(const Model &model) {
        return newton<Quantity>(target, v, vmin, failure,
                                isotherm<Model, Quantity::caloric>(model, active_ideal_part(), T),
                                [](const auto &p) { return Quantity::slope_v(p); });
    };
    return with_model(solve, [&] { return v; });
}

/// Newton's method in T and v together; answers v.
template <class First, class Second>
double solve_T_v(double target1, double target2, double T, double v, std::string_view failure) {
    const auto solve = [&]<class Model>(const Model &model) {
        for (int step = 0; step < most_steps; ++step) {
            v = lifted(v, vmin);
            T = lifted(T, Tmin);
            const evaluated_state<Model, First::caloric | Second::caloric> state{{model, T, v},
                                                                                 {active_ideal_part(), T}};
            const auto p = state.all();
            const double F1 = First::value(p) - target1;
            const double F2 = Second::value(p) - target2;
            if (std::abs(F1) < tolerance && std::abs(F2) < tolerance)
                return v;
            const auto row1 = First::slopes(p);
            const auto row2 = Second::slopes(p);
            const std::array<double, 4> J = {row1[0], row2[0], row1[1], row2[1]};
            std::array<double, 4> inverted{};
            lin_algebra::inverse({J, 2, 2}, inverted);
            if (!lin_algebra::linalg_errmsg.clear()) {
                errmsg.report({failure});
                return v;
            }
            T -= inverted[0] * F1 + inverted[2] * F2;
            v -= inverted[1] * F1 + inverted[3] * F2;
        }
        errmsg.report({failure});
        return v;
    };
    return with_model(solve, [&] { return v; });
}

// Default guesses: the ideal gas with unit gas constant and the heat capacity of the reference point.
double T_of_h(double h) {
    return (h - gas.e_0) / (gas.cv_ref + 1.0);
}
double v_of_s_T(double s, double T) {
    return std::exp(s - gas.s_0 - ideal_specific_heat::psi__T(T));
}

/// A direct evaluation after a solve, or 0 if a message stands.
template <class Evaluation>
double after_solve(Evaluation evaluate) {
    return errmsg.clear() ? evaluate() : 0.0;
}

} // namespace

double T__e_v(double e, double v, guess T) {
    return solve_T<energy>(e, v, T ? *T : (e - gas.e_0) / gas.cv_ref, "ERROR: in T__e_v");
}
double T__P_v(double P, double v, guess T) {
    return solve_T<pressure>(P, v, T ? *T : P * v, "ERROR: in T__P_v");
}
double v__P_T(double P, double T, guess v) {
    return solve_v<pressure>(P, T, v ? *v : T / P, "ERROR: in v__P_T");
}
double T__s_v(double s, double v, guess T) {
    return solve_T<entropy>(s, v, T ? *T : std::pow(std::exp(s) / v, 1.0 / gas.cv_ref), "ERROR: in T__s_v");
}
double v__s_T(double s, double T, guess v) {
    return solve_v<entropy>(s, T, v ? *v : v_of_s_T(s, T), "ERROR: in v__s_T");
}
double T__h_v(double h, double v, guess T) {
    return solve_T<enthalpy>(h, v, T ? *T : T_of_h(h), "ERROR: in T__h_v");
}
double T__c_v(double c, double v, guess T) {
    return solve_T<sound>(c * c, v, T ? *T : gas.cv_ref * (c * c) / (gas.cv_ref + 1.0), "ERROR: in T__c_v");
}

double v__h_P(double h, double P, guess T, guess v) {
    const double first_T = T ? *T : T_of_h(h);
    return solve_T_v<enthalpy, pressure>(h, P, first_T, v ? *v : first_T / P, "ERROR: in v__h_P");
}
double v__s_P(double s, double P, guess T, guess v) {
    const double first_T = T ? *T : std::pow(std::exp(s) * P, 1.0 / (gas.cv_ref + 1.0));
    return solve_T_v<entropy, pressure>(s, P, first_T, v ? *v : first_T / P, "ERROR: in v__s_P");
}
double v__h_s(double h, double s, guess T, guess v) {
    const double first_T = T ? *T : T_of_h(h);
    return solve_T_v<enthalpy, entropy>(h, s, first_T, v ? *v : v_of_s_T(s, first_T), "ERROR: in v__h_s");
}

double P__e_v(double e, double v, guess T) {
    const double solved = T__e_v(e, v, T);
    return after_solve([&] { return P__T_v(solved, v); });
}
double P__s_T(double s, double T, guess v) {
    const double solved = v__s_T(s, T, v);
    return after_solve([&] { return P__T_v(T, solved); });
}
double P__c_v(double c, double v, guess T) {
    const double solved = T__c_v(c, v, T);
    return after_solve([&] { return P__T_v(solved, v); });
}
double P__h_v(double h, double v, guess T) {
    const double solved = T__h_v(h, v, T);
    return after_solve([&] { return P__T_v(solved, v); });
}
double e__P_v(double P, double v, guess T) {
    const double solved = T__P_v(P, v, T);
    return after_solve([&] { return e__T_v(solved, v); });
}
double s__P_v(double P, double v, guess T) {
    const double solved = T__P_v(P, v, T);
    return after_solve([&] { return s__T_v(solved, v); });
}

} // namespace thermodynamics
