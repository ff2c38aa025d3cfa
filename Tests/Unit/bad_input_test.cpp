// SPDX-License-Identifier: MIT
// Input of any kind must give the documented text or a value, without crash, overrun or hang.
#include "Tests/Support/frame.h"

#include <cerrno>
#include <cmath>
#include <ctime>
#include <random>
#include <sys/stat.h>

namespace {

using support::ask;
using support::ask_info;
using support::failed_open;
using support::fluid_folder;
using support::unknown_constant;
using support::unknown_output;
using support::unknown_pair;

struct bad_input : support::frame_test {};

std::string cut(const std::string &text, std::size_t length = 256) {
    return support::without_padding(text.substr(0, length));
}

std::vector<std::size_t> lengths() {
    std::vector<std::size_t> result;
    for (std::size_t i = 0; i <= 300; ++i)
        result.push_back(i);
    result.push_back(10000);
    return result;
}

// Texts of every length.

TEST_F(bad_input, names_of_every_length) {
    const std::size_t room = 256 - (std::string(support::tests_folder).size() + 5);
    for (const std::size_t length : lengths()) {
        SCOPED_TRACE(length);
        ASSERT_EQ(ask("toluene", "td", 500, 2.0, "t").text, "No errors");
        for (const char letter : {'x', ' ', '.', '\0', '\xFF'}) {
            const std::string name(length, letter);
            const std::size_t kept = letter == ' ' ? 0 : length;
            // The file system allows at most 251 characters before ".osd"; a NUL is refused before the look-up.
            const int code = kept > room || (kept > 251 && letter != '\0') ? ENAMETOOLONG : ENOENT;
            const auto answer = ask(name, "td", 500, 2.0, "t");
            EXPECT_EQ(answer.text, failed_open(code));
            EXPECT_EQ(answer.value, -8888.8);
            ostrel::os_fluid = {"toluene"};
            const auto constant = ask_info(name, "m_mol");
            EXPECT_EQ(constant.text, failed_open(code));
            EXPECT_EQ(constant.value, 0.0);
            ostrel::os_fluid = {"toluene"};
        }
    }
}

TEST_F(bad_input, codes_and_outputs_of_every_length) {
    double t = 500;
    for (const std::size_t length : lengths())
        for (const char letter : {'x', ' ', 'q', '\0', '\xFF'}) {
            const std::string text(length, letter);
            SCOPED_TRACE(std::to_string(length) + " of " + letter);
            const auto pair = ask("toluene", text, ++t, 1.0, "t");
            EXPECT_EQ(pair.text, cut(unknown_pair(text)));
            EXPECT_EQ(pair.value, -8888.8);
            const auto quality = ask("toluene", text, ++t, 0.5, "h");
            EXPECT_EQ(quality.text, letter == 'q' && length >= 2 ? support::quality_text : cut(unknown_pair(text)));
            const auto output = ask("toluene", "td", 500, 2.0, text, 10100);
            EXPECT_EQ(output.text, unknown_output(text));
            EXPECT_EQ(output.value, -8888.8);
            const auto constant = ask_info("toluene", text, 10100);
            EXPECT_EQ(constant.text, unknown_constant(support::without_padding(text)));
            EXPECT_EQ(constant.value, -8888.8);
        }
}

TEST_F(bad_input, random_bytes) {
    std::mt19937 random(20240229);
    const auto bytes = [&] {
        std::string text(random() % 12, ' ');
        for (char &c : text)
            c = static_cast<char>(random());
        return text;
    };
    double t = 500;
    for (int i = 0; i < 20000; ++i) {
        const std::string code = bytes(), output = bytes();
        ASSERT_EQ(ask("toluene", "td", ++t, 2.0, "t").text, "No errors");
        // Two random bytes may be the name of an output; the answer tells.
        const auto answer = ask("toluene", "td", t, 2.0, output);
        const bool known =
            std::any_of(std::begin(support::output_cases), std::end(support::output_cases),
                        [&](const auto &c) { return ostrel::tolower_os(output) == ostrel::tolower_os(c.name); });
        EXPECT_EQ(answer.text, known ? "No errors" : unknown_output(output));
        const bool pair_known =
            std::any_of(std::begin(support::pair_codes), std::end(support::pair_codes),
                        [&](const char *c) { return ostrel::tolower_os(code) == ostrel::tolower_os(c); });
        EXPECT_EQ(ask("toluene", code, ++t, 1.0, "t").text == cut(unknown_pair(code)), !pair_known);
    }
}

TEST_F(bad_input, random_names_are_not_found) {
    std::mt19937 random(7);
    for (int i = 0; i < 5000; ++i) {
        std::string name(1 + random() % 20, ' ');
        for (char &c : name)
            c = static_cast<char>(random());
        if (support::without_padding(name).empty())
            continue;
        support::fresh_frame();
        EXPECT_EQ(ask(name, "td", 500, 2.0, "t").text, failed_open(ENOENT));
    }
}

// Numbers.

const double hostile_numbers[] = {0.0,
                                  -0.0,
                                  1.0,
                                  -1.0,
                                  std::numeric_limits<double>::quiet_NaN(),
                                  std::numeric_limits<double>::signaling_NaN(),
                                  std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::infinity(),
                                  std::numeric_limits<double>::denorm_min(),
                                  -std::numeric_limits<double>::denorm_min(),
                                  std::numeric_limits<double>::min(),
                                  std::numeric_limits<double>::max(),
                                  -std::numeric_limits<double>::max(),
                                  1e-300,
                                  1e300,
                                  -8888.8};

TEST_F(bad_input, numbers_of_any_kind_for_all_pairs_and_outputs) {
    for (const char *fluid : {"n2-ig", "argon-iz", "toluene"})
        for (const std::string code : support::pair_codes)
            for (const double one : hostile_numbers)
                for (const double two : hostile_numbers) {
                    SCOPED_TRACE(std::string(fluid) + " " + code + " " + std::to_string(one) + " " +
                                 std::to_string(two));
                    for (const auto &output : support::output_cases) {
                        // The key is cleared, so that no request is answered as the repeat of a failed one.
                        ostrel::os_inputspec = {};
                        const auto answer = ask(fluid, code, one, two, output.name);
                        const bool restricted = code[1] == 'q' && std::abs(two - 1) > 1e-6 && !output.any_quality;
                        if (restricted)
                            EXPECT_EQ(answer.text, support::quality_text);
                        else if (answer.text == "No errors")
                            continue;
                        else
                            EXPECT_TRUE(code != "tv" && code != "td" && support::of_a_solver(answer.text))
                                << answer.text;
                        EXPECT_EQ(answer.value, -8888.8);
                    }
                }
}

TEST_F(bad_input, a_NaN_is_carried_through) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const char *name : {"t", "p", "h", "s", "u", "dp_dv", "eta", "lambda"}) {
        EXPECT_TRUE(std::isnan(ask("toluene", "tv", nan, 0.5, name).value)) << name;
        if (name[0] != 't') {
            EXPECT_TRUE(std::isnan(ask("toluene", "tv", 500, nan, name).value)) << name;
        }
    }
    EXPECT_EQ(ask("toluene", "td", 500, 0.0, "v").value, std::numeric_limits<double>::infinity());
    EXPECT_EQ(ask("toluene", "td", 500, 0.0, "d").value, 0);
}

