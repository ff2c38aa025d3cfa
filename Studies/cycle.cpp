// SPDX-License-Identifier: MIT
#include "Studies/cycle.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace studies {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

constexpr cycle_kind_row kinds[] = {
    {cycle_kind::rankine, "rankine", "pump, evaporator, turbine, condenser; [regenerator] if wanted"},
    {cycle_kind::compression, "compression",
     "evaporator, compressor, condenser or gas_cooler, valve; [exchanger] if wanted"},
};

using definition = cycle_definition;
using enum value_range;
constexpr std::optional<double> none;
constexpr cycle_key keys[] = {
    {"evaporator", "p", "Pa", false, positive, true, true, &definition::evaporator_p, none, "pressure at the outlet"},
    {"evaporator", "t", "K", false, positive, true, true, &definition::evaporator_t, none,
     "or its saturation temperature"},
    {"evaporator", "superheat", "K", true, not_negative, true, true, &definition::evaporator_superheat, 0,
     "outlet above saturation"},
    {"evaporator", "t_out", "K", false, positive, true, true, &definition::evaporator_t_out, none,
     "or the outlet's temperature"},
    {"evaporator", "drop", "Pa", true, not_negative, true, true, &definition::evaporator_drop, 0, "pressure drop"},
    {"condenser", "p", "Pa", false, positive, true, true, &definition::condenser_p, none, "pressure at the outlet"},
    {"condenser", "t", "K", false, positive, true, true, &definition::condenser_t, none,
     "or its saturation temperature"},
    {"condenser", "subcooling", "K", true, not_negative, true, true, &definition::condenser_subcooling, 0,
     "outlet below saturation"},
    {"condenser", "t_out", "K", false, positive, true, true, &definition::condenser_t_out, none,
     "or the outlet's temperature"},
    {"condenser", "drop", "Pa", true, not_negative, true, true, &definition::condenser_drop, 0, "pressure drop"},
    {"gas_cooler", "p", "Pa", false, positive, false, true, &definition::gas_cooler_p, none, "pressure at the outlet"},
    {"gas_cooler", "t_out", "K", false, positive, false, true, &definition::gas_cooler_t_out, none,
     "temperature at the outlet"},
    {"gas_cooler", "drop", "Pa", true, not_negative, false, true, &definition::gas_cooler_drop, 0, "pressure drop"},
    {"pump", "efficiency", "1", false, part, true, false, &definition::pump_efficiency, 1, "isentropic efficiency"},
    {"turbine", "efficiency", "1", false, part, true, false, &definition::turbine_efficiency, 1,
     "isentropic efficiency"},
    {"compressor", "efficiency", "1", false, part, false, true, &definition::compressor_efficiency, 1,
     "isentropic efficiency"},
    {"regenerator", "effectiveness", "1", false, part, true, false, &definition::regenerator_effectiveness, none,
     "heat, as a part of the largest without condensation"},
    {"regenerator", "pinch", "K", true, not_negative, true, false, &definition::regenerator_pinch, none,
     "or the least difference of temperature"},
    {"regenerator", "drop_hot", "Pa", true, not_negative, true, false, &definition::regenerator_drop_hot, 0,
     "pressure drop of the vapor"},
    {"regenerator", "drop_cold", "Pa", true, not_negative, true, false, &definition::regenerator_drop_cold, 0,
     "pressure drop of the liquid"},
    {"exchanger", "effectiveness", "1", false, part, false, true, &definition::exchanger_effectiveness, none,
     "heat, as a part of the largest possible"},
    {"exchanger", "pinch", "K", true, not_negative, false, true, &definition::exchanger_pinch, none,
     "or the least difference of temperature"},
    {"exchanger", "drop_hot", "Pa", true, not_negative, false, true, &definition::exchanger_drop_hot, 0,
     "pressure drop of the liquid"},
    {"exchanger", "drop_cold", "Pa", true, not_negative, false, true, &definition::exchanger_drop_cold, 0,
     "pressure drop of the vapor"},
    {"source", "t", "K", false, positive, true, true, &definition::source_t, none,
     "inlet of the stream that heats the evaporator"},
    {"source", "t_out", "K", false, positive, true, true, &definition::source_t_out, none,
     "its outlet; without it and mass, t stays"},
    {"source", "mass", "kg/s", false, positive, true, true, &definition::source_mass, none, "its mass flow"},
    {"source", "cp", "J/(kg K)", false, positive, true, true, &definition::source_cp, none, "its heat capacity"},
    {"sink", "t", "K", false, positive, true, true, &definition::sink_t, none, "inlet of the stream that cools"},
    {"sink", "t_out", "K", false, positive, true, true, &definition::sink_t_out, none,
     "its outlet; without it and mass, t stays"},
    {"sink", "mass", "kg/s", false, positive, true, true, &definition::sink_mass, none, "its mass flow"},
    {"sink", "cp", "J/(kg K)", false, positive, true, true, &definition::sink_cp, none, "its heat capacity"},
    {"flow", "mass", "kg/s", false, positive, true, true, &definition::flow_mass, none, "mass flow of the fluid"},
    {"flow", "power", "W", false, positive, true, true, &definition::flow_power, none,
     "or the net power, given or taken"},
};

