// SPDX-License-Identifier: MIT
#include "Thermodynamics/ideal_gas.h"

namespace ideal_gas {

parameters active;

void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &) {
    complete_ideal_reference(fluid, 1.0);
    p.Rgas = 1.0;
}

OSTREL_NO_PARAMETERS(IG)
OSTREL_DEFINE_MODEL(IG)

} // namespace ideal_gas
