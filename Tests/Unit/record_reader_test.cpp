// SPDX-License-Identifier: MIT
// A table of records for the reader. Each row has the text, the wanted values, and the result.
#include "Records/record_reader.h"
#include "Tests/Support/entry_points.h"

#include <bit>
#include <cerrno>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <optional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace {

using namespace std::string_literals;
using records::file_reader;
using records::fixed_text;
using records::item;
using records::line_reader;
using records::record_reader;
using testing::HasSubstr;
using testing::StartsWith;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t longest_line = 255;

struct kept {};
constexpr kept keep;
using value = std::variant<kept, double, std::int32_t, bool, std::string_view>;

const std::string missing = "no value left";
const std::string no_record = "no record left";

struct failure {
    std::int64_t record;
    std::string_view wanted;
    std::string found;
};

enum class form { file, lines, both };

/// `reads` lists the READs, separated by blanks: r, i and l are a real, an integer and a logical of one READ, 0 is a
/// READ of nothing, n a name, h a heading. The values of a row are called v1, v2 and so on.
struct row {
    form in;
    std::string text;
    std::string_view reads;
    std::vector<value> values;
    std::optional<failure> fails = {};
};

/// A row whose first value, wanted from the first record, cannot be read.
row refused(char kind, std::string text, std::string found) {
    const std::string_view reads = kind == 'r' ? "r" : kind == 'i' ? "i" : "l";
    const std::string_view wanted = kind == 'r' ? "v1 (a real)" : kind == 'i' ? "v1 (an integer)" : "v1 (a logical)";
    return {form::both, std::move(text), reads, {keep}, failure{1, wanted, std::move(found)}};
}

row refused(char kind, const std::string &text) {
    return refused(kind, text, text);
}

row one_real(std::string text, double expected) {
    return {form::both, std::move(text), "r", {expected}};
}

row one_integer(std::string text, std::int32_t expected) {
    return {form::both, std::move(text), "i", {expected}};
}

row one_logical(std::string text, bool expected) {
    return {form::both, std::move(text), "l", {expected}};
}

row one_name(std::string text, std::string_view expected) {
    return {form::both, std::move(text), "n", {expected}};
}

std::string times(std::size_t count, char c) {
    return std::string(count, c);
}

