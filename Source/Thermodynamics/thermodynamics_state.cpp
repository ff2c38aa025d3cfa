// SPDX-License-Identifier: MIT
// The choice of the model, the reference state, and the state vectors.
#include "Equations/fluid_parameters.h"
#include "Thermodynamics/model_choice.h"

#include <algorithm>

namespace thermodynamics {

using gas_properties::gas;
using ideal_specific_heat::errmsg;

std::int32_t gas_type = 0;
constinit const std::array<std::string_view, equations::model_count> gas_short_names = [] {
    std::array<std::string_view, equations::model_count> names;
    std::transform(equations::names_of_models.begin(), equations::names_of_models.end(), names.begin(),
                   [](const auto &row) { return row.short_name; });
    return names;
}();
constinit const std::array<std::string_view, equations::model_count> gas_names = [] {
    std::array<std::string_view, equations::model_count> names;
    std::transform(equations::names_of_models.begin(), equations::names_of_models.end(), names.begin(),
                   [](const auto &row) { return row.long_name; });
    return names;
}();
double Tmin = 0;
double Pmin = 0;
double vmin = 0;

// Defines an operation of the active model, for example
//   double P__T_v(double T, double v) {
//       return with_model([&](const auto &equation) {
//           return separated_attraction::P__T_v(equation.model, equation.ideal, T, v);
//       }, [] { return 0.0; });
//   }
#define OSTREL_DISPATCH_SCALAR(unused, operation)                                             \
    double operation(double T, double v) {                                                    \
        return with_model(                                                                    \
            [&](const auto &equation) {                                                       \
                return separated_attraction::operation(equation.model, equation.ideal, T, v); \
            },                                                                                \
            [] { return 0.0; });                                                              \
    }
#define OSTREL_DISPATCH_ARRAY(unused, operation, size)                                          \
    void operation(double T, double v, std::array<double, size> &result) {                      \
        with_model(                                                                             \
            [&](const auto &equation) {                                                         \
                result = separated_attraction::operation(equation.model, equation.ideal, T, v); \
            },                                                                                  \
            [] {});                                                                             \
    }
OSTREL_SCALAR_OPERATIONS(OSTREL_DISPATCH_SCALAR, )
OSTREL_ARRAY_OPERATIONS(OSTREL_DISPATCH_ARRAY, )

double minimum_specific_volume() {
    return with_parameters([](const auto &model) { return separated_attraction::minimum_specific_volume(model); },
                           [] { return 0.0; });
}

basic_state eos__T_v(double T, double v) {
    return {T, v, e__T_v(T, v), P__T_v(T, v)};
}

void eos__e_v(double e, double v, basic_state &result, guess start) {
    const double T = T__e_v(e, v, start);
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

void eos_ext__e_v(double e, double v, extended_state &result, guess start) {
    const double T = T__e_v(e, v, start);
    if (errmsg.clear())
        result = eos_ext__T_v(T, v);
}

namespace {

void read_sections(records::record_reader &in) {
    const auto read_model = [&] { with_parameters([&](auto &model) { read_parameters(in, model); }, [] {}); };
    equations::read_sections(in, gas, gas_type, read_model, ideal_specific_heat::active);
}

} // namespace

void read_param_thermodynamics(records::file_reader &unit) {
    read_sections(unit);
}

void read_param_thermodynamicsdb(records::line_reader &lines) {
    read_sections(lines);
}

void write_param_thermodynamics(records::record_writer &unit) {
    const auto write_model = [&] { with_parameters([&](const auto &model) { write_parameters(unit, model); }, [] {}); };
    equations::write_sections(unit, gas, gas_type, write_model, ideal_specific_heat::active);
}

void init_thermodynamics() {
    const auto complete = [](auto &model) {
        return equations::complete(model, gas, ideal_specific_heat::active, errmsg);
    };
    equations::no_model none;
    if (const auto lowest = with_parameters(complete, [&] { return complete(none); })) {
        Tmin = lowest->Tmin;
        Pmin = lowest->Pmin;
        vmin = lowest->vmin;
    }
}

} // namespace thermodynamics
