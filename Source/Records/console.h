// SPDX-License-Identifier: MIT
// The console. The library writes its greeting there; the toolkit's root finders and matrix routines report a failure
// there and stop the process.
//
// A line is a list-directed record: a blank, and then its texts as they are. A text that itself starts with a blank
// therefore stands behind two blanks.
#pragma once

#include "Records/record_writer.h"

#include <initializer_list>
#include <string_view>

namespace console {

/// Writes a line to the standard output and flushes it.
void write(std::initializer_list<records::written_value> values);

/// Waits for a line from the operator, but only if the standard input is a terminal.
void pause();

/// Ends the process with exit status 1. Exit handlers run, because they flush what the host has written elsewhere and
/// remove its temporary files.
[[noreturn]] void stop();
/// Writes each text on a line of its own and stops.
[[noreturn]] void stop(std::initializer_list<std::string_view> lines);

} // namespace console
