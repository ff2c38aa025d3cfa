// SPDX-License-Identifier: MIT
// List-directed reading of parameter records.
//
// A READ takes one record, reads typed values from it and ignores the rest, so that comments may stand behind the
// values. Values end at a blank, a tab, a comma, a slash or the end of the record. `3*0.5` is a value that repeats;
// `2*` and `,,` are null values, which leave the variable as it was; a slash ends the READ.
// In a file, missing values are sought on the following records; in an array of lines they are an error.
// The first failure is kept as a message, and every later READ does nothing, so that a section can be read straight
// through and checked once. Items before the failing one are stored, later ones stay as they were.
// Reference: ISO/IEC 1539-1, list-directed input.
#pragma once

#include "Records/fixed_text.h"
#include "visibility.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace records OSTREL_VISIBLE {

/// The longest list that a count may announce: much longer than in any real section, and too short to do harm.
inline constexpr std::int32_t longest_list = 10000;

/// One wanted value: its name for messages and the variable that receives it.
struct item {
    std::string_view field;
    std::variant<double *, std::int32_t *, bool *> variable;
    int element = 0; ///< 1-based position in a list, 0 for a single value

    item(std::string_view name, double &target, int position = 0) : field(name), variable(&target), element(position) {}
    item(std::string_view name, std::int32_t &target, int position = 0)
        : field(name), variable(&target), element(position) {}
    item(std::string_view name, bool &target) : field(name), variable(&target) {}
};

class record_reader {
public:
    record_reader(const record_reader &) = delete;
    record_reader &operator=(const record_reader &) = delete;
    virtual ~record_reader() = default;

    /// Steps over one record, whatever it holds. This and the next functions return whether all has gone well so far.
    bool skip(std::string_view what);
    /// Reads the first 32 bytes of the next record as they are.
    bool read_name(std::string_view field, fixed_text<32> &name);
    /// One READ of single values.
    bool read(std::initializer_list<item> items) { return read(std::span(items.begin(), items.size())); }
    bool read(std::span<const item> items);
    /// One READ of a list.
    template <class Value>
    bool read_list(std::string_view field, std::span<Value> values) {
        std::vector<item> items;
        items.reserve(values.size());
        for (Value &value : values)
            items.emplace_back(field, value, static_cast<int>(items.size()) + 1);
        return read(items);
    }
    /// Refuses a count above `limit`; call it after the count was read and before anything is allocated.
    bool limit_count(std::string_view field, std::int64_t count, std::int64_t limit = longest_list);

    bool failed() const { return !message_.empty(); }
    /// The message of the failure: the source, the record, the value that was expected and what stood there. It has at
    /// most 256 characters if the source has at most 80.
    std::string_view message() const { return message_; }
    /// 1-based number of the record used last.
    std::int64_t record_number() const { return record_number_; }

protected:
    explicit record_reader(std::string source) : source_(std::move(source)) {}
    /// Gives the next record without its line end; false when there is none.
    virtual bool next_record(std::string_view &record) = 0;
    /// Steps over the next record; false when there is none, which only a file notices.
    virtual bool step() = 0;
    /// Whether a READ may continue in the record that follows.
    virtual bool continues() const = 0;

    std::int64_t record_number_ = 0;

private:
    bool fail(std::string_view wanted, std::string_view found);

    std::string source_;
    std::string message_;
};

/// Reads a whole file into memory and closes it. Returns 0, or errno's code of the failed open. A directory opens like
/// a file and has no text; a pipe, a socket or a terminal is refused.
int read_file(const std::string &path, std::string &text);
/// The file's name without its folder, as the source in messages, cut so that the rest of a message has room.
std::string source_of_file(std::string_view path);

/// Reads the records of a text, which is taken into memory.
class text_reader : public record_reader {
public:
    text_reader(std::string source, std::string text) : record_reader(std::move(source)), text_(std::move(text)) {}

protected:
    std::string text_;

private:
    bool next_record(std::string_view &record) override;
    bool step() override;
    bool continues() const override { return true; }

    std::size_t position_ = 0;
};

/// Reads a sequential file. The constructor takes the whole file into memory and closes it.
class file_reader final : public text_reader {
public:
    /// Opens an existing file for reading; trailing blanks of the path do not count.
    explicit file_reader(std::string_view path);
    /// 0, or errno's code of the failed open.
    int open_status() const { return open_status_; }

private:
    int open_status_ = 0;
};

/// Reads an array of `count` lines of `length` characters from the line behind `index`, which it advances.
class line_reader final : public record_reader {
public:
    line_reader(std::string source, const char *lines, std::int32_t &index, std::int32_t count, std::int32_t length)
        : record_reader(std::move(source)), lines_(lines), index_(index), count_(count), length_(length) {}

private:
    bool next_record(std::string_view &record) override;
    bool step() override;
    bool continues() const override { return false; }

    const char *lines_;
    std::int32_t &index_;
    std::int32_t count_;
    std::int32_t length_;
};

} // namespace records