const std::vector<row> table = {
    // The ends of values.
    one_real("591.75", 591.75),
    one_real("591.75 K", 591.75),
    one_real("591.75\tTc [K]", 591.75),
    one_real("591.75,Tc", 591.75),
    one_real("591.75/Tc", 591.75),
    one_real("   591.75", 591.75),
    one_real("\t591.75", 591.75),
    one_real(" \t 591.75\t ", 591.75),
    {form::both, "1 2\t3,4 , 5\t,\t6,\t7 ,8", "rrrrrrrr", {1, 2, 3, 4, 5, 6, 7, 8}},
    refused('r', "591.75K"),
    refused('r', "92.14#x"),
    refused('r', "5-->"),
    refused('r', "1.5f"),
    refused('r', "0x10"),
    refused('r', "0x1p3"),
    refused('r', "1.0.0"),
    refused('r', "1_000"),
    refused('r', "'1'"),
    refused('r', "\"1\""),
    refused('r', "5;6"),
    refused('r', "5:"),
    refused('r', "5!"),
    refused('r', "5=6"),
    refused('r', "(5)"),
    refused('r', "[5]"),
    refused('r', "5%"),
    refused('r', "$5"),
    refused('r', "&x"),
    refused('r', "Tc"),
    refused('r', "\v5", "?5"),
    refused('r', "5\v", "5?"),
    refused('r', "\f5", "?5"),
    refused('r', "5\f6", "5?6"),
    refused('r', "5\r6", "5?6"),
    refused('r',
            "\xC2\xA0"
            "5",
            "??5"),
    refused('r', "5\xC2\xA0K", "5??K"),
    refused('r',
            "\xA0"
            "5",
            "?5"),
    refused('r',
            "\xE2\x88\x92"
            "5",
            "???5"),
    refused('r',
            "1e\xE2\x88\x92"
            "5",
            "1e???5"),
    refused('r',
            "\xEF\xBB\xBF"
            "5",
            "???5"),
    refused('r',
            "5\xC2\xB0"
            "C",
            "5??C"),
    refused('r', "\0"s, "?"),
    refused('r', "5\0"s, "5?"),
    refused('r', "5\0 6"s, "5?"),
    refused('r', "\0 5"s, "?"),
    refused('r', times(60, '5') + "K", "5555555555555555555555555555555555555555..."),
    refused('i', "5K"),
    refused('i', "5-->"),
    refused('i', "5;"),
    refused('i', "'5'"),
    refused('i',
            "\xEF\xBB\xBF"
            "5",
            "???5"),
    refused('i', "5\0"s, "5?"),
    refused('i', "\v5", "?5"),

    // The rest of a record is ignored.
    one_real("92.14 [kg/kmol] molar mass, 'unterminated", 92.14),
    one_real("92.14 \0\xFF\v 3*"s, 92.14),
    one_real("92.14,junk", 92.14),
    one_real("92.14,,,", 92.14),
    one_integer("3 0*0", 3),
    one_logical("T 17*", true),
    {form::both, "1 2 3\n4 5 6", "r r", {1, 4}},
    {form::both, "1,2,3\n4,5,6", "rr rr", {1, 2, 4, 5}},
    {form::both, "1 junk\n2 junk\n3 junk", "r r r", {1, 2, 3}},
    {form::both, "1 /\n2", "r r", {1, 2}},

    // Reals.
    one_real("5", 5.0),
    one_real("+5", 5.0),
    one_real("-5", -5.0),
    one_real("5.", 5.0),
    one_real(".5", 0.5),
    one_real("+.5", 0.5),
    one_real("-.5", -0.5),
    one_real("-5.", -5.0),
    one_real("00012.500", 12.5),
    one_real("0", 0.0),
    one_real("-0", -0.0),
    one_real("+0", 0.0),
    one_real("-0.0e5", -0.0),
    one_real("1.5e3", 1500.0),
    one_real("1.5E3", 1500.0),
    one_real("1.5d3", 1500.0),
    one_real("1.5D3", 1500.0),
    one_real("1.5q3", 1500.0),
    one_real("1.5Q3", 1500.0),
    one_real("1.5e+3", 1500.0),
    one_real("1.5D-3", 0.0015),
    one_real("1.5q-3", 0.0015),
    one_real("1.5+3", 1500.0),
    one_real("1.5-3", 0.0015),
    one_real("15+2", 1500.0),
    one_real("15-2", 0.15),
    one_real("-1.5+3", -1500.0),
    one_real(".5+1", 5.0),
    one_real("5.e1", 50.0),
    one_real("5.+1", 50.0),
    one_real(".5e1", 5.0),
    one_real("1e000003", 1000.0),
    one_real("1+003", 1000.0),
    one_real("1 e5", 1.0),
    one_real("1,5e3", 1.0),
    one_real("inf", inf),
    one_real("INF", inf),
    one_real("+inf", inf),
    one_real("-Inf", -inf),
    one_real("infinity", inf),
    one_real("-INFINITY", -inf),
    one_real("InFiNiTy,1", inf),
    one_real("nan", nan),
    one_real("NaN", nan),
    one_real("+NAN", nan),
    one_real("-nan", nan),
    one_real("nan(x)", nan),
    one_real("NaN(0x7f)", nan),
    refused('r', "infin"),
    refused('r', "infinit"),
    refused('r', "infinityx"),
    refused('r', "inf1"),
    refused('r', "in"),
    refused('r', "i"),
    refused('r', "nanq"),
    refused('r', "na"),
    refused('r', "nan(x"),
    refused('r', "nan(x)y"),
    refused('r', "nan(x)y)"),
    refused('r', "nan(x))"),
    refused('r', "nan)"),
    refused('r', ".nan"),
    refused('r', "1.#INF"),
    refused('r', "1.#QNAN"),
    refused('r', "."),
    refused('r', "+"),
    refused('r', "-"),
    refused('r', "-."),
    refused('r', "--1"),
    refused('r', "++1"),
    refused('r', "+-1"),
    refused('r', "+ 1", "+"),
    refused('r', "1e"),
    refused('r', "1d"),
    refused('r', "1q"),
    refused('r', "1e+"),
    refused('r', "1e-"),
    refused('r', "1+"),
    refused('r', "1-"),
    refused('r', "1e+-5"),
    refused('r', "1ee5"),
    refused('r', "1ed5"),
    refused('r', "1e5e5"),
    refused('r', "1e5."),
    refused('r', "1e5.5"),
    refused('r', "1e 5", "1e"),
    refused('r', "1.5+3+2"),
    refused('r', "e5"),
    refused('r', ".e5"),
    refused('r', "+e5"),
    refused('r', "1..5"),
    refused('r', "1g5"),
    refused('r', "T"),
    refused('r', ".true."),

    // Reals out of range, and the rounding of reals within it.
    one_real("1e308", 1e308),
    one_real("1e309", inf),
    one_real("1e400", inf),
    one_real("-1e400", -inf),
    one_real("1e-400", 0.0),
    one_real("-1e-400", -0.0),
    one_real("1e99999999999999999999", inf),
    one_real("-1d99999999999999999999", -inf),
    one_real("1e-99999999999999999999", 0.0),
    one_real("1+18446744073709551617", inf),
    one_real("0e999999", 0.0),
    one_real("-0e999999", -0.0),
    one_real("0.000e-999999", 0.0),
    one_real("0e99999999999999999999", 0.0),
    one_real("1.7976931348623157e308", std::numeric_limits<double>::max()),
    one_real("1.7976931348623158e308", std::numeric_limits<double>::max()),
    one_real("1.7976931348623159e308", inf),
    {form::file, "17976931348623157" + times(292, '0'), "r", {std::numeric_limits<double>::max()}},
    one_real("2.2250738585072014e-308", std::numeric_limits<double>::min()),
    one_real("2.2250738585072011e-308", 0x0.fffffffffffffp-1022),
    one_real("4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()),
    one_real("5e-324", std::numeric_limits<double>::denorm_min()),
    one_real("2.4703282292062328e-324", std::numeric_limits<double>::denorm_min()),
    one_real("2.4703282292062327e-324", 0.0),
    one_real("7.4109846876186982e-324", 0x2p-1074),
    one_real("1e-310", 1e-310),
    one_real("-3.5d-320", -3.5e-320),
    one_real("0.1", 0.1),
    one_real("0.1" + times(200, '0'), 0.1),
    one_real("." + times(200, '3'), 1.0 / 3.0),
    one_real("9007199254740993", 9007199254740992.0),
    one_real("9007199254740993.", 9007199254740992.0),
    one_real("9007199254740993." + times(200, '0') + "1", 9007199254740994.0),
    one_real("9007199254740995", 9007199254740996.0),
    one_real("900719925474099.3e1", 9007199254740992.0),
    one_real("1.00000000000000011102230246251565404236316680908203125", 1.0),
    one_real("1.00000000000000011102230246251565404236316680908203124", 1.0),
    one_real("1.00000000000000011102230246251565404236316680908203125" + times(150, '0') + "1", 1.0000000000000002),
    one_real("1.00000000000000033306690738754696212708950042724609375", 1.0000000000000004),
    one_real("8.5e22", 8.5e22),
    one_real("1e23", 1e23),
    one_real("6929495644600919.5", 6929495644600920.0),
    one_real("6929495644600920.5", 6929495644600920.0),
    one_real("." + times(200, '0') + "1e201", 1.0),
    one_real("1" + times(200, '0') + "d-200", 1.0),
    {form::file, "1." + times(5000, '0') + "1", "r", {1.0}},
    {form::file,
     "1.00000000000000011102230246251565404236316680908203125" + times(5000, '0') + "1",
     "r",
     {1.0000000000000002}},
    {form::file, "." + times(5000, '0') + "1e5001", "r", {1.0}},
    {form::file, "1" + times(5000, '0') + "-5000", "r", {1.0}},
    {form::file, times(5000, '9'), "r", {inf}},

    // Integers.
    one_integer("5", 5),
    one_integer("+5", 5),
    one_integer("-5", -5),
    one_integer("0", 0),
    one_integer("-0", 0),
    one_integer("007", 7),
    one_integer("-0000000000000000000000000000012", -12),
    one_integer("2147483647", 2147483647),
    one_integer("-2147483648", std::numeric_limits<std::int32_t>::min()),
    one_integer("7,8", 7),
    one_integer("7/8", 7),
    one_integer("7\tN", 7),
    {form::both, "1 -2,+3", "iii", {1, -2, 3}},
    refused('i', "5.0"),
    refused('i', "5."),
    refused('i', ".5"),
    refused('i', "5e0"),
    refused('i', "5d0"),
    refused('i', "5+0"),
    refused('i', "2147483648"),
    refused('i', "-2147483649"),
    refused('i', "4294967296"),
    refused('i', "4294967301"),
    refused('i', "99999999999999999999"),
    refused('i', "-99999999999999999999"),
    refused('i', "+"),
    refused('i', "-"),
    refused('i', "+-5"),
    refused('i', "-+5"),
    refused('i', "--5"),
    refused('i', "++5"),
    refused('i', "+ 5", "+"),
    refused('i', "0x10"),
    refused('i', "1_4"),
    refused('i', "T"),
    refused('i', "inf"),
    refused('i', "nan"),

    // Logicals.
    one_logical("T", true),
    one_logical("t", true),
    one_logical("F", false),
    one_logical("f", false),
    one_logical(".T", true),
    one_logical(".f", false),
    one_logical(".true.", true),
    one_logical(".FALSE.", false),
    one_logical("True", true),
    one_logical("false", false),
    one_logical("TRUEISH", true),
    one_logical("fabulous", false),
    one_logical(".t.5", true),
    one_logical("T;", true),
    one_logical("F#'x'", false),
    one_logical("T*3", true),
    one_logical("t=f", true),
    one_logical("T/F", true),
    one_logical("F,T", false),
    one_logical("F\tT", false),
    one_logical("  T     vapor", true),
    {form::both, "T F,.t .false.", "llll", {true, false, true, false}},
    refused('l', "1"),
    refused('l', "0"),
    refused('l', "yes"),
    refused('l', "no"),
    refused('l', "'T'"),
    refused('l', "\"F\""),
    refused('l', "."),
    refused('l', "..T"),
    refused('l', "..T."),
    refused('l', ". T", "."),
    refused('l', "-T"),
    refused('l', "x"),
    refused('l', "\0T"s, "?T"),
    refused('l', "\xEF\xBB\xBFT", "???T"),

    // Repeat counts.
    {form::both, "3*0.5", "rrr", {0.5, 0.5, 0.5}},
    {form::both, "3*0.5 7", "rrrr", {0.5, 0.5, 0.5, 7}},
    {form::both, "1 2*5,7", "rrrr", {1, 5, 5, 7}},
    {form::both, "1*5", "r", {5}},
    {form::both, "3*0.5\n7", "r r", {0.5, 7}},
    {form::both, "5*0.5\n7 8", "rr rr", {0.5, 0.5, 7, 8}},
    {form::both, "2147483647*1.5\n2", "rr r", {1.5, 1.5, 2}},
    {form::both, "03*7", "iii", {7, 7, 7}},
    {form::both, "2*-7 2*+8", "iiii", {-7, -7, 8, 8}},
    {form::both, "2*T,2*.f", "llll", {true, true, false, false}},
    {form::both, "2*5/6", "rrr", {5, 5, keep}},
    {form::both, "2*1e3 4*nan 2*-inf", "rrrrr", {1000, 1000, nan, nan, nan}},
    {form::both, "10*1,10*2", "rrrrrrrrrrrrrrrrrrrr", {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2}},
    refused('r', "0*5", "a repeat count of 0"),
    refused('i', "0*5", "a repeat count of 0"),
    refused('l', "0*T", "a repeat count of 0"),
    refused('r', "000*5", "a repeat count of 0"),
    refused('r', "0*", "a repeat count of 0"),
    refused('r', "-3*5"),
    refused('r', "+3*5"),
    refused('i', "-3*5"),
    refused('i', "+3*5"),
    refused('l', "-3*T"),
    refused('r', "1.5*5"),
    refused('i', "3.*5"),
    refused('r', "1e1*5"),
    refused('r', "*5"),
    refused('i', "*"),
    refused('r', "3**5", "*5"),
    refused('r', "2*3*4", "3*4"),
    refused('i', "2*x", "x"),
    refused('l', "2*1", "1"),
    refused('r', "x*5"),
    {form::both, "3 *5", "rr", {3, keep}, failure{1, "v2 (a real)", "*5"}},
    {form::both, "1 0*5", "rr", {1, keep}, failure{1, "v2 (a real)", "a repeat count of 0"}},

    // Null values.
    {form::both, ",5", "r", {keep}},
    {form::both, ",5", "rr", {keep, 5}},
    {form::both, " , 5", "rr", {keep, 5}},
    {form::both, "\t,\t5", "rr", {keep, 5}},
    {form::both, ",,5", "rrr", {keep, keep, 5}},
    {form::both, ", ,5", "rrr", {keep, keep, 5}},
    {form::both, "5,,7", "rrr", {5, keep, 7}},
    {form::both, "5 , , 7", "rrr", {5, keep, 7}},
    {form::both, "5,,,8", "iiii", {5, keep, keep, 8}},
    {form::both, "T,,F", "lll", {true, keep, false}},
    {form::both, ",x", "l", {keep}},
    {form::both, "2*", "rr", {keep, keep}},
    {form::both, "2*,5", "rrr", {keep, keep, 5}},
    {form::both, "2* 5", "rrr", {keep, keep, 5}},
    {form::both, "2*\t5", "rrr", {keep, keep, 5}},
    {form::both, "2*,,5", "rrrr", {keep, keep, keep, 5}},
    {form::both, "1 2* 5", "iiii", {1, keep, keep, 5}},
    {form::both, "1*,T", "ll", {keep, true}},
    {form::both, "2*/5", "rrr", {keep, keep, keep}},
    {form::both, "9*\n6", "rr r", {keep, keep, 6}},
    {form::both, ",\n6", "r r", {keep, 6}},

    // The slash.
    {form::both, "/", "r", {keep}},
    {form::both, " /", "ril", {keep, keep, keep}},
    {form::both, "/junk", "l", {keep}},
    {form::both, "1/2", "rr", {1, keep}},
    {form::both, "1 / 2", "rr", {1, keep}},
    {form::both, "1\t/", "rrr", {1, keep, keep}},
    {form::both, "1,/2", "rrr", {1, keep, keep}},
    {form::both, "1,,/2", "rrr", {1, keep, keep}},
    {form::both, ",/2", "rr", {keep, keep}},
    {form::both, "/\n5", "rr r", {keep, keep, 5}},
    {form::both, "1 2/3\n4 5 6", "rrr rrr", {1, 2, keep, 4, 5, 6}},
    {form::both, "92,14", "r", {92}},
    {form::both, "92,14", "rr", {92, 14}},
    {form::both, "92,14 [kg/kmol]\n5", "r r", {92, 5}},

    // Missing values are sought on the following records of a file.
    {form::file, "1\n2", "rr", {1, 2}},
    {form::file, "1\n\n \t \n2", "rr", {1, 2}},
    {form::file, "\n\n5", "r", {5}},
    {form::file, "1\n2\n3\n4", "rrr r", {1, 2, 3, 4}},
    {form::file, "1 2\n3 4\n5", "rrr r", {1, 2, 3, 5}},
    {form::file, "1 2\n3 4\n5", "rrr rr", {1, 2, 3, 5, keep}, failure{3, "v5 (a real)", missing}},
    {form::file, "1,2,\n3", "rrr", {1, 2, 3}},
    {form::file, "1,2 , \n3", "rrr", {1, 2, 3}},
    {form::file, "1,2,,\n3", "rrr r", {1, 2, keep, 3}},
    {form::file, "1,2,,\n3", "rrrr", {1, 2, keep, 3}},
    {form::file, "1\n,2", "rr", {1, 2}},
    {form::file, "1\n , 2", "rr", {1, 2}},
    {form::file, "1\n\n\t,2", "rr", {1, 2}},
    {form::file, "1\n,,2", "rrr", {1, keep, 2}},
    {form::file, "1,\n,2", "rrr", {1, keep, 2}},
    {form::file, ",\n5", "rr", {keep, 5}},
    {form::file, ",,\n5", "rrr", {keep, keep, 5}},
    {form::file, "2*\n5", "rrr", {keep, keep, 5}},
    {form::file, "1 2*\n4", "rrrr", {1, keep, keep, 4}},
    {form::file, "2*1\n2*2", "rrrr", {1, 1, 2, 2}},
    {form::file, "1\n/", "rr", {1, keep}},
    {form::file, "1,\n/\n7", "rr r", {1, keep, 7}},
    {form::file, "1\n2 comment\n3 comment", "ri i", {1, 2, 3}},
    {form::file, "1\nT\n3", "rli", {1, true, 3}},
    {form::file, "1\nx 3", "rrr", {1, keep, keep}, failure{2, "v2 (a real)", "x"}},
    {form::file, "1\n\n\n0*2", "ii", {1, keep}, failure{4, "v2 (an integer)", "a repeat count of 0"}},
    {form::file, "1\n2\n3", "rr i l", {1, 2, 3, keep}, failure{4, "v4 (a logical)", no_record}},
    {form::file, "1 comment\n2", "rr", {1, keep}, failure{1, "v2 (a real)", "comment"}},

    // The end comes too early.
    {form::both, "", "r", {keep}, failure{1, "v1 (a real)", no_record}},
    {form::both, "", "i", {keep}, failure{1, "v1 (an integer)", no_record}},
    {form::both, "", "l", {keep}, failure{1, "v1 (a logical)", no_record}},
    {form::both, "\n", "r", {keep}, failure{1, "v1 (a real)", missing}},
    {form::both, " \t ", "i", {keep}, failure{1, "v1 (an integer)", missing}},
    {form::both, "1", "rr", {1, keep}, failure{1, "v2 (a real)", missing}},
    {form::both, "1,2,", "rrr", {1, 2, keep}, failure{1, "v3 (a real)", missing}},
    {form::both, "1,2,,", "rrr", {1, 2, keep}},
    {form::both, "1,2,,", "rrrr", {1, 2, keep, keep}, failure{1, "v4 (a real)", missing}},
    {form::both, ",", "r", {keep}},
    {form::both, ",", "rr", {keep, keep}, failure{1, "v2 (a real)", missing}},
    {form::both, "2*7", "iii", {7, 7, keep}, failure{1, "v3 (an integer)", missing}},
    {form::both, "2*", "lll", {keep, keep, keep}, failure{1, "v3 (a logical)", missing}},
    {form::both, "1\n2", "r r r", {1, 2, keep}, failure{3, "v3 (a real)", no_record}},
    {form::file, "1\n\n", "rr", {1, keep}, failure{2, "v2 (a real)", missing}},

    // A line of an array must have all values of its READ.
    {form::lines, "1\n2", "rr", {1, keep}, failure{1, "v2 (a real)", missing}},
    {form::lines, "1,\n2", "rr", {1, keep}, failure{1, "v2 (a real)", missing}},
    {form::lines, "1\n\n2", "r r", {1, keep}, failure{2, "v2 (a real)", missing}},
    {form::lines, "\n5", "r", {keep}, failure{1, "v1 (a real)", missing}},
    {form::lines, "3*\n5", "rrrr", {keep, keep, keep, keep}, failure{1, "v4 (a real)", missing}},

    // An empty list takes one record too.
    {form::both, "junk\n5", "0 r", {5}},
    {form::both, "\n5", "0 r", {5}},
    {form::both, "/\n5", "0 r", {5}},
    {form::both, "1 2 3\n\n5", "0 0 r", {5}},
    {form::both, "0*0\n5", "0 r", {5}},
    {form::both, "", "0", {}, failure{1, "an empty list", no_record}},
    {form::both, "5", "r 0", {5}, failure{2, "an empty list", no_record}},

    // Headings.
    {form::both, "names\n5", "h r", {5}},
    {form::both, "\n5", "h r", {5}},
    {form::both, "1 2 3\n5", "h r", {5}},
    {form::both, "/\n5", "h r", {5}},
    {form::both, "a\n\nb\n5", "h h h r", {5}},
    {form::both, "1\nx\n2", "r h r", {1, 2}},
    {form::both, "x\0\n5"s, "h r", {5}},
    {form::file, "", "h", {}, failure{1, "heading", no_record}},
    {form::file, "5", "r h", {5}, failure{2, "heading", no_record}},
    {form::lines, "5", "r h h", {5}},
    {form::lines, "5", "r h r", {5, keep}, failure{3, "v2 (a real)", no_record}},

    // Names.
    one_name("water", "water"),
    one_name("  water", "  water"),
    one_name("\twater", "\twater"),
    one_name("'water'", "'water'"),
    one_name("\"water\" x", "\"water\" x"),
    one_name("a,b/c 3*x", "a,b/c 3*x"),
    one_name("w\xC3\xA4sser", "w\xC3\xA4sser"),
    one_name("\xEF\xBB\xBFx", "\xEF\xBB\xBFx"),
    one_name("a\0b"s, std::string_view("a\0b", 3)),
    one_name("\v\f\xC2\xA0", "\v\f\xC2\xA0"),
    one_name("1234567890123456789012345678901", "1234567890123456789012345678901"),
    one_name("12345678901234567890123456789012", "12345678901234567890123456789012"),
    one_name("123456789012345678901234567890123", "12345678901234567890123456789012"),
    one_name("1234567890123456789012345678901\xC3\xA4", "1234567890123456789012345678901\xC3"),
    one_name("                                x", ""),
    one_name("\n", ""),
    {form::both, "a\nb\n5", "n n r", {"a", "b", 5}},
    {form::both, "5 x\nname\n6", "r n r", {5, "name", 6}},
    {form::both, "", "n", {keep}, failure{1, "name (a text)", no_record}},
    {form::both, "a", "n n", {"a", keep}, failure{2, "name (a text)", no_record}},

    // Items before a failing one are stored, later ones keep their values.
    {form::both, "1 2 x 4", "rrrr", {1, 2, keep, keep}, failure{1, "v3 (a real)", "x"}},
    {form::both, "1 2.5 T 4", "iiri", {1, keep, keep, keep}, failure{1, "v2 (an integer)", "2.5"}},
    {form::both, "T F 1", "lll", {true, false, keep}, failure{1, "v3 (a logical)", "1"}},
    {form::both, "1\n2 x\n3", "r ri r", {1, 2, keep, keep}, failure{2, "v3 (an integer)", "x"}},
    {form::both, "x\na\n3", "r n h r", {keep, keep, keep}, failure{1, "v1 (a real)", "x"}},
    {form::both, "x\n3", "0 i r", {3, keep}, failure{3, "v2 (a real)", no_record}},

    // Different kinds in one READ, and a section like those of fluids.
    {form::both, "1 2.5 T 1e3", "irlr", {1, 2.5, true, 1000}},
    {form::both, ",2*3,F", "irrl", {keep, 3, 3, false}},
    {form::both,
     "names\ntoluene\n\n92.14   MM [kg/kmol]\nT vapor\n591.75\tTc [K]\n2, n_k\n2*0.5 , 1.5-3 ! c\nno list\n",
     "h n h r l r i rrr 0",
     {"toluene", 92.14, true, 591.75, 2, 0.5, 0.5, 0.0015}},

    // Lines of the full length.
    one_real(times(254, ' ') + "7", 7.0),
    one_real(times(254, '0') + "7", 7.0),
    {form::both, "1" + times(253, ' ') + "2", "rr", {1, 2}},
    {form::both, times(252, ' ') + "2*7", "iii", {7, 7, keep}, failure{1, "v3 (an integer)", missing}},
    {form::file, times(2000, ' ') + "7 " + times(2000, 'x'), "r", {7}},
    {form::file, times(300, '1') + "\n5", "r r", {1.1111111111111111e299, 5}},
};

/// The variables that the READs of a row fill, with their values before.
struct variables {
    explicit variables(bool second_time)
        : initial_real(second_time ? -0.0 : -1.25), initial_integer(second_time ? 0 : -77),
          initial_logical(second_time), initial_name(second_time ? "" : "before") {
        reals.fill(initial_real);
        integers.fill(initial_integer);
        logicals.fill(initial_logical);
        names.fill(initial_name);
    }

    double initial_real;
    std::int32_t initial_integer;
    bool initial_logical;
    fixed_text<32> initial_name;
    std::array<double, 24> reals;
    std::array<std::int32_t, 24> integers;
    std::array<bool, 24> logicals;
    std::array<fixed_text<32>, 24> names;

    bool operator==(const variables &) const = default;
};

void expect_real(const value &expected, double actual, double initial) {
    double wanted = initial;
    if (const auto *real = std::get_if<double>(&expected))
        wanted = *real;
    else if (const auto *integer = std::get_if<std::int32_t>(&expected))
        wanted = *integer;
    else
        ASSERT_TRUE(std::holds_alternative<kept>(expected)) << "the row's value does not fit its kind";
    if (std::isnan(wanted))
        EXPECT_TRUE(std::isnan(actual)) << actual;
    else
        EXPECT_EQ(std::bit_cast<std::uint64_t>(actual), std::bit_cast<std::uint64_t>(wanted))
            << actual << " instead of " << wanted;
}

template <class Stored, class Value>
void expect_other(const value &expected, const Stored &actual, const Value &initial) {
    if (std::holds_alternative<kept>(expected)) {
        EXPECT_EQ(actual, initial);
        return;
    }
    const auto *wanted = std::get_if<Value>(&expected);
    ASSERT_NE(wanted, nullptr) << "the row's value does not fit its kind";
    EXPECT_EQ(actual, *wanted);
}

/// A reader that has failed leaves everything as it is, whatever it is asked for.
void expect_silence(record_reader &reader) {
    const std::string message(reader.message());
    const std::int64_t record = reader.record_number();
    double real = 3.5;
    std::int32_t integer = 7;
    bool logical = true;
    fixed_text<32> name("name");
    std::array<double, 2> list = {1.5, 2.5};
    EXPECT_FALSE(reader.read({{"later", real}, {"later", integer}, {"later", logical}}));
    EXPECT_FALSE(reader.read(std::span<const item>()));
    EXPECT_FALSE(reader.read_list("later", std::span<double>(list)));
    EXPECT_FALSE(reader.read_name("later", name));
    EXPECT_FALSE(reader.skip("later"));
    EXPECT_FALSE(reader.limit_count("later", 1000000));
    EXPECT_FALSE(reader.limit_count("later", 0));
    EXPECT_EQ(real, 3.5);
    EXPECT_EQ(integer, 7);
    EXPECT_TRUE(logical);
    EXPECT_EQ(name.trimmed(), "name");
    EXPECT_THAT(list, testing::ElementsAre(1.5, 2.5));
    EXPECT_TRUE(reader.failed());
    EXPECT_EQ(reader.message(), message);
    EXPECT_EQ(reader.record_number(), record);
}

/// The message that reports a failure.
std::string sentence(std::string_view source, const failure &fails, std::string_view missing_value) {
    std::string found = '"' + fails.found + '"';
    if (fails.found == missing)
        found = missing_value;
    else if (fails.found == no_record)
        found = "the end of the file";
    else if (fails.found == "a repeat count of 0")
        found = fails.found;
    return "Ostrel error: " + std::string(source) + ", record " + std::to_string(fails.record) + ": expected " +
           std::string(fails.wanted) + ", found " + found + ".";
}

void check(record_reader &reader, const row &is, bool second_time, std::string_view source,
           std::string_view missing_value) {
    variables at(second_time);
    // Makes the READs, each as far as the reader gets.
    std::vector<std::string> names(24);
    std::string kinds;
    bool good = true;
    std::int64_t reads = 0;
    std::size_t k = 0;
    std::string_view rest = is.reads;
    while (!rest.empty()) {
        const std::string_view wanted = rest.substr(0, rest.find(' '));
        rest.remove_prefix(std::min(wanted.size() + 1, rest.size()));
        ++reads;
        if (wanted == "h") {
            good = reader.skip("heading");
        } else if (wanted == "n") {
            good = reader.read_name("name", at.names[k]);
            kinds += 'n';
            ++k;
        } else {
            std::vector<item> items;
            for (const char kind : wanted) {
                if (kind == '0')
                    continue;
                names[k] = "v" + std::to_string(k + 1);
                if (kind == 'r')
                    items.emplace_back(names[k], at.reals[k]);
                else if (kind == 'i')
                    items.emplace_back(names[k], at.integers[k]);
                else
                    items.emplace_back(names[k], at.logicals[k]);
                kinds += kind;
                ++k;
            }
            good = reader.read(items);
        }
        EXPECT_EQ(good, !reader.failed());
    }

    ASSERT_EQ(kinds.size(), is.values.size()) << "the row gives another number of values than it wants";
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        SCOPED_TRACE("value " + std::to_string(i + 1));
        if (kinds[i] == 'r')
            expect_real(is.values[i], at.reals[i], at.initial_real);
        else if (kinds[i] == 'i')
            expect_other(is.values[i], at.integers[i], at.initial_integer);
        else if (kinds[i] == 'l')
            expect_other(is.values[i], at.logicals[i], at.initial_logical);
        else
            expect_other(is.values[i], at.names[i].trimmed(), at.initial_name.trimmed());
    }

    EXPECT_EQ(good, !is.fails.has_value());
    if (is.fails) {
        EXPECT_EQ(reader.message(), sentence(source, *is.fails, missing_value));
        EXPECT_EQ(reader.record_number(), is.fails->record);
        expect_silence(reader);
    } else {
        EXPECT_EQ(reader.message(), "");
        EXPECT_GE(reader.record_number(), reads);
    }
}

