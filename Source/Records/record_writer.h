// SPDX-License-Identifier: MIT
// List-directed writing: the layout that the readers of parameter sections and other programs expect.
//
// A record that is not empty starts with a blank. An integer takes 12 columns. A logical takes a blank and T or F. A
// double takes a blank and 25 columns with 17 significant digits; it has no exponent if its decimal exponent is from
// -1 to 16. A text gets a blank before it only at the start of the record and behind a number or a logical.
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
    /// Writes one record; without values it is empty and has not even the blank.
    void record(std::initializer_list<written_value> values) {
        text_ += list_directed(values);
        text_ += '\n';
    }
    /// Writes one record that holds a list.
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
