// SPDX-License-Identifier: MIT
// Written records, compared to the character, and read back by the reader.
#include "Records/record_reader.h"
#include "Records/record_writer.h"

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

using records::list_directed;
using records::record_writer;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(record_writer, integers) {
    EXPECT_EQ(list_directed({0}), "           0");
    EXPECT_EQ(list_directed({7}), "           7");
    EXPECT_EQ(list_directed({-7}), "          -7");
    EXPECT_EQ(list_directed({123456}), "      123456");
    EXPECT_EQ(list_directed({2147483647}), "  2147483647");
    EXPECT_EQ(list_directed({-2147483647}), " -2147483647");
    EXPECT_EQ(list_directed({std::numeric_limits<std::int32_t>::min()}), " -2147483648");
    EXPECT_EQ(list_directed({1, -2}), "           1          -2");
}

TEST(record_writer, logicals) {
    EXPECT_EQ(list_directed({true}), " T");
    EXPECT_EQ(list_directed({false}), " F");
    EXPECT_EQ(list_directed({true, false, 3}), " T F           3");
}

struct written {
    double value;
    const char *record;
};

class doubles : public testing::TestWithParam<written> {};

TEST_P(doubles, take_26_columns) {
    const std::string record = list_directed({GetParam().value});
    EXPECT_EQ(record, GetParam().record);
    EXPECT_EQ(record.size(), 26U);
}

INSTANTIATE_TEST_SUITE_P(record_writer, doubles,
                         testing::ValuesIn(std::initializer_list<written>{
                             {0.0, "   0.0000000000000000     "},
                             {-0.0, "  -0.0000000000000000     "},
                             {1.0, "   1.0000000000000000     "},
                             {-1.0, "  -1.0000000000000000     "},
                             {0.1, "  0.10000000000000001     "},
                             {-0.1, " -0.10000000000000001     "},
                             {0.5, "  0.50000000000000000     "},
                             {9.5, "   9.5000000000000000     "},
                             {10.0, "   10.000000000000000     "},
                             {92.14, "   92.140000000000001     "},
                             {591.75, "   591.75000000000000     "},
                             {-591.75, "  -591.75000000000000     "},
                             {1e3, "   1000.0000000000000     "},
                             {1e4, "   10000.000000000000     "},
                             {101325.0, "   101325.00000000000     "},
                             {1e6, "   1000000.0000000000     "},
                             {1e7, "   10000000.000000000     "},
                             {1e8, "   100000000.00000000     "},
                             {1e9, "   1000000000.0000000     "},
                             {1e10, "   10000000000.000000     "},
                             {1e11, "   100000000000.00000     "},
                             {1e12, "   1000000000000.0000     "},
                             {1e13, "   10000000000000.000     "},
                             {1e14, "   100000000000000.00     "},
                             {1e15, "   1000000000000000.0     "},
                             {1e16, "   10000000000000000.     "},
                             {-1e16, "  -10000000000000000.     "},
                             {12345678901234568.0, "   12345678901234568.     "},
                             {99999999999999984.0, "   99999999999999984.     "},
                             // The nearest number to this one is 1e17.
                             {9.9999999999999995e16, "   1.0000000000000000E+017"},
                             {1e17, "   1.0000000000000000E+017"},
                             {-1e17, "  -1.0000000000000000E+017"},
                             {1.5e17, "   1.5000000000000000E+017"},
                             {1e23, "   9.9999999999999992E+022"},
                             {1e99, "   9.9999999999999997E+098"},
                             {1e100, "   1.0000000000000000E+100"},
                             {1.7976931348623157e308, "   1.7976931348623157E+308"},
                             {-1.7976931348623157e308, "  -1.7976931348623157E+308"},
                             // These lie next to a change of the layout.
                             {0.099999999999999992, "   9.9999999999999992E-002"},
                             {0.99999999999999989, "  0.99999999999999989     "},
                             {9.9999999999999982, "   9.9999999999999982     "},
                             {0.01, "   1.0000000000000000E-002"},
                             {-0.01, "  -1.0000000000000000E-002"},
                             {0.0015, "   1.5000000000000000E-003"},
                             {1e-5, "   1.0000000000000001E-005"},
                             {1e-10, "   1.0000000000000000E-010"},
                             {1e-99, "   1.0000000000000000E-099"},
                             {1e-100, "   1.0000000000000000E-100"},
                             {2.2250738585072014e-308, "   2.2250738585072014E-308"},
                             {2.2250738585072009e-308, "   2.2250738585072009E-308"},
                             {4.9406564584124654e-324, "   4.9406564584124654E-324"},
                             {-4.9406564584124654e-324, "  -4.9406564584124654E-324"},
                             // These lie below their power of ten, and 17 digits round them up to it.
                             {1e-14, "   1.0000000000000000E-014"},
                             {-1e-14, "  -1.0000000000000000E-014"},
                             {1e98, "   1.0000000000000000E+098"},
                             {1e220, "   1.0000000000000000E+220"},
                             {1e-243, "   1.0000000000000000E-243"},
                             {nan, "                       NaN"},
                             {-nan, "                       NaN"},
                             {inf, "                  Infinity"},
                             {-inf, "                 -Infinity"},
                         }));