using figures_type = cycle_figures;
constexpr cycle_figure figure_rows[] = {
    {"net_work", "J/kg", false, &figures_type::net_work, "work of the turbine less that of the pump"},
    {"turbine_work", "J/kg", false, &figures_type::turbine_work, "work of the turbine"},
    {"pump_work", "J/kg", false, &figures_type::pump_work, "work of the pump"},
    {"compressor_work", "J/kg", false, &figures_type::compressor_work, "work of the compressor"},
    {"heat_in", "J/kg", false, &figures_type::heat_in, "heat to the evaporator"},
    {"heat_out", "J/kg", false, &figures_type::heat_out, "heat from the condenser or gas cooler"},
    {"internal_heat", "J/kg", false, &figures_type::internal_heat, "heat inside the regenerator or exchanger"},
    {"efficiency", "1", false, &figures_type::efficiency, "net work/heat in"},
    {"back_work_ratio", "1", false, &figures_type::back_work_ratio, "work of the pump/work of the turbine"},
    {"cop_cooling", "1", false, &figures_type::cop_cooling, "heat in/work"},
    {"cop_heating", "1", false, &figures_type::cop_heating, "heat out/work"},
    {"second_law", "1", false, &figures_type::second_law,
     "efficiency or COP/that of a reversible cycle between source and sink"},
    {"pressure_ratio", "1", false, &figures_type::pressure_ratio, "higher/lower pressure of the turbine or compressor"},
    {"volume_ratio", "1", false, &figures_type::volume_ratio,
     "specific volume, turbine outlet/inlet, or compressor inlet/outlet"},
    {"volumetric_capacity", "J/m3", false, &figures_type::volumetric_capacity,
     "heat in/volume at the compressor's inlet"},
    {"internal_pinch", "K", true, &figures_type::internal_pinch,
     "least difference of temperature, regenerator or exchanger"},
    {"source_pinch", "K", true, &figures_type::source_pinch, "least difference of temperature, source and evaporator"},
    {"sink_pinch", "K", true, &figures_type::sink_pinch,
     "least difference of temperature, condenser or gas cooler and sink"},
    {"source_t_out", "K", false, &figures_type::source_t_out, "outlet of the source"},
    {"sink_t_out", "K", false, &figures_type::sink_t_out, "outlet of the sink"},
    {"mass_flow", "kg/s", false, &figures_type::mass_flow, "mass flow of the fluid"},
    {"net_power", "W", false, &figures_type::net_power, "mass flow times net work"},
    {"heat_flow_in", "W", false, &figures_type::heat_flow_in, "heat to the evaporator"},
    {"heat_flow_out", "W", false, &figures_type::heat_flow_out, "heat from the condenser or gas cooler"},
    {"volume_flow_in", "m3/s", false, &figures_type::volume_flow_in, "volume flow, inlet of the turbine or compressor"},
    {"volume_flow_out", "m3/s", false, &figures_type::volume_flow_out,
     "volume flow, outlet of the turbine or compressor"},
    {"size_parameter", "m", false, &figures_type::size_parameter,
     "of the turbine: volume flow out^(1/2)/isentropic work^(1/4)"},
    {"source_mass", "kg/s", false, &figures_type::source_mass, "mass flow of the source"},
    {"sink_mass", "kg/s", false, &figures_type::sink_mass, "mass flow of the sink"},
};

std::string name_of(const cycle_key &key) {
    return std::string(key.section) + "." + std::string(key.name);
}

const cycle_key &key_of(definition::value definition::*member) {
    return *std::ranges::find(keys, member, &cycle_key::member);
}

/// The value or its default.
double value_of(const definition &wanted, definition::value definition::*member) {
    return (wanted.*member).value_or(key_of(member).standard.value_or(nan));
}

std::string sentence(std::initializer_list<std::string_view> parts) {
    std::string result;
    for (const std::string_view part : parts)
        result += part;
    return result;
}

void check_values(const definition &wanted) {
    for (const cycle_key &key : keys) {
        const auto &value = wanted.*key.member;
        if (!value)
            continue;
        const bool rankine = wanted.kind == cycle_kind::rankine;
        if (!(rankine ? key.of_rankine : key.of_compression))
            throw impossible(name_of(key) + " does not belong to a cycle of the kind " +
                             (rankine ? "rankine" : "compression"));
        struct {
            bool right;
            std::string_view what;
        } const range = key.range == positive ? decltype(range){*value > 0, "above 0"}
                        : key.range == not_negative
                            ? decltype(range){*value >= 0, "0 or above"}
                            : decltype(range){*value > 0 && *value <= 1, "above 0 and not above 1"};
        if (!range.right || !std::isfinite(*value))
            throw impossible(sentence({name_of(key), " is ",
                                       key.difference ? shown_difference(*value, key.si) : shown(*value, key.si),
                                       "; it must be ", range.what, key.si == "K" && !key.difference ? " K" : ""}));
    }
}

