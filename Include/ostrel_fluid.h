/* SPDX-License-Identifier: MIT */
/* Handles of fluids: thermodynamic and transport properties of any number of fluids at the same time, from any thread.
 *
 * A host opens a fluid, asks for properties of as many states as it likes, and closes the fluid. Functions return an int
 * status; each status has a number that never changes, and the thread has a message that says more.
 *
 *     #include <stdio.h>
 *     #include "ostrel_fluid.h"
 *
 *     int main(void) {
 *         ostrel_fluid *fluid;
 *         const double p[2] = {1e5, 2e5}, t[2] = {400, 450}; // Pa, K
 *         double values[4]; // d and t of the first state, then of the second one
 *         if (ostrel_fluid_open("toluene", NULL, &fluid) != OSTREL_OK ||
 *             ostrel_fluid_evaluate(fluid, "pt", "d,t", 2, p, t, values, NULL) != OSTREL_OK) {
 *             printf("%s\n", ostrel_last_message());
 *             return 1;
 *         }
 *         printf("%.3f %.3f kg/m3\n", values[0], values[2]); // prints 2.850 5.132 kg/m3
 *         ostrel_fluid_close(fluid);
 *         return 0;
 *     }
 *
 * This comment is the contract of all functions. ostrel.h has the entry points, an older interface with one set of state
 * for the whole process. The two do not affect each other: handles know neither the fluid that is loaded there nor the
 * routines of ostrel_use_host.
 *
 * Arguments. Texts end with a NUL and may have any length; the library keeps no pointer that it is given. Blanks (and
 * tabs) around the names of inputs, outputs and options do not count; inside of a name they are an error, and so is an
 * empty name. The case of letters does not count in the names of inputs and outputs; it does in all others. An array
 * has `count` elements, or `count` times the number of outputs. If count is 0, the arrays may be NULL, and the texts are
 * checked nevertheless. Every other NULL is refused, unless the argument says that it may be NULL. Arrays that are
 * written must not overlap those that are read.
 *
 * Units. All numbers are in SI units, per kilogram where they are specific. The bracket in front of an argument's
 * description is its unit. [-] marks texts, counts and handles. [SI] is the SI unit that ostrel_list gives for the name.
 *
 * Inputs. A pair is two letters in either order: "tv", "td", "pt", "pv", "pd", "ph", "ps", "pq", "ts", "tq", "vh",
 * "vs", "vu", "dh", "ds", "du", "hs", "pu", "su", "th" or "tu", with t in K, p in Pa, v in m3/kg, d in kg/m3, h and u
 * in J/kg, s in J/(kg K), and q, the vapor quality, in 1. In stable states a pair has at most one solution, with four
 * exceptions: "th" gives the state of lower density; "su" the state with a positive pressure; "pv" and "ts" of srk and
 * pr, far above the critical temperature, the state nearer to the ideal gas's temperature.
 *
 * Outputs. "t", "p", "v", "d", "h", "s", "u", "q", "cv", "dp_dt", "dp_dv", "d2p_dt2", "d2p_dv2", "d2p_dtdv", "dcv_dt",
 * "eta", "lambda", "g", "a", "cp", "c", "z", "fundamental", "cp_cv", "isentropic_exponent", "kappa_t", "beta_p", "jt",
 * "prandtl", "tsat", "psat", "phase", and the derivatives dX/dY|Z of t, p, v, d, h, s and u, as "dp/dd|u", where Y and Z
 * differ and are not v with d. ostrel_list has their units and meanings. q is NaN outside of the dome. phase is 0 liquid,
 * 1 vapor, 2 two-phase, 3 supercritical (t >= t_crit and p >= p_crit), 4 gas (t >= t_crit and p < p_crit).
 *
 * Two phases. Inside the dome a state is the mixture of saturated liquid and vapor in equilibrium. t, p, q, phase,
 * tsat, psat, the averages by mass v, d, h, s, u, g and a, and the derivatives dX/dY|Z of the mixture have a meaning;
 * not those by t or p, or at constant t or p, that are infinite or undefined since p depends on t alone there. All
 * other outputs have none (OSTREL_TWO_PHASE). With q = 0 or q = 1 a state is a saturated phase, liquid or vapor, and
 * has all outputs.
 *
 * Special points. A NaN with the status OSTREL_OK is an output that the state does not have: q outside of the dome,
 * tsat above p_crit, psat above t_crit, and derivatives among t, h and u of an ideal gas. "pt" on the saturation line,
 * in every bit of p, is the saturated liquid. At the critical point the two phases are one, and cp, kappa_t, beta_p and
 * prandtl are +infinity. Where the equation's cv is 0 or below, there are no states (OSTREL_NO_STATE). The models ig
 * and izg have no saturation line.
 *
 * Statuses. 0 to 6 belong to a state, 10 to 13 to a call. If a state has several faults, the lowest status counts. The
 * values of a state that failed are NaN, all of them except with OSTREL_TWO_PHASE, where those with a meaning are right.
 * A NaN is always the one with the bits 0x7ff8000000000000. A call that returns 10 or more has written no array.
 *
 * Messages. ostrel_last_message describes the last call of the calling thread that was refused, that could not open a
 * fluid or of which a state failed: what was asked, what was wrong, and what would be right. Of several states it
 * describes the first one, also if another thread has computed it; states are counted from 0. Calls without a fault
 * leave it.
 *
 * Lifetimes. A handle lives until ostrel_fluid_close. Texts of ostrel_fluid_text live as long as their handle, and those
 * of ostrel_status_text and ostrel_list as long as the library. The text of ostrel_last_message holds until the thread's
 * next call with a fault, and until the thread ends.
 *
 * Threads. A handle never changes. Any number of threads may use it and all functions at the same time, and fluids may
 * be opened and closed meanwhile. Only the last use of a handle must be over when it is closed. Opening by name reads
 * the environment variable OSTREL_FLUIDS, which must not be changed at that moment.
 *
 * Same results. The results of a state depend on the fluid, its options and the two inputs, and on nothing else: not on
 * the states beside it, their number, the number of workers, earlier calls, other threads, the order of the letters of
 * the pair, or the other outputs. An input that is asked for as an output comes back with its own bits.
 *
 * Environment. As ostrel.h has it: rounding mode, traps, flushing of subnormal numbers and locales of the host neither
 * count nor change. The threads of ostrel_fluid_evaluate_parallel have ended when it returns.
 *
 * Resources. Evaluating allocates no memory for up to 16 outputs, except in ostrel_fluid_evaluate_parallel. No function
 * leaves a file open. A file is read whole when it is opened, and never again.
 */
