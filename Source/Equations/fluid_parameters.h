// SPDX-License-Identifier: MIT
// All parameters of one fluid, first as a parameter file gives them and then completed.
//
// The sections of the file, in their order: constants, gas_type, the model's own parameters, heat capacity, transport.
#pragma once

#include "Equations/complete.h"
#include "Equations/transport.h"

namespace equations {

struct fluid_parameters {
    gas_constants constants{};
    std::int32_t gas_type = 0; ///< as read; if no model has this code, `model` is no_model
    any_model model{};
    ideal_gas_heat::heat_capacity heat{};
    transport::parameters transport{};
    bounds lowest{};
};

/// The model that has this code, with empty parameters; no_model if there is none.
any_model empty_model(std::int32_t code);

/// Reads the sections up to the heat capacity. read_model() reads the model's own parameters as soon as gas_type is
/// known.
template <class ReadModel>
void read_sections(records::record_reader &in, gas_constants &fluid, std::int32_t &gas_type, ReadModel read_model,
                   ideal_gas_heat::heat_capacity &heat) {
    read(in, fluid);
    if (in.read({{"gas_type", gas_type}}))
        read_model();
    read(in, heat);
}

/// Writes these sections; write_model() writes the model's own parameters.
template <class WriteModel>
void write_sections(records::record_writer &out, gas_constants &fluid, std::int32_t gas_type, WriteModel write_model,
                    const ideal_gas_heat::heat_capacity &heat) {
    write(out, fluid);
    const model_names *const model = find_model(gas_type);
    out.record({gas_type, "     --> Gas type : ", model != nullptr ? model->long_name : ""});
    write_model();
    write(out, heat);
}

/// Reads a whole parameter file. After a failure the reader has the message, and the parameters before it are read.
OSTREL_VISIBLE void read(records::record_reader &in, fluid_parameters &fluid);
/// Writes a whole parameter file.
OSTREL_VISIBLE void write(records::record_writer &out, fluid_parameters &fluid);
/// Completes a model, the heat capacity, the reference state and transport; the model need not be that of the fluid.
/// Returns the bounds; a message says what could not be completed.
template <class Model>
std::optional<bounds> complete(Model &model, fluid_parameters &fluid, records::error_text &message) {
    const std::optional<bounds> lowest = complete(model, fluid.constants, fluid.heat, message);
    if (lowest) {
        const auto cp = [&](double t, double vr) {
            return equation_of(model, fluid.constants, fluid.heat).properties(t, vr, [](const auto &state) {
                return state.cp();
            });
        };
        transport::complete(fluid.transport, fluid.heat, fluid.constants, cp, message);
    }
    return lowest;
}
/// Completes the parameters; call it once after each reading. Reports why a fluid cannot be completed.
OSTREL_VISIBLE void complete(fluid_parameters &fluid, records::error_text &message);

} // namespace equations
