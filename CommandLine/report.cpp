// SPDX-License-Identifier: MIT
#include "CommandLine/report.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iostream>
#include <nlohmann/json.hpp>

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
    const auto *const real = std::get_if<double>(&value);
    return real != nullptr ? number(*real) : std::get<std::string>(value);
}

std::string csv_text(const cell &value) {
    if (const auto *const real = std::get_if<double>(&value))
        return exact(*real);
    const auto &text = std::get<std::string>(value);
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

/// Puts a value into a JSON object under its name.
void put(ordered_json &object, const std::string &name, const cell &value) {
    const auto *const real = std::get_if<double>(&value);
    if (real == nullptr) {
        const auto &text = std::get<std::string>(value);
        object[name] = text.empty() ? ordered_json() : ordered_json(text);
    } else if (std::isfinite(*real)) {
        object[name] = *real;
    } else {
        object[name] = nullptr;
        object[name + "_not_finite"] = exact(*real);
    }
}

/// The number of characters, not of bytes, in a UTF-8 text.
std::size_t width(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string padding(std::size_t wanted, std::string_view text) {
    std::string blanks;
    blanks.resize(wanted - std::min(wanted, width(text)), ' ');
    return blanks;
}

void write_csv(std::ostream &out, const report &what) {
    const char *separator = "";
    for (const column &head : what.columns) {
        out << separator << csv_text(head.unit.empty() ? head.name : head.name + " [" + head.unit + "]");
        separator = ",";
    }
    out << '\n';
    for (const auto &row : what.rows) {
        separator = "";
        for (const cell &value : row) {
            out << separator << csv_text(value);
            separator = ",";
        }
        out << '\n';
    }
}

void write_json(std::ostream &out, const report &what) {
    ordered_json document;
    for (const auto &[name, value] : what.asked)
        put(document, name, value);
    ordered_json rows = ordered_json::array();
    for (const auto &row : what.rows) {
        ordered_json object;
        for (std::size_t i = 0; i < row.size(); ++i)
            put(object, what.columns[i].name, row[i]);
        rows.push_back(std::move(object));
    }
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

void write_columns(std::ostream &out, const report &what, std::string_view indent) {
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
            columns[i].width = std::max(columns[i].width, width(line[i]));
        for (const auto &row : what.rows) {
            columns[i].right |= std::holds_alternative<double>(row[i]);
            columns[i].shown |= !aligned_text(row[i]).empty();
        }
    }
    for (const auto &line : lines) {
        std::string text(indent);
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (!columns[i].shown)
                continue;
            const std::string pad = padding(columns[i].width, line[i]);
            text += columns[i].right ? pad + line[i] : line[i] + pad;
            text += "  ";
        }
        text.resize(text.find_last_not_of(' ') + 1);
        out << text << '\n';
    }
}

void write(const report &what, const report_form &form) {
    if (form.json) {
        write_json(std::cout, what);
        return;
    }
    if (form.csv)
        write_csv(std::cout, what);
    else
        write_columns(std::cout, what);
    if (!what.notes.empty() && !form.csv)
        std::cout << '\n';
    for (const std::string &note : what.notes)
        (form.csv ? std::cerr : std::cout) << note << '\n';
}

std::vector<argument> report_form::options() {
    return {{.name = "--csv", .value = &csv, .meaning = "Comma-separated values with all digits"},
            {.name = "--json", .value = &json, .meaning = "JSON with all digits", .excludes = "--csv"}};
}

} // namespace command
