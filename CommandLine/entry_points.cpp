// SPDX-License-Identifier: MIT
#include "CommandLine/entry_points.h"

#include "CommandLine/loading.h"
#include "CommandLine/naming.h"
#include "CommandLine/notes.h"
#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"
#include "Ostrel_Main.h"
#include "Thermodynamics/gas_properties.h"
#include "Thermodynamics/transport_properties.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <optional>

namespace command {
namespace {

using ostrel::described;

struct request {
    std::string fluid;
    std::string pair;
    std::string texts[2];
    std::array<double, 2> inputs{}; ///< the numbers in `texts`
    std::vector<std::string> outputs;
    report_form form;
};

/// The row of a table that the library takes for this name, or null.
template <class Row, class Name>
const Row *find(std::span<const Row> rows, std::string_view written, Name name) {
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row &candidate) {
        return ostrel::tolower_os(written) == records::fixed_text<8>(name(candidate));
    });
    return row != rows.end() ? &*row : nullptr;
}
const ostrel::described_pair *find_pair(std::string_view written) {
    return find(ostrel::described_input_pairs(), written, [](const auto &row) { return row.name; });
}
const ostrel::described_output *find_output(std::string_view written) {
    return find(ostrel::described_outputs(), written, [](const auto &row) { return row.text.name; });
}

std::vector<std::string> pair_names() {
    std::vector<std::string> names;
    for (const auto &row : ostrel::described_input_pairs())
        names.emplace_back(row.name);
    return names;
}
std::vector<std::string> output_names() {
    std::vector<std::string> names;
    for (const auto &row : ostrel::described_outputs())
        names.emplace_back(row.text.name);
    return names;
}

bool has_quality(const request &asked) {
    const auto *const pair = find_pair(asked.pair);
    return pair != nullptr && pair->second.name == "q";
}

/// Whether the library can serve the output at this state. Unknown names are refused here only at a quality other than
/// 1; otherwise the library refuses them.
bool served(const request &asked, std::string_view output) {
    const auto *const row = find_output(output);
    return !ostrel::mixture(asked.pair, asked.inputs[1]) || (row != nullptr && row->any_quality);
}

/// Advice after a request that failed: the possible names, or another way to the result.
std::vector<std::string> advice(const request &asked, const std::string &output, const std::string &text) {
    const auto list = [](std::string_view written, std::string_view what, const std::vector<std::string> &names) {
        std::vector<std::string> lines;
        if (std::string meant = did_you_mean(written, names); !meant.empty())
            lines.push_back(std::move(meant));
        lines.push_back(std::string(what) + joined(names, " ", " "));
        return lines;
    };
    if (find_pair(asked.pair) == nullptr)
        return list(asked.pair, "Input pairs: ", pair_names());
    if (find_output(output) == nullptr)
        return list(output, "Outputs: ", output_names());
    if (!served(asked, output))
        return {"Ask t and v, and then the pair tv: for q = 0 that is the saturated liquid."};
    if (has_quality(asked) && !has_saturated_states())
        return {"An ideal gas has no saturated states."};
    if (text.find("ERROR: in v__P_T") != std::string::npos)
        return {"The search from its own first values did not converge: there may be no such state."};
    if (text.find("ERROR: in ") != std::string::npos)
        return {"The search from its own first values did not converge; the state may exist all the same: pt finds it "
                "from p and t."};
    return {};
}

double ask(const request &asked, const std::string &output) {
    const auto [value, text] = request_property(asked.fluid, asked.pair, asked.inputs[0], asked.inputs[1], output);
    if (!text.empty())
        throw failure(text, advice(asked, output, text));
    return value;
}

double number_of(const std::string &name, std::string_view text) {
    std::string_view digits = text;
    if (digits.starts_with('+'))
        digits.remove_prefix(1);
    double value = 0;
    const auto [end, status] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (status != std::errc{} || end != digits.data() + digits.size())
        throw wrong_argument(
            name + ": \"" + std::string(text) +
            "\" is not a number that this program can hold; --entry-points takes SI numbers without units");
    return value;
}

/// Notes on results of a pair with a quality about which the library gives no message.
void add_quality_notes(std::vector<std::string> &notes, const request &asked, double t) {
    if (asked.inputs[1] < 0 || asked.inputs[1] > 1)
        notes.emplace_back("q is outside 0 to 1: the values are extrapolated beyond the saturated states.");
    // Next to the critical point it is right that the phases are equal.
    if (!has_saturated_states() || !(t < 0.999 * gas_properties::gas.Tc))
        return;
    const answer liquid = request_property(asked.fluid, asked.pair, asked.inputs[0], 0, "v");
    const answer vapor = request_property(asked.fluid, asked.pair, asked.inputs[0], 1, "v");
    if (liquid.text.empty() && vapor.text.empty() && equal_phases(liquid.value, vapor.value))
        notes.emplace_back("The model's saturated phases are equal here: its saturation table has collapsed.");
}

