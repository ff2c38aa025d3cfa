// SPDX-License-Identifier: MIT
// The table of the state operations, one line of use each. The operation sets of all modules and their dispatchers are
// made from it, so that no module can lack an operation. `what` is handed on to every use.
#pragma once

#include "Equations/models.h"
#include "Records/record_reader.h"
#include "Records/record_writer.h"
#include "visibility.h"

#include <array>

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

/// A module in its header: its instance of a model's parameters, and the operations on it.
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

/// Q_f__T_v__X(T, v, q, f) hands out the factors of a model with one attraction term.
#define OSTREL_DECLARE_FACTORS(X) \
    void Q_f__T_v__##X(double T, double v, std::array<double, 4> &q, std::array<double, 4> &f);
