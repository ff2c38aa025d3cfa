/* SPDX-License-Identifier: MIT */
/* Ostrel: thermodynamic and transport properties of one pure fluid at a time from simple equations of state.
 *
 * Arguments. Everything goes by reference. A text is a char field without a terminating NUL; its length
 * follows by value at the end of the argument list, one per text, in the order of the texts. Input texts
 * may have any length and bytes; trailing blanks do not count. Output texts are blank-padded or
 * truncated to their length. A null pointer stands for an empty text, or for a NaN where a number is read;
 * where a number or array is written it receives nothing.
 * Lifetimes. The library keeps no pointer that it is given, but for the functions of ostrel_use_host.
 * Errors. An error text says "No errors" on success; compare its first nine characters, and test the text,
 * not the value: a success may be a NaN or an infinity. Nothing here stops the process or throws.
 *   " IOSTAT returned" n       the fluid's file cannot be opened; n is errno's code, 2 = there is no such file
 *   " Error in Ostrel: error opening fluid" name    the fluid database does not give the fluid
 *   "Ostrel error: ..."        a record of a file that cannot be read, an unknown code or name, a refused quality,
 *                              memory that is out, a host routine that threw
 *   "The gas ... is not a vapor: ..."    the model, heat capacity or viscosity wants critical data
 *   "Viscosity and thermal conductivity model do not match. ..."    Chung's viscosities want Chung's conductivity of
 *                              the same kind
 *   " ERROR:  v__P_T__... STOP"    the model's critical volume is not found from these very digits of Tc and Pc;
 *                              another last digit of either helps
 *   "ERROR: in ..."            the solver for the pair has not converged in 50 steps from its default first values,
 *                              or has met a singular Jacobian
 *   "Saturation ... higher than critical ...", "... out of range: ...", "Newton method failed ...",
 *   "No solution has been found ..."    there is no saturated state there, or it is not found
 *   " Matrix A is singular. ..."    "pq" or "tq" met a singular Jacobian
 * After a singular Jacobian "ph", "ps", "hs", "pq" and "tq" fail for every fluid, unless their first values already are
 * the solution, until the library is loaded anew. The degree sign in a range of temperatures is the one byte 0xB0.
 * A number of a model that does not exist is not reported: a file with such a gas_type answers 0, with such a viscosity
 * or conductivity model a NaN.
 * Threads. One set of state for the whole library and no locks: calls must not overlap.
 * Environment. The host's locales, rounding mode, floating-point traps and flushing of subnormal numbers neither count
 * nor change. Its exception flags stay too, unless those three are as at a program's start: then some may be raised.
 * The functions of ostrel_use_host compute with those three as at a program's start, and must leave them so; on
 * x86-64 the x87 unit (long double, and what fegetround answers) is the host's in all but getfluid.
 * Resources. A call needs less than 32 KiB of stack and leaves no descriptor open, but SQLite fills those of closed
 * standard streams with /dev/null. A file is read whole and closed at once: what happens to it afterwards counts when
 * its fluid is loaded again. A pipe, socket or terminal in its place is refused (code 6), and nothing waits for one.
 * Loading. Unloaded with dlclose, the library is gone, and as new when it is loaded again. Copies of its file that are
 * loaded with RTLD_LOCAL have a state each; beside one that is linked or loaded with RTLD_GLOBAL it takes
 * RTLD_DEEPBIND or dlmopen, else they share.
 * Fortran. Every function is also exported with one trailing underscore, in the form that Fortran
 * compilers expect of an external procedure: call it as it is, without writing the lengths.
 */
