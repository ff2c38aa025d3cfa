// SPDX-License-Identifier: MIT
// Scripts of calls in one process. The answer of a call depends on the calls before it.
#include "Tests/Support/frame.h"

#include <cerrno>
#include <cmath>

namespace {

using gas_properties::gas;
using support::failed_open;
using support::quality_text;
using support::unknown_constant;
using support::unknown_output;
using support::unknown_pair;

const std::string fine = "No errors";
constexpr double failed = support::failed;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// One call and its expected results. `loads` is the number of times that the fluid directory is asked for, `solved`
/// says whether the kept state was replaced.
struct step {
    enum kind { request, info } call = request;
    std::string fluid;
    std::string code; ///< of the pair, or the name of the constant
    double input1 = 0, input2 = 0;
    std::string output;

    std::string text;
    double value = 0;
    int loads = 0;
    bool solved = false;
};

step ask(std::string fluid, std::string code, double input1, double input2, std::string output, std::string text,
         double value, int loads, bool solved) {
    return {step::request,     std::move(fluid), std::move(code), input1, input2,
            std::move(output), std::move(text),  value,           loads,  solved};
}
step inform(std::string fluid, std::string name, std::string text, double value, int loads) {
    return {step::info, std::move(fluid), std::move(name), 0, 0, "", std::move(text), value, loads, false};
}

constexpr int load = 1, no_load = 0;
constexpr bool solves = true, keeps = false;

const std::string broken_message = "Ostrel error: file broken.osd, record 8: expected P_ref (a real), found \"one\".";

/// Fluids of three models, some that fail, and a counting host.
class request_sequence : public support::frame_test {
protected:
    request_sequence() {
        fluids_.add("ideal", support::reference_file());
        fluids_.add("clausius", support::vapor_file());
        fluids_.add("zgas", support::vapor_file("8\n0.9\n"));
        fluids_.add("clausius_two", support::vapor_file());
        std::string broken = support::reference_file();
        broken.replace(broken.find("300.0"), 5, "600.0");
        broken.replace(broken.find("28.0"), 4, "56.0");
        broken.replace(broken.find("1.0     P_ref"), 3, "one");
        fluids_.add("broken", broken);
        fluids_.add("empty", "");
        fluids_.add("linear", support::reference_section + "1\n" + support::constant_heat + "6\n1e-5 300\n4\n0.7\n");
        fluids_.add("mixed", support::vapor_section + "7\n" + support::constant_heat + "3\n1\n0.02\n");
    }

    /// Before each call the kept temperature is changed by one unit in the last place, which shows whether the call
    /// replaces it. Zero and infinity are left as they are.
    void run(const std::vector<step> &script) {
        const support::directory_host host(fluids_.path() + "/");
        int number = 0;
        for (const step &call : script) {
            SCOPED_TRACE("call " + std::to_string(++number) + ": " + call.fluid + " " + call.code + " " + call.output);
            const double kept = ostrel::T;
            const bool marks = std::isfinite(kept) && kept != 0;
            if (marks)
                ostrel::T = std::nextafter(kept, 0);
            const double marked = ostrel::T;
            const int asked = host.asked();
            const auto answer = call.call == step::request
                                    ? support::ask(call.fluid, call.code, call.input1, call.input2, call.output)
                                    : support::ask_info(call.fluid, call.code);
            EXPECT_EQ(answer.text, call.text);
            if (std::isnan(call.value))
                EXPECT_TRUE(std::isnan(answer.value)) << answer.value;
            else if (call.text == fine)
                EXPECT_DOUBLE_EQ(answer.value, call.value);
            else
                EXPECT_EQ(answer.value, call.value);
            EXPECT_EQ(host.asked() - asked, call.loads) << "loads";
            const bool solved = ostrel::T != marked;
            EXPECT_EQ(solved, call.solved && (marks || solved)) << "state replaced";
            if (!solved)
                ostrel::T = kept;
        }
    }

