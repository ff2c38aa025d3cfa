// SPDX-License-Identifier: MIT
// Says in words what a parameter file means, and whether it can be used.
#pragma once

#include <string>
#include <vector>

namespace command {

struct examination {
    std::string description{}; ///< lines in words; empty if the file cannot be read
    std::vector<std::string> warnings{};
    std::string unusable{};            ///< the reason why the file cannot be used; empty if it can
    std::vector<std::string> advice{}; ///< what would help

    bool readable() const { return !description.empty(); }
};

examination examine(const std::string &path);

} // namespace command
