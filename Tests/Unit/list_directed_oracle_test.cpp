// SPDX-License-Identifier: MIT
// Compares reading and writing with a Fortran runtime, on thousands of random records.
//
// Some records are left out, because the runtime differs on purpose or by accident. They have:
//  - semicolons, which are separators there
//  - carriage returns inside a record
//  - no line end after the last record; a slash, a null value or an abbreviated logical meets the end of the file there
//  - repeat counts of nine digits and more
//  - repeat counts that span kinds, which are refused there
//  - a slash at the start of a record that does not open the READ, which is passed over there
//  - a logical of several letters without its point before anything but one plain separator; one separator too many is
//    taken there
// The sign and the payload of a NaN are not compared. The item that fails may be overwritten there; here it keeps its
// value.
#include "Records/record_reader.h"
#include "Records/record_writer.h"
#include "Tests/Support/entry_points.h"

#include <bit>
#include <cmath>
#include <iomanip>
#include <random>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>

extern char **environ;

namespace {

constexpr std::size_t most_values = 12;
constexpr std::int32_t line_length = 255;

/// The answers of the runtime's program to all cases together, one in each line.
std::vector<std::string> ask_oracle(const support::temporary_folder &folder, const std::string &cases) {
    folder.write("cases", cases);
    std::string program = OSTREL_LIST_DIRECTED_ORACLE;
    std::string in = folder.path();
    std::string out = folder.path() + "/answers";
    char *arguments[] = {program.data(), in.data(), out.data(), nullptr};
    pid_t child = 0;
    int status = -1;
    EXPECT_EQ(posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ), 0) << program;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    std::vector<std::string> answers;
    std::ifstream file(out);
    for (std::string line; std::getline(file, line);)
        answers.push_back(line);
    return answers;
}

std::string hexadecimal(std::uint64_t word) {
    std::ostringstream out;
    out << std::hex << std::uppercase << std::setw(16) << std::setfill('0') << word;
    return out.str();
}

/// The head of a case: form, pattern and number of values.
std::string head(char form, char pattern, std::size_t count) {
    std::ostringstream out;
    out << form << pattern << std::setw(3) << count << ' ';
    return out.str();
}

class generator {
public:
    explicit generator(std::uint64_t seed) : random_(seed) {}

    std::size_t below(std::size_t bound) { return random_() % bound; }
    bool one_in(std::size_t bound) { return below(bound) == 0; }
    std::uint64_t word() { return random_(); }
    template <class Choices>
    auto any_of(const Choices &choices) {
        return std::data(choices)[below(std::size(choices))];
    }

    std::string digits(std::size_t longest) {
        std::string text;
        for (std::size_t left = below(longest + 1); left > 0; --left)
            text += static_cast<char>('0' + below(10));
        return text;
    }

    /// A number as somebody might write it, or a word that is almost a number.
    std::string real() {
        static constexpr std::string_view others[] = {"inf",
                                                      "-INF",
                                                      "+Infinity",
                                                      "nan",
                                                      "NaN(x)",
                                                      "-nan",
                                                      "infin",
                                                      "nanq",
                                                      "1.#INF",
                                                      ".",
                                                      "+",
                                                      "-",
                                                      "--1",
                                                      "+-1",
                                                      "1e",
                                                      "1e+",
                                                      "1d-",
                                                      "1+",
                                                      "1.5f",
                                                      "0x10",
                                                      "1.0.0",
                                                      "1_000",
                                                      "'1'",
                                                      "\"1\"",
                                                      "5-->",
                                                      "92.14#",
                                                      "591.75K",
                                                      "\v5",
                                                      "5\v",
                                                      "\f5",
                                                      "T",
                                                      "e5",
                                                      ".e5",
                                                      "x",
                                                      "1e400",
                                                      "-1d400",
                                                      "1e-400",
                                                      "0e99999",
                                                      "-0",
                                                      "1e5.5",
                                                      "1ee5",
                                                      "1e5e5",
                                                      "*5",
                                                      "**",
                                                      "4.9e-324",
                                                      "2.4e-324",
                                                      "2.5e-324",
                                                      "2.2250738585072011e-308",
                                                      "1.7976931348623158e308",
                                                      "9007199254740993",
                                                      "\xC2\xA0"
                                                      "5",
                                                      "\xE2\x88\x92"
                                                      "5",
                                                      "\xEF\xBB\xBF"
                                                      "5",
                                                      "5\xC2\xB0",
                                                      "!5",
                                                      "&5",
                                                      "$5",
                                                      "5%",
                                                      "(5)",
                                                      "5:"};
        if (one_in(6))
            return std::string(any_of(others));
        std::string text(any_of(std::array<std::string_view, 4>{"", "", "-", "+"}));
        text += digits(one_in(8) ? 30 : 5);
        if (!one_in(3))
            text += '.' + digits(one_in(8) ? 40 : 6);
        if (one_in(2)) {
            text += any_of(std::array<std::string_view, 8>{"e", "E", "d", "D", "q", "Q", "", ""});
            text += any_of(std::array<std::string_view, 3>{"+", "-", "+"});
            text += digits(one_in(6) ? 4 : 2);
        }
        return text;
    }

