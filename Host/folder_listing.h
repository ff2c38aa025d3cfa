// SPDX-License-Identifier: MIT
// Lists the files of a folder.
#pragma once

#include <string>
#include <vector>

namespace folder_listing {

/// The names of the regular files of a folder that match a pattern of the shell, sorted by their bytes; none if there
/// is no such folder.
std::vector<std::string> files(const std::string &folder, const std::string &pattern);

} // namespace folder_listing