/// Whether one of two members is given; both are too many.
bool one_of(const definition &wanted, definition::value definition::*one, definition::value definition::*other) {
    if ((wanted.*one) && (wanted.*other))
        throw impossible(name_of(key_of(one)) + " and " + name_of(key_of(other)) +
                         " are both given; only one of them can hold");
    return (wanted.*one) || (wanted.*other);
}

void need_one_of(const definition &wanted, definition::value definition::*one, definition::value definition::*other) {
    if (!one_of(wanted, one, other))
        throw impossible(name_of(key_of(one)) + " or " + name_of(key_of(other)) + " is wanted");
}

// ---- Heat exchangers ------------------------------------------------------------------------------------------------

/// One side of an exchanger from its cold end (0) to its hot end (1): the fluid, whose pressure changes with the heat,
/// or a stream with a constant heat capacity.
class side {
public:
    /// The fluid between two states.
    side(const ostrel::fluid &fluid, std::string_view place, const point &cold, const point &hot)
        : fluid_(&fluid), place_(place), cold_(cold), hot_(hot) {}
    /// A stream between two temperatures [K].
    side(double t_cold, double t_hot) {
        cold_.t = t_cold;
        hot_.t = t_hot;
    }

    point at(double x) const {
        if (x == 0)
            return cold_;
        if (x == 1)
            return hot_;
        point result;
        result.t = cold_.t + x * (hot_.t - cold_.t);
        return fluid_ == nullptr ? result
                                 : point_at(*fluid_, "ph", cold_.p + x * (hot_.p - cold_.p),
                                            cold_.h + x * (hot_.h - cold_.h), place_);
    }
    std::vector<crossing> corners(std::size_t intervals) const {
        if (fluid_ == nullptr)
            return {};
        return crossings(
            *fluid_, [this](double x) { return at(x); }, &point::h, intervals);
    }

private:
    const ostrel::fluid *fluid_ = nullptr;
    std::string_view place_;
    point cold_, hot_;
};

struct pinch {
    double difference;    ///< [K] negative if heat would have to flow from cold to hot
    double t_hot, t_cold; ///< [K] there
};

/// The least difference of temperature of a counterflow exchanger, walking along both sides.
pinch least_difference(const side &hot, const side &cold) {
    constexpr std::size_t intervals = 32;
    std::vector<double> places;
    places.reserve(intervals + 1);
    for (std::size_t i = 0; i <= intervals; ++i)
        places.push_back(static_cast<double>(i) / intervals);
    for (const side *one : {&hot, &cold})
        for (const crossing &corner : one->corners(intervals))
            places.push_back(corner.at);
    std::ranges::sort(places);
    const auto difference = [&](double x) { return hot.at(x).t - cold.at(x).t; };
    std::vector<double> values(places.size());
    std::ranges::transform(places, values.begin(), difference);
    const auto least = static_cast<std::size_t>(std::ranges::min_element(values) - values.begin());
    double x = places[least];
    double value = values[least];
    const auto look_between = [&](double a, double b) {
        const double found = argument_of_least(difference, a, b);
        if (const double there = difference(found); there < value) {
            value = there;
            x = found;
        }
    };
    if (least > 0)
        look_between(places[least - 1], places[least]);
    if (least + 1 < places.size())
        look_between(places[least], places[least + 1]);
    return {value, hot.at(x).t, cold.at(x).t};
}

/// What stands in the definition on an exchanger inside the cycle.
struct internal_exchanger {
    std::string_view name;
    definition::value definition::*effectiveness;
    definition::value definition::*pinch;
    definition::value definition::*drop_hot;
    definition::value definition::*drop_cold;
    std::string_view hot, cold; ///< its inlets
};
constexpr internal_exchanger regenerator = {"regenerator",
                                            &definition::regenerator_effectiveness,
                                            &definition::regenerator_pinch,
                                            &definition::regenerator_drop_hot,
                                            &definition::regenerator_drop_cold,
                                            "the turbine's outlet",
                                            "the pump's outlet"};
constexpr internal_exchanger exchanger = {"exchanger",
                                          &definition::exchanger_effectiveness,
                                          &definition::exchanger_pinch,
                                          &definition::exchanger_drop_hot,
                                          &definition::exchanger_drop_cold,
                                          "the outlet of the condenser or gas cooler",
                                          "the evaporator's outlet"};

bool is_wanted(const definition &wanted, const internal_exchanger &one) {
    if (one_of(wanted, one.effectiveness, one.pinch))
        return true;
    for (const auto drop : {one.drop_hot, one.drop_cold})
        if (wanted.*drop)
            throw impossible(sentence({name_of(key_of(drop)), " is given without ", one.name, ".effectiveness or ",
                                       one.name, ".pinch; without one of these there is no ", one.name}));
    return false;
}

struct exchanged {
    point hot_out, cold_out;
    double heat;  ///< [J/kg]
    double pinch; ///< [K]
};

