/* SPDX-License-Identifier: MIT */
/* Ostrel computes thermodynamic and transport properties of one pure fluid at a time from simple equations of state.
 *
 * A host names a fluid, two state variables that it knows, their values and one property that it wants. It gets the
 * value of that property and an error text. Each fluid is a parameter file in the fluid directory.
 *
 *     #include <stdio.h>
 *     #include <string.h>
 *     #include "ostrel.h"
 *
 *     int main(void) {
 *         const double p = 1e5, t = 400; // Pa, K
 *         char text[256];
 *         const double d = ostrel_prop("toluene", "pt", &p, &t, "d", text, 7, 2, 1, sizeof text);
 *         if (strncmp(text, "No errors", 9) != 0) {
 *             printf("%.256s\n", text);
 *             return 1;
 *         }
 *         printf("%.3f kg/m3\n", d); // prints 2.850 kg/m3
 *         return 0;
 *     }
 *
 * This comment is the contract of all functions. Documentation/Entry-points.md in the source tree has the list of the
 * error texts with what helps, and describes what may surprise a host: what stays in memory after a failure, searches
 * that end at another state, the saturation table that is built only once, the units of Chung's conductivities.
 *
 * Arguments. Every argument is passed by reference, except lengths. A text is a char field without a terminating NUL.
 * Its length follows by value at the end of the argument list, one length for each text, in the order of the texts. An
 * input text may have any length and any bytes; its trailing blanks do not count. The library pads an output text with
 * blanks to its length, or truncates it. A null pointer stands for an empty text, or for a NaN where the library reads
 * a number. Where the library would write a number, an array or a text, nothing is written through a null pointer.
 *
 * Units. The bracket in front of an argument's description is its unit. [-] marks texts and counts. [SI] is the SI
 * unit that stands beside the code of the quantity. [T_ref] and [v_ref] mark reduced values: multiples of the fluid's
 * reference temperature and reference specific volume.
 *
 * Lifetimes. The library keeps no pointer that it is given, except the functions of ostrel_use_host.
 *
 * Errors. After a success the error text begins with the nine characters "No errors". Test the text and not the value,
 * since a success may be a NaN or an infinity. No function ends the process or throws an exception. A function without
 * an argument for the error text leaves its message in the library's shared error text and does not clear that text
 * first; ostrel_prop does. The only other function that shows that text is ostrel_info.
 *
 * Threads. The whole library has one set of state and no locks: calls must not overlap.
 *
 * Environment. The library neither uses nor changes the host's locales, rounding mode, floating-point traps and
 * flushing of subnormal numbers. It also preserves the floating-point exception flags where the host has changed one
 * of the last three; where they are as at the start of a program, a call may raise flags. The functions of
 * ostrel_use_host run with these three as at the start of a program, and must leave them so. On x86-64 the x87 unit
 * (long double, and what fegetround returns) remains as the host has set it, except while getfluid runs.
 *
 * Resources. A call needs less than 32 KiB of stack and leaves no file descriptor open. A parameter file is read whole
 * and closed before the call returns; a later change of the file takes effect when its fluid is loaded again. A pipe,
 * a socket or a terminal in the place of a file is refused (code 6), so that no call waits for one.
 *
 * Loading. After dlclose nothing of the library is left; when it is loaded again, its state is a new one.
 *
 * Fortran. Every function is also exported with one trailing underscore, in the form that Fortran compilers expect of
 * an external procedure: call it without writing the lengths.
 */
#ifndef OSTREL_H
#define OSTREL_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One property of a fluid, in SI units; -8888.8 after a failure.
 *
 * fluid       [-] name of a parameter file in the fluid directory, without its extension ".osd". Case and leading
 *             blanks count; a name with a "/" is never found. A fluid whose name has more than 8 characters is read
 *             again at every request
 * inputspec   [-] input pair, in either case: "tv", "td", "pt", "pv", "pd", "ph", "ps", "pq", "ts", "tq", "vh",
 *             "vs", "vu", "dh", "ds", "du" or "hs"
 * input1      [SI] first value of the pair: t in K, p in Pa, v in m3/kg, d in kg/m3, h and u in J/kg, s in
 *             J/(kg K), q (vapor quality) in 1
 * input2      [SI] second value of the pair, in the same units
 * outputspec  [-] wanted property, in either case: "t" K, "v" m3/kg, "d" kg/m3, "p" Pa, "h" J/kg,
 *             "s" J/(kg K), "u" J/kg, "cv" J/(kg K), "dp_dt" Pa/K, "dp_dv" Pa kg/m3, "d2p_dt2" Pa/K2,
 *             "d2p_dv2" Pa kg2/m6, "d2p_dtdv" Pa kg/(K m3), "dcv_dt" J/(kg K2), "eta" (viscosity) Pa s,
 *             "lambda" (thermal conductivity) W/(m K). Chung's models answer in other units, see Entry-points.md
 * errmsg      [-] receives "No errors" or the error text; 256 characters hold every error text whole, except one that
 *             quotes a long unknown output name
 *
 * u and s are zero, and h is p v, at the critical point of the model. For a fluid without critical data they are zero
 * at its reference volume and the temperature T_ref/Z, where Z is the model's compressibility factor.
 *
 * Inputs are not checked. Outside the model's range (v at or below its co-volume, T at or below 0) the result is what
 * IEEE arithmetic makes of the formula. A NaN is carried through the formulas.
 *
 * "pq" and "tq" serve "t", "p", "v" and "d" at every quality, and all other outputs only at q = 1 (within 1e-6).
 *
 * The last state is kept: if a host asks for several outputs at one state, the library solves for the state once.
 */
