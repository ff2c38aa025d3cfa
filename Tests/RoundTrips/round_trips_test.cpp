// SPDX-License-Identifier: MIT
// Tries every input pair at states all over the range of the models. A search that converges must have found a state
// with the values of the pair; those that do not converge are counted.
#include "Algebra/lin_algebra.h"
#include "Ostrel_Main.h"
#include "Tests/Support/thermodynamics.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace {

using namespace thermodynamics;
using gas_properties::gas;
using ideal_specific_heat::errmsg;

enum region { vapor, supercritical, liquid };
constexpr const char *region_names[] = {"vapor", "supercritical", "liquid"};
constexpr const char *pairs[] = {"pt", "pv", "pd", "ph", "ps", "ts", "vh", "vs", "vu", "dh", "ds", "du", "hs"};

struct state {
    region where;
    double T;
    double v;
};

/// A grid of temperatures, as multiples of that of the reference point, and of volumes above the co-volume. States that
/// a fluid cannot have (stretched, or inside the spinodal) are left out.
std::vector<state> grid() {
    std::vector<state> result;
    const auto add = [&](region where, double T_r, double w) {
        const double b = support::active_covolume(), T = T_r / gas.Z_ref, v = b + w * (1 - b);
        std::array<double, 2> dP{};
        dP__dT_dv(T, v, dP);
        if (P__T_v(T, v) > 1e-4 && dP[1] < 0 && cv__T_v(T, v) > 0)
            result.push_back({where, T, v});
    };
    for (double T_r = 0.6; T_r < 0.99; T_r += 0.045) {
        for (double w = 2.0; w < 1500; w *= 1.6)
            add(vapor, T_r, w);
        for (double w = 0.03; w < 0.8; w *= 1.25)
            add(liquid, T_r, w);
    }
    for (const double T_r : {1.02, 1.08, 1.2, 1.4, 1.8, 2.5, 3.5})
        for (double w = 0.06; w < 700; w *= 1.7)
            add(supercritical, T_r, w);
    return result;
}

/// The reduced quantity for which a letter of a code stands: its value, its derivatives, and its unit.
struct quantity {
    double value;
    std::array<double, 2> slopes;
    double unit;
};
quantity of(char letter, double T, double v) {
    std::array<double, 2> dP{};
    dP__dT_dv(T, v, dP);
    switch (letter) {
    case 't':
        return {T, {1, 0}, gas.T_ref};
    case 'p':
        return {P__T_v(T, v), dP, gas.P_ref};
    case 'v':
        return {v, {0, 1}, gas.v_ref};
    case 'h':
        return {h__T_v(T, v), dh__dT_dv(T, v), gas.P_ref * gas.v_ref};
    case 'u': {
        std::array<double, 2> de{};
        de__dT_dv(T, v, de);
        return {e__T_v(T, v), de, gas.P_ref * gas.v_ref};
    }
    default:
        return {s__T_v(T, v), ds__dT_dv(T, v), gas.R};
    }
}
/// The SI value that a host would give.
double input(char letter, const state &at) {
    if (letter == 'd')
        return 1 / (at.v * gas.v_ref);
    const quantity q = of(letter, at.T, at.v);
    return q.value * q.unit;
}

/// Whether the quantity of a letter has its value again at the solved state, within the tolerance of the solver. If a
/// second solve has found T from `solved_for`, both tolerances together count. The inputs themselves are rounded.
bool again(char letter, char solved_for, const state &given, const state &found) {
    const char name = letter == 'd' ? 'v' : letter;
    const quantity wanted = of(name, given.T, given.v), got = of(name, found.T, found.v);
    double allowed = name == 'v' || name == 't' ? 0 : 1e-9;
    if (solved_for != 0 && letter != solved_for)
        allowed += 2e-9 * std::abs(got.slopes[0] / of(solved_for, found.T, found.v).slopes[0]);
    allowed *= 1.001;
    allowed += 1e-12 * (1 + std::abs(wanted.value));
    return std::abs(got.value - wanted.value) <= allowed;
}

