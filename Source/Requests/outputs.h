// SPDX-License-Identifier: MIT
// The tables of what requests can return: the outputs of a state and the constants of a fluid.
#pragma once

#include "Requests/quantities.h"

#include <cstddef>

namespace requests {

/// An output of a state; `restore` turns its reduced value into its SI value.
struct output {
    described text;
    conversion restore;
    bool any_quality = false; ///< whether it is served at a quality other than 1

    constexpr output(const quantity &what) : text(what.text), restore(what.restore), any_quality(what.any_quality) {}
    constexpr output(const described &what, conversion to_SI) : text(what), restore(to_SI) {}
};

/// The outputs in the order in which users see them.
inline constexpr output outputs[] = {
    quantity_of('t'),
    quantity_of('v'),
    quantity_of('d'),
    quantity_of('p'),
    quantity_of('h'),
    quantity_of('s'),
    quantity_of('u'),
    {{"cv", "J/(kg K)", "isochoric heat capacity"}, [](double cv, const gas_constants &g) { return cv * g.R; }},
    {{"dp_dt", "Pa/K", "dp/dt at constant v"},
     [](double P_T, const gas_constants &g) { return P_T * g.P_ref / g.T_ref; }},
    {{"dp_dv", "Pa kg/m3", "dp/dv at constant t"},
     [](double P_v, const gas_constants &g) { return P_v * g.P_ref / g.v_ref; }},
    {{"d2p_dt2", "Pa/K2", "second derivative of p by t"},
     [](double P_TT, const gas_constants &g) { return P_TT * g.P_ref / (g.T_ref * g.T_ref); }},
    {{"d2p_dv2", "Pa kg2/m6", "second derivative of p by v"},
     [](double P_vv, const gas_constants &g) { return P_vv * g.P_ref / (g.v_ref * g.v_ref); }},
    {{"d2p_dtdv", "Pa kg/(K m3)", "second derivative of p by t and v"},
     [](double P_Tv, const gas_constants &g) { return P_Tv * g.P_ref / (g.T_ref * g.v_ref); }},
    {{"dcv_dt", "J/(kg K2)", "dcv/dt at constant v"},
     [](double cv_T, const gas_constants &g) { return cv_T * g.R / g.T_ref; }},
    {{"eta", "Pa s", "dynamic viscosity"}, [](double eta, const gas_constants &g) { return eta * g.mu_ref; }},
    {{"lambda", "W/(m K)", "thermal conductivity"},
     [](double lambda, const gas_constants &g) { return lambda * g.kk_ref; }},
};

/// The row of an output. An unknown name does not compile.
consteval std::size_t output_row(std::string_view name) {
    std::size_t row = 0;
    while (outputs[row].text.name != name)
        ++row;
    return row;
}

/// A constant of a fluid; value() returns it in SI units.
struct information {
    described text;
    double (*value)(const gas_constants &g);
};

inline constexpr information informations[] = {
    {{"m_mol", "kg/mol", "molar mass"}, [](const gas_constants &g) { return g.MM / 1000; }},
    {{"t_crit", "K", "critical temperature"}, [](const gas_constants &g) { return g.Tc; }},
    {{"p_crit", "Pa", "critical pressure"}, [](const gas_constants &g) { return g.Pc; }},
};

/// The constant with this name. An unknown name does not compile.
consteval const information &information_of(std::string_view name) {
    const information *found = std::begin(informations);
    while (found->text.name != name)
        ++found;
    return *found;
}

} // namespace requests
