// SPDX-License-Identifier: MIT
// What the page calls in the WebAssembly module besides the functions of ostrel_fluid.h.
//
// Structured answers are JSON texts. Arrays of numbers stand in one array beside the text, which has their places in
// it, so that points of curves are neither written nor read as text. Both hold until the next call. A refusal is an
// object with "error", "advice", "line" and "status".
#include "CommandLine/cycle_file.h"
#include "CommandLine/examination.h"
#include "Studies/curves.h"
#include "Studies/nozzle.h"
#include "Studies/remarks.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <emscripten.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using nlohmann::json;

namespace {

/// An open fluid, with the remarks that were asked last.
struct open_fluid {
    ostrel::fluid fluid;
    std::string asked{};
    std::optional<studies::remarks> remarks{};
};

std::string answer;
std::vector<double> numbers;

/// Puts numbers into the array; returns their place in it and their count.
template <class Range, class Value>
json placed(const Range &range, Value value) {
    const std::size_t begin = numbers.size();
    for (const auto &one : range)
        numbers.push_back(value(one));
    return {begin, numbers.size() - begin};
}

json placed(const studies::polyline &line) {
    const std::size_t begin = numbers.size();
    for (const studies::diagram_point &point : line) {
        numbers.push_back(point.x);
        numbers.push_back(point.y);
    }
    return {begin, numbers.size() - begin};
}

/// The columns of points. `at` gives the point of an element.
template <class Range, class At>
json columns_of(const Range &range, At at) {
    const auto column = [&](studies::point_property member) {
        return placed(range, [&](const auto &one) { return at(one).*member; });
    };
    return {{"t", column(&studies::point::t)},
            {"p", column(&studies::point::p)},
            {"h", column(&studies::point::h)},
            {"s", column(&studies::point::s)},
            {"d", column(&studies::point::d)},
            {"q", column(&studies::point::q)},
            {"v", placed(range, [&](const auto &one) { return at(one).state.v; })}};
}

json refusal(const std::string &text, int status = 0, const std::vector<std::string> &advice = {},
             std::size_t line = 0) {
    json lines = json::array();
    for (const std::string &one : advice)
        if (!one.empty())
            lines.push_back(one);
    return {{"error", text}, {"status", status}, {"advice", std::move(lines)}, {"line", line}};
}

/// The answer that make() gives, or why there is none.
template <class Make>
const char *answered(Make make) {
    json result;
    numbers.clear();
    try {
        result = make();
    } catch (const command::failure &reason) {
        result = refusal(reason.what(), 0, reason.advice(), reason.line());
    } catch (const ostrel::failure &reason) {
        result = refusal(reason.what(), reason.status());
    } catch (const std::exception &reason) {
        result = refusal(reason.what());
    }
    // Texts of files need not be UTF-8.
    answer = result.dump(-1, ' ', false, json::error_handler_t::replace);
    return answer.c_str();
}

/// The address of a fluid as JSON.
template <class Open>
const char *opened(Open open) {
    return answered([&] {
        auto *const made = new open_fluid{open()};
        return json{{"fluid", reinterpret_cast<std::uintptr_t>(made)},
                    {"handle", reinterpret_cast<std::uintptr_t>(made->fluid.handle())}};
    });
}

std::string letter_of(studies::property what) {
    return std::string(studies::text_of(what).letter);
}

studies::unit_system system_of(bool si) {
    return si ? studies::unit_system::si : studies::unit_system::engineering;
}

json range_of(const studies::axis_range &range) {
    return {range.low, range.high};
}

/// A number that may be infinite or NaN, for which JSON has no word.
json any_number(double value) {
    return std::isfinite(value) ? json(value) : json(nullptr);
}

json definition_of(const command::cycle_file &file) {
    json given = json::array();
    for (const command::given_value &one : file.given)
        given.push_back({{"key", std::string(one.key->section) + '.' + std::string(one.key->name)},
                         {"value", (file.wanted.*(one.key->member)).value()},
                         {"place", {one.begin.line, one.begin.column, one.end.line, one.end.column}}});
    json options = json::object();
    for (const auto &[key, value] : file.fluid.options)
        options[key] = value;
    std::string kind;
    for (const auto &row : studies::cycle_kinds())
        if (row.kind == file.wanted.kind)
            kind = row.name;
    return {{"kind", kind}, {"fluid", file.fluid.words}, {"options", options}, {"given", given}};
}

/// The names of a text with a line for each.
std::vector<std::string> lines_of(const std::string &text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

/// A file with a text, while the object lives.
class file_of_text {
public:
    file_of_text(std::string path, const std::string &text) : path_(std::move(path)) {
        std::ofstream(path_, std::ios::binary) << text;
    }
    file_of_text(const file_of_text &) = delete;
    file_of_text &operator=(const file_of_text &) = delete;
    ~file_of_text() { std::remove(path_.c_str()); }

private:
    std::string path_;
};

} // namespace

extern "C" {

/// The array beside the last answer.
EMSCRIPTEN_KEEPALIVE const double *browser_numbers() {
    return numbers.data();
}

EMSCRIPTEN_KEEPALIVE const char *browser_open(const char *name, const char *options) {
    return opened([&] { return ostrel::fluid::open(name, ostrel::unchecked(options)); });
}

EMSCRIPTEN_KEEPALIVE const char *browser_open_text(const char *text, const char *options) {
    return opened([&] { return ostrel::fluid::open_text(text, ostrel::unchecked(options)); });
}

EMSCRIPTEN_KEEPALIVE void browser_close(open_fluid *fluid) {
    delete fluid;
}

/// The files and names of the fluids that are found: a list of pairs.
EMSCRIPTEN_KEEPALIVE const char *browser_find(const char *words) {
    return answered([&] {
        json found = json::array();
        const auto take = [](void *user, const char *file, const char *name) {
            static_cast<json *>(user)->push_back({file, name});
        };
        if (const int status = ostrel_fluid_find(words, take, &found); status != OSTREL_OK)
            return refusal(ostrel_last_message(), status);
        return found;
    });
}

/// A list of the library.
EMSCRIPTEN_KEEPALIVE const char *browser_list(const char *kind) {
    return answered([&] {
        json rows = json::array();
        for (std::size_t i = 0; ostrel_list(kind, i, "name") != nullptr; ++i)
            rows.push_back({{"name", ostrel_list(kind, i, "name")},
                            {"unit", ostrel_list(kind, i, "unit")},
                            {"description", ostrel_list(kind, i, "description")}});
        return rows;
    });
}

/// Everything that never changes: version, units, diagrams and cycles.
EMSCRIPTEN_KEEPALIVE const char *browser_tables() {
    return answered([] {
        json tables = {{"version", OSTREL_PACKAGE_VERSION}};
        for (const studies::unit &one : studies::units())
            tables["units"].push_back(
                {{"name", one.name}, {"si", one.si}, {"factor", one.factor}, {"offset", one.offset}});
        for (std::size_t i = 0; i < studies::property_count; ++i) {
            const studies::property_text &text = studies::text_of(static_cast<studies::property>(i));
            tables["properties"].push_back({{"letter", text.letter},
                                            {"name", text.name},
                                            {"symbol", text.symbol},
                                            {"si", text.si},
                                            {"lines", text.lines},
                                            {"logarithmic", text.logarithmic}});
        }
        for (const studies::diagram_kind &one : studies::diagram_kinds())
            tables["diagramKinds"].push_back({{"name", one.name},
                                              {"x", letter_of(one.x)},
                                              {"y", letter_of(one.y)},
                                              {"families", one.families},
                                              {"possible", one.possible}});
        for (const studies::cycle_key &one : studies::cycle_keys()) {
            json row = {{"name", std::string(one.section) + '.' + std::string(one.name)},
                        {"si", one.si},
                        {"difference", one.difference},
                        {"range", one.range == studies::value_range::positive       ? "positive"
                                  : one.range == studies::value_range::not_negative ? "not negative"
                                                                                    : "part"},
                        {"ofRankine", one.of_rankine},
                        {"ofCompression", one.of_compression},
                        {"meaning", one.meaning}};
            if (one.standard)
                row["standard"] = *one.standard;
            tables["cycleKeys"].push_back(std::move(row));
        }
        for (const studies::cycle_figure &one : studies::cycle_figure_list())
            tables["cycleFigures"].push_back(
                {{"name", one.name}, {"si", one.si}, {"difference", one.difference}, {"meaning", one.meaning}});
        for (std::size_t i = 0; const char *const model = ostrel_list("models", i, "name"); ++i)
            tables["advice"][model] = studies::advice_on_model(model);
        for (int phase = 0; studies::phase_name(phase) != studies::phase_name(-1); ++phase)
            tables["phases"].push_back(studies::phase_name(phase));
        return tables;
    });
}

/// The name of the unit in which a system shows an SI unit, and the quantity.
EMSCRIPTEN_KEEPALIVE const char *browser_unit(const char *si) {
    return answered([&] {
        json names = {{"quantity", studies::quantity_of(si)}};
        for (const auto &[name, system] :
             {std::pair{"si", studies::unit_system::si}, std::pair{"engineering", studies::unit_system::engineering}}) {
            const studies::unit shown = studies::shown_unit(si, system);
            names[name] = {{"name", shown.name}, {"si", shown.si}, {"factor", shown.factor}, {"offset", shown.offset}};
        }
        return names;
    });
}

/// The values of a text as SI values; a range if it may be one.
EMSCRIPTEN_KEEPALIVE const char *browser_parse(const char *text, const char *si, bool difference, bool range) {
    return answered([&]() -> json {
        if (!range)
            return {{"value",
                     any_number(difference ? studies::parse_difference(text, si) : studies::parse_value(text, si))}};
        const studies::range values = studies::parse_range(text, si, difference);
        constexpr std::size_t most = 1'000'000;
        if (values.count > most)
            return refusal("more than 1000000 values are too many for a page");
        numbers.resize(values.count);
        for (std::size_t i = 0; i < values.count; ++i)
            numbers[i] = values.at(i);
        return {{"values", {0, values.count}}};
    });
}

EMSCRIPTEN_KEEPALIVE const char *browser_remarks(open_fluid *of, const char *outputs, const char *inputs, double t,
                                                 double p, int phase) {
    return answered([&] {
        std::string asked = inputs;
        asked.append("\n").append(outputs);
        if (asked != of->asked) {
            of->remarks.emplace(of->fluid, lines_of(outputs), inputs);
            of->asked = std::move(asked);
        }
        json found = json::array();
        for (const studies::remark *const one : of->remarks->at(t, p, phase))
            found.push_back({{"text", one->text}, {"outputs", one->outputs}});
        return found;
    });
}

/// What is said about a parameter text. `name` stands for its file.
EMSCRIPTEN_KEEPALIVE const char *browser_check(const char *text, std::size_t size, const char *name) {
    return answered([&] {
        const file_of_text file(name, std::string(text, size));
        const command::examination found = command::examine(name);
        return json{{"lines", lines_of(found.description)},
                    {"warnings", found.warnings},
                    {"error", found.unusable},
                    {"advice", found.advice}};
    });
}

/// The curves of a diagram. Ends of axes that are NaN are chosen. `families` may be null. `lines` has `count` pairs of
/// the place of a property and a value of its isolines.
EMSCRIPTEN_KEEPALIVE const char *browser_curves(const open_fluid *of, const char *kind, const double *ranges,
                                                const char *families, bool si, const double *lines, std::size_t count) {
    return answered([&]() -> json {
        const studies::diagram_kind *const found = studies::diagram_kind_named(kind);
        if (found == nullptr)
            return refusal("there is no diagram \"" + std::string(kind) + '"');
        studies::diagram_request asked{.kind = found, .units = system_of(si)};
        if (!std::isnan(ranges[0]))
            asked.x = {ranges[0], ranges[1]};
        if (!std::isnan(ranges[2]))
            asked.y = {ranges[2], ranges[3]};
        if (families != nullptr) {
            asked.families = families;
            if (asked.families->find_first_not_of(found->possible) != std::string::npos)
                return refusal("the lines of a " + std::string(kind) + " diagram are some of the letters " +
                               std::string(found->possible));
        }
        for (std::size_t i = 0; i < count; ++i)
            asked.values[static_cast<std::size_t>(lines[2 * i])].push_back(lines[2 * i + 1]);
        const studies::diagram made = studies::make_diagram(of->fluid, asked);
        json drawn = {{"x", range_of(made.x)},      {"y", range_of(made.y)},          {"dome", placed(made.dome)},
                      {"domePeak", made.dome_peak}, {"tLow", any_number(made.t_low)}, {"remarks", json::array()},
                      {"lines", json::array()}};
        if (made.critical)
            drawn["critical"] = {made.critical->x, made.critical->y};
        if (std::string begin = studies::beginning_of(made, asked.units); !begin.empty())
            drawn["remarks"].push_back(studies::capitalised(std::move(begin)) + '.');
        if (std::string caloric = studies::extrapolation_of(of->fluid, made, asked.units); !caloric.empty())
            drawn["remarks"].push_back(std::move(caloric));
        for (const studies::isoline &one : made.lines) {
            json pieces = json::array();
            for (const studies::polyline &piece : one.pieces)
                pieces.push_back(placed(piece));
            drawn["lines"].push_back({{"what", letter_of(one.what)}, {"value", one.value}, {"pieces", pieces}});
        }
        return drawn;
    });
}

EMSCRIPTEN_KEEPALIVE const char *browser_read_cycle(const char *text) {
    return answered([&] { return definition_of(command::read_cycle_text(text, "")); });
}

/// Solves a cycle. `names` has a line for each of the values that replace those of the text. `of` may be null.
EMSCRIPTEN_KEEPALIVE const char *browser_cycle(const char *text, const char *names, const double *values,
                                               const open_fluid *of) {
    return answered([&]() -> json {
        command::cycle_file file = command::read_cycle_text(text, "");
        std::size_t i = 0;
        for (const std::string &name : lines_of(names)) {
            const studies::cycle_key *const key = studies::cycle_key_named(name);
            if (key == nullptr)
                return refusal("there is no key " + name);
            file.wanted.*(key->member) = values[i++];
        }
        std::optional<command::chosen_fluid> own;
        if (of == nullptr)
            own = file.fluid.open();
        const studies::cycle_result solved = studies::solve(own ? own->fluid : of->fluid, file.wanted);
        json result = definition_of(file);
        for (const studies::cycle_state &one : solved.states)
            result["places"].push_back(one.place);
        result["states"] = columns_of(solved.states, [](const studies::cycle_state &one) { return one.at; });
        for (const studies::cycle_process &one : solved.processes)
            result["processes"].push_back(
                {{"name", one.name},
                 {"from", one.from},
                 {"to", one.to},
                 {"points", columns_of(one.points, [](const studies::point &at) { return at; })}});
        result["figures"] = placed(studies::cycle_figure_list(),
                                   [&](const studies::cycle_figure &one) { return solved.figures.*(one.member); });
        return result;
    });
}

EMSCRIPTEN_KEEPALIVE const char *browser_nozzle(const open_fluid *of, const char *inputs, double first, double second,
                                                double p_outlet, std::size_t intervals) {
    return answered([&] {
        const studies::point total =
            studies::point_at(of->fluid, ostrel::unchecked(inputs), first, second, "total state");
        const studies::nozzle_result found = studies::expand(of->fluid, total, p_outlet, intervals);
        json result = {{"choking", found.how == studies::choking::none    ? "none"
                                   : found.how == studies::choking::sonic ? "sonic"
                                                                          : "saturation line"},
                       {"notes", found.notes}};
        for (const studies::nozzle_step &one : found.steps)
            result["places"].push_back(one.place);
        result["states"] = columns_of(found.steps, [](const studies::nozzle_step &one) { return one.at; });
        const auto flow = [&](double studies::nozzle_step::*member) {
            return placed(found.steps, [&](const studies::nozzle_step &one) { return one.*member; });
        };
        result["flow"] = {{"velocity", flow(&studies::nozzle_step::velocity)},
                          {"sound", flow(&studies::nozzle_step::sound)},
                          {"mach", flow(&studies::nozzle_step::mach)},
                          {"mass_flux", flow(&studies::nozzle_step::mass_flux)},
                          {"area_ratio", flow(&studies::nozzle_step::area_ratio)},
                          {"fundamental", flow(&studies::nozzle_step::fundamental)}};
        return result;
    });
}

} // extern "C"
