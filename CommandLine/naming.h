// SPDX-License-Identifier: MIT
// Finds the fluids of the folder by the names that people use, and says what the index knows of them.
#pragma once

#include "Host/fluid_index.h"

#include <string>
#include <string_view>
#include <vector>

namespace command {

struct named_fluid {
    fluid_index::fluid facts;         ///< with the file's name
    std::vector<std::string> notes{}; ///< which file was taken, unless the words are its own name
};

/// The fluid that the words name. Words that name no fluid are taken as the name of a file. Fails if the words name
/// several fluids.
named_fluid fluid_named(const std::string &words);

/// "Did you mean a, b or c?", or nothing if the folder has no fluids.
std::string nearest_fluids(std::string_view words);

/// Adds a note for each limit of the fluid outside which a temperature [K] is.
void add_temperature_notes(std::vector<std::string> &notes, const fluid_index::fluid &facts, double t);

} // namespace command
