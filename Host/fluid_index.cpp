// SPDX-License-Identifier: MIT
#include "Host/fluid_index.h"

#include "Host/folder_listing.h"
#include "Host/spelling.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace fluid_index {
namespace {

constexpr std::string_view extension = ".osd";
constexpr std::size_t nearest_shown = 3;
constexpr std::size_t largest = std::size_t{1} << 24; // A larger file is no index.
constexpr std::size_t nowhere = std::string_view::npos;

/// The whole text of a regular file; empty if it cannot be read.
std::string text_of(const std::string &path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return {};
    const struct closing {
        int descriptor;
        ~closing() { close(descriptor); }
    } closed{file};
    struct stat status {};
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || static_cast<std::size_t>(status.st_size) > largest)
        return {};
    std::string text(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t size = 0;
    while (size < text.size()) {
        const ssize_t got = read(file, text.data() + size, text.size() - size);
        if (got <= 0)
            break;
        size += static_cast<std::size_t>(got);
    }
    text.resize(size);
    return text;
}

/// What an ASCII character is as part of a name: itself in lower case, or 0 if it is left out.
constexpr auto compared = [] {
    std::array<char, 128> result{};
    for (std::size_t c = 0; c < result.size(); ++c) {
        const char letter = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        if ((letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9'))
            result[c] = letter;
    }
    return result;
}();

/// Writes the character at the start of the text as it is compared, and returns its length in the text. Raised and
/// lowered digits are digits, letters of Latin-1 become lower case, and its signs and general punctuation are left out.
std::size_t fold_character(std::string_view text, std::string &result) {
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const auto put = [&](unsigned value) { result += static_cast<char>(value); };
    if (byte(0) < 0x80) {
        if (compared[byte(0)] != 0)
            result += compared[byte(0)];
        return 1;
    }
    const unsigned second = byte(1);
    const unsigned third = byte(2);
    if (byte(0) == 0xC2 && second >= 0x80) { // U+0080 to U+00BF
        if (second == 0xB2 || second == 0xB3 || second == 0xB9)
            put(second == 0xB9 ? '1' : second - 0xB0 + '0');
        else if (second == 0xB5)
            result += text.substr(0, 2);
        return 2;
    }
    if (byte(0) == 0xC3 && second >= 0x80) { // U+00C0 to U+00FF
        if (second != 0x97 && second != 0xB7) {
            put(0xC3);
            put(second <= 0x9E ? second + 0x20 : second);
        }
        return 2;
    }
    if (byte(0) == 0xE2 && second >= 0x80 && second <= 0x82 && third >= 0x80) { // U+2000 to U+20BF
        const bool raised = second == 0x81 && (third == 0xB0 || (third >= 0xB4 && third <= 0xB9));
        const bool lowered = second == 0x82 && third <= 0x89;
        if (raised || lowered)
            put((third & 0x0F) + '0');
        return 3;
    }
    result += text.front();
    return 1;
}

/// A name as it is compared.
std::string key_of(std::string_view text) {
    std::string result;
    while (!text.empty())
        text.remove_prefix(fold_character(text, result));
    return result;
}

/// The fields of a line of comma-separated text. Within quotation marks, a comma belongs to the field, and two marks
/// stand for one.
std::vector<std::string> fields_of(std::string_view line) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"' && quoted && i + 1 < line.size() && line[i + 1] == '"')
            fields.back() += line[++i];
        else if (line[i] == '"')
            quoted = !quoted;
        else if (line[i] == ',' && !quoted)
            fields.emplace_back();
        else
            fields.back() += line[i];
    }
    return fields;
}

/// The first line of a text without its end.
std::string_view first_line(std::string_view text) {
    text = text.substr(0, text.find('\n'));
    if (text.ends_with('\r'))
        text.remove_suffix(1);
    return text;
}

std::vector<std::string> split(std::string_view list) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        const std::string_view part = list.substr(0, list.find(';'));
        list.remove_prefix(std::min(part.size() + 1, list.size()));
        const std::size_t start = std::min(part.find_first_not_of(' '), part.size());
        if (start < part.size())
            parts.emplace_back(part.substr(start, part.find_last_not_of(' ') + 1 - start));
    }
    return parts;
}

double temperature(std::string_view text) {
    double value = fluid::unknown;
    const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
    return status == std::errc{} && end == text.data() + text.size() && std::isfinite(value) ? value : fluid::unknown;
}

/// Whether the text can be the name of a file in the folder itself.
bool names_file(std::string_view text) {
    return !text.empty() && text.find('/') == nowhere && text.find('\0') == nowhere;
}

