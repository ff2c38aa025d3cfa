// SPDX-License-Identifier: MIT
#pragma once

/// Marks what callers outside the shared library may use; everything else is hidden.
#define OSTREL_VISIBLE __attribute__((visibility("default")))

/// For the formulas of the models and of their states: only where they are inlined is left out what an operation does
/// not need. Sanitizers would take minutes over what is left in.
#if defined(__OPTIMIZE__) && !defined(__SANITIZE_ADDRESS__)
#define OSTREL_INLINE __attribute__((always_inline)) inline
#else
#define OSTREL_INLINE inline
#endif