#ifndef OSTREL_H
#define OSTREL_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One property of a fluid, in SI units: the value, or -8888.8 after a failure.
 *
 * fluid       [-] name of a parameter file in the fluid directory without its ".osd", as the file system has
 *             it: case and leading blanks count, a "/" names nothing. At most 8 characters, or the file is
 *             read again at every request
 * inputspec   [-] input pair, in either case: "tv", "td", "pt", "pv", "pd", "ph", "ps", "pq", "ts", "tq", "vh",
 *             "vs", "vu", "dh", "ds", "du" or "hs"
 * input1      [SI] first value of the pair: t in K, p in Pa, v in m3/kg, d in kg/m3, h and u in J/kg, s in
 *             J/(kg K), q (vapor quality) in 1
 * input2      [SI] second value of the pair: the same units
 * outputspec  [-] wanted property, in either case: "t" K, "v" m3/kg, "d" kg/m3, "p" Pa, "h" J/kg,
 *             "s" J/(kg K), "u" J/kg, "cv" J/(kg K), "dp_dt" Pa/K, "dp_dv" Pa kg/m3, "d2p_dt2" Pa/K2,
 *             "d2p_dv2" Pa kg2/m6, "d2p_dtdv" Pa kg/(K m3), "dcv_dt" J/(kg K2), "eta"
 *             (viscosity) Pa s, "lambda" (thermal conductivity) W/(m K); see below for Chung's models
 * errmsg      [-] receives "No errors" or the error text; 256 characters hold every text whole, but
 *             for those that quote a longer output name
 *
 * u and s are zero (and h is p v) at the critical point of the model; for a fluid without critical data at
 * its reference volume and the temperature T_ref/Z there, Z the model's compressibility factor. Inputs are not
 * checked: outside the model's range (v at or below its co-volume, T at or below 0) the result is what IEEE
 * arithmetic makes of the formula, and a NaN is carried through.
 *
 * Viscosity and conductivity by Chung's models keep factors that hosts know. lambda of the models 3 and 3 (most fluids
 * shipped; the others have a constant in W/(m K)) or 2 and 2 is 17.506 times smaller than W/(m K), 418.4^2/10^4;
 * conductivity 2 with another viscosity 175.06 times; conductivity 3 with another viscosity lacks the dilute gas's
 * part and is of no use. eta of model 2 is in 0.1 Pa s. They are taken at the model's own critical volume: where its
 * Zc is above the fluid's, eta of the dilute gas comes out lower, for Soave-Redlich-Kwong by 9 % (argon) to 22 %
 * (water), for ideal gases by more than half. Conductivity 4 (constant Prandtl number) of a fluid with critical data
 * is scaled by cp at the critical point, which diverges: lambda may be 0 or a NaN. Viscosities 2 and 3 on a fluid
 * without critical data make its first request fail, whatever it asks for; viscosity 4 and conductivities 2 and 3
 * there are not refused and answer with the critical data of an earlier fluid.
 *
 * "ph", "ps" and "hs" search from ideal-gas first values. Near the saturated vapor, "hs" of heavy fluids also far
 * from it, they may fail, or end without a message at another state that has the same two values, of liquid density or
 * denser: look at a second output there, or use "pt".
 *
 * A state between the phases ("pq", "tq" with q between 0 and 1) is its temperature and volume: "t", "p", "v" and "d"
 * are served, "p" being the equation's own at that volume; other outputs want q = 1 (within 1e-6). The saturation
 * table is built by the first such request and kept: for a later fluid it gives first values and the range, so that
 * fluids whose ranges differ much are better asked in processes of their own.
 *
 * The last state is kept: asking several outputs at one state solves it once. Look at every error text, since
 * a repeat of what failed may say "No errors": after a fluid that could not be loaded the same name goes on
 * with the constants in memory, those of the fluid before it or some of each; after a pair that could not be
 * solved, or a refused quality, the same request is answered from the state before it.
 */
double ostrel_prop(const char *fluid, const char *inputspec, const double *input1, const double *input2,
                   const char *outputspec, char *errmsg, size_t fluid_len, size_t inputspec_len,
                   size_t outputspec_len, size_t errmsg_len);

/* Reduced temperature and volume of an input pair, for the fluid that is loaded.
 *
 * inputspec   [-] input pair as for ostrel_prop
 * input1      [SI] first value of the pair
 * input2      [SI] second value of the pair
 * T           [T_ref] receives the temperature; unchanged if the pair is unknown, without meaning if a solver fails
 *             or a message stood in the shared error text: "ph", "ps" and "hs" then leave T, "pq" and "tq" leave v
 * v           [v_ref] receives the specific volume, likewise
 *
 * A failure is left in the library's shared error text, which this does not clear: a successful ostrel_prop does. No
 * function here reads it out but ostrel_info, when it loads another fluid.
 */
void get_tv(const char *inputspec, const double *input1, const double *input2, double *T, double *v,
            size_t inputspec_len);

