// SPDX-License-Identifier: MIT
// The modules of a fluid's constants, heat capacity and transport: each applies the algebra to its own parameters.
#include "Thermodynamics/gas_properties.h"
#include "Thermodynamics/ideal_specific_heat.h"
#include "Thermodynamics/thermodynamics.h"
#include "Thermodynamics/transport_properties.h"

namespace gas_properties {

gas_constants gas;

void read_param_gas_properties(records::file_reader &unit) {
    read(unit, gas);
}
void read_param_gas_propertiesdb(records::line_reader &lines) {
    read(lines, gas);
}
void write_param_gas_properties(records::record_writer &unit) {
    write(unit, gas);
}

} // namespace gas_properties

namespace ideal_specific_heat {

heat_capacity active;
records::error_text errmsg;

double cv_oo__Tdim(double T) {
    return cv(active, T);
}
double phi__T(double t) {
    return phi_reduced(active, t);
}
double phip__T(double t) {
    return phip_reduced(active, t);
}
double phipp__T(double t) {
    return phipp_reduced(active, t);
}
double psi__T(double t) {
    return psi_reduced(active, t);
}

void read_param_ideal_specific_heat(records::file_reader &unit) {
    read(unit, active);
}
void read_param_ideal_specific_heatdb(records::line_reader &lines) {
    read(lines, active);
}
void write_param_ideal_specific_heat(records::record_writer &unit) {
    write(unit, active);
}
void init_ideal_specific_heat() {
    initialise(active, gas_properties::gas, errmsg);
}

} // namespace ideal_specific_heat

namespace transport_properties {

parameters active;

using ideal_specific_heat::cv_oo__Tdim;

namespace {

/// The coefficients at T [K] and v [m3/kg]; t [T_ref] and vr [v_ref] are the same state, reduced.
transport::coefficients<double> coefficients_at(double T, double v, double t, double vr) {
    return evaluate(
        active, T, v, [&] { return cv_oo__Tdim(T); }, [&] { return thermodynamics::cp__T_v(t, vr); });
}

} // namespace

double eta__T_v(double t, double vr) {
    double mu0 = 0;
    return viscosity(active, t * active.T_ref, vr * active.v_ref, mu0) / active.mu_ref;
}

void transport_coefficients(double t, double vr, double &eta, double &lambda) {
    const auto [mu, k] = coefficients_at(t * active.T_ref, vr * active.v_ref, t, vr);
    eta = mu / active.mu_ref;
    lambda = k / active.kk_ref;
}

void transport_coefficients_dim(double T, double v, double &mu, double &k) {
    const auto [mu_found, k_found] = coefficients_at(T, v, T / active.T_ref, v / active.v_ref);
    mu = mu_found;
    k = k_found;
}

double diluite_gas_viscosity(double T) {
    return dilute_viscosity(active, T);
}
double dense_gas_viscosity(double T, double v, double &mu0) {
    mu0 = dilute_viscosity(active, T);
    return dense_viscosity(active, T, v, mu0);
}
double corresp_state_viscosity(double T) {
    return corresponding_states_viscosity(active, T);
}
double sutherland_law_viscosity(double T) {
    return sutherland_viscosity(active, T);
}
double linear_viscosity(double T) {
    return linear_law_viscosity(active, T);
}
double diluite_gas_thermal_cond(double T, double mu0) {
    return dilute_conductivity(active, T, mu0, cv_oo__Tdim(T)) * transport::conductivity_unit;
}
double dense_gas_thermal_cond(double T, double v, double k0) {
    return dense_conductivity(active, T, v, k0 / transport::conductivity_unit);
}

void read_param_transport_properties(records::file_reader &unit) {
    read(unit, active);
}
void read_param_transport_propertiesdb(records::line_reader &lines) {
    read(lines, active);
}
void write_param_transport_propert(records::record_writer &unit) {
    write(unit, active);
}
void init_transport_properties() {
    complete(active, ideal_specific_heat::active, gas_properties::gas, thermodynamics::cp__T_v,
             ideal_specific_heat::errmsg);
}

} // namespace transport_properties
