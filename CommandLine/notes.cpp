// SPDX-License-Identifier: MIT
#include "CommandLine/notes.h"

#include "Thermodynamics/transport_properties.h"

namespace command {

using transport_properties::active;

std::string viscosity_note() {
    if (active.viscosity_model != transport_properties::dilute_gas)
        return {};
    return "eta by Chung's dilute gas is in 0.1 Pa s: divide it by 10 for Pa s.";
}

std::string conductivity_note() {
    using namespace transport_properties;
    const bool same_kind = active.thermal_cond_model == active.viscosity_model;
    const auto scaled = [](const std::string &factor) {
        return "lambda by Chung's models is " + factor + " times smaller than W/(m K): multiply it by " + factor + ".";
    };
    switch (active.thermal_cond_model) {
    case dilute_gas_conductivity:
        // Its formula takes a viscosity in 0.1 Pa s, whatever the viscosity model answers in.
        return scaled(same_kind ? "17.506" : "175.06");
    case dense_gas_conductivity:
        return same_kind
                   ? scaled("17.506")
                   : "lambda by Chung's dense gas lacks the dilute gas's part without his viscosity: do not use it.";
    default:
        return {};
    }
}

} // namespace command