    const support::fluid_folder fluids_;
};

TEST_F(request_sequence, one_state_is_solved_once) {
    run({
        ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves),
        ask("ideal", "tv", 400, 2, "v", fine, 2, no_load, keeps),
        ask("ideal", "tv", 400, 2, "d", fine, 0.5, no_load, keeps),
        ask("ideal", "tv", 400, 2, "p", fine, 8314.0 / 28 * 400 / 2, no_load, keeps),
        ask("ideal", "tv", 400, 2, "t", fine, 400, no_load, keeps),
    });
}

TEST_F(request_sequence, every_part_of_the_key_counts) {
    run({
        ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves),
        ask("ideal", "TV", 400, 2, "t", fine, 400, no_load, solves),
        ask("ideal", "TV", 400, 2, "v", fine, 2, no_load, keeps),
        ask("ideal", "Tv", 400, 2, "t", fine, 400, no_load, solves),
        ask("ideal", "tv", 400, 2, "t", fine, 400, no_load, solves),
        ask("ideal", "tv", 401, 2, "t", fine, 401, no_load, solves),
        ask("ideal", "tv", 401, 3, "v", fine, 3, no_load, solves),
        ask("ideal", "td", 401, 3, "d", fine, 3, no_load, solves),
        ask("ideal", "td", 401, 3, "v", fine, 1.0 / 3, no_load, keeps),
        ask("ideal", "td", std::nextafter(401, 402), 3, "d", fine, 3, no_load, solves),
        ask("ideal", "tv", 400, 2, "t", fine, 400, no_load, solves),
        ask("clausius", "tv", 400, 2, "t", fine, 400, load, solves),
        ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves),
    });
}

TEST_F(request_sequence, trailing_blanks_are_no_part_of_the_key) {
    run({
        ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves),
        ask("ideal   ", "tv", 400, 2, "t", fine, 400, no_load, keeps),
        ask("ideal" + std::string(300, ' '), "tv    ", 400, 2, "t    ", fine, 400, no_load, keeps),
        ask("ideal", "tv", 400, 2, "T", fine, 400, no_load, keeps),
        ask("ideal ", "tv" + std::string(300, ' '), 400, 2, "v", fine, 2, no_load, keeps),
    });
}

TEST_F(request_sequence, a_code_of_more_than_two_characters_never_finds_its_key) {
    run({
        ask("ideal", "tv      junk", 400, 2, "t", fine, 400, load, solves),
        ask("ideal", "tv      junk", 400, 2, "t", fine, 400, no_load, solves),
        ask("ideal", "tv", 400, 2, "t", fine, 400, no_load, keeps),
        ask("ideal", "tvx", 400, 2, "t", unknown_pair("tvx"), failed, no_load, keeps),
        ask("ideal", "tvx", 400, 2, "t", unknown_pair("tvx"), failed, no_load, keeps),
        // The first two characters of "tvx" are the key now.
        ask("ideal", "tv", 400, 2, "v", fine, 2, no_load, keeps),
    });
}

TEST_F(request_sequence, zeros_of_either_sign_are_one_key_and_NaN_is_none) {
    run({
        ask("ideal", "tv", 0.0, 2, "t", fine, 0, load, solves),
        ask("ideal", "tv", -0.0, 2, "t", fine, 0, no_load, keeps),
        ask("ideal", "tv", 400, 2, "v", fine, 2, no_load, solves),
        ask("ideal", "tv", 401, nan, "t", fine, 401, no_load, solves),
        ask("ideal", "tv", 401, nan, "t", fine, 401, no_load, solves),
        ask("ideal", "tv", 401, nan, "v", fine, nan, no_load, solves),
        ask("ideal", "tv", nan, 3, "v", fine, 3, no_load, solves),
        ask("ideal", "tv", nan, 3, "t", fine, nan, no_load, solves),
    });
}

