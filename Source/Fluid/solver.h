// SPDX-License-Identifier: MIT
// Finds the state that has two given values.
//
// Given      reduced values: T [T_ref], P [P_ref], V [v_ref], h and u [P_ref v_ref], s [R]
// Returned   T, P, r = 1/(v - b), V and the quality, or why there is no such state
// Method     Newton's method in T and ln r from a good start. Where its result is not a state of the wanted phase, a
// search
//            within brackets follows: along the isotherm in r, along the isobar in T, along the isochore in T, where
//            inside the dome the mixture counts, and for two caloric values along the isentrope in r. Newton's method
//            then gives the last digits
// Accuracy   a change of the inputs by a few units in the last place
#pragma once

#include "Equations/equation.h"
#include "Fluid/core.h"
#include "Fluid/line.h"

namespace fluid {

using ideal_gas_heat::energy;
using ideal_gas_heat::entropy;
using ideal_gas_heat::heat;
using ideal_gas_heat::heat_slope;

/// A solved state, reduced.
struct solved {
    int status = OSTREL_NO_STATE;
    double T = 0;
    double P = 0;
    double V = 0;
    double r = 0;            ///< of the mixture, 1/(V + offset - b)
    double q = not_a_number; ///< inside the dome and on the saturation line
};

/// What one state of the surface has; V is the volume that the user sees.
struct properties {
    double T;
    double V;
    double P;
    double P_T;
    double P_V;
    double h_V; ///< dh/dV at constant T, without the cancellation of its ideal parts
    double u_V; ///< du/dV at constant T
    double cv;
    double u;
    double s;

    double h() const { return u + P * V; }
    double h_T() const { return cv + V * P_T; }
};

/// A quantity and its derivatives with respect to T and V.
struct quantity_at {
    double value;
    double by_T;
    double by_V;
};
template <letter what>
OSTREL_INLINE quantity_at value_of(const properties &at) {
    if constexpr (what == letter::p)
        return {at.P, at.P_T, at.P_V};
    else if constexpr (what == letter::h)
        return {at.h(), at.h_T(), at.h_V};
    else if constexpr (what == letter::s)
        return {at.s, at.cv / at.T, at.P_T};
    else
        return {at.u, at.cv, at.u_V};
}
/// The functions of the ideal gas that a quantity and its derivatives have.
template <letter what>
inline constexpr unsigned caloric_of = what == letter::p   ? 0
                                       : what == letter::s ? entropy | heat
                                                           : energy | heat;

/// One equation of state with everything that solving needs; immutable.
template <class Model>
class solver {
public:
    using surface_type = typename surface_of<Model>::type;
    using isotherm = typename surface_type::isotherm;

    solver(const Model &model, const separated_attraction::ideal_part &ideal, double T_c, double P_lowest,
           double offset, allowed_states states)
        : model_(model), ideal_(ideal), surface_(model, T_c, P_lowest), line_(surface_), offset_(offset),
          states_(states) {
        prepare();
    }

    // Only while the fluid is made: the constant that is taken from the volumes, and the zeros of energy and entropy.
    void translate(double offset) {
        offset_ = offset;
        prepare();
    }
    void shift(double energy_zero, double entropy_zero) {
        ideal_.e_0 += energy_zero;
        ideal_.s_0 += entropy_zero;
        prepare();
    }

    const surface_type &surface() const { return surface_; }
    const saturation_line<surface_type> &line() const { return line_; }
    double T_c() const { return surface_.T_c; }
    /// Both phases at T, for T_line <= T < T_c; ideal gases have none.
    OSTREL_INLINE phases saturated(double T) const {
        phases found;
        if constexpr (surface_type::saturates)
            found = surface_.saturated(T);
        return found;
    }
    double r_of(double V) const { return 1.0 / (V + offset_ - model_.covolume()); }
    double V_of(double r) const { return model_.covolume() - offset_ + 1.0 / r; }
    const Model &model() const { return model_; }
    const separated_attraction::ideal_part &ideal() const { return ideal_; }
    double offset() const { return offset_; }

