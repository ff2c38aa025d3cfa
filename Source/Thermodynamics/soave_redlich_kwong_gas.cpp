// SPDX-License-Identifier: MIT
#include "Thermodynamics/soave_redlich_kwong_gas.h"

namespace soave_redlich_kwong_gas {

parameters active;

void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message) {
    if (!fluid.vapor) {
        report_not_a_vapor(message, fluid, "Soave-Redlich-Kwong model is not applicable. ",
                           "In init_SRKG, module soave_redlich_kwong_gas.");
        return;
    }
    const double Tc = fluid.Tc;
    const double Pc = fluid.Pc;
    const double RTc = fluid.R * Tc;
    p.c_a = (RTc * RTc) * 0.4274802335403413 / Pc;
    p.b = Tc * 0.08664034996495773 * fluid.R / Pc;
    p.fw = 0.48 + (1.574 - 0.176 * fluid.omega) * fluid.omega;
    p.reduce(fluid, cubic_attraction::redlich_kwong_denominator, 1e-14, " ERROR:  v__P_T__SRKG. STOP", message);
}

OSTREL_NO_PARAMETERS(SRKG)
OSTREL_DEFINE_MODEL(SRKG)
OSTREL_DEFINE_FACTORS(SRKG)

} // namespace soave_redlich_kwong_gas
