// SPDX-License-Identifier: MIT
// ostrel plot: draws the diagrams of a fluid.
#include "CommandLine/command.h"
#include "CommandLine/fluid_choice.h"
#include "CommandLine/outputs.h"
#include "CommandLine/picture.h"
#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"
#include "Studies/curves.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <system_error>

namespace command {
namespace {

struct plot_request {
    fluid_choice fluid;
    std::string kind;
    std::string output;
    std::string models;
    std::string lines;
    std::string states;
    bool join = false;
    units_option units{"engineering"};
    std::string x;
    std::string y;
    std::string size = "1000x700";
};

std::string in_quotes(const std::string &text) {
    return '"' + printable(text) + '"';
}

std::optional<studies::axis_range> axis_of(const char *option, const std::string &text, studies::property what) {
    if (text.empty())
        return std::nullopt;
    const studies::property_text &axis = studies::text_of(what);
    const std::vector<std::string> ends = parts_of(text, ':');
    const std::string name = std::string(option) + ": ";
    if (ends.size() != 2)
        throw wrong_argument(name + in_quotes(text) + " is not a range; LOW:HIGH is wanted");
    const studies::axis_range range = {value_of(option, ends[0], axis.si), value_of(option, ends[1], axis.si)};
    if (!(range.low < range.high) || !std::isfinite(range.high - range.low))
        throw wrong_argument(name + "the first value must be below the second one");
    if (axis.logarithmic && !(range.low > 0))
        throw wrong_argument(name + "the axis is logarithmic; both values must be above 0");
    constexpr double largest_ratio = 1e15;
    if (axis.logarithmic && !(range.high / range.low <= largest_ratio))
        throw wrong_argument(name + "an axis of more than 15 decades shows nothing");
    return range;
}

std::array<double, 2> size_of(const plot_request &asked) {
    const std::vector<std::string> sides = parts_of(asked.size, 'x');
    constexpr int smallest = 200;
    constexpr int largest = 5000;
    std::array<double, 2> size{};
    bool valid = sides.size() == 2;
    for (std::size_t i = 0; valid && i < 2; ++i) {
        int side = 0;
        const char *const end = sides[i].data() + sides[i].size();
        const auto read = std::from_chars(sides[i].data(), end, side);
        valid = read.ec == std::errc{} && read.ptr == end && side >= smallest && side <= largest;
        size[i] = side;
    }
    if (!valid)
        throw wrong_argument("--size: " + in_quotes(asked.size) +
                             " is not a size; WIDTHxHEIGHT is wanted, each from 200 to 5000");
    return size;
}

/// The states of a file with the lines "pair, value, value" and perhaps ", label".
studies::overlay states_of(const std::string &path, const ostrel::fluid &fluid) {
    std::ifstream stream(path);
    if (!stream)
        throw failure(printable(path) + " cannot be opened: " + std::generic_category().message(errno));
    studies::overlay states{.label = "states", .marked = true};
    int number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        const std::vector<std::string> cells = parts_of(line, ',');
        if (cells.empty() || line.starts_with('#') || std::ranges::all_of(cells, &std::string::empty))
            continue;
        const std::string where = printable(path) + ", line " + std::to_string(number) + ": ";
        if (cells.size() < 3 || cells.size() > 4)
            throw failure(where + "PAIR,VALUE,VALUE or PAIR,VALUE,VALUE,LABEL is wanted, as in pt,10 bar,400 K,inlet");
        std::array<double, 2> values{};
        try {
            const std::array<std::string, 2> units = units_of_pair(fluid, cells[0]);
            for (std::size_t i = 0; i < 2; ++i)
                values[i] = studies::parse_value(cells[i + 1], units[i]);
        } catch (const std::runtime_error &reason) {
            throw failure(where + reason.what());
        }
        const auto state = fluid.try_solve(ostrel::unchecked(cells[0]), values[0], values[1]);
        if (!state)
            throw failure(where + printable(state.error().message));
        states.states.push_back(*state);
        states.names.push_back(cells.size() > 3 ? cells[3] : "");
    }
    if (states.states.empty())
        throw failure(printable(path) + " has no states");
    return states;
}

/// The fluid with each of the equations.
std::vector<chosen_fluid> fluids_of(const plot_request &asked) {
    std::vector<chosen_fluid> fluids;
    if (asked.models.empty()) {
        fluids.push_back(asked.fluid.open());
        return fluids;
    }
    std::vector<std::string> models = parts_of(asked.models, ',');
    for (std::size_t i = 0; i < models.size(); ++i)
        if (models[i].empty() || std::find(models.begin(), models.begin() + static_cast<std::ptrdiff_t>(i),
                                           models[i]) != models.begin() + static_cast<std::ptrdiff_t>(i))
            throw wrong_argument("--models: " + in_quotes(asked.models) + " has an empty or a repeated name");
    for (const std::string &model : models)
        fluids.push_back(asked.fluid.open_with(model));
    return fluids;
}

void plot_diagram(const plot_request &asked) {
    const studies::diagram_kind &kind = diagram_kind_of("KIND", asked.kind);
    picture_request wanted{.curves = {.kind = &kind,
                                      .x = axis_of("--x", asked.x, kind.x),
                                      .y = axis_of("--y", asked.y, kind.y),
                                      .units = asked.units.system()}};
    const auto [width, height] = size_of(asked);
    wanted.width = width;
    wanted.height = height;
    if (!asked.lines.empty()) {
        wanted.curves.families = asked.lines == "none" ? "" : asked.lines;
        if (wanted.curves.families->find_first_not_of(kind.possible) != std::string::npos)
            throw wrong_argument("--lines: " + in_quotes(asked.lines) + ": the lines of a " + asked.kind +
                                 " diagram are some of the letters " + std::string(kind.possible) + ", or none");
    } else if (!asked.models.empty()) {
        wanted.curves.families = kind.families.substr(0, 1);
    }
    if (!asked.output.empty())
        check_picture_name("--output", asked.output);
    const std::vector<chosen_fluid> fluids = fluids_of(asked);
    const ostrel::fluid &first = fluids.front().fluid;
    if (!asked.states.empty()) {
        wanted.states.push_back(states_of(asked.states, first));
        wanted.states.back().joined = asked.join;
        wanted.show_states = true;
    }
    const std::string file = std::filesystem::path(first.text("source")).stem().string();
    wanted.path = asked.output.empty() ? file + "-" + asked.kind + ".svg" : asked.output;
    std::vector<const ostrel::fluid *> drawn;
    drawn.reserve(fluids.size());
    for (const chosen_fluid &one : fluids)
        drawn.push_back(&one.fluid);
    write_picture(wanted, drawn);
    std::cout << printable(wanted.path) << '\n';
    for (const std::string &note : fluids.front().notes)
        std::cerr << note << '\n';
}

} // namespace

