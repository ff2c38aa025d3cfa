// SPDX-License-Identifier: MIT
// The options with which a fluid is opened: "key=value; key=value".
//
// Blanks around keys and values do not count. A key that is unknown or repeated, and a value that is unknown, is
// refused with a message that has the list of what there is.
#pragma once

#include "Equations/models.h"
#include "Fluid/core.h"
#include "Requests/described.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace fluid {

/// The words of the options' values. Where an enumeration of core.h stands behind them, they have its order.
inline constexpr std::string_view words_of_states[] = {"stable", "metastable", "surface"};
inline constexpr std::string_view words_of_phases[] = {"liquid", "vapor"};
inline constexpr std::string_view words_of_volumes[] = {"equation", "translated"};
inline constexpr std::string_view words_of_references[] = {"critical", "nbp", "iir", "ashrae"};

struct option {
    std::string_view key;
    std::string_view meaning;
    std::span<const std::string_view> values; ///< none where any text is a value
};
/// The options, in the order of the canonical text.
enum option_key : std::size_t {
    model_option,
    states_option,
    phase_option,
    volume_option,
    reference_option,
    folder_option
};
inline constexpr option all_options[] = {
    {"model", "equation of state; without it that of the file", equations::words_of_models},
    {"states",
     "equilibrium states (stable, which is the standard), single phases up to the spinodal, or the equation as it is",
     words_of_states},
    {"phase", "the phase of metastable states, which need it", words_of_phases},
    {"volume", "specific volume of the equation (the standard), or translated to Rackett's liquid at 0.7 t_crit",
     words_of_volumes},
    {"reference", "state at which energy and entropy are zero; the critical point is the standard",
     words_of_references},
    {"folder", "fluid folder, for opening by name, in place of OSTREL_FLUIDS or the installed one", {}},
};
inline constexpr std::size_t option_count = std::size(all_options);

struct options {
    /// The value of each option as its place among the words; none if it is not given.
    std::array<std::optional<std::size_t>, option_count> chosen{};
    std::string folder{};

    /// gas_type of the model that is wanted, 0 for that of the file.
    std::int32_t model() const {
        return chosen[model_option] ? static_cast<std::int32_t>(*chosen[model_option]) + 1 : gas_types::none;
    }
    settings wanted() const;
};

/// Reads the options; a null text has none. `by_name` tells whether the fluid is looked for in a folder. Returns a
/// status whose message stands.
int read(const char *text, bool by_name, options &result);

/// The text with all options but the folder, also those that were not given. It opens the same fluid again.
std::string canonical(const options &from, std::int32_t gas_type);

} // namespace fluid
