// SPDX-License-Identifier: MIT
#include "Tests/Support/frame.h"

#ifdef OSTREL_WITH_SQLITE
#include <chrono>
#include <memory>
#include <sqlite3.h>
#include <sys/stat.h>
#endif

namespace {

using gas_properties::gas;
using support::shared_text;

struct fluid_database_ : support::frame_test {};

void read_database(std::string_view location, std::string_view name) {
    ideal_specific_heat::errmsg.reset();
    read_init_fluiddatadb(location.data(), name.data(), location.size(), name.size());
}

std::string not_found(std::string_view name) {
    return " Error in Ostrel: error opening fluid " + std::string(name);
}
std::string too_large(std::string_view name, const std::string &reason) {
    return not_found(name) + ": " + reason + ".";
}

#ifdef OSTREL_WITH_SQLITE

/// A new database file, made by the given statements.
class database : public support::temporary_folder {
public:
    explicit database(const std::string &statements = "CREATE TABLE fluid(name TEXT PRIMARY KEY, text TEXT NOT NULL)") {
        sqlite3 *opened = nullptr;
        EXPECT_EQ(sqlite3_open(location().c_str(), &opened), SQLITE_OK);
        connection_.reset(opened);
        execute(statements);
    }
    void execute(const std::string &statements) const {
        EXPECT_EQ(sqlite3_exec(connection_.get(), statements.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    }
    std::string location() const { return path() + "/fluids.db"; }
    void add(const std::string &name, const std::string &text, bool as_blob = false) const {
        sqlite3_stmt *prepared = nullptr;
        ASSERT_EQ(sqlite3_prepare_v2(connection_.get(), "INSERT INTO fluid VALUES(?1, ?2)", -1, &prepared, nullptr),
                  SQLITE_OK);
        sqlite3_bind_text(prepared, 1, name.data(), static_cast<int>(name.size()), SQLITE_TRANSIENT);
        const auto bind =
            as_blob ? sqlite3_bind_blob(prepared, 2, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT)
                    : sqlite3_bind_text(prepared, 2, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        EXPECT_EQ(bind, SQLITE_OK);
        EXPECT_EQ(sqlite3_step(prepared), SQLITE_DONE);
        sqlite3_finalize(prepared);
    }

private:
    std::unique_ptr<sqlite3, int (*)(sqlite3 *)> connection_{nullptr, sqlite3_close};
};

/// The text of a fluid with one line replaced.
std::string with_line(std::size_t number, const std::string &line) {
    std::istringstream in(support::vapor_file());
    std::string result;
    std::size_t i = 0;
    for (std::string old; std::getline(in, old); ++i)
        result += (i == number ? line : old) + "\n";
    return result;
}

TEST_F(fluid_database_, reads_a_fluid) {
    const database fluids;
    fluids.add("fluid", support::vapor_file("8\n0.9\n"));
    fluids.add("other", support::reference_file());
    read_database(fluids.location(), "fluid");
    EXPECT_EQ(shared_text(), "No errors");
    EXPECT_EQ(gas.name.trimmed(), "model fluid");
    EXPECT_EQ(ideal_Z_gas::active.Z_const, 0.9);
    read_database(fluids.location() + "   ", "other     ");
    EXPECT_EQ(shared_text(), "No errors");
    EXPECT_EQ(gas.name.trimmed(), "reference fluid");
    thermodynamics::init_thermodynamics();
    EXPECT_EQ(shared_text(), "No errors");
    EXPECT_EQ(gas.Z_ref, 1);
}

TEST_F(fluid_database_, a_file_and_a_database_of_the_same_text_give_the_same_numbers) {
    // Only models without records of their own have the same text in both.
    const std::string text = support::file_text(OSTREL_TESTS "/../Fluids/toluene.osd");
    const database fluids;
    fluids.add("toluene", text);
    const double from_file = support::ask("toluene", "td", 500, 2.0, "s").value;
    support::fresh_frame();
    read_database(fluids.location(), "toluene");
    thermodynamics::init_thermodynamics();
    EXPECT_EQ(support::ask("", "td", 500, 2.0, "s").value, from_file);
}

TEST_F(fluid_database_, names_are_looked_up_as_they_are) {
    const database fluids;
    fluids.add("fluid", support::vapor_file());
    fluids.add(" led", support::vapor_file());
    fluids.add("na\xC3\xAFve", support::vapor_file());
    fluids.add("o'ne", support::vapor_file());
    const struct {
        std::string name;
        bool found;
    } cases[] = {
        {"fluid   ", true},
        {"FLUID", false},
        {"led", false},
        {" led", true},
        {"na\xC3\xAFve", true},
        {"o'ne", true},
        {"' OR '1'='1", false},
        {"%", false},
        {"", false},
        {"fluid\n", false},
        {std::string("fluid\0", 6), false},
        {std::string(10000, 'f'), false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name.substr(0, 20));
        read_database(fluids.location(), c.name);
        EXPECT_EQ(shared_text(),
                  c.found ? "No errors"
                          : support::without_padding(not_found(support::without_padding(c.name)).substr(0, 256)));
    }
}

TEST_F(fluid_database_, what_is_no_database_is_reported_and_changes_nothing) {
    const database no_table("CREATE TABLE gas(name TEXT PRIMARY KEY, text TEXT NOT NULL)");
    const database other_columns("CREATE TABLE fluid(id TEXT, value TEXT); INSERT INTO fluid VALUES('fluid', 'x')");
    const database null_text("CREATE TABLE fluid(name TEXT, text TEXT); INSERT INTO fluid VALUES('fluid', NULL)");
    const database good;
    good.add("fluid", support::vapor_file());
    const database endless("CREATE VIEW fluid AS WITH RECURSIVE counter(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM "
                           "counter) SELECT 'gas' || x AS name, 'x' AS text FROM counter");
    const support::temporary_folder folder;
    ASSERT_EQ(mkfifo((folder.path() + "/pipe.db").c_str(), 0600), 0);
    const std::string whole = support::file_text(good.location());
    ASSERT_GT(whole.size(), 5000U);
    const struct {
        const char *what;
        std::string location;
    } cases[] = {
        {"no table", no_table.location()},
        {"other columns", other_columns.location()},
        {"no text", null_text.location()},
        {"a view without an end", endless.location()},
        {"pipe", folder.path() + "/pipe.db"},
        {"missing file", folder.path() + "/missing.db"},
        {"missing folder", folder.path() + "/missing/fluids.db"},
        {"directory", folder.path()},
        {"empty location", ""},
        {"blank location", "    "},
        {"empty file", folder.write("empty.db", "")},
        {"text", folder.write("text.db", support::vapor_file())},
        {"cut", folder.write("cut.db", std::string_view(whole).substr(0, 4500))},
        {"broken header", folder.write("header.db", "X" + whole.substr(1))},
        {"broken page", folder.write("page.db", whole.substr(0, 100) + std::string(whole.size() - 100, '\xFF'))},
        {"with a NUL", good.location() + std::string("\0x", 2)},
        {"long", "/" + std::string(10000, 'd')},
        {"in memory", ":memory:"},
    };
    read_database(good.location(), "fluid");
    ASSERT_EQ(shared_text(), "No errors");
    gas.MM = -5;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        read_database(c.location, "fluid ");
        EXPECT_EQ(shared_text(), not_found("fluid"));
        EXPECT_EQ(gas.MM, -5);
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path() + "/missing.db")) << "made by asking for it";
}

TEST_F(fluid_database_, a_line_has_at_most_255_characters) {
    const std::string filler(300, '-');
    const struct {
        std::size_t length;
        bool fits;
    } cases[] = {{254, true}, {255, true}, {256, false}, {10000, false}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.length);
        const database fluids;
        std::string line = "20.0 ";
        line.resize(c.length, '-');
        fluids.add("fluid", with_line(4, line));
        fluids.add("windows", with_line(4, line + "\r"));
        // The number ends in the last column, or would end behind it.
        std::string at_end(c.length - 4, ' ');
        fluids.add("at_end", with_line(4, at_end + "20.5"));
        for (const char *name : {"fluid", "windows", "at_end"}) {
            gas.MM = -5;
            read_database(fluids.location(), name);
            EXPECT_EQ(shared_text(),
                      c.fits ? "No errors"
                             : too_large(name, "line 5 is longer than the 255 characters of a database line"));
            EXPECT_EQ(gas.MM, !c.fits ? -5 : name == std::string("at_end") ? 20.5 : 20.0);
        }
    }
}

TEST_F(fluid_database_, trailing_blanks_of_a_name_do_not_stand_before_the_reason) {
    const database fluids;
    fluids.add("fluid", with_line(4, std::string(256, '-')));
    read_database(fluids.location(), "fluid   ");
    EXPECT_EQ(shared_text(), too_large("fluid", "line 5 is longer than the 255 characters of a database line"));
}

TEST_F(fluid_database_, a_text_has_at_most_255_lines) {
    const std::string text = support::vapor_file();
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    const struct {
        std::size_t count;
        const char *end;
        bool fits;
    } cases[] = {{254, "x", true},  {254, "\n", true},  {254, "x\n", true}, {255, "", true},
                 {255, "x", false}, {255, "\n", false}, {10000, "", false}};
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.count) + " " + c.end);
        const database fluids;
        fluids.add("fluid", text + std::string(c.count - lines, '\n') + c.end);
        gas.MM = -5;
        read_database(fluids.location(), "fluid");
        const std::size_t all = c.count + (*c.end != '\0' ? 1 : 0);
        EXPECT_EQ(shared_text(),
                  c.fits ? "No errors"
                         : too_large("fluid", std::to_string(all) + " lines, where a database text has room for 255"));
        EXPECT_EQ(gas.MM, c.fits ? 20 : -5);
    }
}

