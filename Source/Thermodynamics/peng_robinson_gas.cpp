// SPDX-License-Identifier: MIT
#include "Thermodynamics/peng_robinson_gas.h"

namespace peng_robinson_gas {

parameters active;

void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message) {
    if (!fluid.vapor) {
        report_not_a_vapor(message, fluid, "Peng-Robinson model is not applicable. ",
                           "In init_PRG, module peng_robinson_gas.");
        return;
    }
    const double Tc = fluid.Tc;
    const double Pc = fluid.Pc;
    const double RTc = fluid.R * Tc;
    p.c_a = RTc * 0.45724 * RTc / Pc;
    p.b = Tc * 0.0778 * fluid.R / Pc;
    p.fw = 0.37464 + (1.54226 - 0.26992 * fluid.omega) * fluid.omega;
    p.reduce(fluid, cubic_attraction::peng_robinson_denominator, 1e-10, " ERROR:  v__P_T__PRG. STOP", message);
}

OSTREL_NO_PARAMETERS(PRG)
OSTREL_DEFINE_MODEL(PRG)
OSTREL_DEFINE_FACTORS(PRG)

} // namespace peng_robinson_gas
