// SPDX-License-Identifier: MIT
#include "Thermodynamics/van_der_waals_gas.h"

namespace van_der_waals_gas {

parameters active;

void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message) {
    if (!fluid.vapor) {
        report_not_a_vapor(message, fluid, "van der Waals model is not applicable. ",
                           "In init_vdWG, module van_der_waals_gas.");
        return;
    }
    set_critical_reference(fluid, fluid.R * 0.375 * fluid.Tc / fluid.Pc, 0.375);
    p.Rgas = 1.0;
    p.a = 3.0;
    p.b = 1.0 / 3.0;
}

OSTREL_NO_PARAMETERS(vdWG)
OSTREL_DEFINE_MODEL(vdWG)

} // namespace van_der_waals_gas
