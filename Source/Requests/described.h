// SPDX-License-Identifier: MIT
// A row of the tables that explain the names of requests to people.
#pragma once

#include <string_view>

namespace requests {

/// A code or name of a request, its SI unit and its meaning.
struct described {
    std::string_view name;
    std::string_view unit;
    std::string_view meaning;
};

} // namespace requests