// Fields.

TEST_F(bad_input, no_byte_outside_an_error_field_is_written) {
    const std::string name(400, 'y');
    const double one = 500, two = 2;
    for (const std::size_t length : {0U, 1U, 9U, 10U, 255U, 256U, 257U, 300U}) {
        SCOPED_TRACE(length);
        std::string field(length + 64, '\x5A');
        const auto check = [&](std::string expected) {
            expected.resize(length, ' ');
            EXPECT_EQ(field.substr(32, length), expected);
            EXPECT_EQ(field.substr(0, 32), std::string(32, '\x5A'));
            EXPECT_EQ(field.substr(32 + length), std::string(32, '\x5A'));
        };
        const auto request = [&](std::string_view fluid, std::string_view code, std::string_view output) {
            support::fresh_frame();
            ostrel_prop(fluid.data(), code.data(), &one, &two, output.data(), field.data() + 32, fluid.size(),
                        code.size(), output.size(), length);
        };
        const auto inform = [&](std::string_view fluid, std::string_view constant) {
            support::fresh_frame();
            ostrel_info(fluid.data(), constant.data(), field.data() + 32, fluid.size(), constant.size(), length);
        };
        request("toluene", "td", "t");
        check("No errors");
        request("missing", "td", "t");
        check(failed_open(ENOENT));
        request("toluene", name, "t");
        check(unknown_pair(name).substr(0, 256));
        request("toluene", "pq", "h");
        check(support::quality_text);
        request("toluene", "td", name);
        check(unknown_output(name));
        inform("toluene", "m_mol");
        check("No errors");
        inform("missing", "m_mol");
        check(failed_open(ENOENT));
        inform("toluene", name);
        check(unknown_constant(name));
    }
}

