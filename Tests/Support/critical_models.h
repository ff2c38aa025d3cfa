// SPDX-License-Identifier: MIT
// The tests of the models share this file: a record with chosen critical data, every number of a record before and
// after an initialisation, and the operations written out with q and f.
#pragma once

#include "Tests/Support/rounding.h"
#include "Tests/Support/thermodynamics.h"

namespace support {

struct critical_data {
    double Tc;          ///< K
    double Pc;          ///< Pa
    double MM = 20.0;   ///< kg/kmol
    double Zc = 0.27;   ///< -
    double omega = 0.3; ///< -
    double Tb = 200.0;  ///< K
};

/// Puts the library into its first state, with the record as it is after a vapor with these data has been read.
inline void use_record(const critical_data &fluid) {
    fresh_library();
    read_well(gas_section, vapor_fluid);
    auto &gas = gas_properties::gas;
    gas.MM = fluid.MM;
    gas.R = 8314.0 / fluid.MM;
    gas.Tc = fluid.Tc;
    gas.Pc = gas.P_ref = fluid.Pc;
    gas.Zc = gas.Z_ref = fluid.Zc;
    gas.T_ref = fluid.Tc * fluid.Zc;
    gas.omega = fluid.omega;
    gas.Tb = fluid.Tb;
}

/// Checks every number of the active record.
inline void expect_record(const gas_properties::gas_constants &expected) {
    using gas_properties::gas_constants;
    static constexpr struct {
        const char *name;
        double gas_constants::*field;
    } fields[] = {{"R", &gas_constants::R},
                  {"MM", &gas_constants::MM},
                  {"e_0", &gas_constants::e_0},
                  {"s_0", &gas_constants::s_0},
                  {"cv_ref", &gas_constants::cv_ref},
                  {"P_ref", &gas_constants::P_ref},
                  {"T_ref", &gas_constants::T_ref},
                  {"v_ref", &gas_constants::v_ref},
                  {"Z_ref", &gas_constants::Z_ref},
                  {"mu_ref", &gas_constants::mu_ref},
                  {"kk_ref", &gas_constants::kk_ref},
                  {"c_ref", &gas_constants::c_ref},
                  {"cv0_ref", &gas_constants::cv0_ref},
                  {"cp0_ref", &gas_constants::cp0_ref},
                  {"Pc", &gas_constants::Pc},
                  {"Tc", &gas_constants::Tc},
                  {"vc", &gas_constants::vc},
                  {"Zc", &gas_constants::Zc},
                  {"Tb", &gas_constants::Tb},
                  {"omega", &gas_constants::omega},
                  {"mur", &gas_constants::mur},
                  {"kh", &gas_constants::kh}};
    for (const auto &[name, field] : fields)
        EXPECT_EQ(gas_properties::gas.*field, expected.*field) << name;
    EXPECT_EQ(gas_properties::gas.vapor, expected.vapor);
}

/// Expects the record of a model that has found the critical volume v and the compressibility factor Zc.
inline void expect_critical_reference(gas_properties::gas_constants before, double v, double Zc) {
    before.vc = before.v_ref = v;
    before.Zc = before.Z_ref = Zc;
    before.T_ref = before.Tc * Zc;
    before.c_ref = std::sqrt(before.Pc * v);
    expect_record(before);
}

template <std::size_t terms>
using tracked_factors = std::array<std::array<tracked, 4>, terms>;

/// Compares the operations of the active model at (T, v) with their formulas in q and f, for co-volume b and a gas
/// constant of 1, within the rounding of the terms.
template <std::size_t terms>
void expect_formulas(const tracked_factors<terms> &q, const tracked_factors<terms> &f, double b, double T, double v) {
    using namespace ideal_specific_heat;
    using namespace ideal_gas_heat;
    const auto sum = [&](auto term) {
        tracked total = 0;
        for (std::size_t i = 0; i < terms; ++i)
            total += term(q[i], f[i]);
        return total;
    };
    const auto expect = [](const char *name, double computed, const tracked &formula) {
        SCOPED_TRACE(name);
        expect_same({computed, formula.bound}, formula);
    };
    const tracked t = T;
    const tracked w = tracked(v) - tracked(b);
    std::array<double, 2> pair{};
    std::array<double, 4> matrix{};

    expect("P", thermodynamics::P__T_v(T, v), sum([](auto &q_, auto &f_) { return q_[0] * f_[1]; }) + t / w);
    thermodynamics::dP__dT_dv(T, v, pair);
    expect("P_T", pair[0], sum([](auto &q_, auto &f_) { return q_[1] * f_[1]; }) + tracked(1) / w);
    expect("P_v", pair[1], sum([](auto &q_, auto &f_) { return q_[0] * f_[2]; }) - t / (w * w));
    thermodynamics::d2P__dT2_dv2(T, v, matrix);
    expect("P_TT", matrix[0], sum([](auto &q_, auto &f_) { return q_[2] * f_[1]; }));
    expect("P_Tv", matrix[1], sum([](auto &q_, auto &f_) { return q_[1] * f_[2]; }) - tracked(1) / (w * w));
    EXPECT_EQ(matrix[2], matrix[1]);
    expect("P_vv", matrix[3], sum([](auto &q_, auto &f_) { return q_[0] * f_[3]; }) + tracked(2) * t / (w * w * w));

    const tracked e_0 = gas_properties::gas.e_0, s_0 = gas_properties::gas.s_0;
    const tracked e_v = sum([&](auto &q_, auto &f_) { return (t * q_[1] - q_[0]) * f_[1]; });
    expect("e", thermodynamics::e__T_v(T, v),
           e_0 + tracked(phi__T(T)) + sum([&](auto &q_, auto &f_) { return (t * q_[1] - q_[0]) * f_[0]; }));
    const tracked cv = tracked(phip__T(T)) + sum([&](auto &q_, auto &f_) { return t * q_[2] * f_[0]; });
    thermodynamics::de__dT_dv(T, v, pair);
    expect("e_T", pair[0], cv);
    expect("e_v", pair[1], e_v);
    expect("cv", thermodynamics::cv__T_v(T, v), cv);
    const tracked cv_T = tracked(phipp__T(T)) + sum([&](auto &q_, auto &f_) { return (q_[3] * t + q_[2]) * f_[0]; });
    const tracked cv_v = sum([&](auto &q_, auto &f_) { return t * q_[2] * f_[1]; });
    thermodynamics::dcv__dT_dv(T, v, pair);
    expect("cv_T", pair[0], cv_T);
    expect("cv_v", pair[1], cv_v);
    thermodynamics::d2e__dT2_dv2(T, v, matrix);
    expect("e_TT", matrix[0], cv_T);
    expect("e_Tv", matrix[1], cv_v);
    EXPECT_EQ(matrix[2], matrix[1]);
    expect("e_vv", matrix[3], sum([&](auto &q_, auto &f_) { return (t * q_[1] - q_[0]) * f_[2]; }));
    expect("s", thermodynamics::s__T_v(T, v),
           tracked(psi__T(T)) + sum([](auto &q_, auto &f_) { return q_[1] * f_[0]; }) + s_0 + log(w));
}

/// Compares the factors that Q_f returns with those that are written out.
template <std::size_t terms>
void expect_factors(const std::array<std::array<double, 4>, terms> &computed, const tracked_factors<terms> &formula) {
    for (std::size_t i = 0; i < terms; ++i)
        for (std::size_t k = 0; k < 4; ++k) {
            SCOPED_TRACE(testing::Message() << "term " << i + 1 << ", derivative " << k);
            expect_same({computed[i][k], formula[i][k].bound}, formula[i][k]);
        }
}

} // namespace support
