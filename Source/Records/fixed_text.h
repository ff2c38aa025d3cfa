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
    std::fill(field.begin(), field.end(), ' ');
}

/// A text of exactly N bytes. Bytes are kept as they come; none has a meaning here but the blank.
template <std::size_t N>
class fixed_text {
public:
    constexpr fixed_text() { characters_.fill(' '); }
    constexpr fixed_text(std::string_view text) { assign({text}); }

    constexpr void assign(std::initializer_list<std::string_view> pieces) { fill_text(characters_, pieces); }
    constexpr std::string_view padded() const { return {characters_.data(), N}; }
    constexpr std::string_view trimmed() const { return records::trimmed(padded()); }
    constexpr std::span<char> characters() { return characters_; }

    /// The bytes as one integer: equal texts have equal numbers.
    constexpr std::uint64_t packed() const requires(N == sizeof(std::uint64_t)) {
        return std::bit_cast<std::uint64_t>(characters_);
    }

    friend constexpr bool operator==(const fixed_text &, const fixed_text &) = default;

private:
    std::array<char, N> characters_;
};

} // namespace records
