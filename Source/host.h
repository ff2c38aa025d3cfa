// SPDX-License-Identifier: MIT
// The routines of the host application. The library calls them through a table that the host may replace.
#pragma once

#include "ostrel.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

inline constexpr std::size_t path_length = 256;
inline constexpr std::size_t name_count = 500;
inline constexpr std::int32_t line_count = 255;
inline constexpr std::size_t line_length = 255;

/// The routines in use; every member is set.
const ostrel_host &routines();
/// Replaces the routines; a null table or a null member means the default.
void use(const ostrel_host *replacement);
/// The library's own routines.
extern const ostrel_host default_routines;

// The host's answers. A host may end the text in a field with a NUL, as C programs do.

/// The directory of the fluid files with its separator, without trailing blanks.
std::string fluid_directory();
/// Fills 500 entries of name_length characters with the names of the directory's parameter files.
void search_directory(std::string_view directory, std::span<char> names, std::size_t name_length);
/// A fluid's text from a database: its 255 lines, one after the other. If the database does not give them there are
/// none, and `problem` says why if the reason is known. The default host also gives the text as it is.
struct fluid_text {
    std::vector<char> lines;
    std::string problem;
    std::string text;
};
/// The answer of the routine in use. The lines of a replaced routine end at their first NUL, and those of the default
/// host keep every byte. Carriage returns at the ends of lines are removed.
fluid_text fluid_lines(std::string_view location, std::string_view key);
/// The answers of the default host, even if its routines are replaced.
std::string default_fluid_directory();
fluid_text default_fluid_lines(std::string_view location, std::string_view key);

} // namespace host
