// SPDX-License-Identifier: MIT
// Module soave_redlich_kwong_gas: the operations of the Soave-Redlich-Kwong equation on one set of parameters. The
// equation stands in Equations/soave_redlich_kwong.h.
#pragma once

#include "Thermodynamics/operations.h"

namespace soave_redlich_kwong_gas OSTREL_VISIBLE {

OSTREL_DECLARE_MODULE(soave_redlich_kwong, SRKG)
OSTREL_DECLARE_FACTORS(SRKG)

} // namespace soave_redlich_kwong_gas
