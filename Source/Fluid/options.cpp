// SPDX-License-Identifier: MIT
#include "Fluid/options.h"

#include "Fluid/names.h"
#include "Fluid/status.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace fluid {
namespace {

std::string keys() {
    std::vector<std::string_view> names;
    for (const option &one : all_options)
        names.push_back(one.key);
    return joined(names);
}

int refuse(std::string_view text, std::initializer_list<std::string_view> problem) {
    std::string sentence;
    for (const std::string_view piece : problem)
        sentence += piece;
    return report(OSTREL_BAD_ARGUMENT, {"options ", in_quotes(text), ": ", sentence});
}

/// Takes one "key=value".
int take(std::string_view text, std::string_view entry, options &result) {
    if (entry.empty())
        return refuse(text, {"an option is empty; options are written key=value; key=value"});
    const std::size_t sign = entry.find('=');
    const std::string_view key = without_blanks(entry.substr(0, sign));
    const auto *const known =
        std::find_if(std::begin(all_options), std::end(all_options), [&](const option &one) { return one.key == key; });
    if (known == std::end(all_options))
        return refuse(text, {"there is no option ", in_quotes(key), "; the options are ", keys()});
    if (sign == std::string_view::npos)
        return refuse(text, {"the option ", key, " has no value; options are written key=value; key=value"});
    const std::string_view value = without_blanks(entry.substr(sign + 1));
    const auto place = static_cast<std::size_t>(known - std::begin(all_options));
    if (result.chosen[place])
        return refuse(text, {"the option ", key, " stands there twice; each of ", keys(), " may stand once"});
    if (known->values.empty()) {
        if (value.empty())
            return refuse(text, {"the option ", key, " is empty; it needs a folder"});
        result.chosen[place] = 0;
        result.folder = value;
        return OSTREL_OK;
    }
    const auto word = std::find(known->values.begin(), known->values.end(), value);
    if (word == known->values.end())
        return refuse(text, {in_quotes(value), " is no value of ", key, "; its values are ", joined(known->values)});
    result.chosen[place] = static_cast<std::size_t>(word - known->values.begin());
    return OSTREL_OK;
}

} // namespace

settings options::wanted() const {
    settings result;
    const std::size_t states = chosen[states_option].value_or(0);
    if (words_of_states[states] == "metastable")
        result.states = words_of_phases[chosen[phase_option].value_or(0)] == "liquid"
                            ? allowed_states::metastable_liquid
                            : allowed_states::metastable_vapor;
    else if (words_of_states[states] == "surface")
        result.states = allowed_states::surface;
    result.translated_volume = chosen[volume_option].value_or(0) == 1;
    result.reference = static_cast<zero_point>(chosen[reference_option].value_or(0));
    return result;
}

int read(const char *text, bool by_name, options &result) {
    const std::string_view whole = text != nullptr ? text : "";
    std::string_view rest = without_blanks(whole);
    while (!rest.empty()) {
        const std::size_t end = rest.find(';');
        if (const int status = take(whole, without_blanks(rest.substr(0, end)), result); status != OSTREL_OK)
            return status;
        if (end != std::string_view::npos && end + 1 == rest.size())
            return take(whole, {}, result);
        rest.remove_prefix(std::min(end, rest.size() - 1) + 1);
    }
    const bool metastable = words_of_states[result.chosen[states_option].value_or(0)] == "metastable";
    if (metastable && !result.chosen[phase_option])
        return refuse(whole, {"states=metastable needs phase=liquid or phase=vapor"});
    if (!metastable && result.chosen[phase_option])
        return refuse(whole, {"phase goes with states=metastable only"});
    if (!by_name && result.chosen[folder_option])
        return refuse(whole, {"folder goes with opening by name only"});
    return OSTREL_OK;
}

std::string canonical(const options &from, std::int32_t gas_type) {
    std::string text;
    for (std::size_t i = 0; i < option_count; ++i) {
        std::size_t word = from.chosen[i].value_or(0);
        if (i == model_option) {
            word = static_cast<std::size_t>(gas_type - 1);
        } else if (i == folder_option || (i == phase_option && !from.chosen[i])) {
            continue;
        }
        text += text.empty() ? "" : "; ";
        text += all_options[i].key;
        text += '=';
        text += all_options[i].values[word];
    }
    return text;
}

} // namespace fluid
