// SPDX-License-Identifier: MIT
// The functions that add the commands to the program, and the way in which commands fail.
#pragma once

#include <CLI/CLI.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace command {

/// Exit codes. 0 means success, also with warnings.
inline constexpr int failed = 1;
inline constexpr int wrong_usage = 2;

/// Ends a command with exit code 1. Standard error gets the text, which mostly is the library's, and then the advice
/// without its empty lines.
class failure : public std::runtime_error {
public:
    explicit failure(const std::string &text, std::vector<std::string> advice = {})
        : std::runtime_error(text), advice_(std::move(advice)) {}
    const std::vector<std::string> &advice() const { return advice_; }

private:
    std::vector<std::string> advice_;
};

// Each function adds its command and the help of the command to the program.
void add_fluids(CLI::App &program);
void add_info(CLI::App &program);
void add_prop(CLI::App &program);
void add_check(CLI::App &program);
void add_db(CLI::App &program);

} // namespace command
