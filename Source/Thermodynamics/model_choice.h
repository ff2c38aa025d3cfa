// SPDX-License-Identifier: MIT
// One switch over gas_type for whole computations: what runs inside is compiled for the model, so that it
// gets all it wants of a state from one evaluation of q(T) and f(v).
#pragma once

#include "Thermodynamics/clausius_II_gas.h"
#include "Thermodynamics/derived_properties.h"
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

/// What stands in for a model where there is none: pressure, energy, entropy and their derivatives are zero.
constexpr ideal_specific_heat::heat_capacity heat_without_form() {
    ideal_specific_heat::heat_capacity heat;
    heat.Rgas = heat.P_ref = heat.v_ref = 1.0;
    return heat;
}
inline constinit const ideal_specific_heat::heat_capacity no_heat = heat_without_form();
inline constinit const ideal_gas::parameters no_model{};

/// Calls `use` with the active model's parameters and ideal part, or those that stand in for them.
template <class Use>
auto with_model_or_zeros(Use use) {
    return with_model([&](const auto &model) { return use(model, separated_attraction::active_ideal_part()); },
                      [&] {
                          return use(no_model, separated_attraction::ideal_part{no_heat, 0.0, 0.0});
                      });
}

/// A state with `these` of the ideal gas at its temperature.
template <class Model, unsigned these>
struct evaluated_state {
    separated_attraction::state_point<Model, double> point;
    separated_attraction::ideal_part_at<these> ideal;

    derived_properties::properties<separated_attraction::state_point<Model, double>,
                                   separated_attraction::ideal_part_at<these>>
    all() const {
        return {point, ideal};
    }
};

/// The states at one temperature: what depends on it is evaluated once, and the call operator adds a volume.
template <class Model, unsigned these>
class isotherm {
public:
    isotherm(const Model &model, const separated_attraction::ideal_part &ideal, double T)
        : model_(model), side_(model, T), ideal_(ideal, T) {}
    OSTREL_INLINE evaluated_state<Model, these> operator()(double v) const {
        return {{model_, side_, separated_attraction::volume_side<Model, double>(model_, v)}, ideal_};
    }

private:
    const Model &model_;
    separated_attraction::temperature_side<Model, double> side_;
    separated_attraction::ideal_part_at<these> ideal_;
};

/// The states at one volume.
template <class Model, unsigned these>
class isochore {
public:
    isochore(const Model &model, const separated_attraction::ideal_part &ideal, double v)
        : model_(model), side_(model, v), ideal_(ideal) {}
    OSTREL_INLINE evaluated_state<Model, these> operator()(double T) const {
        return {{model_, separated_attraction::temperature_side<Model, double>(model_, T), side_}, {ideal_, T}};
    }

private:
    const Model &model_;
    separated_attraction::volume_side<Model, double> side_;
    separated_attraction::ideal_part ideal_;
};

} // namespace thermodynamics
