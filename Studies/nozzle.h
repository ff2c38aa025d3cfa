// SPDX-License-Identifier: MIT
// Isentropic expansion from a total state: velocity, Mach number, mass flux and area, and the throat.
//
// Stationary flow in equilibrium, h + velocity^2/2 = h0 and s = s0. Between the phases the speed of sound is that of
// the homogeneous mixture in equilibrium, c^2 = dp/dd|s. On the saturation line it jumps; there the table has both
// values.
#pragma once

#include "Studies/points.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace studies {

struct nozzle_step {
    std::string_view place; ///< "total state", "throat", "outlet", "saturation line"; empty between them
    point at;               ///< static state
    double velocity = 0;    ///< [m/s]
    double sound = 0;       ///< [m/s] speed of sound
    double mach = 0;        ///< [1]
    double mass_flux = 0;   ///< [kg/(m2 s)]
    double area_ratio = 0;  ///< [1] to the area of the throat; a NaN if there is no throat
    double fundamental = 0; ///< [1] fundamental derivative; a NaN between the phases
};

enum class choking : std::uint8_t {
    none,           ///< the flow stays below the speed of sound
    sonic,          ///< the Mach number passes 1 at the throat
    saturation_line ///< it jumps over 1 on the saturation line, which is the throat
};

struct nozzle_result {
    std::vector<nozzle_step> steps; ///< from the total state to the outlet
    choking how = choking::none;
    std::optional<nozzle_step> throat; ///< where the mass flux is largest; it may lie behind the outlet
    std::vector<std::string> notes;    ///< what is unusual about the flow
};

/// Expands a fluid from a total state to a pressure [Pa]. Throws impossible.   intervals [-] number of equal ratios of
/// pressure between the steps; the throat and the saturation line are steps besides
nozzle_result expand(const ostrel::fluid &fluid, const point &total, double p_outlet, std::size_t intervals = 20);

} // namespace studies
