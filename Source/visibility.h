// SPDX-License-Identifier: MIT
#pragma once

/// Marks what callers outside the shared library may use; everything else is hidden.
#define OSTREL_VISIBLE __attribute__((visibility("default")))

/// For the formulas of the models and of their states: only where they are inlined is left out what an operation does
/// not need.
#define OSTREL_INLINE __attribute__((always_inline)) inline
