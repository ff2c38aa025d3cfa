// SPDX-License-Identifier: MIT
// ostrel eval: a filter. Every line of standard input is a state, and every line of standard output its answer.
#include "CommandLine/fluid_choice.h"
#include "CommandLine/outputs.h"
#include "CommandLine/stopping.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace command {
namespace {

constexpr std::size_t longest_line = 4096;
constexpr std::size_t block_size = 1024;

struct request {
    fluid_choice fluid;
    std::string pair;
    std::vector<std::string> outputs;
    units_option units;
    std::string bad_lines = "stop";
    bool heading = false;
    bool echo = false;
    bool json_lines = false;
};

/// Reads lines of any length, of which only the beginning is kept.
class line_reader {
public:
    /// The next line without its end; none at the end of the input. `whole` says whether nothing was cut off.
    std::optional<std::string> next(bool &whole) {
        std::string line;
        whole = true;
        std::streambuf &in = *std::cin.rdbuf();
        int c = in.sbumpc();
        if (c == std::char_traits<char>::eof())
            return std::nullopt;
        ++number_;
        for (; c != '\n' && c != std::char_traits<char>::eof(); c = in.sbumpc()) {
            if (line.size() < longest_line)
                line += static_cast<char>(c);
            else
                whole = false;
        }
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        return line;
    }
    /// Whether more can be read without waiting for it.
    static bool has_more() { return std::cin.rdbuf()->in_avail() > 0; }
    std::size_t number() const { return number_; }

private:
    std::size_t number_ = 0;
};

/// The two texts of a line: separated by a comma, a semicolon or a tabulator, or else by blanks.
std::array<std::string, 2> texts_of(const std::string &line) {
    std::size_t at = line.find_first_of(",;\t");
    if (at == std::string::npos) {
        const std::size_t begin = std::min(line.find_first_not_of(' '), line.size());
        at = std::min(line.find(' ', begin), line.size());
    }
    return {line.substr(0, at), at < line.size() ? line.substr(at + 1) : ""};
}

/// The line as it is printed again: its tabulators stay.
std::string echoed(const std::string &line) {
    std::string text = printable(line);
    for (std::size_t i = 0; i < line.size(); ++i)
        if (line[i] == '\t')
            text[i] = '\t';
    return text;
}

/// Fails if standard input is closed or a folder; reading would say nothing of it.
void check_input() {
    struct stat about {};
    if (fstat(STDIN_FILENO, &about) != 0 || S_ISDIR(about.st_mode))
        throw failure("standard input cannot be read");
}

class filter {
public:
    explicit filter(const request &asked)
        : asked_(asked), chosen_(asked.fluid.open()), si_(units_of_pair(chosen_.fluid, asked.pair)),
          wanted_(chosen_.fluid, asked.outputs, asked.units.system(), lower_letters(asked.pair)),
          pair_(lower_letters(asked.pair)) {
        if (asked.bad_lines != "stop" && asked.bad_lines != "skip" && asked.bad_lines != "keep")
            throw wrong_argument("--bad-lines: \"" + printable(asked.bad_lines) +
                                 "\" is not one of stop, skip and keep");
        if (asked.echo)
            columns_.push_back({"line"});
        std::ranges::move(wanted_.columns(), std::back_inserter(columns_));
        columns_.push_back({"status"});
        columns_.push_back({"note"});
    }

    void run() {
        check_input();
        const stop_signals signals;
        if (asked_.heading && !asked_.json_lines)
            std::cout << csv_heading(columns_) << '\n' << std::flush;
        while (!signals.stopped()) {
            bool whole = true;
            const std::optional<std::string> line = reader_.next(whole);
            if (!line)
                break;
            take(*line, whole);
            if (lines_.size() >= block_size || !line_reader::has_more())
                answer();
            if (!std::cout)
                throw failure("standard output cannot be written");
        }
        answer();
        if (signals.stopped())
            throw stopped_by_signal(signals.number());
        if (bad_ > 0 && asked_.bad_lines == "skip")
            warn(std::to_string(bad_) + (bad_ == 1 ? " line was" : " lines were") + " skipped");
    }

private:
    struct input {
        std::string line;
        std::string problem; ///< empty if the line is a state
    };

