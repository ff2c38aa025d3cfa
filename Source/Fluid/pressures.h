// SPDX-License-Identifier: MIT
// Pressures of many states of a surface in one loop, which compilers can turn into vector instructions. Division and
// square root are exact in them too, so that the bits are those of one state at a time.
#pragma once

#include "Equations/exact_models.h"

#include <cstddef>

namespace fluid {

/// Factors of the loop: T = t per_T, v = V per_v + offset or, for densities, 1/d per_v + offset; p = P unit.
struct pressure_scales {
    double per_T;
    double per_v;
    double offset;
    double unit;
};

template <class Model>
void pressures_at_volumes(const Model &model, const pressure_scales &scales, std::size_t count, const double *t,
                          const double *v, double *p);
template <class Model>
void pressures_at_densities(const Model &model, const pressure_scales &scales, std::size_t count, const double *t,
                            const double *d, double *p);

} // namespace fluid
