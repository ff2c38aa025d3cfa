// SPDX-License-Identifier: MIT
// The trace of a parameter file: it must tell the very values that the library reads, for whole and for damaged files.
#include "CommandLine/trace.h"

#include "Equations/fluid_parameters.h"
#include "Tests/Support/entry_points.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <random>

namespace {

using command::is_number;
using command::records_of;
using command::trace;
using command::wanted;
using command::wanted_count;
using support::temporary_folder;

struct outcome {
    bool complete;
    std::int64_t record;
    std::string written; ///< the values as the library writes them
};

outcome read_by_library(const temporary_folder &folder, const std::string &text) {
    records::file_reader reader(folder.write("fluid.osd", text));
    equations::fluid_parameters fluid;
    equations::read(reader, fluid);
    records::record_writer writer;
    equations::write(writer, fluid);
    return {!reader.failed(), reader.record_number(), writer.text()};
}

/// The file with a record for each value, and without everything that is not read.
std::string values_only(const std::vector<std::string_view> &records, const command::file_trace &traced) {
    std::string text;
    for (const command::record_trace &read : traced.reads) {
        const std::string_view record = records[static_cast<std::size_t>(read.first - 1)];
        constexpr std::int64_t headings_and_names = 4;
        if (read.first <= headings_and_names || read.taken.empty() || record.find_first_not_of(" \t") == record.npos)
            text.append(record).append("\n");
        if (read.first > headings_and_names)
            for (const std::string_view value : read.taken)
                text.append(value).append("\n");
    }
    return text;
}

std::string contents(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The text with up to four characters removed, replaced or put in.
std::string damaged(std::string text, std::mt19937 &random) {
    constexpr std::string_view characters = "  ,,/*\n\n\t\r012589.-eTFx";
    const auto below = [&](std::size_t limit) { return random() % limit; };
    for (std::size_t edits = below(5); edits > 0 && !text.empty(); --edits) {
        const std::size_t place = below(text.size());
        if (below(3) == 0)
            text.erase(place, 1 + below(3));
        else
            text.replace(place, below(2), 1, characters[below(characters.size())]);
    }
    return text;
}

TEST(trace, tells_what_the_library_reads) {
    std::vector<std::string> texts;
    for (const char *const folder : {OSTREL_TESTS "/../Fuzz/corpus/fluid_file", OSTREL_TESTS "/Fluids"})
        for (const auto &entry : std::filesystem::directory_iterator(folder))
            texts.push_back(contents(entry.path()));
    texts.push_back(contents(OSTREL_TESTS "/CommandLine/base.osd"));
    ASSERT_GT(texts.size(), 20U);
    const temporary_folder folder;
    std::mt19937 random(1);
    int complete = 0;
    int failed = 0;
    for (int i = 0; i < 6000; ++i) {
        const std::string text = damaged(texts[static_cast<std::size_t>(i) % texts.size()], random);
        SCOPED_TRACE(testing::PrintToString(text));
        const outcome expected = read_by_library(folder, text);
        const auto records = records_of(text);
        const auto traced = trace(records);
        ASSERT_EQ(traced.complete, expected.complete);
        if (!expected.complete) {
            ++failed;
            continue;
        }
        ++complete;
        ASSERT_EQ(traced.reads.back().last, expected.record);
        const outcome again = read_by_library(folder, values_only(records, traced));
        ASSERT_TRUE(again.complete);
        ASSERT_EQ(again.written, expected.written);
    }
    EXPECT_GT(complete, 1000);
    EXPECT_GT(failed, 1000);
}

TEST(trace, names_the_fields_and_counts_their_values) {
    const auto records = records_of("h\nn\nl\nh\n92\nT\n590,1 Tc\n41\n.26\n384\n0\n0\n7\nF\n5\n270\n3\n2*600\n900 Tv\n"
                                    "5\n6e-6 300 / 200\n1\n0.02\n");
    const auto traced = trace(records);
    ASSERT_TRUE(traced.complete);
    const auto names = [&](std::size_t read) {
        std::string text = wanted(records, read).name + ' ' + wanted(records, read).kind;
        for (std::size_t place = 1; place < wanted_count(records, read); ++place)
            text += ", " + wanted(records, read, place).name;
        return text;
    };
    EXPECT_EQ(names(0), "heading ");
    EXPECT_EQ(names(1), "name a text");
    EXPECT_EQ(names(4), "MM a real");
    EXPECT_EQ(names(5), "vapor a logical");
    EXPECT_EQ(names(12), "gas_type an integer");
    EXPECT_EQ(names(17), "Tv(1) a real, Tv(2), Tv(3)");
    EXPECT_EQ(names(19), "mu_ref_s a real, T_ref_s, Tchar_s");
    EXPECT_EQ(wanted_count(records, 0), 0U);
    EXPECT_EQ(wanted_count(records, 4), 1U);
    EXPECT_THAT(traced.reads[6].taken, testing::ElementsAre("590,"));
    EXPECT_EQ(traced.reads[6].rest, "1 Tc");
    EXPECT_THAT(traced.reads[17].taken, testing::ElementsAre("2*600", "900 "));
    EXPECT_EQ(traced.reads[17].first, 18);
    EXPECT_EQ(traced.reads[17].last, 19);
    EXPECT_EQ(traced.reads[17].rest, "Tv");
    EXPECT_THAT(traced.reads[19].taken, testing::ElementsAre("6e-6 ", "300 ", "/ 200"));
}

TEST(trace, lists_without_values_have_no_name) {
    const auto records = records_of("h\nn\nl\nh\n92\nF\n300\n1\n.3\n0\n0\n1\nF\n5\n270\n0\nnothing\n3\n3\n");
    EXPECT_EQ(wanted(records, 16).name, "");
    EXPECT_EQ(wanted_count(records, 16), 0U);
    EXPECT_TRUE(trace(records).complete);
}

TEST(trace, knows_numbers) {
    for (const char *const text : {"5", "-.5", "1e3", "1d-3", "8*601.5", "1.5+3"})
        EXPECT_TRUE(is_number(text)) << text;
    for (const char *const text : {"", "x", "5K", "2nd", "inf", "0*5", "1,", "1 2", "(5", "/"})
        EXPECT_FALSE(is_number(text)) << text;
}

} // namespace
