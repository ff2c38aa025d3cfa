// SPDX-License-Identifier: MIT
// Module transport_properties: viscosity and thermal conductivity of the active fluid. Equations/transport.h has the
// formulas and the units of their results. Failures are reported in ideal_specific_heat::errmsg.
#pragma once

#include "Equations/transport.h"
#include "visibility.h"

namespace transport_properties OSTREL_VISIBLE {

using transport::parameters;

extern parameters active;

/// Reduced viscosity [mu_ref] at t [T_ref] and vr [v_ref].
double eta__T_v(double t, double vr);
/// Reduced viscosity [mu_ref] and conductivity [kk_ref] at t [T_ref] and vr [v_ref].
void transport_coefficients(double t, double vr, double &eta, double &lambda);
/// Viscosity [Pa s] and conductivity [W/(m K)], or in the units of Chung's models, at T [K] and v [m3/kg].
void transport_coefficients_dim(double T, double v, double &mu, double &k);

// The formulas at T [K] and v [m3/kg], independent of the active models. Chung's formulas need the constants that the
// initialisation of their own models sets.
double diluite_gas_viscosity(double T);                      ///< [0.1 Pa s]
double dense_gas_viscosity(double T, double v, double &mu0); ///< [Pa s]; sets mu0, the dilute gas's [0.1 Pa s]
double corresp_state_viscosity(double T);                    ///< [Pa s]
double sutherland_law_viscosity(double T);                   ///< [Pa s]
double linear_viscosity(double T);                           ///< [Pa s]
double diluite_gas_thermal_cond(double T, double mu0);       ///< [17.506 W/(m K)] for mu0 [0.1 Pa s]
double dense_gas_thermal_cond(double T, double v,
                              double k0); ///< [17.506 W/(m K)], from k0 of the dilute gas in this unit

void read_param_transport_properties(records::file_reader &unit);
void read_param_transport_propertiesdb(records::line_reader &lines);
void write_param_transport_propert(records::record_writer &unit);
/// Completes the models that were read; call it after init_thermodynamics(). It stops with a message if the models do
/// not go together or lack critical data.
void init_transport_properties();

} // namespace transport_properties