// A number with a NUL in it reads the same from a file and from a database: not at all.
TEST_F(fluid_database_, every_byte_of_a_line_counts) {
    const std::string line("92\0.14", 6);
    const std::string wanted = "expected MM (a real), found \"92?.14\".";
    const database fluids;
    fluids.add("fluid", with_line(4, line));
    read_database(fluids.location(), "fluid");
    EXPECT_EQ(shared_text(), "Ostrel error: fluid database, fluid, record 5: " + wanted);
    ideal_specific_heat::errmsg.reset();
    const std::string path = fluids.write("fluid.osd", with_line(4, line));
    read_init_fluiddatafile(path.data(), path.size());
    EXPECT_EQ(shared_text(), "Ostrel error: file fluid.osd, record 5: " + wanted);
}

TEST_F(fluid_database_, line_ends_of_either_kind) {
    const std::string text = support::vapor_file();
    std::string windows;
    for (const char c : text)
        windows += c == '\n' ? std::string("\r\n") : std::string(1, c);
    const database fluids;
    fluids.add("windows", windows);
    fluids.add("no_end", text.substr(0, text.size() - 1));
    fluids.add("blob", text, true);
    for (const char *name : {"windows", "no_end", "blob"}) {
        SCOPED_TRACE(name);
        support::fresh_frame();
        read_database(fluids.location(), name);
        EXPECT_EQ(shared_text(), "No errors");
        EXPECT_EQ(std::string(gas.name.padded()), "model fluid                     ");
        EXPECT_EQ(transport_properties::active.kk_const, 0.02);
    }
}

