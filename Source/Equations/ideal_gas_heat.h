// SPDX-License-Identifier: MIT
// The ideal-gas heat capacity and its integrals.
//
// Computes   cv(T) in five forms, dcv/dT, phi = integral of cv dT and psi = integral of cv/T dT
// Equation   1 cv_0   2 cv_oo_Tc (T/Tc)^np   3 cv_0 + sum a_i T^n_i   4 form 3 in each temperature interval
//            5 cv_0 + Rgas sum E(Tv_k/T), E(x) = x^2 e^x/(e^x - 1)^2
// Given      T [K], or the reduced temperature t = T/T_ref
// Returned   SI units, or for a reduced temperature phi [P_ref v_ref] and psi [Rgas]
// Valid      T > 0. Form 4 is 0 at the bounds of its intervals and outside them. A term with the exponent -1
//            divides by zero in phi, and one with the exponent 0 in psi
// Accuracy   rounding of the sums. In form 5 a term with Tv_k << T has a relative error of about eps T/Tv_k in cv, phi
//            and psi, and of eps (T/Tv_k)^2 in dcv/dT
// Reference  A. Einstein, Ann. Phys. 22 (1907) 180
#pragma once

#include "Equations/gas_constants.h"
#include "visibility.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <vector>

namespace ideal_gas_heat {

/// The forms, by their codes in parameter files.
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

/// The units are those after initialisation.
struct heat_capacity {
    bool coeff_adim = false;        ///< whether the file has coefficients in Rgas, T_k and Tv in T_ref
    std::int32_t function_type = 0; ///< one of `form`; with any other code every result is 0
    double cv_0 = 0;                ///< forms 1, 3, 5 [J/(kg K)]
    double cv_oo_Tc = 0;            ///< form 2, cv at Tc [J/(kg K)]
    double np = 0;                  ///< form 2, exponent [-]
    double Tc = 0;                  ///< form 2 [K]
    std::vector<double> a_i, n_i;   ///< form 3, coefficients [J/(kg K) per K^n_i] and exponents [-]
    std::vector<double> T_k;        ///< form 4, the K lower bounds and the last upper bound [K]
    std::vector<double> cv_0_k;     ///< form 4, constant term of each interval [J/(kg K)]
    std::vector<std::int32_t> n_k;  ///< form 4, number of power terms of each interval
    std::size_t terms = 0;          ///< form 4, M, the largest n_k, is the number of rows of a_ik and n_ik
    std::vector<double> a_ik, n_ik; ///< form 4, interval k in column k, M rows
    std::vector<double> phi0_k;     ///< form 4, constants that make phi continuous [J/kg]
    std::vector<double> psi0_k;     ///< form 4, constants that make psi continuous [J/(kg K)]
    std::vector<double> Tv;         ///< form 5, characteristic temperatures [K]
    std::vector<double> counts;     ///< form 5, how often each of Tv counts; empty if each counts once, as in files
    double Rgas = 0;                ///< specific gas constant [J/(kg K)]
    double T_ref = 0;               ///< [K]
    double P_ref = 0;               ///< [Pa]
    double v_ref = 0;               ///< [m3/kg]
};

// The algebra, with T in K.

inline double real_part(double x) {
    return x;
}
inline long double real_part(long double x) {
    return x;
}
inline double real_part(const std::complex<double> &x) {
    return x.real();
}

/// The functions of the ideal gas at one temperature.
template <class Real>
struct caloric {
    Real phi{}; ///< energy [J/kg]
    Real psi{}; ///< entropy [J/(kg K)]
    Real cv{};  ///< isochoric heat capacity [J/(kg K)]
    Real dcv{}; ///< dcv/dT [J/(kg K2)]
};

/// T^n. Most exponents are small whole numbers, for which products are much faster than pow.
template <class Real>
Real power(Real T, double n) {
    using std::pow;
    if (n == 1)
        return T;
    if (n == 2)
        return T * T;
    if (n == 3)
        return T * T * T;
    if (n == 4)
        return (T * T) * (T * T);
    return pow(T, static_cast<decltype(real_part(T))>(n));
}

/// A constant and `count` power terms, with their coefficients and exponents.
struct powers {
    double constant;
    const double *coefficient;
    const double *exponent;
    std::size_t count;