exchanged exchange(const ostrel::fluid &fluid, const definition &wanted, const internal_exchanger &one,
                   const point &hot_in, const point &cold_in) {
    const double p_hot_out = hot_in.p - value_of(wanted, one.drop_hot);
    const double p_cold_out = cold_in.p - value_of(wanted, one.drop_cold);
    const double least = value_of(wanted, one.pinch);
    const auto wrong = [&](std::string_view why) {
        return impossible(sentence({one.name, ": ", one.hot, " is at ", shown(hot_in.t, "K"), " and ", one.cold, " at ",
                                    shown(cold_in.t, "K"), why, "; take it out, or change the pressures"}));
    };
    if (!(hot_in.t > cold_in.t))
        throw wrong(", so that it would have to heat from cold to hot");
    if (least > hot_in.t - cold_in.t)
        throw wrong(", which leaves no room for a pinch of " + shown_difference(least, "K"));
    // The heat at which one side would leave with the temperature at which the other one comes in.
    const double hot_gives = hot_in.h - point_at(fluid, "pt", p_hot_out, cold_in.t, one.name).h;
    const double cold_takes = point_at(fluid, "pt", p_cold_out, hot_in.t, one.name).h - cold_in.h;
    // An effectiveness refers to vapor that stays vapor; otherwise a little subcooling or a pressure drop would add the
    // heat of condensation to what is possible.
    double hot_gives_dry = hot_gives;
    if (const auto line = saturation_at(fluid, p_hot_out); line && hot_in.h > line->vapor.h)
        hot_gives_dry = std::min(hot_gives, hot_in.h - line->vapor.h);
    const auto with = [&](double heat) {
        exchanged result = {point_at(fluid, "ph", p_hot_out, hot_in.h - heat, one.name),
                            point_at(fluid, "ph", p_cold_out, cold_in.h + heat, one.name), heat, 0};
        result.pinch = least_difference(side(fluid, one.name, result.hot_out, hot_in),
                                        side(fluid, one.name, cold_in, result.cold_out))
                           .difference;
        return result;
    };
    // More heat brings the sides nearer to each other everywhere.
    const auto most_heat = [&](double bound, double wanted_pinch) {
        constexpr double rounding = 1e-9; // K
        if (with(bound).pinch >= wanted_pinch - rounding)
            return bound;
        // The pressure drop alone cools wet vapor.
        if (!(with(0).pinch > wanted_pinch))
            throw wrong(", and its pressure drop leaves no room for a pinch of " + shown_difference(wanted_pinch, "K"));
        return root([&](double heat) { return with(heat).pinch - wanted_pinch; }, 0, bound);
    };
    exchanged result =
        with(wanted.*one.pinch ? most_heat(std::min(hot_gives, cold_takes), least)
                               : *(wanted.*one.effectiveness) * most_heat(std::min(hot_gives_dry, cold_takes), 0));
    result.pinch = std::max(0.0, result.pinch);
    return result;
}

/// What stands in the definition on a stream outside of the cycle.
struct outer_stream {
    std::string_view name;
    definition::value definition::*t;
    definition::value definition::*t_out;
    definition::value definition::*mass;
    definition::value definition::*cp;
    double figures_type::*pinch;
    double figures_type::*t_out_figure;
    double figures_type::*mass_figure;
    bool heats; ///< whether it gives heat to the fluid
};
constexpr outer_stream source = {"source",
                                 &definition::source_t,
                                 &definition::source_t_out,
                                 &definition::source_mass,
                                 &definition::source_cp,
                                 &figures_type::source_pinch,
                                 &figures_type::source_t_out,
                                 &figures_type::source_mass,
                                 true};
constexpr outer_stream sink = {"sink",
                               &definition::sink_t,
                               &definition::sink_t_out,
                               &definition::sink_mass,
                               &definition::sink_cp,
                               &figures_type::sink_pinch,
                               &figures_type::sink_t_out,
                               &figures_type::sink_mass,
                               false};

void check_stream(const definition &wanted, const outer_stream &one) {
    if (!(wanted.*one.t))
        for (const auto member : {one.t_out, one.mass, one.cp})
            if (wanted.*member)
                throw impossible(name_of(key_of(member)) + " is given without " + name_of(key_of(one.t)));
    if ((wanted.*one.mass) && !(wanted.*one.cp))
        throw impossible(name_of(key_of(one.mass)) + " is given without " + name_of(key_of(one.cp)));
    if ((wanted.*one.cp) && !(wanted.*one.mass) && !(wanted.*one.t_out))
        throw impossible(sentence({name_of(key_of(one.cp)), " is given without ", name_of(key_of(one.mass)), " or ",
                                   name_of(key_of(one.t_out))}));
    if ((wanted.*one.t_out) &&
        (one.heats ? *(wanted.*one.t_out) >= *(wanted.*one.t) : *(wanted.*one.t_out) <= *(wanted.*one.t)))
        throw impossible(
            sentence({name_of(key_of(one.t_out)), " is ", shown(*(wanted.*one.t_out), "K"), ", but the ", one.name,
                      one.heats ? " gives heat, so that it must be below its inlet, "
                                : " takes heat, so that it must be above its inlet, ",
                      shown(*(wanted.*one.t), "K")}));
}

/// [kg/s] The fluid's mass flow to which the heat balance of a stream leads; a NaN if it leaves it open.
double mass_flow_from(const definition &wanted, const outer_stream &one, double heat) {
    if (!(wanted.*one.t_out) || !(wanted.*one.mass))
        return nan;
    return *(wanted.*one.mass) * *(wanted.*one.cp) * std::abs(*(wanted.*one.t) - *(wanted.*one.t_out)) / heat;
}

