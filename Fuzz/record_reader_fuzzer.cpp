// SPDX-License-Identifier: MIT
// The reader and the writer of records. The first line of the input says what is read from the lines behind it, with
// one letter for each step:
//
//   S a heading   A a name   d, i, l a real, an integer, a logical; all of them up to a ";" are one READ
//   a digit: a list of as many reals   c a count, and a list of as many reals
//
// The same lines are read as a file and as an array of lines. Both forms must agree, except where a value is missing in
// a record (a file continues in the next one) and where the records end. Numbers are compared with those of the C
// library. The values that have been read are written, and must be read back.
#include "Fuzz/fuzz_support.h"

#include "Records/record_reader.h"
#include "Records/record_writer.h"

#include <cerrno>
#include <deque>
#include <limits>

namespace {

using fuzz::require;

/// The values that have been read, a vector for each value or list. Items point into these vectors.
struct values {
    std::deque<std::vector<double>> reals;
    std::deque<std::int32_t> integers;
    std::deque<bool> logicals;
    std::deque<records::fixed_text<32>> names;
    std::size_t real_count = 0;

    bool equals(const values &other) const {
        const auto same = [](const std::vector<double> &a, const std::vector<double> &b) {
            return std::equal(a.begin(), a.end(), b.begin(), b.end(), fuzz::same_bits);
        };
        return std::equal(reals.begin(), reals.end(), other.reals.begin(), other.reals.end(), same) &&
               integers == other.integers && logicals == other.logicals && names == other.names;
    }
};

constexpr double unset_real = -7.25;
constexpr std::int32_t unset_integer = -77;

double &add_real(values &into) {
    return into.reals.emplace_back(1, unset_real).front();
}

bool read_reals(records::record_reader &in, values &into, std::size_t count) {
    constexpr std::size_t most = 20'000;
    into.real_count += count;
    if (into.real_count > most)
        return false;
    return in.read_list("list", std::span(into.reals.emplace_back(count, unset_real)));
}

/// Executes one letter, or all the letters of single values that form one READ.
bool execute(records::record_reader &in, std::string_view step, values &into) {
    switch (step.front()) {
    case 'S':
        return in.skip("a heading");
    case 'A':
        into.names.emplace_back();
        return in.read_name("name", into.names.back());
    case 'c': {
        std::int32_t count = 0;
        if (!in.read({{"N", count}}) || !in.limit_count("N", count))
            return false;
        require(count <= records::longest_list, "a count is limited");
        return read_reals(in, into, static_cast<std::size_t>(std::max(count, 0)));
    }
    case 'd':
    case 'i':
    case 'l': {
        std::vector<records::item> items;
        for (const char kind : step)
            if (kind == 'd')
                items.emplace_back("real", add_real(into));
            else if (kind == 'i')
                items.emplace_back("integer", into.integers.emplace_back(unset_integer));
            else
                items.emplace_back("logical", into.logicals.emplace_back());
        return in.read(items);
    }
    default:
        return read_reals(in, into, static_cast<std::size_t>(step.front() - '0'));
    }
}

std::vector<std::string_view> steps_of(std::string_view program) {
    program = program.substr(0, 48);
    std::vector<std::string_view> steps;
    constexpr std::string_view single = "dil";
    while (!program.empty()) {
        const std::size_t length =
            std::max<std::size_t>(std::min(program.find_first_not_of(single), program.size()), 1);
        const std::string_view step = program.substr(0, length);
        program.remove_prefix(length);
        if (std::string_view("SAcdil0123456789").find(step.front()) != std::string_view::npos)
            steps.push_back(step);
    }
    return steps;
}

/// A file in memory with a path of its own.
class memory_file {
public:
    explicit memory_file(std::string_view text) : descriptor_(memory()) {
        require(ftruncate(descriptor_, 0) == 0, "the file can be emptied");
        require(pwrite(descriptor_, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()),
                "the file can be written");
    }
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }
    std::string source() const { return "file " + std::to_string(descriptor_); }

private:
    static int memory() {
        static const int descriptor = memfd_create("records", 0);
        return descriptor;
    }
    int descriptor_;
};

