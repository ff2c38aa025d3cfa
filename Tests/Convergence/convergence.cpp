// SPDX-License-Identifier: MIT
// Tries how well handles find states from every pair of inputs, and prints a table (see convergence.h).
//
//   convergence FOLDER STATES [MODEL [FLUID]]      STATES of each model and fluid
#include "Tests/Convergence/convergence.h"

#include <cstdlib>

namespace {

void print_heading() {
    std::printf("%-10s %9s %6s %6s %6s %6s %6s %8s %8s %8s %8s\n", "", "states", "failed", "twin", "fold", "tie", "dim",
                "mean", "largest", "mean/us", "longest");
}
void print(const std::string &name, const convergence::tally &count) {
    const double compared = std::max(1.0, static_cast<double>(count.compared() - count.failures));
    std::printf("%-10s %9ld %6ld %6ld %6ld %6ld %6ld %8.2f %8.1f %8.2f %8.1f\n", name.c_str(), count.states,
                count.failures, count.twins, count.folds, count.ties, count.dim,
                static_cast<double>(count.sum) / compared, static_cast<double>(count.largest),
                count.time / static_cast<double>(std::max(1L, count.states)) * 1e6, count.longest * 1e6);
}

} // namespace

int main(int count, char **arguments) {
    if (count < 3)
        return 2;
    const long wanted = std::atol(arguments[2]);
    convergence::tally all;
    for (const std::string model : convergence::models) {
        if (count > 3 && model != arguments[3])
            continue;
        convergence::tallies of_model;
        std::vector<std::string> told;
        for (const std::string name : convergence::fluids) {
            if (count > 4 && name != arguments[4])
                continue;
            const convergence::fluid_states states(arguments[1], name, model);
            std::mt19937_64 numbers(1);
            for (long found = 0, tries = 0; found < wanted && tries < 20 * wanted; ++tries) {
                if (const auto known = states.drawn(numbers)) {
                    ++found;
                    states.judge(*known, of_model, told);
                }
            }
        }
        std::printf("%s\n", model.c_str());
        print_heading();
        convergence::tally of_all;
        for (const auto &[pair, one] : of_model) {
            print(pair, one);
            of_all.add(one);
        }
        print("all", of_all);
        for (const std::string &text : told)
            std::printf("    %s\n", text.c_str());
        all.add(of_all);
    }
    std::printf("states %ld, failures %ld\n", all.states, all.failures);
    return all.failures == 0 ? 0 : 1;
}
