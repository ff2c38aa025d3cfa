// SPDX-License-Identifier: MIT
// Saturation curves from the critical point downwards, and the table from which searches take their first values.
//
// Computes   the points of a curve, which are closest to each other next to the critical point. The first values of a
//            point of the table come from the point before it and the slopes of Clausius and Clapeyron
// Given      the reduced end of the curve
// Returned   reduced T, P and both volumes
// Valid      where saturation__T and saturation__P find the points
// Reference  E. Clapeyron, J. de l'Ecole Polytechnique 14 (1834) 153
#include "Thermodynamics/model_choice.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace thermodynamics {

using gas_properties::gas;
using ideal_specific_heat::errmsg;

namespace {

constexpr double ratio = 1.05;
constexpr double unsolved = std::numeric_limits<double>::max();
constexpr std::size_t first_length = 256;
constexpr std::size_t longest = 2048;
constexpr double low_pressure = 0.001;

/// Fills xx from `first` to `last`; the steps grow geometrically.
void space(std::span<double> xx, double first, double last) {
    const std::size_t N = xx.size();
    if (N == 0)
        return;
    xx[0] = first;
    double step = (last - first) * (ratio - 1.0) / (std::pow(ratio, static_cast<double>(N) - 1.0) - 1.0);
    for (std::size_t k = 1; k < N; ++k) {
        xx[k] = xx[k - 1] + step;
        step *= ratio;
    }
    xx[N - 1] = last;
}

/// The derivatives of P and of both volumes along the saturation curve at a solved point, by Clausius and Clapeyron.
struct curve_slopes {
    double dP_dT;
    double dvg_dT;
    double dvl_dT;

    template <class Model>
    curve_slopes(const equations::equation<Model> &equation, double T, double v_g, double v_l) {
        const auto at = equation.template at_temperature<ideal_gas_heat::energy>(T);
        const auto g = at(v_g);
        const auto l = at(v_l);
        const auto [P_T_g, P_v_g] = g.point.dP();
        const auto [P_T_l, P_v_l] = l.point.dP();
        dP_dT = (g.all().h() - l.all().h()) / ((v_g - v_l) * T);
        dvg_dT = (dP_dT - P_T_g) / P_v_g;
        dvl_dT = (dP_dT - P_T_l) / P_v_l;
    }
};

struct curve {
    std::span<double> T;
    std::span<double> P;
    std::span<double> v_g;
    std::span<double> v_l;

    void start(std::size_t k) const {
        if (k == 1) {
            v_g[k] = 1.2;
            v_l[k] = 0.8;
            return;
        }
        const double dT = T[k - 1] - T[k];
        const auto slopes = with_model_or_zeros(
            [&](const auto &equation) { return curve_slopes(equation, T[k - 1], v_g[k - 1], v_l[k - 1]); });
        P[k] = P[k - 1] - dT * slopes.dP_dT;
        v_g[k] = v_g[k - 1] - dT * slopes.dvg_dT;
        v_l[k] = std::max(v_l[k - 1] - dT * slopes.dvl_dT, vmin);
    }
    void space_temperatures(double T_end) const {
        space(T, 1.0 / gas.Zc, T_end);
        start_at_critical_point();
    }
    void space_pressures(double P_end) const {
        space(P, 1.0, P_end);
        start_at_critical_point();
    }

private:
    void start_at_critical_point() const {
        if (std::min({T.size(), P.size(), v_g.size(), v_l.size()}) == 0)
            return;
        T[0] = 1.0 / gas.Zc;
        P[0] = 1.0;
        v_g[0] = 1.0;
        v_l[0] = 1.0;
    }
};

/// Solves the points of the table one after the other; returns false at the first point that fails.
bool solve_table(double T_end, std::size_t N) {
    for (std::vector<double> *const column : {&TTs, &PPs, &vvls, &vvgs})
        column->assign(N, unsolved);
    curve table{TTs, PPs, vvgs, vvls};
    table.space_temperatures(T_end);
    for (std::size_t k = 1; k < N; ++k) {
        bool success = true;
        table.start(k);
        saturation__T(TTs[k], PPs[k], vvgs[k], vvls[k], &success);
        if (!success || !errmsg.clear())
            return false;
    }
    return true;
}

} // namespace

void init_saturation_curves() {
    std::size_t N = first_length;
    double T_end = 0.75 / gas.Zc;
    while (true) {
        errmsg.reset();
        const bool complete = solve_table(T_end, N);
        const double lowest = *std::min_element(PPs.begin(), PPs.end());
        if (lowest <= low_pressure) {
            if (complete)
                return;
            N *= 2;
        } else {
            T_end /= 1.1;
        }
        // A model without a curve fails at every temperature, and Tmin is 0 after a failed initialisation: a bound of
        // its own ends the search.
        constexpr double coldest = 1e-6;
        if (N > longest || !(T_end >= std::max(Tmin, coldest)) || std::isinf(T_end)) {
            errmsg.report({"No solution has been found in subroutine init_saturation_curves."});
            return;
        }
    }
}

namespace {

/// Calls solve(k) for the points behind the critical point; if `success` is given, it stops at the first that fails.
template <class Solve>
void solve_points(std::size_t N, bool *success, Solve solve) {
    if (success != nullptr)
        *success = true;
    for (std::size_t k = 1; k < N; ++k) {
        solve(k);
        if (success != nullptr && !(*success && errmsg.clear())) {
            *success = false;
            return;
        }
    }
}

} // namespace

void saturation_curves_T(std::span<double> T, std::span<double> v_g, std::span<double> v_l, std::span<double> P,
                         double T_end, bool *success) {
    const std::size_t N = std::min({T.size(), v_g.size(), v_l.size(), P.size()});
    curve points{T.first(N), P, v_g, v_l};
    points.space_temperatures(T_end);
    solve_points(N, success, [&](std::size_t k) {
        points.start(k); // remains as the result if the point is outside the table
        saturation__T(T[k], P[k], v_g[k], v_l[k], success);
    });
}

void saturation_curves_P(std::span<double> P, std::span<double> v_g, std::span<double> v_l, std::span<double> T,
                         double P_end, bool *success) {
    const std::size_t N = std::min({T.size(), v_g.size(), v_l.size(), P.size()});
    curve points{T, P.first(N), v_g, v_l};
    points.space_pressures(P_end);
    solve_points(N, success, [&](std::size_t k) { saturation__P(P[k], T[k], v_g[k], v_l[k], success); });
}

} // namespace thermodynamics
