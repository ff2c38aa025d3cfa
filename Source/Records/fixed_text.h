// SPDX-License-Identifier: MIT
// Texts of fixed length, padded with blanks; trailing blanks never count in a comparison.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

namespace records {

/// The text without its trailing blanks.
constexpr std::string_view trimmed(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

/// A letter in lower case; other bytes stay as they are.
constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// The first eight bytes of the text, blank-padded, as one integer, so that names and codes compare in a single step.
constexpr std::uint64_t packed(std::string_view text) {
    constexpr std::size_t count = sizeof(std::uint64_t);
    constexpr std::uint64_t blanks = 0x2020202020202020;
    std::uint64_t result = blanks;
    const std::size_t used = std::min(text.size(), count);
    for (std::size_t i = 0; i < used; ++i) {
        const std::size_t place = std::endian::native == std::endian::little ? i : count - 1 - i;
        result ^= static_cast<std::uint64_t>(static_cast<unsigned char>(text[i] ^ ' ')) << (8 * place);
    }
    return result;
}

/// The packed text with its letters in lower case: 0x20 is added to the bytes from 'A' to 'Z', to all eight together.
constexpr std::uint64_t lower(std::uint64_t packed) {
    constexpr std::uint64_t each = 0x0101010101010101;
    const std::uint64_t low_bits = packed & (0x7f * each);
    const std::uint64_t from_A = low_bits + (0x80 - 'A') * each;
    const std::uint64_t beyond_Z = low_bits + (0x7f - 'Z') * each;
    return packed | ((from_A & ~beyond_Z & ~packed & (0x80 * each)) >> 2);
}

/// Equality of blank-padded texts of any lengths.
constexpr bool same_text(std::string_view a, std::string_view b) {
    return trimmed(a) == trimmed(b);
}

/// Writes the pieces one after the other into the field, truncated at its end or blank-padded.
constexpr void fill_text(std::span<char> field, std::initializer_list<std::string_view> pieces) {
    for (const std::string_view piece : pieces) {
        const std::string_view kept = piece.substr(0, field.size());
        std::copy(kept.begin(), kept.end(), field.begin());
        field = field.subspan(kept.size());
    }
    if (!field.empty())
        std::fill(field.begin(), field.end(), ' ');
}

/// A text of exactly N bytes. All bytes are kept unchanged; only the blank has a meaning here.
template <std::size_t N>
class fixed_text {
public:
    constexpr fixed_text() { characters_.fill(' '); }
    constexpr fixed_text(std::string_view text) { assign({text}); }

    constexpr void assign(std::initializer_list<std::string_view> pieces) { fill_text(characters_, pieces); }
    constexpr std::string_view padded() const { return {characters_.data(), N}; }
    constexpr std::string_view trimmed() const { return records::trimmed(padded()); }
    constexpr std::span<char> characters() { return characters_; }

    /// The bytes as one integer, as records::packed returns it.
    constexpr std::uint64_t packed() const requires(N <= sizeof(std::uint64_t)) {
        if constexpr (N == sizeof(std::uint64_t))
            return std::bit_cast<std::uint64_t>(characters_);
        else
            return records::packed(padded());
    }
    /// The text of such an integer.
    static constexpr fixed_text unpacked(std::uint64_t number) requires(N == sizeof(std::uint64_t)) {
        fixed_text result;
        result.characters_ = std::bit_cast<std::array<char, N>>(number);
        return result;
    }

    friend constexpr bool operator==(const fixed_text &, const fixed_text &) = default;

private:
    std::array<char, N> characters_;
};

/// Equality of a text of any length with one of at most eight bytes.
template <std::size_t N>
constexpr bool same_text(std::string_view a, const fixed_text<N> &b) {
    return packed(a) == b.packed() && (a.size() <= 8 || trimmed(a.substr(8)).empty());
}

} // namespace records
