// SPDX-License-Identifier: MIT
// Handles of fluids in C++20: the interface of ostrel_fluid.h with objects that close themselves, spans, and names that
// the compiler checks. There is only this header; a program links the library as for C.
//
//     #include <cstdio>
//     #include "ostrel.hpp"
//
//     int main() try {
//         const auto toluene = ostrel::fluid::open("toluene");
//         const auto [d, cp] = toluene.values<"d, cp">("pt", 1e5, 400); // Pa, K
//         std::printf("%.3f kg/m3, %.1f J/(kg K)\n", d, cp); // prints 2.850 kg/m3, 1528.3 J/(kg K)
//     } catch (const ostrel::failure &problem) {
//         std::printf("%s\n", problem.what());
//         return 1;
//     }
//
// ostrel_fluid.h is the contract: units, statuses, threads, special points. This header adds:
//
// Failures. Every call stands here twice. try_NAME returns a result, which is a value or a fault with its status and
// its message, and throws nothing but std::bad_alloc. NAME returns the value, or throws a failure with the same two.
// Without exceptions (-fno-exceptions) only the first form is there.
//
// Names. Literals are checked when the program is compiled: a pair, an output, a derivative, a constant, a text or an
// option that does not exist does not compile. For a text that is known only when the program runs, write
// ostrel::unchecked(text); then the library checks it, and the call may fail with OSTREL_BAD_ARGUMENT.
//
// Arrays. A span with a wrong number of elements is a fault with OSTREL_BAD_ARGUMENT, and nothing is written. An array
// of values has the outputs of one state next to each other: values[state * number of outputs + output].
//
// Units. The bracket behind an argument is its unit: [SI] is the SI unit that ostrel_list has for the name, [-] marks
// texts, counts and handles.
//
// Threads. As in C: constant calls of one fluid from any number of threads; moving, assigning or destroying it from
// one.
#ifndef OSTREL_HPP
#define OSTREL_HPP

#if !defined(__cplusplus) || (__cplusplus < 202002L && (!defined(_MSVC_LANG) || _MSVC_LANG < 202002L))
#error "ostrel.hpp needs C++20; for C and older C++ there is ostrel_fluid.h"
#endif

#include "ostrel_fluid.h"
#include "ostrel_names.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#if defined(__cpp_exceptions)
#include <exception>
#endif

namespace ostrel {

// ---- Failures ------------------------------------------------------------------------------------------------------

/// Why a call failed.
struct fault {
    int status = OSTREL_OK; ///< [-] the status, such as OSTREL_NO_STATE
    std::string message{};  ///< [-] what was asked, what was wrong, and what would be right
};

/// What a status means.   status [-] any number   The text lives as long as the library.
inline std::string_view status_text(int status) noexcept {
    return ostrel_status_text(status);
}

/// The message of the calling thread; see ostrel_last_message, also for how long it holds. Faults have a copy of it.
inline std::string_view last_message() noexcept {
    return ostrel_last_message();
}

#if defined(__cpp_exceptions)
/// A fault that is thrown. what() is the message.
class failure : public std::runtime_error {
public:
    explicit failure(const fault &why) : std::runtime_error(why.message), status_(why.status) {}
    int status() const noexcept { return status_; } ///< [-] the status, such as OSTREL_NO_STATE
private:
    int status_;
};
#endif

/// A value, or the fault that there is none.
template <class T>
class [[nodiscard]] result {
public:
    using value_type = T;

    result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
    result(fault why) : content_(std::in_place_index<1>, std::move(why)) {}

    bool has_value() const noexcept { return content_.index() == 0; }
    explicit operator bool() const noexcept { return has_value(); }

    // The value; the caller knows that there is one.
    T &operator*() &noexcept { return *std::get_if<0>(&content_); }
    const T &operator*() const &noexcept { return *std::get_if<0>(&content_); }
    T &&operator*() &&noexcept { return std::move(*std::get_if<0>(&content_)); }
    T *operator->() noexcept { return std::get_if<0>(&content_); }
    const T *operator->() const noexcept { return std::get_if<0>(&content_); }

