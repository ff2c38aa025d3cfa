// SPDX-License-Identifier: MIT
// Compares every operation at double with the same algebra at long double, within the bound of its rounding.
#include "Tests/Support/rounding.h"
#include "Tests/Support/thermodynamics.h"

namespace {

using support::tracked;

void expect_within_rounding(const tracked &narrow, long double wide) {
    EXPECT_LE(std::abs(static_cast<double>(narrow.value - wide)), narrow.bound * support::unit_roundoff)
        << narrow.value << ", bound " << narrow.bound * support::unit_roundoff;
}

static_assert(std::numeric_limits<long double>::digits > std::numeric_limits<double>::digits);

TEST(long_double, every_operation_of_every_model_and_heat_capacity) {
    support::for_each_state([](const auto &model, double T, double v) {
        const auto ideal = thermodynamics::active_ideal_part();
        const auto at = [&](auto operation) {
            return std::pair(operation(tracked(T), tracked(v)),
                             operation(static_cast<long double>(T), static_cast<long double>(v)));
        };
#define OSTREL_COMPARE_SCALAR(unused, operation)                                                     \
    {                                                                                                \
        SCOPED_TRACE(#operation);                                                                    \
        const auto [narrow, wide] =                                                                  \
            at([&](auto t, auto w) { return separated_attraction::operation(model, ideal, t, w); }); \
        EXPECT_EQ(narrow.value, separated_attraction::operation(model, ideal, T, v));                \
        expect_within_rounding(narrow, wide);                                                        \
    }
#define OSTREL_COMPARE_ARRAY(unused, operation, size)                                                \
    {                                                                                                \
        SCOPED_TRACE(#operation);                                                                    \
        const auto [narrow, wide] =                                                                  \
            at([&](auto t, auto w) { return separated_attraction::operation(model, ideal, t, w); }); \
        for (std::size_t i = 0; i < size; ++i)                                                       \
            expect_within_rounding(narrow[i], wide[i]);                                              \
    }
        OSTREL_SCALAR_OPERATIONS(OSTREL_COMPARE_SCALAR, )
        OSTREL_ARRAY_OPERATIONS(OSTREL_COMPARE_ARRAY, )
    });
}

} // namespace
