// SPDX-License-Identifier: MIT
// Module thermodynamics: the active model, its reference state, and the properties that follow from it.
//
// Everything is reduced: T in T_ref, v in v_ref, P in P_ref, e, h and mu in P_ref v_ref, s, cv and cp in R, c in c_ref.
// If an operation "leaves its result unchanged", it does not write its output argument.
// Failures are reported in ideal_specific_heat::errmsg.
#pragma once

#include "Thermodynamics/gas_properties.h"
#include "Thermodynamics/ideal_specific_heat.h"
#include "Thermodynamics/operations.h"

#include <optional>
#include <vector>

namespace thermodynamics OSTREL_VISIBLE {

/// The code of the active model, 1 to 8; 0 before a fluid is loaded.
extern std::int32_t gas_type;
extern const std::array<std::string_view, equations::model_count> gas_short_names;
extern const std::array<std::string_view, equations::model_count> gas_names;

/// The lowest reduced temperature, pressure and volume that the solvers use.
extern double Tmin;
extern double Pmin;
extern double vmin;

/// (T, v, e, P)
using basic_state = std::array<double, 4>;
/// (T, v, e, P, speed of sound, dP/d(rho e) at constant rho, dP/d(rho) at constant rho e)
using extended_state = std::array<double, 7>;

// The operations of the model that gas_type names. Without a model double P__T_v(double T, double v), e__T_v, s__T_v
// and cv__T_v return 0, and void dP__dT_dv(double T, double v, std::array<double, 2> &result), de__dT_dv, dcv__dT_dv,
// d2P__dT2_dv2 and d2e__dT2_dv2 leave their result unchanged.
#define OSTREL_DECLARE_DISPATCHED_SCALAR(unused, operation) double operation(double T, double v);
#define OSTREL_DECLARE_DISPATCHED_ARRAY(unused, operation, size) \
    void operation(double T, double v, std::array<double, size> &result);
OSTREL_SCALAR_OPERATIONS(OSTREL_DECLARE_DISPATCHED_SCALAR, )
OSTREL_ARRAY_OPERATIONS(OSTREL_DECLARE_DISPATCHED_ARRAY, )
double minimum_specific_volume();

/// First derivatives, and second derivatives in column order.
using gradient = std::array<double, 2>;
using hessian = std::array<double, 4>;
/// The first value of a search; none means that the search starts from the ideal gas.
using guess = std::optional<double>;

// States. If energy and volume are given, Newton's method finds the temperature, starting from T if it is given; after
// a failure the result is left unchanged.
basic_state eos__T_v(double T, double v);
void eos__e_v(double e, double v, basic_state &result, guess T = {});
extended_state eos_ext__T_v(double T, double v);
void eos_ext__e_v(double e, double v, extended_state &result, guess T = {});
extended_state eos_ext__eos(const basic_state &state);

// Derived properties at (T, v).
double h__T_v(double T, double v);  ///< enthalpy e + P v
double mu__T_v(double T, double v); ///< Gibbs free energy per unit mass
double c2__T_v(double T, double v); ///< square of the speed of sound
double c__T_v(double T, double v);  ///< speed of sound
double cp__T_v(double T, double v); ///< isobaric heat capacity
double G__T_v(double T, double v);  ///< fundamental derivative [-]
gradient dh__dT_dv(double T, double v);
gradient ds__dT_dv(double T, double v);
gradient dmu__dT_dv(double T, double v);
gradient dT__dP_dv__T_v(double T, double v); ///< ((dT/dP)_v, (dT/dv)_P); those of e and s below alike
gradient de__dP_dv__T_v(double T, double v);
gradient ds__dP_dv__T_v(double T, double v);
gradient dP__de_dr__T_v(double T, double v);    ///< ((dP/de)_rho, (dP/drho)_e), rho = 1/v
gradient dP__dre_dr__T_v(double T, double v);   ///< ((dP/d(rho e))_rho, (dP/drho)_(rho e))
hessian d2P__dre2_dr2__T_v(double T, double v); ///< second derivatives of P by (rho e, rho)
hessian d2P__dre_dr__dT_dv(double T, double v); ///< of (A, B) = dP__dre_dr__T_v: (A_T, B_T, A_v, B_v)

// These properties at other pairs: a search, from `start` if it is given, finds T or v first. If a message stands after
// the search, the result is left unchanged.
void mu__P_v(double P, double v, double &result, guess start = {});
void c__P_v(double P, double v, double &result, guess start = {});
void G__P_v(double P, double v, double &result, guess start = {});
void dT__dP_dv(double P, double v, gradient &result, guess start = {});
void de__dP_dv(double P, double v, gradient &result, guess start = {});
void ds__dP_dv(double P, double v, gradient &result, guess start = {});
void dmu__dP_dv(double P, double v, gradient &result, guess start = {});
void dP__de_dr(double e, double v, gradient &result, guess start = {});
void dP__dre_dr(double e, double v, gradient &result, guess start = {});
void d2P__dre2_dr2(double e, double v, hessian &result, guess start = {});
void dP__ds_dv(double s, double v, gradient &result, guess start = {}); ///< ((dP/ds)_v, (dP/dv)_s)
void dP__ds_dT(double s, double T, gradient &result, guess start = {}); ///< ((dP/ds)_T, (dP/dT)_s)
void dv__ds_dT(double s, double T, gradient &result, guess start = {}); ///< ((dv/ds)_T, (dv/dT)_s)

// Solvers: Newton's method from the given first values, or from those of the ideal gas. After a failure they return the
// last iterate and leave a message in errmsg.
double T__e_v(double e, double v, guess T = {});
double T__P_v(double P, double v, guess T = {});
double v__P_T(double P, double T, guess v = {});
double T__s_v(double s, double v, guess T = {});
double v__s_T(double s, double T, guess v = {});
double T__h_v(double h, double v, guess T = {});
double T__c_v(double c, double v, guess T = {});
double v__h_P(double h, double P, guess T = {}, guess v = {});
double v__s_P(double s, double P, guess T = {}, guess v = {});
double v__h_s(double h, double s, guess T = {}, guess v = {});
// A solver, and then an evaluation at its result; they return 0 if a message stands after the solver.
double P__e_v(double e, double v, guess T = {});
double P__s_T(double s, double T, guess v = {});
double P__c_v(double c, double v, guess T = {});
double P__h_v(double h, double v, guess T = {});
double e__P_v(double P, double v, guess T = {});
double s__P_v(double P, double v, guess T = {});

// Saturation. The first request for a saturated state builds the table of the curve; later fluids use the same table.
extern std::vector<double> TTs;  ///< saturation temperatures, decreasing from the critical point
extern std::vector<double> PPs;  ///< saturation pressures
extern std::vector<double> vvls; ///< saturated-liquid volumes
extern std::vector<double> vvgs; ///< saturated-vapor volumes
/// Builds the table anew.
void init_saturation_curves();
/// Saturated states at a temperature or a pressure. `success` is set true when the search starts, and false if it takes
/// too many steps; every failure leaves a message.
void saturation__T(double T, double &P, double &v_g, double &v_l, bool *success = nullptr);
void saturation__P(double P, double &T, double &v_g, double &v_l, bool *success = nullptr);
/// The neighbours of x in a monotonic vector, i1 and i2, counted from 1, and the weight w of the second one.
void seek_in_vector(double x, std::span<const double> xx, std::int32_t &i1, std::int32_t &i2, double &w);
/// These fill arrays of one length with the curve from the critical point to T_end (P_end); the points are closest to
/// each other next to the critical point. If `success` is given, they stop at the first point that fails.
void saturation_curves_T(std::span<double> T, std::span<double> v_g, std::span<double> v_l, std::span<double> P,
                         double T_end, bool *success = nullptr);
void saturation_curves_P(std::span<double> P, std::span<double> v_g, std::span<double> v_l, std::span<double> T,
                         double P_end, bool *success = nullptr);

// The thermodynamic sections of a parameter file, or of a fluid's lines from a database.
void read_param_thermodynamics(records::file_reader &unit);
void read_param_thermodynamicsdb(records::line_reader &lines);
void write_param_thermodynamics(records::record_writer &unit);
/// Completes model, heat capacity, reference state and bounds of the fluid that was read; stops at the first of them
/// that leaves a message in errmsg.
void init_thermodynamics();

} // namespace thermodynamics
