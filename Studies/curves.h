// SPDX-License-Identifier: MIT
// The curves of a diagram of one fluid, as numbers: the saturation line, isobars, isotherms and other isolines, chosen
// and sampled so that the diagram is neither empty nor crowded.
//
// Computes   points of curves in the plane of two properties, and the ranges of the axes
// Given      a fluid, and the kind of the diagram: ts, ph, pv, hs or pt (the first letter is the vertical axis)
// Returned   everything in SI units
// Valid      for every model. An ideal one has no saturation line, and isolines all the same. A line ends where the
//            equation has no state.
// Accuracy   points have the digits of the handle. Where an isoline meets the saturation line it has a point. Between
//            two points a curve is nearer to its chord than 2e-4 of the axes' lengths.
#pragma once

#include "Studies/units.h"
#include "ostrel.hpp"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace studies {

/// Properties that axes and isolines have.
enum class property { t, p, v, h, s, q };
inline constexpr std::size_t property_count = 6;

struct property_text {
    std::string_view letter;
    std::string_view name;
    std::string_view symbol; ///< as formulas have it
    std::string_view si;     ///< SI unit, as ostrel_list writes it
    std::string_view lines;  ///< the name of the lines along which it is constant
    bool logarithmic;        ///< whether axes and steps of lines are logarithmic
};
const property_text &text_of(property what);

/// A kind of diagrams.
struct diagram_kind {
    std::string_view name;
    property x;
    property y;
    std::string_view families; ///< letters of the properties of its isolines, the most important one first
    std::string_view possible; ///< letters of all that can be asked for
};
std::span<const diagram_kind> diagram_kinds();
/// The kind of this name, or null.
const diagram_kind *diagram_kind_named(std::string_view name);

/// The ends of an axis [SI].
struct axis_range {
    double low;
    double high;
};

/// A point of a diagram [SI].
struct diagram_point {
    double x;
    double y;
};
using polyline = std::vector<diagram_point>;

/// An isoline. It has several pieces where the equation has no states between them.
struct isoline {
    property what;
    double value; ///< [SI]
    std::vector<polyline> pieces{};
};

/// The reason why a diagram begins at its lowest temperature.
enum class lowest_temperature {
    chosen,        ///< below, the curves say little
    triple_point,  ///< of the real fluid
    heat_capacity, ///< below, that of the ideal gas is not defined
    line_end,      ///< the equation's saturation line ends there
    liquid         ///< below, the equation's liquid has no meaning: its entropy of vaporization is above 40 R
};

struct diagram {
    const diagram_kind *kind;
    axis_range x;
    axis_range y;
    /// The saturation line from its lowest temperature on the liquid side over the critical point to the vapor side. In
    /// pt it is one line up to the critical point. Empty if there is none.
    polyline dome{};
    std::size_t dome_peak = 0; ///< the place of the critical point in it
    std::optional<diagram_point> critical{};
    double t_low = 0; ///< [K] nothing is drawn below this temperature
    lowest_temperature t_low_reason = lowest_temperature::chosen;
    double t_high = 0; ///< [K] highest temperature of a grid of states in the diagram
    std::vector<isoline> lines{};
};

struct diagram_request {
    const diagram_kind *kind;
    std::optional<axis_range> x{}; ///< [SI] chosen from the fluid if it is not given
    std::optional<axis_range> y{};
    std::optional<std::string> families{};        ///< letters of the isolines; those of the kind if not given
    unit_system units = unit_system::engineering; ///< in which the values of isolines are round
    std::array<std::vector<double>, property_count> values{}; ///< [SI] of isolines; chosen where there are none
};

/// A request that the fluid cannot fulfil, with the reason.
class no_diagram : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The ranges of the axes that draw would choose [SI]: x, y. Throws no_diagram.
std::array<axis_range, 2> diagram_ranges(const ostrel::fluid &fluid, const diagram_request &asked);

/// The curves of a diagram. Throws no_diagram if the fluid has no state in the ranges.
diagram make_diagram(const ostrel::fluid &fluid, const diagram_request &asked);

/// The text with a capital letter at its beginning, if that is a letter.
std::string capitalised(std::string text);

/// Why a diagram begins at its lowest temperature and whether it has no saturation line, in a few words without a point
/// at the end; empty if there is nothing to say.
std::string beginning_of(const diagram &curves, unit_system units);

/// A sentence if h and s of a diagram are extrapolated at low or high temperatures; else empty.
std::string extrapolation_of(const ostrel::fluid &fluid, const diagram &curves, unit_system units);

/// Round numbers between low and high [unit of the values]: 1-2-5 steps, or 1-2-5 numbers if logarithmic, at most
/// `most` of them.
std::vector<double> round_values(double low, double high, std::size_t most, bool logarithmic);

/// States to be drawn over a diagram, such as the corners of a cycle or the states along a process.
struct overlay {
    std::string label{};
    std::vector<ostrel::state> states{};
    std::vector<std::string> names{}; ///< of the marked states; a state without one gets its number, from 1
    bool marked = false;              ///< whether each state gets a mark with its name
    bool joined = true;               ///< whether a line goes through the states
};

/// The states in the plane of a diagram. The coordinates of a state that failed are NaN.
polyline in_plane(const ostrel::fluid &fluid, const diagram_kind &kind, std::span<const ostrel::state> states);

} // namespace studies
