// SPDX-License-Identifier: MIT
#include "Host/fluid_index.h"
#include "Tests/Support/entry_points.h"

#include <cmath>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <thread>

namespace {

using fluid_index::answer;
using fluid_index::fluid;
using fluid_index::index;
using fluid_index::outcome;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::string_view heading = "file,name,aliases,refrigerant,formula,cas,family,Tt,cp_Tmin,cp_Tmax\n";

std::vector<std::string> files(const std::vector<fluid> &fluids) {
    std::vector<std::string> names(fluids.size());
    std::transform(fluids.begin(), fluids.end(), names.begin(), [](const fluid &one) { return one.file; });
    return names;
}

/// The files of an answer behind the way in which they were found.
std::vector<std::string> told(const answer &got) {
    constexpr const char *words[] = {"by_file", "by_name", "ambiguous", "not_found"};
    std::vector<std::string> names = files(got.fluids);
    names.insert(names.begin(), words[static_cast<std::size_t>(got.how)]);
    return names;
}

/// A folder with an index and files; the files are empty, since nothing reads them.
struct folder : support::temporary_folder {
    folder(std::string_view index_text, std::initializer_list<std::string_view> names) {
        write("index.csv", index_text);
        for (const std::string_view name : names)
            write(std::string(name) + ".osd", "");
    }
};

struct fluid_index_test : testing::Test {
    folder place{
        std::string(heading) +
            "nbutane,n-butane,butane,R600,C4H10,106-97-8,n-alkanes,134.895,200,1000\n"
            "isobutan,isobutane,\"i-butane; 2-methylpropane\",R600a,C4H10,75-28-5,branched alkanes,113.730,,\n"
            "propane,propane,,R290,C3H8,74-98-6,n-alkanes,85.525,200,1000\n"
            "r134a,\"1,1,1,2-tetrafluoroethane (R134a)\",HFC-134a,R134a,C2H2F4,811-97-2,refrigerants,,200,1000\n"
            "apinene,alpha-pinene,α-pinene; Käse öl,,C10H16,80-56-8,alkenes,,200,1000\n"
            "gone,a missing file,,R1,X,1-1-1,none,,,\n",
        {"nbutane", "isobutan", "propane", "r134a", "apinene", "Own-Gas"}};
    index names{place.path()};

