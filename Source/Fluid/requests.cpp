// SPDX-License-Identifier: MIT
#include "Fluid/requests.h"

#include "Fluid/names.h"
#include "Fluid/options.h"
#include "Fluid/status.h"
#include "Fluid/workers.h"
#include "Requests/handle_outputs.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fluid {
namespace {

using requests::described;

int check_fluid(const ostrel_fluid *of) {
    return of != nullptr ? int{OSTREL_OK} : report_null("fluid", "an open fluid is needed");
}

/// An array that a call needs if it has states.
struct needed {
    std::string_view name;
    const void *array;
};
int check_arrays(std::size_t count, std::initializer_list<needed> arrays) {
    if (count > 0)
        for (const needed &one : arrays)
            if (one.array == nullptr)
                return report_null(one.name, "only calls with count 0 may have it");
    return OSTREL_OK;
}

/// With states=surface, only t with v or d is understood.
int check_surface(const ostrel_fluid &of, const named_pair &pair) {
    const input_pair letters_of_pair = input_pairs[pair.row];
    if (of.settings.states != allowed_states::surface ||
        (letters_of_pair.first == letter::t &&
         (letters_of_pair.second == letter::v || letters_of_pair.second == letter::d)))
        return OSTREL_OK;
    return report(OSTREL_BAD_ARGUMENT, {"inputs ", quantity_of(pair.first()).name, quantity_of(pair.second()).name,
                                        ": a fluid with states=surface takes t with v or d only"});
}

int read_pair_of(const ostrel_fluid *of, const char *text, named_pair &pair) {
    if (const int status = check_fluid(of); status != OSTREL_OK)
        return status;
    if (const int status = read_pair(text, pair); status != OSTREL_OK)
        return status;
    return check_surface(*of, pair);
}

/// A number for people, the shortest text that gives it again.
class written_number {
public:
    explicit written_number(double value)
        : end_(std::to_chars(characters_.data(), characters_.data() + characters_.size(), value).ptr) {}
    explicit written_number(std::size_t value)
        : end_(std::to_chars(characters_.data(), characters_.data() + characters_.size(), value).ptr) {}
    written_number(const written_number &) = delete;
    written_number &operator=(const written_number &) = delete;
    operator std::string_view() const {
        return {characters_.data(), static_cast<std::size_t>(end_ - characters_.data())};
    }

private:
    std::array<char, 32> characters_{};
    const char *end_;
};

/// What one state was computed from, for the message if it failed.
constexpr std::size_t the_only_one = static_cast<std::size_t>(-1);
int report_state(int status, const ostrel_fluid &of, const named_pair &pair, std::size_t state, double first,
                 double second) {
    const described &one = quantity_of(pair.first());
    const described &other = quantity_of(pair.second());
    const auto unit = [](const described &what) { return what.unit == "1" ? std::string_view() : what.unit; };
    const auto blank = [](const described &what) { return what.unit == "1" ? "" : " "; };
    const bool only = state == the_only_one;
    return report(status, {one.name,
                           other.name,
                           " of ",
                           of.shown_name,
                           only ? "" : ": state ",
                           only ? std::string_view() : written_number(state),
                           " (",
                           one.name,
                           " = ",
                           written_number(first),
                           blank(one),
                           unit(one),
                           ", ",
                           other.name,
                           " = ",
                           written_number(second),
                           blank(other),
                           unit(other),
                           "): ",
                           find_status(status)->text});
}

/// The states of a call whose statuses nobody wants are computed in pieces of this many, so that the statuses of a
/// piece have room on the stack.
constexpr std::size_t piece = 256;

/// Computes the states from `begin` to `end` by `compute(begin, count, status)`, and returns the first that failed.
template <class Compute>
failure first_failure(std::size_t begin, std::size_t end, int *status, Compute compute) {
    failure first;
    std::array<int, piece> own;
    while (begin < end) {
        const std::size_t count = status != nullptr ? end - begin : std::min(piece, end - begin);
        int *const of_states = status != nullptr ? status + begin : own.data();
        const int found = compute(begin, count, of_states);
        if (found != OSTREL_OK && first.status == OSTREL_OK) {
            const int *const failed =
                std::find_if(of_states, of_states + count, [](int one) { return one != OSTREL_OK; });
            first = {found, begin + static_cast<std::size_t>(failed - of_states)};
        }
        begin += count;
    }
    return first;
}

/// A call with its texts read.
struct evaluation {
    const ostrel_fluid &of;
    named_pair pair{};
    named_outputs outputs{};
    const double *first;
    const double *second;
    double *values;
    int *status;

