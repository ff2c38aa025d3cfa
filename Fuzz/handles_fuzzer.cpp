// SPDX-License-Identifier: MIT
// Calls of the handles. Each line of the input up to "--" is a call; its arguments stand behind "|", and a missing text
// is a null pointer. The text of a parameter file follows.
//
//   text|options     name|name|options     file|path|options     db|location|name|options     find|words
//   states|inputs|outputs|first|second|first|second...        parallel|inputs|outputs|first|second...
//   around|t|v|outputs                                        saturation|input|outputs|value|value...
//   constant|name    known|name            list|kind|index|what  status|number
//
// The first four open a fluid, which is closed when another one is opened. "around" finds the state at t and v again
// from every pair of its quantities. A number is one that strtod reads, and a constant of the fluid may stand behind it
// as a factor: "1.1t_crit"; "#7ff0000000000001" is the number with these bits.
#include "Fuzz/fuzz_support.h"
#include "Tests/Support/handles.h"

#include <cfenv>
#include <cstring>

namespace {

using fuzz::require;
using support::bits;
using support::bits_of_nan;

constexpr std::size_t most_calls = 12;
constexpr std::size_t most_states = 8;

/// What an array holds before a call. No call forms this NaN.
constexpr std::uint64_t bits_before = 0x7ff4deadbeef1234;
constexpr int status_before = -77;

bool is_state_status(int status) {
    return status >= OSTREL_OK && status < OSTREL_NOT_CONVERGED;
}
bool is_call_status(int status) {
    return status >= OSTREL_BAD_ARGUMENT && status <= OSTREL_OUT_OF_MEMORY;
}

/// Whether a message is printable UTF-8 that fits the buffer.
bool is_message(std::string_view text) {
    if (text.empty() || text.size() > 1023)
        return false;
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text.front());
        const std::size_t length = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
        if (length == 0 || length > text.size() || first > 0xF4 || first < ' ' || first == 0x7F)
            return false;
        for (std::size_t i = 1; i < length; ++i)
            if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U)
                return false;
        text.remove_prefix(length);
    }
    return true;
}

/// Makes a call that returns a status and checks the message behind it.
template <class Call>
int told(Call call) {
    const std::string before = ostrel_last_message();
    const int status = call();
    require(is_state_status(status) || is_call_status(status), "a status is one of the table", std::to_string(status));
    if (status == OSTREL_OK)
        require(ostrel_last_message() == before, "a success leaves the message", ostrel_last_message());
    else
        require(is_message(ostrel_last_message()), "a failure has a message", ostrel_last_message());
    return status;
}

/// An array with a guard behind it.
class numbers {
public:
    explicit numbers(std::size_t size) : all_(size + 1, std::bit_cast<double>(bits_before)), size_(size) {}
    double *data() { return all_.data(); }
    double operator[](std::size_t i) const { return all_[i]; }
    std::size_t size() const { return size_; }
    bool untouched() const {
        return std::all_of(all_.begin(), all_.end(), [](double x) { return bits(x) == bits_before; });
    }
    /// Every number is written, nothing behind them, and a NaN is the one that is promised.
    void expect_written() const {
        for (std::size_t i = 0; i < size_; ++i) {
            require(bits(all_[i]) != bits_before, "every value is written");
            require(all_[i] == all_[i] || bits(all_[i]) == bits_of_nan, "a NaN has the promised bits");
        }
        require(bits(all_[size_]) == bits_before, "nothing is written behind the values");
    }
    bool operator==(const numbers &other) const {
        return size_ == other.size_ && std::memcmp(all_.data(), other.all_.data(), size_ * sizeof(double)) == 0;
    }

private:
    std::vector<double> all_;
    std::size_t size_;
};

/// What a call on many states answered.
struct answer {
    int status;
    numbers values;
    std::vector<int> of_states;

    answer(std::size_t count, std::size_t width)
        : status(OSTREL_OK), values(count * width), of_states(count + 1, status_before) {}

