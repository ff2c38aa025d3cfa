// SPDX-License-Identifier: MIT
// The isotherms of the Martin-Hou equation as polynomials of r = 1/(v - b), and its saturation.
//
// Equation   P = Rgas T r + sum q_i(T) r^(i+1), i = 1..4; with x = r - r_c also P - 1 = sum s_k x^k, in which s_0, s_1
// and
//            s_2 vanish at the critical temperature
// Given      reduced parameters and T; r [1/v_ref], P [P_ref]
// Returned   the stable branches of an isotherm, r at a pressure, and both phases at saturation
// Valid      the gas is the branch that begins at r = 0; below Tc the liquid is the first stable branch behind it, or
//            within 0.001 Tc of the critical point the second one if the first has no saturation. At high densities
//            isotherms have further loops; nothing behind them is a state. A saturation line ends where the liquid's
//            branch ends below the pressure of equal Gibbs energies
// Accuracy   rounding
#pragma once

#include "Algebra/polynomial_roots.h"
#include "Equations/martin_hou.h"

#include <algorithm>
#include <limits>

namespace equations {

class martin_hou_isotherm {
public:
    /// T_c is the reduced critical temperature.
    martin_hou_isotherm(const martin_hou &model, double T, double T_c)
        : b_(model.b), r_c_(1.0 / (1.0 - model.b)),
          near_(std::abs(T - T_c) < 0.05 * T_c), c_{0.0, model.Rgas * T, 0, 0, 0, 0} {
        const auto q = model.q<double>(T);
        const auto critical = model.q<double>(T_c);
        const double distance = T - T_c;
        std::array<double, 6> at_critical = {0.0, model.Rgas * T_c, 0, 0, 0, 0};
        std::array<double, 6> change = {0.0, model.Rgas * distance, 0, 0, 0, 0};
        const double decay = std::exp(-model.kk * T_c) * std::expm1(-model.kk * distance);
        for (std::size_t i = 0; i < martin_hou::terms; ++i) {
            c_[i + 2] = q[i][0];
            at_critical[i + 2] = critical[i][0];
            change[i + 2] = model.bb[i] * distance + model.cc[i] * decay;
        }
        for (std::size_t k = 0; k < s_.size(); ++k)
            s_[k] = around_critical(change, k) + (k > 2 ? around_critical(at_critical, k) : 0.0);
        slope_ = polynomial_roots::derivative(s_);
        below_critical_ = T < T_c;
        close_below_ = below_critical_ && T > 0.999 * T_c;
        above_critical_ = T > T_c * (1.0 + 1e-13);
    }

    double P(double r) const {
        const double x = r - r_c_;
        return near_ && std::abs(x) < 0.5 * r_c_ ? 1.0 + polynomial_roots::value(s_, x)
                                                 : polynomial_roots::value(c_, r);
    }
    double slope(double r) const { return polynomial_roots::value(slope_, r - r_c_); }

    // The ends of the stable branches. Above the critical temperature there is only the gas, which ends at top(). They
    // are sought when they are asked for first.
    double gas_end() const { return ends().gas; }       ///< the gas's spinodal
    double liquid_end() const { return ends().liquid; } ///< the liquid's spinodal
    double top() const { return ends().top; }           ///< where the densest stable branch ends

    /// r of the gas at P. Below `simple` isotherms of the gas have no inflection, so that no end can lie before a state
    /// at which P rises.
    double gas(double P_given, double simple) const {
        const double r = newton({P_given, P_given - 1.0}, P_given / c_[1]);
        if (r > 0 && r < simple && slope(r) > 0)
            return r;
        return on_branch({P_given, P_given - 1.0}, 0, gas_end());
    }
    double liquid(double P_given) const { return on_branch({P_given, P_given - 1.0}, liquid_end(), top()); }
    /// r of the first inflection.
    double bend() const {
        const auto turns = polynomial_roots::within(polynomial_roots::derivative(slope_), -r_c_, beyond);
        return turns.number > 0 ? r_c_ + turns.root[0] : infinite;
    }
    /// Whether the isotherm has a saturation.
    bool saturates() const {
        if (!(gas_end() < liquid_end() && liquid_end() < infinite))
            return false;
        const pressure high = highest();
        return key(high) > key(lowest()) && excess(high, branch(high, true), branch(high, false)) <= 0;
    }

