// SPDX-License-Identifier: MIT
// What is computed of an open fluid. The texts of a call are read first, so that a call that cannot be understood
// writes nothing; then the states are computed, and the first one that failed is described in the thread's message.
//
// The functions have the arguments of those in ostrel_fluid.h and return a status whose message stands.
#pragma once

#include "Fluid/handle.h"

#include <cstddef>

namespace fluid {

int evaluate(const ostrel_fluid *of, const char *inputs, const char *outputs, std::size_t count, const double *first,
             const double *second, double *values, int *status);
int evaluate_parallel(const ostrel_fluid *of, const char *inputs, const char *outputs, std::size_t count,
                      const double *first, const double *second, double *values, int *status, unsigned workers);
int value(const ostrel_fluid *of, const char *inputs, double first, double second, const char *output, double &result);
int saturation(const ostrel_fluid *of, const char *input, const char *outputs, std::size_t count,
               const double *values_in, double *liquid, double *vapor, int *status);
int solve(const ostrel_fluid *of, const char *inputs, std::size_t count, const double *first, const double *second,
          ostrel_state *states);
int outputs_of(const ostrel_fluid *of, const char *outputs, std::size_t count, const ostrel_state *states,
               double *values, int *status);

/// The constant or text with a name; NaN or null for an unknown one, whose message stands.
double constant_of(const ostrel_fluid *of, const char *name);
const char *text_of(const ostrel_fluid *of, const char *name);

/// A cell of a list, see ostrel_list.
const char *list(const char *kind, std::size_t index, const char *what);

} // namespace fluid
