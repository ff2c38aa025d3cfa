// SPDX-License-Identifier: MIT
#include "Records/record_reader.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>

namespace records {
namespace {

constexpr std::size_t largest_file = std::size_t{16} << 20;
constexpr std::string_view separators = " \t,/";
constexpr std::string_view blanks = " \t";

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

std::string lowered(std::string_view text) {
    std::string result(text);
    for (char &c : result)
        c = lower(c);
    return result;
}

/// Removes the digits at the front of the text and returns them.
std::string_view take_digits(std::string_view &text) {
    std::size_t count = 0;
    while (count < text.size() && is_digit(text[count]))
        ++count;
    const std::string_view digits = text.substr(0, count);
    text.remove_prefix(count);
    return digits;
}

/// Removes a sign at the front, if there is one; true for a minus.
bool take_sign(std::string_view &text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    return negative;
}

std::optional<std::int32_t> integer_value(std::string_view token) {
    if (token.starts_with('+')) {
        token.remove_prefix(1);
        if (token.starts_with('-'))
            return std::nullopt;
    }
    std::int32_t value = 0;
    const auto [end, status] = std::from_chars(token.data(), token.data() + token.size(), value);
    if (status != std::errc{} || end != token.data() + token.size())
        return std::nullopt;
    return value;
}

std::optional<bool> logical_value(std::string_view token) {
    if (token.starts_with('.'))
        token.remove_prefix(1);
    const char letter = token.empty() ? ' ' : lower(token.front());
    if (letter == 't')
        return true;
    if (letter == 'f')
        return false;
    return std::nullopt;
}

/// The value of a name of infinity or NaN, in upper or lower case, without a sign.
std::optional<double> special_value(std::string_view token) {
    const std::string name = lowered(token);
    if (name == "inf" || name == "infinity")
        return std::numeric_limits<double>::infinity();
    if (name == "nan" || (name.starts_with("nan(") && name.find(')') == name.size() - 1))
        return std::numeric_limits<double>::quiet_NaN();
    return std::nullopt;
}

/// Reads a real number: perhaps a sign, digits with at most one point, and perhaps an exponent, whose letter may be
/// missing if it has a sign.
std::optional<double> real_value(std::string_view token) {
    const bool negative = take_sign(token);
    if (const auto special = special_value(token))
        return negative ? -*special : *special;

    const std::string_view whole = take_digits(token);
    std::string_view fraction;
    if (token.starts_with('.')) {
        token.remove_prefix(1);
        fraction = take_digits(token);
    }
    if (whole.empty() && fraction.empty())
        return std::nullopt;

    constexpr std::int64_t exponent_bound = std::int64_t{1} << 40;
    std::int64_t exponent = 0;
    if (!token.empty()) {
        const bool letter = std::string_view("eEdDqQ").find(token.front()) != std::string_view::npos;
        if (letter)
            token.remove_prefix(1);
        else if (token.front() != '+' && token.front() != '-')
            return std::nullopt;
        const bool minus = take_sign(token);
        const std::string_view digits = take_digits(token);
        if (digits.empty() || !token.empty())
            return std::nullopt;
        for (const char digit : digits)
            exponent = std::min(exponent * 10 + (digit - '0'), exponent_bound);
        if (minus)
            exponent = -exponent;
    }

    // The leading digit's power of ten tells overflow from underflow; longer arithmetic is not needed.
    std::string digits(whole);
    digits += fraction;
    const std::size_t leading = digits.find_first_not_of('0');
    double value = 0.0;
    if (leading != std::string::npos) {
        exponent -= static_cast<std::int64_t>(fraction.size());
        digits.erase(0, leading);
        const std::int64_t magnitude = exponent + static_cast<std::int64_t>(digits.size());
        if (magnitude > std::numeric_limits<double>::max_exponent10 + 2) {
            value = std::numeric_limits<double>::infinity();
        } else if (magnitude > std::numeric_limits<double>::min_exponent10 - 20) {
            digits += 'e';
            digits += std::to_string(exponent);
            const auto status = std::from_chars(digits.data(), digits.data() + digits.size(), value).ec;
            if (status == std::errc::result_out_of_range)
                value = magnitude > 0 ? std::numeric_limits<double>::infinity() : 0.0;
        }
    }
    return negative ? -value : value;
}

std::string_view kind_of(const item &wanted) {
    constexpr std::string_view kinds[] = {"a real", "an integer", "a logical"};
    return kinds[wanted.variable.index()];
}

bool store(const item &wanted, std::string_view token) {
    const auto assign = [](auto *variable, const auto &value) {
        if (value)
            *variable = *value;
        return value.has_value();
    };
    if (auto *const *real = std::get_if<double *>(&wanted.variable))
        return assign(*real, real_value(token));
    if (auto *const *integer = std::get_if<std::int32_t *>(&wanted.variable))
        return assign(*integer, integer_value(token));
    return assign(std::get<bool *>(wanted.variable), logical_value(token));
}

/// Takes the values of one READ from its records, in order: it finds their ends, null values and repeat counts.
class value_scanner {
public:
    enum class found { value, null, complete, bad_count, no_record };

