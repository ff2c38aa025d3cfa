// SPDX-License-Identifier: MIT
// The statuses of handles, and the message of a thread.
#pragma once

#include "ostrel_fluid.h"

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fluid {

/// A status: its number, its name in ostrel_fluid.h, and what it means and what would be right.
struct status_row {
    int number;
    std::string_view digits; ///< the number as a text
    std::string_view name;
    std::string_view text;
};

#define OSTREL_STATUS(name, number, text) \
    { name, #number, #name, text }
inline constexpr status_row statuses[] = {
    OSTREL_STATUS(OSTREL_OK, 0, "no error"),
    OSTREL_STATUS(OSTREL_NOT_A_NUMBER, 1, "an input is a NaN or infinite; inputs must be finite numbers"),
    OSTREL_STATUS(
        OSTREL_OUT_OF_RANGE, 2,
        "an input is outside what the model can represent; t and p must be above 0, v above v_min, d between 0 "
        "and 1/v_min, q from 0 to 1"),
    OSTREL_STATUS(OSTREL_NO_STATE, 3, "no state of the fluid has these two values"),
    OSTREL_STATUS(
        OSTREL_TWO_PHASE, 4,
        "a wanted output has no meaning between the phases; there t, p, q, phase, tsat, psat, v, d, h, s, u, g, "
        "a and most derivatives have one"),
    OSTREL_STATUS(OSTREL_NO_SATURATION, 5,
                  "no saturated state there; the saturation line is between t_sat_min and t_crit, and below p_crit"),
    OSTREL_STATUS(OSTREL_NOT_CONVERGED, 6,
                  "the search for the state did not converge; this is a defect of the library"),
    OSTREL_STATUS(OSTREL_BAD_ARGUMENT, 10, "the call cannot be understood; nothing has been computed"),
    OSTREL_STATUS(OSTREL_CANNOT_OPEN, 11, "there is no such fluid, file or database, or it cannot be opened"),
    OSTREL_STATUS(OSTREL_BAD_FILE, 12, "the parameters of the fluid cannot be read or used"),
    OSTREL_STATUS(OSTREL_OUT_OF_MEMORY, 13, "memory is out"),
};
#undef OSTREL_STATUS

static_assert([] {
    for (const status_row &row : statuses) {
        int number = 0;
        for (const char digit : row.digits)
            number = 10 * number + (digit - '0');
        if (number != row.number)
            return false;
    }
    return true;
}());

/// The row of a status; null if there is none.
constexpr const status_row *find_status(int number) {
    for (const status_row &row : statuses)
        if (row.number == number)
            return &row;
    return nullptr;
}

// A status of 10 and above, or that of a failed state, comes with a message in the calling thread. Messages are valid
// UTF-8 if their pieces are.

/// Replaces the thread's message with the pieces, without allocating, and returns the status. A message that is too
/// long loses its end and gets "..." in its place.
int report(int status, std::initializer_list<std::string_view> pieces);
/// Reports an argument that is a null pointer; `right` says what it should be.
int report_null(std::string_view argument, std::string_view right);
/// The thread's message, empty before the first one.
const char *last_message();

/// The text for messages: what cannot be printed, or is no UTF-8, is replaced by question marks, and a long text is
/// cut.
std::string printable(std::string_view text);
/// The printable text between quotation marks.
std::string in_quotes(std::string_view text);
/// The texts with commas between them, and `last` before the last one.
std::string joined(std::span<const std::string> texts, std::string_view last);
std::string joined(std::span<const std::string_view> texts);

} // namespace fluid
