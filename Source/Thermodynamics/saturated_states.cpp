// SPDX-License-Identifier: MIT
// Saturated states of the active model.
//
// Computes   states with equal T, P and Gibbs energy g = e - T s + P v in liquid and vapor, by Newton's method in
//            (v_g, v_l); the first values come from the saturation table
// Given      reduced T or P
// Returned   reduced P or T, and the two reduced volumes
// Valid      from the critical point down to the end of the table. If (T, v) = (1/Zc, 1) is not exactly the critical
//            point of a model, the search may converge to equal phases
// Accuracy   the phases agree to 1e-6 in g and P at a given T, and to 1e-5 in g and T at a given P
// Reference  J. W. Gibbs, Trans. Connecticut Acad. 3 (1875) 108: equal potentials of coexisting phases
#include "Algebra/lin_algebra.h"
#include "Algebra/two_by_two.h"
#include "Thermodynamics/model_choice.h"
#include "Thermodynamics/plain_newton.h"
#include "Thermodynamics/saturation_table.h"

#include <algorithm>
#include <cmath>

namespace thermodynamics {

using equations::equation;
using gas_properties::gas;
using ideal_specific_heat::errmsg;

namespace {

/// Keeps v_g above the critical volume, which is 1, and v_l below it.
void guard_sides(double &v_g, double &v_l, double lowest) {
    double l = std::max(lowest, v_l);
    if (v_g <= 1.0 && l < 1.0)
        v_g = 1.0 / l;
    if (v_g >= 1.0 && l > 1.0)
        l = 1.0 / v_g;
    if (v_g <= 1.0)
        v_g = 10.0;
    v_l = l < 1.0 ? l : std::max(0.1, lowest);
}

/// One Newton step in (v_g, v_l). F holds the differences of two quantities between vapor and liquid; slopes_g and
/// slopes_l are the derivatives of these quantities with respect to the volume of each phase. Returns false if the
/// Jacobian cannot be inverted, or if that has failed before: no search clears linalg_errmsg.
bool newton_step(const gradient &F, const gradient &slopes_g, const gradient &slopes_l, double &v_g, double &v_l) {
    const two_by_two::matrix J = {slopes_g[0], slopes_g[1], -slopes_l[0], -slopes_l[1]};
    two_by_two::matrix inverted{};
    lin_algebra::inverse({J, 2, 2}, inverted);
    if (!lin_algebra::linalg_errmsg.clear())
        return false;
    const auto [dv_g, dv_l] = two_by_two::product(inverted, F);
    v_g -= dv_g;
    v_l -= dv_l;
    return true;
}

bool within(const gradient &F, double tolerance) {
    return std::abs(F[0]) < tolerance && std::abs(F[1]) < tolerance;
}

/// How a search has ended. If it was stopped, its message is already in errmsg.
enum class ending { converged, too_late, singular, stopped };

/// The search at the temperature T, from first values of the volumes.
template <class Model>
ending at_temperature(const equation<Model> &equation, double T, double &v_g, double &v_l) {
    using namespace ideal_gas_heat;
    constexpr int counted_passes = 50;
    const auto at = equation.template at_temperature<energy | entropy | heat>(T);
    for (int pass = 1; pass <= counted_passes + 1; ++pass) {
        const auto g = at(v_g);
        const auto l = at(v_l);
        const gradient F = {g.all().mu() - l.all().mu(), g.point.P() - l.point.P()};
        if (within(F, 1.0e-6))
            return pass <= counted_passes ? ending::converged : ending::too_late;
        if (!newton_step(F, {g.all().dmu()[1], g.point.dP()[1]}, {l.all().dmu()[1], l.point.dP()[1]}, v_g, v_l))
            return ending::singular;
        guard_sides(v_g, v_l, equation.lowest.vmin);
    }
    return ending::too_late;
}

/// The search at a pressure, from first values of the temperature and of the volumes. temperature(v, T) searches the
/// temperature at this pressure and v, from the first value T, and leaves a message if it does not converge.
template <class Model, class Temperature>
ending at_pressure(const equation<Model> &equation, Temperature temperature, double &T, double &v_g, double &v_l) {
    /// A phase at this pressure: its temperature, its Gibbs energy, and the derivatives of mu and T by the volume.
    struct phase {
        double T;
        double mu;
        gradient slopes;
    };
    const auto find = [&](double v) -> std::optional<phase> {
        const plain_newton::result found = temperature(v, T);
        if (!found.converged)
            return std::nullopt;
        using namespace ideal_gas_heat;
        const auto state = equation.template at<energy | entropy | heat>(found.x, v);
        return phase{found.x, state.all().mu(), {state.all().dmu_in_P_v()[1], state.all().dT_in_P_v()[1]}};
    };
    constexpr int counted_passes = 100;
    for (int pass = 1; pass <= counted_passes + 1; ++pass) {
        const auto g = find(v_g);
        if (!g)
            return ending::stopped;
        const auto l = find(v_l);
        if (!l)
            return ending::stopped;
        const gradient F = {g->mu - l->mu, g->T - l->T};
        if (within(F, 1.0e-5))
            return pass <= counted_passes ? ending::converged : ending::too_late;
        if (!newton_step(F, g->slopes, l->slopes, v_g, v_l))
            return ending::singular;
        v_g = std::max(v_g, equation.lowest.vmin);
        v_l = std::max(v_l, equation.lowest.vmin);
        const plain_newton::result found = temperature(v_g, T);
        T = found.x;
        if (!found.converged)
            return ending::stopped;
        guard_sides(v_g, v_l, equation.lowest.vmin);
    }
    return ending::too_late;
}

/// Reports a search that has failed; only a search with too many steps sets `success` false.
void report(ending end, std::string_view too_late, bool *success) {
    if (end == ending::singular)
        errmsg.report({lin_algebra::linalg_errmsg.padded()});
    if (end != ending::too_late)
        return;
    errmsg.report({too_late});
    if (success != nullptr)
        *success = false;
}

} // namespace

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
    const ending end = with_model_or_zeros([&](const auto &equation) { return at_temperature(equation, T, v_g, v_l); });
    if (end != ending::singular)
        P = P__T_v(T, v_g);
    report(end, "Newton method failed to converge in subroutine saturation_T.", success);
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
    // Without a model all states are alike, and the search ends where it starts.
    const auto search = [&](const auto &equation) {
        const auto temperature = [&](double v, double T_start) {
            const double found = T__P_v(P, v, T_start);
            return plain_newton::result{found, errmsg.clear()};
        };
        return at_pressure(equation, temperature, T, v_g, v_l);
    };
    report(with_model(search, [] { return ending::converged; }),
           "Newton method failed to converge in subroutine saturation_P.", success);
}

} // namespace thermodynamics