std::vector<std::string> split(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        lines.emplace_back(line);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines;
}

std::string joined(const std::vector<std::string> &lines, std::string_view line_end) {
    std::string text;
    for (const std::string &line : lines)
        text.append(line).append(line_end);
    return text;
}

std::string array_of(const std::vector<std::string> &lines, std::size_t length) {
    std::string array;
    for (std::string line : lines) {
        line.resize(length, ' ');
        array += line;
    }
    return array;
}

TEST(record_reader, table_in_a_file) {
    const support::temporary_folder folder;
    int records = 0;
    for (std::size_t i = 0; i < table.size(); ++i) {
        const row &is = table[i];
        if (is.in == form::lines)
            continue;
        ++records;
        const std::vector<std::string> lines = split(is.text);
        std::vector<std::string> texts = {is.text, joined(lines, "\n")};
        if (is.text.find('\r') == std::string::npos)
            texts.push_back(joined(lines, "\r\n"));
        for (const std::string &text : texts) {
            const std::string path = folder.write("fluid.osd", text);
            for (const bool second_time : {false, true}) {
                SCOPED_TRACE("row " + std::to_string(i + 1) + ": " + testing::PrintToString(text) + " for " +
                             std::string(is.reads));
                file_reader reader(path);
                ASSERT_EQ(reader.open_status(), 0);
                check(reader, is, second_time, "file fluid.osd", "the end of the file");
            }
        }
    }
    EXPECT_GT(records, 150);
}

