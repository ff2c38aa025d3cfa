// SPDX-License-Identifier: MIT
// Module gas_properties: the constants of the active fluid.
#pragma once

#include "Equations/gas_constants.h"
#include "Records/record_reader.h"
#include "Records/record_writer.h"
#include "visibility.h"

namespace gas_properties OSTREL_VISIBLE {

using equations::gas_constants;

/// The active fluid.
extern gas_constants gas;

/// Reads the section from a parameter file, or from the lines of a fluid database.
void read_param_gas_properties(records::file_reader &unit);
void read_param_gas_propertiesdb(records::line_reader &lines);
/// Writes the section. P_ref of a fluid without critical data is written in Pa, although it is read in atm.
void write_param_gas_properties(records::record_writer &unit);

} // namespace gas_properties