    /// The fault; the caller knows that there is one. It lives as long as the result.
    const fault &error() const noexcept { return *std::get_if<1>(&content_); }
    /// OSTREL_OK or the status of the fault.
    int status() const noexcept { return has_value() ? int{OSTREL_OK} : error().status; }
    /// The value, or another one after a fault.
    T value_or(T other) && { return has_value() ? *std::move(*this) : std::move(other); }
    T value_or(T other) const &
        requires(std::is_copy_constructible_v<T>)
    {
        return has_value() ? **this : std::move(other);
    }

#if defined(__cpp_exceptions)
    /// The value; throws a failure if there is none.
    T value() && { return *std::move(checked()); }
    const T &value() const & { return *checked(); }
#endif

private:
#if defined(__cpp_exceptions)
    result &checked() { return has_value() ? *this : throw failure(error()); }
    const result &checked() const { return has_value() ? *this : throw failure(error()); }
#endif

    std::variant<T, fault> content_;
};

/// Success without a value, or a fault.
template <>
class [[nodiscard]] result<void> {
public:
    using value_type = void;

    result() = default;
    result(fault why) : fault_(std::move(why)) {}

    bool has_value() const noexcept { return !fault_.has_value(); }
    explicit operator bool() const noexcept { return has_value(); }
    const fault &error() const noexcept { return *fault_; }
    int status() const noexcept { return has_value() ? int{OSTREL_OK} : fault_->status; }
#if defined(__cpp_exceptions)
    /// Throws a failure after a fault.
    void value() const {
        if (!has_value())
            throw failure(*fault_);
    }
#endif

private:
    std::optional<fault> fault_{};
};

// ---- Names ---------------------------------------------------------------------------------------------------------

/// A text for the library that is not known before the program runs. It must live until the call has ended, and counts
/// up to its first NUL.
class unchecked {
public:
    explicit unchecked(const char *text) noexcept : text_(text) {}
    explicit unchecked(const std::string &text) noexcept : text_(text.c_str()) {}
    const char *c_str() const noexcept { return text_; }

private:
    const char *text_;
};

/// The rules of names, as the library has them. The lists are in ostrel_names.hpp.
namespace names {

constexpr std::string_view without_blanks(std::string_view text) {
    const auto is_blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && is_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// The place of the first such character, or the size of the text. (string_view::find is no constant expression for an
/// argument of a template with GCC's -fsanitize=undefined.)
constexpr std::size_t place_of(std::string_view text, char sign) {
    std::size_t place = 0;
    while (place < text.size() && text[place] != sign)
        ++place;
    return place;
}

/// Takes the next part of a text off its front: what stands before the sign, without blanks around it.
constexpr std::string_view next_part(std::string_view &rest, char sign) {
    const std::size_t end = place_of(rest, sign);
    const std::string_view part = without_blanks(rest.substr(0, end));
    rest.remove_prefix(end < rest.size() ? end + 1 : end);
    return part;
}

constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr bool same_name(std::string_view written, std::string_view name) {
    return std::equal(written.begin(), written.end(), name.begin(), name.end(),
                      [](char a, char b) { return lower(a) == b; });
}
template <std::size_t count>
constexpr bool is_one_of(std::string_view written, const std::string_view (&list)[count], bool any_case) {
    return std::any_of(std::begin(list), std::end(list), [&](std::string_view name) {
        return any_case ? same_name(written, name) : written == name;
    });
}

constexpr bool is_pair(std::string_view text) {
    const std::string_view pair = without_blanks(text);
    if (pair.size() != 2)
        return false;
    const char swapped[] = {pair[1], pair[0]};
    return is_one_of(pair, inputs, true) || is_one_of(std::string_view(swapped, 2), inputs, true);
}
constexpr bool is_saturation_input(std::string_view text) {
    const std::string_view name = without_blanks(text);
    return same_name(name, "t") || same_name(name, "p");
}
/// dX/dY|Z, where Y and Z differ and are not v with d.
constexpr bool is_derivative(std::string_view name) {
    constexpr std::string_view form = "dX/dY|Z", quantities = "tpvdhsu";
    if (name.size() != form.size())
        return false;
    for (std::size_t i = 0; i < form.size(); ++i)
        if (form[i] >= 'X' && form[i] <= 'Z' ? place_of(quantities, lower(name[i])) == quantities.size()
                                             : lower(name[i]) != form[i])
            return false;
    const auto volume = [](char c) { return c == 'd' ? 'v' : c; };
    return volume(lower(name[4])) != volume(lower(name[6]));
}
constexpr bool is_output(std::string_view text) {
    const std::string_view name = without_blanks(text);
    return is_one_of(name, outputs, true) || is_derivative(name);
}
constexpr bool are_outputs(std::string_view text) {
    while (place_of(text, ',') < text.size())
        if (!is_output(next_part(text, ',')))
            return false;
    return is_output(text);
}
constexpr std::size_t count_of_names(std::string_view text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), ',')) + 1;
}
constexpr bool is_constant(std::string_view name) {
    return is_one_of(name, constants, false);
}
constexpr bool is_text(std::string_view name) {
    return is_one_of(name, texts, false);
}
/// Whether a value stands among values that are written "a|b|c"; without values, any text but the empty one does.
constexpr bool is_value(std::string_view value, std::string_view values) {
    if (value.empty() || values.empty())
        return !value.empty();
    while (!values.empty())
        if (next_part(values, '|') == value)
            return true;
    return false;
}
constexpr bool are_options(std::string_view text) {
    bool given[std::size(options)] = {};
    const auto row_of = [](std::string_view key) {
        std::size_t row = 0;
        while (row < std::size(options) && options[row].key != key)
            ++row;
        return row;
    };
    bool metastable = false;
    for (std::string_view rest = text; !without_blanks(text).empty();) {
        const bool last = place_of(rest, ';') == rest.size();
        std::string_view value = next_part(rest, ';');
        const bool has_value = place_of(value, '=') < value.size();
        const std::string_view key = next_part(value, '=');
        value = without_blanks(value);
        const std::size_t row = row_of(key);
        if (!has_value || row == std::size(options) || given[row] || !is_value(value, options[row].values))
            return false;
        given[row] = true;
        metastable = metastable || (key == "states" && value == "metastable");
        if (last)
            break;
    }
    return given[row_of("phase")] == metastable;
}

