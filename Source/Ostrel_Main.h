// SPDX-License-Identifier: MIT
// Module ostrel: property requests with their kept state, information, the list of fluids, and loading.
//
// Hosts use SI values, and the modules of Thermodynamics/ use reduced ones. They are converted here.
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

/// The result of a request that failed.
inline constexpr double failure_value = -8888.8;

/// The fluid that a request loaded last, or tried to load.
extern records::fixed_text<8> os_fluid;
/// The key of the kept state: the code of the pair as the host wrote it, and the two SI values.
extern records::fixed_text<2> os_inputspec;
extern double os_input1;
extern double os_input2;
/// The kept state: reduced temperature [T_ref] and specific volume [v_ref].
extern double T;
extern double v;

/// The first eight characters in lower case. Codes and names are compared in this form.
records::fixed_text<8> tolower_os(std::string_view text);

using requests::described;

struct described_pair {
    std::string_view name;
    described first;
    described second;
};
struct described_output {
    described text;
    bool any_quality; ///< whether it is served at a quality other than 1
};

// The tables of the names that requests may use, in the order in which they are searched.
std::span<const described_pair> described_input_pairs();
std::span<const described_output> described_outputs();
std::span<const described> described_informations();

/// Whether the second value of the pair is a quality other than 1.
bool mixture(std::string_view inputspec, double input2);

/// The folder in which fluids are looked for, with its separator.
std::string fluid_directory();

/// One property in SI units. The arguments are those in ostrel.h; errmsg is the caller's field.
double ostrel_prop(std::string_view fluid, std::string_view inputspec, double input1, double input2,
                   std::string_view outputspec, std::span<char> errmsg);
/// Reduced T [T_ref] and v [v_ref] of an input pair in SI units. A failure is reported in the shared error text.
void get_tv(std::string_view inputspec, double input1, double input2, double &T, double &v);

/// A constant of a fluid in SI units.
double ostrel_info(std::string_view fluid, std::string_view name, std::span<char> errmsg);
/// Fills 500 entries of name_len characters with the names of the fluids that have parameter files.
void ostrel_fluids(std::int32_t &count, char *names, std::size_t name_len);
std::array<std::int32_t, 4> getversion();
void ostrel_sub();

/// Reads and initialises a fluid from its file in the fluid directory.
void read_init_fluiddata(std::string_view name);
/// Reads a parameter file; does not initialise the fluid.
void read_init_fluiddatafile(std::string_view file);
/// Reads a fluid from a fluid database; does not initialise it.
void read_init_fluiddatadb(std::string_view location, std::string_view name);

} // namespace ostrel
