// SPDX-License-Identifier: MIT
#include "CommandLine/suggestions.h"

#include "Ostrel_Main.h"

#include <algorithm>
#include <cctype>

namespace command {
namespace {

std::string lower(std::string_view text) {
    std::string result(text);
    for (char &c : result)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

/// The smallest number of insertions, deletions, replacements and swaps of neighbours that make text b of text a.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> edits(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                edits[i][j] = i + j;
                continue;
            }
            const std::size_t replaced = edits[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            edits[i][j] = std::min({edits[i - 1][j] + 1, edits[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                edits[i][j] = std::min(edits[i][j], edits[i - 2][j - 2] + 1);
        }
    return edits[a.size()][b.size()];
}

} // namespace

std::string joined(const std::vector<std::string> &texts, std::string_view separator, std::string_view last) {
    std::string result;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i > 0)
            result += i + 1 < texts.size() ? separator : last;
        result += texts[i];
    }
    return result;
}

std::string did_you_mean(std::string_view written, const std::vector<std::string> &names) {
    constexpr std::size_t shown = 3;
    constexpr std::size_t longest = 64;
    const std::string wanted = lower(written.substr(0, longest));
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string &name : names) {
        const std::size_t edits = distance(wanted, lower(std::string_view(name).substr(0, longest)));
        if (edits <= std::max<std::size_t>(1, wanted.size() / 3))
            near.emplace_back(edits, name);
    }
    std::stable_sort(near.begin(), near.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    near.resize(std::min(near.size(), shown));
    std::vector<std::string> meant(near.size());
    std::transform(near.begin(), near.end(), meant.begin(), [](const auto &name) { return name.second; });
    return meant.empty() ? std::string() : "Did you mean " + joined(meant, ", ", " or ") + "?";
}

} // namespace command