/// [K] The mean temperature at which a stream with a constant heat capacity gives or takes heat.
double mean_temperature(double t_in, double t_out) {
    const double change = (t_out - t_in) / t_in;
    return std::abs(change) < 1e-6 ? t_in * (1 + change / 2) : t_in * change / std::log1p(change);
}

/// Adds the figures of a stream and returns its mean temperature [K], a NaN if it is not known.
/// cold, hot [-] ends of the fluid in the exchanger   heat [J/kg] of the fluid
double add_stream(const ostrel::fluid &fluid, const definition &wanted, const outer_stream &one, std::string_view place,
                  const point &cold, const point &hot, double heat, figures_type &figures) {
    if (!(wanted.*one.t))
        return nan;
    const double t_in = *(wanted.*one.t);
    double t_out = wanted.*one.t_out ? *(wanted.*one.t_out) : t_in;
    if (wanted.*one.mass && !(wanted.*one.t_out)) {
        if (std::isnan(figures.mass_flow))
            throw impossible(sentence(
                {name_of(key_of(one.mass)), " needs flow.mass, flow.power or ", one.name, ".t_out beside it"}));
        t_out += (one.heats ? -1 : 1) * heat * figures.mass_flow / (*(wanted.*one.mass) * *(wanted.*one.cp));
    } else if (wanted.*one.cp) {
        figures.*one.mass_figure = heat * figures.mass_flow / (*(wanted.*one.cp) * std::abs(t_in - t_out));
    }
    if (!(t_out > 0))
        throw impossible(sentence({one.name, ": it would leave below 0 K; its mass flow is too small"}));
    figures.*one.t_out_figure = t_out;
    const side stream(std::min(t_in, t_out), std::max(t_in, t_out));
    const side inside(fluid, place, cold, hot);
    const pinch found = one.heats ? least_difference(stream, inside) : least_difference(inside, stream);
    constexpr double rounding = 1e-7; // K
    if (found.difference < -rounding)
        throw impossible(sentence({one.name, ": in the ", place, " heat would have to flow from ",
                                   shown(found.t_hot, "K"), " to ", shown(found.t_cold, "K"),
                                   one.heats ? "; a hotter source, more of it or a colder evaporator is needed"
                                             : "; a colder sink, more of it or a hotter outlet is needed"}));
    figures.*one.pinch = std::max(0.0, found.difference);
    return mean_temperature(t_in, t_out);
}

// ---- States ---------------------------------------------------------------------------------------------------------

/// What a definition says on an evaporator or a condenser.
struct saturated_exchanger {
    std::string_view name;
    definition::value definition::*p;
    definition::value definition::*t;
    definition::value definition::*away; ///< superheat or subcooling
    definition::value definition::*t_out;
    bool vapor; ///< whether vapor leaves it
};
constexpr saturated_exchanger evaporator = {"evaporator",
                                            &definition::evaporator_p,
                                            &definition::evaporator_t,
                                            &definition::evaporator_superheat,
                                            &definition::evaporator_t_out,
                                            true};
constexpr saturated_exchanger condenser = {"condenser",
                                           &definition::condenser_p,
                                           &definition::condenser_t,
                                           &definition::condenser_subcooling,
                                           &definition::condenser_t_out,
                                           false};

std::string limit_of(const ostrel::fluid &fluid, std::string_view what, double value, std::string_view si) {
    return sentence({"the critical ", what, " of ", fluid.text("name"), ", ", shown(value, si)});
}

/// The state at the outlet of an evaporator or a condenser.
point outlet_of(const ostrel::fluid &fluid, const definition &wanted, const saturated_exchanger &one,
                bool may_be_supercritical) {
    need_one_of(wanted, one.p, one.t);
    const bool has_t_out = (wanted.*one.t_out).has_value();
    one_of(wanted, one.away, one.t_out);
    const double t_crit = fluid.constant("t_crit");
    const double p_crit = fluid.constant("p_crit");
    const std::string place = std::string(one.name) + " outlet";
    const double q = one.vapor ? 1 : 0;
    double p = value_of(wanted, one.p);
    if (wanted.*one.t) {
        if (*(wanted.*one.t) >= t_crit)
            throw impossible(sentence({name_of(key_of(one.t)), " is ", shown(*(wanted.*one.t), "K"),
                                       "; saturation ends below ", limit_of(fluid, "temperature", t_crit, "K"),
                                       may_be_supercritical ? "; for a supercritical cycle give p and t_out" : ""}));
        p = point_at(fluid, "tq", *(wanted.*one.t), q, place).p;
    }
    if (p >= p_crit) {
        if (!may_be_supercritical)
            throw impossible(sentence({name_of(key_of(one.p)), " is ", shown(p, "Pa"), "; it must be below ",
                                       limit_of(fluid, "pressure", p_crit, "Pa"),
                                       one.vapor ? "" : ", since nothing condenses above"}));
        if (!has_t_out)
            throw impossible(sentence({name_of(key_of(one.p)), " is ", shown(p, "Pa"), ", above ",
                                       limit_of(fluid, "pressure", p_crit, "Pa"), "; there ",
                                       name_of(key_of(one.t_out)), " is needed, and no ", key_of(one.away).name}));
        return point_at(fluid, "pt", p, *(wanted.*one.t_out), place);
    }
    const point saturated = point_at(fluid, "pq", p, q, place);
    const double sign = one.vapor ? 1 : -1;
    const double t = has_t_out ? *(wanted.*one.t_out) : saturated.t + sign * value_of(wanted, one.away);
    if (sign * (t - saturated.t) < 0)
        throw impossible(sentence({name_of(key_of(one.t_out)), " is ", shown(t, "K"), "; at ", shown(p, "Pa"),
                                   " it must be ", one.vapor ? "at or above" : "at or below",
                                   " the saturation temperature, ", shown(saturated.t, "K")}));
    return t == saturated.t ? saturated : point_at(fluid, "pt", p, t, place);
}

