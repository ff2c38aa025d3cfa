// SPDX-License-Identifier: MIT
// ostrel db: puts parameter files into a fluid database and takes them out of it.
#include "CommandLine/command.h"
#include "CommandLine/loading.h"
#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"
#include "Host/fluid_database.h"
#include "Host/fluid_database_files.h"
#include "fluid_loading.h"
#include "host.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <set>
#include <system_error>

namespace command {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view extension = ".osd";

/// The reason why the library cannot read the text from a database; an empty text if it can.
std::string unreadable(const fluid_database::entry &fluid) {
    std::vector<char> entries(static_cast<std::size_t>(host::line_count) * host::line_length);
    if (std::string reason = fluid_database::split(fluid.text, entries, host::line_length); !reason.empty())
        return reason;
    std::int32_t index = 0;
    records::line_reader lines = loading::line_reader_of(fluid.name + " as lines of a database", entries, index);
    loading::read(lines);
    return std::string(lines.message());
}

fluid_database::entry entry_of(const std::string &path) {
    const std::string file = fs::path(path).filename().string();
    if (!file.ends_with(extension) || file.size() == extension.size())
        throw failure(path + " is not named like a parameter file, NAME.osd");
    const parameter_file read = load_file(path);
    if (!read.unreadable.empty())
        throw failure(read.unreadable);
    fluid_database::entry fluid{file.substr(0, file.size() - extension.size()), read.text};
    if (const std::string reason = unreadable(fluid); !reason.empty())
        throw failure(path + " cannot be read from a database: " + reason);
    return fluid;
}

void import_files(const std::string &database, const std::vector<std::string> &paths) {
    std::vector<fluid_database::entry> fluids;
    std::set<std::string> names;
    for (const std::string &path : paths) {
        fluids.push_back(entry_of(path));
        if (!names.insert(fluids.back().name).second)
            throw failure(path + ": the name " + fluids.back().name + " is given twice");
    }
    const std::vector<bool> replaced = fluid_database::put(database, fluids);
    report done = {.columns = {{"name"}, {"what"}}};
    for (std::size_t i = 0; i < fluids.size(); ++i)
        done.rows.push_back({fluids[i].name, replaced[i] ? "replaced" : "added"});
    write_columns(std::cout, done);
}

failure not_there(const std::string &name, const std::string &database, const std::vector<fluid_database::entry> &all) {
    std::vector<std::string> names(all.size());
    std::transform(all.begin(), all.end(), names.begin(), [](const auto &fluid) { return fluid.name; });
    return failure("there is no fluid " + name + " in " + database, {did_you_mean(name, names)});
}

/// The entries with these names; all entries if there are no names.
std::vector<fluid_database::entry> chosen(const std::string &database, const std::vector<std::string> &names) {
    std::error_code ignored;
    if (!fs::exists(database, ignored))
        throw failure("there is no database " + database);
    std::vector<fluid_database::entry> all = fluid_database::all(database);
    if (names.empty())
        return all;
    std::vector<fluid_database::entry> result;
    for (const std::string &name : names) {
        const auto place =
            std::find_if(all.begin(), all.end(), [&](const auto &candidate) { return candidate.name == name; });
        if (place == all.end())
            throw not_there(name, database, all);
        result.push_back(*place);
    }
    return result;
}

void export_files(const std::string &database, const std::string &folder, const std::vector<std::string> &names,
                  bool force) {
    const std::vector<fluid_database::entry> fluids = chosen(database, names);
    std::error_code ignored;
    if (!fs::is_directory(folder, ignored))
        throw failure("there is no folder " + folder);
    const auto path = [&](const fluid_database::entry &fluid) {
        return (fs::path(folder) / (fluid.name + std::string(extension))).string();
    };
    for (const auto &fluid : fluids) {
        if (fluid.name.empty() || fluid.name.find_first_of(std::string("/\0", 2)) != std::string::npos)
            throw failure('"' + printable(fluid.name) + "\" in " + database + " is no name for a file");
        if (!force && fs::exists(path(fluid), ignored))
            throw failure(path(fluid) + " exists", {"Nothing was written; --force overwrites."});
    }
    for (const auto &fluid : fluids) {
        std::ofstream file(path(fluid), std::ios::binary);
        file.write(fluid.text.data(), static_cast<std::streamsize>(fluid.text.size()));
        file.close();
        if (!file)
            throw failure(path(fluid) + " cannot be written: " + std::generic_category().message(errno));
        std::cout << path(fluid) << '\n';
    }
    if (fluids.empty())
        std::cout << "There are no fluids in " << database << '\n';
}

} // namespace

definition db() {
    struct arguments {
        std::string database;
        std::vector<std::string> texts;
        std::string folder = ".";
        bool force = false;
    };
    const auto given = std::make_shared<arguments>();
    definition put = {
        .name = "import",
        .meaning = "Put parameter files into a database",
        .arguments = {{"DATABASE", &given->database, "Database file; it is made if there is none", true},
                      {"FILES", &given->texts, "Parameter files; a fluid's name is its file's without .osd", true}},
        .notes = "All files or, if one cannot be used, none.\n\nExample:\n  ostrel db import fluids.db Fluids/*.osd",
        .run = [given] { import_files(given->database, given->texts); }};
    definition take = {.name = "export",
                       .meaning = "Write a database's fluids to parameter files",
                       .arguments = {{"DATABASE", &given->database, "Database file", true},
                                     {"FOLDER", &given->folder, "Where the files go; the current folder if not named"},
                                     {"NAMES", &given->texts, "Fluids; all if none is named"},
                                     {"--force", &given->force, "Overwrite files"}},
                       .notes = "Example:\n  ostrel db export fluids.db . toluene",
                       .run = [given] { export_files(given->database, given->folder, given->texts, given->force); }};
    return {.name = "db",
            .meaning = "Fill a fluid database (SQLite), or take files out of one",
            .notes = "Examples:\n  ostrel db import fluids.db Fluids/toluene.osd Fluids/water.osd",
            .parts = {std::move(put), std::move(take)}};
}

} // namespace command
