// SPDX-License-Identifier: MIT
// The command ostrel: the library on the command line.
#include "CommandLine/command.h"
#include "CommandLine/stopping.h"
#include "CommandLine/suggestions.h"
#include "Ostrel_Main.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace {

std::string version() {
    std::string text = "ostrel " OSTREL_PACKAGE_VERSION ", interface ";
    for (const std::int32_t number : ostrel::getversion())
        text += std::to_string(number) + '.';
    text.pop_back();
    return text;
}

/// The arguments in reverse order, as CLI11 takes them. CLI11 recognises a negative number by the digit behind its
/// sign, so that -.5 becomes -0.5.
std::vector<std::string> arguments(int argc, char **argv) {
    std::vector<std::string> result(argv + std::min(argc, 1), argv + argc);
    for (std::string &text : result)
        if (text.starts_with("-."))
            text.insert(1, 1, '0');
    std::reverse(result.begin(), result.end());
    return result;
}

/// If the arguments have a word in the place of a command that is none, says so and returns true.
bool unknown_command(const CLI::App &program) {
    const std::vector<std::string> rest = program.remaining(true);
    const CLI::App *at = &program;
    while (!at->get_subcommands().empty())
        at = at->get_subcommands().front();
    std::vector<std::string> names;
    for (const CLI::App *const command : at->get_subcommands([](const CLI::App *) { return true; }))
        names.push_back(command->get_name());
    if (rest.empty() || names.empty())
        return false;
    const std::string meant = command::did_you_mean(rest.front(), names);
    std::cerr << '"' << rest.front() << "\" is not a command. "
              << (meant.empty() ? "There are " + command::joined(names, ", ", " and ") + '.' : meant) << '\n';
    return true;
}

/// Adds a command, with its help and its parts, to the program or to the command to which it belongs.
void add(CLI::App &parent, const command::definition &what) {
    CLI::App *const added = parent.add_subcommand(what.name, what.meaning);
    for (const command::argument &argument : what.arguments) {
        const auto add_option = [&]<class Value>(Value *value) {
            if constexpr (std::is_same_v<Value, bool>)
                return added->add_flag(argument.name, *value, argument.meaning);
            else
                return added->add_option(argument.name, *value, argument.meaning)->type_name("");
        };
        CLI::Option *const option = std::visit(add_option, argument.value);
        option->required(argument.required);
        if (!argument.excludes.empty())
            option->excludes(added->get_option(argument.excludes));
    }
    added->footer(what.notes);
    if (what.run)
        added->callback([run = what.run] {
            try {
                run();
            } catch (const command::wrong_argument &reason) {
                throw CLI::ValidationError(reason.what());
            }
        });
    if (!what.parts.empty())
        added->require_subcommand(1);
    for (const command::definition &part : what.parts)
        add(*added, part);
}

int run(int argc, char **argv) {
    CLI::App program(command::program_meaning, "ostrel");
    program.require_subcommand(1);
    program.fallthrough();
    program.set_version_flag("--version", version(), "Print the versions of the package and of its interface");
    program.set_help_flag("-h,--help", "Print this help");
    program
        .add_option_function<std::string>(
            command::fluids_option, [](const std::string &folder) { setenv("OSTREL_FLUIDS", folder.c_str(), 1); },
            command::fluids_meaning)
        ->type_name("FOLDER")
        ->trigger_on_parse();
    for (const command::definition &each : command::all())
        add(program, each);
    program.footer(command::program_notes);
    try {
        program.parse(arguments(argc, argv));
    } catch (const CLI::RequiredError &stop) {
        if (!unknown_command(program))
            program.exit(stop);
        return command::wrong_usage;
    } catch (const CLI::ParseError &stop) {
        return program.exit(stop) == 0 ? 0 : command::wrong_usage;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    int status = command::failed;
    try {
        status = run(argc, argv);
    } catch (const command::failure &reason) {
        const std::string text = reason.what();
        std::cerr << "ostrel:" << (text.starts_with(' ') ? "" : " ") << text << '\n';
        for (const std::string &line : reason.advice())
            if (!line.empty())
                std::cerr << line << '\n';
    } catch (const command::stopped_by_signal &stop) {
        status = stop.exit_code();
    } catch (const std::exception &reason) {
        std::cerr << "ostrel: " << reason.what() << '\n';
    }
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "ostrel: standard output cannot be written\n";
        return command::failed;
    }
    return status;
}