/// Calls a function with each name of a fluid as it is compared, but not with its formula.
template <class Function>
void for_each_key(const fluid &of, Function use) {
    for (const std::string *const name : {&of.file, &of.name, &of.refrigerant, &of.cas})
        if (std::string key = key_of(*name); !key.empty())
            use(std::move(key));
    for (const std::string &alias : of.aliases)
        if (std::string key = key_of(alias); !key.empty())
            use(std::move(key));
}

/// How well a key finds a fluid; less is better.
enum rank { exact_name, exact_formula, exact_family, beginning, part, none };

struct match {
    rank how = none;
    std::size_t length = 0; ///< of the name that was found
    bool operator<(const match &other) const { return how != other.how ? how < other.how : length < other.length; }
};

bool is_exact(rank how) {
    return how < beginning;
}

match match_of(const fluid &candidate, std::string_view key) {
    match best;
    const std::string cas = key_of(candidate.cas);
    for_each_key(candidate, [&](const std::string &name) {
        const std::size_t at = name.find(key);
        // A part of a CAS number says nothing.
        if (at != nowhere && (name.size() == key.size() || name != cas))
            best = std::min(best, {name.size() == key.size() ? exact_name : at == 0 ? beginning : part, name.size()});
    });
    if (const std::string formula = key_of(candidate.formula); formula == key)
        best = std::min(best, {exact_formula, formula.size()});
    if (const std::string family = key_of(candidate.family); family.find(key) != nowhere)
        best = std::min(best, {family == key ? exact_family : part, nowhere});
    return best;
}

/// The places of the fluids that have names near to a key in spelling, the nearest first.
std::vector<std::size_t> near_fluids(const std::vector<fluid> &fluids, std::string_view key, bool however_far = false) {
    std::vector<std::string> names;
    std::vector<std::size_t> owners;
    for (std::size_t i = 0; i < fluids.size(); ++i)
        for_each_key(fluids[i], [&](std::string name) {
            names.push_back(std::move(name));
            owners.push_back(i);
        });
    std::vector<std::size_t> found;
    for (const std::size_t place : spelling::nearest(key, names, however_far))
        if (std::find(found.begin(), found.end(), owners[place]) == found.end())
            found.push_back(owners[place]);
    return found;
}

/// The fluids with the best exact match of a key: by name, or if there is none by formula.
answer exact_answer(const std::vector<fluid> &fluids, std::string_view key) {
    answer result;
    rank best = exact_formula;
    for (const fluid &candidate : fluids) {
        const rank how = match_of(candidate, key).how;
        if (how < best) {
            best = how;
            result.fluids.clear();
        }
        if (how == best)
            result.fluids.push_back(candidate);
    }
    if (!result.fluids.empty())
        result.how = result.fluids.size() == 1 ? outcome::by_name : outcome::ambiguous;
    return result;
}

} // namespace

/// Reads the index, but not its rows yet.
void index::read_text(std::string folder) {
    folder_ = std::move(folder);
    if (!folder_.empty() && !folder_.ends_with('/'))
        folder_ += '/';
    text_ = text_of(folder_ + "index.csv");
    constexpr std::string_view mark = "\xEF\xBB\xBF"; // Some editors begin a text in UTF-8 with this.
    if (text_.starts_with(mark))
        text_.erase(0, mark.size());
    read_heading(first_line(text_));
}

index::index(std::string folder) {
    read_text(std::move(folder));
    if (places_[file] != nowhere)
        fold_lines(std::min(text_.find('\n'), text_.size() - 1) + 1, text_.size());
}

fluid index::facts(const std::string &folder, std::string_view file) {
    index brief;
    brief.read_text(folder);
    // In nearly every index the row begins with the file's name, without quotation marks.
    const std::size_t line = brief.text_.find('\n' + std::string(file) + ',');
    if (brief.places_[column::file] == 0 && line != nowhere) {
        brief.fold_lines(line + 1, std::min(brief.text_.find('\n', line + 1), brief.text_.size()));
        if (fluid read = brief.fluid_of(0); read.file == file)
            return read;
    }
    return index(folder).facts(file);
}

void index::read_heading(std::string_view line) {
    constexpr std::string_view names[columns] = {"file",   "name", "aliases", "refrigerant", "formula", "cas",
                                                 "family", "Tt",   "Tb",      "cp_Tmin",     "cp_Tmax"};
    const std::vector<std::string> fields = fields_of(line);
    for (std::size_t i = 0; i < columns; ++i) {
        const auto place = std::find(fields.begin(), fields.end(), names[i]);
        places_[i] = place != fields.end() ? static_cast<std::size_t>(place - fields.begin()) : nowhere;
    }
}

