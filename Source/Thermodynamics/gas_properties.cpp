// SPDX-License-Identifier: MIT
#include "Thermodynamics/gas_properties.h"

#include <cmath>
#include <span>

namespace gas_properties {

gas_constants gas;

namespace {

enum class given { always, with_critical_data, with_reference_state };

/// One record with one constant: its name and file unit, when it is there, and how the file's number
/// becomes the stored one when it is read and the other way round when it is written.
struct constant {
    std::string_view name;
    std::string_view unit;
    given when;
    double gas_constants::*value;
    double read_factor = 1.0;
    double write_divisor = 1.0;
};

constexpr constant reference_and_critical[] = {
    {"T_ref", "K", given::with_reference_state, &gas_constants::T_ref},
    {"P_ref", "atm", given::with_reference_state, &gas_constants::P_ref, pascal_per_atm},
    {"v_ref", "m3/kg", given::with_reference_state, &gas_constants::v_ref},
    {"Tc", "K", given::with_critical_data, &gas_constants::Tc},
    {"Pc", "atm", given::with_critical_data, &gas_constants::Pc, pascal_per_atm, pascal_per_atm},
    {"Zc", "-", given::with_critical_data, &gas_constants::Zc},
    {"Tb", "K", given::with_critical_data, &gas_constants::Tb},
};
constexpr constant transport[] = {
    {"mur", "-", given::always, &gas_constants::mur},
    {"kh", "-", given::always, &gas_constants::kh},
};

bool applies(const constant &entry, bool vapor) {
    return entry.when == given::always || (entry.when == given::with_critical_data) == vapor;
}

bool read(records::record_reader &in, gas_constants &fluid, std::span<const constant> constants) {
    for (const constant &entry : constants) {
        if (!applies(entry, fluid.vapor))
            continue;
        double &value = fluid.*entry.value;
        if (!in.read({{entry.name, value}}))
            return false;
        value *= entry.read_factor;
    }
    return true;
}

void write(records::record_writer &out, const gas_constants &fluid, std::span<const constant> constants) {
    for (const constant &entry : constants)
        if (applies(entry, fluid.vapor))
            out.record({fluid.*entry.value / entry.write_divisor});
}

void derive_from_critical_data(gas_constants &fluid) {
    const double theta = fluid.Tb / fluid.Tc;
    fluid.omega = ((std::log10(fluid.Pc / pascal_per_atm) * theta / (1 - theta)) / 7.0) * 3.0 - 1.0;
    fluid.T_ref = fluid.Tc * fluid.Zc;
    fluid.P_ref = fluid.Pc;
    fluid.Z_ref = fluid.Zc;
}

void read(records::record_reader &in, gas_constants &fluid) {
    in.skip("a heading");
    in.read_name("name", fluid.name);
    in.read_name("label", fluid.label);
    in.skip("a heading");
    if (!in.read({{"MM", fluid.MM}}))
        return;
    fluid.R = universal_gas_constant / fluid.MM;
    if (!in.read({{"vapor", fluid.vapor}}) || !read(in, fluid, reference_and_critical))
        return;
    if (fluid.vapor)
        derive_from_critical_data(fluid);
    else
        fluid.Z_ref = fluid.P_ref * fluid.v_ref / (fluid.R * fluid.T_ref);
    read(in, fluid, transport);
}

} // namespace

void read_param_gas_properties(records::file_reader &unit) {
    read(unit, gas);
}

void read_param_gas_propertiesdb(records::line_reader &lines) {
    read(lines, gas);
}

void write_param_gas_properties(records::record_writer &unit) {
    unit.record({});
    unit.record({gas.name.padded()});
    unit.record({gas.label.padded()});
    unit.record({});
    unit.record({gas.MM});
    gas.R = universal_gas_constant / gas.MM;
    unit.record({gas.vapor});
    write(unit, gas, reference_and_critical);
    write(unit, gas, transport);
}

void set_critical_reference(gas_constants &fluid, double vc, double Zc) {
    fluid.vc = vc;
    fluid.v_ref = vc;
    fluid.Zc = Zc;
    fluid.Z_ref = Zc;
    fluid.T_ref = Zc * fluid.Tc;
    fluid.c_ref = std::sqrt(fluid.Pc * vc);
}

void complete_ideal_reference(gas_constants &fluid, double Z) {
    if (fluid.vapor) {
        set_critical_reference(fluid, Z * fluid.R * fluid.Tc / fluid.Pc, Z);
        return;
    }
    fluid.v_ref = Z * fluid.R * fluid.T_ref / fluid.P_ref;
    fluid.Z_ref = Z;
    fluid.c_ref = std::sqrt(fluid.P_ref * fluid.v_ref);
}

void report_not_a_vapor(records::error_text &message, const gas_constants &fluid, std::string_view sentence,
                        std::string_view location) {
    message.report({"The gas ", fluid.name.padded(), " is not a vapor: ", sentence, location});
}

} // namespace gas_properties
