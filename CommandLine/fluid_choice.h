// SPDX-License-Identifier: MIT
// The fluid of a command, and how it is opened.
#pragma once

#include "CommandLine/command.h"

#include "ostrel.hpp"

#include <map>
#include <string>
#include <vector>

namespace command {

/// The help text of an argument that names a fluid.
inline constexpr const char *fluid_argument =
    "A fluid: its name, refrigerant number, formula, CAS number or file; or the path of a file, with / or .osd in it";

/// The options of an opening that commands have: all but the folder.
std::vector<std::string> option_keys();

/// An opened fluid, and which file was taken, unless the words are its own name.
struct chosen_fluid {
    ostrel::fluid fluid;
    std::vector<std::string> notes{};
};

struct fluid_choice {
    std::string words{};
    std::string database{};
    std::map<std::string, std::string> options{}; ///< the options of an opening, by their keys

    /// FLUID, --database, and an option for each one that an opening has, but for the folder and the keys without.
    std::vector<argument> arguments(const std::vector<std::string> &without = {});
    /// Opens the fluid; fails with the library's message.
    chosen_fluid open() const;
    /// Opens it with another equation of state.
    chosen_fluid open_with(const std::string &model) const;
};

} // namespace command