/* One constant of a fluid: the value; 0 if the fluid cannot be loaded, -8888.8 for an unknown name.
 *
 * fluid       [-] fluid name as for ostrel_prop
 * name        [-] in either case: "m_mol" molar mass in kg/mol, "t_crit" critical temperature in K,
 *             "p_crit" critical pressure in Pa; the last two mean nothing for a fluid without critical data
 * errmsg      [-] receives "No errors" or the error text
 *
 * The shared error text is not cleared first: if a message of an earlier call stands there, loading another fluid
 * here counts as failed. The fluid is then half loaded, and another request for it goes on with that; ask for a
 * property first, which clears the text.
 */
double ostrel_info(const char *fluid, const char *name, char *errmsg, size_t fluid_len, size_t name_len,
                   size_t errmsg_len);

/* The fluids for which there are parameter files.
 *
 * count       [-] receives their number, at most 500; further files are left out
 * names       [-] receives 500 names of names_len characters each: the file's name up to its first point. The
 *             unused ones are blank; so is, but counted, one that a host gives without a point or with one in front
 * names_len   [-] length of one name, 256; in a shorter one a file's name is cut before its point is sought
 */
void ostrel_fluids(int32_t *count, char *names, size_t names_len);

/* Version of this interface: 1, 0, 1, 14.
 *
 * version     [-] receives four integers
 */
void getversion(int32_t version[4]);

/* Writes one line of greeting to standard output, to show that the library is reachable. As with any output, a pipe
 * that nobody reads answers with SIGPIPE. */
void ostrel_sub(void);

/* Loads and initialises a fluid from its parameter file in the fluid directory.
 *
 * name        [-] fluid name, the file's name without ".osd"; it cannot name another directory
 *
 * ostrel_prop does not hear of it: for the name that it knows it goes on without loading, with the constants and the
 * kept state as they are now. Failures are left in the shared error text, which this does not clear.
 */
void read_init_fluiddata(const char *name, size_t name_len);

/* Reads a parameter file into the library's variables. Nothing is derived from it: this serves programs that use
 * the library's C++ modules and initialise them themselves (thermodynamics::init_thermodynamics, then
 * transport_properties::init_transport_properties).
 *
 * file        [-] path of the file, with its extension
 *
 * Failures are left in the shared error text, which this does not clear.
 */
void read_init_fluiddatafile(const char *file, size_t file_len);

/* Reads a fluid's parameters from a fluid database, likewise without deriving anything.
 *
 * location    [-] place of the database as the host's getfluid takes it: with the default host the
 *             path of an SQLite file with a table fluid(name TEXT PRIMARY KEY, text TEXT NOT NULL), a line
 *             of text a record. One in WAL mode cannot be read from a folder that cannot be written
 * name        [-] fluid name, the key in that table
 *
 * Failures are left in the shared error text, which this does not clear.
 */
void read_init_fluiddatadb(const char *location, const char *name, size_t location_len, size_t name_len);

/* What the library asks of its host. Texts given are not NUL-terminated; fields to fill come blank, and may be left
 * blank-padded or ended by a NUL. The routines must neither throw, nor jump out, nor call the library. */
typedef struct ostrel_host {
    /* Fills path with the fluid directory, its separator included; file names are put right behind it. key is
     * "Ostrel", path_len 256. */
    void (*fluidpath)(char *path, const char *key, size_t path_len, size_t key_len);
    /* Fills names, 500 entries of name_len characters, with the directory's files that match pattern,
     * which is "*.osd" and a NUL. */
    void (*searchdirectory)(const char *directory, const char *pattern, char *names, size_t directory_len,
                            size_t pattern_len, size_t name_len);
    /* Fills lines, 255 entries of line_len (255) characters, with the fluid's text, one record a line;
     * answers non-zero and sets *found to non-zero on success. A longer line must be refused: cut, it
     * would silently shorten its number. */
    int32_t (*getfluid)(const char *location, const char *key, char *lines, int32_t *found, size_t location_len,
                        size_t key_len, size_t line_len);
} ostrel_host;

/* Replaces the host routines from now on; the functions must stay callable until replaced.
 *
 * host        [-] the routines, copied; NULL, or a NULL member, stands for the library's own: the
 *             directory in the environment variable OSTREL_FLUIDS, else the one installed with the
 *             library, else the source tree's; regular files in the byte order of their names; SQLite
 */
void ostrel_use_host(const ostrel_host *host);

#ifdef __cplusplus
}
#endif

#endif
