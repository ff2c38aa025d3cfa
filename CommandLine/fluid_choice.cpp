// SPDX-License-Identifier: MIT
#include "CommandLine/fluid_choice.h"

#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"

#include <algorithm>
#include <filesystem>

namespace command {
std::vector<std::string> option_keys() {
    std::vector<std::string> keys;
    for (const ostrel::row row : ostrel::list(ostrel::kind::options))
        if (row.name != "folder")
            keys.emplace_back(row.name);
    return keys;
}

std::vector<argument> fluid_choice::arguments(const std::vector<std::string> &without) {
    std::vector<argument> result = {{"FLUID", &words, fluid_argument, true}};
    for (const auto row : ostrel::list(ostrel::kind::options)) {
        const std::string key(row.name);
        if (key == "folder" || std::find(without.begin(), without.end(), key) != without.end())
            continue;
        std::string meaning = std::string(row.unit) + ": " + std::string(row.description);
        result.push_back(
            {"--" + key, &options[key], std::move(meaning), false, "", parts_of(std::string(row.unit), '|')});
    }
    result.push_back({"--database", &database, "An SQLite file that has the fluid, as ostrel db writes them"});
    return result;
}

chosen_fluid fluid_choice::open() const {
    if (words.find_first_not_of(" \t") == std::string::npos)
        throw wrong_argument("FLUID: a name is needed");
    std::string text;
    for (const auto &[key, value] : options)
        if (!value.empty())
            text.append(text.empty() ? "" : "; ").append(key).append("=").append(value);
    const ostrel::unchecked with(text);
    std::error_code ignored;
    if (!database.empty() && !std::filesystem::is_regular_file(database, ignored))
        throw failure("database \"" + printable(database) + "\": there is no such file");
    const bool is_path = words.find('/') != std::string::npos || words.ends_with(".osd");
    auto opened = !database.empty() ? ostrel::fluid::try_open_database(database, words, with)
                  : is_path         ? ostrel::fluid::try_open_file(words, with)
                                    : ostrel::fluid::try_open(words, with);
    if (!opened && opened.status() == OSTREL_BAD_ARGUMENT)
        throw wrong_argument(opened.error().message);
    if (!opened)
        throw failure(opened.error().message);
    chosen_fluid result{*std::move(opened)};
    const std::string file = std::filesystem::path(result.fluid.text("source")).stem().string();
    if (database.empty() && !is_path && file != words)
        result.notes.push_back('"' + printable(words) + "\" was found in " + printable(file) +
                               ".osd: " + printable(result.fluid.text("name")) + '.');
    return result;
}

chosen_fluid fluid_choice::open_with(const std::string &model) const {
    fluid_choice other = *this;
    other.options["model"] = model;
    return other.open();
}

} // namespace command
