// SPDX-License-Identifier: MIT
#include "Fluid/surface.h"

namespace fluid {

using equations::martin_hou_isotherm;

martin_hou_surface::martin_hou_surface(const equations::martin_hou &model, double critical_temperature, double P_lowest)
    : T_c(critical_temperature), model_(model) {
    const auto exists = [&](double T) {
        const auto found = martin_hou_isotherm(model_, T, T_c).saturation(0);
        line_ends = !found.found; // otherwise it is the pressure that underflows
        return found.found && found.P >= P_lowest;
    };
    T_line = T_c;
    double high = T_c * 0.999;
    if (!exists(high)) { // no saturation line at all
        line_ends = true;
        return;
    }
    double low = high - 0.01 * T_c;
    while (low > 0.02 * T_c && exists(low)) {
        high = low;
        low -= 0.01 * T_c;
    }
    while (true) {
        const double middle = 0.5 * (low + high);
        if (middle <= low || middle >= high)
            break;
        (exists(middle) ? high : low) = middle;
    }
    exists(low);
    T_line = high * (1.0 + 1e-13); // where rounding does not hide the end
    constexpr int steps = 24;
    starts_.push_back(0.0);
    for (int k = 1; k <= steps; ++k) {
        const double T = 1.0 / (1.0 / T_c + (1.0 / T_line - 1.0 / T_c) * k / steps);
        starts_.push_back(std::log(martin_hou_isotherm(model_, std::max(T, T_line), T_c).saturation(0).P));
    }
}

phases martin_hou_surface::saturated(double T) const {
    if (starts_.empty())
        return {};
    const double steps = static_cast<double>(starts_.size() - 1);
    const double place = std::clamp((1.0 / T - 1.0 / T_c) / (1.0 / T_line - 1.0 / T_c) * steps, 0.0, steps - 1e-9);
    const auto k = static_cast<std::size_t>(place);
    const double rest = place - static_cast<double>(k);
    const martin_hou_isotherm at(model_, T, T_c);
    auto found = at.saturation(std::exp(starts_[k] + (starts_[k + 1] - starts_[k]) * rest));
    if (!found.found) {
        if (T < T_c * (1.0 - 1e-12))
            return {};
        const double r_c = 1.0 / (1.0 - model_.b);
        found = {true, 1.0, r_c, r_c};
    }
    // dP/dT is the difference of the entropies over that of the volumes. Both are divided by r_l - r_g, so that nothing
    // cancels near the critical point.
    const auto q = model_.q<double>(T);
    const double ratio = (found.r_l - found.r_g) / found.r_g;
    double sum = std::log1p(ratio) / (found.r_l - found.r_g);
    double divided = 1.0; // (r_l^i - r_g^i)/(r_l - r_g)
    double power = found.r_g;
    if (ratio == 0)
        sum = 1.0 / found.r_g;
    for (std::size_t i = 1; i <= equations::martin_hou::terms; ++i) {
        sum += q[i - 1][1] * divided / static_cast<double>(i);
        divided = divided * found.r_l + power;
        power *= found.r_g;
    }
    return {found.P, sum * found.r_l * found.r_g * T / found.P, found.r_l, found.r_g};
}

} // namespace fluid
