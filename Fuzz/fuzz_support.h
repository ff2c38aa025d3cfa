// SPDX-License-Identifier: MIT
// The fuzzers share this file: inputs as scripts that people can read, output fields with guards, and the promises that
// hold after every call of an entry point.
#pragma once

#include "Ostrel_Main.h"
#include "Tests/Support/frame.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>
#include <vector>

// The form of the symbols that Fortran hosts call.
extern "C" {
extern decltype(ostrel_prop) ostrel_prop_;
extern decltype(get_tv) get_tv_;
extern decltype(ostrel_info) ostrel_info_;
extern decltype(ostrel_fluids) ostrel_fluids_;
extern decltype(getversion) getversion_;
extern decltype(ostrel_sub) ostrel_sub_;
extern decltype(read_init_fluiddata) read_init_fluiddata_;
extern decltype(read_init_fluiddatafile) read_init_fluiddatafile_;
extern decltype(read_init_fluiddatadb) read_init_fluiddatadb_;
extern decltype(ostrel_use_host) ostrel_use_host_;
}

namespace fuzz {

/// Ends the run as a find unless the condition holds.
inline void require(bool holds, std::string_view what, std::string_view seen = "") {
    if (holds)
        return;
    std::fprintf(stderr, "Does not hold: %.*s\nSeen: \"%.*s\"\n", static_cast<int>(what.size()), what.data(),
                 static_cast<int>(seen.size()), seen.data());
    std::abort();
}

/// Removes the text up to the separator, or all of the text, from the front and returns it.
inline std::string_view take(std::string_view &text, char separator) {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

/// The parts of a text; there is no part behind a separator at its end.
inline std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (!text.empty())
        parts.push_back(take(text, separator));
    return parts;
}

/// One line of a script: a name and its arguments, each behind a "|". Any bytes are a script.
class command {
public:
    explicit command(std::string_view line) : name_(line.substr(0, line.find('|'))) {
        for (std::size_t bar = line.find('|'); bar != std::string_view::npos;) {
            line.remove_prefix(bar + 1);
            bar = line.find('|');
            arguments_.push_back(line.substr(0, bar));
        }
    }

    std::string_view name() const { return name_; }
    /// None where the line ends before it.
    std::optional<std::string_view> text(std::size_t i) const {
        return i < arguments_.size() ? std::optional(arguments_[i]) : std::nullopt;
    }
    /// The number that strtod reads; 0 if it reads nothing.
    std::optional<double> number(std::size_t i) const {
        if (i >= arguments_.size())
            return std::nullopt;
        return std::strtod(std::string(arguments_[i]).c_str(), nullptr);
    }
    double number_or(std::size_t i, double missing) const { return number(i).value_or(missing); }
    /// A length or count of at most `most`.
    std::size_t count(std::size_t i, std::size_t missing, std::size_t most) const {
        const double wanted = number_or(i, static_cast<double>(missing));
        return wanted >= 0 ? static_cast<std::size_t>(std::min(wanted, static_cast<double>(most))) : 0;
    }

private:
    std::string_view name_;
    std::vector<std::string_view> arguments_;
};

/// A file in memory that takes the library's standard output, to see what is printed.
class console {
public:
    /// What has been written since the last call.
    static std::size_t taken() {
        static const console only;
        std::fflush(stdout);
        const off_t size = lseek(STDOUT_FILENO, 0, SEEK_END);
        if (size <= 0)
            return 0;
        lseek(STDOUT_FILENO, 0, SEEK_SET);
        require(ftruncate(STDOUT_FILENO, 0) == 0, "the console can be emptied");
        return static_cast<std::size_t>(size);
    }

private:
    console() {
        std::fflush(stdout);
        dup2(memfd_create("console", 0), STDOUT_FILENO);
    }
};

inline std::string_view as_text(const std::uint8_t *data, std::size_t size) {
    return {reinterpret_cast<const char *>(data), size};
}

/// A byte that is in no text which the library forms from these inputs; none if the inputs have every byte.
inline std::optional<char> foreign_byte(std::string_view inputs) {
    for (int byte = 0x80; byte <= 0xff; ++byte) {
        const char candidate = static_cast<char>(byte);
        constexpr char degree_sign = '\xb0';
        if (candidate != degree_sign && inputs.find(candidate) == std::string_view::npos)
            return candidate;
    }
    return std::nullopt;
}

/// A field that the library fills, with bytes around it that the library must not change.
class output_field {
public:
    output_field(std::size_t length, std::optional<char> foreign)
        : length_(length), foreign_(foreign), bytes_(length + 2 * guard, foreign.value_or('#')) {}

    char *data() { return bytes_.data() + guard; }
    std::size_t size() const { return length_; }
    std::string_view text() const { return std::string_view(bytes_).substr(guard, length_); }