    /// phi_0 and psi_0 are the constants of integration.
    template <class Real>
    OSTREL_INLINE caloric<Real> at(Real T, double phi_0 = 0, double psi_0 = 0) const {
        using std::log;
        caloric<Real> sum = {constant * T + phi_0, constant * log(T) + psi_0, Real(constant), Real(0)};
        for (std::size_t i = 0; i < count; ++i) {
            const double n = exponent[i];
            const Real term = coefficient[i] * power(T, n);
            sum.phi += term * T / (n + 1);
            sum.psi += term / n;
            sum.cv += term;
            sum.dcv += n * term / T;
        }
        return sum;
    }
};

/// The power terms of form 3.
inline powers polynomial_terms(const heat_capacity &h) {
    return {h.cv_0, h.a_i.data(), h.n_i.data(), h.a_i.size()};
}

/// The power terms of interval k of form 4; k starts at 0.
inline powers interval_terms(const heat_capacity &h, std::size_t k) {
    const auto wanted = static_cast<std::size_t>(std::max(h.n_k[k], 0));
    return {h.cv_0_k[k], h.a_ik.data() + k * h.terms, h.n_ik.data() + k * h.terms, std::min(wanted, h.terms)};
}

/// The last interval of form 4 with T strictly between its bounds; the number of intervals if there is none.
template <class Real>
std::size_t interval_of(const heat_capacity &h, Real T) {
    const std::size_t count = h.cv_0_k.size();
    std::size_t found = count;
    for (std::size_t k = 0; k < count; ++k)
        if (h.T_k[k] < real_part(T) && real_part(T) < h.T_k[k + 1])
            found = k;
    return found;
}

/// Form 5. Every part is computed from e^(-|x|), so that a term with T << Tv is 0 and not inf/inf. Characteristic
/// temperatures that are equal and follow each other are computed as one term times their number.
template <class Real>
OSTREL_INLINE caloric<Real> einstein_terms(const heat_capacity &h, Real T) {
    using std::exp;
    using std::log;
    caloric<Real> sum;
    for (std::size_t i = 0; i < h.Tv.size();) {
        const double Tv = h.Tv[i];
        double count = 0;
        if (h.counts.empty()) {
            do {
                ++count;
                ++i;
            } while (i < h.Tv.size() && h.Tv[i] == Tv);
        } else {
            count = h.counts[i++];
        }
        const Real signed_x = Tv / T;
        const bool below_zero = real_part(signed_x) < 0;
        const Real x = below_zero ? -signed_x : signed_x;
        const Real decay = exp(-x);
        if (decay == Real(0)) {
            // The term vanishes. Below T = 0, however, 1/(e^x - 1) is -1 and the entropy is a NaN.
            if (below_zero) {
                sum.phi += Real(-count * Tv);
                sum.psi += log(signed_x);
            }
            continue;
        }
        const Real rise = Real(1) - decay;
        const Real occupation = (below_zero ? Real(-1) : decay) / rise; // 1/(e^x - 1)
        const Real weight = count * decay / (rise * rise);              // e^x/(e^x - 1)^2
        sum.phi += count * (Tv * occupation);
        sum.psi += count * (signed_x * occupation - log(below_zero ? Real(1) - Real(1) / decay : rise));
        sum.cv += weight * x * x;
        sum.dcv += weight * (Tv * Tv / (T * T * T) * (Real(2) * x / rise - Real(2) - x));
    }
    return {h.cv_0 * T + h.Rgas * sum.phi, h.cv_0 * log(T) + h.Rgas * sum.psi, h.cv_0 + h.Rgas * sum.cv,
            h.Rgas * sum.dcv};
}

/// All functions, by the form in use. They are 0 for an unknown form, and for form 4 outside its intervals.
template <class Real>
OSTREL_INLINE caloric<Real> everything(const heat_capacity &h, Real T) {
    using std::log;
    using std::pow;
    switch (h.function_type) {
    case constant:
        return {h.cv_0 * T, h.cv_0 * log(T), Real(h.cv_0), Real(0)};
    case power_law: {
        const Real cv = h.cv_oo_Tc * pow(T / h.Tc, Real(h.np));
        return {cv * T / (h.np + 1), cv / h.np, cv, h.np * cv / T};
    }
    case polynomial:
        return polynomial_terms(h).at(T);
    case piecewise: {
        const std::size_t k = interval_of(h, T);
        return k < h.cv_0_k.size() ? interval_terms(h, k).at(T, h.phi0_k[k], h.psi0_k[k]) : caloric<Real>{};
    }
    case einstein:
        return einstein_terms(h, T);
    default:
        return {};
    }
}

/// The functions that a caller wants are a sum of these.
enum wanted : unsigned { energy = 1, entropy = 2, heat = 4, heat_slope = 8 };

/// The functions `these` at T [K], from one pass over the terms. The others are not computed and stay 0.
template <unsigned these, class Real>
caloric<Real> evaluate(const heat_capacity &h, Real T) {
    const caloric<Real> all = everything(h, T);
    caloric<Real> result;
    if constexpr ((these & energy) != 0)
        result.phi = all.phi;
    if constexpr ((these & entropy) != 0)
        result.psi = all.psi;
    if constexpr ((these & heat) != 0)
        result.cv = all.cv;
    if constexpr ((these & heat_slope) != 0)
        result.dcv = all.dcv;
    return result;
}

/// Isochoric heat capacity at T [K] in J/(kg K).
template <class Real>
Real cv(const heat_capacity &h, Real T) {
    return evaluate<heat>(h, T).cv;
}

/// The reduced functions at t = T/T_ref: phi [P_ref v_ref], psi [Rgas], dphi/dt and d2phi/dt2.
template <unsigned these, class Real>
caloric<Real> evaluate_reduced(const heat_capacity &h, Real t) {
    const auto [phi, psi, cv, dcv] = evaluate<these>(h, t * h.T_ref);
    const double energy_unit = h.P_ref * h.v_ref;
    return {phi / energy_unit, psi / h.Rgas, cv * h.T_ref / energy_unit, dcv * (h.T_ref * h.T_ref) / energy_unit};
}
template <class Real>
Real phi_reduced(const heat_capacity &h, Real t) {
    return evaluate_reduced<energy>(h, t).phi;
}
template <class Real>
Real phip_reduced(const heat_capacity &h, Real t) {
    return evaluate_reduced<heat>(h, t).cv;
}
template <class Real>
Real phipp_reduced(const heat_capacity &h, Real t) {
    return evaluate_reduced<heat_slope>(h, t).dcv;
}
template <class Real>
Real psi_reduced(const heat_capacity &h, Real t) {
    return evaluate_reduced<entropy>(h, t).psi;
}

/// Makes the coefficients dimensional, and sets the interval constants of form 4 and the fluid's reference heat
/// capacities; call it once after each reading. For form 2 without critical data it reports, and sets none of them.
void initialise(heat_capacity &h, equations::gas_constants &fluid, records::error_text &message);

/// Counts characteristic temperatures that are equal and follow each other, so that they are no longer compared at each
/// evaluation. The results keep their bits; write() must not follow.
void count_equal_terms(heat_capacity &h);

/// Reads the section of a parameter file.
void read(records::record_reader &in, heat_capacity &h);
/// Writes the values in memory: after an initialisation they are dimensional, even if coeff_adim is true.
void write(records::record_writer &out, const heat_capacity &h);

} // namespace ideal_gas_heat
