// SPDX-License-Identifier: MIT
// The catalogue as a fluid database, read through the default host: each fluid must give the same numbers as its file,
// to the bit.
#include "Tests/Support/frame.h"

#include <bit>

#ifdef OSTREL_CATALOGUE_DATABASE

namespace {

struct catalogue_database : support::frame_test {};

/// All outputs of the loaded fluid at some states, as bits.
std::vector<std::uint64_t> answers() {
    const gas_properties::gas_constants &gas = gas_properties::gas;
    std::vector<std::uint64_t> bits;
    for (const auto &[T_r, v_r] : {std::pair(0.8, 40.0), {1.02, 1.4}, {1.5, 0.7}})
        for (const support::output_case &output : support::output_cases) {
            // The blank name stands for the fluid in memory.
            const support::answer answer = support::ask("", "tv", T_r * gas.Tc, v_r * gas.vc, output.name);
            EXPECT_EQ(answer.text, "No errors") << output.name;
            bits.push_back(std::bit_cast<std::uint64_t>(answer.value));
        }
    return bits;
}

void initialise() {
    ASSERT_EQ(support::shared_text(), "No errors");
    thermodynamics::init_thermodynamics();
    transport_properties::init_transport_properties();
    ASSERT_EQ(support::shared_text(), "No errors");
}

TEST_F(catalogue_database, gives_the_numbers_of_the_files) {
    const std::vector<std::string> fluids = support::shipped_fluids();
    ASSERT_GE(fluids.size(), 300u);
    for (const std::string &fluid : fluids) {
        SCOPED_TRACE(fluid);
        support::fresh_frame();
        ostrel::read_init_fluiddatafile(support::shipped_folder + ("/" + fluid) + ".osd");
        initialise();
        const std::string name(gas_properties::gas.name.padded());
        const auto from_file = answers();
        support::fresh_frame();
        ostrel::read_init_fluiddatadb(OSTREL_CATALOGUE_DATABASE, fluid);
        initialise();
        EXPECT_EQ(gas_properties::gas.name.padded(), name);
        EXPECT_EQ(answers(), from_file);
    }
}

} // namespace

#endif
