// SPDX-License-Identifier: MIT
// Compares every derivative operation with the complex step of the operation that it differentiates.
#include "Tests/Support/rounding.h"
#include "Tests/Support/thermodynamics.h"

namespace {

using support::expect_derivative;
using support::tracked;
using thermodynamics::active_ideal_part;

/// Calls visit(name, f, gradient): f(model, T, v) is a function and gradient(model, T, v) its (d/dT, d/dv).
template <class Visit>
void for_each_gradient(Visit visit) {
#define OF(operation, element)                                                            \
    [](const auto &model, auto T, auto v) {                                               \
        return separated_attraction::operation(model, active_ideal_part(), T, v) element; \
    }
#define ROW(operation, row)                                                                    \
    [](const auto &model, auto T, auto v) {                                                    \
        const auto matrix = separated_attraction::operation(model, active_ideal_part(), T, v); \
        return separated_attraction::gradient<decltype(T)>{matrix[row], matrix[row + 2]};      \
    }
    visit("P", OF(P__T_v, ), OF(dP__dT_dv, ));
    visit("dP/dT", OF(dP__dT_dv, [0]), ROW(d2P__dT2_dv2, 0));
    visit("dP/dv", OF(dP__dT_dv, [1]), ROW(d2P__dT2_dv2, 1));
    visit("e", OF(e__T_v, ), OF(de__dT_dv, ));
    visit("de/dT", OF(de__dT_dv, [0]), ROW(d2e__dT2_dv2, 0));
    visit("de/dv", OF(de__dT_dv, [1]), ROW(d2e__dT2_dv2, 1));
    visit("cv", OF(cv__T_v, ), OF(dcv__dT_dv, ));
#undef OF
#undef ROW
}

TEST(complex_step, every_derivative_of_every_model_and_heat_capacity) {
    support::for_each_state([](const auto &model, double T, double v) {
        for_each_gradient([&](const char *name, auto f, auto gradient) {
            SCOPED_TRACE(name);
            const auto analytic = gradient(model, tracked(T), tracked(v));
            expect_derivative(
                analytic[0], [&](auto t) { return f(model, t, decltype(t)(v)); }, T);
            expect_derivative(
                analytic[1], [&](auto w) { return f(model, decltype(w)(T), w); }, v);
        });
    });
}

// The operations of the modules must give the same bits as the algebra at double.
TEST(complex_step, the_module_operations_are_the_algebra_at_double) {
    support::for_each_state([](const auto &model, double T, double v) {
#define OSTREL_SAME_SCALAR(unused, operation) \
    EXPECT_EQ(thermodynamics::operation(T, v), separated_attraction::operation(model, active_ideal_part(), T, v));
#define OSTREL_SAME_ARRAY(unused, operation, size)                                                          \
    {                                                                                                       \
        std::array<double, size> result{};                                                                  \
        thermodynamics::operation(T, v, result);                                                            \
        EXPECT_EQ(result, separated_attraction::operation(model, active_ideal_part(), T, v)) << #operation; \
    }
        OSTREL_SCALAR_OPERATIONS(OSTREL_SAME_SCALAR, )
        OSTREL_ARRAY_OPERATIONS(OSTREL_SAME_ARRAY, )
    });
}

TEST(complex_step, the_caloric_integrals) {
    using namespace ideal_specific_heat;
    using namespace ideal_gas_heat;
    support::for_each_loaded([] {
        for (const double T : {12.0, 90.0, 299.0, 300.0, 640.0, 1100.0, 2900.0}) {
            SCOPED_TRACE(T);
            const double t = T / active.T_ref;
            const tracked phip = phip_reduced(active, tracked(t));
            expect_derivative(
                phip, [](auto x) { return phi_reduced(active, x); }, t);
            expect_derivative(
                phipp_reduced(active, tracked(t)), [](auto x) { return phip_reduced(active, x); }, t);
            expect_derivative(
                phip / tracked(t), [](auto x) { return psi_reduced(active, x); }, t);
        }
    });
}

} // namespace
