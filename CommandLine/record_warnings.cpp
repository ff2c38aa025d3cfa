// SPDX-License-Identifier: MIT
#include "CommandLine/record_warnings.h"

#include "CommandLine/report.h"
#include "CommandLine/trace.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <span>

namespace command {
namespace {

using values = std::span<const std::string_view>;

/// How many values a text makes: 8*601.5 makes 8.
std::size_t count_of(std::string_view value) {
    std::size_t count = 1;
    if (token_of(value).find('*') != std::string_view::npos)
        std::from_chars(value.data(), value.data() + value.size(), count);
    return count;
}

std::size_t count_of(values written) {
    std::size_t count = 0;
    for (const std::string_view value : written)
        count += count_of(value);
    return count;
}

/// A value without its repeat count and what stands behind it.
std::string single(std::string_view value) {
    const std::string_view token = token_of(value);
    return printable(token.substr(token.find('*') + 1));
}

/// Whether only a comma separates two values, as in 0,35.
bool joined_by_comma(std::string_view value, std::string_view next) {
    return value.ends_with(',') && value.size() == token_of(value).size() + 1 &&
           next.data() == value.data() + value.size() && next.front() >= '0' && next.front() <= '9';
}

/// One READ: the values that it took, and the numbers behind them that it left.
class examined_read {
public:
    examined_read(values records, const record_trace &read, std::size_t index)
        : records_(records), index_(index), record_(std::to_string(read.last)), taken_(read.taken) {
        const wanted_value first = wanted(records, index);
        const bool empty = first.name.empty();
        const bool ended = !taken_.empty() && taken_.back().starts_with('/');
        if ((first.kind.empty() && !empty) || first.kind == "a text" || ended)
            return;
        count_ = wanted_count(records, index);
        list_ = count_ != 1 || first.name.ends_with(')');
        std::string_view rest = read.rest;
        if (empty) {
            taken_.clear();
            rest = records[static_cast<std::size_t>(read.first - 1)];
        }
        all_ = taken_;
        while (!rest.empty()) {
            const std::string_view value = take_value(rest);
            if (!is_number(token_of(value)))
                break;
            all_.push_back(value);
        }
        unused_ = count_of(taken_) - std::min(count_of(taken_), count_);
    }

    std::optional<std::string> warning() const {
        if (const auto place = decimal_comma())
            return comma_warning(*place);
        if (list_ && surplus())
            return surplus_warning();
        return std::nullopt;
    }

private:
    bool surplus() const { return all_.size() > taken_.size() || unused_ > 0; }

    /// The place of a decimal comma. Between the values of a list a comma may stand; it is taken for a decimal one if
    /// values are left over, and if blanks separate others or only one is wanted.
    std::optional<std::size_t> decimal_comma() const {
        std::optional<std::size_t> place;
        std::size_t count = 0;
        for (std::size_t i = 0; i + 1 < all_.size(); ++i)
            if (joined_by_comma(all_[i], all_[i + 1])) {
                ++count;
                place = place.value_or(i);
            }
        if (!list_)
            return place == std::size_t{0} ? place : std::nullopt;
        return surplus() && (count_ == 1 || count + 1 < all_.size()) ? place : std::nullopt;
    }

    /// The name of the field of a value.
    std::string name(std::size_t place) const {
        return wanted(records_, index_, count_of(values(all_).first(place))).name;
    }

    std::string comma_warning(std::size_t place) const {
        const std::string whole = printable(token_of(all_[place]));
        const std::string part = printable(token_of(all_[place + 1]));
        const std::string number = single(all_[place]);
        return "record " + record_ + " has \"" + whole + "," + part + "\", which is " +
               (whole.empty() ? "no value" : whole) + " and then " + part + ": " + name(place) + " was " +
               (number.empty() ? "not read" : "read as " + number) + ", and " +
               (place + 1 < taken_.size() ? name(place + 1) + " as " + single(part) : part + " was not read") +
               "; a decimal sign is a point";
    }

    std::string surplus_warning() const {
        std::string text;
        if (unused_ > 0)
            text = std::to_string(unused_) + "*" + single(taken_.back());
        if (all_.size() > taken_.size()) {
            const std::string_view first = unused_ > 0 ? taken_.back() : all_[taken_.size()];
            const char *const start = first.data() + (unused_ > 0 ? token_of(first).size() : 0);
            const std::string_view last = token_of(all_.back());
            text += printable({start, static_cast<std::size_t>(last.data() + last.size() - start)});
        }
        constexpr std::size_t longest = 60;
        if (text.size() > longest)
            text = text.substr(0, longest) + "...";
        return "record " + record_ + ": \"" + text + "\"" +
               (count_ == 0 ? ", where a list has no values,"
                            : " behind " + wanted(records_, index_, count_ - 1).name) +
               " is a surplus and not read: is the number of values right?";
    }

    values records_;
    std::size_t index_;
    std::string record_;
    std::size_t count_ = 0; ///< of the values that are wanted
    bool list_ = false;
    std::vector<std::string_view> taken_;
    std::vector<std::string_view> all_; ///< with the numbers that stand behind them
    std::size_t unused_ = 0;            ///< of the last value's repetitions
};

} // namespace

std::vector<std::string> record_warnings(std::string_view text) {
    // The file is read anew for each READ, and a file may have thousands.
    constexpr std::size_t most = 300;
    const std::vector<std::string_view> records = records_of(text);
    const std::vector<record_trace> reads = trace(records).reads;
    std::vector<std::string> found;
    for (std::size_t i = 0; i < std::min(reads.size(), most); ++i)
        if (const auto warning = examined_read(records, reads[i], i).warning())
            found.push_back(*warning);
    return found;
}

} // namespace command
