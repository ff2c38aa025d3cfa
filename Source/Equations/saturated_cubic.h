// SPDX-License-Identifier: MIT
// The isotherms and the saturation line of a cubic equation of state, without dimensions.
//
// Equation   Pi = r - r^2/(t d(r)),  d = 1 + m r + n r^2;  Pi = P b/(R T),  r = b/(v - b),  t = b R T/a(T)
// Given      tau = t/t_c and 1 - tau, and Pi/Pi_c - 1 beside Pi: near the critical point the differences have the
// digits Returned   r of the gas or of the liquid at Pi; Pi and r of both phases at saturation; r at the spinodals
// Valid      tau > 0; the saturation line from tau = 2^-8 on, where the pressure is below Pi_c e^-860.
//            Clausius II has the form of van der Waals with b + c for b and v + c for v
// Accuracy   saturation: rounding, which in Pi grows with |ln(Pi/Pi_c)| (Tests/Vectors/saturated_cubic.txt has points
// with
//            25 digits). Roots: Newton's method from the outer side of a root converges without an exception, since
//            Pi(r) has its one inflection at r_c for every t; 3 to 7 steps. Near the critical point it starts from
//            Cardano's
// Reference  G. Soave, Chem. Eng. Sci. 27 (1972) 1197: a saturation line depends on one parameter only
#pragma once

#include "Equations/saturated_cubic_table.h"
#include "visibility.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace saturated_cubic {

using piece_table = double[coefficients][3];

struct family {
    double m;
    double n;
    double r_c;
    double t_c;
    double Pi_c;
    const piece_table *table;

    constexpr double d(double r) const { return 1.0 + (m + n * r) * r; }
};
inline constexpr family van_der_waals = {2.0, 1.0, 0.5, 8.0 / 27.0, 0.125, van_der_waals_table};
inline constexpr family redlich_kwong = {
    3.0, 2.0, 0.35120719195965763, 0.20267685653535944, 0.086640349964957722, redlich_kwong_table};
inline constexpr family peng_robinson = {
    4.0, 2.0, 0.33882534940202998, 0.1701444200703503, 0.077796073903888456, peng_robinson_table};

/// Both phases at saturation.
struct saturated {
    double log_Pi; ///< ln(Pi/Pi_c)
    double slope;  ///< d log_Pi/d ln(tau)
    double r_l;
    double r_g;
    double slope_l; ///< d ln(r_l)/d ln(tau)
    double slope_g; ///< d ln(r_g)/d ln(tau)
};

/// The saturation line; lowest_tau <= tau < 1. Other tau, as of another fluid's state, do no harm.
inline constexpr double lowest_tau = 0.00390625;
inline saturated saturation(const family &f, double tau, double one_minus_tau) {
    int piece = 0;
    double x = 0;
    double dx_dtau = 0;
    tau = std::max(lowest_tau, tau);
    if (tau >= 0.5) {
        const double sigma = std::sqrt(std::max(one_minus_tau, 0.0));
        const double place = sigma * (1.0 / sigma_step);
        piece = std::min(static_cast<int>(place), pieces_in_sigma - 1);
        x = 2.0 * (place - piece) - 1.0;
        dx_dtau = -1.0 / (sigma * sigma_step);
    } else {
        const int octave = std::min(-std::ilogb(tau) - 2, (pieces - pieces_in_sigma) / 4 - 1);
        const double in_octave = std::ldexp(tau, octave + 4) - 4.0; // from 0 to 4
        const int quarter = std::clamp(static_cast<int>(in_octave), 0, 3);
        piece = pieces_in_sigma + 4 * octave + quarter;
        x = 2.0 * (in_octave - quarter) - 1.0;
        dx_dtau = std::ldexp(2.0, octave + 4);
    }
    const piece_table &c = f.table[piece];
    double Lambda = c[coefficients - 1][0];
    double Lambda_x = 0;
    double liquid = c[coefficients - 1][1];
    double vapor = c[coefficients - 1][2];
    double liquid_x = 0;
    double vapor_x = 0;
    for (int k = coefficients - 2; k >= 0; --k) {
        liquid_x = liquid_x * x + liquid;
        vapor_x = vapor_x * x + vapor;
        Lambda_x = Lambda_x * x + Lambda;
        Lambda = Lambda * x + c[k][0];
        liquid = liquid * x + c[k][1];
        vapor = vapor * x + c[k][2];
    }
    const double inverse = 1.0 / tau;
    const double log_Pi = -one_minus_tau * inverse * Lambda;
    // In sigma the slope of Lambda has the factor 1/sigma, which the factor 1 - tau removes.
    const double along = one_minus_tau > 0 ? one_minus_tau * dx_dtau * Lambda_x : 0.0;
    const double slope = Lambda * inverse - along;
    const double dx = tau * dx_dtau;
    return {log_Pi,
            slope,
            f.r_c * liquid * inverse,
            f.Pi_c * std::exp(log_Pi) * vapor,
            dx * liquid_x / liquid - 1.0,
            slope + dx * vapor_x / vapor};
}

/// A real root of x^3 + a x^2 + b x + c, as a start for Newton's method: the largest or the smallest one.
inline double cubic_root(double a, double b, double c, bool largest) {
    const double shift = a / 3.0;
    const double p = (b - a * shift) / 3.0;
    const double q = 0.5 * (c + shift * (2.0 * shift * shift - b));
    const double discriminant = q * q + p * p * p;
    if (discriminant > 0) {
        const double u = std::cbrt(std::abs(q) + std::sqrt(discriminant));
        return (q > 0 ? p / u - u : u - p / u) - shift;
    }
    const double size = std::sqrt(std::max(-p, 1e-200)); // above 0 for a triple root, too
    const double third = std::acos(std::clamp(-q / (size * size * size), -1.0, 1.0)) / 3.0;
    return 2.0 * size * std::cos(largest ? third : third + 2.0 * std::numbers::pi / 3.0) - shift;
}

