// SPDX-License-Identifier: MIT
#include "CommandLine/suggestions.h"

#include "Host/spelling.h"

#include <sstream>

namespace command {

std::vector<std::string> parts_of(const std::string &text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        const std::size_t first = part.find_first_not_of(" \t\r");
        parts.push_back(first == std::string::npos ? ""
                                                   : part.substr(first, part.find_last_not_of(" \t\r") - first + 1));
    }
    return parts;
}

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
    std::vector<std::string> meant;
    for (const std::size_t place : spelling::nearest(written, names))
        if (meant.size() < shown)
            meant.push_back(names[place]);
    return meant.empty() ? std::string() : "Did you mean " + joined(meant, ", ", " or ") + "?";
}

} // namespace command
