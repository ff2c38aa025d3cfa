// SPDX-License-Identifier: MIT
#include "CommandLine/outputs.h"

#include "CommandLine/suggestions.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <sstream>

namespace command {
namespace {

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), ostrel::names::lower);
    return text;
}

std::optional<ostrel::row> row_named(ostrel::kind which, std::string_view name) {
    for (const ostrel::row each : ostrel::list(which))
        if (each.name == name)
            return each;
    return std::nullopt;
}

/// Asks for no state: the library checks the names only. Fails with its message.
void check_names(const ostrel::fluid &fluid, const std::string &pair, const std::string &outputs) {
    const auto checked =
        fluid.try_evaluate(ostrel::unchecked(pair), ostrel::unchecked(outputs), {}, {}, std::span<double>());
    if (!checked)
        throw wrong_argument(checked.error().message);
}

template <class Make>
auto argument_value(const std::string &name, Make make) {
    try {
        return make();
    } catch (const studies::wrong_value &reason) {
        throw wrong_argument(name + ": " + reason.what());
    }
}

} // namespace

argument units_option::option() {
    return {"--units",
            &word,
            "si or engineering (bar, degC, kJ/kg, kJ/(kg K), mPa s); values in arguments may have any unit",
            false,
            "",
            {"si", "engineering"}};
}

studies::unit_system units_option::system() const {
    if (word == "si")
        return studies::unit_system::si;
    if (word == "engineering")
        return studies::unit_system::engineering;
    throw wrong_argument("--units: \"" + printable(word) + "\" is not a system of units; there are si and engineering");
}

std::array<std::string, 2> units_of_pair(const ostrel::fluid &fluid, const std::string &pair) {
    check_names(fluid, pair, "t");
    const std::string name = lower_letters(pair);
    auto row = row_named(ostrel::kind::inputs, name);
    const bool swapped = !row;
    if (swapped)
        row = row_named(ostrel::kind::inputs, std::string{name[1], name[0]});
    const std::size_t comma = row->unit.find(", ");
    std::array<std::string, 2> result = {std::string(row->unit.substr(0, comma)),
                                         std::string(row->unit.substr(comma + 2))};
    if (swapped)
        std::swap(result[0], result[1]);
    return result;
}

std::string lower_letters(const std::string &pair) {
    std::string letters = lower(pair);
    std::erase_if(letters, [](char c) { return c == ' ' || c == '\t'; });
    return letters;
}

double value_of(const std::string &name, const std::string &text, std::string_view si) {
    return argument_value(name, [&] { return studies::parse_value(text, si); });
}

studies::range range_of(const std::string &name, const std::string &text, std::string_view si) {
    return argument_value(name, [&] { return studies::parse_range(text, si); });
}

std::vector<std::string> names_of(ostrel::list which) {
    std::vector<std::string> names;
    for (const ostrel::row each : which)
        names.emplace_back(each.name);
    return names;
}

std::string table_of_pairs() {
    report pairs = {.columns = {{"pair"}, {"units"}, {"meaning"}}};
    for (const ostrel::row each : ostrel::list(ostrel::kind::inputs))
        pairs.rows.push_back({std::string(each.name), std::string(each.unit), std::string(each.description)});
    std::ostringstream text;
    text << "Pairs, in either order:\n";
    write_columns(text, pairs, "  ");
    return text.str();
}

std::string table_of_outputs() {
    report outputs = {.columns = {{"name"}, {"unit"}, {"meaning"}}};
    for (const ostrel::row each : ostrel::list(ostrel::kind::outputs))
        outputs.rows.push_back({std::string(each.name), std::string(each.unit), std::string(each.description)});
    std::ostringstream text;
    text << "Outputs:\n";
    write_columns(text, outputs, "  ");
    text << "  dX/dY|Z, derivatives of t, p, v, d, h, s, u, as dp/dd|u\n";
    return text.str();
}

std::vector<std::string> output_names(const std::vector<std::string> &words) {
    std::vector<std::string> names;
    for (const std::string &word : words)
        for (const std::string &part : parts_of(word + ',', ','))
            names.push_back(lower(part));
    return words.empty() ? names_of(ostrel::list(ostrel::kind::outputs)) : names;
}

wanted_outputs::wanted_outputs(const ostrel::fluid &fluid, const std::vector<std::string> &words,
                               studies::unit_system system, std::string_view pair)
    : names_(output_names(words)), remarks_(fluid, names_, pair) {
    for (const std::string &name : names_)
        asked_ += name + ",";
    asked_ += "t,p,q,phase";
    check_names(fluid, "tv", asked_);
    for (const std::string &name : names_) {
        auto found = row_named(ostrel::kind::outputs, name);
        if (!found)
            found = row_named(ostrel::kind::derivatives, name);
        const studies::unit shown = studies::shown_unit(found->unit, system);
        rows_.push_back({std::string(found->description), shown, name == "phase"});
    }
}

std::vector<column> wanted_outputs::columns() const {
    std::vector<column> result;
    for (std::size_t i = 0; i < rows_.size(); ++i)
        result.push_back(
            {names_[i], rows_[i].is_phase || rows_[i].unit.name == "1" ? "" : std::string(rows_[i].unit.name)});
    return result;
}

cell wanted_outputs::shown(std::size_t output, double value) const {
    if (rows_[output].is_phase && !std::isnan(value))
        return std::string(studies::phase_name(static_cast<int>(value)));
    return value_or_none(studies::in_unit(value, rows_[output].unit));
}

std::vector<const studies::remark *> wanted_outputs::remarks_on(std::span<const double> values) const {
    const double phase = values[size() + 3];
    if (std::isnan(phase))
        return {};
    return remarks_.at(values[size()], values[size() + 1], static_cast<int>(phase));
}

std::string texts_of(const std::vector<const studies::remark *> &remarks) {
    std::string texts;
    for (const studies::remark *const one : remarks)
        texts += (texts.empty() ? "" : "\n") + one->text;
    return texts;
}

void add_cells(std::vector<cell> &row, const wanted_outputs &wanted, std::span<const double> values, int status) {
    for (std::size_t i = 0; i < wanted.size(); ++i)
        row.push_back(wanted.shown(i, values[i]));
    row.emplace_back(status);
    std::string note = status != OSTREL_OK ? std::string(ostrel::status_text(status)) + '.' : "";
    if (const std::string remarks = texts_of(wanted.remarks_on(values)); !remarks.empty())
        note += (note.empty() ? "" : "\n") + remarks;
    row.emplace_back(std::move(note));
}

} // namespace command
