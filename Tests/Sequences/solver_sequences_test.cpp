// SPDX-License-Identifier: MIT
// Requests with input pairs that depend on the requests before them.
#include "Algebra/lin_algebra.h"
#include "Ostrel_Main.h"
#include "Tests/Support/thermodynamics.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <gmock/gmock.h>

namespace {

using gas_properties::gas;
using support::ask;

constexpr const char *singular = " Matrix A is singular. In FUNCTION inverse, MODULE lin_algebra. STOP";
constexpr const char *einstein_heat = "F\n5\n472.3\n4\n2*957.3 1952.2 3280.5\n";

struct solver_sequences : support::thermodynamics_test {
    support::fluid_folder fluids;

    solver_sequences() {
        release();
        for (const auto &[name, type] : {std::pair{"ideal", "1\n"}, {"vdw", "2\n"}, {"srk", "4\n"}, {"rk", "6\n"}})
            fluids.add(name, support::vapor_section + type + einstein_heat + support::constant_transport);
        // The same model with three quarters of the critical pressure.
        fluids.add("other", "names\nother\nlabel\nconstants\n30.0\nT\n400.0\n37.5\n0.27\n280.0\n0.0\n0.0\n4\n" +
                                std::string(einstein_heat) + support::constant_transport);
    }
    ~solver_sequences() override { release(); }

