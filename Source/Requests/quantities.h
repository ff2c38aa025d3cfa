// SPDX-License-Identifier: MIT
// The quantities of a state in requests, and the conversions between their SI values and their reduced values.
#pragma once

#include "Equations/gas_constants.h"
#include "Requests/described.h"

#include <iterator>

namespace requests {

using equations::gas_constants;

/// Converts an SI value into a reduced one, or a reduced value into an SI one.
using conversion = double (*)(double value, const gas_constants &g);

/// A quantity. Its name is its letter in the codes of input pairs.
struct quantity {
    described text;
    conversion reduce;
    conversion restore;
    bool any_quality = false; ///< whether it is served at a quality other than 1
};

inline constexpr quantity quantities[] = {
    {{"t", "K", "temperature"},
     [](double t, const gas_constants &g) { return t / g.T_ref; },
     [](double T, const gas_constants &g) { return T * g.T_ref; },
     true},
    {{"p", "Pa", "pressure"},
     [](double p, const gas_constants &g) { return p / g.P_ref; },
     [](double P, const gas_constants &g) { return P * g.P_ref; },
     true},
    {{"v", "m3/kg", "specific volume"},
     [](double v, const gas_constants &g) { return v / g.v_ref; },
     [](double v, const gas_constants &g) { return v * g.v_ref; },
     true},
    {{"d", "kg/m3", "density"}, // its reduced value is the volume
     [](double d, const gas_constants &g) { return (1.0 / d) / g.v_ref; },
     [](double v, const gas_constants &g) { return 1 / (v * g.v_ref); },
     true},
    {{"h", "J/kg", "enthalpy"},
     [](double h, const gas_constants &g) { return h / (g.P_ref * g.v_ref); },
     [](double h, const gas_constants &g) { return h * g.P_ref * g.v_ref; }},
    {{"u", "J/kg", "internal energy"},
     [](double u, const gas_constants &g) { return u / (g.P_ref * g.v_ref); },
     [](double e, const gas_constants &g) { return e * g.P_ref * g.v_ref; }},
    {{"s", "J/(kg K)", "entropy"},
     [](double s, const gas_constants &g) { return s / g.R; },
     [](double s, const gas_constants &g) { return s * g.R; }},
    {{"q", "-", "vapor quality, 0 for the saturated liquid, 1 for the saturated vapor"},
     [](double q, const gas_constants &) { return q; },
     [](double q, const gas_constants &) { return q; }},
};

/// The quantity with this letter. In a constant expression an unknown letter does not compile.
constexpr const quantity &quantity_of(char letter) {
    const quantity *found = std::begin(quantities);
    while (found->text.name[0] != letter)
        ++found;
    return *found;
}

} // namespace requests