/// The state to which an expansion or a compression leads.
point worked(const ostrel::fluid &fluid, const point &from, double p, double efficiency, std::string_view place) {
    if (p == from.p)
        return from;
    const double h_ideal = point_at(fluid, "ps", p, from.s, place).h;
    const double h = from.h + (p < from.p ? (h_ideal - from.h) * efficiency : (h_ideal - from.h) / efficiency);
    return point_at(fluid, "ph", p, h, place);
}

double between(double a, double b, double x) {
    return x == 0 ? a : x == 1 ? b : a * std::pow(b / a, x);
}

// ---- Cycles ---------------------------------------------------------------------------------------------------------

/// Collects the states and processes of a cycle in the order of the flow.
class course {
public:
    course(const ostrel::fluid &fluid, std::size_t intervals) : fluid_(fluid), intervals_(intervals) {}

    void start(std::string place, const point &at) { result_.states.push_back({std::move(place), at}); }
    /// Heat at a pressure that changes with the heat. The saturated states on the way become states, too.
    void exchange(std::string_view name, std::string place, const point &to) {
        const point &from = result_.states.back().at;
        const side along(fluid_, name, from, to); // its cold end is where the flow comes in
        const std::size_t first = result_.states.size() - 1;
        const std::vector<crossing> corners = along.corners(intervals_);
        std::vector<point> points = sampled([&](double x) { return along.at(x); }, corners, intervals_);
        for (const crossing &corner : corners)
            result_.states.push_back(
                {std::string(name) + (corner.vapor ? ", saturated vapor" : ", saturated liquid"), corner.saturated});
        finish(name, std::move(place), to, first, std::move(points));
    }
    /// A turbine, a pump or a compressor.
    void work(std::string_view name, std::string place, const point &to, double efficiency) {
        const point from = result_.states.back().at;
        along(name, std::move(place), to,
              [&](double x) { return worked(fluid_, from, between(from.p, to.p, x), efficiency, name); });
    }
    void throttle(std::string_view name, std::string place, const point &to) {
        const point from = result_.states.back().at;
        along(name, std::move(place), to,
              [&](double x) { return point_at(fluid_, "ph", between(from.p, to.p, x), from.h, name); });
    }
    /// The last process has led back to the first state.
    cycle_result closed() && {
        result_.states.pop_back();
        result_.processes.back().to = 0;
        return std::move(result_);
    }

private:
    void along(std::string_view name, std::string place, const point &to, const std::function<point(double)> &at) {
        const std::size_t first = result_.states.size() - 1;
        const point from = result_.states.back().at;
        const path whole = [&](double x) { return x == 0 ? from : x == 1 ? to : at(x); };
        finish(name, std::move(place), to, first,
               sampled(whole, crossings(fluid_, whole, &point::h, intervals_), intervals_));
    }
    void finish(std::string_view name, std::string place, const point &to, std::size_t first,
                std::vector<point> points) {
        result_.states.push_back({std::move(place), to});
        result_.processes.push_back({name, first, result_.states.size() - 1, std::move(points)});
    }

    const ostrel::fluid &fluid_;
    std::size_t intervals_;
    cycle_result result_;
};

void check_order(double low, std::string_view low_name, double high, std::string_view high_name) {
    if (!(low < high))
        throw impossible(
            sentence({low_name, " is ", shown(low, "Pa"), ", not below ", high_name, ", ", shown(high, "Pa")}));
}

/// [kg/s] from the definition; a NaN if it leaves it open.
double mass_flow_of(const definition &wanted, double work, double heat_in, double heat_out) {
    double result = nan;
    const char *from = "";
    const auto take = [&](double found, const char *what) {
        if (std::isnan(found))
            return;
        if (!std::isnan(result))
            throw impossible(
                sentence({"the mass flow follows twice, from ", from, " and from ", what, "; leave out one of them"}));
        result = found;
        from = what;
    };
    one_of(wanted, &definition::flow_mass, &definition::flow_power);
    take(value_of(wanted, &definition::flow_mass), "flow.mass");
    if (wanted.flow_power && !(work > 0))
        throw impossible("flow.power is given, but the cycle's net work is " + shown(work, "J/kg") +
                         "; give flow.mass, or change the pressures");
    if (wanted.flow_power)
        take(*wanted.flow_power / work, "flow.power");
    take(mass_flow_from(wanted, source, heat_in), "the heat of the source");
    take(mass_flow_from(wanted, sink, heat_out), "the heat of the sink");
    return result;
}

