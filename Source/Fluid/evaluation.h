// SPDX-License-Identifier: MIT
// The core of one model: states in SI units, and everything that can be asked of them.
//
// Equation   dX/dY|Z = [X, Z]/[Y, Z], where [A, B] = A_T B_V - A_V B_T; the brackets are reduced by dh = T ds + V dp
// and
//            du = T ds - p dV, so that they keep their digits in the dilute gas and in the cold liquid. A mixture has
//            dp/dV = 0, dp/dT of the saturation line and the heat capacity of the equilibrium
// Given      SI values
// Returned   SI values
// Reference  H. B. Callen, Thermodynamics (1985) ch. 7; P. A. Thompson, Phys. Fluids 14 (1971) 1843 (Gamma)
#pragma once

#include "Equations/complete.h"
#include "Equations/transport.h"
#include "Fluid/pressures.h"
#include "Fluid/solver.h"

#include <bit>
#include <cmath>
#include <memory>
#include <utility>

namespace fluid {

inline constexpr double the_nan = std::bit_cast<double>(0x7ff8000000000000);

/// Saturation pressures below this one [Pa] count as underflowed, since the vapor's volume nearly overflows there.
inline constexpr double lowest_pressure = 1e-290;

enum phase_code : std::int32_t { liquid = 0, vapor = 1, two_phase = 2, supercritical = 3, gas = 4 };

/// In `inputs` of an ostrel_state: the row of input_pairs, and whether the letters came in the other order.
inline constexpr std::uint32_t swapped_order = 0x100;

template <class Model>
class core_of final : public core {
public:
    /// `fluid` is completed for this model; Zc is the fluid's own critical compressibility, as the file has it.
    core_of(const equations::fluid_parameters &fluid, const Model &model, double Zc, const settings &wanted)
        : gas_(fluid.constants), heat_(fluid.heat), wanted_(wanted),
          solver_(model, separated_attraction::ideal_part{heat_, gas_.e_0, gas_.s_0}, critical_temperature(),
                  lowest_pressure / gas_.P_ref, 0.0, wanted.states),
          transport_(gas_.vapor ? transport::published_form(fluid.transport, Zc) : fluid.transport) {
        energy_unit_ = gas_.P_ref * gas_.v_ref;
        per_T_ = 1.0 / gas_.T_ref;
        per_P_ = 1.0 / gas_.P_ref;
        per_v_ = 1.0 / gas_.v_ref;
        per_energy_ = 1.0 / energy_unit_;
        per_R_ = 1.0 / gas_.R;
        find_safe_temperatures();
    }

    /// Takes a constant from the volumes [v_ref]; adds to the energy [P_ref v_ref] and to the entropy [R].
    void translate(double offset) { solver_.translate(offset); }
    void shift(double energy, double entropy) { solver_.shift(energy, entropy); }
    const solver<Model> &states() const { return solver_; }
    const equations::gas_constants &gas_constants() const { return gas_; }

    void complete_constants() {
        plain_low_ = std::max(safe_low_, 1e-3);
        plain_high_ = safe_high_;
        if (wanted_.states == allowed_states::surface && heat_.function_type != ideal_gas_heat::piecewise) {
            plain_low_ = 1e-3;
            plain_high_ = 1e6;
        }
        r_c_ = solver_.r_of(1.0 - solver_.offset());
        const bool critical = gas_.vapor;
        const double V_c = (1.0 - solver_.offset()) * gas_.v_ref;
        constants_.t_crit = critical ? gas_.Tc : the_nan;
        constants_.p_crit = critical ? gas_.Pc : the_nan;
        constants_.v_crit = critical ? V_c : the_nan;
        constants_.z_crit = critical ? gas_.Pc * V_c / (gas_.R * gas_.Tc) : the_nan;
        constants_.t_ref = critical ? gas_.Tc : gas_.T_ref;
        constants_.p_ref = critical ? gas_.Pc : gas_.P_ref;
        constants_.v_ref = V_c;
        constants_.v_min = std::max(solver_.model().covolume() - solver_.offset(), 0.0) * gas_.v_ref;
        constants_.t_sat_min = solver_.line().exists() ? lowest_line_temperature() : the_nan;
    }
    const core_constants &constants() const override { return constants_; }

