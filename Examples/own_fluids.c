/* SPDX-License-Identifier: MIT */
/* A host with its own fluids: their texts are part of the program, and its own routines replace the library's.
 * Property requests load a fluid from a file, so the program writes the texts into a private folder. A read from a
 * fluid database gets them directly from memory.
 */
#define _POSIX_C_SOURCE 200809L
#include "ostrel.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

typedef struct fluid {
    const char *name;
    const char *text; /* one value in each line, as in a parameter file */
} fluid;

/* Both are ideal gases without critical data. */
static const fluid fluids[] = {
    {"air", "Names\nair\nN2, O2, Ar\nConstants\n28.9652 MM [kg/kmol]\nF a plain reference state\n"
            "298.15 T_ref [K]\n1 P_ref [atm]\n0.844604 v_ref [m3/kg]\n0 mur\n0 kh\n"
            "1 gas_type\nF dimensional coefficients\n1 constant cv\n717.6 cv_0 [J/(kg K)]\n"
            "5 viscosity by Sutherland\n1.716e-5 273.15 110.4 mu_ref_s [Pa s], T_ref_s [K], Tchar_s [K]\n"
            "4 constant Prandtl number\n0.71 Pr\n"},
    {"helium", "Names\nhelium\nHe\nConstants\n4.002602 MM [kg/kmol]\nF a plain reference state\n"
               "298.15 T_ref [K]\n1 P_ref [atm]\n6.11202 v_ref [m3/kg]\n0 mur\n0 kh\n"
               "1 gas_type\nF dimensional coefficients\n1 constant cv\n3115.7 cv_0 [J/(kg K)]\n"
               "1 constant viscosity\n1.99e-5 mu_const [Pa s]\n"
               "1 constant conductivity\n0.156 kk_const [W/(m K)]\n"},
};
enum { fluid_count = sizeof fluids / sizeof fluids[0] };

/* The program makes it in the current folder and removes it at the end. */
static char folder[] = "own_fluids_XXXXXX";

/* Gives the folder of this program, whatever OSTREL_FLUIDS says. The field is blank before, as those below. */
static void fluidpath(char *path, const char *key, size_t path_len, size_t key_len) {
    (void)key, (void)key_len;
    snprintf(path, path_len, "%s/", folder);
}

/* Lists the fluids in the order of the table; other files in the folder do not count. */
static void searchdirectory(const char *directory, const char *pattern, char *names, size_t directory_len,
                            size_t pattern_len, size_t name_len) {
    (void)directory, (void)pattern, (void)directory_len, (void)pattern_len;
    for (int i = 0; i < fluid_count; ++i)
        snprintf(names + (size_t)i * name_len, name_len, "%s.osd", fluids[i].name);
}

/* Gives a fluid's lines from memory. */
static int32_t getfluid(const char *location, const char *key, char *lines, int32_t *found, size_t location_len,
                        size_t key_len, size_t line_len) {
    (void)location, (void)location_len;
    *found = 0;
    for (int i = 0; i < fluid_count; ++i) {
        if (strlen(fluids[i].name) != key_len || memcmp(fluids[i].name, key, key_len) != 0)
            continue;
        for (const char *line = fluids[i].text; *line != '\0'; line += strcspn(line, "\n") + 1, lines += line_len) {
            if (strcspn(line, "\n") > line_len)
                return 0;
            memcpy(lines, line, strcspn(line, "\n"));
        }
        *found = 1;
    }
    return *found;
}

static void write_files(void) {
    if (mkdtemp(folder) == NULL)
        exit(1);
    for (int i = 0; i < fluid_count; ++i) {
        char path[64];
        FILE *file;
        snprintf(path, sizeof path, "%s/%s.osd", folder, fluids[i].name);
        file = fopen(path, "w");
        if (file == NULL || fputs(fluids[i].text, file) < 0 || fclose(file) != 0)
            exit(1);
    }
}

static void remove_files(void) {
    for (int i = 0; i < fluid_count; ++i) {
        char path[64];
        snprintf(path, sizeof path, "%s/%s.osd", folder, fluids[i].name);
        unlink(path);
    }
    rmdir(folder);
}

static double property(const char *name, const char *pair, double first, double second, const char *output) {
    char text[256];
    const double value =
        ostrel_prop(name, pair, &first, &second, output, text, strlen(name), strlen(pair), strlen(output), sizeof text);
    if (strncmp(text, "No errors", 9) != 0) {
        printf("%s, %s: %.256s\n", name, output, text);
        exit(1);
    }
    return value;
}

int main(void) {
    const ostrel_host host = {fluidpath, searchdirectory, getfluid};
    static char names[500][256];
    int32_t count = 0;

    write_files();
    atexit(remove_files);
    ostrel_use_host(&host);

    /* A fluid that is only read has its constants already. The blank name stands for the fluid in memory. */
    for (int i = 0; i < fluid_count; ++i) {
        char text[256];
        read_init_fluiddatadb("", fluids[i].name, 0, strlen(fluids[i].name));
        printf("%-8s %8.4f kg/kmol\n", fluids[i].name, ostrel_info("", "m_mol", text, 0, 5, sizeof text) * 1e3);
    }

    ostrel_fluids(&count, names[0], sizeof names[0]);
    printf("\nIsentropic compression from 1 bar and 300 K\n%-8s%8s%10s%12s%12s\n", "", "p bar", "t K", "d kg/m3",
           "w kJ/kg");
    for (int i = 0; i < count; ++i) {
        char name[9] = ""; /* names are blank-padded, without a NUL */
        memcpy(name, names[i], 8);
        name[strcspn(name, " ")] = '\0';
        for (double bar = 2; bar < 9; bar *= 2) {
            const double s = property(name, "pt", 1e5, 300, "s"), h = property(name, "pt", 1e5, 300, "h");
            printf("%-8s%8.1f%10.3f%12.5f%12.3f\n", name, bar, property(name, "ps", bar * 1e5, s, "t"),
                   property(name, "ps", bar * 1e5, s, "d"), (property(name, "ps", bar * 1e5, s, "h") - h) * 1e-3);
        }
    }
    return 0;
}
