// SPDX-License-Identifier: MIT
#include "CommandLine/report.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace command {
namespace {

using nlohmann::ordered_json;

/// The digits that std::to_chars gives for a format; a NaN has no sign.
template <class... Format>
std::string digits(double value, Format... format) {
    if (std::isnan(value))
        return "nan";
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.begin(), text.end(), value, format...).ptr;
    return {text.begin(), end};
}

/// The fewest digits from which the same number is read back.
std::string exact(double value) {
    return digits(value);
}

std::string aligned_text(const cell &value) {
    if (const auto *const real = std::get_if<double>(&value))
        return number(*real);
    if (const auto *const whole = std::get_if<int>(&value))
        return std::to_string(*whole);
    const auto *const text = std::get_if<std::string>(&value);
    return text != nullptr ? printable(*text) : "-";
}

/// The remarks of a cell one behind the other.
std::string on_one_line(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

/// Puts a value into a JSON object under its name.
void put(ordered_json &object, const std::string &name, const cell &value) {
    const auto *const real = std::get_if<double>(&value);
    if (const auto *const whole = std::get_if<int>(&value)) {
        object[name] = *whole;
    } else if (real == nullptr) {
        const auto *const text = std::get_if<std::string>(&value);
        object[name] = text == nullptr || text->empty() ? ordered_json() : ordered_json(on_one_line(*text));
    } else if (std::isfinite(*real)) {
        object[name] = *real;
    } else {
        object[name] = nullptr;
        object[name + "_not_finite"] = exact(*real);
    }
}

/// The number of characters, not of bytes, in a UTF-8 text.
std::size_t characters(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string padding(std::size_t wanted, std::string_view text) {
    std::string blanks;
    blanks.resize(wanted - std::min(wanted, characters(text)), ' ');
    return blanks;
}

/// The text, or its beginning with "..." if it has more characters.
std::string cut(const std::string &text, std::size_t width) {
    constexpr std::string_view dots = "...";
    if (characters(text) <= width || width <= dots.size())
        return text;
    std::size_t end = 0;
    for (std::size_t count = 0; count < width - dots.size() || (text[end] & 0xC0) == 0x80; ++end)
        count += (text[end] & 0xC0) != 0x80 ? 1 : 0;
    return text.substr(0, end) + std::string(dots);
}

/// Prints a line whose last column, a text, begins at a place; what does not fit stands below, at the same place. A
/// column that is too narrow for that begins on a line of its own.
void print_folded(std::ostream &out, const std::string &line, std::size_t begin, std::size_t width) {
    constexpr std::size_t narrowest = 20;
    std::string front = line.substr(0, begin);
    std::size_t indent = characters(front);
    if (indent + narrowest > width) {
        front.resize(front.find_last_not_of(' ') + 1);
        out << cut(front, width) << '\n';
        indent = std::min<std::size_t>(4, width / 4);
        front.assign(indent, ' ');
    }
    std::istringstream words(line.substr(begin));
    std::size_t used = 0;
    out << front;
    for (std::string word; words >> word;) {
        if (used > 0 && indent + used + 1 + characters(word) > width) {
            out << '\n' << std::string(indent, ' ');
            used = 0;
        }
        out << (used > 0 ? " " : "") << word;
        used += characters(word) + (used > 0 ? 1 : 0);
    }
    out << '\n';
}

void write_csv(std::ostream &out, const report &what) {
    out << csv_heading(what.columns) << '\n';
    for (const auto &row : what.rows)
        out << csv_line(row) << '\n';
}

ordered_json object_of(const std::vector<column> &columns, const std::vector<cell> &row) {
    ordered_json object;
    for (std::size_t i = 0; i < row.size(); ++i) {
        const auto *const text = std::get_if<std::string>(&row[i]);
        if (!columns[i].note || (text != nullptr && !text->empty()))
            put(object, columns[i].name, row[i]);
    }
    return object;
}

/// Adds the remarks of a cell, one on each line of its text, that do not stand there.
void add_parts(std::vector<std::string> &notes, const std::string &text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (std::find(notes.begin(), notes.end(), line) == notes.end())
            notes.push_back(line);
}

void write_json(std::ostream &out, const report &what) {
    ordered_json document;
    for (const auto &[name, value] : what.asked)
        put(document, name, value);
    ordered_json rows = ordered_json::array();
    for (const auto &row : what.rows)
        rows.push_back(object_of(what.columns, row));
    document[what.name] = std::move(rows);
    for (const column &head : what.columns)
        if (!head.unit.empty())
            document["units"][head.name] = head.unit;
    if (!what.notes.empty())
        document["notes"] = what.notes;
    out << document.dump(2, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

} // namespace

std::string number(double value) {
    return digits(value, std::chars_format::general, 10);
}

std::string printable(std::string_view text) {
    std::string result(text);
    for (char &c : result)
        if ((c >= '\0' && c < ' ') || c == '\x7F')
            c = '?';
    return result;
}

void write_folded(std::ostream &out, const std::string &text, std::size_t width) {
    if (width == 0)
        out << text << '\n';
    else
        print_folded(out, text, 0, width);
}

std::size_t columns_width(const report &what) {
    std::ostringstream text;
    write_columns(text, what);
    std::istringstream lines(text.str());
    std::size_t widest = 0;
    for (std::string line; std::getline(lines, line);)
        widest = std::max(widest, characters(line));
    return widest;
}

std::size_t terminal_width() {
    winsize size{};
    if (isatty(STDOUT_FILENO) == 0 || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0)
        return 0;
    return size.ws_col;
}

std::string csv_text(const cell &value) {
    if (const auto *const real = std::get_if<double>(&value))
        return exact(*real);
    if (const auto *const whole = std::get_if<int>(&value))
        return std::to_string(*whole);
    const auto *const given = std::get_if<std::string>(&value);
    std::string text = given != nullptr ? on_one_line(*given) : "";
    if (text.find_first_of(",\"\r") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

std::string csv_line(const std::vector<cell> &row) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i)
        line += (i > 0 ? "," : "") + csv_text(row[i]);
    return line;
}

std::string csv_heading(const std::vector<column> &columns) {
    std::string line;
    for (const column &head : columns)
        line += (&head != columns.data() ? "," : "") +
                csv_text(head.unit.empty() ? head.name : head.name + " [" + head.unit + "]");
    return line;
}

std::string json_line(const std::vector<column> &columns, const std::vector<cell> &row) {
    return object_of(columns, row).dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

void warn(const std::string &text) {
    std::cerr << "ostrel: " << text << '\n';
}

void write_columns(std::ostream &out, const report &what, std::string_view indent, std::size_t width) {
    std::vector<std::vector<std::string>> lines;
    if (what.heading) {
        lines.resize(2);
        for (const column &head : what.columns) {
            lines[0].push_back(head.name);
            lines[1].push_back(head.unit);
        }
    }
    for (const auto &row : what.rows) {
        lines.emplace_back();
        for (const cell &value : row)
            lines.back().push_back(aligned_text(value));
    }
    struct layout {
        std::size_t width = 0;
        bool right = false; ///< aligned to the right, as columns of numbers are
        bool shown = false;
    };
    std::vector<layout> columns(what.columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        for (const auto &line : lines)
            columns[i].width = std::max(columns[i].width, characters(line[i]));
        for (const auto &row : what.rows) {
            columns[i].right |= std::holds_alternative<double>(row[i]) || std::holds_alternative<int>(row[i]);
            columns[i].shown |= !what.columns[i].note && !aligned_text(row[i]).empty();
        }
    }
    std::vector<std::size_t> shown;
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i].shown)
            shown.push_back(i);
    const auto print = [&](const std::vector<std::size_t> &block) {
        for (const auto &line : lines) {
            std::string text(indent);
            for (const std::size_t i : block) {
                const std::string pad = padding(columns[i].width, line[i]);
                text += columns[i].right ? pad + line[i] : line[i] + pad;
                text += "  ";
            }
            text.resize(text.find_last_not_of(' ') + 1);
            if (width == 0 || characters(text) <= width)
                out << text << '\n';
            else if (what.heading || block.empty() || columns[block.back()].right)
                out << cut(text, width) << '\n';
            else
                print_folded(out, text, text.size() - line[block.back()].size(), width);
        }
    };
    // A table that is too wide is printed in blocks of columns, each with the keys. Lines without a heading are cut.
    const std::size_t keys = std::min(what.keys, shown.size());
    const auto width_of = [&](const std::vector<std::size_t> &block) {
        std::size_t sum = indent.size();
        for (const std::size_t i : block)
            sum += columns[i].width + 2;
        return sum - std::min<std::size_t>(sum, 2);
    };
    if (!what.heading || width == 0 || keys == shown.size() || width_of(shown) <= width) {
        print(shown);
        return;
    }
    const std::vector<std::size_t> first(shown.begin(), shown.begin() + static_cast<std::ptrdiff_t>(keys));
    std::vector<std::size_t> block = first;
    bool begun = false;
    for (std::size_t place = keys; place < shown.size(); ++place) {
        std::vector<std::size_t> longer = block;
        longer.push_back(shown[place]);
        if (block.size() > keys && width_of(longer) > width) {
            out << (begun ? "\n" : "");
            print(block);
            begun = true;
            longer = first;
            longer.push_back(shown[place]);
        }
        block = std::move(longer);
    }
    out << (begun ? "\n" : "");
    print(block);
}

namespace {

/// The notes of the report stand in the first row, if rows have notes, and otherwise on standard error.
void write_csv_with_notes(const report &what) {
    const bool has_place = !what.rows.empty() && !what.columns.empty() && what.columns.back().note;
    if (!has_place || what.notes.empty()) {
        write_csv(std::cout, what);
        for (const std::string &note : what.notes)
            std::cerr << note << '\n';
        return;
    }
    report noted = what;
    std::string notes;
    for (const std::string &note : what.notes)
        notes += note + '\n';
    notes += std::get<std::string>(what.rows.front().back());
    while (notes.ends_with('\n'))
        notes.pop_back();
    noted.rows.front().back() = std::move(notes);
    write_csv(std::cout, noted);
}

} // namespace

void write(const report &what, const report_form &form) {
    if (form.json) {
        write_json(std::cout, what);
        return;
    }
    if (form.csv) {
        write_csv_with_notes(what);
        return;
    }
    const std::size_t width = terminal_width();
    write_columns(std::cout, what, "", width);
    std::vector<std::string> notes = what.notes;
    for (const auto &row : what.rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            if (what.columns[i].note)
                add_parts(notes, std::get<std::string>(row[i]));
    if (!notes.empty())
        std::cout << '\n';
    for (const std::string &note : notes)
        write_folded(std::cout, note, width);
}

std::vector<argument> report_form::options() {
    return {{.name = "--csv", .value = &csv, .meaning = "Comma-separated values with all digits"},
            {.name = "--json", .value = &json, .meaning = "JSON with all digits", .excludes = "--csv"}};
}

} // namespace command
