// SPDX-License-Identifier: MIT
// The saturation line of a surface with bounds for quick answers, and its inverse.
//
// Given      a surface (surface.h); reduced T [T_ref] and P [P_ref]
// Returned   both phases at T, and the saturation temperature at P
// Valid      T_line <= T < T_c, and the pressures there
// Accuracy   that of the surface; the temperature within a unit in the last place of what rounding of P leaves
#pragma once

#include "Fluid/surface.h"

#include <algorithm>

namespace fluid {

template <class Surface>
class saturation_line {
public:
    explicit saturation_line(const Surface &of) : of_(of) {
        if constexpr (Surface::saturates) {
            // Below 0.3 T_c the nodes are few, since hardly anybody goes there.
            const double low = std::max(of.T_line, std::min(0.3 * of.T_c, 0.5 * (of.T_line + of.T_c)));
            step_ = (of.T_c - low) / cells;
            inverse_step_ = 1.0 / step_;
            begin_ = low;
            for (int k = 0; k <= cells && of.T_line < of.T_c; ++k) {
                const double T = k == cells ? of.T_c : low + step_ * k;
                const phases at = of.saturated(T);
                nodes_[static_cast<std::size_t>(k)] = {at.P,           at.r_l,  at.r_g,
                                                       std::log(at.P), 1.0 / T, -1.0 / (at.slope * T)};
            }
            if (of.T_line < of.T_c)
                lowest_ = of.saturated(of.T_line);
            for (int k = 0; k + 1 < cells; ++k)
                liquid_expands_ = liquid_expands_ && node_at(k).r_l > node_at(k + 1).r_l;
        }
    }

    bool exists() const { return Surface::saturates && of_.T_line < of_.T_c; }
    /// The phases where the line ends.
    const phases &lowest() const { return lowest_; }

    /// How P compares with the saturation pressure at T without computing it: -1 below, 1 above, 0 not known.
    int side_of_pressure(double T, double P) const {
        const int k = cell_of_temperature(T);
        if (k < 0)
            return 0;
        const double highest = k + 1 < cells ? node_at(k + 1).P : of_.P_c;
        return P < node_at(k).P * below ? -1 : P > highest * above ? 1 : 0;
    }
    /// Whether r is of a gas (-1), of a liquid (1) or of both phases (2) at T without computing the phases; 0 not
    /// known.
    int side_of_density(double T, double r) const {
        const int k = cell_of_temperature(T);
        if (k < 0 || k + 1 >= cells)
            return 0;
        if (r < node_at(k).r_g * below)
            return -1;
        if (!liquid_expands_)
            return 0;
        if (r > node_at(k).r_l * above)
            return 1;
        return r > node_at(k + 1).r_g * above && r < node_at(k + 1).r_l * below ? 2 : 0;
    }

    /// The saturation temperature, with the phases there; lowest().P <= P < 1.
    double temperature(double P, phases &at) const {
        double low = of_.T_line;
        double high = of_.T_c;
        double T = start(P, low, high);
        double last = infinite;
        for (int step = 0;; ++step) {
            T = std::clamp(T, of_.T_line, of_.T_c * (1.0 - 1.2e-16));
            double slope_l = 0;
            double slope_g = 0;
            if constexpr (requires { of_.saturated_with_slopes(T); }) {
                const auto found = of_.saturated_with_slopes(T);
                at = found.at;
                slope_l = found.slope_l;
                slope_g = found.slope_g;
            } else {
                at = of_.saturated(T);
            }
            const double x = (at.P - P) / P;
            const double y = std::abs(x) < 1e-4 ? x * (1.0 - x * (0.5 - x * (1.0 / 3.0))) : std::log(at.P / P);
            (y > 0 ? high : low) = T;
            // ln P is nearly linear in 1/T.
            double next = T / (1.0 + y / at.slope);
            if (!(next >= low && next <= high))
                next = 0.5 * (low + high);
            const double change = std::abs(next - T);
            if (change <= 1e-16 * T || change >= last || step == 100)
                return T;
            if (change <= 1e-13 * T)
                last = change;
            // The error of ln P at the next temperature is a small part of the square of the one here.
            if (std::abs(y) < 2e-7 && T < 0.97 * of_.T_c) {
                if constexpr (requires { of_.saturated_with_slopes(T); }) {
                    // The volumes go along: ln r changes by its slope.
                    const double moved = (next - T) / T;
                    at.r_l *= 1.0 + slope_l * moved * (1.0 + 0.5 * slope_l * moved);
                    at.r_g *= 1.0 + slope_g * moved * (1.0 + 0.5 * slope_g * moved);
                } else {
                    at = of_.saturated(next);
                }
                return next;
            }
            T = next;
        }
    }

