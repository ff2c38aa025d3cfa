// SPDX-License-Identifier: MIT
// Lines that end with "no" must not compile, and no other line may cause an error (check_misspelt_names.py).
#include "ostrel.hpp"

void calls(const ostrel::fluid &fluid, const double *at) {
    (void)fluid.try_value("pt", 1e5, 400, "cp");
    (void)fluid.try_value("px", 1e5, 400, "cp"); // no
    (void)fluid.try_value("vd", 1e5, 400, "cp"); // no
    (void)fluid.try_value(" TP ", 400, 1e5, " dP/dT|v ");
    (void)fluid.try_value("pt", 1e5, 400, "cpp");     // no
    (void)fluid.try_value("pt", 1e5, 400, "d,cp");    // no
    (void)fluid.try_value("pt", 1e5, 400, "dp/dt|t"); // no
    (void)fluid.try_value("pt", 1e5, 400, "dp/dv|d"); // no
    (void)fluid.try_values<"d, dh/dp|t">("pt", 1e5, 400);
    (void)fluid.try_values<"d,, cp">("pt", 1e5, 400); // no
    (void)fluid.try_evaluate("hs", "t,p,q", {at, 1}, {at, 1});
    (void)fluid.try_evaluate("hs", "t,p,x", {at, 1}, {at, 1}); // no
    (void)fluid.try_evaluate("hs", "t,p,", {at, 1}, {at, 1});  // no
    (void)fluid.try_saturation("p", "h", {at, 1});
    (void)fluid.try_saturation("h", "h", {at, 1}); // no
    (void)fluid.constant("t_crit");
    (void)fluid.constant("t_krit"); // no
    (void)fluid.constant("T_CRIT"); // no
    (void)fluid.text("label");
    (void)fluid.text("Label"); // no
    (void)ostrel::fluid::try_open("water", "model = pr; volume=translated");
    (void)ostrel::fluid::try_open("water", "model=prr");          // no
    (void)ostrel::fluid::try_open("water", "modell=pr");          // no
    (void)ostrel::fluid::try_open("water", "model=pr; model=pr"); // no
    (void)ostrel::fluid::try_open("water", "model=pr;");          // no
    (void)ostrel::fluid::try_open("water", "states=metastable");  // no
    (void)ostrel::fluid::try_open("water", "phase=liquid");       // no
    (void)ostrel::fluid::try_open("water", "states=metastable; phase=liquid; folder=here");
    const char *const known_later = at != nullptr ? "cp" : "d";
    (void)fluid.try_value("pt", 1e5, 400, known_later); // no
    (void)fluid.try_value("pt", 1e5, 400, ostrel::unchecked(known_later));
}
