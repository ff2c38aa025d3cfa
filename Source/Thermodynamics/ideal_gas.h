// SPDX-License-Identifier: MIT
// Module ideal_gas: the operations of the ideal gas on one set of parameters. The equation stands in
// Equations/ideal_gas.h.
#pragma once

#include "Thermodynamics/operations.h"

namespace ideal_gas OSTREL_VISIBLE {

OSTREL_DECLARE_MODULE(ideal_gas, IG)

} // namespace ideal_gas