    std::size_t count() const { return of_states.size() - 1; }
    std::size_t width() const { return count() > 0 ? values.size() / count() : 0; }
    double value(std::size_t state, std::size_t output) const { return values[state * width() + output]; }
    bool untouched() const {
        return values.untouched() &&
               std::all_of(of_states.begin(), of_states.end(), [](int one) { return one == status_before; });
    }
    void check() const {
        if (status >= OSTREL_BAD_ARGUMENT)
            return require(untouched(), "a call that is refused writes nothing");
        values.expect_written();
        require(of_states.back() == status_before, "nothing is written behind the statuses");
        int first = OSTREL_OK;
        for (std::size_t i = 0; i < count(); ++i) {
            const int one = of_states[i];
            require(is_state_status(one), "the status of a state is one of the table", std::to_string(one));
            first = first == OSTREL_OK ? one : first;
            bool any_nan = false;
            bool all_nan = true;
            for (std::size_t k = 0; k < width(); ++k) {
                any_nan = any_nan || std::isnan(value(i, k));
                all_nan = all_nan && std::isnan(value(i, k));
            }
            require(one == OSTREL_OK || one == OSTREL_TWO_PHASE || all_nan, "a failed state's values are NaN");
            require(one != OSTREL_TWO_PHASE || any_nan, "an output without a meaning between the phases is NaN");
        }
        require(status == first, "a call returns the first status that is not 0", std::to_string(status));
    }
    bool operator==(const answer &other) const {
        return status == other.status && values == other.values && of_states == other.of_states;
    }
};

class opened_fluid {
public:
    opened_fluid() = default;
    opened_fluid(const opened_fluid &) = delete;
    opened_fluid &operator=(const opened_fluid &) = delete;
    ~opened_fluid() { ostrel_fluid_close(fluid_); }

    template <class Open>
    void open(Open call) {
        ostrel_fluid_close(fluid_);
        fluid_ = std::bit_cast<ostrel_fluid *>(~std::uintptr_t{0});
        const int status = told([&] { return call(&fluid_); });
        require(status == OSTREL_OK || is_call_status(status), "an opening succeeds or is refused",
                std::to_string(status));
        require((fluid_ != nullptr) == (status == OSTREL_OK), "a failed opening gives no fluid");
    }
    const ostrel_fluid *get() const { return fluid_; }

private:
    ostrel_fluid *fluid_ = nullptr;
};

/// A text with a NUL at its end, or a null pointer.
class c_text {
public:
    explicit c_text(fuzz::text_argument text) : text_(text) {}
    operator const char *() const { return text_ ? text_->c_str() : nullptr; }

private:
    std::optional<std::string> text_;
};

struct state_call {
    const ostrel_fluid *fluid;
    std::string inputs;
    std::string outputs;
    std::vector<double> first;
    std::vector<double> second;
    std::size_t width = 1 + static_cast<std::size_t>(std::count(outputs.begin(), outputs.end(), ','));

    std::size_t count() const { return first.size(); }

    template <class Entry, class... More>
    answer ask(Entry entry, const std::string &pair, const std::vector<double> &one, const std::vector<double> &other,
               More... more) const {
        answer result(one.size(), width);
        result.status = told([&] {
            return entry(fluid, pair.c_str(), outputs.c_str(), one.size(), one.data(), other.data(),
                         result.values.data(), result.of_states.data(), more...);
        });
        result.check();
        return result;
    }
    answer evaluate() const { return ask(ostrel_fluid_evaluate, inputs, first, second); }

