// SPDX-License-Identifier: MIT
#include "Studies/nozzle.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace studies {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t scanned = 128; ///< intervals of a segment in which the Mach number is looked at

/// The isentrope from the total state downwards, over 0 to 1 in equal ratios of pressure.
class isentrope {
public:
    isentrope(const ostrel::fluid &fluid, const point &total, double p_end)
        : fluid_(fluid), total_(total), ratio_(p_end / total.p) {}

    point at(double x) const {
        return x == 0 ? total_ : point_at(fluid_, "ps", total_.p * std::pow(ratio_, x), total_.s, "nozzle");
    }
    double place_of(double p) const { return std::log(p / total_.p) / std::log(ratio_); }
    nozzle_step step(const point &at) const {
        const auto slope = fluid_.try_value(at.state, "dp/dd|s");
        const auto fundamental = fluid_.try_value(at.state, "fundamental");
        nozzle_step result;
        result.at = at;
        result.velocity = std::sqrt(2 * std::max(0.0, total_.h - at.h));
        result.sound = slope ? std::sqrt(*slope) : nan;
        result.mach = result.velocity / result.sound;
        result.mass_flux = at.d * result.velocity;
        result.area_ratio = nan;
        result.fundamental = fundamental ? *fundamental : nan;
        return result;
    }
    nozzle_step step(double x) const { return step(at(x)); }
    /// The step on the saturation line as it is between the phases.
    nozzle_step mixture(const crossing &line) const {
        constexpr double next_to_the_line = 0x1p-40;
        const double q = line.vapor ? 1 - next_to_the_line : next_to_the_line;
        nozzle_step result = step(point_at(fluid_, "pq", line.saturated.p, q, "nozzle"));
        const double sound = result.sound;
        result = step(line.saturated);
        result.sound = sound;
        result.mach = result.velocity / sound;
        result.fundamental = nan;
        return result;
    }

private:
    const ostrel::fluid &fluid_;
    const point total_;
    double ratio_;
};

/// A part of the isentrope with one phase, or between the phases, throughout.
struct segment {
    double from, to;
    nozzle_step first, last;
    bool mixture;
};

std::vector<segment> segments_of(const isentrope &along, const std::vector<crossing> &lines) {
    std::vector<segment> result;
    nozzle_step first = along.step(0.0);
    double from = 0;
    const auto is_mixture = [&](double to) { return !std::isnan(along.at((from + to) / 2).q); };
    for (const crossing &line : lines) {
        nozzle_step before = along.step(line.saturated);
        nozzle_step behind = along.mixture(line);
        const bool mixture = is_mixture(line.at);
        if (mixture)
            std::swap(before, behind);
        result.push_back({from, line.at, first, before, mixture});
        first = behind;
        from = line.at;
    }
    result.push_back({from, 1, first, along.step(1.0), is_mixture(1)});
    return result;
}

/// A place where the mass flux is largest among its neighbours.
struct maximum {
    nozzle_step step;
    choking how;
};

/// What the walk along the isentrope has found.
struct course {
    std::vector<maximum> maxima{};
    std::vector<std::string> notes{};
};

std::string pressures(double from, double to) {
    return "from " + shown(from, "Pa") + " to " + shown(to, "Pa");
}

/// Collects neighbouring places with a property into one note for each stretch.
class stretch {
public:
    stretch(std::vector<std::string> &notes, std::string text) : notes_(notes), text_(std::move(text)) {}
    void add(bool holds, double p_from, double p_to) {
        if (holds && std::isnan(from_))
            from_ = p_from;
        if (holds)
            to_ = p_to;
        else
            end();
    }
    void end() {
        if (!std::isnan(from_))
            notes_.push_back("In the expansion " + pressures(from_, to_) + ' ' + text_);
        from_ = nan;
    }

private:
    std::vector<std::string> &notes_;
    std::string text_;
    double from_ = nan;
    double to_ = nan;
};

/// Walks along the isentrope. Notes are only made on what lies before the outlet.
course walked(const isentrope &along, const std::vector<segment> &segments, double p_outlet) {
    course result;
    stretch falling(result.notes, "the Mach number falls, since the fundamental derivative is below 1 - 1/M^2.");
    stretch below_one(result.notes, "the fundamental derivative is below 1, so that the speed of sound rises.");
    for (std::size_t number = 0; number < segments.size(); ++number) {
        const segment &part = segments[number];
        if (number > 0 && segments[number - 1].last.mach < 1 && part.first.mach >= 1)
            result.maxima.push_back({part.first, choking::saturation_line});
        const auto place = [&](std::size_t i) {
            return part.from + (part.to - part.from) * static_cast<double>(i) / scanned;
        };
        nozzle_step before = part.first;
        for (std::size_t i = 1; i <= scanned; ++i) {
            const nozzle_step now = i == scanned ? part.last : along.step(place(i));
            if (before.mach < 1 && now.mach >= 1) {
                const auto above_sonic = [&](double x) {
                    const nozzle_step step = x == part.from ? part.first : x == part.to ? part.last : along.step(x);
                    return step.mach - 1;
                };
                result.maxima.push_back({along.step(root(above_sonic, place(i - 1), place(i))), choking::sonic});
            }
            const bool inside = before.at.p > p_outlet;
            const double p_to = std::max(now.at.p, p_outlet);
            falling.add(inside && now.mach < before.mach, before.at.p, p_to);
            below_one.add(inside && now.fundamental < 1 && before.fundamental < 1, before.at.p, p_to);
            before = now;
        }
        falling.end();
        below_one.end();
        if (part.mixture && part.first.at.p > p_outlet)
            result.notes.push_back("In the expansion " +
                                   pressures(part.first.at.p, std::max(part.last.at.p, p_outlet)) +
                                   " the fluid is a mixture of both phases, in equilibrium and without slip.");
    }
    return result;
}