/// Adds what both kinds of cycles have. inlet, outlet [-] of the turbine or compressor
void add_flows(const definition &wanted, double work, const point &inlet, const point &outlet, figures_type &figures) {
    figures.net_work = work;
    figures.mass_flow = mass_flow_of(wanted, work, figures.heat_in, figures.heat_out);
    figures.net_power = figures.mass_flow * work;
    figures.heat_flow_in = figures.mass_flow * figures.heat_in;
    figures.heat_flow_out = figures.mass_flow * figures.heat_out;
    figures.volume_flow_in = figures.mass_flow / inlet.d;
    figures.volume_flow_out = figures.mass_flow / outlet.d;
}

cycle_result solve_rankine(const ostrel::fluid &fluid, const definition &wanted, std::size_t intervals) {
    const bool regenerated = is_wanted(wanted, regenerator);
    const double drop_hot = regenerated ? value_of(wanted, regenerator.drop_hot) : 0;
    const double drop_cold = regenerated ? value_of(wanted, regenerator.drop_cold) : 0;
    const double pump_efficiency = value_of(wanted, &definition::pump_efficiency);
    const double turbine_efficiency = value_of(wanted, &definition::turbine_efficiency);

    const point liquid = outlet_of(fluid, wanted, condenser, false);
    const point turbine_in = outlet_of(fluid, wanted, evaporator, true);
    check_order(liquid.p, "the condenser's pressure", turbine_in.p, "the evaporator's pressure");
    const double p_exhaust = liquid.p + value_of(wanted, &definition::condenser_drop) + drop_hot;
    check_order(p_exhaust, "the turbine's outlet pressure", turbine_in.p, "its inlet pressure");
    const double p_pump = turbine_in.p + value_of(wanted, &definition::evaporator_drop) + drop_cold;

    const point pumped = worked(fluid, liquid, p_pump, pump_efficiency, "pump outlet");
    const point exhaust = worked(fluid, turbine_in, p_exhaust, turbine_efficiency, "turbine outlet");
    exchanged inside = {exhaust, pumped, nan, nan};
    if (regenerated)
        inside = exchange(fluid, wanted, regenerator, exhaust, pumped);
    if (!(turbine_in.h > inside.cold_out.h))
        throw impossible("evaporator: the fluid enters at " + shown(inside.cold_out.t, "K") + " and leaves at " +
                         shown(turbine_in.t, "K") + ", so that it takes no heat; its outlet must be hotter");

    figures_type figures;
    figures.turbine_work = turbine_in.h - exhaust.h;
    figures.pump_work = pumped.h - liquid.h;
    figures.heat_in = turbine_in.h - inside.cold_out.h;
    figures.heat_out = inside.hot_out.h - liquid.h;
    figures.internal_heat = inside.heat;
    figures.internal_pinch = inside.pinch;
    figures.back_work_ratio = figures.pump_work / figures.turbine_work;
    figures.pressure_ratio = turbine_in.p / exhaust.p;
    figures.volume_ratio = turbine_in.d / exhaust.d;
    add_flows(wanted, figures.turbine_work - figures.pump_work, turbine_in, exhaust, figures);
    figures.efficiency = figures.net_work / figures.heat_in;
    figures.size_parameter =
        std::sqrt(figures.volume_flow_out) / std::pow(figures.turbine_work / turbine_efficiency, 0.25);
    const double t_source =
        add_stream(fluid, wanted, source, evaporator.name, inside.cold_out, turbine_in, figures.heat_in, figures);
    const double t_sink =
        add_stream(fluid, wanted, sink, condenser.name, liquid, inside.hot_out, figures.heat_out, figures);
    figures.second_law = figures.efficiency / (1 - t_sink / t_source);

    course around(fluid, intervals);
    around.start("pump inlet", liquid);
    around.work("pump", "pump outlet", pumped, pump_efficiency);
    if (regenerated)
        around.exchange("regenerator, cold side", "evaporator inlet", inside.cold_out);
    around.exchange("evaporator", "turbine inlet", turbine_in);
    around.work("turbine", "turbine outlet", exhaust, turbine_efficiency);
    if (regenerated)
        around.exchange("regenerator, hot side", "condenser inlet", inside.hot_out);
    around.exchange("condenser", "pump inlet", liquid);
    cycle_result result = std::move(around).closed();
    result.figures = figures;
    return result;
}

