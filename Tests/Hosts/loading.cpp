// SPDX-License-Identifier: MIT
// Hosts that load the library while they run: two copies side by side, unloading and loading again. The program is not
// linked with the library, since all copies would then use the linked library's symbols.
#include "Tests/Support/child_process.h"
#include "ostrel.h"
#include "ostrel_fluid.h"

#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <malloc.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

const std::string library_file = OSTREL_LIBRARY;

/// A copy of the library's file. The loader tells libraries apart by their files.
class copied_file {
public:
    copied_file() {
        std::string name = (fs::temp_directory_path() / "ostrel-test-XXXXXX").string();
        folder_ = mkdtemp(name.data());
        fs::copy_file(library_file, path());
    }
    ~copied_file() { fs::remove_all(folder_); }
    copied_file(const copied_file &) = delete;
    copied_file &operator=(const copied_file &) = delete;
    std::string path() const { return folder_ / "libcopied.so"; }

private:
    fs::path folder_;
};

struct answer {
    double value;
    std::string text;
    bool ok() const { return text == "No errors"; }
    friend bool operator==(const answer &, const answer &) = default;
};

/// A loaded library and the functions that a host looks up in it.
class library {
public:
    explicit library(void *handle) : handle_(handle) {
        if (handle_ == nullptr)
            throw std::runtime_error(dlerror());
    }
    explicit library(const std::string &file, int mode = RTLD_NOW | RTLD_LOCAL) : library(dlopen(file.c_str(), mode)) {}
    ~library() { dlclose(handle_); }
    library(const library &) = delete;
    library &operator=(const library &) = delete;

    template <class Function>
    Function *function(const char *name) const {
        return reinterpret_cast<Function *>(dlsym(handle_, name));
    }
    answer ask(std::string_view fluid, std::string_view pair, double input1, double input2,
               std::string_view output) const {
        std::string text(256, '#');
        const double value = function<decltype(ostrel_prop)>("ostrel_prop")(fluid.data(), pair.data(), &input1, &input2,
                                                                            output.data(), text.data(), fluid.size(),
                                                                            pair.size(), output.size(), text.size());
        return {value, without_padding(text)};
    }
    answer ask_info(std::string_view fluid, std::string_view name) const {
        std::string text(256, '#');
        const double value = function<decltype(ostrel_info)>("ostrel_info")(fluid.data(), name.data(), text.data(),
                                                                            fluid.size(), name.size(), text.size());
        return {value, without_padding(text)};
    }
    /// The reduced temperature [T_ref] that the pair gives for the fluid that is loaded.
    double reduced(std::string_view pair) const {
        const double t = 500.0, d = 2.0;
        double T = 0, v = 0;
        function<decltype(get_tv)>("get_tv")(pair.data(), &t, &d, &T, &v, pair.size());
        return T;
    }
    int fluids() const {
        std::int32_t count = -1;
        std::string names(std::size_t{500} * 256, ' ');
        function<decltype(ostrel_fluids)>("ostrel_fluids")(&count, names.data(), 256);
        return count;
    }
    void use_host(const ostrel_host *host) const { function<decltype(ostrel_use_host)>("ostrel_use_host")(host); }

private:
    static std::string without_padding(std::string text) {
        text.resize(text.find_last_not_of(' ') + 1);
        return text;
    }
    void *handle_;
};

const ostrel_host host_without_fluids = {
    nullptr, [](const char *, const char *, char *, std::size_t, std::size_t, std::size_t) {}, nullptr};

/// Whether a file is mapped into this process.
bool mapped(const std::string &file) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find(file) != std::string::npos)
            return true;
    return false;
}

bool loaded(const std::string &file) {
    void *const handle = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}

