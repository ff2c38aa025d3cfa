// SPDX-License-Identifier: MIT
#include "CommandLine/examination.h"

#include "CommandLine/critical_pressure.h"
#include "CommandLine/description.h"
#include "CommandLine/missing_records.h"
#include "CommandLine/report.h"
#include "CommandLine/trace.h"
#include "CommandLine/warnings.h"
#include "Thermodynamics/thermodynamics.h"

#include <sstream>

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

} // namespace

examination examine(const std::string &path) {
    const parameter_file file = load_file(path);
    if (!file.unreadable.empty())
        return {.unusable = file.unreadable, .advice = stopped_at(file)};
    std::ostringstream description;
    describe(description, file);
    examination found{.description = description.str(), .warnings = suspicions(file), .unusable = file.not_initialised};
    if (const std::vector<std::string> refused = refusals(file); !refused.empty()) {
        found.unusable = refused.front();
        found.advice.assign(refused.begin() + 1, refused.end());
    } else if (!found.unusable.empty()) {
        found.advice = remedy(file);
    } else if (model_name() == "unknown") {
        found.unusable = "gas_type " + std::to_string(thermodynamics::gas_type) + " is none of the models 1 to 8";
    } else {
        const std::vector<std::string> seen = trial(found.unusable);
        found.warnings.insert(found.warnings.end(), seen.begin(), seen.end());
    }
    return found;
}

} // namespace command