TEST_F(bad_input, only_the_names_of_the_given_length_are_written) {
    const fluid_folder fluids;
    fluids.add("water", "x");
    fluids.add("x", "x");
    const struct {
        std::size_t length;
        std::string first, second;
    } cases[] = {{0, "", ""}, {1, "", ""}, {4, "", "x"}, {6, "water", "x"}, {9, "water", "x"}, {1000, "water", "x"}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.length);
        std::string names(500 * c.length + 64, '\x5A');
        std::int32_t count[3] = {-7, -7, -7};
        ostrel_fluids(count + 1, names.data() + 32, c.length);
        EXPECT_EQ(count[0], -7);
        EXPECT_EQ(count[1], c.length > 0 ? 2 : 0);
        EXPECT_EQ(count[2], -7);
        EXPECT_EQ(names.substr(0, 32), std::string(32, '\x5A'));
        EXPECT_EQ(names.substr(32 + 500 * c.length), std::string(32, '\x5A'));
        EXPECT_EQ(support::without_padding(names.substr(32, c.length)), c.first);
        EXPECT_EQ(support::without_padding(names.substr(32 + c.length, c.length)), c.second);
        EXPECT_EQ(names.substr(32 + 2 * c.length, 498 * c.length), std::string(498 * c.length, ' '));
    }
}

// Null pointers.

TEST_F(bad_input, null_pointers_stand_for_empty_texts_and_NaN) {
    const double one = 500, two = 2;
    std::string field(256, '#');
    const auto text = [&] { return support::without_padding(field); };

    EXPECT_EQ(ostrel_prop(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 9, 9, 9, 9), -8888.8);
    EXPECT_EQ(support::shared_text(), unknown_pair(""));
    EXPECT_EQ(ostrel_prop(nullptr, nullptr, nullptr, nullptr, nullptr, field.data(), 0, 0, 0, 256), -8888.8);
    EXPECT_EQ(text(), unknown_pair(""));
    EXPECT_EQ(ostrel_prop("toluene", "td", &one, &two, nullptr, field.data(), 7, 2, 100, 256), -8888.8);
    EXPECT_EQ(text(), unknown_output(""));
    EXPECT_EQ(ostrel_prop("toluene", nullptr, &one, &two, "t", field.data(), 7, 2, 1, 256), -8888.8);
    EXPECT_EQ(text(), unknown_pair(""));
    EXPECT_TRUE(std::isnan(ostrel_prop("toluene", "td", nullptr, &two, "t", field.data(), 7, 2, 1, 256)));
    EXPECT_EQ(text(), "No errors");
    EXPECT_TRUE(std::isnan(ostrel_prop("toluene", "td", &one, nullptr, "v", field.data(), 7, 2, 1, 256)));
    EXPECT_EQ(text(), "No errors");
    EXPECT_DOUBLE_EQ(ostrel_prop("toluene", "td", &one, &two, "t", nullptr, 7, 2, 1, 256), 500);
    EXPECT_EQ(ostrel_prop(nullptr, "td", &one, &two, "t", field.data(), 7, 2, 1, 256), -8888.8);
    EXPECT_EQ(text(), failed_open(ENOENT));

    EXPECT_EQ(ostrel_info("toluene", nullptr, field.data(), 7, 5, 256), 0.0);
    EXPECT_EQ(text(), failed_open(ENOENT)) << "the message before";
    EXPECT_EQ(ostrel_info("toluene", nullptr, field.data(), 7, 5, 256), -8888.8);
    EXPECT_EQ(text(), unknown_constant(""));
    EXPECT_GT(ostrel_info("toluene", "m_mol", nullptr, 7, 5, 256), 0);
    ideal_specific_heat::errmsg.reset();
    EXPECT_EQ(ostrel_info(nullptr, nullptr, nullptr, 3, 3, 3), 0.0);

    ideal_specific_heat::errmsg.reset();
    read_init_fluiddata(nullptr, 5);
    EXPECT_EQ(support::shared_text(), failed_open(ENOENT));
    ideal_specific_heat::errmsg.reset();
    read_init_fluiddatafile(nullptr, 5);
    EXPECT_EQ(support::shared_text(), failed_open(ENOENT));
    ideal_specific_heat::errmsg.reset();
    read_init_fluiddatadb(nullptr, nullptr, 5, 5);
    EXPECT_EQ(support::shared_text(), " Error in Ostrel: error opening fluid");
    getversion(nullptr);
}