TEST(record_writer, rounding_decides_the_layout) {
    // Every power of ten and its neighbours are compared with the C library's rounding.
    for (int exponent = -307; exponent <= 308; ++exponent) {
        const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
        for (const double value : {power, std::nextafter(power, 0.0), std::nextafter(power, inf)}) {
            char digits[40];
            std::snprintf(digits, sizeof digits, "%.16e", value);
            const int e = std::atoi(std::strchr(digits, 'e') + 1);
            char expected[64];
            if (e >= -1 && e <= 16)
                std::snprintf(expected, sizeof expected, " %#20.*f     ", 16 - e, value);
            else
                std::snprintf(expected, sizeof expected, " %20.*sE%+04d", 18, digits, e);
            EXPECT_EQ(list_directed({value}), expected) << digits;
        }
    }
}

TEST(record_writer, texts) {
    EXPECT_EQ(list_directed({"text"}), " text");
    EXPECT_EQ(list_directed({" text "}), "  text ");
    EXPECT_EQ(list_directed({"one", "two"}), " onetwo");
    EXPECT_EQ(list_directed({"N", 5}), " N           5");
    EXPECT_EQ(list_directed({5, "N"}), "           5 N");
    EXPECT_EQ(list_directed({5, "N", "V"}), "           5 NV");
    EXPECT_EQ(list_directed({"N", 5, "V", true, "x"}), " N           5 V T x");
    EXPECT_EQ(list_directed({true, "vapor"}), " T vapor");
    EXPECT_EQ(list_directed({"vapor", true}), " vapor T");
    EXPECT_EQ(list_directed({1.0, "Tc", -1.0}), "   1.0000000000000000      Tc  -1.0000000000000000     ");
    EXPECT_EQ(list_directed({"IOSTAT returned ", 2}), " IOSTAT returned            2");
    EXPECT_EQ(list_directed({"IOSTAT returned ", -1}), " IOSTAT returned           -1");
    EXPECT_EQ(list_directed({std::string_view("a\0b", 3)}), std::string(" a\0b", 4));
}

TEST(record_writer, records) {
    record_writer out;
    EXPECT_EQ(out.text(), "");
    out.record({});
    EXPECT_EQ(out.text(), "\n");
    out.record({"names"});
    out.record({3, true});
    const std::array<double, 2> reals = {1.0, -2.5};
    out.record_list<double>(reals);
    const std::array<std::int32_t, 3> integers = {1, -20, 300};
    out.record_list<std::int32_t>(integers);
    out.record_list(std::span<const double>());
    out.record({7});
    EXPECT_EQ(out.text(), "\n"
                          " names\n"
                          "           3 T\n"
                          "   1.0000000000000000       -2.5000000000000000     \n"
                          "           1         -20         300\n"
                          "\n"
                          "           7\n");
}

TEST(record_writer, long_records_do_not_wrap) {
    record_writer out;
    const std::vector<double> list(1000, 0.1);
    out.record_list(std::span<const double>(list));
    std::string expected;
    for (int i = 0; i < 1000; ++i)
        expected += "  0.10000000000000001     ";
    EXPECT_EQ(out.text(), expected + '\n');
}

TEST(record_writer, written_doubles_read_back_bit_by_bit) {
    constexpr std::size_t per_record = 9; // a line of an array holds so many
    constexpr std::size_t count = 100000;
    std::mt19937_64 random(20240517);
    std::vector<double> values;
    while (values.size() < count) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isnan(value)) // the sign and the payload of a NaN are not written
            values.push_back(value);
    }
    values[0] = std::numeric_limits<double>::denorm_min();
    values[1] = -0.0;
    values[2] = inf;
    values[3] = -inf;
    // The same number of values has an ordinary size, for the fixed layout.
    for (std::size_t i = 4; i < count; i += 2)
        values[i] = std::ldexp(values[i], static_cast<int>(random() % 64) - 6 - std::ilogb(values[i]));

    for (std::size_t start = 0; start < count; start += per_record) {
        const std::span<const double> list =
            std::span<const double>(values).subspan(start, std::min(per_record, count - start));
        record_writer out;
        out.record_list(list);
        const std::string line = out.text().substr(0, out.text().size() - 1);
        std::int32_t index = 0;
        records::line_reader reader("line", line.data(), index, 1, static_cast<std::int32_t>(line.size()));
        std::array<double, per_record> back;
        back.fill(nan);
        ASSERT_TRUE(reader.read_list("value", std::span<double>(back).first(list.size()))) << reader.message();
        for (std::size_t i = 0; i < list.size(); ++i)
            ASSERT_EQ(std::bit_cast<std::uint64_t>(back[i]), std::bit_cast<std::uint64_t>(list[i])) << line;
    }
}

TEST(record_writer, written_integers_and_logicals_read_back) {
    std::mt19937 random(20240517);
    for (int i = 0; i < 10000; ++i) {
        const auto written = static_cast<std::int32_t>(random());
        const bool flag = random() % 2 == 0;
        const std::string line = list_directed({written, flag, "comment", 5});
        std::int32_t index = 0;
        records::line_reader reader("line", line.data(), index, 1, static_cast<std::int32_t>(line.size()));
        std::int32_t back = 0;
        bool flag_back = !flag;
        ASSERT_TRUE(reader.read({{"integer", back}, {"logical", flag_back}}));
        ASSERT_EQ(back, written);
        ASSERT_EQ(flag_back, flag);
    }
}

} // namespace
