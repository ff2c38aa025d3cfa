// SPDX-License-Identifier: MIT
#pragma once

/// Marks the names that the shared library exports; all others are hidden.
#define OSTREL_VISIBLE __attribute__((visibility("default")))

/// For the formulas of the models and of their states. Compilers leave out the parts that an operation does not need
/// only if these functions are inlined. Compiling them inlined with the address sanitizer would take minutes.
#if defined(__OPTIMIZE__) && !defined(__SANITIZE_ADDRESS__)
#define OSTREL_INLINE __attribute__((always_inline)) inline
#else
#define OSTREL_INLINE inline
#endif