    int solve(std::size_t pair, bool swapped, std::size_t count, const double *first, const double *second,
              ostrel_state *states) const override {
        int result = OSTREL_OK;
        with_pair(pair, [&](auto row) {
            for (std::size_t i = 0; i < count; ++i) {
                states[i] = one_state<row.value>(swapped, first[i], second[i]);
                if (result == OSTREL_OK)
                    result = states[i].status;
            }
        });
        return result;
    }
    int outputs(std::span<const output> wanted, std::size_t count, const ostrel_state *states, double *values,
                int *status) const override {
        const needs plan = needs_of(wanted);
        int result = OSTREL_OK;
        for (std::size_t i = 0; i < count; ++i)
            note(one_output(plan, wanted, states[i], values + i * wanted.size()), i, status, result);
        return result;
    }
    int evaluate(std::size_t pair, bool swapped, std::span<const output> wanted, std::size_t count, const double *first,
                 const double *second, double *values, int *status) const override {
        const needs plan = needs_of(wanted);
        int result = OSTREL_OK;
        with_pair(pair, [&](auto row) {
            constexpr letter B = input_pairs[row.value].second;
            if constexpr (input_pairs[row.value].first == letter::t && (B == letter::v || B == letter::d)) {
                if (wanted.size() == 1 && wanted[0].what == property::p) {
                    result = pressures<row.value>(swapped, count, first, second, values, status);
                    return;
                }
            }
            for (std::size_t i = 0; i < count; ++i) {
                const ostrel_state state = one_state<row.value>(swapped, first[i], second[i]);
                note(one_output(plan, wanted, state, values + i * wanted.size()), i, status, result);
            }
        });
        return result;
    }
    int saturation(bool at_pressure, std::span<const output> wanted, std::size_t count, const double *values_in,
                   double *liquid_values, double *vapor_values, int *status) const override {
        const needs plan = needs_of(wanted);
        int result = OSTREL_OK;
        for (std::size_t i = 0; i < count; ++i) {
            ostrel_state of_liquid;
            ostrel_state of_vapor;
            if (at_pressure)
                saturated_states<row_of(letter::p, letter::q)>(values_in[i], of_liquid, of_vapor);
            else
                saturated_states<row_of(letter::t, letter::q)>(values_in[i], of_liquid, of_vapor);
            int of_state = of_liquid.status;
            if (liquid_values != nullptr)
                of_state = one_output(plan, wanted, of_liquid, liquid_values + i * wanted.size());
            if (vapor_values != nullptr)
                of_state = std::max(of_state, one_output(plan, wanted, of_vapor, vapor_values + i * wanted.size()));
            note(of_state, i, status, result);
        }
        return result;
    }

private:
    static constexpr std::size_t row_of(letter a, letter b) {
        std::size_t row = 0;
        while (input_pairs[row].first != a || input_pairs[row].second != b)
            ++row;
        return row;
    }
    static void note(int of_state, std::size_t i, int *status, int &result) {
        status[i] = of_state;
        if (result == OSTREL_OK)
            result = of_state;
    }

    double critical_temperature() const { return gas_.vapor ? gas_.Tc * (1.0 / gas_.T_ref) : 1.0; }
    double lowest_line_temperature() const {
        double T = solver_.surface().T_line * gas_.T_ref;
        while (T * per_T_ < solver_.surface().T_line)
            T = std::nextafter(T, infinite);
        while (std::nextafter(T, 0.0) * per_T_ >= solver_.surface().T_line)
            T = std::nextafter(T, 0.0);
        return T;
    }

    // Solving.