class isotherm {
public:
    isotherm(const family &of, double tau, double one_minus_tau)
        : f_(&of), inverse_t_(1.0 / (of.t_c * tau)), one_minus_tau_(one_minus_tau) {}

    const family &of() const { return *f_; }

    double Pi(double r) const { return r - r * r * inverse_t_ / f_->d(r); }
    /// Pi - Pi_c, exact near the critical point.
    double Pi_from_critical(double r) const {
        const double x = r - f_->r_c;
        return (f_->n * x * x * x - r * r * (one_minus_tau_ * inverse_t_)) / f_->d(r);
    }
    double slope(double r) const {
        const double d = f_->d(r);
        return 1.0 - r * (2.0 + f_->m * r) * inverse_t_ / (d * d);
    }

    /// The root with r <= r_c; from_critical is Pi - Pi_c.
    double gas(double Pi_given, double from_critical) const {
        if (near_critical(from_critical))
            return near_root(from_critical, false);
        return newton(Pi_given, Pi_given);
    }
    /// The root with r >= r_c.
    double liquid(double Pi_given, double from_critical) const {
        if (near_critical(from_critical))
            return near_root(from_critical, true);
        // g = r^2/d increases and is below 1/n, so that both starts are beyond the root.
        const double outer = Pi_given + inverse_t_ / f_->n;
        return newton(Pi_given, Pi_given + outer * outer * inverse_t_ / f_->d(outer));
    }
    /// The only root, at or above the critical temperature.
    double single(double Pi_given, double from_critical) const {
        return from_critical < Pi_from_critical(f_->r_c) ? gas(Pi_given, from_critical)
                                                         : liquid(Pi_given, from_critical);
    }

    /// Where Pi has its maximum (below the critical temperature), and beyond it its minimum.
    double gas_spinodal() const { return spinodal(false); }
    double liquid_spinodal() const { return spinodal(true); }

private:
    bool near_critical(double from_critical) const {
        return std::abs(one_minus_tau_) < 0.1 && std::abs(from_critical) < 0.25 * f_->Pi_c;
    }

    double newton(double Pi_given, double r) const {
        const double m = f_->m;
        const double n = f_->n;
        for (int step = 0; step < 60; ++step) {
            const double inverse_d = 1.0 / (1.0 + (m + n * r) * r);
            const double attraction = r * inverse_d * inverse_t_;
            const double change = ((r - Pi_given) - r * attraction) / (1.0 - attraction * inverse_d * (2.0 + m * r));
            r -= change;
            if (!(std::abs(change) > 1e-8 * r)) // the error after this step is its square
                break;
        }
        return r;
    }

    /// From the exact cubic in x = r - r_c.
    double near_root(double from_critical, bool largest) const {
        const double r_c = f_->r_c;
        const double n = f_->n;
        const double e = one_minus_tau_ * inverse_t_;
        const double D = from_critical;
        const double a = -(e / n + D);
        const double b = -(2.0 * r_c * e + D * (f_->m + 2.0 * n * r_c)) / n;
        const double c = -(r_c * r_c * e + D * f_->d(r_c)) / n;
        double x = cubic_root(a, b, c, largest);
        double last = std::numeric_limits<double>::infinity();
        for (int step = 0; step < 4; ++step) {
            const double slope = (3.0 * x + 2.0 * a) * x + b;
            const double change = (((x + a) * x + b) * x + c) / slope;
            if (!(std::abs(change) < 0.5 * last))
                break;
            x -= change;
            last = std::abs(change);
        }
        return r_c + x;
    }

    double spinodal(bool liquid_side) const {
        // r (2 + m r)/d^2 - t, which decreases with the distance from r_c on both sides
        const double t = 1.0 / inverse_t_;
        const double m = f_->m;
        const double n = f_->n;
        double inner = f_->r_c;
        double outer = liquid_side ? 4.0 * f_->r_c + std::sqrt(m / (n * n * t)) + 4.0 : 0.0;
        double r = 0.5 * (inner + outer);
        if (!liquid_side)
            r = std::min(0.5 * t, 0.9 * f_->r_c);
        if (std::abs(one_minus_tau_) < 0.2) {
            // h = t_c - K (r - r_c)^2 near r_c
            const double reach = std::sqrt(std::max(one_minus_tau_, 0.0) * f_->t_c / curvature());
            r = f_->r_c + (liquid_side ? reach : -reach);
        }
        for (int step = 0; step < 100; ++step) {
            const double d = f_->d(r);
            const double h = r * (2.0 + m * r) / (d * d) - t;
            (h > 0 ? inner : outer) = r;
            const double h_r = 2.0 * (1.0 - 3.0 * n * r * r - m * n * r * r * r) / (d * d * d);
            double next = r - h / h_r;
            if (!(next > std::min(inner, outer) && next < std::max(inner, outer)))
                next = 0.5 * (inner + outer);
            const double change = std::abs(next - r);
            r = next;
            if (change <= 1e-15 * r)
                break;
        }
        return r;
    }
    double curvature() const {
        const double r = f_->r_c;
        const double d = f_->d(r);
        return 3.0 * f_->n * r * (2.0 + f_->m * r) / (d * d * d);
    }

    const family *f_;
    double inverse_t_;
    double one_minus_tau_;
};

} // namespace saturated_cubic
