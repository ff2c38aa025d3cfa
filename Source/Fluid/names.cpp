// SPDX-License-Identifier: MIT
#include "Fluid/names.h"

#include "Fluid/status.h"
#include "Host/spelling.h"
#include "Records/fixed_text.h"
#include "Requests/handle_outputs.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace fluid {
namespace {

using requests::described;
using requests::handle_outputs;

constexpr std::size_t output_count = std::size(handle_outputs);

constexpr bool stands_for(std::string_view name, property what) {
    for (std::size_t row = 0; row < output_count; ++row)
        if (handle_outputs[row].name == name)
            return row == static_cast<std::size_t>(what);
    return false;
}
// The rows of handle_outputs have the order of `property`.
static_assert(output_count == static_cast<std::size_t>(property::derivative));
#define OSTREL_SAME_PLACE(name) static_assert(stands_for(#name, property::name))
OSTREL_SAME_PLACE(t);
OSTREL_SAME_PLACE(u);
OSTREL_SAME_PLACE(q);
OSTREL_SAME_PLACE(cv);
OSTREL_SAME_PLACE(d2p_dtdv);
OSTREL_SAME_PLACE(lambda);
OSTREL_SAME_PLACE(fundamental);
OSTREL_SAME_PLACE(kappa_t);
OSTREL_SAME_PLACE(tsat);
OSTREL_SAME_PLACE(phase);
#undef OSTREL_SAME_PLACE

constexpr std::uint8_t none = 0xFF;

/// The place of each character among the letters, in either case.
constexpr auto letter_of = [] {
    std::array<std::uint8_t, 256> places{};
    places.fill(none);
    for (std::size_t i = 0; i < letter_count; ++i) {
        const auto small = static_cast<unsigned char>(letters[i]);
        places[small] = static_cast<std::uint8_t>(i);
        places[static_cast<unsigned char>(small - 'a' + 'A')] = static_cast<std::uint8_t>(i);
    }
    return places;
}();
std::uint8_t place_of_letter(char c) {
    return letter_of[static_cast<unsigned char>(c)];
}

/// The row of each two letters in input_pairs, and whether they are swapped.
constexpr auto pair_of = [] {
    std::array<std::array<named_pair, letter_count>, letter_count> pairs{};
    for (auto &line : pairs)
        for (named_pair &pair : line)
            pair.row = none;
    for (std::size_t row = 0; row < std::size(input_pairs); ++row) {
        const auto first = static_cast<std::size_t>(input_pairs[row].first);
        const auto second = static_cast<std::size_t>(input_pairs[row].second);
        pairs[first][second] = {static_cast<std::uint8_t>(row), false};
        pairs[second][first] = {static_cast<std::uint8_t>(row), true};
    }
    return pairs;
}();

/// Finds the row of an output's name in one step: the first eight letters as one integer lead to a slot of a table in
/// which no two names meet.
struct name_table {
    std::uint64_t factor = 0;
    std::array<std::uint8_t, 256> rows{};