/// A note if another state seems to have the same two values.
void add_other_state(std::vector<std::string> &notes, const request &asked, double t, double v, double p) {
    constexpr std::string_view searched[] = {"ph", "ps", "hs"};
    const auto *const pair = find_pair(asked.pair);
    if (pair == nullptr || std::find(std::begin(searched), std::end(searched), pair->name) == std::end(searched))
        return;
    const answer other = request_property(asked.fluid, "pt", p, t, "v");
    if (other.text.empty() && std::abs(other.value - v) > 0.01 * std::abs(v))
        notes.push_back("Another state may have the same two values: pt at this p and t finds v = " +
                        number(other.value) + " m3/kg, not " + number(v) + ".");
}

/// Adds notes on the state. Afterwards the library keeps another state.
void add_state_notes(report &found, const request &asked, const fluid_index::fluid &facts) {
    const double t = ask(asked, "t");
    const double v = ask(asked, "v");
    const double p = ask(asked, "p");
    std::vector<std::string> not_finite;
    for (const auto &row : found.rows) {
        const auto &name = std::get<std::string>(row[0]);
        if (name == "p" && ostrel::mixture(asked.pair, asked.inputs[1]))
            found.notes.emplace_back("p is the equation's own at this volume, not the saturation pressure.");
        if (!std::isfinite(std::get<double>(row[1])))
            not_finite.push_back(name);
    }
    if (t <= 0 || v <= 0)
        found.notes.push_back("There is no such state: t = " + number(t) + " K, v = " + number(v) + " m3/kg.");
    else if (p < 0)
        found.notes.push_back("The equation's p is negative here, " + number(p) + " Pa: this is no stable state.");
    if (t > 0)
        add_temperature_notes(found.notes, facts, t);
    if (!not_finite.empty())
        found.notes.push_back("Not finite: " + joined(not_finite, " ", " "));
    if (has_quality(asked))
        add_quality_notes(found.notes, asked, t);
    add_other_state(found.notes, asked, t, v, p);
}

void serve(request asked) {
    asked.inputs = {number_of("VALUE1", asked.texts[0]), number_of("VALUE2", asked.texts[1])};
    if (records::trimmed(asked.fluid).empty())
        throw wrong_argument("FLUID: a name is wanted");
    const named_fluid fluid = fluid_named(asked.fluid);
    asked.fluid = fluid.facts.file;
    load_fluid(asked.fluid);

    report found = {
        .name = "properties",
        .columns = {{"name"}, {"value"}, {"unit"}, {"meaning"}},
        .asked = {
            {"fluid", asked.fluid}, {"pair", asked.pair}, {"value1", asked.inputs[0]}, {"value2", asked.inputs[1]}}};
    found.notes = fluid.notes;
    std::vector<std::string> wanted = asked.outputs;
    std::vector<std::string> left_out;
    if (wanted.empty())
        for (const std::string &name : output_names())
            (served(asked, name) ? wanted : left_out).push_back(name);
    // The library refuses these outputs only if they are the first request for a state.
    for (const std::string &name : wanted)
        if (!served(asked, name))
            ask(asked, name);

    for (const std::string &name : wanted) {
        const double value = ask(asked, name);
        const described text = find_output(name)->text;
        found.rows.push_back({std::string(text.name), value, std::string(text.unit), std::string(text.meaning)});
        for (const auto &[output, note] :
             {std::pair("eta", viscosity_note()), std::pair("lambda", conductivity_note())})
            if (text.name == output && !note.empty())
                found.notes.push_back(note);
        if (text.name == "lambda" &&
            transport_properties::active.thermal_cond_model == transport::constant_conductivity)
            found.notes.emplace_back("lambda is a constant in W/(m K): it is the same at every state.");
    }
    if (!left_out.empty()) {
        found.notes.push_back("At a quality other than 1 these are not served: " + joined(left_out, " ", " "));
        if (asked.inputs[1] == 0)
            found.notes.emplace_back("For the saturated liquid ask the pair tv with the t and v above.");
    }
    add_state_notes(found, asked, fluid.facts);
    write(found, asked.form);
}

} // namespace

void serve_from_entry_points(const entry_point_request &asked, const report_form &form) {
    serve({.fluid = asked.fluid,
           .pair = asked.pair,
           .texts = {asked.values[0], asked.values[1]},
           .inputs = {},
           .outputs = asked.outputs,
           .form = form});
}

} // namespace command
