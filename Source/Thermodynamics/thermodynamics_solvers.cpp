// SPDX-License-Identifier: MIT
// Inverse solvers: the searches of plain_newton.h on the active equation of state, with their default first values and
// their messages.
#include "Thermodynamics/model_choice.h"
#include "Thermodynamics/plain_newton.h"

#include <cmath>

namespace thermodynamics {

using gas_properties::gas;
using ideal_specific_heat::errmsg;
using namespace state_quantities;

namespace {

/// The result of a search on the active equation, which reports a failure; without a model it is the first value.
template <class Search>
double searched(double first_value, std::string_view failure, Search search) {
    const plain_newton::result found = with_model(search, [&] { return plain_newton::result{first_value, true}; });
    if (!found.converged)
        errmsg.report({failure});
    return found.x;
}

template <class Quantity>
double solve_T(double target, double v, double T, std::string_view failure) {
    return searched(T, failure,
                    [&](const auto &equation) { return plain_newton::in_T<Quantity>(equation, target, v, T); });
}

template <class Quantity>
double solve_v(double target, double T, double v, std::string_view failure) {
    return searched(v, failure,
                    [&](const auto &equation) { return plain_newton::in_v<Quantity>(equation, target, T, v); });
}

template <class First, class Second>
double solve_T_v(double target1, double target2, double T, double v, std::string_view failure) {
    return searched(v, failure, [&](const auto &equation) {
        return plain_newton::in_T_v<First, Second>(equation, target1, target2, T, v);
    });
}

// Default first values: those of an ideal gas with R = 1 and the heat capacity of the reference point.
double T_of_h(double h) {
    return (h - gas.e_0) / (gas.cv_ref + 1.0);
}
double v_of_s_T(double s, double T) {
    return std::exp(s - gas.s_0 - ideal_specific_heat::psi__T(T));
}

/// The evaluation after a search, or 0 if a message stands.
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