    explicit value_scanner(std::string_view record) : rest_(record) {}

    /// Finds the text of the next value; `more` supplies the record that follows, if there is one.
    template <class NextRecord>
    found next(std::string_view &token, NextRecord &&more) {
        if (repeats_left_ > 0) {
            --repeats_left_;
            token = repeated_;
            return token.empty() ? found::null : found::value;
        }
        skip_blanks();
        while (rest_.empty()) {
            if (!more(rest_))
                return found::no_record;
            skip_blanks();
            // A comma at the start of a record and the end of the record before it are one separator.
            if (rest_.starts_with(',') && !comma_before_) {
                rest_.remove_prefix(1);
                skip_blanks();
            }
        }
        if (rest_.starts_with('/'))
            return found::complete;
        token = rest_.substr(0, rest_.find_first_of(separators));
        rest_.remove_prefix(token.size());
        const bool counted = take_count(token);
        end_value();
        if (counted && repeats_left_ < 0) {
            repeats_left_ = 0;
            return found::bad_count;
        }
        return token.empty() ? found::null : found::value;
    }

private:
    void skip_blanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size())); }

    /// Steps over the separator behind a value.
    void end_value() {
        skip_blanks();
        comma_before_ = rest_.starts_with(',');
        if (comma_before_)
            rest_.remove_prefix(1);
    }

    /// Removes a repeat count from the front of the token; a count of 0 leaves -1 repeats.
    bool take_count(std::string_view &token) {
        std::string_view behind = token;
        const std::string_view digits = take_digits(behind);
        if (digits.empty() || !behind.starts_with('*'))
            return false;
        std::int64_t count = 0;
        for (const char digit : digits)
            count = std::min<std::int64_t>(count * 10 + (digit - '0'), std::int64_t{longest_list} + 1);
        repeats_left_ = count - 1;
        token = repeated_ = behind.substr(1);
        return true;
    }

    std::string_view rest_;
    std::string_view repeated_;
    std::int64_t repeats_left_ = 0;
    bool comma_before_ = false;
};

/// At most `room` bytes of the text; characters that cannot be printed are replaced.
std::string printable(std::string_view text, std::size_t room) {
    std::string result(text.substr(0, room));
    for (char &c : result)
        if (c < ' ' || c > '~')
            c = '?';
    if (text.size() > room)
        result += "...";
    return result;
}

} // namespace

bool record_reader::fail(std::string_view wanted, std::string_view found) {
    message_ = "Ostrel error: " + source_ + ", record " + std::to_string(record_number_) + ": expected " +
               std::string(wanted) + ", found " + std::string(found) + ".";
    return false;
}

bool record_reader::limit_count(std::string_view field, std::int64_t count, std::int64_t limit) {
    if (!failed() && count > limit)
        fail(std::string(field) + " of at most " + std::to_string(limit), std::to_string(count));
    return !failed();
}