#ifndef OSTREL_FLUID_H
#define OSTREL_FLUID_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* An opened fluid with its equation of state. */
typedef struct ostrel_fluid ostrel_fluid;

enum {
    /* Of a state. */
    OSTREL_OK = 0,
    OSTREL_NOT_A_NUMBER = 1,  /* An input is a NaN or infinite. */
    OSTREL_OUT_OF_RANGE = 2,  /* An input is outside what the model can represent: t or p at or below 0, v at or below
                                 v_min, a quality outside 0 to 1, a saturation pressure that underflows. */
    OSTREL_NO_STATE = 3,      /* No state of the fluid has these two values. */
    OSTREL_TWO_PHASE = 4,     /* A wanted output has no meaning between the phases; it is NaN, the others are right. */
    OSTREL_NO_SATURATION = 5, /* Above the critical point, or there is no saturation line. */
    OSTREL_NOT_CONVERGED = 6, /* A defect of the library. */
    /* Of a call. */
    OSTREL_BAD_ARGUMENT = 10,  /* The call cannot be understood. */
    OSTREL_CANNOT_OPEN = 11,   /* There is no such fluid, file or database, the name is ambiguous, or the file cannot be
                                  read. */
    OSTREL_BAD_FILE = 12,      /* The parameters cannot be understood, or no fluid has them. */
    OSTREL_OUT_OF_MEMORY = 13
};

/* A state that has been solved. A host may keep and copy it, and ask any handle that was opened in the same way for its
 * outputs; it must not change it. */
typedef struct ostrel_state {
    double t;          /* [K] temperature */
    double p;          /* [Pa] pressure */
    double v;          /* [m3/kg] specific volume */
    double q;          /* [1] vapor quality, NaN outside of the dome */
    double first;      /* [SI] first input, as the host gave it */
    double second;     /* [SI] second input */
    uint32_t inputs;   /* [-] which pair they are */
    int32_t status;    /* [-] status of the state; unless it is 0, the four numbers are NaN */
    int32_t phase;     /* [-] the output "phase" */
    uint32_t reserved; /* [-] for the library */
} ostrel_state;