    failure run(std::size_t begin, std::size_t end) const {
        const std::span<const output> wanted = outputs.all();
        return first_failure(begin, end, status, [&](std::size_t from, std::size_t count, int *of_states) {
            return of.states->evaluate(pair.row, pair.swapped, wanted, count, first + from, second + from,
                                       values + from * wanted.size(), of_states);
        });
    }
    int report(const failure &found) const {
        return found.status == OSTREL_OK
                   ? int{OSTREL_OK}
                   : report_state(found.status, of, pair, found.state, first[found.state], second[found.state]);
    }
};

template <class Run>
int evaluate_with(const ostrel_fluid *of, const char *inputs, const char *outputs, std::size_t count,
                  // NOLINTNEXTLINE(readability-non-const-parameter): the run writes through both pointers
                  const double *first, const double *second, double *values, int *status, Run run) {
    named_pair pair;
    if (const int problem = read_pair_of(of, inputs, pair); problem != OSTREL_OK)
        return problem;
    evaluation wanted{.of = *of, .pair = pair, .first = first, .second = second, .values = values, .status = status};
    if (const int problem = read_outputs(outputs, wanted.outputs); problem != OSTREL_OK)
        return problem;
    if (const int problem = check_arrays(count, {{"first", first}, {"second", second}, {"values", values}});
        problem != OSTREL_OK)
        return problem;
    return count > 0 ? wanted.report(run(wanted)) : int{OSTREL_OK};
}

/// The cells of a list.
template <const auto &rows, class Describe>
const described *row_of(std::size_t index, Describe describe) {
    static constexpr auto described_rows = [] {
        std::array<described, std::size(rows)> result;
        std::transform(std::begin(rows), std::end(rows), result.begin(), Describe{});
        return result;
    }();
    static_cast<void>(describe);
    return index < described_rows.size() ? &described_rows[index] : nullptr;
}

const described *row_of(std::span<const described> rows, std::size_t index) {
    return index < rows.size() ? &rows[index] : nullptr;
}

/// The values of each option as one text, with a NUL at the end.
constexpr auto written_values = [] {
    std::array<std::array<char, 48>, option_count> result{};
    for (std::size_t i = 0; i < option_count; ++i) {
        std::size_t size = 0;
        for (const std::string_view value : all_options[i].values) {
            if (size > 0)
                result[i][size++] = '|';
            for (const char c : value)
                result[i][size++] = c;
        }
    }
    return result;
}();
constexpr auto option_rows = [] {
    std::array<described, option_count> result;
    for (std::size_t i = 0; i < option_count; ++i)
        result[i] = {all_options[i].key, written_values[i].data(), all_options[i].meaning};
    return result;
}();
constexpr auto model_rows = [] {
    std::array<described, equations::model_count> result;
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = {equations::words_of_models[i], "", equations::names_of_models[i].name};
    return result;
}();

struct listed {
    std::string_view kind;
    const described *(*row)(std::size_t index);
};
constexpr listed lists[] = {
    {"inputs", [](std::size_t index) { return row_of(described_pairs(), index); }},
    {"outputs", [](std::size_t index) { return row_of(requests::handle_outputs, index); }},
    {"derivatives", [](std::size_t index) { return row_of(described_derivatives(), index); }},
    {"constants",
     [](std::size_t index) { return row_of<constants>(index, [](const constant &row) { return row.text; }); }},
    {"texts", [](std::size_t index) { return row_of<texts>(index, [](const text_row &row) { return row.text; }); }},
    {"models", [](std::size_t index) { return row_of(model_rows, index); }},
    {"options", [](std::size_t index) { return row_of(option_rows, index); }},
    {"statuses",
     [](std::size_t index) {
         return row_of<statuses>(index, [](const status_row &row) {
             return described{row.name, row.digits, row.text};
         });
     }},
};

struct listed_cell {
    std::string_view name;
    std::string_view described::*value;
};
constexpr listed_cell cells[] = {
    {"name", &described::name}, {"unit", &described::unit}, {"description", &described::meaning}};

/// The row of a table with a name; null if there is none, which is reported.
template <class Rows, class Name>
auto find_named(const Rows &rows, const char *name, std::string_view what, Name name_of) -> decltype(std::data(rows)) {
    if (name == nullptr) {
        report_null(what, "a name is needed");
        return nullptr;
    }
    for (const auto &row : rows)
        if (name_of(row) == name)
            return &row;
    std::vector<std::string_view> known;
    for (const auto &row : rows)
        known.push_back(name_of(row));
    report(OSTREL_BAD_ARGUMENT, {what, " ", in_quotes(name), ": there is no such name; the names are ", joined(known)});
    return nullptr;
}

} // namespace

int evaluate(const ostrel_fluid *of, const char *inputs, const char *outputs, std::size_t count, const double *first,
             const double *second, double *values, int *status) {
    return evaluate_with(of, inputs, outputs, count, first, second, values, status,
                         [&](const evaluation &wanted) { return wanted.run(0, count); });
}

int evaluate_parallel(const ostrel_fluid *of, const char *inputs, const char *outputs, std::size_t count,
                      const double *first, const double *second, double *values, int *status, unsigned workers) {
    return evaluate_with(of, inputs, outputs, count, first, second, values, status, [&](const evaluation &wanted) {
        return run_by_workers(count, workers,
                              [&](std::size_t begin, std::size_t end) { return wanted.run(begin, end); });
    });
}