definition plot() {
    const auto asked = std::make_shared<plot_request>();
    std::vector<argument> arguments = asked->fluid.arguments({"states", "phase"});
    const argument kind = {"KIND", &asked->kind, "ts, ph, pv, hs or pt; the first letter is the vertical axis",
                           true,   "",           {"ts", "ph", "pv", "hs", "pt"}};
    arguments.insert(arguments.begin() + 1, kind);
    std::vector<argument> others = {
        {"--output", &asked->output, "The file, .svg, .pdf or .png; FLUID-KIND.svg if it is not given"},
        {"--models", &asked->models, "Several equations in one picture, such as pr,srk", false, "--model"},
        {"--lines", &asked->lines, "Letters of the isolines, such as pq, or none"},
        {"--states", &asked->states, "A file of states that are marked in the diagram"},
        {"--join", &asked->join, "Join the states by lines"},
        asked->units.option(),
        {"--x", &asked->x, "Range of the horizontal axis, LOW:HIGH, with units"},
        {"--y", &asked->y, "Range of the vertical axis, LOW:HIGH, with units"},
        {"--size", &asked->size, "WIDTHxHEIGHT, 1000x700 if it is not given"}};
    std::ranges::move(others, std::back_inserter(arguments));
    return {.name = "plot",
            .meaning = "Draw a diagram of a fluid",
            .arguments = std::move(arguments),
            .notes = R"(The file of states has a line for each: PAIR,VALUE,VALUE or PAIR,VALUE,VALUE,LABEL, as in
"pt,10 bar,400 K,inlet". Values without a unit are in SI units, here and in ranges. With several
equations the states are those of the first one. --units is that of the axes, engineering if it is not given.

Isolines: t isotherms, p isobars, v isochores, h isenthalps, s isentropes, q constant quality.

Examples:
  ostrel plot water ts
  ostrel plot R-134a ph --output r134a.pdf --y 1bar:50bar
  ostrel plot mdm ts --models pr,srk,mh --output mdm.png --size 1400x1000)",
            .run = [asked] { plot_diagram(*asked); }};
}

} // namespace command
