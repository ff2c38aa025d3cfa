// SPDX-License-Identifier: MIT
// Warnings of numbers in the records of a parameter file that are not read as they are meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace command {

/// The warnings of decimal commas, and of numbers that are left over behind a list.
std::vector<std::string> record_warnings(std::string_view text);

} // namespace command
