// SPDX-License-Identifier: MIT
// Decimal texts of doubles, for standard libraries whose <charconv> has only integers.
//
// Computes   from_chars and to_chars of the standard, for the formats that the sources use
// Given      a text, or a double
// Returned   what std::from_chars and std::to_chars return
// Valid      for every text and every double. Texts are read in the general format only
// Accuracy   exact: the nearest double, of two the even one; the shortest text that gives the double again. Digits of a
//            wanted precision are those of printf, which must be exact as musl's and glibc's are
// Reference  Clinger, How to read floating point numbers accurately, PLDI 1990 (the short numbers); long division for
//            all others
#pragma once

#include <charconv>

namespace decimal {

std::from_chars_result from_chars(const char *first, const char *last, double &value);
/// The shortest text; of a fixed and a scientific one that are equally long, the fixed one.
std::to_chars_result to_chars(char *first, char *last, double value);
/// As printf writes %.*e, %.*f or %.*g.
std::to_chars_result to_chars(char *first, char *last, double value, std::chars_format format, int precision);

} // namespace decimal