TEST_F(bad_input, results_without_a_place_are_dropped) {
    const double one = 500, two = 2;
    ASSERT_EQ(ask("toluene", "td", 500, 2.0, "t").text, "No errors");
    double T_found = -1, v_found = -1;
    get_tv("tv", &one, &two, nullptr, &v_found, 2);
    EXPECT_EQ(v_found, two / gas_properties::gas.v_ref);
    get_tv("tv", &one, &two, &T_found, nullptr, 2);
    EXPECT_EQ(T_found, one / gas_properties::gas.T_ref);
    get_tv(nullptr, nullptr, nullptr, nullptr, nullptr, 2);
    EXPECT_EQ(support::shared_text(), unknown_pair(""));
    get_tv("tv", nullptr, nullptr, &T_found, &v_found, 2);
    EXPECT_TRUE(std::isnan(T_found) && std::isnan(v_found));

    support::fresh_frame(support::shipped_folder);
    ostrel_fluids(nullptr, nullptr, 256);
    std::int32_t count = -1;
    ostrel_fluids(&count, nullptr, 256);
    EXPECT_EQ(count, 0);
    std::string names(500 * 256, '#');
    ostrel_fluids(nullptr, names.data(), 256);
    EXPECT_EQ(support::without_padding(names.substr(0, 256)), support::shipped_fluids().front());
}

// Files.

/// Whether the answer is one that a host may get after a load, whatever is in the file.
testing::AssertionResult documented(const std::string &fluid, const support::answer &answer) {
    const std::string_view text = answer.text;
    if (text == "No errors")
        return testing::AssertionSuccess();
    if (answer.value != -8888.8)
        return testing::AssertionFailure() << text << " with the value " << answer.value;
    const std::string record = "Ostrel error: file " + fluid + ".osd, record ";
    const bool of_a_record = text.starts_with(record) && text.find(": expected ") != text.npos &&
                             text.find(", found ") != text.npos && text.ends_with('.');
    const bool of_a_model = text.starts_with("The gas ") && text.find(" is not a vapor: ") != text.npos;
    const bool of_a_search = text.starts_with(" ERROR:  v__P_T__") && text.ends_with("G. STOP");
    const bool of_a_pairing = text == "Viscosity and thermal conductivity model do not match.  In "
                                      "init_trasport_properties. STOP";
    if (of_a_record || of_a_model || of_a_search || of_a_pairing)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "not documented: " << text;
}

/// Loads the text of a fluid as a library in its first state does, asks for a value, and measures the processor time.
struct loader {
    fluid_folder fluids;
    std::clock_t longest = 0;

    support::answer load(const std::string &fluid, std::string_view text) {
        // The file is a new one each time, since some file systems wait for the disk when an old one is written again.
        std::filesystem::remove(fluids.path() + "/" + fluid + ".osd");
        fluids.add(fluid, text);
        ostrel::os_fluid = {};
        const std::clock_t start = std::clock();
        const auto answer = ask(fluid, "td", 450, 2.0, "p");
        longest = std::max(longest, std::clock() - start);
        for (const char *output : {"s", "dcv_dt", "eta", "lambda"})
            ask(fluid, "td", 450, 2.0, output);
        return answer;
    }
    ~loader() { EXPECT_LT(longest, 2 * CLOCKS_PER_SEC); }
};

TEST_F(bad_input, fluids_cut_at_every_byte) {
    loader files;
    for (const std::string &fluid : support::sample_fluids) {
        const std::string text = support::file_text(support::tests_folder + ("/" + fluid) + ".osd");
        ASSERT_TRUE(text.ends_with('\n')) << fluid;
        // The value of the last record is complete with its first digit: model numbers have one digit.
        const std::size_t last_record = text.rfind('\n', text.size() - 2) + 1;
        for (std::size_t length = 0; length <= text.size(); ++length) {
            SCOPED_TRACE(fluid + " of " + std::to_string(length) + " bytes");
            const auto answer = files.load(fluid, std::string_view(text).substr(0, length));
            ASSERT_TRUE(documented(fluid, answer));
            ASSERT_EQ(answer.ok(), length > last_record) << answer.text;
        }
    }
}

