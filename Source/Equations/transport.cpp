// SPDX-License-Identifier: MIT
#include "Equations/transport.h"

#include <vector>

namespace transport {

namespace {

void read(records::record_reader &in, parameters &p, std::string_view name, std::int32_t &code,
          std::span<const model> models) {
    if (!in.read({{name, code}}))
        return;
    for (const model &entry : models) {
        if (entry.code != code || entry.record().empty())
            continue;
        std::vector<records::item> items;
        for (const model::field &field : entry.record())
            items.emplace_back(field.name, p.*field.value);
        in.read(items);
    }
}

void write(records::record_writer &out, const parameters &p, std::int32_t code, std::span<const model> models) {
    out.record({code});
    for (const model &entry : models) {
        if (entry.code != code || entry.record().empty())
            continue;
        std::vector<double> values;
        for (const model::field &field : entry.record())
            values.push_back(p.*field.value);
        out.record_list(std::span<const double>(values));
    }
}

// Chung's correlations. A row c0, c1, c2, c3 stands for the coefficient c0 + c1 omega + c2 mur^4 + c3 kh.
using correlation = std::array<double, 4>;
constexpr std::array<correlation, 10> viscosity_coefficients = {{
    {6.32402, 50.4119, -51.6801, 1189.02},
    {0.0012102, -0.0011536, -0.0062571, 0.037283},
    {5.28346, 254.209, -168.481, 3898.27},
    {6.62263, 38.0957, -8.46414, 31.4178},
    {19.7454, 7.63034, -14.3544, 31.5267},
    {-1.89992, -12.5367, 4.98529, -18.1507},
    {24.2745, 3.44945, -11.2913, 69.3466},
    {0.79716, 1.11764, 0.012348, -4.11661},
    {-0.23816, 0.067695, -0.8163, 4.02528},
    {0.068629, 0.34793, 0.59256, -0.72663},
}};
constexpr std::array<correlation, 7> conductivity_coefficients = {{
    {2.41657, 0.74824, -0.91858, 121.721},
    {-0.50924, -1.50936, -49.9912, 69.9834},
    {6.61069, 5.62073, 64.7599, 27.0389},
    {14.5425, -8.91387, -5.63794, 74.3435},
    {0.79274, 0.82019, -0.69369, 6.31734},
    {-5.8634, 12.8005, 9.58926, -65.5292},
    {81.171, 114.158, -60.841, 466.775},
}};

template <std::size_t count>
void correlate(std::array<double, count> &result, const std::array<correlation, count> &table, const parameters &p) {
    for (std::size_t i = 0; i < count; ++i)
        result[i] = table[i][0] + table[i][1] * p.omega + table[i][2] * fourth_power(p.mur) + table[i][3] * p.kh;
}

/// Whether the viscosity model goes with the conductivity model and with the fluid; reports why if it does not.
bool applicable(const parameters &p, const equations::gas_constants &fluid, records::error_text &message) {
    if (p.viscosity_model != dilute_gas && p.viscosity_model != dense_gas)
        return true;
    if (p.thermal_cond_model != p.viscosity_model) {
        message.report({"Viscosity and thermal conductivity model do not match.  In init_trasport_properties. STOP"});
        return false;
    }
    if (!fluid.vapor)
        report_not_a_vapor(message, fluid,
                           p.viscosity_model == dense_gas ? "Dense gas viscosity model is not applicable. "
                                                          : "Diluite gas viscosity model is not applicable. ",
                           "In init_transport_properties.");
    return fluid.vapor;
}

} // namespace

bool initialise(parameters &p, const equations::gas_constants &fluid, records::error_text &message) {
    if (!applicable(p, fluid, message))
        return false;
    p.m_mole = fluid.MM;
    p.Rgas = fluid.R;
    p.T_ref = fluid.T_ref;
    p.P_ref = fluid.P_ref;
    p.v_ref = fluid.v_ref;
    p.Z_ref = fluid.Z_ref;
    if (fluid.vapor) {
        p.Pc = fluid.Pc;
        p.Tc = fluid.Tc;
        p.vc = fluid.vc;
        p.Zc = fluid.Zc;
        p.omega = fluid.omega;
        p.mur = fluid.mur;
        p.kh = fluid.kh;
    }
    p.area = critical_area(p);
    p.mu_corr = 3.4e-7 * std::sqrt(p.m_mole) * std::pow(p.Pc / equations::pascal_per_atm, 2.0 / 3.0) /
                std::pow(p.Tc, 1.0 / 6.0);
    if (p.viscosity_model == dilute_gas || p.viscosity_model == dense_gas)
        p.fc = shape_and_polarity(p);
    if (p.viscosity_model == dense_gas)
        correlate(p.aa, viscosity_coefficients, p);
    if (p.thermal_cond_model == dilute_gas_conductivity || p.thermal_cond_model == dense_gas_conductivity)
        p.beta = 0.7862 - 0.7109 * p.omega + 1.3168 * (p.omega * p.omega);
    if (p.thermal_cond_model == dense_gas_conductivity)
        correlate(p.bb, conductivity_coefficients, p);
    return true;
}

void read(records::record_reader &in, parameters &p) {
    read(in, p, "viscosity_model", p.viscosity_model, viscosity_models);
    read(in, p, "thermal_cond_model", p.thermal_cond_model, thermal_cond_models);
}

void write(records::record_writer &out, const parameters &p) {
    write(out, p, p.viscosity_model, viscosity_models);
    write(out, p, p.thermal_cond_model, thermal_cond_models);
}

} // namespace transport
