// SPDX-License-Identifier: MIT
#include "CommandLine/trace.h"

#include "Equations/fluid_parameters.h"
#include "Records/record_reader.h"

#include <algorithm>
#include <limits>

namespace command {
namespace {

constexpr std::string_view blanks = " \t";
constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

/// Gives the records one value at a time. Since a READ goes on in the next record while values are missing, it asks for
/// exactly the values that it wants.
class tracing_reader final : public records::record_reader {
public:
    /// At the READ with the index `last`, the file gives `nulls` null values and then ends.
    explicit tracing_reader(std::span<const std::string_view> records, std::size_t last = none, std::size_t nulls = 0)
        : record_reader(""), records_(records), last_(last), nulls_(nulls) {}

    std::vector<record_trace> reads;
    std::size_t nulls_given() const { return nulls_given_; }

private:
    bool next_record(std::string_view &record) override {
        // The number of records goes up before the first record of a READ, and behind each further one.
        const bool begins = record_number_ > given_;
        ++given_;
        if (begins ? reads.size() >= last_ : reads.size() > last_)
            return give_null(record, begins);
        if (begins ? !begin() : without_blanks(reads.back().rest).empty() && !next_line())
            return false;
        record = take();
        return true;
    }
    bool step() override {
        ++given_;
        return reads.size() < last_ && begin();
    }
    bool continues() const override { return true; }

    bool give_null(std::string_view &record, bool begins) {
        if (nulls_given_ == nulls_ || (begins && reads.size() > last_))
            return false;
        if (begins)
            reads.emplace_back();
        ++nulls_given_;
        record = ",";
        return true;
    }

    bool begin() {
        if (next_ == records_.size())
            return false;
        reads.emplace_back();
        next_line();
        reads.back().first = reads.back().last;
        return true;
    }
    bool next_line() {
        if (next_ == records_.size())
            return false;
        reads.back().rest = records_[next_++];
        reads.back().last = static_cast<std::int64_t>(next_);
        return true;
    }

    std::string_view take() {
        const std::string_view value = take_value(reads.back().rest);
        if (!value.empty())
            reads.back().taken.push_back(value);
        return value;
    }

    std::span<const std::string_view> records_;
    std::size_t next_ = 0; ///< the index of the next record
    std::int64_t given_ = 0;
    std::size_t last_;
    std::size_t nulls_;
    std::size_t nulls_given_ = 0;
};

} // namespace

std::vector<std::string_view> records_of(std::string_view text) {
    std::vector<std::string_view> records;
    while (!text.empty()) {
        std::string_view record = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(record.size() + 1, text.size()));
        if (record.ends_with('\r'))
            record.remove_suffix(1);
        records.push_back(record);
    }
    return records;
}

file_trace trace(std::span<const std::string_view> records) {
    tracing_reader reader(records);
    equations::fluid_parameters fluid;
    equations::read(reader, fluid);
    return {std::move(reader.reads), !reader.failed()};
}

wanted_value wanted(std::span<const std::string_view> records, std::size_t read, std::size_t place) {
    tracing_reader reader(records, read, place);
    equations::fluid_parameters fluid;
    equations::read(reader, fluid);
    // The file has ended where the value is wanted, and the message says what that is.
    constexpr std::string_view before = ": expected ";
    const std::string_view message = reader.message();
    const std::size_t start = message.find(before) + before.size();
    std::string_view text = message.substr(start, message.rfind(", found ") - start);
    if (text == "an empty list")
        return {};
    if (text.starts_with("a "))
        text.remove_prefix(2);
    const std::size_t kind = text.rfind(" (");
    if (kind == std::string_view::npos)
        return {std::string(text), {}};
    return {std::string(text.substr(0, kind)), std::string(text.substr(kind + 2, text.size() - kind - 3))};
}

std::size_t wanted_count(std::span<const std::string_view> records, std::size_t read) {
    const wanted_value first = wanted(records, read);
    if (first.kind.empty() || first.kind == "a text")
        return 0;
    tracing_reader reader(records, read, none);
    equations::fluid_parameters fluid;
    equations::read(reader, fluid);
    return reader.nulls_given();
}

bool is_number(std::string_view token) {
    if (token.find_first_of("0123456789") == std::string_view::npos || token_of(token) != token)
        return false;
    std::int32_t index = 0;
    double value = 0;
    records::line_reader reader("", token.data(), index, 1, static_cast<std::int32_t>(token.size()));
    return reader.read({{"", value}});
}

std::string_view take_value(std::string_view &text) {
    std::string_view value = without_blanks(text);
    text = value.substr(value.size());
    if (value.starts_with('/'))
        return value;
    text = without_blanks(value.substr(token_of(value).size()));
    if (text.starts_with(','))
        text.remove_prefix(1);
    value.remove_suffix(text.size());
    return value;
}

std::string_view token_of(std::string_view text) {
    return text.substr(0, text.find_first_of(" \t,/"));
}

std::string_view without_blanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text;
}

} // namespace command
