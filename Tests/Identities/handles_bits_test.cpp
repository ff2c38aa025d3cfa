// SPDX-License-Identifier: MIT
// The bits of a state's results depend on its two inputs only: not on the call, its neighbours, the order of the
// letters, the other outputs, the workers, earlier calls, entry points in between, or the host's floating-point
// environment.
#include "Tests/Support/frame.h"
#include "Tests/Support/handles.h"

#include <cfenv>
#include <cmath>
#include <numeric>
#include <random>
#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

using support::bits;
using support::opened_fluid;

/// States of one pair with all their outputs.
struct batch {
    std::vector<double> first, second, values;
    std::vector<int> statuses;
    std::size_t outputs = 0;
    std::size_t size() const { return first.size(); }
    double at(std::size_t state, std::size_t output) const { return values[state * outputs + output]; }
};

const std::vector<std::string> &all_outputs() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> result;
        for (const auto &row : support::rows_of("outputs"))
            result.push_back(row.name);
        for (const auto &row : support::rows_of("derivatives"))
            if (result.size() < 32 || row.name.ends_with("|u") || row.name.ends_with("|h"))
                result.push_back(row.name);
        return result;
    }();
    return names;
}
std::string joined(const std::vector<std::string> &names) {
    std::string text;
    for (const std::string &name : names)
        text += (text.empty() ? "" : ",") + name;
    return text;
}

void evaluate(const ostrel_fluid *fluid, const std::string &pair, const std::string &outputs, batch &of) {
    of.values.assign(of.size() * of.outputs, -1);
    of.statuses.assign(of.size(), -1);
    ostrel_fluid_evaluate(fluid, pair.c_str(), outputs.c_str(), of.size(), of.first.data(), of.second.data(),
                          of.values.data(), of.statuses.data());
}

/// Inputs of a pair at states of all kinds, some of which have no solution.
batch inputs_of(const ostrel_fluid *fluid, const std::string &pair, std::size_t count) {
    std::mt19937_64 numbers(count);
    const auto uniform = [&] { return static_cast<double>(numbers() >> 11) * 0x1p-53; };
    const double Tc = ostrel_fluid_constant(fluid, "t_crit"), d_crit = ostrel_fluid_constant(fluid, "d_crit");
    batch result;
    result.outputs = all_outputs().size();
    for (std::size_t i = 0; i < count; ++i) {
        const double t = Tc * (0.5 + 2.5 * uniform() * uniform()), d = d_crit * std::pow(10.0, -7 + 7.4 * uniform());
        const auto one = [&](char letter) {
            const char name[] = {letter, 0};
            return letter == 'q' ? uniform() : ostrel_fluid_value(fluid, "td", t, d, name, nullptr);
        };
        result.first.push_back(one(pair[0]));
        result.second.push_back(one(pair[1]));
    }
    return result;
}

void expect_same(const batch &wanted, const batch &got, const char *what) {
    EXPECT_EQ(wanted.statuses, got.statuses) << what;
    for (std::size_t i = 0; i < wanted.size(); ++i)
        for (std::size_t k = 0; k < wanted.outputs; ++k)
            if (bits(wanted.at(i, k)) != bits(got.at(i, k))) {
                ADD_FAILURE() << what << ": state " << i << " (" << wanted.first[i] << ", " << wanted.second[i] << ") "
                              << all_outputs()[k] << ": " << wanted.at(i, k) << " and " << got.at(i, k);
                return;
            }
}

class same_bits : public testing::TestWithParam<const char *> {
protected:
    same_bits() : fluid(open()) {}

    static opened_fluid open() {
        support::fresh_frame(support::shipped_folder);
        return opened_fluid("toluene", GetParam());
    }
    /// Calls use(pair, its batch with the wanted results) for every pair.
    template <class Use>
    void for_each_pair(std::size_t count, Use use) const {
        if (GetParam() == std::string("model=mh"))
            count /= 4; // its searches take long
        const std::string outputs = joined(all_outputs());
        for (const auto &row : support::rows_of("inputs")) {
            SCOPED_TRACE(row.name);
            batch wanted = inputs_of(fluid, row.name, count);
            evaluate(fluid, row.name, outputs, wanted);
            use(row.name, outputs, wanted);
        }
    }

    opened_fluid fluid;
};
INSTANTIATE_TEST_SUITE_P(model, same_bits,
                         testing::Values("model=vdw", "model=mh", "model=srk", "model=pr; volume=translated",
                                         "model=rk", "model=cii", "model=ig",
                                         "states=metastable; phase=liquid; reference=nbp"),
                         [](const auto &each) {
                             std::string name = each.param;
                             std::erase_if(name,
                                           [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; });
                             return name;
                         });

