// SPDX-License-Identifier: MIT
// The commands as the program offers them, and the way in which they fail. Only main.cpp knows the package that reads
// the command line.
#pragma once

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace command {

/// Exit codes. 0 means success, also with warnings.
inline constexpr int failed = 1;
inline constexpr int wrong_usage = 2;

/// Ends a command with exit code 1. Standard error gets the text, which mostly is the library's, and then the advice
/// without its empty lines.
class failure : public std::runtime_error {
public:
    explicit failure(const std::string &text, std::vector<std::string> advice = {}, std::size_t line = 0)
        : std::runtime_error(text), advice_(std::move(advice)), line_(line) {}
    const std::vector<std::string> &advice() const { return advice_; }
    /// The line, from 1, of a file that is refused; 0 if the text is about no line.
    std::size_t line() const { return line_; }

private:
    std::vector<std::string> advice_;
    std::size_t line_;
};

/// An argument that cannot be used. It ends the program as wrong usage.
class wrong_argument : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A word behind a command: a value, or an option that is given or not.
struct argument {
    std::string name;
    std::variant<std::string *, std::vector<std::string> *, bool *> value; ///< the variable that receives it
    std::string meaning;
    bool required = false;
    std::string excludes{};             ///< an earlier option that may not be given together with this one
    std::vector<std::string> choices{}; ///< its values, if there are few, for the completion of command lines
};

/// A command as the program offers it, with its help.
struct definition {
    std::string name;
    std::string meaning;
    std::vector<argument> arguments{};
    std::string notes{};         ///< the end of its help
    std::function<void()> run{}; ///< called when the arguments have their values
    std::vector<definition> parts{};
};

definition fluids();
definition info();
definition prop();
definition sat();
definition table();
definition eval();
definition cycle();
definition nozzle();
definition plot();
definition check();
definition db();

/// All commands, in the order of the help.
std::vector<definition> all();
/// The program's own texts.
inline constexpr const char *program_meaning =
    "Thermodynamic and transport properties of pure fluids from simple equations of state.";
inline constexpr const char *fluids_option = "--fluids";
inline constexpr const char *fluids_meaning =
    "Folder of the parameter files, in place of $OSTREL_FLUIDS and of the installed one";
inline constexpr const char *program_notes =
    "Each command has a --help of its own, with examples.\n"
    "Exit codes: 0 done, 1 the request failed (the reason is on standard error), 2 wrong usage,\n"
    "130 and 143 stopped by an interrupt or by a request to end.";

} // namespace command
