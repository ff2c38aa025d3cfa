// SPDX-License-Identifier: MIT
#include "Thermodynamics/transport_properties.h"

#include <array>
#include <span>
#include <string_view>
#include <vector>

namespace transport_properties {

parameters active;

namespace {

/// The one record of parameters that a model has; models not listed have none.
struct model_record {
    std::int32_t model;
    std::size_t count;
    std::array<std::string_view, 3> names;
    std::array<double parameters::*, 3> values;
};

constexpr model_record viscosity_records[] = {
    {1, 1, {"mu_const"}, {&parameters::mu_const}},
    {5, 3, {"mu_ref_s", "T_ref_s", "Tchar_s"}, {&parameters::mu_ref_s, &parameters::T_ref_s, &parameters::Tchar_s}},
    {6, 2, {"mu_ref_l", "T_ref_l"}, {&parameters::mu_ref_l, &parameters::T_ref_l}},
};
constexpr model_record conductivity_records[] = {
    {1, 1, {"kk_const"}, {&parameters::kk_const}},
    {4, 1, {"Pr"}, {&parameters::Pr}},
};

void read(records::record_reader &in, parameters &p, std::string_view name, std::int32_t &model,
          std::span<const model_record> table) {
    if (!in.read({{name, model}}))
        return;
    for (const model_record &entry : table) {
        if (entry.model != model)
            continue;
        std::vector<records::item> items;
        for (std::size_t i = 0; i < entry.count; ++i)
            items.emplace_back(entry.names[i], p.*entry.values[i]);
        in.read(items);
    }
}

void write(records::record_writer &out, const parameters &p, std::int32_t model, std::span<const model_record> table) {
    out.record({model});
    for (const model_record &entry : table) {
        if (entry.model != model)
            continue;
        std::vector<double> values;
        for (std::size_t i = 0; i < entry.count; ++i)
            values.push_back(p.*entry.values[i]);
        out.record_list(std::span<const double>(values));
    }
}

void read(records::record_reader &in, parameters &p) {
    read(in, p, "viscosity_model", p.viscosity_model, viscosity_records);
    read(in, p, "thermal_cond_model", p.thermal_cond_model, conductivity_records);
}

} // namespace

void read_param_transport_properties(records::file_reader &unit) {
    read(unit, active);
}

void read_param_transport_propertiesdb(records::line_reader &lines) {
    read(lines, active);
}

void write_param_transport_propert(records::record_writer &unit) {
    write(unit, active, active.viscosity_model, viscosity_records);
    write(unit, active, active.thermal_cond_model, conductivity_records);
}

} // namespace transport_properties
