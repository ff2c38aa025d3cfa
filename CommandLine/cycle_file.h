// SPDX-License-Identifier: MIT
// Definitions of cycles, as people write them in files (TOML). Only cycle_file.cpp knows the package that reads them.
#pragma once

#include "CommandLine/fluid_choice.h"
#include "Studies/cycle.h"

#include <cstddef>
#include <string>
#include <vector>

namespace command {

/// A place in a text: its line and the character in it, both from 1.
struct text_place {
    std::size_t line;
    std::size_t column;
};

/// A value that a definition gives, and where it stands.
struct given_value {
    const studies::cycle_key *key;
    text_place begin;
    text_place end; ///< behind its last character
};

/// What a file says.
struct cycle_file {
    fluid_choice fluid;
    studies::cycle_definition wanted;
    std::vector<given_value> given; ///< in the order of the text
};

/// Reads a file; fails with its line and with what would be right there.
cycle_file read_cycle_file(const std::string &path);
/// Reads a text. `path` stands before the line in messages; it may be empty.
cycle_file read_cycle_text(const std::string &text, const std::string &path);

/// Opens the fluid of a file; fails with the path before the library's message.
chosen_fluid open_fluid(const cycle_file &file, const std::string &path);

/// A cycle of a file and its solution, for tables and for drawings.
struct solved_cycle {
    chosen_fluid chosen;
    studies::cycle_definition wanted;
    studies::cycle_result result;
};
/// Fails with the sentence that says why there is no such cycle.
solved_cycle solve_cycle_file(const std::string &path);

/// What a file may have, for the help text.
std::string table_of_cycle_keys();

} // namespace command
