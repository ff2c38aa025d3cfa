// SPDX-License-Identifier: MIT
#include "Tests/Support/allocations.h"
#include "Tests/Support/entry_points.h"
#include "Tests/Support/handles.h"

#ifdef OSTREL_WITH_SQLITE
#include <sqlite3.h>
#endif

#include <cmath>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace {

using support::bits;
using support::handle;
using support::outcome;
using support::temporary_folder;
using testing::AllOf;
using testing::HasSubstr;

constexpr std::string_view heading = "file,name,aliases,refrigerant,formula,cas,family,Tt,cp_Tmin,cp_Tmax\n";

/// A fluid folder with an index.
struct opening : testing::Test {
    opening() {
        place.write("index.csv", std::string(heading) +
                                     "nbutane,n-butane,butane; Käse öl,R600,C4H10,106-97-8,a,134.895,200,1000\n"
                                     "isobutan,isobutane,,R600a,C4H10,75-28-5,b,,,\n"
                                     "\"quoted\",a quoted file,,,X2,,b,12.5,,\n"
                                     "propane,propane,,R290,C3H8,74-98-6,a,85.525,250,900\n");
        for (const char *const file : {"nbutane", "isobutan", "propane", "quoted", "own"})
            place.add(file, support::vapor_file());
        place.add("broken", "names\nx\ny\nconstants\nbad\n");
    }
    support::fluid_folder place;
    handle fluid;

    std::string file_of(const char *name) {
        const outcome result = fluid.open(name);
        return result.status == OSTREL_OK ? fluid.text("source") : result.message;
    }
    std::string in_folder(const char *file) const { return place.path() + '/' + file + ".osd"; }
};

TEST_F(opening, by_any_of_its_names) {
    for (const char *const name :
         {"nbutane", "n-butane", "N Butane", "butane", "Käse öl", "KÄSE-ÖL", "R600", "r-600", "106-97-8", "106978"})
        EXPECT_EQ(file_of(name), in_folder("nbutane")) << name;
    EXPECT_EQ(file_of("C3H8"), in_folder("propane"));
    EXPECT_EQ(file_of("own"), in_folder("own"));
    EXPECT_EQ(file_of("OWN"), in_folder("own"));
}

TEST_F(opening, the_exact_name_of_a_file_comes_first) {
    place.add("Propane", support::vapor_file());
    EXPECT_EQ(file_of("propane"), in_folder("propane"));
    EXPECT_EQ(file_of("Propane"), in_folder("Propane"));
}

TEST_F(opening, an_ambiguous_name_names_all) {
    const auto [status, message] = fluid.open("C4H10");
    EXPECT_EQ(status, OSTREL_CANNOT_OPEN);
    EXPECT_THAT(message,
                AllOf(HasSubstr("\"C4H10\""), HasSubstr("nbutane (n-butane)"), HasSubstr("isobutan (isobutane)")));
}

TEST_F(opening, an_unknown_name_names_the_nearest_three) {
    for (const auto &[name, nearest] : {std::pair("propan", "propane, "), std::pair("buatne", "nbutane (n-butane), "),
                                        std::pair("propane.osd", "propane, "), std::pair("something else", ""),
                                        std::pair("", ""), std::pair("../broke", "broken, "), std::pair("-", "")}) {
        const auto [status, message] = fluid.open(name);
        EXPECT_EQ(status, OSTREL_CANNOT_OPEN) << name;
        EXPECT_THAT(message, AllOf(HasSubstr('"' + std::string(name) + '"'), HasSubstr(place.path()),
                                   HasSubstr(std::string("did you mean ") + nearest)));
        const std::string_view list = std::string_view(message).substr(message.find("did you mean"));
        EXPECT_NE(list.find(", "), list.npos) << message;
        EXPECT_NE(list.find(" or "), list.npos) << message;
    }
}

// Three names that are spelt alike leave no room for others.
TEST_F(opening, names_that_are_spelt_alike_come_first) {
    for (const char *const file : {"tracera", "tracerb", "tracerc"})
        place.add(file, support::vapor_file());
    const auto [status, message] = fluid.open("tracer");
    EXPECT_EQ(status, OSTREL_CANNOT_OPEN);
    EXPECT_THAT(message, AllOf(HasSubstr("did you mean tracera"), HasSubstr(", tracerb"), HasSubstr(" or tracerc")));
}

TEST_F(opening, names_do_not_leave_the_folder) {
    const temporary_folder other;
    const std::string path = other.write("secret.osd", support::vapor_file());
    EXPECT_EQ(fluid.open(path.substr(0, path.size() - 4).c_str()).status, OSTREL_CANNOT_OPEN);
}

