// SPDX-License-Identifier: MIT
// Dynamic viscosity and thermal conductivity.
//
// Equation   viscosity: 1 a constant, 2 Chung's dilute gas, 3 Chung's dense gas, 4 corresponding states, 5 Sutherland's
//            law, 6 linear in T; conductivity: 1 a constant, 2 and 3 as for viscosity, 4 a constant Prandtl number
// Given      T [K] and v [m3/kg]
// Returned   viscosity [Pa s] and conductivity [W/(m K)] in the published form. In the form of the entry points Chung's
//            models give other units:
//              viscosity 2         the unit is 0.1 Pa s
//              conductivity 2, 3   the unit is 17.506 W/(m K); 2 with a viscosity other than 2: 175.06 W/(m K)
// Valid      Chung's models need critical data, and for the dense gas v > vc/6; at vc/6 they divide by zero.
//            In the form of the entry points conductivity 3 needs viscosity 3: without it the part of the dilute gas is
//            missing. Hosts rely on these units, on the missing part and on the sine of that form: do not mend them
// Accuracy   rounding, also as the density vanishes, but not at v = infinity. The published form: 4 % in viscosity and
//            6 % in conductivity. In the form of the entry points a model with a larger Zc than the fluid lowers the
//            dilute gas by (Zc of the fluid/Zc)^(2/3); the sine changes the collision integral by up to 0.2 %
// Reference  T.-H. Chung, M. Ajlan, L. L. Lee, K. E. Starling, Ind. Eng. Chem. Res. 27 (1988) 671; P. D. Neufeld,
//            A. R. Janzen, R. A. Aziz, J. Chem. Phys. 57 (1972) 1100; L. I. Stiel, G. Thodos, AIChE J. 7 (1961) 611;
//            W. Sutherland, Phil. Mag. 36 (1893) 507
#pragma once

#include "Equations/gas_constants.h"
#include "Equations/ideal_gas_heat.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <span>

namespace transport {

/// The models, by their codes in parameter files.
enum viscosity_code : std::int32_t {
    constant_viscosity = 1,
    dilute_gas = 2,
    dense_gas = 3,
    corresponding_states = 4,
    sutherland_law = 5,
    linear_law = 6
};
enum conductivity_code : std::int32_t {
    constant_conductivity = 1,
    dilute_gas_conductivity = 2,
    dense_gas_conductivity = 3,
    constant_Prandtl = 4
};

struct parameters {
    std::int32_t viscosity_model = 0;
    std::int32_t thermal_cond_model = 0;
    double mu_const = 0; ///< constant viscosity [Pa s]
    double kk_const = 0; ///< constant thermal conductivity [W/(m K)]
    double mu_ref_s = 0; ///< Sutherland: reference viscosity [Pa s]
    double T_ref_s = 0;  ///< Sutherland: reference temperature [K]
    double Tchar_s = 0;  ///< Sutherland: characteristic temperature [K]
    double mu_ref_l = 0; ///< linear law: reference viscosity [Pa s]
    double T_ref_l = 0;  ///< linear law: reference temperature [K]
    double Pr = 0;       ///< Prandtl number [-]

    // Initialisation copies these from the fluid; those from Tc on only if the fluid has critical data.
    double m_mole = 0; ///< molar mass [kg/kmol]
    double Rgas = 0;   ///< specific gas constant [J/(kg K)]
    double T_ref = 0;  ///< reference temperature [K]
    double P_ref = 0;  ///< reference pressure [Pa]
    double v_ref = 0;  ///< reference specific volume [m3/kg]
    double Z_ref = 0;  ///< P_ref v_ref/(R T_ref) [-]
    double Tc = 0;     ///< critical temperature [K]
    double Pc = 0;     ///< critical pressure [Pa]
    double vc = 0;     ///< critical specific volume [m3/kg]
    double Zc = 0;     ///< critical compressibility factor [-]
    double omega = 0;  ///< acentric factor [-]
    double mur = 0;    ///< reduced dipole moment [-]
    double kh = 0;     ///< association factor [-]

