// SPDX-License-Identifier: MIT
// ostrel fluids: lists the fluids of the fluid directory, or those that words find.
#include "CommandLine/command.h"
#include "CommandLine/loading.h"
#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"
#include "Host/fluid_index.h"

#include "ostrel.hpp"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>

namespace command {
namespace {

/// The columns, and in which order they go if a terminal is too narrow; 0 stays.
struct listed_column {
    column head;
    int leaves;
};
const listed_column listed[] = {
    {{"name"}, 0},  {{"fluid"}, 0},        {{"formula"}, 5}, {{"refrigerant"}, 4}, {{"family"}, 3}, {{"CAS"}, 2},
    {{"model"}, 1}, {{"M", "kg/kmol"}, 6}, {{"Tc", "K"}, 8}, {{"pc", "Pa"}, 7},    {{"remark"}, 0},
};

/// The row of a fluid. If the fluid cannot be used, the remark says why.
std::vector<cell> row_of(const fluid_index::fluid &facts) {
    std::vector<cell> row = {facts.file,    facts.name,    facts.formula, facts.refrigerant, facts.family, facts.cas,
                             std::string(), std::string(), std::string(), std::string(),     std::string()};
    const auto opened = ostrel::fluid::try_open(facts.file);
    if (!opened) {
        row.back() = "cannot be used: " + printable(opened.error().message);
        return row;
    }
    if (facts.name.empty())
        row[1] = printable(opened->text("name"));
    row[6] = std::string(opened->text("model"));
    row[7] = 1000 * opened->constant("m_mol");
    row[8] = value_or_none(opened->constant("t_crit"));
    row[9] = value_or_none(opened->constant("p_crit"));
    if (std::holds_alternative<std::monostate>(row[8]))
        row[10] = "without critical data";
    return row;
}

/// Leaves out columns until the rest fits into the width.
void fit(report &found, std::size_t width) {
    for (int next = 1; next <= 8 && columns_width(found) > width; ++next) {
        for (std::size_t i = 0; i < found.columns.size(); ++i) {
            const auto *const column = std::find_if(std::begin(listed), std::end(listed), [&](const auto &one) {
                return one.head.name == found.columns[i].name;
            });
            if (column->leaves != next)
                continue;
            found.columns.erase(found.columns.begin() + static_cast<std::ptrdiff_t>(i));
            for (auto &row : found.rows)
                row.erase(row.begin() + static_cast<std::ptrdiff_t>(i));
            break;
        }
    }
}

/// Lists the fluids that the words find; all fluids if there are none.
void list(const std::string &words, const report_form &form) {
    const std::string folder = fluid_folder();
    report found = {.name = "fluids", .heading = true, .asked = {{"folder", folder}}};
    for (const listed_column &one : listed)
        found.columns.push_back(one.head);
    if (!words.empty())
        found.asked.emplace_back("words", words);
    const fluid_index::index index(folder);
    for (const ostrel::found_fluid &one : ostrel::find(words))
        found.rows.push_back(row_of(index.facts(one.file)));
    if (found.rows.empty() && !form.csv && !form.json) {
        std::cout << (words.empty() ? "There are no parameter files (*.osd) in "
                                    : "No name is like \"" + printable(words) + "\" in ")
                  << folder << '\n';
        return;
    }
    if (const std::size_t width = terminal_width(); width > 0 && !form.csv && !form.json)
        fit(found, width);
    // On a terminal that is still too narrow, long names are cut rather than folded.
    found.keys = found.columns.size();
    write(found, form);
}

} // namespace

definition fluids() {
    const auto words = std::make_shared<std::vector<std::string>>();
    const auto form = std::make_shared<report_form>();
    definition result = {
        .name = "fluids",
        .meaning = "List the fluids that are there, or those with some name",
        .arguments = {{"WORDS", words.get(),
                       "A name or a part of it, refrigerant number, formula, CAS number or family"}},
        .notes =
            "The fluids whose names are the words come first, then names that begin with them, that contain them, or\n"
            "that are near in spelling. Case, blanks and punctuation do not count. On a terminal, only those columns\n"
            "are shown that fit.\n\n"
            "Examples:\n  ostrel fluids\n  ostrel fluids carbon dioxide\n  ostrel fluids R134 --csv",
        .run = [words, form] { list(joined(*words, " ", " "), *form); }};
    std::ranges::move(form->options(), std::back_inserter(result.arguments));
    return result;
}

} // namespace command
