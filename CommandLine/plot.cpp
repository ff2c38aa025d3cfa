// SPDX-License-Identifier: MIT
// ostrel plot: draws the diagrams of a fluid.
#include "CommandLine/command.h"
#include "CommandLine/fluid_choice.h"
#include "CommandLine/outputs.h"
#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"
#include "Studies/curves.h"

#ifdef OSTREL_WITH_CAIRO
#include "CommandLine/drawing.h"
#endif

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
#include <sstream>
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

#ifdef OSTREL_WITH_CAIRO

std::vector<std::string> parts_of(const std::string &text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        const std::size_t first = part.find_first_not_of(" \t\r");
        parts.push_back(first == std::string::npos ? ""
                                                   : part.substr(first, part.find_last_not_of(" \t\r") - first + 1));
    }
    return parts;
}

std::string in_quotes(const std::string &text) {
    return '"' + printable(text) + '"';
}

/// "ts, ph, pv, hs and pt"
std::string kind_names(std::string_view last) {
    std::vector<std::string> names;
    for (const studies::diagram_kind &one : studies::diagram_kinds())
        names.emplace_back(one.name);
    return joined(names, ", ", last);
}

const studies::diagram_kind &kind_of(const plot_request &asked) {
    if (const auto *const kind = studies::diagram_kind_named(asked.kind))
        return *kind;
    std::vector<std::string> names;
    for (const studies::diagram_kind &one : studies::diagram_kinds())
        names.emplace_back(one.name);
    const std::string meant = did_you_mean(asked.kind, names);
    throw wrong_argument("KIND: " + in_quotes(asked.kind) + " is no diagram. " + (meant.empty() ? "" : meant + ' ') +
                         "There are " + kind_names(" and "));
}

std::optional<studies::axis_range> axis_of(const char *option, const std::string &text, studies::property what) {
    if (text.empty())
        return std::nullopt;
    const studies::property_text &axis = studies::text_of(what);
    const std::vector<std::string> ends = parts_of(text, ':');
    const std::string name = std::string(option) + ": ";
    if (ends.size() != 2)
        throw wrong_argument(name + in_quotes(text) + " is no range; LOW:HIGH is wanted");
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
                             " is no size; WIDTHxHEIGHT is wanted, each from 200 to 5000");
    return size;
}

drawing::format format_of(const std::string &path) {
    constexpr std::pair<std::string_view, drawing::format> formats[] = {
        {".svg", drawing::format::svg}, {".pdf", drawing::format::pdf}, {".png", drawing::format::png}};
    for (const auto &[ending, format] : formats)
        if (path.size() > ending.size() && path.ends_with(ending))
            return format;
    throw wrong_argument("--output: " + in_quotes(path) + " does not end with .svg, .pdf or .png");
}

