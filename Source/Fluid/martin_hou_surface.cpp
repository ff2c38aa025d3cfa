// SPDX-License-Identifier: MIT
#include "Fluid/surface.h"

namespace fluid {

using equations::martin_hou_isotherm;

martin_hou_surface::martin_hou_surface(const equations::martin_hou &model, double critical_temperature, double P_lowest)
    : T_c(critical_temperature), model_(model) {
    simple_ = infinite;
    constexpr int temperatures = 87; // up to 20 T_c
    for (int k = 0; k < temperatures; ++k) {
        const double T = 0.3 * T_c * std::exp2(0.07 * k);
        const martin_hou_isotherm at(model_, T, T_c);
        simple_ = std::min(simple_, 0.95 * at.bend());
        if (T > T_c && at.top() < infinite)
            has_loops = true;
    }
    T_line = T_c;
    const auto bisect = [&](double low, double high, auto exists) {
        while (high - low > 1e-15 * high) {
            const double middle = 0.5 * (low + high);
            (exists(middle) ? high : low) = middle;
        }
        return high * (1.0 + 1e-13); // where rounding does not hide the end
    };
    const auto saturates = [&](double T) { return martin_hou_isotherm(model_, T, T_c).saturates(); };
    double low = T_c * 0.999;
    if (!saturates(low))
        return; // no saturation line at all
    double high = low;
    while (low > 0.02 * T_c && saturates(low)) {
        high = low;
        low -= 0.01 * T_c;
    }
    T_line = bisect(low, high, saturates);
    const auto pressure_enough = [&](double T) {
        return martin_hou_isotherm(model_, T, T_c).saturation().P >= P_lowest;
    };
    if (!pressure_enough(T_line)) // it underflows; what is below has no liquid that could be trusted either
        T_line = bisect(T_line, 0.999 * T_c, pressure_enough);
    // Where loops reach up to the critical temperature, the line ends there above the critical pressure.
    if (const double P = martin_hou_isotherm(model_, T_c * (1.0 - 1e-12), T_c).saturation().P; P > 1.0 + 1e-10)
        P_c = P * (1.0 + 1e-10);
    constexpr int steps = 32;
    sigma_step_ = std::sqrt(1.0 - T_line / T_c) / steps;
    const double r_c = 1.0 / (1.0 - model_.b);
    starts_.push_back({0.0, r_c, r_c});
    for (int k = 1; k <= steps; ++k) {
        const double sigma = sigma_step_ * k;
        const double T = std::max(T_c * (1.0 - sigma * sigma), T_line);
        const auto found = martin_hou_isotherm(model_, T, T_c).saturation();
        starts_.push_back({std::log(found.P), found.r_l, found.r_g});
    }
}

phases martin_hou_surface::saturated(double T) const {
    if (starts_.empty() || !(T > 0)) // only of a state of another fluid
        return {};
    const double sigma = std::sqrt(std::max((T_c - T) / T_c, 0.0));
    const double place = std::min(sigma / sigma_step_, static_cast<double>(starts_.size()) - 1.0 - 1e-9);
    // Cubic through the four nodes around; at the critical point the gas goes on where the liquid comes from.
    const auto k = static_cast<std::size_t>(place);
    const double x = place - static_cast<double>(k);
    const auto around = [&](auto value, double before_first) {
        const std::size_t last = starts_.size() - 1;
        const double b = value(starts_[k]);
        const double c = value(starts_[k + 1]);
        const double a = k > 0 ? value(starts_[k - 1]) : before_first;
        const double d = k + 2 <= last ? value(starts_[k + 2]) : 3.0 * c - 3.0 * b + a;
        return b + 0.5 * x * (c - a + x * (2.0 * a - 5.0 * b + 4.0 * c - d + x * (3.0 * (b - c) + d - a)));
    };
    const martin_hou_isotherm at(model_, T, T_c);
    martin_hou_isotherm::phases guess;
    guess.P = std::exp(around([](const start &s) { return s.log_P; }, starts_[1].log_P));
    guess.r_l = around([](const start &s) { return s.r_l; }, starts_[1].r_g);
    guess.r_g = around([](const start &s) { return s.r_g; }, starts_[1].r_l);
    auto found = at.saturation(guess);
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
