// SPDX-License-Identifier: MIT
// Values with units: "1.2bar", "126.85 degC", "350 kJ/kg". Inside programs everything is in SI units; this is for the
// places where people write and read numbers.
#pragma once

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace studies {

/// A unit that people write. The value in SI units is value * factor + offset; differences have no offset.
struct unit {
    std::string_view name;
    std::string_view si; ///< the SI unit of the same quantity, as ostrel_list writes it
    double factor;       ///< [SI unit/unit]
    double offset = 0;   ///< [SI unit]
};

/// All units. The first one of each SI unit is that SI unit itself.
std::span<const unit> units();

/// A system of units for output: SI, or bar, degC, kJ/kg and other units that engineers write.
enum class unit_system { si, engineering };

/// The unit in which the system shows values of this SI unit. SI units that the table does not have, such as those of
/// derivatives, stay.
unit shown_unit(std::string_view si, unit_system system);

/// A value [SI] in this unit.
double in_unit(double value, const unit &in);

/// A text that is no value of the wanted quantity. The message says what it is, and what would be right.
class wrong_value : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The value [SI] of a number, with or without blanks and a unit behind it. Without a unit the number is in the SI
/// unit. `si` is the SI unit of the wanted quantity. Throws wrong_value.
double parse_value(std::string_view text, std::string_view si);

/// Values from a first to a last one, in equal steps or in equal ratios.
struct range {
    double first = 0;      ///< [SI]
    double last = 0;       ///< [SI]
    std::size_t count = 1; ///< at least 1
    bool logarithmic = false;

    /// The value [SI] at place i, from 0; the first and the last one exactly.
    double at(std::size_t i) const;
};

/// "VALUE", "FIRST:LAST:COUNT" or "FIRST:LAST:COUNT:log". Both ends have a unit or none has one. Throws wrong_value.
/// With `difference` the values are differences, for which 10 degC are 10 K.
range parse_range(std::string_view text, std::string_view si, bool difference = false);

/// A difference, for which 10 degC are 10 K.
double parse_difference(std::string_view text, std::string_view si);

/// The name of the quantity that has this SI unit: "temperature"; "value" if the table does not have it.
std::string_view quantity_of(std::string_view si);

} // namespace studies