/// The lines of a text in entries of one length.
struct line_array {
    explicit line_array(std::string_view text) : lines(fuzz::split(text, '\n')) {
        for (std::string_view &line : lines) {
            if (line.ends_with('\r'))
                line.remove_suffix(1);
            length = std::max(length, line.size());
        }
        for (const std::string_view line : lines) {
            entries.insert(entries.end(), line.begin(), line.end());
            entries.resize(entries.size() + length - line.size(), ' ');
        }
        entries.shrink_to_fit();
    }
    std::vector<std::string_view> lines;
    std::size_t length = 0;
    std::vector<char> entries;
};

/// The message with "file" in place of "line", the only word in which the two forms differ.
std::string as_of_a_file(std::string_view message) {
    constexpr std::string_view line_end = "the end of the line.";
    std::string text(message);
    if (message.ends_with(line_end))
        text.replace(text.size() - line_end.size(), line_end.size(), "the end of the file.");
    return text;
}

void expect_sound(const records::record_reader &in) {
    const std::string_view message = in.message();
    require(in.failed() == !message.empty(), "a failure has a message");
    require(message.size() <= 256, "a message fits the error text", message);
    require(std::all_of(message.begin(), message.end(), [](char c) { return c >= ' ' && c <= '~'; }),
            "a message prints", message);
    require(!in.failed() || message.starts_with("Ostrel error: "), "a message is of its kind", message);
}

/// Compares the first value of a record with the C library's, if both take it for a plain number.
void compare_with_c_library(std::string_view record, std::string_view step, bool ok, const values &got) {
    record.remove_prefix(std::min(record.find_first_not_of(" \t"), record.size()));
    const std::string token(record.substr(0, record.find_first_of(" \t,/")));
    if (token.empty())
        return;
    const auto only = [&](std::string_view characters) {
        return token.find_first_not_of(characters) == std::string::npos;
    };
    char *end = nullptr;
    if (step == "d" && only("+-.0123456789eE")) {
        const double wanted = std::strtod(token.c_str(), &end);
        if (*end == '\0')
            require(ok && fuzz::same_bits(got.reals.back().front(), wanted), "a real is the nearest double", token);
    } else if (step == "i" && only("+-0123456789")) {
        errno = 0;
        const long long wanted = std::strtoll(token.c_str(), &end, 10);
        if (*end != '\0')
            return;
        const bool fits = errno == 0 && wanted >= std::numeric_limits<std::int32_t>::min() &&
                          wanted <= std::numeric_limits<std::int32_t>::max();
        require(ok == fits && (!ok || got.integers.back() == wanted), "an integer is what stands there", token);
    }
}

/// Reads the text in both forms side by side; returns the values from the file.
values read_both(std::string_view program, std::string_view text) {
    const memory_file memory(text);
    records::file_reader file(memory.path());
    require(file.open_status() == 0, "the file opens");
    const line_array array(text);
    std::int32_t index = 0;
    records::line_reader lines(memory.source(), array.entries.data(), index,
                               static_cast<std::int32_t>(array.lines.size()), static_cast<std::int32_t>(array.length));
    values from_file;
    values from_lines;
    bool comparable = true;
    for (const std::string_view step : steps_of(program)) {
        const std::int64_t before = file.record_number();
        const bool failed_before = file.failed();
        const bool file_ok = execute(file, step, from_file);
        const bool lines_ok = execute(lines, step, from_lines);
        expect_sound(file);
        expect_sound(lines);
        if (failed_before) {
            require(!file_ok && file.record_number() == before, "nothing is read behind a failure");
            continue;
        }
        const auto at = static_cast<std::size_t>(before);
        if (file.record_number() == before + 1 && at < array.lines.size())
            compare_with_c_library(array.lines[at], step, file_ok, from_file);
        if (!comparable)
            continue;
        const bool past_end = file.record_number() > static_cast<std::int64_t>(array.lines.size());
        const std::int64_t steps_taken = file.record_number() - lines.record_number();
        if (steps_taken > 0) {
            require(!lines_ok && lines.message().ends_with("found the end of the line."),
                    "a value missing in a line is an error", lines.message());
            comparable = false;
        } else if (past_end && step == "S") {
            require(!file_ok && lines_ok, "a heading is stepped over unread in lines only");
            comparable = false;
        } else {
            require(file_ok == lines_ok, "both forms agree", lines_ok ? file.message() : lines.message());
            require(file.message() == as_of_a_file(lines.message()), "both forms give one message", lines.message());
            require(file.record_number() == lines.record_number() && index == lines.record_number(),
                    "both forms count alike");
            require(from_file.equals(from_lines), "both forms read the same values");
        }
    }
    return from_file;
}

