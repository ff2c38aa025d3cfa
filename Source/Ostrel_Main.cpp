// SPDX-License-Identifier: MIT
#include "Ostrel_Main.h"

#include "Records/console.h"
#include "Requests/outputs.h"
#include "Thermodynamics/gas_properties.h"
#include "Thermodynamics/ideal_specific_heat.h"
#include "Thermodynamics/thermodynamics.h"
#include "Thermodynamics/transport_properties.h"
#include "fluid_loading.h"
#include "host.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <initializer_list>
#include <optional>
#include <string>

namespace ostrel {

using gas_properties::gas;
using gas_properties::gas_constants;
using records::fill_text;
using records::fixed_text;
using records::lower;
using records::no_errors;
using records::same_text;
using records::trimmed;
using requests::quantity_of;

records::fixed_text<8> os_fluid;
records::fixed_text<2> os_inputspec;
double os_input1 = failure_value;
double os_input2 = failure_value;
double T = 0;
double v = 0;

namespace {

records::error_text &shared_errmsg() {
    return ideal_specific_heat::errmsg;
}

/// A code or name in one of the tables below: `packed` is compared, and people are shown `text`.
struct keyword {
    std::uint64_t packed = 0;
    described text;
    constexpr keyword() = default;
    constexpr keyword(std::string_view name) : keyword(described{name, {}, {}}) {}
    constexpr keyword(const described &row) : packed(records::packed(row.name)), text(row) {}
};

/// The row of a table whose keyword is the text, without regard to case; null if there is none.
template <class Table>
auto find(const Table &table, std::string_view text) -> decltype(std::data(table)) {
    const std::uint64_t wanted = lower(records::packed(text));
    for (const auto &row : table)
        if (row.name.packed == wanted)
            return &row;
    return nullptr;
}

/// Finds reduced (T, v) from the two reduced inputs. A failure is reported in the shared error text.
using solver = void (*)(double in1, double in2, double &T, double &v);

struct input_pair {
    keyword name;
    solver solve;
    requests::conversion reduce1;
    requests::conversion reduce2;
    consteval input_pair(std::string_view code, solver solution)
        : name(code), solve(solution), reduce1(quantity_of(code[0]).reduce), reduce2(quantity_of(code[1]).reduce) {}
};

/// These take one of T and v as it is given, and search for the other if necessary.
template <double (*T__x_v)(double, double, std::optional<double>)>
void T_from_x_v(double x, double v_given, double &T_found, double &v_found) {
    v_found = v_given;
    T_found = T__x_v(x, v_given, {});
}
template <double (*T__x_v)(double, double, std::optional<double>)>
void T_from_v_x(double v_given, double x, double &T_found, double &v_found) {
    T_from_x_v<T__x_v>(x, v_given, T_found, v_found);
}
void T_v(double in1, double in2, double &T_found, double &v_found) {
    T_found = in1;
    v_found = in2;
}
void v_from_p_t(double p, double t, double &T_found, double &v_found) {
    T_found = t;
    v_found = thermodynamics::v__P_T(p, t);
}
void v_from_t_s(double t, double s, double &T_found, double &v_found) {
    T_found = t;
    v_found = thermodynamics::v__s_T(s, t);
}
/// Finds the volume from both inputs, and then, unless that failed, the temperature from p and the volume.
template <double (*v__y_x)(double, double, std::optional<double>, std::optional<double>)>
void from_p_y(double p, double y, double &T_found, double &v_found) {
    v_found = v__y_x(y, p, {}, {});
    if (shared_errmsg().clear())
        T_found = thermodynamics::T__P_v(p, v_found);
}
void from_h_s(double h, double s, double &T_found, double &v_found) {
    v_found = thermodynamics::v__h_s(h, s);
    if (shared_errmsg().clear())
        T_found = thermodynamics::T__h_v(h, v_found);
}
void from_p_q(double p, double q, double &T_found, double &v_found) {
    double v_g = 0;
    double v_l = 0;
    thermodynamics::saturation__P(p, T_found, v_g, v_l);
    if (shared_errmsg().clear())
        v_found = v_l + q * (v_g - v_l);
}
void from_t_q(double t, double q, double &T_found, double &v_found) {
    double P = 0;
    double v_g = 0;
    double v_l = 0;
    T_found = t;
    thermodynamics::saturation__T(t, P, v_g, v_l);
    if (shared_errmsg().clear())
        v_found = v_l + q * (v_g - v_l);
}

constexpr input_pair input_pairs[] = {
    {"tv", T_v},
    {"td", T_v},
    {"pt", v_from_p_t},
    {"pv", T_from_x_v<thermodynamics::T__P_v>},
    {"pd", T_from_x_v<thermodynamics::T__P_v>},
    {"ph", from_p_y<thermodynamics::v__h_P>},
    {"ps", from_p_y<thermodynamics::v__s_P>},
    {"pq", from_p_q},
    {"ts", v_from_t_s},
    {"tq", from_t_q},
    {"vh", T_from_v_x<thermodynamics::T__h_v>},
    {"vs", T_from_v_x<thermodynamics::T__s_v>},
    {"vu", T_from_v_x<thermodynamics::T__e_v>},
    {"dh", T_from_v_x<thermodynamics::T__h_v>},
    {"ds", T_from_v_x<thermodynamics::T__s_v>},
    {"du", T_from_v_x<thermodynamics::T__e_v>},
    {"hs", from_h_s},
};

/// Evaluates an output at a reduced state and returns it in SI units.
using evaluation = double (*)(double T, double v, const gas_constants &g);

double temperature(double T, double) {
    return T;
}
double volume(double, double v) {
    return v;
}
/// An element of the derivatives that an operation gives.
template <auto operation, std::size_t size, std::size_t element>
double derivative(double T, double v) {
    std::array<double, size> result{};
    operation(T, v, result);
    return result[element];
}
double conductivity(double T, double v) {
    double eta = 0;
    double lambda = 0;
    transport_properties::transport_coefficients(T, v, eta, lambda);
    return lambda;
}

template <std::size_t row, double (*reduced)(double T, double v)>
double restored(double T, double v, const gas_constants &g) {
    return requests::outputs[row].restore(reduced(T, v), g);
}

struct output {
    keyword name;
    evaluation evaluate;
    bool any_quality; ///< whether it is served at a quality other than 1
};

/// An output in its row of requests::outputs, with the operation that gives it reduced.
template <std::size_t row, double (*reduced)(double T, double v)>
constexpr output served() {
    return {requests::outputs[row].text, restored<row, reduced>, requests::outputs[row].any_quality};
}
#define OSTREL_SERVED(name, ...) served<requests::output_row(name), __VA_ARGS__>()

constexpr output outputs[] = {
    OSTREL_SERVED("t", temperature),
    OSTREL_SERVED("v", volume),
    OSTREL_SERVED("d", volume),
    OSTREL_SERVED("p", thermodynamics::P__T_v),
    OSTREL_SERVED("h", thermodynamics::h__T_v),
    OSTREL_SERVED("s", thermodynamics::s__T_v),
    OSTREL_SERVED("u", thermodynamics::e__T_v),
    OSTREL_SERVED("cv", thermodynamics::cv__T_v),
    OSTREL_SERVED("dp_dt", derivative<thermodynamics::dP__dT_dv, 2, 0>),
    OSTREL_SERVED("dp_dv", derivative<thermodynamics::dP__dT_dv, 2, 1>),
    OSTREL_SERVED("d2p_dt2", derivative<thermodynamics::d2P__dT2_dv2, 4, 0>),
    OSTREL_SERVED("d2p_dv2", derivative<thermodynamics::d2P__dT2_dv2, 4, 3>),
    OSTREL_SERVED("d2p_dtdv", derivative<thermodynamics::d2P__dT2_dv2, 4, 1>),
    OSTREL_SERVED("dcv_dt", derivative<thermodynamics::dcv__dT_dv, 2, 0>),
    OSTREL_SERVED("eta", transport_properties::eta__T_v),
    OSTREL_SERVED("lambda", conductivity),
};
static_assert(std::size(outputs) == std::size(requests::outputs));

struct information {
    keyword name;
    double (*value)(const gas_constants &g);
};

/// A table that `tell` makes, row by row, from another one.
template <class Described, class Row, std::size_t rows>
consteval std::array<Described, rows> told(const Row (&table)[rows], Described (*tell)(const Row &row)) {
    std::array<Described, rows> result;
    std::transform(std::begin(table), std::end(table), result.begin(), tell);
    return result;
}
constexpr auto told_pairs = told<described_pair, input_pair>(input_pairs, [](const input_pair &row) {
    const std::string_view code = row.name.text.name;
    return described_pair{code, quantity_of(code[0]).text, quantity_of(code[1]).text};
});
constexpr auto told_outputs = told<described_output, output>(outputs, [](const output &row) {
    return described_output{row.name.text, row.any_quality};
});
constexpr auto informations =
    told<information, requests::information>(requests::informations, [](const requests::information &row) {
        return information{row.text, row.value};
    });
constexpr auto told_informations = told<described, requests::information>(
    requests::informations, [](const requests::information &row) { return row.text; });

/// Loads the fluid if its name is not the kept name, and returns whether it did so. A name of more than eight
/// characters is never equal to the kept name.
bool loaded_anew(std::string_view fluid) {
    if (same_text(fluid, os_fluid))
        return false;
    os_fluid = fixed_text<8>(fluid);
    read_init_fluiddata(fluid);
    return true;
}

bool same_state(std::string_view inputspec, double input1, double input2) {
    return input1 == os_input1 && input2 == os_input2 && same_text(inputspec, os_inputspec);
}

void report_success(std::span<char> errmsg) {
    std::fill(errmsg.begin(), errmsg.end(), ' ');
    if (errmsg.size() >= no_errors.size()) // copying a constant number of bytes takes two instructions
        std::copy_n(no_errors.begin(), no_errors.size(), errmsg.begin());
    else
        fill_text(errmsg, {no_errors});
}

double failure(std::span<char> errmsg, std::initializer_list<std::string_view> pieces) {
    fill_text(errmsg, pieces);
    return failure_value;
}

} // namespace

fixed_text<8> tolower_os(std::string_view text) {
    return fixed_text<8>::unpacked(lower(records::packed(text)));
}

bool mixture(std::string_view inputspec, double input2) {
    return inputspec.size() >= 2 && lower(inputspec[1]) == 'q' && std::abs(input2 - 1) > 1e-6;
}

std::span<const described_pair> described_input_pairs() {
    return told_pairs;
}
std::span<const described_output> described_outputs() {
    return told_outputs;
}
std::span<const described> described_informations() {
    return told_informations;
}

std::string fluid_directory() {
    return host::fluid_directory();
}

double ostrel_prop(std::string_view fluid, std::string_view inputspec, double input1, double input2,
                   std::string_view outputspec, std::span<char> errmsg) {
    shared_errmsg().reset();
    const bool new_fluid = loaded_anew(fluid);
    if (!shared_errmsg().clear())
        return failure(errmsg, {shared_errmsg().padded()});

    const output *const wanted = find(outputs, outputspec);
    if (new_fluid || !same_state(inputspec, input1, input2)) {
        // The key is kept even if the rest fails. Hosts rely on this: the same request is then served from the state
        // before it.
        os_inputspec = fixed_text<2>(inputspec);
        os_input1 = input1;
        os_input2 = input2;
        if (mixture(inputspec, input2) && (wanted == nullptr || !wanted->any_quality))
            return failure(errmsg, {"Ostrel error: calculation as function of q, while q /= 1, only available for "
                                    "P, T, v or d."});
        double T_found = T;
        double v_found = v;
        get_tv(inputspec, input1, input2, T_found, v_found);
        if (!shared_errmsg().clear())
            return failure(errmsg, {shared_errmsg().padded()});
        T = T_found;
        v = v_found;
    }

    if (wanted == nullptr)
        return failure(errmsg, {"Ostrel error: calculation of ", outputspec, " not available."});
    report_success(errmsg);
    return wanted->evaluate(T, v, gas);
}

void get_tv(std::string_view inputspec, double input1, double input2, double &T_found, double &v_found) {
    const input_pair *const pair = find(input_pairs, inputspec);
    if (pair == nullptr) {
        shared_errmsg().report({"Ostrel error: calculation as function of ", inputspec, " not available."});
        return;
    }
    pair->solve(pair->reduce1(input1, gas), pair->reduce2(input2, gas), T_found, v_found);
}

double ostrel_info(std::string_view fluid, std::string_view name, std::span<char> errmsg) {
    // The shared text is not reset, so that an old message in it counts as a failure of the loading.
    if (loaded_anew(fluid) && !shared_errmsg().clear()) {
        fill_text(errmsg, {shared_errmsg().padded()});
        return 0.0;
    }
    const information *const wanted = find(informations, name);
    if (wanted == nullptr)
        return failure(errmsg, {"Ostrel error: no info available for ", trimmed(name), "."});
    report_success(errmsg);
    return wanted->value(gas);
}

void ostrel_fluids(std::int32_t &count, char *names, std::size_t name_len) {
    const std::span<char> all(names, host::name_count * name_len);
    host::search_directory(host::fluid_directory(), all, name_len);
    count = 0;
    const auto entry = [&](std::size_t i) { return all.subspan(i * name_len, name_len); };
    const auto text = [&](std::size_t i) { return trimmed({entry(i).data(), name_len}); };
    for (std::size_t i = 0; i < host::name_count; ++i)
        if (!text(i).empty())
            ++count;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        const std::size_t point = text(i).find('.');
        const std::size_t kept = point == std::string_view::npos ? 0 : point;
        fill_text(entry(i).subspan(kept), {});
    }
}

std::array<std::int32_t, 4> getversion() {
    return {1, 0, 1, 14};
}

void ostrel_sub() {
    console::write({"****** Hello from the Ostrel      ******"});
}

void read_init_fluiddata(std::string_view name) {
    constexpr std::string_view extension = ".osd";
    const std::string_view fluid = trimmed(name);
    const std::string directory = host::fluid_directory();
    if (fluid.size() > host::path_length || directory.size() + fluid.size() + extension.size() > host::path_length)
        loading::report_failed_open(ENAMETOOLONG);
    else if (fluid.find('/') != std::string_view::npos)
        loading::report_failed_open(ENOENT); // no file of the directory has such a name
    else if (loading::read_file(directory + std::string(fluid) + std::string(extension)) == loading::outcome::broken)
        return;
    // This runs also if the file could not be opened; then the parameters in memory are initialised again.
    loading::initialise();
}

void read_init_fluiddatafile(std::string_view file) {
    loading::read_file(file);
}

void read_init_fluiddatadb(std::string_view location, std::string_view name) {
    loading::read_database(location, name);
}

} // namespace ostrel
