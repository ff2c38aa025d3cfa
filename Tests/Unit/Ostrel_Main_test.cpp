// SPDX-License-Identifier: MIT
#include "Tests/Support/frame.h"
#include "fluid_loading.h"

#include <cmath>
#include <gmock/gmock.h>

namespace {

using gas_properties::gas;
using support::ask;
using support::ask_info;
using support::failed_open;
using support::fluid_folder;
using support::shared_text;
using support::unknown_constant;
using support::unknown_output;
using support::unknown_pair;
using testing::StartsWith;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

/// The state of the module before the first call.
struct start {
    std::string os_fluid{ostrel::os_fluid.padded()};
    std::string os_inputspec{ostrel::os_inputspec.padded()};
    double os_input1 = ostrel::os_input1;
    double os_input2 = ostrel::os_input2;
    double T = ostrel::T;
    double v = ostrel::v;
    std::string errmsg{ideal_specific_heat::errmsg.padded()};
};
const start at_start;

/// What the kept state belongs to.
void expect_key(const std::string &fluid, const std::string &code, double one, double two) {
    EXPECT_EQ(ostrel::os_fluid.trimmed(), fluid);
    EXPECT_EQ(std::string(ostrel::os_inputspec.padded()), code);
    EXPECT_EQ(ostrel::os_input1, one);
    EXPECT_EQ(ostrel::os_input2, two);
}

struct request_frame : support::frame_test {};
struct fluid_loading : support::frame_test {};
struct fluid_catalogue : support::frame_test {};

// Folding.

TEST_F(request_frame, module_state_starts_at_its_declared_values) {
    EXPECT_EQ(at_start.os_fluid, "        ");
    EXPECT_EQ(at_start.os_inputspec, "  ");
    EXPECT_EQ(at_start.os_input1, -8888.8);
    EXPECT_EQ(at_start.os_input2, -8888.8);
    EXPECT_EQ(at_start.T, 0);
    EXPECT_EQ(at_start.v, 0);
    EXPECT_EQ(at_start.errmsg, "No errors" + std::string(247, ' '));
}

TEST_F(request_frame, tolower_os_folds_the_first_eight_characters) {
    const struct {
        std::string text, folded;
    } cases[] = {
        {"PD", "pd      "},
        {"D2P_DTDV", "d2p_dtdv"},
        {"ABCDEFGHIJ", "abcdefgh"},
        {"", "        "},
        {"     ", "        "},
        {" Tv", " tv     "},
        {"T  v   ", "t  v    "},
        {"AZaz@[`{", "azaz@[`{"},
        {"\xC4\xD6\xDC\xC3\x9F", "\xC4\xD6\xDC\xC3\x9F   "},
        {std::string("A\0B", 3), std::string("a\0b     ", 8)},
        {"\tT", "\tt      "},
        {"12345678           Z", "12345678"},
        {std::string(10000, 'Q'), "qqqqqqqq"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.substr(0, 40));
        EXPECT_EQ(std::string(ostrel::tolower_os(c.text).padded()), c.folded);
    }
}

// Input pairs.

TEST_F(request_frame, knows_the_input_pairs_in_either_case_and_with_trailing_blanks) {
    double t = 500;
    for (const std::string code : support::pair_codes) {
        const std::string spellings[] = {code,
                                         support::upper(code),
                                         {support::upper(code)[0], code[1]},
                                         {code[0], support::upper(code)[1]},
                                         code + "   ",
                                         code + std::string(300, ' '),
                                         support::upper(code) + "      junk"};
        for (const std::string &spelling : spellings) {
            SCOPED_TRACE(spelling);
            // Each request has another t, so that its state is not the kept one.
            t += 0.5;
            // From its default first values "hs" finds few states of a real gas.
            const char *const fluid = code == "hs" ? "n2-ig" : "toluene";
            const auto [one, two] = support::inputs_at(fluid, code, t, 2.0);
            const auto answer = ask(fluid, spelling, one, two, "t");
            EXPECT_EQ(answer.text, "No errors");
            EXPECT_NEAR(answer.value, t, 2e-5 * t);
        }
    }
}

TEST_F(request_frame, refuses_other_codes_and_quotes_them_as_they_came) {
    const std::string codes[] = {"",
                                 " ",
                                 " tv",
                                 "  tv",
                                 "t",
                                 "v",
                                 "vt",
                                 "dt",
                                 "tp",
                                 "up",
                                 "tvx",
                                 "tv x",
                                 "t v",
                                 "tt",
                                 "TVx   ",
                                 "tv    x",
                                 "\ttv",
                                 "tv\t",
                                 std::string("tv\0", 3),
                                 "\xC3\xA9v",
                                 "ttvv",
                                 "tv, td",
                                 "xy    "};
    for (const std::string &code : codes) {
        SCOPED_TRACE(code);
        support::fresh_frame();
        const auto answer = ask("toluene", code, 500, 1.0, "t");
        EXPECT_EQ(answer.text, unknown_pair(code));
        EXPECT_EQ(answer.value, -8888.8);
        EXPECT_EQ(shared_text(), unknown_pair(code));
    }
}

TEST_F(request_frame, a_pair_is_reduced_by_the_reference_values_of_the_fluid) {
    const fluid_folder fluids;
    fluids.add("fluid", support::vapor_file());
    const double t = 371.3, v = 0.217;
    ask("fluid", "tv", t, v, "t");
    EXPECT_EQ(ostrel::T, t / gas.T_ref);
    EXPECT_EQ(ostrel::v, v / gas.v_ref);
    EXPECT_NE(gas.T_ref, gas.Tc);
    ask("fluid", "td", t, 1 / v, "t");
    EXPECT_EQ(ostrel::T, t / gas.T_ref);
    EXPECT_EQ(ostrel::v, (1 / (1 / v)) / gas.v_ref);
}

TEST_F(request_frame, keeps_the_first_two_characters_of_a_code_as_they_came) {
    ask("toluene", "Td", 500, 2, "t");
    expect_key("toluene", "Td", 500, 2);
    ask("toluene", "XYZ", 3, 4, "t");
    expect_key("toluene", "XY", 3, 4);
    EXPECT_EQ(std::string(ostrel::os_fluid.padded()), "toluene ");
}

// Outputs.

struct output_value {
    const char *name;
    double value;
};

TEST_F(request_frame, serves_the_outputs_scaled_back_from_the_core) {
    const fluid_folder fluids;
    fluids.add("fluid", support::vapor_section + "7\nT\n3\n1\n2.5\n0.01\n1.0\n" + support::constant_transport);
    const double t = 371.3, v = 0.0117;
    ASSERT_EQ(ask("fluid", "tv", t, v, "t").text, "No errors");
    const double T_r = t / gas.T_ref, v_r = v / gas.v_ref;
    std::array<double, 2> dP{}, dcv{};
    std::array<double, 4> d2P{};
    thermodynamics::dP__dT_dv(T_r, v_r, dP);
    thermodynamics::d2P__dT2_dv2(T_r, v_r, d2P);
    thermodynamics::dcv__dT_dv(T_r, v_r, dcv);
    const double T_ref = gas.T_ref, P_ref = gas.P_ref, v_ref = gas.v_ref, R = gas.R;
    const output_value cases[] = {
        {"t", t},
        {"v", v},
        {"d", 1 / v},
        {"p", thermodynamics::P__T_v(T_r, v_r) * P_ref},
        {"h", thermodynamics::h__T_v(T_r, v_r) * P_ref * v_ref},
        {"s", thermodynamics::s__T_v(T_r, v_r) * R},
        {"u", thermodynamics::e__T_v(T_r, v_r) * P_ref * v_ref},
        {"cv", thermodynamics::cv__T_v(T_r, v_r) * R},
        {"dp_dt", dP[0] * P_ref / T_ref},
        {"dp_dv", dP[1] * P_ref / v_ref},
        {"d2p_dt2", d2P[0] * P_ref / (T_ref * T_ref)},
        {"d2p_dv2", d2P[3] * P_ref / (v_ref * v_ref)},
        {"d2p_dtdv", d2P[1] * P_ref / (T_ref * v_ref)},
        {"dcv_dt", dcv[0] * R / T_ref},
    };
    for (const auto &c : cases) {
        for (const std::string &name : {std::string(c.name), support::upper(c.name), c.name + std::string(9, ' ')}) {
            SCOPED_TRACE(name);
            const auto answer = ask("fluid", "tv", t, v, name);
            EXPECT_EQ(answer.text, "No errors");
            EXPECT_DOUBLE_EQ(answer.value, c.value);
            EXPECT_NE(answer.value, 0);
        }
    }
}

TEST_F(request_frame, gives_the_ideal_gas_in_SI_units) {
    const fluid_folder fluids;
    fluids.add("ideal", support::reference_section + "1\nF\n3\n1\n700.0\n0.8\n1.0\n" + support::constant_transport);
    const double R = 8314.0 / 28.0, t = 412.5, v = 1.75, t_0 = 300.0, v_0 = R * t_0 / 101325.0;
    const auto cv = [](double T) { return 700.0 + 0.8 * T; };
    const double u = 700.0 * (t - t_0) + 0.4 * (t * t - t_0 * t_0);
    const output_value cases[] = {
        {"t", t},
        {"v", v},
        {"d", 1 / v},
        {"p", R * t / v},
        {"u", u},
        // At the reference state e is zero and h is P v.
        {"h", u + R * t},
        {"s", 700.0 * std::log(t / t_0) + 0.8 * (t - t_0) + R * std::log(v / v_0)},
        {"cv", cv(t)},
        {"dp_dt", R / v},
        {"dp_dv", -R * t / (v * v)},
        {"d2p_dt2", 0},
        {"d2p_dv2", 2 * R * t / (v * v * v)},
        {"d2p_dtdv", -R / (v * v)},
        {"dcv_dt", 0.8},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const auto answer = ask("ideal", "td", t, 1 / v, c.name);
        EXPECT_EQ(answer.text, "No errors");
        EXPECT_NEAR(answer.value, c.value, 1e-12 * std::abs(c.value));
    }
}

TEST_F(request_frame, knows_the_sixteen_outputs) {
    for (const auto &output : support::output_cases) {
        SCOPED_TRACE(output.name);
        const auto answer = ask("toluene", "td", 500, 2.0, output.name);
        EXPECT_EQ(answer.text, "No errors");
        EXPECT_TRUE(std::isfinite(answer.value) && answer.value != -8888.8) << answer.value;
        EXPECT_EQ(ask("toluene", "td", 500, 2.0, support::upper(output.name) + "  ").value, answer.value);
    }
}

TEST_F(request_frame, only_eight_characters_of_an_output_name_count) {
    const double value = ask("toluene", "td", 500, 2.0, "d2p_dtdv").value;
    for (const char *name : {"D2P_DTDV", "D2P_DTDVXYZ", "d2p_dtdv junk"}) {
        const auto answer = ask("toluene", "td", 500, 2.0, name);
        EXPECT_EQ(answer.text, "No errors") << name;
        EXPECT_EQ(answer.value, value) << name;
    }
    EXPECT_EQ(ask("toluene", "td", 500, 2.0, "t       junk").value, ask("toluene", "td", 500, 2.0, "t").value);
}

TEST_F(request_frame, refuses_other_outputs_and_quotes_them_as_they_came) {
    const std::string names[] = {"",         " ",   " t",     "tt",      "cp",     "c",       "gamma",
                                 "q",        "t x", "dp_dtx", "D2P_DTD", "foo   ", "Foo Bar", std::string("t\0", 2),
                                 "\xCE\xB7", "et",  "etas",   "lambda2", "mu"};
    for (const std::string &name : names) {
        SCOPED_TRACE(name);
        const auto answer = ask("toluene", "td", 500, 2.0, name);
        EXPECT_EQ(answer.text, unknown_output(name));
        EXPECT_EQ(answer.value, -8888.8);
        EXPECT_EQ(shared_text(), "No errors");
    }
}

// Error texts and their fields.

TEST_F(request_frame, an_unknown_code_passes_through_the_shared_text_and_loses_its_end) {
    for (const std::size_t length :
         {std::size_t{199}, std::size_t{200}, std::size_t{201}, std::size_t{300}, std::size_t{10000}}) {
        const std::string code(length, 'x');
        SCOPED_TRACE(length);
        EXPECT_EQ(ask("toluene", code, 500, 2.0, "t", 11000).text, unknown_pair(code).substr(0, 256));
    }
    const std::string padded = "x" + std::string(190, ' ') + "y" + std::string(300, ' ');
    EXPECT_EQ(ask("toluene", padded, 500, 2.0, "t", 400).text,
              support::without_padding(unknown_pair(padded).substr(0, 256)));
}

TEST_F(request_frame, an_unknown_output_goes_straight_to_the_callers_field) {
    const std::string name = "x" + std::string(9998, ' ') + "y";
    EXPECT_EQ(ask("toluene", "td", 500, 2.0, name, 10100).text, unknown_output(name));
    EXPECT_EQ(ask("toluene", "td", 500, 2.0, name, 300).text,
              support::without_padding(unknown_output(name).substr(0, 300)));
}

TEST_F(request_frame, texts_are_truncated_to_the_callers_field_or_padded) {
    for (const std::size_t length : {0U, 1U, 8U, 9U, 10U, 40U, 256U, 257U, 1000U}) {
        SCOPED_TRACE(length);
        std::string field(length, '#');
        const double one = 500, two = 2;
        const auto request = [&](const std::string &output) {
            ostrel_prop("toluene", "td", &one, &two, output.data(), field.data(), 7, 2, output.size(), length);
            return field;
        };
        const auto expected = [&](std::string text) {
            text.resize(length, ' ');
            return text;
        };
        EXPECT_EQ(request("t"), expected("No errors"));
        EXPECT_EQ(request("nothing"), expected(unknown_output("nothing")));
        ostrel_prop("toluene", "??", &one, &two, "t", field.data(), 7, 2, 1, length);
        EXPECT_EQ(field, expected(unknown_pair("??")));
    }
}

TEST_F(request_frame, the_shared_text_is_reset_by_every_request) {
    ask("toluene", "xx", 500, 2.0, "t");
    EXPECT_EQ(shared_text(), unknown_pair("xx"));
    const auto answer = ask("toluene", "td", 500, 2.0, "t");
    EXPECT_EQ(answer.text, "No errors");
    EXPECT_EQ(shared_text(), "No errors");
}

// Quality.

/// "pq" and "tq" in any spelling.
bool known_quality_code(std::string_view code) {
    const auto folded = ostrel::tolower_os(code);
    return folded == ostrel::tolower_os("pq") || folded == ostrel::tolower_os("tq");
}
/// A pressure or temperature at which toluene has two phases.
double saturated_input(std::string_view code) {
    return code[0] == 'p' || code[0] == 'P' ? 1e6 : 500.0;
}

TEST_F(request_frame, a_quality_other_than_one_serves_t_p_v_and_d_only) {
    for (const char *code : {"pq", "tq", "PQ", "tQ", "Tq", "xq", "qq", "xQ", "pq   ", " q", "pqr"})
        for (const auto &output : support::output_cases)
            for (const std::string &name :
                 {std::string(output.name), support::upper(output.name), output.name + std::string("  ")}) {
                SCOPED_TRACE(std::string(code) + ", " + name);
                const bool known = known_quality_code(code);
                const std::string served = known ? "No errors" : unknown_pair(code);
                const auto answer = ask("toluene", code, saturated_input(code), 0.5, name);
                EXPECT_EQ(answer.text, output.any_quality ? served : support::quality_text);
                EXPECT_EQ(answer.value == -8888.8, !(known && output.any_quality));
                EXPECT_EQ(shared_text(), output.any_quality ? served : "No errors");
                ostrel::os_input1 = 0;
            }
    for (const char *name : {"", "pp", "T2", " t", "q"}) {
        EXPECT_EQ(ask("toluene", "pq", 500, 0.5, name).text, support::quality_text) << name;
        ostrel::os_input1 = 0;
    }
}

TEST_F(request_frame, a_quality_of_one_within_a_millionth_serves_every_output) {
    const struct {
        double quality;
        bool restricted;
    } cases[] = {
        {1, false},        {1.0000005, false}, {0.9999995, false},
        {1.000001, false}, {0.999999, true},   {std::nextafter(0.999999, 1.0), false},
        {1.0000011, true}, {0.9999989, true},  {1.5, true},
        {0, true},         {-1, true},         {-0.0, true},
        {inf, true},       {-inf, true},       {1e-320, true},
        {1.7e308, true},   {nan, false},       {-nan, false},
    };
    for (const auto &c : cases)
        for (const char *code : {"pq", "tq", "xq"}) {
            SCOPED_TRACE(std::string(code) + ", " + std::to_string(c.quality));
            ostrel::os_input1 = 0;
            EXPECT_EQ(ask("toluene", code, saturated_input(code), c.quality, "h").text,
                      c.restricted               ? support::quality_text
                      : known_quality_code(code) ? "No errors"
                                                 : unknown_pair(code));
        }
}

TEST_F(request_frame, a_mixture_has_the_volume_between_the_phases_and_the_equations_pressure_there) {
    for (const char *code : {"pq", "tq"}) {
        SCOPED_TRACE(code);
        const double one = saturated_input(code);
        const double t = ask("toluene", code, one, 0.0, "t").value;
        const double liquid = ask("toluene", code, one, 0.0, "v").value;
        const double vapor = ask("toluene", code, one, 1.0, "v").value;
        EXPECT_GT(vapor, 10 * liquid);
        const double middle = ask("toluene", code, one, 0.5, "v").value;
        EXPECT_DOUBLE_EQ(middle, liquid + 0.5 * (vapor - liquid));
        const double p = ask("toluene", code, one, 0.5, "P").value;
        EXPECT_NEAR(p, ask("toluene", "tv", t, middle, "p").value, 1e-9 * std::abs(p));
        // Beyond the two phases the straight line between their volumes continues.
        EXPECT_DOUBLE_EQ(ask("toluene", code, one, 2.0, "v").value, liquid + 2.0 * (vapor - liquid));
    }
}

TEST_F(request_frame, only_a_q_in_second_place_is_a_quality) {
    for (const char *code : {"qp", "q", "txq", "t q", "q t"})
        EXPECT_EQ(ask("toluene", code, 500, 0.5, "h").text, unknown_pair(code));
    EXPECT_EQ(ask("toluene", "td", 500, 0.5, "h").text, "No errors");
}

// The initial state, and state without a fluid.

TEST_F(request_frame, a_blank_fluid_is_the_one_in_memory) {
    // No fluid has been loaded. T_ref is 0, so that the reduced temperature is infinite.
    const support::directory_host host("/nowhere/");
    for (const char *fluid : {"", "   ", "                    "}) {
        SCOPED_TRACE(fluid);
        const auto answer = ask(fluid, "tv", 500, 1.0, "t");
        EXPECT_EQ(answer.text, "No errors");
        EXPECT_TRUE(std::isnan(answer.value));
        EXPECT_EQ(ask(fluid, "tv", 500, 1.0, "s").text, "No errors");
        EXPECT_EQ(ask(fluid, "tv", 500, 1.0, "cp").text, unknown_output("cp"));
        EXPECT_EQ(ask(fluid, "xx", 500, 1.0, "p").text, unknown_pair("xx"));
    }
    EXPECT_EQ(ostrel::T, inf);
    EXPECT_EQ(host.asked(), 0);
}

TEST_F(request_frame, the_initial_key_is_served_from_the_initial_state) {
    ostrel::T = 3;
    gas.T_ref = 100;
    const auto answer = ask("", "", -8888.8, -8888.8, "t");
    EXPECT_EQ(answer.text, "No errors");
    EXPECT_EQ(answer.value, 300);
    EXPECT_EQ(ask("", "", -8888.8, -8888.9, "t").text, unknown_pair(""));
}

// get_tv.

struct found {
    double T = -1;
    double v = -2;
};
found solved(std::string_view code, double one, double two) {
    found at;
    get_tv(code.data(), &one, &two, &at.T, &at.v, code.size());
    return at;
}

TEST_F(request_frame, get_tv_leaves_module_state_alone) {
    ask("toluene", "td", 500, 2.0, "t");
    const double T_kept = ostrel::T, v_kept = ostrel::v;
    const double t = 600, v = 0.25;
    const found at = solved("TV ", t, v);
    EXPECT_EQ(at.T, t / gas.T_ref);
    EXPECT_EQ(at.v, v / gas.v_ref);
    EXPECT_EQ(ostrel::T, T_kept);
    EXPECT_EQ(ostrel::v, v_kept);
    expect_key("toluene", "td", 500, 2.0);
    EXPECT_DOUBLE_EQ(ask("toluene", "td", 500, 2.0, "t").value, 500);
}

TEST_F(request_frame, get_tv_reports_in_the_shared_text_only_and_does_not_reset_it) {
    ask("toluene", "td", 500, 2.0, "t");
    const double one = 600, two = 0.25;
    const found nothing = solved("xyz ", one, two);
    EXPECT_EQ(shared_text(), unknown_pair("xyz "));
    EXPECT_EQ(nothing.T, -1);
    EXPECT_EQ(nothing.v, -2);
    const found at = solved("td", one, two);
    EXPECT_EQ(shared_text(), unknown_pair("xyz "));
    EXPECT_EQ(at.T, one / gas.T_ref);
    EXPECT_EQ(at.v, (1 / two) / gas.v_ref);
}

TEST_F(request_frame, get_tv_loads_nothing) {
    const support::directory_host host("/nowhere/");
    const found at = solved("tv", 600, 0.25);
    EXPECT_EQ(at.T, inf);
    EXPECT_EQ(at.v, inf);
    EXPECT_EQ(host.asked(), 0);
    EXPECT_EQ(shared_text(), "No errors");
}

TEST_F(request_frame, get_tv_knows_no_quality_restriction) {
    solved("xq", 600, 0.5);
    EXPECT_EQ(shared_text(), unknown_pair("xq"));
}

TEST_F(request_frame, get_tv_gives_no_volume_without_saturation) {
    ask("toluene", "td", 500, 2.0, "t");
    const found at_p = solved("pq", 1e9, 0.5);
    EXPECT_EQ(shared_text(), "Saturation pressure higher than critical in saturation_P.");
    EXPECT_EQ(at_p.T, -1);
    EXPECT_EQ(at_p.v, -2);
    const found at_t = solved("tq", 1e4, 0.5);
    EXPECT_EQ(shared_text(), "Saturation temperature higher than critical in saturation_T.");
    EXPECT_EQ(at_t.T, 1e4 / gas.T_ref);
    EXPECT_EQ(at_t.v, -2);
}

// Loading from files.

TEST_F(fluid_loading, asks_the_host_for_the_directory_by_the_products_name) {
    const support::directory_host host("/nowhere/");
    ask("toluene", "td", 500, 2.0, "t");
    EXPECT_EQ(host.key(), "Ostrel");
    EXPECT_EQ(host.asked(), 1);
}

TEST_F(fluid_loading, reads_all_sections_and_initialises) {
    const fluid_folder fluids;
    fluids.add("fluid", support::vapor_section + "8\n0.9\n" + support::constant_heat + "5\n1e-5 273 110\n4\n0.7\n");
    EXPECT_EQ(ask("fluid", "td", 500, 2.0, "t").text, "No errors");
    EXPECT_EQ(gas.name.trimmed(), "model fluid");
    EXPECT_EQ(thermodynamics::gas_type, 8);
    EXPECT_EQ(ideal_Z_gas::active.Z_const, 0.9);
    EXPECT_DOUBLE_EQ(ideal_specific_heat::active.cv_0, 2.5 * gas.R);
    EXPECT_EQ(transport_properties::active.Tchar_s, 110);
    EXPECT_EQ(transport_properties::active.Pr, 0.7);
    EXPECT_EQ(thermodynamics::Tmin, 1e-6);
    EXPECT_EQ(gas.Zc, 0.9);
    EXPECT_DOUBLE_EQ(gas.T_ref, 0.9 * 300.0);
    EXPECT_NE(gas.e_0, 0);
    EXPECT_EQ(gas.mu_ref, transport_properties::sutherland_law_viscosity(300.0));
    EXPECT_DOUBLE_EQ(gas.kk_ref, gas.mu_ref * (2.5 + 0.9) * gas.R / 0.7);
}

/// The library as just loaded, but for the directory.
void fresh_frame_with(const fluid_folder &fluids) {
    support::fresh_frame();
    setenv("OSTREL_FLUIDS", fluids.path().c_str(), 1);
}

/// The text of a pair of transport models that do not go together.
const std::string mismatch =
    "Viscosity and thermal conductivity model do not match.  In init_trasport_properties. STOP";

TEST_F(fluid_loading, transport_models_that_do_not_go_together_fail_the_load) {
    const fluid_folder fluids;
    const std::string heat = support::constant_heat;
    fluids.add("good", support::vapor_section + "7\n" + heat + "3\n3\n");
    fluids.add("mixed", support::vapor_section + "8\n0.9\n" + heat + "3\n2\n");
    fluids.add("dense", support::reference_section + "1\n" + heat + "3\n3\n");
    fluids.add("dilute", support::reference_section + "1\n" + heat + "2\n2\n");
    const std::string not_a_vapor = "The gas reference fluid                  is not a vapor: ";
    const std::string place = " gas viscosity model is not applicable. In init_transport_properties.";
    const struct {
        const char *name;
        std::string text;
    } cases[] = {
        {"mixed", mismatch}, {"dense", not_a_vapor + "Dense" + place}, {"dilute", not_a_vapor + "Diluite" + place}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        fresh_frame_with(fluids);
        ASSERT_TRUE(ask("good", "td", 500, 2.0, "t").ok());
        const auto before = transport_properties::active;
        const double v_ref = gas.v_ref;
        const auto answer = ask(c.name, "td", 500, 2.0, "eta");
        EXPECT_EQ(answer.text, c.text);
        EXPECT_EQ(answer.value, -8888.8);
        EXPECT_EQ(shared_text(), c.text);
        // The thermodynamics is that of the new fluid, the transport constants are those of the old one.
        EXPECT_NE(gas.v_ref, v_ref);
        EXPECT_EQ(transport_properties::active.m_mole, before.m_mole);
        EXPECT_EQ(transport_properties::active.v_ref, before.v_ref);
        EXPECT_EQ(transport_properties::active.mu_ref, before.mu_ref);
        EXPECT_EQ(gas.mu_ref, before.mu_ref);
        // The name is kept, so that a repeated request goes on with both.
        EXPECT_TRUE(ask(c.name, "td", 500, 2.0, "t").ok());
        EXPECT_GT(ask(c.name, "td", 500, 2.0, "eta").value, 0);
        // An information query fails in the same way.
        ASSERT_TRUE(ask("good", "td", 500, 2.0, "t").ok());
        EXPECT_EQ(ask_info(c.name, "m_mol").text, c.text);
        EXPECT_TRUE(ask_info(c.name, "m_mol").ok());
    }
}

TEST_F(fluid_loading, a_thermodynamic_failure_leaves_the_transport_models_uninitialised) {
    const fluid_folder fluids;
    fluids.add("good", support::vapor_file());
    // The model and the transport models would both fail; the message is that of the model.
    fluids.add("bad", support::reference_section + "7\n" + support::constant_heat + "3\n2\n");
    fluids.add("heat", support::reference_section + "1\nT\n2\n2.5 0.1\n" + support::constant_transport);
    ASSERT_TRUE(ask("good", "td", 500, 2.0, "t").ok());
    EXPECT_EQ(gas.mu_ref, 1e-5);
    for (const char *name : {"bad", "heat"}) {
        SCOPED_TRACE(name);
        const auto answer = ask(name, "td", 500, 2.0, "t");
        EXPECT_THAT(answer.text, StartsWith("The gas reference fluid                  is not a vapor: "));
        EXPECT_NE(answer.text, mismatch);
        EXPECT_EQ(transport_properties::active.m_mole, 20);
        EXPECT_EQ(gas.MM, 28);
    }
    EXPECT_EQ(transport_properties::active.viscosity_model, 1) << "read all the same";
}

TEST_F(fluid_loading, viscosity_and_conductivity_at_the_critical_point_are_the_references) {
    const fluid_folder fluids;
    const std::string viscosities[] = {"1\n1.1e-5\n", "4\n", "5\n1e-5 273 110\n", "6\n1e-5 300\n"};
    int number = 0;
    const auto check = [&](const std::string &transport, const std::string &model) {
        const std::string fluid = "fluid" + std::to_string(++number);
        fluids.add(fluid, support::vapor_section + model + support::constant_heat + transport);
        SCOPED_TRACE(model + transport);
        ASSERT_TRUE(ask(fluid, "td", 500, 2.0, "t").ok());
        const auto eta = ask(fluid, "tv", gas.Tc, gas.vc, "eta"), lambda = ask(fluid, "tv", gas.Tc, gas.vc, "lambda");
        EXPECT_EQ(eta.text, "No errors");
        EXPECT_EQ(lambda.text, "No errors");
        EXPECT_GT(gas.mu_ref, 0);
        EXPECT_GT(gas.kk_ref, 0);
        EXPECT_NEAR(eta.value / gas.mu_ref, 1, 1e-14);
        EXPECT_NEAR(lambda.value / gas.kk_ref, 1, 1e-14);
        EXPECT_EQ(gas.mu_ref, transport_properties::active.mu_ref);
    };
    for (const std::string model : {"1\n", "2\n", "3\n", "4\n", "6\n", "7\n", "8\n0.9\n"}) {
        for (const std::string &viscosity : viscosities) {
            for (const char *conductivity : {"1\n0.02\n", "2\n", "3\n"})
                check(viscosity + conductivity, model);
            if (model == "1\n" || model == "8\n0.9\n")
                check(viscosity + "4\n0.7\n", model);
        }
        check("2\n2\n", model);
        check("3\n3\n", model);
    }
}

TEST_F(fluid_loading, trailing_blanks_of_a_name_do_not_count_and_leading_ones_do) {
    const fluid_folder fluids;
    fluids.add("fluid", support::vapor_file());
    fluids.add(" led", support::reference_file());
    EXPECT_EQ(ask("fluid        ", "td", 500, 2.0, "t").text, "No errors");
    EXPECT_EQ(ask("   fluid", "td", 500, 2.0, "t").text, failed_open(ENOENT));
    EXPECT_EQ(ask("led", "td", 500, 2.0, "t").text, failed_open(ENOENT));
    EXPECT_EQ(ask(" led  ", "td", 500, 2.0, "t").text, "No errors");
    EXPECT_EQ(gas.name.trimmed(), "reference fluid");
    EXPECT_EQ(std::string(ostrel::os_fluid.padded()), " led    ");
}

TEST_F(fluid_loading, the_case_of_a_name_counts) {
    const fluid_folder fluids;
    fluids.add("fluid", support::vapor_file());
    EXPECT_EQ(ask("FLUID", "td", 500, 2.0, "t").text, failed_open(ENOENT));
    EXPECT_EQ(ask("fluid", "td", 500, 2.0, "t").text, "No errors");
}

TEST_F(fluid_loading, a_long_name_is_kept_by_its_first_eight_characters_and_found_by_all) {
    const fluid_folder fluids;
    fluids.add("longfluidname", support::vapor_file());
    fluids.add("longflui", support::reference_file());
    EXPECT_EQ(ask("longfluidname", "td", 500, 2.0, "t").text, "No errors");
    EXPECT_EQ(std::string(ostrel::os_fluid.padded()), "longflui");
    EXPECT_EQ(gas.name.trimmed(), "model fluid");
}

TEST_F(fluid_loading, a_failed_open_says_the_systems_code) {
    const fluid_folder fluids;
    fluids.write("plain", "");
    const struct {
        std::string directory, name;
        int code;
    } cases[] = {
        {fluids.path() + "/", "missing", ENOENT},
        {fluids.path() + "/nowhere/", "fluid", ENOENT},
        {fluids.path() + "/plain/", "fluid", ENOTDIR},
        {fluids.path(), "fluid", ENOENT}, // without a separator, directory and name become one word
        {"", "fluid", ENOENT},
        {fluids.path() + "/", std::string(300, 'x'), ENAMETOOLONG},
    };
    for (const auto &c : cases) {
        support::fresh_frame();
        const support::directory_host host(c.directory);
        SCOPED_TRACE(c.directory + c.name);
        const auto answer = ask(c.name, "td", 500, 2.0, "t");
        EXPECT_EQ(answer.text, failed_open(c.code));
        EXPECT_EQ(answer.value, -8888.8);
    }
}

TEST_F(fluid_loading, without_a_separator_directory_and_name_are_joined) {
    const support::temporary_folder folder;
    folder.write("fluidswater.osd", support::vapor_file());
    const support::directory_host host(folder.path() + "/fluids");
    EXPECT_EQ(ask("water", "td", 500, 2.0, "t").text, "No errors");
}

TEST_F(fluid_loading, a_failed_open_initialises_what_is_in_memory_again) {
    const fluid_folder fluids;
    fluids.add("fluid", support::vapor_file());
    const struct {
        std::string name;
        int code;
    } cases[] = {{"missing", ENOENT}, {"../fluid", ENOENT}, {std::string(300, 'n'), ENAMETOOLONG}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ask("fluid", "td", 500, 2.0, "t");
        const double v_ref = gas.v_ref, e_0 = gas.e_0;
        gas.v_ref = 1e6;
        gas.e_0 = 17;
        const auto answer = ask(c.name, "td", 500, 2.0, "t");
        EXPECT_EQ(answer.text, failed_open(c.code));
        // The model has been initialised again; the steps behind it stop because of the message.
        EXPECT_EQ(gas.v_ref, v_ref);
        EXPECT_EQ(gas.e_0, 17);
        EXPECT_NE(e_0, 17);
        EXPECT_EQ(gas.name.trimmed(), "model fluid");
    }
}

TEST_F(fluid_loading, a_direct_load_leaves_its_message_in_the_shared_text) {
    read_init_fluiddata("missing ", 8);
    EXPECT_EQ(shared_text(), failed_open(ENOENT));
    EXPECT_EQ(ostrel::os_fluid.trimmed(), "");
    // A load that succeeds does not reset the message, which stops the initialisation behind the model.
    read_init_fluiddata("nitrogen", 8);
    EXPECT_EQ(shared_text(), failed_open(ENOENT));
    EXPECT_EQ(gas.name.trimmed(), "nitrogen");
    EXPECT_EQ(gas.e_0, 0);
    ideal_specific_heat::errmsg.reset();
    read_init_fluiddata("nitrogen", 8);
    EXPECT_EQ(shared_text(), "No errors");
    EXPECT_NE(gas.e_0, 0);
}

TEST_F(fluid_loading, a_model_that_needs_critical_data_says_so) {
    const fluid_folder fluids;
    fluids.add("fluid", support::reference_file("7\n"));
    const auto answer = ask("fluid", "td", 500, 2.0, "t");
    EXPECT_THAT(answer.text, StartsWith("The gas reference fluid                  is not a vapor: "));
    EXPECT_EQ(answer.value, -8888.8);
}

TEST_F(fluid_loading, a_record_that_cannot_be_read_stops_the_load) {
    const std::string good = support::vapor_file();
    const struct {
        const char *what;
        std::string text;
        std::string message;
    } cases[] = {
        {"empty", "", "record 1: expected a heading, found the end of the file."},
        {"one line", "x", "record 2: expected name (a text), found the end of the file."},
        {"bad MM", "a\nb\nc\nd\nhello\n", "record 5: expected MM (a real), found \"hello\"."},
        {"bad flag", "a\nb\nc\nd\n20\nyes\n", "record 6: expected vapor (a logical), found \"yes\"."},
        {"bad gas_type", support::vapor_section + "7.0\n", "record 13: expected gas_type (an integer), found \"7.0\"."},
        {"no heat capacity", support::vapor_section + "7\n",
         "record 14: expected coeff_adim (a logical), found the end of the file."},
        {"no transport", support::vapor_section + "7\n" + support::constant_heat,
         "record 17: expected viscosity_model (an integer), found the end of the file."},
        {"last record", good.substr(0, good.find("0.02")) + "0.02K\n",
         "record 20: expected kk_const (a real), found \"0.02K\"."},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const fluid_folder fluids;
        fresh_frame_with(fluids);
        fluids.add("good", support::reference_file());
        fluids.add("bad", c.text);
        ASSERT_EQ(ask("good", "td", 500, 2.0, "t").text, "No errors");
        const double v_ref = gas.v_ref, e_0 = gas.e_0;
        const auto answer = ask("bad", "td", 500, 2.0, "t");
        EXPECT_EQ(answer.text, "Ostrel error: file bad.osd, " + c.message);
        EXPECT_EQ(answer.value, -8888.8);
        EXPECT_EQ(shared_text(), answer.text);
        EXPECT_EQ(gas.v_ref, v_ref);
        EXPECT_EQ(gas.e_0, e_0);
    }
}

TEST_F(fluid_loading, a_path_has_at_most_256_characters) {
    const support::temporary_folder folder;
    std::string directory = folder.path() + "/";
    while (directory.size() < 200) {
        directory += "deep/";
        std::filesystem::create_directory(directory);
    }
    const support::directory_host host(directory);
    const std::size_t longest = 256 - directory.size() - 4;
    const std::string fits(longest, 'a'), too_long(longest + 1, 'b');
    for (const std::string &name : {fits, too_long})
        std::ofstream(directory + name + ".osd") << support::vapor_file();
    ASSERT_TRUE(std::filesystem::exists(directory + too_long + ".osd"));
    EXPECT_EQ(ask(fits, "td", 500, 2.0, "t").text, "No errors");
    EXPECT_EQ(ask(too_long, "td", 500, 2.0, "t").text, failed_open(ENAMETOOLONG));
    // If it were cut at 256 characters, the path would be that of another file.
    std::ofstream((directory + too_long + ".osd").substr(0, 256)) << support::vapor_file();
    EXPECT_EQ(ask(too_long, "td", 500, 2.0, "t").text, failed_open(ENAMETOOLONG));
}

TEST_F(fluid_loading, a_complete_path_is_read_without_initialising) {
    const fluid_folder fluids;
    fluids.add("first", support::vapor_file());
    const std::string other = fluids.write("other.txt", support::vapor_section + "8\n0.8\n" + support::constant_heat +
                                                            support::constant_transport);
    ask("first", "td", 500, 2.0, "t");
    const auto before = gas;
    const double vmin = thermodynamics::vmin;
    const std::string blanks = other + "    ";
    read_init_fluiddatafile(blanks.data(), blanks.size());
    EXPECT_EQ(shared_text(), "No errors");
    EXPECT_EQ(thermodynamics::gas_type, 8);
    EXPECT_EQ(ideal_Z_gas::active.Z_const, 0.8);
    EXPECT_EQ(gas.v_ref, before.v_ref);
    EXPECT_EQ(gas.vc, before.vc);
    EXPECT_EQ(gas.e_0, before.e_0);
    EXPECT_EQ(gas.s_0, before.s_0);
    EXPECT_EQ(gas.cv_ref, before.cv_ref);
    EXPECT_EQ(gas.c_ref, before.c_ref);
    EXPECT_EQ(thermodynamics::vmin, vmin);
    EXPECT_EQ(gas.Zc, 0.27) << "as read";
    EXPECT_EQ(ostrel::os_fluid.trimmed(), "first");
    EXPECT_EQ(transport_properties::active.v_ref, before.v_ref);
    thermodynamics::init_thermodynamics();
    EXPECT_EQ(gas.Zc, 0.8);
    EXPECT_NE(gas.v_ref, before.v_ref);
    EXPECT_NE(thermodynamics::vmin, vmin);
    EXPECT_EQ(transport_properties::active.v_ref, before.v_ref);
    transport_properties::init_transport_properties();
    EXPECT_EQ(transport_properties::active.v_ref, gas.v_ref);
}

TEST_F(fluid_loading, a_complete_path_that_does_not_open_changes_nothing) {
    const fluid_folder fluids;
    fluids.add("first", support::vapor_file());
    ask("first", "td", 500, 2.0, "t");
    gas.v_ref = 1e6;
    // The path is complete: neither a directory nor an extension is added.
    for (const std::string &path :
         {fluids.path() + "/first", std::string("first.osd"), std::string("first"), std::string()}) {
        SCOPED_TRACE(path);
        ideal_specific_heat::errmsg.reset();
        read_init_fluiddatafile(path.data(), path.size());
        EXPECT_EQ(shared_text(), failed_open(ENOENT));
        EXPECT_EQ(gas.v_ref, 1e6);
        EXPECT_EQ(gas.name.trimmed(), "model fluid");
    }
}

TEST_F(fluid_loading, a_record_of_a_complete_path_that_cannot_be_read_is_reported) {
    const support::temporary_folder folder;
    const std::string path = folder.write("bad.osd", "a\nb\nc\nd\n1 2\nno\n");
    read_init_fluiddatafile(path.data(), path.size());
    EXPECT_EQ(shared_text(), "Ostrel error: file bad.osd, record 6: expected vapor (a logical), found \"no\".");
    EXPECT_EQ(gas.MM, 1);
}

// Loading from lines.

/// A database host that answers with one text and keeps the arguments of the call.
struct database_host {
    static inline std::string lines, location, key;
    static inline std::int32_t status = 1, found = 1;
    static inline std::size_t line_len = 0;

