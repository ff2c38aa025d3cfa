// SPDX-License-Identifier: MIT
// The table of the state operations and the table of the models, one line of use each. The operation
// sets of all models and every switch over gas_type are made from them, so that no model can lack an
// operation and no switch a model. `what` is handed on to every use.
#pragma once

#include "Thermodynamics/separated_attraction.h"

/// (T, v) to one number.
#define OSTREL_SCALAR_OPERATIONS(USE, what) \
    USE(what, P__T_v)                       \
    USE(what, e__T_v)                       \
    USE(what, s__T_v)                       \
    USE(what, cv__T_v)

/// (T, v) to the 2 first derivatives, or to the 4 second derivatives in column order.
#define OSTREL_ARRAY_OPERATIONS(USE, what) \
    USE(what, dP__dT_dv, 2)                \
    USE(what, de__dT_dv, 2)                \
    USE(what, dcv__dT_dv, 2)               \
    USE(what, d2P__dT2_dv2, 4)             \
    USE(what, d2e__dT2_dv2, 4)

/// gas_type, module and suffix of the models, their short names of 3 and their long names of 29 characters, and what
/// people call them.
#define OSTREL_MODELS(USE, what)                                                                               \
    USE(what, 1, ideal_gas, IG, "IG ", "IDEAL GAS MODEL              ", "ideal gas")                           \
    USE(what, 2, van_der_waals_gas, vdWG, "VDW", "VAN DER WAALS GAS MODEL      ", "van der Waals")             \
    USE(what, 3, martin_hou_gas, MHG, "MH ", "MARTIN-HOU GAS MODEL         ", "Martin-Hou")                    \
    USE(what, 4, soave_redlich_kwong_gas, SRKG, "SRK", "SOAVE-REDLICH-KWONG GAS MODEL", "Soave-Redlich-Kwong") \
    USE(what, 5, peng_robinson_gas, PRG, "PR ", "PENG-ROBINSON GAS MODEL      ", "Peng-Robinson")              \
    USE(what, 6, redlich_kwong_gas, RKG, "RK ", "REDLICH-KWONG GAS MODEL      ", "Redlich-Kwong")              \
    USE(what, 7, clausius_II_gas, CIIG, "CII", "CLAUSIUS II GAS MODEL        ", "Clausius II")                 \
    USE(what, 8, ideal_Z_gas, IZG, "IZG", "IDEAL Z GAS MODEL            ", "ideal gas with constant Z")

/// The operation set of a model in its header. OSTREL_DECLARE_MODEL(CIIG) becomes
///   void read_param_CIIG(records::record_reader &unit);   void write_param_CIIG(records::record_writer &unit);
///   void init_CIIG();                                     double minimum_specific_volume__CIIG();
///   double P__T_v__CIIG(double T, double v);              ... and so on for the scalar operations
///   std::array<double, 2> dP__dT_dv__CIIG(double T, double v);       ... and the array operations
/// with T in T_ref, v in v_ref and results in the units of separated_attraction.h.
#define OSTREL_DECLARE_MODEL(X)                         \
    void read_param_##X(records::record_reader &unit);  \
    void write_param_##X(records::record_writer &unit); \
    void init_##X();                                    \
    double minimum_specific_volume__##X();              \
    OSTREL_SCALAR_OPERATIONS(OSTREL_DECLARE_SCALAR, X)  \
    OSTREL_ARRAY_OPERATIONS(OSTREL_DECLARE_ARRAY, X)
#define OSTREL_DECLARE_SCALAR(X, operation)      double operation##__##X(double T, double v);
#define OSTREL_DECLARE_ARRAY(X, operation, size) std::array<double, size> operation##__##X(double T, double v);

/// The same in its source: every operation is the algebra applied to the module's instance `active`, as
///   double P__T_v__CIIG(double T, double v) { return separated_attraction::P__T_v(active, ..., T, v); }
#define OSTREL_DEFINE_MODEL(X)                                                \
    void init_##X() {                                                         \
        initialise(active, gas_properties::gas, ideal_specific_heat::errmsg); \
    }                                                                         \
    double minimum_specific_volume__##X() {                                   \
        return separated_attraction::minimum_specific_volume(active);         \
    }                                                                         \
    OSTREL_SCALAR_OPERATIONS(OSTREL_DEFINE_SCALAR, X)                         \
    OSTREL_ARRAY_OPERATIONS(OSTREL_DEFINE_ARRAY, X)
#define OSTREL_DEFINE_SCALAR(X, operation)                                                               \
    double operation##__##X(double T, double v) {                                                        \
        return separated_attraction::operation(active, separated_attraction::active_ideal_part(), T, v); \
    }
#define OSTREL_DEFINE_ARRAY(X, operation, size)                                                          \
    std::array<double, size> operation##__##X(double T, double v) {                                      \
        return separated_attraction::operation(active, separated_attraction::active_ideal_part(), T, v); \
    }

/// For a model without parameters of its own in the parameter file.
#define OSTREL_NO_PARAMETERS(X)                      \
    void read_param_##X(records::record_reader &) {} \
    void write_param_##X(records::record_writer &) {}

/// Q_f__T_v__X(T, v, q, f) hands out the factors of a model with one attraction term.
#define OSTREL_DECLARE_FACTORS(X) \
    void Q_f__T_v__##X(double T, double v, std::array<double, 4> &q, std::array<double, 4> &f);
#define OSTREL_DEFINE_FACTORS(X)                                                                 \
    void Q_f__T_v__##X(double T, double v, std::array<double, 4> &q, std::array<double, 4> &f) { \
        q = active.q(T)[0];                                                                      \
        f = active.f(v)[0];                                                                      \
    }