    struct phases {
        bool found = false;
        double P = 0;
        double r_l = 0;
        double r_g = 0;
    };
    /// Both phases below the critical temperature; `start` is a guess, with P = 0 if there is none.
    phases saturation() const { return saturation(phases{}); }
    phases saturation(const phases &start) const {
        if (start.P > 0) {
            const phases found = saturation_near(start);
            if (found.found)
                return found;
        }
        if (!saturates())
            return {};
        pressure high = highest();
        pressure low = lowest();
        // The difference of the Gibbs energies falls with the pressure. It is nearly linear in the pressure near the
        // critical point, where P - 1 has the digits, and elsewhere in the logarithm.
        pressure now = {start.P, start.P - 1.0};
        if (!(start.P > low.P && start.P < high.P))
            now = middle(low, high);
        phases result;
        double last = infinite;
        for (int step = 0; step < 100; ++step) {
            result = {true, now.P, branch(now, true), branch(now, false)};
            const double y = excess(now, result.r_l, result.r_g);
            (y > 0 ? low : high) = now;
            const double change = y / (1 / result.r_g - 1 / result.r_l);
            pressure next = {now.P + change, now.from_critical + change};
            if (!near_) {
                next.P = std::max(now.P * std::exp(change / now.P), underflow);
                next.from_critical = next.P - 1.0;
                if (now.P == underflow && change < 0)
                    break;
            }
            if (key(next) == key(now))
                break;
            if (!(key(next) > key(low) && key(next) < key(high)))
                next = middle(low, high);
            const double moved = std::abs(key(next) - key(now));
            const double unit = near_ ? std::abs(now.from_critical) : now.P;
            if (moved < 4e-16 * unit || (moved >= 0.5 * last && moved < 1e-12 * unit))
                break;
            last = moved;
            now = next;
        }
        return result;
    }

private:
    static constexpr double infinite = std::numeric_limits<double>::infinity();
    static constexpr double underflow = 1e-304; ///< saturation pressures below this one are not sought

    /// A pressure, and P - 1, which has more digits near the critical point.
    struct pressure {
        double P;
        double from_critical;
    };
    pressure at(double r) const {
        const double difference = above(r, {1.0, 0.0});
        return {near_ ? 1.0 + difference : polynomial_roots::value(c_, r), difference};
    }
    pressure middle(const pressure &a, const pressure &b) const {
        const double difference = 0.5 * (a.from_critical + b.from_critical);
        const double P_middle = !near_ && a.P > 0 ? std::sqrt(a.P) * std::sqrt(b.P) : 0.5 * (a.P + b.P);
        return {P_middle, difference};
    }
    /// What pressures are compared by.
    double key(const pressure &p) const { return near_ ? p.from_critical : p.P; }
    double branch(const pressure &at_P, bool liquid_branch) const {
        return liquid_branch ? on_branch(at_P, liquid_end(), top()) : on_branch(at_P, 0, gas_end());
    }

    pressure highest() const {
        const pressure at_gas_end = at(gas_end());
        return top() < infinite && key(at(top())) < key(at_gas_end) ? at(top()) : at_gas_end;
    }
    pressure lowest() const {
        const pressure at_liquid_end = at(liquid_end());
        return at_liquid_end.P > 0 ? at_liquid_end : pressure{0.0, -1.0};
    }

    /// The root near a start, by Newton's method alone; 0 if it does not converge.
    double newton(const pressure &given, double x) const {
        for (int step = 0; step < 20; ++step) {
            const double change = above(x, given) / slope(x);
            x -= change;
            if (!(std::abs(change) > 1e-9 * x))
                return std::abs(change) < infinite ? x - above(x, given) / slope(x) : 0.0;
        }
        return 0.0;
    }
    /// From a start that is so good that Newton's method alone converges; not found otherwise.
    phases saturation_near(const phases &start) const {
        pressure now = {start.P, start.P - 1.0};
        phases result = start;
        for (int step = 0;; ++step) {
            result.r_l = newton(now, result.r_l);
            result.r_g = newton(now, result.r_g);
            // At least half of the distance between the phases that is expected, and both stable.
            const double flattest = std::min(slope(result.r_l), slope(result.r_g));
            if (step == 8 ||
                !(result.r_g > 0.5 * start.r_g && result.r_l > result.r_g + 0.7 * (start.r_l - start.r_g)) ||
                !(flattest > 0))
                return {};
            const double change = excess(now, result.r_l, result.r_g) / (1 / result.r_g - 1 / result.r_l);
            const double moved = near_ ? std::abs(change / now.from_critical) : std::abs(change / now.P);
            if (near_)
                now = {now.P + change, now.from_critical + change};
            else
                now.from_critical = (now.P *= std::exp(change / now.P)) - 1.0;
            // Near the critical point the phases move far with the pressure, in units of their distance.
            const double shifted = near_ ? std::abs(change) / (flattest * (result.r_l - result.r_g)) : 0.0;
            if (moved < 1e-8 && moved * shifted < 1e-14) {
                result.r_l = newton(now, result.r_l);
                result.r_g = newton(now, result.r_g);
                result.P = now.P;
                result.found = result.r_l > result.r_g && result.r_g > 0;
                return result;
            }
        }
    }

    double around_critical(const std::array<double, 6> &c, std::size_t k) const {
        double sum = 0;
        double factor = 1; // binomial coefficient times a power of r_c
        for (std::size_t j = k; j < c.size(); ++j) {
            sum += c[j] * factor;
            factor *= static_cast<double>(j + 1) / static_cast<double>(j + 1 - k) * r_c_;
        }
        return sum;
    }

    /// P(r) less a given pressure.
    double above(double r, const pressure &given) const {
        const double x = r - r_c_;
        return near_ && std::abs(x) < 0.5 * r_c_ ? polynomial_roots::value(s_, x) - given.from_critical
                                                 : polynomial_roots::value(c_, r) - given.P;
    }

