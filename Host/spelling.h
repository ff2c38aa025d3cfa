// SPDX-License-Identifier: MIT
// Finds the names that are meant by a misspelt one.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace spelling {

/// The places of the names that are near to the written one in spelling, the nearest first. A name is near if a third
/// of the written letters, or one letter, may have been changed, inserted, left out or swapped with its neighbour. The
/// case of letters does not count. With `however_far` all names are near.
std::vector<std::size_t> nearest(std::string_view written, std::span<const std::string> names,
                                 bool however_far = false);

} // namespace spelling
