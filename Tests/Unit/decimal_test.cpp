// SPDX-License-Identifier: MIT
// The decimal texts of the browser's module against those of the standard library: the same value, the same place where
// reading stops, the same error, and the same written texts.
#include "Interfaces/Browser/standard/decimal.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

/// What was read from a text, with a value that is left where none is read.
struct reading {
    double value = 12345.0;
    std::ptrdiff_t end = 0;
    std::errc error{};
};

template <class Read>
reading read(const std::string &text, Read function) {
    reading result;
    const auto [end, error] = function(text.data(), text.data() + text.size(), result.value);
    result.end = end - text.data();
    result.error = error;
    return result;
}

void expect_same_reading(const std::string &text) {
    const reading own =
        read(text, [](const char *a, const char *b, double &value) { return decimal::from_chars(a, b, value); });
    const reading standard =
        read(text, [](const char *a, const char *b, double &value) { return std::from_chars(a, b, value); });
    if (std::isnan(standard.value))
        EXPECT_TRUE(std::isnan(own.value)) << text;
    else
        EXPECT_EQ(bits(own.value), bits(standard.value)) << text << ": " << own.value << ", not " << standard.value;
    EXPECT_EQ(own.end, standard.end) << text;
    EXPECT_EQ(own.error, standard.error) << text;
}

/// The exact digits of a double, or of the number halfway to the next one: printf rounds neither of them at 1100
/// digits.
std::string exact_digits(long double value) {
    char text[1300];
    std::snprintf(text, sizeof text, "%.1100Le", value);
    return text;
}

/// Doubles with random bits.
class random_doubles {
public:
    double operator()() {
        for (;;)
            if (const double value = std::bit_cast<double>(generator_()); std::isfinite(value))
                return value;
    }
    std::uint64_t below(std::uint64_t bound) { return generator_() % bound; }

private:
    std::mt19937_64 generator_{20260101};
};

TEST(decimal, forms_of_texts) {
    for (const char *const text : {"",
                                   "-",
                                   "+1",
                                   ".",
                                   "-.",
                                   "1.",
                                   ".5",
                                   "-.5e1",
                                   "1e",
                                   "1e+",
                                   "1e-",
                                   "1e5x",
                                   "1.5.5",
                                   "0",
                                   "-0",
                                   "0e99999",
                                   "00012",
                                   "0.000",
                                   "1E3",
                                   "1e+3",
                                   "1e-3",
                                   "1d3",
                                   "inf",
                                   "-inf",
                                   "INFINITY",
                                   "infinit",
                                   "in",
                                   "nan",
                                   "-NaN",
                                   "nan(1_a)",
                                   "nan(",
                                   "nan(1",
                                   "nan(-)",
                                   "nano",
                                   " 1",
                                   "1 ",
                                   "0x10",
                                   "1e400",
                                   "-1e400",
                                   "1e-400",
                                   "-1e-400",
                                   "1e9999999",
                                   "1e-99999",
                                   "--1",
                                   "e5",
                                   "1,5",
                                   "1_000",
                                   "1e5.5",
                                   "1e0000005",
                                   "1e99999999999999999999",
                                   "0e99999999999999999999",
                                   "-nan(ab)",
                                   "1e-99999999999999999999"})
        expect_same_reading(text);
}

TEST(decimal, hard_cases) {
    for (const char *const text : {"2.2250738585072011e-308", // a loop for ever in old readers
                                   "2.2250738585072012e-308",
                                   "2.2250738585072014e-308",
                                   "4.9406564584124654e-324",
                                   "2.4703282292062327e-324",
                                   "2.4703282292062328e-324",
                                   "2.47032822920623272088e-324",
                                   "1.7976931348623157e308",
                                   "1.7976931348623158e308",
                                   "1.7976931348623159e308",
                                   "179769313486231580793e289",
                                   "9007199254740993",
                                   "9007199254740992.5",
                                   "9007199254740993.0000000000000000000000000000000000000001",
                                   "9007199254740991.4999999999999999999999999",
                                   "123456789012345678901234567890",
                                   "0.1",
                                   "0.3",
                                   "1e22",
                                   "1e23",
                                   "8.5e22",
                                   "999999999999999e22",
                                   "1000000000000000e23",
                                   "123456789012345e-22",
                                   "6.631236846766476e-316",
                                   "3.2378839133029012895883524125e-320",
                                   "5708990770823839524233143877797980545530986496e0",
                                   "1e-323",
                                   "3e-324",
                                   "7.2057594037927933e16",
                                   "30078505129381147446200",
                                   "1777820000000000000001"})
        expect_same_reading(text);
    const std::string zeros(2000, '0');
    for (const std::string &text :
         {"0." + zeros + "1e2001", "1" + zeros + "e-2000", "1." + zeros + "1", "9007199254740993." + zeros,
          "9007199254740993." + zeros + "1", std::string(1500, '9') + "e-1400", "0." + zeros, zeros + "7." + zeros})
        expect_same_reading(text);
}

