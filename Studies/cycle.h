// SPDX-License-Identifier: MIT
// Thermodynamic cycles of one fluid: Rankine cycles (organic or steam, sub- or supercritical, with or without a
// regenerator) and vapor compression (with a condenser or a gas cooler, with or without an internal heat exchanger).
//
//     studies::cycle_definition cycle;
//     cycle.evaporator_p = 10e5;
//     cycle.condenser_t = 320;
//     cycle.turbine_efficiency = 0.85;
//     const studies::cycle_result solved = studies::solve(toluene, cycle);
//
// The pressure of an exchanger is that of its outlet; its inlet is higher by its drop. Along an exchanger the pressure
// falls in proportion to the heat. An expansion or a compression is drawn through the states that it would reach with
// its efficiency at each pressure in between.
#pragma once

#include "Studies/points.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace studies {

enum class cycle_kind : std::uint8_t { rankine, compression };

/// The kinds by the words of a definition: "rankine", "compression".
struct cycle_kind_row {
    cycle_kind kind;
    std::string_view name;
    std::string_view meaning;
};
std::span<const cycle_kind_row> cycle_kinds();

/// A cycle as it is wanted, in SI units. cycle_keys() has the meaning, the range and the default of each value.
struct cycle_definition {
    using value = std::optional<double>;
    cycle_kind kind = cycle_kind::rankine;
    value evaporator_p, evaporator_t, evaporator_superheat, evaporator_t_out, evaporator_drop;
    value condenser_p, condenser_t, condenser_subcooling, condenser_t_out, condenser_drop;
    value gas_cooler_p, gas_cooler_t_out, gas_cooler_drop;
    value pump_efficiency, turbine_efficiency, compressor_efficiency;
    value regenerator_effectiveness, regenerator_pinch, regenerator_drop_hot, regenerator_drop_cold;
    value exchanger_effectiveness, exchanger_pinch, exchanger_drop_hot, exchanger_drop_cold;
    value source_t, source_t_out, source_mass, source_cp;
    value sink_t, sink_t_out, sink_mass, sink_cp;
    value flow_mass, flow_power;
};

/// The values that a key may have.
enum class value_range : std::uint8_t { positive, not_negative, part };

/// A value of a definition: "evaporator.p" is the key p of the section evaporator.
struct cycle_key {
    std::string_view section;
    std::string_view name;
    std::string_view si; ///< its unit
    bool difference;     ///< whether it is a difference, for which 10 degC are 10 K
    value_range range;
    bool of_rankine;
    bool of_compression;
    cycle_definition::value cycle_definition::*member;
    std::optional<double> standard; ///< what holds if it is not given
    std::string_view meaning;
};
std::span<const cycle_key> cycle_keys();
/// The key with the name "section.name", or null.
const cycle_key *cycle_key_named(std::string_view name);

/// What a cycle does. A figure that the cycle does not have, or that its definition does not determine, is a NaN.
struct cycle_figures {
    cycle_figures();
    double net_work, turbine_work, pump_work, compressor_work;
    double heat_in, heat_out, internal_heat;
    double efficiency, back_work_ratio, cop_cooling, cop_heating, second_law;
    double pressure_ratio, volume_ratio, volumetric_capacity;
    double internal_pinch, source_pinch, sink_pinch;
    double source_t_out, sink_t_out;
    double mass_flow, net_power, heat_flow_in, heat_flow_out;
    double volume_flow_in, volume_flow_out, size_parameter;
    double source_mass, sink_mass;
};

struct cycle_figure {
    std::string_view name;
    std::string_view si;
    bool difference;
    double cycle_figures::*member;
    std::string_view meaning;
};
std::span<const cycle_figure> cycle_figure_list();

struct cycle_state {
    std::string place; ///< "turbine inlet"
    point at;
};

/// What happens between two states, for drawings.
struct cycle_process {
    std::string_view name;     ///< "evaporator"
    std::size_t from, to;      ///< places of its ends among the states
    std::vector<point> points; ///< from one end to the other, with the corners on the saturation line
};

struct cycle_result {
    std::vector<cycle_state> states;      ///< in the order of the flow, with the saturated states of the exchangers
    std::vector<cycle_process> processes; ///< in the order of the flow; the last one ends where the first one begins
    cycle_figures figures;
};

/// Solves a cycle. Throws impossible.   intervals [-] of each process's points, at least 1
cycle_result solve(const ostrel::fluid &fluid, const cycle_definition &wanted, std::size_t intervals = 64);

} // namespace studies