    void take(const std::string &line, bool whole) {
        const std::size_t begin = line.find_first_not_of(" \t");
        if (whole && (begin == std::string::npos || line[begin] == '#'))
            return;
        std::string problem;
        double values[2] = {};
        if (!whole) {
            problem = "the line is longer than " + std::to_string(longest_line) + " characters";
        } else {
            const auto texts = texts_of(line);
            for (std::size_t i = 0; i < 2 && problem.empty(); ++i) {
                try {
                    values[i] = studies::parse_value(texts[i], si_[i]);
                } catch (const studies::wrong_value &reason) {
                    problem = std::string(1, pair_[i]) + ": " + reason.what();
                }
            }
        }
        if (!problem.empty()) {
            ++bad_;
            const std::string text = "line " + std::to_string(reader_.number()) + ": " + problem;
            if (asked_.bad_lines == "stop") {
                answer();
                throw failure(text);
            }
            warn(text);
            if (asked_.bad_lines == "skip")
                return;
        }
        lines_.push_back({line, problem});
        first_.push_back(values[0]);
        second_.push_back(values[1]);
    }

    void answer() {
        const std::size_t width = wanted_.size() + wanted_outputs::behind;
        values_.resize(lines_.size() * width);
        status_.resize(lines_.size());
        const auto called = chosen_.fluid.try_evaluate(ostrel::unchecked(pair_), ostrel::unchecked(wanted_.asked()),
                                                       first_, second_, values_, status_);
        if (called.status() >= OSTREL_BAD_ARGUMENT)
            throw failure(called.error().message);
        std::string text;
        for (std::size_t i = 0; i < lines_.size(); ++i) {
            row_.clear();
            if (asked_.echo)
                row_.emplace_back(echoed(lines_[i].line));
            if (lines_[i].problem.empty()) {
                add_cells(row_, wanted_, std::span(values_).subspan(i * width, width), status_[i]);
            } else {
                row_.resize(columns_.size() - 1, std::monostate{});
                row_.emplace_back(lines_[i].problem);
            }
            text += (asked_.json_lines ? json_line(columns_, row_) : csv_line(row_)) + '\n';
        }
        std::cout << text << std::flush;
        lines_.clear();
        first_.clear();
        second_.clear();
    }

    const request &asked_;
    chosen_fluid chosen_;
    std::array<std::string, 2> si_;
    wanted_outputs wanted_;
    std::string pair_;
    std::vector<column> columns_{};
    line_reader reader_{};
    std::vector<input> lines_{};
    std::vector<double> first_{}, second_{}, values_{};
    std::vector<int> status_{};
    std::vector<cell> row_{};
    std::size_t bad_ = 0;
};

} // namespace

definition eval() {
    const auto asked = std::make_shared<request>();
    std::vector<argument> arguments = asked->fluid.arguments();
    const argument positions[] = {{"PAIR", &asked->pair, "Input pair, for example pt", true},
                                  {"OUTPUT", &asked->outputs, "Wanted properties; all if none is named"}};
    arguments.insert(arguments.begin() + 1, std::begin(positions), std::end(positions));
    const argument more[] = {
        asked->units.option(),
        {"--bad-lines",
         &asked->bad_lines,
         "stop (the default) at a line that cannot be read, skip it, or keep a line without values for it",
         false,
         "",
         {"stop", "skip", "keep"}},
        {"--heading", &asked->heading, "Print the names and units of the columns first"},
        {"--echo", &asked->echo, "Print each line of the input in front of its answer"},
        {"--json-lines", &asked->json_lines, "A JSON object on each line, in place of CSV"}};
    arguments.insert(arguments.end(), std::begin(more), std::end(more));
    return {
        .name = "eval",
        .meaning = "Compute properties of states that standard input has, one line for each",
        .arguments = std::move(arguments),
        .notes =
            R"(A line has the two values of the pair, with or without units, with a comma, a semicolon, a tabulator or blanks
between them; empty lines and lines that begin with # are left out. The answer has the outputs, the status (0 for a
state, 4 where an output has no meaning between the phases, others where there is none) and a note. It is written as
soon as no further line is waiting, so that another program can ask and wait for the answer.

Examples:
  printf '1bar 400K\n2bar 400K\n' | ostrel eval toluene pt d h s
  echo '300, 0.5' | ostrel eval R134a tq p v --echo --heading)",
        .run = [asked] { filter(*asked).run(); }};
}

} // namespace command