TEST_F(opening, a_folder_without_fluids) {
    const temporary_folder empty;
    setenv("OSTREL_FLUIDS", empty.path().c_str(), 1);
    EXPECT_EQ(fluid.open("propane").status, OSTREL_CANNOT_OPEN);
    EXPECT_THAT(fluid.open("propane").message, AllOf(HasSubstr("no parameter files"), HasSubstr(empty.path())));
    setenv("OSTREL_FLUIDS", (empty.path() + "/none").c_str(), 1);
    EXPECT_EQ(fluid.open("propane").status, OSTREL_CANNOT_OPEN);
}

TEST_F(opening, reads_the_environment_each_time) {
    const temporary_folder other;
    other.write("propane.osd", support::vapor_file());
    EXPECT_EQ(file_of("propane"), in_folder("propane"));
    setenv("OSTREL_FLUIDS", other.path().c_str(), 1);
    EXPECT_EQ(file_of("propane"), other.path() + "/propane.osd");
}

TEST_F(opening, does_not_ask_the_replaced_host) {
    const ostrel_host host = {
        [](char *path, const char *, std::size_t length, std::size_t) { std::fill(path, path + length, 'x'); },
        [](const char *, const char *, char *, std::size_t, std::size_t, std::size_t) {},
        [](const char *, const char *, char *, std::int32_t *, std::size_t, std::size_t, std::size_t) {
            return std::int32_t{0};
        }};
    ostrel_use_host(&host);
    EXPECT_EQ(file_of("propane"), in_folder("propane"));
    ostrel_use_host(nullptr);
}

TEST_F(opening, facts_of_the_index) {
    ASSERT_EQ(fluid.open("nbutane").message, "");
    EXPECT_EQ(fluid.constant("t_triple"), 134.895);
    EXPECT_EQ(fluid.constant("t_cp_min"), 200);
    EXPECT_EQ(fluid.constant("t_cp_max"), 1000);
    EXPECT_EQ(fluid.text("formula"), "C4H10");
    EXPECT_EQ(fluid.text("cas"), "106-97-8");
    EXPECT_EQ(fluid.text("aliases"), "butane; Käse öl");
    // The row of a file is found however it is written, and by whatever name the fluid is opened.
    ASSERT_EQ(fluid.open("quoted").message, "");
    EXPECT_EQ(fluid.constant("t_triple"), 12.5);
    ASSERT_EQ(fluid.open("R290").message, "");
    EXPECT_EQ(fluid.constant("t_cp_max"), 900);
    // What is unknown is NaN or empty.
    for (const char *const name : {"isobutan", "own"}) {
        ASSERT_EQ(fluid.open(name).message, "");
        for (const char *const constant : {"t_triple", "t_cp_min", "t_cp_max"})
            EXPECT_EQ(bits(fluid.constant(constant)), support::bits_of_nan);
        EXPECT_EQ(fluid.text("aliases"), "");
    }
}

TEST_F(opening, fluids_from_elsewhere_have_no_facts) {
    const auto no_facts = [&] {
        EXPECT_EQ(bits(fluid.constant("t_triple")), support::bits_of_nan);
        EXPECT_EQ(fluid.text("formula"), "");
    };
    ASSERT_EQ(fluid.open_file(in_folder("nbutane")).message, "");
    no_facts();
    ASSERT_EQ(fluid.open_text(support::vapor_file()).message, "");
    no_facts();
}

TEST_F(opening, a_damaged_index_is_as_if_it_were_not_there) {
    for (const std::string &index : {std::string(), std::string("x,y\n1,2\n"), std::string(heading) + "propane",
                                     std::string("\n\n\n"), std::string(heading.substr(5)) + "propane,x\n"}) {
        place.write("index.csv", index);
        EXPECT_EQ(file_of("propane"), in_folder("propane"));
        EXPECT_EQ(bits(fluid.constant("t_triple")), support::bits_of_nan);
    }
}