    explicit database_host(std::string_view text, std::int32_t status_code = 1, std::int32_t found_code = 1) {
        lines.assign(255 * 255, ' ');
        std::istringstream in{std::string(text)};
        std::size_t i = 0;
        for (std::string line; std::getline(in, line); ++i)
            lines.replace(i * 255, line.size(), line);
        status = status_code;
        found = found_code;
        const ostrel_host routines = {nullptr, nullptr, getfluid};
        ostrel_use_host(&routines);
    }
    ~database_host() { ostrel_use_host(nullptr); }
    static std::int32_t getfluid(const char *location_text, const char *key_text, char *out, std::int32_t *found_out,
                                 std::size_t location_len, std::size_t key_len, std::size_t length) {
        location.assign(location_text, location_len);
        key.assign(key_text, key_len);
        line_len = length;
        std::copy(lines.begin(), lines.end(), out);
        *found_out = found;
        return status;
    }
};

void read_database(std::string_view location, std::string_view name) {
    read_init_fluiddatadb(location.data(), name.data(), location.size(), name.size());
}

TEST_F(fluid_loading, reads_all_sections_of_a_database_text_without_initialising) {
    const database_host host(support::vapor_section + "8\n0.9\n" + support::constant_heat +
                             "5\n1e-5 273 110\n4\n0.7\n");
    read_database("some place ", "a fluid  ");
    EXPECT_EQ(shared_text(), "No errors");
    EXPECT_EQ(host.location, "some place ");
    EXPECT_EQ(host.key, "a fluid  ");
    EXPECT_EQ(host.line_len, 255U);
    EXPECT_EQ(gas.name.trimmed(), "model fluid");
    EXPECT_EQ(gas.MM, 20);
    EXPECT_EQ(ideal_Z_gas::active.Z_const, 0.9);
    EXPECT_EQ(ideal_specific_heat::active.cv_0, 2.5) << "not yet dimensional";
    EXPECT_EQ(transport_properties::active.Tchar_s, 110);
    EXPECT_EQ(transport_properties::active.Pr, 0.7);
    EXPECT_EQ(gas.v_ref, 0);
    EXPECT_EQ(gas.Zc, 0.27);
    EXPECT_EQ(thermodynamics::Tmin, 0);
    EXPECT_EQ(transport_properties::active.m_mole, 0);
    EXPECT_EQ(gas.mu_ref, 0);
    EXPECT_EQ(ostrel::os_fluid.trimmed(), "");
    // The caller must initialise both, in this order.
    thermodynamics::init_thermodynamics();
    transport_properties::init_transport_properties();
    EXPECT_EQ(shared_text(), "No errors");
    EXPECT_EQ(transport_properties::active.m_mole, 20);
    EXPECT_EQ(gas.mu_ref, transport_properties::sutherland_law_viscosity(300));
}

TEST_F(fluid_loading, a_database_text_that_is_read_leaves_an_old_message) {
    const database_host host(support::vapor_file());
    ideal_specific_heat::errmsg.report({"earlier"});
    read_database("place", "fluid");
    EXPECT_EQ(shared_text(), "earlier");
    EXPECT_EQ(gas.MM, 20);
}

TEST_F(fluid_loading, a_database_without_the_fluid_is_reported_and_nothing_read) {
    const struct {
        std::int32_t status, found;
        bool reads;
    } cases[] = {{0, 1, false}, {1, 0, false}, {0, 0, false}, {1, 1, true}, {-3, 7, true}, {2, -1, true}};
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.status) + " " + std::to_string(c.found));
        support::fresh_frame();
        const database_host host(support::vapor_file(), c.status, c.found);
        read_database("place", " no such  ");
        EXPECT_EQ(shared_text(), c.reads ? "No errors" : " Error in Ostrel: error opening fluid  no such");
        EXPECT_EQ(gas.MM, c.reads ? 20 : 0);
    }
}