    void check_all() const {
        const answer together = evaluate();
        check_without_statuses(together);
        check_values(together);
        check_halves(together);
        if (together.status >= OSTREL_BAD_ARGUMENT)
            return;
        check_rounding(together);
        check_reversed(together);
        check_inputs_come_back();
        check_finite();
    }
    void check_without_statuses(const answer &together) const {
        numbers values(count() * width);
        const int status = told([&] {
            return ostrel_fluid_evaluate(fluid, inputs.c_str(), outputs.c_str(), count(), first.data(), second.data(),
                                         values.data(), nullptr);
        });
        require(status == together.status && values == together.values, "statuses may be left out");
    }
    void check_values(const answer &together) const {
        std::size_t k = 0;
        std::string_view rest = outputs;
        for (bool more = true; more; ++k) {
            more = rest.find(',') != std::string_view::npos;
            const std::string name(fuzz::take(rest, ','));
            for (std::size_t i = 0; i < count(); ++i) {
                int status = status_before;
                const double value =
                    ostrel_fluid_value(fluid, inputs.c_str(), first[i], second[i], name.c_str(), &status);
                if (status != OSTREL_OK)
                    require(is_message(ostrel_last_message()), "a failure has a message", ostrel_last_message());
                require(value == value || bits(value) == bits_of_nan, "a NaN has the promised bits");
                require(bits(ostrel_fluid_value(fluid, inputs.c_str(), first[i], second[i], name.c_str(), nullptr)) ==
                            bits(value),
                        "the status may be left out");
                if (together.status >= OSTREL_BAD_ARGUMENT) {
                    require(is_state_status(status) || is_call_status(status), "a status is one of the table");
                    continue;
                }
                require(bits(value) == bits(together.value(i, k)), "value gives the bits of evaluate", name);
                require(status == together.of_states[i] ||
                            (status == OSTREL_OK && together.of_states[i] == OSTREL_TWO_PHASE),
                        "value gives the status of evaluate", name);
            }
        }
    }
    void check_halves(const answer &together) const {
        ostrel_state empty;
        std::memset(&empty, 0x5A, sizeof empty);
        std::vector<ostrel_state> states(count() + 1, empty);
        const int solved = told([&] {
            return ostrel_fluid_solve(fluid, inputs.c_str(), count(), first.data(), second.data(), states.data());
        });
        if (solved >= OSTREL_BAD_ARGUMENT) {
            for (const ostrel_state &one : states)
                require(std::memcmp(&one, &empty, sizeof one) == 0, "a call that is refused writes nothing");
            return require(together.status >= OSTREL_BAD_ARGUMENT, "evaluate refuses what solve refuses");
        }
        require(std::memcmp(&states.back(), &empty, sizeof empty) == 0, "nothing is written behind the states");
        states.pop_back();
        for (std::size_t i = 0; i < count(); ++i) {
            const ostrel_state &one = states[i];
            require(bits(one.first) == bits(first[i]) && bits(one.second) == bits(second[i]), "a state has its inputs");
            require(one.reserved == 0, "the reserved number is 0");
            require(is_state_status(one.status) && one.status != OSTREL_TWO_PHASE, "a state has one of its statuses");
            for (const double number : {one.t, one.p, one.v, one.q}) {
                require(number == number || bits(number) == bits_of_nan, "a NaN has the promised bits");
                require(one.status == OSTREL_OK || number != number, "a failed state's numbers are NaN");
            }
            require(one.status != OSTREL_OK || (one.t > 0 && one.v > 0 && one.phase >= 0 && one.phase <= 4),
                    "a state is somewhere", inputs);
        }
        answer again(count(), width);
        again.status = told([&] {
            return ostrel_fluid_outputs(fluid, outputs.c_str(), count(), states.data(), again.values.data(),
                                        again.of_states.data());
        });
        again.check();
        require(again == together || (together.status >= OSTREL_BAD_ARGUMENT && again.status == together.status),
                "solve and outputs give the bits of evaluate", inputs);
    }
    void check_rounding(const answer &together) const {
        static constexpr int modes[] = {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};
        const int mode = modes[(inputs.size() + outputs.size()) % 3];
        std::fesetround(mode);
        const answer again = evaluate();
        const int left = std::fegetround();
        std::fesetround(FE_TONEAREST);
        require(left == mode, "the rounding mode is kept");
        require(again == together, "the rounding mode does not count", inputs);
    }
    /// With the letters in the other order, and the states too.
    void check_reversed(const answer &together) const {
        const std::size_t begin = inputs.find_first_not_of(" \t");
        std::string swapped = inputs;
        std::swap(swapped[begin], swapped[begin + 1]);
        const answer again =
            ask(ostrel_fluid_evaluate, swapped, {second.rbegin(), second.rend()}, {first.rbegin(), first.rend()});
        for (std::size_t i = 0; i < count(); ++i) {
            const std::size_t other = count() - 1 - i;
            require(again.of_states[other] == together.of_states[i], "the order of the letters does not count",
                    swapped);
            for (std::size_t k = 0; k < width; ++k)
                require(bits(again.value(other, k)) == bits(together.value(i, k)),
                        "the order of the letters does not count", swapped);
        }
    }
    void check_inputs_come_back() const {
        const std::size_t begin = inputs.find_first_not_of(" \t");
        const std::string both = {inputs[begin], ',', inputs[begin + 1]};
        const answer again = state_call{fluid, inputs, both, first, second}.evaluate();
        for (std::size_t i = 0; i < count(); ++i)
            require(again.of_states[i] != OSTREL_OK ||
                        (bits(again.value(i, 0)) == bits(first[i]) && bits(again.value(i, 1)) == bits(second[i])),
                    "an input comes back with its own bits", inputs);
    }
    void check_finite() const {
        const answer known = state_call{fluid, inputs, "t,p,v", first, second}.evaluate();
        for (std::size_t i = 0; i < known.values.size(); ++i)
            require(known.of_states[i / 3] != OSTREL_OK || std::isfinite(known.values[i]), "t, p and v are finite",
                    inputs);
    }
    void check_parallel() const {
        // Enough states for several threads.
        state_call many = *this;
        for (std::size_t i = 0; i < 80 && count() > 0; ++i) {
            many.first.push_back(first[i % count()]);
            many.second.push_back(second[i % count()]);
        }
        const answer one = many.evaluate();
        const std::string message = ostrel_last_message();
        require(many.ask(ostrel_fluid_evaluate_parallel, inputs, many.first, many.second, 3U) == one,
                "workers give the bits of evaluate");
        require(one.status == OSTREL_OK || message == ostrel_last_message(), "workers give the message of evaluate",
                ostrel_last_message());
    }
};

