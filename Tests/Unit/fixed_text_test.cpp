// SPDX-License-Identifier: MIT
#include "Records/error_text.h"
#include "Records/fixed_text.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using namespace std::string_view_literals;
using records::error_text;
using records::fill_text;
using records::fixed_text;
using records::same_text;
using records::trimmed;

TEST(trimmed, drops_trailing_blanks_only) {
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed(" "), "");
    EXPECT_EQ(trimmed("     "), "");
    EXPECT_EQ(trimmed("a"), "a");
    EXPECT_EQ(trimmed("a "), "a");
    EXPECT_EQ(trimmed("  a b   "), "  a b");
    EXPECT_EQ(trimmed("a\t"), "a\t");
    EXPECT_EQ(trimmed("a\t  "), "a\t");
    EXPECT_EQ(trimmed("a\n "), "a\n");
    EXPECT_EQ(trimmed("a\0  "sv), "a\0"sv);
    EXPECT_EQ(trimmed("\xC2\xA0 "), "\xC2\xA0");
    EXPECT_EQ(trimmed(std::string_view()), "");
}

TEST(same_text, ignores_trailing_blanks) {
    EXPECT_TRUE(same_text("", ""));
    EXPECT_TRUE(same_text("", "   "));
    EXPECT_TRUE(same_text("Tv", "Tv      "));
    EXPECT_TRUE(same_text("a b  ", "a b"));
    EXPECT_FALSE(same_text("a", " a"));
    EXPECT_FALSE(same_text("a", "A"));
    EXPECT_FALSE(same_text("a", "ab"));
    EXPECT_FALSE(same_text("a b", "ab"));
    EXPECT_FALSE(same_text("a", "a\t"));
    EXPECT_FALSE(same_text("a", "a\0"sv));
    EXPECT_FALSE(same_text("", "\0"sv));
    // In a comparison with a text of fixed length, the rest of the other text must be blank.
    EXPECT_TRUE(same_text("tv", fixed_text<2>("tv")));
    EXPECT_TRUE(same_text("tv         ", fixed_text<2>("tv")));
    EXPECT_TRUE(same_text("abcdefgh   ", fixed_text<8>("abcdefgh")));
    EXPECT_FALSE(same_text("abcdefgh  i", fixed_text<8>("abcdefgh")));
    EXPECT_FALSE(same_text("abcdefghi", fixed_text<8>("abcdefgh")));
    EXPECT_FALSE(same_text("tvx", fixed_text<2>("tv")));
    EXPECT_FALSE(same_text("t", fixed_text<2>("tv")));
}

std::string filled(std::size_t size, std::initializer_list<std::string_view> pieces) {
    std::string field(size + 2, '#');
    fill_text(std::span(field).subspan(1, size), pieces);
    EXPECT_EQ(field.front(), '#');
    EXPECT_EQ(field.back(), '#');
    return field.substr(1, size);
}

TEST(fill_text, pads_and_truncates) {
    EXPECT_EQ(filled(6, {}), "      ");
    EXPECT_EQ(filled(6, {""}), "      ");
    EXPECT_EQ(filled(6, {"abc"}), "abc   ");
    EXPECT_EQ(filled(6, {"abc", "de"}), "abcde ");
    EXPECT_EQ(filled(6, {"abc ", "", " d"}), "abc  d");
    EXPECT_EQ(filled(6, {"abcdef"}), "abcdef");
    EXPECT_EQ(filled(6, {"abcdefg"}), "abcdef");
    EXPECT_EQ(filled(6, {"abcd", "efgh", "ij"}), "abcdef");
    EXPECT_EQ(filled(6, {"abcdef", "g"}), "abcdef");
    EXPECT_EQ(filled(1, {"abc"}), "a");
    EXPECT_EQ(filled(0, {"abc"}), "");
    EXPECT_EQ(filled(0, {}), "");
    EXPECT_EQ(filled(4, {"a\0b"sv}), "a\0b "sv);
    EXPECT_EQ(filled(4, {"\xC3\xA4\t\n\v"}), "\xC3\xA4\t\n");
}

TEST(fixed_text, starts_blank) {
    const fixed_text<5> text;
    EXPECT_EQ(text.padded(), "     ");
    EXPECT_EQ(text.trimmed(), "");
}

