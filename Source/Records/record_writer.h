// SPDX-License-Identifier: MIT
// List-directed writing: the layout that the readers of parameter sections and other programs expect.
//
// A record that is not empty starts with a blank. An integer takes 12 columns; a logical a blank and T or F;
// a double a blank and 25 columns with 17 significant digits, fixed while the decimal exponent is -1 to 16.
// A text gets a blank before it at the record's start and behind a number or logical only.
#pragma once

#include "Records/fixed_text.h"
#include "visibility.h"

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace records OSTREL_VISIBLE {

using written_value = std::variant<std::int32_t, double, bool, std::string_view>;

/// The list-directed form of the values, without a line end.
std::string list_directed(std::initializer_list<written_value> values);

class record_writer {
public:
    /// One record; no values make a truly empty one.
    void record(std::initializer_list<written_value> values) {
        text_ += list_directed(values);
        text_ += '\n';
    }
    /// One record that holds a list.
    template <class Value>
    void record_list(std::span<const Value> values) {
        for (const Value value : values)
            text_ += list_directed({value});
        text_ += '\n';
    }
    /// All records so far, each with its line end.
    const std::string &text() const { return text_; }

private:
    std::string text_;
};

} // namespace records