TEST_F(request_sequence, a_failed_request_repeated_answers_with_the_state_before_it) {
    run({
        ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves),
        ask("ideal", "xy", 500, 3, "t", unknown_pair("xy"), failed, no_load, keeps),
        ask("ideal", "xy", 500, 3, "t", fine, 400, no_load, keeps),
        ask("ideal", "xy", 500, 3, "v", fine, 2, no_load, keeps),
        ask("ideal", "XY", 500, 3, "v", unknown_pair("XY"), failed, no_load, keeps),
        ask("ideal", "XY", 500, 3, "h2", unknown_output("h2"), failed, no_load, keeps),
        // The key of the state itself is lost.
        ask("ideal", "tv", 400, 2, "t", fine, 400, no_load, solves),
        ask("ideal", "", 400, 2, "t", unknown_pair(""), failed, no_load, keeps),
        ask("ideal", "  ", 400, 2, "t", fine, 400, no_load, keeps),
    });
}

TEST_F(request_sequence, a_failed_first_request_repeated_answers_with_the_initial_state) {
    run({
        ask("ideal", "xy", 500, 3, "t", unknown_pair("xy"), failed, load, keeps),
        ask("ideal", "xy", 500, 3, "v", fine, 0, no_load, keeps),
        ask("ideal", "xy", 500, 3, "d", fine, std::numeric_limits<double>::infinity(), no_load, keeps),
    });
}

TEST_F(request_sequence, the_quality_restriction_is_passed_by_on_a_repeat) {
    run({
        ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves),
        ask("ideal", "pq", 1e5, 0.5, "h", quality_text, failed, no_load, keeps),
        ask("ideal", "pq", 1e5, 0.5, "t", fine, 400, no_load, keeps),
        ask("ideal", "pq", 1e5, 0.5, "h2", unknown_output("h2"), failed, no_load, keeps),
        ask("ideal", "pq", 1e5, 0.25, "cv", quality_text, failed, no_load, keeps),
        ask("ideal", "PQ", 1e5, 0.25, "cv", quality_text, failed, no_load, keeps),
        ask("ideal", "PQ", 1e5, 0.25, "cv", fine, 2.5 * 8314 / 28, no_load, keeps),
        // An unknown pair with a quality is only noticed with an output that passes the restriction.
        ask("ideal", "xq", 1e5, 0.25, "s", quality_text, failed, no_load, keeps),
        ask("ideal", "xq", 1e5, 0.5, "t", unknown_pair("xq"), failed, no_load, keeps),
        ask("ideal", "xq", 1e5, 0.5, "t", fine, 400, no_load, keeps),
        // A NaN as quality never equals the kept one.
        ask("ideal", "xq", 1e5, nan, "t", unknown_pair("xq"), failed, no_load, keeps),
        ask("ideal", "xq", 1e5, nan, "h", unknown_pair("xq"), failed, no_load, keeps),
    });
}

TEST_F(request_sequence, an_unknown_output_leaves_the_state_valid) {
    run({
        ask("ideal", "tv", 400, 2, "cp", unknown_output("cp"), failed, load, solves),
        ask("ideal", "tv", 400, 2, "t", fine, 400, no_load, keeps),
        ask("ideal", "tv", 400, 2, "etas", unknown_output("etas"), failed, no_load, keeps),
        ask("ideal", "tv", 400, 2, "v", fine, 2, no_load, keeps),
        ask("ideal", "tv", 410, 2, "", unknown_output(""), failed, no_load, solves),
        ask("ideal", "tv", 410, 2, "t", fine, 410, no_load, keeps),
    });
}

