// SPDX-License-Identifier: MIT
// The sequence in which every fluid is loaded into the modules: its sections are read, and then it is initialised.
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

// Messages go to the shared error text, unless a comment says otherwise. No function here clears that text.

/// Reports that a file cannot be opened, with the code from errno.
void report_failed_open(int status);

/// A reader of a fluid's lines, 255 of 255 characters. `lines` and `index` must outlive it.
records::line_reader line_reader_of(std::string source, const std::vector<char> &lines, std::int32_t &index);

/// Reads all sections. If a record cannot be read, only the reader has the message; an unopened file is not reported.
outcome read(records::file_reader &file);
outcome read(records::line_reader &lines);
/// Reads a parameter file.
outcome read_file(std::string_view path);
/// Reads a fluid from a fluid database, whose lines the host gives.
outcome read_database(std::string_view location, std::string_view name);

/// Initialises the fluid in the modules; stops after the first step if a message stands then.
void initialise();

} // namespace loading
