// SPDX-License-Identifier: MIT
// What its rounded constants make of the critical point; all else is in cubic_models_test.cpp.
#include "Tests/Support/critical_models.h"

namespace {

using namespace peng_robinson_gas;
using gas_properties::gas;

struct peng_robinson_gas_test : support::thermodynamics_test {};

// The simple root of the residual with the rounded constants, found in 40 digits.
TEST_F(peng_robinson_gas_test, the_compressibility_is_that_of_the_rounded_constants) {
    for (const double Zc : {0.2, 0.27, 0.31}) {
        support::use_record({400.0, 4.2e6, 20.0, Zc});
        init_PRG();
        EXPECT_NEAR(gas.Zc, 0.3213790251736285, 1e-12);
    }
}

// The rounded constants put (1/Zc, 1) beside the critical point: P is met, its derivatives are not zero.
TEST_F(peng_robinson_gas_test, the_critical_point_is_nearly_met) {
    support::load(support::case_of(5), support::heat_cases[0]);
    const double T = 1 / gas.Zc;
    EXPECT_NEAR(P__T_v__PRG(T, 1.0), 1.0, 1e-13);
    EXPECT_NEAR(dP__dT_dv__PRG(T, 1.0)[1], -5.228208265602e-03, 1e-9);
    EXPECT_NEAR(d2P__dT2_dv2__PRG(T, 1.0)[3], -2.095301640897e-01, 1e-8);
}

} // namespace
