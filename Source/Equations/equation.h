// SPDX-License-Identifier: MIT
// An equation of state: a model, the part of the ideal gas, and the bounds that searches keep.
//
// A search that keeps T or v fixed uses an isotherm or an isochore, so that the fixed half of a state is evaluated
// once. The template argument `these` names the functions of the ideal gas that a state has; no others are computed.
#pragma once

#include "Equations/derived_properties.h"
#include "Equations/models.h"

namespace equations {

/// The lowest reduced temperature, pressure and volume that searches use.
struct bounds {
    double Tmin = 0;
    double Pmin = 0;
    double vmin = 0;
};

/// A state, with `these` functions of the ideal gas at its temperature.
template <class Model, unsigned these>
struct evaluated_state {
    separated_attraction::state_point<Model, double> point;
    separated_attraction::ideal_part_at<these> ideal;

    OSTREL_INLINE derived_properties::properties<separated_attraction::state_point<Model, double>,
                                                 separated_attraction::ideal_part_at<these>>
    all() const {
        return {point, ideal};
    }
};

/// The states at one temperature. The call operator takes the volume.
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

/// The states at one volume. The call operator takes the temperature.
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

template <class Model>
struct equation {
    using model_type = Model;
    using state_point = separated_attraction::state_point<Model, double>;

    const Model &model;
    separated_attraction::ideal_part ideal;
    bounds lowest{};

    template <unsigned these>
    OSTREL_INLINE isotherm<Model, these> at_temperature(double T) const {
        return {model, ideal, T};
    }
    template <unsigned these>
    OSTREL_INLINE isochore<Model, these> at_volume(double v) const {
        return {model, ideal, v};
    }
    template <unsigned these>
    OSTREL_INLINE evaluated_state<Model, these> at(double T, double v) const {
        return {{model, T, v}, {ideal, T}};
    }
    /// Calls use(properties) with the derived properties at (T, v). Only those functions of the ideal gas are computed
    /// that `use` asks for.
    template <class Use>
    OSTREL_INLINE auto properties(double T, double v, Use use) const {
        const state_point point(model, T, v);
        return use(derived_properties::properties<state_point>{point, ideal});
    }
};

// Only some standard libraries have vectors that exist before the program runs.
#ifdef __cpp_lib_constexpr_vector
#define OSTREL_CONSTINIT constinit
#else
#define OSTREL_CONSTINIT
#endif

/// The heat capacity that goes with no_model: energy and entropy are zero.
inline OSTREL_CONSTINIT const ideal_gas_heat::heat_capacity no_heat = [] {
    ideal_gas_heat::heat_capacity heat;
    heat.Rgas = heat.P_ref = heat.v_ref = 1.0;
    return heat;
}();

/// The equation of state of a fluid, from its parts.
template <class Model>
equation<Model> equation_of(const Model &model, const gas_constants &fluid, const ideal_gas_heat::heat_capacity &heat,
                            const bounds &lowest = {}) {
    if constexpr (is_model<Model>)
        return {model, {heat, fluid.e_0, fluid.s_0}, lowest};
    else
        return {model, {no_heat, 0.0, 0.0}, lowest};
}

} // namespace equations
