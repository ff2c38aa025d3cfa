// SPDX-License-Identifier: MIT
// ostrel cycle: solves the thermodynamic cycle that a file describes.
#include "CommandLine/cycle_file.h"
#include "CommandLine/outputs.h"
#include "CommandLine/picture.h"
#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

namespace command {
namespace {

using nlohmann::ordered_json;

struct request {
    std::string path;
    std::string sweep;
    std::string figures;
    std::string plot;
    std::string diagram;
    units_option units{"engineering"};
    report_form form;
};

studies::unit unit_of(std::string_view si, bool difference, studies::unit_system system) {
    const studies::unit shown = studies::shown_unit(si, system);
    return difference && shown.offset != 0 ? studies::shown_unit(si, studies::unit_system::si) : shown;
}

/// The name of a unit for a column.
std::string name_of(const studies::unit &one) {
    return one.name == "1" ? std::string() : std::string(one.name);
}

/// The figures that were asked for, or all.
std::vector<const studies::cycle_figure *> wanted_figures(const std::string &names) {
    std::vector<const studies::cycle_figure *> result;
    std::vector<std::string> known;
    for (const studies::cycle_figure &row : studies::cycle_figure_list()) {
        known.emplace_back(row.name);
        if (names.empty())
            result.push_back(&row);
    }
    std::istringstream parts(names);
    for (std::string name; std::getline(parts, name, ',');) {
        const auto found = std::ranges::find(known, name);
        if (found == known.end())
            throw wrong_argument("--figures: there is no figure \"" + printable(name) + "\". " +
                                 did_you_mean(name, known) + "\nThere are " + joined(known, ", ", " and ") + '.');
        result.push_back(&studies::cycle_figure_list()[static_cast<std::size_t>(found - known.begin())]);
    }
    return result;
}

/// What was asked, for JSON.
std::vector<std::pair<std::string, cell>> asked_of(const std::string &path, const ostrel::fluid &fluid) {
    return {{"file", path},
            {"fluid", std::string(fluid.text("name"))},
            {"source", std::string(fluid.text("source"))},
            {"options", std::string(fluid.text("options"))}};
}

report states_of(const ostrel::fluid &fluid, const studies::cycle_result &cycle, studies::unit_system system) {
    struct shown_property {
        const char *name;
        const char *si;
        studies::point_property member;
    };
    constexpr shown_property properties[] = {
        {"t", "K", &studies::point::t},        {"p", "Pa", &studies::point::p},    {"h", "J/kg", &studies::point::h},
        {"s", "J/(kg K)", &studies::point::s}, {"d", "kg/m3", &studies::point::d}, {"q", "1", &studies::point::q},
    };
    report states = {.name = "states", .columns = {{"no"}, {"state"}}, .heading = true, .keys = 2};
    for (const shown_property &one : properties)
        states.columns.push_back({one.name, name_of(studies::shown_unit(one.si, system))});
    states.columns.push_back({"note", "", true});
    const studies::remarks remarks(fluid, {"h", "s", "d"}, "hs");
    int number = 0; // as in a diagram
    for (const studies::cycle_state &state : cycle.states) {
        std::vector<cell> row = {++number, state.place};
        for (const shown_property &one : properties)
            row.push_back(value_or_none(studies::in_unit(state.at.*one.member, studies::shown_unit(one.si, system))));
        row.emplace_back(texts_of(remarks.at(state.at.t, state.at.p, state.at.state.phase)));
        states.rows.push_back(std::move(row));
    }
    return states;
}

report figures_of(const studies::cycle_result &cycle, const std::vector<const studies::cycle_figure *> &wanted,
                  studies::unit_system system) {
    report figures = {.name = "figures", .columns = {{"figure"}, {"value"}, {"unit"}, {"meaning"}}};
    for (const studies::cycle_figure *const row : wanted) {
        const double value = cycle.figures.*row->member;
        const studies::unit shown = unit_of(row->si, row->difference, system);
        if (!std::isnan(value))
            figures.rows.push_back(
                {std::string(row->name), studies::in_unit(value, shown), name_of(shown), std::string(row->meaning)});
    }
    return figures;
}

/// One document with both tables.
void write_json(const std::vector<std::pair<std::string, cell>> &asked, const report &states, const report &figures,
                const std::vector<std::string> &notes) {
    std::vector<column> asked_names;
    std::vector<cell> asked_values;
    for (const auto &[name, value] : asked) {
        asked_names.push_back({name});
        asked_values.push_back(value);
    }
    const auto object = [](const std::vector<column> &names, const std::vector<cell> &row) {
        return ordered_json::parse(json_line(names, row));
    };
    ordered_json document = object(asked_names, asked_values);
    document[states.name] = ordered_json::array();
    for (const auto &row : states.rows)
        document[states.name].push_back(object(states.columns, row));
    for (const column &head : states.columns)
        if (!head.unit.empty())
            document["units"][head.name] = head.unit;
    document[figures.name] = ordered_json::object();
    for (const auto &row : figures.rows) {
        ordered_json figure = object(figures.columns, row);
        const std::string name = figure["figure"];
        figure.erase("figure");
        document[figures.name][name] = std::move(figure);
    }
    if (!notes.empty())
        document["notes"] = notes;
    std::cout << document.dump(2) << '\n';
}

std::string kind_of(const request &asked) {
    return asked.diagram.empty() ? "ts" : asked.diagram;
}

/// Draws the processes of a cycle as one line, and its states with their numbers.
void draw(const request &asked, const solved_cycle &solved) {
    picture_request picture{
        .curves = {.kind = &diagram_kind_of("--diagram", kind_of(asked)), .units = asked.units.system()},
        .path = asked.plot,
        .show_states = true};
    studies::overlay line{.label = std::filesystem::path(asked.path).stem().string()};
    for (const studies::cycle_process &process : solved.result.processes)
        for (const studies::point &one : process.points)
            line.states.push_back(one.state);
    studies::overlay corners{.marked = true, .joined = false};
    for (const studies::cycle_state &one : solved.result.states)
        corners.states.push_back(one.at.state);
    picture.states = {std::move(line), std::move(corners)};
    write_picture(picture, {&solved.chosen.fluid});
}

void show_one(const request &asked, const std::vector<const studies::cycle_figure *> &wanted) {
    if (!asked.plot.empty()) {
        diagram_kind_of("--diagram", kind_of(asked));
        check_picture_name("--plot", asked.plot);
    }
    const solved_cycle solved = solve_cycle_file(asked.path);
    if (!asked.plot.empty())
        draw(asked, solved);
    const report states = states_of(solved.chosen.fluid, solved.result, asked.units.system());
    report figures = figures_of(solved.result, wanted, asked.units.system());
    if (asked.form.json) {
        write_json(asked_of(asked.path, solved.chosen.fluid), states, figures, solved.chosen.notes);
        return;
    }
    write(states, asked.form);
    std::cout << '\n';
    figures.notes = solved.chosen.notes;
    write(figures, asked.form);
    if (!asked.plot.empty())
        (asked.form.csv ? std::cerr : std::cout << '\n') << printable(asked.plot) << '\n';
}

/// KEY=RANGE.
struct swept_key {
    const studies::cycle_key *key;
    std::string name;
    studies::range values;
};

swept_key read_sweep(const std::string &text) {
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos)
        throw wrong_argument("--sweep: \"" + printable(text) +
                             "\" is not a sweep; write KEY=FIRST:LAST:COUNT, as in "
                             "evaporator.p=5bar:30bar:26");
    const std::string name = text.substr(0, sign);
    const studies::cycle_key *const key = studies::cycle_key_named(name);
    if (key == nullptr) {
        std::vector<std::string> names;
        for (const studies::cycle_key &row : studies::cycle_keys())
            names.push_back(std::string(row.section) + '.' + std::string(row.name));
        const std::string meant = did_you_mean(name, names);
        throw wrong_argument("--sweep: there is no key \"" + printable(name) + "\". " +
                             (meant.empty() ? "ostrel cycle --help lists the keys." : meant));
    }
    try {
        const studies::range values = studies::parse_range(text.substr(sign + 1), key->si, key->difference);
        constexpr std::size_t most_values = 1'000'000;
        if (values.count > most_values)
            throw wrong_argument("--sweep: at most " + std::to_string(most_values) + " values can be swept");
        return {key, name, values};
    } catch (const studies::wrong_value &reason) {
        throw wrong_argument("--sweep: " + std::string(reason.what()));
    }
}

/// The keys that say the same in another way.
std::vector<const char *> alternatives_of(const std::string &name) {
    static constexpr const char *alternatives[][2] = {
        {"evaporator.p", "evaporator.t"},
        {"condenser.p", "condenser.t"},
        {"evaporator.superheat", "evaporator.t_out"},
        {"condenser.subcooling", "condenser.t_out"},
        {"regenerator.effectiveness", "regenerator.pinch"},
        {"exchanger.effectiveness", "exchanger.pinch"},
        {"flow.mass", "flow.power"},
    };
    std::vector<const char *> result;
    for (const auto &[one, other] : alternatives) {
        if (name == one)
            result.push_back(other);
        if (name == other)
            result.push_back(one);
    }
    return result;
}

void show_sweep(const request &asked, const std::vector<const studies::cycle_figure *> &wanted) {
    const swept_key swept = read_sweep(asked.sweep);
    cycle_file file = read_cycle_file(asked.path);
    const chosen_fluid chosen = open_fluid(file, asked.path);
    struct outcome {
        double value;
        studies::cycle_figures figures;
        std::string reason;
    };
    // What the file gives in place of the key goes.
    for (const char *const other : alternatives_of(swept.name))
        file.wanted.*studies::cycle_key_named(other)->member = std::nullopt;
    std::vector<outcome> outcomes;
    for (std::size_t i = 0; i < swept.values.count; ++i) {
        outcome one{swept.values.at(i), {}, {}};
        file.wanted.*swept.key->member = one.value;
        try {
            one.figures = studies::solve(chosen.fluid, file.wanted, 1).figures;
        } catch (const studies::impossible &reason) {
            one.reason = printable(reason.what());
        }
        outcomes.push_back(std::move(one));
    }
    const bool none = std::ranges::all_of(outcomes, [](const outcome &one) { return !one.reason.empty(); });
    if (none)
        throw failure(asked.path + ": no value of " + swept.name +
                      " gives a cycle; the first one fails with: " + outcomes.front().reason);

    const studies::unit_system system = asked.units.system();
    const studies::unit shown = unit_of(swept.key->si, swept.key->difference, system);
    report table = {.name = "cycles",
                    .columns = {{swept.name, name_of(shown)}},
                    .heading = true,
                    .notes = chosen.notes,
                    .asked = asked_of(asked.path, chosen.fluid)};
    std::vector<const studies::cycle_figure *> columns;
    for (const studies::cycle_figure *const row : wanted)
        if (std::ranges::any_of(outcomes, [&](const outcome &one) { return !std::isnan(one.figures.*row->member); })) {
            columns.push_back(row);
            table.columns.push_back({std::string(row->name), name_of(unit_of(row->si, row->difference, system))});
        }
    table.columns.push_back({"reason"});
    for (const outcome &one : outcomes) {
        std::vector<cell> row = {studies::in_unit(one.value, shown)};
        for (const studies::cycle_figure *const figure : columns)
            row.push_back(value_or_none(
                studies::in_unit(one.figures.*figure->member, unit_of(figure->si, figure->difference, system))));
        row.emplace_back(one.reason);
        table.rows.push_back(std::move(row));
    }
    write(table, asked.form);
}

void serve(const request &asked) {
    asked.units.system();
    if (asked.plot.empty() && !asked.diagram.empty())
        throw wrong_argument("--diagram is for --plot, which names the file of the picture");
    const auto wanted = wanted_figures(asked.figures);
    if (asked.sweep.empty())
        show_one(asked, wanted);
    else
        show_sweep(asked, wanted);
}

std::string table_of_figures() {
    report figures = {.columns = {{"figure"}, {"unit"}, {"meaning"}}};
    for (const studies::cycle_figure &row : studies::cycle_figure_list())
        figures.rows.push_back({std::string(row.name), std::string(row.si), std::string(row.meaning)});
    std::ostringstream text;
    write_columns(text, figures, "  ");
    return text.str();
}

std::string table_of_kinds() {
    report kinds = {.columns = {{"kind"}, {"meaning"}}};
    for (const auto &row : studies::cycle_kinds())
        kinds.rows.push_back({std::string(row.name), std::string(row.meaning)});
    std::ostringstream text;
    write_columns(text, kinds, "  ");
    return text.str();
}

} // namespace

