// SPDX-License-Identifier: MIT
// Eight threads open, evaluate, ask and close at the same time. scripts/threads builds the library and this program
// under the thread sanitizer, which sees accesses that are not ordered even where the results are right by chance.
#include "Tests/Support/handles.h"

#include <array>
#include <atomic>
#include <barrier>
#include <cmath>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using support::handle;

constexpr int thread_count = 8;
constexpr int rounds = 6;

/// The models, and other options with the same fluid.
constexpr const char *kinds[] = {"model=ig",
                                 "model=vdw",
                                 "model=mh",
                                 "model=srk",
                                 "model=pr",
                                 "model=rk",
                                 "model=cii",
                                 "model=izg",
                                 "model=pr; volume=translated; reference=nbp",
                                 "model=srk; states=metastable; phase=liquid"};
constexpr std::size_t kind_count = std::size(kinds);

/// Inputs, some of which are no states.
constexpr std::size_t state_count = 24;
struct given_states {
    std::array<double, state_count> p{}, t{};
    given_states() {
        for (std::size_t i = 0; i < state_count; ++i) {
            p[i] = 1e4 * static_cast<double>(1U << (i % 11));
            t[i] = i % 7 == 6 ? -static_cast<double>(i) : 330.0 + 15.0 * static_cast<double>(i);
        }
    }
};
const given_states given;
constexpr const char *outputs = "v,h,s,cp,c,eta,lambda,psat,tsat,dp/dd|u";
constexpr std::size_t width = 10;

/// What a fluid answers to all kinds of calls.
struct answers {
    std::array<double, state_count * width> values{}, parallel{}, again{}, liquid{};
    std::array<int, state_count> status{};
    std::string message;
    std::string texts;

    bool operator==(const answers &other) const {
        const auto same = [](const auto &a, const auto &b) { return std::memcmp(a.data(), b.data(), sizeof a) == 0; };
        return same(values, other.values) && same(parallel, other.parallel) && same(again, other.again) &&
               same(liquid, other.liquid) && status == other.status && message == other.message && texts == other.texts;
    }
};

answers ask(const ostrel_fluid *fluid, unsigned workers) {
    answers result;
    ostrel_fluid_saturation(fluid, "t", outputs, state_count, given.t.data(), result.liquid.data(), nullptr, nullptr);
    std::array<ostrel_state, state_count> states;
    ostrel_fluid_solve(fluid, "pt", state_count, given.p.data(), given.t.data(), states.data());
    ostrel_fluid_outputs(fluid, outputs, state_count, states.data(), result.again.data(), nullptr);
    ostrel_fluid_evaluate_parallel(fluid, "pt", outputs, state_count, given.p.data(), given.t.data(),
                                   result.parallel.data(), nullptr, workers);
    ostrel_fluid_evaluate(fluid, "pt", outputs, state_count, given.p.data(), given.t.data(), result.values.data(),
                          result.status.data());
    result.message = ostrel_last_message();
    for (const char *const name : {"model", "options", "text", "viscosity"})
        result.texts += ostrel_fluid_text(fluid, name);
    result.texts += std::to_string(ostrel_fluid_constant(fluid, "v_min"));
    return result;
}

TEST(threads, share_fluids_while_others_open_and_close) {
    std::array<handle, kind_count> shared;
    std::vector<answers> wanted;
    for (std::size_t kind = 0; kind < kind_count; ++kind) {
        ASSERT_EQ(shared[kind].open("toluene", kinds[kind]).status, OSTREL_OK) << ostrel_last_message();
        wanted.push_back(ask(shared[kind], 1));
    }
    std::atomic<int> different{0};
    std::barrier together(thread_count);
    const auto work = [&](std::size_t number) {
        together.arrive_and_wait();
        for (std::size_t round = 0; round < rounds; ++round) {
            const std::size_t kind = (number + round) % kind_count;
            // A fluid that all use.
            different += ask(shared[kind], number % 2 == 0 ? 2 : 1) == wanted[kind] ? 0 : 1;
            // One of this thread.
            ostrel_fluid *own = nullptr;
            ostrel_fluid_open("toluene", kinds[kind], &own);
            different += ask(own, 1) == wanted[kind] ? 0 : 1;
            ostrel_fluid_close(own);
            // Messages of this thread.
            const std::string name = "no fluid of thread " + std::to_string(number);
            ostrel_fluid_open(name.c_str(), nullptr, &own);
            different += std::strstr(ostrel_last_message(), name.c_str()) != nullptr ? 0 : 1;
            different += ostrel_list("outputs", round, "name") != nullptr ? 0 : 1;
            different += ostrel_status_text(static_cast<int>(round)) != nullptr ? 0 : 1;
        }
    };
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < thread_count; ++number)
        threads.emplace_back(work, number);
    for (std::thread &one : threads)
        one.join();
    EXPECT_EQ(different, 0);
}

TEST(threads, look_for_fluids_and_read_files_and_databases) {
    std::atomic<int> different{0};
    std::barrier together(thread_count);
    const auto count_fluids = [] {
        int count = 0;
        ostrel_fluid_find(
            "alcohol", [](void *user, const char *, const char *) { ++*static_cast<int *>(user); }, &count);
        return count;
    };
    const int wanted = count_fluids();
    EXPECT_GT(wanted, 0);
    const auto work = [&](int number) {
        together.arrive_and_wait();
        handle fluid;
        different += count_fluids() == wanted ? 0 : 1;
        const char *const name = number % 2 == 0 ? "water" : "R744";
        different += fluid.open(name).status == OSTREL_OK ? 0 : 1;
        different += fluid.open_text(fluid.text("text"), "model=rk").status == OSTREL_OK ? 0 : 1;
        different += fluid.open_file("nowhere.osd").status == OSTREL_CANNOT_OPEN ? 0 : 1;
        different += fluid.open_database("nowhere.sqlite", name).status == OSTREL_CANNOT_OPEN ? 0 : 1;
    };
    std::vector<std::thread> threads;
    for (int number = 0; number < thread_count; ++number)
        threads.emplace_back(work, number);
    for (std::thread &one : threads)
        one.join();
    EXPECT_EQ(different, 0);
}

} // namespace
