// SPDX-License-Identifier: MIT
// ostrel nozzle: expands a fluid from a total state.
#include "Studies/nozzle.h"
#include "CommandLine/fluid_choice.h"
#include "CommandLine/outputs.h"
#include "CommandLine/report.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <memory>

namespace command {
namespace {

struct request {
    fluid_choice fluid;
    std::string pair;
    std::string texts[2];
    std::string to;
    std::string steps = "20";
    units_option units{"engineering"};
    report_form form;
};

std::size_t number_of_steps(const std::string &text) {
    constexpr std::size_t most = 100'000;
    std::size_t count = 0;
    const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (status != std::errc{} || end != text.data() + text.size() || count < 1 || count > most)
        throw wrong_argument("--steps: \"" + printable(text) + "\" is not a number of steps; it must be from 1 to " +
                             std::to_string(most));
    return count;
}

/// A column of the table.
struct shown_value {
    const char *name;
    const char *si;
    double (*of)(const studies::nozzle_step &step);
};
constexpr shown_value values[] = {
    {"p", "Pa", [](const studies::nozzle_step &step) { return step.at.p; }},
    {"t", "K", [](const studies::nozzle_step &step) { return step.at.t; }},
    {"d", "kg/m3", [](const studies::nozzle_step &step) { return step.at.d; }},
    {"q", "1", [](const studies::nozzle_step &step) { return step.at.q; }},
    {"velocity", "m/s", [](const studies::nozzle_step &step) { return step.velocity; }},
    {"c", "m/s", [](const studies::nozzle_step &step) { return step.sound; }},
    {"mach", "1", [](const studies::nozzle_step &step) { return step.mach; }},
    {"mass_flux", "kg/(m2 s)", [](const studies::nozzle_step &step) { return step.mass_flux; }},
    {"area_ratio", "1", [](const studies::nozzle_step &step) { return step.area_ratio; }},
    {"fundamental", "1", [](const studies::nozzle_step &step) { return step.fundamental; }},
};

void serve(const request &asked) {
    const studies::unit_system system = asked.units.system();
    const std::size_t steps = number_of_steps(asked.steps);
    const double p_outlet = value_of("--to", asked.to, "Pa");
    const chosen_fluid chosen = asked.fluid.open();
    const auto units = units_of_pair(chosen.fluid, asked.pair);
    const double first = value_of("VALUE1", asked.texts[0], units[0]);
    const double second = value_of("VALUE2", asked.texts[1], units[1]);
    studies::nozzle_result flow;
    try {
        const studies::point total =
            studies::point_at(chosen.fluid, ostrel::unchecked(asked.pair), first, second, "total state");
        flow = studies::expand(chosen.fluid, total, p_outlet, steps);
    } catch (const studies::impossible &reason) {
        throw failure(printable(reason.what()));
    }

    report table = {.name = "steps",
                    .columns = {{"place"}},
                    .heading = true,
                    .notes = chosen.notes,
                    .asked = {{"fluid", std::string(chosen.fluid.text("name"))},
                              {"source", std::string(chosen.fluid.text("source"))},
                              {"options", std::string(chosen.fluid.text("options"))}}};
    for (const shown_value &one : values) {
        const studies::unit shown = studies::shown_unit(one.si, system);
        table.columns.push_back({one.name, shown.name == "1" ? std::string() : std::string(shown.name)});
    }
    table.columns.push_back({"note", "", true});
    const studies::remarks remarks(chosen.fluid, {"d", "h", "c", "fundamental"}, "hs");
    for (const studies::nozzle_step &step : flow.steps) {
        std::vector<cell> row = {std::string(step.place)};
        for (const shown_value &one : values)
            row.push_back(value_or_none(studies::in_unit(one.of(step), studies::shown_unit(one.si, system))));
        row.emplace_back(texts_of(remarks.at(step.at.t, step.at.p, step.at.state.phase)));
        table.rows.push_back(std::move(row));
    }
    std::ranges::move(flow.notes, std::back_inserter(table.notes));
    write(table, asked.form);
}

} // namespace

definition nozzle() {
    const auto asked = std::make_shared<request>();
    std::vector<argument> arguments = asked->fluid.arguments({"states", "phase"});
    arguments.insert(arguments.begin() + 1,
                     {{"PAIR", &asked->pair, "Input pair of the total state, for example pt", true},
                      {"VALUE1", &asked->texts[0], "First value of the pair, with a unit or in SI units", true},
                      {"VALUE2", &asked->texts[1], "Second value of the pair", true},
                      {"--to", &asked->to, "Pressure at the outlet", true},
                      {"--steps", &asked->steps, "Number of steps, in equal ratios of pressure (20)"}});
    arguments.push_back(asked->units.option());
    std::ranges::move(asked->form.options(), std::back_inserter(arguments));
    return {
        .name = "nozzle",
        .meaning = "Expand a fluid in a nozzle: velocity, Mach number, area and throat",
        .arguments = std::move(arguments),
        .notes =
            R"(The flow is stationary, isentropic and in equilibrium; the total state is at rest. Between the phases c is the
speed of sound of the mixture in equilibrium. It jumps on the saturation line, which therefore has two rows;
the flow may choke there. area_ratio refers to the throat, where the mass flux is largest. The units of the
table are those of engineers, unless --units says si.

Examples:
  ostrel nozzle nitrogen pt 10bar 300K --to 1bar
  ostrel nozzle water pt 20bar 480K --to 1bar --steps 10
  ostrel nozzle mdm pt 14.5bar 565K --to 1bar --steps 12 --csv)",
        .run = [asked] { serve(*asked); }};
}

} // namespace command
