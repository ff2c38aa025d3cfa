// SPDX-License-Identifier: MIT
//
// Records are read by their position, so a missing one shows at a later record, which has a value of the wrong kind.
// The labels behind the values are not read, but where they name the fields they tell which record is missing: a record
// is put in at each place, and the file is read again. A record is called missing only if the whole file can then be
// read, more labels than before agree with the fields that are read, and none contradicts.
#include "CommandLine/missing_records.h"

#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"
#include "CommandLine/trace.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <string_view>

namespace command {
namespace {

/// Larger files are not examined, since the number of trials grows with the square of the number of records.
constexpr std::size_t most_reads = 100;
/// So many neighboring records may be missing, and at so many places.
constexpr std::size_t most_neighbors = 3;
constexpr int most_places = 3;

/// A record of the file, with its number, or one that was put in, with the number 0.
struct numbered_record {
    std::string_view text;
    std::int64_t number;
};
using numbered_records = std::vector<numbered_record>;

std::vector<std::string_view> texts_of(const numbered_records &records) {
    std::vector<std::string_view> texts;
    texts.reserve(records.size());
    for (const numbered_record &record : records)
        texts.push_back(record.text);
    return texts;
}

/// Labels of counts that shipped files have in place of names.
struct other_label {
    std::string_view name;
    std::string_view label;
};
constexpr other_label other_labels[] = {
    {"N", "number of power terms"},
    {"K", "number of temperature intervals"},
    {"NV", "number of characteristic temperatures"},
};

/// The first word behind the numbers, or the name for which a label stands; empty if there is none.
std::string_view label_of(std::string_view rest) {
    rest = without_blanks(rest);
    while (!rest.empty() && is_number(token_of(rest)))
        take_value(rest);
    rest = without_blanks(rest);
    for (const other_label &row : other_labels)
        if (rest.starts_with(row.label))
            return row.name;
    const auto ends = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '_'; };
    return rest.substr(0, static_cast<std::size_t>(std::find_if(rest.begin(), rest.end(), ends) - rest.begin()));
}

struct labelled_read {
    std::string name; ///< of its first value, in a list without the place; empty for an empty list
    std::string kind;
    std::string_view label;
    std::size_t first; ///< the index of the record where it begins
    std::size_t last;
};

/// How a file is read, and how many of its labels agree with that.
struct assessment {
    std::vector<labelled_read> reads;
    bool complete = false;
    std::size_t agreeing = 0;
    bool contradicted = false;
};

bool agrees(const labelled_read &read) {
    return !read.label.empty() && read.label == read.name;
}

assessment assess(const numbered_records &records) {
    const std::vector<std::string_view> texts = texts_of(records);
    const file_trace traced = trace(texts);
    assessment result;
    result.complete = traced.complete;
    for (std::size_t i = 0; i < std::min(traced.reads.size(), most_reads); ++i) {
        const record_trace &read = traced.reads[i];
        wanted_value field = wanted(texts, i);
        const bool has_label = !field.kind.empty() && field.kind != "a text";
        result.reads.push_back({field.name.substr(0, field.name.find('(')), field.kind,
                                has_label ? label_of(read.rest) : std::string_view(),
                                static_cast<std::size_t>(read.first - 1), static_cast<std::size_t>(read.last - 1)});
    }
    const auto names_a_field = [&](std::string_view label) {
        return !label.empty() && std::any_of(result.reads.begin(), result.reads.end(),
                                             [&](const auto &read) { return read.name == label; });
    };
    for (const labelled_read &read : result.reads) {
        result.agreeing += agrees(read) ? 1 : 0;
        result.contradicted |= !agrees(read) && names_a_field(read.label);
    }
    // A record that is left over is not missing but stands elsewhere.
    for (std::size_t i = result.reads.empty() ? 0 : result.reads.back().last + 1; i < texts.size(); ++i) {
        std::string_view rest = texts[i];
        take_value(rest);
        result.contradicted |= names_a_field(label_of(rest));
    }
    return result;
}

/// Records that can be put in for a field. A list takes as many of the values as it wants.
std::span<const std::string_view> stand_ins(const labelled_read &wanted) {
    static constexpr std::string_view integers[] = {"10000*1", "10000*2", "10000*3", "10000*4",
                                                    "10000*5", "10000*6", "10000*7", "10000*8"};
    static constexpr std::string_view logicals[] = {"T", "F"};
    static constexpr std::string_view others[] = {"10000*1"};
    if (wanted.kind == "an integer")
        return integers;
    if (wanted.kind == "a logical")
        return logicals;
    return others;
}

/// The file with some records put in.
struct repaired_file {
    numbered_records records;
    assessment seen;
    std::vector<std::string> fields; ///< of the records that were put in
    std::size_t next = 0;            ///< the index of the READ behind them
};

/// Tries all records for `count` READs from one on.
void put_in(const numbered_records &records, const assessment &seen, std::size_t read, std::size_t count,
            const std::vector<std::string> &fields, const std::function<void(repaired_file &&)> &use) {
    if (count == 0) {
        use({records, seen, fields, read});
        return;
    }
    if (read >= seen.reads.size())
        return;
    const labelled_read &wanted = seen.reads[read];
    for (const std::string_view text : stand_ins(wanted)) {
        numbered_records more = records;
        more.insert(more.begin() + static_cast<std::ptrdiff_t>(wanted.first), {text, 0});
        std::vector<std::string> named = fields;
        named.push_back(wanted.name);
        put_in(more, assess(more), read + 1, count - 1, named, use);
    }
}

/// The trials with the most agreeing labels, one for each choice of fields; none if no more labels agree than before.
std::vector<repaired_file> best_trials(const numbered_records &records, const assessment &seen, std::size_t count) {
    std::vector<repaired_file> best;
    for (std::size_t read = 0; read < seen.reads.size(); ++read)
        put_in(records, seen, read, count, {}, [&](repaired_file &&tried) {
            const auto rank = [](const assessment &one) { return std::pair(one.agreeing, one.complete); };
            if (tried.seen.agreeing <= seen.agreeing || (!best.empty() && rank(tried.seen) < rank(best[0].seen)))
                return;
            if (!best.empty() && rank(tried.seen) > rank(best[0].seen))
                best.clear();
            const bool known = std::any_of(best.begin(), best.end(), [&](const repaired_file &other) {
                return other.fields == tried.fields && other.next == tried.next;
            });
            if (!known)
                best.push_back(std::move(tried));
        });
    return best;
}

std::string sentence(const std::vector<repaired_file> &found) {
    std::vector<std::string> choices;
    choices.reserve(found.size());
    for (const repaired_file &one : found)
        choices.push_back(joined(one.fields, ", ", ", "));
    const bool several = found[0].fields.size() > 1;
    const std::string names = joined(choices, several ? " or " : ", ", several ? " or " : ", ");
    const assessment &seen = found.back().seen;
    const auto next =
        std::find_if(seen.reads.begin() + static_cast<std::ptrdiff_t>(found.back().next), seen.reads.end(), agrees);
    const std::string where = next == seen.reads.end()
                                  ? std::string()
                                  : " before record " + std::to_string(found.back().records[next->first].number) +
                                        ", which is labelled \"" + printable(next->label) + '"';
    return (several             ? "The records " + names + " seem"
            : found.size() == 1 ? "The record " + names + " seems"
                                : "One of the records " + names + " seems") +
           " to be missing" + where + '.';
}

/// A list that takes values of a further record, whose label is another one: its count is likely to be wrong.
std::vector<std::string> swallowed(const assessment &seen) {
    for (const labelled_read &read : seen.reads)
        if (read.last > read.first && !read.label.empty() && !agrees(read))
            return {read.name + " goes on from record " + std::to_string(read.first + 1) + " to record " +
                    std::to_string(read.last + 1) + ", which is labelled \"" + printable(read.label) +
                    "\": is the number of values right?"};
    return {};
}

} // namespace

std::vector<std::string> missing_records(std::string_view text) {
    numbered_records records;
    for (const std::string_view record : records_of(text))
        records.push_back({record, static_cast<std::int64_t>(records.size()) + 1});
    assessment seen = assess(records);
    if (seen.complete || seen.reads.size() >= most_reads)
        return {};
    if (std::vector<std::string> lines = swallowed(seen); !lines.empty())
        return lines;
    std::vector<std::string> lines;
    for (int place = 0; place < most_places && !seen.complete; ++place) {
        std::vector<repaired_file> found;
        for (std::size_t count = 1; count <= most_neighbors && found.empty(); ++count)
            found = best_trials(records, seen, count);
        if (found.empty())
            return {};
        lines.push_back(sentence(found));
        records = std::move(found[0].records);
        seen = std::move(found[0].seen);
    }
    return seen.complete && !seen.contradicted ? lines : std::vector<std::string>();
}

} // namespace command