    /// The functions of the ideal gas at T. At a bound of the heat capacity's form 4 the lower interval counts.
    template <unsigned these>
    separated_attraction::ideal_part_at<these> caloric_at(double T) const {
        const ideal_gas_heat::heat_capacity &h = ideal_.heat;
        if (h.function_type == ideal_gas_heat::piecewise)
            for (const double bound : h.T_k)
                if (T * h.T_ref == bound)
                    T *= 1.0 - 3e-16;
        return {ideal_, T};
    }

    /// The state of the surface at T and r.
    properties at(double T, double r) const { return at<energy | entropy | heat>(T, r); }
    /// Only those parts of it that the functions `these` of the ideal gas belong to; the others are 0.
    template <unsigned these>
    OSTREL_INLINE properties at(double T, double r) const {
        return at<these>(T, sides_of(r), caloric_at<these>(T));
    }

    /// The half of a state that depends on the volume.
    struct volume_half {
        double r, v, V;
        decltype(std::declval<Model>().f(1.0)) f;
        double log_w;
    };
    OSTREL_INLINE volume_half sides_of(double r) const {
        const double v = model_.covolume() + 1.0 / r;
        return {r, v, v - offset_, model_.f(v), -std::log(r)};
    }
    template <unsigned these>
    OSTREL_INLINE properties at(double T, const volume_half &half,
                                const separated_attraction::ideal_part_at<these> &caloric) const {
        const auto q = model_.q(T);
        const auto &f = half.f;
        const double r = half.r;
        const double V = half.V;
        const double R = model_.repulsion();
        properties p{};
        p.T = T;
        p.V = V;
        double PV_T = 0;
        double P = 0;
        double P_T = 0;
        double P_V = 0;
        double u = 0;
        double u_V = 0;
        double s = 0;
        double cv = 0;
        separated_attraction::for_each_index<Model::terms>([&](std::size_t i) {
            P += q[i][0] * f[i][1];
            P_T += q[i][1] * f[i][1];
            P_V += q[i][0] * f[i][2];
            PV_T += T * q[i][1] * f[i][1] + V * q[i][0] * f[i][2];
            u += (T * q[i][1] - q[i][0]) * f[i][0];
            u_V += (T * q[i][1] - q[i][0]) * f[i][1];
            s += q[i][1] * f[i][0];
            cv += T * q[i][2] * f[i][0];
        });
        p.P = P + R * T * r;
        p.P_T = P_T + R * r;
        p.P_V = P_V - R * T * r * r;
        p.h_V = PV_T - R * T * (model_.covolume() - offset_) * r * r;
        p.u_V = u_V;
        if constexpr ((these & energy) != 0)
            p.u = ideal_.e_0 + caloric.phi(T) + u;
        if constexpr ((these & entropy) != 0)
            p.s = ideal_.s_0 + caloric.psi(T) + s + R * half.log_w;
        if constexpr ((these & heat) != 0)
            p.cv = caloric.phip(T) + cv;
        return p;
    }
    /// P of the surface at T and v = V + offset.
    OSTREL_INLINE double pressure_at(double T, double v) const {
        if constexpr (surface_type::saturates) {
            if (std::abs(T - surface_.T_c) < 0.05 * surface_.T_c && std::abs(v - 1.0) < 0.5)
                return surface_.at(T).P(1.0 / (v - model_.covolume()));
        }
        return separated_attraction::state_point<Model, double>(model_, T, v).P();
    }
    double pressure(double T, double r) const { return pressure_at(T, model_.covolume() + 1.0 / r); }

    /// Of the properties only P and its derivatives.
    OSTREL_INLINE properties mechanical(double T, double r) const { return at<0>(T, r); }

