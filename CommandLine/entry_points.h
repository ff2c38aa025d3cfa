// SPDX-License-Identifier: MIT
// ostrel prop --entry-points: the numbers that hosts of the entry points get.
#pragma once

#include "CommandLine/report.h"

#include <string>
#include <vector>

namespace command {

/// A state as the arguments of the command name it. The entry points take numbers in SI units only.
struct entry_point_request {
    std::string fluid;
    std::string pair;
    std::string values[2];
    std::vector<std::string> outputs;
};

/// Prints the answers of the entry points, with notes on what is odd in them.
void serve_from_entry_points(const entry_point_request &asked, const report_form &form);

} // namespace command