TEST_F(bad_input, fluids_with_every_byte_replaced) {
    constexpr std::string_view hostile("\0\n\r\t ,/*-+.9eTF\"'\xFF\x80xn(i", 24);
    loader files;
    std::size_t turn = 0, failures = 0, loads = 0;
    for (const std::string &fluid : support::sample_fluids) {
        const std::string text = support::file_text(support::tests_folder + ("/" + fluid) + ".osd");
        for (std::size_t sample = 0; sample < 3 * text.size(); ++sample) {
            const std::size_t i = sample / 3;
            const char byte = hostile[(turn += 7) % hostile.size()];
            std::string damaged = text;
            damaged[i] = byte;
            SCOPED_TRACE(fluid + ", byte " + std::to_string(i) + " is " + std::to_string(byte));
            const auto answer = files.load(fluid, damaged);
            ASSERT_TRUE(documented(fluid, answer));
            ++loads;
            failures += !answer.ok();
        }
    }
    // Most bytes belong to comments, but damage to a value or to the end of its record must be noticed.
    EXPECT_GT(failures, loads / 50);
}

TEST_F(bad_input, files_of_hostile_content) {
    using std::string_literals::operator""s;
    const std::string heat = support::constant_heat, transport = support::constant_transport;
    const struct {
        const char *what;
        std::string text;
        const char *text_begins;
    } cases[] = {
        {"empty", "", "Ostrel error: file fluid.osd, record 1:"},
        {"blank lines", std::string(1000, '\n'), "Ostrel error: file fluid.osd, record"},
        {"NULs", std::string(1000, '\0'), "Ostrel error: file fluid.osd, record 2:"},
        {"one endless line", std::string(1000000, 'x'), "Ostrel error: file fluid.osd, record 2:"},
        {"commas", support::vapor_section + std::string(100000, ','), "Ostrel error: file fluid.osd, record"},
        {"slashes", "a\nb\nc\nd\n" + std::string(200, '/') + "\n/\n", "Ostrel error: file fluid.osd, record"},
        {"repeat count", "a\nb\nc\nd\n99999999999999999999*1\n", "Ostrel error: file fluid.osd, record 6:"},
        {"byte-order mark", "\xEF\xBB\xBF" + support::vapor_file(), "No errors"},
        {"marked value",
         "a\nb\nc\nd\n\xEF\xBB\xBF"
         "20\n",
         "Ostrel error: file fluid.osd, record 5:"},
        {"huge list", support::vapor_section + "7\nF\n3\n2147483647\n1\n1\n1\n" + transport,
         "Ostrel error: file fluid.osd, record 16:"},
        {"huge intervals", support::vapor_section + "7\nF\n4\n2147483647\n1\n1\n1\n" + transport,
         "Ostrel error: file fluid.osd, record 16:"},
        {"huge sum", support::vapor_section + "7\nF\n5\n1\n2147483647\n1\n" + transport,
         "Ostrel error: file fluid.osd, record 17:"},
        {"negative list", support::vapor_section + "7\nF\n3\n-5\n600\n\n\n" + transport, "No errors"},
        {"unknown model", support::vapor_section + "99\n" + heat + transport, "No errors"},
        {"negative model", support::vapor_section + "-2147483648\n" + heat + transport, "No errors"},
        {"unknown heat capacity", support::vapor_section + "7\nF\n77\n" + transport, ""},
        {"no molar mass", "a\nb\nc\nd\n0\nF\n0\n0\n0\n0\n0\n1\n" + heat + transport, "No errors"},
        {"not numbers", "a\nb\nc\nd\nnan\nT\nnan\ninf\n-inf\nnan\nnan\nnan\n7\n" + heat + transport, "No errors"},
        {"boils above its critical point", "a\nb\nc\nd\n20\nT\n300\n50\n0.27\n300\n0\n0\n7\n" + heat + transport,
         "No errors"},
        {"models that do not go together", support::vapor_section + "7\n" + heat + "2\n3\n",
         "Viscosity and thermal conductivity model do not match."},
        {"a dense gas without critical data", support::reference_section + "1\n" + heat + "3\n3\n", "The gas "},
        {"unknown transport models", support::vapor_section + "7\n" + heat + "2147483647\n-2147483648\n", "No errors"},
        {"a viscosity that is no number", support::vapor_section + "7\n" + heat + "1\nnan\n1\ninf\n", "No errors"},
        {"zeros for a viscosity", support::vapor_section + "7\n" + heat + "5\n0 0 0\n4\n0\n", "No errors"},
        {"a name of 4000 letters", "a\n" + std::string(4000, 'n') + "\nc\nd\nx\n",
         "Ostrel error: file fluid.osd, record 5:"},
    };
    loader files;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        support::fresh_frame();
        setenv("OSTREL_FLUIDS", files.fluids.path().c_str(), 1);
        const auto answer = files.load("fluid", c.text);
        EXPECT_TRUE(documented("fluid", answer));
        EXPECT_EQ(answer.text.substr(0, std::string_view(c.text_begins).size()), c.text_begins);
    }
}

