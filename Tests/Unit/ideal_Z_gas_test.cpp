// SPDX-License-Identifier: MIT
#include "Tests/Support/thermodynamics.h"

namespace {

using namespace ideal_Z_gas;
using gas_properties::gas;
using ideal_specific_heat::phi__T;
using ideal_specific_heat::phip__T;
using ideal_specific_heat::phipp__T;
using ideal_specific_heat::psi__T;

struct ideal_Z_gas_test : support::thermodynamics_test {};

constexpr support::section parameter_section = {[](records::file_reader &unit) { read_param_IZG(unit); },
                                                read_param_IZG_db, write_param_IZG};

TEST_F(ideal_Z_gas_test, one_record_holds_Z) {
    for (const auto from : support::both_sources) {
        SCOPED_TRACE(from);
        support::fresh_library();
        const auto [message, last] = read(parameter_section, from, "0.8\n0.7 remark\n0.6\n", 1);
        EXPECT_EQ(message, "");
        EXPECT_EQ(last, 2);
        EXPECT_EQ(active.Z_const, 0.7);
        EXPECT_EQ(read(parameter_section, from, "0.8\n", 1).message,
                  std::string("Ostrel error: ") + (from == support::source::file ? "file fluid.osd" : "fluid") +
                      (from == support::source::file ? ", record 2" : ", record 1") +
                      ": expected Z_const (a real), found the end of the file.");
        EXPECT_EQ(active.Z_const, 0.7);
    }
}

TEST_F(ideal_Z_gas_test, the_writer_puts_a_text_before_Z) {
    active.Z_const = 0.9;
    EXPECT_EQ(support::written(parameter_section),
              std::vector<std::string>{" Compressibility of ideal Z gas:   0.90000000000000002     "});
    // The text stands where the reader wants the number.
    records::record_writer writer;
    write_param_IZG(writer);
    EXPECT_EQ(read(parameter_section, support::source::file, writer.text()).message,
              "Ostrel error: file fluid.osd, record 1: expected Z_const (a real), found \"Compressibility\".");
}

TEST_F(ideal_Z_gas_test, init_completes_a_reference_fluid) {
    support::read_well(support::gas_section, support::reference_fluid);
    gas.Zc = gas.vc = gas.Tc = 7.25;
    active.Z_const = 0.8;
    init_IZG();
    EXPECT_EQ(gas.v_ref, 0.8 * gas.R * 300.0 / 101325.0);
    EXPECT_EQ(gas.Z_ref, 0.8);
    EXPECT_EQ(gas.c_ref, std::sqrt(101325.0 * gas.v_ref));
    EXPECT_EQ(gas.T_ref, 300.0);
    EXPECT_EQ(gas.Zc, 7.25);
    EXPECT_EQ(gas.vc, 7.25);
    EXPECT_EQ(active.Rgas, 1.0);
    EXPECT_EQ(active.Z_const, 0.8);
}

TEST_F(ideal_Z_gas_test, init_replaces_the_critical_compressibility_of_a_vapor) {
    support::read_well(support::gas_section, support::vapor_fluid);
    active.Z_const = 0.8;
    init_IZG();
    EXPECT_EQ(gas.vc, 0.8 * gas.R * gas.Tc / gas.Pc);
    EXPECT_EQ(gas.v_ref, gas.vc);
    EXPECT_EQ(gas.Zc, 0.8);
    EXPECT_EQ(gas.Z_ref, 0.8);
    EXPECT_EQ(gas.T_ref, 0.8 * gas.Tc);
    EXPECT_EQ(gas.c_ref, std::sqrt(gas.Pc * gas.vc));
    EXPECT_EQ(active.Rgas, 1.0);
    EXPECT_EQ(support::shared_text(), "No errors");
}

TEST_F(ideal_Z_gas_test, the_operations_are_their_formulas) {
    using vector = std::array<double, 2>;
    using matrix = std::array<double, 4>;
    for (const double Z : {0.8, 1.1}) {
        SCOPED_TRACE(Z);
        const support::model_case model = {"", 8, support::vapor_fluid, Z < 1 ? "0.8\n" : "1.1\n"};
        support::load(model, support::heat_cases[8]);
        gas.e_0 = -3.5;
        gas.s_0 = 4.25;
        for (const auto &[T, v] : {std::pair(1.0, 1.0), {0.7, 130.0}, {2.3, 0.02}}) {
            EXPECT_EQ(P__T_v__IZG(T, v), T * Z / v);
            EXPECT_EQ(dP__dT_dv__IZG(T, v), (vector{Z / v, -Z * T / (v * v)}));
            EXPECT_EQ(d2P__dT2_dv2__IZG(T, v), (matrix{0.0, -Z / (v * v), -Z / (v * v), 2 * Z * T / (v * v * v)}));
            EXPECT_DOUBLE_EQ(e__T_v__IZG(T, v), phi__T(T) - 3.5);
            EXPECT_EQ(de__dT_dv__IZG(T, v), (vector{phip__T(T), 0.0}));
            EXPECT_EQ(d2e__dT2_dv2__IZG(T, v), (matrix{phipp__T(T), 0.0, 0.0, 0.0}));
            EXPECT_DOUBLE_EQ(s__T_v__IZG(T, v), psi__T(T) + 4.25 + Z * std::log(v));
            EXPECT_EQ(cv__T_v__IZG(T, v), phip__T(T));
            EXPECT_EQ(dcv__dT_dv__IZG(T, v), (vector{phipp__T(T), 0.0}));
        }
        EXPECT_EQ(minimum_specific_volume__IZG(), 1.0e-12);
    }
}

TEST_F(ideal_Z_gas_test, with_Z_of_one_it_is_the_ideal_gas) {
    for (const std::string &fluid : {support::vapor_fluid, support::reference_fluid}) {
        std::vector<double> results[2];
        for (const bool with_Z : {false, true}) {
            support::load({"", with_Z ? 8 : 1, fluid, with_Z ? "1.0\n" : ""}, support::heat_cases[8]);
            std::vector<double> &all = results[with_Z];
            all = {gas.T_ref,
                   gas.P_ref,
                   gas.v_ref,
                   gas.Z_ref,
                   gas.c_ref,
                   gas.vc,
                   gas.Zc,
                   gas.e_0,
                   gas.s_0,
                   gas.cv_ref,
                   gas.cv0_ref,
                   gas.cp0_ref,
                   thermodynamics::Tmin,
                   thermodynamics::Pmin,
                   thermodynamics::vmin};
            for (const auto &[name, T, v] : support::states) {
#define OSTREL_APPEND_SCALAR(unused, operation) all.push_back(thermodynamics::operation(T, v));
#define OSTREL_APPEND_ARRAY(unused, operation, size)         \
    {                                                        \
        std::array<double, size> result{};                   \
        thermodynamics::operation(T, v, result);             \
        all.insert(all.end(), result.begin(), result.end()); \
    }
                OSTREL_SCALAR_OPERATIONS(OSTREL_APPEND_SCALAR, )
                OSTREL_ARRAY_OPERATIONS(OSTREL_APPEND_ARRAY, )
            }
        }
        EXPECT_EQ(results[0], results[1]);
    }
}

} // namespace
