// SPDX-License-Identifier: MIT
// Fluids in instances of their own: the same bits as the modules give, and nothing of the modules touched.
#include "Equations/fluid_parameters.h"
#include "Tests/Support/thermodynamics.h"

#include <bit>

namespace {

using equations::fluid_parameters;

struct fluid_parameters_test : support::thermodynamics_test {};

const std::string transport_records = "3\n3\n";

std::string text_of(const support::model_case &model, const support::heat_case &heat) {
    return model.fluid + std::to_string(model.gas_type) + "\n" + model.records + heat.records +
           (&model.fluid == &support::vapor_fluid ? transport_records : support::constant_transport);
}

/// Reads and completes a fluid from its text; answers the message.
std::string load(fluid_parameters &fluid, const std::string &text) {
    const support::temporary_folder folder;
    records::file_reader reader(folder.write("fluid.osd", text));
    read(reader, fluid);
    if (reader.failed())
        return std::string(reader.message());
    records::error_text message;
    complete(fluid, message);
    return std::string(message.trimmed());
}

std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

/// Pressure, energy, entropy and cp of an instance.
std::array<double, 4> properties(const fluid_parameters &fluid, double T, double v) {
    return std::visit(
        [&](const auto &model) {
            const auto equation = equations::equation_of(model, fluid.constants, fluid.heat, fluid.lowest);
            return std::array{P__T_v(equation.model, equation.ideal, T, v),
                              e__T_v(equation.model, equation.ideal, T, v),
                              s__T_v(equation.model, equation.ideal, T, v),
                              equation.properties(T, v, [](const auto &state) { return state.cp(); })};
        },
        fluid.model);
}

TEST_F(fluid_parameters_test, an_instance_has_the_bits_of_the_modules) {
    for (const support::model_case &model : support::model_cases)
        for (const support::heat_case &heat : support::heat_cases) {
            if (!support::accepts(model, heat))
                continue;
            SCOPED_TRACE(std::string(model.name) + ", " + heat.name);
            const std::string text = text_of(model, heat);
            fluid_parameters fluid;
            ASSERT_EQ(load(fluid, text), "No errors");
            EXPECT_EQ(thermodynamics::gas_type, 0) << "the modules are not touched";
            EXPECT_EQ(gas_properties::gas.MM, 0);

            const support::temporary_folder folder;
            records::file_reader reader(folder.write("fluid.osd", text));
            thermodynamics::read_param_thermodynamics(reader);
            transport_properties::read_param_transport_properties(reader);
            thermodynamics::init_thermodynamics();
            transport_properties::init_transport_properties();
            ASSERT_EQ(support::shared_text(), "No errors");
            EXPECT_EQ(fluid.gas_type, thermodynamics::gas_type);
            EXPECT_EQ(fluid.model.index(), static_cast<std::size_t>(model.gas_type));
            for (const auto member : {&equations::gas_constants::e_0, &equations::gas_constants::s_0,
                                      &equations::gas_constants::cv_ref, &equations::gas_constants::T_ref,
                                      &equations::gas_constants::v_ref, &equations::gas_constants::cp0_ref,
                                      &equations::gas_constants::mu_ref, &equations::gas_constants::kk_ref})
                EXPECT_EQ(bits(fluid.constants.*member), bits(gas_properties::gas.*member));
            EXPECT_EQ(fluid.lowest.Tmin, thermodynamics::Tmin);
            EXPECT_EQ(fluid.lowest.Pmin, thermodynamics::Pmin);
            EXPECT_EQ(bits(fluid.lowest.vmin), bits(thermodynamics::vmin));
            const double T = 1.2 / fluid.constants.Z_ref;
            const double v = 3.1;
            const std::array<double, 4> expected = {thermodynamics::P__T_v(T, v), thermodynamics::e__T_v(T, v),
                                                    thermodynamics::s__T_v(T, v), thermodynamics::cp__T_v(T, v)};
            const std::array<double, 4> found = properties(fluid, T, v);
            for (std::size_t i = 0; i < expected.size(); ++i)
                EXPECT_EQ(bits(found[i]), bits(expected[i])) << i;
            library_state::forget_everything();
        }
}

TEST_F(fluid_parameters_test, instances_stand_side_by_side) {
    fluid_parameters first;
    fluid_parameters second;
    ASSERT_EQ(load(first, support::vapor_file("5\n")), "No errors");
    const std::array<double, 4> before = properties(first, 3.0, 2.0);
    ASSERT_EQ(load(second, support::reference_file()), "No errors");
    EXPECT_EQ(properties(first, 3.0, 2.0), before);
    EXPECT_NE(properties(second, 3.0, 2.0), before);
    const fluid_parameters copy = first;
    first = second;
    EXPECT_EQ(properties(copy, 3.0, 2.0), before);
}

TEST_F(fluid_parameters_test, a_code_that_no_model_has_gives_zeros) {
    for (const char *code : {"0\n", "9\n", "-1\n"}) {
        SCOPED_TRACE(code);
        fluid_parameters fluid;
        EXPECT_EQ(load(fluid, support::vapor_file(code)), "No errors");
        EXPECT_EQ(fluid.model.index(), 0U);
        EXPECT_EQ(properties(fluid, 3.0, 2.0)[0], 0);
        EXPECT_EQ(fluid.lowest.vmin, 0);
    }
}

TEST_F(fluid_parameters_test, says_what_keeps_a_fluid_from_being_read_or_completed) {
    fluid_parameters fluid;
    EXPECT_EQ(load(fluid, support::vapor_section + "7\nperhaps\n"),
              "Ostrel error: file fluid.osd, record 14: expected coeff_adim (a logical), found \"perhaps\".");
    fluid_parameters no_vapor;
    EXPECT_TRUE(load(no_vapor, support::reference_file("5\n")).starts_with("The gas reference fluid"));
    fluid_parameters mismatch;
    EXPECT_TRUE(load(mismatch, support::vapor_section + "7\n" + support::constant_heat + "3\n1\n0.02\n")
                    .starts_with("Viscosity and thermal conductivity model do not match."));
    EXPECT_EQ(support::shared_text(), "No errors");
}

TEST_F(fluid_parameters_test, is_written_as_the_modules_write_it) {
    for (const support::model_case &model : support::model_cases) {
        SCOPED_TRACE(model.name);
        const std::string text = text_of(model, support::heat_cases[0]);
        const support::temporary_folder folder;
        const std::string path = folder.write("fluid.osd", text);
        fluid_parameters fluid;
        records::file_reader reader(path);
        read(reader, fluid);
        records::record_writer of_instance;
        write(of_instance, fluid);
        records::file_reader again(path);
        thermodynamics::read_param_thermodynamics(again);
        transport_properties::read_param_transport_properties(again);
        records::record_writer of_modules;
        thermodynamics::write_param_thermodynamics(of_modules);
        transport_properties::write_param_transport_propert(of_modules);
        EXPECT_EQ(of_instance.text(), of_modules.text());
    }
}

} // namespace