TEST_F(fluid_loading, a_long_name_is_cut_with_the_shared_text) {
    const database_host host("", 0);
    const std::string name(10000, 'n');
    read_database("place", name);
    EXPECT_EQ(shared_text(), (" Error in Ostrel: error opening fluid " + name).substr(0, 256));
}

TEST_F(fluid_loading, a_line_that_cannot_be_read_is_reported) {
    const struct {
        std::string text, message;
    } cases[] = {
        {"", "record 5: expected MM (a real), found the end of the line."},
        {"a\nb\nc\nd\n20 MM\nperhaps\n", "record 6: expected vapor (a logical), found \"perhaps\"."},
        {support::vapor_section + "7\n" + support::constant_heat,
         "record 17: expected viscosity_model (an integer), found the end of the line."},
    };
    for (const auto &c : cases) {
        support::fresh_frame();
        const database_host host(c.text);
        read_database("place", "fluid  ");
        EXPECT_EQ(shared_text(), "Ostrel error: fluid database, fluid, " + c.message);
    }
}

TEST_F(fluid_loading, a_carriage_return_at_the_end_of_a_host_s_line_does_not_count) {
    std::string text;
    for (const char c : support::vapor_file("8\n0.9\n"))
        text += c == '\n' ? std::string("\r\n") : std::string(1, c);
    const database_host host(text);
    read_database("place", "fluid");
    EXPECT_EQ(shared_text(), "No errors");
    EXPECT_EQ(gas.name.padded(), records::fixed_text<32>("model fluid").padded());
    EXPECT_EQ(gas.MM, 20);
    EXPECT_EQ(ideal_Z_gas::active.Z_const, 0.9);
}

