// SPDX-License-Identifier: MIT
#include "CommandLine/command.h"

namespace command {

std::vector<definition> all() {
    return {fluids(), info(), prop(), sat(), table(), eval(), plot(), cycle(), nozzle(), check(), db()};
}

} // namespace command
