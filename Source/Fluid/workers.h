// SPDX-License-Identifier: MIT
// Divides the states of a call among threads.
//
// Computes   what one thread would: each state depends on nothing but its inputs, so that it does not matter which
//            thread computes it; of the states that failed, the one with the lowest number is returned
// Valid      for any number of workers. If threads cannot be started, the others do their work. All threads have ended
//            when the function returns, also when it does so by an exception
#pragma once

#include "ostrel_fluid.h"

#include <cstddef>

namespace fluid {

/// The first state of a call that failed, and its status; OSTREL_OK if none has.
struct failure {
    int status = OSTREL_OK;
    std::size_t state = 0;
};

/// Computes the states from `begin` to `end`, for which nothing allocates memory; any number of threads call it at the
/// same time.
class range_of_states {
public:
    virtual failure compute(std::size_t begin, std::size_t end) const noexcept = 0;

protected:
    ~range_of_states() = default;
};

/// Computes `count` states with `workers` threads, of which the calling one is one; 0 stands for one for each core.
failure run_by_workers(std::size_t count, unsigned workers, const range_of_states &states);

template <class Compute>
failure run_by_workers(std::size_t count, unsigned workers, Compute compute) {
    struct computed final : range_of_states {
        explicit computed(const Compute &how) : compute_(how) {}
        failure compute(std::size_t begin, std::size_t end) const noexcept override { return compute_(begin, end); }
        const Compute &compute_;
    };
    return run_by_workers(count, workers, static_cast<const range_of_states &>(computed(compute)));
}

} // namespace fluid
