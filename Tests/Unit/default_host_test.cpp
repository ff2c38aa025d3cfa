// SPDX-License-Identifier: MIT
#include "Tests/Support/frame.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <new>

namespace {

using gas_properties::gas;
using support::ask;
using support::failed_open;
using support::fluid_folder;
using support::temporary_folder;

struct default_host : support::frame_test {};

/// The fluid directory of the default host, without trailing blanks.
std::string fluid_path() {
    static std::string directory;
    const ostrel_host listening = {nullptr,
                                   [](const char *text, const char *, char *, std::size_t length, std::size_t,
                                      std::size_t) { directory.assign(text, length); },
                                   nullptr};
    ostrel_use_host(&listening);
    std::int32_t count = -1;
    std::string names(500 * 256, '#');
    ostrel_fluids(&count, names.data(), 256);
    ostrel_use_host(nullptr);
    return directory;
}

/// The names that are found in a directory; the rest of the list must be blank.
std::vector<std::string> search(const std::string &directory) {
    const support::directory_host host(directory);
    std::int32_t count = -1;
    std::string names(500 * 256, '#');
    ostrel_fluids(&count, names.data(), 256);
    std::vector<std::string> result;
    for (std::size_t i = 0; i < 500; ++i) {
        const std::string name = support::without_padding(names.substr(i * 256, 256));
        if (i < static_cast<std::size_t>(count))
            result.push_back(name);
        else
            EXPECT_EQ(name, "") << i;
    }
    return result;
}

std::int32_t fluid_count() {
    std::int32_t count = -1;
    std::string names(500 * 256, '#');
    ostrel_fluids(&count, names.data(), 256);
    return count;
}

/// A directory whose path has exactly the given length, separator included.
std::string deep_directory(const temporary_folder &folder, std::size_t length) {
    std::string directory = folder.path() + "/";
    while (length - directory.size() > 60)
        directory += std::string(29, 'd') + "/";
    directory += std::string(length - directory.size() - 1, 'e') + "/";
    std::filesystem::create_directories(directory);
    EXPECT_EQ(directory.size(), length);
    return directory;
}

// The place of the fluids.

TEST_F(default_host, the_environment_names_the_fluid_directory) {
    const temporary_folder folder;
    folder.write("fluid.osd", support::vapor_file());
    for (const std::string &directory : {folder.path(), folder.path() + "/", folder.path() + "//"}) {
        SCOPED_TRACE(directory);
        support::fresh_frame();
        setenv("OSTREL_FLUIDS", directory.c_str(), 1);
        EXPECT_EQ(fluid_path(), folder.path() + (directory.ends_with("//") ? "//" : "/"));
        EXPECT_EQ(ask("fluid", "td", 500, 2.0, "t").text, "No errors");
        EXPECT_EQ(fluid_count(), 1);
    }
}

TEST_F(default_host, the_environment_is_asked_at_every_load) {
    const temporary_folder folder;
    folder.write("water.osd", support::vapor_file());
    EXPECT_EQ(ask("water", "td", 500, 2.0, "t").text, "No errors");
    EXPECT_EQ(gas.name.trimmed(), "water");
    setenv("OSTREL_FLUIDS", folder.path().c_str(), 1);
    EXPECT_EQ(ask("nitrogen", "td", 500, 2.0, "t").text, failed_open(ENOENT));
    EXPECT_EQ(ask("water", "td", 500, 2.0, "t").text, "No errors");
    EXPECT_EQ(gas.name.trimmed(), "model fluid");
}

TEST_F(default_host, without_the_environment_the_shipped_fluids_are_found) {
    const auto shipped = static_cast<std::int32_t>(support::shipped_fluids().size());
    setenv("OSTREL_FLUIDS", "", 1);
    EXPECT_EQ(ask("toluene", "td", 500, 2.0, "t").text, "No errors");
    EXPECT_EQ(fluid_count(), shipped);
    unsetenv("OSTREL_FLUIDS");
    EXPECT_EQ(ask("water", "td", 500, 2.0, "t").text, "No errors");
    EXPECT_EQ(fluid_count(), shipped);
}

TEST_F(default_host, a_relative_directory_with_blanks_and_other_letters) {
    const temporary_folder folder;
    const std::string before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    for (const std::string name : {"with blanks ", "na\xC3\xAFve", "*"}) {
        SCOPED_TRACE(name);
        support::fresh_frame();
        std::filesystem::create_directory(name);
        std::ofstream(name + "/fluid.osd") << support::vapor_file();
        setenv("OSTREL_FLUIDS", name.c_str(), 1);
        EXPECT_EQ(ask("fluid", "td", 500, 2.0, "t").text, "No errors");
        EXPECT_EQ(fluid_count(), 1);
    }
    std::filesystem::current_path(before);
}

TEST_F(default_host, a_directory_that_is_not_there_has_no_fluids) {
    const temporary_folder folder;
    for (const std::string &directory : {folder.path() + "/missing", folder.write("plain", "text"), folder.path()}) {
        SCOPED_TRACE(directory);
        support::fresh_frame();
        setenv("OSTREL_FLUIDS", directory.c_str(), 1);
        EXPECT_EQ(ask("toluene", "td", 500, 2.0, "t").text,
                  failed_open(directory.ends_with("plain") ? ENOTDIR : ENOENT));
        EXPECT_EQ(fluid_count(), 0);
    }
}

TEST_F(default_host, a_directory_that_does_not_fit_has_no_fluids) {
    const temporary_folder folder;
    // A directory of 256 characters with its separator fits, but the paths of its files do not.
    for (const std::size_t length : {std::size_t{256}, std::size_t{257}, std::size_t{258}, std::size_t{400}}) {
        SCOPED_TRACE(length);
        support::fresh_frame();
        const std::string directory = deep_directory(folder, length);
        std::ofstream(directory + "fluid.osd") << support::vapor_file();
        ASSERT_TRUE(std::filesystem::exists(directory + "fluid.osd"));
        setenv("OSTREL_FLUIDS", directory.c_str(), 1);
        EXPECT_EQ(ask("fluid", "td", 500, 2.0, "t").text, failed_open(ENAMETOOLONG));
        EXPECT_EQ(fluid_count(), length <= 256 ? 1 : 0);
    }
}

TEST_F(default_host, a_directory_that_does_not_fit_is_not_cut_to_another) {
    const temporary_folder folder;
    // If the path were cut at 256 characters and at its blanks, it would be that of the file in the outer directory.
    const std::string outer = deep_directory(folder, 200) + "x";
    const std::string inner = outer + std::string(100, ' ') + "/";
    std::filesystem::create_directories(inner);
    std::ofstream(outer + "fluid.osd") << support::vapor_file();
    setenv("OSTREL_FLUIDS", inner.c_str(), 1);
    EXPECT_EQ(ask("fluid", "td", 500, 2.0, "t").text, failed_open(ENAMETOOLONG));
    // The first 256 characters name the outer directory itself.
    support::fresh_frame();
    const std::string exact = deep_directory(folder, 256);
    std::ofstream(exact + "fluid.osd") << support::vapor_file();
    std::filesystem::create_directory(exact + "deeper");
    setenv("OSTREL_FLUIDS", (exact + "deeper").c_str(), 1);
    EXPECT_EQ(ask("fluid", "td", 500, 2.0, "t").text, failed_open(ENAMETOOLONG));
    EXPECT_EQ(fluid_count(), 0);
}

TEST_F(default_host, a_path_has_at_most_256_characters) {
    const temporary_folder folder;
    const std::string directory = deep_directory(folder, 246);
    setenv("OSTREL_FLUIDS", directory.c_str(), 1);
    std::ofstream(directory + "sixsix.osd") << support::vapor_file();
    std::ofstream(directory + "seven77.osd") << support::vapor_file();
    EXPECT_EQ((directory + "sixsix.osd").size(), 256U);
    EXPECT_EQ(ask("sixsix", "td", 500, 2.0, "t").text, "No errors");
    EXPECT_EQ(ask("seven77", "td", 500, 2.0, "t").text, failed_open(ENAMETOOLONG));
    EXPECT_EQ(fluid_count(), 2);
}

// The list of fluids.

TEST_F(default_host, searches_regular_files_in_byte_order) {
    const temporary_folder folder;
    for (const char *name : {"b.osd", "a.osd", "B.osd", "a.b.osd", "a-b.osd", "\xC3\xA9.osd", ".osd", "10.osd", "9.osd",
                             "other.txt", "osd", "c.OSD", "d.osd.bak", "e.osd ", "f_osd"})
        folder.write(name, "x");
    std::filesystem::create_directory(folder.path() + "/sub.osd");
    folder.write("sub.osd/inner.osd", "x");
    std::filesystem::create_symlink(folder.path() + "/b.osd", folder.path() + "/link.osd");
    std::filesystem::create_symlink("missing", folder.path() + "/dangling.osd");
    std::filesystem::create_symlink(".", folder.path() + "/loop.osd");
    const std::vector<std::string> expected = {"10", "9", "B", "a-b", "a", "a", "b", "link", "\xC3\xA9"};
    for (const char *separator : {"", "/", "/   "})
        EXPECT_EQ(search(folder.path() + separator), expected);
}

TEST_F(default_host, a_search_that_fails_finds_nothing) {
    const temporary_folder folder;
    const std::string file = folder.write("a.osd", "x");
    for (const std::string &directory : {file, folder.path() + "/missing", std::string(), std::string("   "),
                                         std::string(256, 'd'), std::string("\0/", 2)})
        EXPECT_EQ(search(directory), std::vector<std::string>());
}

TEST_F(default_host, lists_the_first_500_files) {
    const fluid_folder fluids;
    for (int i = 1599; i >= 1000; --i)
        fluids.add(std::to_string(i), "x");
    const std::vector<std::string> found = search(fluids.path());
    ASSERT_EQ(found.size(), 500U);
    EXPECT_EQ(found.front(), "1000");
    EXPECT_EQ(found.back(), "1499");
    EXPECT_EQ(fluid_count(), 500);
}

TEST_F(default_host, the_longest_file_name_is_listed_whole) {
    const fluid_folder fluids;
    const std::string longest(251, 'n');
    fluids.add(longest, "x");
    EXPECT_EQ(search(fluids.path()), std::vector<std::string>{longest});
}

// A name must never lead out of the directory.

TEST_F(default_host, a_name_never_opens_a_file_of_another_directory) {
    const temporary_folder folder;
    const std::string inside = folder.path() + "/fluids";
    std::filesystem::create_directories(inside + "/sub");
    for (const char *place : {"outside.osd", "fluids/sub/inner.osd", "fluids/fluid.osd", ".osd", "fluids/sub/.osd"})
        folder.write(place, support::vapor_file());
    setenv("OSTREL_FLUIDS", inside.c_str(), 1);
    using std::string_literals::operator""s;
    const struct {
        const char *what;
        std::string name;
        int code;
    } cases[] = {
        {"parent", "../outside", ENOENT},
        {"back again", "../fluids/fluid", ENOENT},
        {"here", "./fluid", ENOENT},
        {"subdirectory", "sub/inner", ENOENT},
        {"absolute", folder.path() + "/outside", ENOENT},
        {"root", "/", ENOENT},
        {"parent alone", "..", ENOENT},
        {"here alone", ".", ENOENT},
        {"parent's nameless file", "../", ENOENT},
        {"NUL behind the name", "fluid\0"s, ENOENT},
        {"NUL before the extension", "fluid.osd\0"s, ENOENT},
        {"NUL and a directory", "fluid.osd\0/x"s, ENOENT},
        {"NUL first", "\0fluid"s, ENOENT},
        {"only a NUL", "\0"s, ENOENT},
        {"leading blank", " fluid", ENOENT},
        {"leading blanks and a parent", "   ../outside", ENOENT},
        {"line end", "fluid\n", ENOENT},
        {"tab", "fluid\t", ENOENT},
        {"extension", "fluid.osd", ENOENT},
        {"backslash", "..\\outside", ENOENT},
        {"pattern", "flu*", ENOENT},
        {"home", "~", ENOENT},
        {"variable", "$HOME", ENOENT},
        {"non-ASCII", "fl\xC3\xBCid", ENOENT},
        {"broken UTF-8", "\xFF\xFE\x80", ENOENT},
        {"10000 characters", std::string(10000, 'x'), ENAMETOOLONG},
        {"10000 steps up",
         [] {
             std::string up;
             for (int i = 0; i < 3333; ++i)
                 up += "../";
             return up;
         }(),
         ENAMETOOLONG},
        {"10000 NULs", std::string(10000, '\0'), ENAMETOOLONG},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        support::fresh_frame();
        setenv("OSTREL_FLUIDS", inside.c_str(), 1);
        const auto answer = ask(c.name, "td", 500, 2.0, "t");
        EXPECT_EQ(answer.text, failed_open(c.code));
        EXPECT_EQ(answer.value, -8888.8);
        EXPECT_EQ(gas.MM, 0);
    }
    EXPECT_EQ(ask("fluid", "td", 500, 2.0, "t").text, "No errors");
}

TEST_F(default_host, names_of_any_bytes_open_the_file_of_that_name) {
    const fluid_folder fluids;
    for (const std::string name :
         {"fl\xC3\xBCid", "a b", "..", "...", "-x", "\xFF\xFE", "two\nlines", "~", "$HOME", "*"}) {
        SCOPED_TRACE(name);
        fluids.add(name, support::vapor_file());
        support::fresh_frame();
        setenv("OSTREL_FLUIDS", fluids.path().c_str(), 1);
        EXPECT_EQ(ask(name, "td", 500, 2.0, "t").text, "No errors");
    }
}

TEST_F(default_host, the_names_of_the_index_are_no_names_of_files) {
    for (const std::string name : {"methylbenzene", "C7H8", "108-88-3", "R-134a", "r 134a", "carbon dioxide"}) {
        SCOPED_TRACE(name);
        support::fresh_frame(support::shipped_folder);
        EXPECT_EQ(ask(name, "td", 500, 2.0, "t").text, failed_open(2));
    }
    EXPECT_EQ(ask("toluene", "td", 500, 2.0, "t").text, "No errors");
}

// Another host.

std::int32_t no_fluid(const char *, const char *, char *, std::int32_t *found, std::size_t, std::size_t, std::size_t) {
    *found = 0;
    return 0;
}
std::int32_t database_asked = 0;
std::int32_t counted_getfluid(const char *, const char *, char *, std::int32_t *found, std::size_t, std::size_t,
                              std::size_t) {
    ++database_asked;
    *found = 0;
    return 0;
}
void one_name(const char *, const char *, char *names, std::size_t, std::size_t, std::size_t name_len) {
    records::fill_text({names, name_len}, {"theirs.osd"});
}

TEST_F(default_host, is_replaced_at_run_time_as_a_whole_or_in_part) {
    const temporary_folder theirs;
    theirs.write("only.osd", support::vapor_file());
    const auto shipped = static_cast<std::int32_t>(support::shipped_fluids().size());
    const auto database_calls = [] {
        const std::int32_t before = database_asked;
        read_init_fluiddatadb("x", "y", 1, 1);
        return database_asked - before;
    };
    const support::directory_host directory(theirs.path() + "/");
    const auto fluidpath = support::directory_host::fluidpath;
    const struct {
        const char *what;
        ostrel_host table;
        std::int32_t fluids;
        bool has_only;
        std::int32_t database_calls;
    } cases[] = {
        {"all", {fluidpath, one_name, counted_getfluid}, 1, true, 1},
        {"directory", {fluidpath, nullptr, nullptr}, 1, true, 0},
        {"search", {nullptr, one_name, nullptr}, 1, false, 0},
        {"database", {nullptr, nullptr, counted_getfluid}, shipped, false, 1},
        {"another database", {nullptr, nullptr, no_fluid}, shipped, false, 0},
        {"none", {nullptr, nullptr, nullptr}, shipped, false, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        support::fresh_frame(support::shipped_folder);
        {
            ostrel_host copied = c.table;
            ostrel_use_host(&copied);
            copied = {};
        }
        EXPECT_EQ(fluid_count(), c.fluids);
        EXPECT_EQ(ask("only", "td", 500, 2.0, "t").ok(), c.has_only);
        EXPECT_EQ(ask("toluene", "td", 500, 2.0, "t").ok(), !c.has_only);
        EXPECT_EQ(database_calls(), c.database_calls);
        ostrel_use_host(nullptr);
        EXPECT_EQ(fluid_count(), shipped);
        EXPECT_EQ(ask("water", "td", 500, 2.0, "t").text, "No errors");
        EXPECT_EQ(database_calls(), 0);
    }
}

TEST_F(default_host, a_host_that_writes_nothing_answers_blanks) {
    const ostrel_host silent = {[](char *, const char *, std::size_t, std::size_t) {},
                                [](const char *, const char *, char *, std::size_t, std::size_t, std::size_t) {},
                                [](const char *, const char *, char *, std::int32_t *, std::size_t, std::size_t,
                                   std::size_t) -> std::int32_t { return 1; }};
    ostrel_use_host(&silent);
    EXPECT_EQ(fluid_count(), 0);
    EXPECT_EQ(ask("toluene", "td", 500, 2.0, "t").text, failed_open(ENOENT));
    ideal_specific_heat::errmsg.reset();
    read_init_fluiddatadb("x", "y", 1, 1);
    EXPECT_EQ(support::shared_text(), " Error in Ostrel: error opening fluid y") << "found was not set";
}

TEST_F(default_host, a_host_may_end_its_fields_with_a_NUL) {
    static std::string directory;
    const temporary_folder folder;
    folder.write("fluid.osd", support::vapor_file());
    directory = folder.path() + "/";
    const auto copy = [](char *field, const std::string &text) { std::copy_n(text.c_str(), text.size() + 1, field); };
    static const auto put = copy;
    const ostrel_host host = {
        [](char *path, const char *, std::size_t path_len, std::size_t) {
            std::fill_n(path, path_len, 'x');
            put(path, directory);
        },
        [](const char *, const char *, char *names, std::size_t, std::size_t, std::size_t) { put(names, "fluid.osd"); },
        [](const char *, const char *, char *lines, std::int32_t *found, std::size_t, std::size_t,
           std::size_t line_len) -> std::int32_t {
            std::istringstream in(support::vapor_file());
            for (std::string line; std::getline(in, line); lines += line_len)
                put(lines, line);
            return *found = 1;
        }};
    ostrel_use_host(&host);
    EXPECT_EQ(ask("fluid", "td", 500, 2.0, "t").text, "No errors");
    EXPECT_EQ(fluid_count(), 1);
    read_init_fluiddatadb("x", "y", 1, 1);
    EXPECT_EQ(support::shared_text(), "No errors");
    EXPECT_EQ(std::string(gas.name.padded()), "model fluid                     ");
}

void expect_failed_calls(const std::string &text) {
    const auto answer = ask("toluene", "td", 500, 2.0, "t");
    EXPECT_EQ(answer.text, text);
    EXPECT_EQ(answer.value, -8888.8);
    const auto constant = support::ask_info("water", "m_mol");
    EXPECT_EQ(constant.text, text);
    EXPECT_EQ(constant.value, 0);
    EXPECT_EQ(fluid_count(), 0);
    for (const bool from_file : {true, false}) {
        ideal_specific_heat::errmsg.reset();
        if (from_file)
            read_init_fluiddata("x", 1);
        else
            read_init_fluiddatadb("x", "y", 1, 1);
        EXPECT_EQ(support::shared_text(), text);
    }
}

TEST_F(default_host, a_host_that_throws_fails_the_call) {
    const ostrel_host throwing = {[](char *, const char *, std::size_t, std::size_t) { throw 1; }, nullptr,
                                  [](const char *, const char *, char *, std::int32_t *, std::size_t, std::size_t,
                                     std::size_t) -> std::int32_t { throw std::runtime_error("x"); }};
    ostrel_use_host(&throwing);
    expect_failed_calls("Ostrel error: a host routine threw an exception.");
}

TEST_F(default_host, a_host_without_memory_fails_the_call) {
    const ostrel_host throwing = {[](char *, const char *, std::size_t, std::size_t) { throw std::bad_alloc(); },
                                  nullptr,
                                  [](const char *, const char *, char *, std::int32_t *, std::size_t, std::size_t,
                                     std::size_t) -> std::int32_t { throw std::bad_alloc(); }};
    ostrel_use_host(&throwing);
    expect_failed_calls("Ostrel error: out of memory.");
}

TEST_F(default_host, a_host_that_fills_the_path_leaves_no_room_for_a_name) {
    const support::directory_host host(std::string(256, '/'));
    EXPECT_EQ(ask("toluene", "td", 500, 2.0, "t").text, failed_open(ENAMETOOLONG));
}

} // namespace