    std::string integer() {
        static constexpr std::string_view others[] = {
            "2147483647", "-2147483648", "2147483648", "-2147483649", "4294967297", "5.",  "5.0",
            "5e0",        ".5",          "+-1",        "-+1",         "--1",        "+",   "-",
            "x",          "5x",          "'5'",        "0x1",         "T",          "inf", "00000000000000000012",
            "-0",         "5:",          "\v5"};
        if (one_in(6))
            return std::string(any_of(others));
        return std::string(any_of(std::array<std::string_view, 4>{"", "", "-", "+"})) + digits(one_in(8) ? 12 : 6);
    }

    std::string logical() {
        static constexpr std::string_view tokens[] = {
            "T",       "F",    "t",        "f",    ".T", ".f",  ".true.", ".FALSE.", "True", "false",
            "TRUEISH", ".t.x", "fabulous", "T'x'", "F#", "T*3", "t5",     ".",       "..T",  "1",
            "0",       "yes",  "no",       "'T'",  ".x", "-T",  "5",      "\vT"};
        return std::string(one_in(4) ? any_of(tokens) : tokens[below(11)]);
    }

    std::string token(char pattern, std::size_t position) {
        static constexpr char mixed[] = {'i', 'r', 'l', 'r'};
        const char kind = pattern == 'm' ? mixed[position % 4] : pattern;
        std::string text;
        if (pattern == 'm')
            text = one_in(20) ? "1*" : "";
        else if (one_in(8))
            text = any_of(
                std::array<std::string_view, 10>{"1*", "2*", "2*", "3*", "4*", "02*", "15*", "0*", "+2*", "1.*"});
        if (!one_in(12))
            text += kind == 'r' ? real() : kind == 'i' ? integer() : logical();
        return text;
    }

    std::string separator(bool lines) {
        static constexpr std::string_view within[] = {" ",   " ",     " ",  "  ",  "\t", ",",   ",",  ", ", " ,",
                                                      " , ", "\t,\t", ",,", ", ,", "/",  " / ", ",/", ",,,"};
        static constexpr std::string_view across[] = {"\n",    "\n",   " \n ",  ",\n",     "\n,",  " , \n",
                                                      "\n , ", "\n\n", ",\n,",  "\n \t\n", ",,\n", "\n,,",
                                                      "/\n",   "\n/",  ",\n\n", "\n,\n",   "\r\n", ",\r\n"};
        return std::string(!lines && one_in(4) ? any_of(across) : any_of(within));
    }

    /// The records of a few READs of `count` values; some records have fewer or more values.
    std::string records(char pattern, std::size_t count, bool lines) {
        std::string text;
        for (std::size_t records = 1 + below(4); records > 0; --records) {
            if (one_in(8))
                text += separator(lines);
            const std::size_t tokens = one_in(3) ? below(count + 3) : count;
            for (std::size_t i = 0; i < tokens; ++i) {
                if (i > 0)
                    text += separator(lines);
                text += token(pattern, i);
            }
            if (one_in(6))
                text += separator(lines);
            text += any_of(std::array<std::string_view, 8>{"", "", "", " ", "\t", " comment, 'x", " /x", ","});
            text += one_in(10) ? "\r\n" : "\n";
        }
        return text;
    }

private:
    std::mt19937_64 random_;
};

/// Whether the runtime treats the text in another way.
bool treated_otherwise(char pattern, std::string_view text) {
    constexpr std::string_view separators = " \t\r\n,/";
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n', end + 1)) {
        const std::size_t start = text.find_first_not_of(" \t\r\n", end);
        if (start != std::string_view::npos && text[start] == '/')
            return true;
    }
    if (pattern != 'l' && pattern != 'm')
        return false;
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(separators), text.size()));
        if (text.empty())
            return false;
        std::string_view word = text.substr(0, text.find_first_of(separators));
        text.remove_prefix(word.size());
        const std::string_view behind = text.substr(0, text.find_first_not_of(separators));
        word.remove_prefix(std::min(word.find_first_not_of("0123456789*"), word.size()));
        const bool letters = word.size() > 1 && std::string_view("TtFf").find(word.front()) != std::string_view::npos;
        if (letters && behind.find_first_of(",/") != std::string_view::npos && behind != "," && behind != ", ")
            return true;
    }
}

