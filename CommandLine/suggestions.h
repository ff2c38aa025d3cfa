// SPDX-License-Identifier: MIT
// The names that somebody may have meant by a misspelt one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace command {

/// "Did you mean a, b or c?", or nothing if no name is near.
std::string did_you_mean(std::string_view written, const std::vector<std::string> &names);

/// The texts with a separator between them, the last one another.
std::string joined(const std::vector<std::string> &texts, std::string_view separator, std::string_view last);

} // namespace command
