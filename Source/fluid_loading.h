// SPDX-License-Identifier: MIT
// The one sequence in which a fluid is loaded into the modules: its sections are read, then it is initialised.
#pragma once

#include "Records/record_reader.h"
#include "visibility.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace loading OSTREL_VISIBLE {

enum class outcome {
    read,       ///< all sections are in the modules
    not_opened, ///< the file or the database does not give the fluid; the modules are as they were
    broken      ///< a record could not be read; the sections before it are in the modules
};

// A failure leaves its message in the shared error text; nothing clears that text.

/// Leaves the message of a file that does not open, with errno's code.
void report_failed_open(int status);

/// The reader of a fluid's lines, 255 of 255 characters; `index` has to outlive it.
records::line_reader line_reader_of(std::string source, const std::vector<char> &lines, std::int32_t &index);

/// Reads all sections; the message of a record that cannot be read stays in the reader.
outcome read(records::file_reader &file);
outcome read(records::line_reader &lines);
/// Reads a parameter file.
outcome read_file(std::string_view path);
/// Reads a fluid from a fluid database, as the host gives its lines.
outcome read_database(std::string_view location, std::string_view name);

/// Initialises the fluid in the modules, unless a message stands after one of the steps.
void initialise();

} // namespace loading
