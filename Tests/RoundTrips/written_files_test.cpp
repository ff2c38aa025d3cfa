// SPDX-License-Identifier: MIT
// Whole parameter files: the writers of all sections together must write a file that gives the same numbers.
#include "Tests/Support/frame.h"

#include <cmath>
#include <cstring>
#include <gmock/gmock.h>

namespace {

using gas_properties::gas;
using support::frame_test;

struct written_files : frame_test {};

/// All sections, one after the other, written from memory.
std::string written_file() {
    records::record_writer writer;
    thermodynamics::write_param_thermodynamics(writer);
    transport_properties::write_param_transport_propert(writer);
    return writer.text();
}

std::string transport_section(std::int32_t viscosity, std::int32_t conductivity) {
    constexpr const char *viscosities[] = {"", "1.1e-5\n", "", "", "", "1.7e-5 273.15 110.4\n", "1.3e-5 300.0\n"};
    constexpr const char *conductivities[] = {"", "0.017\n", "", "", "0.71\n"};
    return std::to_string(viscosity) + "\n" + viscosities[viscosity] + std::to_string(conductivity) + "\n" +
           conductivities[conductivity];
}

/// The bits of a fluid's numbers at some states, so that a NaN equals itself.
std::vector<std::uint64_t> answers(const std::string &fluid) {
    std::vector<std::uint64_t> bits;
    for (const auto &[t, d] : {std::pair(310.0, 1.3), {420.0, 60.0}, {900.0, 11.0}})
        for (const support::output_case &output : support::output_cases) {
            const support::answer answer = support::ask(fluid, "td", t, d, output.name);
            EXPECT_EQ(answer.text, "No errors") << output.name;
            bits.push_back(std::bit_cast<std::uint64_t>(answer.value));
        }
    return bits;
}

/// Whether Pc is the same after a conversion to atm and back: the two roundings may end at a neighbouring number.
bool survives_atm(double Pc) {
    return Pc / 101325.0 * 101325.0 == Pc;
}

TEST_F(written_files, every_shipped_fluid_is_the_same_again) {
    std::size_t exact = 0;
    for (const std::string &fluid : support::shipped_fluids()) {
        SCOPED_TRACE(fluid);
        support::fresh_library();
        ostrel::read_init_fluiddatafile(support::shipped_folder + ("/" + fluid) + ".osd");
        ASSERT_EQ(support::shared_text(), "No errors");
        const auto before = gas;
        const auto heat = ideal_specific_heat::active;
        const auto transport = transport_properties::active;
        const std::int32_t type = thermodynamics::gas_type;
        std::string text = written_file();
        // This is the only record that starts with its text.
        if (type == 8)
            text.replace(text.find(" Compressibility"), std::strlen(" Compressibility of ideal Z gas: "), "");

        const support::temporary_folder folder;
        support::fresh_library();
        ostrel::read_init_fluiddatafile(folder.write("written.osd", text));
        ASSERT_EQ(support::shared_text(), "No errors") << text;
        EXPECT_EQ(thermodynamics::gas_type, type);
        EXPECT_EQ(gas.name.padded(), (" " + std::string(before.name.padded())).substr(0, 32));
        EXPECT_EQ(gas.MM, before.MM);
        EXPECT_EQ(gas.Tc, before.Tc);
        EXPECT_EQ(gas.Zc, before.Zc);
        EXPECT_EQ(gas.Tb, before.Tb);
        EXPECT_EQ(gas.mur, before.mur);
        EXPECT_EQ(gas.kh, before.kh);
        if (survives_atm(before.Pc)) {
            EXPECT_EQ(gas.Pc, before.Pc);
            ++exact;
        } else {
            EXPECT_TRUE(gas.Pc == std::nextafter(before.Pc, 0) || gas.Pc == std::nextafter(before.Pc, 1e99));
        }
        EXPECT_EQ(ideal_specific_heat::active.cv_0, heat.cv_0);
        EXPECT_EQ(ideal_specific_heat::active.Tv, heat.Tv);
        EXPECT_EQ(transport_properties::active.viscosity_model, transport.viscosity_model);
        EXPECT_EQ(transport_properties::active.thermal_cond_model, transport.thermal_cond_model);
        if (type == 8) {
            EXPECT_EQ(ideal_Z_gas::active.Z_const, 0.9863);
        }
    }
    EXPECT_GT(exact, 0u);
}

/// A fluid must give the same answers after it was loaded, written and loaded again.
TEST_F(written_files, every_model_heat_capacity_and_transport_pair_answers_the_same_again) {
    std::size_t combinations = 0;
    for (const support::model_case &model : support::model_cases) {
        if (model.gas_type == 8)
            continue; // its record starts with a text
        // The reference pressure of a fluid without critical data is written in Pa and read in atm.
        if (&model.fluid != &support::vapor_fluid)
            continue;
        for (const support::heat_case &heat : support::heat_cases)
            for (std::int32_t viscosity = 1; viscosity <= 6; ++viscosity)
                for (std::int32_t conductivity = 1; conductivity <= 4; ++conductivity) {
                    if ((viscosity == 2 || viscosity == 3) && conductivity != viscosity)
                        continue;
                    SCOPED_TRACE(testing::Message() << model.name << ", " << heat.name << ", viscosity " << viscosity
                                                    << ", conductivity " << conductivity);
                    support::fresh_frame();
                    const support::fluid_folder folder;
                    folder.add("first", model.fluid + std::to_string(model.gas_type) + "\n" + model.records +
                                            heat.records + transport_section(viscosity, conductivity));
                    ostrel::read_init_fluiddatafile(folder.path() + "/first.osd");
                    ASSERT_EQ(support::shared_text(), "No errors");
                    ASSERT_TRUE(survives_atm(gas.Pc));
                    folder.add("second", written_file());
                    const auto first = answers("first");
                    EXPECT_EQ(answers("second"), first);
                    ++combinations;
                }
    }
    EXPECT_EQ(combinations, 7u * 10u * 18u);
}

TEST_F(written_files, dimensionless_coefficients_written_after_initialisation_do_not_read_back) {
    const support::fluid_folder folder;
    folder.add("first", support::vapor_file());
    ASSERT_TRUE(support::ask("first", "td", 400.0, 5.0, "p").ok());
    EXPECT_EQ(ideal_specific_heat::active.cv_0, 2.5 * gas.R);
    folder.add("second", written_file());
    ASSERT_TRUE(support::ask("second", "td", 400.0, 5.0, "p").ok());
    // The record of coeff_adim still says T, so that values which are in J/(kg K) by now are taken for multiples of R.
    EXPECT_TRUE(ideal_specific_heat::active.coeff_adim);
    EXPECT_EQ(ideal_specific_heat::active.cv_0, 2.5 * gas.R * gas.R);
}

TEST_F(written_files, a_reference_pressure_reads_back_in_the_wrong_unit) {
    const support::fluid_folder folder;
    folder.add("first", support::reference_file());
    ASSERT_TRUE(support::ask("first", "td", 400.0, 5.0, "p").ok());
    const double P_ref = gas.P_ref;
    folder.add("second", written_file());
    ASSERT_TRUE(support::ask("second", "td", 400.0, 5.0, "p").ok());
    EXPECT_EQ(gas.P_ref, P_ref * 101325.0);
}

TEST_F(written_files, the_record_of_an_ideal_gas_of_constant_Z_does_not_read_back) {
    const support::fluid_folder folder;
    folder.add("first", support::vapor_file("8\n0.9\n"));
    ASSERT_TRUE(support::ask("first", "td", 400.0, 5.0, "p").ok());
    folder.add("second", written_file());
    EXPECT_THAT(support::ask("second", "td", 400.0, 5.0, "p").text, testing::HasSubstr("Compressibility"));
}

} // namespace
