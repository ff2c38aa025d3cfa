// SPDX-License-Identifier: MIT
// ostrel sat: a table of saturated states, both phases side by side.
#include "CommandLine/fluid_choice.h"
#include "CommandLine/outputs.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>

namespace command {
namespace {

constexpr std::size_t most_values = 1'000'000;

struct request {
    fluid_choice fluid;
    std::string input = "t";
    std::vector<std::string> values;
    std::string outputs = "d,h,s";
    units_option units;
    report_form form;
};

/// Round temperatures from the triple point or 0.45 Tc to the critical point, about twenty.
std::vector<double> usual_temperatures(const ostrel::fluid &fluid, const studies::unit &shown) {
    const double t_crit = fluid.constant("t_crit");
    const double t_sat_min = fluid.constant("t_sat_min");
    if (std::isnan(t_sat_min))
        throw failure(std::string(fluid.text("name")) + " has no saturation line with the equation " +
                      std::string(fluid.text("model")));
    double lowest = std::max(t_sat_min, 0.45 * t_crit);
    if (const double triple = fluid.constant("t_triple"); triple > lowest)
        lowest = triple;
    double step = std::pow(10.0, std::floor(std::log10((t_crit - lowest) / 20)));
    for (const double factor : {2.0, 2.5, 2.0})
        if ((t_crit - lowest) / step > 25)
            step *= factor;
    std::vector<double> result;
    const double first = std::ceil(studies::in_unit(lowest, shown) / step);
    const auto value = [&](std::size_t i) {
        return (first + static_cast<double>(i)) * step * shown.factor + shown.offset;
    };
    for (std::size_t i = 0; value(i) < t_crit; ++i)
        result.push_back(value(i));
    result.push_back(t_crit);
    return result;
}

std::vector<double> wanted_values(const request &asked, const ostrel::fluid &fluid, bool at_pressure) {
    std::vector<double> result;
    const std::string_view si = at_pressure ? "Pa" : "K";
    for (const std::string &text : asked.values) {
        const studies::range range = range_of("VALUE", text, si);
        if (range.count > most_values - std::min(result.size(), most_values))
            throw wrong_argument("VALUE: a table has at most " + std::to_string(most_values) +
                                 " lines; ostrel table writes longer ones");
        for (std::size_t i = 0; i < range.count; ++i)
            result.push_back(range.at(i));
    }
    if (!result.empty())
        return result;
    const studies::unit shown = studies::shown_unit("K", asked.units.system());
    result = usual_temperatures(fluid, shown);
    if (at_pressure) {
        // Pressures 1, 2, 5, 10 ... between those of the usual temperatures.
        const double lowest = fluid.saturation("t", "p", std::span(result).first(1)).vapor(0, 0);
        const double highest = fluid.constant("p_crit");
        result.clear();
        const int first = static_cast<int>(std::floor(std::log10(lowest)));
        const int last = static_cast<int>(std::floor(std::log10(highest)));
        for (int power = first; power <= last; ++power)
            for (const double factor : {1.0, 2.0, 5.0})
                if (const double p = factor * std::pow(10.0, power); p >= lowest && p < highest)
                    result.push_back(p);
        result.push_back(highest);
    }
    return result;
}

void serve(const request &asked) {
    const studies::unit_system system = asked.units.system();
    if (asked.input != "t" && asked.input != "p")
        throw wrong_argument("--by: \"" + printable(asked.input) +
                             "\" is not an input; a saturation table is by t or by p");
    const chosen_fluid chosen = asked.fluid.open();
    const ostrel::fluid &fluid = chosen.fluid;
    const bool at_pressure = asked.input == "p";
    const wanted_outputs wanted(fluid, {asked.outputs}, system);
    const std::vector<double> values = wanted_values(asked, fluid, at_pressure);

    // The other one of t and p and the enthalpies stand behind the wanted outputs.
    const std::string names = wanted.asked() + ",h";
    const std::size_t at_h = wanted.size() + wanted_outputs::behind;
    const auto both = fluid.saturation(ostrel::unchecked(asked.input), ostrel::unchecked(names), values);

    const studies::unit of_t = studies::shown_unit("K", system);
    const studies::unit of_p = studies::shown_unit("Pa", system);
    const studies::unit of_h = studies::shown_unit("J/kg", system);
    report found = {.name = "states",
                    .columns = {{"t", std::string(of_t.name)}, {"p", std::string(of_p.name)}},
                    .heading = true,
                    .keys = 2,
                    .notes = chosen.notes,
                    .asked = {{"fluid", std::string(fluid.text("name"))},
                              {"source", std::string(fluid.text("source"))},
                              {"options", std::string(fluid.text("options"))}}};
    for (const column &head : wanted.columns())
        for (const char *const phase : {"liquid", "vapor"})
            found.columns.push_back({head.name + " " + phase, head.unit});
    found.columns.push_back({"latent heat", std::string(of_h.name)});
    found.columns.push_back({"note", "", true});
    std::size_t failures = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const int status = both.liquid.status()[i];
        std::vector<cell> row;
        if (status != OSTREL_OK) {
            ++failures;
            row.resize(found.columns.size(), std::monostate{});
            row[at_pressure ? 1 : 0] = value_or_none(studies::in_unit(values[i], at_pressure ? of_p : of_t));
            row.back() = (at_pressure ? "p = " + number(values[i]) + " Pa: " : "t = " + number(values[i]) + " K: ") +
                         std::string(ostrel::status_text(status)) + ".";
            found.rows.push_back(std::move(row));
            continue;
        }
        const auto liquid = both.liquid[i];
        const auto vapor = both.vapor[i];
        row = {studies::in_unit(liquid[wanted.size()], of_t), studies::in_unit(liquid[wanted.size() + 1], of_p)};
        for (std::size_t k = 0; k < wanted.size(); ++k) {
            row.push_back(wanted.shown(k, liquid[k]));
            row.push_back(wanted.shown(k, vapor[k]));
        }
        row.emplace_back(studies::in_unit(vapor[at_h] - liquid[at_h], of_h));
        std::string notes = texts_of(wanted.remarks_on(liquid));
        row.emplace_back(std::move(notes));
        found.rows.push_back(std::move(row));
    }
    if (failures == values.size() && both.liquid.first_fault())
        throw failure(both.liquid.first_fault()->message);
    write(found, asked.form);
}

} // namespace

definition sat() {
    const auto asked = std::make_shared<request>();
    std::vector<argument> arguments = asked->fluid.arguments({"states", "phase"});
    arguments.insert(arguments.begin() + 1,
                     {"VALUE", &asked->values,
                      "Temperatures (or pressures, with --by p), or ranges FIRST:LAST:COUNT[:log], with units; "
                      "round values if none is given"});
    arguments.push_back({"--by", &asked->input, "t (the default) or p: what the values are", false, "", {"t", "p"}});
    arguments.push_back({"--outputs", &asked->outputs, "Outputs of both phases, with commas between them (d,h,s)"});
    arguments.push_back(asked->units.option());
    std::ranges::move(asked->form.options(), std::back_inserter(arguments));
    return {.name = "sat",
            .meaning = "Print a table of saturated states, liquid and vapor side by side",
            .arguments = std::move(arguments),
            .notes = R"(On a narrow terminal the columns are folded into blocks.

Examples:
  ostrel sat propane
  ostrel sat R134a --by p 1bar:20bar:20 --units engineering
  ostrel sat water 20degC:180degC:9 --outputs v,h,s,cp --units engineering --csv)",
            .run = [asked] { serve(*asked); }};
}

} // namespace command