    ostrel_state failed(int status, std::uint32_t inputs, double first, double second) const {
        return {the_nan, the_nan, the_nan, the_nan, first, second, inputs, status, -1, 0};
    }
    static bool finite(double x) { return std::abs(x) < infinite; }
    bool in_range(letter what, double x) const {
        switch (what) {
        case letter::t:
        case letter::p:
            return x > 0;
        case letter::v:
            return x > constants_.v_min;
        case letter::d:
            return x > 0 && 1.0 / x > constants_.v_min;
        case letter::q:
            return x >= 0 && x <= 1;
        default:
            return true;
        }
    }
    /// x in another unit, on the same side of the critical value as x, where rounding may have put it elsewhere.
    static double on_its_side(double x, double critical, double converted, double converted_critical) {
        if (x > critical)
            return converted > converted_critical ? converted : std::nextafter(converted_critical, infinite);
        if (x < critical)
            return converted < converted_critical ? converted : std::nextafter(converted_critical, 0.0);
        return x == critical ? converted_critical : converted;
    }
    double reduced_T(double t) const {
        if constexpr (solver<Model>::surface_type::saturates)
            return on_its_side(t, gas_.Tc, t * per_T_, solver_.T_c());
        return t * per_T_;
    }
    double reduced_P(double p) const {
        if constexpr (solver<Model>::surface_type::saturates)
            return on_its_side(p, gas_.Pc, p * per_P_, 1.0);
        return p * per_P_;
    }
    template <letter what>
    OSTREL_INLINE double reduced(double x) const {
        if constexpr (what == letter::t)
            return reduced_T(x);
        else if constexpr (what == letter::p)
            return reduced_P(x);
        else if constexpr (what == letter::v)
            return x * per_v_;
        else if constexpr (what == letter::d)
            return 1.0 / x * per_v_;
        else if constexpr (what == letter::h || what == letter::u)
            return x * per_energy_;
        else if constexpr (what == letter::s)
            return x * per_R_;
        else
            return x;
    }

    template <letter A, letter B>
    OSTREL_INLINE solved find(double a, double b, double given) const {
        constexpr letter Y = B == letter::d ? letter::v : B;
        if constexpr (A == letter::t && Y == letter::v)
            return solver_.from_T_V(a, b);
        else if constexpr (A == letter::t && Y == letter::q)
            return solver_.from_T_q(a, b);
        else if constexpr (A == letter::t)
            return solver_.template from_T_X<Y>(a, b);
        else if constexpr (A == letter::p && Y == letter::t)
            return solver_.from_P_T(a, b, given, gas_.P_ref);
        else if constexpr (A == letter::p && Y == letter::q)
            return solver_.from_P_q(a, b);
        else if constexpr (A == letter::p && Y == letter::v)
            return solver_.template from_V_X<letter::p>(b, a);
        else if constexpr (A == letter::p)
            return solver_.template from_P_X<Y>(a, b);
        else if constexpr (A == letter::v || A == letter::d)
            return solver_.template from_V_X<Y>(a, b);
        else if constexpr (A == letter::h)
            return solver_.template from_s_X<letter::h>(b, a);
        else
            return solver_.template from_s_X<letter::u>(a, b);
    }

    /// Calls use with the pair of a row as a constant.
    template <std::size_t row = 0, class Use>
    static void with_pair(std::size_t pair, Use use) {
        if constexpr (row < std::size(input_pairs)) {
            if (pair == row)
                use(std::integral_constant<std::size_t, row>{});
            else
                with_pair<row + 1>(pair, use);
        }
    }

