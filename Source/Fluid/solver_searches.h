// SPDX-License-Identifier: MIT
// The searches of solver.h. The head of that file says how they work.
#pragma once

#include "Fluid/solver.h"

namespace fluid {

/// The last digits of a single phase that was found roughly. The rough state stays where Newton's method leaves it.
template <class Model>
solved solver<Model>::finish(letter X, double x, letter Y, double y, const solved &rough) const {
    const point end = newton_for(X, x, Y, y, rough.T, rough.r, 8);
    const bool near = std::abs(end.T - rough.T) < 1e-3 * rough.T && std::abs(end.r - rough.r) < 1e-2 * rough.r;
    if (!near || !is_state(end.T, end.r))
        return rough;
    solved result = of_single(at(end.T, end.r), end.r);
    return result;
}

// Given T.

template <class Model>
solved solver<Model>::on_isotherm(double T, letter X, double x, double r_low, double r_high,
                                  bool first_of_several) const {
    const auto caloric = caloric_at<energy | entropy | heat>(T);
    const auto f = [&](double log_r) {
        const double r = std::exp(log_r);
        const quantity_at a = value_of(X, at(T, r, caloric));
        return value_and_slope{a.value - x, -a.by_V / r};
    };
    const double low = r_low > 0 ? std::log(r_low) : -690.0;
    const double high = std::log(std::min(r_high, 1e8));
    const auto result = [&](double log_r) {
        const double r = std::exp(log_r);
        solved found = of_single(at(T, r, caloric), r);
        found.P = surface_.at(T).P(r);
        return found;
    };
    const auto close = [&](double place) { // at an end, which rounding may have moved
        const auto [value, slope] = f(place);
        return std::abs(value) <= 1e-13 * std::max(std::abs(slope), std::abs(x)) || value == 0;
    };
    const auto search = [&](double a, double b, double start) {
        return bracketed(a, b, start, f(b).value > 0, f, 2e-16);
    };
    if (!first_of_several) {
        const double f_low = f(low).value;
        const double f_high = f(high).value;
        if ((f_low > 0) != (f_high > 0)) {
            // For a gas both s and the attraction's part of u are simple in ln r; one step from the middle is a good
            // start.
            const double middle = r_low > 0 ? 0.5 * (low + high) : std::min(high, std::log(0.1));
            const auto [value, slope] = f(middle);
            const double start = std::clamp(middle - value / slope, low + 1e-9, high - 1e-9);
            return result(search(low, high, start));
        }
        if (close(high))
            return result(high);
        if (r_low > 0 && close(low))
            return result(low);
        if (X == letter::u && close(-37.0)) // a gas so dilute that nothing distinguishes it from the ideal gas
            return result(-37.0);
        return none({OSTREL_NO_STATE, T});
    }
    constexpr int intervals = 96;
    const double begin = r_low > 0 ? low : std::min(high - 1.0, -37.0);
    double a = begin;
    value_and_slope at_a = f(a);
    if (r_low == 0 && at_a.value == 0)
        return result(a);
    for (int k = 1; k <= intervals; ++k) {
        const double b = k == intervals ? high : begin + (high - begin) * k / intervals;
        const value_and_slope at_b = f(b);
        double turn = b;
        if ((at_a.slope > 0) != (at_b.slope > 0)) {
            double inner = a;
            double outer = b;
            while (outer - inner > 1e-14 * std::max(1.0, std::abs(inner))) {
                const double middle = 0.5 * (inner + outer);
                if (middle <= inner || middle >= outer)
                    break;
                ((f(middle).slope > 0) == (at_a.slope > 0) ? inner : outer) = middle;
            }
            turn = inner;
        }
        const double f_turn = f(turn).value;
        if ((at_a.value > 0) != (f_turn > 0))
            return result(search(a, turn, 0.5 * (a + turn)));
        if (turn < b && (f_turn > 0) != (at_b.value > 0))
            return result(search(turn, b, 0.5 * (turn + b)));
        a = b;
        at_a = at_b;
    }
    if (close(high))
        return result(high);
    if (close(begin)) // also a gas so dilute that nothing distinguishes it from the ideal gas
        return result(begin);
    return none({OSTREL_NO_STATE, T});
}

template <class Model>
solved solver<Model>::from_T_X(double T, letter X, double x) const {
    if constexpr (!surface_type::saturates) {
        if (X != letter::s)
            return none({OSTREL_NO_STATE, T});
        return on_isotherm(T, X, x, 0.0, infinite, false);
    } else {
        const isotherm i = surface_.at(T);
        const bool several = X == letter::h || T > 3.0 * surface_.T_c;
        if (T >= surface_.T_c || states_ == allowed_states::surface)
            return on_isotherm(T, X, x, 0.0, i.top(), several);
        if (states_ == allowed_states::metastable_vapor)
            return on_isotherm(T, X, x, 0.0, i.gas_end(), false);
        if (states_ == allowed_states::metastable_liquid)
            return on_isotherm(T, X, x, i.liquid_end(), i.top(), X == letter::h);
        if (T < surface_.T_line || !line_.exists()) {
            if (surface_.line_ends || !line_.exists())
                return on_isotherm(T, X, x, 0.0, i.gas_end(), false);
            return on_isotherm(T, X, x, i.liquid(0.0), i.top(), X == letter::h);
        }
        const mixture m = mix(T, surface_.saturated(T));
        const double X_l = value_of(X, m.l).value;
        const double X_g = value_of(X, m.g).value;
        if (x >= X_l && x <= X_g)
            return of_mixture(T, m, (x - X_l) / (X_g - X_l));
        if (x > X_g) {
            const solved gas = on_isotherm(T, X, x, 0.0, m.line.r_g, false);
            if (gas.status == OSTREL_OK || X != letter::h)
                return gas;
        }
        return on_isotherm(T, X, x, m.line.r_l, i.top(), X == letter::h);
    }
}

// Given P.

template <class Model>
solved solver<Model>::along_isobar(double P, letter X, double x, branch below_critical, double T_low, double T_high,
                                   double start) const {
    const double T_c = surface_.T_c;
    // r at T on the branch; 0 if the branch does not reach this temperature, -1 if it ends at lower pressures.
    const auto r_there = [&](double T) {
        const isotherm i = surface_.at(T);
        double r = 0;
        if (!surface_type::saturates || T >= T_c)
            r = i.single(P);
        else if (below_critical == branch::gas)
            r = P <= i.P(i.gas_end()) ? i.gas(P) : 0.0;
        else
            r = P >= i.P(i.liquid_end()) ? i.liquid(P) : 0.0;
        return r < i.top() ? r : -1.0;
    };
    const auto acceptable = [&](double T, double r) {
        if (!(T >= T_low * (1.0 - 1e-13)) || !(T <= T_high * (1.0 + 1e-13)) || !is_state(T, r))
            return false;
        return T >= T_c || surface_.at(T).beside_gas(r) == (below_critical == branch::gas);
    };
    double r = r_there(start);
    if (r > 0) {
        const point end = newton_for(letter::p, P, X, x, start, r);
        if (end.converged && acceptable(end.T, end.r)) {
            solved result = of_single(at(end.T, end.r), end.r);
            result.P = P;
            return result;
        }
    }
    // The search in T. Where a branch is not there, T is too low for a gas and too high for a liquid; where the liquid
    // would be too dense, T is too low.
    const bool too_low_if_missing = below_critical == branch::gas || !surface_type::saturates;
    const auto f = [&](double T) {
        const double r_T = r_there(T);
        if (!(r_T > 0))
            return value_and_slope{too_low_if_missing || r_T < 0 ? -infinite : infinite, 1.0};
        const properties p = at(T, r_T);
        const quantity_at a = value_of(X, p);
        return value_and_slope{a.value - x, a.by_T - a.by_V * p.P_T / p.P_V};
    };
    double low = T_low;
    double high = T_high;
    if (high == infinite) {
        high = std::max({low, start, 0.5 * T_c});
        while (f(high).value < 0) {
            low = high;
            high *= 1.6;
            if (!(high < 1e7 * T_c))
                return none({OSTREL_NO_STATE, 0, P});
        }
    }
    if (low == 0) {
        low = std::min(start, high);
        while (f(low).value > 0) {
            high = std::min(high, low);
            low *= 0.7;
            if (!(low > 1e-6 * T_c))
                return none({OSTREL_NO_STATE, 0, P});
        }
    }
    const double T = bracketed(low, high, start, true, f);
    r = r_there(T);
    if (!(r > 0))
        return none({OSTREL_NO_STATE, 0, P});
    const properties p = at(T, r);
    const auto [value, slope] = f(T);
    if (!(std::abs(value) <= 1e-6 * (std::abs(slope) * T + std::abs(x))))
        return none({OSTREL_NO_STATE, 0, P});
    solved result = finish(letter::p, P, X, x, of_single(p, r));
    result.P = P;
    return result;
}

template <class Model>
solved solver<Model>::from_P_X(double P, letter X, double x) const {
    const double T_c = surface_.T_c;
    if (!surface_type::saturates)
        return along_isobar(P, X, x, branch::gas, 0.0, infinite, T_c);
    const auto from_critical = [&] { // a step along the isobar from a temperature near the critical one
        const double T = 1.02 * T_c;
        const isotherm i = surface_.at(T);
        const double r = i.single(P);
        if (!(r < i.top()))
            return T_c;
        const properties p = at(T, r);
        const quantity_at a = value_of(X, p);
        const double slope = a.by_T - a.by_V * p.P_T / p.P_V;
        return std::clamp(T + (x - a.value) / slope, 0.4 * T_c, 6.0 * T_c);
    };
    if (states_ == allowed_states::metastable_vapor)
        return along_isobar(P, X, x, branch::gas, 0.0, infinite, from_critical());
    if (states_ == allowed_states::metastable_liquid) {
        if (P >= 1.0)
            return along_isobar(P, X, x, branch::liquid, 0.0, infinite, from_critical());
        const solved liquid = along_isobar(P, X, x, branch::liquid, 0.0, T_c * (1.0 - 1e-15), 0.8 * T_c);
        return liquid.status == OSTREL_OK ? liquid : along_isobar(P, X, x, branch::gas, T_c, infinite, 1.2 * T_c);
    }
    if (P >= 1.0)
        return along_isobar(P, X, x, branch::liquid, surface_.line_ends ? surface_.T_line : 0.0, infinite,
                            from_critical());
    if (!line_.exists() || P < line_.lowest().P)
        return along_isobar(P, X, x, branch::gas, 0.0, infinite, T_c);
    phases line;
    const double T_s = line_.temperature(P, line);
    line.P = P;
    const mixture m = mix(T_s, line);
    const double X_l = value_of(X, m.l).value;
    const double X_g = value_of(X, m.g).value;
    if (x >= X_l && x <= X_g) {
        solved result = of_mixture(T_s, m, (x - X_l) / (X_g - X_l));
        result.P = P;
        return result;
    }
    // One step from the saturated phase.
    const auto step_from = [&](const properties &phase, double X_phase) {
        const quantity_at a = value_of(X, phase);
        return T_s + (x - X_phase) / (a.by_T - a.by_V * phase.P_T / phase.P_V);
    };
    if (x > X_g)
        return along_isobar(P, X, x, branch::gas, T_s, infinite, std::min(step_from(m.g, X_g), 3.0 * T_c));
    const double lowest = surface_.line_ends ? surface_.T_line : 0.0;
    return along_isobar(P, X, x, branch::liquid, lowest, T_s, std::max({step_from(m.l, X_l), lowest, 0.3 * T_s}));
}

// Given V.

template <class Model>
typename solver<Model>::on_isochore solver<Model>::equilibrium(letter X, double T, double V, double r) const {
    on_isochore result;
    phases line;
    switch (where(T, r, &line)) {
    case place::nowhere:
    case place::underflow:
        return result;
    case place::mixture: {
        result.m = mix(T, line);
        result.mixed = true;
        result.q = quality(result.m, V);
        const quantity_at a = value_of(X, mixed(result.m, result.q, V));
        result.value = a.value;
        result.slope = a.by_T;
        break;
    }
    default: {
        const quantity_at a = value_of(X, at(T, r));
        result.value = a.value;
        result.slope = a.by_T;
    }
    }
    result.there = true;
    return result;
}

template <class Model>
solved solver<Model>::isochore_search(double V, letter X, double x, double T_low, double T_high) const {
    const double r = r_of(V);
    const auto f = [&](double T) {
        const on_isochore e = equilibrium(X, T, V, r);
        return e.there ? value_and_slope{e.value - x, e.slope} : value_and_slope{-infinite, 1.0};
    };
    double low = T_low;
    double high = T_high;
    const solved failure = {OSTREL_NO_STATE, 0, 0, V, r, not_a_number};
    if (high == infinite) {
        high = 1.5 * surface_.T_c;
        while (!(f(high).value > 0)) {
            low = high;
            high *= 2.0;
            if (!(high < 1e9 * surface_.T_c))
                return failure;
        }
    } else if (!(f(high).value >= 0)) {
        return failure;
    }
    if (low == 0) {
        low = std::min(0.9 * surface_.T_c, high);
        while (f(low).value > 0) {
            high = low;
            low *= 0.8;
            if (!(low > 1e-6 * surface_.T_c))
                return failure;
        }
    }
    const double T = bracketed(low, high, 0.0, true, f);
    const on_isochore e = equilibrium(X, T, V, r);
    if (!e.there || !(std::abs(e.value - x) <= 1e-9 * (std::abs(e.slope) * T + std::abs(x))))
        return failure;
    solved result = {OSTREL_OK, T, 0, V, r, not_a_number};
    if (e.mixed) {
        result.q = e.q;
        result.P = e.m.line.P;
    } else {
        result.P = X == letter::p ? x : surface_.at(T).P(r);
    }
    return result;
}

template <class Model>
solved solver<Model>::from_V_X(double V, letter X, double x) const {
    const double r = r_of(V);
    const double T_c = surface_.T_c;
    const solved failure = {OSTREL_NO_STATE, 0, 0, V, r, not_a_number};
    const double T_turn = X == letter::p ? surface_.turn(model_.covolume() + 1.0 / r) : infinite;
    // Below the end of a saturation line only the gas is left, and a state there counts only if there is no other one.
    const auto regular = [&](double T) {
        return states_ != allowed_states::stable || !surface_.line_ends || T >= surface_.T_line;
    };
    // A single phase by Newton's method.
    double T = T_c;
    if (X == letter::p && surface_type::saturates)
        T = std::min(T_c, 0.5 * T_turn);
    double last = infinite;
    for (int step = 0; step < 24; ++step) {
        const quantity_at a = value_of(X, at(T, r));
        // s is nearly linear in ln T, the others are in T.
        double next = X == letter::s ? T * std::exp(std::clamp((x - a.value) / (a.by_T * T), -1.0, 1.0))
                                     : T + (x - a.value) / a.by_T;
        if (!(next > 0.3 * T))
            next = 0.3 * T;
        if (next > 4.0 * T)
            next = 4.0 * T;
        const double change = std::abs(next - T) / T;
        T = next;
        if (!(change < infinite) || T < 1e-3 * T_c)
            break;
        if (change <= 2e-16 || (change < 1e-9 && change >= 0.25 * last) ||
            (change < 1e-6 && change < 1e-2 * last && change * change < 1e-17)) {
            if (T < T_turn && regular(T) && where(T, r) == place::single && surface_.at(T).slope(r) > 0) {
                if (T_turn < infinite) {
                    // Of two temperatures with the same pressure the one nearer to the ideal gas's is meant.
                    const double ideal = x * V / model_.repulsion();
                    const double other = bracketed(T_turn, 1e3 * T_turn, 2.0 * T_turn - T, false, [&](double at_T) {
                        const properties p = at(at_T, r);
                        return value_and_slope{p.P - x, p.P_T};
                    });
                    if (std::abs(other - ideal) < std::abs(T - ideal))
                        T = other;
                }
                return {OSTREL_OK, T, X == letter::p ? x : surface_.at(T).P(r), V, r, not_a_number};
            }
            break;
        }
        last = change;
    }
    if constexpr (!surface_type::saturates)
        return isochore_search(V, X, x, 0.0, infinite);
    const double ceiling = T_turn;
    if (states_ != allowed_states::stable || !surface_.line_ends)
        return isochore_search(V, X, x, 0.0, ceiling);
    const solved above = isochore_search(V, X, x, surface_.T_line, ceiling);
    return above.status == OSTREL_OK ? above : isochore_search(V, X, x, 0.0, std::min(surface_.T_line, ceiling));
    return failure;
}

// Given s and another caloric value.

template <class Model>
solved solver<Model>::from_s_X(double s, letter X, double x) const {
    const double T_c = surface_.T_c;
    const solved failure = {OSTREL_NO_STATE};
    bool below_line = false; // whether a gas below the end of the saturation line counts
    const auto fits = [&](const point &end) {
        if (!end.converged || !is_state(end.T, end.r))
            return false;
        if (states_ == allowed_states::stable && surface_.line_ends && end.T < surface_.T_line && !below_line)
            return false;
        return X == letter::h || surface_.at(end.T).P(end.r) > 0;
    };
    const auto single_phase = [&](const point &end) {
        solved result = of_single(at(end.T, end.r), end.r);
        result.P = surface_.at(end.T).P(end.r);
        return result;
    };
    if constexpr (surface_type::saturates) {
        const bool gas_first = s > critical_.s;
        const double r_c = r_of(1.0 - offset_);
        for (const bool gas : {gas_first, !gas_first}) {
            const point end = gas ? newton_for(letter::s, s, X, x, 1.2 * T_c, 0.3 * r_c, 25)
                                  : newton_for(letter::s, s, X, x, 0.9 * T_c, 3.0 * r_c, 25);
            if (fits(end))
                return single_phase(end);
        }
        if (states_ == allowed_states::stable && line_.exists()) {
            // Inside the dome: h = h_l + T (s - s_l) and v = v_l + (s - s_l)/P_T rise and fall with T at given s.
            const auto f = [&](double T) {
                const mixture m = mix(T, surface_.saturated(T));
                const double V = m.l.V + (s - m.l.s) / m.P_T;
                const properties p = mixed(m, quality(m, V), V);
                const double h = m.l.h() + T * (s - m.l.s);
                const double value = X == letter::h ? h : h - m.line.P * V;
                const quantity_at a = value_of(X, p);
                const quantity_at b = value_of(letter::s, p);
                return value_and_slope{value - x, a.by_T - a.by_V * b.by_T / b.by_V};
            };
            const double low = surface_.T_line;
            double high = T_c * (1.0 - 1e-12);
            if (s < critical_.s) { // up to where the liquid has this entropy
                const auto liquid = [&](double T) {
                    const phases line = surface_.saturated(T);
                    const properties p = at(T, line.r_l);
                    const double dr = (line.slope * line.P / T - p.P_T) / p.P_V;
                    return value_and_slope{p.s - s, p.cv / T + p.P_T * dr};
                };
                high = liquid(low).value < 0 ? bracketed(low, high, 0.8 * T_c, true, liquid) : low;
            }
            if (f(low).value <= 0 && f(high).value >= 0) {
                const double T = bracketed(low, high, 0.8 * T_c, true, f);
                const mixture m = mix(T, surface_.saturated(T));
                const double q = (s - m.l.s) / (m.g.s - m.l.s);
                if (q >= 0 && q <= 1)
                    return of_mixture(T, m, q);
            }
        }
    } else {
        const point end = newton_for(letter::s, s, X, x, T_c, 1.0, 60);
        if (fits(end))
            return single_phase(end);
    }
    // Along the isentrope X falls as the volume grows. Where the isentrope is not, the volume is too small.
    solved best = failure;
    const auto above = [&](double log_r) {
        const solved here = from_V_X(V_of(std::exp(log_r)), letter::s, s);
        if (surface_.line_ends && here.status == OSTREL_OK && here.T < surface_.T_line &&
            states_ == allowed_states::stable)
            return false;             // expanded so far that only the gas is left
        if (here.status != OSTREL_OK) // behind the end of the saturation line, or too dense
            return !surface_.line_ends || std::exp(log_r) > 1.0 / (1.0 - model_.covolume());
        best = here;
        double value = 0;
        if (here.q >= 0) {
            const mixture m = mix(here.T, surface_.saturated(here.T));
            value = value_of(X, mixed(m, here.q, here.V)).value;
        } else {
            value = value_of(X, at(here.T, here.r)).value;
        }
        return value > x || (X != letter::h && here.P <= 0);
    };
    double low = -60.0;
    double high = std::log(1e6);
    while (high - low > 1e-15 * std::max(1.0, std::abs(low))) {
        const double middle = 0.5 * (low + high);
        if (middle <= low || middle >= high)
            break;
        (above(middle) ? high : low) = middle;
    }
    best = failure;
    above(low);
    if (best.status != OSTREL_OK || (surface_.line_ends && best.T < surface_.T_line))
        above(high);
    const auto last_resort = [&] { // the gas below the end of the saturation line
        below_line = surface_.line_ends;
        for (const double log_r : {-1.0, -4.0, -16.0}) {
            const point end = newton_for(letter::s, s, X, x, 0.9 * surface_.T_line, std::exp(log_r), 60);
            if (below_line && fits(end))
                return single_phase(end);
        }
        return failure;
    };
    if (best.status != OSTREL_OK)
        return last_resort();
    if (best.q >= 0) {
        const mixture m = mix(best.T, surface_.saturated(best.T));
        const double value = value_of(X, mixed(m, best.q, best.V)).value;
        return std::abs(value - x) <= 1e-9 * (std::abs(x) + best.T) ? best : last_resort();
    }
    const solved result = finish(letter::s, s, X, x, best);
    const quantity_at a = value_of(X, at(result.T, result.r));
    return std::abs(a.value - x) <= 1e-9 * (std::abs(x) + result.T) ? result : last_resort();
}

} // namespace fluid
