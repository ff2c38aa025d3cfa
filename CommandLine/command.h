// SPDX-License-Identifier: MIT
// What the commands share with the program: how they are added to it, and how they fail.
#pragma once

#include <CLI/CLI.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace command {

/// Exit codes: 0 for success, also with warnings.
inline constexpr int failed = 1;
inline constexpr int wrong_usage = 2;

/// What ends a command with exit code 1: lines for standard error, the library's text first, then
/// advice. Empty lines are left out.
class failure : public std::runtime_error {
public:
    explicit failure(const std::string &text, std::vector<std::string> advice = {})
        : std::runtime_error(text), advice_(std::move(advice)) {}
    const std::vector<std::string> &advice() const { return advice_; }

private:
    std::vector<std::string> advice_;
};

// Each adds its command, with its help, to the program.
void add_fluids(CLI::App &program);
void add_info(CLI::App &program);
void add_prop(CLI::App &program);
void add_check(CLI::App &program);
void add_db(CLI::App &program);

} // namespace command