// A call of one of these in an error of the compiler says what is wrong with the literal.
inline void there_is_no_such_input_pair() {}
inline void saturation_is_at_t_or_p() {}
inline void there_is_no_such_output() {}
inline void one_of_these_outputs_does_not_exist() {}
inline void there_is_no_such_constant() {}
inline void there_is_no_such_text() {}
inline void these_options_are_not_valid() {}

/// A name that was checked when the program was compiled, or one that the library is to check.
template <bool (*is_right)(std::string_view), void (*complain)()>
class checked {
public:
    consteval checked(const char *literal) : text_(literal) {
        if (!is_right(literal))
            complain();
    }
    checked(unchecked text) noexcept : text_(text.c_str()) {}
    constexpr const char *c_str() const noexcept { return text_; }
    /// [-] number of names between commas
    constexpr std::size_t size() const noexcept { return text_ != nullptr ? count_of_names(text_) : 1; }

private:
    const char *text_;
};

} // namespace names

/// Two letters in either order, such as "pt".
using input_pair = names::checked<names::is_pair, names::there_is_no_such_input_pair>;
/// "t" or "p".
using saturation_input = names::checked<names::is_saturation_input, names::saturation_is_at_t_or_p>;
/// The name of one output or derivative, such as "cp" or "dp/dd|u".
using output_name = names::checked<names::is_output, names::there_is_no_such_output>;
/// The name of a constant, such as "t_crit".
using constant_name = names::checked<names::is_constant, names::there_is_no_such_constant>;
/// The name of a text of a fluid, such as "label".
using text_name = names::checked<names::is_text, names::there_is_no_such_text>;

/// Names of outputs with commas between them, such as "d, cp, dp/dd|u".
using output_names = names::checked<names::are_outputs, names::one_of_these_outputs_does_not_exist>;
/// Options of an opening, such as "model=pr; reference=nbp"; ostrel_fluid_open explains them.
using open_options = names::checked<names::are_options, names::these_options_are_not_valid>;