TEST_F(opening, files_that_cannot_be_opened) {
    for (const auto &[path, reason] : {std::pair(place.path() + "/none.osd", "no such file"),
                                       std::pair(std::string(), "no such file"), std::pair(place.path(), "a folder")}) {
        const auto [status, message] = fluid.open_file(path);
        EXPECT_EQ(status, OSTREL_CANNOT_OPEN);
        EXPECT_THAT(message, AllOf(HasSubstr('"' + path + '"'), HasSubstr(reason)));
    }
    const std::string below_a_file = in_folder("broken") + "/x.osd";
    EXPECT_THAT(fluid.open_file(below_a_file).message, HasSubstr("it cannot be read, error"));
    const std::string large = place.path() + "/large.osd";
    std::ofstream(large).close();
    std::filesystem::resize_file(large, 1U << 30U); // has no blocks on the disk
    EXPECT_THAT(fluid.open_file(large).message, HasSubstr("it is too large"));
    const std::string pipe = place.path() + "/pipe.osd";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(fluid.open_file(pipe).status, OSTREL_CANNOT_OPEN);
    EXPECT_EQ(fluid.open("pipe").status, OSTREL_CANNOT_OPEN);
}

TEST_F(opening, broken_parameters_have_the_message_of_the_reader) {
    for (const outcome &result : {fluid.open("broken"), fluid.open_file(in_folder("broken"))}) {
        EXPECT_EQ(result.status, OSTREL_BAD_FILE);
        EXPECT_EQ(result.message, "Ostrel error: file broken.osd, record 5: expected MM (a real), found \"bad\".");
    }
    EXPECT_EQ(fluid.open_text("names\nx\ny\nconstants\nbad\n").message,
              "Ostrel error: text, record 5: expected MM (a real), found \"bad\".");
    EXPECT_EQ(fluid.open_text("").status, OSTREL_BAD_FILE);
    place.add("empty", "");
    EXPECT_EQ(fluid.open_file(in_folder("empty")).message,
              "Ostrel error: file empty.osd, record 1: expected a heading, found the end of the file.");
    EXPECT_EQ(fluid.open_text("\n").status, OSTREL_BAD_FILE);
}

TEST_F(opening, a_text_is_read_like_a_file) {
    const std::string text = support::vapor_file();
    std::string with_returns;
    for (const char c : text)
        with_returns += c == '\n' ? std::string("\r\n") : std::string(1, c);
    ASSERT_EQ(fluid.open_text(text).message, "");
    const double m_mol = fluid.constant("m_mol");
    EXPECT_EQ(m_mol, 0.02);
    EXPECT_EQ(fluid.text("text"), text);
    EXPECT_EQ(fluid.text("source"), "text");
    ASSERT_EQ(fluid.open_text(with_returns).message, "");
    EXPECT_EQ(fluid.text("text"), with_returns);
    EXPECT_EQ(fluid.text("label"), "label");
    // Values may stand in the records that follow.
    ASSERT_EQ(fluid.open_text(support::vapor_section + "\n\n7\n" + support::constant_heat + support::constant_transport)
                  .message,
              "");
    EXPECT_EQ(fluid.text("model"), "cii");
}

TEST_F(opening, texts_keep_their_bytes) {
    const std::string name = "a \xFF\xC3 name\x01", label = "\xE9tiquette";
    std::string text = support::vapor_file();
    text.replace(text.find("model fluid"), 11, name).replace(text.find("label"), 5, label);
    place.add("strange", text);
    ASSERT_EQ(fluid.open("strange").message, "");
    EXPECT_EQ(fluid.text("name"), name);
    EXPECT_EQ(fluid.text("label"), label);
    EXPECT_EQ(fluid.text("text"), text);
    // Messages are UTF-8 nevertheless.
    int status = 0;
    ostrel_fluid_value(fluid, "pt", -1, 300, "d", &status);
    EXPECT_EQ(status, OSTREL_OUT_OF_RANGE);
    EXPECT_THAT(ostrel_last_message(), HasSubstr("\"a ?? name?\""));
}

TEST_F(opening, constants_and_texts_of_the_file) {
    setenv("OSTREL_FLUIDS", OSTREL_TESTS "/../Fluids", 1);
    ASSERT_EQ(fluid.open("toluene").message, "");
    EXPECT_DOUBLE_EQ(fluid.constant("m_mol"), 0.09213842);
    EXPECT_DOUBLE_EQ(fluid.constant("r_gas"), 8314 / 92.13842);
    EXPECT_EQ(fluid.constant("t_crit"), 591.75);
    EXPECT_DOUBLE_EQ(fluid.constant("p_crit"), 40.72045398 * 101325);
    EXPECT_DOUBLE_EQ(fluid.constant("d_crit") * fluid.constant("v_crit"), 1);
    EXPECT_EQ(fluid.constant("t_boil"), 382.988);
    EXPECT_NEAR(fluid.constant("omega"), 0.2657, 1e-4);
    EXPECT_EQ(fluid.text("name"), "toluene");
    EXPECT_EQ(fluid.text("label"), "C7H8  108-88-3");
    EXPECT_EQ(fluid.text("model"), "srk");
    EXPECT_EQ(fluid.text("heat_capacity"),
              "constant and Einstein terms: cv = cv_0 + R sum x^2 e^x/(e^x - 1)^2, x = Tv/T");
    EXPECT_EQ(fluid.text("viscosity"), "Chung, dense gas");
    EXPECT_EQ(fluid.text("conductivity"), "Chung, dense gas");
}

