// SPDX-License-Identifier: MIT
// ostrel info: what is known of one fluid, and what its equations are good for.
#include "CommandLine/command.h"
#include "CommandLine/fluid_choice.h"
#include "CommandLine/outputs.h"
#include "CommandLine/report.h"
#include "Host/fluid_index.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>

namespace command {
namespace {

struct request {
    fluid_choice fluid;
    units_option units;
    bool text = false;
    report_form form;
};

constexpr double atmosphere = 101325.0;

report table() {
    return {.columns = {{"name"}, {"value"}, {"unit"}, {"meaning"}}};
}

/// A temperature in its shown unit.
std::vector<cell> temperature(const char *name, double kelvin, studies::unit_system system, const char *meaning) {
    const studies::unit shown = studies::shown_unit("K", system);
    return {std::string(name), value_or_none(studies::in_unit(kelvin, shown)), std::string(shown.name),
            std::string(meaning)};
}

/// All constants of the handle; those that are unknown are left out.
report constants_of(const ostrel::fluid &fluid, studies::unit_system system) {
    report result = table();
    for (const ostrel::row one : ostrel::list(ostrel::kind::constants)) {
        const double value = fluid.constant(ostrel::unchecked(std::string(one.name)));
        if (std::isnan(value))
            continue;
        const studies::unit shown = studies::shown_unit(one.unit, system);
        result.rows.push_back({std::string(one.name), studies::in_unit(value, shown),
                               std::string(shown.name == "1" ? "" : shown.name), std::string(one.description)});
    }
    return result;
}

/// The boiling temperatures: one is measured, one was chosen so that omega is right, and one is what the equation makes
/// of them.
report boiling_of(const ostrel::fluid &fluid, const fluid_index::fluid &facts, studies::unit_system system) {
    report result = table();
    if (!std::isnan(facts.boiling_temperature))
        result.rows.push_back(temperature("measured", facts.boiling_temperature, system, "of the real fluid at 1 atm"));
    if (const double tuned = fluid.constant("t_boil"); !std::isnan(tuned))
        result.rows.push_back(
            temperature("in the file", tuned, system, "chosen so that omega follows from it by Edmister's formula"));
    if (const auto computed = fluid.try_value("pq", atmosphere, 1.0, "t"))
        result.rows.push_back(temperature("computed", *computed, system, "by the equation of state at 1 atm"));
    return result;
}

void print_names(const ostrel::fluid &fluid, const fluid_index::fluid &facts) {
    std::cout << printable(fluid.text("name")) << '\n' << printable(fluid.text("label")) << "\n\n";
    report texts = {.columns = {{"what"}, {"text"}}};
    const auto add = [&](const char *what, std::string_view text) {
        if (!text.empty())
            texts.rows.push_back({std::string(what), printable(text)});
    };
    add("name", facts.name);
    add("other names", fluid.text("aliases"));
    add("refrigerant", facts.refrigerant);
    add("formula", fluid.text("formula"));
    add("CAS number", fluid.text("cas"));
    add("family", facts.family);
    add("source", fluid.text("source"));
    write_columns(std::cout, texts, "", terminal_width());
}

void print_models(const ostrel::fluid &fluid) {
    report models = {.columns = {{"word"}, {"name"}, {"advice"}}};
    for (const ostrel::row one : ostrel::list(ostrel::kind::models))
        models.rows.push_back({std::string(one.name) + (one.name == fluid.text("model") ? " *" : ""),
                               std::string(one.description), std::string(studies::advice_on_model(one.name))});
    std::cout << "\nEquations of state, which --model takes (* this one)\n";
    write_columns(std::cout, models, "  ", terminal_width());
    report others = {.columns = {{"what"}, {"text"}}};
    others.rows = {{std::string("heat capacity"), printable(fluid.text("heat_capacity"))},
                   {std::string("viscosity"), printable(fluid.text("viscosity"))},
                   {std::string("conductivity"), printable(fluid.text("conductivity"))}};
    std::cout << "\nOther models\n";
    write_columns(std::cout, others, "  ", terminal_width());
}

void tell(const request &asked) {
    const studies::unit_system system = asked.units.system();
    const chosen_fluid chosen = asked.fluid.open();
    const ostrel::fluid &fluid = chosen.fluid;
    if (asked.text) {
        std::cout << fluid.text("text");
        return;
    }
    report constants = constants_of(fluid, system);
    const std::filesystem::path source(fluid.text("source"));
    fluid_index::fluid facts;
    if (asked.fluid.database.empty())
        facts = fluid_index::index(source.parent_path().string() + "/").facts(source.stem().string());
    const report boiling = boiling_of(fluid, facts, system);
    if (asked.form.csv || asked.form.json) {
        constants.name = "constants";
        constants.asked = {{"fluid", std::string(fluid.text("name"))},
                           {"source", std::string(fluid.text("source"))},
                           {"options", std::string(fluid.text("options"))}};
        for (auto row : boiling.rows) {
            row[0] = "boiling temperature, " + std::get<std::string>(row[0]);
            constants.rows.push_back(std::move(row));
        }
        write(constants, asked.form);
        return;
    }
    print_names(fluid, facts);
    std::cout << "\nConstants and limits\n";
    write_columns(std::cout, constants, "  ", terminal_width());
    if (!boiling.rows.empty()) {
        std::cout << "\nBoiling temperatures\n";
        write_columns(std::cout, boiling, "  ", terminal_width());
    }
    print_models(fluid);
    std::vector<std::string> notes = chosen.notes;
    const double lowest = fluid.constant("t_cp_min");
    const double highest = fluid.constant("t_cp_max");
    if (!std::isnan(lowest))
        notes.push_back("Between " + number(lowest) + " and " + number(highest) +
                        " K the heat capacity is fitted; outside, what depends on it is extrapolated.");
    std::cout << '\n';
    for (const std::string &note : notes)
        write_folded(std::cout, note, terminal_width());
}

} // namespace

definition info() {
    const auto asked = std::make_shared<request>();
    std::vector<argument> arguments = asked->fluid.arguments({"states", "phase"});
    arguments.push_back(asked->units.option());
    arguments.push_back({"--text", &asked->text, "Print the parameter file itself"});
    std::ranges::move(asked->form.options(), std::back_inserter(arguments));
    return {.name = "info",
            .meaning = "Tell a fluid's names, constants, limits and equations",
            .arguments = std::move(arguments),
            .notes = "Examples:\n  ostrel info toluene\n  ostrel info R-134a --units engineering\n  ostrel info water "
                     "--model pr --json\n  ostrel info propane --text",
            .run = [asked] { tell(*asked); }};
}

} // namespace command
