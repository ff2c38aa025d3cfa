/* SPDX-License-Identifier: MIT */
/* Prints properties of a fluid along an isobar and its saturation line, through a handle of the fluid.
 *
 *   fluid_tables [FLUID [BAR [FIRST_K LAST_K]]]
 */
#include "ostrel_fluid.h"

#include <math.h>
#include <stdio.h>
#include <stdlib.h>

enum { rows = 8 };

typedef struct column {
    const char *output;
    const char *unit;
    double scale; /* shown value = SI value * scale */
    int decimals;
} column;

static const column isobar[] = {
    {"t", "K", 1, 2},
    {"d", "kg/m3", 1, 3},
    {"h", "kJ/kg", 1e-3, 3},
    {"s", "kJ/(kg K)", 1e-3, 5},
    {"cp", "kJ/(kg K)", 1e-3, 4},
    {"c", "m/s", 1, 2},
    {"eta", "uPa s", 1e6, 3},
    {"lambda", "mW/(m K)", 1e3, 2},
};
static const column saturation[] = {
    {"t", "K", 1, 2}, {"p", "kPa", 1e-3, 3}, {"d", "kg/m3", 1, 3}, {"h", "kJ/kg", 1e-3, 3}, {"s", "kJ/(kg K)", 1e-3, 5},
};
enum {
    isobar_columns = sizeof isobar / sizeof isobar[0],
    saturation_columns = sizeof saturation / sizeof saturation[0]
};

static void print_titles(const column *columns, int count) {
    for (int i = 0; i < count; ++i)
        printf("%11s", columns[i].output);
    printf("\n");
    for (int i = 0; i < count; ++i)
        printf("%11s", columns[i].unit);
    printf("\n");
}

static void print_row(const column *columns, int count, const double *values) {
    for (int i = 0; i < count; ++i)
        printf("%11.*f", columns[i].decimals, values[i] * columns[i].scale);
}

/* Ends the program with the library's message. */
static void give_up(void) {
    fprintf(stderr, "%s\n", ostrel_last_message());
    exit(1);
}

int main(int argc, char **argv) {
    const double bar = argc > 2 ? atof(argv[2]) : 1, first = argc > 4 ? atof(argv[3]) : 300,
                 last = argc > 4 ? atof(argv[4]) : 475;
    double p[rows], t[rows], values[rows * isobar_columns];
    double liquid[rows * saturation_columns], vapor[rows * saturation_columns], t_crit;
    ostrel_fluid *fluid;

    if (ostrel_fluid_open(argc > 1 ? argv[1] : "toluene", NULL, &fluid) != OSTREL_OK)
        give_up();
    t_crit = ostrel_fluid_constant(fluid, "t_crit");
    printf("%s   M %.3f kg/kmol   Tc %.2f K   pc %.0f kPa   model %s\n", ostrel_fluid_text(fluid, "name"),
           ostrel_fluid_constant(fluid, "m_mol") * 1e3, t_crit, ostrel_fluid_constant(fluid, "p_crit") * 1e-3,
           ostrel_fluid_text(fluid, "model"));

    for (int i = 0; i < rows; ++i) {
        p[i] = bar * 1e5;
        t[i] = first + (last - first) * i / (rows - 1);
    }
    if (ostrel_fluid_evaluate(fluid, "pt", "t,d,h,s,cp,c,eta,lambda", rows, p, t, values, NULL) != OSTREL_OK)
        give_up();
    printf("\nAt %g bar\n", bar);
    print_titles(isobar, isobar_columns);
    for (int i = 0; i < rows; ++i) {
        print_row(isobar, isobar_columns, values + i * isobar_columns);
        printf("\n");
    }

    for (int i = 0; i < rows; ++i)
        t[i] = t_crit * (0.6 + 0.05 * i);
    if (ostrel_fluid_saturation(fluid, "t", "t,p,d,h,s", rows, t, liquid, vapor, NULL) != OSTREL_OK)
        give_up();
    printf("\nSaturated liquid and vapor\n");
    print_titles(saturation, saturation_columns);
    for (int i = 0; i < rows; ++i) {
        print_row(saturation, saturation_columns, liquid + i * saturation_columns);
        printf("\n%22s", "");
        print_row(saturation + 2, saturation_columns - 2, vapor + i * saturation_columns + 2);
        printf("\n");
    }
    ostrel_fluid_close(fluid);
    return 0;
}