TEST_F(fluid_loading, a_carriage_return_elsewhere_is_a_character_like_others) {
    const database_host host("a\nb\nc\nd\n2\r0\n");
    read_database("place", "fluid");
    EXPECT_EQ(shared_text(), "Ostrel error: fluid database, fluid, record 5: expected MM (a real), found \"2?0\".");
}

TEST_F(fluid_loading, says_how_reading_has_ended) {
    using loading::outcome;
    const support::fluid_folder folder;
    EXPECT_EQ(loading::read_file(folder.path() + "/none.osd"), outcome::not_opened);
    EXPECT_EQ(loading::read_file(folder.write("bad.osd", "a\nb\nc\nd\nx\n")), outcome::broken);
    EXPECT_EQ(loading::read_file(folder.write("good.osd", support::vapor_file())), outcome::read);
    {
        const database_host host("", 0);
        EXPECT_EQ(loading::read_database("place", "fluid"), outcome::not_opened);
    }
    {
        const database_host host("");
        EXPECT_EQ(loading::read_database("place", "fluid"), outcome::broken);
    }
    const database_host host(support::vapor_file());
    EXPECT_EQ(loading::read_database("place", "fluid"), outcome::read);
}

// Catalogue and information.

/// A host whose directory search answers with the given entries.
struct listing_host {
    static inline std::vector<std::string> entries;
    static inline std::string directory, pattern;

