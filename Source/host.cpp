// SPDX-License-Identifier: MIT
#include "host.h"

#include "Records/fixed_text.h"

#include <algorithm>

namespace host {
namespace {

constexpr std::string_view product = "Ostrel";

// The search routine takes its pattern with a NUL at the end.
constexpr std::string_view parameter_files("*.osd", sizeof "*.osd");

ostrel_host active = default_routines;

/// Fills each entry with blanks from its first NUL on.
void remove_padding(std::span<char> entries, std::size_t length) {
    for (; entries.size() >= length && length > 0; entries = entries.subspan(length)) {
        const std::span<char> entry = entries.first(length);
        std::fill(std::find(entry.begin(), entry.end(), '\0'), entry.end(), ' ');
    }
}

/// Replaces the carriage return at the end of each line by a blank.
void remove_carriage_returns(std::span<char> lines) {
    for (; lines.size() >= line_length; lines = lines.subspan(line_length)) {
        const std::size_t used = records::trimmed({lines.data(), line_length}).size();
        if (used > 0 && lines[used - 1] == '\r')
            lines[used - 1] = ' ';
    }
}

} // namespace

const ostrel_host &routines() {
    return active;
}

void use(const ostrel_host *replacement) {
    active = replacement != nullptr ? *replacement : default_routines;
    if (active.fluidpath == nullptr)
        active.fluidpath = default_routines.fluidpath;
    if (active.searchdirectory == nullptr)
        active.searchdirectory = default_routines.searchdirectory;
    if (active.getfluid == nullptr)
        active.getfluid = default_routines.getfluid;
}

std::string fluid_directory() {
    std::string path(path_length, ' ');
    routines().fluidpath(path.data(), product.data(), path.size(), product.size());
    remove_padding(path, path.size());
    path.resize(records::trimmed(path).size());
    return path;
}

void search_directory(std::string_view directory, std::span<char> names, std::size_t name_length) {
    records::fill_text(names, {});
    routines().searchdirectory(directory.data(), parameter_files.data(), names.data(), directory.size(),
                               parameter_files.size(), name_length);
    remove_padding(names, name_length);
}

fluid_text fluid_lines(std::string_view location, std::string_view key) {
    if (routines().getfluid == default_routines.getfluid)
        return default_fluid_lines(location, key);
    fluid_text text;
    text.lines.assign(static_cast<std::size_t>(line_count) * line_length, ' ');
    std::int32_t found = 0;
    const std::int32_t status = routines().getfluid(location.data(), key.data(), text.lines.data(), &found,
                                                    location.size(), key.size(), line_length);
    if (status == 0 || found == 0)
        text.lines.clear();
    remove_padding(text.lines, line_length);
    remove_carriage_returns(text.lines);
    return text;
}

} // namespace host
