// SPDX-License-Identifier: MIT
#include "Records/record_writer.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace records {
namespace {

std::string right_adjusted(std::string_view text, std::size_t width) {
    return std::string(width > text.size() ? width - text.size() : 0, ' ') + std::string(text);
}

std::string real_text(double value) {
    constexpr std::size_t width = 25;
    if (std::isnan(value))
        return right_adjusted("NaN", width);
    if (std::isinf(value))
        return right_adjusted(value < 0 ? "-Infinity" : "Infinity", width);

    // The form is d.dddddddddddddddde±x. Its exponent, which is that after rounding, decides the layout.
    char scientific[40];
    const char *const end =
        std::to_chars(scientific, scientific + sizeof scientific, value, std::chars_format::scientific, 16).ptr;
    const std::string_view text(scientific, static_cast<std::size_t>(end - scientific));
    const std::size_t letter = text.find('e');
    int exponent = 0;
    const char *const power_text = scientific + letter + 1;
    std::from_chars(*power_text == '+' ? power_text + 1 : power_text, end, exponent);

    if (exponent >= -1 && exponent <= 16) {
        char fixed[40];
        const char *const fixed_end =
            std::to_chars(fixed, fixed + sizeof fixed, value, std::chars_format::fixed, 16 - exponent).ptr;
        std::string digits(fixed, static_cast<std::size_t>(fixed_end - fixed));
        if (exponent == 16)
            digits += '.';
        return right_adjusted(digits, 20) + "     ";
    }
    const std::string power = std::to_string(std::abs(exponent));
    return right_adjusted(std::string(text.substr(0, letter)) + 'E' + (exponent < 0 ? '-' : '+') +
                              std::string(3 - power.size(), '0') + power,
                          width);
}

} // namespace

std::string list_directed(std::initializer_list<written_value> values) {
    std::string result;
    bool after_text = false;
    for (const written_value &value : values) {
        if (const auto *text = std::get_if<std::string_view>(&value)) {
            if (!after_text)
                result += ' ';
            result += *text;
            after_text = true;
            continue;
        }
        after_text = false;
        if (const auto *integer = std::get_if<std::int32_t>(&value))
            result += right_adjusted(std::to_string(*integer), 12);
        else if (const auto *real = std::get_if<double>(&value))
            result += ' ' + real_text(*real);
        else
            result += std::get<bool>(value) ? " T" : " F";
    }
    return result;
}

} // namespace records