struct reading {
    char form;
    char pattern;
    std::size_t count;
    std::string text;
};

/// The variables of one READ, as the oracle keeps them.
class variables {
public:
    variables(char pattern, std::size_t count) {
        static constexpr char mixed[] = {'i', 'r', 'l', 'r'};
        for (std::size_t i = 0; i < count; ++i) {
            reals_[i] = -1.25;
            integers_[i] = -77;
            logicals_[i] = i % 2 == 0;
            names_[i] = "v" + std::to_string(i + 1);
            kinds_ += pattern == 'm' ? mixed[i] : pattern;
            if (kinds_[i] == 'r')
                items_.emplace_back(names_[i], reals_[i]);
            else if (kinds_[i] == 'i')
                items_.emplace_back(names_[i], integers_[i]);
            else
                items_.emplace_back(names_[i], logicals_[i]);
        }
    }
    std::span<const records::item> items() const { return items_; }

    bool holds(std::size_t i, std::uint64_t word) const {
        if (kinds_[i] == 'r') {
            const auto real = std::bit_cast<double>(word);
            return std::isnan(real) ? std::isnan(reals_[i]) : std::bit_cast<std::uint64_t>(reals_[i]) == word;
        }
        if (kinds_[i] == 'i')
            return std::int64_t{integers_[i]} == static_cast<std::int64_t>(word);
        return std::uint64_t{logicals_[i]} == word;
    }

private:
    std::string kinds_;
    std::array<double, most_values> reals_;
    std::array<std::int32_t, most_values> integers_;
    std::array<bool, most_values> logicals_;
    std::array<std::string, most_values> names_;
    std::vector<records::item> items_;
};

/// Compares two READs of a case with the answers from `next` on; false if they differ or are missing.
bool agrees(records::record_reader &reader, const reading &is, std::span<const std::string> &next, int (&outcomes)[2]) {
    bool same = true;
    for (int pass = 0; pass < 2; ++pass) {
        const variables at(is.pattern, is.count);
        const bool good = reader.read(at.items());
        if (next.empty())
            return false;
        std::istringstream answer(next.front());
        next = next.subspan(1);
        int failed = -1;
        answer >> failed;
        ++outcomes[failed != 0];
        same = same && good == (failed == 0);
        for (std::size_t i = 0; i < is.count; ++i) {
            std::uint64_t word = 0;
            answer >> std::hex >> word;
            const bool failing = reader.message().find(" v" + std::to_string(i + 1) + " ") != std::string_view::npos;
            same = same && answer && (failing || at.holds(i, word));
        }
        if (failed != 0)
            break;
    }
    return same;
}

TEST(list_directed_oracle, reads_alike) {
    constexpr std::size_t cases = 6000;
    const support::temporary_folder folder;
    generator random(20240517);
    std::vector<reading> readings;
    std::string list;
    for (std::size_t k = 0; k < cases; ++k) {
        reading is;
        is.form = random.one_in(3) ? 'L' : 'F';
        is.pattern = random.any_of(std::string_view("rrriilm"));
        is.count = is.pattern == 'm' ? 4 : random.one_in(20) ? 0 : 1 + random.below(random.one_in(5) ? most_values : 4);
        do
            is.text = random.records(is.pattern, is.count, is.form == 'L');
        while (treated_otherwise(is.pattern, is.text) || (is.form == 'L' && is.text.size() > std::size_t{line_length}));
        const std::string name = std::to_string(k);
        folder.write(name, is.text);
        list += head(is.form, is.pattern, is.count) + name + '\n';
        readings.push_back(std::move(is));
    }
    const std::vector<std::string> answers = ask_oracle(folder, list);
    ASSERT_GE(answers.size(), cases);

    int differences = 0;
    int outcomes[2] = {};
    std::span<const std::string> next = answers;
    for (std::size_t k = 0; k < cases && differences < 20; ++k) {
        const reading &is = readings[k];
        const auto first = next;
        std::string said;
        bool same = false;
        if (is.form == 'F') {
            records::file_reader reader(folder.path() + "/" + std::to_string(k));
            same = agrees(reader, is, next, outcomes);
            said = reader.message();
        } else {
            std::string array;
            std::int32_t lines = 0;
            std::istringstream text(is.text);
            for (std::string line; std::getline(text, line); ++lines) {
                if (line.ends_with('\r'))
                    line.pop_back();
                line.resize(line_length, ' ');
                array += line;
            }
            std::int32_t index = 0;
            records::line_reader reader("lines", array.data(), index, lines, line_length);
            same = agrees(reader, is, next, outcomes);
            said = reader.message();
        }
        if (!same) {
            ++differences;
            std::string runtime;
            for (const std::string &answer : first.first(first.size() - next.size()))
                runtime += answer + '\n';
            ADD_FAILURE() << is.count << " of " << is.pattern << (is.form == 'F' ? " from a file: " : " from lines: ")
                          << testing::PrintToString(is.text) << "\nreader: " << said << "\nruntime:\n"
                          << runtime;
        }
    }
    if (differences == 0) {
        EXPECT_TRUE(next.empty());
    }
    // The grammar makes both many records that can be read and many that cannot.
    EXPECT_GT(outcomes[0], 2000);
    EXPECT_GT(outcomes[1], 2000);
}

