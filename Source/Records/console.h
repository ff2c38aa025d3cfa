// SPDX-License-Identifier: MIT
// The console: the greeting goes there, and the toolkit's root finders and matrix routines report there and stop the
// process.
//
// A line is a list-directed record: a blank, then its texts as they stand, so that a text which starts with a
// blank itself comes out behind two.
#pragma once

#include "Records/record_writer.h"

#include <initializer_list>
#include <string_view>

namespace console {

/// Writes a line to the standard output and flushes it.
void write(std::initializer_list<records::written_value> values);

/// Waits for a line from the operator; returns at once where the standard input is no terminal.
void pause();

/// Ends the process with exit status 1. Exit handlers run: they flush what the host has written elsewhere and
/// remove its temporary files, which a sudden end would lose.
[[noreturn]] void stop();
/// Writes each text on a line of its own and stops.
[[noreturn]] void stop(std::initializer_list<std::string_view> lines);

} // namespace console
