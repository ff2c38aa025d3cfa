// SPDX-License-Identifier: MIT
// Hosts with few descriptors or little memory, without standard streams, with many signals, and hosts that change their
// working directory or their environment. They must get a message and no crash, find nothing left open, and get the
// same answers again once the trouble is over.
#include "Tests/Hosts/hosts_support.h"
#include "Tests/Support/allocations.h"
#include "Tests/Support/child_process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sys/resource.h>
#include <sys/time.h>
#include <utility>

namespace {

using support::allocations;
using support::ask;
using support::failed_open;
using support::first_failure;
using support::live;
using support::open_descriptors;
using support::unlimited;

struct process : support::frame_test {};

const std::string out_of_memory = "Ostrel error: out of memory.";

TEST_F(process, a_session_leaves_nothing_open) {
    const support::session session;
    session.run();
    const long before = open_descriptors();
    session.run();
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(process, without_standard_streams) {
    const support::session session;
    const auto wanted = session.run();
    support::child_process child([&] {
        alarm(100); // a session takes long when a sanitizer checks every access
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            close(stream);
        const long before = open_descriptors();
        const bool same = session.run() == wanted;
        // SQLite fills these three descriptors so that its files do not get them. Nothing else may stay open.
        long filled = 0;
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            filled += fcntl(stream, F_GETFD) >= 0 ? 1 : 0;
        _exit(!same ? 1 : open_descriptors() - filled > before ? 2 : 0);
    });
    EXPECT_EQ(child.status(), 0);
}

volatile std::sig_atomic_t signals = 0;

TEST_F(process, under_a_storm_of_signals) {
    const support::session session;
    const auto wanted = session.run();
    struct sigaction action {};
    action.sa_handler = [](int) { signals = signals + 1; };
    ASSERT_EQ(sigaction(SIGALRM, &action, nullptr), 0); // interrupted system calls are not restarted
    itimerval timer{{0, 200}, {0, 200}};                // [s], [us]
    ASSERT_EQ(setitimer(ITIMER_REAL, &timer, nullptr), 0);
    const auto answers = session.run();
    timer = {};
    setitimer(ITIMER_REAL, &timer, nullptr);
    std::signal(SIGALRM, SIG_DFL);
    EXPECT_GT(signals, 100);
    support::expect_same(answers, wanted);
}

TEST_F(process, that_moves_to_another_folder) {
    const support::temporary_folder first, second;
    first.write("x.osd", support::vapor_file());
    second.write("x.osd", support::reference_file());
    second.write("y.osd", support::reference_file());
    const auto start = std::filesystem::current_path();
    for (const char *here : {".", "./", "../" /* and the folder's name, below */}) {
        support::fresh_frame();
        const bool by_name = std::string_view(here) == "../";
        const auto name = [&](const support::temporary_folder &folder) {
            return by_name ? here + std::filesystem::path(folder.path()).filename().string() : std::string(here);
        };
        std::filesystem::current_path(first.path());
        setenv("OSTREL_FLUIDS", name(first).c_str(), 1);
        const auto before = ask("x", "td", 500, 2.0, "p");
        EXPECT_TRUE(before.ok()) << before.text;
        std::filesystem::current_path(second.path());
        setenv("OSTREL_FLUIDS", name(second).c_str(), 1);
        EXPECT_EQ(ask("x", "td", 500, 2.0, "p").value, before.value) << "loaded";
        EXPECT_TRUE(ask("y", "td", 500, 2.0, "p").ok()) << "relative to where the process is now";
        EXPECT_NE(ask("x", "td", 500, 2.0, "p").value, before.value);
        std::filesystem::current_path("/");
        setenv("OSTREL_FLUIDS", here, 1);
        EXPECT_EQ(ask("y", "td", 500, 2.0, "p").text, failed_open(ENOENT));
    }
    std::filesystem::current_path(start);
}

TEST_F(process, whose_folder_is_deleted) {
    const auto start = std::filesystem::current_path();
    {
        const support::temporary_folder folder;
        std::filesystem::current_path(folder.path());
    }
    EXPECT_TRUE(ask("toluene", "td", 500, 2.0, "p").ok());
    setenv("OSTREL_FLUIDS", ".", 1);
    EXPECT_EQ(ask("water", "td", 500, 2.0, "p").text, failed_open(ENOENT));
    unsetenv("OSTREL_FLUIDS");
    EXPECT_TRUE(ask("argon", "td", 500, 2.0, "p").ok()) << "the default directory";
    std::filesystem::current_path(start);
}

TEST_F(process, that_changes_its_environment) {
    const support::temporary_folder folder;
    folder.write("x.osd", support::vapor_file());
    ASSERT_TRUE(ask("toluene", "td", 500, 2.0, "p").ok());
    setenv("OSTREL_FLUIDS", folder.path().c_str(), 1);
    EXPECT_TRUE(ask("toluene", "td", 510, 2.0, "p").ok()) << "loaded";
    EXPECT_TRUE(ask("x", "td", 500, 2.0, "p").ok());
    EXPECT_EQ(ask("toluene", "td", 500, 2.0, "p").text, failed_open(ENOENT));
    ASSERT_EQ(clearenv(), 0);
    EXPECT_TRUE(ask("water", "td", 500, 2.0, "p").ok()) << "the default directory";
    EXPECT_EQ(ask("x", "td", 500, 2.0, "p").text, failed_open(ENOENT));
}

TEST_F(process, without_free_descriptors) {
    const support::session session;
    const auto wanted = session.run();
    support::fresh_frame();
    ASSERT_TRUE(ask("toluene", "td", 500, 2.0, "p").ok());
    const long before = open_descriptors();
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none = {0, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_TRUE(ask("toluene", "tq", 500, 1.0, "p").ok()) << "a loaded fluid needs none";
    EXPECT_EQ(ask("water", "td", 500, 2.0, "p").text, failed_open(EMFILE));
    std::int32_t count = -1;
    std::string names(std::size_t{500} * 256, ' ');
    ostrel_fluids(&count, names.data(), 256);
    EXPECT_EQ(count, 0);
    session.run();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(open_descriptors(), before);
    support::expect_same(session.run(), wanted);
}

/// Puts the library into its first state, in which it keeps no memory for later.
void fresh_and_empty() {
    support::fresh_frame();
    for (auto *column : {&thermodynamics::TTs, &thermodynamics::PPs, &thermodynamics::vvls, &thermodynamics::vvgs})
        column->shrink_to_fit();
}

/// Lets a call run out of memory at its first allocation, its second and so on (if there are very many, at some of
/// them). Checks that the library reports it, loses no memory and works as before. The call fills a text of 256
/// characters and returns a value.
template <class Call>
void fail_each_allocation(Call call) {
    std::array<char, 256> text{};
    long needed = 0;
    const auto made = [&](long allowed) {
        fresh_and_empty();
        text.fill('#');
        const long before = live;
        allocations = 0;
        first_failure = allowed;
        const double value = call(text.data());
        first_failure = unlimited;
        needed = allocations;
        fresh_and_empty();
#ifdef OSTREL_COVERAGE
        static_cast<void>(before);
#else
        const long left = live - before;
        EXPECT_EQ(left, 0) << "allocation " << allowed;
#endif
        return support::exact_answer{std::bit_cast<std::uint64_t>(value),
                                     support::without_padding({text.data(), text.size()})};
    };
    const support::exact_answer wanted = made(unlimited);
    const long all = needed;
    ASSERT_GT(all, 0);
    for (long allowed = 0; allowed < all; allowed += 1 + allowed / 32)
        EXPECT_EQ(made(allowed).text, out_of_memory) << "allocation " << allowed;
    EXPECT_EQ(made(unlimited), wanted);
}

double request(const char *fluid, const char *code, double input1, double input2, char *text) {
    return ostrel_prop(fluid, code, &input1, &input2, "p", text, std::strlen(fluid), 2, 1, 256);
}

double loaded_Tc(char *text) {
    records::fill_text({text, 256}, {ideal_specific_heat::errmsg.trimmed()});
    return gas_properties::gas.Tc;
}

TEST_F(process, out_of_memory_while_loading) {
    for (const char *fluid : {"toluene", "tolu-mh", "n2-ig", "r404a"})
        fail_each_allocation([=](char *text) { return request(fluid, "td", 500.0, 2.0, text); });
    fail_each_allocation([](char *text) { return ostrel_info("water", "t_crit", text, 5, 6, 256); });
    const support::temporary_folder folder;
    const std::string file = folder.write("x.osd", support::vapor_file());
    fail_each_allocation([&](char *text) {
        read_init_fluiddatafile(file.data(), file.size());
        return loaded_Tc(text);
    });
    const std::string bad_file = folder.write("y.osd", support::vapor_section + "x\n");
    fail_each_allocation([&](char *text) {
        read_init_fluiddatafile(bad_file.data(), bad_file.size());
        return loaded_Tc(text);
    });
#ifdef OSTREL_WITH_SQLITE
    const std::string database = folder.path() + "/fluids.sqlite";
    support::make_database(database, "x", support::vapor_file());
    fail_each_allocation([&](char *text) {
        read_init_fluiddatadb(database.data(), "x", database.size(), 1);
        return loaded_Tc(text);
    });
#endif
}

TEST_F(process, out_of_memory_while_building_the_saturation_table) {
    fail_each_allocation([](char *text) { return request("toluene", "tq", 500.0, 1.0, text); });
}

TEST_F(process, out_of_memory_while_listing_fluids) {
    static std::array<char, 500 * 256> names;
    for (const bool default_directory : {false, true})
        fail_each_allocation([=](char *text) {
            if (default_directory)
                unsetenv("OSTREL_FLUIDS");
            std::int32_t count = -1;
            ostrel_fluids(&count, names.data(), 256);
            loaded_Tc(text);
            return static_cast<double>(count);
        });
}

TEST_F(process, out_of_memory_after_loading) {
    ASSERT_TRUE(ask("toluene", "tq", 500, 1.0, "p").ok());
    std::array<char, 256> text{};
    allocations = 0;
    first_failure = 0;
    for (const char *code : support::pair_codes)
        request("toluene", code, 1.0, 1.0, text.data());
    const double value = request("toluene", "td", 500.0, 2.0, text.data());
    first_failure = unlimited;
    EXPECT_EQ(allocations, 0) << "a loaded fluid needs no memory";
    EXPECT_EQ(std::string_view(text.data(), 9), "No errors");
    EXPECT_GT(value, 0);
}

#ifndef OSTREL_SANITIZED
// A limit on the process, so that the C library and SQLite run out of memory too. A sanitizer itself needs more memory
// than any such limit allows.

TEST_F(process, without_any_memory) {
    support::child_process child([] {
        const auto want = [](bool condition, int step) {
            if (!condition)
                _exit(step);
        };
        static std::array<char, 500 * 256> names;
        std::array<char, 256> text{};
        const auto says = [&](std::string_view beginning) {
            return std::string_view(text.data(), text.size()).starts_with(beginning);
        };
        support::temporary_folder folder;
        std::string database = folder.path() + "/fluids.sqlite";
#ifdef OSTREL_WITH_SQLITE
        support::make_database(database, "x", support::vapor_file());
#endif
        const double wanted = request("toluene", "td", 500.0, 2.0, text.data());
        want(says("No errors"), 10);
        const long descriptors = open_descriptors();
        const rlimit none = {0, RLIM_INFINITY};
        want(setrlimit(RLIMIT_AS, &none) == 0, 11);
        // The free memory of the heap is taken too. It is kept as a list, so that it can be given back.
        struct link {
            link *next;
        } *taken = nullptr;
        for (std::size_t size = std::size_t{1} << 20; size >= sizeof(link); size /= 2)
            while (void *const place = std::malloc(size)) {
                taken = new (place) link{taken};
            }
        const double kept = request("toluene", "td", 500.0, 2.0, text.data());
        want(says("No errors") && kept == wanted, 12);
        request("water", "td", 500.0, 2.0, text.data());
        want(says(out_of_memory), 13);
        ostrel_info("argon", "t_crit", text.data(), 5, 6, 256);
        want(says(out_of_memory), 14);
        std::int32_t count = -1;
        ostrel_fluids(&count, names.data(), 256);
        want(count == 0, 15);
        read_init_fluiddatadb(database.data(), "x", database.size(), 1);
        want(!ideal_specific_heat::errmsg.clear(), 16);
        ostrel_sub();
        while (taken != nullptr)
            std::free(std::exchange(taken, taken->next));
        const rlimit all = {RLIM_INFINITY, RLIM_INFINITY};
        want(setrlimit(RLIMIT_AS, &all) == 0, 17);
        request("water", "td", 510.0, 2.0, text.data());
        request("toluene", "td", 510.0, 2.0, text.data());
        want(request("toluene", "td", 500.0, 2.0, text.data()) == wanted && says("No errors"), 18);
        want(open_descriptors() == descriptors, 19);
    });
    EXPECT_EQ(child.status(), support::child_process::came_back);
}

#ifdef OSTREL_WITH_SQLITE
TEST_F(process, with_less_and_less_memory) {
    // The limits go from enough memory to none, so that they strike at many places in the C library and SQLite.
    support::child_process child([] {
        const support::temporary_folder folder;
        const std::string database = folder.path() + "/fluids.sqlite";
        support::make_database(database, "x", support::vapor_file());
        const rlimit none = {0, RLIM_INFINITY};
        if (setrlimit(RLIMIT_AS, &none) != 0)
            _exit(1);
        std::array<char, 256> text{};
        int served = 0, refused = 0;
        for (std::size_t piece = 8192; piece >= 512;) {
            if (std::malloc(piece) == nullptr) {
                piece /= 4;
                continue;
            }
            ideal_specific_heat::errmsg.reset();
            read_init_fluiddatadb(database.data(), "x", database.size(), 1);
            loaded_Tc(text.data());
            const std::string_view answer(text.data(), text.size());
            if (answer.starts_with("No errors"))
                ++served;
            else if (answer.starts_with(out_of_memory) || answer.starts_with(" Error in Ostrel: error opening fluid x"))
                ++refused;
            else
                _exit(2);
        }
        _exit(served > 0 && refused > 0 ? 0 : 3);
    });
    EXPECT_EQ(child.status(), 0);
}
#endif
#endif

} // namespace