std::string jump_note(const nozzle_step &before, const nozzle_step &behind) {
    std::string text = "On the saturation line, at " + shown(before.at.p, "Pa") + ", the speed of sound jumps from " +
                       shown(before.sound, "m/s") + " to " + shown(behind.sound, "m/s") + " and the Mach number from " +
                       shown(before.mach, "1") + " to " + shown(behind.mach, "1");
    return text +
           (before.mach < 1 && behind.mach >= 1 ? ": the mass flux is largest there, and the flow chokes." : ".");
}

/// The largest maximum before the outlet, or else the next one behind it.
const maximum *throat_of(const std::vector<maximum> &maxima, double p_outlet) {
    const maximum *found = nullptr;
    for (const maximum &one : maxima) {
        if (one.step.at.p < p_outlet)
            return found != nullptr ? found : &one;
        if (found == nullptr || one.step.mass_flux > found->step.mass_flux)
            found = &one;
    }
    return found;
}

/// Whether the fluid has states down to this pressure on the isentrope.
bool reaches(const isentrope &along) {
    try {
        return std::isfinite(along.step(1.0).sound);
    } catch (const impossible &) {
        return false;
    }
}

} // namespace

nozzle_result expand(const ostrel::fluid &fluid, const point &total, double p_outlet, std::size_t intervals) {
    need_equilibrium(fluid, "a nozzle");
    if (!(p_outlet > 0 && p_outlet < total.p))
        throw impossible("nozzle: the outlet's pressure is " + shown(p_outlet, "Pa") +
                         "; it must be above 0 and below the total pressure, " + shown(total.p, "Pa"));
    // A throat behind the outlet is looked for too, since the areas refer to it.
    constexpr double far_enough = 0.05;
    const isentrope to_outlet(fluid, total, p_outlet);
    const isentrope farther(fluid, total, std::min(p_outlet, far_enough * total.p));
    const isentrope &along = reaches(farther) ? farther : to_outlet;

    const std::vector<crossing> lines = crossings(
        fluid, [&](double x) { return along.at(x); }, &point::s, 2 * scanned);
    const std::vector<segment> segments = segments_of(along, lines);
    course found = walked(along, segments, p_outlet);

    nozzle_result result;
    for (std::size_t i = 0; i <= intervals; ++i) {
        const double x = static_cast<double>(i) / static_cast<double>(intervals);
        result.steps.push_back(to_outlet.step(x));
    }
    result.steps.front().place = "total state";
    result.steps.back().place = "outlet";
    const auto insert = [&](nozzle_step step, std::string_view place) {
        step.place = place;
        const auto behind =
            std::ranges::find_if(result.steps, [&](const nozzle_step &one) { return one.at.p < step.at.p; });
        result.steps.insert(behind, step);
    };
    const maximum *const throat = throat_of(found.maxima, p_outlet);
    if (throat != nullptr) {
        result.how = throat->how;
        result.throat = throat->step;
        result.throat->place = "throat";
        if (throat->how == choking::sonic && throat->step.at.p >= p_outlet)
            insert(throat->step, "throat");
    }
    for (std::size_t i = 0; i + 1 < segments.size(); ++i) {
        const nozzle_step &before = segments[i].last;
        const nozzle_step &behind = segments[i + 1].first;
        if (before.at.p < p_outlet)
            continue;
        const bool chokes =
            throat != nullptr && throat->how == choking::saturation_line && throat->step.at.p == before.at.p;
        insert(before, "saturation line");
        insert(behind, chokes ? "throat" : "saturation line");
        result.notes.push_back(jump_note(before, behind));
    }
    for (nozzle_step &step : result.steps)
        step.area_ratio = throat != nullptr ? throat->step.mass_flux / step.mass_flux : nan;
    if (throat != nullptr)
        result.throat->area_ratio = 1;

    std::ranges::move(found.notes, std::back_inserter(result.notes));
    for (const maximum &one : found.maxima)
        if (&one != throat && one.step.at.p >= p_outlet)
            result.notes.push_back("The mass flux has another, smaller maximum at " + shown(one.step.at.p, "Pa") + ".");
    if (throat == nullptr)
        result.notes.emplace_back("The flow stays below the speed of sound: it has no throat, and no area ratio.");
    else if (throat->step.at.p < p_outlet)
        result.notes.push_back("The flow stays below the speed of sound. The areas refer to the throat that it would "
                               "have at " +
                               shown(throat->step.at.p, "Pa") + ".");
    return result;
}

} // namespace studies
