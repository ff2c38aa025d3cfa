// SPDX-License-Identifier: MIT
#include "CommandLine/cycle_file.h"

#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"
#include "Studies/units.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>
// The package calls itself for each value in a value. Definitions have none.
#define TOML_MAX_NESTED_VALUES 16
#include <toml++/toml.h>
#include <utility>
#include <vector>

namespace command {
namespace {

/// The texts beside the sections.
constexpr std::string_view fluid_key = "fluid";
constexpr std::string_view kind_key = "kind";
constexpr std::string_view database_key = "database";

constexpr std::size_t longest_text = 1'000'000;
/// The package that reads files calls itself for each table within a table. Definitions have two.
constexpr std::ptrdiff_t most_points = 100; // in a line

std::vector<std::string> kind_names() {
    std::vector<std::string> names;
    for (const auto &row : studies::cycle_kinds())
        names.emplace_back(row.name);
    return names;
}

class reader {
public:
    explicit reader(std::string path) : path_(std::move(path)) {}

    cycle_file read(const std::string &text) {
        for (const auto &[key, node] : parsed(text))
            take(std::string(key.str()), key.source(), node);
        if (result_.fluid.words.empty())
            throw failure(named("the fluid is wanted, as in fluid = \"toluene\""));
        std::ranges::sort(result_.given, {},
                          [](const given_value &one) { return std::pair(one.begin.line, one.begin.column); });
        return std::move(result_);
    }

private:
    toml::table parsed(const std::string &text) const {
        if (text.size() > longest_text)
            throw failure(named("the file is longer than a definition of a cycle can be"));
        refuse_deep_names(text);
        try {
            return toml::parse(text, path_);
        } catch (const toml::parse_error &reason) {
            throw refused(reason.source(), printable(reason.description()));
        }
    }

    void refuse_deep_names(const std::string &text) const {
        std::istringstream lines(text);
        std::size_t number = 0;
        for (std::string line; std::getline(lines, line);) {
            ++number;
            const std::size_t first = line.find_first_not_of(" \t");
            if (first != std::string::npos && line[first] != '#' && std::ranges::count(line, '.') > most_points)
                throw refused(number, "there are more than " + std::to_string(most_points) + " points");
        }
    }

    failure refused(std::size_t number, const std::string &text, std::vector<std::string> advice = {}) const {
        const std::string line = std::to_string(number);
        return failure((path_.empty() ? "line " + line : path_ + ':' + line) + ": " + text, std::move(advice), number);
    }
    failure refused(const toml::source_region &where, const std::string &text,
                    std::vector<std::string> advice = {}) const {
        return refused(where.begin.line, text, std::move(advice));
    }
    std::string named(const std::string &text) const { return path_.empty() ? text : path_ + ": " + text; }
    failure unknown(const toml::source_region &where, const std::string &what, const std::string &written,
                    const std::vector<std::string> &names) const {
        return refused(where, "there is no " + what + " \"" + printable(written) + '"',
                       {did_you_mean(written, names),
                        (names.size() == 1 ? "There is only " : "There are ") + joined(names, ", ", " and ") + '.'});
    }

    void take(const std::string &key, const toml::source_region &where, const toml::node &node) {
        std::vector<std::string> names = {std::string(fluid_key), std::string(kind_key), std::string(database_key)};
        const std::vector<std::string> options = option_keys();
        names.insert(names.end(), options.begin(), options.end());
        const std::size_t texts = names.size();
        for (const studies::cycle_key &row : studies::cycle_keys())
            if (names.back() != row.section)
                names.emplace_back(row.section);
        const auto found = std::ranges::find(names, key);
        if (found == names.end())
            throw unknown(where, "key or section", key, names);
        if (static_cast<std::size_t>(found - names.begin()) < texts)
            take_text(key, node);
        else
            take_section(key, where, node);
    }

    void take_text(const std::string &key, const toml::node &node) {
        const auto text = node.value_exact<std::string>();
        if (!text)
            throw refused(node.source(), key + ": a text is wanted, in quotation marks");
        if (key == fluid_key)
            result_.fluid.words = *text;
        else if (key == database_key)
            result_.fluid.database = *text;
        else if (key == kind_key)
            take_kind(*text, node.source());
        else
            result_.fluid.options[key] = *text;
    }

    void take_kind(const std::string &text, const toml::source_region &where) {
        for (const auto &row : studies::cycle_kinds())
            if (row.name == text) {
                result_.wanted.kind = row.kind;
                return;
            }
        throw unknown(where, "kind of cycle", text, kind_names());
    }

    void take_section(const std::string &section, const toml::source_region &where, const toml::node &node) {
        const toml::table *const table = node.as_table();
        if (table == nullptr)
            throw refused(where, section + " is a section: write [" + section + "], and its keys below");
        for (const auto &[key, value] : *table) {
            const std::string name(key.str());
            std::string whole = section;
            whole.append(".").append(name);
            const studies::cycle_key *const row = studies::cycle_key_named(whole);
            if (row == nullptr) {
                std::vector<std::string> names;
                for (const studies::cycle_key &each : studies::cycle_keys())
                    if (each.section == section)
                        names.emplace_back(each.name);
                throw unknown(key.source(), '[' + section + "] key", name, names);
            }
            result_.wanted.*row->member = number_of(*row, whole, value);
            const toml::source_region &place = value.source();
            result_.given.push_back({row, {place.begin.line, place.begin.column}, {place.end.line, place.end.column}});
        }
    }

    double number_of(const studies::cycle_key &row, const std::string &name, const toml::node &value) const {
        if (value.is_number())
            return *value.value<double>();
        const auto text = value.value_exact<std::string>();
        if (!text)
            throw refused(value.source(), name + ": a number is wanted, or a text with a number and a unit");
        try {
            return row.difference ? studies::parse_difference(*text, row.si) : studies::parse_value(*text, row.si);
        } catch (const studies::wrong_value &reason) {
            throw refused(value.source(), name + ": " + reason.what());
        }
    }

    std::string path_;
    cycle_file result_;
};

} // namespace

cycle_file read_cycle_file(const std::string &path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::string text(longest_text + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (errno != 0)
        throw failure(path + ": the file cannot be read: " + std::generic_category().message(errno));
    return read_cycle_text(text, path);
}

cycle_file read_cycle_text(const std::string &text, const std::string &path) {
    return reader(path).read(text);
}

chosen_fluid open_fluid(const cycle_file &file, const std::string &path) {
    try {
        return file.fluid.open();
    } catch (const std::runtime_error &reason) {
        throw failure(path + ": " + printable(reason.what()));
    }
}

solved_cycle solve_cycle_file(const std::string &path) {
    const cycle_file file = read_cycle_file(path);
    chosen_fluid chosen = open_fluid(file, path);
    try {
        studies::cycle_result result = studies::solve(chosen.fluid, file.wanted);
        return {std::move(chosen), file.wanted, std::move(result)};
    } catch (const studies::impossible &reason) {
        throw failure(path + ": " + printable(reason.what()));
    }
}

std::string table_of_cycle_keys() {
    report keys = {.columns = {{"key"}, {"unit"}, {"default"}, {"kind"}, {"meaning"}}};
    for (const studies::cycle_key &row : studies::cycle_keys())
        keys.rows.push_back(
            {std::string(row.section) + '.' + std::string(row.name), std::string(row.si),
             row.standard ? number(*row.standard) : std::string(),
             row.of_rankine && row.of_compression ? std::string() : kind_names()[row.of_rankine ? 0 : 1],
             std::string(row.meaning)});
    std::ostringstream text;
    write_columns(text, keys, "  ");
    return text.str();
}

} // namespace command
