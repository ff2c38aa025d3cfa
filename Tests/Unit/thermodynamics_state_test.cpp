// SPDX-License-Identifier: MIT
// The choice of the model, the sections of all models, the reference state and the state vectors.
#include "Tests/Support/modules.h"

#include <gmock/gmock.h>
#include <set>

namespace {

using namespace thermodynamics;
using gas_properties::gas;
using ideal_specific_heat::errmsg;
using support::both_sources;
using support::read;
using support::read_well;
using support::thermodynamics_section;
using testing::ElementsAre;

const std::string constant_heat = "F\n1\n750.0\n";

struct thermodynamics_state_test : support::thermodynamics_test {
    static std::string text_of(std::int32_t type, const std::string &model_records = "",
                               const std::string &fluid = support::vapor_fluid,
                               const std::string &heat = constant_heat) {
        return fluid + std::to_string(type) + "\n" + model_records + heat;
    }
    /// Reads a fluid afresh without initialising it.
    static void read_fluid(std::int32_t type, const std::string &model_records = "",
                           const std::string &fluid = support::vapor_fluid, const std::string &heat = constant_heat) {
        support::fresh_library();
        read_well(thermodynamics_section, text_of(type, model_records, fluid, heat));
    }
};

// The table of the models

TEST_F(thermodynamics_state_test, names_of_the_models) {
    EXPECT_THAT(gas_short_names, ElementsAre("IG ", "VDW", "MH ", "SRK", "PR ", "RK ", "CII", "IZG"));
    const std::string names[] = {
        "IDEAL GAS MODEL",         "VAN DER WAALS GAS MODEL", "MARTIN-HOU GAS MODEL",  "SOAVE-REDLICH-KWONG GAS MODEL",
        "PENG-ROBINSON GAS MODEL", "REDLICH-KWONG GAS MODEL", "CLAUSIUS II GAS MODEL", "IDEAL Z GAS MODEL"};
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(gas_names[i], names[i] + std::string(29 - names[i].size(), ' '));
}

// Dispatch

/// Every operation without a model: 0, or the result as it was.
void expect_no_model() {
#define OSTREL_EXPECT_ZERO(unused, operation) EXPECT_EQ(operation(1.3, 0.9), 0.0) << #operation;
#define OSTREL_EXPECT_UNCHANGED(unused, operation, size) \
    {                                                    \
        std::array<double, size> result;                 \
        result.fill(7.25);                               \
        const auto before = result;                      \
        operation(1.3, 0.9, result);                     \
        EXPECT_EQ(result, before) << #operation;         \
    }
    OSTREL_SCALAR_OPERATIONS(OSTREL_EXPECT_ZERO, )
    OSTREL_ARRAY_OPERATIONS(OSTREL_EXPECT_UNCHANGED, )
    EXPECT_EQ(minimum_specific_volume(), 0.0);
    EXPECT_THAT(eos__T_v(1.3, 0.9), ElementsAre(1.3, 0.9, 0.0, 0.0));
}

TEST_F(thermodynamics_state_test, before_any_load_every_operation_answers_zero_or_leaves_its_result) {
    EXPECT_EQ(gas_type, 0);
    EXPECT_EQ(Tmin, 0.0);
    EXPECT_EQ(Pmin, 0.0);
    EXPECT_EQ(vmin, 0.0);
    expect_no_model();
}

TEST_F(thermodynamics_state_test, a_gas_type_outside_the_table_answers_zero_or_leaves_the_result) {
    support::load(support::model_cases[2], support::heat_cases[8]);
    for (const std::int32_t type : {-2147483647, -1, 0, 9, 70, 2147483647}) {
        SCOPED_TRACE(type);
        gas_type = type;
        expect_no_model();
        const auto extended = eos_ext__T_v(1.3, 0.9);
        EXPECT_EQ(extended[0], 1.3);
        EXPECT_EQ(extended[1], 0.9);
        EXPECT_EQ(extended[2], 0.0);
        EXPECT_EQ(extended[3], 0.0);
    }
}

TEST_F(thermodynamics_state_test, every_operation_is_that_of_the_model_of_the_moment) {
    support::load(support::case_of(8), support::heat_cases[8]);
    support::read_well(support::gas_section, support::vapor_fluid);
    for (const auto &module : support::modules)
        module.init();
    ASSERT_EQ(support::shared_text(), "No errors");
    const double T = 4.1, v = 0.8;
    std::set<double> pressures;
    for (const auto &module : support::modules) {
        SCOPED_TRACE(module.name);
        gas_type = module.gas_type;
#define OSTREL_COMPARE_SCALAR(unused, operation) EXPECT_EQ(operation(T, v), module.operation(T, v)) << #operation;
#define OSTREL_COMPARE_ARRAY(unused, operation, size)            \
    {                                                            \
        std::array<double, size> result{};                       \
        operation(T, v, result);                                 \
        EXPECT_EQ(result, module.operation(T, v)) << #operation; \
    }
        OSTREL_SCALAR_OPERATIONS(OSTREL_COMPARE_SCALAR, )
        OSTREL_ARRAY_OPERATIONS(OSTREL_COMPARE_ARRAY, )
        EXPECT_EQ(minimum_specific_volume(), module.minimum_specific_volume());
        pressures.insert(P__T_v(T, v));
    }
    EXPECT_EQ(pressures.size(), std::size(support::modules)) << "no two models alike";
}

// The sections

TEST_F(thermodynamics_state_test, both_readers_take_the_sections_in_order) {
    const struct {
        std::int32_t type;
        std::string records;
        std::int64_t last;
    } cases[] = {{1, "", 16}, {7, "", 16}, {8, "0.9\n", 17}};
    for (const auto &[type, records, last] : cases)
        for (const auto from : both_sources) {
            SCOPED_TRACE(testing::Message() << type << " " << from);
            support::fresh_library();
            const auto done = read(thermodynamics_section, from, "0\n0\n" + text_of(type, records) + "99\n99\n", 2);
            EXPECT_EQ(done.message, "");
            EXPECT_EQ(done.last, last + 2);
            EXPECT_EQ(gas.MM, 44.0);
            EXPECT_EQ(gas_type, type);
            EXPECT_EQ(ideal_Z_gas::active.Z_const, type == 8 ? 0.9 : 0.0);
            EXPECT_EQ(ideal_specific_heat::active.function_type, 1);
            EXPECT_EQ(ideal_specific_heat::active.cv_0, 750.0);
        }
}

// Where there is no model of that number, or one whose constants follow from the fluid's (Peng-Robinson, 5,
// among them), the heat capacity comes next in files and in databases.
TEST_F(thermodynamics_state_test, a_gas_type_without_parameters_of_its_own_reads_the_common_sections_only) {
    for (const std::int32_t type : {-1, 0, 9, 2147483647, 2, 3, 4, 5, 6})
        for (const auto from : both_sources) {
            SCOPED_TRACE(testing::Message() << type << " " << from);
            support::fresh_library();
            const auto done = read(thermodynamics_section, from, text_of(type) + "99\n99\n");
            EXPECT_EQ(done.message, "");
            EXPECT_EQ(done.last, 16);
            EXPECT_EQ(gas_type, type);
            EXPECT_EQ(ideal_specific_heat::active.cv_0, 750.0);
        }
}

TEST_F(thermodynamics_state_test, a_null_gas_type_keeps_the_old_one) {
    gas_type = 8;
    for (const auto from : both_sources) {
        SCOPED_TRACE(from);
        ideal_Z_gas::active.Z_const = 0;
        EXPECT_EQ(read(thermodynamics_section, from, support::vapor_fluid + ",\n0.9\n" + constant_heat).last, 17);
        EXPECT_EQ(gas_type, 8);
        EXPECT_EQ(ideal_Z_gas::active.Z_const, 0.9);
    }
}

TEST_F(thermodynamics_state_test, sections_that_break_off_name_the_record_and_can_be_evaluated) {
    const std::string text = text_of(8, "0.9\n", support::vapor_fluid, "T\n4\n2\n1 2\n7 8\n1 1\n1.5\n1\n2.5\n2\n");
    const std::int64_t last = 12 + 2 + 10;
    for (const auto from : both_sources)
        for (std::int64_t present = 0; present < last; ++present) {
            SCOPED_TRACE(testing::Message() << from << ", " << present << " records");
            support::load(support::model_cases[2], support::heat_cases[6]);
            const auto done = read(thermodynamics_section, from, support::first_records(text, present));
            EXPECT_NE(done.message, "");
            EXPECT_EQ(gas_type, present > 12 ? 8 : 7);
            init_thermodynamics();
            for (const auto &[name, T, v] : support::states)
                for (volatile const double result : eos_ext__T_v(T, v))
                    (void)result;
            support::written(thermodynamics_section);
        }
    EXPECT_EQ(read(thermodynamics_section, support::source::file, support::vapor_fluid + "7.0\n").message,
              "Ostrel error: file fluid.osd, record 13: expected gas_type (an integer), found \"7.0\".");
}

TEST_F(thermodynamics_state_test, the_writer_writes_the_sections_in_order) {
    const auto gas_records = [] { return support::written(support::gas_section); };
    const auto heat_records = [] { return support::written(support::heat_section); };
    const struct {
        std::int32_t type;
        std::string records;
        std::vector<std::string> expected;
    } cases[] = {
        {1, "", {"           1      --> Gas type : IDEAL GAS MODEL              "}},
        {5, "", {"           5      --> Gas type : PENG-ROBINSON GAS MODEL      "}},
        {7, "", {"           7      --> Gas type : CLAUSIUS II GAS MODEL        "}},
        {8,
         "0.9\n",
         {"           8      --> Gas type : IDEAL Z GAS MODEL            ",
          " Compressibility of ideal Z gas:   0.90000000000000002     "}},
        {0, "", {"           0      --> Gas type : "}},
        {9, "", {"           9      --> Gas type : "}},
    };
    for (const auto &[type, records, expected] : cases) {
        SCOPED_TRACE(type);
        read_fluid(type, records);
        std::vector<std::string> all = gas_records();
        all.insert(all.end(), expected.begin(), expected.end());
        const auto heat = heat_records();
        all.insert(all.end(), heat.begin(), heat.end());
        EXPECT_EQ(support::written(thermodynamics_section), all);
    }
}

TEST_F(thermodynamics_state_test, written_sections_of_models_without_parameters_read_back) {
    for (const std::int32_t type : {1, 7}) {
        read_fluid(type);
        records::record_writer writer;
        thermodynamics_section.write(writer);
        const auto before = gas;
        support::fresh_library();
        read_well(thermodynamics_section, writer.text());
        EXPECT_EQ(gas_type, type);
        EXPECT_EQ(gas.Pc, before.Pc);
        EXPECT_EQ(gas.omega, before.omega);
        EXPECT_EQ(ideal_specific_heat::active.cv_0, 750.0);
    }
}

// Initialisation

TEST_F(thermodynamics_state_test, energy_and_entropy_are_zero_at_the_reference_point) {
    support::for_each_loaded([] {
        const double T = 1.0 / gas.Z_ref;
        // Offset and value are the same sum, but for the order in which the offset comes to it.
        EXPECT_NEAR(e__T_v(T, 1.0), 0.0, 8 * support::epsilon * (std::abs(gas.e_0) + 30.0));
        EXPECT_NEAR(s__T_v(T, 1.0), 0.0, 8 * support::epsilon * (std::abs(gas.s_0) + 30.0));
        EXPECT_NE(gas.e_0, 0.0);
        EXPECT_NE(gas.s_0, 0.0);
        EXPECT_EQ(gas.cv_ref, ideal_specific_heat::phip__T(T));
        EXPECT_EQ(Pmin, 1e-5);
        EXPECT_EQ(Tmin, 1e-6);
        EXPECT_EQ(vmin, minimum_specific_volume() * 1.000000001);
    });
}

TEST_F(thermodynamics_state_test, vmin_of_every_model) {
    for (const auto &model : support::model_cases) {
        SCOPED_TRACE(model.name);
        support::load(model, support::heat_cases[0]);
        if (model.gas_type == 1 || model.gas_type == 8) {
            EXPECT_EQ(vmin, 1.0e-12 * 1.000000001);
            EXPECT_DOUBLE_EQ(vmin, 1.000000001e-12);
            continue;
        }
        const double b = support::active_covolume();
        EXPECT_GT(b, 0.0);
        EXPECT_EQ(vmin, b * 1.000000000001 * 1.000000001);
    }
}

// The heat capacity takes the reference state as the model has completed it.
TEST_F(thermodynamics_state_test, the_model_is_initialised_before_the_heat_capacity) {
    for (const auto &model : support::model_cases) {
        SCOPED_TRACE(model.name);
        support::load(model, support::heat_cases[9]);
        EXPECT_EQ(ideal_specific_heat::active.T_ref, gas.T_ref);
        EXPECT_EQ(ideal_specific_heat::active.v_ref, gas.v_ref);
        EXPECT_EQ(ideal_specific_heat::active.P_ref, gas.P_ref);
        EXPECT_EQ(ideal_specific_heat::active.Rgas, gas.R);
        EXPECT_EQ(ideal_specific_heat::active.Tv[0], 4.1 * gas.T_ref);
    }
}

/// What init_thermodynamics sets last: 7.25 each for as long as it has not come to it.
void mark_reference_state() {
    gas.e_0 = gas.s_0 = gas.cv_ref = Tmin = Pmin = vmin = 7.25;
}
void expect_reference_state_untouched() {
    for (const double kept : {gas.e_0, gas.s_0, gas.cv_ref, Tmin, Pmin, vmin})
        EXPECT_EQ(kept, 7.25);
}

TEST_F(thermodynamics_state_test, a_message_of_the_model_stops_the_initialisation) {
    read_fluid(7, "", support::reference_fluid, "T\n1\n3.5\n");
    mark_reference_state();
    init_thermodynamics();
    EXPECT_EQ(support::shared_text(), "The gas nitrogen                         is not a vapor: Clausius-II model is "
                                      "not applicable. In init_CIIG, module clausius_II_gas.");
    EXPECT_EQ(ideal_specific_heat::active.Rgas, 0.0);
    EXPECT_EQ(ideal_specific_heat::active.cv_0, 3.5);
    expect_reference_state_untouched();
}

TEST_F(thermodynamics_state_test, a_message_of_the_heat_capacity_stops_the_initialisation) {
    read_fluid(1, "", support::reference_fluid, "T\n2\n3.5 0.4\n");
    mark_reference_state();
    init_thermodynamics();
    EXPECT_EQ(support::shared_text(),
              "The gas nitrogen                         is not a vapor: Dense gas power law is not applicable. "
              "In init_ideal_specific_heat.");
    EXPECT_EQ(ideal_gas::active.Rgas, 1.0);
    EXPECT_EQ(ideal_specific_heat::active.Rgas, gas.R);
    expect_reference_state_untouched();
}

TEST_F(thermodynamics_state_test, an_old_message_lets_the_model_initialise_and_nothing_else) {
    read_fluid(7);
    mark_reference_state();
    errmsg.report({"some failure"});
    init_thermodynamics();
    EXPECT_EQ(support::shared_text(), "some failure");
    EXPECT_EQ(clausius_II_gas::active.Rgas, 1.0);
    EXPECT_EQ(ideal_specific_heat::active.Rgas, 0.0);
    expect_reference_state_untouched();
}

TEST_F(thermodynamics_state_test, a_gas_type_outside_the_table_initialises_to_zero_offsets) {
    for (const std::int32_t type : {-1, 0, 9, 2147483647}) {
        SCOPED_TRACE(type);
        read_fluid(type);
        mark_reference_state();
        init_thermodynamics();
        EXPECT_EQ(support::shared_text(), "No errors");
        EXPECT_EQ(gas.e_0, 0.0);
        EXPECT_EQ(gas.s_0, 0.0);
        EXPECT_EQ(vmin, 0.0);
        EXPECT_EQ(Tmin, 1e-6);
        EXPECT_EQ(Pmin, 1e-5);
        EXPECT_EQ(ideal_specific_heat::active.Rgas, gas.R);
    }
}

TEST_F(thermodynamics_state_test, another_fluid_replaces_everything) {
    support::load(support::model_cases[2], support::heat_cases[8]);
    const double e_0 = gas.e_0, lowest = vmin;
    read_well(thermodynamics_section, text_of(1, "", support::reference_fluid));
    init_thermodynamics();
    EXPECT_EQ(gas_type, 1);
    EXPECT_NE(gas.e_0, e_0);
    EXPECT_NE(vmin, lowest);
    EXPECT_EQ(gas.T_ref, 300.0);
    EXPECT_DOUBLE_EQ(e__T_v(2.0, 1.0), 750.0 / gas.R);
}

// State vectors

TEST_F(thermodynamics_state_test, the_basic_state_holds_T_v_e_P) {
    support::for_each_state(
        [](double T, double v) { EXPECT_THAT(eos__T_v(T, v), ElementsAre(T, v, e__T_v(T, v), P__T_v(T, v))); });
}

TEST_F(thermodynamics_state_test, the_extended_state_adds_the_speed_of_sound_and_two_derivatives) {
    support::for_each_state([](double T, double v) {
        std::array<double, 2> dP{};
        dP__dT_dv(T, v, dP);
        const double c = std::sqrt(v * v * ((T / cv__T_v(T, v)) * (dP[0] * dP[0]) - dP[1]));
        const auto [dP_dre, dP_dr] = dP__dre_dr__T_v(T, v);
        const auto expected = ElementsAre(T, v, e__T_v(T, v), P__T_v(T, v), c, dP_dre, dP_dr);
        EXPECT_THAT(eos_ext__T_v(T, v), expected);
        EXPECT_THAT(eos_ext__eos(eos__T_v(T, v)), expected);
    });
}

TEST_F(thermodynamics_state_test, the_extended_state_copies_the_basic_one) {
    support::load(support::model_cases[2], support::heat_cases[0]);
    const auto extended = eos_ext__eos({4.0, 0.9, 11.0, 12.0});
    EXPECT_EQ(extended[2], 11.0);
    EXPECT_EQ(extended[3], 12.0);
    EXPECT_EQ(extended[4], eos_ext__T_v(4.0, 0.9)[4]);
}

TEST_F(thermodynamics_state_test, states_from_energy_and_volume_return_their_temperature) {
    support::for_each_loaded([] {
        for (const double Tr : {0.9, 1.3, 2.9}) {
            const double T = Tr / gas.Z_ref, v = 1.7, e = e__T_v(T, v);
            for (const std::optional<double> start : {std::optional<double>(), std::optional(0.97 * T)}) {
                SCOPED_TRACE(testing::Message() << Tr << (start ? " from a start temperature" : ""));
                basic_state basic{};
                eos__e_v(e, v, basic, start);
                EXPECT_NEAR(e__T_v(basic[0], v), e, 1e-9);
                EXPECT_NEAR(basic[0], T, 1e-9);
                EXPECT_EQ(basic, eos__T_v(basic[0], v));
                extended_state extended{};
                eos_ext__e_v(e, v, extended, start);
                EXPECT_EQ(extended, eos_ext__T_v(basic[0], v));
            }
        }
    });
    EXPECT_EQ(support::shared_text(), "No errors");
}

TEST_F(thermodynamics_state_test, an_unreachable_energy_leaves_the_result_unwritten) {
    support::load(support::model_cases[0], support::heat_cases[0]);
    const double below_all = e__T_v(0.0, 1.0) - 1.0;
    basic_state basic = {1, 2, 3, 4};
    eos__e_v(below_all, 1.0, basic);
    EXPECT_EQ(support::shared_text(), "ERROR: in T__e_v");
    EXPECT_THAT(basic, ElementsAre(1, 2, 3, 4));
    errmsg.reset();
    extended_state extended = {1, 2, 3, 4, 5, 6, 7};
    eos_ext__e_v(below_all, 1.0, extended);
    EXPECT_EQ(support::shared_text(), "ERROR: in T__e_v");
    EXPECT_THAT(extended, ElementsAre(1, 2, 3, 4, 5, 6, 7));
}

TEST_F(thermodynamics_state_test, an_old_message_leaves_the_result_unwritten) {
    support::load(support::model_cases[0], support::heat_cases[0]);
    errmsg.report({"some failure"});
    basic_state basic = {1, 2, 3, 4};
    eos__e_v(e__T_v(1.2, 1.0), 1.0, basic);
    EXPECT_THAT(basic, ElementsAre(1, 2, 3, 4));
    extended_state extended = {1, 2, 3, 4, 5, 6, 7};
    eos_ext__e_v(e__T_v(1.2, 1.0), 1.0, extended);
    EXPECT_THAT(extended, ElementsAre(1, 2, 3, 4, 5, 6, 7));
    EXPECT_EQ(support::shared_text(), "some failure");
}

// On a reference fluid the reduced pressure of the ideal Z gas is Z at (1, 1): the point where P is 1 and
// energy and entropy are zero is at T = 1/Z.
TEST_F(thermodynamics_state_test, the_reference_point_of_the_ideal_Z_gas_on_a_reference_fluid) {
    support::load({"", 8, support::reference_fluid, "0.8\n"}, support::heat_cases[0]);
    EXPECT_EQ(P__T_v(1.0, 1.0), 0.8);
    EXPECT_DOUBLE_EQ(P__T_v(1.0 / 0.8, 1.0), 1.0);
    EXPECT_NEAR(e__T_v(1.0 / 0.8, 1.0), 0.0, 8 * support::epsilon * std::abs(gas.e_0));
    EXPECT_NEAR(s__T_v(1.0 / 0.8, 1.0), 0.0, 8 * support::epsilon * std::abs(gas.s_0));
}

} // namespace