TEST(record_reader, table_in_an_array_of_lines) {
    int records = 0;
    for (std::size_t i = 0; i < table.size(); ++i) {
        const row &is = table[i];
        if (is.in == form::file)
            continue;
        ++records;
        const std::vector<std::string> lines = split(is.text);
        std::size_t longest = 0;
        for (const std::string &line : lines)
            longest = std::max(longest, line.size());
        ASSERT_LE(longest, std::size_t{longest_line}) << is.text;
        for (const std::size_t length : {std::size_t{longest_line}, longest}) {
            for (const bool second_time : {false, true}) {
                SCOPED_TRACE("row " + std::to_string(i + 1) + ": " + testing::PrintToString(is.text) + " for " +
                             std::string(is.reads) + " in lines of " + std::to_string(length));
                const std::string array = array_of(lines, length);
                std::int32_t index = 0;
                line_reader reader("fluid database, toluene", array.data(), index,
                                   static_cast<std::int32_t>(lines.size()), static_cast<std::int32_t>(length));
                check(reader, is, second_time, "fluid database, toluene", "the end of the line");
            }
        }
    }
    EXPECT_GT(records, 150);
}

TEST(record_reader, numbers_the_records_it_uses) {
    const support::temporary_folder folder;
    file_reader reader(folder.write("x", "heading\nname\n1\n\n2 3\n\n4\n5"));
    EXPECT_EQ(reader.record_number(), 0);
    fixed_text<32> name;
    double a = 0.0;
    double b = 0.0;
    EXPECT_TRUE(reader.skip("heading"));
    EXPECT_EQ(reader.record_number(), 1);
    EXPECT_TRUE(reader.read_name("name", name));
    EXPECT_EQ(reader.record_number(), 2);
    EXPECT_TRUE(reader.read({{"a", a}, {"b", b}}));
    EXPECT_EQ(reader.record_number(), 5);
    EXPECT_EQ(a, 1.0);
    EXPECT_EQ(b, 2.0);
    EXPECT_TRUE(reader.read(std::span<const item>()));
    EXPECT_EQ(reader.record_number(), 6);
    EXPECT_TRUE(reader.read({{"a", a}}));
    EXPECT_EQ(reader.record_number(), 7);
    EXPECT_EQ(a, 4.0);
}

