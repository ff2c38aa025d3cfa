// SPDX-License-Identifier: MIT
// ostrel check: describes a parameter file in words and says whether it can be used.
#include "CommandLine/command.h"
#include "CommandLine/critical_pressure.h"
#include "CommandLine/description.h"
#include "CommandLine/missing_records.h"
#include "CommandLine/report.h"
#include "CommandLine/trace.h"
#include "CommandLine/warnings.h"
#include "Thermodynamics/thermodynamics.h"

#include <iostream>
#include <memory>

namespace command {
namespace {

/// Describes the place where reading stopped, and what may be missing before it.
std::vector<std::string> stopped_at(const parameter_file &file) {
    if (file.last_record > 0 && file.text.empty())
        return {"The file is empty."};
    if (file.text.find('\0') != std::string::npos)
        return {"This is not a text file."};
    std::vector<std::string> lines;
    const std::vector<std::string_view> records = records_of(file.text);
    if (file.last_record > 0 && static_cast<std::size_t>(file.last_record) <= records.size())
        lines.push_back("Record " + std::to_string(file.last_record) +
                        " is: " + printable(records[static_cast<std::size_t>(file.last_record) - 1].substr(0, 100)));
    for (std::string &line : missing_records(file.text))
        lines.push_back(std::move(line));
    return lines;
}

/// Advice for a file that can be read but not initialised.
std::vector<std::string> remedy(const parameter_file &file) {
    if (file.not_initialised.find(" is not a vapor:") != std::string::npos)
        return {"That wants critical data: T in the record of vapor, and behind it Tc, Pc, Zc and Tb."};
    if (file.not_initialised.find("do not match") != std::string::npos)
        return {"Viscosity 2 goes with conductivity 2, and 3 with 3."};
    if (file.not_initialised.find("v__P_T__") == std::string::npos)
        return {};
    std::vector<std::string> lines = {
        "From these very digits of Tc and Pc the model does not find its critical volume."};
    if (const auto better = nearest_critical_pressure(file))
        lines.push_back("The nearest Pc with which it does is " + better->value + " atm, in record " +
                        std::to_string(better->record) + ".");
    else
        lines.emplace_back("No value of Pc near it does either: look at the constants.");
    return lines;
}

void examine(const std::string &path) {
    const parameter_file file = load_file(path);
    if (!file.unreadable.empty())
        throw failure(file.unreadable, stopped_at(file));
    describe(std::cout, file);
    std::vector<std::string> warnings = suspicions(file);
    std::string unusable = file.not_initialised;
    std::vector<std::string> advice;
    if (const std::vector<std::string> refused = refusals(file); !refused.empty()) {
        unusable = refused.front();
        advice.assign(refused.begin() + 1, refused.end());
    } else if (!unusable.empty()) {
        advice = remedy(file);
    } else if (model_name() == "unknown") {
        unusable = "gas_type " + std::to_string(thermodynamics::gas_type) + " is none of the models 1 to 8";
    } else {
        const std::vector<std::string> seen = trial(unusable);
        warnings.insert(warnings.end(), seen.begin(), seen.end());
    }
    if (!warnings.empty() || unusable.empty())
        std::cout << '\n';
    for (const std::string &text : warnings)
        std::cout << "warning: " << text << '\n';
    if (!unusable.empty())
        throw failure(unusable, advice);
    std::cout << (warnings.empty() ? "This file can be used.\n" : "This file can be loaded; see the warnings above.\n");
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
            .run = [path] { examine(*path); }};
}

} // namespace command
