// SPDX-License-Identifier: MIT
#include "Thermodynamics/clausius_II_gas.h"

namespace clausius_II_gas {

parameters active;

void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message) {
    if (!fluid.vapor) {
        report_not_a_vapor(message, fluid, "Clausius-II model is not applicable. ",
                           "In init_CIIG, module clausius_II_gas.");
        return;
    }
    const double Zc = fluid.Zc;
    const double vc = Zc * fluid.R * fluid.Tc / fluid.Pc;
    set_critical_reference(fluid, vc, Zc);
    p.Rgas = 1.0;
    p.a = (fluid.R * (fluid.Tc * fluid.Tc) * vc / Zc * 0.421875) / (fluid.Pc * Zc * fluid.Tc * (vc * vc));
    p.b = (1.0 - 1.0 / (4.0 * Zc)) * vc / vc;
    p.c = (3.0 / (8.0 * Zc) - 1.0) * vc / vc;
}

OSTREL_NO_PARAMETERS(CIIG)
OSTREL_DEFINE_MODEL(CIIG)
OSTREL_DEFINE_FACTORS(CIIG)

} // namespace clausius_II_gas
