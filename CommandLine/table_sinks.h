// SPDX-License-Identifier: MIT
// Where the rows of a long table go: CSV, lines of JSON, or a table of an SQLite file.
#pragma once

#include "CommandLine/report.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace command {

class table_sink {
public:
    table_sink() = default;
    table_sink(const table_sink &) = delete;
    table_sink &operator=(const table_sink &) = delete;
    virtual ~table_sink() = default;

    /// The number of rows that are there from an earlier run.
    virtual std::size_t rows_there() { return 0; }
    /// Writes rows, the first of which has this number. Afterwards what is written is valid, whatever happens next.
    virtual void write(std::size_t first, const std::vector<std::vector<cell>> &rows) = 0;
};

/// Writes to a file, or to standard output if the path is empty.
std::unique_ptr<table_sink> csv_sink(const std::string &path, const std::vector<column> &columns);
std::unique_ptr<table_sink> json_lines_sink(const std::string &path, const std::vector<column> &columns);

/// Writes to a table of an SQLite file; both are made if missing. `request` says what the rows answer: a table that
/// answers the same request is continued, one that answers another request is refused.
std::unique_ptr<table_sink> sqlite_sink(const std::string &path, const std::string &table,
                                        const std::vector<column> &columns, const std::string &request);

} // namespace command
