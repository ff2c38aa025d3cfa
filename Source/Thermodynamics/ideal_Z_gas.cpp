// SPDX-License-Identifier: MIT
#include "Thermodynamics/ideal_Z_gas.h"

namespace ideal_Z_gas {

parameters active;

void initialise(parameters &p, gas_properties::gas_constants &fluid, records::error_text &) {
    complete_ideal_reference(fluid, p.Z_const);
    p.Rgas = 1.0;
}

void read_param_IZG(records::record_reader &unit) {
    unit.read({{"Z_const", active.Z_const}});
}

void read_param_IZG_db(records::line_reader &lines) {
    read_param_IZG(lines);
}

void write_param_IZG(records::record_writer &unit) {
    unit.record({"Compressibility of ideal Z gas: ", active.Z_const});
}

OSTREL_DEFINE_MODEL(IZG)

} // namespace ideal_Z_gas