/// After a solve for two unknowns, which gives the volume, the temperature is found by a second solve from this letter.
char second_solve(std::string_view pair) {
    return pair == "ph" || pair == "ps" ? 'p' : pair == "hs" ? 'h' : char(0);
}

struct count {
    int asked = 0;
    int failed = 0;
    int elsewhere = 0; ///< the second solve found another temperature of that volume
};

struct fluid_case {
    const char *name;
    std::int32_t gas_type;
    const std::string &fluid;
};
const std::string nitrogen = "names\nnitrogen\nN2\nconstants\n28.0\nT\n126.2\n33.5\n0.29\n77.3\n0.0\n0.0\n";
const fluid_case cases[] = {
    {"IG", 1, support::vapor_fluid},  {"VDW", 2, support::vapor_fluid}, {"MH", 3, support::vapor_fluid},
    {"SRK", 4, support::vapor_fluid}, {"PR", 5, support::vapor_fluid},  {"RK", 6, support::vapor_fluid},
    {"CII", 7, support::vapor_fluid}, {"IZG", 8, support::vapor_fluid}, {"MH_nitrogen", 3, nitrogen},
};

/// Whether the state must always be found. Martin-Hou isotherms have several extrema, so nothing is promised for them.
bool always_found(std::int32_t gas_type, std::string_view pair, region where) {
    if (gas_type == 1 || gas_type == 8)
        return true;
    if (gas_type == 3)
        return where == vapor && (pair == "pv" || pair == "vh" || pair == "vs" || pair == "vu");
    const bool finds_T = pair.find('v') != pair.npos || pair.find('d') != pair.npos;
    return finds_T || (second_solve(pair) == 0 && where != liquid);
}

class round_trips : public support::thermodynamics_test, public testing::WithParamInterface<fluid_case> {};

TEST_P(round_trips, what_converges_has_the_values_of_the_pair) {
    const auto [name, type, fluid] = GetParam();
    support::load({"", type, fluid, type == 8 ? "0.9\n" : ""}, support::heat_cases[8]);
    const std::vector<state> states = grid();
    EXPECT_GE(states.size(), 200U);
    std::printf("%s: %zu states; not converged/asked, percent\n%6s", name, states.size(), "");
    for (const char *const where : region_names)
        std::printf("%18s", where);
    for (const std::string_view pair : pairs) {
        SCOPED_TRACE(pair);
        std::array<count, std::size(region_names)> counts{};
        const char solved_for = second_solve(pair);
        for (const state &at : states) {
            errmsg.reset();
            lin_algebra::linalg_errmsg.reset(); // so that one failure does not make the next states fail
            state found = {at.where, -1, -1};
            ostrel::get_tv(pair, input(pair[0], at), input(pair[1], at), found.T, found.v);
            count &here = counts[at.where];
            ++here.asked;
            if (!errmsg.clear()) {
                ++here.failed;
                EXPECT_FALSE(always_found(type, pair, at.where)) << at.T << ", " << at.v;
                continue;
            }
            const bool all = again(pair[0], solved_for, at, found) && again(pair[1], solved_for, at, found);
            if (!all && type == 3 && pair == "ps" && again('p', solved_for, at, found))
                ++here.elsewhere; // a Martin-Hou gas may have the same pressure at two temperatures
            else
                EXPECT_TRUE(all) << at.T << ", " << at.v;
        }
        std::printf("\n%6s", pair.data());
        for (std::size_t where = 0; where < counts.size(); ++where) {
            const auto &[asked, failed, elsewhere] = counts[where];
            std::printf("%10d/%3d %3.0f", failed, asked, 100.0 * failed / asked);
            RecordProperty(std::string(pair) + "_" + region_names[where] + "_not_converged",
                           std::to_string(failed) + "/" + std::to_string(asked));
            if (elsewhere > 0)
                std::printf(" (%d at another temperature)", elsewhere);
        }
    }
    std::printf("\n");
    errmsg.reset();
}

INSTANTIATE_TEST_SUITE_P(models, round_trips, testing::ValuesIn(cases),
                         [](const auto &of) { return std::string(of.param.name); });

} // namespace
