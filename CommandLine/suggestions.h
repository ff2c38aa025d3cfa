// SPDX-License-Identifier: MIT
// Suggests names for a misspelt one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace command {

/// "Did you mean a, b or c?", or nothing if no name is near.
std::string did_you_mean(std::string_view written, const std::vector<std::string> &names);

/// The parts of a text between the separators, without the blanks around them. A separator at the end ends the last
/// part.
std::vector<std::string> parts_of(const std::string &text, char separator);

/// The texts with `separator` between them, and `last` before the last one.
std::string joined(const std::vector<std::string> &texts, std::string_view separator, std::string_view last);

} // namespace command
