// SPDX-License-Identifier: MIT
#include "Tests/Support/entry_points.h"
#include "Tests/Support/handles.h"

#include <cstring>
#include <gmock/gmock.h>
#include <thread>

namespace {

using support::opened_fluid;
using support::rows_of;
using testing::HasSubstr;
using testing::StartsWith;

TEST(status, every_one_has_a_number_a_name_and_a_text) {
    constexpr std::pair<int, const char *> known[] = {{OSTREL_OK, "OSTREL_OK"},
                                                      {OSTREL_NOT_A_NUMBER, "OSTREL_NOT_A_NUMBER"},
                                                      {OSTREL_OUT_OF_RANGE, "OSTREL_OUT_OF_RANGE"},
                                                      {OSTREL_NO_STATE, "OSTREL_NO_STATE"},
                                                      {OSTREL_TWO_PHASE, "OSTREL_TWO_PHASE"},
                                                      {OSTREL_NO_SATURATION, "OSTREL_NO_SATURATION"},
                                                      {OSTREL_NOT_CONVERGED, "OSTREL_NOT_CONVERGED"},
                                                      {OSTREL_BAD_ARGUMENT, "OSTREL_BAD_ARGUMENT"},
                                                      {OSTREL_CANNOT_OPEN, "OSTREL_CANNOT_OPEN"},
                                                      {OSTREL_BAD_FILE, "OSTREL_BAD_FILE"},
                                                      {OSTREL_OUT_OF_MEMORY, "OSTREL_OUT_OF_MEMORY"}};
    const auto rows = rows_of("statuses");
    ASSERT_EQ(rows.size(), std::size(known));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].name, known[i].second);
        EXPECT_EQ(rows[i].unit, std::to_string(known[i].first));
        EXPECT_EQ(rows[i].description, ostrel_status_text(known[i].first));
        EXPECT_NE(rows[i].description, "");
    }
}

TEST(status, numbers_are_those_of_the_interface) {
    EXPECT_EQ(OSTREL_OK, 0);
    EXPECT_EQ(OSTREL_NOT_CONVERGED, 6);
    EXPECT_EQ(OSTREL_BAD_ARGUMENT, 10);
    EXPECT_EQ(OSTREL_OUT_OF_MEMORY, 13);
}

TEST(status, other_numbers_have_a_text_that_says_so) {
    for (const int number : {-1, 7, 8, 9, 14, 1'000'000, std::numeric_limits<int>::min()})
        EXPECT_STREQ(ostrel_status_text(number), "no status of this library");
}

TEST(message, is_empty_at_first) {
    std::string message = "unset";
    std::thread([&] { message = ostrel_last_message(); }).join();
    EXPECT_EQ(message, "");
}

TEST(message, holds_until_the_next_call_with_a_fault) {
    const opened_fluid fluid;
    int status = 0;
    ostrel_fluid_value(fluid, "pt", 1e5, -5, "d", &status);
    const char *const message = ostrel_last_message();
    const std::string first = message;
    EXPECT_THAT(first, HasSubstr("-5 K"));
    ostrel_fluid_value(fluid, "pt", 1e5, 400, "d", &status);
    EXPECT_EQ(status, OSTREL_OK);
    const opened_fluid other("propane");
    ostrel_fluid_constant(fluid, "m_mol");
    ostrel_fluid_text(fluid, "name");
    ostrel_list("inputs", 1000, "name");
    ostrel_status_text(77);
    EXPECT_EQ(message, ostrel_last_message());
    EXPECT_EQ(first, message);
    ostrel_fluid_constant(fluid, "none");
    EXPECT_EQ(message, ostrel_last_message());
    EXPECT_THAT(message, StartsWith("constant \"none\""));
}

