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
    const bool dilute = active.thermal_cond_model == transport_properties::dilute_gas_conductivity;
    if (!dilute && active.thermal_cond_model != transport_properties::dense_gas_conductivity)
        return {};
    // The dilute gas's formula takes its viscosity in 0.1 Pa s, whatever the viscosity model answers in.
    const std::string factor =
        dilute && active.viscosity_model != transport_properties::dilute_gas ? "175.06" : "17.506";
    return "lambda by Chung's models is " + factor + " times smaller than W/(m K): multiply it by " + factor + ".";
}

} // namespace command