TEST_F(request_sequence, viscosity_and_conductivity_are_those_of_the_kept_state) {
    // The linear law and a constant Prandtl number: mu = 1e-5 T/300 K, k = mu cp/Pr.
    const auto mu = [](double t) { return 1e-5 * t / 300; };
    const auto k = [&](double t) { return mu(t) * 3.5 * (8314.0 / 28) / 0.7; };
    run({
        ask("linear", "tv", 400, 2, "eta", fine, mu(400), load, solves),
        ask("linear", "tv", 400, 2, "lambda", fine, k(400), no_load, keeps),
        ask("linear", "tv", 400, 2, "t", fine, 400, no_load, keeps),
        ask("linear", "td", 450, 2, "t", fine, 450, no_load, solves),
        ask("linear", "td", 450, 2, "LAMBDA", fine, k(450), no_load, keeps),
        ask("linear", "td", 450, 2, "Eta  ", fine, mu(450), no_load, keeps),
        // They are not served for a mixture, unless the request is repeated.
        ask("linear", "pq", 1e5, 0.5, "eta", quality_text, failed, no_load, keeps),
        ask("linear", "pq", 1e5, 0.5, "eta", fine, mu(450), no_load, keeps),
        ask("linear", "tq", 300, 0.999998, "lambda", quality_text, failed, no_load, keeps),
        // A failed pair that is repeated is answered from the state before it.
        ask("linear", "xy", 500, 3, "eta", unknown_pair("xy"), failed, no_load, keeps),
        ask("linear", "xy", 500, 3, "eta", fine, mu(450), no_load, keeps),
        // Another fluid brings its own constants; the first fluid brings them again when it comes back.
        ask("ideal", "tv", 400, 2, "eta", fine, 1e-5, load, solves),
        ask("ideal", "tv", 400, 2, "lambda", fine, 0.02, no_load, keeps),
        ask("linear", "tv", 400, 2, "eta", fine, mu(400), load, solves),
    });
}

TEST_F(request_sequence, transport_models_that_do_not_go_together_leave_those_of_the_fluid_before) {
    const std::string mismatch =
        "Viscosity and thermal conductivity model do not match.  In init_trasport_properties. STOP";
    const auto mu = [](double t) { return 1e-5 * t / 300; };
    run({
        ask("linear", "tv", 400, 2, "eta", fine, mu(400), load, solves),
        ask("mixed", "tv", 450, 2, "t", mismatch, failed, load, keeps),
        // The key of the state before is still there. T_ref and the viscosity model are new, and the model has no
        // coefficients.
        ask("mixed", "tv", 400, 2, "t", fine, 400.0 / 300 * 81, no_load, keeps),
        ask("mixed", "tv", 400, 2, "eta", fine, nan, no_load, keeps),
        inform("mixed", "m_mol", fine, 0.02, no_load),
        ask("linear", "tv", 400, 2, "eta", fine, mu(400), load, solves),
        inform("mixed", "m_mol", mismatch, 0, load),
        inform("ideal", "m_mol", mismatch, 0, load),
        // The fluid is half loaded: its transport models are read but not initialised, and the reference values are
        // those of the fluid before.
        ask("ideal", "tv", 400, 2, "eta", fine, 1e-5, no_load, keeps),
        ask("ideal", "tv", 400, 2, "lambda", fine, 0.02, no_load, keeps),
    });
}

TEST_F(request_sequence, a_failed_load_repeated_goes_on_with_what_is_in_memory) {
    run({
        ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves),
        ask("missing", "tv", 500, 3, "t", failed_open(ENOENT), failed, load, keeps),
        // The key of the state before and the fluid before are still there.
        ask("missing", "tv", 400, 2, "p", fine, 8314.0 / 28 * 400 / 2, no_load, keeps),
        ask("missing", "tv", 500, 3, "t", fine, 500, no_load, solves),
        ask("missing", "tv", 500, 3, "p", fine, 8314.0 / 28 * 500 / 3, no_load, keeps),
        inform("missing", "m_mol", fine, 28.0 / 1000, no_load),
        ask("ideal", "tv", 500, 3, "t", fine, 500, load, solves),
        ask("missing", "tv", 500, 3, "t", failed_open(ENOENT), failed, load, keeps),
        ask("absent", "tv", 500, 3, "t", failed_open(ENOENT), failed, load, keeps),
        ask("absent", "tv", 500, 3, "t", fine, 500, no_load, keeps),
    });
}

