// SPDX-License-Identifier: MIT
// What the models have in common, asked of every module by itself: its parameters, its least volume, arguments out of
// range, and when an initialisation changes nothing.
#include "Tests/Support/critical_models.h"
#include "Tests/Support/modules.h"

namespace {

using gas_properties::gas;

struct model {
    const support::module_operations *module;
    std::string not_applicable = ""; ///< to a fluid that is no vapor
};
std::ostream &operator<<(std::ostream &out, const model &is) {
    return out << is.module->name;
}

using support::module_of;
const std::vector<model> ideal_gases = {{&module_of(1)}, {&module_of(8)}};
const std::vector<model> cubic_gases = {
    {&module_of(4), "Soave-Redlich-Kwong model is not applicable. In init_SRKG, module soave_redlich_kwong_gas."},
    {&module_of(5), "Peng-Robinson model is not applicable. In init_PRG, module peng_robinson_gas."},
    {&module_of(6), "Redlich-Kwong model is not applicable. In init_RKG, module redlich_kwong_gas."},
};
const std::vector<model> other_real_gases = {
    {&module_of(2), "van der Waals model is not applicable. In init_vdWG, module van_der_waals_gas."},
    {&module_of(3), "Martin-Hou model is not applicable. In init_MHG, module martin_hou_gas."},
    {&module_of(7), "Clausius-II model is not applicable. In init_CIIG, module clausius_II_gas."},
};

struct models_test : support::thermodynamics_test, testing::WithParamInterface<model> {
    const support::module_operations &module = *GetParam().module;

    void load() const { support::load(support::case_of(module.gas_type), support::heat_cases[0]); }
    /// Whether the module's parameters are all this number.
    bool all_are(double number) const {
        const std::vector<double> numbers = module.numbers();
        return numbers == std::vector<double>(numbers.size(), number);
    }
};
using models_without_a_search_test = models_test;
using models_of_a_real_gas_test = models_test;

TEST_P(models_test, parameters_are_zero_when_the_library_is_loaded) {
    EXPECT_TRUE(all_are(0));
}

TEST_P(models_test, the_minimum_volume_is_just_above_the_covolume) {
    load();
    const double b = module.covolume(), least = module.minimum_specific_volume();
    EXPECT_EQ(least, b == 0 ? 1.0e-12 : b * 1.000000000001);
    EXPECT_EQ(thermodynamics::vmin, least * 1.000000001);
    EXPECT_GT(least, b);
    EXPECT_LT(least, b == 0 ? 1.1e-12 : b * 1.000000000002);
}

TEST_P(models_test, only_the_ideal_Z_gas_has_parameters_in_a_file) {
    const support::temporary_folder folder;
    records::file_reader reader(folder.write("fluid.osd", "1.0\n"));
    const bool has = module.gas_type == 8;
    module.read_param(reader);
    EXPECT_EQ(reader.record_number(), has ? 1 : 0);
    EXPECT_EQ(all_are(0), !has);
    records::record_writer writer;
    module.write_param(writer);
    EXPECT_EQ(writer.text() == "", !has);
}

// The cubic models stop at one, behind their search for the critical volume.
TEST_P(models_without_a_search_test, an_old_message_stands_and_does_not_stop_init) {
    const support::critical_data fluid = {400.0, 4.0e6, 20.0, 0.27, 0.3, 270.0};
    support::use_record(fluid);
    module.init();
    EXPECT_EQ(support::shared_text(), "No errors");
    const auto numbers = module.numbers();
    const auto record = gas;
    EXPECT_EQ(numbers[0], 1.0) << "the reduced gas constant";
    support::use_record(fluid);
    ideal_specific_heat::errmsg.report({"earlier"});
    module.init();
    EXPECT_EQ(support::shared_text(), "earlier");
    EXPECT_EQ(module.numbers(), numbers);
    support::expect_record(record);
}

TEST_P(models_of_a_real_gas_test, a_fluid_without_critical_data_is_reported_and_nothing_changes) {
    load();
    support::read_well(support::gas_section, support::reference_fluid);
    gas.Tc = 300.0;
    gas.Pc = 5.0e6;
    const auto record = gas;
    std::string text = "The gas nitrogen                         is not a vapor: " + GetParam().not_applicable;
    text.resize(256, ' ');
    const auto loaded = module.numbers();
    module.init();
    EXPECT_EQ(ideal_specific_heat::errmsg.padded(), text);
    EXPECT_EQ(module.numbers(), loaded);
    support::expect_record(record);
    // Nor does a model become what it always is.
    ideal_specific_heat::errmsg.reset();
    module.fill(7.25);
    module.init();
    EXPECT_EQ(ideal_specific_heat::errmsg.padded(), text);
    EXPECT_TRUE(all_are(7.25));
    support::expect_record(record);
}

TEST_P(models_of_a_real_gas_test, arguments_are_not_checked) {
    load();
    const double b = module.covolume();
    EXPECT_GT(b, 0.0);
    for (const double T : {2.0, 4.0}) {
        const double P = module.P__T_v(T, b);
        // The terms of Martin and Hou are infinite too, and of both signs.
        EXPECT_TRUE(P == std::numeric_limits<double>::infinity() || (module.gas_type == 3 && !std::isfinite(P))) << P;
        EXPECT_TRUE(std::isnan(module.s__T_v(T, b / 2)));
    }
    EXPECT_EQ(support::shared_text(), "No errors");
}

auto all_of(std::initializer_list<std::vector<model>> groups) {
    std::vector<model> all;
    for (const auto &group : groups)
        all.insert(all.end(), group.begin(), group.end());
    return testing::ValuesIn(all);
}
INSTANTIATE_TEST_SUITE_P(, models_test, all_of({ideal_gases, cubic_gases, other_real_gases}),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(, models_without_a_search_test, all_of({ideal_gases, other_real_gases}),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(, models_of_a_real_gas_test, all_of({cubic_gases, other_real_gases}),
                         testing::PrintToStringParamName());

} // namespace
