// SPDX-License-Identifier: MIT
#include "decimal.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace decimal {
namespace {

/// A natural number of any size.
class natural {
public:
    explicit natural(std::uint32_t value) : words_{value} {}

    void multiply_and_add(std::uint32_t factor, std::uint32_t summand) {
        std::uint64_t carry = summand;
        for (std::uint32_t &word : words_) {
            carry += std::uint64_t{word} * factor;
            word = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        if (carry != 0)
            words_.push_back(static_cast<std::uint32_t>(carry));
    }
    void multiply_by_power_of_ten(int exponent) {
        for (; exponent > 0; --exponent)
            multiply_and_add(10, 0);
    }
    void shift_left(int bits) {
        for (; bits >= 32; bits -= 32)
            words_.insert(words_.begin(), 0);
        multiply_and_add(std::uint32_t{1} << bits, 0);
    }
    int bit_length() const {
        int bits = 0;
        for (std::uint32_t top = words_.back(); top != 0; top >>= 1)
            ++bits;
        return bits + 32 * static_cast<int>(words_.size() - 1);
    }
    /// Negative, 0 or positive as this number is below, equal to or above the other one.
    int compare(const natural &other) const {
        if (words_.size() != other.words_.size())
            return words_.size() < other.words_.size() ? -1 : 1;
        for (std::size_t i = words_.size(); i-- > 0;)
            if (words_[i] != other.words_[i])
                return words_[i] < other.words_[i] ? -1 : 1;
        return 0;
    }
    /// The other number must not be above this one.
    void subtract(const natural &other) {
        std::int64_t borrow = 0;
        for (std::size_t i = 0; i < words_.size(); ++i) {
            borrow += std::int64_t{words_[i]} - (i < other.words_.size() ? other.words_[i] : 0);
            words_[i] = static_cast<std::uint32_t>(borrow);
            borrow >>= 32;
        }
        while (words_.size() > 1 && words_.back() == 0)
            words_.pop_back();
    }

private:
    std::vector<std::uint32_t> words_; ///< the lowest one first; the highest one is 0 only in the number 0
};

constexpr int bits_of_double = std::numeric_limits<double>::digits;
constexpr int lowest_power = std::numeric_limits<double>::min_exponent - bits_of_double; // of the last bit

/// The double nearest to numerator/denominator, both above 0; infinity if it is too large.
double nearest_quotient(natural numerator, natural denominator) {
    // 2^power <= quotient < 2^(power + 1)
    int power = numerator.bit_length() - denominator.bit_length();
    (power < 0 ? numerator : denominator).shift_left(std::abs(power));
    if (numerator.compare(denominator) < 0) {
        numerator.shift_left(1);
        --power;
    }
    const int last_bit = std::max(power - (bits_of_double - 1), lowest_power);
    std::uint64_t quotient = 0;
    for (int bit = power; bit >= last_bit; --bit) {
        quotient <<= 1;
        if (numerator.compare(denominator) >= 0) {
            numerator.subtract(denominator);
            quotient |= 1;
        }
        numerator.shift_left(1);
    }
    // What is left is twice the remainder, at the last bit. Without any bit the quotient may still be above half of it.
    for (int bit = power; bit < last_bit - 1; ++bit)
        denominator.shift_left(1);
    const int rest = numerator.compare(denominator);
    if (rest > 0 || (rest == 0 && quotient % 2 == 1))
        ++quotient;
    return std::ldexp(static_cast<double>(quotient), last_bit);
}

/// A number as it is written, without its sign: digits times 10^exponent. The digits begin with another than 0.
struct written_number {
    std::string digits{};
    std::int64_t exponent = 0;
};

/// The nearest double; 0 or infinity if the number is too small or too large for one.
double nearest(written_number number) {
    // No number halfway between two doubles has as many digits. Of what follows them it only counts whether it is 0.
    constexpr std::size_t enough_digits = 800;
    if (number.digits.size() > enough_digits) {
        number.exponent += static_cast<std::int64_t>(number.digits.size() - enough_digits - 1);
        const bool rest = number.digits.find_first_not_of('0', enough_digits) != std::string::npos;
        number.digits.resize(enough_digits);
        number.digits += rest ? '1' : '0';
    }
    const std::int64_t magnitude = number.exponent + static_cast<std::int64_t>(number.digits.size());
    if (magnitude > std::numeric_limits<double>::max_exponent10 + 1)
        return std::numeric_limits<double>::infinity();
    if (magnitude < std::numeric_limits<double>::min_exponent10 - std::numeric_limits<double>::digits10 - 2)
        return 0;
    const int exponent = static_cast<int>(number.exponent);

    // Both numbers are doubles themselves, so that one operation rounds correctly.
    constexpr std::size_t short_digits = 15;
    constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    if (number.digits.size() <= short_digits && std::abs(exponent) < static_cast<int>(std::size(powers))) {
        double value = 0;
        for (const char digit : number.digits)
            value = 10 * value + (digit - '0');
        return exponent < 0 ? value / powers[-exponent] : value * powers[exponent];
    }
    natural numerator(0);
    for (const char digit : number.digits)
        numerator.multiply_and_add(10, static_cast<std::uint32_t>(digit - '0'));
    natural denominator(1);
    (exponent < 0 ? denominator : numerator).multiply_by_power_of_ten(std::abs(exponent));
    return nearest_quotient(std::move(numerator), std::move(denominator));
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Whether the text begins with the word, in letters of any case.
bool begins_with(std::string_view text, std::string_view word) {
    return text.size() >= word.size() &&
           std::equal(word.begin(), word.end(), text.begin(), [](char a, char b) { return a == lowered(b); });
}

/// The length of the word for infinity or NaN at the front, and its value; 0 if there is none.
std::size_t read_word(std::string_view text, double &value) {
    for (const std::string_view word : {"infinity", "inf"})
        if (begins_with(text, word)) {
            value = std::numeric_limits<double>::infinity();
            return word.size();
        }
    constexpr std::string_view nan = "nan";
    if (!begins_with(text, nan))
        return 0;
    value = std::numeric_limits<double>::quiet_NaN();
    std::size_t end = nan.size();
    if (end == text.size() || text[end] != '(')
        return end;
    do
        ++end;
    while (end < text.size() &&
           (is_digit(text[end]) || text[end] == '_' || (lowered(text[end]) >= 'a' && lowered(text[end]) <= 'z')));
    return end < text.size() && text[end] == ')' ? end + 1 : nan.size();
}

/// The length of the number at the front, without a sign; 0 if there is none.
std::size_t read_number(std::string_view text, written_number &number) {
    std::size_t end = 0;
    bool point = false;
    bool any = false;
    for (; end < text.size() && (is_digit(text[end]) || (text[end] == '.' && !point)); ++end) {
        if (text[end] == '.') {
            point = true;
            continue;
        }
        any = true;
        if (point)
            --number.exponent;
        if (text[end] != '0' || !number.digits.empty())
            number.digits += text[end];
    }
    if (!any)
        return 0;
    if (end == text.size() || lowered(text[end]) != 'e')
        return end;
    std::size_t place = end + 1;
    const bool negative = place < text.size() && text[place] == '-';
    if (place < text.size() && (text[place] == '-' || text[place] == '+'))
        ++place;
    if (place == text.size() || !is_digit(text[place]))
        return end;
    constexpr std::int64_t bound = std::int64_t{1} << 40;
    std::int64_t exponent = 0;
    for (; place < text.size() && is_digit(text[place]); ++place)
        exponent = std::min(10 * exponent + (text[place] - '0'), bound);
    number.exponent += negative ? -exponent : exponent;
    return place;
}

} // namespace

std::from_chars_result from_chars(const char *first, const char *last, double &value) {
    std::string_view text(first, static_cast<std::size_t>(last - first));
    const bool negative = text.starts_with('-');
    const char *const begin = negative ? first + 1 : first;
    text.remove_prefix(negative ? 1 : 0);
    double found = 0;
    if (const std::size_t length = read_word(text, found); length > 0) {
        value = negative ? -found : found;
        return {begin + length, std::errc{}};
    }
    written_number number;
    const std::size_t length = read_number(text, number);
    if (length == 0)
        return {first, std::errc::invalid_argument};
    if (!number.digits.empty()) {
        found = nearest(std::move(number));
        if (found == 0 || std::isinf(found))
            return {begin + length, std::errc::result_out_of_range};
    }
    value = negative ? -found : found;
    return {begin + length, std::errc{}};
}

namespace {

/// A text that printf writes, in a buffer that may be too small.
template <class... Arguments>
std::to_chars_result printed(char *first, char *last, const char *format, Arguments... arguments) {
    // A double has at most 309 digits before the point, and at most 1074 behind it.
    char text[1500];
    const int written = std::snprintf(text, sizeof text, format, arguments...);
    if (written < 0 || written >= static_cast<int>(sizeof text) || written > last - first)
        return {last, std::errc::value_too_large};
    std::memcpy(first, text, static_cast<std::size_t>(written));
    return {first + written, std::errc{}};
}

} // namespace

std::to_chars_result to_chars(char *first, char *last, double value, std::chars_format format, int precision) {
    return printed(first, last,
                   format == std::chars_format::fixed        ? "%.*f"
                   : format == std::chars_format::scientific ? "%.*e"
                                                             : "%.*g",
                   precision, value);
}

std::to_chars_result to_chars(char *first, char *last, double value) {
    if (!std::isfinite(value) || value == 0)
        return printed(first, last, "%g", value);
    char scientific[32];
    const char *end = scientific;
    int precision = 0; // digits behind the point
    for (double again = 0; again != value && precision < std::numeric_limits<double>::max_digits10; ++precision) {
        end = decimal::to_chars(scientific, scientific + sizeof scientific, value, std::chars_format::scientific,
                                precision)
                  .ptr;
        decimal::from_chars(scientific, end, again);
    }
    --precision;
    int exponent = 0;
    std::from_chars(std::find(scientific, const_cast<char *>(end), 'e') + 2, end, exponent);
    if (*(std::find(scientific, const_cast<char *>(end), 'e') + 1) == '-')
        exponent = -exponent;
    char fixed[400];
    const std::to_chars_result other = decimal::to_chars(fixed, fixed + sizeof fixed, value, std::chars_format::fixed,
                                                         std::max(precision - exponent, 0));
    const bool is_fixed = other.ec == std::errc{} && other.ptr - fixed <= end - scientific;
    const std::string_view text = is_fixed ? std::string_view(fixed, static_cast<std::size_t>(other.ptr - fixed))
                                           : std::string_view(scientific, static_cast<std::size_t>(end - scientific));
    if (static_cast<std::ptrdiff_t>(text.size()) > last - first)
        return {last, std::errc::value_too_large};
    std::memcpy(first, text.data(), text.size());
    return {first + text.size(), std::errc{}};
}

} // namespace decimal

#ifndef __cpp_lib_to_chars

std::from_chars_result std::from_chars(const char *first, const char *last, double &value) {
    return decimal::from_chars(first, last, value);
}

std::to_chars_result std::to_chars(char *first, char *last, double value) {
    return decimal::to_chars(first, last, value);
}

std::to_chars_result std::to_chars(char *first, char *last, double value, chars_format format, int precision) {
    return decimal::to_chars(first, last, value, format, precision);
}

#endif
