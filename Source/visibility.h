// SPDX-License-Identifier: MIT
#pragma once

/// Marks what callers outside the shared library may use; everything else is hidden.
#define OSTREL_VISIBLE __attribute__((visibility("default")))