TEST_P(same_bits, in_any_order_of_states_and_letters_and_with_any_workers) {
    for_each_pair(40, [&](const std::string &pair, const std::string &outputs, const batch &wanted) {
        batch got = wanted;
        std::vector<std::size_t> order(wanted.size());
        std::iota(order.begin(), order.end(), 0);
        std::shuffle(order.begin(), order.end(), std::mt19937_64(1));
        batch shuffled = wanted;
        for (std::size_t i = 0; i < order.size(); ++i) {
            shuffled.first[i] = wanted.first[order[i]];
            shuffled.second[i] = wanted.second[order[i]];
        }
        evaluate(fluid, pair, outputs, shuffled);
        for (std::size_t i = 0; i < order.size(); ++i) {
            got.statuses[order[i]] = shuffled.statuses[i];
            std::copy_n(&shuffled.values[i * wanted.outputs], wanted.outputs, &got.values[order[i] * wanted.outputs]);
        }
        expect_same(wanted, got, "shuffled");
        got = wanted;
        std::swap(got.first, got.second);
        evaluate(fluid, {pair[1], pair[0]}, outputs, got);
        expect_same(wanted, got, "letters swapped");
        for (const unsigned workers : {1U, 2U, 3U, 40U}) {
            std::fill(got.values.begin(), got.values.end(), -1);
            ostrel_fluid_evaluate_parallel(fluid, pair.c_str(), outputs.c_str(), wanted.size(), wanted.first.data(),
                                           wanted.second.data(), got.values.data(), got.statuses.data(), workers);
            expect_same(wanted, got, "workers");
        }
        for (const std::size_t length : {1U, 3U, 7U}) { // in pieces, the last first
            for (std::size_t end = wanted.size(); end > 0;) {
                const std::size_t begin = end > length ? end - length : 0;
                ostrel_fluid_evaluate(fluid, pair.c_str(), outputs.c_str(), end - begin, &wanted.first[begin],
                                      &wanted.second[begin], &got.values[begin * wanted.outputs], &got.statuses[begin]);
                end = begin;
            }
            expect_same(wanted, got, "pieces");
        }
    });
}

TEST_P(same_bits, alone_solved_first_and_with_any_other_outputs) {
    for_each_pair(16, [&](const std::string &pair, const std::string &outputs, const batch &wanted) {
        batch got = wanted;
        for (std::size_t i = 0; i < wanted.size(); ++i)
            for (std::size_t k = 0; k < wanted.outputs; ++k) {
                int status = -1;
                got.values[i * wanted.outputs + k] = ostrel_fluid_value(
                    fluid, pair.c_str(), wanted.first[i], wanted.second[i], all_outputs()[k].c_str(), &status);
                EXPECT_TRUE(status == wanted.statuses[i] ||
                            (status == OSTREL_OK && wanted.statuses[i] == OSTREL_TWO_PHASE));
            }
        expect_same(wanted, got, "alone");
        std::vector<ostrel_state> states(wanted.size());
        ostrel_fluid_solve(fluid, pair.c_str(), states.size(), wanted.first.data(), wanted.second.data(),
                           states.data());
        ostrel_fluid_outputs(fluid, outputs.c_str(), states.size(), states.data(), got.values.data(),
                             got.statuses.data());
        expect_same(wanted, got, "solved first");
        std::vector<std::string> reversed(all_outputs().rbegin(), all_outputs().rend());
        batch other = wanted;
        evaluate(fluid, pair, joined(reversed), other);
        for (std::size_t i = 0; i < wanted.size(); ++i)
            for (std::size_t k = 0; k < wanted.outputs; ++k)
                got.values[i * wanted.outputs + k] = other.at(i, wanted.outputs - 1 - k);
        expect_same(wanted, got, "outputs in reverse");
        for (std::size_t step = 2; step < 6; ++step) { // every second output, every third ...
            std::vector<std::string> some;
            for (std::size_t k = 0; k < wanted.outputs; k += step)
                some.push_back(all_outputs()[k]);
            batch fewer = wanted;
            fewer.outputs = some.size();
            evaluate(fluid, pair, joined(some), fewer);
            for (std::size_t i = 0; i < wanted.size(); ++i)
                for (std::size_t k = 0; k < some.size(); ++k)
                    EXPECT_EQ(bits(fewer.at(i, k)), bits(wanted.at(i, k * step))) << some[k];
        }
    });
}

