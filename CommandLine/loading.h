// SPDX-License-Identifier: MIT
// Fluids from their folder and parameter files from anywhere, loaded with the library's own routines.
#pragma once

#include "Thermodynamics/gas_properties.h"
#include "Thermodynamics/ideal_specific_heat.h"

#include <cstdint>
#include <string>
#include <vector>

namespace command {

/// The library's shared error text, fit for a terminal.
std::string error_text(std::string_view text);

/// The folder of the fluids, with its separator; fails if there is none.
std::string fluid_folder();
/// The names of the folder's parameter files.
std::vector<std::string> fluid_names();
/// The parameter file of a fluid.
std::string path_of(const std::string &fluid);

/// Loads a fluid of the folder as a request does; fails with the library's text, and what helps.
void load_fluid(const std::string &fluid);

struct answer {
    double value;
    std::string text; ///< empty if the request was served
};

/// A request to the library.
answer request_property(std::string_view fluid, std::string_view pair, double input1, double input2,
                        std::string_view output);

/// What a parameter file says, and what became of it.
struct parameter_file {
    std::string path{};
    std::string text{};                            ///< the whole file
    std::string unreadable{};                      ///< why it cannot be read, empty if it can be
    std::int64_t last_record = 0;                  ///< the record read last
    equations::gas_constants constants{};          ///< as read; in gas_properties::gas they are completed
    ideal_gas_heat::heat_capacity heat_capacity{}; ///< likewise
    std::string not_initialised{};                 ///< the library's text, empty if all went well
};

/// Reads and initialises a parameter file in a library that has forgotten the fluid before it.
parameter_file load_file(const std::string &path);

} // namespace command
