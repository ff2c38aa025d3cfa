// SPDX-License-Identifier: MIT
#include "Host/fluid_database.h"

#include "Records/fixed_text.h"

#ifdef OSTREL_WITH_SQLITE
#include <filesystem>
#include <memory>
#include <sqlite3.h>
#endif

namespace fluid_database {

#ifdef OSTREL_WITH_SQLITE

std::optional<std::string> read(const std::string &location, const std::string &name) {
    // Only a regular file is opened, since opening a pipe would wait for its other end.
    std::error_code failed;
    if (location.find('\0') != std::string::npos || !std::filesystem::is_regular_file(location, failed))
        return std::nullopt;
    sqlite3 *opened = nullptr;
    const int open_status = sqlite3_open_v2(location.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3 *)> database(opened, sqlite3_close);
    if (open_status != SQLITE_OK)
        return std::nullopt;
    // SQLite waits a little for a writer, and ends a query that takes long: the table may be a view of anything.
    sqlite3_busy_timeout(opened, 500);
    sqlite3_progress_handler(
        opened, 10'000'000, [](void *) { return 1; }, nullptr);
    sqlite3_stmt *prepared = nullptr;
    const int query_status =
        sqlite3_prepare_v2(opened, "SELECT text FROM fluid WHERE name = ?1", -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> query(prepared, sqlite3_finalize);
    if (query_status != SQLITE_OK ||
        sqlite3_bind_text(prepared, 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC) != SQLITE_OK ||
        sqlite3_step(prepared) != SQLITE_ROW)
        return std::nullopt;
    const unsigned char *const text = sqlite3_column_text(prepared, 0);
    if (text == nullptr)
        return std::nullopt;
    return std::string(reinterpret_cast<const char *>(text),
                       static_cast<std::size_t>(sqlite3_column_bytes(prepared, 0)));
}

#else

std::optional<std::string> read(const std::string &, const std::string &) {
    return std::nullopt;
}

#endif

namespace {

/// Calls use(line) for each line of the text, without its end.
template <class Use>
void for_each_line(std::string_view text, Use use) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        use(line);
    }
}

} // namespace

std::string split(std::string_view text, std::span<char> entries, std::size_t entry_length) {
    records::fill_text(entries, {});
    const std::size_t room = entry_length > 0 ? entries.size() / entry_length : 0;
    std::size_t number = 0;
    std::size_t too_long = 0;
    for_each_line(text, [&](std::string_view line) {
        if (line.size() > entry_length && too_long == 0)
            too_long = number + 1;
        else if (number < room)
            records::fill_text(entries.subspan(number * entry_length, entry_length), {line});
        ++number;
    });
    if (too_long > 0)
        return "line " + std::to_string(too_long) + " is longer than the " + std::to_string(entry_length) +
               " characters of a database line";
    if (number > room)
        return std::to_string(number) + " lines, where a database text has room for " + std::to_string(room);
    return {};
}

} // namespace fluid_database