    /// Both phases of a mixture, and what follows from them.
    struct mixture {
        phases line;
        properties l, g;
        double P_T; ///< of the saturation line
    };
    mixture mix(double T, const phases &line) const {
        const auto caloric = caloric_at<energy | entropy | heat>(T);
        mixture m = {line, at(T, sides_of(line.r_l), caloric), at(T, sides_of(line.r_g), caloric),
                     line.slope * line.P / T};
        m.l.P = m.g.P = line.P;
        return m;
    }
    /// The mixture at V as if it were one phase: P_V is 0, and cv that of the equilibrium.
    static properties mixed(const mixture &m, double q, double V) {
        const auto along = [&](const properties &phase) { // heat capacity of a phase at constant volume of the whole
            const double excess = m.P_T - phase.P_T;
            return phase.cv - phase.T * excess * excess / phase.P_V;
        };
        properties p;
        p.T = m.l.T;
        p.V = V;
        p.P = m.line.P;
        p.P_T = m.P_T;
        p.P_V = 0;
        p.h_V = p.T * m.P_T;
        p.u_V = p.T * m.P_T - p.P;
        p.cv = (1.0 - q) * along(m.l) + q * along(m.g);
        p.u = m.l.u + q * (m.g.u - m.l.u);
        p.s = m.l.s + q * (m.g.s - m.l.s);
        return p;
    }
    static double quality(const mixture &m, double V) { return (V - m.l.V) / (m.g.V - m.l.V); }

    /// Which kind of state T and r have.
    enum class place { single, mixture, nowhere, underflow };
    place where(double T, double r, phases *found = nullptr) const {
        return r > 0 ? place_of(T, r, found) : place::nowhere;
    }
    place place_of(double T, double r, phases *found) const {
        if constexpr (!surface_type::saturates)
            return place::single;
        else {
            if (states_ == allowed_states::surface)
                return place::single;
            if (T >= surface_.T_c)
                return r < surface_.at(T).top() ? place::single : place::nowhere;
            if (states_ == allowed_states::metastable_vapor)
                return r <= surface_.at(T).gas_end() ? place::single : place::nowhere;
            if (states_ == allowed_states::metastable_liquid) {
                const isotherm i = surface_.at(T);
                return r >= i.liquid_end() && r < i.top() ? place::single : place::nowhere;
            }
            if (T < surface_.T_line) { // and everywhere if there is no line
                const isotherm i = surface_.at(T);
                if (surface_.line_ends)
                    return r <= i.gas_end() ? place::single : place::nowhere;
                return r >= i.liquid(0.0) ? place::single : place::underflow;
            }
            if (found == nullptr) {
                switch (line_.side_of_density(T, r)) {
                case -1:
                    return place::single;
                case 1:
                    return r < surface_.at(T).top() ? place::single : place::nowhere;
                default:
                    break;
                }
            }
            const phases p = saturated(T);
            if (found != nullptr)
                *found = p;
            if (r <= p.r_g)
                return place::single;
            if (r >= p.r_l)
                return r < surface_.at(T).top() ? place::single : place::nowhere;
            return place::mixture;
        }
    }

    /// Whether one look shows that T and V have one phase, and that P is that of the algebra.
    OSTREL_INLINE bool plain(double T, double V) const {
        if constexpr (!surface_type::saturates) {
            return true;
        } else {
            const double distance = T - surface_.T_c;
            if (std::abs(distance) < 0.05 * surface_.T_c && std::abs(V + offset_ - 1.0) < 0.5)
                return false;
            if (states_ == allowed_states::surface)
                return true;
            if (distance > 0)
                return surface_type::never_ends && T < surface_.T_loop;
            if (states_ != allowed_states::stable || surface_.line_ends)
                return false;
            const int k = line_.cell_of_temperature(T);
            return k >= 0 && (V < node(k).V_l * (1.0 - 1e-13) || V > node(k).V_g * (1.0 + 1e-13));
        }
    }

    /// T and V are given.
    solved from_T_V(double T, double V) const {
        const double r = r_of(V);
        solved result = {OSTREL_OK, T, 0, V, r, not_a_number};
        phases line;
        switch (where(T, r)) {
        case place::nowhere:
            result.status = OSTREL_NO_STATE;
            return result;
        case place::underflow:
            result.status = OSTREL_OUT_OF_RANGE;
            return result;
        case place::mixture:
            line = saturated(T);
            result.P = line.P;
            result.q = (V - V_of(line.r_l)) / (V_of(line.r_g) - V_of(line.r_l));
            return result;
        default:
            result.P = pressure_at(T, V + offset_);
            return result;
        }
    }

