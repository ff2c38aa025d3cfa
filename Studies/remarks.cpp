// SPDX-License-Identifier: MIT
#include "Studies/remarks.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <limits>
#include <span>

namespace studies {
namespace {

enum phase_number { liquid = 0, vapor = 1, two_phase = 2 };

/// Outputs that contain the heat capacity of the ideal gas. Those of its integrals are exact differences only.
constexpr std::string_view caloric[] = {"h",  "s",       "u",     "cv",     "dcv_dt",
                                        "g",  "a",       "cp",    "c",      "fundamental",
                                        "jt", "prandtl", "cp_cv", "lambda", "isentropic_exponent"};
constexpr std::string_view of_volume[] = {"v", "d", "z"};
constexpr std::string_view conductive[] = {"lambda", "prandtl"};
constexpr std::string_view viscous[] = {"eta", "prandtl"};

/// A state that was searched from other inputs is not exactly at a limit.
constexpr double rounding = 1e-9;

std::string short_number(double value) {
    std::array<char, 32> text{};
    const auto *const end = std::to_chars(text.begin(), text.end(), value, std::chars_format::general, 6).ptr;
    return {text.data(), static_cast<std::size_t>(end - text.data())};
}

/// Those of the outputs that stand in the list; a derivative does if it has one of the letters.
template <std::size_t count>
std::vector<std::string> those_of(const std::vector<std::string> &outputs, const std::string_view (&list)[count],
                                  std::string_view letters = "") {
    std::vector<std::string> result;
    for (const std::string &name : outputs) {
        const bool derivative = name.find('/') != std::string::npos;
        if (derivative ? name.find_first_of(letters, 1) != std::string::npos
                       : std::find(std::begin(list), std::end(list), name) != std::end(list))
            result.push_back(name);
    }
    return result;
}

/// A remark about outputs; without outputs it is never made.
remark about(std::vector<std::string> outputs, const std::string &text) {
    return outputs.empty() ? remark{} : remark{text, std::move(outputs)};
}

} // namespace

std::string_view phase_name(int phase) {
    constexpr std::string_view names[] = {"liquid", "vapor", "two-phase", "supercritical", "gas"};
    return phase >= 0 && phase < static_cast<int>(std::size(names)) ? names[phase] : "none";
}

std::string_view advice_on_model(std::string_view model) {
    struct advice {
        std::string_view model;
        std::string_view text;
    };
    constexpr advice table[] = {
        {"ig", "the gas at low pressures; it has no liquid and no saturation"},
        {"vdw", "a classical example; vapor pressures are wrong by a factor"},
        {"mh",
         "densities and speeds of sound of vapors near saturation; its saturation line is wrong at low temperatures"},
        {"srk", "everything, with good vapor pressures; liquids are too light without volume=translated"},
        {"pr", "everything, best with volume=translated; it is the first choice"},
        {"rk", "gases far above the critical temperature; vapor pressures are wrong"},
        {"cii", "a classical example; vapor pressures are wrong, and some fluids have no cold liquid"},
        {"izg", "one fixed compressibility for fast programs, right only near one state; it has no saturation"},
    };
    for (const advice &one : table)
        if (one.model == model)
            return one.text;
    return {};
}

double lowest_liquid_temperature(const ostrel::fluid &fluid, double from) {
    constexpr double largest = 40;
    constexpr double accuracy = 1e-3;
    const double t_crit = fluid.constant("t_crit");
    const double r_gas = fluid.constant("r_gas");
    const auto fits = [&](double t) {
        const auto both = fluid.try_saturation("t", "s", std::span(&t, 1));
        return !both || both->liquid.status()[0] != OSTREL_OK ||
               both->vapor(0, 0) - both->liquid(0, 0) < largest * r_gas;
    };
    if (!(from < t_crit) || fits(from))
        return std::numeric_limits<double>::quiet_NaN();
    double low = from;
    double high = t_crit;
    while (high - low > accuracy * t_crit) {
        const double middle = (low + high) / 2;
        (fits(middle) ? high : low) = middle;
    }
    return high;
}

remarks::remarks(const ostrel::fluid &fluid, const std::vector<std::string> &outputs, std::string_view pair)
    : t_triple_(fluid.constant("t_triple")), t_cp_min_(fluid.constant("t_cp_min")),
      t_cp_max_(fluid.constant("t_cp_max")), t_sat_min_(fluid.constant("t_sat_min")), p_crit_(fluid.constant("p_crit")),
      t_liquid_(lowest_liquid_temperature(fluid, std::max(t_sat_min_, 0.3 * fluid.constant("t_crit")))) {
    below_triple_.text =
        "t is below the triple temperature, " + short_number(t_triple_) + " K: the real fluid has no liquid there.";
    below_line_.text = "t is below " + short_number(t_sat_min_) +
                       " K, where the saturation line of this equation ends: it does not know which phase is stable.";
    const std::string_view model = fluid.text("model");
    const std::string equation = "the equation " + std::string(model);
    meaningless_liquid_.text = "t is below " + short_number(t_liquid_) + " K, and there the liquid of " + equation +
                               " has no meaning: do not use these numbers.";
    if (model == "ig" || model == "izg")
        without_liquid_.text = "The real fluid may be a liquid here, which " + equation + " does not know.";
    const bool caloric_inputs = pair.find_first_of("hsu") != std::string_view::npos;
    extrapolated_ = about(caloric_inputs ? outputs : those_of(outputs, caloric, "hsu"),
                          "t is outside " + short_number(t_cp_min_) + " to " + short_number(t_cp_max_) +
                              " K, where the heat capacity was fitted: what depends on it is extrapolated.");
    const bool translated = fluid.text("options").find("volume=translated") != std::string_view::npos;
    const bool of_two_constants = model == "srk" || model == "pr" || model == "rk";
    if (model != "mh" && !translated)
        liquid_density_ =
            about(those_of(outputs, of_volume, "vd"),
                  "The volume of a liquid by " + equation +
                      (of_two_constants ? " is often wrong by 5 to 15 %; volume=translated is nearer." : " is rough."));
    const std::string_view viscosity = fluid.text("viscosity");
    const std::string_view conductivity = fluid.text("conductivity");
    const auto dilute = [](std::string_view name, std::string_view of) {
        return std::string(name) + " is that of the dilute gas (" + std::string(of) +
               "); it does not know the density.";
    };
    constexpr std::string_view dilute_laws[] = {"constant", "Chung, dilute gas", "Sutherland's law", "linear in T"};
    const bool dilute_law =
        std::find(std::begin(dilute_laws), std::end(dilute_laws), viscosity) != std::end(dilute_laws);
    if (dilute_law)
        dilute_viscosity_ = about(those_of(outputs, viscous), dilute("eta", viscosity));
    if (conductivity == "constant")
        constant_conductivity_ = about(those_of(outputs, conductive), "lambda is a constant of the parameter file.");
    else if (conductivity == "Chung, dilute gas" || (conductivity == "constant Prandtl number" && dilute_law))
        dilute_conductivity_ = about(those_of(outputs, conductive), dilute("lambda", conductivity));
}

std::vector<const remark *> remarks::at(double t, double p, int phase) const {
    std::vector<const remark *> result;
    const auto add = [&](const remark &one, bool applies) {
        if (applies && !one.text.empty())
            result.push_back(&one);
    };
    const bool wet = phase == liquid || phase == two_phase;
    const bool dense = wet || p > 0.3 * p_crit_;
    add(below_triple_, t < t_triple_ * (1 - rounding));
    add(below_line_, t < t_sat_min_ * (1 - rounding) && !(t < t_triple_));
    add(meaningless_liquid_, wet && t < t_liquid_);
    add(without_liquid_, phase == vapor);
    add(extrapolated_, t < t_cp_min_ * (1 - rounding) || t > t_cp_max_ * (1 + rounding));
    add(liquid_density_, wet);
    add(dilute_viscosity_, dense);
    add(dilute_conductivity_, dense);
    add(constant_conductivity_, true);
    return result;
}

} // namespace studies
