// SPDX-License-Identifier: MIT
// A critical pressure with which a model finds its critical volume.
//
// Computes   the Pc nearest to the one in a file with which Redlich-Kwong, Soave-Redlich-Kwong or Peng-Robinson load
// Given      a file with a Pc for which the critical volume is not found: the residual is rounded to about 1e-9 Pa and
//            therefore meets its tolerance for some values of Pc and not for others
// Returned   Pc [atm], written as in a file
// Accuracy   steps of one in the tenth digit, up to 1000 on either side; each step loads the changed file
#pragma once

#include "CommandLine/loading.h"

#include <cstdint>
#include <optional>
#include <string>

namespace command {

struct replacement {
    std::int64_t record; ///< number of the record with Pc
    std::string value;
};

/// None if no value near enough helps, or if no file can be written to the folder of temporary files.
std::optional<replacement> nearest_critical_pressure(const parameter_file &file);

} // namespace command