TEST(record_reader, takes_lists) {
    const support::temporary_folder folder;
    file_reader reader(folder.write("x", "1 2*2.5\n\n4 5 6\n3*7\njunk\n8 x 9"));
    std::array<double, 4> reals = {};
    std::array<std::int32_t, 3> integers = {};
    EXPECT_TRUE(reader.read_list("c_k", std::span<double>(reals)));
    EXPECT_THAT(reals, testing::ElementsAre(1.0, 2.5, 2.5, 4.0));
    EXPECT_TRUE(reader.read_list("n_k", std::span<std::int32_t>(integers)));
    EXPECT_THAT(integers, testing::ElementsAre(7, 7, 7));
    EXPECT_TRUE(reader.read_list("empty", std::span<double>()));
    EXPECT_FALSE(reader.read_list("c_k", std::span<double>(reals)));
    EXPECT_THAT(reals, testing::ElementsAre(8.0, 2.5, 2.5, 4.0));
    EXPECT_EQ(reader.message(), "Ostrel error: file x, record 6: expected c_k(2) (a real), found \"x\".");
}

TEST(record_reader, names_the_item_of_a_list_that_is_missing) {
    std::int32_t index = 0;
    line_reader reader("fluid database, x", "1 2 3", index, 1, 5);
    std::array<std::int32_t, 12> integers = {};
    EXPECT_FALSE(reader.read_list("n_k", std::span<std::int32_t>(integers)));
    EXPECT_EQ(reader.message(),
              "Ostrel error: fluid database, x, record 1: expected n_k(4) (an integer), found the end of the line.");
}