TEST(message, belongs_to_its_thread) {
    const opened_fluid fluid;
    ostrel_fluid_constant(fluid, "mine");
    const std::string mine = ostrel_last_message();
    std::string before, after;
    std::thread([&] {
        before = ostrel_last_message();
        ostrel_fluid_constant(fluid, "its own");
        after = ostrel_last_message();
    }).join();
    EXPECT_EQ(before, "");
    EXPECT_THAT(after, HasSubstr("its own"));
    EXPECT_EQ(mine, ostrel_last_message());
}

TEST(message, tells_which_state_failed_first) {
    const opened_fluid fluid;
    const double t[] = {400, 300, 400, -5, -6}, p[] = {1e5, 1e5, 1e5, 101325, 1e5};
    double values[5];
    int status[5];
    const std::string wanted =
        std::string("pt of \"toluene\": state 3 (p = 101325 Pa, t = -5 K): ") + ostrel_status_text(OSTREL_OUT_OF_RANGE);
    EXPECT_EQ(ostrel_fluid_evaluate(fluid, "pt", "d", 5, p, t, values, status), OSTREL_OUT_OF_RANGE);
    EXPECT_EQ(ostrel_last_message(), wanted);
    EXPECT_THAT(status, testing::ElementsAre(0, 0, 0, OSTREL_OUT_OF_RANGE, OSTREL_OUT_OF_RANGE));
    EXPECT_EQ(ostrel_fluid_evaluate(fluid, "pt", "d", 5, p, t, values, nullptr), OSTREL_OUT_OF_RANGE);
    EXPECT_EQ(ostrel_last_message(), wanted);
    EXPECT_EQ(ostrel_fluid_evaluate(fluid, "Tp", "d", 5, t, p, values, status), OSTREL_OUT_OF_RANGE);
    EXPECT_THAT(ostrel_last_message(), StartsWith("tp of \"toluene\": state 3 (t = -5 K, p = 101325 Pa): "));
    EXPECT_EQ(ostrel_fluid_evaluate(fluid, "tq", "p", 1, p, t, values, status), OSTREL_OUT_OF_RANGE);
    EXPECT_THAT(ostrel_last_message(), StartsWith("tq of \"toluene\": state 0 (t = 1e+05 K, q = 400): "));

    ostrel_state states[5];
    EXPECT_EQ(ostrel_fluid_solve(fluid, "pt", 5, p, t, states), OSTREL_OUT_OF_RANGE);
    EXPECT_EQ(ostrel_last_message(), wanted);
    EXPECT_EQ(ostrel_fluid_outputs(fluid, "d", 5, states, values, nullptr), OSTREL_OUT_OF_RANGE);
    EXPECT_THAT(ostrel_last_message(), StartsWith("outputs of \"toluene\": state 3 ("));

    ostrel_fluid_value(fluid, "pt", 101325, -5, "d", nullptr);
    EXPECT_THAT(ostrel_last_message(), StartsWith("pt of \"toluene\" (p = 101325 Pa, t = -5 K): "));
    const double not_numbers[] = {300, std::numeric_limits<double>::quiet_NaN()};
    EXPECT_EQ(ostrel_fluid_saturation(fluid, "t", "p", 2, not_numbers, values, nullptr, nullptr), OSTREL_NOT_A_NUMBER);
    EXPECT_THAT(ostrel_last_message(), StartsWith("saturation of \"toluene\": state 1 (t = nan K): "));
}

TEST(message, of_a_fluid_without_a_name_has_its_source) {
    support::handle fluid;
    std::string text = support::vapor_file();
    text.replace(text.find("model fluid"), 11, "");
    ASSERT_EQ(fluid.open_text(text).message, "");
    ostrel_fluid_value(fluid, "tv", -1, 1, "p", nullptr);
    EXPECT_THAT(ostrel_last_message(), StartsWith("tv of \"text\""));
}

