// SPDX-License-Identifier: MIT
#include "CommandLine/warnings.h"

#include "CommandLine/description.h"
#include "CommandLine/notes.h"
#include "CommandLine/record_warnings.h"
#include "CommandLine/report.h"
#include "Ostrel_Main.h"
#include "Thermodynamics/model_choice.h"
#include "Thermodynamics/transport_properties.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <limits>
#include <span>
#include <sstream>

namespace command {
namespace {

using equations::constant;
using gas_properties::gas;
using gas_properties::gas_constants;
using texts = std::vector<std::string>;

void append(texts &found, const texts &more) {
    found.insert(found.end(), more.begin(), more.end());
}

/// Bounds for a constant, in the unit of the file; no known fluid is outside them. A file is refused if a constant that
/// must be positive is not.
struct bounds {
    double gas_constants::*value;
    double low;
    double high;
    bool positive = false;
};
constexpr bounds plausible[] = {
    {&gas_constants::MM, 1, 5000, true},  {&gas_constants::T_ref, 1, 10000}, {&gas_constants::P_ref, 1e-6, 10000},
    {&gas_constants::v_ref, 1e-5, 1e6},   {&gas_constants::Tc, 2, 10000},    {&gas_constants::Pc, 0.5, 5000},
    {&gas_constants::Zc, 0.1, 0.5, true}, {&gas_constants::Tb, 1, 10000},    {&gas_constants::mur, 0, 5},
    {&gas_constants::kh, 0, 1},
};

/// The constants that are outside their bounds: the refused ones, or the others.
texts implausible(const gas_constants &fluid, std::span<const constant> constants, bool refused) {
    texts found;
    for (const constant &entry : constants) {
        if (!equations::applies(entry, fluid.vapor))
            continue;
        const auto *const range = std::find_if(std::begin(plausible), std::end(plausible),
                                               [&](const bounds &row) { return row.value == entry.value; });
        const double value = fluid.*entry.value / entry.read_factor;
        if (range == std::end(plausible) || (value >= range->low && value <= range->high) ||
            (range->positive && !(value > 0)) != refused)
            continue;
        const std::string_view unit = entry.unit == "-" ? std::string_view() : entry.unit;
        std::ostringstream text;
        text << entry.name << " = " << number(value) << (unit.empty() ? "" : " ") << unit
             << (refused ? " is not above 0; " : ": ") << number(range->low) << " to " << number(range->high)
             << " would be plausible" << (entry.unit == "atm" && value > range->high ? "; pressures are in atm" : "");
        found.push_back(text.str());
    }
    return found;
}

texts implausible(const gas_constants &fluid, bool refused) {
    texts found;
    for (const std::span<const constant> group : {std::span<const constant>(&equations::molar_mass, 1),
                                                  std::span<const constant>(equations::reference_and_critical),
                                                  std::span<const constant>(equations::of_transport)})
        append(found, implausible(fluid, group, refused));
    return found;
}

void check_model(texts &found, const parameter_file &file) {
    const gas_constants &fluid = file.constants;
    if (fluid.vapor && fluid.Tb >= fluid.Tc)
        found.push_back("Tb is not below Tc: the acentric factor that follows from them, " + number(fluid.omega) +
                        ", has no meaning");
    else if (fluid.vapor && !(fluid.omega >= -0.45 && fluid.omega <= 2))
        found.push_back("the acentric factor that follows from Tb, Tc and Pc is " + number(fluid.omega) +
                        ": look at Tb, Tc and Pc, which is in atm");
    if (thermodynamics::gas_type == gas_types::clausius_II && fluid.vapor && fluid.Zc > 0 && fluid.Zc < 0.25)
        found.push_back("Zc < 0.25 makes the co-volume of Clausius II negative: right in the gas only");
    if (thermodynamics::gas_type == gas_types::ideal_Z && !fluid.vapor)
        found.push_back("an ideal gas with constant Z wants critical data: pressures come out Z times and heat "
                        "capacities 1/Z times what they should be");
    if (thermodynamics::gas_type == gas_types::ideal_Z && !(ideal_Z_gas::active.Z_const > 0))
        found.push_back("Z_const is not positive");
}

/// Warns of exponents for which an integral of the power divides by zero.
void check_exponents(texts &found, std::string_view name, std::span<const double> exponents) {
    if (std::find(exponents.begin(), exponents.end(), -1.0) != exponents.end())
        found.push_back(std::string(name) + " = -1: energies divide by zero");
    if (std::find(exponents.begin(), exponents.end(), 0.0) != exponents.end())
        found.push_back(std::string(name) + " = 0: entropies divide by zero; the constant term is cv_0");
}

void check_heat_capacity(texts &found, const ideal_specific_heat::heat_capacity &h) {
    switch (h.function_type) {
    case ideal_gas_heat::constant:
        break;
    case ideal_gas_heat::power_law:
        check_exponents(found, "np", {&h.np, 1});
        break;
    case ideal_gas_heat::polynomial:
        check_exponents(found, "n_i", h.n_i);
        break;
    case ideal_gas_heat::piecewise:
        for (std::size_t k = 0; k < h.cv_0_k.size(); ++k)
            check_exponents(found, "n_ik", {h.n_ik.data() + k * h.terms, interval_terms(h, k).count});
        if (!std::is_sorted(h.T_k.begin(), h.T_k.end()))
            found.emplace_back("the bounds T_k do not ascend: of intervals that overlap the last one holds");
        break;
    case ideal_gas_heat::einstein:
        if (std::any_of(h.Tv.begin(), h.Tv.end(), [](double Tv) { return !(Tv > 0); }))
            found.emplace_back("a characteristic temperature Tv is not positive");
        break;
    default:
        found.push_back("function_type " + std::to_string(h.function_type) +
                        " is none of the forms 1 to 5: the heat capacity is 0, and so are the ideal gas's parts of "
                        "h, s and u");
    }
}

/// A number with three digits.
std::string rounded(double value) {
    const double scale = std::pow(10.0, 2 - std::floor(std::log10(std::abs(value))));
    return number(std::round(value * scale) / scale);
}

/// No molecule has a larger cv [R] than one of N atoms with all its vibrations excited, 3 N - 3. No known molecule of
/// hydrogen or of 16 kg/kmol and more has more atoms for its mass than an alkane CnH2n+2 has, (3 (MM - 2)/14 + 2), but
/// for diborane, whose cv is far below.
double largest_heat_capacity(double MM) {
    return 9 * (MM - 2) / 14 + 3;
}

/// Warns of temperatures in K that are read as multiples of T_ref. The heat capacity is initialised.
void check_units_of_temperatures(texts &found, std::string_view name, std::span<const double> temperatures) {
    constexpr double highest = 10000; // The lowest Tv is above 5000 K for no known fluid.
    if (temperatures.empty())
        return;
    const double lowest = *std::min_element(temperatures.begin(), temperatures.end());
    if (lowest > highest)
        found.push_back("the lowest " + std::string(name) + " is " + rounded(lowest) +
                        " K: with coeff_adim = T it is in units of T_ref = " + rounded(gas.T_ref) + " K");
}

/// Warns of coefficients in SI units that are read as multiples of R: cv is then larger than in any molecule at all
/// temperatures. The heat capacity is initialised.
void check_units_of_heat(texts &found, const ideal_specific_heat::heat_capacity &h) {
    if (!h.coeff_adim)
        return;
    if (h.function_type == ideal_gas_heat::einstein)
        check_units_of_temperatures(found, "Tv", h.Tv);
    if (h.function_type == ideal_gas_heat::piecewise)
        check_units_of_temperatures(found, "T_k", std::span(h.T_k).first(h.cv_0_k.size()));
    const double reference = gas.vapor ? gas.Tc : gas.T_ref;
    double lowest = std::numeric_limits<double>::infinity();
    double T = 0;
    for (const double factor : {1.0, 1.25, 1.5}) {
        const double cv = ideal_gas_heat::cv(h, factor * reference) / gas.R;
        if (cv == 0 || cv >= lowest) // It is 0 outside the intervals of form 4.
            continue;
        lowest = cv;
        T = factor * reference;
    }
    const double limit = largest_heat_capacity(gas.MM);
    if (!(std::isfinite(lowest) && lowest > limit))
        return;
    constexpr double joule_per_mole = equations::universal_gas_constant / 1000;
    found.push_back("cv is " + rounded(lowest) + " R at " + number(T) + " K, but no molecule of " + number(gas.MM) +
                    " kg/kmol has more than " + rounded(limit) +
                    " R. coeff_adim = T means that coefficients are in units of R. In which unit they are the file "
                    "does not tell: if in J/(kg K), cv is about " +
                    rounded(lowest / gas.R) +
                    " R, and F is right (with T_k and Tv in K); if in J/(mol K), it is about " +
                    rounded(lowest / joule_per_mole) + " R, and they are to be divided by " + number(joule_per_mole));
}

bool known(std::int32_t code, std::span<const transport::model> models) {
    return std::any_of(models.begin(), models.end(), [&](const auto &model) { return model.code == code; });
}

void check_transport(texts &found, const gas_constants &fluid) {
    using namespace transport;
    const parameters &active = transport_properties::active;
    const std::int32_t viscosity = active.viscosity_model;
    const std::int32_t conductivity = active.thermal_cond_model;
    const bool chung = conductivity == dilute_gas_conductivity || conductivity == dense_gas_conductivity;
    if (!known(viscosity, viscosity_models))
        found.push_back("viscosity_model " + std::to_string(viscosity) + " is unknown: eta is 0/0, not a number");
    if (!known(conductivity, thermal_cond_models))
        found.push_back("thermal_cond_model " + std::to_string(conductivity) +
                        " is unknown: lambda is 0/0, not a number");
    if (conductivity == dense_gas_conductivity && viscosity != dense_gas && viscosity != dilute_gas)
        found.emplace_back("conductivity 3 without viscosity 3: only the part of the dense gas remains of lambda");
    if (conductivity == constant_Prandtl && fluid.vapor)
        found.emplace_back("conductivity 4 on a fluid with critical data: lambda is scaled by cp at the critical "
                           "point, which diverges; it may be 0 or not a number");
    if (!fluid.vapor && viscosity == corresponding_states)
        found.emplace_back("viscosity 4 wants critical data, which this fluid has not: eta has no meaning");
    if (!fluid.vapor && chung && viscosity != dilute_gas && viscosity != dense_gas)
        found.push_back("conductivity " + std::to_string(conductivity) +
                        " wants critical data, which this fluid has not: lambda has no meaning");
}

void check_name(texts &found, const std::string &path) {
    const std::filesystem::path file = std::filesystem::path(path).filename();
    const std::string name = file.stem().string();
    if (file.extension() != ".osd")
        found.push_back("requests find only files named NAME.osd");
    else if (name.size() > ostrel::os_fluid.padded().size())
        found.push_back("the name " + name + " is longer than " + std::to_string(ostrel::os_fluid.padded().size()) +
                        " characters: such a fluid is loaded anew at every request");
    if (name.find('.') != std::string::npos)
        found.push_back("the list of fluids shows only what stands before the first point of a name");
}

/// Warns of a number behind the last record that was read: a count or a code before it may be wrong.
void check_rest(texts &found, const parameter_file &file) {
    std::string_view rest = file.text;
    for (std::int64_t record = 1; !rest.empty(); ++record) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        const std::string_view value = line.substr(std::min(line.find_first_not_of(" \t"), line.size()));
        double ignored = 0;
        if (record <= file.last_record ||
            std::from_chars(value.data(), value.data() + value.size(), ignored).ec != std::errc{})
            continue;
        found.push_back("record " + std::to_string(record) + " starts with a number, \"" +
                        printable(value.substr(0, value.find_first_of(" \t\r"))) +
                        "\", but nothing is read behind record " + std::to_string(file.last_record) +
                        ": is a count or a model's code right?");
        return;
    }
}

/// Makes a request for the fluid in memory. The request has the name that is kept, so that nothing is loaded.
answer ask(std::string_view pair, double input1, double input2, std::string_view output) {
    constexpr std::string_view in_memory = "checked";
    ostrel::os_fluid = records::fixed_text<8>(in_memory);
    return request_property(in_memory, pair, input1, input2, output);
}

/// Tries saturated states well below the critical point, where a saturation table that is wrong shows itself.
void try_saturation(texts &found) {
    if (!gas.vapor || !has_saturated_states())
        return;
    const double t = 0.9 * gas.Tc;
    const answer vapor = ask("tq", t, 1, "v");
    const answer liquid = ask("tq", t, 0, "v");
    for (const answer &got : {vapor, liquid})
        if (!got.text.empty()) {
            found.push_back("no saturated state at 0.9 Tc: " + got.text);
            return;
        }
    if (equal_phases(liquid.value, vapor.value))
        found.push_back("the saturation table has collapsed: pq and tq answer with a liquid like the vapor" +
                        std::string(thermodynamics::gas_type == gas_types::peng_robinson
                                        ? " (with Peng-Robinson's rounded constants it does so for most fluids)"
                                        : ""));
    const answer boiling = ask("pq", equations::pascal_per_atm, 1, "t");
    if (boiling.text.empty() && !(std::abs(boiling.value - gas.Tb) <= 0.05 * gas.Tb))
        found.push_back("the model boils at 1 atm at " + number(boiling.value) + " K, not at Tb = " + number(gas.Tb) +
                        " K");
}

} // namespace