    // Initialisation and completion derive these.
    double area = 0;             ///< critical molar volume to the power 2/3 [(cm3/mol)^(2/3)]
    double mu_corr = 0;          ///< corresponding states: the viscosity at Tc [Pa s]
    double fc = 0;               ///< shape and polarity factor of the dilute gas [-]
    double beta = 0;             ///< factor in the conductivity of the dilute gas [-]
    std::array<double, 10> aa{}; ///< E1 to E10 in the viscosity of the dense gas [-]
    std::array<double, 7> bb{};  ///< B1 to B7 in the conductivity of the dense gas [-]
    double mu_ref = 0;           ///< reference viscosity [Pa s], or in the unit of Chung's model
    double kk_ref = 0;           ///< reference conductivity [W/(m K)], or in the unit of Chung's model
};

/// Chung's formulas give cal/(cm s K), which is 418.4 W/(m K). The entry points multiply by 10^4/418.4 instead, so that
/// the unit of their results is 17.506 W/(m K); hosts know this and scale them.
inline constexpr double conductivity_unit = 23.900573613766728;

/// Chung's formulas have two forms, which differ in these constants and in the critical volume, see published_form().
struct constants_of_form {
    double sine;               ///< factor in the sine of the collision integral
    double viscosity;          ///< factor from the dilute gas's 0.1 Pa s to the form's unit of viscosity
    double conductivity;       ///< factor from cal/(cm s K) to the form's unit of conductivity
    bool conductivity_3_alone; ///< whether conductivity 3 has the part of the dilute gas under any viscosity
};
/// The form of the entry points, with the model's critical volume. In the sine stands a tenth of the published
/// constant; parameter sets and hosts rely on it.
inline constexpr constants_of_form entry_points = {1.80323, 1.0, conductivity_unit, false};
/// The form of 1988 in Pa s and W/(m K), with the fluid's own critical volume.
inline constexpr constants_of_form published = {18.0323, 0.1, 418.4, true};

inline double fourth_power(double x) {
    return x * x * (x * x);
}

inline double critical_area(const parameters &p) {
    return std::pow(1000.0 * p.vc * p.m_mole, 2.0 / 3.0);
}

inline double shape_and_polarity(const parameters &p) {
    return 1.0 - 0.2756 * p.omega + 0.059035 * fourth_power(p.mur) + p.kh;
}

/// The parameters for the published form, from completed ones with critical data. Zc is the fluid's own, as its file
/// has it.
inline parameters published_form(const parameters &completed, double Zc) {
    parameters p = completed;
    p.Zc = Zc;
    p.vc = Zc * p.Rgas * p.Tc / p.Pc;
    p.area = critical_area(p);
    p.fc = shape_and_polarity(p);
    return p;
}

// The algebra, with T in K and v in m3/kg.

/// Reduced collision integral of the Lennard-Jones potential at T* = 1.2593 T/Tc.
template <const constants_of_form &form = entry_points, class Real>
Real collision_integral(Real T_star) {
    using std::exp;
    using std::pow;
    using std::sin;
    const Real rise = pow(T_star, Real(0.14874));
    return 1.16145 / rise + 0.52487 * exp(-0.7732 * T_star) + 2.16178 * exp(-2.43787 * T_star) -
           0.0006435 * rise * sin(form.sine * pow(T_star, Real(-0.7683)) - 7.27371);
}

template <class Real>
Real reduced_temperature(const parameters &p, Real T) {
    return T / p.Tc;
}

/// Viscosity of the dilute gas [0.1 Pa s].
template <const constants_of_form &form = entry_points, class Real>
Real dilute_viscosity(const parameters &p, Real T) {
    using std::sqrt;
    const Real T_star = 1.2593 * reduced_temperature(p, T);
    return 4.0785e-5 * p.fc * sqrt(p.m_mole * T) / (p.area * collision_integral<form>(T_star));
}

/// The functions of density in viscosity and conductivity of the dense gas, with the coefficients E of one of them.
template <class Real>
struct density_factors {
    Real y;  ///< vc/(6 v)
    Real G2; ///< 1 at vanishing density

