// SPDX-License-Identifier: MIT
#pragma once

/// Marks the names that the shared library exports; all others are hidden.
#define OSTREL_VISIBLE __attribute__((visibility("default")))

/// For the formulas of the models and of their states. Compilers leave out the parts that an operation does not need
/// only if these functions are inlined. Compiling them inlined with the address sanitizer would take minutes; GCC and
/// clang each have their own way to tell that it is on.
#if defined(__SANITIZE_ADDRESS__)
#define OSTREL_SANITIZED_ADDRESSES 1
#elif defined(__has_feature)
#define OSTREL_SANITIZED_ADDRESSES __has_feature(address_sanitizer)
#else
#define OSTREL_SANITIZED_ADDRESSES 0
#endif
#if defined(__OPTIMIZE__) && !OSTREL_SANITIZED_ADDRESSES
#define OSTREL_INLINE __attribute__((always_inline)) inline
#else
#define OSTREL_INLINE inline
#endif
#undef OSTREL_SANITIZED_ADDRESSES
