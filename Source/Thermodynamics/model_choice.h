// SPDX-License-Identifier: MIT
// One switch over gas_type for whole computations: what runs inside is compiled for the model, so that it
// gets all it wants of a state from one evaluation of q(T) and f(v).
#pragma once

#include "Thermodynamics/clausius_II_gas.h"
#include "Thermodynamics/ideal_Z_gas.h"
#include "Thermodynamics/ideal_gas.h"
#include "Thermodynamics/martin_hou_gas.h"
#include "Thermodynamics/peng_robinson_gas.h"
#include "Thermodynamics/redlich_kwong_gas.h"
#include "Thermodynamics/soave_redlich_kwong_gas.h"
#include "Thermodynamics/thermodynamics.h"
#include "Thermodynamics/van_der_waals_gas.h"

namespace thermodynamics {

/// Calls `use` with the active model's parameters, or `without` where there is no model.
template <class Use, class Without>
auto with_model(Use use, Without without) {
#define OSTREL_USE_CASE(unused, type, module, X, ...) \
    case type:                                        \
        return use(module::active);
    switch (gas_type) {
        OSTREL_MODELS(OSTREL_USE_CASE, )
    default:
        return without();
    }
#undef OSTREL_USE_CASE
}

} // namespace thermodynamics
