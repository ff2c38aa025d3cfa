// SPDX-License-Identifier: MIT
#include "Thermodynamics/redlich_kwong_gas.h"

namespace redlich_kwong_gas {

parameters active;

void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &message) {
    if (!fluid.vapor) {
        report_not_a_vapor(message, fluid, "Redlich-Kwong model is not applicable. ",
                           "In init_RKG, module redlich_kwong_gas.");
        return;
    }
    const double Tc = fluid.Tc;
    const double Pc = fluid.Pc;
    p.Rgas = fluid.R;
    p.a = (Tc * std::sqrt(Tc) * Tc * p.Rgas * p.Rgas / Pc) * 0.4274802335403413;
    p.b = (p.Rgas * Tc / Pc) * 0.08664034996495773;
    const double v =
        cubic_attraction::critical_volume(fluid, p.b, p.a / std::sqrt(Tc), cubic_attraction::redlich_kwong_denominator,
                                          1e-10, " ERROR:  v__P_T__RKG. STOP", message);
    if (!message.clear())
        return;
    set_critical_reference(fluid, v, Pc * v / (p.Rgas * Tc));
    p.Rgas = 1.0;
    p.b = p.b / v;
    p.a = p.a / (v * Pc * v * std::sqrt(Tc * fluid.Zc));
}

OSTREL_NO_PARAMETERS(RKG)
OSTREL_DEFINE_MODEL(RKG)
OSTREL_DEFINE_FACTORS(RKG)

} // namespace redlich_kwong_gas
