// SPDX-License-Identifier: MIT
#include "Studies/units.h"

#include "ostrel.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <vector>

namespace studies {
namespace {

using ostrel::names::without_blanks;

struct quantity {
    std::string_view si;
    std::string_view name;
    std::string_view engineering; ///< the unit of unit_system::engineering
};
constexpr quantity quantities[] = {
    {"K", "temperature", "degC"},
    {"Pa", "pressure", "bar"},
    {"m3/kg", "specific volume", "m3/kg"},
    {"kg/m3", "density", "kg/m3"},
    {"J/kg", "specific energy", "kJ/kg"},
    {"J/(kg K)", "specific entropy or heat capacity", "kJ/(kg K)"},
    {"1", "number without a unit", "1"},
    {"m/s", "speed", "m/s"},
    {"Pa s", "viscosity", "mPa s"},
    {"W/(m K)", "thermal conductivity", "mW/(m K)"},
    {"kg/s", "mass flow", "kg/s"},
    {"W", "power", "kW"},
    {"m2", "area", "m2"},
    {"m", "length", "m"},
    {"m3/s", "volume flow", "m3/s"},
    {"kg/(m2 s)", "mass flux", "kg/(m2 s)"},
    {"K/Pa", "Joule-Thomson coefficient", "K/bar"},
    {"1/Pa", "compressibility", "1/bar"},
};

constexpr double atm = 101325.0;
constexpr double psi = 6894.757293168361;
constexpr unit table[] = {
    {"K", "K", 1},
    {"degC", "K", 1, 273.15},
    {"°C", "K", 1, 273.15},
    {"degF", "K", 5.0 / 9.0, 273.15 - 32.0 * 5.0 / 9.0},
    {"Pa", "Pa", 1},
    {"hPa", "Pa", 1e2},
    {"kPa", "Pa", 1e3},
    {"MPa", "Pa", 1e6},
    {"mbar", "Pa", 1e2},
    {"bar", "Pa", 1e5},
    {"atm", "Pa", atm},
    {"psi", "Pa", psi},
    {"torr", "Pa", atm / 760.0},
    {"at", "Pa", 98066.5},
    {"m3/kg", "m3/kg", 1},
    {"m³/kg", "m3/kg", 1},
    {"cm3/g", "m3/kg", 1e-3},
    {"l/kg", "m3/kg", 1e-3},
    {"kg/m3", "kg/m3", 1},
    {"kg/m³", "kg/m3", 1},
    {"g/cm3", "kg/m3", 1e3},
    {"kg/l", "kg/m3", 1e3},
    {"J/kg", "J/kg", 1},
    {"kJ/kg", "J/kg", 1e3},
    {"MJ/kg", "J/kg", 1e6},
    {"kcal/kg", "J/kg", 4186.8},
    {"J/(kg K)", "J/(kg K)", 1},
    {"kJ/(kg K)", "J/(kg K)", 1e3},
    {"J/kg/K", "J/(kg K)", 1},
    {"kJ/(kg*K)", "J/(kg K)", 1e3},
    {"kJ/kg/K", "J/(kg K)", 1e3},
    {"1", "1", 1},
    {"%", "1", 1e-2},
    {"m/s", "m/s", 1},
    {"km/s", "m/s", 1e3},
    {"Pa s", "Pa s", 1},
    {"mPa s", "Pa s", 1e-3},
    {"uPa s", "Pa s", 1e-6},
    {"W/(m K)", "W/(m K)", 1},
    {"mW/(m K)", "W/(m K)", 1e-3},
    {"kg/s", "kg/s", 1},
    {"g/s", "kg/s", 1e-3},
    {"kg/h", "kg/s", 1.0 / 3600.0},
    {"t/h", "kg/s", 1.0 / 3.6},
    {"W", "W", 1},
    {"kW", "W", 1e3},
    {"MW", "W", 1e6},
    {"m2", "m2", 1},
    {"cm2", "m2", 1e-4},
    {"mm2", "m2", 1e-6},
    {"m", "m", 1},
    {"cm", "m", 1e-2},
    {"mm", "m", 1e-3},
    {"m3/s", "m3/s", 1},
    {"kg/(m2 s)", "kg/(m2 s)", 1},
    {"K/Pa", "K/Pa", 1},
    {"K/bar", "K/Pa", 1e-5},
    {"1/Pa", "1/Pa", 1},
    {"1/bar", "1/Pa", 1e-5},
};

const unit *unit_named(std::string_view name) {
    const auto *const found =
        std::find_if(std::begin(table), std::end(table), [&](const unit &one) { return one.name == name; });
    return found != std::end(table) ? found : nullptr;
}

/// "K, degC or degF"
std::string units_of(std::string_view si) {
    std::string_view names[std::size(table)];
    std::size_t count = 0;
    for (const unit &one : table)
        if (one.si == si)
            names[count++] = one.name;
    std::string result = count > 0 ? "" : std::string(si);
    for (std::size_t i = 0; i < count; ++i)
        result += std::string(i == 0 ? "" : i + 1 < count ? ", " : " or ") + std::string(names[i]);
    return result;
}

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text)
        result += (c >= '\0' && c < ' ') || c == '\x7F' ? '?' : c;
    return result + '"';
}

