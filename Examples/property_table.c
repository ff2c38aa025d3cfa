/* SPDX-License-Identifier: MIT */
/* Prints properties of a fluid over a row of temperatures at one density, and its saturation line.
 *
 *   property_table [FLUID [DENSITY_KG_M3 [FIRST_K LAST_K]]]
 */
#include "ostrel.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { rows = 7 };

typedef struct column {
    const char *output;
    const char *title;
    const char *unit;
    double scale; /* shown value = SI value * scale */
    int decimals;
} column;

static const column columns[] = {
    {"t", "T", "K", 1, 2},
    {"p", "p", "kPa", 1e-3, 3},
    {"d", "d", "kg/m3", 1, 3},
    {"u", "u", "kJ/kg", 1e-3, 3},
    {"s", "s", "kJ/(kg K)", 1e-3, 5},
    {"cv", "cv", "kJ/(kg K)", 1e-3, 5},
    {"dp_dt", "dp/dT", "kPa/K", 1e-3, 5},
    {"dp_dv", "dp/dv", "MPa kg/m3", 1e-6, 4},
};
enum { column_count = sizeof columns / sizeof columns[0] };

/* The length of a blank-padded text without its padding. */
static int text_length(const char *text, int length) {
    while (length > 0 && text[length - 1] == ' ')
        --length;
    return length;
}

/* Prints the library's error text, and which fluids there are. */
static void give_up(const char *fluid, const char *output, const char *text, int length) {
    static char names[500][256];
    int32_t count = 0;

    fprintf(stderr, "%s, \"%s\": %.*s\nThe fluids are:", fluid, output, text_length(text, length), text);
    ostrel_fluids(&count, names[0], sizeof names[0]);
    for (int32_t i = 0; i < count; ++i)
        fprintf(stderr, " %.*s", text_length(names[i], (int)sizeof names[i]), names[i]);
    fputc('\n', stderr);
    exit(1);
}

static double property(const char *fluid, const char *pair, double input1, double input2, const char *output) {
    char text[256];
    const double value = ostrel_prop(fluid, pair, &input1, &input2, output, text, strlen(fluid), strlen(pair),
                                     strlen(output), sizeof text);
    if (strncmp(text, "No errors", 9) != 0)
        give_up(fluid, output, text, (int)sizeof text);
    return value;
}

static double constant(const char *fluid, const char *name) {
    char text[256];
    const double value = ostrel_info(fluid, name, text, strlen(fluid), strlen(name), sizeof text);
    if (strncmp(text, "No errors", 9) != 0)
        give_up(fluid, name, text, (int)sizeof text);
    return value;
}

static double number(const char *text) {
    char *end;
    const double value = strtod(text, &end);
    if (end == text || *end != '\0') {
        fprintf(stderr, "\"%s\" is not a number\n", text);
        exit(2);
    }
    return value;
}

/* Prints saturated liquid and vapor over a row of temperatures, or the error text if the model has no such states. */
static void saturation_table(const char *fluid) {
    static const char *const titles[] = {"T", "p_sat", "d_liquid", "d_vapor", "h_vapor"};
    static const char *const units[] = {"K", "kPa", "kg/m3", "kg/m3", "kJ/kg"};
    const double critical = constant(fluid, "t_crit");
    const double vapor = 1, liquid = 0;

    printf("\nSaturation\n");
    for (int c = 0; c < 5; ++c)
        printf("%*s", c == 0 ? 7 : 11, titles[c]);
    putchar('\n');
    for (int c = 0; c < 5; ++c)
        printf("%*s", c == 0 ? 7 : 11, units[c]);
    putchar('\n');
    for (int row = 0; row < rows; ++row) {
        const double t = critical * (0.75 + 0.04 * row);
        char text[256];
        const double p = ostrel_prop(fluid, "tq", &t, &vapor, "p", text, strlen(fluid), 2, 1, sizeof text);
        if (strncmp(text, "No errors", 9) != 0) {
            printf("%.*s\n", text_length(text, (int)sizeof text), text);
            return;
        }
        const double d_liquid = property(fluid, "tq", t, liquid, "d");
        const double d_vapor = property(fluid, "tq", t, vapor, "d");
        if (!(d_liquid > 1.01 * d_vapor)) {
            printf("The model's saturated phases are equal here.\n");
            return;
        }
        printf("%7.2f%11.3f%11.3f%11.3f%11.3f\n", t, p * 1e-3, d_liquid, d_vapor,
               property(fluid, "tq", t, vapor, "h") * 1e-3);
    }
}

int main(int argc, char **argv) {
    const char *fluid = argc > 1 ? argv[1] : "toluene";
    const double density = argc > 2 ? number(argv[2]) : 5.0;
    const double first = argc > 4 ? number(argv[3]) : 400.0;
    const double last = argc > 4 ? number(argv[4]) : 700.0;

    property(fluid, "td", first, density, "t"); /* loads the fluid, or says why it cannot */
    printf("%s   M %.5g kg/kmol   Tc %.6g K   pc %.5g kPa\n\n", fluid, constant(fluid, "m_mol") * 1e3,
           constant(fluid, "t_crit"), constant(fluid, "p_crit") * 1e-3);
    for (int c = 0; c < column_count; ++c)
        printf("%*s", c == 0 ? 7 : 11, columns[c].title);
    putchar('\n');
    for (int c = 0; c < column_count; ++c)
        printf("%*s", c == 0 ? 7 : 11, columns[c].unit);
    putchar('\n');
    for (int row = 0; row < rows; ++row) {
        const double t = first + (last - first) * row / (rows - 1);
        for (int c = 0; c < column_count; ++c)
            printf("%*.*f", c == 0 ? 7 : 11, columns[c].decimals,
                   property(fluid, "td", t, density, columns[c].output) * columns[c].scale);
        putchar('\n');
    }
    saturation_table(fluid);
    return 0;
}
