// SPDX-License-Identifier: MIT
// The choice of the model, the reference state, and the state vectors.
#include "Thermodynamics/model_choice.h"

#include <cmath>

namespace thermodynamics {

using gas_properties::gas;
using ideal_specific_heat::errmsg;

std::int32_t gas_type = 0;
// In the order of gas_type: an array too short for a row, or a row too few, does not compile.
#define OSTREL_SHORT_NAME(unused, type, module, X, short_name, long_name, ...) std::string_view(short_name),
#define OSTREL_LONG_NAME(unused, type, module, X, short_name, long_name, ...)  std::string_view(long_name),
const std::array<std::string_view, 8> gas_short_names = std::to_array({OSTREL_MODELS(OSTREL_SHORT_NAME, )});
const std::array<std::string_view, 8> gas_names = std::to_array({OSTREL_MODELS(OSTREL_LONG_NAME, )});
double Tmin = 0;
double Pmin = 0;
double vmin = 0;

// One switch per operation, for example
//   double P__T_v(double T, double v) {
//       switch (gas_type) {
//       case 1: return ideal_gas::P__T_v__IG(T, v);
//       ...
//       default: return 0.0;
//       }
//   }
#define OSTREL_SCALAR_CASE(operation, type, module, X, ...) \
    case type:                                              \
        return module::operation##__##X(T, v);
#define OSTREL_DISPATCH_SCALAR(unused, operation)        \
    double operation(double T, double v) {               \
        switch (gas_type) {                              \
            OSTREL_MODELS(OSTREL_SCALAR_CASE, operation) \
        default:                                         \
            return 0.0;                                  \
        }                                                \
    }
#define OSTREL_ARRAY_CASE(operation, type, module, X, ...) \
    case type:                                             \
        result = module::operation##__##X(T, v);           \
        break;
#define OSTREL_DISPATCH_ARRAY(unused, operation, size)                     \
    void operation(double T, double v, std::array<double, size> &result) { \
        switch (gas_type) {                                                \
            OSTREL_MODELS(OSTREL_ARRAY_CASE, operation)                    \
        default:                                                           \
            break;                                                         \
        }                                                                  \
    }
OSTREL_SCALAR_OPERATIONS(OSTREL_DISPATCH_SCALAR, )
OSTREL_ARRAY_OPERATIONS(OSTREL_DISPATCH_ARRAY, )

double minimum_specific_volume() {
#define OSTREL_MINIMUM_CASE(unused, type, module, X, ...) \
    case type:                                            \
        return module::minimum_specific_volume__##X();
    switch (gas_type) {
        OSTREL_MODELS(OSTREL_MINIMUM_CASE, )
    default:
        return 0.0;
    }
}

namespace {

void init_model() {
#define OSTREL_INIT_CASE(unused, type, module, X, ...) \
    case type:                                         \
        module::init_##X();                            \
        break;
    switch (gas_type) {
        OSTREL_MODELS(OSTREL_INIT_CASE, )
    default:
        break;
    }
}

void read_param_model(records::record_reader &unit) {
#define OSTREL_READ_CASE(unused, type, module, X, ...) \
    case type:                                         \
        module::read_param_##X(unit);                  \
        break;
    switch (gas_type) {
        OSTREL_MODELS(OSTREL_READ_CASE, )
    default:
        break;
    }
}

void write_param_model(records::record_writer &unit) {
#define OSTREL_WRITE_CASE(unused, type, module, X, ...) \
    case type:                                          \
        module::write_param_##X(unit);                  \
        break;
    switch (gas_type) {
        OSTREL_MODELS(OSTREL_WRITE_CASE, )
    default:
        break;
    }
}

} // namespace

basic_state eos__T_v(double T, double v) {
    return {T, v, e__T_v(T, v), P__T_v(T, v)};
}

void eos__e_v(double e, double v, basic_state &result, std::optional<double> T_start) {
    const double T = T__e_v(e, v, T_start);
    if (errmsg.clear())
        result = eos__T_v(T, v);
}

extended_state eos_ext__eos(const basic_state &state) {
    const auto [T, v, e, P] = state;
    const auto [dP_dre, dP_dr] = dP__dre_dr__T_v(T, v);
    return {T, v, e, P, c__T_v(T, v), dP_dre, dP_dr};
}

extended_state eos_ext__T_v(double T, double v) {
    return eos_ext__eos(eos__T_v(T, v));
}

void eos_ext__e_v(double e, double v, extended_state &result, std::optional<double> T_start) {
    const double T = T__e_v(e, v, T_start);
    if (errmsg.clear())
        result = eos_ext__T_v(T, v);
}

void read_param_thermodynamics(records::file_reader &unit) {
    gas_properties::read_param_gas_properties(unit);
    if (unit.read({{"gas_type", gas_type}}))
        read_param_model(unit);
    ideal_specific_heat::read_param_ideal_specific_heat(unit);
}

void read_param_thermodynamicsdb(records::line_reader &lines) {
    gas_properties::read_param_gas_propertiesdb(lines);
    if (lines.read({{"gas_type", gas_type}}) && gas_type == 8)
        ideal_Z_gas::read_param_IZG_db(lines);
    ideal_specific_heat::read_param_ideal_specific_heatdb(lines);
}

void write_param_thermodynamics(records::record_writer &unit) {
    gas_properties::write_param_gas_properties(unit);
    const bool known = gas_type >= 1 && gas_type <= 8;
    unit.record({gas_type, "     --> Gas type : ", known ? gas_names[static_cast<std::size_t>(gas_type) - 1] : ""});
    write_param_model(unit);
    ideal_specific_heat::write_param_ideal_specific_heat(unit);
}

void init_thermodynamics() {
    init_model();
    if (!errmsg.clear())
        return;
    ideal_specific_heat::init_ideal_specific_heat();
    if (!errmsg.clear())
        return;
    const double T = 1.0 / gas.Z_ref;
    gas.e_0 = 0;
    gas.e_0 = -e__T_v(T, 1.0);
    gas.s_0 = 0;
    gas.s_0 = -s__T_v(T, 1.0);
    gas.cv_ref = ideal_specific_heat::phip__T(T);
    Pmin = 1e-5;
    Tmin = 1e-6;
    vmin = minimum_specific_volume() * 1.000000001;
}

} // namespace thermodynamics