int value(const ostrel_fluid *of, const char *inputs, double first, double second, const char *output_name,
          double &result) {
    named_pair pair;
    output wanted;
    int status = read_pair_of(of, inputs, pair);
    if (status == OSTREL_OK)
        status = read_output(output_name, wanted);
    if (status != OSTREL_OK)
        return status;
    of->states->evaluate(pair.row, pair.swapped, {&wanted, 1}, 1, &first, &second, &result, &status);
    return status == OSTREL_OK ? status : report_state(status, *of, pair, the_only_one, first, second);
}

int saturation(const ostrel_fluid *of, const char *input, const char *outputs, std::size_t count,
               const double *values_in, double *liquid, double *vapor, int *status) {
    bool at_pressure = false;
    named_outputs wanted;
    int problem = check_fluid(of);
    if (problem == OSTREL_OK)
        problem = read_saturation_input(input, at_pressure);
    if (problem == OSTREL_OK)
        problem = read_outputs(outputs, wanted);
    if (problem == OSTREL_OK && of->settings.states == allowed_states::surface)
        problem = report(OSTREL_BAD_ARGUMENT, {"saturation: a fluid with states=surface takes t with v or d only"});
    if (problem == OSTREL_OK)
        problem = check_arrays(count, {{"values_in", values_in}});
    if (problem != OSTREL_OK)
        return problem;
    const std::size_t width = wanted.all().size();
    const auto part = [width](double *values, std::size_t from) {
        return values != nullptr ? values + from * width : nullptr;
    };
    const failure found = first_failure(0, count, status, [&](std::size_t from, std::size_t some, int *of_states) {
        return of->states->saturation(at_pressure, wanted.all(), some, values_in + from, part(liquid, from),
                                      part(vapor, from), of_states);
    });
    if (found.status == OSTREL_OK)
        return OSTREL_OK;
    const described &given = quantity_of(at_pressure ? letter::p : letter::t);
    return report(found.status,
                  {"saturation of ", of->shown_name, ": state ", written_number(found.state), " (", given.name, " = ",
                   written_number(values_in[found.state]), " ", given.unit, "): ", find_status(found.status)->text});
}

int solve(const ostrel_fluid *of, const char *inputs, std::size_t count, const double *first, const double *second,
          ostrel_state *states) {
    named_pair pair;
    if (const int problem = read_pair_of(of, inputs, pair); problem != OSTREL_OK)
        return problem;
    if (const int problem = check_arrays(count, {{"first", first}, {"second", second}, {"states", states}});
        problem != OSTREL_OK)
        return problem;
    if (count == 0)
        return OSTREL_OK;
    const int status = of->states->solve(pair.row, pair.swapped, count, first, second, states);
    if (status == OSTREL_OK)
        return OSTREL_OK;
    const auto failed = static_cast<std::size_t>(
        std::find_if(states, states + count, [](const ostrel_state &one) { return one.status != OSTREL_OK; }) - states);
    return report_state(status, *of, pair, failed, first[failed], second[failed]);
}

int outputs_of(const ostrel_fluid *of, const char *outputs, std::size_t count, const ostrel_state *states,
               double *values, int *status) {
    named_outputs wanted;
    int problem = check_fluid(of);
    if (problem == OSTREL_OK)
        problem = read_outputs(outputs, wanted);
    if (problem == OSTREL_OK)
        problem = check_arrays(count, {{"states", states}, {"values", values}});
    if (problem != OSTREL_OK)
        return problem;
    const std::size_t width = wanted.all().size();
    const failure found = first_failure(0, count, status, [&](std::size_t from, std::size_t some, int *of_states) {
        return of->states->outputs(wanted.all(), some, states + from, values + from * width, of_states);
    });
    if (found.status == OSTREL_OK)
        return OSTREL_OK;
    const ostrel_state &state = states[found.state];
    return report(found.status, {"outputs of ", of->shown_name, ": state ", written_number(found.state),
                                 " (t = ", written_number(state.t), " K, p = ", written_number(state.p),
                                 " Pa, v = ", written_number(state.v), " m3/kg): ", find_status(found.status)->text});
}

double constant_of(const ostrel_fluid *of, const char *name) {
    if (check_fluid(of) != OSTREL_OK)
        return no_number;
    const constant *const row =
        find_named(constants, name, "constant", [](const constant &one) { return one.text.name; });
    if (row == nullptr)
        return no_number;
    const double value = row->value(of->numbers);
    return std::isnan(value) ? no_number : value;
}

const char *text_of(const ostrel_fluid *of, const char *name) {
    if (check_fluid(of) != OSTREL_OK)
        return nullptr;
    const text_row *const row = find_named(texts, name, "text", [](const text_row &one) { return one.text.name; });
    return row != nullptr ? (of->texts.*row->value).c_str() : nullptr;
}

const char *list(const char *kind, std::size_t index, const char *what) {
    const listed *const wanted = find_named(lists, kind, "list", [](const listed &one) { return one.kind; });
    const listed_cell *const cell =
        wanted != nullptr ? find_named(cells, what, "part of a list", [](const listed_cell &one) { return one.name; })
                          : nullptr;
    const described *const row = cell != nullptr ? wanted->row(index) : nullptr;
    return row != nullptr ? (row->*cell->value).data() : nullptr; // All these texts end with a NUL.
}

} // namespace fluid