    template <std::size_t row>
    OSTREL_INLINE ostrel_state one_state(bool swapped, double given_first, double given_second) const {
        constexpr letter A = input_pairs[row].first;
        constexpr letter B = input_pairs[row].second;
        const std::uint32_t inputs = static_cast<std::uint32_t>(row) | (swapped ? swapped_order : 0);
        const double first = swapped ? given_second : given_first;
        const double second = swapped ? given_first : given_second;
        if (!(finite(first) && finite(second)))
            return failed(OSTREL_NOT_A_NUMBER, inputs, given_first, given_second);
        if (!in_range(A, first) || !in_range(B, second))
            return failed(OSTREL_OUT_OF_RANGE, inputs, given_first, given_second);
        const double a = reduced<A>(first);
        const double b = reduced<B>(second);
        if (!(finite(a) && finite(b)))
            return failed(OSTREL_OUT_OF_RANGE, inputs, given_first, given_second);
        return kept<row>(is_critical(A, B, first, second) ? critical(B == letter::q ? b : not_a_number)
                                                          : find<A, B>(a, b, first),
                         inputs, first, second, given_first, given_second);
    }
    /// A solved state in SI units, with the inputs' own bits.
    template <std::size_t row>
    OSTREL_INLINE ostrel_state kept(solved found, std::uint32_t inputs, double first, double second, double given_first,
                                    double given_second) const {
        constexpr letter A = input_pairs[row].first;
        constexpr letter B = input_pairs[row].second;
        if (found.status == OSTREL_OK && !(found.T >= safe_low_ && found.T <= safe_high_)) {
            found.status = checked(found);
            if constexpr (solver<Model>::surface_type::saturates && A != letter::t && B != letter::t &&
                          B != letter::q) {
                if (found.status == OSTREL_NO_STATE)
                    found = beyond_line<A, B>(first, second);
            }
        }
        if (found.status != OSTREL_OK)
            return failed(found.status, inputs, given_first, given_second);
        ostrel_state state = {t_of(found.T),
                              p_of(found.P),
                              found.V * gas_.v_ref,
                              found.q,
                              given_first,
                              given_second,
                              inputs,
                              OSTREL_OK,
                              0,
                              0};
        if (is_critical(A, B, first, second)) {
            state.t = gas_.Tc;
            state.p = gas_.Pc;
        }
        keep_input<A>(state, first);
        keep_input<B>(state, second);
        // So dense that the volume is v_min in every bit, or beyond the largest number.
        if (!(finite(state.p) && finite(state.v) && state.v > constants_.v_min))
            return failed(OSTREL_OUT_OF_RANGE, inputs, given_first, given_second);
        state.phase = phase_of(state, found.r);
        if (!(state.q >= 0))
            state.q = the_nan;
        return state;
    }
    double t_of(double T) const {
        const double t = T * gas_.T_ref;
        return solver<Model>::surface_type::saturates ? on_its_side(T, solver_.T_c(), t, gas_.Tc) : t;
    }
    double p_of(double P) const {
        const double p = P * gas_.P_ref;
        return solver<Model>::surface_type::saturates ? on_its_side(P, 1.0, p, gas_.Pc) : p;
    }
    template <letter what>
    static void keep_input(ostrel_state &state, double x) {
        if constexpr (what == letter::t)
            state.t = x;
        else if constexpr (what == letter::p)
            state.p = x;
        else if constexpr (what == letter::v)
            state.v = x;
        else if constexpr (what == letter::d)
            state.v = 1.0 / x;
    }

    bool is_critical(letter A, letter B, double first, double second) const {
        if (!solver<Model>::surface_type::saturates || wanted_.states == allowed_states::surface)
            return false;
        return (A == letter::p && B == letter::t && first == gas_.Pc && second == gas_.Tc) ||
               (B == letter::q && solver_.line().exists() && first == (A == letter::t ? gas_.Tc : gas_.Pc));
    }
    solved critical(double q) const {
        return {OSTREL_OK, critical_temperature(), 1.0, 1.0 - solver_.offset(), r_c_, q};
    }

