// SPDX-License-Identifier: MIT
// Fluids in an SQLite file: table fluid(name TEXT PRIMARY KEY, text TEXT NOT NULL).
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace fluid_database {

/// The text of a fluid; none if the database, its table or the fluid is missing, or SQLite is not built in.
std::optional<std::string> read(const std::string &location, const std::string &name);

/// Puts the lines of the text, without their line ends, into the entries of a blank-padded array of lines. Returns
/// false if a line is longer than an entry or if there are more lines than entries.
bool split(std::string_view text, std::span<char> entries, std::size_t entry_length);

} // namespace fluid_database
