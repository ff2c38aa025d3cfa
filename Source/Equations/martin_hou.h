// SPDX-License-Identifier: MIT
// The Martin-Hou equation, gas_type 3 (module martin_hou_gas).
//
// Equation   P = Rgas T/(v - b) + sum over i = 1..4 of (A_i + B_i T + C_i exp(-kk T))/(v - b)^(i+1)
// Given      reduced T [T_ref], v [v_ref]; the coefficients follow from Zc, Pc, Tc and Tb, not from the file
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b. The equation is made for densities up to 1.5 times the critical density
//            and meets the critical point exactly. A_4, B_3 and C_3 are always zero. Tb >= Tc, Zc = 0 or a zero
//            denominator gives infinite or NaN coefficients, without a message
// Reference  J. J. Martin, Y.-C. Hou, AIChE J. 1 (1955) 142; J. J. Martin, R. M. Kapoor, N. De Nevers,
//            AIChE J. 5 (1959) 159
#pragma once

#include "Equations/separated_attraction.h"

namespace equations {

struct martin_hou {
    static constexpr std::size_t terms = 4;
    double Rgas = 0;
    double b = 0;
    std::array<double, 4> aa{};
    std::array<double, 4> bb{};
    std::array<double, 4> cc{};
    double kk = 0;
    double beta = 0;

    double covolume() const { return b; }
    double repulsion() const { return Rgas; }

    /// q_i = A_i + B_i T + C_i exp(-kk T)
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> q(Real T) const {
        using std::exp;
        const Real E = exp(-kk * T);
        separated_attraction::factors<Real, terms> result;
        separated_attraction::for_each_index<terms>([&](std::size_t i) {
            result[i] = {aa[i] + T * bb[i] + E * cc[i], bb[i] - kk * E * cc[i], kk * kk * E * cc[i],
                         -kk * kk * kk * E * cc[i]};
        });
        return result;
    }
    /// f_i = -1/(i (v - b)^i)
    template <class Real>
    OSTREL_INLINE separated_attraction::factors<Real, terms> f(Real v) const {
        const Real r = 1.0 / (v - b);
        separated_attraction::factors<Real, terms> result;
        Real power = r; // r^i
        separated_attraction::for_each_index<terms>([&](std::size_t k) {
            const auto i = static_cast<double>(k + 1);
            result[k] = {-power / i, power * r, -(i + 1.0) * (power * (r * r)),
                         (i + 1.0) * (i + 2.0) * (power * (r * r * r))};
            power *= r;
        });
        return result;
    }
};

/// The coefficients for v/vc and T/Tc, from Zc [-], Pc [Pa], Tc [K] and Tb [K], by the construction of Martin and Hou:
/// the critical conditions hold; the slope of the critical isometric follows from Tb as Riedel found; the isometrics at
/// vc and vc/2 are straight; the second virial coefficient vanishes at the Boyle temperature m; in a chart of P v/(R T)
/// over P the isotherm at tau starts in the direction of the critical point. m and tau are in units of Tc.
inline void compute_coefficients(martin_hou &p, double Zc, double Pc, double Tc, double Tb) {
    constexpr double exponent = 5.475;
    constexpr double exponential_at_Tc = 0.004190228549984579;
    p.beta = (20.533 - 31.883 * Zc) * Zc;
    const double theta = Tb / Tc;
    const double z = 1.0 / Zc;
    const double b = 1.0 - p.beta / (15.0 * Zc);
    p.b = b;
    const double m = (9.654921 / Tc + 2.505308) - 0.0006492324 * Tc;
    const double tau = 0.9869 - 0.6751 * Zc;
    const double d = 1.0 - b;
    const double d2 = d * d;
    const double G = (9.0 * d - 3.8 * z) * d;
    const double X = (-35.0 - std::pow(theta, 6)) + 36.0 / theta + 42.0 * std::log(theta);
    const double H = z * m * b + G;
    const double Em = exponential_at_Tc - std::exp(-exponent * m);
    const double Etau = exponential_at_Tc - std::exp(-exponent * tau);
    const double h = 0.5 - b;
    const double C1 = ((((1.0 - Zc) * z * tau + b) * z * tau + G) * (m - 1.0) - (tau - 1.0) * H) /
                      (Etau * (m - 1.0) - (tau - 1.0) * Em);
    const double B1 = (-H + Em * C1) / (m - 1.0);
    const double C2 = ((d * d2 - h * h * h) * C1) / (h * h - d2);
    const double C4 = -(d * d2 * C1) - d2 * C2;
    const double B4 = (0.8 * z - 3.0 * d) * d2 * d2 + (0.0 - C4 * exponential_at_Tc);
    const double B2 =
        ((((0.315 * X - std::log(pascal_per_atm / Pc)) / (0.0838 * X - std::log(theta))) * d - z) * d + (0.0 - B1)) *
            d +
        (0.0 - B4 / d2);
    p.aa = {(G - C1 * exponential_at_Tc) - B1, (5.4 * z - 17.0 * d) * d * d + ((0.0 - C2 * exponential_at_Tc) - B2),
            12.0 * d2 * d2 - 3.4 * d * d * d * z, 0.0};
    p.bb = {B1, B2, 0.0, B4};
    p.cc = {C1, C2, 0.0, C4};
    p.kk = exponent;
}

/// Turns the coefficients for v/vc and T/Tc into those for v [m3/kg], T [K] and P [Pa]; here Rgas is in J/(kg K).
inline void make_dimensional(martin_hou &p, double Zc, double Pc, double Tc) {
    const double vc = p.Rgas * Tc * Zc / Pc;
    double scale = Pc * vc; // Pc vc^(i+1)
    for (std::size_t i = 0; i < martin_hou::terms; ++i) {
        scale *= vc;
        p.aa[i] *= scale;
        p.bb[i] *= scale / Tc;
        p.cc[i] *= scale;
    }
    p.b *= vc;
    p.kk /= Tc;
}

/// Derives the coefficients; reports a fluid without critical data.
inline void initialise(martin_hou &p, gas_constants &fluid, records::error_text &message) {
    if (lacks_critical_data(fluid, "Martin-Hou model is not applicable. ", "In init_MHG, module martin_hou_gas.",
                            message))
        return;
    const double Zc = fluid.Zc;
    set_critical_reference(fluid, fluid.R * fluid.Tc * Zc / fluid.Pc, Zc);
    compute_coefficients(p, Zc, fluid.Pc, fluid.Tc, fluid.Tb);
    for (double &B : p.bb)
        B *= Zc;
    p.kk *= Zc;
    p.Rgas = 1.0;
}

} // namespace equations
