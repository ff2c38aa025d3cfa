// SPDX-License-Identifier: MIT
// The names of ostrel_list, for the checks of ostrel.hpp. scripts/make_handle_tables makes this file.
#ifndef OSTREL_NAMES_HPP
#define OSTREL_NAMES_HPP

#include <string_view>

namespace ostrel::names {

inline constexpr std::string_view inputs[] = {
    "tv", "td", "pt", "pv", "pd", "ph", "ps", "pq", "ts", "tq", "vh", "vs", "vu", "dh", "ds", "du", "hs", "pu", "su",
    "th", "tu"};

inline constexpr std::string_view outputs[] = {
    "t", "p", "v", "d", "h", "s", "u", "q", "cv", "dp_dt", "dp_dv", "d2p_dt2", "d2p_dv2", "d2p_dtdv", "dcv_dt", "eta",
    "lambda", "g", "a", "cp", "c", "z", "fundamental", "cp_cv", "isentropic_exponent", "kappa_t", "beta_p", "jt",
    "prandtl", "tsat", "psat", "phase"};

inline constexpr std::string_view constants[] = {
    "m_mol", "r_gas", "t_crit", "p_crit", "v_crit", "d_crit", "z_crit", "omega", "t_boil", "t_ref", "p_ref", "v_ref",
    "v_min", "t_sat_min", "t_triple", "t_cp_min", "t_cp_max"};

inline constexpr std::string_view texts[] = {
    "name", "label", "model", "source", "text", "options", "formula", "cas", "aliases", "heat_capacity", "viscosity",
    "conductivity"};

/// An option with its values as "a|b"; without values, any text is one.
struct option {
    std::string_view key;
    std::string_view values;
};
inline constexpr option options[] = {
    {"model", "ig|vdw|mh|srk|pr|rk|cii|izg"},
    {"states", "stable|metastable|surface"},
    {"phase", "liquid|vapor"},
    {"volume", "equation|translated"},
    {"reference", "critical|nbp|iir|ashrae"},
    {"folder", ""},
};

} // namespace ostrel::names

#endif
