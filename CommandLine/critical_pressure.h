// SPDX-License-Identifier: MIT
// A critical pressure with which a model finds its critical volume.
//
// Computes   the value of Pc nearest to a file's with which Redlich-Kwong, Soave-Redlich-Kwong or Peng-Robinson load
// Given      a file whose critical volume is not found: in doubles the residual moves in steps of about 1e-9 Pa and
//            meets its tolerance for some values of Pc and not for others
// Returned   Pc [atm] as it would stand in the file
// Accuracy   steps of one in the tenth digit, up to 1000 on either side; each is tried by loading the changed file
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

/// None if no value near enough helps, or the changed file cannot be written to the folder of temporary files.
std::optional<replacement> nearest_critical_pressure(const parameter_file &file);

} // namespace command