/* Opens a fluid of the fluid folder: that of the option folder, else the one in the environment variable OSTREL_FLUIDS,
 * else the one installed with the library, else that of the source tree.
 *
 * This function and the next three return OSTREL_OK; OSTREL_BAD_ARGUMENT for options that do not exist or that the
 * fluid cannot have; OSTREL_CANNOT_OPEN; OSTREL_BAD_FILE; or OSTREL_OUT_OF_MEMORY.
 *
 * name        [-] exact name of a parameter file without ".osd"; otherwise file name, name, alias, refrigerant number,
 *             formula that only one fluid has, or CAS number, without regard to case, blanks and punctuation
 * options     [-] NULL, or "key=value; key=value" with each key at most once. An unknown key or value is refused
 *               model      ig, vdw, mh, srk, pr, rk, cii or izg: another equation than the file's, from the file's
 *                          constants. izg takes the file's Z, or with another model's file its Zc
 *               states     stable (the standard): equilibrium, two-phase inside the dome; metastable: single phases up
 *                          to the spinodal; surface: the equation as it is, for t with v or d only
 *               phase      liquid or vapor: which phase is meant by states=metastable, which needs it
 *               volume     equation (the standard); translated: for rk, srk and pr, the equation's volume less a
 *                          constant, so that the saturated liquid at 0.7 t_crit is Rackett's
 *               reference  critical (the standard): u = s = 0 at the critical point; nbp, iir or ashrae: the zeros of
 *                          these conventions. Refused if the fluid does not have their state
 *               folder     the fluid folder, only here
 * fluid       [-] receives the handle, or NULL after a failure
 */
int ostrel_fluid_open(const char *name, const char *options, ostrel_fluid **fluid);

/* Opens a fluid from its parameter file.
 *
 * path        [-] path of the file, with its extension
 * options     [-] as for ostrel_fluid_open, without folder
 * fluid       [-] receives the handle, or NULL after a failure
 */
int ostrel_fluid_open_file(const char *path, const char *options, ostrel_fluid **fluid);

/* Opens a fluid from a text like that of a parameter file.
 *
 * text        [-] the records, one a line
 * options     [-] as for ostrel_fluid_open, without folder
 * fluid       [-] receives the handle, or NULL after a failure
 */
int ostrel_fluid_open_text(const char *text, const char *options, ostrel_fluid **fluid);

/* Opens a fluid from a fluid database, the SQLite table of ostrel.h, with the limits for its texts that stand there.
 *
 * location    [-] path of the SQLite file
 * name        [-] name of the fluid, the key in the table
 * options     [-] as for ostrel_fluid_open, without folder
 * fluid       [-] receives the handle, or NULL after a failure
 */
int ostrel_fluid_open_database(const char *location, const char *name, const char *options, ostrel_fluid **fluid);

/* Gives back what a handle holds, with its texts. The handle must not be used after that.
 *
 * fluid       [-] a handle, or NULL
 */
void ostrel_fluid_close(ostrel_fluid *fluid);

/* Properties of many states, each of two inputs. Returns OSTREL_OK if every state is, else the first state's status that
 * is not, or the status of a call that was refused.
 *
 * fluid       [-] a handle
 * inputs      [-] input pair
 * outputs     [-] names of outputs with commas between them
 * count       [-] number of states
 * first       [SI] first input of each state, in the order of the letters in `inputs`
 * second      [SI] second input of each state
 * values      [SI] receives the outputs, values[state * number of outputs + output]
 * status      [-] receives the status of each state; may be NULL
 */
int ostrel_fluid_evaluate(const ostrel_fluid *fluid, const char *inputs, const char *outputs, size_t count,
                          const double *first, const double *second, double *values, int *status);

/* The same with the same bits, by several threads that run during the call.
 *
 * fluid       [-] a handle
 * inputs      [-] input pair
 * outputs     [-] names of outputs with commas between them
 * count       [-] number of states
 * first       [SI] first input of each state, in the order of the letters in `inputs`
 * second      [SI] second input of each state
 * values      [SI] receives the outputs, values[state * number of outputs + output]
 * status      [-] receives the status of each state; may be NULL
 * workers     [-] number of threads, the calling one included; 0 for one on each core. If the system does not give so
 *             many, there are fewer
 */
int ostrel_fluid_evaluate_parallel(const ostrel_fluid *fluid, const char *inputs, const char *outputs, size_t count,
                                   const double *first, const double *second, double *values, int *status,
                                   unsigned workers);

/* One property of one state [SI]; NaN after a failure.
 *
 * fluid       [-] a handle
 * inputs      [-] input pair
 * first       [SI] first input
 * second      [SI] second input
 * output      [-] name of one output
 * status      [-] receives the status, also that of a call that was refused; may be NULL
 */
double ostrel_fluid_value(const ostrel_fluid *fluid, const char *inputs, double first, double second,
                          const char *output, int *status);

/* Properties of both saturated phases, from one solution for each state. Returns as ostrel_fluid_evaluate.
 *
 * fluid       [-] a handle, not one with states=surface
 * input       [-] "t" or "p"
 * outputs     [-] names of outputs with commas between them
 * count       [-] number of states
 * values_in   [SI] temperatures or pressures
 * liquid      [SI] receives the outputs of the saturated liquids, liquid[state * number of outputs + output]; may be NULL
 * vapor       [SI] receives those of the saturated vapors; may be NULL
 * status      [-] receives the status of each state; may be NULL
 */
