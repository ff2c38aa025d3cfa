// SPDX-License-Identifier: MIT
// The names by which handles are asked: input pairs, outputs and derivatives. Reading them costs little beside a state,
// and allocates nothing for up to 16 outputs.
#pragma once

#include "Fluid/core.h"
#include "Requests/handle_outputs.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace fluid {

constexpr bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

constexpr std::string_view without_blanks(std::string_view text) {
    while (!text.empty() && is_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// The letters of the quantities, in the order of `letter`.
inline constexpr std::string_view letters = "tpvdhsuq";
inline constexpr std::size_t letter_count = letters.size();

/// What people are told of a quantity. The outputs begin with the quantities, in the same order.
constexpr const requests::described &quantity_of(letter which) {
    return requests::handle_outputs[static_cast<std::size_t>(which)];
}

/// Two inputs as the caller wrote them.
struct named_pair {
    std::uint8_t row = 0; ///< in input_pairs
    bool swapped = false;

    letter first() const { return swapped ? input_pairs[row].second : input_pairs[row].first; }
    letter second() const { return swapped ? input_pairs[row].first : input_pairs[row].second; }
};

/// The outputs that a caller wants, in the caller's order.
class named_outputs {
public:
    void add(const output &one) {
        if (count_ < few_.size())
            few_[count_] = one;
        else
            add_to_many(one);
        ++count_;
    }
    std::span<const output> all() const {
        return many_.empty() ? std::span(few_).first(count_) : std::span<const output>(many_);
    }

private:
    void add_to_many(const output &one);

    std::array<output, 16> few_{};
    std::size_t count_ = 0;
    std::vector<output> many_{}; ///< all of them, if they are more
};

// These return OSTREL_OK, or a status whose message stands. Null texts are refused.

int read_pair(const char *text, named_pair &pair);
/// The input of a saturation, t or p.
int read_saturation_input(const char *text, bool &at_pressure);
int read_outputs(const char *text, named_outputs &outputs);
/// One output.
int read_output(const char *text, output &one);

/// What people may ask, in the order in which they see it.
std::span<const requests::described> described_pairs();
std::span<const requests::described> described_derivatives();

} // namespace fluid
