// SPDX-License-Identifier: MIT
// ostrel check: describes a parameter file in words and says whether it can be used.
#include "CommandLine/command.h"
#include "CommandLine/examination.h"

#include <iostream>
#include <memory>

namespace command {
namespace {

void show(const std::string &path) {
    const examination found = examine(path);
    if (!found.readable())
        throw failure(found.unusable, found.advice);
    std::cout << found.description;
    if (!found.warnings.empty() || found.unusable.empty())
        std::cout << '\n';
    for (const std::string &text : found.warnings)
        std::cout << "warning: " << text << '\n';
    if (!found.unusable.empty())
        throw failure(found.unusable, found.advice);
    std::cout << (found.warnings.empty() ? "This file can be used.\n"
                                         : "This file can be loaded; see the warnings above.\n");
}

} // namespace

definition check() {
    const auto path = std::make_shared<std::string>();
    return {.name = "check",
            .meaning = "Say in words what a parameter file means",
            .arguments = {{"FILE", path.get(), "A parameter file, from anywhere", true}},
            .notes =
                "It refuses a file that cannot be read or computed with. Labels behind the values, as the shipped\n"
                "files have them, let it name a record that is missing. It warns of what is likely to be a\n"
                "mistake: implausible constants, SI coefficients under coeff_adim = T, numbers behind a list that\n"
                "are not read, decimal commas, models that do not go together. A file that can be used may still\n"
                "get warnings; the exit code is then 0.\n\n"
                "Example:\n  ostrel check Fluids/toluene.osd",
            .run = [path] { show(*path); }};
}

} // namespace command