void check_saturation(const state_call &call) {
    const auto &fluid = call.fluid;
    const std::size_t count = call.count();
    const auto ask = [&](const std::string &outputs, answer &liquid, numbers &vapor) {
        liquid.status = told([&] {
            return ostrel_fluid_saturation(fluid, call.inputs.c_str(), outputs.c_str(), count, call.first.data(),
                                           liquid.values.data(), vapor.data(), liquid.of_states.data());
        });
        liquid.check();
        if (liquid.status >= OSTREL_BAD_ARGUMENT)
            return require(vapor.untouched(), "a call that is refused writes nothing");
        vapor.expect_written();
    };
    answer liquid(count, call.width);
    numbers vapor(count * call.width);
    ask(call.outputs, liquid, vapor);
    if (liquid.status >= OSTREL_BAD_ARGUMENT)
        return;
    // One phase alone has the same bits.
    numbers alone(count * call.width);
    const int status = told([&] {
        return ostrel_fluid_saturation(fluid, call.inputs.c_str(), call.outputs.c_str(), count, call.first.data(),
                                       nullptr, alone.data(), nullptr);
    });
    require(status == liquid.status && alone == vapor, "a phase alone has the same bits");
    answer places(count, 3);
    numbers vapor_places(3 * count);
    ask("p,t,q", places, vapor_places);
    std::string pair = call.inputs;
    pair.erase(std::remove_if(pair.begin(), pair.end(), [](char c) { return c == ' ' || c == '\t'; }), pair.end());
    const auto quality = [&](double q) {
        return state_call{fluid, pair + "q", call.outputs, call.first, std::vector<double>(count, q)}.evaluate();
    };
    const answer of_liquid = quality(0.0);
    const answer of_vapor = quality(1.0);
    for (std::size_t i = 0; i < count; ++i) {
        require((liquid.of_states[i] == OSTREL_OK) ==
                    (of_liquid.of_states[i] == OSTREL_OK && of_vapor.of_states[i] == OSTREL_OK),
                "saturation succeeds where both qualities do");
        if (liquid.of_states[i] != OSTREL_OK)
            continue;
        require(bits(places.value(i, 0)) == bits(vapor_places[3 * i]), "both phases have the same pressure");
        require(bits(places.value(i, 1)) == bits(vapor_places[3 * i + 1]), "both phases have the same temperature");
        require(places.value(i, 2) == 0 && vapor_places[3 * i + 2] == 1, "the phases have their qualities");
        for (std::size_t k = 0; k < call.width; ++k) {
            require(bits(liquid.value(i, k)) == bits(of_liquid.value(i, k)), "the liquid is that of quality 0");
            require(bits(vapor[i * call.width + k]) == bits(of_vapor.value(i, k)), "the vapor is that of quality 1");
        }
    }
}

