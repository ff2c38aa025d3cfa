// SPDX-License-Identifier: MIT
// What is likely to be wrong with a parameter file that can be read.
#pragma once

#include "CommandLine/loading.h"

#include <string>
#include <vector>

namespace command {

/// What the file's own words give away.
std::vector<std::string> suspicions(const parameter_file &file);

/// What is seen in the initialised fluid's answers at one state; `unusable` receives why there are none.
std::vector<std::string> trial(std::string &unusable);

} // namespace command
