// SPDX-License-Identifier: MIT
// Parameter files into an SQLite fluid database and out of it. Not part of the library, which only reads one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fluid_database {

/// A row of the table: the fluid's name and the text of its parameter file.
struct entry {
    std::string name;
    std::string text;
};

// These throw std::runtime_error with what went wrong, also if SQLite is not built in.

/// Puts the entries into the database in one transaction, which makes what is missing of it. Answers for each entry
/// whether it has replaced one.
std::vector<bool> put(const std::string &location, const std::vector<entry> &entries);

/// All entries of a database, in the order of their names.
std::vector<entry> all(const std::string &location);

} // namespace fluid_database