TEST_F(opening, unknown_codes_are_named) {
    const std::string text = support::vapor_section + "7\nT\n9\n9\n9\n";
    ASSERT_EQ(fluid.open_text(text).status, OSTREL_OK) << ostrel_last_message();
    for (const char *const name : {"heat_capacity", "viscosity", "conductivity"})
        EXPECT_EQ(fluid.text(name), "unknown, code 9");
    EXPECT_THAT(fluid.open_text(support::vapor_section + "9\nT\n1\n2.5\n9\n9\n").message,
                HasSubstr("gas_type 9 is no model"));
}

TEST_F(opening, without_critical_data_their_constants_are_NaN) {
    ASSERT_EQ(fluid.open_text(support::reference_file()).message, "");
    for (const char *const name : {"t_crit", "p_crit", "v_crit", "d_crit", "z_crit", "omega", "t_boil"})
        EXPECT_EQ(bits(fluid.constant(name)), support::bits_of_nan) << name;
    EXPECT_EQ(fluid.constant("p_ref"), 101325);
}

TEST_F(opening, null_pointers_are_refused) {
    ostrel_fluid *none = nullptr;
    EXPECT_EQ(ostrel_fluid_open(nullptr, nullptr, &none), OSTREL_BAD_ARGUMENT);
    EXPECT_THAT(ostrel_last_message(), HasSubstr("name: a null pointer"));
    EXPECT_EQ(ostrel_fluid_open_file(nullptr, nullptr, &none), OSTREL_BAD_ARGUMENT);
    EXPECT_THAT(ostrel_last_message(), HasSubstr("path: a null pointer"));
    EXPECT_EQ(ostrel_fluid_open_text(nullptr, nullptr, &none), OSTREL_BAD_ARGUMENT);
    EXPECT_THAT(ostrel_last_message(), HasSubstr("text: a null pointer"));
    EXPECT_EQ(ostrel_fluid_open_database(nullptr, "x", nullptr, &none), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(ostrel_fluid_open_database("x", nullptr, nullptr, &none), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(ostrel_fluid_open("propane", nullptr, nullptr), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(ostrel_fluid_open_file("x", nullptr, nullptr), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(ostrel_fluid_open_text("x", nullptr, nullptr), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(ostrel_fluid_open_database("x", "y", nullptr, nullptr), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(none, nullptr);
    ostrel_fluid_close(nullptr);
}

TEST_F(opening, a_hundred_thousand_openings_leave_no_memory) {
    const std::string text = support::vapor_file();
    const auto some = [&](int count) {
        for (int i = 0; i < count; ++i) {
            ostrel_fluid *one = nullptr;
            ASSERT_EQ(ostrel_fluid_open_text(text.c_str(), "model=pr", &one), OSTREL_OK);
            ostrel_fluid_close(one);
        }
    };
    some(10);
    const long before = support::live;
    some(100'000);
    for (const char *const name : {"nbutane", "R290", "nothing", "C4H10", "broken"})
        fluid.open(name);
    fluid.open("propane", "model=xx");
    fluid.open("nothing");
    EXPECT_EQ(support::live, before);
}

TEST_F(opening, memory_that_is_out_is_a_status) {
    fluid.open("nothing"); // The locale's facets and the like have been made then.
    for (const char *const name : {"propane", "R290", "nothing"}) {
        ostrel_fluid *none = nullptr;
        support::allocations = 0;
        ostrel_fluid_open(name, nullptr, &none);
        ostrel_fluid_close(none);
        const long needed = support::allocations;
        EXPECT_GT(needed, 5);
        for (long failing = 0; failing < needed; ++failing) {
            const long before = support::live;
            support::allocations = 0;
            support::first_failure = failing;
            const int status = ostrel_fluid_open(name, nullptr, &none);
            support::first_failure = support::unlimited;
            if (none != nullptr)
                ADD_FAILURE() << "opened without its memory";
            EXPECT_EQ(status, OSTREL_OUT_OF_MEMORY) << name << ' ' << failing;
            EXPECT_STREQ(ostrel_last_message(), ostrel_status_text(OSTREL_OUT_OF_MEMORY));
            EXPECT_EQ(support::live, before) << name << ' ' << failing;
        }
    }
}

#ifdef OSTREL_WITH_SQLITE

struct opening_database : opening {
    opening_database() {
        sqlite3_open(path.c_str(), &database);
        run("CREATE TABLE fluid(name TEXT PRIMARY KEY, text TEXT NOT NULL)");
    }
    ~opening_database() override { sqlite3_close(database); }
    void run(const std::string &statement) const {
        EXPECT_EQ(sqlite3_exec(database, statement.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    }
    void add(const std::string &name, const std::string &text) const {
        run("INSERT INTO fluid VALUES('" + name + "', '" + text + "')");
    }
    std::string path = place.path() + "/fluids.sqlite";
    sqlite3 *database = nullptr;
};

TEST_F(opening_database, by_its_key) {
    add("mine", support::vapor_file());
    ASSERT_EQ(fluid.open_database(path, "mine").message, "");
    EXPECT_EQ(fluid.text("text"), support::vapor_file());
    EXPECT_EQ(fluid.text("source"), path + ", fluid mine");
    EXPECT_EQ(fluid.constant("m_mol"), 0.02);
    EXPECT_EQ(bits(fluid.constant("t_triple")), support::bits_of_nan);
    ASSERT_EQ(fluid.open_database(path, "mine", "model=pr").message, "");
    EXPECT_EQ(fluid.text("model"), "pr");
}

TEST_F(opening_database, what_is_missing) {
    add("mine", support::vapor_file());
    for (const auto &[location, name] :
         {std::pair(path, "other"), std::pair(path, ""), std::pair(path, "Mine"), std::pair(path + "x", "mine"),
          std::pair(in_folder("propane"), "mine"), std::pair(place.path(), "mine"), std::pair(std::string(), "mine")}) {
        const auto [status, message] = fluid.open_database(location, name);
        EXPECT_EQ(status, OSTREL_CANNOT_OPEN) << location << ' ' << name;
        EXPECT_THAT(message, AllOf(HasSubstr('"' + location + '"'), HasSubstr('"' + std::string(name) + '"')));
    }
}

TEST_F(opening_database, broken_texts) {
    add("bad", "names\nx\ny\nconstants\nbad\n");
    EXPECT_EQ(fluid.open_database(path, "bad").status, OSTREL_BAD_FILE);
    EXPECT_EQ(fluid.open_database(path, "bad").message,
              "Ostrel error: fluid database, bad, record 5: expected MM (a real), found \"bad\".");
    add("long", "names\n" + std::string(300, 'x') + '\n');
    EXPECT_EQ(fluid.open_database(path, "long").status, OSTREL_BAD_FILE);
    EXPECT_THAT(fluid.open_database(path, "long").message, HasSubstr("line 2 is longer"));
}

#else

TEST_F(opening, a_database_needs_SQLite) {
    EXPECT_EQ(fluid.open_database("x", "y").status, OSTREL_CANNOT_OPEN);
}

#endif

TEST_F(opening, finds_fluids_by_words) {
    using found = std::vector<std::pair<std::string, std::string>>;
    const auto find = [](const char *words) {
        found result;
        EXPECT_EQ(ostrel_fluid_find(
                      words,
                      [](void *user, const char *file, const char *name) {
                          static_cast<found *>(user)->emplace_back(file, name);
                      },
                      &result),
                  OSTREL_OK);
        return result;
    };
    EXPECT_EQ(find("R290"), (found{{"propane", "propane"}}));
    EXPECT_EQ(find("C4H10"), (found{{"isobutan", "isobutane"}, {"nbutane", "n-butane"}}));
    EXPECT_EQ(find("").size(), 6U);
    EXPECT_EQ(find("own"), (found{{"own", "own"}}));
    EXPECT_TRUE(find("quite different words").empty());

    int calls = 0;
    const auto count = [](void *user, const char *, const char *) { ++*static_cast<int *>(user); };
    EXPECT_EQ(ostrel_fluid_find(nullptr, count, &calls), OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(ostrel_fluid_find("propane", nullptr, &calls), OSTREL_BAD_ARGUMENT);
    setenv("OSTREL_FLUIDS", "/nowhere", 1);
    EXPECT_EQ(ostrel_fluid_find("propane", count, &calls), OSTREL_CANNOT_OPEN);
    EXPECT_THAT(ostrel_last_message(), HasSubstr("/nowhere"));
    EXPECT_EQ(calls, 0);
}

} // namespace
