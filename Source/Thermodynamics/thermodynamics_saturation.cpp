// SPDX-License-Identifier: MIT
// The saturation curve of the active model.
//
// Computes   states with equal T, P and Gibbs energy g = e - T s + P v in liquid and vapor, by Newton's
//            method in (v_g, v_l) from a table of the curve
// Given      reduced T or P
// Returned   the other of them and the two volumes, reduced
// Valid      from the critical point down to the table's end; a model whose point (1/Zc, 1) is not its
//            critical point may converge to equal phases
// Accuracy   1e-6 in g and P at a given T, 1e-5 in g and T at a given P
// Reference  J. W. Gibbs, Trans. Connecticut Acad. 3 (1875) 108: equal potentials of coexisting phases
#include "Algebra/lin_algebra.h"
#include "Thermodynamics/model_choice.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace thermodynamics {

using gas_properties::gas;
using ideal_specific_heat::errmsg;

std::vector<double> TTs;
std::vector<double> PPs;
std::vector<double> vvls;
std::vector<double> vvgs;

namespace {

constexpr double ratio = 1.05;
constexpr double unsolved = std::numeric_limits<double>::max();
constexpr std::size_t first_length = 256;
constexpr std::size_t longest = 2048;
constexpr double low_pressure = 0.001;

struct interpolation {
    std::size_t i1;
    std::size_t i2;
    double w;
    double of(std::span<const double> y) const { return (1.0 - w) * y[i1] + w * y[i2]; }
};

/// The neighbours of x, which lies between the elements of a vector of two or more.
interpolation locate(double x, std::span<const double> xx) {
    const std::size_t N = xx.size();
    std::size_t k = 0;
    double nearest = std::abs(xx[0] - x);
    for (std::size_t i = 1; i < N; ++i) {
        const double distance = std::abs(xx[i] - x);
        if (distance < nearest) {
            nearest = distance;
            k = i;
        }
    }
    std::size_t first = k;
    if (k == N - 1)
        first = N - 2;
    else if (k > 0 && !((x < xx[k] && xx[k + 1] <= xx[k]) || (x >= xx[k] && xx[k] < xx[k + 1])))
        first = k - 1;
    return {first, first + 1, (x - xx[first]) / (xx[first + 1] - xx[first])};
}

/// Keeps the volumes on their own sides of the critical one.
void guard_sides(double &v_g, double &v_l) {
    double l = std::max(vmin, v_l);
    if (v_g <= 1.0 && l < 1.0)
        v_g = 1.0 / l;
    if (v_g >= 1.0 && l > 1.0)
        l = 1.0 / v_g;
    if (v_g <= 1.0)
        v_g = 10.0;
    v_l = l < 1.0 ? l : std::max(0.1, vmin);
}

/// One Newton step in (v_g, v_l) for residuals whose derivatives to the volumes of each phase are given, those
/// of the liquid still without their sign. False if the Jacobian cannot be inverted.
bool newton_step(const pair &F, const pair &slopes_g, const pair &slopes_l, double &v_g, double &v_l) {
    const matrix J = {slopes_g[0], slopes_g[1], -slopes_l[0], -slopes_l[1]};
    matrix inverted{};
    lin_algebra::inverse({J, 2, 2}, inverted);
    if (!lin_algebra::linalg_errmsg.clear()) {
        errmsg.report({lin_algebra::linalg_errmsg.padded()});
        return false;
    }
    v_g -= inverted[0] * F[0] + inverted[2] * F[1];
    v_l -= inverted[1] * F[0] + inverted[3] * F[1];
    return true;
}

bool within(const pair &F, double tolerance) {
    return std::abs(F[0]) < tolerance && std::abs(F[1]) < tolerance;
}

/// Gives `use` the states at one temperature: both phases share what depends on it.
template <class Use>
auto at_temperature(double T, Use use) {
    return with_model_or_zeros([&]<class Model>(const Model &model, const separated_attraction::ideal_part &ideal) {
        using namespace ideal_specific_heat;
        return use(isotherm<Model, energy | entropy | heat>(model, ideal, T));
    });
}

std::string fixed_point(double value) {
    char text[400];
    auto *const end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 3).ptr;
    return {text, end};
}

/// The smallest and the largest element; a NaN, which a failed build may leave, counts for nothing.
struct extremes {
    double low;
    double high;
    explicit extremes(std::span<const double> xx) : low(xx[0]), high(xx[0]) {
        for (const double x : xx) {
            low = std::min(low, x);
            high = std::max(high, x);
        }
    }
};

bool out_of_range(double x, std::span<const double> xx) {
    // Between the ends, as nearly always, is within the range.
    if ((x >= xx.front() && x <= xx.back()) || (x <= xx.front() && x >= xx.back()))
        return false;
    const extremes range(xx);
    return x < range.low || x > range.high;
}

void report_range(std::string_view what, std::span<const double> xx, double scale, double shift,
                  std::string_view symbol, std::string_view unit) {
    const extremes range(xx);
    errmsg.report(
        {what, fixed_point(range.low * scale - shift), symbol, fixed_point(range.high * scale - shift), unit});
}

void not_converged(std::string_view message, bool *success) {
    errmsg.report({message});
    if (success != nullptr)
        *success = false;
}

/// Geometric spacing from 1st to last element, smallest steps first.
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

/// The curve's slope and the volumes' along it, by Clausius and Clapeyron, at a solved point.
struct curve_slopes {
    double dP_dT;
    double dvg_dT;
    double dvl_dT;

