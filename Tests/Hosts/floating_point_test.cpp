// SPDX-License-Identifier: MIT
// Hosts with another rounding mode, with subnormal numbers flushed to zero, or with floating-point traps. They must get
// the same digits and no signal, and find their environment as they left it.
#include "Tests/Hosts/hosts_support.h"

#include <csignal>
#include <cstring>
#ifdef __x86_64__
#include <xmmintrin.h>
#endif

namespace {

/// The control and status of the floating-point unit now; on a known machine, all their bits.
struct control_state {
    int rounding = std::fegetround();
    int traps = fegetexcept();
    int flags = std::fetestexcept(FE_ALL_EXCEPT);
#ifdef __x86_64__
    unsigned vector_unit = _mm_getcsr();
    unsigned short old_unit = [] {
        unsigned short word = 0;
        __asm__ volatile("fnstcw %0" : "=m"(word));
        return word;
    }();
#endif
    friend bool operator==(const control_state &, const control_state &) = default;
};

/// Sets an environment around each call; the test's own code runs in the default one.
template <class Set>
auto in_environment(Set set, int &changed) {
    return [set, &changed](auto call) {
        std::fesetenv(FE_DFL_ENV);
        set();
        const control_state before;
        call();
        const control_state after;
        // If an exception were pending, the next operation would end the host.
        volatile double small = 1.0, large = 3.0;
        volatile long double small_extended = small;
        small = small + large;
        small_extended = small_extended + large;
        std::fesetenv(FE_DFL_ENV);
        changed += before != after;
    };
}

template <class Set>
void expect_same_in(Set set) {
    const support::session session;
    const auto wanted = session.run();
    int changed = 0;
    support::expect_same(session.run(in_environment(set, changed)), wanted);
    EXPECT_EQ(changed, 0) << "calls after which the host's environment was another";
}

TEST(floating_point, the_default_environment_stays) {
    const support::session session;
    int changed = 0;
    session.run([&](auto call) {
        std::fesetenv(FE_DFL_ENV);
        const int rounding = std::fegetround(), traps = fegetexcept();
        call();
        changed += rounding != std::fegetround() || traps != fegetexcept();
    });
    EXPECT_EQ(changed, 0);
}

TEST(floating_point, rounding_upward) {
    expect_same_in([] { std::fesetround(FE_UPWARD); });
}

TEST(floating_point, rounding_downward) {
    expect_same_in([] { std::fesetround(FE_DOWNWARD); });
}

TEST(floating_point, rounding_toward_zero) {
    expect_same_in([] { std::fesetround(FE_TOWARDZERO); });
}

TEST(floating_point, the_session_depends_on_the_rounding) {
    // The guard is needed: without it, at least one module operation differs.
    support::fresh_frame();
    ASSERT_TRUE(support::ask("toluene", "td", 500, 2.0, "t").ok());
    const double nearest = thermodynamics::e__T_v(1.1, 20.0);
    std::fesetround(FE_UPWARD);
    const double upward = thermodynamics::e__T_v(1.1, 20.0);
    std::fesetround(FE_TONEAREST);
    EXPECT_NE(nearest, upward) << "modules run in the caller's environment";
}

TEST(floating_point, traps) {
    expect_same_in([] { feenableexcept(FE_DIVBYZERO | FE_INVALID | FE_OVERFLOW); });
}

TEST(floating_point, every_trap_and_upward) {
    expect_same_in([] {
        std::fesetround(FE_UPWARD);
        feenableexcept(FE_DIVBYZERO | FE_INVALID | FE_OVERFLOW | FE_UNDERFLOW);
    });
}

TEST(floating_point, flags_of_a_host_with_its_own_environment_stay) {
    // Flags that are set while their traps are on belong to the host; the library must not set or clear any.
    expect_same_in([] {
        std::feraiseexcept(FE_OVERFLOW | FE_INEXACT);
        feenableexcept(FE_DIVBYZERO | FE_INVALID);
    });
}

#ifdef __x86_64__
TEST(floating_point, subnormal_numbers_flushed_to_zero) {
    constexpr unsigned flush_to_zero = 0x8000, denormals_are_zero = 0x0040;
    for (const unsigned bits : {flush_to_zero, denormals_are_zero})
        expect_same_in([bits] { _mm_setcsr(_mm_getcsr() | bits); });
}
#endif

// The routines of the host run in the library's environment, and the host's environment comes back whatever they do.

struct seen {
    static inline bool standard = false;
    static inline bool throws = false;
    static void look() {
#ifdef __x86_64__
        constexpr unsigned status_bits = 0x3F, standard_control = 0x1F80;
        standard = (_mm_getcsr() & ~status_bits) == standard_control;
#else
        standard = std::fegetround() == FE_TONEAREST && fegetexcept() == 0;
#endif
        if (throws)
            throw 1;
    }
    static void fluidpath(char *path, const char *, size_t path_len, size_t) {
        look();
        records::fill_text({path, path_len}, {OSTREL_TESTS "/../Fluids/"});
    }
    static int32_t getfluid(const char *, const char *, char *, int32_t *, size_t, size_t, size_t) {
        look();
        standard = standard && std::fegetround() == FE_TONEAREST && fegetexcept() == 0;
        return 0;
    }
};

TEST(floating_point, host_routines_run_in_the_standard_environment) {
    support::fresh_frame();
    const ostrel_host routines = {seen::fluidpath, nullptr, seen::getfluid};
    ostrel_use_host(&routines);
    for (const bool throws : {false, true}) {
        seen::throws = throws;
        seen::standard = false;
        int changed = 0;
        const auto around = in_environment(
            [] {
                std::fesetround(FE_DOWNWARD);
                feenableexcept(FE_INVALID);
            },
            changed);
        support::answer answer{};
        around([&] { answer = support::ask(throws ? "water" : "toluene", "td", 500, 2.0, "t"); });
        EXPECT_EQ(answer.ok(), !throws);
        EXPECT_TRUE(seen::standard);
        if (!throws) {
            seen::standard = false;
            around([] { read_init_fluiddatadb("x", "y", 1, 1); });
            EXPECT_TRUE(seen::standard);
        }
        EXPECT_EQ(changed, 0);
    }
    ostrel_use_host(nullptr);
}

} // namespace
