// SPDX-License-Identifier: MIT
#include "Equations/fluid_parameters.h"

#include <utility>

namespace equations {

any_model empty_model(std::int32_t code) {
    any_model model;
#define OSTREL_EMPTY_MODEL(unused, type, Model, ...) \
    case type:                                       \
        model.emplace<Model>();                      \
        break;
    switch (code) {
        OSTREL_MODELS(OSTREL_EMPTY_MODEL, )
    default:
        break;
    }
#undef OSTREL_EMPTY_MODEL
    return model;
}

void read(records::record_reader &in, fluid_parameters &fluid) {
    const auto read_model = [&] {
        fluid.model = empty_model(fluid.gas_type);
        std::visit([&](auto &model) { read_parameters(in, model); }, fluid.model);
    };
    read_sections(in, fluid.constants, fluid.gas_type, read_model, fluid.heat);
    read(in, fluid.transport);
}

void write(records::record_writer &out, fluid_parameters &fluid) {
    const auto write_model = [&] { std::visit([&](const auto &model) { write_parameters(out, model); }, fluid.model); };
    write_sections(out, fluid.constants, fluid.gas_type, write_model, fluid.heat);
    write(out, fluid.transport);
}

void complete(fluid_parameters &fluid, records::error_text &message) {
    std::visit(
        [&](auto &model) {
            if (const auto found = complete(model, fluid, message))
                fluid.lowest = *found;
        },
        fluid.model);
}

} // namespace equations
