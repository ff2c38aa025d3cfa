// SPDX-License-Identifier: MIT
#include "Host/fluid_database_files.h"

#include <filesystem>
#include <stdexcept>

#ifdef OSTREL_WITH_SQLITE
#include <memory>
#include <sqlite3.h>
#endif

namespace fluid_database {

#ifdef OSTREL_WITH_SQLITE

namespace {

class connection {
public:
    connection(const std::string &location, int flags) : location_(location) {
        sqlite3 *opened = nullptr;
        const int status = sqlite3_open_v2(location.c_str(), &opened, flags, nullptr);
        database_.reset(opened);
        demand(status, SQLITE_OK);
        sqlite3_busy_timeout(opened, 2000);
    }

    /// Throws SQLite's message unless the status is the wanted one.
    void demand(int status, int wanted) const {
        if (status != wanted)
            throw std::runtime_error(location_ + ": " +
                                     (database_ ? sqlite3_errmsg(database_.get()) : sqlite3_errstr(status)));
    }
    void execute(const char *statement) const {
        demand(sqlite3_exec(database_.get(), statement, nullptr, nullptr, nullptr), SQLITE_OK);
    }
    sqlite3 *get() const { return database_.get(); }

private:
    std::string location_;
    std::unique_ptr<sqlite3, int (*)(sqlite3 *)> database_{nullptr, sqlite3_close};
};

class statement {
public:
    statement(const connection &database, const char *text) : database_(database) {
        sqlite3_stmt *prepared = nullptr;
        database.demand(sqlite3_prepare_v2(database.get(), text, -1, &prepared, nullptr), SQLITE_OK);
        prepared_.reset(prepared);
    }
    void bind(int place, const std::string &text) const {
        database_.demand(
            sqlite3_bind_text64(prepared_.get(), place, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8),
            SQLITE_OK);
    }
    /// Returns whether there is a row.
    bool step() const {
        const int status = sqlite3_step(prepared_.get());
        if (status != SQLITE_ROW)
            database_.demand(status, SQLITE_DONE);
        return status == SQLITE_ROW;
    }
    std::string column(int place) const {
        const unsigned char *const text = sqlite3_column_text(prepared_.get(), place);
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(prepared_.get(), place));
        return text != nullptr ? std::string(reinterpret_cast<const char *>(text), size) : std::string();
    }
    void reset() const { sqlite3_reset(prepared_.get()); }

private:
    const connection &database_;
    std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> prepared_{nullptr, sqlite3_finalize};
};

/// Throws if something other than a regular file has that name: opening a pipe would wait for its other end.
void demand_file(const std::string &location) {
    std::error_code failed;
    const auto type = std::filesystem::status(location, failed).type();
    if (type != std::filesystem::file_type::regular && type != std::filesystem::file_type::not_found)
        throw std::runtime_error(location + " is not a regular file");
}

} // namespace

std::vector<bool> put(const std::string &location, const std::vector<entry> &entries) {
    demand_file(location);
    const connection database(location, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    // If the connection closes before the COMMIT, the transaction is undone.
    database.execute("BEGIN IMMEDIATE; CREATE TABLE IF NOT EXISTS fluid(name TEXT PRIMARY KEY, text TEXT NOT NULL)");
    std::vector<bool> replaced;
    {
        const statement sought(database, "SELECT 1 FROM fluid WHERE name = ?1");
        const statement stored(database, "INSERT OR REPLACE INTO fluid(name, text) VALUES(?1, ?2)");
        for (const entry &fluid : entries) {
            sought.bind(1, fluid.name);
            replaced.push_back(sought.step());
            sought.reset();
            stored.bind(1, fluid.name);
            stored.bind(2, fluid.text);
            stored.step();
            stored.reset();
        }
    }
    database.execute("COMMIT");
    return replaced;
}

std::vector<entry> all(const std::string &location) {
    demand_file(location);
    const connection database(location, SQLITE_OPEN_READONLY);
    const statement query(database, "SELECT name, text FROM fluid ORDER BY name");
    std::vector<entry> found;
    while (query.step())
        found.push_back({query.column(0), query.column(1)});
    return found;
}

#else

std::vector<bool> put(const std::string &, const std::vector<entry> &) {
    throw std::runtime_error("this build has no SQLite, and so no fluid databases");
}

std::vector<entry> all(const std::string &) {
    throw std::runtime_error("this build has no SQLite, and so no fluid databases");
}

#endif

} // namespace fluid_database
