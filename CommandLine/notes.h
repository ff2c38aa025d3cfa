// SPDX-License-Identifier: MIT
// What a user must know of the viscosities and conductivities of the loaded fluid.
#pragma once

#include <string>
#include <vector>

namespace command {

/// On "eta" and "lambda"; an empty text where the number is in the unit that is said.
std::string viscosity_note();
std::string conductivity_note();

} // namespace command
