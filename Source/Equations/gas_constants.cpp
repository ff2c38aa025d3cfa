// SPDX-License-Identifier: MIT
#include "Equations/gas_constants.h"

#include <span>

namespace equations {

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

/// Reads the records up to `vapor`.
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

} // namespace

void read(records::record_reader &in, gas_constants &fluid) {
    if (!read_head(in, fluid) || !read(in, fluid, reference_and_critical))
        return;
    if (fluid.vapor)
        derive_from_critical_data(fluid);
    else
        fluid.Z_ref = fluid.P_ref * fluid.v_ref / (fluid.R * fluid.T_ref);
    read(in, fluid, of_transport);
}

std::int64_t record_of_critical_pressure(records::record_reader &in) {
    gas_constants scratch;
    if (!read_head(in, scratch))
        return 0;
    for (const constant &entry : reference_and_critical) {
        if (!applies(entry, scratch.vapor))
            continue;
        if (!read(in, scratch, entry))
            return 0;
        if (entry.value == &gas_constants::Pc)
            return in.record_number();
    }
    return 0;
}

void write(records::record_writer &out, gas_constants &fluid) {
    out.record({});
    out.record({fluid.name.padded()});
    out.record({fluid.label.padded()});
    out.record({});
    out.record({fluid.MM});
    fluid.R = universal_gas_constant / fluid.MM;
    out.record({fluid.vapor});
    write(out, fluid, reference_and_critical);
    write(out, fluid, of_transport);
}

} // namespace equations
