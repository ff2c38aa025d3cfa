// SPDX-License-Identifier: MIT
// The routines that belong to the host application, reached through a table that it may replace.
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
/// Replaces them; a null table or member stands for the default.
void use(const ostrel_host *replacement);
/// The library's own routines.
extern const ostrel_host default_routines;

// What the host answers. A field may also come back ended by a NUL, as C programs leave it.

/// The directory of the fluid files with its separator, without trailing blanks.
std::string fluid_directory();
/// Fills 500 entries of name_length characters with the names of the directory's parameter files.
void search_directory(std::string_view directory, std::span<char> names, std::size_t name_length);
/// The 255 lines of a fluid's text one after the other; empty if the database does not give them.
std::vector<char> fluid_lines(std::string_view location, std::string_view key);

} // namespace host