TEST(record_reader, limits_counts) {
    const support::temporary_folder folder;
    const std::string path = folder.write("x", "10000\n10001\n2147483647\n-1\n");
    {
        file_reader reader(path);
        EXPECT_TRUE(reader.limit_count("N", 10000));
        EXPECT_FALSE(reader.limit_count("N", 10001));
        EXPECT_EQ(reader.message(), "Ostrel error: file x, record 0: expected N of at most 10000, found 10001.");
        expect_silence(reader);
    }
    {
        file_reader reader(path);
        EXPECT_TRUE(reader.limit_count("N", 5, 5));
        EXPECT_FALSE(reader.limit_count("N", 6, 5));
        EXPECT_THAT(std::string(reader.message()), HasSubstr("expected N of at most 5, found 6"));
    }
    {
        file_reader reader(path);
        for (int i = 0; i < 3; ++i)
            reader.skip("record");
        EXPECT_FALSE(reader.limit_count("NV", 2147483647));
        EXPECT_EQ(reader.message(), "Ostrel error: file x, record 3: expected NV of at most 10000, found 2147483647.");
    }
    {
        file_reader reader(path);
        EXPECT_FALSE(reader.limit_count("K n_k", std::int64_t{2147483647} * 2147483647));
        EXPECT_THAT(std::string(reader.message()), HasSubstr("found 4611686014132420609"));
    }
    {
        file_reader reader(path);
        EXPECT_TRUE(reader.limit_count("N", 0));
        EXPECT_TRUE(reader.limit_count("N", -2147483648LL));
        EXPECT_FALSE(reader.failed());
    }
}