TEST_F(request_sequence, a_failed_first_load_repeated_finds_no_fluid) {
    run({
        ask("missing", "tv", 500, 3, "t", failed_open(ENOENT), failed, load, keeps),
        ask("missing", "tv", 500, 3, "t", fine, nan, no_load, solves),
        ask("missing", "xx", 500, 3, "t", unknown_pair("xx"), failed, no_load, keeps),
        inform("missing", "m_mol", fine, 0, no_load),
        ask("ideal", "tv", 500, 3, "t", fine, 500, load, solves),
    });
}

TEST_F(request_sequence, a_long_name_is_loaded_and_solved_at_every_request) {
    run({
        ask("clausius_two", "tv", 400, 2, "t", fine, 400, load, solves),
        ask("clausius_two", "tv", 400, 2, "t", fine, 400, load, solves),
        ask("clausius_two", "tv", 400, 2, "v", fine, 2, load, solves),
        inform("clausius_two", "m_mol", fine, 0.02, load),
        ask("clausius_two  ", "tv", 400, 2, "t", fine, 400, load, solves),
        // The first eight characters of the long name are another name, which counts as loaded.
        ask("clausius", "tv", 400, 2, "t", fine, 400, no_load, keeps),
        inform("clausius", "m_mol", fine, 0.02, no_load),
        // A failed request of a long name does not become a success when it is repeated.
        ask("clausius_two", "xy", 400, 2, "t", unknown_pair("xy"), failed, load, keeps),
        ask("clausius_two", "xy", 400, 2, "t", unknown_pair("xy"), failed, load, keeps),
        ask("missing_name", "tv", 400, 2, "t", failed_open(ENOENT), failed, load, keeps),
        ask("missing_name", "tv", 400, 2, "t", failed_open(ENOENT), failed, load, keeps),
        ask("missing_", "tv", 400, 2, "t", fine, 400, no_load, solves),
    });
}

TEST_F(request_sequence, a_blank_name_loads_nothing_at_first_and_fails_later) {
    run({
        ask("", "tv", 400, 2, "t", fine, nan, no_load, solves),
        ask("   ", "tv", 400, 2, "t", fine, nan, no_load, keeps),
        inform("", "m_mol", fine, 0, no_load),
        ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves),
        // Now the blank name is a new one, and there is no file ".osd".
        ask("", "tv", 400, 2, "t", failed_open(ENOENT), failed, load, keeps),
        ask("", "tv", 400, 2, "t", fine, 400, no_load, keeps),
        ask("", "tv", 500, 2, "t", fine, 500, no_load, solves),
    });
}

TEST_F(request_sequence, information_and_requests_share_the_fluid_and_not_the_state) {
    // The Z gas has T_ref = Z Tc = 270 K, the ideal gas 300 K.
    run({
        ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves),
        inform("ideal", "m_mol", fine, 0.028, no_load),
        ask("ideal", "tv", 400, 2, "t", fine, 400, no_load, keeps),
        inform("zgas", "m_mol", fine, 0.02, load),
        inform("zgas", "T_CRIT", fine, 300, no_load),
        inform("zgas", "v_crit", unknown_constant("v_crit"), failed, no_load),
        // The key of the state is still that of the fluid before, so its reduced state is taken over.
        ask("zgas", "tv", 400, 2, "t", fine, 400.0 / 300 * 270, no_load, keeps),
        ask("zgas", "tv", 401, 2, "t", fine, 401, no_load, solves),
        inform("ideal", "m_mol", fine, 0.028, load),
        ask("zgas", "tv", 401, 2, "t", fine, 401, load, solves),
        inform("missing", "m_mol", failed_open(ENOENT), 0, load),
        // The fluid is not loaded again, and the old message does not matter for its constants.
        inform("missing", "m_mol", fine, 0.02, no_load),
        ask("missing", "tv", 401, 2, "t", fine, 401, no_load, keeps),
    });
}

