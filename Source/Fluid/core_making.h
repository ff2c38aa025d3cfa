// SPDX-License-Identifier: MIT
// Makes the core of one model from the parameters of a file.
#pragma once

#include "Fluid/evaluation.h"

#include <limits>
#include <string>

namespace fluid {

/// A state by which people set the zeros of enthalpy and entropy: the saturated liquid at a temperature or a pressure.
struct zero_state {
    double T;        ///< [K], or 0
    double P;        ///< [Pa], or 0
    double enthalpy; ///< [J/kg]
    double entropy;  ///< [J/(kg K)]
    const char *name;
};
inline zero_state state_of(zero_point wanted) {
    switch (wanted) {
    case zero_point::iir:
        return {273.15, 0, 200e3, 1e3, "iir: the saturated liquid at 273.15 K"};
    case zero_point::ashrae:
        return {233.15, 0, 0, 0, "ashrae: the saturated liquid at 233.15 K"};
    default:
        return {0, equations::pascal_per_atm, 0, 0, "nbp: the saturated liquid at 101325 Pa"};
    }
}

/// Rackett's volume of the saturated liquid at 0.7 Tc [R Tc/Pc]; H. G. Rackett, J. Chem. Eng. Data 15 (1970) 514.
inline double rackett_volume(double Zc) {
    return std::pow(Zc, 1.0 + std::pow(0.3, 2.0 / 7.0));
}

/// What is wrong with the constants of a file; empty if states can be computed from them.
inline std::string flaw_of(const equations::gas_constants &constants) {
    const auto flaw = [&](const equations::constant &entry) -> std::string {
        const double value = constants.*entry.value;
        const bool used = equations::applies(entry, constants.vapor) && entry.value != &equations::gas_constants::v_ref;
        if (!used || (value > 0 && value < std::numeric_limits<double>::infinity()))
            return "";
        return std::string(entry.name) + ", " + std::string(entry.meaning) + ", must be a positive number";
    };
    std::string result = flaw(equations::molar_mass);
    for (const equations::constant &entry : equations::reference_and_critical)
        if (result.empty())
            result = flaw(entry);
    if (result.empty() && constants.vapor && constants.Tb >= constants.Tc)
        result = "Tb, the normal boiling temperature, must be below Tc";
    return result;
}

template <class Model>
std::unique_ptr<const core> make_core(equations::fluid_parameters fluid, Model model, const settings &wanted,
                                      std::string &why) {
    constexpr bool cubic_of_two = std::is_base_of_v<equations::redlich_kwong, Model> ||
                                  std::is_base_of_v<cubic_attraction::soave_parameters, Model>;
    if (why = flaw_of(fluid.constants); !why.empty())
        return nullptr;
    const double Zc = fluid.constants.Zc;
    records::error_text message;
    equations::complete(model, fluid, message);
    if (!message.clear()) {
        why = message.trimmed();
        return nullptr;
    }
    ideal_gas_heat::count_equal_terms(fluid.heat);
    auto made = std::make_unique<core_of<Model>>(fluid, model, Zc, wanted);
    if constexpr (cubic_of_two) {
        if (wanted.translated_volume) {
            const solved liquid = made->states().from_T_q(0.7 * made->states().T_c(), 0.0);
            const double unit = made->gas_constants().Zc; // v_ref in R Tc/Pc
            if (liquid.status != OSTREL_OK) {
                why = "volume=translated needs the saturated liquid at 0.7 Tc, which this fluid does not have";
                return nullptr;
            }
            made->translate(liquid.V - rackett_volume(Zc) / unit);
        }
    }
    if (wanted.reference != zero_point::critical) {
        const zero_state zero = state_of(wanted.reference);
        const equations::gas_constants &g = made->gas_constants();
        solved liquid;
        if (zero.T > 0)
            liquid = made->states().from_T_q(zero.T / g.T_ref, 0.0);
        else
            liquid = made->states().from_P_q(zero.P / g.P_ref, 0.0);
        if (liquid.status != OSTREL_OK) {
            why = std::string("this fluid does not have the state of reference=") + zero.name;
            return nullptr;
        }
        properties at = made->states().at(liquid.T, liquid.r);
        at.P = liquid.P;
        made->shift(zero.enthalpy / (g.P_ref * g.v_ref) - at.h(), zero.entropy / g.R - at.s);
    }
    made->complete_constants();
    return made;
}

} // namespace fluid