cycle_result solve_compression(const ostrel::fluid &fluid, const definition &wanted, std::size_t intervals) {
    const bool exchanging = is_wanted(wanted, exchanger);
    const double efficiency = value_of(wanted, &definition::compressor_efficiency);
    const bool cools_gas = wanted.gas_cooler_p || wanted.gas_cooler_t_out || wanted.gas_cooler_drop;
    for (const auto member : {condenser.p, condenser.t, condenser.away, condenser.t_out, &definition::condenser_drop})
        if (cools_gas && wanted.*member)
            throw impossible(name_of(key_of(member)) +
                             " is given beside a gas_cooler; a cycle has a condenser or a gas cooler");
    if (cools_gas && !(wanted.gas_cooler_p && wanted.gas_cooler_t_out))
        throw impossible("a gas_cooler needs both p and t_out");
    const std::string_view cooler = cools_gas ? "gas cooler" : condenser.name;

    const point suction = outlet_of(fluid, wanted, evaporator, false);
    const point cooled =
        cools_gas ? point_at(fluid, "pt", *wanted.gas_cooler_p, *wanted.gas_cooler_t_out, "gas cooler outlet")
                  : outlet_of(fluid, wanted, condenser, false);
    exchanged inside = {cooled, suction, nan, nan};
    if (exchanging)
        inside = exchange(fluid, wanted, exchanger, cooled, suction);
    const double p_valve = suction.p + value_of(wanted, &definition::evaporator_drop);
    check_order(p_valve, "the evaporator's pressure", inside.hot_out.p, "the pressure before the valve");
    const double p_discharge =
        cooled.p + value_of(wanted, cools_gas ? &definition::gas_cooler_drop : &definition::condenser_drop);
    const point discharge = worked(fluid, inside.cold_out, p_discharge, efficiency, "compressor outlet");
    const point throttled = point_at(fluid, "ph", p_valve, inside.hot_out.h, "valve outlet");
    if (!(suction.h > throttled.h))
        throw impossible("evaporator: the valve's outlet has the enthalpy " + shown(throttled.h, "J/kg") +
                         " and the evaporator's outlet " + shown(suction.h, "J/kg") +
                         ", so that it takes no heat; cool the fluid more before the valve");
    if (!(discharge.h > cooled.h))
        throw impossible(
            sentence({cooler, ": the compressor's outlet at ", shown(discharge.t, "K"),
                      " has no heat to give; its own outlet, ", shown(cooled.t, "K"), ", must be colder"}));

    figures_type figures;
    figures.compressor_work = discharge.h - inside.cold_out.h;
    figures.heat_in = suction.h - throttled.h;
    figures.heat_out = discharge.h - cooled.h;
    figures.internal_heat = inside.heat;
    figures.internal_pinch = inside.pinch;
    figures.cop_cooling = figures.heat_in / figures.compressor_work;
    figures.cop_heating = figures.heat_out / figures.compressor_work;
    figures.pressure_ratio = discharge.p / inside.cold_out.p;
    figures.volume_ratio = discharge.d / inside.cold_out.d;
    figures.volumetric_capacity = figures.heat_in * inside.cold_out.d;
    add_flows(wanted, figures.compressor_work, inside.cold_out, discharge, figures);
    figures.net_work = nan; // it is the compressor's
    const double t_source =
        add_stream(fluid, wanted, source, evaporator.name, throttled, suction, figures.heat_in, figures);
    const double t_sink = add_stream(fluid, wanted, sink, cooler, cooled, discharge, figures.heat_out, figures);
    figures.second_law = figures.cop_cooling * (t_sink - t_source) / t_source;

    course around(fluid, intervals);
    around.start(exchanging ? "evaporator outlet" : "compressor inlet", suction);
    if (exchanging)
        around.exchange("exchanger, cold side", "compressor inlet", inside.cold_out);
    around.work("compressor", "compressor outlet", discharge, efficiency);
    around.exchange(cooler, exchanging ? std::string(cooler) + " outlet" : "valve inlet", cooled);
    if (exchanging)
        around.exchange("exchanger, hot side", "valve inlet", inside.hot_out);
    around.throttle("valve", "evaporator inlet", throttled);
    around.exchange("evaporator", "evaporator outlet", suction);
    cycle_result result = std::move(around).closed();
    result.figures = figures;
    return result;
}

} // namespace

cycle_figures::cycle_figures() {
    for (const cycle_figure &row : figure_rows)
        this->*row.member = nan;
}

std::span<const cycle_kind_row> cycle_kinds() {
    return kinds;
}

std::span<const cycle_key> cycle_keys() {
    return keys;
}

const cycle_key *cycle_key_named(std::string_view name) {
    const auto *const found =
        std::find_if(std::begin(keys), std::end(keys), [&](const cycle_key &key) { return name_of(key) == name; });
    return found != std::end(keys) ? found : nullptr;
}

std::span<const cycle_figure> cycle_figure_list() {
    return figure_rows;
}

cycle_result solve(const ostrel::fluid &fluid, const cycle_definition &wanted, std::size_t intervals) {
    need_equilibrium(fluid, "a cycle");
    if (!saturation_at(fluid, fluid.constant("p_crit")))
        throw impossible(sentence({fluid.text("name"), " has no saturation line with the equation ",
                                   fluid.text("model"), ", and a cycle needs one; choose another equation"}));
    check_values(wanted);
    check_stream(wanted, source);
    check_stream(wanted, sink);
    intervals = std::max<std::size_t>(intervals, 1);
    return wanted.kind == cycle_kind::rankine ? solve_rankine(fluid, wanted, intervals)
                                              : solve_compression(fluid, wanted, intervals);
}

} // namespace studies
