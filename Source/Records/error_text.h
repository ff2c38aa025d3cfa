// SPDX-License-Identifier: MIT
// The one channel for failures is a text of 256 characters, which says "No errors" until something fails.
#pragma once

#include "Records/fixed_text.h"

namespace records {

inline constexpr std::string_view no_errors = "No errors";

class error_text {
public:
    bool clear() const { return clear_; }
    void reset() {
        if (!clear_)
            *this = {};
    }
    /// Replaces the text; longer messages lose their end.
    void report(std::initializer_list<std::string_view> pieces) {
        text_.assign(pieces);
        clear_ = text_ == success;
    }
    std::string_view padded() const { return text_.padded(); }
    std::string_view trimmed() const { return text_.trimmed(); }

private:
    static constexpr fixed_text<256> success{no_errors};
    fixed_text<256> text_ = success;
    bool clear_ = true; ///< saves a look at the text, since every operation asks
};

} // namespace records
