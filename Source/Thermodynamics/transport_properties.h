// SPDX-License-Identifier: MIT
// Module transport_properties: the transport section of a parameter file.
//
// Given      viscosity model 1 constant, 2 Chung dilute gas, 3 Chung dense gas, 4 corresponding states,
//            5 Sutherland's law, 6 linear in T; conductivity model 1 constant, 2 Chung dilute gas,
//            3 Chung dense gas, 4 constant Prandtl number; each with the parameters it has
// Returned   the parameters; viscosity and conductivity themselves are not computed yet
#pragma once

#include "Records/record_reader.h"
#include "Records/record_writer.h"
#include "visibility.h"

#include <cstdint>

namespace transport_properties OSTREL_VISIBLE {

struct parameters {
    std::int32_t viscosity_model = 0;
    std::int32_t thermal_cond_model = 0;
    double mu_const = 0; ///< constant viscosity [Pa s]
    double kk_const = 0; ///< constant thermal conductivity [W/(m K)]
    double mu_ref_s = 0; ///< Sutherland: reference viscosity [Pa s]
    double T_ref_s = 0;  ///< Sutherland: reference temperature [K]
    double Tchar_s = 0;  ///< Sutherland: characteristic temperature [K]
    double mu_ref_l = 0; ///< linear law: reference viscosity [Pa s]
    double T_ref_l = 0;  ///< linear law: reference temperature [K]
    double Pr = 0;       ///< Prandtl number [-]
};

extern parameters active;

void read_param_transport_properties(records::file_reader &unit);
void read_param_transport_propertiesdb(records::line_reader &lines);
void write_param_transport_propert(records::record_writer &unit);

} // namespace transport_properties