TEST(record_reader, fills_the_longest_list) {
    const support::temporary_folder folder;
    file_reader reader(folder.write("x", std::to_string(records::longest_list) + "*0.5\n9\n"));
    std::vector<double> list(records::longest_list, 0.0);
    EXPECT_TRUE(reader.read_list("c_k", std::span<double>(list)));
    EXPECT_THAT(list, testing::Each(0.5));
    double next = 0.0;
    EXPECT_TRUE(reader.read({{"next", next}}));
    EXPECT_EQ(next, 9.0);
}

TEST(record_reader, messages_keep_what_matters_in_256_characters) {
    const support::temporary_folder folder;
    const std::string junk(5000, '#');
    const std::string name = std::string(250, 'n') + ".osd";
    file_reader reader(folder.write(name, "1\n2\n3\n" + junk));
    double a = 0.0;
    for (int i = 0; i < 3; ++i)
        reader.read({{"a", a}});
    const std::string field = "a_field_name_of_forty_characters_in_all_";
    std::array<double, 1> list = {};
    EXPECT_FALSE(reader.read_list(field, std::span<double>(list)));
    const std::string message(reader.message());
    EXPECT_LE(message.size(), 256U);
    EXPECT_THAT(message, StartsWith("Ostrel error: file nnnnnnnn"));
    EXPECT_THAT(message, HasSubstr(", record 4: expected " + field + "(1) (a real), found \"########"));
    EXPECT_EQ(message.back(), '.');
    // Control characters and bytes beyond ASCII do not get into a message.
    for (const char c : message)
        EXPECT_TRUE(c >= ' ' && c <= '~') << message;
}

TEST(record_reader, messages_are_printable) {
    const support::temporary_folder folder;
    file_reader reader(folder.write("w\xC3\xA4sser\n.osd", "\x1B[31m\xFF"));
    double a = 0.0;
    EXPECT_FALSE(reader.read({{"a", a}}));
    EXPECT_EQ(reader.message(), "Ostrel error: file w??sser?.osd, record 1: expected a (a real), found \"?[31m?\".");
}

TEST(line_reader, starts_behind_the_index_and_advances_it) {
    const std::string array = "1   "
                              "2   "
                              "3  4"
                              "5   ";
    std::int32_t index = 2;
    line_reader reader("lines", array.data(), index, 4, 4);
    double a = 0.0;
    double b = 0.0;
    EXPECT_TRUE(reader.read({{"a", a}, {"b", b}}));
    EXPECT_EQ(index, 3);
    EXPECT_EQ(a, 3.0);
    EXPECT_EQ(b, 4.0);
    EXPECT_TRUE(reader.skip("heading"));
    EXPECT_EQ(index, 4);
    EXPECT_TRUE(reader.skip("heading"));
    EXPECT_EQ(index, 5);
    EXPECT_FALSE(reader.read({{"a", a}}));
    EXPECT_EQ(a, 3.0);
}

TEST(line_reader, keeps_neighbouring_lines_apart) {
    const std::string array = "1234"
                              "5678"
                              "name"
                              "more";
    std::int32_t index = 0;
    line_reader reader("lines", array.data(), index, 4, 4);
    double a = 0.0;
    std::int32_t b = 0;
    fixed_text<32> name;
    EXPECT_TRUE(reader.read({{"a", a}}));
    EXPECT_TRUE(reader.read({{"b", b}}));
    EXPECT_TRUE(reader.read_name("name", name));
    EXPECT_EQ(a, 1234.0);
    EXPECT_EQ(b, 5678);
    EXPECT_EQ(name.trimmed(), "name");
}

