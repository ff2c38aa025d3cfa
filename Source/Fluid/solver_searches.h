// SPDX-License-Identifier: MIT
// The searches of solver.h. The head of that file says how they work.
#pragma once

#include "Fluid/solver.h"

namespace fluid {

/// The last digits of a single phase that was found roughly. The rough state stays where Newton's method leaves it.
template <class Model>
template <letter X, letter Y>
solved solver<Model>::finish(double x, double y, const solved &rough) const {
    const point end = at_critical(newton<X, Y>(x, y, rough.T, rough.r, 8));
    const bool near = std::abs(end.T - rough.T) < 1e-3 * rough.T && std::abs(end.r - rough.r) < 1e-2 * rough.r;
    if (!near || !is_state(end.T, end.r))
        return rough;
    return of_single(end.T, pressure(end.T, end.r), end.r);
}

// Given T.

template <class Model>
template <letter X>
solved solver<Model>::on_isotherm(double T, double x, double r_low, double r_high, bool first_of_several) const {
    const auto caloric = caloric_at<caloric_of<X>>(T);
    const auto f = [&](double log_r) {
        const double r = std::exp(log_r);
        const quantity_at a = value_of<X>(at(T, sides_of(r), caloric));
        return value_and_slope{a.value - x, -a.by_V / r};
    };
    const double low = r_low > 0 ? std::log(r_low) : -690.0;
    const double high = std::log(std::min(r_high, 1e8));
    const auto result = [&](double log_r) {
        const double r = std::exp(log_r);
        return of_single(T, pressure(T, r), r);
    };
    const auto close = [&](double place) { // at an end, which rounding may have moved
        const auto [value, slope] = f(place);
        return std::abs(value) <= 1e-13 * std::max(std::abs(slope), std::abs(x));
    };
    const auto search = [&](double a, double b, double start) {
        return bracketed(a, b, start, f(b).value > 0, f, 2e-16);
    };
    constexpr double dilute = -37.0; // so dilute that nothing distinguishes the gas from the ideal gas
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
        if (X != letter::s && close(dilute))
            return result(dilute);
        return none({OSTREL_NO_STATE, T});
    }
    const double begin = r_low > 0 ? low : std::min(high - 1.0, dilute);
    // Where the gas is not dilute, its turns may be near each other.
    const double dense_begin = r_low > 0 ? low : std::clamp(-4.0, begin, high);
    const double dense_end = r_low > 0 ? high : std::clamp(5.0, begin, high);
    constexpr int dilute_intervals = 16;
    constexpr int dense_intervals = 96;
    const int first = r_low > 0 ? 0 : dilute_intervals;
    const int intervals = first + dense_intervals + (dense_end < high ? dilute_intervals : 0);
    const auto place_of = [&](int k) {
        if (k < first)
            return begin + (dense_begin - begin) * k / first;
        if (k <= first + dense_intervals)
            return dense_begin + (dense_end - dense_begin) * (k - first) / dense_intervals;
        return dense_end + (high - dense_end) * (k - first - dense_intervals) / dilute_intervals;
    };
    double a = begin;
    value_and_slope at_a = f(a);
    if (r_low == 0 && at_a.value == 0)
        return result(a);
    for (int k = 1; k <= intervals; ++k) {
        const double b = k == intervals ? high : place_of(k);
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
    if (close(begin))
        return result(begin);
    return none({OSTREL_NO_STATE, T});
}

template <class Model>
template <letter X>
solved solver<Model>::from_T_X(double T, double x) const {
    if constexpr (!surface_type::saturates) {
        if (X != letter::s)
            return none({OSTREL_NO_STATE, T});
        return on_isotherm<X>(T, x, 0.0, infinite, false);
    } else {
        const isotherm i = surface_.at(T);
        const bool several = X == letter::h || T > 3.0 * surface_.T_c;
        if (T >= surface_.T_c)
            return on_isotherm<X>(T, x, 0.0, i.top(), several);
        if (states_ == allowed_states::metastable_vapor)
            return on_isotherm<X>(T, x, 0.0, i.gas_end(), false);
        if (states_ == allowed_states::metastable_liquid)
            return on_isotherm<X>(T, x, i.liquid_end(), i.top(), X == letter::h || surface_.has_loops);
        if (T < surface_.T_line) {
            if (surface_.line_ends)
                return on_isotherm<X>(T, x, 0.0, i.gas_end(), X == letter::h && !line_.exists());
            return on_isotherm<X>(T, x, i.liquid(0.0), i.top(), X == letter::h);
        }
        const mixture m = mix(T, saturated(T));
        const double X_l = value_of<X>(m.l).value;
        const double X_g = value_of<X>(m.g).value;
        if (x >= X_l && x <= X_g)
            return of_mixture(T, m, (x - X_l) / (X_g - X_l));
        if (x > X_g) {
            const solved found = on_isotherm<X>(T, x, 0.0, m.line.r_g, false);
            if (found.status == OSTREL_OK || X != letter::h)
                return found;
        }
        return on_isotherm<X>(T, x, m.line.r_l, i.top(), X == letter::h);
    }
}

// Given P.

/// A single phase by Newton's method from `start`, and if that is not the wanted branch by a search.
template <class Model>
template <letter X>
solved solver<Model>::along_isobar(double P, double x, branch below_critical, double T_low, double T_high,
                                   double start) const {
    const isotherm i = surface_.at(start);
    const double r = root_on(i, start, P, below_critical);
    if (r > 0 && r < i.top()) {
        const point end = at_critical(newton<letter::p, X>(P, x, start, r));
        if (end.converged && end.T >= T_low * (1.0 - 1e-13) && end.T <= T_high * (1.0 + 1e-13) &&
            is_on(end, below_critical))
            return of_single(end.T, P, end.r);
    }
    return isobar_search<X>(P, x, below_critical, T_low, T_high, start);
}

template <class Model>
template <letter X>
solved solver<Model>::isobar_search(double P, double x, branch below_critical, double T_low, double T_high,
                                    double start) const {
    const double T_c = surface_.T_c;
    // r at T on the branch; 0 if the branch does not reach this temperature, -1 if it ends at lower pressures.
    const auto r_there = [&](double T) {
        const isotherm i = surface_.at(T);
        double r = 0;
        if (!surface_type::saturates || T >= T_c)
            r = i.single(P);
        else if (below_critical == branch::gas)
            r = gas_reaches(i, P, T) ? gas_on(i, P) : 0.0;
        else
            r = liquid_reaches(i, P, T) ? liquid_on(i, P) : 0.0;
        return r < i.top() ? r : -1.0;
    };
    // Where a branch is not there, T is too low for a gas and too high for a liquid; where the liquid would be too
    // dense, T is too low.
    const bool too_low_if_missing = below_critical == branch::gas || !surface_type::saturates;
    const auto f = [&](double T) {
        const double r = r_there(T);
        if (!(r > 0))
            return value_and_slope{too_low_if_missing || r < 0 ? -infinite : infinite, 1.0};
        const properties p = at(T, r);
        const quantity_at a = value_of<X>(p);
        return value_and_slope{a.value - x, a.by_T - a.by_V * p.P_T / p.P_V};
    };
    const solved failure = {OSTREL_NO_STATE, 0, P};
    double low = T_low;
    double high = T_high;
    if (high == infinite) {
        high = std::max({low, start, 0.5 * T_c});
        while (f(high).value < 0) {
            low = high;
            high *= 1.6;
            if (!(high < 1e7 * T_c))
                return failure;
        }
    }
    if (low == 0) {
        low = std::min(start, high);
        while (f(low).value > 0) {
            high = std::min(high, low);
            low *= 0.7;
            if (!(low > 1e-6 * T_c))
                return failure;
        }
    }
    // Toward a spinodal the slope grows without bound, so that convergence shows nothing.
    double T = bracketed(low, high, start, true, f, 1e-15, states_ == allowed_states::stable);
    double r = r_there(T);
    if (r == 0) {
        T *= below_critical == branch::gas ? 1.0 + 2e-15 : 1.0 - 2e-15;
        r = r_there(T);
    }
    if (!(r > 0))
        return failure;
    // Near the critical point rounding of T leaves a difference, which Newton's method removes; where a branch ends
    // before x, a difference stays.
    const point end = at_critical(newton<letter::p, X>(P, x, T, r, 12));
    const bool near = std::abs(end.T - T) < 1e-3 * T && std::abs(end.r - r) < 0.05 * r;
    if (end.converged && near && (end.T == T_c || is_state(end.T, end.r)))
        return of_single(end.T, P, end.r);
    return std::abs(f(T).value) <= 1e-5 * (std::abs(x) + T) ? of_single(T, P, r) : failure;
}

template <class Model>
template <letter X>
solved solver<Model>::from_P_X(double P, double x) const {
    const double T_c = surface_.T_c;
    if constexpr (!surface_type::saturates)
        return along_isobar<X>(P, x, branch::gas, 0.0, infinite, T_c);
    else {
        // A step along the isobar from a temperature.
        const auto step_from = [&](double T, branch on) {
            const isotherm i = surface_.at(T);
            const double r = root_on(i, T, P, on);
            if (!(r < i.top()))
                return T;
            const properties p = at<caloric_of<X>>(T, r);
            const quantity_at a = value_of<X>(p);
            return T + (x - a.value) / (a.by_T - a.by_V * p.P_T / p.P_V);
        };
        const auto from_critical = [&] { return std::clamp(step_from(1.02 * T_c, branch::gas), 0.4 * T_c, 6.0 * T_c); };
        if (states_ == allowed_states::metastable_vapor)
            return along_isobar<X>(P, x, branch::gas, 0.0, infinite, from_critical());
        if (states_ == allowed_states::metastable_liquid) {
            if (P >= 1.0)
                return along_isobar<X>(P, x, branch::liquid, 0.0, infinite, from_critical());
            const solved found = along_isobar<X>(P, x, branch::liquid, 0.0, T_c * (1.0 - 1e-15), 0.8 * T_c);
            return found.status == OSTREL_OK ? found : along_isobar<X>(P, x, branch::gas, T_c, infinite, 1.2 * T_c);
        }
        const double lowest = surface_.line_ends ? surface_.T_line : 0.0;
        if (!line_.exists())
            return along_isobar<X>(P, x, branch::gas, 0.0, infinite, T_c);
        if (P >= surface_.P_c) {
            if (surface_.has_loops) { // the liquid and the gas are apart
                const solved found = isobar_search<X>(P, x, branch::liquid, lowest, T_c * (1.0 - 1e-15), 0.9 * T_c);
                return found.status == OSTREL_OK ? found
                                                 : along_isobar<X>(P, x, branch::gas, T_c, infinite, from_critical());
            }
            return along_isobar<X>(P, x, branch::liquid, lowest, infinite, from_critical());
        }
        if (P < line_.lowest().P)
            return along_isobar<X>(P, x, branch::gas, 0.0, infinite, T_c);
        // A look at the nodes of the line, between which the saturated phases at P are about a straight line.
        const auto [cell, T_near] = line_.near(P);
        if (cell >= 0 && cell + 1 < cells) {
            const saturated_node &a = node(cell);
            const saturated_node &b = node(cell + 1);
            const double part = (T_near - a.T) / (b.T - a.T);
            const double X_l = a.template liquid<X>() + part * (b.template liquid<X>() - a.template liquid<X>());
            const double X_g = a.template vapor<X>() + part * (b.template vapor<X>() - a.template vapor<X>());
            const double margin = 0.02 * (X_g - X_l);
            const bool is_gas = x > X_g + margin;
            if (is_gas || x < X_l - margin) {
                const branch on = is_gas ? branch::gas : branch::liquid;
                const double start = is_gas ? std::max(T_near * (1.0 + 1e-3), gas_start<X>(a, T_near, x - X_g))
                                            : std::min(T_near * (1.0 - 1e-3), liquid_start<X>(cell, x));
                const isotherm i = surface_.at(start);
                const double r = root_on(i, start, P, on);
                if (r > 0 && r < i.top()) {
                    const point end = at_critical(newton<letter::p, X>(P, x, start, r, 12));
                    // A stable state with these values is the only one.
                    if (end.converged && (is_gas ? end.T > b.T : end.T > 0 && end.T < a.T && end.T >= lowest) &&
                        is_on(end, on))
                        return of_single(end.T, P, end.r);
                }
            }
        }
        phases line;
        const double T_s = line_.temperature(P, line);
        line.P = P;
        const mixture m = mix(T_s, line);
        const quantity_at l = value_of<X>(m.l);
        const quantity_at g = value_of<X>(m.g);
        if (x >= l.value && x <= g.value) {
            solved result = of_mixture(T_s, m, (x - l.value) / (g.value - l.value));
            result.P = P;
            return result;
        }
        const auto step = [&](const properties &phase, const quantity_at &a) {
            return T_s + (x - a.value) / (a.by_T - a.by_V * phase.P_T / phase.P_V);
        };
        if (x > g.value)
            return along_isobar<X>(P, x, branch::gas, T_s, infinite, std::min(step(m.g, g), 3.0 * T_c));
        const solved found =
            along_isobar<X>(P, x, branch::liquid, lowest, T_s, std::max({step(m.l, l), lowest, 0.3 * T_s}));
        if (found.status == OSTREL_OK || !surface_.line_ends)
            return found;
        return beyond_line<letter::p, X>(P, x);
    }
}

// Given V.

template <class Model>
template <letter X>
typename solver<Model>::on_isochore solver<Model>::equilibrium(double T, double V, double r) const {
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
        const quantity_at a = value_of<X>(mixed(result.m, result.q, V));
        result.value = a.value;
        result.slope = a.by_T;
        break;
    }
    default: {
        const quantity_at a = value_of<X>(at(T, r));
        result.value = a.value;
        result.slope = a.by_T;
    }
    }
    result.there = true;
    return result;
}