/// Expects that two loaded libraries share no part of their states.
void expect_separate(const library &first, const library &second) {
    // A library that has loaded nothing yet has no reference temperature.
    const double fresh = second.reduced("td");
    const answer toluene = first.ask("toluene", "td", 500.0, 2.0, "p");
    ASSERT_TRUE(toluene.ok());
    EXPECT_NE(fresh, first.reduced("td"));
    EXPECT_EQ(second.reduced("td"), fresh) << "the loaded fluid";
    const answer water = second.ask("water", "td", 500.0, 2.0, "p");
    ASSERT_TRUE(water.ok());
    EXPECT_NE(water.value, toluene.value);
    EXPECT_NE(first.reduced("td"), second.reduced("td"));

    // The kept state: a failed pair keeps the state before it.
    EXPECT_EQ(first.ask("toluene", "td", 500.0, 2.0, "p"), toluene);
    EXPECT_EQ(second.ask("water", "tq", 9999.0, 1.0, "p").value, -8888.8);
    EXPECT_EQ(second.ask("water", "tq", 9999.0, 1.0, "p"), water) << "served from the state before";
    EXPECT_EQ(first.ask("toluene", "tq", 9999.0, 1.0, "p").value, -8888.8);
    EXPECT_EQ(first.ask("toluene", "tq", 9999.0, 1.0, "p"), toluene);

    // The shared error text: an old message makes the loading of a fluid by ostrel_info count as failed.
    second.reduced("xx");
    EXPECT_TRUE(first.ask_info("nitrogen", "m_mol").ok());
    EXPECT_EQ(second.ask_info("nitrogen", "m_mol").text, "Ostrel error: calculation as function of xx not available.");

    // The saturation table: its range serves every later fluid.
    EXPECT_TRUE(first.ask("toluene", "tq", 450.0, 1.0, "p").ok());
    EXPECT_TRUE(second.ask("water", "tq", 500.0, 1.0, "p").ok());
    const answer second_toluene = second.ask("toluene", "tq", 450.0, 1.0, "p");
    EXPECT_TRUE(second_toluene.ok());

    // The host table.
    const int all = first.fluids();
    EXPECT_GT(all, 100);
    first.use_host(&host_without_fluids);
    EXPECT_EQ(first.fluids(), 0);
    EXPECT_EQ(second.fluids(), all);
    first.use_host(nullptr);
    EXPECT_EQ(first.fluids(), all);
}

TEST(copies, side_by_side) {
    const copied_file copy;
    const library first(library_file), second(copy.path());
    expect_separate(first, second);
}

