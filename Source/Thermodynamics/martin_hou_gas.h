// SPDX-License-Identifier: MIT
// Module martin_hou_gas: the Martin-Hou equation, gas_type 3.
//
// Equation   P = Rgas T/(v - b) + sum over i = 1..4 of (A_i + B_i T + C_i exp(-kk T))/(v - b)^(i+1)
// Given      reduced T [T_ref], v [v_ref]; the coefficients follow from Zc, Pc, Tc and Tb, no file parameters
// Returned   P [P_ref], e [P_ref v_ref], s and cv [R], and their derivatives
// Valid      fluids with critical data, v > b; made for densities up to 1.5 times the critical one. The
//            critical point is met exactly; A_4, B_3 and C_3 are zero by construction. Tb >= Tc, Zc = 0 or a
//            zero denominator gives infinite or NaN coefficients without a message
// Reference  J. J. Martin, Y.-C. Hou, AIChE J. 1 (1955) 142; J. J. Martin, R. M. Kapoor, N. De Nevers,
//            AIChE J. 5 (1959) 159
#pragma once

#include "Thermodynamics/operations.h"

namespace martin_hou_gas OSTREL_VISIBLE {

struct parameters {
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

/// Derives the coefficients; reports a fluid without critical data.
void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message);

extern parameters active;
OSTREL_DECLARE_MODEL(MHG)
void Q_f__T_v__MHG(double T, double v, std::array<std::array<double, 4>, 4> &q,
                   std::array<std::array<double, 4>, 4> &f);

/// The coefficients in v/vc and T/Tc from Zc [-], Pc [Pa], Tc [K] and Tb [K].
void compute_coeff_adim(double Zc, double Pc, double Tc, double Tb);
/// The coefficients in v [m3/kg] and T [K], P in Pa, for the specific gas constant in `active.Rgas` [J/(kg K)].
void compute_coeff_dim(double Zc, double Pc, double Tc, double Tb);

} // namespace martin_hou_gas
