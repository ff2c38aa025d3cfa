// SPDX-License-Identifier: MIT
// ostrel prop: computes properties of a fluid at one state.
#include "CommandLine/entry_points.h"
#include "CommandLine/fluid_choice.h"
#include "CommandLine/outputs.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>

namespace command {
namespace {

struct request {
    fluid_choice fluid;
    std::string pair;
    std::string texts[2];
    std::vector<std::string> outputs;
    units_option units;
    bool entry_points = false;
    report_form form;
};

void add_line(std::string &lines, const std::string &line) {
    lines += (lines.empty() ? "" : "\n") + line;
}

void serve(const request &asked) {
    const units_option &units = asked.units;
    const studies::unit_system system = units.system();
    const chosen_fluid chosen = asked.fluid.open();
    const ostrel::fluid &fluid = chosen.fluid;
    const auto si = units_of_pair(fluid, asked.pair);
    const double first = value_of("VALUE1", asked.texts[0], si[0]);
    const double second = value_of("VALUE2", asked.texts[1], si[1]);
    const wanted_outputs wanted(fluid, asked.outputs, system, lower_letters(asked.pair));

    const ostrel::unchecked pair(asked.pair);
    const auto answer =
        fluid.evaluate(pair, ostrel::unchecked(wanted.asked()), std::span(&first, 1), std::span(&second, 1));
    const int status = answer.status()[0];
    if (status != OSTREL_OK && status != OSTREL_TWO_PHASE) // The message of one value does not number the state.
        throw failure(fluid.try_value(pair, first, second, "t").error().message);
    const std::span<const double> values = answer[0];
    const std::span<const double> behind = values.subspan(wanted.size());

    report found = {.name = "properties",
                    .columns = {{"name"}, {"value"}, {"unit"}, {"meaning"}, {"note", "", true}},
                    .asked = {{"fluid", std::string(fluid.text("name"))},
                              {"source", std::string(fluid.text("source"))},
                              {"options", std::string(fluid.text("options"))},
                              {"pair", asked.pair},
                              {"value1", first},
                              {"value2", second}}};
    const auto remarks = wanted.remarks_on(values);
    std::string notes;
    for (const studies::remark *const remark : remarks)
        if (remark->outputs.empty())
            add_line(notes, remark->text);
    for (const std::string &note : chosen.notes)
        add_line(notes, note);
    const std::string phase(studies::phase_name(static_cast<int>(behind[3])));
    found.rows.push_back({std::string("phase"), phase, std::string(), std::string(), std::move(notes)});
    const std::vector<std::string> &names = wanted.names();
    if (std::find(names.begin(), names.end(), "q") == names.end())
        found.rows.push_back(
            {std::string("q"), value_or_none(behind[2]), std::string(), std::string("vapor quality"), std::string()});
    const std::vector<column> columns = wanted.columns();
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (names[i] == "phase")
            continue;
        std::string note;
        for (const studies::remark *const remark : remarks)
            if (std::find(remark->outputs.begin(), remark->outputs.end(), names[i]) != remark->outputs.end())
                add_line(note, remark->text);
        if (status == OSTREL_TWO_PHASE && std::isnan(values[i]))
            add_line(note, names[i] + " has no meaning between the phases.");
        found.rows.push_back(
            {columns[i].name, wanted.shown(i, values[i]), columns[i].unit, wanted.meaning(i), std::move(note)});
    }
    write(found, asked.form);
}

void refuse_options_of_handles(const request &asked) {
    std::string given = asked.fluid.database.empty() ? "" : "--database";
    for (const auto &[key, value] : asked.fluid.options)
        if (!value.empty())
            given = "--" + key;
    if (asked.units.system() != studies::unit_system::si)
        given = "--units engineering";
    if (!given.empty())
        throw wrong_argument("--entry-points: " + given +
                             " is for handles; the entry points know only the fluid folder, "
                             "the file's own equation and SI units");
}

} // namespace

definition prop() {
    const auto asked = std::make_shared<request>();
    std::vector<argument> arguments = asked->fluid.arguments();
    const argument positions[] = {{"PAIR", &asked->pair, "Input pair, for example pt", true},
                                  {"VALUE1", &asked->texts[0], "First value, in SI units or with a unit", true},
                                  {"VALUE2", &asked->texts[1], "Second value of the pair", true},
                                  {"OUTPUT", &asked->outputs, "Wanted properties; all if none is named"}};
    arguments.insert(arguments.begin() + 1, std::begin(positions), std::end(positions));
    arguments.push_back(asked->units.option());
    arguments.push_back({"--entry-points", &asked->entry_points,
                         "The numbers that hosts of ostrel_prop get: SI values, the file's equation"});
    std::ranges::move(asked->form.options(), std::back_inserter(arguments));
    return {.name = "prop",
            .meaning = "Compute properties of a fluid at one state",
            .arguments = std::move(arguments),
            .notes = table_of_pairs() + "\n" + table_of_outputs() + R"help(
The state is the stable one, a mixture inside the dome, unless --states says otherwise. Its phase and its
quality are always shown. A "-" stands where an output has no value. Notes say which numbers are rough.

Examples:
  ostrel prop toluene pt 1.2bar 400K d h s cp c
  ostrel prop R-134a tq 300 1 p d --units engineering
  ostrel prop water ps 5bar "1.5 kJ/(kg K)" t q --model pr --volume translated
  ostrel prop toluene tq 500 1 --json)help",
            .run = [asked] {
                if (!asked->entry_points)
                    return serve(*asked);
                refuse_options_of_handles(*asked);
                serve_from_entry_points(
                    {asked->fluid.words, asked->pair, {asked->texts[0], asked->texts[1]}, asked->outputs}, asked->form);
            }};
}

} // namespace command