int ostrel_fluid_saturation(const ostrel_fluid *fluid, const char *input, const char *outputs, size_t count,
                            const double *values_in, double *liquid, double *vapor, int *status);

/* The first half of ostrel_fluid_evaluate: finds states, for outputs that are asked later. Returns as
 * ostrel_fluid_evaluate.
 *
 * fluid       [-] a handle
 * inputs      [-] input pair
 * count       [-] number of states
 * first       [SI] first input of each state, in the order of the letters in `inputs`
 * second      [SI] second input of each state
 * states      [-] receives the states, each with its status
 */
int ostrel_fluid_solve(const ostrel_fluid *fluid, const char *inputs, size_t count, const double *first,
                       const double *second, ostrel_state *states);

/* The second half: outputs of states that were solved, with the bits of ostrel_fluid_evaluate. Returns as
 * ostrel_fluid_evaluate.
 *
 * fluid       [-] a handle
 * outputs     [-] names of outputs with commas between them
 * count       [-] number of states
 * states      [-] states of ostrel_fluid_solve
 * values      [SI] receives the outputs, values[state * number of outputs + output]
 * status      [-] receives the status of each state; may be NULL
 */
int ostrel_fluid_outputs(const ostrel_fluid *fluid, const char *outputs, size_t count, const ostrel_state *states,
                         double *values, int *status);

/* A constant of a fluid [SI]; NaN where there is none, for an unknown name and for NULL.
 *
 * fluid       [-] a handle
 * name        [-] "m_mol" molar mass in kg/mol, "r_gas" specific gas constant in J/(kg K); "t_crit" K, "p_crit" Pa,
 *             "v_crit" m3/kg, "d_crit" kg/m3 and "z_crit" 1, the critical point of the equation; "omega" acentric factor
 *             1, "t_boil" K, the file's; "t_ref" K, "p_ref" Pa, "v_ref" m3/kg, where u = s = 0 with reference=critical;
 *             "v_min" m3/kg, at and below which there are no states; "t_sat_min" K, below which there is no saturation
 *             line or its pressure underflows; "t_triple", "t_cp_min" and "t_cp_max" K, triple temperature and bounds of
 *             the fit of the heat capacity, from the index of the fluid folder, only for fluids that were opened by name
 */
double ostrel_fluid_constant(const ostrel_fluid *fluid, const char *name);

/* A text of a fluid; empty where nothing is known, NULL for an unknown name and for NULL. Texts of files come with their
 * own bytes, which need not be UTF-8.
 *
 * fluid       [-] a handle
 * name        [-] "name" and "label" as the file has them, without trailing blanks; "model" the option's word; "source"
 *             where the parameters came from; "text" the parameters; "options" all options but the folder, as they hold,
 *             in a form that opens the same fluid again; "formula", "cas" and "aliases" from the index of the fluid
 *             folder, only for fluids that were opened by name; "heat_capacity", "viscosity" and "conductivity" the
 *             models of the file
 */
const char *ostrel_fluid_text(const ostrel_fluid *fluid, const char *name);

/* What a status means. Numbers that no status has get a text that says so.
 *
 * status      [-] number of a status
 */
const char *ostrel_status_text(int status);

/* The message of the calling thread, in UTF-8 and at most 1023 bytes long; empty before the first one. */
const char *ostrel_last_message(void);

/* What there is to ask for: a part of one row of a list; NULL behind the last row, and for an unknown list or part.
 *
 * kind        [-] "inputs", "outputs", "derivatives", "constants", "texts", "models", "options" or "statuses"
 * index       [-] row of the list, from 0
 * what        [-] "name", "unit" or "description". Input pairs have both units. In place of a unit, options have their
 *             values as "liquid|vapor", and statuses their numbers; texts, models and options with any value have ""
 */
const char *ostrel_list(const char *kind, size_t index, const char *what);

/* Finds the fluids of the fluid folder whose names, formulas or families have to do with some words, the best first.
 * Returns OSTREL_OK also if there are none, and OSTREL_CANNOT_OPEN if there is no such folder.
 *
 * words       [-] words as a person writes them; "" finds all fluids
 * take        [-] is called for each fluid, with the name of its file, which opens it, and its name. The two texts hold
 *             during the call. The function must neither throw nor jump out
 * user        [-] is passed to take; may be NULL
 */
int ostrel_fluid_find(const char *words, void (*take)(void *user, const char *file, const char *name), void *user);

#ifdef __cplusplus
}
#endif

#endif