    explicit listing_host(std::vector<std::string> names) {
        entries = std::move(names);
        const ostrel_host routines = {fluidpath, searchdirectory, nullptr};
        ostrel_use_host(&routines);
    }
    ~listing_host() { ostrel_use_host(nullptr); }
    static void fluidpath(char *path, const char *, std::size_t path_len, std::size_t) {
        records::fill_text({path, path_len}, {"/the place/"});
    }
    static void searchdirectory(const char *directory_text, const char *pattern_text, char *names,
                                std::size_t directory_len, std::size_t pattern_len, std::size_t name_len) {
        directory.assign(directory_text, directory_len);
        pattern.assign(pattern_text, pattern_len);
        for (std::size_t i = 0; i < entries.size(); ++i)
            records::fill_text({names + i * name_len, name_len}, {entries[i]});
    }
};

struct listing {
    std::int32_t count = -1;
    std::vector<std::string> names;
};

listing list_fluids() {
    listing result;
    std::string names(500 * 256, '#');
    ostrel_fluids(&result.count, names.data(), 256);
    for (std::size_t i = 0; i < 500; ++i)
        result.names.push_back(support::without_padding(names.substr(i * 256, 256)));
    return result;
}

TEST_F(fluid_catalogue, takes_the_names_before_the_first_point) {
    const listing_host host({"water.osd", "mix.a.osd", "nopoint", ".osd", ".hidden.osd", "a.osd", "two words.osd",
                             "osd.", "x" + std::string(251, 'y') + ".osd"});
    const listing found = list_fluids();
    EXPECT_EQ(found.count, 9);
    const std::vector<std::string> expected = {
        "water", "mix", "", "", "", "a", "two words", "osd", "x" + std::string(251, 'y')};
    EXPECT_EQ(std::vector<std::string>(found.names.begin(), found.names.begin() + 9), expected);
    for (std::size_t i = 9; i < 500; ++i)
        EXPECT_EQ(found.names[i], "");
    EXPECT_EQ(host.directory, "/the place/");
    EXPECT_EQ(host.pattern, std::string("*.osd\0", 6));
}

