// SPDX-License-Identifier: MIT
// Module thermodynamics: the active model, its reference state, and what is computed from it.
//
// Everything is reduced: T in T_ref, v in v_ref, P in P_ref, e and h in P_ref v_ref, s and cv in R.
// An operation that "leaves its result unchanged" has an output argument that it does not write.
// Failures are reported in ideal_specific_heat::errmsg.
#pragma once

#include "Thermodynamics/operations.h"

#include <optional>

namespace thermodynamics OSTREL_VISIBLE {

/// The active model, 1 to 8; 0 before any fluid is loaded.
extern std::int32_t gas_type;
extern const std::array<std::string_view, 8> gas_short_names;
extern const std::array<std::string_view, 8> gas_names;

/// The lowest reduced temperature, pressure and volume that the solvers use.
extern double Tmin;
extern double Pmin;
extern double vmin;

/// (T, v, e, P)
using basic_state = std::array<double, 4>;
/// (T, v, e, P, speed of sound, dP/d(rho e) at constant rho, dP/d(rho) at constant rho e)
using extended_state = std::array<double, 7>;

// The model's operations, chosen by gas_type: double P__T_v(double T, double v), e__T_v, s__T_v and
// cv__T_v answer 0 without a model; void dP__dT_dv(double T, double v, std::array<double, 2> &result),
// de__dT_dv, dcv__dT_dv, d2P__dT2_dv2 and d2e__dT2_dv2 then leave their result unchanged.
#define OSTREL_DECLARE_DISPATCHED_SCALAR(unused, operation) double operation(double T, double v);
#define OSTREL_DECLARE_DISPATCHED_ARRAY(unused, operation, size) \
    void operation(double T, double v, std::array<double, size> &result);
OSTREL_SCALAR_OPERATIONS(OSTREL_DECLARE_DISPATCHED_SCALAR, )
OSTREL_ARRAY_OPERATIONS(OSTREL_DECLARE_DISPATCHED_ARRAY, )
double minimum_specific_volume();

// States. From energy and volume the temperature is found by Newton's method, from T_start if given;
// after a failure the result is left unchanged.
basic_state eos__T_v(double T, double v);
void eos__e_v(double e, double v, basic_state &result, std::optional<double> T_start = {});
extended_state eos_ext__T_v(double T, double v);
void eos_ext__e_v(double e, double v, extended_state &result, std::optional<double> T_start = {});
extended_state eos_ext__eos(const basic_state &state);

// Derived properties.
/// Enthalpy e + P v.
double h__T_v(double T, double v);
/// (dP/d(rho e) at constant rho, dP/d(rho) at constant rho e), rho = 1/v.
std::array<double, 2> dP__dre_dr__T_v(double T, double v);

// Solvers.
/// Temperature from energy and volume.
double T__e_v(double e, double v, std::optional<double> T_start = {});

// The model's part of a parameter file, or of a fluid database's lines.
void read_param_thermodynamics(records::file_reader &unit);
void read_param_thermodynamicsdb(records::line_reader &lines);
void write_param_thermodynamics(records::record_writer &unit);
/// Completes model, heat capacity, reference state and bounds of the fluid just read; stops at the
/// first of them that leaves a message in errmsg.
void init_thermodynamics();

} // namespace thermodynamics