    static constexpr int cells = 32;
    /// The cell of a temperature; -1 outside the cells.
    OSTREL_INLINE int cell_of_temperature(double T) const {
        const double place = (T - begin_) * inverse_step_;
        return place >= 0 && place < cells ? static_cast<int>(place) : -1;
    }
    double T_of_node(int k) const { return k == cells ? of_.T_c : begin_ + step_ * k; }
    phases at_node(int k) const {
        const node &n = node_at(k);
        return {n.P, -n.inverse_T / n.slope, n.r_l, n.r_g};
    }
    /// An estimate of the saturation temperature, by which cell it is in; -1 below the cells.
    struct estimate {
        int cell;
        double T;
    };
    estimate near(double P) const {
        if (P < node_at(0).P)
            return {-1, 0.0};
        const int k = cell_of_pressure(P);
        return {k, cubic(k, P)};
    }

private:
    // Rounding of a temperature beside a node must not give a wrong answer.
    static constexpr double below = 1.0 - 1e-13;
    static constexpr double above = 1.0 + 1e-13;
    struct node {
        double P;
        double r_l;
        double r_g;
        double log_P;
        double inverse_T;
        double slope; ///< of 1/T in ln P
    };

    /// A temperature near the one at P, and bounds around it. Between two nodes 1/T is a cubic in ln P.
    double start(double P, double &low, double &high) const {
        if (P < node_at(0).P) {
            const double log_low = std::log(lowest_.P);
            const double part = (std::log(P) - log_low) / (node_at(0).log_P - log_low);
            high = begin_;
            low *= 1.0 - 1e-15;
            return 1.0 / (1.0 / low + part * (1.0 / high - 1.0 / low));
        }
        const int k = cell_of_pressure(P);
        low = 1.0 / node_at(k).inverse_T * (1.0 - 1e-15);
        high = std::min(1.0 / node_at(k + 1).inverse_T * (1.0 + 1e-15), of_.T_c);
        return cubic(k, P);
    }
    const node &node_at(int k) const { return nodes_[static_cast<std::size_t>(k)]; }
    int cell_of_pressure(double P) const {
        int k = 0;
        for (int half = cells / 2; half > 0; half /= 2)
            k += P >= node_at(k + half).P ? half : 0;
        return k;
    }
    double cubic(int k, double P) const {
        const node &a = node_at(k);
        const node &b = node_at(k + 1);
        const double width = b.log_P - a.log_P;
        const double x = (std::log(P) - a.log_P) / width;
        const double y = 1.0 - x;
        return 1.0 / (y * y * ((1.0 + 2.0 * x) * a.inverse_T + x * width * a.slope) +
                      x * x * ((1.0 + 2.0 * y) * b.inverse_T - y * width * b.slope));
    }

    Surface of_;
    double begin_ = 0;
    double step_ = 0;
    double inverse_step_ = 0;
    std::array<node, cells + 1> nodes_{};
    phases lowest_;
    bool liquid_expands_ = true; ///< when it is heated, as not all liquids of Martin and Hou's equation do
};

} // namespace fluid
