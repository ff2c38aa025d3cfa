// SPDX-License-Identifier: MIT
// The values that the library takes from each record of a parameter file.
//
// The library's own routines read the file, through a reader that gives them one value at a time. So no list of the
// records stands here, and the trace agrees with the library also where lists continue in the next record, values
// repeat or are left out.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace command {

/// The records of a text, without their line ends.
std::vector<std::string_view> records_of(std::string_view text);

/// What the library has taken with one READ.
struct record_trace {
    std::int64_t first = 0;                ///< the number of the record where it begins, from 1
    std::int64_t last = 0;                 ///< the number of the record where it ends
    std::vector<std::string_view> taken{}; ///< its values as they are written, each with the comma behind it
    std::string_view rest{};               ///< what stands behind them in the last record, which is not read
};

struct file_trace {
    std::vector<record_trace> reads{}; ///< in their order; the last one may have failed
    bool complete = false;             ///< whether the whole file could be read
};
file_trace trace(std::span<const std::string_view> records);

/// What a READ wants.
struct wanted_value {
    std::string name{}; ///< the field's name, in a list with the place: "Tv(2)"; empty in an empty list
    std::string kind{}; ///< "a real", "an integer", "a logical", "a text"; empty for headings and empty lists
};
/// The value at a place, from 0, of the READ at an index in the trace.
wanted_value wanted(std::span<const std::string_view> records, std::size_t read, std::size_t place = 0);
/// How many values this READ wants.
std::size_t wanted_count(std::span<const std::string_view> records, std::size_t read);

/// Whether the text has a digit and the library reads it as a number.
bool is_number(std::string_view token);
/// Removes from the front of the text a value with the blanks and the comma behind it, or all that follows a slash.
std::string_view take_value(std::string_view &text);

/// The part of the text in front of the first separator of values.
std::string_view token_of(std::string_view text);
/// The text without blanks at its front.
std::string_view without_blanks(std::string_view text);

} // namespace command