std::string model_of(const ostrel::fluid &fluid) {
    for (const ostrel::row &one : ostrel::list(ostrel::kind::models))
        if (one.name == fluid.text("model"))
            return std::string(one.description);
    return std::string(fluid.text("model"));
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

/// A temperature in the units of the picture.
std::string temperature(double t, studies::unit_system units) {
    const studies::unit shown = studies::shown_unit("K", units);
    std::array<char, 32> digits{};
    constexpr int precision = 5;
    const char *const end = std::to_chars(digits.data(), digits.data() + digits.size(), studies::in_unit(t, shown),
                                          std::chars_format::general, precision)
                                .ptr;
    std::string text(digits.data(), static_cast<std::size_t>(end - digits.data()));
    if (text.starts_with('-'))
        text.replace(0, 1, "−");
    return text + (shown.name == "degC" ? " °C" : " " + std::string(shown.name));
}

/// The limit at which the curves begin, in a few words.
std::string beginning_of(const studies::diagram &curves, studies::unit_system units) {
    const std::string from = "drawn from " + temperature(curves.t_low, units) + ", ";
    std::string text;
    switch (curves.t_low_reason) {
    case studies::lowest_temperature::chosen:
        break;
    case studies::lowest_temperature::triple_point:
        text = from + "the triple point of the real fluid";
        break;
    case studies::lowest_temperature::heat_capacity:
        text = from + "where the heat capacity begins";
        break;
    case studies::lowest_temperature::line_end:
        text = from + "where the saturation line of the equation ends";
        break;
    case studies::lowest_temperature::liquid:
        text = from + "below which the liquid of the equation has no meaning";
        break;
    }
    if (curves.dome.empty())
        text += (text.empty() ? "" : "; ") + std::string("no saturation line");
    return text;
}

/// What limits the diagram.
std::string limits_of(const ostrel::fluid &fluid, const std::vector<drawing::layer> &layers,
                      studies::unit_system units) {
    std::string text;
    for (const drawing::layer &layer : layers)
        if (const std::string begin = beginning_of(layer.curves, units); !begin.empty())
            text += (text.empty() ? "" : " ") + (layers.size() > 1 ? layer.name + ": " : "") + begin + ".";
    // A sentence begins with a capital letter.
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    const studies::diagram &first = layers.front().curves;
    const double lowest = fluid.constant("t_cp_min");
    const auto is_caloric = [](studies::property what) {
        return what == studies::property::h || what == studies::property::s;
    };
    if (first.t_low < lowest && (is_caloric(first.kind->x) || is_caloric(first.kind->y)))
        text += std::string(text.empty() ? "" : " ") + "h and s are extrapolated below " + temperature(lowest, units) +
                ", where the fit of the heat capacity begins.";
    return text;
}

void write_file(const std::string &path, const std::string &bytes) {
    errno = 0;
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream)
        throw failure(printable(path) + " cannot be written: " + std::generic_category().message(errno));
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

/// The curves of each fluid, with the same axes and the same isolines.
std::vector<studies::diagram> curves_of(const std::vector<chosen_fluid> &fluids, studies::diagram_request wanted) {
    if (fluids.size() > 1) {
        std::array<studies::axis_range, 2> ranges = studies::diagram_ranges(fluids.front().fluid, wanted);
        for (const auto &[fluid, notes] : fluids) {
            const auto other = studies::diagram_ranges(fluid, wanted);
            for (std::size_t i = 0; i < 2; ++i)
                ranges[i] = {std::min(ranges[i].low, other[i].low), std::max(ranges[i].high, other[i].high)};
        }
        wanted.x = ranges[0];
        wanted.y = ranges[1];
    }
    std::vector<studies::diagram> curves;
    for (const auto &[fluid, notes] : fluids) {
        curves.push_back(studies::make_diagram(fluid, wanted));
        if (curves.size() == 1)
            for (const studies::isoline &line : curves.front().lines)
                wanted.values[static_cast<std::size_t>(line.what)].push_back(line.value);
    }
    return curves;
}

void plot_diagram(const plot_request &asked) {
    const studies::diagram_kind &kind = kind_of(asked);
    studies::diagram_request wanted{.kind = &kind,
                                    .x = axis_of("--x", asked.x, kind.x),
                                    .y = axis_of("--y", asked.y, kind.y),
                                    .units = asked.units.system()};
    const auto [width, height] = size_of(asked);
    if (!asked.lines.empty()) {
        wanted.families = asked.lines == "none" ? "" : asked.lines;
        if (wanted.families->find_first_not_of(kind.possible) != std::string::npos)
            throw wrong_argument("--lines: " + in_quotes(asked.lines) + ": the lines of a " + asked.kind +
                                 " diagram are some of the letters " + std::string(kind.possible) + ", or none");
    } else if (!asked.models.empty()) {
        wanted.families = kind.families.substr(0, 1);
    }
    if (!asked.output.empty())
        format_of(asked.output);
    const std::vector<chosen_fluid> fluids = fluids_of(asked);
    const ostrel::fluid &first = fluids.front().fluid;
    const std::string file = std::filesystem::path(first.text("source")).stem().string();
    const std::string path = asked.output.empty() ? file + "-" + asked.kind + ".svg" : asked.output;
    const drawing::format format = format_of(path);
    drawing::content content{.units = wanted.units, .width = width, .height = height};
    content.title = std::string(first.text("name")) + ", " + std::string(studies::text_of(kind.y).symbol) + "-" +
                    std::string(studies::text_of(kind.x).symbol) + " diagram";
    if (fluids.size() == 1)
        content.title += ", " + model_of(first);
    if (!asked.states.empty()) {
        studies::overlay states = states_of(asked.states, first);
        states.joined = asked.join;
        content.states.push_back(drawing::projected(first, kind, states));
    }
    try {
        std::vector<studies::diagram> curves = curves_of(fluids, wanted);
        for (std::size_t i = 0; i < fluids.size(); ++i)
            content.layers.push_back({model_of(fluids[i].fluid), std::move(curves[i])});
        content.notes = limits_of(first, content.layers, wanted.units);
        write_file(path, drawing::draw(content, format).bytes);
    } catch (const studies::no_diagram &reason) {
        throw failure(reason.what());
    } catch (const drawing::drawing_failed &reason) {
        throw failure(reason.what());
    }
    std::cout << printable(path) << '\n';
    for (const std::string &note : fluids.front().notes)
        std::cerr << note << '\n';
}

#else

void plot_diagram(const plot_request &) {
    throw failure("this build has no Cairo, and so cannot draw");
}

#endif

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
