// SPDX-License-Identifier: MIT
// Module redlich_kwong_gas: the operations of the Redlich-Kwong equation on one set of parameters. The equation stands
// in Equations/redlich_kwong.h.
#pragma once

#include "Thermodynamics/operations.h"

namespace redlich_kwong_gas OSTREL_VISIBLE {

OSTREL_DECLARE_MODULE(redlich_kwong, RKG)
OSTREL_DECLARE_FACTORS(RKG)

} // namespace redlich_kwong_gas