/// A literal as an argument of a template.
template <std::size_t length>
struct literal {
    consteval literal(const char (&text)[length]) { std::copy_n(text, length, characters); }
    constexpr std::string_view view() const { return {characters, length - 1}; }
    char characters[length]{};
};

// ---- Answers -------------------------------------------------------------------------------------------------------

/// The outputs of many states, with the status of each.
class table {
public:
    std::size_t size() const noexcept { return status_.size(); } ///< [-] number of states
    std::size_t outputs() const noexcept { return outputs_; }    ///< [-] number of outputs of a state
    /// The outputs of a state [SI].   state [-] from 0   They live as long as the table.
    std::span<const double> operator[](std::size_t state) const noexcept {
        return std::span(values_).subspan(state * outputs_, outputs_);
    }
    /// One output [SI].   state [-] from 0   output [-] from 0, in the order of the names
    double operator()(std::size_t state, std::size_t output) const noexcept {
        return values_[state * outputs_ + output];
    }
    std::span<const double> values() const noexcept { return values_; } ///< [SI] state by state
    std::span<const int> status() const noexcept { return status_; }    ///< [-] of each state
    bool ok() const noexcept { return !first_fault_.has_value(); }      ///< whether every state is OSTREL_OK
    /// The fault of the first state that failed, if one has.
    const std::optional<fault> &first_fault() const noexcept { return first_fault_; }

private:
    friend class fluid;
    table(std::size_t states, std::size_t outputs) : outputs_(outputs), values_(states * outputs), status_(states) {}

    std::size_t outputs_;
    std::vector<double> values_;
    std::vector<int> status_;
    std::optional<fault> first_fault_{};
};

/// Both saturated phases of many states. A state has one status for both.
struct saturated {
    table liquid;
    table vapor;
};

/// A state that has been solved; see ostrel_state.
using state = ostrel_state;

// ---- Fluids --------------------------------------------------------------------------------------------------------

/// An opened fluid. It can be moved and not copied, and closes its handle when it is destroyed. A fluid that was moved
/// from refuses every call with OSTREL_BAD_ARGUMENT.
class fluid {
public:
    /// Takes over a handle of the C interface.   handle [-] an open fluid, which nobody else closes
    explicit fluid(ostrel_fluid *handle) noexcept : handle_(handle) {}

    // These open a fluid. Statuses: OSTREL_CANNOT_OPEN if there is no such fluid, file or database, OSTREL_BAD_FILE if
    // its parameters cannot be used, OSTREL_BAD_ARGUMENT for options that do not exist or that the fluid cannot have.

    /// Opens a fluid of the fluid folder.   name [-] of a file, or as people know the fluid   with [-] options
    static result<fluid> try_open(const std::string &name, open_options with = "") {
        return opened([&](ostrel_fluid **to) { return ostrel_fluid_open(name.c_str(), with.c_str(), to); });
    }
    /// Opens a parameter file.   path [-] with its extension   with [-] options without folder
    static result<fluid> try_open_file(const std::string &path, open_options with = "") {
        return opened([&](ostrel_fluid **to) { return ostrel_fluid_open_file(path.c_str(), with.c_str(), to); });
    }
    /// Opens a text like that of a parameter file.   text [-] the records, one a line   with [-] options without folder
    static result<fluid> try_open_text(const std::string &text, open_options with = "") {
        return opened([&](ostrel_fluid **to) { return ostrel_fluid_open_text(text.c_str(), with.c_str(), to); });
    }
    /// Opens a fluid of a database.   location [-] path of the SQLite file   name [-] key of the fluid
    /// with [-] options without folder
    static result<fluid> try_open_database(const std::string &location, const std::string &name,
                                           open_options with = "") {
        return opened([&](ostrel_fluid **to) {
            return ostrel_fluid_open_database(location.c_str(), name.c_str(), with.c_str(), to);
        });
    }

    /// The handle for calls of the C interface. It lives as long as this object, which keeps it.
    const ostrel_fluid *handle() const noexcept { return handle_.get(); }
    /// Gives the handle away; the caller closes it.
    ostrel_fluid *release() noexcept { return handle_.release(); }