    /// P and T are given. The saturated liquid is meant if the pressure is that of the line to the last bit of its SI
    /// value, which is `given` = P unit.
    solved from_P_T(double P, double T, double given, double unit) const {
        solved result = {OSTREL_OK, T, P, 0, 0, not_a_number};
        const isotherm i = surface_.at(T);
        if constexpr (!surface_type::saturates) {
            return single(result, i.single(P));
        } else {
            if (T >= surface_.T_c)
                return below_top(result, i, i.single(P));
            if (states_ == allowed_states::metastable_vapor)
                return gas_reaches(i, P, T) ? single(result, gas_on(i, P)) : none(result);
            if (states_ == allowed_states::metastable_liquid)
                return liquid_reaches(i, P, T) ? below_top(result, i, liquid_on(i, P)) : none(result);
            if (T < surface_.T_line) { // and everywhere if there is no line
                if (surface_.line_ends)
                    return gas_reaches(i, P, T) ? single(result, gas_on(i, P)) : none(result);
                return below_top(result, i, i.liquid(P));
            }
            int side = line_.side_of_pressure(T, P);
            if (side == 0) {
                const phases p = saturated(T);
                if (given == p.P * unit) {
                    result.q = 0.0;
                    return single(result, p.r_l);
                }
                side = given < p.P * unit ? -1 : 1;
            }
            return side < 0 ? single(result, i.gas(P)) : below_top(result, i, i.liquid(P));
        }
    }

    /// The saturated phases at T, or why there are none.
    int saturation_at_T(double T, phases &found) const {
        if (!surface_type::saturates || T > surface_.T_c || !line_.exists())
            return OSTREL_NO_SATURATION;
        if (T == surface_.T_c) {
            found = {1.0, 0.0, r_of(1.0 - offset_), r_of(1.0 - offset_)};
            return OSTREL_OK;
        }
        if (T < surface_.T_line)
            return surface_.line_ends ? OSTREL_NO_SATURATION : OSTREL_OUT_OF_RANGE;
        found = saturated(T);
        return found.P > 0 ? OSTREL_OK : OSTREL_NO_SATURATION;
    }
    /// The saturated phases at P and their temperature, or why there are none.
    int saturation_at_P(double P, double &T, phases &found) const {
        if (!surface_type::saturates || P > surface_.P_c || !line_.exists())
            return OSTREL_NO_SATURATION;
        if (P < line_.lowest().P * (1.0 - 1e-15)) // the lowest pressure itself may be rounded
            return surface_.line_ends ? OSTREL_NO_SATURATION : OSTREL_OUT_OF_RANGE;
        if constexpr (surface_type::saturates)
            T = line_.temperature(P, found);
        found.P = P;
        return OSTREL_OK;
    }

    solved from_T_q(double T, double q) const {
        phases p;
        const int status = saturation_at_T(T, p);
        return status == OSTREL_OK ? of_quality(T, p, q) : none({}, status);
    }
    solved from_P_q(double P, double q) const {
        double T = 0;
        phases p;
        const int status = saturation_at_P(P, T, p);
        return status == OSTREL_OK ? of_quality(T, p, q) : none({}, status);
    }
    /// The saturated liquid and the saturated vapor.
    void both_from_T(double T, solved &l, solved &g) const {
        phases p;
        const int status = saturation_at_T(T, p);
        l = status == OSTREL_OK ? of_quality(T, p, 0.0) : none({}, status);
        g = status == OSTREL_OK ? of_quality(T, p, 1.0) : l;
    }
    void both_from_P(double P, solved &l, solved &g) const {
        double T = 0;
        phases p;
        const int status = saturation_at_P(P, T, p);
        l = status == OSTREL_OK ? of_quality(T, p, 0.0) : none({}, status);
        g = status == OSTREL_OK ? of_quality(T, p, 1.0) : l;
    }

