// SPDX-License-Identifier: MIT
// What the models have in common, asked of every module by itself: its parameters, its least volume, arguments out of
// range, and when an initialisation changes nothing.
#include "Tests/Support/critical_models.h"
#include "Tests/Support/modules.h"

#include <gmock/gmock.h>

namespace {

using gas_properties::gas;
using support::module_operations;

template <class Row>
struct test_of_a_module : support::thermodynamics_test, testing::WithParamInterface<Row> {};

// Every model.

struct models_test : test_of_a_module<module_operations> {};

TEST_P(models_test, parameters_are_zero_when_the_library_is_loaded) {
    EXPECT_THAT(GetParam().numbers(), testing::Each(0.0));
}

TEST_P(models_test, the_minimum_volume_is_just_above_the_covolume) {
    const module_operations &module = GetParam();
    support::load(support::case_of(module.gas_type), support::heat_cases[0]);
    const double b = module.covolume(), least = module.minimum_specific_volume();
    EXPECT_EQ(least, b == 0 ? 1.0e-12 : b * 1.000000000001);
    EXPECT_EQ(thermodynamics::vmin, least * 1.000000001);
    EXPECT_GT(least, b);
    EXPECT_LT(least, b == 0 ? 1.1e-12 : b * 1.000000000002);
}

INSTANTIATE_TEST_SUITE_P(, models_test, testing::ValuesIn(support::modules), testing::PrintToStringParamName());

// Those without parameters in the fluid's file: all but the last.

struct models_without_parameters_test : test_of_a_module<module_operations> {};

TEST_P(models_without_parameters_test, needs_none_and_has_none) {
    const support::temporary_folder folder;
    records::file_reader reader(folder.write("fluid.osd", "1.0\n"));
    GetParam().read_param(reader);
    EXPECT_EQ(reader.record_number(), 0);
    EXPECT_THAT(GetParam().numbers(), testing::Each(0.0));
    records::record_writer writer;
    GetParam().write_param(writer);
    EXPECT_EQ(writer.text(), "");
}

INSTANTIATE_TEST_SUITE_P(, models_without_parameters_test,
                         testing::ValuesIn(std::begin(support::modules), std::end(support::modules) - 1),
                         testing::PrintToStringParamName());

// Those that search for no critical volume.

struct models_without_a_search_test : test_of_a_module<module_operations> {};

TEST_P(models_without_a_search_test, an_old_message_stands_and_does_not_stop_init) {
    const module_operations &module = GetParam();
    const support::critical_data fluid = {400.0, 4.0e6, 20.0, 0.27, 0.3, 270.0};
    support::use_record(fluid);
    module.init();
    EXPECT_EQ(support::shared_text(), "No errors");
    const auto numbers = module.numbers();
    const auto record = gas;
    EXPECT_THAT(numbers, testing::Contains(1.0)) << "the reduced gas constant";
    support::use_record(fluid);
    ideal_specific_heat::errmsg.report({"earlier"});
    module.init();
    EXPECT_EQ(support::shared_text(), "earlier");
    EXPECT_EQ(module.numbers(), numbers);
    support::expect_record(record);
}

INSTANTIATE_TEST_SUITE_P(, models_without_a_search_test,
                         testing::Values(support::module_of(1), support::module_of(2), support::module_of(3),
                                         support::module_of(7), support::module_of(8)),
                         testing::PrintToStringParamName());

// Those of a real gas, which are made from critical data.

struct real_gas {
    std::int32_t gas_type;
    std::string not_applicable; ///< behind the name of a fluid that is no vapor

    const module_operations &module() const { return support::module_of(gas_type); }
};
std::ostream &operator<<(std::ostream &out, const real_gas &is) {
    return out << is.module();
}
const real_gas real_gases[] = {
    {2, "van der Waals model is not applicable. In init_vdWG, module van_der_waals_gas."},
    {3, "Martin-Hou model is not applicable. In init_MHG, module martin_hou_gas."},
    {4, "Soave-Redlich-Kwong model is not applicable. In init_SRKG, module soave_redlich_kwong_gas."},
    {5, "Peng-Robinson model is not applicable. In init_PRG, module peng_robinson_gas."},
    {6, "Redlich-Kwong model is not applicable. In init_RKG, module redlich_kwong_gas."},
    {7, "Clausius-II model is not applicable. In init_CIIG, module clausius_II_gas."},
};

struct models_of_a_real_gas_test : test_of_a_module<real_gas> {
    const module_operations &module = GetParam().module();

    void load() const { support::load(support::case_of(module.gas_type), support::heat_cases[0]); }
};

TEST_P(models_of_a_real_gas_test, a_fluid_without_critical_data_is_reported_and_nothing_changes) {
    load();
    support::read_well(support::gas_section, support::reference_fluid);
    gas.Tc = 300.0;
    gas.Pc = 5.0e6;
    const auto record = gas;
    const auto loaded = module.numbers();
    // As another fluid left them, and as no fluid leaves them.
    for (const bool marked : {false, true}) {
        ideal_specific_heat::errmsg.reset();
        if (marked)
            module.fill(7.25);
        module.init();
        std::string text = "The gas nitrogen                         is not a vapor: " + GetParam().not_applicable;
        text.resize(256, ' ');
        EXPECT_EQ(ideal_specific_heat::errmsg.padded(), text);
        support::expect_record(record);
        if (marked)
            EXPECT_THAT(module.numbers(), testing::Each(7.25));
        else
            EXPECT_EQ(module.numbers(), loaded);
    }
}

TEST_P(models_of_a_real_gas_test, arguments_are_not_checked) {
    load();
    const double b = module.covolume();
    EXPECT_GT(b, 0.0);
    for (const double T : {2.0, 4.0}) {
        const double P = module.P__T_v(T, b);
        // All terms of Martin and Hou are infinite, with either sign.
        if (module.gas_type == 3)
            EXPECT_FALSE(std::isfinite(P)) << P;
        else
            EXPECT_EQ(P, std::numeric_limits<double>::infinity());
        EXPECT_TRUE(std::isnan(module.s__T_v(T, b / 2)));
    }
    EXPECT_EQ(support::shared_text(), "No errors");
}

INSTANTIATE_TEST_SUITE_P(, models_of_a_real_gas_test, testing::ValuesIn(real_gases), testing::PrintToStringParamName());

} // namespace
