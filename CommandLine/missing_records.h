// SPDX-License-Identifier: MIT
// Finds the records that are missing in a parameter file by the labels of the others.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace command {

/// Advice for a file that cannot be read: the records that are missing, as far as the labels tell it.
std::vector<std::string> missing_records(std::string_view text);

} // namespace command
