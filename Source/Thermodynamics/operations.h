// SPDX-License-Identifier: MIT
// The table of the state operations, a line for each. It makes the operations of all modules and their dispatchers, so
// that no module can lack an operation. USE receives `what` as its first argument.
#pragma once

#include "Equations/models.h"
#include "Records/record_reader.h"
#include "Records/record_writer.h"
#include "visibility.h"

#include <array>

/// Operations whose result at (T, v) is one number.
#define OSTREL_SCALAR_OPERATIONS(USE, what) \
    USE(what, P__T_v)                       \
    USE(what, e__T_v)                       \
    USE(what, s__T_v)                       \
    USE(what, cv__T_v)

/// Operations whose result at (T, v) is 2 first derivatives, or 4 second derivatives in column order.
#define OSTREL_ARRAY_OPERATIONS(USE, what) \
    USE(what, dP__dT_dv, 2)                \
    USE(what, de__dT_dv, 2)                \
    USE(what, dcv__dT_dv, 2)               \
    USE(what, d2P__dT2_dv2, 4)             \
    USE(what, d2e__dT2_dv2, 4)

/// Declares what every module has: its own parameters of a model, and the operations on them.
/// OSTREL_DECLARE_MODULE(clausius_II, CIIG) becomes
///   using parameters = equations::clausius_II;            extern parameters active;
///   void read_param_CIIG(records::record_reader &unit);   void write_param_CIIG(records::record_writer &unit);
///   void init_CIIG();                                     double minimum_specific_volume__CIIG();
///   double P__T_v__CIIG(double T, double v);              ... and so on for the scalar operations
///   std::array<double, 2> dP__dT_dv__CIIG(double T, double v);       ... and the array operations
/// with T in T_ref, v in v_ref and results in the units of separated_attraction.h.
#define OSTREL_DECLARE_MODULE(Model, X)                 \
    using parameters = equations::Model;                \
    extern parameters active;                           \
    void read_param_##X(records::record_reader &unit);  \
    void write_param_##X(records::record_writer &unit); \
    void init_##X();                                    \
    double minimum_specific_volume__##X();              \
    OSTREL_SCALAR_OPERATIONS(OSTREL_DECLARE_SCALAR, X)  \
    OSTREL_ARRAY_OPERATIONS(OSTREL_DECLARE_ARRAY, X)
#define OSTREL_DECLARE_SCALAR(X, operation)      double operation##__##X(double T, double v);
#define OSTREL_DECLARE_ARRAY(X, operation, size) std::array<double, size> operation##__##X(double T, double v);

/// Declares Q_f__T_v__X(T, v, q, f), which gives the factors of a model with one attraction term.
#define OSTREL_DECLARE_FACTORS(X) \
    void Q_f__T_v__##X(double T, double v, std::array<double, 4> &q, std::array<double, 4> &f);
