// SPDX-License-Identifier: MIT
// Module clausius_II_gas: the operations of the Clausius II equation on one set of parameters. The equation stands in
// Equations/clausius_II.h.
#pragma once

#include "Thermodynamics/operations.h"

namespace clausius_II_gas OSTREL_VISIBLE {

OSTREL_DECLARE_MODULE(clausius_II, CIIG)
OSTREL_DECLARE_FACTORS(CIIG)

} // namespace clausius_II_gas
