// SPDX-License-Identifier: MIT
// ostrel fluids: lists the fluids in the fluid folder.
#include "CommandLine/command.h"
#include "CommandLine/description.h"
#include "CommandLine/loading.h"
#include "CommandLine/naming.h"
#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"
#include "Thermodynamics/thermodynamics.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>

namespace command {
namespace {

using gas_properties::gas;

/// The text with single blanks instead of the padding inside it.
std::string single_spaced(const std::string &text) {
    std::string result;
    for (const char c : text)
        if (c != ' ' || (!result.empty() && result.back() != ' '))
            result += c;
    return result;
}

/// The row of a fluid. If the fluid cannot be used, the remark says why.
std::vector<cell> row_of(const std::string &name) {
    std::vector<cell> row = {name, "", "", "", "", "", ""};
    try {
        load_fluid(name);
    } catch (const failure &reason) {
        // For a file that cannot be opened, the library's text has only a code.
        const std::string not_opened = load_file(path_of(name)).unreadable;
        row.back() = "cannot be used: " + single_spaced(not_opened.empty() ? reason.what() : not_opened);
        return row;
    }
    row[1] = printable(gas.name.trimmed());
    row[2] = model_name();
    row[3] = gas.MM;
    if (gas.vapor) {
        row[4] = gas.Tc;
        row[5] = gas.Pc;
    } else {
        row[6] = "without critical data";
    }
    return row;
}

/// Lists the fluids that the words find; all fluids if there are none.
void list(const std::string &words, const report_form &form) {
    const std::string folder = fluid_folder();
    report found = {
        .name = "fluids",
        .columns = {{"name"}, {"fluid"}, {"model"}, {"M", "kg/kmol"}, {"Tc", "K"}, {"pc", "Pa"}, {"remark"}},
        .heading = true,
        .asked = {{"folder", folder}}};
    if (!words.empty())
        found.asked.emplace_back("words", words);
    for (const std::string &name : words.empty() ? fluid_names() : fluids_found(words))
        found.rows.push_back(row_of(name));
    if (found.rows.empty() && !form.csv && !form.json)
        std::cout << (words.empty() ? "There are no parameter files (*.osd) in "
                                    : "No name is like \"" + printable(words) + "\" in ")
                  << folder << '\n';
    else
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
            "that are near in spelling. Case, blanks and punctuation do not count.\n\n"
            "Examples:\n  ostrel fluids\n  ostrel fluids carbon dioxide\n  ostrel fluids R134 --csv",
        .run = [words, form] { list(joined(*words, " ", " "), *form); }};
    std::ranges::move(form->options(), std::back_inserter(result.arguments));
    return result;
}

} // namespace command