TEST_F(fluid_catalogue, a_blank_entry_keeps_its_place_and_shifts_the_end) {
    const listing_host host({"a.osd", "", "b.osd", "c.osd"});
    const listing found = list_fluids();
    EXPECT_EQ(found.count, 3);
    EXPECT_EQ(found.names[0], "a");
    EXPECT_EQ(found.names[1], "");
    EXPECT_EQ(found.names[2], "b");
    EXPECT_EQ(found.names[3], "c.osd") << "behind the count";
}

TEST_F(fluid_catalogue, may_be_empty_or_full) {
    {
        const listing_host host({});
        EXPECT_EQ(list_fluids().count, 0);
        EXPECT_EQ(list_fluids().names, std::vector<std::string>(500));
    }
    const listing_host host(std::vector<std::string>(500, "fluid.osd"));
    EXPECT_EQ(list_fluids().count, 500);
    EXPECT_EQ(list_fluids().names, std::vector<std::string>(500, "fluid"));
}

TEST_F(fluid_catalogue, lists_the_shipped_fluids_which_all_load) {
    const std::vector<std::string> shipped = support::shipped_fluids();
    ASSERT_GE(shipped.size(), 6U);
    support::fresh_frame(support::shipped_folder);
    const listing found = list_fluids();
    ASSERT_EQ(found.count, static_cast<std::int32_t>(shipped.size()));
    for (std::size_t i = 0; i < shipped.size(); ++i) {
        EXPECT_EQ(found.names[i], shipped[i]);
        EXPECT_EQ(ask(found.names[i], "td", 500, 1.0, "p").text, "No errors") << found.names[i];
        EXPECT_LE(found.names[i].size(), 8U) << "would be read again at every request";
    }
}

