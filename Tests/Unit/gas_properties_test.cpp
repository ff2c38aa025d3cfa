// SPDX-License-Identifier: MIT
#include "Tests/Support/thermodynamics.h"

#include <gmock/gmock.h>

namespace {

using gas_properties::gas;
using support::both_sources;
using support::gas_section;
using support::read;
using support::real;
using testing::ElementsAre;

const std::string vapor_text = "heading\n"
                               "model fluid\n"
                               "second line\n"
                               "heading\n"
                               "20.0  MM\n"
                               "T     vapor\n"
                               "300   Tc\n"
                               "50    Pc\n"
                               "0.27  Zc\n"
                               "200   Tb\n"
                               "0.5   mur\n"
                               "0.25  kh\n";
const std::string reference_text = "heading\n"
                                   "model fluid\n"
                                   "second line\n"
                                   "heading\n"
                                   "28.0  MM\n"
                                   "F     vapor\n"
                                   "320   T_ref\n"
                                   "2     P_ref\n"
                                   "0.45  v_ref\n"
                                   "0.5   mur\n"
                                   "0.25  kh\n";

struct gas_properties_test : support::thermodynamics_test {};

std::string padded32(std::string text) {
    text.resize(32, ' ');
    return text;
}

TEST_F(gas_properties_test, a_vapor_section_gives_the_derived_constants) {
    for (const auto from : both_sources) {
        SCOPED_TRACE(from);
        support::fresh_library();
        const auto [message, last] = read(gas_section, from, vapor_text);
        EXPECT_EQ(message, "");
        EXPECT_EQ(last, 12);
        EXPECT_EQ(gas.MM, 20.0);
        EXPECT_EQ(gas.R, 8314.0 / 20.0);
        EXPECT_TRUE(gas.vapor);
        EXPECT_EQ(gas.Tc, 300.0);
        EXPECT_EQ(gas.Pc, 5066250.0);
        EXPECT_EQ(gas.Zc, 0.27);
        EXPECT_EQ(gas.Tb, 200.0);
        EXPECT_EQ(gas.P_ref, gas.Pc);
        EXPECT_EQ(gas.T_ref, 300.0 * 0.27);
        EXPECT_DOUBLE_EQ(gas.T_ref, 81.0);
        EXPECT_EQ(gas.Z_ref, 0.27);
        EXPECT_NEAR(gas.omega, 0.45626, 5e-6);
        EXPECT_NEAR(gas.omega, std::log10(50.0) * 2 / 7 * 3 - 1, 4e-16);
        EXPECT_EQ(gas.mur, 0.5);
        EXPECT_EQ(gas.kh, 0.25);
    }
}

TEST_F(gas_properties_test, omega_is_computed_in_the_given_order) {
    for (const double Tb : {111.6, 184.091, 231.0, 299.99}) {
        SCOPED_TRACE(Tb);
        std::string text = vapor_text;
        text.replace(text.find("200 "), 4, records::list_directed({Tb}));
        support::read_well(gas_section, text);
        const double theta = Tb / 300.0;
        EXPECT_EQ(gas.omega, ((std::log10(5066250.0 / 101325.0) * theta / (1 - theta)) / 7.0) * 3.0 - 1.0);
    }
}

TEST_F(gas_properties_test, a_vapor_section_leaves_what_the_model_completes) {
    gas.v_ref = gas.c_ref = gas.vc = gas.e_0 = gas.s_0 = gas.cv_ref = gas.mu_ref = gas.kk_ref = gas.cv0_ref =
        gas.cp0_ref = 7.25;
    support::read_well(gas_section, vapor_text);
    for (const double kept :
         {gas.v_ref, gas.c_ref, gas.vc, gas.e_0, gas.s_0, gas.cv_ref, gas.mu_ref, gas.kk_ref, gas.cv0_ref, gas.cp0_ref})
        EXPECT_EQ(kept, 7.25);
}

TEST_F(gas_properties_test, a_reference_section_sets_Z_ref_and_leaves_the_critical_constants) {
    for (const auto from : both_sources) {
        SCOPED_TRACE(from);
        support::fresh_library();
        gas.Tc = gas.Pc = gas.vc = gas.Zc = gas.Tb = gas.omega = gas.c_ref = 7.25;
        gas.vapor = true;
        const auto [message, last] = read(gas_section, from, reference_text);
        EXPECT_EQ(message, "");
        EXPECT_EQ(last, 11);
        EXPECT_EQ(gas.R, 8314.0 / 28.0);
        EXPECT_FALSE(gas.vapor);
        EXPECT_EQ(gas.T_ref, 320.0);
        EXPECT_EQ(gas.P_ref, 202650.0);
        EXPECT_EQ(gas.v_ref, 0.45);
        EXPECT_EQ(gas.Z_ref, 202650.0 * 0.45 / (8314.0 / 28.0 * 320.0));
        EXPECT_EQ(gas.mur, 0.5);
        EXPECT_EQ(gas.kh, 0.25);
        for (const double kept : {gas.Tc, gas.Pc, gas.vc, gas.Zc, gas.Tb, gas.omega, gas.c_ref})
            EXPECT_EQ(kept, 7.25);
    }
}

TEST_F(gas_properties_test, name_and_label_are_32_characters_as_they_stand) {
    const std::string long_name = "  a name that is longer than 32 characters";
    for (const auto from : both_sources) {
        SCOPED_TRACE(from);
        support::fresh_library();
        read(gas_section, from, vapor_text);
        EXPECT_EQ(gas.name.padded(), padded32("model fluid"));
        EXPECT_EQ(gas.label.padded(), padded32("second line"));
        std::string text = vapor_text;
        text.replace(text.find("model fluid"), 11, long_name);
        read(gas_section, from, text);
        EXPECT_EQ(gas.name.padded(), long_name.substr(0, 32));
        EXPECT_EQ(gas.label.padded(), padded32("second line"));
    }
}

TEST_F(gas_properties_test, both_readers_start_behind_the_record_used_last) {
    for (const auto from : both_sources) {
        SCOPED_TRACE(from);
        support::fresh_library();
        const auto [message, last] = read(gas_section, from, "x\ny\nz\n" + vapor_text + "9 9 9\n", 3);
        EXPECT_EQ(message, "");
        EXPECT_EQ(last, 15);
        EXPECT_EQ(gas.kh, 0.25);
    }
}

// There is one record for each field, in this order. If a section ends before a field, the message names the field, the
// fields before it are read, and the fields behind it stay as they were.
TEST_F(gas_properties_test, a_section_that_breaks_off_names_the_field) {
    struct field {
        std::string wanted;
        double gas_properties::gas_constants::*variable = nullptr;
    };
    using constants = gas_properties::gas_constants;
    const field heading{"a heading"};
    const auto section = [&](std::initializer_list<field> own) {
        std::vector<field> all = {heading,
                                  {"name (a text)"},
                                  {"label (a text)"},
                                  heading,
                                  {"MM (a real)", &constants::MM},
                                  {"vapor (a logical)"}};
        all.insert(all.end(), own);
        all.insert(all.end(), {{"mur (a real)", &constants::mur}, {"kh (a real)", &constants::kh}});
        return all;
    };
    const struct {
        const std::string &text;
        std::vector<field> fields;
    } sections[] = {
        {vapor_text, section({{"Tc (a real)", &constants::Tc},
                              {"Pc (a real)", &constants::Pc},
                              {"Zc (a real)", &constants::Zc},
                              {"Tb (a real)", &constants::Tb}})},
        {reference_text, section({{"T_ref (a real)", &constants::T_ref},
                                  {"P_ref (a real)", &constants::P_ref},
                                  {"v_ref (a real)", &constants::v_ref}})},
    };
    for (const auto &[text, fields] : sections)
        for (const auto from : both_sources)
            for (std::size_t present = 0; present < fields.size(); ++present) {
                SCOPED_TRACE(testing::Message() << from << ", " << present << " records");
                support::fresh_library();
                for (const field &f : fields)
                    if (f.variable)
                        gas.*f.variable = -1.0;
                const auto [message, last] =
                    read(gas_section, from, support::first_records(text, static_cast<std::int64_t>(present)));
                // In lines, headings are stepped over and not read.
                const bool stepped_over = from == support::source::lines && fields[present].wanted == heading.wanted;
                const std::size_t missing = present + (stepped_over ? 1 : 0);
                EXPECT_EQ(message, support::unread(from, "record " + std::to_string(missing + 1) + ": expected " +
                                                             fields[missing].wanted + ", found the end of the file."));
                EXPECT_EQ(last, static_cast<std::int64_t>(missing) + 1);
                for (std::size_t i = 0; i < fields.size(); ++i)
                    if (fields[i].variable) {
                        EXPECT_EQ(gas.*fields[i].variable == -1.0, i >= present) << fields[i].wanted;
                    }
            }
}

TEST_F(gas_properties_test, a_value_that_is_none_is_an_error_of_its_record) {
    std::string text = vapor_text;
    text.replace(text.find("300 "), 4, "300K");
    EXPECT_EQ(read(gas_section, support::source::file, text).message,
              "Ostrel error: file fluid.osd, record 7: expected Tc (a real), found \"300K\".");
    EXPECT_EQ(gas.MM, 20.0);
    EXPECT_EQ(gas.mur, 0.0);
}

// A pressure is taken for atm, whether it is in the record or the record keeps the one before.
TEST_F(gas_properties_test, the_record_of_the_critical_pressure_is_found_without_changing_the_fluid) {
    const support::temporary_folder folder;
    const auto record_in = [&](const std::string &text) {
        records::file_reader file(folder.write("fluid.osd", text));
        return equations::record_of_critical_pressure(file);
    };
    const std::string before_head(vapor_text, 0, vapor_text.find("T     vapor"));
    const std::string before_Pc(vapor_text, 0, vapor_text.find("50    Pc"));
    EXPECT_EQ(record_in(vapor_text), 8);
    EXPECT_EQ(record_in(before_Pc + "50\n"), 8);
    EXPECT_EQ(record_in(before_Pc), 0) << "the end of the file";
    EXPECT_EQ(record_in(before_Pc + "high\n"), 0) << "no number";
    EXPECT_EQ(record_in(before_head), 0) << "neither a vapor nor none";
    EXPECT_EQ(record_in(reference_text), 0) << "no critical data";
    EXPECT_EQ(gas.MM, 0.0);
    EXPECT_EQ(gas.Pc, 0.0);
    EXPECT_EQ(support::shared_text(), "No errors");
}

TEST_F(gas_properties_test, null_values_keep_the_old_ones) {
    support::read_well(gas_section, vapor_text);
    gas.R = 0;
    const double Pc = gas.Pc;
    support::read_well(gas_section, "h\nother\nother\nh\n,\n,\n,\n,\n,\n,\n,\n,\n");
    EXPECT_EQ(gas.name.trimmed(), "other");
    EXPECT_EQ(gas.MM, 20.0);
    EXPECT_EQ(gas.R, 8314.0 / 20.0);
    EXPECT_TRUE(gas.vapor);
    EXPECT_EQ(gas.Tc, 300.0);
    EXPECT_EQ(gas.Pc, Pc * 101325.0);
    EXPECT_EQ(gas.Zc, 0.27);
    EXPECT_EQ(gas.Tb, 200.0);
    EXPECT_EQ(gas.mur, 0.5);
    EXPECT_EQ(gas.kh, 0.25);
}

TEST_F(gas_properties_test, impossible_constants_are_no_failure) {
    const auto with = [](std::string_view field, std::string_view value) {
        std::string text = vapor_text;
        text.replace(text.find(field), field.size(), value);
        support::read_well(gas_section, text);
    };
    with("20.0 ", "0.0 ");
    EXPECT_EQ(gas.R, std::numeric_limits<double>::infinity());
    with("200 ", "300 ");
    EXPECT_EQ(gas.omega, std::numeric_limits<double>::infinity());
    with("200 ", "400 ");
    EXPECT_LT(gas.omega, -1.0);
    EXPECT_EQ(support::shared_text(), "No errors");
}

TEST_F(gas_properties_test, the_writer_writes_a_vapor_record_by_record) {
    support::read_well(gas_section, vapor_text);
    gas.R = 0;
    EXPECT_THAT(support::written(gas_section),
                ElementsAre("", " " + padded32("model fluid"), " " + padded32("second line"), "",
                            "   20.000000000000000     ", " T", "   300.00000000000000     ",
                            "   50.000000000000000     ", "  0.27000000000000002     ", "   200.00000000000000     ",
                            "  0.50000000000000000     ", "  0.25000000000000000     "));
    EXPECT_EQ(gas.R, 8314.0 / 20.0);
}

TEST_F(gas_properties_test, the_writer_writes_a_reference_pressure_in_Pa) {
    support::read_well(gas_section, reference_text);
    EXPECT_THAT(support::written(gas_section),
                ElementsAre("", " " + padded32("model fluid"), " " + padded32("second line"), "", real({28.0}), " F",
                            real({320.0}), "   202650.00000000000     ", real({0.45}), real({0.5}), real({0.25})));
}

// The blank in front of a written text is read as the first character of the text.
TEST_F(gas_properties_test, a_written_section_reads_back_but_for_names_and_the_reference_pressure) {
    for (const std::string &text : {vapor_text, reference_text}) {
        support::fresh_library();
        support::read_well(gas_section, text);
        const auto before = gas;
        records::record_writer writer;
        gas_section.write(writer);
        support::fresh_library();
        support::read_well(gas_section, writer.text());
        EXPECT_EQ(gas.name.padded(), padded32(" model fluid"));
        EXPECT_EQ(gas.label.padded(), padded32(" second line"));
        EXPECT_EQ(gas.MM, before.MM);
        EXPECT_EQ(gas.R, before.R);
        EXPECT_EQ(gas.vapor, before.vapor);
        EXPECT_EQ(gas.Tc, before.Tc);
        EXPECT_EQ(gas.Pc, before.Pc);
        EXPECT_EQ(gas.Zc, before.Zc);
        EXPECT_EQ(gas.Tb, before.Tb);
        EXPECT_EQ(gas.omega, before.omega);
        EXPECT_EQ(gas.T_ref, before.T_ref);
        EXPECT_EQ(gas.P_ref, before.vapor ? before.P_ref : before.P_ref * 101325.0);
        EXPECT_EQ(gas.mur, before.mur);
        EXPECT_EQ(gas.kh, before.kh);
        if (!before.vapor) {
            EXPECT_EQ(gas.v_ref, before.v_ref);
        }
    }
}

} // namespace