    /// T and a caloric value are given.
    template <letter X>
    solved from_T_X(double T, double x) const;
    /// P and a caloric value are given.
    template <letter X>
    solved from_P_X(double P, double x) const;
    /// V and another value are given: P or a caloric one.
    template <letter X>
    solved from_V_X(double V, double x) const;
    /// The entropy and another caloric value are given.
    template <letter X>
    solved from_s_X(double s, double x) const;
    /// The gas below the end of the saturation line that has two values: P and a caloric one, V and another one, or the
    /// entropy and another caloric one.
    template <letter X, letter Y>
    solved beyond_line(double x, double y) const;

private:
    void prepare() {
        make_caloric_nodes();
        if constexpr (surface_type::saturates) {
            critical_ = at(surface_.T_c, r_of(1.0 - offset_));
            if (line_.exists())
                make_nodes();
        }
    }
    static solved none(solved result, int status = OSTREL_NO_STATE) {
        result.status = status;
        return result;
    }
    solved single(solved result, double r) const {
        result.r = r;
        result.V = V_of(r);
        result.status = r > 0 ? OSTREL_OK : OSTREL_NO_STATE;
        return result;
    }
    solved below_top(const solved &result, const isotherm &i, double r) const {
        return r < i.top() || (r == i.top() && P_reaches(result.P, i)) ? single(result, r) : none(result);
    }
    /// Whether the gas reaches up to P, and the liquid down to it, but for rounding.
    bool gas_reaches(const isotherm &i, double P, double T) const {
        if constexpr (!surface_type::saturates)
            return true;
        else {
            const double end = i.gas_end();
            return end == infinite || P <= i.P(end) + rounding_of_P(T, end);
        }
    }
    bool liquid_reaches(const isotherm &i, double P, double T) const {
        const double end = i.liquid_end();
        return P >= i.P(end) - rounding_of_P(T, end);
    }
    double rounding_of_P(double T, double r) const {
        return r < infinite ? 4.0 * std::numeric_limits<double>::epsilon() * model_.repulsion() * T * r : 0.0;
    }
    /// r at P on the branches, which end at their spinodals: there rounding may lead to the other root.
    double gas_on(const isotherm &i, double P) const {
        if constexpr (surface_type::saturates)
            return std::min(i.gas(P), i.gas_end());
        else
            return i.gas(P);
    }
    double liquid_on(const isotherm &i, double P) const { return std::max(i.liquid(P), i.liquid_end()); }
    /// Whether P is that of the densest state, but for rounding.
    static bool P_reaches(double P, const isotherm &i) { return P <= i.P(i.top()) * (1.0 + 1e-14); }
    solved of_quality(double T, const phases &p, double q) const {
        const double V_l = V_of(p.r_l);
        const double V_g = V_of(p.r_g);
        const double V = q == 0 ? V_l : q == 1 ? V_g : V_l + q * (V_g - V_l);
        return {OSTREL_OK, T, p.P, V, q == 0 ? p.r_l : q == 1 ? p.r_g : r_of(V), q};
    }
    solved of_mixture(double T, const mixture &m, double q) const {
        solved result = {OSTREL_OK, T, m.line.P, m.l.V + q * (m.g.V - m.l.V), 0, q};
        result.r = r_of(result.V);
        return result;
    }
    solved of_single(double T, double P, double r) const { return {OSTREL_OK, T, P, V_of(r), r, not_a_number}; }

    /// Whether the step after `step` would be only rounding, as the convergence from the step before shows.
    static bool settled(double step, double before) {
        return step <= 1e-15 || (step < 1.4e-8 && step * step * step <= 2e-16 * before * before);
    }

