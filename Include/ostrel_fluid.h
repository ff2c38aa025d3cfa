/* SPDX-License-Identifier: MIT */
/* Handles of fluids: thermodynamic and transport properties of many fluids at the same time, from any thread. */
#ifndef OSTREL_FLUID_H
#define OSTREL_FLUID_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ostrel_fluid ostrel_fluid;

enum {
    OSTREL_OK = 0,
    OSTREL_NOT_A_NUMBER = 1,
    OSTREL_OUT_OF_RANGE = 2,
    OSTREL_NO_STATE = 3,
    OSTREL_TWO_PHASE = 4,
    OSTREL_NO_SATURATION = 5,
    OSTREL_NOT_CONVERGED = 6,
    OSTREL_BAD_ARGUMENT = 10,
    OSTREL_CANNOT_OPEN = 11,
    OSTREL_BAD_FILE = 12,
    OSTREL_OUT_OF_MEMORY = 13
};

typedef struct ostrel_state {
    double t;
    double p;
    double v;
    double q;
    double first;
    double second;
    uint32_t inputs;
    int32_t status;
    int32_t phase;
    uint32_t reserved;
} ostrel_state;

int ostrel_fluid_open(const char *name, const char *options, ostrel_fluid **fluid);
int ostrel_fluid_open_file(const char *path, const char *options, ostrel_fluid **fluid);
int ostrel_fluid_open_text(const char *text, const char *options, ostrel_fluid **fluid);
int ostrel_fluid_open_database(const char *location, const char *name, const char *options, ostrel_fluid **fluid);
void ostrel_fluid_close(ostrel_fluid *fluid);

int ostrel_fluid_evaluate(const ostrel_fluid *fluid, const char *inputs, const char *outputs, size_t count,
                          const double *first, const double *second, double *values, int *status);
int ostrel_fluid_evaluate_parallel(const ostrel_fluid *fluid, const char *inputs, const char *outputs, size_t count,
                                   const double *first, const double *second, double *values, int *status,
                                   unsigned workers);
double ostrel_fluid_value(const ostrel_fluid *fluid, const char *inputs, double first, double second,
                          const char *output, int *status);
int ostrel_fluid_saturation(const ostrel_fluid *fluid, const char *input, const char *outputs, size_t count,
                            const double *values_in, double *liquid, double *vapor, int *status);

int ostrel_fluid_solve(const ostrel_fluid *fluid, const char *inputs, size_t count, const double *first,
                       const double *second, ostrel_state *states);
int ostrel_fluid_outputs(const ostrel_fluid *fluid, const char *outputs, size_t count, const ostrel_state *states,
                         double *values, int *status);

double ostrel_fluid_constant(const ostrel_fluid *fluid, const char *name);
const char *ostrel_fluid_text(const ostrel_fluid *fluid, const char *name);
const char *ostrel_status_text(int status);
const char *ostrel_last_message(void);

const char *ostrel_list(const char *kind, size_t index, const char *what);
int ostrel_fluid_find(const char *words, void (*take)(void *user, const char *file, const char *name), void *user);

#ifdef __cplusplus
}
#endif

#endif
