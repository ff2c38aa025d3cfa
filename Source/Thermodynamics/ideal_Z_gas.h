// SPDX-License-Identifier: MIT
// Module ideal_Z_gas: the operations of the ideal gas with constant Z on one set of parameters. The equation stands in
// Equations/ideal_Z.h.
#pragma once

#include "Thermodynamics/operations.h"

namespace ideal_Z_gas OSTREL_VISIBLE {

OSTREL_DECLARE_MODULE(ideal_Z, IZG)
void read_param_IZG_db(records::line_reader &lines);

} // namespace ideal_Z_gas