std::vector<std::string> refusals(const parameter_file &file) {
    return implausible(file.constants, true);
}

std::vector<std::string> suspicions(const parameter_file &file) {
    texts found;
    check_name(found, file.path);
    append(found, implausible(file.constants, false));
    append(found, record_warnings(file.text));
    check_model(found, file);
    check_heat_capacity(found, file.heat_capacity);
    if (file.not_initialised.empty() && refusals(file).empty())
        check_units_of_heat(found, ideal_specific_heat::active);
    check_transport(found, file.constants);
    check_rest(found, file);
    return found;
}

std::vector<std::string> trial(std::string &unusable) {
    texts found;
    const double t = gas.vapor ? gas.Tc : gas.T_ref;
    const double v = gas.vapor ? 10 * gas.v_ref : gas.v_ref;
    const std::string state = " at t = " + number(t) + " K, v = " + number(v) + " m3/kg";
    for (const auto &output : ostrel::described_outputs()) {
        const answer got = ask("tv", t, v, output.text.name);
        if (got.text.empty() && std::isfinite(got.value))
            continue;
        const std::string what = std::string(output.text.name) + " is " +
                                 (got.text.empty() ? number(got.value) : "not served (" + got.text + ")") + state;
        if (output.text.name == "eta" || output.text.name == "lambda")
            found.push_back(what);
        else if (unusable.empty())
            unusable = what;
    }
    if (unusable.empty())
        try_saturation(found);
    return found;
}

} // namespace command