TEST_F(request_sequence, an_old_message_makes_the_load_of_an_information_query_fail) {
    run({
        ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves),
        ask("ideal", "xy", 400, 2, "t", unknown_pair("xy"), failed, no_load, keeps),
        inform("ideal", "m_mol", fine, 0.028, no_load),
        inform("clausius", "m_mol", unknown_pair("xy"), 0, load),
        inform("clausius", "m_mol", fine, 0.02, no_load),
        inform("zgas", "m_mol", unknown_pair("xy"), 0, load),
        // A request resets the message.
        ask("zgas", "tv", 400, 2, "t", fine, 400, no_load, solves),
        inform("clausius", "m_mol", fine, 0.02, load),
        // A refused quality and an unknown output do not write the shared text.
        ask("clausius", "pq", 1, 0.5, "h", quality_text, failed, no_load, keeps),
        inform("ideal", "m_mol", fine, 0.028, load),
        ask("ideal", "tv", 400, 2, "cp", unknown_output("cp"), failed, no_load, solves),
        inform("clausius", "m_mol", fine, 0.02, load),
        inform("clausius", "nothing", unknown_constant("nothing"), failed, no_load),
        inform("ideal", "m_mol", fine, 0.028, load),
    });
}

TEST_F(request_sequence, a_half_loaded_fluid_has_a_model_and_no_reference_state) {
    const auto offsets = [] { return std::pair(gas.e_0, gas.s_0); };
    run({ask("zgas", "tv", 400, 2, "t", fine, 400, load, solves)});
    const auto whole = offsets();
    run({ask("ideal", "xy", 400, 2, "t", unknown_pair("xy"), failed, load, keeps)});
    const auto before = offsets();
    ASSERT_NE(before, whole);
    run({inform("zgas", "m_mol", unknown_pair("xy"), 0, load)});
    EXPECT_EQ(thermodynamics::gas_type, 8);
    EXPECT_EQ(gas.Zc, 0.9) << "the model was initialised";
    EXPECT_EQ(offsets(), before);
    run({
        ask("zgas", "tv", 400, 2, "t", fine, 400, no_load, solves),
        ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves),
        ask("zgas", "tv", 400, 2, "t", fine, 400, load, solves),
    });
    EXPECT_EQ(offsets(), whole);
}

TEST_F(request_sequence, a_file_that_cannot_be_read_initialises_nothing) {
    run({ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves)});
    const auto before = gas;
    run({ask("broken", "tv", 400, 2, "t", broken_message, failed, load, keeps)});
    EXPECT_EQ(support::shared_text(), broken_message);
    // The records before the broken one are read, those behind it are not, and nothing is derived from either.
    EXPECT_EQ(gas.MM, 56);
    EXPECT_EQ(gas.R, 8314.0 / 56);
    EXPECT_EQ(gas.T_ref, 600);
    EXPECT_EQ(gas.P_ref, before.P_ref);
    EXPECT_EQ(gas.v_ref, before.v_ref);
    EXPECT_EQ(gas.e_0, before.e_0);
    EXPECT_EQ(gas.Z_ref, before.Z_ref);
    run({
        // The kept state is that of the fluid before, and its temperature is scaled by the new T_ref.
        ask("broken", "tv", 400, 2, "t", fine, 800, no_load, keeps),
        inform("broken", "m_mol", fine, 0.056, no_load),
        ask("broken", "tv", 500, 2, "t", fine, 500, no_load, solves),
        ask("empty", "tv", 500, 2, "t",
            "Ostrel error: file empty.osd, record 1: expected a heading, found the end of the file.", failed, load,
            keeps),
        ask("empty", "tv", 500, 2, "v", fine, 2, no_load, keeps),
        inform("broken", "m_mol", "Ostrel error: file broken.osd, record 8: expected P_ref (a real), found \"one\".", 0,
               load),
        inform("ideal", "m_mol", broken_message, 0, load),
        ask("ideal", "tv", 400, 2, "t", fine, 400, no_load, solves),
    });
}

