// SPDX-License-Identifier: MIT
// Opens fluids: from the fluid folder by any of their names, from a file, a text or a database.
//
// The functions return OSTREL_OK, or a status whose message stands; then they open nothing.
#pragma once

#include "Fluid/handle.h"

#include <memory>
#include <string>
#include <vector>

namespace fluid {

using opened = std::unique_ptr<ostrel_fluid>;

int open_name(const char *name, const char *option_text, opened &result);
int open_file(const char *path, const char *option_text, opened &result);
int open_text(const char *text, const char *option_text, opened &result);
int open_database(const char *location, const char *name, const char *option_text, opened &result);

struct found_fluid {
    std::string file;
    std::string name;
};
/// Every fluid of the fluid folder that the words find, the best first.
int find_fluids(const char *words, std::vector<found_fluid> &found);

} // namespace fluid
