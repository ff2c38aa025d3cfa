// SPDX-License-Identifier: MIT
// Module transport_properties: viscosity and thermal conductivity of the active fluid. The formulas, and the units that
// they answer in, stand in Equations/transport.h. Failures are reported in ideal_specific_heat::errmsg.
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
/// Viscosity [Pa s] and conductivity [W/(m K)] at T [K] and v [m3/kg].
void transport_coefficients_dim(double T, double v, double &mu, double &k);

// The single formulas at T [K] and v [m3/kg], whatever the active models are; model 3 and 2 want their initialisation.
double diluite_gas_viscosity(double T);                      ///< [0.1 Pa s]
double dense_gas_viscosity(double T, double v, double &mu0); ///< [Pa s], mu0 receives the dilute gas's [0.1 Pa s]
double corresp_state_viscosity(double T);                    ///< [Pa s]
double sutherland_law_viscosity(double T);                   ///< [Pa s]
double linear_viscosity(double T);                           ///< [Pa s]
double diluite_gas_thermal_cond(double T, double mu0);       ///< [W/(m K)/17.506] for mu0 in 0.1 Pa s
double dense_gas_thermal_cond(double T, double v,
                              double k0); ///< [W/(m K)/17.506] from the dilute gas's k0 in this unit

void read_param_transport_properties(records::file_reader &unit);
void read_param_transport_propertiesdb(records::line_reader &lines);
void write_param_transport_propert(records::record_writer &unit);
/// Completes the models just read, after the thermodynamic initialisation; stops where models do not go together.
void init_transport_properties();

} // namespace transport_properties
