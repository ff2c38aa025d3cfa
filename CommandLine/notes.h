// SPDX-License-Identifier: MIT
// What a user must know of the viscosities and conductivities of the loaded fluid.
#pragma once

#include <string>
#include <vector>

namespace command {

/// Whether the loaded fluid's model has saturated states; an ideal gas has none.
bool has_saturated_states();
/// Whether a saturation table gives the same volume twice, as one that has collapsed does.
bool equal_phases(double liquid, double vapor);

/// On "eta" and "lambda"; an empty text where the number is in the unit that is said.
std::string viscosity_note();
std::string conductivity_note();

} // namespace command
