// SPDX-License-Identifier: MIT
// Describes a parameter file in words.
#pragma once

#include "CommandLine/loading.h"

#include <iosfwd>

namespace command {

/// The name that people use for the loaded fluid's model; "unknown" if no model has its code.
std::string model_name();

/// Describes the contents of the file and, if it could be initialised, the constants that follow from them.
void describe(std::ostream &out, const parameter_file &file);

} // namespace command
