// SPDX-License-Identifier: MIT
// What commands print: rows in aligned columns, as CSV or as JSON.
#pragma once

#include <CLI/CLI.hpp>
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
    std::string name{};                                ///< of the rows, in JSON
    std::vector<column> columns{};                     ///< a column with nothing in it is not shown aligned
    std::vector<std::vector<cell>> rows{};             ///< a cell a column
    bool heading = false;                              ///< whether aligned columns get their names
    std::vector<std::string> notes{};                  ///< what to know of the rows
    std::vector<std::pair<std::string, cell>> asked{}; ///< what the rows answer, in JSON
};

/// The form of a report, aligned columns unless an option says other.
struct report_form {
    bool csv = false;
    bool json = false;

    void add_options(CLI::App &command);
};

/// Prints to standard output. Aligned columns have 10 digits, CSV and JSON as many as read back to the same number.
/// What is not finite is nan, inf or -inf, in JSON null with "NAME_not_finite" beside it. CSV leaves notes to standard
/// error.
void write(const report &what, const report_form &form);
void write_columns(std::ostream &out, const report &what, std::string_view indent = "");

/// A number with 10 digits.
std::string number(double value);
/// A text from a file, fit for a terminal.
std::string printable(std::string_view text);

} // namespace command