/// Finds the state at T and v again from every pair of its quantities.
void check_around(const ostrel_fluid *fluid, double t, double v, const std::string &outputs) {
    static constexpr std::string_view letters = "tpvdhsuq";
    const answer known = state_call{fluid, "tv", "t,p,v,d,h,s,u,q", {t}, {v}}.evaluate();
    if (known.status != OSTREL_OK)
        return;
    for (std::size_t row = 0;; ++row) {
        const char *const pair = ostrel_list("inputs", row, "name");
        if (pair == nullptr)
            return;
        const double one = known.value(0, letters.find(pair[0]));
        const double other = known.value(0, letters.find(pair[1]));
        state_call{fluid, pair, outputs, {one}, {other}}.check_all();
    }
}

/// Opens the fluid once more from what it says of itself, which must give the same bits.
void check_reopened(const ostrel_fluid *fluid, const answer &known, const state_call &call) {
    opened_fluid again;
    again.open([&](ostrel_fluid **result) {
        return ostrel_fluid_open_text(ostrel_fluid_text(fluid, "text"), ostrel_fluid_text(fluid, "options"), result);
    });
    require(again.get() != nullptr, "a fluid can be opened again from its texts", ostrel_last_message());
    state_call same = call;
    same.fluid = again.get();
    require(same.evaluate() == known, "a fluid opened again has the same bits");
}

class session {
public:
    explicit session(std::string_view parameters) : parameters_(parameters) {}

    void execute(std::string_view text) {
        const fuzz::command line(text);
        const auto name = line.name();
        const c_text a(line.text(0));
        const c_text b(line.text(1));
        const c_text c(line.text(2));
        if (name == "text")
            open([&](ostrel_fluid **fluid) { return ostrel_fluid_open_text(parameters_.c_str(), a, fluid); });
        else if (name == "name")
            open([&](ostrel_fluid **fluid) { return ostrel_fluid_open(a, b, fluid); });
        else if (name == "file")
            open([&](ostrel_fluid **fluid) { return ostrel_fluid_open_file(a, b, fluid); });
        else if (name == "db")
            open([&](ostrel_fluid **fluid) { return ostrel_fluid_open_database(a, b, c, fluid); });
        else if (name == "find")
            find(a);
        else if (name == "states" || name == "parallel" || name == "saturation")
            states(line, name);
        else if (name == "around")
            check_around(fluid_.get(), number(line, 0), number(line, 1), outputs_of(line, 2));
        else if (name == "constant")
            check_constant(a);
        else if (name == "known")
            check_text(a);
        else if (name == "list")
            check_list(a, line.count(1, 0, 100000), c);
        else if (name == "status")
            require(is_message(ostrel_status_text(static_cast<int>(std::clamp(line.number_or(0, 0), -2e9, 2e9)))),
                    "every number has a text");
    }

private:
    template <class Open>
    void open(Open call) {
        fluid_.open(call);
        if (fluid_.get() == nullptr)
            return;
        for (std::size_t i = 0; const char *const name = ostrel_list("constants", i, "name"); ++i)
            check_constant(name);
        for (std::size_t i = 0; const char *const name = ostrel_list("texts", i, "name"); ++i)
            require(ostrel_fluid_text(fluid_.get(), name) != nullptr, "a listed text is served", name);
    }
    static void find(const char *words) {
        std::size_t count = 0;
        const auto take = [](void *user, const char *file, const char *name) {
            require(file[0] != '\0' && name[0] != '\0', "a fluid that is found has a file and a name");
            ++*static_cast<std::size_t *>(user);
        };
        const int status = told([&] { return ostrel_fluid_find(words, take, &count); });
        require(status == OSTREL_OK || count == 0, "a call that is refused finds nothing");
        require(words == nullptr || words[0] != '\0' || count > 0, "no words find all fluids");
    }
    void check_constant(const char *name) const {
        const double value = ostrel_fluid_constant(fluid_.get(), name);
        require(value == value || bits(value) == bits_of_nan, "a NaN has the promised bits",
                name != nullptr ? name : "");
    }
    void check_text(const char *name) const {
        const char *const text = ostrel_fluid_text(fluid_.get(), name);
        require(text == ostrel_fluid_text(fluid_.get(), name), "a text stays where it is");
        require(text != nullptr || is_message(ostrel_last_message()), "a failure has a message");
    }
    static void check_list(const char *kind, std::size_t index, const char *what) {
        const char *const text = ostrel_list(kind, index, what);
        require(text == nullptr || std::strlen(text) < 1000, "a cell of a list is a text");
    }

