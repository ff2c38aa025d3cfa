// SPDX-License-Identifier: MIT
#include "CommandLine/table_sinks.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#ifdef OSTREL_WITH_SQLITE
#include <sqlite3.h>
#endif

namespace command {
namespace {

/// Text, a line for each row.
class line_sink : public table_sink {
public:
    using line_of_row = std::function<std::string(const std::vector<cell> &)>;

    line_sink(const std::string &path, const std::string &heading, line_of_row line) : line_(std::move(line)) {
        if (!path.empty()) {
            path_ = path;
            file_.open(path, std::ios::binary | std::ios::trunc);
            if (!file_)
                throw failure("file \"" + printable(path) + "\" cannot be written: " + std::strerror(errno));
        }
        if (!heading.empty())
            out() << heading << '\n';
    }
    void write(std::size_t, const std::vector<std::vector<cell>> &rows) override {
        text_.clear();
        for (const auto &row : rows) {
            text_ += line_(row);
            text_ += '\n';
        }
        out() << text_ << std::flush;
        if (!out())
            throw failure(path_.empty() ? "standard output cannot be written"
                                        : "file \"" + printable(path_) + "\" cannot be written");
    }

private:
    std::ostream &out() { return path_.empty() ? std::cout : file_; }

    std::string path_{};
    std::ofstream file_{};
    line_of_row line_;
    std::string text_{};
};

#ifdef OSTREL_WITH_SQLITE

class sql_sink : public table_sink {
public:
    sql_sink(const std::string &path, const std::string &table, const std::vector<column> &columns,
             const std::string &request)
        : path_(path) {
        sqlite3 *opened = nullptr;
        const int status = sqlite3_open(path.c_str(), &opened);
        database_.reset(opened);
        if (status != SQLITE_OK)
            fail();
        sqlite3_busy_timeout(opened, 5000);
        run("CREATE TABLE IF NOT EXISTS ostrel_tables (name TEXT PRIMARY KEY, request TEXT NOT NULL)");
        const statement known = prepared("SELECT request FROM ostrel_tables WHERE name = ?1");
        bind(known, 1, table);
        const bool there = step(known);
        if (there && text_of(known, 0) != request)
            throw failure("database \"" + printable(path) + "\": the table \"" + printable(table) +
                          "\" answers another request; choose another name by --table");
        if (!there)
            make(table, columns, request);
        else
            count_rows(table);
        std::string marks = "?1";
        for (std::size_t i = 0; i < columns.size(); ++i)
            marks += ", ?" + std::to_string(i + 2);
        insert_ = prepared("INSERT INTO " + quoted(table) + " VALUES (" + marks + ")");
    }
    std::size_t rows_there() override { return there_; }
    void write(std::size_t first, const std::vector<std::vector<cell>> &rows) override {
        run("BEGIN");
        for (std::size_t i = 0; i < rows.size(); ++i) {
            sqlite3_reset(insert_.get());
            sqlite3_bind_int64(insert_.get(), 1, static_cast<sqlite3_int64>(first) + static_cast<sqlite3_int64>(i));
            for (std::size_t k = 0; k < rows[i].size(); ++k)
                bind(insert_, static_cast<int>(k) + 2, rows[i][k]);
            step(insert_);
        }
        sqlite3_reset(insert_.get());
        run("COMMIT");
    }

private:
    struct closing {
        void operator()(sqlite3 *database) const { sqlite3_close(database); }
        void operator()(sqlite3_stmt *of) const { sqlite3_finalize(of); }
    };
    using statement = std::unique_ptr<sqlite3_stmt, closing>;

    [[noreturn]] void fail() const {
        if (sqlite3_errcode(database_.get()) == SQLITE_CONSTRAINT)
            throw failure("database \"" + printable(path_) + "\": another program is writing this table");
        throw failure("database \"" + printable(path_) + "\": " + sqlite3_errmsg(database_.get()));
    }
    static std::string quoted(const std::string &name) {
        std::string result = "\"";
        for (const char c : name)
            result += c == '"' ? std::string("\"\"") : std::string(1, c);
        return result + '"';
    }
    void run(const char *sql) const {
        if (sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
            fail();
    }
    statement prepared(const std::string &sql) const {
        sqlite3_stmt *made = nullptr;
        if (sqlite3_prepare_v2(database_.get(), sql.c_str(), -1, &made, nullptr) != SQLITE_OK)
            fail();
        return statement(made);
    }
    bool step(const statement &of) const {
        const int status = sqlite3_step(of.get());
        if (status != SQLITE_ROW && status != SQLITE_DONE)
            fail();
        return status == SQLITE_ROW;
    }
    static std::string text_of(const statement &of, int place) {
        const unsigned char *const text = sqlite3_column_text(of.get(), place);
        return text != nullptr ? reinterpret_cast<const char *>(text) : "";
    }
    static void bind(const statement &of, int place, const cell &value) {
        if (const auto *const real = std::get_if<double>(&value))
            sqlite3_bind_double(of.get(), place, *real);
        else if (const auto *const whole = std::get_if<int>(&value))
            sqlite3_bind_int(of.get(), place, *whole);
        else if (const auto *const text = std::get_if<std::string>(&value); text != nullptr && !text->empty())
            sqlite3_bind_text(of.get(), place, text->data(), static_cast<int>(text->size()), SQLITE_TRANSIENT);
        else
            sqlite3_bind_null(of.get(), place);
    }
    void make(const std::string &table, const std::vector<column> &columns, const std::string &request) {
        std::string sql = "CREATE TABLE " + quoted(table) + " (state INTEGER PRIMARY KEY";
        for (const column &head : columns)
            sql += ", " + quoted(head.name);
        run("BEGIN");
        step(prepared(sql + ")"));
        const statement known = prepared("INSERT INTO ostrel_tables VALUES (?1, ?2)");
        bind(known, 1, table);
        bind(known, 2, request);
        step(known);
        run("COMMIT");
    }
    void count_rows(const std::string &table) {
        const statement count = prepared("SELECT count(*) FROM " + quoted(table));
        step(count);
        there_ = static_cast<std::size_t>(sqlite3_column_int64(count.get(), 0));
    }

    std::string path_;
    std::unique_ptr<sqlite3, closing> database_{};
    statement insert_{};
    std::size_t there_ = 0;
};

#endif

} // namespace

std::unique_ptr<table_sink> csv_sink(const std::string &path, const std::vector<column> &columns) {
    return std::make_unique<line_sink>(path, csv_heading(columns), csv_line);
}

std::unique_ptr<table_sink> json_lines_sink(const std::string &path, const std::vector<column> &columns) {
    return std::make_unique<line_sink>(path, "",
                                       [columns](const std::vector<cell> &row) { return json_line(columns, row); });
}

std::unique_ptr<table_sink> sqlite_sink([[maybe_unused]] const std::string &path,
                                        [[maybe_unused]] const std::string &table,
                                        [[maybe_unused]] const std::vector<column> &columns,
                                        [[maybe_unused]] const std::string &request) {
#ifdef OSTREL_WITH_SQLITE
    return std::make_unique<sql_sink>(path, table, columns, request);
#else
    throw failure("this program was built without SQLite");
#endif
}

} // namespace command
