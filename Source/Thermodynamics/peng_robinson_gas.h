// SPDX-License-Identifier: MIT
// Module peng_robinson_gas: the operations of the Peng-Robinson equation on one set of parameters. The equation stands
// in Equations/peng_robinson.h.
#pragma once

#include "Thermodynamics/operations.h"

namespace peng_robinson_gas OSTREL_VISIBLE {

OSTREL_DECLARE_MODULE(peng_robinson, PRG)
OSTREL_DECLARE_FACTORS(PRG)

} // namespace peng_robinson_gas
