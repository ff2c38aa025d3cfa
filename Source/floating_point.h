// SPDX-License-Identifier: MIT
// The floating-point environment of the entry points. A host may have set another rounding mode or traps, and a host
// that is linked with -ffast-math flushes subnormal numbers to zero. Results must not depend on that, and a NaN or an
// infinity during a search must not end the process.
#pragma once

#include <cfenv>
#ifdef __x86_64__
#include <xmmintrin.h>
#endif

namespace floating_point {

/// While the object lives, rounding is to nearest, nothing traps and nothing is flushed to zero. Its destructor
/// restores the host's environment, with the exception flags that it had.
class whole_environment {
public:
    whole_environment() noexcept {
        std::fegetenv(&of_host_);
        std::fesetenv(FE_DFL_ENV);
    }
    whole_environment(const whole_environment &) = delete;
    whole_environment &operator=(const whole_environment &) = delete;
    ~whole_environment() { std::fesetenv(&of_host_); }

private:
    std::fenv_t of_host_;
};

#ifdef __x86_64__

/// Like whole_environment, but for the vector unit only, in which the library computes. If the host has the standard
/// environment already, it does nothing, which saves time; the host's exception flags may then be raised.
class standard_environment {
public:
    standard_environment() noexcept : of_host_(_mm_getcsr()) {
        if (replaced())
            _mm_setcsr(standard_control);
    }
    standard_environment(const standard_environment &) = delete;
    standard_environment &operator=(const standard_environment &) = delete;
    ~standard_environment() {
        if (replaced())
            _mm_setcsr(of_host_);
    }

private:
    static constexpr unsigned status_bits = 0x3F;
    static constexpr unsigned standard_control = 0x1F80; // all exceptions masked
    bool replaced() const { return (of_host_ & ~status_bits) != standard_control; }

    unsigned of_host_;
};

#else

using standard_environment = whole_environment;

#endif

} // namespace floating_point