TEST(line_reader, finds_no_line_outside_the_array) {
    for (const std::int32_t start : {-5, -1, 1, 2, 1000}) {
        std::int32_t index = start;
        line_reader reader("lines", "7", index, 1, 1);
        double a = 0.0;
        EXPECT_FALSE(reader.read({{"a", a}})) << start;
        EXPECT_EQ(a, 0.0);
        EXPECT_THAT(std::string(reader.message()), HasSubstr("record 1: expected a (a real), found the end of the"));
    }
    for (const std::int32_t count : {0, -1}) {
        std::int32_t index = 0;
        line_reader reader("lines", "7", index, count, 1);
        fixed_text<32> name("kept");
        EXPECT_FALSE(reader.read_name("name", name));
        EXPECT_EQ(name.trimmed(), "kept");
    }
    std::int32_t index = 0;
    line_reader reader("lines", "7", index, 1, -1);
    EXPECT_FALSE(reader.read(std::span<const item>()));
}

TEST(line_reader, takes_lines_of_no_length_as_blank) {
    std::int32_t index = 0;
    line_reader reader("lines", "", index, 3, 0);
    fixed_text<32> name("before");
    EXPECT_TRUE(reader.read_name("name", name));
    EXPECT_EQ(name.trimmed(), "");
    EXPECT_TRUE(reader.read(std::span<const item>()));
    double a = 0.0;
    EXPECT_FALSE(reader.read({{"a", a}}));
    EXPECT_EQ(index, 3);
}

/// Expects the answers of a reader that could not open its file: errno's code, and the end of the file for every READ.
void expect_unopened(std::string_view path, int status) {
    file_reader reader(path);
    EXPECT_EQ(reader.open_status(), status) << path;
    double a = 3.5;
    EXPECT_FALSE(reader.read({{"a", a}}));
    EXPECT_EQ(a, 3.5);
}

TEST(file_reader, reports_why_a_file_does_not_open) {
    const support::temporary_folder folder;
    const std::string file = folder.write("file", "5");
    const std::string looping = folder.path() + "/loop";
    std::filesystem::create_symlink(looping, looping);
    std::filesystem::create_symlink(folder.path() + "/nothing", folder.path() + "/dangling");
    expect_unopened(folder.path() + "/missing", 2);
    expect_unopened(folder.path() + "/missing/file", 2);
    expect_unopened(folder.path() + "/dangling", 2);
    expect_unopened("", 2);
    expect_unopened("    ", 2);
    expect_unopened(file + "/below", 20);
    expect_unopened(folder.path() + "/" + std::string(256, 'n'), 36);
    expect_unopened("/" + std::string(5000, 'n'), 36);
    expect_unopened(looping, 40);
    expect_unopened(file + std::string(1, '\0'), 2);
    expect_unopened(file + std::string(1, '\0') + "x", 2);
    expect_unopened(std::string(1, '\0'), 2);
}

TEST(file_reader, needs_the_permission_to_read) {
    const support::temporary_folder folder;
    const std::string file = folder.write("file", "5");
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(file, std::filesystem::perms::none);
    // Root may read everything, so root becomes another user for this.
    const bool root = geteuid() == 0;
    if (root && seteuid(65534) != 0)
        GTEST_SKIP() << "root cannot be anybody else here";
    expect_unopened(file, 13);
    if (root) {
        ASSERT_EQ(seteuid(0), 0);
    }
}

TEST(file_reader, opens_a_directory_and_finds_no_record) {
    const support::temporary_folder folder;
    for (const std::string &path : {folder.path(), folder.path() + "/", std::string("/")}) {
        file_reader reader(path);
        EXPECT_EQ(reader.open_status(), 0);
        EXPECT_FALSE(reader.skip("heading"));
        EXPECT_THAT(std::string(reader.message()), HasSubstr("record 1: expected heading, found the end of the file"));
    }
}

TEST(file_reader, waits_for_no_other_end) {
    const support::temporary_folder folder;
    const std::string pipe = folder.path() + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_symlink(pipe, folder.path() + "/link");
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string path = folder.path() + "/socket";
    ASSERT_LT(path.size(), sizeof address.sun_path);
    path.copy(address.sun_path, path.size());
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    alarm(20); // ends the test if it hangs
    expect_unopened(pipe, ENXIO);
    expect_unopened(folder.path() + "/link", ENXIO);
    expect_unopened(path, ENXIO);
    expect_unopened("/dev/zero", ENXIO);
    expect_unopened("/dev/null", ENXIO);
    alarm(0);
    close(listener);
}

TEST(file_reader, reports_a_file_that_cannot_be_read_to_its_end) {
    // Nothing is mapped at the start of a process.
    expect_unopened("/proc/self/mem", EIO);
}

TEST(file_reader, takes_files_up_to_16_mebibytes) {
    const support::temporary_folder folder;
    std::string text(std::size_t{16} << 20, '\n');
    text.back() = '5';
    const std::string path = folder.write("large", text);
    {
        file_reader reader(path);
        EXPECT_EQ(reader.open_status(), 0);
        double a = 0.0;
        EXPECT_TRUE(reader.read({{"a", a}}));
        EXPECT_EQ(a, 5.0);
        EXPECT_EQ(reader.record_number(), std::int64_t{16} << 20);
    }
    text += ' ';
    folder.write("large", text);
    expect_unopened(path, EFBIG);
}

TEST(file_reader, ignores_trailing_blanks_of_the_path) {
    const support::temporary_folder folder;
    const std::string path = folder.write("a file.osd", "5");
    file_reader reader(path + std::string(300, ' '));
    EXPECT_EQ(reader.open_status(), 0);
    double a = 0.0;
    EXPECT_TRUE(reader.read({{"a", a}}));
    EXPECT_EQ(a, 5.0);
    EXPECT_FALSE(reader.read({{"a", a}}));
    EXPECT_THAT(std::string(reader.message()), StartsWith("Ostrel error: file a file.osd, record 2"));
}

TEST(file_reader, follows_links_and_takes_the_file_in_at_once) {
    const support::temporary_folder folder;
    const std::string path = folder.write("file", "5\n6\n");
    std::filesystem::create_symlink(path, folder.path() + "/link");
    file_reader reader(folder.path() + "/link");
    std::filesystem::remove(path);
    double a = 0.0;
    EXPECT_TRUE(reader.read({{"a", a}}));
    EXPECT_TRUE(reader.read({{"a", a}}));
    EXPECT_EQ(a, 6.0);
}

} // namespace
