// SPDX-License-Identifier: MIT
// Module ideal_specific_heat: the ideal-gas heat capacity and its integrals.
//
// Computes   cv(T) in five forms, phi = integral of cv dT, psi = integral of cv/T dT, dcv/dT
// Equation   1 cv_0   2 cv_oo_Tc (T/Tc)^np   3 cv_0 + sum a_i T^n_i   4 the same per temperature interval
//            5 cv_0 + Rgas sum E(Tv_k/T), E(x) = x^2 e^x/(e^x - 1)^2
// Given      reduced temperature t = T/T_ref; phi and psi are returned in units of P_ref v_ref and of Rgas
// Valid      T > 0. Form 4 is 0 at and outside its bounds; exponents -1 (phi) and 0 (psi) divide by zero
// Accuracy   rounding of the sums; in form 5 the terms with Tv_k << T are good to about eps T/Tv_k in cv, phi
//            and psi and to eps (T/Tv_k)^2 in dcv/dT
// Reference  A. Einstein, Ann. Phys. 22 (1907) 180
#pragma once

#include "Thermodynamics/gas_properties.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <vector>

namespace ideal_specific_heat {

/// The forms by their code in parameter files.
enum form : std::int32_t { constant = 1, power_law = 2, polynomial = 3, piecewise = 4, einstein = 5 };

struct described_form {
    form code;
    std::string_view name;
    std::string_view equation;
};
inline constexpr described_form forms[] = {
    {constant, "constant", "cv = cv_0"},
    {power_law, "power law", "cv = cv_oo_Tc (T/Tc)^np"},
    {polynomial, "sum of powers", "cv = cv_0 + sum a_i T^n_i"},
    {piecewise, "sums of powers by temperature interval",
     "cv = cv_0_k + sum a_ik T^n_ik for T_k < T < T_(k+1), else 0"},
    {einstein, "constant and Einstein terms", "cv = cv_0 + R sum x^2 e^x/(e^x - 1)^2, x = Tv/T"},
};

/// Units are those after initialisation.
struct heat_capacity {
    bool coeff_adim = false;        ///< coefficients in units of Rgas, temperatures in units of T_ref
    std::int32_t function_type = 0; ///< one of `form`; anything else makes every result 0
    double cv_0 = 0;                ///< forms 1, 3, 5 [J/(kg K)]
    double cv_oo_Tc = 0;            ///< form 2, cv at Tc [J/(kg K)]
    double np = 0;                  ///< form 2, exponent [-]
    double Tc = 0;                  ///< form 2 [K]
    std::vector<double> a_i, n_i;   ///< form 3, coefficients [J/(kg K) per K^n_i] and exponents [-]
    std::vector<double> T_k;        ///< form 4, K lower bounds and the last upper one [K]
    std::vector<double> cv_0_k;     ///< form 4, constant term of each interval [J/(kg K)]
    std::vector<std::int32_t> n_k;  ///< form 4, number of power terms of each interval
    std::size_t terms = 0;          ///< form 4, M = the largest n_k: the rows of a_ik and n_ik
    std::vector<double> a_ik, n_ik; ///< form 4, interval k in column k, M rows
    std::vector<double> phi0_k;     ///< form 4, makes phi continuous [J/kg]
    std::vector<double> psi0_k;     ///< form 4, makes psi continuous [J/(kg K)]
    std::vector<double> Tv;         ///< form 5, characteristic temperatures [K]
    double Rgas = 0;                ///< specific gas constant [J/(kg K)]
    double T_ref = 0;               ///< [K]
    double P_ref = 0;               ///< [Pa]
    double v_ref = 0;               ///< [m3/kg]
};

// The pure algebra, T dimensional.

inline double real_part(double x) {
    return x;
}
inline long double real_part(long double x) {
    return x;
}
inline double real_part(const std::complex<double> &x) {
    return x.real();
}

/// x or -x, whichever has a positive real part.
template <class Real>
Real magnitude(Real x) {
    return real_part(x) < 0 ? -x : x;
}

/// A sum of power terms: n exponents and coefficients.
struct powers {
    double constant;
    const double *coefficient;
    const double *exponent;
    std::size_t count;

