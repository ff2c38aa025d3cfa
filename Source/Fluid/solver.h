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
    double T, V, P;
    double P_T, P_V;
    double h_V; ///< dh/dV at constant T, without the cancellation of its ideal parts
    double u_V; ///< du/dV at constant T
    double cv;
    double u, s;

    double h() const { return u + P * V; }
    double h_T() const { return cv + V * P_T; }
};

/// A quantity and its derivatives with respect to T and V.
struct quantity_at {
    double value;
    double by_T;
    double by_V;
};
inline quantity_at value_of(letter what, const properties &at) {
    switch (what) {
    case letter::p:
        return {at.P, at.P_T, at.P_V};
    case letter::h:
        return {at.h(), at.h_T(), at.h_V};
    case letter::s:
        return {at.s, at.cv / at.T, at.P_T};
    case letter::u:
        return {at.u, at.cv, at.u_V};
    case letter::t:
        return {at.T, 1.0, 0.0};
    default:
        return {at.V, 0.0, 1.0};
    }
}

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
        if constexpr (Model::terms > 0)
            critical_ = at(surface_.T_c, r_of(1.0 - offset_));
    }

    // Only while the fluid is made: the constant that is taken from the volumes, and the zeros of energy and entropy.
    void translate(double offset) { offset_ = offset; }
    void shift(double energy_zero, double entropy_zero) {
        ideal_.e_0 += energy_zero;
        ideal_.s_0 += entropy_zero;
        critical_.s += entropy_zero;
    }

    const surface_type &surface() const { return surface_; }
    const saturation_line<surface_type> &line() const { return line_; }
    double T_c() const { return surface_.T_c; }
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
    properties at(double T, double r) const { return at(T, r, caloric_at<energy | entropy | heat>(T)); }
    template <class Caloric>
    OSTREL_INLINE properties at(double T, double r, const Caloric &caloric) const {
        const double b = model_.covolume();
        const double w = 1.0 / r;
        const double v = b + w;
        const double V = v - offset_;
        const auto q = model_.q(T);
        const auto f = model_.f(v);
        const double R = model_.repulsion();
        properties p;
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
        p.h_V = PV_T - R * T * (b - offset_) * r * r;
        p.u_V = u_V;
        p.u = ideal_.e_0 + caloric.phi(T) + u;
        p.s = ideal_.s_0 + caloric.psi(T) + s + R * std::log(w);
        p.cv = caloric.phip(T) + cv;
        return p;
    }

    /// Of the properties only the derivatives of P.
    properties mechanical(double T, double r) const {
        struct nothing {
            static double phi(double) { return 0; }
            static double psi(double) { return 0; }
            static double phip(double) { return 0; }
        };
        return at(T, r, nothing{});
    }

    /// Both phases of a mixture, and what follows from them.
    struct mixture {
        phases line;
        properties l, g;
        double P_T; ///< of the saturation line
    };
    mixture mix(double T, const phases &line) const {
        const auto caloric = caloric_at<energy | entropy | heat>(T);
        mixture m = {line, at(T, line.r_l, caloric), at(T, line.r_g, caloric), line.slope * line.P / T};
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
        if (!(r > 0))
            return place::nowhere;
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
            if (T < surface_.T_line || !line_.exists()) {
                const isotherm i = surface_.at(T);
                if (surface_.line_ends || !line_.exists())
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
            const phases p = surface_.saturated(T);
            if (found != nullptr)
                *found = p;
            if (r <= p.r_g)
                return place::single;
            if (r >= p.r_l)
                return r < surface_.at(T).top() ? place::single : place::nowhere;
            return place::mixture;
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
            line = surface_.saturated(T);
            result.P = line.P;
            result.q = (V - V_of(line.r_l)) / (V_of(line.r_g) - V_of(line.r_l));
            return result;
        default:
            result.P = surface_.at(T).P(r);
            return result;
        }
    }

    /// P and T are given.
    solved from_P_T(double P, double T) const {
        solved result = {OSTREL_OK, T, P, 0, 0, not_a_number};
        const isotherm i = surface_.at(T);
        if constexpr (!surface_type::saturates) {
            return single(result, i.single(P));
        } else {
            if (T >= surface_.T_c)
                return below_top(result, i, i.single(P));
            if (states_ == allowed_states::metastable_vapor)
                return P <= i.P(i.gas_end()) ? single(result, i.gas(P)) : none(result);
            if (states_ == allowed_states::metastable_liquid)
                return P >= i.P(i.liquid_end()) ? below_top(result, i, i.liquid(P)) : none(result);
            if (T < surface_.T_line || !line_.exists()) {
                if (surface_.line_ends || !line_.exists())
                    return P <= i.P(i.gas_end()) ? single(result, i.gas(P)) : none(result);
                return below_top(result, i, i.liquid(P));
            }
            int side = line_.side_of_pressure(T, P);
            if (side == 0) {
                const phases p = surface_.saturated(T);
                if (P == p.P) {
                    result.q = 0.0;
                    return single(result, p.r_l);
                }
                side = P < p.P ? -1 : 1;
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
        found = surface_.saturated(T);
        return found.P > 0 ? OSTREL_OK : OSTREL_NO_SATURATION;
    }
    /// The saturated phases at P and their temperature, or why there are none.
    int saturation_at_P(double P, double &T, phases &found) const {
        if (!surface_type::saturates || P > 1.0 || !line_.exists())
            return OSTREL_NO_SATURATION;
        if (P == 1.0) {
            T = surface_.T_c;
            return saturation_at_T(T, found);
        }
        if (P < line_.lowest().P)
            return surface_.line_ends ? OSTREL_NO_SATURATION : OSTREL_OUT_OF_RANGE;
        T = line_.temperature(P, found);
        found.P = P;
        return OSTREL_OK;
    }

    solved from_T_q(double T, double q) const {
        solved result = {OSTREL_OK, T, 0, 0, 0, q};
        phases p;
        result.status = saturation_at_T(T, p);
        return result.status == OSTREL_OK ? of_quality(result, p) : result;
    }
    solved from_P_q(double P, double q) const {
        solved result = {OSTREL_OK, 0, P, 0, 0, q};
        phases p;
        result.status = saturation_at_P(P, result.T, p);
        return result.status == OSTREL_OK ? of_quality(result, p) : result;
    }

    /// T and a caloric value are given.
    solved from_T_X(double T, letter X, double x) const;
    /// P and a caloric value, or P and V (X is v), are given.
    solved from_P_X(double P, letter X, double x) const;
    /// V and another value are given: P or a caloric one.
    solved from_V_X(double V, letter X, double x) const;
    /// The entropy and another caloric value are given.
    solved from_s_X(double s, letter X, double x) const;

private:
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
    /// Whether P is that of the densest state, but for rounding.
    static bool P_reaches(double P, const isotherm &i) { return P <= i.P(i.top()) * (1.0 + 1e-14); }
    solved of_quality(solved result, const phases &p) const {
        result.P = result.P > 0 ? result.P : p.P;
        const double V_l = V_of(p.r_l);
        const double V_g = V_of(p.r_g);
        result.V = result.q == 0 ? V_l : result.q == 1 ? V_g : V_l + result.q * (V_g - V_l);
        result.r = result.q == 0 ? p.r_l : result.q == 1 ? p.r_g : r_of(result.V);
        return result;
    }
    solved of_mixture(double T, const mixture &m, double q) const {
        solved result = {OSTREL_OK, T, m.line.P, m.l.V + q * (m.g.V - m.l.V), 0, q};
        result.r = r_of(result.V);
        return result;
    }
    solved of_single(const properties &p, double r) const { return {OSTREL_OK, p.T, p.P, p.V, r, not_a_number}; }

    struct point {
        double T;
        double r;
        bool converged;
    };
    /// Newton's method in T and ln r for two quantities of one phase.
    template <unsigned these>
    point newton(letter X, double x, letter Y, double y, double T, double r, int steps = 30) const {
        double last = infinite;
        for (int step = 0; step < steps; ++step) {
            const properties p = at_with<these>(T, r);
            const quantity_at a = value_of(X, p);
            const quantity_at b = value_of(Y, p);
            const double det = a.by_T * b.by_V - a.by_V * b.by_T;
            const double da = x - a.value;
            const double db = y - b.value;
            double dT = (da * b.by_V - a.by_V * db) / det;
            double dV = (a.by_T * db - b.by_T * da) / det;
            double dlog = -dV * r; // d ln r = -r dV
            if (!(std::abs(dT) < infinite) || !(std::abs(dlog) < infinite))
                return {T, r, false};
            // The step of P at constant T is nearly linear in ln r for a gas and in r for a liquid.
            const double size = std::max(std::abs(dT) / T, std::abs(dlog));
            double fraction = 1.0;
            if (dT < -0.5 * T)
                fraction = -0.5 * T / dT;
            if (dT > T)
                fraction = T / dT;
            if (std::abs(dlog) > 1.0)
                fraction = std::min(fraction, 1.0 / std::abs(dlog));
            T += fraction * dT;
            r *= std::abs(dlog) < 0.2 ? 1.0 / (1.0 - fraction * dlog) : std::exp(fraction * dlog);
            if (size <= 2e-16 || (size < 1e-9 && size >= 0.25 * last))
                return {T, r, true};
            if (fraction == 1.0 && size < 1e-6 && last < 1e-2 && size < last * 1e-2 && size * size < 1e-17)
                return {T, r, true};
            last = size;
        }
        return {T, r, last < 1e-10};
    }
    template <unsigned these>
    properties at_with(double T, double r) const {
        return at(T, r, wanted_caloric<these>{caloric_at<these | heat>(T)});
    }
    /// An ideal part that answers 0 for the functions that nobody wants.
    template <unsigned these>
    struct wanted_caloric {
        separated_attraction::ideal_part_at<these | heat> of;
        double phi(double T) const {
            if constexpr ((these & energy) != 0)
                return of.phi(T);
            return 0;
        }
        double psi(double T) const {
            if constexpr ((these & entropy) != 0)
                return of.psi(T);
            return 0;
        }
        double phip(double T) const { return of.phip(T); }
    };
    point newton_for(letter X, double x, letter Y, double y, double T, double r, int steps = 30) const {
        return newton<energy | entropy>(X, x, Y, y, T, r, steps);
    }

    /// A root of f within a bracket at whose ends it has different signs; f(x) is {value, slope}.
    template <class F>
    static double bracketed(double low, double high, double start, bool rises, F f, double tolerance = 1e-15) {
        double x = start > low && start < high ? start : 0.5 * (low + high);
        double last = infinite;
        for (int step = 0; step < 300; ++step) {
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
            if (next == x || next <= low || next >= high || std::abs(next - x) <= tolerance * std::abs(x))
                return next;
            last = change;
            x = next;
        }
        return x;
    }

    struct value_and_slope {
        double value;
        double slope;
    };

    /// r at P on the branch that this search is about.
    enum class branch { gas, liquid, any };
    double r_at(const isotherm &i, double P, branch on) const {
        return on == branch::gas ? i.gas(P) : on == branch::liquid ? i.liquid(P) : i.single(P);
    }
    solved along_isobar(double P, letter X, double x, branch below_critical, double T_low, double T_high,
                        double start) const;
    solved on_isotherm(double T, letter X, double x, double r_low, double r_high, bool first_of_several) const;
    solved finish(letter X, double x, letter Y, double y, const solved &rough) const;
    bool is_state(double T, double r) const {
        return T > 0 && r > 0 && r < infinite && where(T, r) == place::single && surface_.at(T).slope(r) > 0;
    }
    /// The equilibrium along an isochore: X and its slope in T. Nothing outside the surface.
    struct on_isochore {
        bool there = false;
        bool mixed = false;
        double value = 0;
        double slope = 0;
        double q = 0;
        phases line;
        mixture m;
    };
    on_isochore equilibrium(letter X, double T, double V, double r) const;
    solved isochore_search(double V, letter X, double x, double T_low, double T_high) const;

    Model model_;
    separated_attraction::ideal_part ideal_;
    surface_type surface_;
    saturation_line<surface_type> line_;
    double offset_;
    allowed_states states_;
    properties critical_{};
};

} // namespace fluid

#include "Fluid/solver_searches.h"
