// SPDX-License-Identifier: MIT
// Tries how well handles find states from every pair of inputs, and prints a table (see convergence.h).
//
//   convergence FOLDER STATES PLAIN [MODEL [FLUID]]
//
// FOLDER has the parameter files, STATES is the number of states of each model and fluid. Every PLAIN-th of them is
// asked of the entry points, too (0: none of them), whose searches start at one fixed state. They fail if they give an
// error text, or if T or v is wrong by more than 1 % and by more than a change of the inputs by 2e-5 would do: their
// surfaces differ from those of the handles by about 1e-6, and have no mixtures.
// FLUID may be any one of FOLDER; without it the program takes those of convergence.h.
#include "Tests/Convergence/convergence.h"
#include "ostrel.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

using convergence::tally;

/// One fluid under one model for the entry points, which keep a fluid by its name.
class entry_points {
public:
    entry_points(const std::string &folder, const std::string &fluid, int code, const std::string &own_folder)
        : name_("m" + std::to_string(code) + std::to_string(number_++)) {
        std::ifstream in(folder + "/" + fluid + ".osd");
        std::ofstream out(own_folder + "/" + name_ + ".osd");
        for (std::string line; std::getline(in, line);)
            out << (line.find("gas_type:") != std::string::npos ? std::to_string(code) : line) << '\n';
    }
    bool ask(const std::string &pair, double first, double second, const char *output, double &value) const {
        std::string text(80, ' ');
        value = ostrel_prop(name_.c_str(), pair.c_str(), &first, &second, output, text.data(), name_.size(),
                            pair.size(), 1, text.size());
        return text.starts_with("No errors");
    }

private:
    static inline int number_ = 0;
    std::string name_;
};

bool entry_points_have(const convergence::fluid_states &states, const convergence::known_state &known,
                       const std::string &pair, const entry_points &plain) {
    const auto tried = states.solve(pair, known);
    double t = 0, v = 0;
    if (!plain.ask(pair, tried.found.first, tried.found.second, "t", t) ||
        !plain.ask(pair, tried.found.first, tried.found.second, "v", v))
        return false;
    const auto near = [](convergence::wide found, convergence::wide truth, convergence::wide unit) {
        return std::abs(found - truth) < std::max(0.01L * truth, 1e11L * unit);
    };
    return near(t / states.unit_of('t'), known.at.T, tried.T_unit) &&
           near(v / states.unit_of('v'), known.at.v, tried.v_unit);
}

void print_heading() {
    std::printf("%-5s %9s %6s %6s %6s %6s %6s %6s %7s %8s %8s %10s %9s %9s\n", "", "states", "failed", "wrong", "twin",
                "fold", "tie", "dim", "mean", "largest", "mean us", "longest us", "asked e.p.", "e.p. fail");
}
void print(const std::string &name, const tally &count) {
    const double compared = std::max(1.0, static_cast<double>(count.compared() - count.failures));
    std::printf("%-5s %9ld %6ld %6ld %6ld %6ld %6ld %6ld %7.2f %8.1f %8.2f %10.1f %9ld %9ld\n", name.c_str(),
                count.states, count.failures, count.wrong, count.twins, count.folds, count.ties, count.dim,
                static_cast<double>(count.sum) / compared, static_cast<double>(count.largest),
                count.time / static_cast<double>(std::max(1L, count.states)) * 1e6, count.longest * 1e6,
                count.plain_states, count.plain_failures);
}

} // namespace

int main(int count, char **arguments) {
    if (count < 4)
        return 2;
    const std::string folder = arguments[1];
    const long wanted = std::atol(arguments[2]), plain_step = std::atol(arguments[3]);
    std::string own_folder = (std::filesystem::temp_directory_path() / "convergence-XXXXXX").string();
    if (mkdtemp(own_folder.data()) == nullptr)
        return 2;
    setenv("OSTREL_FLUIDS", own_folder.c_str(), 1);
    tally all;
    for (const auto &[model, code] : convergence::models) {
        if (count > 4 && std::string(model) != arguments[4])
            continue;
        convergence::tallies of_model;
        std::vector<std::string> told;
        const std::vector<std::string> all_fluids(std::begin(convergence::fluids), std::end(convergence::fluids));
        for (const std::string &name : count > 5 ? std::vector<std::string>{arguments[5]} : all_fluids) {
            const convergence::fluid_states states(folder, name, model);
            const entry_points plain(folder, name, code, own_folder);
            states.judge_many(wanted, of_model, told, [&](long number, const convergence::known_state &known) {
                if (plain_step == 0 || number % plain_step != 0)
                    return;
                for (const std::string pair : convergence::pairs) {
                    const bool has_q = pair[1] == 'q', in_dome = known.where == convergence::place::mixture;
                    if ((in_dome ? pair == "pt" : has_q) || pair == "pu" || pair == "su" || pair == "th" ||
                        pair == "tu")
                        continue;
                    ++of_model[pair].plain_states;
                    of_model[pair].plain_failures += !entry_points_have(states, known, pair, plain);
                }
            });
        }
        std::printf("\n%s\n", model);
        print_heading();
        tally of_all;
        for (const auto &[pair, one] : of_model) {
            print(pair, one);
            of_all.add(one);
        }
        print("all", of_all);
        for (const std::string &text : told)
            std::printf("    %s\n", text.c_str());
        all.add(of_all);
    }
    std::filesystem::remove_all(own_folder);
    std::printf("\nstates %ld, failures %ld, %ld of them wrong; of %ld states the entry points do not find %ld\n",
                all.states, all.failures, all.wrong, all.plain_states, all.plain_failures);
    return all.failures == 0 ? 0 : 1;
}