template <class Model>
template <letter X>
solved solver<Model>::isochore_search(double V, double x, double T_low, double T_high, double start,
                                      bool smooth) const {
    const double r = r_of(V);
    const auto f = [&](double T) {
        const on_isochore e = equilibrium<X>(T, V, r);
        if (e.there)
            return value_and_slope{e.value - x, e.slope};
        return value_and_slope{T >= T_high || T >= surface_.T_loop ? infinite : -infinite, 1.0};
    };
    double low = T_low;
    double high = T_high;
    const solved failure = {OSTREL_NO_STATE, 0, 0, V, r, not_a_number};
    if (high == infinite) {
        high = std::max(1.5 * surface_.T_c, 1.1 * low);
        while (!(f(high).value > 0)) {
            low = high;
            high *= 2.0;
            if (!(high < 1e9 * surface_.T_c))
                return failure;
        }
    } else if (!smooth && !(f(high).value >= 0)) {
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
    const double T = bracketed(low, high, start, true, f, 1e-15, smooth);
    if (smooth) { // inside the dome, between nodes that enclose the state
        const phases line = saturated(T);
        const double V_l = V_of(line.r_l);
        const double q = (V - V_l) / (V_of(line.r_g) - V_l);
        return {q >= 0 && q <= 1 ? OSTREL_OK : OSTREL_NO_STATE, T, line.P, V, r, q};
    }
    const on_isochore e = equilibrium<X>(T, V, r);
    if (!e.there || !(std::abs(e.value - x) <= 1e-9 * (std::abs(e.slope) * T + std::abs(x))))
        return failure;
    solved result = {OSTREL_OK, T, 0, V, r, not_a_number};
    if (e.mixed) {
        result.q = e.q;
        result.P = e.m.line.P;
    } else {
        result.P = X == letter::p ? x : pressure(T, r);
    }
    return result;
}

template <class Model>
template <letter X>
solved solver<Model>::from_V_X(double V, double x) const {
    const double r = r_of(V);
    const double T_c = surface_.T_c;
    double T_turn = infinite;
    double T = T_c;
    const volume_half half = sides_of(r);
    if constexpr (X == letter::p)
        T_turn = surface_.turn(half.v);
    if constexpr (surface_type::saturates) {
        // Inside the dome at a node of the line, and below the mixture's value there: it is a mixture.
        const int k = states_ == allowed_states::stable ? last_node_around(V) : -1;
        if (k >= 0) {
            const auto mixture_at = [&](int n) {
                const saturated_node &at_node = node(n);
                return at_node.template mixture<X>((V - at_node.V_l) / (at_node.V_g - at_node.V_l));
            };
            if (x < mixture_at(k)) {
                int low = 0;
                int high = k;
                if (x >= mixture_at(0)) {
                    while (high - low > 1) {
                        const int middle = (low + high) / 2;
                        (x < mixture_at(middle) ? high : low) = middle;
                    }
                    const double X_low = mixture_at(low);
                    const double X_high = mixture_at(high);
                    double start = node(low).T + (node(high).T - node(low).T) * (x - X_low) / (X_high - X_low);
                    if (X == letter::p)
                        start = line_.near(x).T;
                    else if (high + 1 <= k) { // a parabola through three nodes
                        const double X_next = mixture_at(high + 1);
                        const double T0 = node(low).T;
                        const double T1 = node(high).T;
                        const double T2 = node(high + 1).T;
                        start = T0 * (x - X_high) * (x - X_next) / ((X_low - X_high) * (X_low - X_next)) +
                                T1 * (x - X_low) * (x - X_next) / ((X_high - X_low) * (X_high - X_next)) +
                                T2 * (x - X_low) * (x - X_high) / ((X_next - X_low) * (X_next - X_high));
                    }
                    if (X == letter::p) {
                        phases line;
                        const double T_s = line_.temperature(x, line);
                        const double V_l = V_of(line.r_l);
                        const double V_g = V_of(line.r_g);
                        if (V > V_l && V < V_g)
                            return {OSTREL_OK, T_s, x, V, r, (V - V_l) / (V_g - V_l)};
                    } else {
                        const solved found =
                            isochore_search<X>(V, x, node(low).T * (1.0 - 1e-13), node(high).T, start, true);
                        if (found.status == OSTREL_OK)
                            return found;
                    }
                }
            }
        }
    }
    // A single phase by Newton's method. The attraction's part changes slowly with T.
    if constexpr (X == letter::p) {
        if (surface_type::saturates)
            T = std::min(T_c, 0.5 * T_turn);
    } else {
        T = isochore_start<X>(half, x);
    }
    double last = infinite;
    for (int step = 0; step < 24; ++step) {
        const quantity_at a = value_of<X>(at<caloric_of<X>>(T, half, caloric_at<caloric_of<X>>(T)));
        // s is nearly linear in ln T, the others are in T.
        double next = T + (x - a.value) / a.by_T;
        if (X == letter::s && std::abs(next - T) > 0.05 * T)
            next = T * std::exp(std::clamp((x - a.value) / (a.by_T * T), -1.0, 1.0));
        if (!(next > 0.3 * T))
            next = 0.3 * T;
        if (next > 4.0 * T)
            next = 4.0 * T;
        const double change = std::abs(next - T) / T;
        T = next;
        if (!(change < infinite) || T < 1e-3 * T_c)
            break;
        if (settled(change, last) || (change < 1e-6 && change >= 0.25 * last)) {
            if (states_ != allowed_states::stable) // a metastable branch ends at T_c
                T = at_critical({T, r, true}).T;
            if (T < T_turn && !behind_line(T) && where(T, r) == place::single) {
                if (T_turn < infinite) {
                    // Of two temperatures with the same pressure the one nearer to the ideal gas's is meant.
                    const double ideal = x * V / model_.repulsion();
                    const double other = bracketed(T_turn, 1e3 * T_turn, 2.0 * T_turn - T, false, [&](double at_T) {
                        const properties p = mechanical(at_T, r);
                        return value_and_slope{p.P - x, p.P_T};
                    });
                    if (std::abs(other - ideal) < std::abs(T - ideal) && where(other, r) == place::single)
                        T = other;
                }
                return {OSTREL_OK, T, X == letter::p ? x : pressure_at(T, half.v), V, r, not_a_number};
            }
            break;
        }
        last = change;
    }
    if (surface_.has_loops && states_ == allowed_states::stable) { // what is above T_c is apart from what is below
        constexpr int steps = 64;
        double lower = 0;
        double difference_before = 0;
        for (int k = 0; k <= steps && line_.exists(); ++k) {
            const double sigma = 1.0 - static_cast<double>(k) / steps; // steps grow with the distance from T_c
            const double upper =
                std::clamp(T_c - (T_c - surface_.T_line) * sigma * sigma, surface_.T_line, T_c * (1.0 - 1e-15));
            const on_isochore e = equilibrium<X>(upper, V, r);
            const double difference = e.there ? e.value - x : not_a_number;
            if (difference_before <= 0 && difference >= 0) {
                const solved below = isochore_search<X>(V, x, lower, upper, 0.0);
                if (below.status == OSTREL_OK)
                    return below;
            }
            lower = upper;
            difference_before = difference;
        }
        const solved above = isochore_search<X>(V, x, T_c, T_turn, 0.0);
        if (above.status == OSTREL_OK)
            return above;
        return line_.exists() ? beyond_line<letter::v, X>(V, x) : isochore_search<X>(V, x, 0.0, T_c, 0.0);
    }
    if (states_ != allowed_states::stable || !surface_.line_ends)
        return isochore_search<X>(V, x, 0.0, T_turn, 0.0);
    const solved above = isochore_search<X>(V, x, surface_.T_line, T_turn, 0.0);
    return above.status == OSTREL_OK ? above : beyond_line<letter::v, X>(V, x);
}

// The gas below the end of the saturation line.

template <class Model>
template <letter X, letter Y>
solved solver<Model>::beyond_line(double x, double y) const {
    solved failure = {OSTREL_NO_STATE};
    if constexpr (surface_type::saturates) {
        if (!surface_.line_ends || !line_.exists() || states_ != allowed_states::stable)
            return failure;
        const double T_line = surface_.T_line;
        if constexpr (X == letter::p) {
            return isobar_search<Y>(x, y, branch::gas, 0.0, T_line, 0.9 * T_line);
        } else if constexpr (X == letter::v) {
            double high = T_line * (1.0 - 4e-16);
            if constexpr (Y == letter::p)
                high = std::min(high, surface_.turn(x + offset_));
            return isochore_search<Y>(x, y, 0.0, high, 0.0);
        } else { // Newton's method from places on the isentrope
            for (const double part : {1.0 - 1e-9, 0.97, 0.9, 0.8, 0.65, 0.5, 0.3}) {
                const double T = part * T_line;
                const solved start = on_isotherm<letter::s>(T, x, 0.0, surface_.at(T).gas_end(), false);
                if (start.status != OSTREL_OK)
                    continue;
                const point end = newton<letter::s, Y>(x, y, T, start.r, 60);
                if (end.converged && end.T < T_line && is_state(end.T, end.r))
                    return of_single(end.T, pressure(end.T, end.r), end.r);
            }
        }
    }
    return failure;
}

// Given s and another caloric value.

template <class Model>
template <letter X>
solved solver<Model>::from_s_X(double s, double x) const {
    const double T_c = surface_.T_c;
    const solved failure = {OSTREL_NO_STATE};
    const auto fits = [&](const point &end) {
        if (!end.converged || !is_state(end.T, end.r) || behind_line(end.T))
            return false;
        return X == letter::h || pressure(end.T, end.r) > 0;
    };
    const auto single_phase = [&](const point &end) { return of_single(end.T, pressure(end.T, end.r), end.r); };
    if constexpr (surface_type::saturates) {
        const bool dome = states_ == allowed_states::stable && line_.exists();
        // Inside the dome X at given s rises with T: h = h_l + T (s - s_l), and u is that less P v.
        const auto in_dome = [&](double T) {
            const phases line = saturated(T);
            const double P_T = line.slope * line.P / T;
            properties l = at(T, line.r_l);
            l.P = line.P;
            const double V = l.V + (s - l.s) / P_T;
            const double h = l.h() + T * (s - l.s);
            if (X == letter::h)
                return value_and_slope{h - x, (s - l.s) + l.V * P_T};
            const mixture m = mix(T, line);
            const properties p = mixed(m, quality(m, V), V);
            const quantity_at a = value_of<X>(p);
            const quantity_at b = value_of<letter::s>(p);
            return value_and_slope{h - line.P * V - x, a.by_T - a.by_V * b.by_T / b.by_V};
        };
        const auto dome_state = [&](double low, double high, double start) {
            const bool smooth = high < 0.98 * T_c; // unlike beside the critical point
            const double T = bracketed(low, high, start, true, in_dome, 1e-15, smooth);
            const mixture m = mix(T, saturated(T));
            const double q = (s - m.l.s) / (m.g.s - m.l.s);
            solved result = of_mixture(T, m, q);
            result.status = q >= 0 && q <= 1 ? OSTREL_OK : OSTREL_NO_STATE;
            return result;
        };
        const auto quality_of = [&](const saturated_node &n) { return (s - n.s_l) / (n.s_g - n.s_l); };
        bool tried = false;
        if (dome) {
            // The nodes that the isentrope passes inside the dome, and near it.
            int high = cells - 1;
            while (high > 0 && s < node(high).s_l)
                --high;
            int low = 0;
            const auto above = [&](int k) { return node(k).template mixture<X>(quality_of(node(k))) > x; };
            if (!above(0) && above(high)) {
                while (high - low > 1) {
                    const int middle = (low + high) / 2;
                    (above(middle) ? high : low) = middle;
                }
                const double q_low = quality_of(node(low));
                const double q_high = quality_of(node(high));
                if (std::min(q_low, q_high) >= -0.02 && std::max(q_low, q_high) <= 1.02) {
                    const double X_low = node(low).template mixture<X>(q_low);
                    const double X_high = node(high).template mixture<X>(q_high);
                    const double start = node(low).T + (node(high).T - node(low).T) * (x - X_low) / (X_high - X_low);
                    tried = true;
                    const solved found = dome_state(node(low).T * (1.0 - 1e-13), node(high).T * (1.0 + 1e-13), start);
                    if (found.status == OSTREL_OK)
                        return found;
                }
            }
        }
        const bool gas_first = s > critical_.s;
        const double r_c = r_of(1.0 - offset_);
        const auto by_newton = [&](int steps) {
            for (const bool gas : {gas_first, !gas_first}) {
                const point end = at_critical(gas ? newton<letter::s, X>(s, x, 1.2 * T_c, 0.3 * r_c, steps)
                                                  : newton<letter::s, X>(s, x, 0.9 * T_c, 3.0 * r_c, steps));
                if (fits(end))
                    return single_phase(end);
            }
            return failure;
        };
        if (const solved found = by_newton(25); found.status == OSTREL_OK)
            return found;
        if (dome && !tried) {
            const double low = surface_.T_line;
            double high = T_c * (1.0 - 1e-12);
            if (s < critical_.s) { // up to where the liquid has this entropy
                const auto of_liquid = [&](double T) {
                    const phases line = saturated(T);
                    const properties p = at(T, line.r_l);
                    const double dV = (line.slope * line.P / T - p.P_T) / p.P_V;
                    return value_and_slope{p.s - s, p.cv / T + p.P_T * dV};
                };
                high = of_liquid(low).value < 0 ? bracketed(low, high, 0.8 * T_c, true, of_liquid) : low;
            }
            if (in_dome(low).value <= 0 && in_dome(high).value >= 0) {
                const solved found = dome_state(low, high, 0.8 * T_c);
                if (found.status == OSTREL_OK)
                    return found;
            }
        }
        if constexpr (X == letter::u) { // near P = 0 each step only halves the distance of u
            if (const solved found = by_newton(60); found.status == OSTREL_OK)
                return found;
        }
    } else {
        const point end = newton<letter::s, X>(s, x, T_c, 1.0, 60);
        if (fits(end))
            return single_phase(end);
    }
    // Along the isentrope X falls as the volume grows. Where the isentrope is not, the volume is too small.
    solved best = failure;
    const auto above = [&](double log_r) {
        const solved here = from_V_X<letter::s>(V_of(std::exp(log_r)), s);
        if (here.status == OSTREL_OK && behind_line(here.T))
            return false; // expanded so far that only the gas is left
        if (here.status !=
            OSTREL_OK) // too dense for any temperature, or expanded beyond the end of the saturation line
            return !surface_.line_ends || !(V_of(std::exp(log_r)) > 0) || at(20.0 * T_c, std::exp(log_r)).s < s;
        best = here;
        double value = 0;
        if (here.q >= 0)
            value = value_of<X>(mixed(mix(here.T, saturated(here.T)), here.q, here.V)).value;
        else
            value = value_of<X>(at(here.T, here.r)).value;
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
    if (best.status != OSTREL_OK || behind_line(best.T))
        above(high);
    const auto last_resort = [&] { // Newton's method from other places on the isentrope
        for (const double part : {1.0, 1.02, 1.1, 1.3, 1.7, 2.5, 4.0, 8.0, 0.95, 0.8, 0.6, 0.4}) {
            const solved start = from_T_X<letter::s>(part * T_c, s);
            if (start.status != OSTREL_OK || start.q >= 0)
                continue;
            const point end = at_critical(newton<letter::s, X>(s, x, start.T, start.r, 60));
            if (fits(end))
                return single_phase(end);
        }
        return beyond_line<letter::s, X>(s, x);
    };
    if (best.status != OSTREL_OK)
        return last_resort();
    if (best.q >= 0) {
        const double value = value_of<X>(mixed(mix(best.T, saturated(best.T)), best.q, best.V)).value;
        return std::abs(value - x) <= 1e-9 * (std::abs(x) + best.T) ? best : last_resort();
    }
    const solved result = finish<letter::s, X>(s, x, best);
    const double value = value_of<X>(at(result.T, result.r)).value;
    return std::abs(value - x) <= 1e-9 * (std::abs(x) + result.T) ? result : last_resort();
}

} // namespace fluid