    static constexpr std::size_t slot(std::uint64_t packed, std::uint64_t factor) { return (packed * factor) >> 56; }
};
constexpr name_table names = [] {
    name_table table;
    for (std::uint64_t factor = 0x9E3779B97F4A7C15;; factor = factor * 6364136223846793005 + 1442695040888963407) {
        table.factor = factor | 1;
        table.rows.fill(none);
        bool apart = true;
        for (std::size_t row = 0; row < output_count && apart; ++row) {
            std::uint8_t &place = table.rows[name_table::slot(records::packed(handle_outputs[row].name), table.factor)];
            apart = place == none;
            place = static_cast<std::uint8_t>(row);
        }
        if (apart)
            return table;
    }
}();
constexpr auto packed_names = [] {
    std::array<std::uint64_t, output_count> result{};
    for (std::size_t row = 0; row < output_count; ++row)
        result[row] = records::packed(handle_outputs[row].name);
    return result;
}();

bool same_letters(std::string_view written, std::string_view name) {
    return std::equal(written.begin(), written.end(), name.begin(), name.end(),
                      [](char a, char b) { return records::lower(a) == b; });
}

bool find_output(std::string_view name, output &one) {
    const std::uint64_t packed = records::lower(records::packed(name));
    const std::uint8_t row = names.rows[name_table::slot(packed, names.factor)];
    if (row == none || packed_names[row] != packed || name.size() != handle_outputs[row].name.size() ||
        (name.size() > sizeof packed && !same_letters(name, handle_outputs[row].name)))
        return false;
    one = {.what = static_cast<property>(row)};
    return true;
}

bool looks_like_derivative(std::string_view name) {
    return name.find('/') != std::string_view::npos || name.find('|') != std::string_view::npos;
}

/// Whether dX/dY|Z has a meaning at all.
constexpr bool independent(letter Y, letter Z) {
    return Y != Z && !(Y == letter::v && Z == letter::d) && !(Y == letter::d && Z == letter::v);
}
constexpr std::size_t derivable = static_cast<std::size_t>(letter::q); // The letters before it have derivatives.

bool find_derivative(std::string_view name, output &one) {
    if (name.size() != 7 || records::lower(name[0]) != 'd' || name[2] != '/' || records::lower(name[3]) != 'd' ||
        name[5] != '|')
        return false;
    const std::uint8_t X = place_of_letter(name[1]);
    const std::uint8_t Y = place_of_letter(name[4]);
    const std::uint8_t Z = place_of_letter(name[6]);
    if (X >= derivable || Y >= derivable || Z >= derivable ||
        !independent(static_cast<letter>(Y), static_cast<letter>(Z)))
        return false;
    one = {property::derivative, static_cast<letter>(X), static_cast<letter>(Y), static_cast<letter>(Z)};
    return true;
}

int refuse_output(std::string_view name) {
    std::vector<std::string> known;
    for (const described &row : handle_outputs)
        known.emplace_back(row.name);
    std::string nearest;
    if (const auto near = spelling::nearest(name, known);
        !near.empty() && !name.empty() && !looks_like_derivative(name))
        nearest = " (did you mean " + known[near.front()] + "?)";
    return report(OSTREL_BAD_ARGUMENT,
                  {"output ", in_quotes(name), ": ",
                   name.empty()                  ? "a name is empty"
                   : looks_like_derivative(name) ? "there is no such derivative"
                                                 : "there is no such output",
                   nearest, "; outputs are ", joined(known, ", "),
                   " and derivatives dX/dY|Z of t, p, v, d, h, s, u, where Y and Z differ and are not v with d"});
}

int find(std::string_view name, output &one) {
    return find_output(name, one) || find_derivative(name, one) ? int{OSTREL_OK} : refuse_output(name);
}

/// A text that is put together when the library is compiled, with a NUL at its end.
template <std::size_t room>
struct composed_text {
    std::array<char, room> characters{};
    std::size_t size = 0;

    constexpr void add(std::string_view text) {
        for (const char c : text)
            characters[size++] = c;
        characters[size] = '\0';
    }
    constexpr std::string_view view() const { return {characters.data(), size}; }
};
struct composed_row {
    composed_text<8> name;
    composed_text<24> unit;
    composed_text<72> meaning;
};

/// The rows as views of texts that stand in `rows`.
template <const auto &rows>
constexpr auto views_of = [] {
    std::array<described, std::size(rows)> result;
    std::transform(rows.begin(), rows.end(), result.begin(), [](const composed_row &row) {
        return described{row.name.view(), row.unit.view(), row.meaning.view()};
    });
    return result;
}();

constexpr auto pair_rows = [] {
    std::array<composed_row, std::size(input_pairs)> rows{};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const described &first = quantity_of(input_pairs[i].first);
        const described &second = quantity_of(input_pairs[i].second);
        const auto short_meaning = [](const described &one) { return one.meaning.substr(0, one.meaning.find(',')); };
        rows[i].name.add(first.name);
        rows[i].name.add(second.name);
        rows[i].unit.add(first.unit);
        rows[i].unit.add(", ");
        rows[i].unit.add(second.unit);
        rows[i].meaning.add(short_meaning(first));
        rows[i].meaning.add(" and ");
        rows[i].meaning.add(short_meaning(second));
    }
    return rows;
}();