TEST(list_directed_oracle, writes_alike) {
    const support::temporary_folder folder;
    generator random(20240518);
    std::string list;
    std::vector<std::string> written;
    const auto some_double = [&] {
        const auto value = std::bit_cast<double>(random.word());
        switch (random.below(4)) {
        case 0:
            return value;
        case 1: // a size in the range of the fixed layout, or just outside
            return std::isfinite(value) && value != 0.0
                       ? std::ldexp(value, static_cast<int>(random.below(70)) - 8 - std::ilogb(value))
                       : value;
        case 2: { // few digits
            const std::string text = std::to_string(random.below(1000)) + "e" + std::to_string(random.below(30)) + "0";
            return std::strtod(text.c_str(), nullptr) / (random.one_in(2) ? 1e150 : 1.0);
        }
        default: { // a power of ten and its neighbours
            const double power =
                std::strtod(("1e" + std::to_string(static_cast<int>(random.below(640)) - 325)).c_str(), nullptr);
            return random.one_in(3) ? power : std::nextafter(power, random.one_in(2) ? 0.0 : HUGE_VAL);
        }
        }
    };
    const auto word = [](double value) { return hexadecimal(std::bit_cast<std::uint64_t>(value)); };
    const auto word_of = [](std::int64_t value) { return hexadecimal(static_cast<std::uint64_t>(value)); };
    for (int k = 0; k < 20000; ++k) {
        switch (random.below(4)) {
        case 0: {
            std::array<double, 3> values;
            for (double &value : values)
                value = some_double();
            records::record_writer out;
            out.record_list<double>(values);
            written.push_back(out.text().substr(0, out.text().size() - 1));
            list += head('W', 'r', 3) + word(values[0]) + ' ' + word(values[1]) + ' ' + word(values[2]) + '\n';
            break;
        }
        case 1: {
            const auto value = static_cast<std::int32_t>(static_cast<std::uint32_t>(random.word()) >> random.below(32));
            written.push_back(records::list_directed({value, -1 - value}));
            list += head('W', 'i', 2) + word_of(value) + ' ' + word_of(-1 - value) + '\n';
            break;
        }
        case 2: {
            const bool flag = random.one_in(2);
            written.push_back(records::list_directed({flag, !flag}));
            list += head('W', 'l', 2) + word_of(flag) + ' ' + word_of(!flag) + '\n';
            break;
        }
        default: {
            const auto integer = static_cast<std::int32_t>(random.below(2000)) - 1000;
            const double first = some_double();
            const bool flag = random.one_in(2);
            const double second = some_double();
            written.push_back(records::list_directed({integer, first, flag, second}));
            list += head('W', 'm', 4) + word_of(integer) + ' ' + word(first) + ' ' + word_of(flag) + ' ' +
                    word(second) + '\n';
        }
        }
    }
    // There is also an empty record, and a list that is longer than the line of any terminal.
    written.emplace_back();
    list += head('W', 'r', 0) + '\n';
    written.emplace_back();
    list += head('W', 'r', 20);
    for (int k = 0; k < 20; ++k) {
        written.back() += records::list_directed({k / 8.0});
        list += word(k / 8.0) + ' ';
    }
    list += '\n';

    const std::vector<std::string> answers = ask_oracle(folder, list);
    ASSERT_EQ(answers.size(), written.size());
    int differences = 0;
    for (std::size_t k = 0; k < written.size() && differences < 20; ++k) {
        EXPECT_EQ(written[k], answers[k]);
        differences += written[k] != answers[k];
    }
}

} // namespace
