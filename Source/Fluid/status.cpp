// SPDX-License-Identifier: MIT
#include "Fluid/status.h"

#include <algorithm>
#include <array>

namespace fluid {
namespace {

// The variable has neither a constructor that runs nor a destructor, so that a thread registers nothing that would have
// to be called after the library has been unloaded.
constinit thread_local std::array<char, 1024> message{};

constexpr std::size_t longest_shown = 200;

/// The number of bytes of the UTF-8 character at the start of a text; 0 if there is none.
std::size_t character_length(std::string_view text) {
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const auto follows = [&](std::size_t count) {
        for (std::size_t i = 1; i <= count; ++i)
            if ((byte(i) & 0xC0U) != 0x80U)
                return false;
        return true;
    };
    const unsigned first = byte(0);
    const unsigned second = byte(1);
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first < 0xE0 && follows(1))
        return 2;
    // Neither longer than necessary nor a surrogate.
    if (first >= 0xE0 && first < 0xF0 && follows(2) && !(first == 0xE0 && second < 0xA0) &&
        !(first == 0xED && second >= 0xA0))
        return 3;
    // At most U+10FFFF.
    if (first >= 0xF0 && first < 0xF5 && follows(3) && !(first == 0xF0 && second < 0x90) &&
        !(first == 0xF4 && second >= 0x90))
        return 4;
    return 0;
}

/// The part of a UTF-8 text that has room, without a part of a character at its end.
std::string_view whole_characters(std::string_view text, std::size_t room) {
    if (text.size() <= room)
        return text;
    while (room > 0 && (static_cast<unsigned char>(text[room]) & 0xC0U) == 0x80U)
        --room;
    return text.substr(0, room);
}

} // namespace

int report(int status, std::initializer_list<std::string_view> pieces) {
    constexpr std::string_view dots = "...";
    const std::size_t room = message.size() - 1 - dots.size();
    char *const begin = message.data();
    std::size_t size = 0;
    for (const std::string_view piece : pieces) {
        const std::string_view kept = whole_characters(piece, room - size);
        std::copy(kept.begin(), kept.end(), begin + size);
        size += kept.size();
        if (kept.size() < piece.size()) {
            std::copy(dots.begin(), dots.end(), begin + size);
            size += dots.size();
            break;
        }
    }
    begin[size] = '\0';
    return status;
}

int report_null(std::string_view argument, std::string_view right) {
    return report(OSTREL_BAD_ARGUMENT, {argument, ": a null pointer; ", right});
}

const char *last_message() {
    return message.data();
}

std::string printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = character_length(text);
        const bool shown = length > 1 || (length == 1 && text[0] >= ' ' && text[0] != '\x7F');
        const std::string_view character = shown ? text.substr(0, length) : "?";
        if (result.size() + character.size() > longest_shown)
            return result + "...";
        result += character;
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::string in_quotes(std::string_view text) {
    return '"' + printable(text) + '"';
}

std::string joined(std::span<const std::string> texts, std::string_view last) {
    std::string result;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i > 0)
            result += i + 1 == texts.size() ? last : ", ";
        result += texts[i];
    }
    return result;
}

std::string joined(std::span<const std::string_view> texts) {
    return joined(std::vector<std::string>(texts.begin(), texts.end()), ", ");
}

} // namespace fluid
