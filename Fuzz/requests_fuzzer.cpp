// SPDX-License-Identifier: MIT
// Sequences of calls of the entry points in one process. Each line of the input is a call; its arguments stand behind
// "|". A missing argument is a null pointer. A name with an underscore behind it calls the other form of the symbol:
//
//   prop|fluid|pair|input1|input2|output|errmsg length      tv|pair|input1|input2
//   info|fluid|name|errmsg length                           fluids|length of a name
//   init|name   file|path   db|location|name                version   version|   sub
//   host   host|directory|names|lines
//
// The last call replaces the host, by the default one or by one that answers with the given texts; a ";" divides the
// entries of names and the lines. A missing text leaves that routine out. "throw!" throws. Lines that begin with "!"
// are not found; lines that begin with "?" are found but refused.
#include "Fuzz/fuzz_support.h"

#include <stdexcept>

namespace {

using fuzz::require;
using fuzz::text_argument;

/// The texts with which the host answers next.
struct host_answers {
    std::string directory;
    std::string names;
    std::string lines;
};
host_answers answers;

void throw_if_asked(std::string_view answer) {
    if (answer == "throw!")
        throw std::runtime_error("a host that throws");
}

/// Copies the text and does not pad the field.
void put(std::string_view text, char *field, std::size_t length) {
    std::copy_n(text.data(), std::min(text.size(), length), field);
}

void put_entries(std::string_view text, char *entries, std::size_t count, std::size_t length) {
    for (std::size_t i = 0; i < count && !text.empty(); ++i)
        put(fuzz::take(text, ';'), entries + i * length, length);
}

void fluidpath(char *path, const char *key, size_t path_len, size_t key_len) {
    require(path_len == 256 && std::string_view(key, key_len) == "Ostrel", "the host is asked for its directory");
    throw_if_asked(answers.directory);
    put(answers.directory, path, path_len);
}

void searchdirectory(const char *directory, const char *pattern, char *names, size_t directory_len, size_t pattern_len,
                     size_t name_len) {
    require(std::string_view(directory, directory_len).size() <= 256, "a directory fits its field");
    require(std::string_view(pattern, pattern_len) == std::string_view("*.osd", 6), "the pattern ends with a NUL");
    throw_if_asked(answers.names);
    put_entries(answers.names, names, 500, name_len);
}

int32_t getfluid(const char *location, const char *key, char *lines, int32_t *found, size_t location_len,
                 size_t key_len, size_t line_len) {
    require(line_len == 255, "a line has 255 characters");
    // Counting reads every byte that the lengths promise.
    static_cast<void>(std::count(location, location + location_len, ' ') + std::count(key, key + key_len, ' '));
    throw_if_asked(answers.lines);
    *found = answers.lines.starts_with('!') ? 0 : 1;
    put_entries(answers.lines, lines, 255, line_len);
    return answers.lines.starts_with('?') ? 0 : 1;
}

void use_host(const fuzz::command &line, bool underscore) {
    const auto call = underscore ? ostrel_use_host_ : ostrel_use_host;
    const auto answer = [&](std::size_t i) { return std::string(line.text(i).value_or("")); };
    answers = {answer(0), answer(1), answer(2)};
    const ostrel_host routines = {line.text(0) ? fluidpath : nullptr, line.text(1) ? searchdirectory : nullptr,
                                  line.text(2) ? getfluid : nullptr};
    call(line.text(0) ? &routines : nullptr);
}

struct call {
    const fuzz::command &line;
    bool underscore;
    std::optional<char> foreign;