    template <std::size_t count>
    density_factors(const parameters &p, const std::array<double, count> &E, Real v) : y(p.vc / (6.0 * v)) {
        using std::exp;
        using std::expm1;
        const Real G1 = (1.0 - 0.5 * y) / ((1.0 - y) * (1.0 - y) * (1.0 - y));
        // expm1 keeps the digits of 1 - e^(-E4 y) as y vanishes.
        const Real rise = -expm1(-E[3] * y);
        G2 = (E[0] * rise / y + (E[1] * exp(E[4] * y) + E[2]) * G1) / (E[0] * E[3] + E[1] + E[2]);
    }
};

/// Viscosity of the dense gas [Pa s], from the viscosity mu0 of the dilute gas [0.1 Pa s].
template <class Real>
Real dense_viscosity(const parameters &p, Real T, Real v, Real mu0) {
    using std::exp;
    using std::sqrt;
    const std::array<double, 10> &E = p.aa;
    const auto [y, G2] = density_factors<Real>(p, E, v);
    const Real T_star = 1.2593 * reduced_temperature(p, T);
    const Real dense = E[6] * (y * y) * G2 * exp(E[7] + E[8] / T_star + E[9] / (T_star * T_star));
    return 0.1 * (mu0 * (1.0 / G2 + E[5] * y) + 3.6344e-5 * sqrt(p.m_mole * p.Tc) / p.area * dense);
}

template <class Real>
Real corresponding_states_viscosity(const parameters &p, Real T) {
    using std::pow;
    return p.mu_corr * pow(reduced_temperature(p, T), Real(0.94));
}

template <class Real>
Real sutherland_viscosity(const parameters &p, Real T) {
    using std::pow;
    return p.mu_ref_s * pow(T / p.T_ref_s, Real(1.5)) * (p.T_ref_s + p.Tchar_s) / (T + p.Tchar_s);
}

template <class Real>
Real linear_law_viscosity(const parameters &p, Real T) {
    return p.mu_ref_l * T / p.T_ref_l;
}

/// Conductivity of the dilute gas [cal/(cm s K)], from the viscosity mu [0.1 Pa s] and cv of the ideal gas [J/(kg K)].
template <class Real>
Real dilute_conductivity(const parameters &p, Real T, Real mu, Real cv_oo) {
    const Real alpha = cv_oo / p.Rgas - 1.5;
    const Real Tr = reduced_temperature(p, T);
    const Real Z = 2.0 + 10.5 * (Tr * Tr);
    const Real Psi = 1.0 + alpha * (0.215 + 0.28288 * alpha - 1.061 * p.beta + 0.26665 * Z) /
                               (0.6366 + p.beta * Z + 1.061 * alpha * p.beta);
    return 7.452 * mu * Psi / p.m_mole;
}

/// Conductivity of the dense gas in the form's unit, from the conductivity of the dilute gas [cal/(cm s K)].
template <const constants_of_form &form = entry_points, class Real>
Real dense_conductivity(const parameters &p, Real T, Real v, Real dilute) {
    using std::sqrt;
    const std::array<double, 7> &B = p.bb;
    const auto [y, G2] = density_factors<Real>(p, B, v);
    return form.conductivity *
           (dilute * (1.0 / G2 + B[5] * y) +
            0.0003039 * std::sqrt(p.Tc / p.m_mole) / p.area * B[6] * (y * y) * G2 * sqrt(reduced_temperature(p, T)));
}

/// Viscosity by the active model, or 0 if its code is unknown. Chung's dense gas sets mu0 to the viscosity of the
/// dilute gas [0.1 Pa s]; the other models leave it unchanged.
template <const constants_of_form &form = entry_points, class Real>
Real viscosity(const parameters &p, Real T, Real v, Real &mu0) {
    switch (p.viscosity_model) {
    case constant_viscosity:
        return Real(p.mu_const);
    case dilute_gas:
        return dilute_viscosity<form>(p, T) * form.viscosity;
    case dense_gas:
        mu0 = dilute_viscosity<form>(p, T);
        return dense_viscosity(p, T, v, mu0);
    case corresponding_states:
        return corresponding_states_viscosity(p, T);
    case sutherland_law:
        return sutherland_viscosity(p, T);
    case linear_law:
        return linear_law_viscosity(p, T);
    default:
        return Real(0);
    }
}

template <class Real>
struct coefficients {
    Real mu; ///< viscosity [Pa s], or in the unit of Chung's model (see the head)
    Real k;  ///< thermal conductivity [W/(m K)], or in the unit of Chung's model (see the head)
};

/// Viscosity and conductivity by the active models. cv_oo() returns cv of the ideal gas [J/(kg K)] and cp() the
/// isobaric heat capacity [R]; they are called only for a model that needs them.
template <const constants_of_form &form = entry_points, class Real, class IdealHeat, class IsobaricHeat>
coefficients<Real> evaluate(const parameters &p, Real T, Real v, IdealHeat cv_oo, IsobaricHeat cp) {
    // If it stays 0, conductivity 3 lacks the part of the dilute gas.
    Real mu0 = 0;
    const Real mu = viscosity<form>(p, T, v, mu0);
    switch (p.thermal_cond_model) {
    case constant_conductivity:
        return {mu, Real(p.kk_const)};
    case dilute_gas_conductivity:
        return {mu, dilute_conductivity(p, T, mu / form.viscosity, cv_oo()) * form.conductivity};
    case dense_gas_conductivity:
        if (form.conductivity_3_alone && p.viscosity_model != dense_gas)
            mu0 = dilute_viscosity<form>(p, T);
        return {mu, dense_conductivity<form>(p, T, v, dilute_conductivity(p, T, mu0, cv_oo()))};
    case constant_Prandtl:
        return {mu, mu * p.Rgas * cp() / p.Pr};
    default:
        return {mu, Real(0)};
    }
}

/// Copies the fluid's constants and derives everything but the reference values. If the viscosity is one of Chung's,
/// and the conductivity is of another kind or critical data are missing, it reports, changes nothing and returns false.
bool initialise(parameters &p, const equations::gas_constants &fluid, records::error_text &message);

/// Initialises, computes the reference values, and copies them to the fluid. They are the values at the critical point
/// or, without critical data, at T_ref and v_ref. cp(t, vr) is the isobaric heat capacity [R] at t [T_ref], vr [v_ref].
template <class IsobaricHeat>
void complete(parameters &p, const ideal_gas_heat::heat_capacity &heat, equations::gas_constants &fluid,
              IsobaricHeat cp, records::error_text &message) {
    if (!initialise(p, fluid, message))
        return;
    const double T = fluid.vapor ? p.Tc : p.T_ref;
    const double v = fluid.vapor ? p.vc : p.v_ref;
    const auto [mu, k] = evaluate(
        p, T, v, [&] { return cv(heat, T); }, [&] { return cp(T / p.T_ref, v / p.v_ref); });
    fluid.mu_ref = p.mu_ref = mu;
    fluid.kk_ref = p.kk_ref = k;
}

/// A model, and the fields of its record in a parameter file if it has one.
struct model {
    std::int32_t code;
    std::string_view name;
    struct field {
        std::string_view name;
        std::string_view unit;
        double parameters::*value;
    };
    std::array<field, 3> fields{};

