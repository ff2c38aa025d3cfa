// SPDX-License-Identifier: MIT
// A parameter file in words.
#pragma once

#include "CommandLine/loading.h"

#include <iosfwd>

namespace command {

/// The loaded fluid's model as people call it; "unknown" for a code that is none.
std::string model_name();

/// What the file says, and where it could be initialised what the model makes of it.
void describe(std::ostream &out, const parameter_file &file);

} // namespace command
