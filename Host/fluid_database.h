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

/// Puts the text's lines into the entries of a blank-padded line array, without their line ends. Answers why the text
/// does not fit, with too many lines or one that is too long; an empty text if it does.
std::string split(std::string_view text, std::span<char> entries, std::size_t entry_length);

} // namespace fluid_database