    struct point {
        double T;
        double r;
        bool converged;
    };
    /// A temperature that only rounding keeps from the critical one is the critical one; below it the state would be
    /// inside the dome.
    point at_critical(point end) const {
        if (std::abs(end.T - surface_.T_c) <= 3e-14 * surface_.T_c)
            end.T = surface_.T_c;
        return end;
    }
    /// Newton's method in T and ln r for two quantities of one phase.
    template <letter X, letter Y>
    point newton(double x, double y, double T, double r, int steps = 30) const {
        double last = infinite;
        for (int step = 0; step < steps; ++step) {
            const properties p = at<caloric_of<X> | caloric_of<Y>>(T, r);
            const quantity_at a = value_of<X>(p);
            const quantity_at b = value_of<Y>(p);
            double inverse = 1.0 / (a.by_T * b.by_V - a.by_V * b.by_T);
            if constexpr (X == letter::s && Y == letter::u) // the same, without the cancellation in a cold liquid
                inverse = -p.T / (p.P * p.cv);
            const double da = x - a.value;
            const double db = y - b.value;
            const double dT = (da * b.by_V - a.by_V * db) * inverse;
            const double dlog = -(a.by_T * db - b.by_T * da) * inverse * r; // d ln r = -r dV
            if (!(std::abs(dT) < infinite) || !(std::abs(dlog) < infinite))
                return {T, r, false};
            const double size = std::max(std::abs(dT) / T, std::abs(dlog));
            if (size < 0.2) {
                T += dT;
                r /= 1.0 - dlog; // V, in which a gas and a liquid are simple, changes by its own step
                bool end = settled(size, last);
                double noise = 0.25; // a step that is not smaller than this part of the last one is rounding
                if constexpr (X == letter::s && Y == letter::u) { // steps are in proportion to 1/P
                    end = end && size * std::abs(p.P_T * dT - p.P_V * dlog / r) <= 1e-15 * std::abs(p.P);
                    noise = 1.0;
                }
                if (end || (size < 1e-6 && size >= noise * last))
                    return {T, r, true};
            } else {
                double fraction = 1.0;
                if (dT < -0.5 * T)
                    fraction = -0.5 * T / dT;
                if (dT > T)
                    fraction = T / dT;
                if (std::abs(dlog) > 1.0)
                    fraction = std::min(fraction, 1.0 / std::abs(dlog));
                T += fraction * dT;
                r *= std::exp(fraction * dlog);
            }
            last = size;
        }
        return {T, r, last < 1e-10};
    }

    /// A root of f within a bracket at whose ends it has different signs; f(x) is {value, slope}. Unless f is smooth,
    /// convergence shows nothing about the next step.
    template <class F>
    static double bracketed(double low, double high, double start, bool rises, F f, double tolerance = 1e-15,
                            bool smooth = true) {
        double x = start > low && start < high ? start : 0.5 * (low + high);
        double last = infinite;
        for (int step = 0;; ++step) {
            const auto [value, slope] = f(x);
            if (value == 0)
                return x;
            ((value > 0) == rises ? high : low) = x;
            double next = x - value / slope;
            double change = std::abs(next - x);
            if (!(next > low && next < high) || change > 0.5 * last) {
                next = low > 0 && high > 4.0 * low ? std::sqrt(low) * std::sqrt(high) : 0.5 * (low + high);
                change = infinite;
            }
            if (next == x || next <= low || next >= high || std::abs(next - x) <= tolerance * std::abs(x) ||
                step == 300)
                return next;
            if (smooth && settled(change / std::abs(x), last / std::abs(x)))
                return next;
            last = change;
            x = next;
        }
    }

    struct value_and_slope {
        double value;
        double slope;
    };

    enum class branch { gas, liquid };
    /// r at T and P: above the critical temperature the only one, below it that of the branch.
    double root_on(const isotherm &i, double T, double P, branch below_critical) const {
        if (!surface_type::saturates || T >= surface_.T_c)
            return i.single(P);
        return below_critical == branch::gas ? i.gas(P) : i.liquid(P);
    }
    /// Whether an end of Newton's method along an isobar is a stable state of the branch.
    bool is_on(const point &end, branch below_critical) const {
        if constexpr (!surface_type::saturates)
            return true;
        const isotherm there = surface_.at(end.T);
        if (end.T >= surface_.T_c)
            return end.r < there.top();
        return there.beside_gas(end.r) == (below_critical == branch::gas) && there.slope(end.r) > 0 &&
               end.r < there.top();
    }
    template <letter X>
    solved along_isobar(double P, double x, branch below_critical, double T_low, double T_high, double start) const;
    template <letter X>
    solved isobar_search(double P, double x, branch below_critical, double T_low, double T_high, double start) const;
    template <letter X>
    solved on_isotherm(double T, double x, double r_low, double r_high, bool first_of_several) const;
    template <letter X, letter Y>
    solved finish(double x, double y, const solved &rough) const;
    bool is_state(double T, double r) const {
        return T > 0 && r > 0 && r < infinite && where(T, r) == place::single && mechanical(T, r).P_V < 0;
    }
    /// Whether a gas below the end of a saturation line, which only counts if there is no other state.
    bool behind_line(double T) const {
        return states_ == allowed_states::stable && surface_.line_ends && T < surface_.T_line && line_.exists();
    }
    /// The equilibrium along an isochore: X and its slope in T. Nothing outside the surface.
    struct on_isochore {
        bool there = false;
        bool mixed = false;
        double value = 0;
        double slope = 0;
        double q = 0;
        mixture m;
    };
    template <letter X>
    on_isochore equilibrium(double T, double V, double r) const;
    template <letter X>
    solved isochore_search(double V, double x, double T_low, double T_high, double start, bool smooth = false) const;

