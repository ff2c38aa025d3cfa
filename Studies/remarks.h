// SPDX-License-Identifier: MIT
// What somebody should know who uses a number: where a state is outside the ranges for which a fluid's parameters were
// made, and which outputs are rough.
#pragma once

#include "ostrel.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace studies {

/// The temperature [K], from a given one on, below which the liquid of the equation has no meaning: its entropy of
/// vaporization is above 40 R there, while real ones are below 30 R. NaN if there is no such temperature.
double lowest_liquid_temperature(const ostrel::fluid &fluid, double from);

/// The name of a phase's number, as the output "phase" has it.
std::string_view phase_name(int phase);

/// What an equation of state, named as in the option model, is good for; empty for another word.
std::string_view advice_on_model(std::string_view model);

/// A remark, and the outputs that it is about; none if it is about the state.
struct remark {
    std::string text{};
    std::vector<std::string> outputs{};
};

/// The remarks on some outputs of one fluid. They are made once, so that asking for a state costs nothing but a few
/// comparisons.
class remarks {
public:
    /// `outputs` are names of outputs in lower case, as "d" or "dp/dd|u".
    /// `pair` are the letters of the inputs, if there are any: t follows from h, s and u by the heat capacity.
    remarks(const ostrel::fluid &fluid, const std::vector<std::string> &outputs, std::string_view pair = "");

    /// Remarks on a state with this temperature [K], pressure [Pa] and phase. They live as long as this object.
    std::vector<const remark *> at(double t, double p, int phase) const;

private:
    double t_triple_;
    double t_cp_min_;
    double t_cp_max_;
    double t_sat_min_;
    double p_crit_;
    double t_liquid_;
    // Without text if they are never made.
    remark below_triple_;
    remark below_line_;
    remark meaningless_liquid_;
    remark without_liquid_;
    remark extrapolated_;
    remark liquid_density_;
    remark dilute_viscosity_;
    remark dilute_conductivity_;
    remark constant_conductivity_;
};

} // namespace studies