definition cycle() {
    const auto asked = std::make_shared<request>();
    std::vector<argument> arguments = {
        {"FILE", &asked->path, "Definition of the cycle (TOML)", true},
        {"--sweep", &asked->sweep,
         "KEY=FIRST:LAST:COUNT[:log]: the figures for each of these values, in place of the states"},
        {"--figures", &asked->figures, "Names of figures with commas between them; all if none is named"},
        {"--plot", &asked->plot, "Draw the cycle in a diagram too, into a file .svg, .pdf or .png", false, "--sweep"},
        {"--diagram",
         &asked->diagram,
         "The kind of the diagram: ts (the default), ph, hs, pv or pt",
         false,
         "",
         {"ts", "ph", "hs", "pv", "pt"}},
        asked->units.option()};
    std::ranges::move(asked->form.options(), std::back_inserter(arguments));
    return {
        .name = "cycle",
        .meaning = "Solve a Rankine or a vapor compression cycle",
        .arguments = std::move(arguments),
        .notes =
            R"(The units of the tables are those of engineers, unless --units says si. With --csv an empty line stands
between the states and the figures. In a sweep, a value that gives no cycle has its reason in its row.

A file has the name of the fluid, and the options of its opening if others than the standard are wanted
(model, states, phase, volume, reference, database). Values are numbers in SI units, or texts with units:

  fluid = "toluene"
  kind = "rankine"
  [evaporator]
  p = "15 bar"
  superheat = "5 K"
  [condenser]
  t = "45 degC"
  [turbine]
  efficiency = 0.85

Kinds (rankine if none is named):
)" + table_of_kinds() +
            R"(
Keys, with their SI units, what holds without them, and the kind of cycle that has them if only one has. The
pressure of an exchanger is that of its outlet; its inlet is higher by its drop.
)" + table_of_cycle_keys() +
            R"(
Figures:
)" + table_of_figures() +
            R"(
Examples:
  ostrel cycle Examples/Cycles/toluene.toml
  ostrel cycle Examples/Cycles/r134a.toml --figures cop_cooling,internal_pinch --json
  ostrel cycle Examples/Cycles/steam.toml --plot steam-ts.svg
  ostrel cycle Examples/Cycles/toluene.toml --sweep evaporator.p=5bar:30bar:6 --figures efficiency,net_work)",
        .run = [asked] { serve(*asked); }};
}

} // namespace command
