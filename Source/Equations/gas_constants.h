// SPDX-License-Identifier: MIT
// The constants of a fluid: the first section of its parameter file, and the reference point that a model completes.
//
// Computes   R = 8314/MM, the reference values of a fluid, and its acentric factor
// Equation   omega = (3/7) log10(Pc/1 atm) theta/(1 - theta) - 1, theta = Tb/Tc
// Given      the first section of a parameter file: the names, the molar mass, the critical data of a "vapor" or the
//            reference state of another fluid, and two constants of the transport models
// Valid      Tb < Tc; for Tb >= Tc omega is meaningless or infinite, without a message
// Reference  W. C. Edmister, Petroleum Refiner 37(4) (1958) 173
#pragma once

#include "Records/error_text.h"
#include "Records/record_reader.h"
#include "Records/record_writer.h"
#include "visibility.h"

#include <cmath>
#include <cstdint>
#include <string_view>

namespace equations {

/// Parameter files give pressures in atm.
inline constexpr double pascal_per_atm = 101325.0;
/// The universal gas constant [J/(kmol K)] for which all parameter sets were made.
inline constexpr double universal_gas_constant = 8314.0;

struct gas_constants {
    records::fixed_text<32> name;
    records::fixed_text<32> label;
    double R = 0;       ///< specific gas constant [J/(kg K)]
    double MM = 0;      ///< molar mass [kg/kmol]
    double e_0 = 0;     ///< energy offset, e = 0 at the reference point [P_ref v_ref]
    double s_0 = 0;     ///< entropy offset, s = 0 at the reference point [R]
    double cv_ref = 0;  ///< ideal-gas cv at the reference point [R]
    double P_ref = 0;   ///< reference pressure [Pa]
    double T_ref = 0;   ///< reference temperature [K]
    double v_ref = 0;   ///< reference specific volume [m3/kg]
    double Z_ref = 0;   ///< P_ref v_ref/(R T_ref) [-]
    double mu_ref = 0;  ///< reference viscosity [Pa s]
    double kk_ref = 0;  ///< reference thermal conductivity [W/(m K)]
    double c_ref = 0;   ///< reference speed, sqrt(P_ref v_ref) [m/s]
    double cv0_ref = 0; ///< ideal-gas cv at Tc, without critical data at T_ref [J/(kg K)]
    double cp0_ref = 0; ///< cv0_ref + R [J/(kg K)]
    bool vapor = false; ///< whether critical data are known
    double Pc = 0;      ///< critical pressure [Pa]
    double Tc = 0;      ///< critical temperature [K]
    double vc = 0;      ///< critical specific volume, Zc R Tc/Pc [m3/kg]
    double Zc = 0;      ///< critical compressibility factor [-]
    double Tb = 0;      ///< normal boiling temperature [K]
    double omega = 0;   ///< acentric factor [-]
    double mur = 0;     ///< reduced dipole moment [-]
    double kh = 0;      ///< association factor [-]
};

/// For which fluids the section has a record of the constant.
enum class given { always, with_critical_data, with_reference_state };

/// A record with one constant: its name, its unit in the file, its meaning, and the fluids that have it. The number in
/// the file times read_factor is the stored value; the stored value divided by write_divisor is written.
struct constant {
    std::string_view name;
    std::string_view unit;
    std::string_view meaning;
    given when;
    double gas_constants::*value;
    double read_factor = 1.0;
    double write_divisor = 1.0;
};

/// The constants in the order of their records. The record `vapor` follows the first of them.
inline constexpr constant molar_mass = {"MM", "kg/kmol", "molar mass", given::always, &gas_constants::MM};
inline constexpr constant reference_and_critical[] = {
    {"T_ref", "K", "reference temperature", given::with_reference_state, &gas_constants::T_ref},
    {"P_ref", "atm", "reference pressure", given::with_reference_state, &gas_constants::P_ref, pascal_per_atm},
    {"v_ref", "m3/kg", "reference specific volume", given::with_reference_state, &gas_constants::v_ref},
    {"Tc", "K", "critical temperature", given::with_critical_data, &gas_constants::Tc},
    {"Pc", "atm", "critical pressure", given::with_critical_data, &gas_constants::Pc, pascal_per_atm, pascal_per_atm},
    {"Zc", "-", "critical compressibility factor", given::with_critical_data, &gas_constants::Zc},
    {"Tb", "K", "normal boiling temperature", given::with_critical_data, &gas_constants::Tb},
};
inline constexpr constant of_transport[] = {
    {"mur", "-", "reduced dipole moment", given::always, &gas_constants::mur},
    {"kh", "-", "association factor", given::always, &gas_constants::kh},
};

/// Whether the section has the constant; `vapor` says whether the fluid has critical data.
constexpr bool applies(const constant &entry, bool vapor) {
    return entry.when == given::always || (entry.when == given::with_critical_data) == vapor;
}

/// Reads the section.
void read(records::record_reader &in, gas_constants &fluid);
/// Writes the section, and sets R anew from the molar mass. P_ref of a fluid without critical data is written in Pa,
/// although it is read in atm.
void write(records::record_writer &out, gas_constants &fluid);
/// The number of the record with the critical pressure; 0 if there is none or if it cannot be read.
OSTREL_VISIBLE std::int64_t record_of_critical_pressure(records::record_reader &in);

/// Makes the critical point, with the volume vc [m3/kg] and the compressibility Zc [-], the fluid's reference point.
inline void set_critical_reference(gas_constants &fluid, double vc, double Zc) {
    fluid.vc = vc;
    fluid.v_ref = vc;
    fluid.Zc = Zc;
    fluid.Z_ref = Zc;
    fluid.T_ref = Zc * fluid.Tc;
    fluid.c_ref = std::sqrt(fluid.Pc * vc);
}

/// Completes the reference point, with or without critical data, of an ideal gas with the compressibility Z [-].
inline void complete_ideal_reference(gas_constants &fluid, double Z) {
    if (fluid.vapor) {
        set_critical_reference(fluid, Z * fluid.R * fluid.Tc / fluid.Pc, Z);
        return;
    }
    fluid.v_ref = Z * fluid.R * fluid.T_ref / fluid.P_ref;
    fluid.Z_ref = Z;
    fluid.c_ref = std::sqrt(fluid.P_ref * fluid.v_ref);
}

/// Reports that a model needs critical data. The message ends with the model's sentence and the name of the routine.
inline void report_not_a_vapor(records::error_text &message, const gas_constants &fluid, std::string_view sentence,
                               std::string_view location) {
    message.report({"The gas ", fluid.name.padded(), " is not a vapor: ", sentence, location});
}

/// Returns whether the fluid has no critical data, and if so reports that the model needs them.
inline bool lacks_critical_data(const gas_constants &fluid, std::string_view sentence, std::string_view location,
                                records::error_text &message) {
    if (!fluid.vapor)
        report_not_a_vapor(message, fluid, sentence, location);
    return !fluid.vapor;
}

} // namespace equations
