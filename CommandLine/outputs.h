// SPDX-License-Identifier: MIT
// Inputs and outputs of handles as people write and read them: with units, and with remarks.
#pragma once

#include "CommandLine/command.h"
#include "CommandLine/report.h"
#include "Studies/remarks.h"
#include "Studies/units.h"

#include "ostrel.hpp"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace command {

/// The option --units.
struct units_option {
    std::string word = "si";

    argument option();
    studies::unit_system system() const; ///< fails if the word is no system
};

/// The SI units of the two letters of a pair, in their order. Fails with the library's message for an unknown pair.
std::array<std::string, 2> units_of_pair(const ostrel::fluid &fluid, const std::string &pair);

/// A pair as outputs name its letters: in lower case, without blanks.
std::string lower_letters(const std::string &pair);

/// A value of an argument of a command, in SI units; fails with the name of the argument.
double value_of(const std::string &name, const std::string &text, std::string_view si);
studies::range range_of(const std::string &name, const std::string &text, std::string_view si);

/// All names of a kind, and the pairs, outputs and derivatives as tables for a help text.
std::vector<std::string> names_of(ostrel::list which);
std::string table_of_pairs();
std::string table_of_outputs();

/// The names of outputs in words, several of which may stand in one word with commas between them, in lower case;
/// without words, all outputs.
std::vector<std::string> output_names(const std::vector<std::string> &words);

/// The outputs that a command was asked for.
class wanted_outputs {
public:
    /// `words` are names, several with commas between them; without words, all outputs. Fails with the library's
    /// message for an unknown name.
    /// `pair` are the letters of the inputs.
    wanted_outputs(const ostrel::fluid &fluid, const std::vector<std::string> &words, studies::unit_system system,
                   std::string_view pair = "");

    std::size_t size() const { return rows_.size(); }
    const std::vector<std::string> &names() const { return names_; }
    /// The names with commas between them, and "t,p,q,phase" behind them, on which remarks depend.
    const std::string &asked() const { return asked_; }
    static constexpr std::size_t behind = 4; ///< the number of names behind

    std::string meaning(std::size_t output) const { return rows_[output].meaning; }
    /// Columns with the names and the shown units.
    std::vector<column> columns() const;
    /// A value in its shown unit. A phase is its name.
    cell shown(std::size_t output, double value) const;
    /// The remarks on a state. `values` are those that were asked.
    std::vector<const studies::remark *> remarks_on(std::span<const double> values) const;

private:
    struct row {
        std::string meaning;
        studies::unit unit;
        bool is_phase;
    };
    std::vector<std::string> names_;
    std::vector<row> rows_;
    std::string asked_;
    studies::remarks remarks_;
};

/// The texts of remarks, one on each line.
std::string texts_of(const std::vector<const studies::remark *> &remarks);

/// Adds the cells of a state to a row: its outputs, its status, and a note with its remarks or with the reason why
/// there is no state.
void add_cells(std::vector<cell> &row, const wanted_outputs &wanted, std::span<const double> values, int status);

} // namespace command