TEST_P(same_bits, inputs_come_back) {
    for_each_pair(40, [&](const std::string &pair, const std::string &, const batch &wanted) {
        for (std::size_t i = 0; i < wanted.size(); ++i)
            for (std::size_t k = 0; k < wanted.outputs; ++k)
                if (wanted.statuses[i] == OSTREL_OK || wanted.statuses[i] == OSTREL_TWO_PHASE) {
                    if (all_outputs()[k] == std::string(1, pair[0])) {
                        EXPECT_EQ(bits(wanted.at(i, k)), bits(wanted.first[i]));
                    }
                    if (all_outputs()[k] == std::string(1, pair[1])) {
                        EXPECT_EQ(bits(wanted.at(i, k)), bits(wanted.second[i]));
                    }
                } else {
                    EXPECT_EQ(bits(wanted.at(i, k)), support::bits_of_nan);
                }
    });
}

TEST_P(same_bits, after_other_calls_and_between_entry_points) {
    std::map<std::string, support::answer> plain;
    for (const char *const output : {"p", "h", "s"})
        plain[output] = support::ask("toluene", "tv", 500, 0.05, output);
    for_each_pair(16, [&](const std::string &pair, const std::string &outputs, const batch &wanted) {
        batch got = wanted;
        evaluate(opened_fluid("water", "model=cii"), "pt", "h", got);
        double ignored = support::ask("water", "pt", 1e5, 500, "h").value;
        ignored += support::ask("toluene", "tq", 400, 1, "p").value;
        EXPECT_FALSE(std::isnan(ignored));
        got.outputs = wanted.outputs;
        evaluate(fluid, pair, outputs, got);
        expect_same(wanted, got, "entry points in between");
        const opened_fluid again("toluene", GetParam());
        evaluate(again, pair, outputs, got);
        expect_same(wanted, got, "opened again");
        for (const auto &[output, answer] : plain) {
            const support::answer now = support::ask("toluene", "tv", 500, 0.05, output);
            EXPECT_EQ(bits(now.value), bits(answer.value));
            EXPECT_EQ(now.text, answer.text);
        }
    });
}

TEST_P(same_bits, in_any_environment_of_the_host) {
    for_each_pair(16, [&](const std::string &pair, const std::string &outputs, const batch &wanted) {
        for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO, FE_TONEAREST}) {
            batch got = wanted;
#if defined(__x86_64__)
            const unsigned before = _mm_getcsr();
            _mm_setcsr(before | 0x8040); // subnormal numbers flushed, as results and as inputs
#endif
            std::fesetround(mode);
            ostrel_fluid_evaluate_parallel(fluid, pair.c_str(), outputs.c_str(), wanted.size(), wanted.first.data(),
                                           wanted.second.data(), got.values.data(), got.statuses.data(), 2);
            const int after = std::fegetround();
            std::fesetround(FE_TONEAREST);
#if defined(__x86_64__)
            EXPECT_EQ(_mm_getcsr() & 0x8040U, 0x8040U);
            _mm_setcsr(before);
#endif
            EXPECT_EQ(after, mode);
            expect_same(wanted, got, "environment");
        }
    });
}

// The two saturated phases have the bits of the qualities 0 and 1, and the same pressure.
TEST_P(same_bits, saturation_is_that_of_the_qualities) {
    const std::string outputs = joined(all_outputs());
    const double Tc = fluid.constant("t_crit"), Pc = fluid.constant("p_crit");
    for (const char *const input : {"t", "p"})
        for (int i = 1; i <= 40; ++i) {
            const double x = input[0] == 't' ? Tc * (0.6 + 0.4 * i / 40) : Pc * std::pow(10.0, -3.0 + 3.0 * i / 40);
            batch liquid, vapor;
            liquid.first = vapor.first = {x};
            liquid.second = {0.0};
            vapor.second = {1.0};
            liquid.outputs = vapor.outputs = all_outputs().size();
            const std::string pair = std::string(input) + "q";
            evaluate(fluid, pair, outputs, liquid);
            evaluate(fluid, pair, outputs, vapor);
            batch l = liquid, g = vapor;
            int status = -1;
            ostrel_fluid_saturation(fluid, input, outputs.c_str(), 1, &x, l.values.data(), g.values.data(), &status);
            EXPECT_EQ(status, std::max(liquid.statuses[0], vapor.statuses[0]));
            expect_same(liquid, l, "liquid");
            expect_same(vapor, g, "vapor");
            EXPECT_EQ(bits(liquid.at(0, 1)), bits(vapor.at(0, 1)));
        }
}

} // namespace