double ostrel_prop(const char *fluid, const char *inputspec, const double *input1, const double *input2,
                   const char *outputspec, char *errmsg, size_t fluid_len, size_t inputspec_len,
                   size_t outputspec_len, size_t errmsg_len);

/* Reduced temperature and reduced specific volume for an input pair of the fluid that is loaded.
 *
 * inputspec   [-] input pair as for ostrel_prop
 * input1      [SI] first value of the pair
 * input2      [SI] second value of the pair
 * T           [T_ref] receives the temperature
 * v           [v_ref] receives the specific volume
 *
 * If the pair is unknown, T and v are unchanged; after any other failure they have no meaning.
 */
void get_tv(const char *inputspec, const double *input1, const double *input2, double *T, double *v,
            size_t inputspec_len);

/* One constant of a fluid; 0 if the fluid cannot be loaded, -8888.8 if the name is unknown.
 *
 * fluid       [-] fluid name as for ostrel_prop
 * name        [-] in either case: "m_mol" molar mass in kg/mol, "t_crit" critical temperature in K,
 *             "p_crit" critical pressure in Pa; the last two have no meaning for a fluid without critical data
 * errmsg      [-] receives "No errors" or the error text
 *
 * If the shared error text holds a message of an earlier call, loading another fluid here counts as failed: ask
 * ostrel_prop for a property of the fluid first, which clears that text.
 */
double ostrel_info(const char *fluid, const char *name, char *errmsg, size_t fluid_len, size_t name_len,
                   size_t errmsg_len);

/* The names of the fluids that have a parameter file in the fluid directory.
 *
 * count       [-] receives the number of fluids, at most 500; further files are left out
 * names       [-] receives 500 names of names_len characters each; a name is that of the file up to its first point.
 *             The unused names are blank
 * names_len   [-] length of one name, 256
 */
void ostrel_fluids(int32_t *count, char *names, size_t names_len);

/* Version of this interface: 1, 0, 1, 14.
 *
 * version     [-] receives four integers
 */
void getversion(int32_t version[4]);

/* Writes one line of greeting to standard output, to show that the library can be reached. */
void ostrel_sub(void);

/* Loads and initialises a fluid from its parameter file in the fluid directory.
 *
 * name        [-] fluid name, which is the file's name without ".osd"; it cannot name another directory
 *
 * ostrel_prop does not notice the load.
 */
void read_init_fluiddata(const char *name, size_t name_len);

/* Reads a parameter file into the library's variables and derives nothing from it. This function serves programs that
 * use the library's C++ modules and initialise them themselves, first with thermodynamics::init_thermodynamics, then
 * with transport_properties::init_transport_properties.
 *
 * file        [-] path of the file, with its extension
 */
void read_init_fluiddatafile(const char *file, size_t file_len);

/* Reads a fluid's parameters from a fluid database; derives nothing, as read_init_fluiddatafile.
 *
 * location    [-] place of the database as the host's getfluid takes it. For the default host it is the path of an
 *             SQLite file with a table fluid(name TEXT PRIMARY KEY, text TEXT NOT NULL); each line of a text is a
 *             record
 * name        [-] fluid name, the key in that table
 */
void read_init_fluiddatadb(const char *location, const char *name, size_t location_len, size_t name_len);

/* The routines through which the library reaches its host. The texts that they are given are not NUL-terminated. The
 * fields that they fill come blank; they may leave a field padded with blanks or ended by a NUL. The routines must
 * neither throw nor jump out, and must not call the library. */
typedef struct ostrel_host {
    /* Fills path with the fluid directory, its separator included, since file names are appended to it directly. key
     * is "Ostrel", path_len 256. */
    void (*fluidpath)(char *path, const char *key, size_t path_len, size_t key_len);
    /* Fills names, 500 entries of name_len characters, with the files of the directory that match pattern. pattern
     * is "*.osd" and a NUL. */
    void (*searchdirectory)(const char *directory, const char *pattern, char *names, size_t directory_len,
                            size_t pattern_len, size_t name_len);
    /* Fills lines, 255 entries of line_len (255) characters, with the fluid's text, one record in each line. On
     * success it returns a non-zero value and sets *found to a non-zero value. It must refuse a text with a longer
     * line: a line that is cut could silently shorten its number. */
    int32_t (*getfluid)(const char *location, const char *key, char *lines, int32_t *found, size_t location_len,
                        size_t key_len, size_t line_len);
} ostrel_host;

/* Replaces the host routines from now on. The functions must remain callable until they are replaced.
 *
 * host        [-] the routines, which are copied. NULL, or a member that is NULL, stands for the library's own: the
 *             fluid directory is the one in the environment variable OSTREL_FLUIDS, else the one installed with the
 *             library, else that of the source tree; the files are the regular ones, in the byte order of their
 *             names; databases are SQLite files
 */
void ostrel_use_host(const ostrel_host *host);

#ifdef __cplusplus
}
#endif

#endif
