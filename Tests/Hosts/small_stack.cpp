// SPDX-License-Identifier: MIT
// A thread of a host with a stack of 64 KiB. All calls of the library must fit, with room to spare. A pattern in the
// memory of the stack shows how much of it a call has used.
#include "Tests/Hosts/hosts_support.h"

#include <algorithm>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/wait.h>

namespace {

constexpr std::size_t stack_size = std::size_t{64} << 10;
/// [bytes] the stack that is enough for a call according to Include/ostrel.h, beside that of the thread itself
constexpr std::ptrdiff_t promised = 32 << 10;

/// Runs the body in a thread with a small stack, below which nothing can be written. Returns the bytes of stack that
/// were used.
template <class Body>
std::ptrdiff_t stack_used(Body body) {
    constexpr unsigned char pattern = 0xA5;
    const std::size_t guard = static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) * 16;
    void *const memory = mmap(nullptr, guard + stack_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    EXPECT_NE(memory, MAP_FAILED);
    EXPECT_EQ(mprotect(memory, guard, PROT_NONE), 0);
    unsigned char *const stack = static_cast<unsigned char *>(memory) + guard;
    std::fill_n(stack, stack_size, pattern);

    struct work {
        Body &body;
        const unsigned char *start;
    } shared = {body, nullptr};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    EXPECT_EQ(pthread_attr_setstack(&attributes, stack, stack_size), 0);
    pthread_t thread{};
    const auto run = [](void *argument) -> void * {
        auto *const w = static_cast<work *>(argument);
        w->start = static_cast<const unsigned char *>(__builtin_frame_address(0));
        w->body();
        return nullptr;
    };
    EXPECT_EQ(pthread_create(&thread, &attributes, run, &shared), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
    const unsigned char *const deepest =
        std::find_if(stack, stack + stack_size, [](unsigned char byte) { return byte != pattern; });
    const std::ptrdiff_t used = shared.start - deepest;
    munmap(memory, guard + stack_size);
    return used;
}

void expect_within(const char *what, std::ptrdiff_t used) {
    std::printf("%-40s %6td bytes of stack\n", what, used);
    EXPECT_GT(used, 500) << "nothing was measured";
    EXPECT_LT(used, promised) << what;
}

/// The first calls of a process look up the functions that they need in other libraries, which costs some stack.
TEST(small_stack, first_calls) {
    const support::temporary_folder folder;
#ifdef OSTREL_WITH_SQLITE
    const std::string database = folder.path() + "/fluids.sqlite";
    const std::string text = support::file_text(OSTREL_TESTS "/../Fluids/toluene.osd");
    const pid_t maker = fork();
    if (maker == 0) {
        support::make_database(database, "good", text);
        _exit(0);
    }
    ASSERT_EQ(waitpid(maker, nullptr, 0), maker);
    expect_within("loading from a database",
                  stack_used([&] { read_init_fluiddatadb(database.data(), "good", database.size(), 4); }));
    EXPECT_EQ(support::shared_text(), "No errors");
    EXPECT_EQ(gas_properties::gas.name.trimmed(), "toluene");
#endif
    support::answer answer{};
    const auto request = [&](const char *fluid, const char *code, double input1, double input2, const char *output) {
        return [=, &answer] { answer = support::ask(fluid, code, input1, input2, output); };
    };
    expect_within("loading from a file", stack_used(request("toluene", "td", 500, 2, "p")));
    EXPECT_TRUE(answer.ok());
    expect_within("building the saturation table", stack_used(request("toluene", "tq", 500, 1, "p")));
    EXPECT_TRUE(answer.ok());
    for (const char *code : support::pair_codes) {
        const auto [input1, input2] = support::inputs_at("toluene", code, 500, 2);
        expect_within((std::string("the pair ") + code).c_str(),
                      stack_used(request("toluene", code, input1, input2, "v")));
    }
    expect_within("transport", stack_used(request("toluene", "td", 510, 2, "lambda")));
    expect_within("a record that cannot be read", stack_used([&] {
                      const std::string file = folder.write("bad.osd", "a\nb\nc\nd\n1x\n");
                      read_init_fluiddatafile(file.data(), file.size());
                  }));
    EXPECT_TRUE(support::shared_text().starts_with("Ostrel error: file bad.osd, record 5"));
    std::string names(std::size_t{500} * 256, ' ');
    std::int32_t count = 0;
    expect_within("the list of fluids", stack_used([&] { ostrel_fluids(&count, names.data(), 256); }));
    EXPECT_GT(count, 100);
    expect_within("the default fluid directory", stack_used([&] {
                      unsetenv("OSTREL_FLUIDS");
                      ostrel_fluids(&count, names.data(), 256);
                  }));
    EXPECT_GT(count, 100);
    expect_within("the greeting", stack_used([] { ostrel_sub(); }));
}

TEST(small_stack, a_whole_session) {
    const support::session session;
    const auto wanted = session.run();
    std::vector<support::exact_answer> answers;
    expect_within("a whole session", stack_used([&] { answers = session.run(); }));
    support::expect_same(answers, wanted);
}

} // namespace
