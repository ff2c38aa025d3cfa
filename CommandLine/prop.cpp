// SPDX-License-Identifier: MIT
// ostrel prop: properties of a fluid at one state.
#include "CommandLine/command.h"
#include "CommandLine/loading.h"
#include "CommandLine/notes.h"
#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"
#include "Ostrel_Main.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <optional>
#include <sstream>

namespace command {
namespace {

using ostrel::described;

struct request {
    std::string fluid;
    std::string pair;
    std::string texts[2];
    std::array<double, 2> inputs{}; ///< the numbers in the texts
    std::vector<std::string> outputs;
    report_form form;
};

/// The row of a table that the library takes a name for, or null.
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

/// Whether the library serves the output at this state; to a name that it does not know it may say so itself.
bool served(const request &asked, std::string_view output) {
    const auto *const row = find_output(output);
    return !ostrel::mixture(asked.pair, asked.inputs[1]) || (row != nullptr && row->any_quality);
}

/// What helps after a request that failed: the names that there are, or where to look.
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
    if (text.find("ERROR: in ") != std::string::npos)
        return {"The solver of this pair did not converge from its own first values: there may be no such state."};
    return {};
}

double ask(const request &asked, const std::string &output) {
    std::array<char, 256> errmsg{};
    const double value = ostrel::ostrel_prop(asked.fluid, asked.pair, asked.inputs[0], asked.inputs[1], output, errmsg);
    const std::string text = error_text({errmsg.data(), errmsg.size()});
    if (text != records::no_errors)
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
        throw CLI::ValidationError(name, '"' + std::string(text) + "\" is not a number that this program can hold");
    return value;
}

void serve(request asked) {
    asked.inputs = {number_of("VALUE1", asked.texts[0]), number_of("VALUE2", asked.texts[1])};
    if (records::trimmed(asked.fluid).empty())
        throw CLI::ValidationError("FLUID", "a name is wanted");
    load_fluid(asked.fluid);

    report found = {
        .name = "properties",
        .columns = {{"name"}, {"value"}, {"unit"}, {"meaning"}},
        .asked = {
            {"fluid", asked.fluid}, {"pair", asked.pair}, {"value1", asked.inputs[0]}, {"value2", asked.inputs[1]}}};
    std::vector<std::string> wanted = asked.outputs;
    std::vector<std::string> left_out;
    if (wanted.empty())
        for (const std::string &name : output_names())
            (served(asked, name) ? wanted : left_out).push_back(name);
    // Asked behind another output of the same state, the library would serve these as well.
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
    }
    if (!left_out.empty()) {
        found.notes.push_back("At a quality other than 1 these are not served: " + joined(left_out, " ", " "));
        found.notes.emplace_back(asked.inputs[1] == 0
                                     ? "For the saturated liquid ask the pair tv with the t and v above."
                                     : "p is the equation's own at this volume, not the saturation pressure.");
    }
    write(found, asked.form);
}

/// The pairs and outputs, from the library's tables.
std::string tables() {
    std::ostringstream text;
    report pairs = {.columns = {{"pair"}, {"first"}, {"second"}}};
    const auto value = [](const described &what) {
        return std::string(what.meaning) + (what.unit == "-" ? "" : " " + std::string(what.unit));
    };
    for (const auto &row : ostrel::described_input_pairs())
        pairs.rows.push_back({std::string(row.name), value(row.first), value(row.second)});
    text << "Pairs, and what the values are:\n";
    write_columns(text, pairs, "  ");
    report outputs = {.columns = {{"name"}, {"unit"}, {"meaning"}}};
    for (const auto &row : ostrel::described_outputs())
        outputs.rows.push_back({std::string(row.text.name), std::string(row.text.unit), std::string(row.text.meaning)});
    text << "\nOutputs:\n";
    write_columns(text, outputs, "  ");
    return text.str();
}

} // namespace

void add_prop(CLI::App &program) {
    CLI::App *const command = program.add_subcommand("prop", "Compute properties of a fluid at one state");
    const auto asked = std::make_shared<request>();
    const auto argument = [&](const char *name, auto &variable, const char *meaning) {
        return command->add_option(name, variable, meaning)->type_name("");
    };
    argument("FLUID", asked->fluid, "Name of a fluid, as \"ostrel fluids\" lists it")->required();
    argument("PAIR", asked->pair, "Input pair, for example pt")->required();
    argument("VALUE1", asked->texts[0], "First value of the pair, in SI units")->required();
    argument("VALUE2", asked->texts[1], "Second value of the pair")->required();
    argument("OUTPUT", asked->outputs, "Wanted properties; all if none is named");
    asked->form.add_options(*command);
    command->footer(tables() + R"(
With a quality other than 1 only t, p, v and d are served. By Chung's models lambda comes out 17.506 times
smaller than the unit says, eta of the dilute gas 10 times larger; a note below the numbers says when.

Examples:
  ostrel prop toluene pt 1e5 500
  ostrel prop toluene ps 1e5 -200 t d
  ostrel prop toluene tq 500 1 --json)");
    command->callback([asked] { serve(*asked); });
}

} // namespace command