TEST_F(fluid_catalogue, every_shipped_fluid_has_a_viscosity_and_a_conductivity) {
    support::fresh_frame(support::shipped_folder);
    for (const std::string &fluid : support::shipped_fluids()) {
        ASSERT_TRUE(ask(fluid, "td", 500, 1.0, "p").ok()) << fluid;
        const double Tc = gas.Tc, vc = gas.vc;
        EXPECT_GT(gas.mu_ref, 0) << fluid;
        EXPECT_GT(gas.kk_ref, 0) << fluid;
        for (const double Tr : {0.5, 0.7, 0.9, 1.0, 1.3, 2.0, 5.0})
            for (const double vr : {1.0, 3.0, 10.0, 1e3, 1e6}) {
                // These states lie between the phases, where there is no vapor.
                if (Tr < 1 && vr < (Tr < 0.7 ? 1e3 : 10))
                    continue;
                SCOPED_TRACE(testing::Message() << fluid << ", T/Tc " << Tr << ", v/vc " << vr);
                for (const char *name : {"eta", "lambda"}) {
                    const auto answer = ask(fluid, "tv", Tr * Tc, vr * vc, name);
                    EXPECT_EQ(answer.text, "No errors");
                    // The bounds are those of a gas, in Pa s; conductivities are 17.5 or 175 times smaller than in
                    // W/(m K).
                    EXPECT_GT(answer.value, name[0] == 'e' ? 1e-7 : 1e-5) << name;
                    EXPECT_LT(answer.value, name[0] == 'e' ? 5e-4 : 1e-1) << name;
                }
            }
    }
}

