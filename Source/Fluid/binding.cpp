// SPDX-License-Identifier: MIT
// The exported C symbols of the handles.
#include "Fluid/handle.h"
#include "Fluid/opening.h"
#include "Fluid/requests.h"
#include "Fluid/status.h"
#include "floating_point.h"
#include "visibility.h"

#include <utility>
#include <vector>

namespace fluid {
namespace {

/// Runs a call in the standard floating-point environment and returns its result. No exception may reach a C caller;
/// only memory that is out causes one.
template <class Environment = floating_point::standard_environment, class Result, class Call>
Result guarded(Result after_failure, Call call) noexcept {
    const Environment environment;
    try {
        return call();
    } catch (...) {
        report(OSTREL_OUT_OF_MEMORY, {find_status(OSTREL_OUT_OF_MEMORY)->text});
        return after_failure;
    }
}

/// Opens a fluid by `open(result)`.
template <class Environment = floating_point::standard_environment, class Open>
int opening(ostrel_fluid **fluid, Open open) noexcept {
    if (fluid == nullptr)
        return report_null("fluid", "the place of a pointer is needed");
    *fluid = nullptr;
    return guarded<Environment>(int{OSTREL_OUT_OF_MEMORY}, [&] {
        opened result;
        const int status = open(result);
        *fluid = result.release();
        return status;
    });
}

} // namespace
} // namespace fluid

#define OSTREL_HANDLES extern "C" OSTREL_VISIBLE

OSTREL_HANDLES int ostrel_fluid_open(const char *name, const char *options, ostrel_fluid **fluid) {
    return fluid::opening(fluid, [&](fluid::opened &result) { return fluid::open_name(name, options, result); });
}

OSTREL_HANDLES int ostrel_fluid_open_file(const char *path, const char *options, ostrel_fluid **fluid) {
    return fluid::opening(fluid, [&](fluid::opened &result) { return fluid::open_file(path, options, result); });
}

OSTREL_HANDLES int ostrel_fluid_open_text(const char *text, const char *options, ostrel_fluid **fluid) {
    return fluid::opening(fluid, [&](fluid::opened &result) { return fluid::open_text(text, options, result); });
}

OSTREL_HANDLES int ostrel_fluid_open_database(const char *location, const char *name, const char *options,
                                              ostrel_fluid **fluid) {
    // A database may compute outside the vector unit, as SQLite does when it turns a number into a text.
    return fluid::opening<floating_point::whole_environment>(
        fluid, [&](fluid::opened &result) { return fluid::open_database(location, name, options, result); });
}

OSTREL_HANDLES void ostrel_fluid_close(ostrel_fluid *fluid) {
    delete fluid;
}

OSTREL_HANDLES int ostrel_fluid_evaluate(const ostrel_fluid *fluid, const char *inputs, const char *outputs,
                                         size_t count, const double *first, const double *second, double *values,
                                         int *status) {
    return fluid::guarded(int{OSTREL_OUT_OF_MEMORY}, [&] {
        return fluid::evaluate(fluid, inputs, outputs, count, first, second, values, status);
    });
}

OSTREL_HANDLES int ostrel_fluid_evaluate_parallel(const ostrel_fluid *fluid, const char *inputs, const char *outputs,
                                                  size_t count, const double *first, const double *second,
                                                  double *values, int *status, unsigned workers) {
    return fluid::guarded(int{OSTREL_OUT_OF_MEMORY}, [&] {
        return fluid::evaluate_parallel(fluid, inputs, outputs, count, first, second, values, status, workers);
    });
}

OSTREL_HANDLES double ostrel_fluid_value(const ostrel_fluid *fluid, const char *inputs, double first, double second,
                                         const char *output, int *status) {
    double result = fluid::no_number;
    const int found = fluid::guarded(int{OSTREL_OUT_OF_MEMORY},
                                     [&] { return fluid::value(fluid, inputs, first, second, output, result); });
    if (status != nullptr)
        *status = found;
    return result;
}

OSTREL_HANDLES int ostrel_fluid_saturation(const ostrel_fluid *fluid, const char *input, const char *outputs,
                                           size_t count, const double *values_in, double *liquid, double *vapor,
                                           int *status) {
    return fluid::guarded(int{OSTREL_OUT_OF_MEMORY}, [&] {
        return fluid::saturation(fluid, input, outputs, count, values_in, liquid, vapor, status);
    });
}

OSTREL_HANDLES int ostrel_fluid_solve(const ostrel_fluid *fluid, const char *inputs, size_t count, const double *first,
                                      const double *second, ostrel_state *states) {
    return fluid::guarded(int{OSTREL_OUT_OF_MEMORY},
                          [&] { return fluid::solve(fluid, inputs, count, first, second, states); });
}

OSTREL_HANDLES int ostrel_fluid_outputs(const ostrel_fluid *fluid, const char *outputs, size_t count,
                                        const ostrel_state *states, double *values, int *status) {
    return fluid::guarded(int{OSTREL_OUT_OF_MEMORY},
                          [&] { return fluid::outputs_of(fluid, outputs, count, states, values, status); });
}

OSTREL_HANDLES double ostrel_fluid_constant(const ostrel_fluid *fluid, const char *name) {
    return fluid::guarded(fluid::no_number, [&] { return fluid::constant_of(fluid, name); });
}

OSTREL_HANDLES const char *ostrel_fluid_text(const ostrel_fluid *fluid, const char *name) {
    return fluid::guarded(static_cast<const char *>(nullptr), [&] { return fluid::text_of(fluid, name); });
}

OSTREL_HANDLES const char *ostrel_status_text(int status) {
    const fluid::status_row *const row = fluid::find_status(status);
    return row != nullptr ? row->text.data() : "no status of this library";
}

OSTREL_HANDLES const char *ostrel_last_message() {
    return fluid::last_message();
}

OSTREL_HANDLES const char *ostrel_list(const char *kind, size_t index, const char *what) {
    return fluid::guarded(static_cast<const char *>(nullptr), [&] { return fluid::list(kind, index, what); });
}

OSTREL_HANDLES int ostrel_fluid_find(const char *words, void (*take)(void *user, const char *file, const char *name),
                                     void *user) {
    if (take == nullptr)
        return fluid::report_null("take", "a function is needed");
    std::vector<fluid::found_fluid> found;
    const int status = fluid::guarded(int{OSTREL_OUT_OF_MEMORY}, [&] { return fluid::find_fluids(words, found); });
    // The caller's function runs in the caller's environment.
    if (status == OSTREL_OK)
        for (const fluid::found_fluid &one : found)
            take(user, one.file.c_str(), one.name.c_str());
    return status;
}