    void prop() const {
        const auto errmsg = field(5);
        const fuzz::property_request request = {line.text(0), line.text(1), line.number(2), line.number(3),
                                                line.text(4)};
        const double value = fuzz::ask(request, pointer(errmsg), underscore);
        const bool kept = records::trimmed(line.text(0).value_or("")).size() <= 8;
        if (!errmsg || !errmsg->holds("No errors") || errmsg->size() < 9 || !kept)
            return;
        auto again = field(5);
        require(fuzz::same_bits(fuzz::ask(request, pointer(again)), value), "the same request has the same answer");
    }
    void tv() const {
        const text_argument pair = line.text(0);
        const auto input1 = line.number(1);
        const auto input2 = line.number(2);
        constexpr double before = -7.25;
        double T = before;
        double v = before;
        const bool message_before = !ideal_specific_heat::errmsg.clear();
        const auto entry = underscore ? get_tv_ : get_tv;
        const bool wants_result = line.text(1).has_value();
        entry(fuzz::pointer(pair), fuzz::pointer(input1), fuzz::pointer(input2), wants_result ? &T : nullptr,
              wants_result ? &v : nullptr, fuzz::length(pair));
        fuzz::expect_documented_error_text();
        if (fuzz::is_known(pair.value_or(""), ostrel::described_input_pairs(),
                           [](const auto &row) { return row.name; }))
            return;
        require(T == before && v == before, "an unknown pair leaves T and v");
        require(!ideal_specific_heat::errmsg.clear() || message_before, "an unknown pair is reported");
    }
    void info() const {
        auto errmsg = field(2);
        fuzz::ask_info(line.text(0), line.text(1), pointer(errmsg), underscore);
    }
    void fluids() const {
        const auto entry = underscore ? ostrel_fluids_ : ostrel_fluids;
        std::int32_t count = -7;
        if (!line.text(0)) {
            entry(nullptr, nullptr, 256);
            entry(&count, nullptr, 256);
            require(count == 0, "no names are counted where none are wanted");
            return;
        }
        const std::size_t length = line.count(0, 256, 300);
        // The names of shipped fluids have none of these bytes either.
        fuzz::output_field names(500 * length, foreign);
        entry(&count, names.data(), length);
        fuzz::expect_documented_error_text();
        require(count >= 0 && count <= 500, "at most 500 fluids");
        names.expect_intact();
        if (answers.names == "throw!" || answers.directory == "throw!")
            return;
        names.expect_filled();
        require(names.text().find('\0') == std::string_view::npos, "names have no NUL");
        const std::string_view counted = names.text().substr(0, static_cast<std::size_t>(count) * length);
        require(counted.find('.') == std::string_view::npos, "a name ends before its first point", counted);
    }
    void version() const {
        const auto entry = underscore ? getversion_ : getversion;
        entry(nullptr);
        std::array<std::int32_t, 4> version{};
        entry(version.data());
        require(version == std::array<std::int32_t, 4>{1, 0, 1, 14}, "the version of the interface");
    }
    void sub() const {
        (underscore ? ostrel_sub_ : ostrel_sub)();
        constexpr std::string_view greeting = " ****** Hello from the Ostrel      ******\n";
        require(fuzz::console::taken() == greeting.size(), "the greeting is a line");
    }
    void init() const {
        keeps_message([&] { (underscore ? read_init_fluiddata_ : read_init_fluiddata)(text(0), length(0)); });
    }
    void file() const {
        keeps_message([&] { (underscore ? read_init_fluiddatafile_ : read_init_fluiddatafile)(text(0), length(0)); });
    }
    void db() const {
        keeps_message([&] {
            (underscore ? read_init_fluiddatadb_ : read_init_fluiddatadb)(text(0), text(1), length(0), length(1));
        });
    }

private:
    /// None where the argument is empty; the call then gets a null pointer.
    std::optional<fuzz::output_field> field(std::size_t i) const {
        if (line.text(i) == "")
            return std::nullopt;
        return fuzz::output_field(line.count(i, 256, 1000), foreign);
    }
    static fuzz::output_field *pointer(const std::optional<fuzz::output_field> &field) {
        return field ? const_cast<fuzz::output_field *>(&*field) : nullptr;
    }
    const char *text(std::size_t i) const { return fuzz::pointer(line.text(i)); }
    std::size_t length(std::size_t i) const { return fuzz::length(line.text(i)); }
    template <class Read>
    void keeps_message(Read read) const {
        const bool message_before = !ideal_specific_heat::errmsg.clear();
        read();
        fuzz::expect_documented_error_text();
        require(!message_before || !ideal_specific_heat::errmsg.clear(), "reading does not clear the error text");
    }
};

void execute(std::string_view text, std::optional<char> foreign) {
    const fuzz::command line(text);
    std::string_view name = line.name();
    const bool underscore = name.ends_with('_');
    if (underscore)
        name.remove_suffix(1);
    const call wanted{line, underscore, foreign};
    static constexpr struct {
        std::string_view name;
        void (call::*execute)() const;
    } calls[] = {{"prop", &call::prop},     {"tv", &call::tv},           {"info", &call::info},
                 {"fluids", &call::fluids}, {"version", &call::version}, {"sub", &call::sub},
                 {"init", &call::init},     {"file", &call::file},       {"db", &call::db}};
    if (name == "host")
        return use_host(line, underscore);
    for (const auto &entry : calls)
        if (entry.name == name)
            (wanted.*entry.execute)();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view script = fuzz::as_text(data, size);
    const auto foreign = fuzz::foreign_byte(script);
    fuzz::console::taken();
    support::fresh_frame();
    answers = {};
    if (!fuzz::builds_table(script))
        fuzz::make_up_saturation_table(1.0 / 3.0);
    constexpr std::size_t most_calls = 32;
    std::size_t done = 0;
    for (const std::string_view line : fuzz::split(script, '\n'))
        if (done++ < most_calls)
            execute(line, foreign);
    ostrel_use_host(nullptr);
    require(fuzz::console::taken() == 0, "nothing else is printed");
    return 0;
}
