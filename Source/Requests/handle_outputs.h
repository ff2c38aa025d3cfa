// SPDX-License-Identifier: MIT
// The table of what handles compute of a state. Their rows are those of the entry points where both have an output.
#pragma once

#include "Requests/outputs.h"

namespace requests {

/// The row of an output that the entry points have, too.
consteval described shared_output(std::string_view name) {
    return outputs[output_row(name)].text;
}

/// The outputs in the order in which users see them.
inline constexpr described handle_outputs[] = {
    shared_output("t"),
    shared_output("p"),
    shared_output("v"),
    shared_output("d"),
    shared_output("h"),
    shared_output("s"),
    shared_output("u"),
    {quantity_of('q').text.name, "1", quantity_of('q').text.meaning},
    shared_output("cv"),
    shared_output("dp_dt"),
    shared_output("dp_dv"),
    shared_output("d2p_dt2"),
    shared_output("d2p_dv2"),
    shared_output("d2p_dtdv"),
    shared_output("dcv_dt"),
    shared_output("eta"),
    shared_output("lambda"),
    {"g", "J/kg", "Gibbs energy, h - t s"},
    {"a", "J/kg", "Helmholtz energy, u - t s"},
    {"cp", "J/(kg K)", "isobaric heat capacity"},
    {"c", "m/s", "speed of sound"},
    {"z", "1", "compressibility factor, p v/(R t)"},
    {"fundamental", "1", "fundamental derivative of gas dynamics, 1 + (d/c) dc/dd at constant s"},
    {"cp_cv", "1", "ratio of the heat capacities"},
    {"isentropic_exponent", "1", "isentropic exponent, -(v/p) dp/dv at constant s"},
    {"kappa_t", "1/Pa", "isothermal compressibility, -(1/v) dv/dp at constant t"},
    {"beta_p", "1/K", "isobaric expansion, (1/v) dv/dt at constant p"},
    {"jt", "K/Pa", "Joule-Thomson coefficient, dt/dp at constant h"},
    {"prandtl", "1", "Prandtl number, eta cp/lambda"},
    {"tsat", "K", "saturation temperature at the state's p"},
    {"psat", "Pa", "saturation pressure at the state's t"},
    {"phase", "1",
     "phase: 0 liquid, 1 vapor, 2 two-phase, 3 supercritical (t and p at or above the critical point), 4 gas (t at or "
     "above the critical one, p below it)"},
};

} // namespace requests
