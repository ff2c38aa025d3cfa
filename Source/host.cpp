// SPDX-License-Identifier: MIT
#include "host.h"

#include "Records/fixed_text.h"

namespace host {
namespace {

constexpr std::string_view product = "Ostrel";

ostrel_host active = default_routines;

} // namespace

const ostrel_host &routines() {
    return active;
}

void use(const ostrel_host *replacement) {
    active = replacement != nullptr ? *replacement : default_routines;
    if (active.fluidpath == nullptr)
        active.fluidpath = default_routines.fluidpath;
    if (active.searchdirectory == nullptr)
        active.searchdirectory = default_routines.searchdirectory;
    if (active.getfluid == nullptr)
        active.getfluid = default_routines.getfluid;
}

std::string fluid_directory() {
    std::string path(path_length, ' ');
    routines().fluidpath(path.data(), product.data(), path.size(), product.size());
    path.resize(records::trimmed(path).size());
    return path;
}

std::vector<char> fluid_lines(std::string_view location, std::string_view key) {
    std::vector<char> lines(static_cast<std::size_t>(line_count) * line_length, ' ');
    std::int32_t found = 0;
    const std::int32_t status = routines().getfluid(location.data(), key.data(), lines.data(), &found, location.size(),
                                                    key.size(), line_length);
    if (status == 0 || found == 0)
        lines.clear();
    return lines;
}

} // namespace host