    /// The gas below the end of the saturation line, which takes the place of a state whose heat capacity is refused.
    template <letter A, letter B>
    [[gnu::noinline]] solved beyond_line(double first, double second) const {
        constexpr letter Y = B == letter::d ? letter::v : B;
        const double a = reduced<A>(first);
        const double b = reduced<B>(second);
        solved found;
        if constexpr (A == letter::p && Y == letter::v)
            found = solver_.template beyond_line<letter::v, letter::p>(b, a);
        else if constexpr (A == letter::p)
            found = solver_.template beyond_line<letter::p, Y>(a, b);
        else if constexpr (A == letter::v || A == letter::d)
            found = solver_.template beyond_line<letter::v, Y>(a, b);
        else if constexpr (A == letter::h)
            found = solver_.template beyond_line<letter::s, letter::h>(b, a);
        else
            found = solver_.template beyond_line<letter::s, letter::u>(a, b);
        if (found.status == OSTREL_OK)
            found.status = checked(found);
        return found;
    }
    /// Refuses states where the heat capacity has no value or is not positive.
    int checked(const solved &found) const {
        if (heat_.function_type == ideal_gas_heat::piecewise && found.T * gas_.T_ref <= heat_.T_k.front())
            return OSTREL_OUT_OF_RANGE;
        if (wanted_.states == allowed_states::surface)
            return OSTREL_OK;
        if (found.q > 0 && found.q < 1) {
            const auto m = solver_.mix(found.T, solver_.saturated(found.T));
            return m.l.cv > 0 && m.g.cv > 0 ? OSTREL_OK : OSTREL_NO_STATE;
        }
        return solver_.at(found.T, found.r).cv > 0 ? OSTREL_OK : OSTREL_NO_STATE;
    }
    /// Finds the temperatures between which cv > 0 without a look: the attraction adds to cv, and the ideal gas's heat
    /// capacity is far from 0.
    void find_safe_temperatures() {
        bool attraction_adds = !std::is_base_of_v<equations::martin_hou, Model>;
        if constexpr (std::is_base_of_v<cubic_attraction::soave_parameters, Model>)
            attraction_adds = solver_.model().fw >= 0;
        safe_low_ = infinite;
        safe_high_ = -infinite;
        if (!attraction_adds)
            return;
        const double T_c = critical_temperature();
        constexpr double step = 1.12;
        const auto safe = [&](double T) { return ideal_gas_heat::cv(heat_, T * gas_.T_ref) > 0.3 * gas_.R; };
        if (!safe(T_c))
            return;
        safe_low_ = safe_high_ = T_c;
        while (safe_low_ > 0.1 * T_c && safe(safe_low_ / step))
            safe_low_ /= step;
        while (safe_high_ < 15.0 * T_c && safe(safe_high_ * step))
            safe_high_ *= step;
    }

    std::int32_t phase_of(const ostrel_state &state, double r) const {
        if (!gas_.vapor)
            return gas;
        if constexpr (!solver<Model>::surface_type::saturates)
            return state.t < gas_.Tc ? vapor : gas;
        if (state.q == 0)
            return liquid;
        if (state.q == 1)
            return vapor;
        if (state.q > 0 && state.q < 1)
            return two_phase;
        if (state.t >= gas_.Tc)
            return state.p >= gas_.Pc ? supercritical : gas;
        if (wanted_.states == allowed_states::metastable_liquid)
            return liquid;
        if (wanted_.states == allowed_states::metastable_vapor)
            return vapor;
        if constexpr (std::is_same_v<typename solver<Model>::surface_type, martin_hou_surface>) {
            // Both phases may be on the same side of the critical volume.
            if (wanted_.states == allowed_states::stable && std::abs(r - r_c_) < 0.5 * r_c_)
                return solver_.surface().at(state.t * per_T_).beside_gas(r) ? vapor : liquid;
        }
        return r > r_c_ ? liquid : vapor;
    }

    /// The pressures at T and v or d. Most states are plain: one look shows that they are of one phase.
    template <std::size_t row>
    int pressures(bool swapped, std::size_t count, const double *first, const double *second, double *values,
                  int *status) const {
        constexpr letter B = input_pairs[row].second;
        constexpr std::size_t block = 64;
        static constexpr output p_only[1] = {{property::p}};
        const double *const t = swapped ? second : first;
        const double *const x = swapped ? first : second;
        const pressure_scales scales = {per_T_, per_v_, solver_.offset(), gas_.P_ref};
        const needs plan{};
        int result = OSTREL_OK;
        for (std::size_t begin = 0; begin < count; begin += block) {
            const std::size_t n = std::min(block, count - begin);
            if constexpr (B == letter::v)
                pressures_at_volumes(solver_.model(), scales, n, t + begin, x + begin, values + begin);
            else
                pressures_at_densities(solver_.model(), scales, n, t + begin, x + begin, values + begin);
            for (std::size_t i = begin; i < begin + n; ++i) {
                int of_state = OSTREL_OK;
                if (!(plain<B>(t[i], x[i]) && finite(values[i])))
                    of_state = one_output(plan, p_only, one_state<row>(swapped, first[i], second[i]), values + i);
                note(of_state, i, status, result);
            }
        }
        return result;
    }
    template <letter B>
    OSTREL_INLINE bool plain(double t, double x) const {
        const double T = t * per_T_;
        const double v = B == letter::v ? x : 1.0 / x;
        const double V = v * per_v_;
        return T >= plain_low_ && T <= plain_high_ && v > constants_.v_min && finite(V) && solver_.plain(T, V);
    }

