// SPDX-License-Identifier: MIT
#include "Tests/Support/thermodynamics.h"

namespace {

using namespace ideal_Z_gas;
using gas_properties::gas;

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
                  support::unread(from, std::string(from == support::source::file ? "record 2" : "record 1") +
                                            ": expected Z_const (a real), found the end of the file."));
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