    std::vector<std::string> find(std::string_view words) const { return told(names.find(words)); }
    std::vector<std::string> search(std::string_view words) const { return files(names.search(words)); }
};

TEST_F(fluid_index_test, no_words_find_no_fluid_and_list_all) {
    for (const std::string_view words : {"", " ", "   "}) {
        EXPECT_THAT(find(words), ElementsAre("not_found"));
        EXPECT_THAT(search(words), ElementsAre("Own-Gas", "apinene", "isobutan", "nbutane", "propane", "r134a"));
    }
}

TEST_F(fluid_index_test, punctuation_alone_is_no_name) {
    for (const std::string_view words : {"-", ",", ";", "\"", ",,", ", ,", "../", "/", "()", "\n", "\xC2\xA0", "–"}) {
        EXPECT_THAT(find(words), ElementsAre("not_found")) << words;
        EXPECT_THAT(search(words), IsEmpty()) << words;
    }
}

TEST_F(fluid_index_test, case_blanks_and_punctuation_do_not_count) {
    for (const std::string_view words :
         {"R134a", "r134A", "R-134a", "R 134 a", "  R_134.A  ",
          "R\xE2\x80\x91"
          "134a",
          "R\xC2\xA0"
          "134a",
          "HFC134a", "1,1,1,2-Tetrafluoroethane (r-134a)", "811-97-2", "811972", "C2H2F4", "c₂h₂f₄"})
        EXPECT_THAT(find(words), ElementsAre("by_name", "r134a")) << words;
    EXPECT_THAT(find("r134a"), ElementsAre("by_file", "r134a"));
    EXPECT_THAT(find("2-methyl propane"), ElementsAre("by_name", "isobutan"));
    EXPECT_THAT(find("N-Butane"), ElementsAre("by_name", "nbutane"));
}

TEST_F(fluid_index_test, the_exact_name_of_a_file_comes_first) {
    const folder other(std::string(heading) + "r12,x,R13,,,,,,,\nr13,y,,,,,,,,\n", {"r12", "r13", "R13"});
    const index there(other.path());
    EXPECT_THAT(told(there.find("r13")), ElementsAre("by_file", "r13"));
    EXPECT_THAT(told(there.find("R13")), ElementsAre("by_file", "R13"));
    EXPECT_THAT(told(there.find("R-13")), ElementsAre("ambiguous", "r12", "r13"));
}

TEST_F(fluid_index_test, a_file_without_a_row_is_found_by_its_name) {
    EXPECT_THAT(find("Own-Gas"), ElementsAre("by_file", "Own-Gas"));
    EXPECT_THAT(find("own gas"), ElementsAre("by_name", "Own-Gas"));
    EXPECT_THAT(find("own glas"), ElementsAre("not_found", "Own-Gas"));
    EXPECT_TRUE(std::isnan(names.facts("Own-Gas").triple_temperature));
}

TEST_F(fluid_index_test, a_row_without_a_file_is_not_found) {
    for (const std::string_view words : {"gone", "a missing file", "1-1-1"})
        EXPECT_NE(find(words).front(), "by_name") << words;
    EXPECT_THAT(search("missing"), IsEmpty());
}

TEST_F(fluid_index_test, a_formula_of_several_fluids_names_all_of_them) {
    EXPECT_THAT(find("C4H10"), ElementsAre("ambiguous", "nbutane", "isobutan"));
    EXPECT_THAT(find("c3h8"), ElementsAre("by_name", "propane"));
    EXPECT_THAT(search("C4H10"), ElementsAre("isobutan", "nbutane"));
}

TEST_F(fluid_index_test, an_unknown_name_gets_the_nearest) {
    EXPECT_THAT(find("propan"), ElementsAre("not_found", "propane"));
    EXPECT_THAT(find("buatne"), ElementsAre("not_found", "nbutane", "isobutan"));
    EXPECT_THAT(find("xbutane"), ElementsAre("not_found", "isobutan", "nbutane"));
    EXPECT_THAT(find("r134a.osd"), ElementsAre("not_found", "r134a"));
    EXPECT_THAT(find("something quite different"), ElementsAre("not_found"));
}

TEST_F(fluid_index_test, an_unknown_name_that_is_near_to_none_gets_those_that_contain_it) {
    EXPECT_THAT(find("tetrafluoro"), ElementsAre("not_found", "r134a"));
    EXPECT_THAT(find("meth"), ElementsAre("not_found", "isobutan"));
    EXPECT_THAT(find("alkanes"), ElementsAre("not_found", "isobutan", "nbutane", "propane"));
}

TEST_F(fluid_index_test, fields_that_are_no_names_find_nothing) {
    for (const std::string_view words : {"200", "1000", "134.895", "alkenes", "n-alkanes", "refrigerants", "file", "1"})
        EXPECT_EQ(find(words).front(), "not_found") << words;
}

TEST_F(fluid_index_test, letters_that_are_not_ASCII) {
    EXPECT_THAT(find("α-pinene"), ElementsAre("by_name", "apinene"));
    EXPECT_THAT(find("kÄSE Öl"), ElementsAre("by_name", "apinene"));
    EXPECT_THAT(search("käse"), ElementsAre("apinene"));
    for (const std::string_view words :
         {"\xCE", "\xC3", "\xE2", "\xE2\x80", "\xE2\x82", "\xC2", "\xFF\xFE", "prop\xE2", "氷"})
        EXPECT_EQ(find(words).front(), "not_found") << words;
}

TEST_F(fluid_index_test, very_long_words) {
    const std::string longest(1 << 20, 'x');
    EXPECT_THAT(find(longest), ElementsAre("not_found"));
    EXPECT_THAT(search(longest), IsEmpty());
    EXPECT_THAT(find("propane" + longest), ElementsAre("not_found"));
    EXPECT_THAT(find("propane" + std::string(1 << 20, ' ')), ElementsAre("by_name", "propane"));
}

TEST_F(fluid_index_test, words_with_a_separator_do_not_leave_the_folder) {
    const std::string inside = std::filesystem::path(place.path()).filename().string();
    for (const std::string &words :
         {"../" + inside + "/propane", std::string("./propane.osd/"), place.path() + "/propane"})
        EXPECT_EQ(find(words).front(), "not_found") << words;
    EXPECT_THAT(find("./propane"), ElementsAre("by_name", "propane"));
    EXPECT_THAT(find(std::string_view("propane\0", 8)), ElementsAre("by_name", "propane"));
    EXPECT_THAT(find(std::string_view("\0", 1)), ElementsAre("not_found"));
}

TEST_F(fluid_index_test, facts_of_a_file) {
    const fluid butane = names.facts("nbutane");
    EXPECT_EQ(butane.name, "n-butane");
    EXPECT_THAT(butane.aliases, ElementsAre("butane"));
    EXPECT_EQ(butane.refrigerant, "R600");
    EXPECT_EQ(butane.formula, "C4H10");
    EXPECT_EQ(butane.cas, "106-97-8");
    EXPECT_EQ(butane.family, "n-alkanes");
    EXPECT_EQ(butane.triple_temperature, 134.895);
    EXPECT_EQ(butane.heat_capacity_lowest, 200);
    EXPECT_EQ(butane.heat_capacity_highest, 1000);
    const fluid isobutane = names.facts("isobutan");
    EXPECT_THAT(isobutane.aliases, ElementsAre("i-butane", "2-methylpropane"));
    EXPECT_EQ(isobutane.triple_temperature, 113.73);
    EXPECT_TRUE(std::isnan(isobutane.heat_capacity_lowest));
    EXPECT_EQ(names.facts("r134a").name, "1,1,1,2-tetrafluoroethane (R134a)");
    EXPECT_EQ(names.facts("R134a").name, "");
    EXPECT_EQ(names.facts("nosuch").file, "nosuch");
    EXPECT_EQ(names.find("R290").fluids.front().triple_temperature, 85.525);
}

TEST_F(fluid_index_test, a_search_has_the_best_first) {
    const folder other(std::string(heading) +
                           "ane,decane,,,,,fuels,,,\nb,butane,,,C4,,fuels,,,\nb2,isobutane,,,C4,,gases,,,\n"
                           "b3,butane two,,,C8,,fuels,,,\nb4,batane,,,C9,12-34-5,,,,\nb5,cyclobutane,,,,,,,,\n",
                       {"ane", "b", "b2", "b3", "b4", "b5"});
    const index there(other.path());
    EXPECT_THAT(files(there.search("butane")), ElementsAre("b", "b3", "b2", "b5"));
    EXPECT_THAT(files(there.search("butane", 2)), ElementsAre("b", "b3"));
    EXPECT_THAT(files(there.search("butane", 0)), IsEmpty());
    EXPECT_THAT(files(there.search("", 2)), ElementsAre("ane", "b"));
    EXPECT_THAT(files(there.search("ane")), ElementsAre("ane", "b", "b4", "b2", "b3", "b5"));
    EXPECT_THAT(files(there.search("butanes")), ElementsAre("b", "b4"));
    EXPECT_THAT(files(there.search("FUELS")), ElementsAre("b", "b3", "ane"));
    EXPECT_THAT(files(there.search("12345")), ElementsAre("b4"));
    EXPECT_THAT(files(there.search("234")), IsEmpty());
}

TEST(fluid_index_files, a_variant_comes_behind_its_fluid) {
    const folder place(std::string(heading) + "tolu,\"toluene, other\",,,,,f,,,\ntoluene,toluene,,,C7H8,,f,,,\n",
                       {"tolu", "toluene"});
    const index names(place.path());
    EXPECT_THAT(files(names.search("tol")), ElementsAre("toluene", "tolu"));
    EXPECT_THAT(files(names.search("F")), ElementsAre("toluene", "tolu"));
    EXPECT_THAT(files(names.search("tolu")), ElementsAre("tolu", "toluene"));
}

TEST(fluid_index_files, without_an_index_everything_goes_by_file_names) {
    const support::temporary_folder place;
    place.write("toluene.osd", "");
    for (const std::string &path : {place.path(), place.path() + "/"}) {
        const index names(path);
        EXPECT_THAT(told(names.find("toluene")), ElementsAre("by_file", "toluene"));
        EXPECT_THAT(told(names.find("Toluene")), ElementsAre("by_name", "toluene"));
        EXPECT_THAT(told(names.find("tolune")), ElementsAre("not_found", "toluene"));
        EXPECT_THAT(files(names.search("tol")), ElementsAre("toluene"));
    }
    const index nowhere(place.path() + "/nowhere");
    EXPECT_THAT(told(nowhere.find("toluene")), ElementsAre("not_found"));
    EXPECT_THAT(nowhere.search(""), IsEmpty());
}

TEST(fluid_index_files, an_index_that_is_no_file_is_none) {
    const support::temporary_folder pipe;
    pipe.write("a.osd", "");
    ASSERT_EQ(mkfifo((pipe.path() + "/index.csv").c_str(), 0600), 0);
    EXPECT_THAT(files(index(pipe.path()).search("")), ElementsAre("a"));
    const support::temporary_folder nested;
    nested.write("a.osd", "");
    std::filesystem::create_directory(nested.path() + "/index.csv");
    EXPECT_THAT(files(index(nested.path()).search("")), ElementsAre("a"));
}

TEST(fluid_index_files, line_ends_mark_and_order_of_columns_do_not_matter) {
    for (const std::string_view text :
         {"file,name,Tt\na,first,1\nb,second,2\n", "file,name,Tt\r\na,first,1\r\nb,second,2\r\n",
          "\xEF\xBB\xBF"
          "file,name,Tt\na,first,1\nb,second,2",
          "Tt,extra,name,file\n1,x,first,a\n2,y,second,b\n",
          "\"file\",\"name\",\"Tt\"\n\"a\",\"first\",\"1\"\nb,second,2\n\n\n"}) {
        const folder place(text, {"a", "b"});
        const index names(place.path());
        EXPECT_THAT(told(names.find("First")), ElementsAre("by_name", "a")) << text;
        EXPECT_THAT(told(names.find("sec-ond")), ElementsAre("by_name", "b")) << text;
        EXPECT_EQ(names.facts("a").triple_temperature, 1) << text;
        EXPECT_EQ(names.facts("b").triple_temperature, 2) << text;
        EXPECT_EQ(names.facts("b").family, "") << text;
    }
}

TEST(fluid_index_files, broken_lines_harm_only_themselves) {
    const folder place(std::string(heading) + "a,first,,,,,,,,\n" + "\"b,never closed,,,,,,,,\n" + "c\n" + "\n" +
                           ",,,,,,,,,\n" + "../d,outside,,,,,,,,\n" + std::string("e\0,nul,,,,,,,,\n", 15) +
                           "\"\",\",\",\n" + "f,sixth,x;;y; ;,,,,,abc,1e999,nan\n" +
                           "g,seventh,,,,,,12K,-,inf,one,more\n" + "h,last,,,,,,7,8,9",
                       {"a", "b", "c", "d", "e", "f", "g", "h"});
    const index names(place.path());
    EXPECT_THAT(told(names.find("FIRST")), ElementsAre("by_name", "a"));
    EXPECT_THAT(told(names.find("C")), ElementsAre("by_name", "c"));
    EXPECT_EQ(names.find("outside").how, outcome::not_found);
    EXPECT_EQ(names.find("nul").how, outcome::not_found);
    EXPECT_THAT(told(names.find("last")), ElementsAre("by_name", "h"));
    EXPECT_EQ(names.facts("h").heat_capacity_highest, 9);
    const fluid sixth = names.find("sixth").fluids.at(0);
    EXPECT_THAT(sixth.aliases, ElementsAre("x", "y"));
    for (const fluid &odd : {sixth, names.facts("g")})
        for (const double value : {odd.triple_temperature, odd.heat_capacity_lowest, odd.heat_capacity_highest})
            EXPECT_TRUE(std::isnan(value)) << value;
    EXPECT_THAT(names.search(""), SizeIs(8));
}

TEST(fluid_index_files, an_index_without_the_column_of_files_or_without_lines_is_empty) {
    for (const std::string_view text :
         {"", "\n", "\r\n", "name,cas\nx,1-2-3\n", "file", "file\n", "file,name", "\xEF\xBB\xBF", ",,,", "\"", ";"}) {
        const folder place(text, {"a"});
        const index names(place.path());
        EXPECT_THAT(told(names.find("x")), ElementsAre("not_found", "a")) << text;
        EXPECT_THAT(told(names.find("A")), ElementsAre("by_name", "a")) << text;
    }
}

TEST(fluid_index_files, of_duplicates_the_first_row_counts) {
    const folder place(std::string(heading) +
                           "a,first,,,,,,1,,\na,second,,,,,,2,,\nb,first,,,,,,3,,\nc,third,first,,,,,,,\n",
                       {"a", "b", "c"});
    const index names(place.path());
    EXPECT_THAT(told(names.find("second")).front(), "not_found");
    EXPECT_EQ(names.facts("a").triple_temperature, 1);
    EXPECT_THAT(told(names.find("first")), ElementsAre("ambiguous", "a", "b", "c"));
    EXPECT_THAT(told(names.find("third")), ElementsAre("by_name", "c"));
}

TEST(fluid_index_files, what_the_bytes_are_does_not_matter) {
    // Each byte as a damage at each place of a small index.
    const std::string whole = "file,name,aliases,formula,cas,Tt\na,\"x, y\",é; z,H2,1-2-3,5\r\nb,w,,,,\n";
    for (std::size_t at = 0; at <= whole.size(); ++at)
        for (const char damage : {'\0', '\n', '"', ',', ';', '\xE2', '\xC3', '\xFF'}) {
            std::string text = whole;
            text.insert(at, 1, damage);
            const folder place(text, {"a", "b"});
            const index names(place.path());
            for (const std::string_view words : {"x, y", "Z", "h2", "w"})
                EXPECT_LE(names.find(words).fluids.size(), 2U);
            EXPECT_THAT(names.search(""), SizeIs(2));
            EXPECT_EQ(names.facts("a").file, "a");
        }
}

/// The catalogue: every name of every fluid finds it.
TEST(fluid_index_catalogue, every_name_finds_its_own_fluid) {
    const index names(std::filesystem::path(OSTREL_TESTS).parent_path() / "Fluids");
    const std::vector<fluid> fluids = names.search("");
    EXPECT_GE(fluids.size(), 382U);
    std::size_t tried = 0;
    for (const fluid &one : fluids) {
        EXPECT_NE(one.name, "") << one.file;
        EXPECT_THAT(told(names.find(one.file)), ElementsAre("by_file", one.file));
        EXPECT_THAT(files(names.search(one.name, 1)), ElementsAre(one.file)) << one.name;
        std::vector<std::string> known = one.aliases;
        known.insert(known.end(), {one.name, one.refrigerant, one.cas});
        for (const std::string &name : known) {
            if (name.empty())
                continue;
            std::string upper = name;
            for (char &c : upper)
                c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
            std::string apart = name;
            std::erase(apart, '-');
            for (const std::string &words : {name, upper, " " + name + ".", apart}) {
                const answer got = names.find(words);
                EXPECT_LE(got.how, outcome::by_name) << words;
                EXPECT_THAT(files(got.fluids), ElementsAre(one.file)) << words;
                ++tried;
            }
        }
    }
    EXPECT_GE(tried, 4U * 1000);
}

TEST(fluid_index_catalogue, common_names) {
    const index names(std::filesystem::path(OSTREL_TESTS).parent_path() / "Fluids");
    const std::pair<std::string_view, std::string_view> known[] = {{"carbon dioxide", "co2"},
                                                                   {"CO2", "co2"},
                                                                   {"R-744", "co2"},
                                                                   {"isobutane", "isobutan"},
                                                                   {"R600a", "isobutan"},
                                                                   {"butane", "nbutane"},
                                                                   {"n-Butane", "nbutane"},
                                                                   {"water", "water"},
                                                                   {"H2O", "water"},
                                                                   {"R-717", "ammonia"},
                                                                   {"NH3", "ammonia"},
                                                                   {"propane", "propane"},
                                                                   {"R290", "propane"},
                                                                   {"D4", "d4"},
                                                                   {"MDM", "mdm"},
                                                                   {"Toluene", "toluene"},
                                                                   {"r134A", "r134a"},
                                                                   {"hydrogen", "hydrogen"},
                                                                   {"air", "air"},
                                                                   {"cyclopentane", "cyclopen"},
                                                                   {"R1234yf", "r1234yf"},
                                                                   {"R-1234ze(E)", "r1234zee"},
                                                                   {"Ethylene Glycol", "eglycol"},
                                                                   {"N2", "nitrogen"}};
    for (const auto &[words, file] : known)
        EXPECT_THAT(files(names.find(words).fluids), ElementsAre(file)) << words;
    EXPECT_THAT(told(names.find("xylene")), ElementsAre("not_found", "mxylene", "oxylene", "pxylene"));
    EXPECT_THAT(told(names.find("C4H10")), ElementsAre("ambiguous", "isobutan", "nbutane"));
}

TEST(fluid_index_catalogue, several_threads_use_one_index) {
    const index names(std::filesystem::path(OSTREL_TESTS).parent_path() / "Fluids");
    std::vector<std::thread> threads;
    std::array<std::size_t, 4> right{};
    for (std::size_t &count : right)
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i)
                count += files(names.find("R-134a").fluids) == std::vector<std::string>{"r134a"} ? 1 : 0;
        });
    for (std::thread &one : threads)
        one.join();
    EXPECT_THAT(right, testing::Each(200U));
}

} // namespace