/// Takes the number off the front of a text, and leaves what stands behind it.
double take_number(std::string_view written, std::string_view &rest) {
    rest = written;
    if (rest.size() > 1 && rest.front() == '+' && rest[1] != '-')
        rest.remove_prefix(1);
    double value = 0;
    const auto [end, status] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
    if (status == std::errc::result_out_of_range)
        throw wrong_value(quoted(written) + " is outside the range of numbers");
    if (status != std::errc{})
        throw wrong_value(quoted(written) + " is not a number, with or without a unit");
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    rest = without_blanks(rest);
    return value;
}

double parse(std::string_view text, std::string_view si, bool difference) {
    const std::string_view written = without_blanks(text);
    std::string_view name;
    const double value = take_number(written, name);
    if (name.empty())
        return value;
    const unit *const found = unit_named(name);
    const std::string right = si == "1" ? "a number without a unit, or with %, is wanted"
                                        : "the units of a " + std::string(quantity_of(si)) + " are " + units_of(si);
    if (found == nullptr)
        throw wrong_value(quoted(written) + ": there is no unit " + quoted(name) + "; " + right);
    if (found->si != si)
        throw wrong_value(quoted(written) + " is a " + std::string(quantity_of(found->si)) + "; " + right);
    return value * found->factor + (difference ? 0.0 : found->offset);
}

} // namespace

std::span<const unit> units() {
    return table;
}

unit shown_unit(std::string_view si, unit_system system) {
    if (system == unit_system::engineering)
        for (const quantity &one : quantities)
            if (one.si == si)
                return *unit_named(one.engineering);
    return {si, si, 1};
}

double in_unit(double value, const unit &in) {
    return (value - in.offset) / in.factor;
}

double parse_value(std::string_view text, std::string_view si) {
    return parse(text, si, false);
}
double parse_difference(std::string_view text, std::string_view si) {
    return parse(text, si, true);
}

double range::at(std::size_t i) const {
    if (i == 0 || count < 2)
        return first;
    if (i + 1 >= count)
        return last;
    const double part = static_cast<double>(i) / static_cast<double>(count - 1);
    return logarithmic ? first * std::pow(last / first, part) : first + (last - first) * part;
}

range parse_range(std::string_view text, std::string_view si, bool difference) {
    constexpr std::size_t most_values = 1'000'000'000;
    std::vector<std::string_view> parts;
    std::string_view rest = text;
    for (bool more = true; more;) {
        more = rest.find(':') != std::string_view::npos;
        parts.push_back(ostrel::names::next_part(rest, ':'));
    }
    if (parts.size() == 1)
        return {parse(text, si, difference), parse(text, si, difference)};
    if (parts.size() < 3 || parts.size() > 4 || (parts.size() == 4 && parts[3] != "log"))
        throw wrong_value(quoted(text) + " is not a range; write VALUE, FIRST:LAST:COUNT or FIRST:LAST:COUNT:log");
    range result{parse(parts[0], si, difference), parse(parts[1], si, difference)};
    std::string_view units[2];
    take_number(parts[0], units[0]);
    take_number(parts[1], units[1]);
    if (units[0].empty() != units[1].empty())
        throw wrong_value(quoted(text) + ": one end has a unit and the other has none; write the unit at both");
    const auto [end, status] = std::from_chars(parts[2].data(), parts[2].data() + parts[2].size(), result.count);
    if (status != std::errc{} || end != parts[2].data() + parts[2].size() || result.count < 1 ||
        result.count > most_values)
        throw wrong_value(quoted(text) + ": " + quoted(parts[2]) + " is not a number of values; it must be from 1 to " +
                          std::to_string(most_values));
    result.logarithmic = parts.size() == 4;
    if (result.logarithmic && !(result.first > 0 && result.last > 0))
        throw wrong_value(quoted(text) + ": both ends of a logarithmic range must be above 0");
    return result;
}

std::string_view quantity_of(std::string_view si) {
    for (const quantity &one : quantities)
        if (one.si == si)
            return one.name;
    return "value";
}

} // namespace studies
