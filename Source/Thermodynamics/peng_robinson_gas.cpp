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
    p.Rgas = fluid.R;
    p.c_a = RTc * 0.45724 * RTc / Pc;
    p.b = Tc * 0.0778 * p.Rgas / Pc;
    p.fw = 0.37464 + (1.54226 - 0.26992 * fluid.omega) * fluid.omega;
    const double a_Tc = p.c_a * (1.0 + p.fw * (1.0 - std::sqrt(Tc / Tc)));
    const double v = cubic_attraction::critical_volume(fluid, p.b, a_Tc, cubic_attraction::peng_robinson_denominator,
                                                       1e-10, " ERROR:  v__P_T__PRG. STOP", message);
    if (!message.clear())
        return;
    p.Zc = Pc * v / (p.Rgas * Tc);
    set_critical_reference(fluid, v, p.Zc);
    p.Rgas = 1.0;
    p.b = p.b / v;
    p.c_a = p.c_a / (v * Pc * v);
}

OSTREL_NO_PARAMETERS(PRG)
OSTREL_DEFINE_MODEL(PRG)
OSTREL_DEFINE_FACTORS(PRG)

} // namespace peng_robinson_gas
