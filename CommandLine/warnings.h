// SPDX-License-Identifier: MIT
// Warnings of probable mistakes in a parameter file that can be read.
#pragma once

#include "CommandLine/loading.h"

#include <string>
#include <vector>

namespace command {

/// The constants that are not above 0, although nothing can be computed without them.
std::vector<std::string> refusals(const parameter_file &file);

/// The warnings that follow from the contents of the file.
std::vector<std::string> suspicions(const parameter_file &file);

/// The warnings that follow from the results of the initialised fluid at one state and in saturation. If the fluid
/// cannot be used, `unusable` receives the reason.
std::vector<std::string> trial(std::string &unusable);

} // namespace command
