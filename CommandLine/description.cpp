// SPDX-License-Identifier: MIT
#include "CommandLine/description.h"

#include "CommandLine/notes.h"
#include "CommandLine/report.h"
#include "Thermodynamics/model_choice.h"
#include "Thermodynamics/transport_properties.h"

#include <algorithm>
#include <ostream>
#include <span>

namespace command {
namespace {

using equations::constant;
using equations::gas_constants;
using equations::given;
using ideal_specific_heat::heat_capacity;

/// The constants that the initialisation of a fluid computes, in SI units.
constexpr constant completed[] = {
    {"R", "J/(kg K)", "specific gas constant", given::always, &gas_constants::R},
    {"omega", "-", "acentric factor", given::with_critical_data, &gas_constants::omega},
    {"Zc", "-", "critical compressibility factor of the model", given::with_critical_data, &gas_constants::Zc},
    {"vc", "m3/kg", "critical specific volume of the model", given::with_critical_data, &gas_constants::vc},
    {"v_ref", "m3/kg", "reference specific volume of the model", given::with_reference_state, &gas_constants::v_ref},
    {"cv", "J/(kg K)", "of the ideal gas at Tc", given::with_critical_data, &gas_constants::cv0_ref},
    {"cv", "J/(kg K)", "of the ideal gas at T_ref", given::with_reference_state, &gas_constants::cv0_ref},
    {"eta", "Pa s", "viscosity at Tc and vc", given::with_critical_data, &gas_constants::mu_ref},
    {"lambda", "W/(m K)", "thermal conductivity at Tc and vc", given::with_critical_data, &gas_constants::kk_ref},
    {"eta", "Pa s", "viscosity at T_ref and v_ref", given::with_reference_state, &gas_constants::mu_ref},
    {"lambda", "W/(m K)", "thermal conductivity at T_ref and v_ref", given::with_reference_state,
     &gas_constants::kk_ref},
};

/// Adds a row for each of the constants that the fluid has.
void add(report &rows, const gas_constants &fluid, std::span<const constant> constants) {
    for (const constant &entry : constants)
        if (equations::applies(entry, fluid.vapor))
            rows.rows.push_back({std::string(entry.name), fluid.*entry.value / entry.read_factor,
                                 std::string(entry.unit), std::string(entry.meaning)});
}

report table_of_constants() {
    return {.columns = {{"name"}, {"value"}, {"unit"}, {"meaning"}}};
}

/// A list in the form of parameter files, with 8*601.5 for a value that stands eight times.
template <class Value>
std::string list(std::span<const Value> values) {
    std::string text;
    for (std::size_t i = 0; i < values.size();) {
        std::size_t next = i;
        while (next < values.size() && values[next] == values[i])
            ++next;
        text += text.empty() ? "" : " ";
        text += next - i > 1 ? std::to_string(next - i) + "*" : "";
        text += number(values[i]);
        i = std::max(next, i + 1);
    }
    return text.empty() ? "none" : text;
}
template <class Value>
std::string list(const std::vector<Value> &values) {
    return list(std::span(values));
}

/// Describes the terms of the heat capacity in the units of the file.
void describe_terms(std::ostream &out, const heat_capacity &h) {
    const std::string cv = h.coeff_adim ? " R" : " J/(kg K)";
    const std::string temperature = h.coeff_adim ? " T_ref" : " K";
    switch (h.function_type) {
    case ideal_gas_heat::constant:
        out << "  cv_0 = " << number(h.cv_0) << cv << '\n';
        break;
    case ideal_gas_heat::power_law:
        out << "  cv_oo_Tc = " << number(h.cv_oo_Tc) << cv << ", np = " << number(h.np) << '\n';
        break;
    case ideal_gas_heat::polynomial:
        out << "  cv_0 = " << number(h.cv_0) << cv << '\n'
            << "  a_i  = " << list(h.a_i) << cv << "/K^n_i\n"
            << "  n_i  = " << list(h.n_i) << '\n';
        break;
    case ideal_gas_heat::piecewise:
        for (std::size_t k = 0; k < h.cv_0_k.size(); ++k) {
            const ideal_gas_heat::powers terms = interval_terms(h, k);
            out << "  above " << number(h.T_k[k]) << temperature << ": cv_0_k = " << number(h.cv_0_k[k]) << cv;
            if (terms.count > 0)
                out << ", a_ik = " << list(std::span(terms.coefficient, terms.count)) << cv
                    << "/K^n_ik, n_ik = " << list(std::span(terms.exponent, terms.count));
            out << '\n';
        }
        break;
    case ideal_gas_heat::einstein:
        out << "  cv_0 = " << number(h.cv_0) << cv << '\n' << "  Tv   = " << list(h.Tv) << temperature << '\n';
        break;
    default:
        break;
    }
}

void describe_heat_capacity(std::ostream &out, const heat_capacity &h) {
    const auto *const form = std::find_if(std::begin(ideal_gas_heat::forms), std::end(ideal_gas_heat::forms),
                                          [&](const auto &candidate) { return candidate.code == h.function_type; });
    out << "\nHeat capacity of the ideal gas: " << h.function_type << ", ";
    if (form == std::end(ideal_gas_heat::forms)) {
        out << "unknown\n";
        return;
    }
    out << form->name << "\n  " << form->equation << '\n';
    describe_terms(out, h);
}

/// Describes a transport model: its name, its parameters and a note on its result.
void describe_transport(std::ostream &out, std::string_view title, std::int32_t code,
                        std::span<const transport::model> models, const std::string &note) {
    const auto model =
        std::find_if(models.begin(), models.end(), [&](const auto &candidate) { return candidate.code == code; });
    out << '\n' << title << ": " << code << ", " << (model != models.end() ? model->name : "unknown") << '\n';
    if (model == models.end())
        return;
    report parameters = {.columns = {{"name"}, {"value"}, {"unit"}}};
    for (const auto &field : model->record())
        parameters.rows.push_back(
            {std::string(field.name), transport_properties::active.*field.value, std::string(field.unit)});
    write_columns(out, parameters, "  ");
    if (!note.empty())
        out << "  " << note << '\n';
}

} // namespace

std::string model_name() {
    const equations::model_names *const model = equations::find_model(thermodynamics::gas_type);
    return std::string(model != nullptr ? model->name : "unknown");
}

void describe(std::ostream &out, const parameter_file &file) {
    const gas_constants &read = file.constants;
    out << printable(read.name.trimmed()) << '\n' << printable(read.label.trimmed()) << '\n' << file.path << "\n\n";
    out << "Constants in the file, " << (read.vapor ? "with critical data" : "with a reference state") << '\n';
    report constants = table_of_constants();
    add(constants, read, {&equations::molar_mass, 1});
    add(constants, read, equations::reference_and_critical);
    add(constants, read, equations::of_transport);
    write_columns(out, constants, "  ");

    out << "\nEquation of state: " << thermodynamics::gas_type << ", " << model_name() << '\n';
    if (thermodynamics::gas_type == gas_types::ideal_Z)
        out << "  Z_const = " << number(ideal_Z_gas::active.Z_const) << '\n';
    describe_heat_capacity(out, file.heat_capacity);
    describe_transport(out, "Viscosity", transport_properties::active.viscosity_model, transport::viscosity_models,
                       viscosity_note());
    describe_transport(out, "Thermal conductivity", transport_properties::active.thermal_cond_model,
                       transport::thermal_cond_models, conductivity_note());
    if (!file.not_initialised.empty())
        return;
    out << "\nWith this model\n";
    report model = table_of_constants();
    add(model, gas_properties::gas, completed);
    write_columns(out, model, "  ");
}

} // namespace command