    // ---- One state. Statuses: OSTREL_NOT_A_NUMBER to OSTREL_NOT_CONVERGED for what is wrong with the state.

    /// One property [SI].   inputs [-] the pair   first, second [SI] in the order of its letters   output [-] its name
    result<double> try_value(input_pair inputs, double first, double second, output_name output) const {
        int status = OSTREL_OK;
        const double value =
            ostrel_fluid_value(handle(), inputs.c_str(), first, second, output.c_str(), &status);
        return answer(status, value);
    }
    /// Some properties [SI], as in `auto [d, cp] = toluene.values<"d, cp">("pt", 1e5, 400)`.
    /// outputs [-] their names   inputs [-] the pair   first, second [SI] in the order of its letters
    template <literal outputs>
        requires(names::are_outputs(outputs.view()))
    result<std::array<double, names::count_of_names(outputs.view())>> try_values(input_pair inputs, double first,
                                                                                 double second) const {
        std::array<double, names::count_of_names(outputs.view())> values;
        const int status = ostrel_fluid_evaluate(handle(), inputs.c_str(), outputs.characters, 1, &first, &second,
                                                 values.data(), nullptr);
        return answer(status, values);
    }
    /// Finds a state, for outputs that are asked later.   inputs [-] the pair   first, second [SI] in the order of its
    /// letters   The state may be kept, copied, and asked from any fluid that was opened in the same way.
    result<state> try_solve(input_pair inputs, double first, double second) const {
        state found;
        const int status = ostrel_fluid_solve(handle(), inputs.c_str(), 1, &first, &second, &found);
        return answer(status, found);
    }
    /// One property [SI] of a state that was solved.   of [-] the state   output [-] its name
    result<double> try_value(const state &of, output_name output) const {
        double value = 0;
        const int status = ostrel_fluid_outputs(handle(), output.c_str(), 1, &of, &value, nullptr);
        return answer(status, value);
    }

    // ---- Many states, into arrays of the caller. The fault is that of a call that was refused, or of the first state
    // that failed; in the second case the arrays are written, and `status` has the status of each state. `status` may
    // be empty.

    /// inputs [-] the pair   outputs [-] names   first, second [SI] inputs of each state   values [SI] receives the
    /// outputs   status [-] receives the statuses
    result<void> try_evaluate(input_pair inputs, output_names outputs, std::span<const double> first,
                              std::span<const double> second, std::span<double> values,
                              std::span<int> status = {}) const {
        return evaluated(outputs, first, second, values, status, [&] {
            return ostrel_fluid_evaluate(handle(), inputs.c_str(), outputs.c_str(), first.size(), first.data(),
                                         second.data(), values.data(), data_of(status));
        });
    }
    /// The same with the same bits, by several threads.   workers [-] number of threads, the calling one included, 0
    /// for one on each core   The other arguments are those of try_evaluate.
    result<void> try_evaluate_parallel(input_pair inputs, output_names outputs, std::span<const double> first,
                                       std::span<const double> second, std::span<double> values,
                                       std::span<int> status = {}, unsigned workers = 0) const {
        return evaluated(outputs, first, second, values, status, [&] {
            return ostrel_fluid_evaluate_parallel(handle(), inputs.c_str(), outputs.c_str(), first.size(),
                                                  first.data(), second.data(), values.data(), data_of(status), workers);
        });
    }
    /// Both saturated phases.   input [-] "t" or "p"   outputs [-] names   at [SI] temperatures or pressures
    /// liquid, vapor [SI] receive the outputs; each may be empty   status [-] receives the statuses
    result<void> try_saturation(saturation_input input, output_names outputs, std::span<const double> at,
                                std::span<double> liquid, std::span<double> vapor, std::span<int> status = {}) const {
        if (auto wrong = wrong_size("liquid", liquid.size(), at.size(), outputs.size(), true))
            return *std::move(wrong);
        if (auto wrong = wrong_size("vapor", vapor.size(), at.size(), outputs.size(), true))
            return *std::move(wrong);
        if (auto wrong = wrong_size("status", status.size(), at.size(), 1, true))
            return *std::move(wrong);
        return done(ostrel_fluid_saturation(handle(), input.c_str(), outputs.c_str(), at.size(), at.data(),
                                            data_of(liquid), data_of(vapor), data_of(status)));
    }
    /// Finds states.   inputs [-] the pair   first, second [SI] inputs of each state   states [-] receives the states,
    /// each with its status
    result<void> try_solve(input_pair inputs, std::span<const double> first, std::span<const double> second,
                           std::span<state> states) const {
        if (auto wrong = wrong_size("second", second.size(), first.size(), 1))
            return *std::move(wrong);
        if (auto wrong = wrong_size("states", states.size(), first.size(), 1))
            return *std::move(wrong);
        return done(ostrel_fluid_solve(handle(), inputs.c_str(), first.size(), first.data(), second.data(),
                                       states.data()));
    }
    /// Outputs of states that were solved.   outputs [-] names   of [-] the states   values [SI] receives the outputs
    /// status [-] receives the statuses
    result<void> try_outputs(output_names outputs, std::span<const state> of, std::span<double> values,
                             std::span<int> status = {}) const {
        if (auto wrong = wrong_size("values", values.size(), of.size(), outputs.size()))
            return *std::move(wrong);
        if (auto wrong = wrong_size("status", status.size(), of.size(), 1, true))
            return *std::move(wrong);
        return done(ostrel_fluid_outputs(handle(), outputs.c_str(), of.size(), of.data(), values.data(),
                                         data_of(status)));
    }

