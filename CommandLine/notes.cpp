// SPDX-License-Identifier: MIT
#include "CommandLine/notes.h"

#include "Thermodynamics/thermodynamics.h"
#include "Thermodynamics/transport_properties.h"

#include <cmath>

namespace command {

using transport_properties::active;

bool has_saturated_states() {
    return thermodynamics::gas_type != gas_types::ideal_gas && thermodynamics::gas_type != gas_types::ideal_Z;
}

bool equal_phases(double liquid, double vapor) {
    return !(liquid < 0.99 * vapor);
}

std::string viscosity_note() {
    if (active.viscosity_model != transport::dilute_gas)
        return {};
    return "eta by Chung's dilute gas is in 0.1 Pa s: divide it by 10 for Pa s.";
}

std::string conductivity_note() {
    using namespace transport;
    const bool same_kind = active.thermal_cond_model == active.viscosity_model;
    const auto scaled = [](const std::string &factor) {
        return "lambda by Chung's models is " + factor + " times smaller than W/(m K): multiply it by " + factor + ".";
    };
    switch (active.thermal_cond_model) {
    case dilute_gas_conductivity:
        // The formula takes a viscosity in 0.1 Pa s, but only viscosity 2 answers in this unit.
        return scaled(same_kind ? "17.506" : "175.06");
    case dense_gas_conductivity:
        return same_kind ? scaled("17.506")
                         : "lambda by Chung's dense gas lacks the dilute gas's part without Chung's dense-gas "
                           "viscosity: do not use it.";
    case constant_Prandtl:
        // Before initialisation kk_ref is not computed.
        if (active.vc > 0 && (active.kk_ref == 0 || !std::isfinite(active.kk_ref)))
            return "lambda by a constant Prandtl number is scaled by cp at the critical point, which diverges: do not "
                   "use it.";
        return {};
    default:
        return {};
    }
}

} // namespace command
