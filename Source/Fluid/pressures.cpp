// SPDX-License-Identifier: MIT
#include "Fluid/pressures.h"

namespace fluid {

template <class Model>
void pressures_at_volumes(const Model &model, const pressure_scales &scales, std::size_t count, const double *t,
                          const double *v, double *p) {
    const Model own = model; // so that no store can change it
    const pressure_scales s = scales;
    for (std::size_t i = 0; i < count; ++i)
        p[i] = separated_attraction::state_point<Model, double>(own, t[i] * s.per_T, v[i] * s.per_v + s.offset).P() *
               s.unit;
}

template <class Model>
void pressures_at_densities(const Model &model, const pressure_scales &scales, std::size_t count, const double *t,
                            const double *d, double *p) {
    const Model own = model;
    const pressure_scales s = scales;
    for (std::size_t i = 0; i < count; ++i)
        p[i] =
            separated_attraction::state_point<Model, double>(own, t[i] * s.per_T, 1.0 / d[i] * s.per_v + s.offset).P() *
            s.unit;
}

#define OSTREL_PRESSURES(unused, type, Model, ...)                                                                  \
    template void pressures_at_volumes(const equations::exact_model<equations::Model> &, const pressure_scales &,   \
                                       std::size_t, const double *, const double *, double *);                      \
    template void pressures_at_densities(const equations::exact_model<equations::Model> &, const pressure_scales &, \
                                         std::size_t, const double *, const double *, double *);
OSTREL_MODELS(OSTREL_PRESSURES, )
#undef OSTREL_PRESSURES

} // namespace fluid
