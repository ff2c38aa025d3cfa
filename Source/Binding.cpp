// SPDX-License-Identifier: MIT
// The exported C symbols, each of them plain and with a trailing underscore. Texts come with their lengths.
#include "Ostrel_Main.h"
#include "floating_point.h"
#include "host.h"

#include "Thermodynamics/ideal_specific_heat.h"

#include <limits>
#include <new>

namespace {

std::string_view text(const char *characters, std::size_t length) {
    return characters != nullptr ? std::string_view(characters, length) : std::string_view("");
}

std::span<char> field(char *characters, std::size_t length) {
    return characters != nullptr ? std::span(characters, length) : std::span<char>();
}

double number(const double *value) {
    return value != nullptr ? *value : std::numeric_limits<double>::quiet_NaN();
}

/// Runs an entry point in the standard floating-point environment, together with the host routines that it calls. No
/// exception may reach a C or Fortran caller, but memory may run out, and a host routine may throw by mistake.
template <class Environment = floating_point::standard_environment, class Entry, class Failure>
auto guarded(Entry entry, Failure failure) noexcept {
    const Environment environment;
    try {
        return entry();
    } catch (const std::bad_alloc &) {
        ideal_specific_heat::errmsg.report({"Ostrel error: out of memory."});
    } catch (...) {
        ideal_specific_heat::errmsg.report({"Ostrel error: a host routine threw an exception."});
    }
    return failure();
}

void nothing() {}

auto failed(std::span<char> errmsg, double result) {
    return [errmsg, result] {
        records::fill_text(errmsg, {ideal_specific_heat::errmsg.padded()});
        return result;
    };
}

} // namespace

// OSTREL_EXPORT(double, f, (const double *x), (x)) { ... } defines f, and f_ as a call of f.
#define OSTREL_EXPORT(Result, name, parameters, arguments) \
    extern "C" OSTREL_VISIBLE Result name parameters;      \
    extern "C" OSTREL_VISIBLE Result name##_ parameters {  \
        return name arguments;                             \
    }                                                      \
    Result name parameters

OSTREL_EXPORT(double, ostrel_prop,
              (const char *fluid, const char *inputspec, const double *input1, const double *input2,
               const char *outputspec, char *errmsg, size_t fluid_len, size_t inputspec_len, size_t outputspec_len,
               size_t errmsg_len),
              (fluid, inputspec, input1, input2, outputspec, errmsg, fluid_len, inputspec_len, outputspec_len,
               errmsg_len)) {
    return guarded(
        [&] {
            return ostrel::ostrel_prop(text(fluid, fluid_len), text(inputspec, inputspec_len), number(input1),
                                       number(input2), text(outputspec, outputspec_len), field(errmsg, errmsg_len));
        },
        failed(field(errmsg, errmsg_len), ostrel::failure_value));
}

OSTREL_EXPORT(void, get_tv,
              (const char *inputspec, const double *input1, const double *input2, double *T, double *v,
               size_t inputspec_len),
              (inputspec, input1, input2, T, v, inputspec_len)) {
    double unwanted = 0;
    guarded(
        [&] {
            ostrel::get_tv(text(inputspec, inputspec_len), number(input1), number(input2), T != nullptr ? *T : unwanted,
                           v != nullptr ? *v : unwanted);
        },
        nothing);
}

OSTREL_EXPORT(double, ostrel_info,
              (const char *fluid, const char *name, char *errmsg, size_t fluid_len, size_t name_len, size_t errmsg_len),
              (fluid, name, errmsg, fluid_len, name_len, errmsg_len)) {
    return guarded(
        [&] { return ostrel::ostrel_info(text(fluid, fluid_len), text(name, name_len), field(errmsg, errmsg_len)); },
        failed(field(errmsg, errmsg_len), 0.0));
}

OSTREL_EXPORT(void, ostrel_fluids, (int32_t * count, char *names, size_t names_len), (count, names, names_len)) {
    int32_t unwanted = 0;
    if (count == nullptr)
        count = &unwanted;
    *count = 0;
    if (names != nullptr && names_len > 0)
        guarded([&] { ostrel::ostrel_fluids(*count, names, names_len); }, nothing);
}

OSTREL_EXPORT(void, getversion, (int32_t version[4]), (version)) {
    if (version == nullptr)
        return;
    for (const std::int32_t part : ostrel::getversion())
        *version++ = part;
}

OSTREL_EXPORT(void, ostrel_sub, (), ()) {
    guarded([] { ostrel::ostrel_sub(); }, nothing);
}

OSTREL_EXPORT(void, read_init_fluiddata, (const char *name, size_t name_len), (name, name_len)) {
    guarded([&] { ostrel::read_init_fluiddata(text(name, name_len)); }, nothing);
}

OSTREL_EXPORT(void, read_init_fluiddatafile, (const char *file, size_t file_len), (file, file_len)) {
    guarded([&] { ostrel::read_init_fluiddatafile(text(file, file_len)); }, nothing);
}

OSTREL_EXPORT(void, read_init_fluiddatadb,
              (const char *location, const char *name, size_t location_len, size_t name_len),
              (location, name, location_len, name_len)) {
    // A database may compute outside the vector unit, as SQLite does when it turns a number into a text.
    guarded<floating_point::whole_environment>(
        [&] { ostrel::read_init_fluiddatadb(text(location, location_len), text(name, name_len)); }, nothing);
}

OSTREL_EXPORT(void, ostrel_use_host, (const ostrel_host *host), (host)) {
    ::host::use(host);
}
