// SPDX-License-Identifier: MIT
#include "Fluid/workers.h"

#include "floating_point.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace fluid {
namespace {

constexpr std::size_t smallest_chunk = 16; // Fewer states are not worth the way to another thread.
constexpr std::size_t largest_chunk = 1024;
constexpr std::size_t chunks_per_worker = 8; // States differ in cost; chunks that are small even that out.
constexpr std::size_t most_workers = 512;

/// The work that is left, and what has been found.
class shared_work {
public:
    shared_work(std::size_t count, std::size_t chunk, const range_of_states &states)
        : count_(count), chunk_(chunk), states_(states) {}

    /// Computes chunks until none is left.
    void work() noexcept {
        const floating_point::standard_environment environment;
        failure first;
        for (std::size_t begin = next_.fetch_add(chunk_); begin < count_; begin = next_.fetch_add(chunk_)) {
            const failure found = states_.compute(begin, std::min(begin + chunk_, count_));
            if (first.status == OSTREL_OK)
                first = found;
        }
        if (first.status == OSTREL_OK)
            return;
        const std::lock_guard lock(mutex_);
        if (found_.status == OSTREL_OK || first.state < found_.state)
            found_ = first;
    }
    failure found() const { return found_; }

private:
    const std::size_t count_;
    const std::size_t chunk_;
    const range_of_states &states_;
    std::atomic<std::size_t> next_{0};
    std::mutex mutex_;
    failure found_;
};

class joined_threads {
public:
    joined_threads() = default;
    joined_threads(const joined_threads &) = delete;
    joined_threads &operator=(const joined_threads &) = delete;
    ~joined_threads() {
        for (std::thread &one : threads_)
            one.join();
    }
    /// Starts as many threads as it can, at most `count`.
    template <class Function>
    void start(std::size_t count, Function function) {
        try {
            threads_.reserve(count);
            while (threads_.size() < count)
                threads_.emplace_back(function);
        } catch (...) { // no more threads, or no memory for them
        }
    }

private:
    std::vector<std::thread> threads_;
};

} // namespace

failure run_by_workers(std::size_t count, unsigned workers, const range_of_states &states) {
    std::size_t threads = workers != 0 ? workers : std::max(std::thread::hardware_concurrency(), 1U);
    threads = std::min({threads, most_workers, (count + smallest_chunk - 1) / smallest_chunk});
    if (threads <= 1)
        return states.compute(0, count);
    const std::size_t chunk = std::clamp(count / (threads * chunks_per_worker), smallest_chunk, largest_chunk);
    shared_work shared(count, chunk, states);
    {
        joined_threads others;
        others.start(threads - 1, [&shared] { shared.work(); });
        shared.work();
    }
    return shared.found();
}

} // namespace fluid
