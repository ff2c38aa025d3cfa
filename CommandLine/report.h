// SPDX-License-Identifier: MIT
// Prints the results of commands as aligned columns, as CSV or as JSON.
#pragma once

#include "CommandLine/command.h"

#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace command {

using cell = std::variant<std::string, double>;

struct column {
    std::string name;
    std::string unit{};
};

struct report {
    std::string name{};                                ///< the name of the rows in JSON
    std::vector<column> columns{};                     ///< an empty column is left out of aligned columns
    std::vector<std::vector<cell>> rows{};             ///< each row has a cell for each column
    bool heading = false;                              ///< whether aligned columns have a heading
    std::vector<std::string> notes{};                  ///< remarks on the rows
    std::vector<std::pair<std::string, cell>> asked{}; ///< the question that the rows answer; only in JSON
};

/// The form of a report: aligned columns, or another one if an option says so.
struct report_form {
    bool csv = false;
    bool json = false;

    /// The options that choose it.
    std::vector<argument> options();
};

/// Prints a report to standard output. Numbers have 10 digits in aligned columns; in CSV and JSON they have as many as
/// are needed to read the same number back. A number that is not finite is nan, inf or -inf; JSON has null, and the
/// word under "NAME_not_finite". With CSV the notes go to standard error.
void write(const report &what, const report_form &form);
void write_columns(std::ostream &out, const report &what, std::string_view indent = "");

/// A number with 10 digits.
std::string number(double value);
/// The text with ? for every control character, so that a terminal can show it.
std::string printable(std::string_view text);

} // namespace command
