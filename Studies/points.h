// SPDX-License-Identifier: MIT
// What studies share: states with their properties, curves of states, and the sentence that says why there is no
// answer.
#pragma once

#include "ostrel.hpp"

#include <cstddef>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace studies {

/// A study that has no answer. The message is a sentence: what is wrong, and what would be right.
class impossible : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A state of equilibrium and its properties. Other properties come from fluid.value(point.state, ...).
struct point {
    ostrel::state state{};
    double t = 0; ///< [K]
    double p = 0; ///< [Pa]
    double h = 0; ///< [J/kg]
    double s = 0; ///< [J/(kg K)]
    double d = 0; ///< [kg/m3]
    double q = 0; ///< [1] vapor quality; NaN outside the dome
};

/// The state that has the two values. Throws impossible, with the place before the library's message.
point point_at(const ostrel::fluid &fluid, ostrel::input_pair pair, double first, double second,
               std::string_view place);

/// Throws impossible unless the fluid's states are those of equilibrium.   what [-] who needs them: "a cycle"
void need_equilibrium(const ostrel::fluid &fluid, std::string_view what);

/// Both saturated states at a pressure [Pa], or nothing where the fluid has none.
struct saturated_points {
    point liquid, vapor;
};
std::optional<saturated_points> saturation_at(const ostrel::fluid &fluid, double p);

/// A curve of states, over 0 to 1.
using path = std::function<point(double)>;

/// A property of points.
using point_property = double point::*;

/// Places on a path where it crosses the saturation line, in order. At one, the property of the path (h or s) is that
/// of a saturated phase at its pressure.
struct crossing {
    double at;       ///< place on the path
    point saturated; ///< the saturated phase there
    bool vapor;      ///< of which phase the line is
};
std::vector<crossing> crossings(const ostrel::fluid &fluid, const path &along, point_property watched,
                                std::size_t intervals);

/// The states of a path at equal intervals and at its crossings.
std::vector<point> sampled(const path &along, const std::vector<crossing> &corners, std::size_t intervals);

/// A root of a continuous function between two arguments at which its signs differ, to the last digits.
double root(const std::function<double(double)> &function, double a, double b);

/// The argument at which a function with one minimum between a and b is least.
double argument_of_least(const std::function<double(double)> &function, double a, double b);

/// A value for a sentence, in units that engineers write: "120 degC".
std::string shown(double value, std::string_view si);
/// A difference for a sentence: "5 K".
std::string shown_difference(double value, std::string_view si);

} // namespace studies
