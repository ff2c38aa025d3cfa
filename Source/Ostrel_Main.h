// SPDX-License-Identifier: MIT
// Module ostrel: property requests with their one-state cache, loading, catalogue and information.
//
// The only place where SI values meet the reduced quantities of the core.
#pragma once

#include "Records/fixed_text.h"
#include "Requests/described.h"
#include "visibility.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ostrel OSTREL_VISIBLE {

/// Result of a request that failed.
inline constexpr double failure_value = -8888.8;

/// The fluid that is loaded, or that loading was last tried for.
extern records::fixed_text<8> os_fluid;
/// Key of the kept state: the pair's code as the host wrote it, and its two SI values.
extern records::fixed_text<2> os_inputspec;
extern double os_input1;
extern double os_input2;
/// The kept state: reduced temperature [T_ref] and specific volume [v_ref].
extern double T;
extern double v;

/// The first eight characters in lower case, to which all codes and names are folded.
records::fixed_text<8> tolower_os(std::string_view text);

using requests::described;

struct described_pair {
    std::string_view name;
    described first;
    described second;
};
struct described_output {
    described text;
    bool any_quality; ///< whether it is served between the saturated states
};

// The tables of what requests may name, in the order in which they are searched.
std::span<const described_pair> described_input_pairs();
std::span<const described_output> described_outputs();
std::span<const described> described_informations();

/// Whether the second place of the pair is a quality, and not that of the saturated vapor.
bool mixture(std::string_view inputspec, double input2);

/// The folder in which fluids are sought, with its separator.
std::string fluid_directory();

/// One property; arguments as ostrel.h has them, errmsg is the caller's field.
double ostrel_prop(std::string_view fluid, std::string_view inputspec, double input1, double input2,
                   std::string_view outputspec, std::span<char> errmsg);
/// Reduced temperature and volume of an input pair; failures are left in the shared error text.
void get_tv(std::string_view inputspec, double input1, double input2, double &T, double &v);

/// A constant of a fluid.
double ostrel_info(std::string_view fluid, std::string_view name, std::span<char> errmsg);
/// The names of the fluids with parameter files: 500 entries of name_len characters.
void ostrel_fluids(std::int32_t &count, char *names, std::size_t name_len);
std::array<std::int32_t, 4> getversion();
void ostrel_sub();

/// Reads and initialises a fluid from its file in the fluid directory.
void read_init_fluiddata(std::string_view name);
/// Reads a parameter file, without initialising.
void read_init_fluiddatafile(std::string_view file);
/// Reads a fluid from a fluid database, without initialising.
void read_init_fluiddatadb(std::string_view location, std::string_view name);

} // namespace ostrel
