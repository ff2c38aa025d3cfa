// SPDX-License-Identifier: MIT
// A clean end at a signal: the work goes on to the next place at which its output is valid, and stops there.
#pragma once

#include <csignal>
#include <exception>

namespace command {

/// Takes SIGINT and SIGTERM while it lives.
class stop_signals {
public:
    stop_signals() {
        struct sigaction action {};
        action.sa_handler = [](int number) { received = number; };
        sigaction(SIGINT, &action, &interrupt_);
        sigaction(SIGTERM, &action, &terminate_);
    }
    stop_signals(const stop_signals &) = delete;
    stop_signals &operator=(const stop_signals &) = delete;
    ~stop_signals() {
        sigaction(SIGINT, &interrupt_, nullptr);
        sigaction(SIGTERM, &terminate_, nullptr);
    }
    bool stopped() const { return received != 0; }
    int number() const { return received; }

private:
    inline static volatile std::sig_atomic_t received = 0;
    struct sigaction interrupt_ {};
    struct sigaction terminate_ {};
};

/// Ends the program with the exit code that shells give to a signal.
class stopped_by_signal : public std::exception {
public:
    explicit stopped_by_signal(int number) : number_(number) {}
    int exit_code() const { return 128 + number_; }

private:
    int number_;
};

} // namespace command
