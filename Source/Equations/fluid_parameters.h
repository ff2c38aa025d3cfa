// SPDX-License-Identifier: MIT
// All parameters of one fluid, as a parameter file gives them and as they are completed.
//
// The file's sections follow each other: constants, gas_type, the model's own parameters, heat capacity, transport.
#pragma once

#include "Equations/complete.h"
#include "Equations/transport.h"

namespace equations {

struct fluid_parameters {
    gas_constants constants{};
    std::int32_t gas_type = 0; ///< as it was read; `model` is no_model where no model has this code
    any_model model{};
    ideal_gas_heat::heat_capacity heat{};
    transport::parameters transport{};
    bounds lowest{};
};

/// Reads the sections up to the heat capacity into any instance of them; read_model() reads the model's own parameters
/// once gas_type is known.
template <class ReadModel>
void read_sections(records::record_reader &in, gas_constants &fluid, std::int32_t &gas_type, ReadModel read_model,
                   ideal_gas_heat::heat_capacity &heat) {
    read(in, fluid);
    if (in.read({{"gas_type", gas_type}}))
        read_model();
    read(in, heat);
}

/// Writes them; write_model() writes the model's own parameters.
template <class WriteModel>
void write_sections(records::record_writer &out, gas_constants &fluid, std::int32_t gas_type, WriteModel write_model,
                    const ideal_gas_heat::heat_capacity &heat) {
    write(out, fluid);
    const model_names *const model = find_model(gas_type);
    out.record({gas_type, "     --> Gas type : ", model != nullptr ? model->long_name : ""});
    write_model();
    write(out, heat);
}

/// Reads a whole parameter file. A failure stands in the reader, and the parameters read before it stay.
OSTREL_VISIBLE void read(records::record_reader &in, fluid_parameters &fluid);
/// Writes it.
OSTREL_VISIBLE void write(records::record_writer &out, fluid_parameters &fluid);
/// Completes what was read, once; reports what keeps it from being completed.
OSTREL_VISIBLE void complete(fluid_parameters &fluid, records::error_text &message);

} // namespace equations