TEST_F(fluid_database_, an_empty_text_has_no_records) {
    const database fluids;
    fluids.add("empty", "");
    fluids.add("short", "heading\nname\nlabel\nheading\n");
    for (const std::string name : {"empty", "short"}) {
        read_database(fluids.location(), name);
        EXPECT_EQ(shared_text(), "Ostrel error: fluid database, " + name +
                                     ", record 5: expected MM (a real), found the end of the line.");
    }
}

TEST_F(fluid_database_, that_is_locked_is_not_waited_for_for_long) {
    const database fluids;
    fluids.add("fluid", support::vapor_file());
    fluids.execute("BEGIN EXCLUSIVE");
    const auto start = std::chrono::steady_clock::now();
    read_database(fluids.location(), "fluid");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_EQ(shared_text(), not_found("fluid"));
    fluids.execute("COMMIT");
    read_database(fluids.location(), "fluid");
    EXPECT_EQ(shared_text(), "No errors");
}

TEST_F(fluid_database_, is_only_read) {
    const database fluids;
    fluids.add("fluid", support::vapor_file());
    const std::string before = support::file_text(fluids.location());
    std::filesystem::permissions(fluids.location(), std::filesystem::perms::owner_read);
    read_database(fluids.location(), "fluid");
    EXPECT_EQ(shared_text(), "No errors");
    EXPECT_EQ(support::file_text(fluids.location()), before);
}

#else

TEST_F(fluid_database_, is_not_built_in) {
    const support::temporary_folder folder;
    read_database(folder.write("fluids.db", ""), "fluid");
    EXPECT_EQ(shared_text(), not_found("fluid"));
    EXPECT_EQ(gas.MM, 0);
}

#endif

} // namespace