    // ---- Many states, as a table. The fault is that of a call that was refused; the table has the statuses of the
    // states and the fault of the first one that failed.

    /// inputs [-] the pair   outputs [-] names   first, second [SI] inputs of each state
    result<table> try_evaluate(input_pair inputs, output_names outputs, std::span<const double> first,
                               std::span<const double> second) const {
        table made(first.size(), outputs.size());
        auto call = try_evaluate(inputs, outputs, first, second, made.values_, made.status_);
        return finished(std::move(made), call, made.first_fault_);
    }
    /// The same with the same bits, by several threads.   workers [-] as above   The others are those of try_evaluate.
    result<table> try_evaluate_parallel(input_pair inputs, output_names outputs, std::span<const double> first,
                                        std::span<const double> second, unsigned workers = 0) const {
        table made(first.size(), outputs.size());
        auto call = try_evaluate_parallel(inputs, outputs, first, second, made.values_, made.status_, workers);
        return finished(std::move(made), call, made.first_fault_);
    }
    /// input [-] "t" or "p"   outputs [-] names   at [SI] temperatures or pressures
    result<saturated> try_saturation(saturation_input input, output_names outputs, std::span<const double> at) const {
        saturated made{table(at.size(), outputs.size()), table(at.size(), outputs.size())};
        auto call =
            try_saturation(input, outputs, at, made.liquid.values_, made.vapor.values_, made.liquid.status_);
        made.vapor.status_ = made.liquid.status_;
        if (!call)
            made.vapor.first_fault_ = call.error();
        return finished(std::move(made), call, made.liquid.first_fault_);
    }

    // ---- What is known of the fluid.

    /// A constant [SI]; NaN where the fluid has none, and for an unchecked name that does not exist.   name [-]
    double constant(constant_name name) const noexcept { return ostrel_fluid_constant(handle(), name.c_str()); }
    /// A text; empty where nothing is known, and without data for an unchecked name that does not exist. It lives as
    /// long as the handle, so it survives a move of the fluid. It need not be UTF-8.   name [-]
    std::string_view text(text_name name) const noexcept {
        const char *const found = ostrel_fluid_text(handle(), name.c_str());
        return found != nullptr ? std::string_view(found) : std::string_view();
    }

#if defined(__cpp_exceptions)
    // ---- The same calls with exceptions: the value, or a failure is thrown with the status and the message. Arguments
    // are those of the calls above. Calls into arrays throw for the first state that failed after they have written the
    // arrays; calls that return tables throw only if they are refused.