bool record_reader::skip(std::string_view what) {
    if (failed())
        return false;
    ++record_number_;
    if (!step())
        return fail(what, "the end of the file");
    return true;
}

bool record_reader::read_name(std::string_view field, fixed_text<32> &name) {
    if (failed())
        return false;
    ++record_number_;
    std::string_view record;
    if (!next_record(record))
        return fail(std::string(field) + " (a text)", "the end of the file");
    name = fixed_text<32>(record);
    return true;
}

bool record_reader::read(std::span<const item> items) {
    if (failed())
        return false;
    const auto describe = [&](const item &wanted) {
        std::string text(wanted.field);
        if (wanted.element > 0)
            text.append("(").append(std::to_string(wanted.element)).append(")");
        return text.append(" (").append(kind_of(wanted)).append(")");
    };
    ++record_number_;
    std::string_view record;
    if (!next_record(record))
        return fail(items.empty() ? "an empty list" : describe(items.front()), "the end of the file");

    const auto more = [&](std::string_view &next) {
        if (!continues() || !next_record(next))
            return false;
        ++record_number_;
        return true;
    };
    value_scanner values(record);
    for (const item &wanted : items) {
        std::string_view token;
        switch (values.next(token, more)) {
        case value_scanner::found::value:
            if (!store(wanted, token))
                return fail(describe(wanted), std::string("\"").append(printable(token, 40)).append("\""));
            break;
        case value_scanner::found::null:
            break;
        case value_scanner::found::complete:
            return true;
        case value_scanner::found::bad_count:
            return fail(describe(wanted), "a repeat count of 0");
        case value_scanner::found::no_record:
            return fail(describe(wanted), continues() ? "the end of the file" : "the end of the line");
        }
    }
    return true;
}

std::string source_of_file(std::string_view path) {
    const std::string_view name = path.substr(path.find_last_of('/') + 1);
    return "file " + printable(name, 64);
}

int read_file(const std::string &path, std::string &text) {
    if (path.find('\0') != std::string::npos)
        return ENOENT;
    // Reading a pipe, a socket or a terminal would wait for someone to write, and reading a fluid must never hang.
    using std::filesystem::file_type;
    std::error_code ignored;
    const file_type type = std::filesystem::status(path, ignored).type();
    if (type == file_type::fifo || type == file_type::socket || type == file_type::character)
        return ENXIO;
    errno = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::fopen(path.c_str(), "rb"),
                                                                [](std::FILE *f) { return std::fclose(f); });
    if (!file)
        return errno != 0 ? errno : ENOENT;
    if (type == file_type::directory)
        return 0;
    char block[8192];
    for (std::size_t count = sizeof block; count == sizeof block;) {
        count = std::fread(block, 1, sizeof block, file.get());
        text.append(block, count);
        if (text.size() > largest_file)
            return EFBIG;
    }
    return std::ferror(file.get()) != 0 ? EIO : 0;
}

file_reader::file_reader(std::string_view path) : text_reader(source_of_file(trimmed(path)), {}) {
    open_status_ = read_file(std::string(trimmed(path)), text_);
    if (open_status_ != 0)
        text_.clear();
}

bool text_reader::next_record(std::string_view &record) {
    if (position_ >= text_.size())
        return false;
    const std::size_t end = std::min(text_.find('\n', position_), text_.size());
    record = std::string_view(text_).substr(position_, end - position_);
    if (record.ends_with('\r'))
        record.remove_suffix(1);
    position_ = end + 1;
    return true;
}

bool text_reader::step() {
    std::string_view ignored;
    return next_record(ignored);
}

bool line_reader::next_record(std::string_view &record) {
    ++index_;
    if (index_ < 1 || index_ > count_ || length_ < 0)
        return false;
    record = {lines_ + static_cast<std::size_t>(index_ - 1) * static_cast<std::size_t>(length_),
              static_cast<std::size_t>(length_)};
    return true;
}

bool line_reader::step() {
    ++index_;
    return true;
}

} // namespace records
