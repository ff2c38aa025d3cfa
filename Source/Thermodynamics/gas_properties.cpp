// SPDX-License-Identifier: MIT
#include "Thermodynamics/gas_properties.h"

#include <cmath>
#include <span>

namespace gas_properties {

gas_constants gas;

namespace {

bool read(records::record_reader &in, gas_constants &fluid, const constant &entry) {
    double &value = fluid.*entry.value;
    if (!in.read({{entry.name, value}}))
        return false;
    value *= entry.read_factor;
    return true;
}

bool read(records::record_reader &in, gas_constants &fluid, std::span<const constant> constants) {
    for (const constant &entry : constants)
        if (applies(entry, fluid.vapor) && !read(in, fluid, entry))
            return false;
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

/// The records up to `vapor`.
bool read_head(records::record_reader &in, gas_constants &fluid) {
    in.skip("a heading");
    in.read_name("name", fluid.name);
    in.read_name("label", fluid.label);
    in.skip("a heading");
    if (!read(in, fluid, molar_mass))
        return false;
    fluid.R = universal_gas_constant / fluid.MM;
    return in.read({{"vapor", fluid.vapor}});
}

void read(records::record_reader &in, gas_constants &fluid) {
    if (!read_head(in, fluid) || !read(in, fluid, reference_and_critical))
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

std::int64_t record_of_critical_pressure(records::file_reader &unit) {
    gas_constants scratch;
    if (!read_head(unit, scratch))
        return 0;
    for (const constant &entry : reference_and_critical) {
        if (!applies(entry, scratch.vapor))
            continue;
        if (!read(unit, scratch, entry))
            return 0;
        if (entry.value == &gas_constants::Pc)
            return unit.record_number();
    }
    return 0;
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
