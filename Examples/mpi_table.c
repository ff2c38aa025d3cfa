/* SPDX-License-Identifier: MIT */
/* A table of a fluid over pressure and temperature, as flow solvers interpolate it, made by the ranks of an MPI
 * program.
 *
 *   mpirun -n RANKS mpi_table [FLUID [OPTIONS [ROWS]]]      OPTIONS, such as model=pr; ROWS of pressure
 *
 * Rank 0 opens the fluid by its name and sends its parameters to the others, which need no fluid folder then. It deals
 * out the states, every rank computes its share, and rank 0 gathers the values. Last it computes all states itself: the
 * bits do not depend on the number of ranks.
 */
#include "ostrel_fluid.h"

#include <mpi.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { columns = 8, outputs = 3, states_shown = 4 };

static const char wanted[] = "d,h,c"; /* kg/m3, J/kg, m/s */

/* Ends all ranks. */
static void give_up(const char *message) {
    fprintf(stderr, "%s\n", message);
    MPI_Abort(MPI_COMM_WORLD, 1);
    exit(1);
}

static void *room(size_t count, size_t size) {
    void *place = calloc(count ? count : 1, size);
    if (!place)
        give_up("no memory");
    return place;
}

/* Rank 0's text on every rank. */
static char *sent_text(const char *text, int rank) {
    int length = rank == 0 ? (int)strlen(text) + 1 : 0;
    char *copy;
    MPI_Bcast(&length, 1, MPI_INT, 0, MPI_COMM_WORLD);
    copy = room((size_t)length, 1);
    if (rank == 0)
        memcpy(copy, text, (size_t)length);
    MPI_Bcast(copy, length, MPI_CHAR, 0, MPI_COMM_WORLD);
    return copy;
}

/* Rank 0's fluid on every rank. */
static ostrel_fluid *opened(const char *name, const char *options, int rank) {
    ostrel_fluid *original = NULL, *fluid = NULL;
    char *text, *same_options;
    if (rank == 0 && ostrel_fluid_open(name, options, &original) != OSTREL_OK)
        give_up(ostrel_last_message());
    text = sent_text(ostrel_fluid_text(original, "text"), rank);
    same_options = sent_text(ostrel_fluid_text(original, "options"), rank);
    if (rank == 0)
        fluid = original;
    else if (ostrel_fluid_open_text(text, same_options, &fluid) != OSTREL_OK)
        give_up(ostrel_last_message());
    free(text);
    free(same_options);
    return fluid;
}

/* States at a tenth to twice the critical pressure, and at 0.7 to 1.4 of the critical temperature. */
static void fill(const ostrel_fluid *fluid, int rows, double *p, double *t) {
    const double p_crit = ostrel_fluid_constant(fluid, "p_crit"), t_crit = ostrel_fluid_constant(fluid, "t_crit");
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j < columns; ++j) {
            p[i * columns + j] = p_crit * (0.1 + 1.9 * i / (rows - 1));
            t[i * columns + j] = t_crit * (0.7 + 0.1 * j);
        }
    }
}

static void evaluate(const ostrel_fluid *fluid, int count, const double *p, const double *t, double *values) {
    if (ostrel_fluid_evaluate(fluid, "pt", wanted, (size_t)count, p, t, values, NULL) != OSTREL_OK)
        give_up(ostrel_last_message());
}

/* Shows some states of the table, and whether one rank alone gets the same. */
static int report(const ostrel_fluid *fluid, int count, const double *p, const double *t, const double *values) {
    const size_t size = (size_t)count * outputs;
    double *alone = room(size, sizeof *alone);
    int same;
    evaluate(fluid, count, p, t, alone);
    same = memcmp(values, alone, size * sizeof *alone) == 0;
    free(alone);
    printf("%s\n%10s%10s%12s%12s%10s\n", ostrel_fluid_text(fluid, "name"), "p bar", "t K", "d kg/m3", "h kJ/kg",
           "c m/s");
    for (int i = 0; i < states_shown; ++i) {
        const int k = (count - 1) * i / (states_shown - 1);
        const double *at = values + (size_t)k * outputs;
        printf("%10.2f%10.2f%12.3f%12.2f%10.2f\n", p[k] * 1e-5, t[k], at[0], at[1] * 1e-3, at[2]);
    }
    printf("one rank gets %s bits\n", same ? "the same" : "other");
    return same;
}

int main(int argc, char **argv) {
    int rank, ranks, rows, count, share, same = 1;
    int *counts, *begins, *value_counts, *value_begins;
    double *p = NULL, *t = NULL, *values = NULL, *own_p, *own_t, *own_values;
    ostrel_fluid *fluid;

    MPI_Init(&argc, &argv);
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    MPI_Comm_size(MPI_COMM_WORLD, &ranks);
    rows = argc > 3 ? atoi(argv[3]) : 101;
    if (rows < 2 || rows > 1000000)
        give_up("there must be 2 to 1000000 rows");
    fluid = opened(argc > 1 ? argv[1] : "toluene", argc > 2 ? argv[2] : NULL, rank);

    /* The first ranks get one state more, unless the states can be divided. */
    count = rows * columns;
    counts = room((size_t)ranks, sizeof *counts);
    begins = room((size_t)ranks, sizeof *begins);
    value_counts = room((size_t)ranks, sizeof *value_counts);
    value_begins = room((size_t)ranks, sizeof *value_begins);
    for (int i = 0; i < ranks; ++i) {
        counts[i] = count / ranks + (i < count % ranks);
        begins[i] = i ? begins[i - 1] + counts[i - 1] : 0;
        value_counts[i] = counts[i] * outputs;
        value_begins[i] = begins[i] * outputs;
    }
    share = counts[rank];

    if (rank == 0) {
        p = room((size_t)count, sizeof *p);
        t = room((size_t)count, sizeof *t);
        values = room((size_t)count * outputs, sizeof *values);
        fill(fluid, rows, p, t);
    }
    own_p = room((size_t)share, sizeof *own_p);
    own_t = room((size_t)share, sizeof *own_t);
    own_values = room((size_t)share * outputs, sizeof *own_values);
    MPI_Scatterv(p, counts, begins, MPI_DOUBLE, own_p, share, MPI_DOUBLE, 0, MPI_COMM_WORLD);
    MPI_Scatterv(t, counts, begins, MPI_DOUBLE, own_t, share, MPI_DOUBLE, 0, MPI_COMM_WORLD);
    evaluate(fluid, share, own_p, own_t, own_values);
    MPI_Gatherv(own_values, value_counts[rank], MPI_DOUBLE, values, value_counts, value_begins, MPI_DOUBLE, 0,
                MPI_COMM_WORLD);

    if (rank == 0) {
        printf("%d states, %d ranks, ", count, ranks);
        same = report(fluid, count, p, t, values);
    }
    free(own_values);
    free(own_t);
    free(own_p);
    free(values);
    free(t);
    free(p);
    free(value_begins);
    free(value_counts);
    free(begins);
    free(counts);
    ostrel_fluid_close(fluid);
    MPI_Finalize();
    return same ? 0 : 1;
}