    static fluid open(const std::string &name, open_options with = "") { return try_open(name, with).value(); }
    static fluid open_file(const std::string &path, open_options with = "") {
        return try_open_file(path, with).value();
    }
    static fluid open_text(const std::string &text, open_options with = "") {
        return try_open_text(text, with).value();
    }
    static fluid open_database(const std::string &location, const std::string &name, open_options with = "") {
        return try_open_database(location, name, with).value();
    }
    double value(input_pair inputs, double first, double second, output_name output) const {
        return try_value(inputs, first, second, output).value();
    }
    template <literal outputs>
        requires(names::are_outputs(outputs.view()))
    auto values(input_pair inputs, double first, double second) const {
        return try_values<outputs>(inputs, first, second).value();
    }
    state solve(input_pair inputs, double first, double second) const {
        return try_solve(inputs, first, second).value();
    }
    double value(const state &of, output_name output) const { return try_value(of, output).value(); }
    void evaluate(input_pair inputs, output_names outputs, std::span<const double> first,
                  std::span<const double> second, std::span<double> values, std::span<int> status = {}) const {
        try_evaluate(inputs, outputs, first, second, values, status).value();
    }
    void evaluate_parallel(input_pair inputs, output_names outputs, std::span<const double> first,
                           std::span<const double> second, std::span<double> values, std::span<int> status = {},
                           unsigned workers = 0) const {
        try_evaluate_parallel(inputs, outputs, first, second, values, status, workers).value();
    }
    void saturation(saturation_input input, output_names outputs, std::span<const double> at,
                    std::span<double> liquid, std::span<double> vapor, std::span<int> status = {}) const {
        try_saturation(input, outputs, at, liquid, vapor, status).value();
    }
    void solve(input_pair inputs, std::span<const double> first, std::span<const double> second,
               std::span<state> states) const {
        try_solve(inputs, first, second, states).value();
    }
    void outputs(output_names outputs, std::span<const state> of, std::span<double> values,
                 std::span<int> status = {}) const {
        try_outputs(outputs, of, values, status).value();
    }
    table evaluate(input_pair inputs, output_names outputs, std::span<const double> first,
                   std::span<const double> second) const {
        return try_evaluate(inputs, outputs, first, second).value();
    }
    table evaluate_parallel(input_pair inputs, output_names outputs, std::span<const double> first,
                            std::span<const double> second, unsigned workers = 0) const {
        return try_evaluate_parallel(inputs, outputs, first, second, workers).value();
    }
    saturated saturation(saturation_input input, output_names outputs, std::span<const double> at) const {
        return try_saturation(input, outputs, at).value();
    }
#endif

private:
    struct closing {
        void operator()(ostrel_fluid *handle) const noexcept { ostrel_fluid_close(handle); }
    };

    template <class Open>
    static result<fluid> opened(Open open) {
        ostrel_fluid *handle = nullptr;
        const int status = open(&handle);
        fluid made(handle); // closes the handle if the message has no room in memory
        return answer(status, std::move(made));
    }
    template <class T>
    static result<T> answer(int status, T value) {
        if (status != OSTREL_OK)
            return fault{status, ostrel_last_message()};
        return value;
    }
    static result<void> done(int status) {
        if (status != OSTREL_OK)
            return fault{status, ostrel_last_message()};
        return {};
    }
    /// The fault of an array of another size than count * per_state; an array that may be empty may have no elements.
    static std::optional<fault> wrong_size(const char *name, std::size_t size, std::size_t count, std::size_t per_state,
                                           bool may_be_empty = false) {
        if ((size % per_state == 0 && size / per_state == count) || (may_be_empty && size == 0))
            return std::nullopt;
        return fault{OSTREL_BAD_ARGUMENT, std::string(name) + ": an array of " + std::to_string(size) +
                                              " elements; " + std::to_string(count) + " states need " +
                                              std::to_string(per_state) + " each"};
    }
    template <class T>
    static T *data_of(std::span<T> array) noexcept {
        return array.empty() ? nullptr : array.data();
    }
    template <class Call>
    static result<void> evaluated(output_names outputs, std::span<const double> first, std::span<const double> second,
                                  std::span<double> values, std::span<int> status, Call call) {
        if (auto wrong = wrong_size("second", second.size(), first.size(), 1))
            return *std::move(wrong);
        if (auto wrong = wrong_size("values", values.size(), first.size(), outputs.size()))
            return *std::move(wrong);
        if (auto wrong = wrong_size("status", status.size(), first.size(), 1, true))
            return *std::move(wrong);
        return done(call());
    }
    /// What was made of many states, unless the call was refused.
    template <class Made>
    static result<Made> finished(Made &&made, const result<void> &call, std::optional<fault> &first_fault) {
        if (call.status() >= OSTREL_BAD_ARGUMENT)
            return call.error();
        if (!call)
            first_fault = call.error();
        return std::move(made);
    }

