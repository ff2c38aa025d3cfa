// SPDX-License-Identifier: MIT
#include "Thermodynamics/martin_hou_gas.h"

namespace martin_hou_gas {

parameters active;

namespace {

constexpr double exponent = 5.475;
constexpr double exponential_at_Tc = 0.004190228549984579;

/// The construction of Martin and Hou: critical conditions; the critical isometric's slope after Riedel, from Tb;
/// straight isometrics at vc and vc/2; at the Boyle temperature m no second virial coefficient, and at tau an initial
/// slope of the isotherm towards the critical point (m and tau in units of Tc).
void compute(parameters &p, double Zc, double Pc, double Tc, double Tb) {
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
        ((((0.315 * X - std::log(gas_properties::pascal_per_atm / Pc)) / (0.0838 * X - std::log(theta))) * d - z) * d +
         (0.0 - B1)) *
            d +
        (0.0 - B4 / d2);
    p.aa = {(G - C1 * exponential_at_Tc) - B1, (5.4 * z - 17.0 * d) * d * d + ((0.0 - C2 * exponential_at_Tc) - B2),
            12.0 * d2 * d2 - 3.4 * d * d * d * z, 0.0};
    p.bb = {B1, B2, 0.0, B4};
    p.cc = {C1, C2, 0.0, C4};
    p.kk = exponent;
}

} // namespace

void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message) {
    if (!fluid.vapor) {
        report_not_a_vapor(message, fluid, "Martin-Hou model is not applicable. ",
                           "In init_MHG, module martin_hou_gas.");
        return;
    }
    const double Zc = fluid.Zc;
    set_critical_reference(fluid, fluid.R * fluid.Tc * Zc / fluid.Pc, Zc);
    compute(p, Zc, fluid.Pc, fluid.Tc, fluid.Tb);
    for (double &B : p.bb)
        B *= Zc;
    p.kk *= Zc;
    p.Rgas = 1.0;
}

void compute_coeff_adim(double Zc, double Pc, double Tc, double Tb) {
    compute(active, Zc, Pc, Tc, Tb);
}

void compute_coeff_dim(double Zc, double Pc, double Tc, double Tb) {
    compute(active, Zc, Pc, Tc, Tb);
    const double vc = active.Rgas * Tc * Zc / Pc;
    double scale = Pc * vc; // Pc vc^(i+1)
    for (std::size_t i = 0; i < parameters::terms; ++i) {
        scale *= vc;
        active.aa[i] *= scale;
        active.bb[i] *= scale / Tc;
        active.cc[i] *= scale;
    }
    active.b *= vc;
    active.kk /= Tc;
}

void Q_f__T_v__MHG(double T, double v, std::array<std::array<double, 4>, 4> &q,
                   std::array<std::array<double, 4>, 4> &f) {
    q = active.q(T);
    f = active.f(v);
}

OSTREL_NO_PARAMETERS(MHG)
OSTREL_DEFINE_MODEL(MHG)

} // namespace martin_hou_gas
