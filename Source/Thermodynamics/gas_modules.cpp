// SPDX-License-Identifier: MIT
// The modules of the gas models: each operation applies the algebra to the module's own parameters.
#include "Thermodynamics/model_choice.h"

// OSTREL_DEFINE_MODULE(..., clausius_II_gas, CIIG, ...) becomes
//   namespace clausius_II_gas {
//   parameters active;
//   double P__T_v__CIIG(double T, double v) {
//       return separated_attraction::P__T_v(active, thermodynamics::active_ideal_part(), T, v);
//   }
//   ...
//   }
#define OSTREL_DEFINE_MODULE(unused, type, Model, module, X, ...)             \
    namespace module {                                                        \
    parameters active;                                                        \
    void read_param_##X(records::record_reader &unit) {                       \
        read_parameters(unit, active);                                        \
    }                                                                         \
    void write_param_##X(records::record_writer &unit) {                      \
        write_parameters(unit, active);                                       \
    }                                                                         \
    void init_##X() {                                                         \
        initialise(active, gas_properties::gas, ideal_specific_heat::errmsg); \
    }                                                                         \
    double minimum_specific_volume__##X() {                                   \
        return separated_attraction::minimum_specific_volume(active);         \
    }                                                                         \
    OSTREL_SCALAR_OPERATIONS(OSTREL_DEFINE_SCALAR, X)                         \
    OSTREL_ARRAY_OPERATIONS(OSTREL_DEFINE_ARRAY, X)                           \
    }
#define OSTREL_DEFINE_SCALAR(X, operation)                                                         \
    double operation##__##X(double T, double v) {                                                  \
        return separated_attraction::operation(active, thermodynamics::active_ideal_part(), T, v); \
    }
#define OSTREL_DEFINE_ARRAY(X, operation, size)                                                    \
    std::array<double, size> operation##__##X(double T, double v) {                                \
        return separated_attraction::operation(active, thermodynamics::active_ideal_part(), T, v); \
    }
OSTREL_MODELS(OSTREL_DEFINE_MODULE, )

#define OSTREL_DEFINE_FACTORS(module, X)                                                         \
    namespace module {                                                                           \
    void Q_f__T_v__##X(double T, double v, std::array<double, 4> &q, std::array<double, 4> &f) { \
        q = active.q(T)[0];                                                                      \
        f = active.f(v)[0];                                                                      \
    }                                                                                            \
    }
OSTREL_DEFINE_FACTORS(soave_redlich_kwong_gas, SRKG)
OSTREL_DEFINE_FACTORS(peng_robinson_gas, PRG)
OSTREL_DEFINE_FACTORS(redlich_kwong_gas, RKG)
OSTREL_DEFINE_FACTORS(clausius_II_gas, CIIG)

namespace martin_hou_gas {

void Q_f__T_v__MHG(double T, double v, std::array<std::array<double, 4>, 4> &q,
                   std::array<std::array<double, 4>, 4> &f) {
    q = active.q(T);
    f = active.f(v);
}

void compute_coeff_adim(double Zc, double Pc, double Tc, double Tb) {
    compute_coefficients(active, Zc, Pc, Tc, Tb);
}

void compute_coeff_dim(double Zc, double Pc, double Tc, double Tb) {
    compute_coefficients(active, Zc, Pc, Tc, Tb);
    make_dimensional(active, Zc, Pc, Tc);
}

} // namespace martin_hou_gas

namespace ideal_Z_gas {

void read_param_IZG_db(records::line_reader &lines) {
    read_parameters(lines, active);
}

} // namespace ideal_Z_gas
