// SPDX-License-Identifier: MIT
// Module van_der_waals_gas: the operations of the van der Waals equation on one set of parameters. The equation stands
// in Equations/van_der_waals.h.
#pragma once

#include "Thermodynamics/operations.h"

namespace van_der_waals_gas OSTREL_VISIBLE {

OSTREL_DECLARE_MODULE(van_der_waals, vdWG)

} // namespace van_der_waals_gas