    static void release() {
        lin_algebra::linalg_errmsg.reset();
        for (std::vector<double> *const column :
             {&thermodynamics::TTs, &thermodynamics::PPs, &thermodynamics::vvls, &thermodynamics::vvgs})
            column->clear();
        ostrel::os_fluid = {};
        ostrel::os_inputspec = {};
    }
    /// The values of a fluid at a state, as inputs for other pairs.
    struct state_values {
        double p, h, s;
    };
    static state_values at(std::string_view fluid, double t, double v) {
        return {ask(fluid, "tv", t, v, "p").value, ask(fluid, "tv", t, v, "h").value,
                ask(fluid, "tv", t, v, "s").value};
    }
};

void expect_failure(const support::answer &got, const std::string &text) {
    EXPECT_EQ(got.text, text);
    EXPECT_EQ(got.value, support::failed);
}

TEST_F(solver_sequences, a_singular_Jacobian_and_every_later_solve_in_two_unknowns) {
    const state_values a = at("srk", 350.0, 0.05), b = at("srk", 360.0, 0.06);
    EXPECT_NEAR(ask("srk", "ph", a.p, a.h, "t").value, 350.0, 1e-6);
    EXPECT_NEAR(ask("srk", "ps", a.p, a.s, "t").value, 350.0, 1e-6);
    EXPECT_NEAR(ask("srk", "hs", a.h, a.s, "t").value, 350.0, 1e-6);
    EXPECT_TRUE(ask("srk", "pq", 1e6, 1.0, "t").ok());

    // The pressure is so low that dP/dv is lost and the first inversion fails.
    expect_failure(ask("ideal", "ph", 1e-190, 2e5, "t"), "ERROR: in v__h_P");
    EXPECT_EQ(lin_algebra::linalg_errmsg.trimmed(), singular);

    const state_values ideal = at("ideal", 350.0, 0.05);
    expect_failure(ask("ideal", "ph", ideal.p, ideal.h, "t"), "ERROR: in v__h_P");
    expect_failure(ask("ideal", "ps", ideal.p, ideal.s, "t"), "ERROR: in v__s_P");
    expect_failure(ask("ideal", "hs", ideal.h, ideal.s, "t"), "ERROR: in v__h_s");
    // Loading another fluid does not help.
    expect_failure(ask("srk", "ph", b.p, b.h, "t"), "ERROR: in v__h_P");
    expect_failure(ask("srk", "ps", b.p, b.s, "t"), "ERROR: in v__s_P");
    expect_failure(ask("srk", "hs", b.h, b.s, "t"), "ERROR: in v__h_s");
    expect_failure(ask("srk", "pq", 1.1e6, 1.0, "t"), singular);
    expect_failure(ask("srk", "tq", 240.0, 1.0, "p"), singular);
    // Solves in one unknown still work.
    EXPECT_NEAR(ask("srk", "pt", b.p, 360.0, "v").value, 0.06, 1e-9);
    EXPECT_NEAR(ask("srk", "pv", b.p, 0.06, "t").value, 360.0, 1e-6);
    EXPECT_NEAR(ask("srk", "ts", 360.0, b.s, "v").value, 0.06, 1e-8);
    EXPECT_NEAR(ask("srk", "vh", 0.06, b.h, "t").value, 360.0, 1e-6);
}

TEST_F(solver_sequences, after_a_singular_Jacobian_no_table_can_be_built) {
    expect_failure(ask("ideal", "ph", 1e-190, 2e5, "t"), "ERROR: in v__h_P");
    expect_failure(ask("srk", "pq", 1e6, 1.0, "t"), "No solution has been found in subroutine init_saturation_curves.");
}

TEST_F(solver_sequences, the_first_fluids_saturation_table_serves_the_second) {
    const double t = ask("vdw", "pq", 2e6, 1.0, "t").value;
    EXPECT_GT(t, 200.0);
    const std::vector<double> temperatures = thermodynamics::TTs, pressures = thermodynamics::PPs;
    ASSERT_EQ(temperatures.size(), 256U);
    // A van der Waals gas boils at other temperatures than a Soave-Redlich-Kwong gas.
    const support::answer other = ask("srk", "pq", 2e6, 1.0, "t");
    EXPECT_EQ(thermodynamics::TTs, temperatures);
    EXPECT_EQ(thermodynamics::PPs, pressures);
    EXPECT_TRUE(other.ok());
    EXPECT_GT(std::abs(other.value - t), 1.0);
    const double from_vdw_table = ask("srk", "pq", 2e6, 1.0, "v").value;
    // Both ends of the range are those of the van der Waals table.
    const auto bar = [](double P) { return P * gas.Pc / 1e5; };
    char range[100];
    std::snprintf(range, sizeof range, "Pressure out of range: %.3f < P < %.3f bar", bar(pressures.back()),
                  bar(pressures.front()));
    expect_failure(ask("srk", "pq", 0.99 * pressures.back() * gas.P_ref, 1.0, "t"), range);
    expect_failure(ask("other", "pq", 0.99 * pressures.back() * 37.5 * 101325.0, 1.0, "t"),
                   "Pressure out of range: 0.023 < P < 37.997 bar");
    // With a table of its own the fluid answers the same within the tolerance, and has another range.
    release();
    EXPECT_NEAR(ask("srk", "pq", 2e6, 1.0, "v").value / from_vdw_table, 1.0, 1e-3);
    EXPECT_NE(thermodynamics::PPs, pressures);
}

TEST_F(solver_sequences, an_ideal_gas_spoils_the_table_for_all) {
    expect_failure(ask("ideal", "pq", 1e6, 1.0, "t"),
                   "No solution has been found in subroutine init_saturation_curves.");
    // The table of this model has the critical pressure everywhere.
    const support::answer after = ask("srk", "pq", 1e6, 1.0, "t");
    EXPECT_THAT(after.text, testing::StartsWith("Pressure out of range: 50.66"));
    EXPECT_EQ(after.value, support::failed);
}

TEST_F(solver_sequences, out_of_range_texts) {
    expect_failure(ask("srk", "pq", 50.1 * 101325.0, 1.0, "t"),
                   "Saturation pressure higher than critical in saturation_P.");
    expect_failure(ask("srk", "tq", 300.1, 0.0, "p"), "Saturation temperature higher than critical in saturation_T.");
    EXPECT_TRUE(thermodynamics::TTs.empty());
    // The ends of the range are 300 K 0.75/1.1^4 and 300 K.
    expect_failure(ask("srk", "tq", 153.6, 0.0, "p"), "Temperature out of range: -119.472 < T < 26.850 \xb0"
                                                      "C");
    expect_failure(ask("srk", "tq", 153.5, 0.0, "p", 20), "Temperature out of r");
    const double lowest = thermodynamics::PPs.back() * 50.0 * 1.01325;
    char text[100];
    std::snprintf(text, sizeof text, "Pressure out of range: %.3f < P < 50.663 bar", lowest);
    expect_failure(ask("srk", "pq", 0.999 * lowest * 1e5, 0.0, "t"), text);
    expect_failure(ask("srk", "pq", -1.0, 0.0, "t"), text);
    EXPECT_TRUE(ask("srk", "pq", 1.001 * lowest * 1e5, 0.0, "t").ok());
}

TEST_F(solver_sequences, a_failed_pair_repeated_is_answered_from_the_state_before_it) {
    const state_values a = at("ideal", 350.0, 0.05);
    const struct {
        const char *pair;
        double input1, input2;
        const char *text;
    } failing[] = {
        {"ph", a.p, -1e12, "ERROR: in v__h_P"},   {"ps", a.p, -1e12, "ERROR: in v__s_P"},
        {"hs", -1e12, a.s, "ERROR: in v__h_s"},   {"pt", -1e5, 350.0, "ERROR: in v__P_T"},
        {"pv", -1e5, 0.05, "ERROR: in T__P_v"},   {"vh", 0.05, -1e12, "ERROR: in T__h_v"},
        {"ts", 350.0, -1e12, "ERROR: in v__s_T"}, {"vs", 0.05, -1e12, "ERROR: in T__s_v"},
        {"du", 20.0, -1e12, "ERROR: in T__e_v"},
    };
    for (const auto &request : failing) {
        SCOPED_TRACE(request.pair);
        lin_algebra::linalg_errmsg.reset();
        ASSERT_TRUE(ask("ideal", "tv", 350.0, 0.05, "p").ok());
        expect_failure(ask("ideal", request.pair, request.input1, request.input2, "h"), request.text);
        const support::answer again = ask("ideal", request.pair, request.input1, request.input2, "h");
        EXPECT_TRUE(again.ok()) << again.text;
        EXPECT_EQ(again.value, a.h);
        EXPECT_EQ(ask("ideal", request.pair, request.input1, request.input2, "p").value, a.p);
    }
}

TEST_F(solver_sequences, a_kept_state_between_the_phases_is_served_for_every_output) {
    for (const auto &[pair, value] : {std::pair{"pq", 1e6}, {"tq", 250.0}}) {
        SCOPED_TRACE(pair);
        const char *const refused =
            "Ostrel error: calculation as function of q, while q /= 1, only available for P, T, v or d.";
        const double t = ask("srk", pair, value, 0.5, "t").value;
        const double v = ask("srk", pair, value, 0.5, "v").value;
        EXPECT_GT(t, 200.0);
        const support::answer h = ask("srk", pair, value, 0.5, "h");
        EXPECT_TRUE(h.ok()) << h.text;
        EXPECT_EQ(h.value, thermodynamics::h__T_v(ostrel::T, ostrel::v) * gas.P_ref * gas.v_ref);
        EXPECT_NEAR(h.value, ask("srk", "tv", t, v, "h").value, 1e-6 * std::abs(h.value));
        // The first request with this key is refused; a repeated one is answered from the state before.
        expect_failure(ask("srk", pair, value, 0.5, "h"), refused);
        EXPECT_EQ(ask("srk", pair, value, 0.5, "t").value, t);
        // The volume of the mixture is the mean of the volumes of the phases.
        const double v_g = ask("srk", pair, value, 1.0, "v").value, v_l = ask("srk", pair, value, 0.0, "v").value;
        EXPECT_NEAR(v, 0.5 * (v_g + v_l), 1e-12 * v);
        EXPECT_NEAR(ask("srk", pair, value, 0.5, "p").value,
                    thermodynamics::P__T_v(t / gas.T_ref, v / gas.v_ref) * gas.P_ref, 1e-3);
        EXPECT_TRUE(ask("srk", pair, value, 1.0000005, "h").ok());
        expect_failure(ask("srk", pair, value, 1.00001, "h"), refused);
    }
}

TEST_F(solver_sequences, a_message_of_a_solve_does_not_reach_the_next_request) {
    expect_failure(ask("srk", "pv", std::nan(""), 0.05, "t"), "ERROR: in T__P_v");
    EXPECT_TRUE(ask("srk", "tv", 350.0, 0.05, "p").ok());
    EXPECT_TRUE(ask("srk", "pq", 1e6, 1.0, "t").ok());
}

// If the initialisation of the first fluid fails, there is no lower bound of the temperature. A build of the table with
// the constants as they are must end nevertheless.
TEST_F(solver_sequences, after_a_failed_initialisation_the_table_gives_up) {
    int failed = 0;
    for (int tenths = 400; tenths < 420; ++tenths) {
        const std::string Pc = std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10);
        SCOPED_TRACE(Pc);
        support::fresh_library();
        release();
        fluids.add("pr", "names\npr\nlabel\nconstants\n44.0\nT\n304.1\n" + Pc + "\n0.2746\n184.0\n0.0\n0.0\n5\n" +
                             einstein_heat + support::constant_transport);
        if (ask("pr", "pq", 2e6, 1.0, "t").text != " ERROR:  v__P_T__PRG. STOP")
            continue;
        ++failed;
        // The pressure is another, so that the state is not the kept one.
        expect_failure(ask("pr", "pq", 2.1e6, 1.0, "t"),
                       "No solution has been found in subroutine init_saturation_curves.");
    }
    EXPECT_GT(failed, 0);
}

} // namespace