    /// The saturated phases at the nodes of the line, for starts.
    struct saturated_node {
        double T, P, V_l, V_g, u_l, u_g, s_l, s_g;

        template <letter X>
        double liquid() const {
            return X == letter::p ? P : X == letter::s ? s_l : X == letter::u ? u_l : u_l + P * V_l;
        }
        template <letter X>
        double vapor() const {
            return X == letter::p ? P : X == letter::s ? s_g : X == letter::u ? u_g : u_g + P * V_g;
        }
        template <letter X>
        double mixture(double q) const {
            return liquid<X>() + q * (vapor<X>() - liquid<X>());
        }
    };
    static constexpr int cells = saturation_line<surface_type>::cells;
    void make_nodes() {
        for (int k = 0; k <= cells; ++k) {
            const phases line = line_.at_node(k);
            const double T = line_.T_of_node(k);
            const mixture m = mix(T, line);
            nodes_[static_cast<std::size_t>(k)] = {T, line.P, m.l.V, m.g.V, m.l.u, m.g.u, m.l.s, m.g.s};
        }
    }
    const saturated_node &node(int k) const { return nodes_[static_cast<std::size_t>(k)]; }
    /// The last node whose dome holds V; -1 if there is none.
    int last_node_around(double V) const {
        if (!line_.exists() || !(node(0).V_l < V && V < node(0).V_g))
            return -1;
        int k = 0;
        for (int half = cells / 2; half > 0; half /= 2)
            k += node(k + half).V_l < V && V < node(k + half).V_g ? half : 0;
        return k;
    }

    /// The temperature at which the liquid has about a value, by the saturated liquid at the nodes.
    template <letter X>
    double liquid_start(int cell, double x) const {
        while (cell > 0 && x < node(cell).template liquid<X>())
            --cell;
        const saturated_node &a = node(cell);
        const saturated_node &b = node(cell + 1);
        const double slope = (b.T - a.T) / (b.template liquid<X>() - a.template liquid<X>());
        return std::max(a.T + (x - a.template liquid<X>()) * slope, 0.5 * a.T);
    }
    /// The temperature at which the gas has about the given excess over the saturated vapor: half of the vapor's
    /// departure from the ideal gas is taken to be gone.
    template <letter X>
    double gas_start(const saturated_node &vapor, double T, double excess) const {
        const auto caloric = caloric_at<caloric_of<X>>(T);
        if constexpr (X == letter::s) {
            const double departure =
                vapor.s_g - ideal_.s_0 - caloric_at<entropy>(vapor.T).psi(vapor.T) - std::log(vapor.T / vapor.P);
            return ideal_temperature<letter::p>(caloric.psi(T) + std::log(T) + excess + 0.5 * std::min(departure, 0.0))
                .T;
        } else if constexpr (X == letter::h) {
            const double departure = vapor.u_g + vapor.P * vapor.V_g - ideal_.e_0 - caloric.phi(vapor.T) - vapor.T;
            return ideal_temperature<letter::h>(caloric.phi(T) + T + excess + 0.5 * std::min(departure, 0.0)).T;
        } else {
            return ideal_temperature<letter::u>(caloric.phi(T) + excess).T;
        }
    }