    /// Both saturated phases from one solve, with the bits that one_state gives for the qualities 0 and 1.
    template <std::size_t row>
    void saturated_states(double given, ostrel_state &of_liquid, ostrel_state &of_vapor) const {
        constexpr letter A = input_pairs[row].first;
        const double a = reduced<A>(given);
        of_liquid = of_vapor = failed(OSTREL_OK, row, given, 0.0);
        of_vapor.second = 1.0;
        if (!finite(given))
            of_liquid.status = OSTREL_NOT_A_NUMBER;
        else if (!in_range(A, given) || !finite(a))
            of_liquid.status = OSTREL_OUT_OF_RANGE;
        solved l;
        solved g;
        if (of_liquid.status == OSTREL_OK) {
            if (is_critical(A, letter::q, given, 0.0)) {
                l = critical(0.0);
                g = critical(1.0);
            } else if constexpr (A == letter::t) {
                solver_.both_from_T(a, l, g);
            } else {
                solver_.both_from_P(a, l, g);
            }
            of_liquid = kept<row>(l, row, given, 0.0, given, 0.0);
            of_vapor = kept<row>(g, row, given, 1.0, given, 1.0);
        }
        if (of_liquid.status == OSTREL_OK)
            of_liquid.status = of_vapor.status;
        of_vapor.status = of_liquid.status;
    }

    // Outputs.

    /// What the outputs of a call need.
    struct needs {
        bool first = false;   ///< first derivatives of p
        bool caloric = false; ///< u, s, cv
        bool second = false;  ///< second derivatives of p and the slope of cv
        bool transport = false;
        bool line = false; ///< tsat or psat
    };
    static needs needs_of(std::span<const output> wanted) {
        needs plan;
        for (const output &one : wanted) {
            switch (one.what) {
            case property::t:
            case property::p:
            case property::v:
            case property::d:
            case property::q:
            case property::z:
            case property::phase:
                break;
            case property::tsat:
            case property::psat:
                plan.line = true;
                break;
            case property::dp_dt:
            case property::dp_dv:
            case property::kappa_t:
            case property::beta_p:
                plan.first = true;
                break;
            case property::d2p_dt2:
            case property::d2p_dv2:
            case property::d2p_dtdv:
            case property::dcv_dt:
            case property::fundamental:
                plan.second = plan.caloric = plan.first = true;
                break;
            case property::eta:
            case property::lambda:
            case property::prandtl:
                plan.transport = plan.caloric = plan.first = true;
                break;
            default:
                plan.caloric = plan.first = true;
            }
        }
        return plan;
    }

    struct second_derivatives {
        double P_TT = 0;
        double P_TV = 0;
        double P_VV = 0;
        double cv_T = 0;
        double fundamental = 0;
    };
    second_derivatives second_at(double T, double r, double V) const {
        using namespace separated_attraction;
        const double v = solver_.model().covolume() + 1.0 / r;
        const state_point<Model, double> point(solver_.model(), T, v);
        const auto ideal = solver_.template caloric_at<heat | heat_slope>(T);
        const auto [P_TT, P_vT, P_Tv, P_vv] = point.d2P();
        const derived_properties::properties<state_point<Model, double>, ideal_part_at<heat | heat_slope>> all{point,
                                                                                                               ideal};
        return {P_TT, P_Tv, P_vv, point.dcv(ideal)[0], all.G() * (V / v)};
    }

