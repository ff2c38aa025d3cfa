// SPDX-License-Identifier: MIT
// The allocations of a test program that has allocations.cpp among its sources, the library's own included.
#pragma once

#include <limits>

namespace support {

/// How many there have been; a test may set it back. The one with the number `first_failure` fails, and all behind it.
extern long allocations;
inline constexpr long unlimited = std::numeric_limits<long>::max();
extern long first_failure;
/// Those that have not been given back.
extern long live;

} // namespace support