TEST(decimal, halfway_between_two_doubles) {
    random_doubles random;
    for (int i = 0; i < 5'000; ++i) {
        const double value = std::abs(i % 4 == 0 ? random() * 0x1p-1022 : random());
        const double next = std::nextafter(value, std::numeric_limits<double>::infinity());
        if (std::isinf(next))
            continue;
        // The long double has eleven bits more, so that this is exact.
        const long double middle = (static_cast<long double>(value) + static_cast<long double>(next)) / 2;
        const std::string text = exact_digits(middle);
        expect_same_reading(text);
        const std::size_t letter = text.find('e');
        expect_same_reading(std::string(text).insert(letter, "1"));
        std::string below = text.substr(0, letter);
        below.erase(below.find_last_not_of('0') + 1);
        if (below.back() != '.') {
            --below.back();
            expect_same_reading(below + "99999" + text.substr(letter));
        }
    }
}

TEST(decimal, random_texts) {
    random_doubles random;
    for (int i = 0; i < 300'000; ++i) {
        std::string text;
        if (random.below(2) == 0)
            text += '-';
        const std::uint64_t digits = 1 + random.below(i % 50 == 0 ? 900 : 24);
        const std::uint64_t point = random.below(digits + 2);
        for (std::uint64_t k = 0; k < digits; ++k) {
            if (k == point)
                text += '.';
            text += static_cast<char>('0' + random.below(10));
        }
        if (random.below(4) != 0)
            text +=
                'e' + std::to_string(static_cast<int>(random.below(i % 2 == 0 ? 700 : 60)) - (i % 2 == 0 ? 350 : 30));
        expect_same_reading(text);
    }
}

template <class... Arguments>
std::string standard_text(Arguments... arguments) {
    char text[2000];
    return {text, std::to_chars(text, text + sizeof text, arguments...).ptr};
}
template <class... Arguments>
std::string own_text(Arguments... arguments) {
    char text[2000];
    return {text, decimal::to_chars(text, text + sizeof text, arguments...).ptr};
}

TEST(decimal, shortest_texts) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {0.0,
                               -0.0,
                               1.0,
                               -1.5,
                               100.0,
                               1e5,
                               123456.0,
                               1e15,
                               1e16,
                               1e21,
                               1e22,
                               1e23,
                               1e100,
                               0.1,
                               1e-3,
                               1.5e-4,
                               1e-5,
                               5e-324,
                               1.7976931348623157e308,
                               9007199254740993.0,
                               infinity,
                               -infinity})
        EXPECT_EQ(own_text(value), standard_text(value));
    random_doubles random;
    for (int i = 0; i < 50'000; ++i) {
        const double value = i % 2 == 0 ? random() : std::ldexp(random.below(2'000'000'000), -20);
        EXPECT_EQ(own_text(value), standard_text(value));
    }
}

TEST(decimal, shortest_texts_at_powers_of_two_read_back) {
    for (int power = -1074; power < 1024; ++power) {
        const double value = std::ldexp(1.0, power);
        const std::string text = own_text(value);
        double again = 0;
        std::from_chars(text.data(), text.data() + text.size(), again);
        EXPECT_EQ(again, value) << text;
        EXPECT_LE(text.size(), standard_text(value).size() + 1) << text;
    }
}

TEST(decimal, texts_of_a_precision) {
    random_doubles random;
    for (int i = 0; i < 20'000; ++i) {
        const double value = i % 2 == 0 ? random() : std::ldexp(random.below(2'000'000'000), -20);
        const int precision = static_cast<int>(random.below(20));
        for (const std::chars_format format :
             {std::chars_format::fixed, std::chars_format::scientific, std::chars_format::general})
            EXPECT_EQ(own_text(value, format, precision), standard_text(value, format, precision)) << value;
    }
}

TEST(decimal, a_buffer_that_is_too_small) {
    char text[4];
    for (const double value : {12345.0, 1e100, -1.5e-7}) {
        EXPECT_EQ(decimal::to_chars(text, text + sizeof text, value).ec, std::errc::value_too_large);
        EXPECT_EQ(decimal::to_chars(text, text + sizeof text, value, std::chars_format::scientific, 3).ec,
                  std::errc::value_too_large);
    }
    EXPECT_EQ(decimal::to_chars(text, text + sizeof text, 1.25).ptr, text + 4);
}

} // namespace
