// SPDX-License-Identifier: MIT
// Puts parameter files into an SQLite fluid database and takes them out of it. The library itself only reads databases;
// this is no part of it.
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

// These functions throw std::runtime_error with a message, also if SQLite is not built in.

/// Puts the entries into the database in one transaction, and creates the file and its table if they are missing.
/// Returns for each entry whether it has replaced one.
std::vector<bool> put(const std::string &location, const std::vector<entry> &entries);

/// All entries of a database, in the order of their names.
std::vector<entry> all(const std::string &location);

} // namespace fluid_database
