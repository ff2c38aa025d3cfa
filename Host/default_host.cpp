// SPDX-License-Identifier: MIT
// The default host: it knows the fluid directory, lists the fluid files and reads SQLite fluid databases.
#include "Host/fluid_database.h"
#include "Host/folder_listing.h"
#include "Records/fixed_text.h"
#include "host.h"

#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// An object of the library, from whose address the dynamic loader tells the library's file.
const int library_marker = 0;

/// The fluid directory of an installed tree, relative to the library's own file; empty if there is none.
std::string installed_directory() {
    Dl_info library{};
    if (dladdr(&library_marker, &library) == 0 || library.dli_fname == nullptr)
        return {};
    // Faster than fs::canonical, since fluids are opened often.
    const std::unique_ptr<char, void (*)(void *)> real(realpath(library.dli_fname, nullptr), std::free);
    if (real == nullptr)
        return {};
    std::error_code failed;
    const fs::path file(real.get());
    const fs::path directory = (file.parent_path() / OSTREL_INSTALLED_FLUIDS).lexically_normal();
    return fs::is_directory(directory, failed) ? directory.string() : std::string();
}

void fluidpath(char *path, const char *, size_t path_len, size_t) {
    // A directory that does not fit is not cut, since the rest could name another directory. A name that is longer
    // than any directory's takes its place.
    std::string directory = host::default_fluid_directory();
    if (directory.size() > path_len)
        directory.assign(path_len, '?');
    records::fill_text({path, path_len}, {directory});
}

void searchdirectory(const char *directory, const char *pattern, char *names, size_t directory_len, size_t pattern_len,
                     size_t name_len) {
    const std::string place(records::trimmed({directory, directory_len}));
    const std::string_view wanted_field(pattern, pattern_len);
    const std::string wanted(wanted_field.substr(0, wanted_field.find('\0')));
    std::vector<std::string> found = folder_listing::files(place, wanted);
    found.resize(std::min(found.size(), host::name_count));
    for (std::size_t i = 0; i < host::name_count; ++i)
        records::fill_text({names + i * name_len, name_len}, {i < found.size() ? std::string_view(found[i]) : ""});
}

int32_t getfluid(const char *location, const char *key, char *lines, int32_t *found, size_t location_len,
                 size_t key_len, size_t line_len) {
    *found = 0;
    const auto text = fluid_database::read(std::string(records::trimmed({location, location_len})),
                                           std::string(records::trimmed({key, key_len})));
    const std::span entries(lines, static_cast<std::size_t>(host::line_count) * line_len);
    if (text && fluid_database::split(*text, entries, line_len).empty())
        *found = 1;
    return *found;
}

} // namespace

const ostrel_host host::default_routines = {fluidpath, searchdirectory, getfluid};

std::string host::default_fluid_directory() {
    const char *const wanted = std::getenv("OSTREL_FLUIDS");
    std::string directory = wanted != nullptr ? wanted : "";
    if (directory.empty())
        directory = installed_directory();
    if (directory.empty())
        directory = OSTREL_FALLBACK_FLUIDS;
    if (!directory.ends_with('/'))
        directory += '/';
    return directory;
}

host::fluid_text host::default_fluid_lines(std::string_view location, std::string_view key) {
    fluid_text result;
    auto text = fluid_database::read(std::string(records::trimmed(location)), std::string(records::trimmed(key)));
    if (!text)
        return result;
    result.text = std::move(*text);
    result.lines.resize(static_cast<std::size_t>(line_count) * line_length);
    result.problem = fluid_database::split(result.text, result.lines, line_length);
    if (!result.problem.empty())
        result.lines.clear();
    return result;
}