TEST_F(bad_input, what_is_no_regular_file) {
    const fluid_folder fluids;
    std::filesystem::create_directory(fluids.path() + "/folder.osd");
    ASSERT_EQ(mkfifo((fluids.path() + "/pipe.osd").c_str(), 0600), 0);
    std::filesystem::create_symlink("loop.osd", fluids.path() + "/loop.osd");
    std::filesystem::create_symlink("gone", fluids.path() + "/dangling.osd");
    std::filesystem::create_symlink("pipe.osd", fluids.path() + "/to_pipe.osd");
    std::filesystem::create_symlink("/dev/zero", fluids.path() + "/zeros.osd");
    std::filesystem::create_symlink("/dev/null", fluids.path() + "/nothing.osd");
    std::ofstream(fluids.path() + "/huge.osd");
    std::filesystem::resize_file(fluids.path() + "/huge.osd", std::uintmax_t{1} << 40);
    fluids.add("good", support::vapor_file());
    const struct {
        const char *name;
        std::string text;
    } cases[] = {
        {"folder", "Ostrel error: file folder.osd, record 1: expected a heading, found the end of the file."},
        {"loop", failed_open(ELOOP)},
        {"dangling", failed_open(ENOENT)},
    };
    for (const auto &c : cases) {
        support::fresh_frame();
        setenv("OSTREL_FLUIDS", fluids.path().c_str(), 1);
        EXPECT_EQ(ask(c.name, "td", 500, 2.0, "t").text, c.text);
    }
    // The code depends on the system; the load must only fail, and soon.
    for (const char *name : {"pipe", "to_pipe", "zeros", "nothing", "huge"}) {
        SCOPED_TRACE(name);
        support::fresh_frame();
        setenv("OSTREL_FLUIDS", fluids.path().c_str(), 1);
        const std::clock_t start = std::clock();
        const auto answer = ask(name, "td", 500, 2.0, "t");
        EXPECT_LT(std::clock() - start, 5 * CLOCKS_PER_SEC);
        EXPECT_TRUE(answer.text.starts_with(" IOSTAT returned ") || answer.text.starts_with("Ostrel error: file "))
            << answer.text;
        EXPECT_EQ(answer.value, -8888.8);
        const std::string path = fluids.path() + "/" + name + ".osd";
        ideal_specific_heat::errmsg.reset();
        read_init_fluiddatafile(path.data(), path.size());
        EXPECT_EQ(support::shared_text(), support::without_padding(answer.text));
    }
    EXPECT_EQ(ask("good", "td", 500, 2.0, "t").text, "No errors");
}

TEST_F(bad_input, a_file_without_permission) {
    if (geteuid() == 0)
        GTEST_SKIP() << "everything may be read";
    const fluid_folder fluids;
    fluids.add("fluid", support::vapor_file());
    std::filesystem::permissions(fluids.path() + "/fluid.osd", std::filesystem::perms::none);
    EXPECT_EQ(ask("fluid", "td", 500, 2.0, "t").text, failed_open(EACCES));
}

TEST_F(bad_input, paths_of_every_length) {
    for (const std::size_t length : lengths())
        for (const char letter : {'x', '/', '.', '\0', '\xFF', ' '}) {
            std::string path(length, letter);
            ideal_specific_heat::errmsg.reset();
            read_init_fluiddatafile(path.data(), path.size());
            EXPECT_NE(support::shared_text(), "No errors") << length;
            ideal_specific_heat::errmsg.reset();
            read_init_fluiddatadb(path.data(), "fluid", path.size(), 5);
            EXPECT_EQ(support::shared_text(), " Error in Ostrel: error opening fluid fluid") << length;
        }
}

} // namespace
