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

/// A text, a number, a whole number, or no value: "-" in aligned columns, nothing in CSV, null in JSON.
using cell = std::variant<std::string, double, int, std::monostate>;

/// A number, or no value for a NaN.
inline cell value_or_none(double value) {
    return value == value ? cell(value) : cell(std::monostate{});
}

struct column {
    std::string name;
    std::string unit{};
    bool note = false; ///< remarks on the row: below aligned columns, each once; left out of JSON where empty
};

struct report {
    std::string name{};                                ///< the name of the rows in JSON
    std::vector<column> columns{};                     ///< an empty column is left out of aligned columns
    std::vector<std::vector<cell>> rows{};             ///< each row has a cell for each column
    bool heading = false;                              ///< whether aligned columns have a heading
    std::size_t keys = 1;                              ///< columns that stand in each block of a table that is folded
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

/// Prints a report to standard output. On a terminal, aligned columns are folded to its width. Numbers have 10 digits
/// in aligned columns; in CSV and JSON they have as many as are needed to read the same number back. A number that is
/// not finite is nan, inf or -inf; JSON has null, and the word under "NAME_not_finite". With CSV the notes of a report
/// go to standard error; those of a row have a column.
void write(const report &what, const report_form &form);
/// `width` is the number of characters of a line; 0 for any number.
void write_columns(std::ostream &out, const report &what, std::string_view indent = "", std::size_t width = 0);

/// A sentence on lines of at most so many characters; 0 for any number.
void write_folded(std::ostream &out, const std::string &text, std::size_t width);

/// The number of characters of the longest line that aligned columns have.
std::size_t columns_width(const report &what);

/// The width of the terminal that standard output is; 0 if it is none.
std::size_t terminal_width();
/// A cell as CSV has it.
std::string csv_text(const cell &value);
/// A line of CSV, without its end.
std::string csv_line(const std::vector<cell> &row);
/// The names of columns, with their units in brackets, as a line of CSV.
std::string csv_heading(const std::vector<column> &columns);
/// A row as an object on one line of JSON.
std::string json_line(const std::vector<column> &columns, const std::vector<cell> &row);
/// A message of standard error, behind the name of the program.
void warn(const std::string &text);

/// A number with 10 digits.
std::string number(double value);
/// The text with ? for every control character, so that a terminal can show it.
std::string printable(std::string_view text);

} // namespace command