/// A unit in a fraction, in brackets if it is a fraction itself.
constexpr void add_operand(composed_text<24> &text, std::string_view unit) {
    const bool fraction = unit.find('/') != std::string_view::npos;
    text.add(fraction ? "(" : "");
    text.add(unit);
    text.add(fraction ? ")" : "");
}

constexpr std::size_t derivative_count = [] {
    std::size_t count = 0;
    for (std::size_t Y = 0; Y < derivable; ++Y)
        for (std::size_t Z = 0; Z < derivable; ++Z)
            count += independent(static_cast<letter>(Y), static_cast<letter>(Z)) ? derivable : 0;
    return count;
}();
constexpr auto derivative_rows = [] {
    std::array<composed_row, derivative_count> rows{};
    std::size_t size = 0;
    for (std::size_t X = 0; X < derivable; ++X)
        for (std::size_t Y = 0; Y < derivable; ++Y)
            for (std::size_t Z = 0; Z < derivable; ++Z) {
                if (!independent(static_cast<letter>(Y), static_cast<letter>(Z)))
                    continue;
                composed_row &row = rows[size++];
                for (const std::string_view piece :
                     {std::string_view("d"), handle_outputs[X].name, std::string_view("/d"), handle_outputs[Y].name,
                      std::string_view("|"), handle_outputs[Z].name})
                    row.name.add(piece);
                if (handle_outputs[X].unit == handle_outputs[Y].unit) {
                    row.unit.add("1");
                } else {
                    add_operand(row.unit, handle_outputs[X].unit);
                    row.unit.add("/");
                    add_operand(row.unit, handle_outputs[Y].unit);
                }
                for (const std::string_view piece :
                     {handle_outputs[X].meaning, std::string_view(" by "), handle_outputs[Y].meaning,
                      std::string_view(" at constant "), handle_outputs[Z].meaning})
                    row.meaning.add(piece);
            }
    return rows;
}();

} // namespace

void named_outputs::add_to_many(const output &one) {
    if (many_.empty())
        many_.assign(few_.begin(), few_.end());
    many_.push_back(one);
}

int read_pair(const char *text, named_pair &pair) {
    if (text == nullptr)
        return report_null("inputs", "a text is needed");
    const char *at = text;
    while (is_blank(*at))
        ++at;
    const std::uint8_t first = place_of_letter(*at);
    const std::uint8_t second = first != none ? place_of_letter(at[1]) : none;
    if (second != none) {
        pair = pair_of[first][second];
        at += 2;
        while (is_blank(*at))
            ++at;
        if (*at == '\0' && pair.row != none)
            return OSTREL_OK;
    }
    std::vector<std::string_view> known;
    for (const described &row : described_pairs())
        known.push_back(row.name);
    return report(OSTREL_BAD_ARGUMENT, {"inputs ", in_quotes(without_blanks(text)),
                                        ": there is no such pair; pairs are, in either order, ", joined(known)});
}

int read_saturation_input(const char *text, bool &at_pressure) {
    if (text == nullptr)
        return report_null("input", "a text is needed");
    const std::string_view name = without_blanks(text);
    const std::uint8_t place = name.size() == 1 ? place_of_letter(name.front()) : none;
    at_pressure = place == static_cast<std::uint8_t>(letter::p);
    if (at_pressure || place == static_cast<std::uint8_t>(letter::t))
        return OSTREL_OK;
    return report(OSTREL_BAD_ARGUMENT,
                  {"input ", in_quotes(name), ": there is no such input of saturation; it must be t or p"});
}

int read_outputs(const char *text, named_outputs &outputs) {
    if (text == nullptr)
        return report_null("outputs", "a text is needed");
    for (const char *at = text;; ++at) {
        const char *const begin = at;
        while (*at != ',' && *at != '\0')
            ++at;
        output one;
        if (const int status = find(without_blanks({begin, static_cast<std::size_t>(at - begin)}), one);
            status != OSTREL_OK)
            return status;
        outputs.add(one);
        if (*at == '\0')
            return OSTREL_OK;
    }
}

int read_output(const char *text, output &one) {
    return text != nullptr ? find(without_blanks(text), one) : report_null("output", "a text is needed");
}

std::span<const described> described_pairs() {
    return views_of<pair_rows>;
}
std::span<const described> described_derivatives() {
    return views_of<derivative_rows>;
}

} // namespace fluid
