// SPDX-License-Identifier: MIT
// The index of a folder of fluids, and the search for a fluid by its names.
//
// Computes   which parameter file is meant by a name, an alias, a refrigerant number, a formula or a CAS number
// Given      the folder's index.csv (Fluids/README.md has its columns), and the files that are in the folder
// Returned   the names of files, with what the index says of their fluids; "not found" is a result like others
// Valid      without an index, everything goes by the files' names; rows that cannot be read are as if they were not
//            there. An index may be used by several threads at the same time: after it has been read, nothing changes.
// Accuracy   names are compared without case, blanks and punctuation; of letters that are not ASCII only those of
//            Latin-1 are compared without case
#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace fluid_index {

/// What the index says of a fluid. Texts are empty and temperatures NaN where it says nothing.
struct fluid {
    static constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

    std::string file{}; ///< name of the parameter file without .osd
    std::string name{};
    std::vector<std::string> aliases{};
    std::string refrigerant{}; ///< refrigerant number, as R134a
    std::string formula{};
    std::string cas{}; ///< CAS number
    std::string family{};
    double triple_temperature = unknown;    ///< [K]
    double boiling_temperature = unknown;   ///< [K], of the real fluid at 101325 Pa; of some fluids it sublimes there
    double heat_capacity_lowest = unknown;  ///< [K], where the fit of the heat capacity begins
    double heat_capacity_highest = unknown; ///< [K], where it ends
};

/// How a fluid was found.
enum class outcome {
    by_file,   ///< The words are the exact name of a file.
    by_name,   ///< The words are one of the names of one fluid, or the formula of one fluid only.
    ambiguous, ///< The words are names or the formula of several fluids.
    not_found  ///< The words are no name.
};

struct answer {
    outcome how = outcome::not_found;
    /// The fluid; or all that it could be; or at most three that may have been meant: those with names near in
    /// spelling, the nearest first, or if there are none those whose names contain the words.
    std::vector<fluid> fluids{};
};

class index {
public:
    /// Reads the index of a folder. If it is missing or cannot be read, the index is empty.
    explicit index(std::string folder);

    /// The fluid that the words name.
    answer find(std::string_view words) const;

    /// All fluids of the folder that the words find, at most `most`, the best first: those with this name, formula or
    /// family; those with a name that begins with the words; those with a name or a family that contains them. Unless
    /// there is one of the first kind, names near in spelling follow. No words find all fluids.
    std::vector<fluid> search(std::string_view words, std::size_t most = std::string_view::npos) const;

    /// The three fluids that may have been meant by words that name none: those that find() has, and behind them those
    /// with the names nearest in spelling, however far they are. Fewer only if the folder has no more.
    std::vector<fluid> meant(std::string_view words) const;

    /// What the index says of a file; nothing but its name if the index does not have it.
    fluid facts(std::string_view file) const;
    /// The same, without reading the other rows of the folder's index if there is no need.
    static fluid facts(const std::string &folder, std::string_view file);

private:
    index() = default;
    /// The columns of the index, in the order of their names in fluid_index.cpp.
    enum column { file, name, aliases, refrigerant, formula, cas, family, Tt, Tb, cp_Tmin, cp_Tmax, columns };
    struct row {
        std::size_t text; ///< where its line begins in text_
        std::size_t keys; ///< where its names begin in keys_
    };

    void read_text(std::string folder);
    void read_heading(std::string_view line);
    void fold_lines(std::size_t start, std::size_t end);
    std::vector<std::size_t> rows_with(std::string_view key) const;
    fluid fluid_of(std::size_t row) const;
    bool first_of_its_file(std::size_t row, const fluid &read) const;
    bool there(std::string_view file) const;
    std::vector<fluid> all() const;

    std::string folder_;    ///< with its separator
    std::string text_;      ///< the whole file
    std::string keys_;      ///< the fields of all rows, as they are compared, with commas around them
    std::vector<row> rows_; ///< the lines behind the heading, which may be broken
    std::array<std::size_t, columns> places_{}; ///< the place of each column in a line; npos if there is none
};

/// The fluid that the words name in a folder, as index(folder).find(words) gives it. If the words are the exact name of
/// a file, this is faster.
answer find(const std::string &folder, std::string_view words);

/// A fluid for people: its file, and its name if that differs.
std::string described(const fluid &one);

} // namespace fluid_index
