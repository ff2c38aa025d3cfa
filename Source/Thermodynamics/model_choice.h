// SPDX-License-Identifier: MIT
// One switch over gas_type for a whole computation. The computation is compiled for each model, so that it evaluates
// q(T) and f(v) only once per state.
#pragma once

#include "Equations/complete.h"
#include "Thermodynamics/clausius_II_gas.h"
#include "Thermodynamics/gas_properties.h"
#include "Thermodynamics/ideal_Z_gas.h"
#include "Thermodynamics/ideal_gas.h"
#include "Thermodynamics/ideal_specific_heat.h"
#include "Thermodynamics/martin_hou_gas.h"
#include "Thermodynamics/peng_robinson_gas.h"
#include "Thermodynamics/redlich_kwong_gas.h"
#include "Thermodynamics/soave_redlich_kwong_gas.h"
#include "Thermodynamics/thermodynamics.h"
#include "Thermodynamics/van_der_waals_gas.h"

namespace thermodynamics {

/// The ideal part of the active fluid.
inline separated_attraction::ideal_part active_ideal_part() {
    return {ideal_specific_heat::active, gas_properties::gas.e_0, gas_properties::gas.s_0};
}

/// Calls `use` with the parameters of the active model, or `without` if there is no model.
template <class Use, class Without>
auto with_parameters(Use use, Without without) {
#define OSTREL_USE_CASE(unused, type, Model, module, ...) \
    case type:                                            \
        return use(module::active);
    switch (gas_type) {
        OSTREL_MODELS(OSTREL_USE_CASE, )
    default:
        return without();
    }
#undef OSTREL_USE_CASE
}

/// Calls `use` with the active equation of state, or `without` if there is no model.
template <class Use, class Without>
auto with_model(Use use, Without without) {
    return with_parameters(
        [&]<class Model>(const Model &model) {
            return use(equations::equation<Model>{model, active_ideal_part(), {Tmin, Pmin, vmin}});
        },
        without);
}

/// Calls `use` with the active equation of state, or with that of no_model if there is no model.
template <class Use>
auto with_model_or_zeros(Use use) {
    return with_model(use, [&] {
        return use(equations::equation_of(equations::no_model{}, gas_properties::gas, ideal_specific_heat::active,
                                          {Tmin, Pmin, vmin}));
    });
}

} // namespace thermodynamics