    void expect_intact() const {
        const char fill = foreign_.value_or('#');
        const std::string_view all = bytes_;
        require(all.substr(0, guard).find_first_not_of(fill) == std::string_view::npos, "nothing before a field");
        require(all.substr(guard + length_).find_first_not_of(fill) == std::string_view::npos,
                "nothing behind a field");
    }
    void expect_filled() const {
        expect_intact();
        require(!foreign_ || text().find(*foreign_) == std::string_view::npos, "every byte of a field is written",
                text());
    }
    /// Whether it holds this text, padded or truncated.
    bool holds(std::string_view wanted) const {
        const std::string_view kept = wanted.substr(0, length_);
        return text().starts_with(kept) && text().substr(kept.size()).find_first_not_of(' ') == std::string_view::npos;
    }

private:
    static constexpr std::size_t guard = 32;
    std::size_t length_;
    std::optional<char> foreign_;
    std::string bytes_;
};

/// Requires that the error text begins as one of those that Documentation/Entry-points.md lists.
inline void expect_documented_error_text() {
    static constexpr std::string_view beginnings[] = {
        " IOSTAT returned",
        " Error in Ostrel: error opening fluid",
        "Ostrel error: ",
        "The gas ",
        "Viscosity and thermal conductivity model do not match.",
        " ERROR:  v__P_T__",
        "ERROR: in ",
        "Saturation temperature higher than critical",
        "Saturation pressure higher than critical",
        "Temperature out of range: ",
        "Pressure out of range: ",
        "Newton method failed",
        "No solution has been found",
        " Matrix A is singular.",
    };
    const std::string text = support::shared_text();
    require(text == "No errors" || std::any_of(std::begin(beginnings), std::end(beginnings),
                                               [&](std::string_view beginning) { return text.starts_with(beginning); }),
            "an error text is of a documented kind", text);
}

inline bool same_bits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
}

/// Whether the first eight characters in lower case are a row of a table of described names.
template <class Rows, class Name>
bool is_known(std::string_view text, const Rows &rows, Name name_of) {
    return std::any_of(rows.begin(), rows.end(),
                       [&](const auto &row) { return ostrel::tolower_os(text).trimmed() == name_of(row); });
}

// The arguments of a call: none stands for a null pointer.
using text_argument = std::optional<std::string_view>;
using number_argument = std::optional<double>;

inline const char *pointer(const text_argument &text) {
    return text ? text->data() : nullptr;
}
inline std::size_t length(const text_argument &text) {
    return text ? text->size() : 7; // the length of a null pointer does not matter
}
inline const double *pointer(const number_argument &number) {
    return number ? &*number : nullptr;
}

struct property_request {
    text_argument fluid;
    text_argument pair;
    number_argument input1;
    number_argument input2;
    text_argument output;
};

/// Asks for a property and checks all that ostrel.h promises of the answer. Without a field a null pointer is passed.
inline double ask(const property_request &request, output_field *errmsg, bool underscore = false) {
    const auto &[fluid, pair, input1, input2, output] = request;
    const auto call = underscore ? ostrel_prop_ : ostrel_prop;
    const double value = call(pointer(fluid), pointer(pair), pointer(input1), pointer(input2), pointer(output),
                              errmsg != nullptr ? errmsg->data() : nullptr, length(fluid), length(pair), length(output),
                              errmsg != nullptr ? errmsg->size() : 7);
    expect_documented_error_text();
    const bool failed = same_bits(value, support::failed);
    const bool clear = ideal_specific_heat::errmsg.clear();
    const std::string_view wanted = output.value_or("");
    const bool known = is_known(wanted, ostrel::described_outputs(), [](const auto &row) { return row.text.name; });
    require(clear || failed, "the result is -8888.8 where a message stands", support::shared_text());
    require(known || failed, "an unknown output fails", wanted);
    if (errmsg == nullptr)
        return value;
    errmsg->expect_filled();
    if (!clear)
        require(errmsg->holds(ideal_specific_heat::errmsg.padded()), "errmsg is the shared text", errmsg->text());
    else
        require((known && errmsg->holds("No errors")) ||
                    (failed && (errmsg->holds(support::quality_text) ||
                                (!known && errmsg->holds(support::unknown_output(wanted))))),
                "errmsg agrees with the result", errmsg->text());
    return value;
}

/// Asks for a constant and checks the answer in the same way.
inline double ask_info(const text_argument &fluid, const text_argument &name, output_field *errmsg,
                       bool underscore = false) {
    const auto call = underscore ? ostrel_info_ : ostrel_info;
    const double value = call(pointer(fluid), pointer(name), errmsg != nullptr ? errmsg->data() : nullptr,
                              length(fluid), length(name), errmsg != nullptr ? errmsg->size() : 7);
    expect_documented_error_text();
    if (errmsg == nullptr)
        return value;
    errmsg->expect_filled();
    const std::string_view wanted = name.value_or("");
    const bool known = is_known(wanted, ostrel::described_informations(), [](const auto &row) { return row.name; });
    const bool not_loaded =
        value == 0 && !ideal_specific_heat::errmsg.clear() && errmsg->holds(ideal_specific_heat::errmsg.padded());
    const bool refused = !known && same_bits(value, support::failed) &&
                         errmsg->holds(support::unknown_constant(records::trimmed(wanted)));
    require(not_loaded || refused || (known && errmsg->holds("No errors")), "errmsg agrees with the result",
            errmsg->text());
    return value;
}

// Building the saturation table takes much longer than everything else. Most inputs therefore get a made-up table; only
// one input in 64, chosen by its bytes, builds its own.

/// Whether this input may build tables.
inline bool builds_table(std::string_view input) {
    std::uint32_t hash = 2166136261; // FNV-1a
    for (const char c : input)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619;
    return hash % 64 == 0;
}

/// Fills the table with a curve that is roughly the saturation curve of any fluid.
inline void make_up_saturation_table(double Zc) {
    using namespace thermodynamics;
    for (auto *column : {&TTs, &PPs, &vvgs, &vvls})
        column->clear();
    for (double Tr = 1.0; Tr > 0.5; Tr -= 0.05) {
        const double P = std::exp(6.0 * (1.0 - 1.0 / Tr));
        TTs.push_back(Tr / Zc);
        PPs.push_back(P);
        vvgs.push_back(1.0 + 0.7 * (1.0 / P - 1.0) / Zc);
        vvls.push_back(0.4 + 0.6 * std::sqrt(std::max(Tr - 0.5, 0.0)));
    }
}

/// The processor time that this process has used [s].
inline double processor_time() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

} // namespace fuzz