    template <class Real>
    Real cv(Real T) const {
        return sum(Real(constant), [&](double a, double n) { return a * pow(T, n); });
    }
    template <class Real>
    Real dcv(Real T) const {
        return sum(Real(0), [&](double a, double n) { return n * a * pow(T, n - 1); });
    }
    /// With `offset` as the constant of integration; so psi.
    template <class Real>
    Real phi(Real T, double offset = 0) const {
        return sum(constant * T + offset, [&](double a, double n) { return a * pow(T, n + 1) / (n + 1); });
    }
    template <class Real>
    Real psi(Real T, double offset = 0) const {
        using std::log;
        return sum(constant * log(T) + offset, [&](double a, double n) { return a * pow(T, n) / n; });
    }

private:
    template <class Real>
    static Real pow(Real T, double n) {
        using std::pow;
        return pow(T, static_cast<decltype(real_part(T))>(n));
    }
    template <class Real, class Term>
    Real sum(Real result, Term term) const {
        for (std::size_t i = 0; i < count; ++i)
            result += term(coefficient[i], exponent[i]);
        return result;
    }
};

/// The power terms of form 3.
inline powers polynomial_terms(const heat_capacity &h) {
    return {h.cv_0, h.a_i.data(), h.n_i.data(), h.a_i.size()};
}

/// The power terms of interval k of form 4, k from 0.
inline powers interval_terms(const heat_capacity &h, std::size_t k) {
    const auto wanted = static_cast<std::size_t>(std::max(h.n_k[k], 0));
    return {h.cv_0_k[k], h.a_ik.data() + k * h.terms, h.n_ik.data() + k * h.terms, std::min(wanted, h.terms)};
}

/// The last interval of form 4 that holds T strictly between its bounds, or the number of intervals.
template <class Real>
std::size_t interval_of(const heat_capacity &h, Real T) {
    const std::size_t count = h.cv_0_k.size();
    std::size_t found = count;
    for (std::size_t k = 0; k < count; ++k)
        if (h.T_k[k] < real_part(T) && real_part(T) < h.T_k[k + 1])
            found = k;
    return found;
}

/// A sum over the Einstein terms, each given Tv and x = Tv/T.
template <class Real, class Term>
Real einstein_sum(const heat_capacity &h, Real T, Term term) {
    Real result = 0;
    for (const double Tv : h.Tv)
        result += term(Tv, Tv / T);
    return result;
}

/// The same with each term, given Tv, |x| and 1 - e^(-|x|), times e^x/(e^x - 1)^2. This even function is multiplied
/// through by e^(-2|x|), so that a term far below its temperature is 0 instead of inf/inf.
template <class Real, class Term>
Real damped_einstein_sum(const heat_capacity &h, Real T, Term term) {
    using std::exp;
    return einstein_sum(h, T, [&](double Tv, Real signed_x) {
        const Real x = magnitude(signed_x);
        const Real decay = exp(-x);
        const Real rise = Real(1) - decay;
        return decay == Real(0) ? decay : decay / (rise * rise) * term(Tv, x, rise);
    });
}

/// Isochoric heat capacity at T [K] in J/(kg K).
template <class Real>
Real cv(const heat_capacity &h, Real T) {
    using std::pow;
    switch (h.function_type) {
    case constant:
        return Real(h.cv_0);
    case power_law:
        return h.cv_oo_Tc * pow(T / h.Tc, Real(h.np));
    case polynomial:
        return polynomial_terms(h).cv(T);
    case piecewise: {
        const std::size_t k = interval_of(h, T);
        return k < h.cv_0_k.size() ? interval_terms(h, k).cv(T) : Real(0);
    }
    case einstein:
        return h.cv_0 + h.Rgas * damped_einstein_sum(h, T, [](double, Real x, Real) { return x * x; });
    default:
        return Real(0);
    }
}

/// dcv/dT at T [K] in J/(kg K2).
template <class Real>
Real dcv(const heat_capacity &h, Real T) {
    using std::pow;
    switch (h.function_type) {
    case power_law:
        return h.np * h.cv_oo_Tc * pow(T / h.Tc, Real(h.np - 1)) / h.Tc;
    case polynomial:
        return polynomial_terms(h).dcv(T);
    case piecewise: {
        const std::size_t k = interval_of(h, T);
        return k < h.cv_0_k.size() ? interval_terms(h, k).dcv(T) : Real(0);
    }
    case einstein:
        return h.Rgas * damped_einstein_sum(h, T, [&](double Tv, Real x, Real rise) {
                   return Tv * Tv / (T * T * T) * (Real(2) * x / rise - Real(2) - x);
               });
    default:
        return Real(0);
    }
}

/// Caloric energy at T [K] in J/kg.
template <class Real>
Real phi(const heat_capacity &h, Real T) {
    using std::exp;
    using std::pow;
    switch (h.function_type) {
    case constant:
        return h.cv_0 * T;
    case power_law:
        return h.Tc * pow(T / h.Tc, Real(h.np + 1)) * h.cv_oo_Tc / (h.np + 1);
    case polynomial:
        return polynomial_terms(h).phi(T);
    case piecewise: {
        const std::size_t k = interval_of(h, T);
        return k < h.cv_0_k.size() ? interval_terms(h, k).phi(T, h.phi0_k[k]) : Real(0);
    }
    case einstein:
        return h.cv_0 * T + h.Rgas * einstein_sum(h, T, [](double Tv, Real x) { return Tv / (exp(x) - Real(1)); });
    default:
        return Real(0);
    }
}

/// Caloric entropy at T [K] in J/(kg K).
template <class Real>
Real psi(const heat_capacity &h, Real T) {
    using std::exp;
    using std::log;
    using std::pow;
    switch (h.function_type) {
    case constant:
        return h.cv_0 * log(T);
    case power_law:
        return pow(T / h.Tc, Real(h.np)) * h.cv_oo_Tc / h.np;
    case polynomial:
        return polynomial_terms(h).psi(T);
    case piecewise: {
        const std::size_t k = interval_of(h, T);
        return k < h.cv_0_k.size() ? interval_terms(h, k).psi(T, h.psi0_k[k]) : Real(0);
    }
    case einstein:
        return h.cv_0 * log(T) + h.Rgas * einstein_sum(h, T, [](double, Real x) {
                                     return x / (exp(x) - Real(1)) - log(Real(1) - exp(-x));
                                 });
    default:
        return Real(0);
    }
}

/// The four functions the models are built on, t = T/T_ref: phi, dphi/dt, d2phi/dt2 and psi.
template <class Real>
Real phi_reduced(const heat_capacity &h, Real t) {
    return phi(h, t * h.T_ref) / (h.P_ref * h.v_ref);
}
template <class Real>
Real phip_reduced(const heat_capacity &h, Real t) {
    return cv(h, t * h.T_ref) * h.T_ref / (h.P_ref * h.v_ref);
}
template <class Real>
Real phipp_reduced(const heat_capacity &h, Real t) {
    return dcv(h, t * h.T_ref) * (h.T_ref * h.T_ref) / (h.P_ref * h.v_ref);
}
template <class Real>
Real psi_reduced(const heat_capacity &h, Real t) {
    return psi(h, t * h.T_ref) / h.Rgas;
}

/// Makes freshly read coefficients dimensional, sets the interval constants of form 4 and the fluid's
/// reference heat capacities. Form 2 on a fluid without critical data reports and does nothing else.
void initialise(heat_capacity &h, gas_properties::gas_constants &fluid, records::error_text &message);

} // namespace ideal_specific_heat

// The module: one heat capacity and the shared error text.
namespace ideal_specific_heat OSTREL_VISIBLE {

extern heat_capacity active;
extern records::error_text errmsg;

/// Ideal-gas cv at T [K] in J/(kg K).
double cv_oo__Tdim(double T);
/// Caloric energy at t [T_ref] in units of P_ref v_ref.
double phi__T(double t);
/// dphi/dt: ideal-gas cv at t [T_ref] in units of P_ref v_ref/T_ref.
double phip__T(double t);
/// d2phi/dt2 at t [T_ref].
double phipp__T(double t);
/// Caloric entropy at t [T_ref] in units of Rgas.
double psi__T(double t);

void read_param_ideal_specific_heat(records::file_reader &unit);
void read_param_ideal_specific_heatdb(records::line_reader &lines);
/// Writes what is in memory: after an initialisation dimensional values, also where coeff_adim is true.
void write_param_ideal_specific_heat(records::record_writer &unit);
/// Initialises the module for the active fluid; each reading is followed by exactly one call.
void init_ideal_specific_heat();

} // namespace ideal_specific_heat