    /// [A, B] in reduced units.
    static double bracket(letter A, letter B, const properties &p) {
        if (A == B)
            return 0;
        if (static_cast<int>(A) > static_cast<int>(B))
            return -bracket(B, A, p);
        if (B == letter::d)
            return A == letter::v ? 0.0 : -bracket(A, letter::v, p) / (p.V * p.V);
        if (A == letter::d)
            return -bracket(letter::v, B, p) / (p.V * p.V);
        const double p_s = p.P_T * p.P_T - p.P_V * p.cv / p.T;
        switch (A) { // t p v d h s u
        case letter::t:
            return B == letter::p   ? p.P_V
                   : B == letter::v ? 1.0
                   : B == letter::h ? p.h_V
                   : B == letter::s ? p.P_T
                                    : p.u_V;
        case letter::p:
            return B == letter::v   ? p.P_T
                   : B == letter::h ? p.T * p_s
                   : B == letter::s ? p_s
                                    : p.P_T * p.u_V - p.P_V * p.cv;
        case letter::v:
            return B == letter::h ? -p.h_T() : B == letter::s ? -p.cv / p.T : -p.cv;
        case letter::h:
            return B == letter::s ? p.V * p_s : p.h_T() * p.u_V - p.h_V * p.cv;
        default: // s, u
            return -p.P * p.cv / p.T;
        }
    }
    double unit_of(letter what) const {
        switch (what) {
        case letter::t:
            return gas_.T_ref;
        case letter::p:
            return gas_.P_ref;
        case letter::v:
            return gas_.v_ref;
        case letter::d:
            return 1.0 / gas_.v_ref;
        case letter::s:
            return gas_.R;
        default:
            return energy_unit_;
        }
    }
    double derivative(const output &one, const properties &p, bool at_critical, bool &undefined) const {
        const double above = bracket(one.X, one.Z, p);
        const double below = bracket(one.Y, one.Z, p);
        undefined = below == 0;
        if (below == 0 && !(at_critical && above != 0))
            return the_nan;
        return above / below * (unit_of(one.X) / unit_of(one.Y));
    }

    double T_of_saturation(double p) const {
        double T = 0;
        phases line;
        if (p == gas_.Pc && solver_.line().exists())
            return gas_.Tc;
        return solver_.saturation_at_P(reduced_P(p), T, line) == OSTREL_OK ? t_of(T) : the_nan;
    }
    double P_of_saturation(double t) const {
        phases line;
        return solver_.saturation_at_T(reduced_T(t), line) == OSTREL_OK ? p_of(line.P) : the_nan;
    }

    struct conductors {
        double eta = the_nan;
        double lambda = the_nan;
    };
    conductors conductors_at(double t, double v, double T, double cp) const {
        const auto [mu, k] = transport::evaluate<transport::published>(
            transport_, t, v, [&] { return solver_.template caloric_at<heat>(T).phip(T) * gas_.R; },
            [&] { return cp; });
        return {mu, k};
    }

    int one_output(const needs &plan, std::span<const output> wanted, const ostrel_state &state, double *values) const {
        if (state.status != OSTREL_OK) {
            std::fill(values, values + wanted.size(), the_nan);
            return state.status;
        }
        const double T = reduced_T(state.t);
        const double V = state.v * per_v_;
        const double r = solver_.r_of(V);
        const bool mixed = state.phase == two_phase;
        const bool at_critical = gas_.vapor && state.t == gas_.Tc && state.p == gas_.Pc;
        properties p{};
        second_derivatives second;
        conductors conducts;
        if (mixed) {
            if (plan.first) {
                phases line;
                if constexpr (solver<Model>::surface_type::saturates)
                    line = solver_.saturated(T);
                const auto m = solver_.mix(T, line);
                p = solver_.mixed(m, state.q, V);
            }
        } else {
            if (plan.caloric)
                p = solver_.at(T, r);
            else if (plan.first)
                p = solver_.mechanical(T, r);
            if (plan.second)
                second = second_at(T, r, V);
            if (at_critical)
                p.P_V = -0.0;
        }
        p.T = T;
        p.V = V;
        p.P = state.p * per_P_;
        const double cp = p.cv - p.T * p.P_T * p.P_T / p.P_V;
        if (plan.transport && !mixed)
            conducts = conductors_at(state.t, state.v, T, cp);
        int status = OSTREL_OK;
        // A host that has changed the state gets wrong numbers and no fault.
        const std::size_t row = std::min<std::size_t>(state.inputs & 0xff, std::size(input_pairs) - 1);
        const letter A = input_pairs[row].first;
        const letter B = input_pairs[row].second;
        const bool swapped = (state.inputs & swapped_order) != 0;
        for (std::size_t k = 0; k < wanted.size(); ++k) {
            bool between = false;
            double value = output_value(wanted[k], state, p, second, conducts, cp, mixed, at_critical, between);
            if (between)
                status = OSTREL_TWO_PHASE;
            const property what = wanted[k].what;
            if (what <= property::u) { // an input comes back with its own bits
                const auto asked = static_cast<letter>(what);
                if (asked == A)
                    value = swapped ? state.second : state.first;
                else if (asked == B)
                    value = swapped ? state.first : state.second;
            }
            values[k] = value == value ? value : the_nan;
        }
        return status;
    }

