// SPDX-License-Identifier: MIT
// ostrel info: describes one fluid in words.
#include "CommandLine/command.h"
#include "CommandLine/description.h"
#include "CommandLine/loading.h"
#include "CommandLine/naming.h"
#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"
#include "Thermodynamics/gas_properties.h"

#include <cmath>
#include <iostream>
#include <memory>

namespace command {
namespace {

/// Prints what the index of the folder knows of a fluid.
void describe_facts(std::ostream &out, const fluid_index::fluid &facts) {
    report texts = {.columns = {{"what"}, {"text"}}};
    const auto add_text = [&](const char *what, const std::string &text) {
        if (!text.empty())
            texts.rows.push_back({std::string(what), printable(text)});
    };
    add_text("name", facts.name);
    add_text("other names", joined(facts.aliases, "; ", "; "));
    add_text("refrigerant", facts.refrigerant);
    add_text("formula", facts.formula);
    add_text("CAS number", facts.cas);
    add_text("family", facts.family);
    report temperatures = {.columns = {{"name"}, {"value"}, {"unit"}, {"meaning"}}};
    const auto add_temperature = [&](const char *name, double value, const char *meaning) {
        if (std::isfinite(value))
            temperatures.rows.push_back({std::string(name), value, std::string("K"), std::string(meaning)});
    };
    add_temperature("Tt", facts.triple_temperature, "triple temperature");
    add_temperature("T_low", facts.heat_capacity_lowest, "lowest temperature of the heat capacity's fit");
    add_temperature("T_high", facts.heat_capacity_highest, "highest temperature of the heat capacity's fit");
    if (texts.rows.empty() && temperatures.rows.empty())
        return;
    out << "\nIn the index of the fluids\n";
    write_columns(out, texts, "  ");
    write_columns(out, temperatures, "  ");
}

void tell(const std::string &words) {
    named_fluid fluid = fluid_named(words);
    load_fluid(fluid.facts.file);
    describe(std::cout, load_file(path_of(fluid.facts.file)));
    describe_facts(std::cout, fluid.facts);
    if (gas_properties::gas.vapor)
        add_temperature_notes(fluid.notes, fluid.facts, gas_properties::gas.Tc);
    if (!fluid.notes.empty())
        std::cout << '\n';
    for (const std::string &note : fluid.notes)
        std::cout << note << '\n';
}

} // namespace

definition info() {
    const auto fluid = std::make_shared<std::string>();
    return {.name = "info",
            .meaning = "Tell a fluid's constants and models",
            .arguments = {{"FLUID", fluid.get(), fluid_argument, true}},
            .notes = "Examples:\n  ostrel info toluene\n  ostrel info R-134a",
            .run = [fluid] { tell(*fluid); }};
}

} // namespace command
