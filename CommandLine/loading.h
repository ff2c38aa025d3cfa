// SPDX-License-Identifier: MIT
// Loads fluids from their folder and parameter files from anywhere, with the library's own routines.
#pragma once

#include "Thermodynamics/gas_properties.h"
#include "Thermodynamics/ideal_specific_heat.h"

#include <cstdint>
#include <string>
#include <vector>

namespace command {

/// A text of the library without padding, in a form that a terminal can show.
std::string error_text(std::string_view text);

/// The folder of the fluids, with its separator; fails if there is none.
std::string fluid_folder();
/// The parameter file of a fluid.
std::string path_of(const std::string &fluid);

/// Loads a fluid of the folder as a request does. Fails with the library's text and advice.
void load_fluid(const std::string &fluid);

struct answer {
    double value;
    std::string text; ///< empty if the request was served
};

/// Makes a request to the library; inputs and answer are in SI units.
answer request_property(std::string_view fluid, std::string_view pair, double input1, double input2,
                        std::string_view output);

/// The contents of a parameter file, and the outcome of loading it.
struct parameter_file {
    std::string path{};
    std::string text{};                            ///< the whole file
    std::string unreadable{};                      ///< the reason why it cannot be read; empty if it can
    std::int64_t last_record = 0;                  ///< the number of the last record that was read
    equations::gas_constants constants{};          ///< as read; gas_properties::gas has them completed
    ideal_gas_heat::heat_capacity heat_capacity{}; ///< as read
    std::string not_initialised{};                 ///< the library's text; empty if nothing failed
};

/// Resets the variables of the fluid, and then reads and initialises a parameter file.
parameter_file load_file(const std::string &path);

} // namespace command