TEST(fixed_text, keeps_its_length) {
    const fixed_text<5> shorter("ab");
    EXPECT_EQ(shorter.padded(), "ab   ");
    EXPECT_EQ(shorter.trimmed(), "ab");
    const fixed_text<5> longer("abcdefg");
    EXPECT_EQ(longer.padded(), "abcde");
    const fixed_text<5> leading("  a");
    EXPECT_EQ(leading.padded(), "  a  ");
    EXPECT_EQ(leading.trimmed(), "  a");
    const fixed_text<5> bytes("\0\xFF"sv);
    EXPECT_EQ(bytes.padded(), "\0\xFF   "sv);
    fixed_text<5> replaced("abcde");
    replaced.assign({"x", "y"});
    EXPECT_EQ(replaced.padded(), "xy   ");
    replaced.assign({});
    EXPECT_EQ(replaced.padded(), "     ");
}

TEST(fixed_text, gives_its_characters_to_be_changed) {
    fixed_text<4> text("abc");
    ASSERT_EQ(text.characters().size(), 4U);
    text.characters()[3] = 'd';
    text.characters()[0] = 'A';
    EXPECT_EQ(text.padded(), "Abcd");
}

TEST(fixed_text, compares_all_bytes) {
    EXPECT_EQ(fixed_text<4>("ab"), fixed_text<4>("ab  "));
    EXPECT_EQ(fixed_text<4>("abcdX"), fixed_text<4>("abcdY"));
    EXPECT_FALSE(fixed_text<4>("ab") == fixed_text<4>(" ab"));
    EXPECT_FALSE(fixed_text<4>("ab") == fixed_text<4>("ab\0"sv));
    EXPECT_FALSE(fixed_text<4>("ab") == fixed_text<4>("aB"));
}

TEST(fixed_text, packs_eight_characters) {
    static_assert(fixed_text<8>("Tv").packed() == fixed_text<8>("Tv      ").packed());
    static_assert(fixed_text<8>().packed() == 0x2020202020202020);
    EXPECT_EQ(fixed_text<8>("abcdefgh").packed(), fixed_text<8>("abcdefghi").packed());
    // Each of the eight bytes counts.
    const std::string text = "abcdefgh";
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string other = text;
        other[i] = '.';
        EXPECT_NE(fixed_text<8>(other).packed(), fixed_text<8>(text).packed()) << i;
    }
    EXPECT_NE(fixed_text<8>("ab").packed(), fixed_text<8>("ba").packed());
    // The number must be the same however it is made, and letters must become lower case whatever stands beside them.
    for (int byte = 0; byte < 256; ++byte)
        for (std::size_t i = 0; i < text.size(); ++i) {
            std::string other = "AZ@[\xC1\xFFz`";
            other[i] = static_cast<char>(byte);
            std::string folded = other;
            for (char &c : folded)
                c = records::lower(c);
            EXPECT_EQ(records::packed(other), fixed_text<8>(other).packed());
            EXPECT_EQ(records::lower(records::packed(other)), fixed_text<8>(folded).packed()) << byte << " " << i;
            EXPECT_EQ(fixed_text<8>::unpacked(records::packed(other)).padded(), other);
        }
}

TEST(error_text, says_no_errors_until_something_fails) {
    error_text text;
    EXPECT_TRUE(text.clear());
    EXPECT_EQ(text.trimmed(), "No errors");
    EXPECT_EQ(text.padded(), "No errors" + std::string(247, ' '));
    text.report({"Ostrel error: ", "something", "."});
    EXPECT_FALSE(text.clear());
    EXPECT_EQ(text.trimmed(), "Ostrel error: something.");
    EXPECT_EQ(text.padded().size(), 256U);
    text.report({"short"});
    EXPECT_EQ(text.padded(), "short" + std::string(251, ' '));
    text.reset();
    EXPECT_TRUE(text.clear());
    EXPECT_EQ(text.trimmed(), "No errors");
}

TEST(error_text, loses_the_end_of_longer_messages) {
    error_text text;
    text.report({std::string(255, 'a'), "bc"});
    EXPECT_EQ(text.padded(), std::string(255, 'a') + "b");
    text.report({std::string(1000, 'd')});
    EXPECT_EQ(text.padded(), std::string(256, 'd'));
}

TEST(error_text, an_empty_report_is_a_failure_too) {
    error_text text;
    text.report({});
    EXPECT_FALSE(text.clear());
    EXPECT_EQ(text.trimmed(), "");
    text.report({"No errors", " at all"});
    EXPECT_FALSE(text.clear());
    text.report({"No errors   "});
    EXPECT_TRUE(text.clear());
}

} // namespace