/// Writes the fields of all lines as they are compared. That a key stands among them is necessary for a name, but not
/// sufficient: the columns are not told apart here.
void index::fold_lines(std::size_t start, std::size_t end) {
    // Outside and inside of quotation marks; 0 is left out.
    static constexpr auto tables = [] {
        std::array<std::array<char, 256>, 2> result{};
        for (std::array<char, 256> &table : result) {
            std::copy(compared.begin(), compared.end(), table.begin());
            table[';'] = ',';
        }
        result[0][','] = ',';
        return result;
    }();
    rows_.reserve(512);
    keys_.resize(end - start + 2); // No field is longer than in the text; there is a comma before the first one.
    std::size_t size = 0;
    keys_[size++] = ',';
    while (start < end) {
        const std::string_view line =
            std::string_view(text_).substr(start, std::min(text_.find('\n', start), text_.size()) - start);
        rows_.push_back({start, size - 1});
        // Only these loops have a notable cost. Most lines have no quotation marks.
        char *to = keys_.data() + size;
        std::size_t quoted = 0;
        unsigned all = 0;
        const auto fold = [&](unsigned byte, const std::array<char, 256> &table) {
            all |= byte;
            *to = table[byte];
            to += *to != 0 ? 1 : 0;
        };
        if (line.find('"') == nowhere)
            for (const char c : line)
                fold(static_cast<unsigned char>(c), tables[0]);
        else
            for (const char c : line) {
                fold(static_cast<unsigned char>(c), tables[quoted]);
                quoted ^= c == '"' ? 1U : 0U;
            }
        if (all < 0x80) {
            size = static_cast<std::size_t>(to - keys_.data());
        } else {
            std::string folded;
            quoted = 0;
            for (std::size_t i = 0; i < line.size();) {
                quoted ^= line[i] == '"' ? 1U : 0U;
                if (line[i] == ';' || (line[i] == ',' && quoted == 0)) {
                    folded += ',';
                    ++i;
                } else {
                    i += fold_character(line.substr(i), folded);
                }
            }
            folded.copy(keys_.data() + size, folded.size());
            size += folded.size();
        }
        keys_[size++] = ',';
        start += line.size() + 1;
    }
    keys_.resize(size);
}

/// The rows in which a field, or a part of a list, is the key.
std::vector<std::size_t> index::rows_with(std::string_view key) const {
    std::vector<std::size_t> found;
    const std::string wanted = ',' + std::string(key) + ',';
    const char *at = keys_.data();
    const char *const end = at + keys_.size();
    while (at < end && (at = static_cast<const char *>(
                            memmem(at, static_cast<std::size_t>(end - at), wanted.data(), wanted.size()))) != nullptr) {
        const auto place = static_cast<std::size_t>(at - keys_.data());
        const auto next = std::upper_bound(rows_.begin(), rows_.end(), place,
                                           [](std::size_t value, const row &other) { return value < other.keys; });
        const auto row = static_cast<std::size_t>(next - rows_.begin()) - 1;
        if (found.empty() || found.back() != row)
            found.push_back(row);
        ++at;
    }
    return found;
}

fluid index::fluid_of(std::size_t row) const {
    std::vector<std::string> fields = fields_of(first_line(std::string_view(text_).substr(rows_[row].text)));
    const auto take = [&](column which) {
        return places_[which] < fields.size() ? std::move(fields[places_[which]]) : std::string();
    };
    fluid result{.file = take(file),
                 .name = take(name),
                 .aliases = split(take(aliases)),
                 .refrigerant = take(refrigerant),
                 .formula = take(formula),
                 .cas = take(cas),
                 .family = take(family),
                 .triple_temperature = temperature(take(Tt)),
                 .boiling_temperature = temperature(take(Tb)),
                 .heat_capacity_lowest = temperature(take(cp_Tmin)),
                 .heat_capacity_highest = temperature(take(cp_Tmax))};
    if (!names_file(result.file))
        result.file.clear();
    return result;
}

/// Whether the row is the one that counts if several have the same file.
bool index::first_of_its_file(std::size_t row, const fluid &read) const {
    for (const std::size_t other : rows_with(key_of(read.file)))
        if (fluid_of(other).file == read.file)
            return other == row;
    return false;
}