TEST_F(fluid_catalogue, changes_no_state) {
    ask("toluene", "td", 500, 2.0, "t");
    ask("toluene", "xx", 1, 2, "t");
    const double T_kept = ostrel::T, v_ref = gas.v_ref;
    list_fluids();
    std::int32_t version[4];
    getversion(version);
    testing::internal::CaptureStdout();
    ostrel_sub();
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(ostrel::T, T_kept);
    EXPECT_EQ(gas.v_ref, v_ref);
    expect_key("toluene", "xx", 1, 2);
    EXPECT_EQ(shared_text(), unknown_pair("xx"));
}

TEST_F(fluid_catalogue, information_in_either_case) {
    const fluid_folder fluids;
    fluids.add("fluid", support::vapor_file());
    std::string wet = support::vapor_file();
    wet.replace(wet.find("20.0"), 4, "18.015");
    fluids.add("wet", wet);
    const struct {
        const char *fluid, *name;
        double value;
    } cases[] = {
        {"wet", "M_MOL", 18.015 / 1000},           {"fluid", "m_mol", 20.0 / 1000},       {"fluid", "T_Crit", 300.0},
        {"fluid", "p_crit", 50.0 * 101325},        {"fluid", "P_CRIT   ", 50.0 * 101325}, {"fluid  ", "t_crit", 300.0},
        {"fluid", "M_mol   ignored", 20.0 / 1000},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.fluid) + ", " + c.name);
        const auto answer = ask_info(c.fluid, c.name);
        EXPECT_EQ(answer.text, "No errors");
        EXPECT_EQ(answer.value, c.value);
    }
    EXPECT_DOUBLE_EQ(ask_info("wet", "M_MOL").value, 0.018015);
}

TEST_F(fluid_catalogue, the_told_tables_are_those_that_are_served) {
    const fluid_folder fluids;
    fluids.add("fluid", support::vapor_file());
    std::vector<std::string> names;
    for (const ostrel::described &constant : ostrel::described_informations()) {
        SCOPED_TRACE(constant.name);
        EXPECT_EQ(ask_info("fluid", constant.name).text, "No errors");
        names.push_back(std::string(constant.name) + " [" + std::string(constant.unit) + "]");
    }
    EXPECT_EQ(names, (std::vector<std::string>{"m_mol [kg/mol]", "t_crit [K]", "p_crit [Pa]"}));
    for (const ostrel::described_output &output : ostrel::described_outputs()) {
        SCOPED_TRACE(output.text.name);
        EXPECT_EQ(support::ask("fluid", "td", 400.0, 2.0, output.text.name).text, "No errors");
        EXPECT_EQ(support::ask("fluid", "pq", 25 * 101325.0, 0.5, output.text.name).ok(), output.any_quality);
    }
    for (const ostrel::described_pair &pair : ostrel::described_input_pairs()) {
        SCOPED_TRACE(pair.name);
        EXPECT_EQ(pair.name.substr(0, 1), pair.first.name);
        EXPECT_EQ(pair.name.substr(1), pair.second.name);
        EXPECT_EQ(support::ask("fluid", pair.name, 1.0, 1.0, "t").text.find("not available"), std::string::npos);
    }
}

TEST_F(fluid_catalogue, entries_without_length_are_not_written) {
    const listing_host host({"a.osd"});
    std::int32_t count = -1;
    char names = '#';
    ostrel::ostrel_fluids(count, &names, 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(names, '#');
}

TEST_F(fluid_catalogue, other_constants_are_unknown_and_quoted_without_trailing_blanks) {
    for (const std::string name : {"", " m_mol", "mmol", "m_mol2", "t", "v_crit", "Z_Crit"}) {
        SCOPED_TRACE(name);
        const auto answer = ask_info("toluene", name + "   ");
        EXPECT_EQ(answer.text, unknown_constant(name));
        EXPECT_EQ(answer.value, -8888.8);
        EXPECT_EQ(shared_text(), "No errors");
    }
    const std::string longer(9999, 'n');
    EXPECT_EQ(ask_info("toluene", longer, 10100).text, unknown_constant(longer));
    EXPECT_EQ(ask_info("toluene", longer, 10).text, "Ostrel err");
}

TEST_F(fluid_catalogue, a_fluid_that_cannot_be_loaded_has_no_information) {
    for (const char *name : {"m_mol", "no such"}) {
        const auto answer = ask_info("missing", name);
        EXPECT_EQ(answer.text, failed_open(ENOENT));
        EXPECT_EQ(answer.value, 0.0);
        support::fresh_frame();
    }
}

TEST_F(fluid_catalogue, critical_data_of_a_reference_fluid_are_those_of_the_last_vapor) {
    const fluid_folder fluids;
    fluids.add("vapor", support::vapor_file());
    fluids.add("ideal", support::reference_file());
    EXPECT_EQ(ask_info("ideal", "t_crit").value, 0);
    EXPECT_EQ(ask_info("ideal", "p_crit").value, 0);
    EXPECT_EQ(ask_info("vapor", "t_crit").value, 300);
    EXPECT_EQ(ask_info("ideal", "t_crit").value, 300);
    EXPECT_EQ(ask_info("ideal", "p_crit").value, 50.0 * 101325);
    EXPECT_EQ(ask_info("ideal", "m_mol").value, 0.028);
}

TEST_F(fluid_catalogue, information_loads_a_fluid_and_leaves_the_kept_state) {
    ask("toluene", "td", 500, 2.0, "t");
    const double T_kept = ostrel::T, v_kept = ostrel::v;
    EXPECT_EQ(ask_info("water", "m_mol").value, 18.01527 / 1000);
    expect_key("water", "td", 500, 2.0);
    EXPECT_EQ(ostrel::T, T_kept);
    EXPECT_EQ(ostrel::v, v_kept);
}

TEST_F(fluid_catalogue, version) {
    std::int32_t version[6] = {-1, -1, -1, -1, -1, -1};
    getversion(version + 1);
    EXPECT_THAT(version, testing::ElementsAre(-1, 1, 0, 1, 14, -1));
}

TEST_F(fluid_catalogue, greeting) {
    testing::internal::CaptureStdout();
    ostrel_sub();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), " ****** Hello from the Ostrel      ******\n");
}

} // namespace