    double output_value(const output &one, const ostrel_state &state, const properties &p,
                        const second_derivatives &second, const conductors &conducts, double cp, bool mixed,
                        bool at_critical, bool &between) const {
        const equations::gas_constants &g = gas_;
        switch (one.what) {
        case property::t:
            return state.t;
        case property::p:
            return state.p;
        case property::v:
            return state.v;
        case property::d:
            return 1.0 / state.v;
        case property::h:
            return p.h() * energy_unit_;
        case property::s:
            return p.s * g.R;
        case property::u:
            return p.u * energy_unit_;
        case property::q:
            return state.q;
        case property::g:
            return (p.h() - p.T * p.s) * energy_unit_;
        case property::a:
            return (p.u - p.T * p.s) * energy_unit_;
        case property::phase:
            return state.phase;
        case property::tsat:
            return T_of_saturation(state.p);
        case property::psat:
            return P_of_saturation(state.t);
        case property::derivative: {
            bool undefined = false;
            const double value = derivative(one, p, at_critical, undefined);
            between = mixed && (undefined || !finite(value));
            return between ? the_nan : value;
        }
        default:
            break;
        }
        if (mixed) {
            between = true;
            return the_nan;
        }
        const double c2 = p.V * p.V * (p.T * p.P_T * p.P_T / p.cv - p.P_V); // [P_ref v_ref]
        switch (one.what) {
        case property::cv:
            return p.cv * g.R;
        case property::dp_dt:
            return p.P_T * g.P_ref / g.T_ref;
        case property::dp_dv:
            return p.P_V * g.P_ref / g.v_ref;
        case property::d2p_dt2:
            return second.P_TT * g.P_ref / (g.T_ref * g.T_ref);
        case property::d2p_dv2:
            return second.P_VV * g.P_ref / (g.v_ref * g.v_ref);
        case property::d2p_dtdv:
            return second.P_TV * g.P_ref / (g.T_ref * g.v_ref);
        case property::dcv_dt:
            return second.cv_T * g.R / g.T_ref;
        case property::eta:
            return conducts.eta;
        case property::lambda:
            return conducts.lambda;
        case property::cp:
            return cp * g.R;
        case property::c:
            return std::sqrt(c2) * g.c_ref;
        case property::z:
            return p.P * p.V / p.T;
        case property::fundamental:
            return second.fundamental;
        case property::cp_cv:
            return cp / p.cv;
        case property::isentropic_exponent:
            return c2 / (p.P * p.V);
        case property::kappa_t:
            return -1.0 / (p.V * p.P_V * g.P_ref);
        case property::beta_p:
            return -p.P_T / (p.V * p.P_V * g.T_ref);
        case property::jt:
            return p.h_V / (p.T * p.P_T * p.P_T - p.cv * p.P_V) * (g.T_ref / g.P_ref);
        default: // prandtl
            return at_critical ? infinite : conducts.eta * cp * g.R / conducts.lambda;
        }
    }

    equations::gas_constants gas_;
    ideal_gas_heat::heat_capacity heat_;
    settings wanted_;
    solver<Model> solver_;
    transport::parameters transport_;
    core_constants constants_{};
    double energy_unit_ = 0;
    double per_T_ = 0; ///< 1/T_ref, and so on
    double per_P_ = 0;
    double per_v_ = 0;
    double per_energy_ = 0;
    double per_R_ = 0;
    double r_c_ = 0; ///< r at the critical point
    double safe_low_ = 0;
    double safe_high_ = 0;
    double plain_low_ = 0; ///< between these temperatures no state needs a look at its heat capacity
    double plain_high_ = 0;
};

} // namespace fluid