TEST(copies, beside_one_whose_symbols_are_global) {
    const copied_file copy;
    const library first(library_file, RTLD_NOW | RTLD_GLOBAL),
        second(copy.path(), RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    expect_separate(first, second);
}

TEST(copies, in_a_namespace_of_the_loader) {
    void *const handle = dlmopen(LM_ID_NEWLM, library_file.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    const library first(library_file), second(handle);
    expect_separate(first, second);
}

TEST(copies, one_goes_and_the_other_stays) {
    const copied_file copy;
    const library first(library_file);
    const answer before = first.ask("toluene", "td", 500.0, 2.0, "p");
    {
        const library second(copy.path());
        ASSERT_TRUE(second.ask("water", "tq", 500.0, 1.0, "p").ok());
        ASSERT_TRUE(mapped(copy.path()));
    }
    EXPECT_FALSE(mapped(copy.path()));
    EXPECT_EQ(first.ask("toluene", "td", 500.0, 2.0, "p"), before);
    EXPECT_TRUE(first.ask("toluene", "tq", 450.0, 1.0, "p").ok());
}

TEST(unloading, leaves_nothing_and_starts_afresh) {
    answer first_water{};
    double fresh = 0;
    std::size_t in_use = 0;
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        ASSERT_FALSE(loaded(library_file));
        ASSERT_FALSE(mapped(library_file));
        {
            const library once(library_file);
            ASSERT_TRUE(loaded(library_file));
            const double T = once.reduced("td");
            if (round == 0)
                fresh = T;
            ASSERT_EQ(T, fresh) << "the fluid of the round before";
            if (round % 2 == 1)
                ASSERT_TRUE(once.ask("mdm", "tq", 450.0, 1.0, "p").ok()) << "a table for another fluid's range";
            else {
                const answer water = once.ask("water", "tq", 500.0, 1.0, "p");
                ASSERT_TRUE(water.ok()) << water.text;
                if (round == 0)
                    first_water = water;
                ASSERT_EQ(water, first_water) << "the table of the round before";
                once.use_host(&host_without_fluids);
            }
        }
        if (round == 30)
            in_use = mallinfo2().uordblks;
    }
    // Memory that is lost at each unloading would add up to more than this.
    EXPECT_LT(mallinfo2().uordblks, in_use + 2000);
}

/// Uses the handles of a loaded library: opens a fluid, computes with threads, and leaves a message in this thread.
std::string message_of_handles(const library &once) {
    ostrel_fluid *fluid = nullptr;
    if (once.function<decltype(ostrel_fluid_open)>("ostrel_fluid_open")("toluene", "model=pr", &fluid) != OSTREL_OK)
        return "not opened";
    std::vector<double> t(200, 400.0), v(200, 0.5), p(200);
    const auto evaluate = once.function<decltype(ostrel_fluid_evaluate_parallel)>("ostrel_fluid_evaluate_parallel");
    if (evaluate(fluid, "tv", "t", t.size(), t.data(), v.data(), p.data(), nullptr, 4) != OSTREL_OK || p != t)
        return "not computed";
    once.function<decltype(ostrel_fluid_constant)>("ostrel_fluid_constant")(fluid, "none");
    once.function<decltype(ostrel_fluid_close)>("ostrel_fluid_close")(fluid);
    return once.function<decltype(ostrel_last_message)>("ostrel_last_message")();
}

TEST(unloading, handles_leave_nothing) {
    // Otherwise a thread gets an arena of its own when all others are busy, in whichever round that is first so, and an
    // arena counts as memory in use for as long as the process runs.
    ASSERT_EQ(mallopt(M_ARENA_MAX, 1), 1);
    std::size_t in_use = 0;
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        ASSERT_FALSE(loaded(library_file));
        {
            const library once(library_file);
            ASSERT_STREQ(once.function<decltype(ostrel_last_message)>("ostrel_last_message")(), "");
            ASSERT_TRUE(message_of_handles(once).starts_with("constant \"none\""));
            ASSERT_TRUE(loaded(library_file));
        }
        ASSERT_FALSE(mapped(library_file));
        if (round == 30)
            in_use = mallinfo2().uordblks;
    }
    EXPECT_LT(mallinfo2().uordblks, in_use + 2000);
}

TEST(copies, have_messages_of_their_own) {
    const copied_file copy;
    const library first(library_file), second(copy.path());
    ASSERT_TRUE(message_of_handles(first).starts_with("constant \"none\""));
    EXPECT_STREQ(second.function<decltype(ostrel_last_message)>("ostrel_last_message")(), "");
}

TEST(unloading, while_a_thread_of_the_host_goes_on) {
    // A thread that has used the library ends after the library is unloaded. None of its code may be called then.
    int ready[2], go[2];
    ASSERT_EQ(pipe(ready), 0);
    ASSERT_EQ(pipe(go), 0);
    void *const handle = dlopen(library_file.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr);
    struct work {
        void *handle;
        int ready, go;
        bool ok;
    } shared = {handle, ready[1], go[0], false};
    pthread_t thread{};
    const auto body = [](void *argument) -> void * {
        auto *const w = static_cast<work *>(argument);
        {
            const auto prop = reinterpret_cast<decltype(ostrel_prop) *>(dlsym(w->handle, "ostrel_prop"));
            char text[256];
            const double t = 500.0, q = 1.0;
            prop("water", "tq", &t, &q, "p", text, 5, 2, 1, sizeof text);
            w->ok = std::string_view(text, 9) == "No errors";
            // This gives the thread a message.
            reinterpret_cast<decltype(ostrel_fluid_open) *>(dlsym(w->handle, "ostrel_fluid_open"))("water", nullptr,
                                                                                                   nullptr);
        }
        char byte = 0;
        static_cast<void>(!write(w->ready, &byte, 1));
        static_cast<void>(!read(w->go, &byte, 1));
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, nullptr, body, &shared), 0);
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    dlclose(handle);
    EXPECT_FALSE(mapped(library_file));
    ASSERT_EQ(write(go[1], &byte, 1), 1);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_TRUE(shared.ok);
}

} // namespace
