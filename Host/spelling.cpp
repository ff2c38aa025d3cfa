// SPDX-License-Identifier: MIT
#include "Host/spelling.h"

#include <algorithm>
#include <utility>

namespace spelling {
namespace {

constexpr std::size_t longest = 64; // Only so many characters of a name are compared.

/// The text with ASCII letters in lower case, in every locale.
std::string lower(std::string_view text) {
    std::string result(text.substr(0, longest));
    for (char &c : result)
        c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
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

std::vector<std::size_t> nearest(std::string_view written, std::span<const std::string> names, bool however_far) {
    const std::string wanted = lower(written);
    const std::size_t allowed = however_far ? longest : std::max<std::size_t>(1, wanted.size() / 3);
    std::vector<std::pair<std::size_t, std::size_t>> near;
    for (std::size_t place = 0; place < names.size(); ++place) {
        const std::string name = lower(names[place]);
        if (std::max(name.size(), wanted.size()) - std::min(name.size(), wanted.size()) > allowed)
            continue;
        if (const std::size_t edits = distance(wanted, name); edits <= allowed)
            near.emplace_back(edits, place);
    }
    std::sort(near.begin(), near.end());
    std::vector<std::size_t> places(near.size());
    std::transform(near.begin(), near.end(), places.begin(), [](const auto &name) { return name.second; });
    return places;
}

} // namespace spelling
