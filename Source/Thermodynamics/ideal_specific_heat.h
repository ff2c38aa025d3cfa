// SPDX-License-Identifier: MIT
// Module ideal_specific_heat: the ideal-gas heat capacity of the active fluid, and the error text of all modules.
#pragma once

#include "Equations/ideal_gas_heat.h"
#include "Records/error_text.h"
#include "visibility.h"

namespace ideal_specific_heat OSTREL_VISIBLE {

using ideal_gas_heat::heat_capacity;

extern heat_capacity active;
extern records::error_text errmsg;

/// Ideal-gas cv at T [K] in J/(kg K).
double cv_oo__Tdim(double T);
/// Ideal-gas energy at t [T_ref] in units of P_ref v_ref.
double phi__T(double t);
/// dphi/dt: ideal-gas cv at t [T_ref] in units of P_ref v_ref/T_ref.
double phip__T(double t);
/// d2phi/dt2 at t [T_ref] in units of P_ref v_ref/T_ref^2.
double phipp__T(double t);
/// Ideal-gas entropy at t [T_ref], without its volume term, in units of Rgas.
double psi__T(double t);

void read_param_ideal_specific_heat(records::file_reader &unit);
void read_param_ideal_specific_heatdb(records::line_reader &lines);
/// Writes the values in memory: after an initialisation they are dimensional, even if coeff_adim is true.
void write_param_ideal_specific_heat(records::record_writer &unit);
/// Initialises the module for the active fluid; call it once after each reading.
void init_ideal_specific_heat();

} // namespace ideal_specific_heat
