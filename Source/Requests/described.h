// SPDX-License-Identifier: MIT
// How the tables of requests tell people what a name stands for.
#pragma once

#include <string_view>

namespace requests {

/// A code or name of a request with its SI unit.
struct described {
    std::string_view name;
    std::string_view unit;
    std::string_view meaning;
};

} // namespace requests