    /// The temperature on an isochore at which X has about the value x: that of the ideal gas for the part of x that
    /// the attraction at T_c leaves, corrected for the change of the attraction.
    template <letter X>
    double isochore_start(const volume_half &half, double x) const {
        const double T = surface_.T_c;
        const auto q = model_.q(T);
        double sum = X == letter::s ? ideal_.s_0 + model_.repulsion() * half.log_w : ideal_.e_0;
        double slope = 0; // of the sum in T, for the entropy times T
        separated_attraction::for_each_index<Model::terms>([&](std::size_t i) {
            if constexpr (X == letter::s)
                sum += q[i][1] * half.f[i][0];
            else
                sum += (T * q[i][1] - q[i][0]) * half.f[i][0];
            slope += T * q[i][2] * half.f[i][0];
            if constexpr (X == letter::h) {
                sum += half.V * q[i][0] * half.f[i][1];
                slope += half.V * q[i][1] * half.f[i][1];
            }
        });
        double own = 0;
        if constexpr (X == letter::h) { // the table has phi + T
            const double factor = model_.repulsion() * half.V * half.r - 1.0;
            sum += factor * T;
            slope += factor;
            own = 1.0;
        }
        const ideal_point ideal = ideal_temperature<X>(x - sum);
        return std::clamp(T + (ideal.T - T) / (1.0 + slope / (ideal.cv + own)), 0.5 * ideal.T, 2.0 * ideal.T);
    }

    /// The inverse of the ideal gas's energy and entropy, for starts.
    static constexpr int temperatures = 24;
    struct caloric_node {
        double T, phi, psi, cv, log_T;
    };
    void make_caloric_nodes() {
        for (int k = 0; k <= temperatures; ++k) {
            const double T = surface_.T_c * 0.25 * std::exp2(k * (4.5 / temperatures));
            const auto caloric = caloric_at<energy | entropy | heat>(T);
            caloric_nodes_[static_cast<std::size_t>(k)] = {T, caloric.phi(T), caloric.psi(T), caloric.phip(T),
                                                           std::log(T)};
        }
    }
    struct ideal_point {
        double T;
        double cv;
    };
    /// T at which phi (X is u), phi + T (h), psi (s) or psi + ln T (p) has a value, by a cubic between nodes, and about
    /// the heat capacity there.
    template <letter X>
    ideal_point ideal_temperature(double value) const {
        const auto y = [](const caloric_node &n) {
            return X == letter::s ? n.psi : X == letter::p ? n.psi + n.log_T : X == letter::u ? n.phi : n.phi + n.T;
        };
        std::size_t k = 0;
        for (std::size_t half = 16; half > 0; half /= 2)
            if (k + half < temperatures && value >= y(caloric_nodes_[k + half]))
                k += half;
        const caloric_node &a = caloric_nodes_[k];
        const caloric_node &b = caloric_nodes_[k + 1];
        const double width = y(b) - y(a);
        const double x = std::clamp((value - y(a)) / width, -1.0, 2.0);
        // dT/dy, for the entropy times 1/T of the exponential below
        const auto slope = [&](const caloric_node &n) {
            return X == letter::s   ? n.T / n.cv
                   : X == letter::p ? n.T / (n.cv + 1.0)
                   : X == letter::u ? 1.0 / n.cv
                                    : 1.0 / (n.cv + 1.0);
        };
        const double z = 1.0 - x;
        const double T = z * z * ((1.0 + 2.0 * x) * a.T + x * width * slope(a)) +
                         x * x * ((1.0 + 2.0 * z) * b.T - z * width * slope(b));
        return {T > 0.5 * a.T && T < 2.0 * b.T ? T : a.T, z * a.cv + x * b.cv};
    }

    Model model_;
    separated_attraction::ideal_part ideal_;
    surface_type surface_;
    saturation_line<surface_type> line_;
    double offset_;
    allowed_states states_;
    properties critical_{};
    std::array<saturated_node, cells + 1> nodes_{};
    std::array<caloric_node, temperatures + 1> caloric_nodes_{};
};

} // namespace fluid

#include "Fluid/solver_searches.h"