TEST_F(request_sequence, direct_calls_are_not_seen_by_the_cache) {
    run({ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves)});
    {
        const support::directory_host host(fluids_.path() + "/");
        read_init_fluiddata("zgas", 4);
        EXPECT_EQ(host.asked(), 1);
    }
    run({
        ask("ideal", "tv", 400, 2, "t", fine, 400.0 / 300 * 270, no_load, keeps),
        ask("ideal", "tv", 401, 2, "p", fine, 0.9 * 8314.0 / 20 * 401 / 2, no_load, solves),
        ask("zgas", "tv", 401, 2, "t", fine, 401, load, solves),
    });
}

TEST_F(request_sequence, another_host_does_not_make_a_fluid_new) {
    run({ask("ideal", "tv", 400, 2, "t", fine, 400, load, solves)});
    const support::temporary_folder elsewhere;
    elsewhere.write("ideal.osd", support::vapor_file());
    const support::directory_host host(elsewhere.path() + "/");
    EXPECT_EQ(support::ask("ideal", "tv", 400, 2, "p").value, support::ask("ideal", "tv", 400, 2, "p").value);
    EXPECT_EQ(host.asked(), 0);
    EXPECT_EQ(gas.MM, 28);
}

// Fluids of different models in one process.

struct fluid_switches : support::frame_test {
    static std::vector<double> all_outputs(const std::string &fluid) {
        std::vector<double> values;
        for (const auto &output : support::output_cases) {
            const auto answer = support::ask(fluid, "td", 431.7, 1.3, output.name);
            EXPECT_EQ(answer.text, "No errors") << fluid << ", " << output.name;
            values.push_back(answer.value);
        }
        for (const char *name : {"m_mol", "t_crit", "p_crit"})
            values.push_back(support::ask_info(fluid, name).value);
        return values;
    }
};

TEST_F(fluid_switches, leave_no_trace_in_the_numbers) {
    const std::vector<std::string> &fluids = support::sample_fluids;
    ASSERT_GE(fluids.size(), 6U);
    std::vector<std::vector<double>> alone;
    for (const std::string &fluid : fluids) {
        support::fresh_frame();
        alone.push_back(all_outputs(fluid));
    }
    support::fresh_frame();
    // Every fluid follows every other one.
    for (std::size_t first = 0; first < fluids.size(); ++first)
        for (std::size_t second = 0; second < fluids.size(); ++second) {
            SCOPED_TRACE(fluids[first] + ", " + fluids[second]);
            EXPECT_EQ(all_outputs(fluids[first]), alone[first]);
            EXPECT_EQ(all_outputs(fluids[second]), alone[second]);
        }
}

TEST_F(fluid_switches, with_failures_between_them_leave_no_trace_either) {
    const std::vector<std::string> &fluids = support::sample_fluids;
    for (const std::string &fluid : fluids) {
        support::fresh_frame();
        const std::vector<double> alone = all_outputs(fluid);
        for (const std::string &other : fluids) {
            SCOPED_TRACE(fluid + ", " + other);
            support::ask(other, "??", 1, 2, "t");
            support::ask_info("missing", "m_mol");
            support::ask_info(fluid == other ? "absent" : fluid, "m_mol"); // the message before makes it half loaded
            support::ask(other, "pq", 1, 0.5, "h");
            support::ask("missing", "tv", 1, 2, "t");
            EXPECT_EQ(all_outputs(fluid), alone);
        }
    }
}

} // namespace
