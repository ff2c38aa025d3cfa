// SPDX-License-Identifier: MIT
// An opened fluid, and the tables of what is known of it. Nothing in it changes once it is open.
#pragma once

#include "Equations/gas_constants.h"
#include "Fluid/core.h"
#include "Requests/outputs.h"

#include <limits>
#include <memory>
#include <string>

namespace fluid {

inline constexpr double no_number = std::numeric_limits<double>::quiet_NaN(); // has the bits 0x7ff8000000000000

/// The numbers that are known of a fluid, whatever its state.
struct known_numbers {
    equations::gas_constants file; ///< as read, not completed
    core_constants equation;
    double triple_temperature = no_number;    ///< [K], this and the next from the index of the fluid folder
    double heat_capacity_lowest = no_number;  ///< [K], where the fit of the heat capacity begins
    double heat_capacity_highest = no_number; ///< [K], where it ends
};

/// The texts that are known of a fluid; empty where nothing is known.
struct known_texts {
    std::string name, label, model, source, text, options, formula, cas, aliases, heat_capacity, viscosity,
        conductivity;
};

struct constant {
    requests::described text;
    double (*value)(const known_numbers &of);
};
inline constexpr constant constants[] = {
    {requests::information_of("m_mol").text,
     [](const known_numbers &of) { return requests::information_of("m_mol").value(of.file); }},
    {{"r_gas", "J/(kg K)", "specific gas constant"}, [](const known_numbers &of) { return of.file.R; }},
    {requests::information_of("t_crit").text, [](const known_numbers &of) { return of.equation.t_crit; }},
    {requests::information_of("p_crit").text, [](const known_numbers &of) { return of.equation.p_crit; }},
    {{"v_crit", "m3/kg", "critical specific volume of the equation"},
     [](const known_numbers &of) { return of.equation.v_crit; }},
    {{"d_crit", "kg/m3", "critical density of the equation"},
     [](const known_numbers &of) { return 1 / of.equation.v_crit; }},
    {{"z_crit", "1", "critical compressibility factor of the equation"},
     [](const known_numbers &of) { return of.equation.z_crit; }},
    {{"omega", "1", "acentric factor"},
     [](const known_numbers &of) { return of.file.vapor ? of.file.omega : no_number; }},
    {{"t_boil", "K", "normal boiling temperature, as the file has it"},
     [](const known_numbers &of) { return of.file.vapor ? of.file.Tb : no_number; }},
    {{"t_ref", "K", "temperature at which u and s are 0 with reference=critical"},
     [](const known_numbers &of) { return of.equation.t_ref; }},
    {{"p_ref", "Pa", "pressure of that state"}, [](const known_numbers &of) { return of.equation.p_ref; }},
    {{"v_ref", "m3/kg", "specific volume of that state"}, [](const known_numbers &of) { return of.equation.v_ref; }},
    {{"v_min", "m3/kg", "specific volume at and below which there are no states"},
     [](const known_numbers &of) { return of.equation.v_min; }},
    {{"t_sat_min", "K", "temperature below which there is no saturation line, or its pressure underflows"},
     [](const known_numbers &of) { return of.equation.t_sat_min; }},
    {{"t_triple", "K", "triple temperature of the real fluid"},
     [](const known_numbers &of) { return of.triple_temperature; }},
    {{"t_cp_min", "K", "temperature at which the fit of the heat capacity begins"},
     [](const known_numbers &of) { return of.heat_capacity_lowest; }},
    {{"t_cp_max", "K", "temperature at which the fit of the heat capacity ends"},
     [](const known_numbers &of) { return of.heat_capacity_highest; }},
};

struct text_row {
    requests::described text;
    std::string known_texts::*value;
};
inline constexpr text_row texts[] = {
    {{"name", "", "name of the fluid, as the parameters have it"}, &known_texts::name},
    {{"label", "", "label of the fluid, as the parameters have it"}, &known_texts::label},
    {{"model", "", "equation of state, as the option model names it"}, &known_texts::model},
    {{"source", "", "where the parameters came from"}, &known_texts::source},
    {{"text", "", "the parameters as they were read"}, &known_texts::text},
    {{"options", "", "all options but the folder, which open the same fluid again"}, &known_texts::options},
    {{"formula", "", "chemical formula, from the index of the fluid folder"}, &known_texts::formula},
    {{"cas", "", "CAS number, from the index of the fluid folder"}, &known_texts::cas},
    {{"aliases", "", "other names, from the index of the fluid folder"}, &known_texts::aliases},
    {{"heat_capacity", "", "form of the heat capacity of the ideal gas"}, &known_texts::heat_capacity},
    {{"viscosity", "", "model of the viscosity"}, &known_texts::viscosity},
    {{"conductivity", "", "model of the thermal conductivity"}, &known_texts::conductivity},
};

} // namespace fluid

struct ostrel_fluid {
    std::unique_ptr<const fluid::core> states;
    fluid::settings settings;
    fluid::known_numbers numbers;
    fluid::known_texts texts;
    std::string shown_name; ///< for messages
};
