// SPDX-License-Identifier: MIT
#include "Tests/Support/entry_points.h"
#include "Tests/Support/handles.h"

#include <gmock/gmock.h>
#include <set>

namespace {

using support::handle;
using testing::AllOf;
using testing::HasSubstr;

constexpr const char *standard = "model=srk; states=stable; volume=equation; reference=critical";

std::string options_after(const char *options) {
    handle fluid;
    EXPECT_EQ(fluid.open("toluene", options).message, "") << options;
    return fluid.text("options");
}
support::outcome refusal(const char *options) {
    handle fluid;
    return fluid.open("toluene", options);
}

TEST(options, none_stand_for_the_standard) {
    for (const char *const none : {static_cast<const char *>(nullptr), "", " ", " \t "})
        EXPECT_EQ(options_after(none), standard);
}

TEST(options, each_value_of_each_key) {
    for (const char *const model : {"ig", "vdw", "mh", "srk", "pr", "rk", "cii", "izg"}) {
        handle fluid;
        ASSERT_EQ(fluid.open("toluene", (std::string("model=") + model).c_str()).message, "");
        EXPECT_EQ(fluid.text("model"), model);
        EXPECT_EQ(fluid.text("options").find(std::string("model=") + model + ';'), 0U);
    }
    EXPECT_EQ(options_after("states=stable"), standard);
    EXPECT_EQ(options_after("states=surface"), "model=srk; states=surface; volume=equation; reference=critical");
    EXPECT_EQ(options_after("phase=liquid; states=metastable"),
              "model=srk; states=metastable; phase=liquid; volume=equation; reference=critical");
    EXPECT_EQ(options_after("states=metastable; phase=vapor"),
              "model=srk; states=metastable; phase=vapor; volume=equation; reference=critical");
    EXPECT_EQ(options_after("volume=equation"), standard);
    EXPECT_EQ(options_after("volume=translated"), "model=srk; states=stable; volume=translated; reference=critical");
    for (const char *const reference : {"critical", "nbp", "iir", "ashrae"})
        EXPECT_EQ(options_after((std::string("reference=") + reference).c_str()),
                  std::string("model=srk; states=stable; volume=equation; reference=") + reference);
}

TEST(options, blanks_around_keys_and_values_do_not_count) {
    EXPECT_EQ(options_after("  model =\tpr ;volume= translated  "),
              "model=pr; states=stable; volume=translated; reference=critical");
}

TEST(options, the_canonical_text_opens_the_same_fluid) {
    for (const char *const options : {"", "model=pr", "states=metastable;phase=vapor",
                                      "reference=iir;volume=translated", "states=surface;model=izg"}) {
        const std::string canonical = options_after(options);
        EXPECT_EQ(options_after(canonical.c_str()), canonical);
    }
}

TEST(options, unknown_keys_are_refused_with_the_keys) {
    for (const char *const options : {"modl=pr", "Model=pr", "mo del=pr", "=pr", "model=pr; temperature=3", "pr"}) {
        const auto [status, message] = refusal(options);
        EXPECT_EQ(status, OSTREL_BAD_ARGUMENT) << options;
        EXPECT_THAT(message, AllOf(HasSubstr(options), HasSubstr("model, states, phase, volume, reference, folder")));
    }
}

TEST(options, unknown_values_are_refused_with_the_values) {
    const struct {
        const char *options;
        const char *values;
    } cases[] = {{"model=xx", "ig, vdw, mh, srk, pr, rk, cii, izg"},
                 {"model=PR", "ig, vdw, mh, srk, pr, rk, cii, izg"},
                 {"model=p r", "ig, vdw, mh, srk, pr, rk, cii, izg"},
                 {"model=", "ig, vdw, mh, srk, pr, rk, cii, izg"},
                 {"model=pr=rk", "ig, vdw, mh, srk, pr, rk, cii, izg"},
                 {"states=meta", "stable, metastable, surface"},
                 {"phase=gas", "liquid, vapor"},
                 {"volume=1", "equation, translated"},
                 {"reference=nist", "critical, nbp, iir, ashrae"}};
    for (const auto &[options, values] : cases) {
        const auto [status, message] = refusal(options);
        EXPECT_EQ(status, OSTREL_BAD_ARGUMENT) << options;
        EXPECT_THAT(message, HasSubstr(values)) << options;
    }
}

TEST(options, repeated_keys_are_refused) {
    for (const char *const options : {"model=pr; model=pr", "model=pr;states=stable;model=rk", "folder=a;folder=a"}) {
        const auto [status, message] = refusal(options);
        EXPECT_EQ(status, OSTREL_BAD_ARGUMENT) << options;
        EXPECT_THAT(message, HasSubstr("twice")) << options;
    }
}

TEST(options, empty_options_are_refused) {
    for (const char *const options :
         {";", "model=pr;", "model=pr ; ", ";model=pr", "model=pr;;volume=equation", "folder="}) {
        EXPECT_EQ(refusal(options).status, OSTREL_BAD_ARGUMENT) << options;
        EXPECT_THAT(refusal(options).message, HasSubstr("empty")) << options;
    }
    EXPECT_EQ(refusal("model").status, OSTREL_BAD_ARGUMENT);
    EXPECT_THAT(refusal("model").message, HasSubstr("no value"));
}

TEST(options, metastable_states_and_a_phase_need_each_other) {
    for (const char *const options :
         {"states=metastable", "phase=liquid", "states=stable;phase=liquid", "phase=vapor;states=surface"}) {
        EXPECT_EQ(refusal(options).status, OSTREL_BAD_ARGUMENT) << options;
        EXPECT_THAT(refusal(options).message, HasSubstr("phase")) << options;
    }
}

TEST(options, only_three_models_have_translated_volumes) {
    for (const char *const model : {"srk", "pr", "rk"})
        EXPECT_EQ(refusal((std::string("volume=translated;model=") + model).c_str()).status, OSTREL_OK) << model;
    for (const char *const model : {"ig", "vdw", "mh", "cii", "izg"}) {
        const auto [status, message] = refusal((std::string("volume=translated;model=") + model).c_str());
        EXPECT_EQ(status, OSTREL_BAD_ARGUMENT);
        EXPECT_THAT(message, AllOf(HasSubstr(model), HasSubstr("srk, pr and rk")));
    }
}

TEST(options, a_folder_is_for_opening_by_name) {
    const support::temporary_folder other;
    other.write("mine.osd", support::vapor_file());
    handle fluid;
    EXPECT_EQ(fluid.open("mine", ("folder= " + other.path() + " ").c_str()).message, "");
    EXPECT_EQ(fluid.text("source"), other.path() + "/mine.osd");
    EXPECT_EQ(fluid.open("mine", ("folder=" + other.path() + "/").c_str()).message, "");
    EXPECT_EQ(fluid.open("toluene", ("folder=" + other.path()).c_str()).status, OSTREL_CANNOT_OPEN);
    const std::string folder = "folder=" + other.path();
    EXPECT_EQ(fluid.open_file(other.path() + "/mine.osd", folder.c_str()).status, OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(fluid.open_text(support::vapor_file(), folder.c_str()).status, OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(fluid.open_database("x", "y", folder.c_str()).status, OSTREL_BAD_ARGUMENT);
}

TEST(options, another_model_needs_its_constants) {
    handle fluid;
    for (const char *const model : {"pr", "vdw", "izg"}) {
        const auto [status, message] =
            fluid.open_text(support::reference_file(), (std::string("model=") + model).c_str());
        EXPECT_EQ(status, OSTREL_BAD_ARGUMENT);
        EXPECT_THAT(message, HasSubstr(std::string("model=") + model));
    }
    EXPECT_EQ(fluid.open_text(support::reference_file(), "model=ig").message, "");
    EXPECT_EQ(fluid.open_text(support::reference_file("8\n0.9\n"), "model=ig").message, "");
    EXPECT_EQ(fluid.open_text(support::reference_file("8\n0.9\n"), "model=izg").message, "");
}

TEST(options, a_model_is_that_of_a_file_with_its_code) {
    const auto energy = [](const handle &fluid) {
        double values[2] = {};
        const double t = 350, v = 0.02;
        EXPECT_EQ(ostrel_fluid_evaluate(fluid, "tv", "p,h", 1, &t, &v, values, nullptr), OSTREL_OK);
        return std::pair(values[0], values[1]);
    };
    std::set<double> pressures;
    int code = 0;
    for (const auto &row : support::rows_of("models")) {
        // An izg file has its own Z; from another model's file izg takes Zc, which is 0.27.
        const std::string records = std::to_string(++code) + (row.name == "izg" ? "\n0.27\n" : "\n");
        handle own, other;
        ASSERT_EQ(own.open_text(support::vapor_file(records)).message, "");
        ASSERT_EQ(other.open_text(support::vapor_file("99\n"), ("model=" + row.name).c_str()).message, "");
        EXPECT_EQ(own.text("model"), row.name);
        EXPECT_EQ(energy(own), energy(other)) << row.name;
        EXPECT_TRUE(pressures.insert(energy(own).first).second) << row.name;
    }
    handle own;
    ASSERT_EQ(own.open_text(support::vapor_file("8\n0.5\n"), "model=izg").message, "");
    EXPECT_DOUBLE_EQ(ostrel_fluid_value(own, "tv", 350, 0.02, "p", nullptr), 0.5 * (8314 / 20.0) * 350 / 0.02);
}

TEST(options, a_model_takes_the_place_of_an_unknown_one) {
    handle fluid;
    const auto [status, message] = fluid.open_text(support::vapor_file("99\n"));
    EXPECT_EQ(status, OSTREL_BAD_FILE);
    EXPECT_THAT(message, AllOf(HasSubstr("gas_type 99"), HasSubstr("1 to 8")));
    EXPECT_EQ(fluid.open_text(support::vapor_file("99\n"), "model=rk").message, "");
    EXPECT_EQ(fluid.text("model"), "rk");
}

TEST(options, a_reference_without_its_state_is_refused) {
    handle fluid;
    const auto [status, message] = fluid.open_text(support::reference_file(), "reference=nbp");
    EXPECT_EQ(status, OSTREL_BAD_ARGUMENT);
    EXPECT_THAT(message, HasSubstr("reference=nbp"));
}

TEST(options, long_and_strange_ones_are_refused) {
    EXPECT_EQ(refusal(std::string(100'000, ';').c_str()).status, OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(refusal(std::string(100'000, 'x').c_str()).status, OSTREL_BAD_ARGUMENT);
    EXPECT_EQ(refusal("model=\xFF\x01").status, OSTREL_BAD_ARGUMENT);
    EXPECT_THAT(refusal("model=\xFF\x01").message, HasSubstr("\"??\""));
}

} // namespace
