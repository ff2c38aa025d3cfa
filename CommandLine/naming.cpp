// SPDX-License-Identifier: MIT
#include "CommandLine/naming.h"

#include "CommandLine/command.h"
#include "CommandLine/loading.h"
#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"

#include <filesystem>

namespace command {
namespace {

using fluid_index::outcome;

/// The fluids' files, each with the fluid's name if that differs.
std::vector<std::string> described_files(const std::vector<fluid_index::fluid> &fluids) {
    std::vector<std::string> texts;
    texts.reserve(fluids.size());
    for (const fluid_index::fluid &one : fluids)
        texts.push_back(printable(fluid_index::described(one)));
    return texts;
}

} // namespace

named_fluid fluid_named(const std::string &words) {
    const fluid_index::index index(fluid_folder());
    std::error_code ignored;
    if (std::filesystem::exists(path_of(words), ignored))
        return {index.facts(words)};
    fluid_index::answer found = index.find(words);
    const std::string quoted = '"' + printable(words) + '"';
    if (found.how == outcome::ambiguous)
        throw failure(quoted + " names several fluids", {joined(described_files(found.fluids), ", ", " or ") + "?"});
    if (found.how == outcome::not_found)
        return {{.file = words}};
    named_fluid result{std::move(found.fluids.front())};
    result.notes.push_back(quoted + " was found in " + printable(result.facts.file) + ".osd" +
                           (result.facts.name.empty() ? "." : ": " + printable(result.facts.name) + '.'));
    return result;
}

std::string nearest_fluids(std::string_view words) {
    const std::vector<fluid_index::fluid> meant = fluid_index::index(fluid_folder()).meant(words);
    return meant.empty() ? std::string() : "Did you mean " + joined(described_files(meant), ", ", " or ") + "?";
}

void add_temperature_notes(std::vector<std::string> &notes, const fluid_index::fluid &facts, double t) {
    constexpr double rounding = 1e-9; // A state that was searched from other inputs is not exactly at a limit.
    if (t < facts.triple_temperature * (1 - rounding))
        notes.push_back("t = " + number(t) + " K is below the triple temperature, " + number(facts.triple_temperature) +
                        " K: the real fluid has no liquid there.");
    if (t < facts.heat_capacity_lowest * (1 - rounding) || t > facts.heat_capacity_highest * (1 + rounding))
        notes.push_back("t = " + number(t) + " K is outside " + number(facts.heat_capacity_lowest) + " to " +
                        number(facts.heat_capacity_highest) +
                        " K, where the heat capacity was fitted: h, s, u and cv are extrapolated.");
}

} // namespace command
