// SPDX-License-Identifier: MIT
// ostrel fluids: lists the fluids in the fluid folder.
#include "CommandLine/command.h"
#include "CommandLine/description.h"
#include "CommandLine/loading.h"
#include "CommandLine/report.h"
#include "Thermodynamics/thermodynamics.h"

#include <iostream>
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

void list(const report_form &form) {
    const std::string folder = fluid_folder();
    report found = {
        .name = "fluids",
        .columns = {{"name"}, {"fluid"}, {"model"}, {"M", "kg/kmol"}, {"Tc", "K"}, {"pc", "Pa"}, {"remark"}},
        .heading = true,
        .asked = {{"folder", folder}}};
    for (const std::string &name : fluid_names())
        found.rows.push_back(row_of(name));
    if (found.rows.empty() && !form.csv && !form.json)
        std::cout << "There are no parameter files (*.osd) in " << folder << '\n';
    else
        write(found, form);
}

} // namespace

void add_fluids(CLI::App &program) {
    CLI::App *const command = program.add_subcommand("fluids", "List the fluids that are there");
    const auto form = std::make_shared<report_form>();
    form->add_options(*command);
    command->footer("Example:\n  ostrel fluids");
    command->callback([form] { list(*form); });
}

} // namespace command
