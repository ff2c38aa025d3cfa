// SPDX-License-Identifier: MIT
// The list of all variables of the library. With it they are reset to their first values, copied and restored.
#pragma once

#include "Algebra/lin_algebra.h"
#include "Ostrel_Main.h"
#include "Thermodynamics/model_choice.h"
#include "Thermodynamics/transport_properties.h"

#include <tuple>
#include <type_traits>

namespace library_state {

/// The variables that loading a fluid sets.
inline auto of_fluid() {
#define OSTREL_ACTIVE_MODEL(unused, type, Model, module, ...) , module::active
    return std::tie(gas_properties::gas, ideal_specific_heat::active, ideal_specific_heat::errmsg,
                    transport_properties::active, thermodynamics::gas_type, thermodynamics::Tmin, thermodynamics::Pmin,
                    thermodynamics::vmin OSTREL_MODELS(OSTREL_ACTIVE_MODEL, ));
#undef OSTREL_ACTIVE_MODEL
}

/// The variables that loading a fluid does not set: the saturation table, the error text of the matrix routines, and
/// the kept state with its key.
inline auto of_library() {
    return std::tie(thermodynamics::TTs, thermodynamics::PPs, thermodynamics::vvls, thermodynamics::vvgs,
                    lin_algebra::linalg_errmsg, ostrel::os_fluid, ostrel::os_inputspec, ostrel::os_input1,
                    ostrel::os_input2, ostrel::T, ostrel::v);
}

inline auto all() {
    return std::tuple_cat(of_fluid(), of_library());
}

/// Gives each variable the default value of its type.
template <class... Variables>
void clear(const std::tuple<Variables &...> &variables) {
    std::apply([](auto &...variable) { ((variable = std::remove_reference_t<decltype(variable)>{}), ...); }, variables);
}

/// Resets the variables of the fluid: afterwards no fluid is loaded.
inline void forget_fluid() {
    clear(of_fluid());
}

/// Resets all variables to their first values; the host's routines stay in use.
inline void forget_everything() {
    clear(all());
    ostrel::os_input1 = ostrel::os_input2 = ostrel::failure_value;
}

namespace implementation {
template <class... Variables>
std::tuple<Variables...> copy(const std::tuple<Variables &...> &variables) {
    return variables;
}
} // namespace implementation

/// A copy of all variables.
inline auto keep() {
    return implementation::copy(all());
}
using kept = decltype(keep());
inline void restore(const kept &values) {
    all() = values;
}

} // namespace library_state