TEST(message, is_valid_UTF_8_and_fits) {
    const opened_fluid fluid;
    const auto shown = [&](const std::string &name) {
        ostrel_fluid_constant(fluid, name.c_str());
        const std::string message = ostrel_last_message();
        EXPECT_LT(message.size(), 1024U);
        const std::size_t begin = message.find('"') + 1;
        return message.substr(begin, message.find('"', begin) - begin);
    };
    EXPECT_EQ(shown("Käse α 氷 🧪"), "Käse α 氷 🧪");
    EXPECT_EQ(shown("\xE0\xA0\x80|\xED\x9F\xBF|\xF4\x8F\xBF\xBF"), "\xE0\xA0\x80|\xED\x9F\xBF|\xF4\x8F\xBF\xBF");
    EXPECT_EQ(shown("\xE2\x82|\xF0\x9F\xA7|\xC3|"), "??|???|?|");
    EXPECT_EQ(shown("a\nb\x7F\x1B"), "a?b??");
    EXPECT_EQ(shown("\xE9t\xE9"), "?t?");
    EXPECT_EQ(shown("\xC0\x80|\xE0\x80\x80|\xED\xA0\x80|\xF0\x80\x80\x80|\xF4\x90\x80\x80|\xF8|\xC3"),
              "??|???|???|????|????|?|?");
    EXPECT_EQ(shown(std::string(200, 'x')), std::string(200, 'x'));
    EXPECT_EQ(shown(std::string(201, 'x')), std::string(200, 'x') + "...");
    std::string many;
    for (int i = 0; i < 1000; ++i)
        many += "氷";
    EXPECT_EQ(shown(many).size(), 198U + 3U);
    EXPECT_EQ(shown("").size(), 0U);
}

TEST(message, that_is_too_long_is_cut_between_characters) {
    // The folder's path makes the message too long; each of its parts is cut by itself.
    const support::temporary_folder folder;
    std::string index = "file,name,formula\n";
    for (int i = 0; i < 30; ++i) {
        const std::string file = "f" + std::to_string(i);
        index += file + ',';
        for (int j = 0; j < 20 + i; ++j)
            index += "氷";
        index += ",X\n";
        folder.write(file + ".osd", "");
    }
    folder.write("index.csv", index);
    support::handle fluid;
    const auto [status, message] = fluid.open("X", ("folder=" + folder.path()).c_str());
    EXPECT_EQ(status, OSTREL_CANNOT_OPEN);
    EXPECT_LT(message.size(), 1024U);
    EXPECT_GT(message.size(), 1018U);
    EXPECT_TRUE(message.ends_with("..."));
    EXPECT_TRUE(message.ends_with("氷...") || message.ends_with("(...") || message[message.size() - 4] >= ' ')
        << message;
}

// Wherever the room ends, be it between two parts, the message is whole or ends with dots.
TEST(message, of_any_length_fits) {
    const support::temporary_folder folder;
    const std::string many(250, 'x');
    std::string index = "file,name,formula\n";
    for (const char *const file : {"tracera", "tracerb", "tracerc"}) {
        index += std::string(file) + ',' + many + ",X\n";
        folder.write(std::string(file) + ".osd", "");
    }
    folder.write("index.csv", index);
    std::string long_path = folder.path();
    while (long_path.size() < 160)
        long_path += "/.";
    std::size_t whole = 0, cut = 0, longest = 0;
    for (std::size_t length = 1; length <= 200; ++length) {
        support::handle fluid;
        const auto [status, message] =
            fluid.open(("tracer" + std::string(length, '-')).c_str(), ("folder=" + long_path).c_str());
        EXPECT_EQ(status, OSTREL_CANNOT_OPEN);
        longest = std::max(longest, message.size());
        ++(message.ends_with("?") ? whole : cut);
        EXPECT_TRUE(message.ends_with("?") || message.ends_with("...")) << message;
    }
    EXPECT_GT(whole, 0U);
    EXPECT_GT(cut, 0U);
    EXPECT_EQ(longest, 1023U);
}

} // namespace