    double number(const fuzz::command &line, std::size_t i) const {
        const std::string text(line.text(i).value_or("1"));
        if (text.starts_with('#'))
            return std::bit_cast<double>(static_cast<std::uint64_t>(std::strtoull(text.c_str() + 1, nullptr, 16)));
        char *end = nullptr;
        const double value = std::strtod(text.c_str(), &end);
        if (*end == '\0' || fluid_.get() == nullptr)
            return value;
        const double factor = ostrel_fluid_constant(fluid_.get(), end);
        return std::isnan(factor) ? value : end == text.c_str() ? factor : value * factor;
    }
    /// A text as the library sees it, which ends at a NUL.
    static std::string text_of(const fuzz::command &line, std::size_t i, std::string_view missing) {
        return std::string(line.text(i).value_or(missing)).c_str();
    }
    static std::string outputs_of(const fuzz::command &line, std::size_t i) {
        return text_of(line, i, "p,t,v,d,h,s,u,q");
    }

    void states(const fuzz::command &line, std::string_view name) const {
        const bool saturation = name == "saturation";
        state_call call{fluid_.get(), text_of(line, 0, "tv"), outputs_of(line, 1), {}, {}};
        for (std::size_t i = 2; i < 2 + 2 * most_states && line.text(i); i += saturation ? 1 : 2) {
            call.first.push_back(number(line, i));
            call.second.push_back(number(line, i + 1));
        }
        if (call.outputs.size() > 2000)
            return;
        if (!line.text(0) || !line.text(1))
            return refused(line, call);
        if (saturation)
            return check_saturation(call);
        if (name == "parallel")
            return call.check_parallel();
        call.check_all();
        const answer known = call.evaluate();
        if (known.status < OSTREL_BAD_ARGUMENT)
            check_reopened(fluid_.get(), known, call);
    }
    /// A null pointer in place of a text.
    static void refused(const fuzz::command &line, const state_call &call) {
        const c_text inputs(line.text(0));
        const c_text outputs(line.text(1));
        answer result(call.count(), call.width);
        result.status = told([&] {
            return ostrel_fluid_evaluate(call.fluid, inputs, outputs, call.count(), call.first.data(),
                                         call.second.data(), result.values.data(), result.of_states.data());
        });
        require(result.status == OSTREL_BAD_ARGUMENT, "a null pointer is refused");
        result.check();
    }

    std::string parameters_;
    opened_fluid fluid_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view input = fuzz::as_text(data, size);
    const std::string_view mark = "--\n";
    const std::size_t end = input.starts_with(mark) ? 0 : input.find("\n--\n");
    std::string_view script = input.substr(0, end);
    const std::string_view parameters =
        end == std::string_view::npos ? "" : input.substr(end + (end > 0 ? 1 : 0) + mark.size());
    setenv("OSTREL_FLUIDS", support::tests_folder, 1);
    session one(parameters);
    std::size_t done = 0;
    for (const std::string_view line : fuzz::split(script, '\n'))
        if (done++ < most_calls)
            one.execute(line);
    return 0;
}