    curve_slopes(double T, double v_g, double v_l) {
        at_temperature(T, [&](const auto &at) {
            const auto g = at(v_g);
            const auto l = at(v_l);
            const auto [P_T_g, P_v_g] = g.point.dP();
            const auto [P_T_l, P_v_l] = l.point.dP();
            dP_dT = (g.all().h() - l.all().h()) / ((v_g - v_l) * T);
            dvg_dT = (dP_dT - P_T_g) / P_v_g;
            dvl_dT = (dP_dT - P_T_l) / P_v_l;
        });
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
        const curve_slopes slopes(T[k - 1], v_g[k - 1], v_l[k - 1]);
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

/// One pass over the table's temperatures; true if every point was solved.
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

void seek_in_vector(double x, std::span<const double> xx, std::int32_t &i1, std::int32_t &i2, double &w) {
    if (xx.size() < 2 || out_of_range(x, xx)) {
        errmsg.report({"x is not in xx."});
        return;
    }
    const interpolation found = locate(x, xx);
    i1 = static_cast<std::int32_t>(found.i1 + 1);
    i2 = static_cast<std::int32_t>(found.i2 + 1);
    w = found.w;
}

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
        // A model without a curve fails at any temperature. Tmin may still be 0, after a failed initialisation.
        constexpr double coldest = 1e-6;
        if (N > longest || !(T_end >= std::max(Tmin, coldest)) || std::isinf(T_end)) {
            errmsg.report({"No solution has been found in subroutine init_saturation_curves."});
            return;
        }
    }
}

void saturation__T(double T, double &P, double &v_g, double &v_l, bool *success) {
    if (gas.Zc * T > 1.0) {
        errmsg.report({"Saturation temperature higher than critical in saturation_T."});
        return;
    }
    if (TTs.empty()) {
        init_saturation_curves();
        if (!errmsg.clear())
            return;
    }
    if (out_of_range(T, TTs)) {
        report_range("Temperature out of range: ", TTs, gas.Zc * gas.Tc, 273.15, " < T < ",
                     " \xb0"
                     "C");
        return;
    }
    const interpolation start = locate(T, TTs);
    P = start.of(PPs);
    v_g = start.of(vvgs);
    v_l = start.of(vvls);
    if (success != nullptr)
        *success = true;
    enum class ending { converged, too_late, singular };
    const ending end = at_temperature(T, [&](const auto &at) {
        constexpr int counted_passes = 50;
        for (int pass = 1; pass <= counted_passes + 1; ++pass) {
            const auto g = at(v_g);
            const auto l = at(v_l);
            const pair F = {g.all().mu() - l.all().mu(), g.point.P() - l.point.P()};
            if (within(F, 1.0e-6))
                return pass <= counted_passes ? ending::converged : ending::too_late;
            if (!newton_step(F, {g.all().dmu()[1], g.point.dP()[1]}, {l.all().dmu()[1], l.point.dP()[1]}, v_g, v_l))
                return ending::singular;
            guard_sides(v_g, v_l);
        }
        return ending::too_late;
    });
    if (end == ending::singular)
        return;
    P = P__T_v(T, v_g);
    if (end == ending::too_late)
        not_converged("Newton method failed to converge in subroutine saturation_T.", success);
}

void saturation__P(double P, double &T, double &v_g, double &v_l, bool *success) {
    if (P > 1.0) {
        errmsg.report({"Saturation pressure higher than critical in saturation_P."});
        return;
    }
    if (PPs.empty()) {
        init_saturation_curves();
        if (!errmsg.clear())
            return;
    }
    if (out_of_range(P, PPs)) {
        report_range("Pressure out of range: ", PPs, gas.Pc / 100000.0, 0.0, " < P < ", " bar");
        return;
    }
    const interpolation start = locate(P, PPs);
    T = start.of(TTs);
    v_g = start.of(vvgs);
    v_l = start.of(vvls);
    if (success != nullptr)
        *success = true;
    // What the iteration needs of a phase at P: its temperature, the Gibbs energy there, and the slopes of both to
    // the volume. False after a message.
    struct phase {
        double T;
        double mu;
        pair slopes;
        bool find(double P_wanted, double v, double T_start) {
            T = T__P_v(P_wanted, v, T_start);
            if (!errmsg.clear())
                return false;
            at_temperature(T, [&](const auto &at) {
                const auto state = at(v);
                mu = state.all().mu();
                slopes = {state.all().dmu_in_P_v()[1], state.all().dT_in_P_v()[1]};
            });
            return true;
        }
    };
    constexpr int counted_passes = 100;
    for (int pass = 1; pass <= counted_passes + 1; ++pass) {
        phase g{};
        phase l{};
        if (!g.find(P, v_g, T) || !l.find(P, v_l, T))
            return;
        const pair F = {g.mu - l.mu, g.T - l.T};
        if (within(F, 1.0e-5)) {
            if (pass <= counted_passes)
                return;
            break;
        }
        if (!newton_step(F, g.slopes, l.slopes, v_g, v_l))
            return;
        v_g = std::max(v_g, vmin);
        v_l = std::max(v_l, vmin);
        T = T__P_v(P, v_g, T);
        if (!errmsg.clear())
            return;
        guard_sides(v_g, v_l);
    }
    not_converged("Newton method failed to converge in subroutine saturation_P.", success);
}

namespace {

/// Solves the points of a curve one after the other, behind the critical point; `solve` is given each one's number.
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
        points.start(k); // stays where the point is outside the table
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