    /// r at P on the branch between two ends on which P rises; the nearer end if P is not there.
    double on_branch(const pressure &given, double low, double high) const {
        if (!(above(low, given) < 0))
            return low;
        if (high == infinite) {
            high = std::max(low, 1.0) * 2;
            while (P(high) < given.P && high < 1e150)
                high *= 2;
        } else if (!(above(high, given) > 0)) {
            return high;
        }
        double x = low == 0 ? std::min(given.P / c_[1], high / 2) : (low + high) / 2;
        for (int step = 0; step < 200; ++step) {
            const double y = above(x, given);
            if (y == 0)
                break;
            (y > 0 ? high : low) = x;
            double next = x - y / slope(x);
            if (!(next > low && next < high))
                next = (low + high) / 2;
            const double change = std::abs(next - x);
            x = next;
            if (!(change > 3e-16 * x))
                break;
        }
        return x;
    }

    /// The Gibbs energy of the liquid less that of the gas. Near the critical point it is the area between the isotherm
    /// and the pressure, which does not cancel.
    double excess(const pressure &given, double r_l, double r_g) const {
        const double middle = 0.5 * (r_l + r_g);
        const double half = 0.5 * (r_l - r_g);
        if (!near_ || half > 0.35 * middle) // ten points are not enough for the area then
            return gibbs(r_l) - gibbs(r_g);
        constexpr std::array<double, 5> nodes = {0.14887433898163122, 0.43339539412924719, 0.67940956829902441,
                                                 0.86506336668898451, 0.97390652851717172};
        constexpr std::array<double, 5> weights = {0.29552422471475287, 0.26926671930999636, 0.21908636251598204,
                                                   0.14945134915058059, 0.066671344308688138};
        double sum = 0;
        for (std::size_t k = 0; k < nodes.size(); ++k)
            for (const double r : {middle - half * nodes[k], middle + half * nodes[k]})
                sum += weights[k] * above(r, given) / (r * r);
        return sum * half;
    }
    double gibbs(double r) const {
        double attraction = 0; // sum q_i r^i/i
        for (std::size_t i = martin_hou::terms; i > 0; --i)
            attraction = (attraction + c_[i + 1] / static_cast<double>(i)) * r;
        return c_[1] * std::log(r) + attraction + P(r) * (b_ + 1 / r);
    }

    static constexpr double beyond = 1000; // in units of 1/v_ref; no real state is so dense
    struct branch_ends {
        double gas = infinite;
        double liquid = infinite;
        double top = infinite;
        double behind_top = infinite; ///< where the next stable branch begins
        bool known = false;
    };
    const branch_ends &ends() const {
        if (!ends_.known) {
            ends_ = find_ends();
            // Directly below the critical temperature a short stable branch may lie around the critical volume, at
            // whose pressures the gas has less Gibbs energy. The liquid is the branch behind it then.
            if (close_below_ && ends_.behind_top < infinite && !saturates()) {
                ends_.liquid = ends_.behind_top;
                ends_.top = infinite;
            }
        }
        return ends_;
    }
    branch_ends find_ends() const {
        branch_ends found;
        found.known = true;
        const auto turns = polynomial_roots::within(polynomial_roots::derivative(slope_), -r_c_, beyond);
        const auto roots = polynomial_roots::within(slope_, -r_c_, beyond);
        const double first_turn = turns.number > 0 ? turns.root[0] : 0.0;
        if (below_critical_ && roots.number > 1 && roots.root[0] < first_turn && first_turn < roots.root[1]) {
            found.gas = r_c_ + roots.root[0];
            found.liquid = r_c_ + roots.root[1];
            if (roots.number > 2)
                found.top = r_c_ + roots.root[2];
            if (roots.number > 3)
                found.behind_top = r_c_ + roots.root[3];
            return found;
        }
        // Some cold isotherms never rise again behind the gas.
        if (below_critical_ && roots.number == 1 &&
            (turns.number == 0 ||
             (roots.root[0] < first_turn && polynomial_roots::value(slope_, first_turn) < -1e-9))) {
            found.gas = r_c_ + roots.root[0];
            return found;
        }
        // Below the critical temperature rounding hides the ends here. At it, they are at x = 0.
        const double hidden = above_critical_ ? -r_c_ : 1e-3 * r_c_;
        for (std::size_t k = 0; k < roots.number && found.top == infinite; ++k)
            if (roots.root[k] > hidden)
                found.top = r_c_ + roots.root[k];
        // Some isotherms below the critical temperature rise everywhere all the same.
        if (below_critical_ && polynomial_roots::value(slope_, first_turn) < 1e-9)
            found.gas = found.liquid = r_c_ + (std::abs(first_turn) < 0.1 * r_c_ ? first_turn : 0.0);
        else
            found.gas = found.top;
        return found;
    }

    double b_;
    double r_c_;
    bool near_;
    std::array<double, 6> c_;
    std::array<double, 6> s_;
    std::array<double, 5> slope_;
    bool below_critical_ = false;
    bool close_below_ = false;
    bool above_critical_ = false;
    mutable branch_ends ends_;
};

} // namespace equations