    std::unique_ptr<ostrel_fluid, closing> handle_;
};

// ---- What there is -------------------------------------------------------------------------------------------------

/// The lists of ostrel_list.
enum class kind { inputs, outputs, derivatives, constants, texts, models, options, statuses };

/// A row of a list. The texts live as long as the library.
struct row {
    std::string_view name;
    std::string_view unit; ///< SI unit; for options their values, for statuses their numbers; see ostrel_list
    std::string_view description;
};

/// The rows of a list, for a loop: for (const ostrel::row &one : ostrel::list(ostrel::kind::outputs)).
class list {
public:
    /// which [-] one of the lists
    explicit constexpr list(kind which) noexcept : which_(which) {}

    class iterator {
    public:
        using value_type = row;
        using difference_type = std::ptrdiff_t;

        iterator() = default;
        row operator*() const noexcept { return {part("name"), part("unit"), part("description")}; }
        iterator &operator++() noexcept {
            ++index_;
            return *this;
        }
        iterator operator++(int) noexcept { return {word_, index_++}; }
        friend bool operator==(const iterator &a, const iterator &b) noexcept { return a.index_ == b.index_; }
        friend bool operator==(const iterator &a, std::default_sentinel_t) noexcept {
            return ostrel_list(a.word_, a.index_, "name") == nullptr;
        }

    private:
        friend class list;
        iterator(const char *word, std::size_t index) noexcept : word_(word), index_(index) {}
        const char *part(const char *what) const noexcept { return ostrel_list(word_, index_, what); }

        const char *word_ = nullptr;
        std::size_t index_ = 0;
    };

    iterator begin() const noexcept {
        constexpr const char *words[] = {"inputs", "outputs", "derivatives", "constants",
                                         "texts",  "models",  "options",     "statuses"};
        return {words[static_cast<std::size_t>(which_)], 0};
    }
    std::default_sentinel_t end() const noexcept { return {}; }
    /// [-] number of rows
    std::size_t size() const noexcept {
        std::size_t count = 0;
        for (auto at = begin(); at != end(); ++at)
            ++count;
        return count;
    }

private:
    kind which_;
};

/// A fluid of the fluid folder.
struct found_fluid {
    std::string file; ///< [-] name of its file, which opens it
    std::string name; ///< [-] name of the fluid
};

/// The fluids that words find, the best first; none is no fault.   words [-] as a person writes them, "" for all
/// Status: OSTREL_CANNOT_OPEN if there is no such folder.
inline result<std::vector<found_fluid>> try_find(const std::string &words) {
    struct collection {
        std::vector<found_fluid> fluids{};
#if defined(__cpp_exceptions)
        std::exception_ptr thrown{};
#endif
    } found;
    const int status = ostrel_fluid_find(
        words.c_str(),
        [](void *user, const char *file, const char *name) {
            auto &to = *static_cast<collection *>(user);
#if defined(__cpp_exceptions)
            try {
                if (!to.thrown)
                    to.fluids.push_back({file, name});
            } catch (...) {
                to.thrown = std::current_exception();
            }
#else
            to.fluids.push_back({file, name});
#endif
        },
        &found);
#if defined(__cpp_exceptions)
    if (found.thrown)
        std::rethrow_exception(found.thrown);
#endif
    if (status != OSTREL_OK)
        return fault{status, ostrel_last_message()};
    return std::move(found.fluids);
}
#if defined(__cpp_exceptions)
inline std::vector<found_fluid> find(const std::string &words) {
    return try_find(words).value();
}
#endif

} // namespace ostrel

#endif