bool index::there(std::string_view file) const {
    std::error_code failed;
    return names_file(file) &&
           std::filesystem::is_regular_file(folder_ + std::string(file) + std::string(extension), failed);
}

/// All fluids of the folder, in the order of their files' names.
std::vector<fluid> index::all() const {
    std::unordered_map<std::string, fluid> known;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        fluid read = fluid_of(row);
        const std::string name = read.file;
        known.try_emplace(name, std::move(read));
    }
    std::vector<fluid> fluids;
    for (std::string name : folder_listing::files(folder_.empty() ? "." : folder_, '*' + std::string(extension))) {
        name.resize(name.size() - extension.size());
        const auto row = known.find(name);
        fluids.push_back(row != known.end() ? std::move(row->second) : fluid{.file = std::move(name)});
    }
    return fluids;
}

fluid index::facts(std::string_view file) const {
    for (const std::size_t row : rows_with(key_of(file)))
        if (fluid read = fluid_of(row); read.file == file)
            return read;
    return {.file = std::string(file)};
}

answer index::find(std::string_view words) const {
    if (there(words))
        return {outcome::by_file, {facts(words)}};
    const std::string key = key_of(words);
    if (key.empty())
        return {};
    std::vector<fluid> candidates;
    for (const std::size_t row : rows_with(key))
        if (fluid read = fluid_of(row); there(read.file) && first_of_its_file(row, read))
            candidates.push_back(std::move(read));
    answer result = exact_answer(candidates, key);
    if (result.how != outcome::not_found)
        return result;
    // Files that the index does not have are found by their names, too.
    const std::vector<fluid> fluids = all();
    result = exact_answer(fluids, key);
    if (result.how != outcome::not_found)
        return result;
    const std::string_view bare = words.ends_with(extension) ? words.substr(0, words.size() - extension.size()) : words;
    for (const std::size_t place : near_fluids(fluids, key_of(bare)))
        if (result.fluids.size() < nearest_shown)
            result.fluids.push_back(fluids[place]);
    if (result.fluids.empty())
        result.fluids = search(bare, nearest_shown);
    return result;
}

std::vector<fluid> index::meant(std::string_view words) const {
    std::vector<fluid> result = find(words).fluids;
    const std::vector<fluid> fluids = all();
    for (const std::size_t place : near_fluids(fluids, key_of(words), true))
        if (result.size() < nearest_shown && std::none_of(result.begin(), result.end(), [&](const fluid &other) {
                return other.file == fluids[place].file;
            }))
            result.push_back(fluids[place]);
    return result;
}

std::vector<fluid> index::search(std::string_view words, std::size_t most) const {
    std::vector<fluid> fluids = all();
    if (words.find_first_not_of(' ') == nowhere) {
        fluids.resize(std::min(fluids.size(), most));
        return fluids;
    }
    const std::string key = key_of(words);
    std::vector<std::pair<match, std::size_t>> found;
    if (!key.empty())
        for (std::size_t i = 0; i < fluids.size(); ++i) {
            match how = match_of(fluids[i], key);
            if (fluids[i].file == words)
                how = {exact_name, 0};
            if (how.how != none)
                found.emplace_back(how, i);
        }
    // A variant has no formula in the index, and comes behind its fluid.
    std::stable_sort(found.begin(), found.end(), [&](const auto &a, const auto &b) {
        const bool formula = !fluids[a.second].formula.empty();
        if (a.first.how != b.first.how || formula == !fluids[b.second].formula.empty())
            return a.first < b.first;
        return formula;
    });
    std::vector<std::size_t> order(found.size());
    std::transform(found.begin(), found.end(), order.begin(), [](const auto &one) { return one.second; });
    if (!key.empty() && (found.empty() || !is_exact(found.front().first.how)))
        for (const std::size_t place : near_fluids(fluids, key))
            if (std::find(order.begin(), order.end(), place) == order.end())
                order.push_back(place);
    std::vector<fluid> result;
    for (const std::size_t place : order)
        if (result.size() < most)
            result.push_back(std::move(fluids[place]));
    return result;
}

answer find(const std::string &folder, std::string_view words) {
    std::error_code failed;
    if (names_file(words) && std::filesystem::is_regular_file(
                                 std::filesystem::path(folder) / (std::string(words) + std::string(extension)), failed))
        return {outcome::by_file, {index::facts(folder, words)}};
    return index(folder).find(words);
}

std::string described(const fluid &one) {
    return one.name.empty() || one.name == one.file ? one.file : one.file + " (" + one.name + ')';
}

} // namespace fluid_index
