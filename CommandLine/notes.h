// SPDX-License-Identifier: MIT
// Notes on the results of the loaded fluid.
#pragma once

#include <string>
#include <vector>

namespace command {

/// Whether the loaded fluid's model has saturated states; ideal gases have none.
bool has_saturated_states();
/// Whether the liquid's volume is not clearly below the vapor's. Away from the critical point this means that the
/// saturation table has collapsed.
bool equal_phases(double liquid, double vapor);

/// Notes on the outputs "eta" and "lambda"; empty if the number is in the unit that its row names.
std::string viscosity_note();
std::string conductivity_note();

} // namespace command
