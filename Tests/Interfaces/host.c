/* SPDX-License-Identifier: MIT */
/* Makes the requests of a table, and prints every number and text that the library returns.
 *
 *   host_c TABLE
 */
#include "ostrel.h"

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { fluid_at = 2, fluid_len = 12, code_at = 14, code_len = 10, first_at = 26, second_at = 53, number_len = 26 };
enum { output_at = 80, output_len = 12, line_len = 96 };

static int text_length(const char *text, int length) {
    while (length > 0 && text[length - 1] == ' ')
        --length;
    return length;
}

/* The bits of a number, then the number itself in 25 columns with three digits of exponent. */
static void print_number(double value) {
    char decimal[40];
    uint64_t bits;

    memcpy(&bits, &value, sizeof bits);
    if (isnan(value)) {
        strcpy(decimal, "NaN");
    } else if (isinf(value)) {
        strcpy(decimal, value > 0 ? "Infinity" : "-Infinity");
    } else {
        char *exponent;
        long power;
        sprintf(decimal, "%.16E", value);
        exponent = strchr(decimal, 'E') + 1;
        power = strtol(exponent, NULL, 10);
        sprintf(exponent, "%c%03ld", power < 0 ? '-' : '+', labs(power));
    }
    printf("%08lX%08lX %25s", (unsigned long)(bits >> 32), (unsigned long)(bits & 0xFFFFFFFFu), decimal);
}

static void print_answer(double value, const char *text, int length) {
    print_number(value);
    printf(" [%.*s]\n", text_length(text, length), text);
}

static double number_at(const char *line, int at) {
    char field[number_len + 1];
    memcpy(field, line + at, number_len);
    field[number_len] = '\0';
    return strtod(field, NULL);
}

static void print_state(const char *pair) {
    const double first = 500, second = 5;
    double T = -1, v = -1;
    get_tv(pair, &first, &second, &T, &v, 2);
    printf("%.2s ", pair);
    print_number(T);
    putchar(' ');
    print_number(v);
    putchar('\n');
}

int main(int argc, char **argv) {
    static char names[500][256];
    char line[line_len + 2], text[256], brief[10];
    int32_t version[4], count = 0;
    FILE *const table = argc > 1 ? fopen(argv[1], "r") : NULL;

    if (table == NULL)
        return 1;
    ostrel_sub();
    getversion(version);
    printf("%d %d %d %d\n", (int)version[0], (int)version[1], (int)version[2], (int)version[3]);
    ostrel_fluids(&count, names[0], sizeof names[0]);
    printf("%d\n", (int)count);
    for (int i = 0; i < count; ++i)
        printf("[%.*s]\n", text_length(names[i], (int)sizeof names[i]), names[i]);

    while (fgets(line, sizeof line, table) != NULL) {
        const size_t used = strcspn(line, "\n");
        memset(line + used, ' ', sizeof line - used);
        if (line[0] == '?') {
            const double first = number_at(line, first_at), second = number_at(line, second_at);
            const double value = ostrel_prop(line + fluid_at, line + code_at, &first, &second, line + output_at, text,
                                             fluid_len, code_len, output_len, sizeof text);
            print_answer(value, text, (int)sizeof text);
        } else if (line[0] == '!') {
            const double value = ostrel_info(line + fluid_at, line + code_at, text, fluid_len, code_len, sizeof text);
            print_answer(value, text, (int)sizeof text);
        }
    }
    fclose(table);

    /* An error field that is too short for the text. */
    {
        const double first = 500, second = 5;
        const double value = ostrel_prop("toluene", "td", &first, &second, "nothing", brief, 7, 2, 7, sizeof brief);
        print_answer(value, brief, (int)sizeof brief);
    }
    read_init_fluiddata("toluene", 7);
    print_state("tv");
    print_state("td");
    print_state("xy");
    read_init_fluiddatafile("nowhere", 7);
    read_init_fluiddatadb("nowhere", "toluene", 7, 7);
    print_answer(ostrel_info("water", "m_mol", text, 5, 5, sizeof text), text, (int)sizeof text);
    return 0;
}
