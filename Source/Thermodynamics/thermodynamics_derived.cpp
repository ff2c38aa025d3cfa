// SPDX-License-Identifier: MIT
// Derived properties of the active model: at (T, v), and at other pairs after a search for T or v.
#include "Thermodynamics/model_choice.h"

namespace thermodynamics {

using ideal_specific_heat::errmsg;

namespace {

/// A derived property at (T, v); without a model the formula is evaluated with zeros.
template <class Evaluation>
auto at_state(double T, double v, Evaluation evaluate) {
    return with_model_or_zeros([&](const auto &equation) { return equation.properties(T, v, evaluate); });
}

} // namespace

// Defines double h__T_v(double T, double v) and its like.
#define OSTREL_AT_T_V(Result, operation, member)                         \
    Result operation(double T, double v) {                               \
        return at_state(T, v, [](const auto &p) { return p.member(); }); \
    }
OSTREL_AT_T_V(double, h__T_v, h)
OSTREL_AT_T_V(double, mu__T_v, mu)
OSTREL_AT_T_V(double, c2__T_v, c2)
OSTREL_AT_T_V(double, c__T_v, c)
OSTREL_AT_T_V(double, cp__T_v, cp)
OSTREL_AT_T_V(double, G__T_v, G)
OSTREL_AT_T_V(gradient, dh__dT_dv, dh)
OSTREL_AT_T_V(gradient, ds__dT_dv, ds)
OSTREL_AT_T_V(gradient, dmu__dT_dv, dmu)
OSTREL_AT_T_V(gradient, dT__dP_dv__T_v, dT_in_P_v)
OSTREL_AT_T_V(gradient, de__dP_dv__T_v, de_in_P_v)
OSTREL_AT_T_V(gradient, ds__dP_dv__T_v, ds_in_P_v)
OSTREL_AT_T_V(gradient, dP__de_dr__T_v, dP_in_e_r)
OSTREL_AT_T_V(gradient, dP__dre_dr__T_v, dP_in_re_r)
OSTREL_AT_T_V(hessian, d2P__dre2_dr2__T_v, d2P_in_re_r)
OSTREL_AT_T_V(hessian, d2P__dre_dr__dT_dv, dP_in_re_r_gradient)

// Defines void c__P_v(double P, double v, double &result, guess start) and its like: a search, and then, unless a
// message stands, the property at the state that was found.
#define OSTREL_AFTER_SEARCH(Result, operation, first, second, search, T, v, member) \
    void operation(double first, double second, Result &result, guess start) {      \
        const double found = search(first, second, start);                          \
        if (errmsg.clear())                                                         \
            result = at_state(T, v, [](const auto &p) { return p.member(); });      \
    }
#define OSTREL_AT_P_V(Result, operation, member) OSTREL_AFTER_SEARCH(Result, operation, P, v, T__P_v, found, v, member)
#define OSTREL_AT_E_V(Result, operation, member) OSTREL_AFTER_SEARCH(Result, operation, e, v, T__e_v, found, v, member)
OSTREL_AT_P_V(double, mu__P_v, mu)
OSTREL_AT_P_V(double, c__P_v, c)
OSTREL_AT_P_V(double, G__P_v, G)
OSTREL_AT_P_V(gradient, dT__dP_dv, dT_in_P_v)
OSTREL_AT_P_V(gradient, de__dP_dv, de_in_P_v)
OSTREL_AT_P_V(gradient, ds__dP_dv, ds_in_P_v)
OSTREL_AT_P_V(gradient, dmu__dP_dv, dmu_in_P_v)
OSTREL_AT_E_V(gradient, dP__de_dr, dP_in_e_r)
OSTREL_AT_E_V(gradient, dP__dre_dr, dP_in_re_r)
OSTREL_AT_E_V(hessian, d2P__dre2_dr2, d2P_in_re_r)
OSTREL_AFTER_SEARCH(gradient, dP__ds_dv, s, v, T__s_v, found, v, dP_in_s_v)
OSTREL_AFTER_SEARCH(gradient, dP__ds_dT, s, T, v__s_T, T, found, dP_in_s_T)
OSTREL_AFTER_SEARCH(gradient, dv__ds_dT, s, T, v__s_T, T, found, dv_in_s_T)

} // namespace thermodynamics