    /// The fields in use.
    std::span<const field> record() const {
        std::size_t count = 0;
        while (count < fields.size() && fields[count].value != nullptr)
            ++count;
        return std::span(fields).first(count);
    }
};

inline constexpr std::array<model, 6> viscosity_models = {{
    {constant_viscosity, "constant", {{{"mu_const", "Pa s", &parameters::mu_const}}}},
    {dilute_gas, "Chung, dilute gas"},
    {dense_gas, "Chung, dense gas"},
    {corresponding_states, "corresponding states"},
    {sutherland_law,
     "Sutherland's law",
     {{{"mu_ref_s", "Pa s", &parameters::mu_ref_s},
       {"T_ref_s", "K", &parameters::T_ref_s},
       {"Tchar_s", "K", &parameters::Tchar_s}}}},
    {linear_law,
     "linear in T",
     {{{"mu_ref_l", "Pa s", &parameters::mu_ref_l}, {"T_ref_l", "K", &parameters::T_ref_l}}}},
}};
inline constexpr std::array<model, 4> thermal_cond_models = {{
    {constant_conductivity, "constant", {{{"kk_const", "W/(m K)", &parameters::kk_const}}}},
    {dilute_gas_conductivity, "Chung, dilute gas"},
    {dense_gas_conductivity, "Chung, dense gas"},
    {constant_Prandtl, "constant Prandtl number", {{{"Pr", "-", &parameters::Pr}}}},
}};

/// Reads the section of a parameter file.
void read(records::record_reader &in, parameters &p);
void write(records::record_writer &out, const parameters &p);

} // namespace transport
