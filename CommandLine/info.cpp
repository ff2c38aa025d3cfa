// SPDX-License-Identifier: MIT
// ostrel info: describes one fluid in words.
#include "CommandLine/command.h"
#include "CommandLine/description.h"
#include "CommandLine/loading.h"

#include <iostream>
#include <memory>

namespace command {
namespace {

void tell(const std::string &fluid) {
    load_fluid(fluid);
    describe(std::cout, load_file(path_of(fluid)));
}

} // namespace

void add_info(CLI::App &program) {
    CLI::App *const command = program.add_subcommand("info", "Tell a fluid's constants and models");
    const auto fluid = std::make_shared<std::string>();
    command->add_option("FLUID", *fluid, "Name of a fluid, as \"ostrel fluids\" lists it")->required()->type_name("");
    command->footer("Example:\n  ostrel info toluene");
    command->callback([fluid] { tell(*fluid); });
}

} // namespace command
