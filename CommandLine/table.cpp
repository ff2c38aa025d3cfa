// SPDX-License-Identifier: MIT
// ostrel table: outputs over a grid of two inputs, of any length.
#include "CommandLine/fluid_choice.h"
#include "CommandLine/outputs.h"
#include "CommandLine/stopping.h"
#include "CommandLine/table_sinks.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace command {
namespace {

/// The states of one call. They take some hundredths of a second, so that a signal is soon answered.
constexpr std::size_t block_size = 8192;

struct request {
    fluid_choice fluid;
    std::string pair;
    std::string ranges[2];
    std::vector<std::string> outputs;
    units_option units;
    std::string file;
    bool json_lines = false;
    std::string sqlite;
    std::string table = "states";
    std::string jobs = "0";
};

/// A line of standard error that says how far a long work is, if standard error is a terminal.
class progress {
public:
    explicit progress(std::size_t total) : total_(total), shown_(isatty(STDERR_FILENO) != 0) {}
    progress(const progress &) = delete;
    progress &operator=(const progress &) = delete;
    ~progress() { clear(); }

    void show(std::size_t done) {
        using namespace std::chrono;
        const auto now = steady_clock::now();
        if (!shown_ || now - begun_ < seconds(1) || now - last_ < milliseconds(200))
            return;
        last_ = now;
        constexpr std::size_t width = 20;
        const double part = static_cast<double>(done) / static_cast<double>(total_);
        const double left = duration<double>(now - begun_).count() * (1 / std::max(part, 1e-9) - 1);
        std::string bar(static_cast<std::size_t>(part * width), '#');
        bar.resize(width, '.');
        std::cerr << "\r[" << bar << "] " << static_cast<int>(100 * part) << " %, " << static_cast<long>(left)
                  << " s left  " << std::flush;
        drawn_ = true;
    }
    void clear() {
        if (drawn_)
            std::cerr << "\r\x1b[K" << std::flush;
        drawn_ = false;
    }

private:
    std::size_t total_;
    bool shown_;
    bool drawn_ = false;
    std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point last_{};
};

unsigned workers_of(const std::string &text) {
    unsigned count = 0;
    const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (status != std::errc{} || end != text.data() + text.size() || count > 1024)
        throw wrong_argument("--jobs: \"" + printable(text) +
                             "\" is not a number of threads; it must be from 0 to 1024");
    return count;
}

/// The outputs without those that are inputs or that stand there twice: every column has a name of its own.
std::vector<std::string> without_repeated(const std::vector<std::string> &names, const std::string &pair) {
    std::vector<std::string> result;
    for (const std::string &name : names)
        if (name != pair.substr(0, 1) && name != pair.substr(1, 1) &&
            std::find(result.begin(), result.end(), name) == result.end())
            result.push_back(name);
    if (result.empty())
        throw wrong_argument("OUTPUT: the inputs stand in the table anyway; another output is needed");
    return result;
}

void serve(const request &asked) {
    const studies::unit_system system = asked.units.system();
    const unsigned workers = workers_of(asked.jobs);
    const chosen_fluid chosen = asked.fluid.open();
    const ostrel::fluid &fluid = chosen.fluid;
    const auto si = units_of_pair(fluid, asked.pair);
    const std::string pair = lower_letters(asked.pair);
    const studies::range outer = range_of("RANGE1", asked.ranges[0], si[0]);
    const studies::range inner = range_of("RANGE2", asked.ranges[1], si[1]);
    const wanted_outputs wanted(fluid, without_repeated(output_names(asked.outputs), pair), system, pair);
    const studies::unit units[2] = {studies::shown_unit(si[0], system), studies::shown_unit(si[1], system)};

    std::vector<column> columns;
    for (const std::size_t i : {std::size_t{0}, std::size_t{1}})
        columns.push_back({pair.substr(i, 1), units[i].name == "1" ? "" : std::string(units[i].name)});
    std::ranges::move(wanted.columns(), std::back_inserter(columns));
    columns.push_back({"status"});
    columns.push_back({"note"});

    std::unique_ptr<table_sink> sink;
    if (asked.sqlite.empty()) {
        sink = asked.json_lines ? json_lines_sink(asked.file, columns) : csv_sink(asked.file, columns);
    } else {
        nlohmann::ordered_json about = {
            {"fluid", fluid.text("name")},     {"options", fluid.text("options")}, {"pair", pair},
            {"first", asked.ranges[0]},        {"second", asked.ranges[1]},        {"columns", csv_heading(columns)},
            {"parameters", fluid.text("text")}};
        sink = sqlite_sink(asked.sqlite, asked.table, columns,
                           about.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
    }

    const std::size_t total = outer.count * inner.count;
    const std::size_t width = wanted.size() + wanted_outputs::behind;
    std::size_t done = sink->rows_there();
    if (done > 0)
        warn(done < total ? "the table goes on behind its state " + std::to_string(done - 1)
                          : "the table is complete already");
    const stop_signals signals;
    progress bar(total);
    std::vector<double> first;
    std::vector<double> second;
    std::vector<double> values;
    std::vector<int> status;
    std::vector<std::vector<cell>> rows;
    const std::size_t begun_at = done;
    std::size_t failures = 0;
    std::string first_failure;
    while (done < total && !signals.stopped()) {
        const std::size_t count = std::min(block_size, total - done);
        first.resize(count);
        second.resize(count);
        values.resize(count * width);
        status.resize(count);
        rows.resize(count);
        for (std::size_t i = 0; i < count; ++i) {
            first[i] = outer.at((done + i) / inner.count);
            second[i] = inner.at((done + i) % inner.count);
        }
        const auto called = fluid.try_evaluate_parallel(ostrel::unchecked(pair), ostrel::unchecked(wanted.asked()),
                                                        first, second, values, status, workers);
        if (called.status() >= OSTREL_BAD_ARGUMENT)
            throw failure(called.error().message);
        if (!called && called.status() != OSTREL_TWO_PHASE && first_failure.empty())
            first_failure = called.error().message;
        for (std::size_t i = 0; i < count; ++i) {
            failures += status[i] != OSTREL_OK && status[i] != OSTREL_TWO_PHASE ? 1 : 0;
            rows[i].assign({value_or_none(studies::in_unit(first[i], units[0])),
                            value_or_none(studies::in_unit(second[i], units[1]))});
            add_cells(rows[i], wanted, std::span(values).subspan(i * width, width), status[i]);
        }
        sink->write(done, rows);
        done += count;
        bar.show(done);
    }
    bar.clear();
    if (signals.stopped()) {
        warn("stopped behind state " + std::to_string(done) + " of " + std::to_string(total) +
             (asked.sqlite.empty() ? "" : "; the same command goes on from there"));
        throw stopped_by_signal(signals.number());
    }
    if (failures > 0 && failures == total - begun_at)
        throw failure("no state has a value: " + first_failure);
    if (failures > 0)
        warn(std::to_string(failures) + " of " + std::to_string(total - begun_at) +
             " states have no value; the column note says why");
}

} // namespace

definition table() {
    const auto asked = std::make_shared<request>();
    std::vector<argument> arguments = asked->fluid.arguments();
    const argument positions[] = {
        {"PAIR", &asked->pair, "Input pair, for example pt", true},
        {"RANGE1", &asked->ranges[0], "VALUE, FIRST:LAST:COUNT or FIRST:LAST:COUNT:log, with units", true},
        {"RANGE2", &asked->ranges[1], "The range of the second input, which varies faster", true},
        {"OUTPUT", &asked->outputs, "Wanted properties; all if none is named"}};
    arguments.insert(arguments.begin() + 1, std::begin(positions), std::end(positions));
    const argument more[] = {asked->units.option(),
                             {"--output", &asked->file, "A file in place of standard output"},
                             {"--json-lines", &asked->json_lines, "A JSON object on each line, in place of CSV"},
                             {"--sqlite", &asked->sqlite,
                              "An SQLite file that gets the table; a table that was stopped is continued", false,
                              "--output"},
                             {"--table", &asked->table, "The name of the table in the SQLite file (states)"},
                             {"--jobs", &asked->jobs, "Number of threads; 0, the default, for one on each core"}};
    arguments.insert(arguments.end(), std::begin(more), std::end(more));
    return {
        .name = "table",
        .meaning = "Compute properties over a grid of states, as CSV, JSON lines or an SQLite table",
        .arguments = std::move(arguments),
        .notes =
            R"(Every state has a row, with a status (0 for a state, 4 where an output has no meaning between the phases, others
where there is none) and a note. The memory does not grow with the table. An interrupt (Ctrl-C) ends it behind a whole
row, with the exit code 130.

Examples:
  ostrel table toluene pt 1bar:10bar:10 400K:600K:5 d h s
  ostrel table R134a tq -20degC:60degC:5 0:1:3 p h --units engineering
  ostrel table co2 pt 1bar:300bar:20:log 250:500:20 d c --json-lines --jobs 2
  ostrel table water ph 1e5:2e7:10:log -2e6:5e5:10 t phase --sqlite states.sqlite --table water)",
        .run = [asked] { serve(*asked); }};
}

} // namespace command
