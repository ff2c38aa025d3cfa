// SPDX-License-Identifier: MIT
#include "Studies/curves.h"

#include "Studies/remarks.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>

namespace studies {
namespace {

constexpr property_text property_table[] = {
    {"t", "temperature", "T", "K", "isotherms", false},
    {"p", "pressure", "p", "Pa", "isobars", true},
    {"v", "specific volume", "v", "m3/kg", "isochores", true},
    {"h", "specific enthalpy", "h", "J/kg", "isenthalps", false},
    {"s", "specific entropy", "s", "J/(kg K)", "isentropes", false},
    {"q", "vapor quality", "q", "1", "lines of constant quality", false},
};

constexpr diagram_kind kind_table[] = {
    {"ts", property::s, property::t, "phq", "pvhq"}, {"ph", property::h, property::p, "tsq", "tvsq"},
    {"pv", property::v, property::p, "tsq", "thsq"}, {"hs", property::s, property::h, "ptq", "ptvq"},
    {"pt", property::t, property::p, "vh", "vhs"},
};

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// A state: t, p, v, h, s in the order of `property`.
struct sampled {
    std::array<double, 5> of{nan, nan, nan, nan, nan};
    bool exists = false;
    double operator[](property what) const { return of[static_cast<std::size_t>(what)]; }
};
constexpr const char *sampled_outputs = "t, p, v, h, s";

sampled state_of(const ostrel::fluid &fluid, const char *pair, double first, double second) {
    sampled made;
    int status = 0;
    const auto done = fluid.try_evaluate(ostrel::unchecked(pair), ostrel::unchecked(sampled_outputs), {&first, 1},
                                         {&second, 1}, made.of, {&status, 1});
    made.exists = done.has_value() && std::ranges::all_of(made.of, [](double x) { return std::isfinite(x); });
    return made;
}

/// A place along the saturation line, with both phases.
struct saturated_sample {
    double depth; ///< sqrt(1 - t/t_crit), in which the phases are smooth up to the critical point
    sampled phases[2];
};

/// Coordinates in which both axes go from 0 to 1.
class unit_square {
public:
    unit_square(const diagram_kind &kind, axis_range x, axis_range y)
        : x_(x), y_(y), x_log_(text_of(kind.x).logarithmic), y_log_(text_of(kind.y).logarithmic) {}
    diagram_point operator()(diagram_point at) const { return {place(at.x, x_, x_log_), place(at.y, y_, y_log_)}; }

private:
    static double place(double value, axis_range in, bool logarithmic) {
        return logarithmic ? std::log(value / in.low) / std::log(in.high / in.low)
                           : (value - in.low) / (in.high - in.low);
    }
    axis_range x_;
    axis_range y_;
    bool x_log_;
    bool y_log_;
};

/// The distance between the square from 0 to 1 and a point.
double outside(diagram_point at) {
    const auto beyond = [](double x) { return std::max({0.0, -x, x - 1}); };
    return std::max(beyond(at.x), beyond(at.y));
}

double length(diagram_point a, diagram_point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

/// How far a point is from the chord between two others.
double deviation(diagram_point a, diagram_point between, diagram_point b) {
    const double chord = length(a, b);
    if (chord == 0)
        return length(a, between);
    return std::abs((b.x - a.x) * (between.y - a.y) - (b.y - a.y) * (between.x - a.x)) / chord;
}

/// The sine of the angle between two chords.
double turn(diagram_point start, diagram_point middle, diagram_point end) {
    const double lengths = length(start, middle) * length(middle, end);
    return lengths > 0
               ? std::abs((middle.x - start.x) * (end.y - middle.y) - (middle.y - start.y) * (end.x - middle.x)) /
                     lengths
               : 0;
}

/// Everything that the curves of one diagram need.
class drawing_board {
public:
    drawing_board(const ostrel::fluid &fluid, const diagram_request &asked)
        : fluid_(fluid), kind_(*asked.kind), asked_(asked), t_scale_(fluid.constant("t_crit")),
          p_scale_(fluid.constant("p_crit")) {
        if (!(t_scale_ > 0) || !(p_scale_ > 0)) {
            t_scale_ = fluid.constant("t_ref");
            p_scale_ = fluid.constant("p_ref");
        }
        find_lowest_temperature();
        sample_saturation(first_samples());
        choose_ranges();
    }

    axis_range x() const { return x_; }
    axis_range y() const { return y_; }

    diagram made() {
        diagram result{.kind = &kind_, .x = x_, .y = y_, .t_low = t_low_, .t_low_reason = reason_};
        refine_saturation();
        add_dome(result);
        const std::string families = asked_.families.value_or(std::string(kind_.families));
        for (const char letter : families)
            for (std::size_t i = 0; i < property_count; ++i)
                if (property_table[i].letter.front() == letter)
                    add_family(result, static_cast<property>(i));
        if (!any_line_ && states_.empty())
            find_states();
        if (!any_line_ && states_.empty())
            throw no_diagram("the fluid has no states in the ranges of the axes");
        const std::vector<double> temperatures = values_in_diagram(property::t);
        result.t_high = temperatures.empty() ? t_low_ : temperatures.back();
        return result;
    }

private:
    using path = std::function<sampled(double)>;

    diagram_point projected(const sampled &state) const { return {state[kind_.x], state[kind_.y]}; }
    diagram_point in_square(const sampled &state) const { return square_(projected(state)); }

    // ---- The saturation line

    bool has_line() const { return !line_.empty(); }

    void find_lowest_temperature() {
        const double line_end = fluid_.constant("t_sat_min");
        // Far below the critical point the curves say little; vapor pressures below some 1e-5 of the critical one
        // stretch logarithmic axes.
        constexpr double highest = 0.55;
        constexpr double least_pressure = 3e-5;
        double at = 0.5;
        if (line_end < highest * t_scale_)
            for (int hundredths = 55; hundredths >= 40; --hundredths) {
                at = hundredths / 100.0;
                const sampled liquid = state_of(fluid_, "tq", at * t_scale_, 0);
                if (liquid.exists && liquid[property::p] < least_pressure * p_scale_)
                    break;
            }
        t_low_ = at * t_scale_;
        find_limits();
    }
    /// Raises the lowest temperature to the limits of the fluid and of the equation.
    void find_limits() {
        const double triple = fluid_.constant("t_triple");
        if (triple > t_low_ && triple < t_scale_) {
            t_low_ = triple;
            reason_ = lowest_temperature::triple_point;
        }
        // Below its first interval a tabulated heat capacity has no value.
        const double heat_capacity = fluid_.constant("t_cp_min");
        if (heat_capacity > t_low_ && !state_of(fluid_, "tv", t_low_, 1e3 * ideal_volume()).exists) {
            t_low_ = heat_capacity;
            reason_ = lowest_temperature::heat_capacity;
        }
        const double line_end = fluid_.constant("t_sat_min");
        if (line_end >= t_low_) {
            t_low_ = line_end * (1 + 1e-9);
            reason_ = lowest_temperature::line_end;
        }
        find_lowest_liquid();
    }
    /// Some equations have cold liquids without any meaning; nothing is drawn of them.
    void find_lowest_liquid() {
        const double lowest = lowest_liquid_temperature(fluid_, t_low_);
        if (!(lowest > t_low_))
            return;
        t_low_ = lowest;
        reason_ = lowest_temperature::liquid;
    }
    double ideal_volume() const { return fluid_.constant("r_gas") * t_scale_ / p_scale_; }

    saturated_sample saturated_at(double depth) const {
        saturated_sample made{.depth = depth, .phases = {}};
        const double t = t_scale_ * (1 - depth * depth);
        for (const int quality : {0, 1})
            made.phases[quality] = state_of(fluid_, "tq", t, quality);
        return made;
    }

    /// Depths with equal steps, from the lowest temperature to the critical point.
    std::vector<double> first_samples() const {
        constexpr std::size_t count = 48;
        std::vector<double> depths;
        const double deepest = std::sqrt(std::max(0.0, 1 - t_low_ / t_scale_));
        for (std::size_t i = 0; i <= count; ++i)
            depths.push_back(deepest * static_cast<double>(count - i) / static_cast<double>(count));
        return depths;
    }
    void sample_saturation(const std::vector<double> &depths) {
        for (const double depth : depths)
            if (const saturated_sample at = saturated_at(depth); at.phases[0].exists && at.phases[1].exists)
                line_.push_back(at);
        // Without the critical point the dome would not be closed.
        if (line_.size() < 3 || line_.back().depth != 0)
            line_.clear();
    }

    void refine_saturation() {
        if (!has_line())
            return;
        std::vector<saturated_sample> fine = {line_.front()};
        for (std::size_t i = 1; i < line_.size(); ++i)
            refine_saturation(fine, line_[i], 12);
        line_ = std::move(fine);
    }
    void refine_saturation(std::vector<saturated_sample> &fine, const saturated_sample &end, int levels) const {
        const saturated_sample start = fine.back();
        const saturated_sample middle = saturated_at((start.depth + end.depth) / 2);
        const auto smooth = [&](int phase) {
            return is_smooth(in_square(start.phases[phase]), in_square(middle.phases[phase]),
                             in_square(end.phases[phase]));
        };
        const bool exists = middle.phases[0].exists && middle.phases[1].exists;
        if (levels > 0 && exists && !(smooth(0) && smooth(1))) {
            refine_saturation(fine, middle, levels - 1);
            refine_saturation(fine, end, levels - 1);
        } else {
            fine.push_back(end);
        }
    }

    void add_dome(diagram &result) const {
        if (!has_line())
            return;
        result.critical = projected(line_.back().phases[0]);
        for (const saturated_sample &at : line_)
            result.dome.push_back(projected(at.phases[0]));
        result.dome_peak = result.dome.size() - 1;
        if (kind_.x == property::t)
            return;
        for (std::size_t i = line_.size() - 1; i-- > 0;)
            result.dome.push_back(projected(line_[i].phases[1]));
    }

    // ---- Ranges

    /// The smallest and the largest value of a property along the saturation line.
    axis_range on_line(property what) const {
        axis_range found{infinity, -infinity};
        for (const saturated_sample &at : line_)
            for (const sampled &phase : at.phases)
                found = {std::min(found.low, phase[what]), std::max(found.high, phase[what])};
        return found;
    }

    static axis_range wider(axis_range range, double below, double above) {
        const double width = range.high - range.low;
        return {range.low - below * width, range.high + above * width};
    }

    /// Ends at round values of the shown unit: of the ticks, or a quarter of their step.
    axis_range rounded(property what, axis_range range) const {
        const unit shown = shown_unit(text_of(what).si, asked_.units);
        double low = in_unit(range.low, shown);
        double high = in_unit(range.high, shown);
        if (text_of(what).logarithmic) {
            const auto down = [](double x) {
                const double decade = std::pow(10.0, std::floor(std::log10(x) + 1e-9));
                const double mantissa = x / decade;
                return decade * (mantissa < 1.999 ? 1 : mantissa < 4.999 ? 2 : 5);
            };
            low = down(low);
            const double below = down(high);
            high = below > high * 0.999 ? below : 1 / down(1 / high * 1.0001);
        } else {
            const std::vector<double> ticks = round_values(low, high, 9, false);
            if (ticks.size() > 1) {
                const double step = (ticks[1] - ticks[0]) / 2;
                low = step * std::floor(low / step + 1e-9);
                high = step * std::ceil(high / step - 1e-9);
            }
        }
        return {low * shown.factor + shown.offset, high * shown.factor + shown.offset};
    }

    axis_range chosen_range(property what) const {
        constexpr double hot = 1.25;  // of the critical temperature
        constexpr double dense = 3.0; // of the critical pressure
        const double dilute = lowest_pressure();
        const bool narrow = kind_.x == property::v; // Six decades of volume would hide the region of interest.
        const double p_low = std::clamp(dilute, narrow ? 3e-3 * p_scale_ : 3e-5 * p_scale_, 0.2 * p_scale_);
        if (what == property::t)
            return {t_low_, hot * t_scale_};
        if (what == property::p)
            return {p_low, dense * p_scale_};
        if (!has_line())
            return ideal_range(what, p_low, hot);
        if (what == property::v) {
            const sampled vapor = state_of(fluid_, "pq", std::max(p_low, dilute), 1);
            return {0.8 * std::max(on_line(what).low, least_volume()),
                    2 * (vapor.exists ? vapor[what] : on_line(what).high)};
        }
        if (kind_.name == "hs")
            return vapor_range(what, hot);
        axis_range range = wider(on_line(what), 0.04, kind_.x == property::h ? 0.3 : 0.05);
        const double width = range.high - range.low;
        // Room for the superheated vapor.
        const sampled superheated = state_of(fluid_, "pt", std::max(p_low, 0.05 * p_scale_), hot * t_scale_);
        if (kind_.x != property::h && superheated.exists)
            range.high = std::clamp(superheated[what], range.high, range.high + 0.35 * width);
        return range;
    }
    /// Liquids of Clausius II with a negative covolume shrink to nothing; real ones have about a third of the critical
    /// volume.
    double least_volume() const { return 0.15 * fluid_.constant("v_crit"); }
    /// The range of h or s for the vapor and the upper part of the dome: farther down all lines lie upon each other.
    axis_range vapor_range(property what, double hot) const {
        const double critical = line_.back().phases[0][what];
        axis_range vapor{infinity, -infinity};
        for (const saturated_sample &at : line_)
            vapor = {std::min(vapor.low, at.phases[1][what]), std::max(vapor.high, at.phases[1][what])};
        const double cold_liquid = line_.front().phases[0][what];
        axis_range range = {std::min(critical - 0.3 * (critical - cold_liquid), vapor.low), vapor.high};
        const sampled superheated = state_of(fluid_, "pt", lowest_pressure(), hot * t_scale_);
        if (superheated.exists)
            range.high = std::clamp(superheated[what], range.high, range.high + 0.6 * (range.high - range.low));
        return wider(range, 0.03, 0.03);
    }
    /// The range of v, h or s without a saturation line: that of the four corners in t and p.
    axis_range ideal_range(property what, double p_low, double hot) const {
        axis_range range{infinity, -infinity};
        for (const double t : {t_low_, hot * t_scale_})
            for (const double p : {p_low, p_scale_})
                if (const sampled corner = state_of(fluid_, "pt", p, t); corner.exists)
                    range = {std::min(range.low, corner[what]), std::max(range.high, corner[what])};
        if (!(range.low < range.high))
            throw no_diagram("the fluid has no states between " + std::to_string(t_low_) + " K and " +
                             std::to_string(hot * t_scale_) + " K");
        return range;
    }

    /// The part of an axis beside the part of the dome that a given range of the other axis shows.
    axis_range beside(axis_range range, property what, const std::optional<axis_range> &given, property other) const {
        if (!given || text_of(what).logarithmic)
            return range;
        axis_range shown{infinity, -infinity};
        for (const saturated_sample &at : line_)
            for (const sampled &phase : at.phases)
                if (phase[other] >= given->low && phase[other] <= given->high)
                    shown = {std::min(shown.low, phase[what]), std::max(shown.high, phase[what])};
        if (!(shown.low < shown.high))
            return range;
        const axis_range around = wider(shown, 0.3, 0.8);
        return {std::max(range.low, around.low), std::min(range.high, around.high)};
    }

    void choose_ranges() {
        x_ = asked_.x ? *asked_.x : rounded(kind_.x, beside(chosen_range(kind_.x), kind_.x, asked_.y, kind_.y));
        y_ = asked_.y ? *asked_.y : rounded(kind_.y, beside(chosen_range(kind_.y), kind_.y, asked_.x, kind_.x));
        square_ = unit_square(kind_, x_, y_);
        // On logarithmic axes of p and v isotherms at high temperatures are crowded.
        t_high_ = (kind_.x == property::v && !asked_.x && !asked_.y ? 1.6 : 4.0) * t_scale_;
        if (!asked_.x && !asked_.y)
            return;
        // A range that was given decides how far down the states go.
        const axis_range *const t = axis_of(property::t);
        if (t != nullptr && t->low > 0 && t->low < t_low_ && reason_ == lowest_temperature::chosen) {
            t_low_ = t->low;
            find_limits();
            line_.clear();
            sample_saturation(first_samples());
        }
    }

    // ---- Sampling

    static bool is_smooth(diagram_point start, diagram_point middle, diagram_point end) {
        constexpr double chord = 1.5e-4;
        constexpr double longest = 0.04;
        // Far outside only the way back counts.
        const double near = std::min({outside(start), outside(middle), outside(end)});
        if (near > 0.1)
            return near > 0.5 || length(start, end) < 1;
        const double first = length(start, middle);
        const double second = length(middle, end);
        return deviation(start, middle, end) < chord && std::max(first, second) < longest &&
               (std::max(first, second) < 1e-3 || turn(start, middle, end) < 0.1);
    }

    /// Adds the samples behind the last one of the piece, up to the end. Where there are no states, or where the curve
    /// jumps, a new piece begins.
    void sample(std::vector<polyline> &pieces, const path &along, double from, const sampled &start, double to,
                const sampled &end, int levels) const {
        if (start.exists != end.exists) {
            sample_to_limit(pieces, along, from, start, to, end, levels);
            return;
        }
        const auto [between, middle] = between_states(along, from, start, to, end);
        if (levels == 0 || between == from || between == to || !middle.exists) {
            if (!start.exists)
                return;
            if (length(in_square(start), in_square(end)) > 0.01)
                pieces.emplace_back();
            pieces.back().push_back(projected(end));
        } else if (start.exists && is_smooth(in_square(start), in_square(middle), in_square(end))) {
            pieces.back().push_back(projected(middle));
            pieces.back().push_back(projected(end));
        } else {
            sample(pieces, along, from, start, between, middle, levels - 1);
            sample(pieces, along, between, middle, to, end, levels - 1);
        }
    }

    /// The state in the middle, or another one if the search fails just there.
    static std::pair<double, sampled> between_states(const path &along, double from, const sampled &start, double to,
                                                     const sampled &end) {
        std::pair<double, sampled> found;
        for (const double part : {0.5, 0.41, 0.59}) {
            found.first = from + part * (to - from);
            found.second = along(found.first);
            if (found.second.exists || !start.exists || !end.exists)
                break;
        }
        return found;
    }

    /// Samples between a state and a place without one, up to the last state.
    void sample_to_limit(std::vector<polyline> &pieces, const path &along, double from, const sampled &start, double to,
                         const sampled &end, int levels) const {
        double inside = start.exists ? from : to;
        double beyond = start.exists ? to : from;
        sampled last = start.exists ? start : end;
        for (int step = 0; step < 40; ++step) {
            const double middle = (inside + beyond) / 2;
            if (middle == inside || middle == beyond)
                break;
            const sampled state = along(middle);
            if (state.exists && length(in_square(state), in_square(last)) < 1e-5 && step > 3)
                break;
            if (state.exists)
                last = state;
            (state.exists ? inside : beyond) = middle;
        }
        if (start.exists) {
            if (inside != from)
                sample(pieces, along, from, start, inside, last, levels - 1);
            pieces.emplace_back();
        } else {
            pieces.emplace_back();
            pieces.back().push_back(projected(last));
            if (inside != to)
                sample(pieces, along, inside, last, to, end, levels - 1);
        }
    }

    /// A place on the path of an isoline at which it enters or leaves the dome, with its state.
    struct corner {
        double at;
        sampled state;
    };

    /// Samples a path between its ends; corners are points of the curve.
    void trace(isoline &into, const path &along, double from, double to, std::vector<corner> corners,
               bool skip_dome = false) const {
        std::erase_if(corners, [&](const corner &one) {
            return !one.state.exists || !(one.at > std::min(from, to) && one.at < std::max(from, to));
        });
        std::ranges::sort(corners,
                          [&](const corner &a, const corner &b) { return from < to ? a.at < b.at : a.at > b.at; });
        std::vector<corner> ends = {{from, along(from)}};
        std::ranges::copy(corners, std::back_inserter(ends));
        ends.push_back({to, along(to)});
        std::vector<polyline> pieces(1);
        if (ends.front().state.exists)
            pieces.back().push_back(projected(ends.front().state));
        for (std::size_t i = 1; i < ends.size(); ++i) {
            if (skip_dome && in_dome(along((ends[i - 1].at + ends[i].at) / 2))) {
                pieces.emplace_back();
                if (ends[i].state.exists)
                    pieces.back().push_back(projected(ends[i].state));
                continue;
            }
            constexpr int parts = 8;
            corner last = ends[i - 1];
            for (int part = 1; part <= parts; ++part) {
                corner next = ends[i];
                if (part < parts) {
                    next.at = last.at + (ends[i].at - last.at) / (parts - part + 1);
                    next.state = along(next.at);
                }
                sample(pieces, along, last.at, last.state, next.at, next.state, 30);
                last = next;
            }
        }
        keep(into, pieces);
    }

    /// Adds what can be seen of the pieces: points inside of the ranges and their neighbours.
    void keep(isoline &into, const std::vector<polyline> &pieces) const {
        for (const polyline &piece : pieces) {
            polyline seen;
            const auto end = [&] {
                if (seen.size() > 1)
                    into.pieces.push_back(std::move(seen));
                seen.clear();
            };
            for (std::size_t i = 0; i < piece.size(); ++i) {
                const auto near = [&](std::size_t at) { return outside(square_(piece[at])) < 1e-9; };
                const bool wanted = near(i) || (i > 0 && near(i - 1)) || (i + 1 < piece.size() && near(i + 1));
                if (wanted && (seen.empty() || seen.back().x != piece[i].x || seen.back().y != piece[i].y))
                    seen.push_back(piece[i]);
                else if (!wanted)
                    end();
            }
            end();
        }
    }

    bool in_dome(const sampled &state) const {
        if (!state.exists || !has_line())
            return false;
        const auto q = fluid_.try_value("tv", state[property::t], state[property::v], "q");
        return q.has_value() && *q > 0 && *q < 1;
    }

    /// Where a property of a saturated phase has this value; the place is that state's value of `place`, or its
    /// logarithm.
    std::vector<corner> corners_at(property what, double value, property place, bool logarithmic) const {
        std::vector<corner> found;
        for (int phase = 0; phase < 2; ++phase)
            for (std::size_t i = 1; i < line_.size(); ++i) {
                const auto above = [&](const sampled &state) { return state[what] > value; };
                const bool before = above(line_[i - 1].phases[phase]);
                if (before == above(line_[i].phases[phase]))
                    continue;
                double low = line_[i - 1].depth;
                double high = line_[i].depth;
                sampled state = line_[i].phases[phase];
                for (int step = 0; step < 60 && low != high; ++step) {
                    const double middle = (low + high) / 2;
                    const sampled at = saturated_at(middle).phases[phase];
                    if (!at.exists || middle == low || middle == high)
                        break;
                    state = at;
                    (above(at) == before ? low : high) = middle;
                }
                found.push_back({logarithmic ? std::log(state[place]) : state[place], state});
            }
        return found;
    }

    // ---- Isolines

    /// A state inside of the limits of the diagram.
    sampled limited(const char *pair, double first, double second) const {
        sampled state = state_of(fluid_, pair, first, second);
        const double t = state[property::t];
        state.exists = state.exists && t >= t_low_ * (1 - 1e-12) && t <= t_high_ && state[property::p] > 0 &&
                       state[property::v] > 0;
        return state;
    }

    /// The values that a property takes in the diagram: on the saturation line and on a grid of t and p.
    std::vector<double> values_in_diagram(property what) {
        if (states_.empty())
            find_states();
        std::vector<double> values;
        for (const sampled &state : states_)
            if (what != property::v || !has_line() || state[what] > least_volume())
                values.push_back(state[what]);
        std::ranges::sort(values);
        return values;
    }
    void find_states() {
        constexpr int steps = 24;
        const auto add = [&](const sampled &state) {
            if (state.exists && outside(in_square(state)) <= 1e-9)
                states_.push_back(state);
        };
        for (const saturated_sample &at : line_)
            std::ranges::for_each(at.phases, add);
        const axis_range *const t_axis = axis_of(property::t);
        const axis_range *const p_axis = axis_of(property::p);
        const axis_range t = t_axis != nullptr ? *t_axis : axis_range{t_low_, std::min(t_high_, 3 * t_scale_)};
        const axis_range p = p_axis != nullptr ? *p_axis : axis_range{lowest_pressure(), p_high()};
        for (int i = 0; i <= steps; ++i)
            for (int k = 0; k <= steps; ++k)
                add(limited("pt", p.low * std::pow(p.high / p.low, k / double{steps}),
                            t.low + (t.high - t.low) * i / steps));
        // In narrow ranges the grid may have missed everything.
        if (states_.size() < std::size_t{steps})
            find_states_by_axes();
    }
    void find_states_by_axes() {
        constexpr int steps = 8;
        const auto between = [](axis_range in, bool logarithmic, double part) {
            return logarithmic ? in.low * std::pow(in.high / in.low, part) : in.low + part * (in.high - in.low);
        };
        const std::string pair = std::string(text_of(kind_.x).letter) + std::string(text_of(kind_.y).letter);
        for (int i = 0; i <= steps; ++i)
            for (int k = 0; k <= steps; ++k) {
                const sampled state =
                    limited(pair.c_str(), between(x_, text_of(kind_.x).logarithmic, i / double{steps}),
                            between(y_, text_of(kind_.y).logarithmic, k / double{steps}));
                if (state.exists)
                    states_.push_back(state);
            }
    }
    const axis_range *axis_of(property what) const { return kind_.x == what ? &x_ : kind_.y == what ? &y_ : nullptr; }
    /// The highest pressure in diagrams without an axis of pressures: a round one, so that its isobar is the edge.
    double p_high() const { return rounded(property::p, {p_scale_, 4 * p_scale_}).high; }
    double lowest_pressure() const { return has_line() ? line_.front().phases[1][property::p] : 1e-3 * p_scale_; }

    /// Lines fan out in most planes, but for logarithmic p and v.
    std::size_t most_lines(bool first) const {
        const bool parallel = kind_.x == property::v;
        return first ? (parallel ? 9 : 14) : (parallel ? 6 : 10);
    }

    /// Round values of the isolines of a family.
    std::vector<double> chosen_values(property what, bool first) {
        if (what == property::q)
            return first ? std::vector<double>{0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9}
                         : std::vector<double>{0.2, 0.4, 0.6, 0.8};
        const std::vector<double> grid = values_in_diagram(what);
        if (grid.empty())
            return {};
        const unit shown = shown_unit(text_of(what).si, asked_.units);
        std::vector<double> values = round_values(in_unit(grid.front(), shown), in_unit(grid.back(), shown),
                                                  most_lines(first), text_of(what).logarithmic);
        for (double &value : values)
            value = value * shown.factor + shown.offset;
        return values;
    }

    void add_family(diagram &result, property what) {
        const std::vector<double> &given = asked_.values[static_cast<std::size_t>(what)];
        const bool first = result.lines.empty();
        for (const double value : given.empty() ? chosen_values(what, first) : given) {
            isoline line{.what = what, .value = value};
            trace(line);
            if (!line.pieces.empty()) {
                any_line_ = true;
                result.lines.push_back(std::move(line));
            }
        }
    }

    /// The range of pressures in the diagram, as logarithms.
    axis_range pressures() {
        if (kind_.y == property::p)
            return {std::log(y_.low), std::log(y_.high)};
        const std::vector<double> grid = values_in_diagram(property::p);
        if (grid.empty())
            return {std::log(1e-3 * p_scale_), std::log(p_scale_)};
        return {std::log(grid.front()) - 2, std::log(p_high())};
    }

    void trace(isoline &line) {
        switch (line.what) {
        case property::p:
            trace_isobar(line);
            break;
        case property::t:
            trace_isotherm(line);
            break;
        case property::v:
            trace_isochore(line);
            break;
        case property::h:
            trace_by_pressure(line, "ph");
            break;
        case property::s:
            trace_by_pressure(line, "ps");
            break;
        case property::q:
            trace_quality(line);
            break;
        }
    }

    /// Both saturated states at a temperature or a pressure, if there are such states in the diagram.
    std::array<sampled, 2> phases_at(const char *pair, double value) const {
        if (!has_line())
            return {};
        std::array<sampled, 2> phases = {limited(pair, value, 0), limited(pair, value, 1)};
        for (sampled &phase : phases)
            phase.exists = phase.exists && phase[property::t] >= line_.front().phases[0][property::t] * (1 - 1e-12);
        if (!phases[0].exists || !phases[1].exists || phases[0].of == phases[1].of)
            return {};
        return phases;
    }

    void join(isoline &line, const std::array<sampled, 2> &phases) const {
        if (!phases[0].exists)
            return;
        // Between the phases the line is straight in every plane in which it is a line.
        std::vector<polyline> pieces(1);
        const path across = [&](double part) {
            sampled mixed = phases[0];
            for (std::size_t i = 0; i < mixed.of.size(); ++i)
                mixed.of[i] += part * (phases[1].of[i] - phases[0].of[i]);
            return mixed;
        };
        pieces.back().push_back(projected(phases[0]));
        sample(pieces, across, 0, phases[0], 1, phases[1], 30);
        keep(line, pieces);
    }

    void trace_isobar(isoline &line) {
        const path along = [&](double s) { return limited("ps", line.value, s); };
        axis_range reach = x_;
        const std::array<sampled, 2> phases = phases_at("pq", line.value);
        std::vector<corner> corners;
        for (const sampled &phase : phases)
            if (phase.exists)
                corners.push_back({phase[property::s], phase});
        trace(line, along, reach.low, reach.high, corners);
    }

    void trace_isotherm(isoline &line) {
        const path along = [&](double log_p) { return limited("pt", std::exp(log_p), line.value); };
        const axis_range reach = pressures();
        const std::array<sampled, 2> phases = phases_at("tq", line.value);
        if (!phases[0].exists) {
            trace(line, along, reach.high, reach.low, {});
            return;
        }
        const double at = std::log(phases[0][property::p]);
        // Rounding of the pressure must not lead to the other phase.
        const auto beside = [&](int phase) {
            return path([&along, &phases, at, phase](double log_p) {
                const bool over = phase == 0 ? log_p <= at : log_p >= at;
                return over ? phases[static_cast<std::size_t>(phase)] : along(log_p);
            });
        };
        if (reach.high > at)
            trace(line, beside(0), reach.high, at, {});
        join(line, phases);
        if (reach.low < at)
            trace(line, beside(1), at, reach.low, {});
        merge(line);
    }

    void trace_isochore(isoline &line) {
        const path along = [&](double t) { return limited("tv", t, line.value); };
        const double hot = kind_.x == property::t ? x_.high : kind_.y == property::t ? y_.high : t_high_;
        trace(line, along, t_low_, hot, corners_at(property::v, line.value, property::t, false),
              kind_.x == property::t);
    }

    void trace_by_pressure(isoline &line, const char *pair) {
        const path along = [&, pair](double log_p) { return limited(pair, std::exp(log_p), line.value); };
        const axis_range reach = pressures();
        trace(line, along, reach.high, reach.low, corners_at(line.what, line.value, property::p, true),
              kind_.x == property::t);
    }

    void trace_quality(isoline &line) {
        if (!has_line() || kind_.x == property::t)
            return;
        const path along = [&](double depth) {
            return depth == 0 ? line_.back().phases[0] : limited("tq", t_scale_ * (1 - depth * depth), line.value);
        };
        trace(line, along, line_.front().depth, 0, {});
    }

    /// Joins pieces where one begins with the last point of the one before.
    static void merge(isoline &line) {
        std::vector<polyline> merged;
        for (polyline &piece : line.pieces) {
            const auto same = [&](diagram_point a, diagram_point b) { return a.x == b.x && a.y == b.y; };
            if (!merged.empty() && same(merged.back().back(), piece.front()))
                merged.back().insert(merged.back().end(), piece.begin() + 1, piece.end());
            else
                merged.push_back(std::move(piece));
        }
        line.pieces = std::move(merged);
    }

    const ostrel::fluid &fluid_;
    const diagram_kind &kind_;
    const diagram_request &asked_;
    double t_scale_; ///< [K] critical temperature, or one of the same order
    double p_scale_; ///< [Pa]
    double t_low_ = 0;
    double t_high_ = 0;
    lowest_temperature reason_ = lowest_temperature::chosen;
    bool any_line_ = false;
    std::vector<sampled> states_;        ///< in the diagram
    std::vector<saturated_sample> line_; ///< from the lowest temperature to the critical point
    axis_range x_{0, 1};
    axis_range y_{0, 1};
    unit_square square_{kind_, x_, y_};
};

} // namespace

const property_text &text_of(property what) {
    return property_table[static_cast<std::size_t>(what)];
}

std::span<const diagram_kind> diagram_kinds() {
    return kind_table;
}

const diagram_kind *diagram_kind_named(std::string_view name) {
    const auto *const found = std::ranges::find(kind_table, name, &diagram_kind::name);
    return found != std::end(kind_table) ? found : nullptr;
}

std::vector<double> round_values(double low, double high, std::size_t most, bool logarithmic) {
    std::vector<double> values;
    if (!(low < high) || !std::isfinite(low) || !std::isfinite(high) || (logarithmic && low <= 0) || most == 0)
        return values;
    if (!logarithmic) {
        double decade = std::pow(10.0, std::floor(std::log10((high - low) / static_cast<double>(most))));
        double step = 0;
        for (const double factor : {1.0, 2.0, 5.0, 10.0, 20.0}) {
            step = factor * decade;
            const double count = std::floor(high / step + 1e-9) - std::ceil(low / step - 1e-9) + 1;
            if (count <= static_cast<double>(most))
                break;
        }
        // A step below 1 is divided by, since its multiples then are the decimal numbers.
        const double inverse = std::round(1 / step);
        const double first = std::ceil(low / step - 1e-9);
        const double last = std::floor(high / step + 1e-9);
        for (std::size_t i = 0; first + static_cast<double>(i) <= last; ++i) {
            const double multiple = first + static_cast<double>(i);
            values.push_back(step < 1 ? multiple / inverse : multiple * step);
        }
        return values;
    }
    const int first = static_cast<int>(std::floor(std::log10(low) + 1e-9));
    const int last = static_cast<int>(std::floor(std::log10(high) + 1e-9));
    for (const auto &mantissas : {std::vector{1, 2, 5}, std::vector{1, 5}, std::vector{1}}) {
        values.clear();
        for (int decade = first; decade <= last; ++decade)
            for (const int mantissa : mantissas) {
                const double power = std::pow(10.0, std::abs(decade));
                const double value = decade < 0 ? mantissa / power : mantissa * power;
                if (value >= low * (1 - 1e-9) && value <= high * (1 + 1e-9))
                    values.push_back(value);
            }
        if (values.size() <= most)
            break;
    }
    return values;
}

std::array<axis_range, 2> diagram_ranges(const ostrel::fluid &fluid, const diagram_request &asked) {
    const drawing_board board(fluid, asked);
    return {board.x(), board.y()};
}

diagram make_diagram(const ostrel::fluid &fluid, const diagram_request &asked) {
    return drawing_board(fluid, asked).made();
}

polyline in_plane(const ostrel::fluid &fluid, const diagram_kind &kind, std::span<const ostrel::state> states) {
    const std::string outputs = std::string(text_of(kind.x).letter) + "," + std::string(text_of(kind.y).letter);
    std::vector<double> values(2 * states.size());
    // The values of a state that failed are NaN.
    static_cast<void>(fluid.try_outputs(ostrel::unchecked(outputs), states, values));
    polyline points;
    for (std::size_t i = 0; i < states.size(); ++i)
        points.push_back({values[2 * i], values[2 * i + 1]});
    return points;
}

namespace {

/// A temperature in shown units.
std::string temperature(double t, unit_system units) {
    const unit shown = shown_unit("K", units);
    std::array<char, 32> digits{};
    constexpr int precision = 5;
    const char *const end = std::to_chars(digits.data(), digits.data() + digits.size(), in_unit(t, shown),
                                          std::chars_format::general, precision)
                                .ptr;
    std::string text(digits.data(), static_cast<std::size_t>(end - digits.data()));
    if (text.starts_with('-'))
        text.replace(0, 1, "−");
    return text + (shown.name == "degC" ? " °C" : " " + std::string(shown.name));
}

} // namespace

std::string capitalised(std::string text) {
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

std::string beginning_of(const diagram &curves, unit_system units) {
    const std::string from = "drawn from " + temperature(curves.t_low, units) + ", ";
    std::string text;
    switch (curves.t_low_reason) {
    case lowest_temperature::chosen:
        break;
    case lowest_temperature::triple_point:
        text = from + "the triple point of the real fluid";
        break;
    case lowest_temperature::heat_capacity:
        text = from + "where the heat capacity begins";
        break;
    case lowest_temperature::line_end:
        text = from + "where the saturation line of the equation ends";
        break;
    case lowest_temperature::liquid:
        text = from + "below which the liquid of the equation has no meaning";
        break;
    }
    if (curves.dome.empty())
        text += (text.empty() ? "" : "; ") + std::string("no saturation line");
    return text;
}

std::string extrapolation_of(const ostrel::fluid &fluid, const diagram &curves, unit_system units) {
    const double lowest = fluid.constant("t_cp_min");
    const double highest = fluid.constant("t_cp_max");
    const auto is_caloric = [](property what) { return what == property::h || what == property::s; };
    const bool below = curves.t_low < lowest;
    const bool above = curves.t_high > highest;
    if (!(below || above) || !(is_caloric(curves.kind->x) || is_caloric(curves.kind->y)))
        return {};
    return std::string("h and s are extrapolated ") + (below ? "below " + temperature(lowest, units) : "") +
           (below && above ? " and " : "") + (above ? "above " + temperature(highest, units) : "") +
           ", where the fit of the heat capacity " + (below ? "begins" : "") + (below && above ? " and " : "") +
           (above ? "ends" : "") + ".";
}

} // namespace studies
