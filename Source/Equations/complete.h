// SPDX-License-Identifier: MIT
// The completion of a fluid that has been read: its model, its heat capacity and its reference state.
//
// Computes   the model's parameters, the dimensional heat capacity, and the offsets with which e = s = 0 at the
//            critical point or, without critical data, at T_ref/Z_ref and v_ref
// Given      the constants, the model's own parameters and the heat capacity as they were read
// Returned   these parameters, completed, and the bounds of searches
// Valid      once after each reading, since each run scales a dimensionless heat capacity. The completion stops at the
//            first part that reports a message; the parts before it stay completed
#pragma once

#include "Equations/equation.h"

#include <optional>

namespace equations {

/// Completes a fluid and returns its bounds. Returns none if the fluid cannot be completed, which is reported, or if a
/// message stood there before.
template <class Model>
std::optional<bounds> complete(Model &model, gas_constants &fluid, ideal_gas_heat::heat_capacity &heat,
                               records::error_text &message) {
    initialise(model, fluid, message);
    if (!message.clear())
        return std::nullopt;
    ideal_gas_heat::initialise(heat, fluid, message);
    if (!message.clear())
        return std::nullopt;
    const double T = 1.0 / fluid.Z_ref;
    fluid.e_0 = 0;
    fluid.s_0 = 0;
    const equation<Model> at_zero = equation_of(model, fluid, heat);
    fluid.e_0 = -e__T_v(model, at_zero.ideal, T, 1.0);
    fluid.s_0 = -s__T_v(model, at_zero.ideal, T, 1.0);
    fluid.cv_ref = ideal_gas_heat::phip_reduced(heat, T);
    const double lowest_volume = is_model<Model> ? separated_attraction::minimum_specific_volume(model) : 0.0;
    return bounds{1e-6, 1e-5, lowest_volume * 1.000000001};
}

} // namespace equations