/// Writes each value in a record of its own, the lists, and values of all kinds in one record; then reads all back.
void write_and_read_back(const values &wanted) {
    std::vector<double> all_reals;
    for (const auto &list : wanted.reals)
        all_reals.insert(all_reals.end(), list.begin(), list.end());
    const std::vector<std::int32_t> all_integers(wanted.integers.begin(), wanted.integers.end());
    const double real = all_reals.empty() ? 0.5 : all_reals.front();
    const std::int32_t integer = all_integers.empty() ? 5 : all_integers.front();
    const bool logical = !wanted.logicals.empty() && wanted.logicals.front();
    records::record_writer out;
    for (const double value : all_reals)
        out.record({value});
    for (const std::int32_t value : all_integers)
        out.record({value});
    for (const bool value : wanted.logicals)
        out.record({value});
    for (const auto &name : wanted.names)
        out.record({name.padded()});
    out.record_list(std::span<const double>(all_reals));
    out.record_list(std::span<const std::int32_t>(all_integers));
    out.record({integer, real, logical, "  a text"});

    const memory_file memory(out.text());
    records::file_reader in(memory.path());
    const auto expect_real = [](double got, double value) {
        require(fuzz::same_bits(got, value), "a written real is read back");
    };
    double got_real = 0;
    std::int32_t got_integer = 0;
    bool got_logical = false;
    for (const double value : all_reals) {
        in.read({{"real", got_real}});
        expect_real(got_real, value);
    }
    for (const std::int32_t value : all_integers) {
        in.read({{"integer", got_integer}});
        require(got_integer == value, "a written integer is read back");
    }
    for (const bool value : wanted.logicals) {
        in.read({{"logical", got_logical}});
        require(got_logical == value, "a written logical is read back");
    }
    for (const auto &name : wanted.names) {
        records::fixed_text<32> got;
        in.read_name("name", got);
        require(got.padded() == " " + std::string(name.padded().substr(0, 31)), "a written name is read back",
                got.padded());
    }
    std::vector<double> reals(all_reals.size());
    std::vector<std::int32_t> integers(all_integers.size());
    in.read_list("reals", std::span(reals));
    in.read_list("integers", std::span(integers));
    require(std::equal(reals.begin(), reals.end(), all_reals.begin(), fuzz::same_bits), "a written list is read back");
    require(integers == all_integers, "a written list is read back");
    in.read({{"integer", got_integer}, {"real", got_real}, {"logical", got_logical}});
    require(got_integer == integer && got_logical == logical, "a written record is read back");
    expect_real(got_real, real);
    require(!in.failed(), "what is written is read back", in.message());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::string_view text = fuzz::as_text(data, size);
    const std::string_view program = fuzz::take(text, '\n');
    fuzz::console::taken();
    const values got = read_both(program, text);
    write_and_read_back(got);
    require(fuzz::console::taken() == 0, "nothing is printed");
    return 0;
}
