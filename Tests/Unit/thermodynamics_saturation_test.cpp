// SPDX-License-Identifier: MIT
#include "Algebra/lin_algebra.h"
#include "Tests/Support/thermodynamics.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <map>

namespace {

using namespace thermodynamics;
using gas_properties::gas;
using ideal_specific_heat::errmsg;
using lin_algebra::linalg_errmsg;

constexpr double largest = 1.7976931348623157e308;
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr const char *no_curve = "No solution has been found in subroutine init_saturation_curves.";
constexpr const char *singular = " Matrix A is singular. In FUNCTION inverse, MODULE lin_algebra. STOP";

/// Fluids: one that all models load, one that is more like a real one, and one with few curves.
const std::string nitrogen = "names\nnitrogen\nN2\nconstants\n28.0\nT\n126.2\n33.5\n0.29\n77.3\n0.0\n0.0\n";
const std::string low_boiling = "names\nlow\nlow\nconstants\n20.0\nT\n300.0\n50.0\n0.29\n80.0\n0.0\n0.0\n";

struct curve_case {
    const char *name;
    std::int32_t gas_type;
    const std::string &fluid;
};
const curve_case true_curves[] = {
    {"van der Waals", 2, support::vapor_fluid},       {"Martin-Hou", 3, nitrogen},
    {"Soave-Redlich-Kwong", 4, support::vapor_fluid}, {"Soave-Redlich-Kwong, nitrogen", 4, nitrogen},
    {"Redlich-Kwong", 6, support::vapor_fluid},       {"Clausius II", 7, support::vapor_fluid},
    {"Clausius II, nitrogen", 7, nitrogen},
};

struct thermodynamics_saturation_test : support::thermodynamics_test {
    thermodynamics_saturation_test() { release(); }
    ~thermodynamics_saturation_test() override { release(); }

    /// The table as when the library is loaded: not allocated.
    static void release() {
        linalg_errmsg.reset();
        for (std::vector<double> *const column : {&TTs, &PPs, &vvls, &vvgs})
            column->clear();
    }
    /// Another fluid in the same library: the table stays.
    static void load(std::int32_t type, const std::string &fluid = support::vapor_fluid) {
        support::load({"", type, fluid, type == 8 ? "0.9\n" : ""}, support::heat_cases[8]);
    }
    static void for_each_true_curve(const std::function<void()> &check) {
        for (const curve_case &of : true_curves) {
            SCOPED_TRACE(of.name);
            release();
            load(of.gas_type, of.fluid);
            init_saturation_curves();
            ASSERT_EQ(support::shared_text(), "No errors");
            check();
        }
    }
};

double gibbs(double T, double v) {
    return e__T_v(T, v) - T * s__T_v(T, v) + P__T_v(T, v) * v;
}
gradient pressure_slopes(double T, double v) {
    gradient dP{};
    dP__dT_dv(T, v, dP);
    return dP;
}

/// The two ways to ask for saturation: x is what is given, y the other of temperature and pressure.
struct request {
    const char *name;
    void (*at)(double x, double &y, double &v_g, double &v_l, bool *success);
    void (*curve)(std::span<double> x, std::span<double> v_g, std::span<double> v_l, std::span<double> y, double x_end,
                  bool *success);
    double (*critical_x)();
    double (*critical_y)();
    const char *no_convergence;
};
double critical_temperature() {
    return 1 / gas.Zc;
}
double critical_pressure() {
    return 1.0;
}
constexpr request by_temperature = {
    "by temperature",     saturation__T,     saturation_curves_T,
    critical_temperature, critical_pressure, "Newton method failed to converge in subroutine saturation_T."};
constexpr request by_pressure = {"by pressure",        saturation__P,
                                 saturation_curves_P,  critical_pressure,
                                 critical_temperature, "Newton method failed to converge in subroutine saturation_P."};

// Locating a value

struct place {
    std::int32_t i1 = -7;
    std::int32_t i2 = -8;
    double w = -9;
};
place seek(double x, const std::vector<double> &xx) {
    place at;
    seek_in_vector(x, xx, at.i1, at.i2, at.w);
    return at;
}
double interpolated(const std::vector<double> &y, const place &at) {
    return (1 - at.w) * y[static_cast<std::size_t>(at.i1 - 1)] + at.w * y[static_cast<std::size_t>(at.i2 - 1)];
}
void expect_place(const place &at, std::int32_t i1, double w) {
    EXPECT_EQ(at.i1, i1);
    EXPECT_EQ(at.i2, i1 + 1);
    EXPECT_EQ(at.w, w);
    EXPECT_EQ(support::shared_text(), "No errors");
}

TEST_F(thermodynamics_saturation_test, a_value_in_an_increasing_vector) {
    const std::vector<double> xx = {1.0, 2.0, 4.0, 8.0};
    expect_place(seek(1.0, xx), 1, 0.0);
    expect_place(seek(1.25, xx), 1, 0.25);
    expect_place(seek(1.75, xx), 1, 0.75);
    expect_place(seek(2.0, xx), 2, 0.0);
    expect_place(seek(2.5, xx), 2, 0.25);
    expect_place(seek(3.5, xx), 2, 0.75);
    expect_place(seek(4.0, xx), 3, 0.0);
    expect_place(seek(7.0, xx), 3, 0.75);
    expect_place(seek(8.0, xx), 3, 1.0);
}

TEST_F(thermodynamics_saturation_test, a_value_in_a_decreasing_vector) {
    const std::vector<double> xx = {8.0, 4.0, 2.0, 1.0};
    expect_place(seek(8.0, xx), 1, 0.0);
    expect_place(seek(7.0, xx), 1, 0.25);
    expect_place(seek(5.0, xx), 1, 0.75);
    expect_place(seek(4.0, xx), 1, 1.0); // from the left, unlike in an increasing vector
    expect_place(seek(3.5, xx), 2, 0.25);
    expect_place(seek(2.5, xx), 2, 0.75);
    expect_place(seek(2.0, xx), 2, 1.0);
    expect_place(seek(1.25, xx), 3, 0.75);
    expect_place(seek(1.0, xx), 3, 1.0);
}

TEST_F(thermodynamics_saturation_test, halfway_between_two_elements_the_first_is_the_nearest) {
    expect_place(seek(3.0, {1.0, 2.0, 4.0, 8.0}), 2, 0.5);
    expect_place(seek(3.0, {8.0, 4.0, 2.0, 1.0}), 2, 0.5);
    // Equal elements: the nearest is the lowest of them.
    expect_place(seek(2.0, {1.0, 2.0, 2.0, 3.0}), 1, 1.0);
    expect_place(seek(2.5, {1.0, 2.0, 2.0, 3.0}), 1, 1.5);
    expect_place(seek(2.0, {3.0, 2.0, 2.0, 1.0}), 1, 1.0);
    expect_place(seek(1.75, {3.0, 2.0, 2.0, 1.0}), 2, -std::numeric_limits<double>::infinity());
}

TEST_F(thermodynamics_saturation_test, a_vector_of_two_elements) {
    expect_place(seek(1.0, {1.0, 3.0}), 1, 0.0);
    expect_place(seek(2.0, {1.0, 3.0}), 1, 0.5);
    expect_place(seek(3.0, {1.0, 3.0}), 1, 1.0);
    expect_place(seek(2.5, {3.0, 1.0}), 1, 0.25);
}

TEST_F(thermodynamics_saturation_test, a_value_outside_a_vector) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const std::vector<double> &xx : {std::vector<double>{1.0, 2.0, 4.0}, {4.0, 2.0, 1.0}, {2.0, 4.0, 1.0}})
        for (const double x : {std::nextafter(1.0, 0.0), std::nextafter(4.0, 5.0), -infinity, infinity}) {
            errmsg.reset();
            const place at = seek(x, xx);
            EXPECT_EQ(support::shared_text(), "x is not in xx.");
            EXPECT_EQ(at.i1, -7);
            EXPECT_EQ(at.i2, -8);
            EXPECT_EQ(at.w, -9);
        }
    for (const std::vector<double> &short_one : {std::vector<double>{}, {1.0}}) {
        errmsg.reset();
        EXPECT_EQ(seek(1.0, short_one).i1, -7);
        EXPECT_EQ(support::shared_text(), "x is not in xx.");
    }
}

TEST_F(thermodynamics_saturation_test, a_NaN_is_not_outside_a_vector) {
    const place at = seek(not_a_number, {1.0, 2.0, 4.0});
    EXPECT_EQ(at.i1, 1);
    EXPECT_EQ(at.i2, 2);
    EXPECT_TRUE(std::isnan(at.w));
    EXPECT_EQ(support::shared_text(), "No errors");
}

// The table

TEST_F(thermodynamics_saturation_test, the_table_starts_at_the_critical_point_and_ends_at_T_end) {
    for_each_true_curve([] {
        const std::size_t N = 256;
        for (const std::vector<double> *const column : {&TTs, &PPs, &vvls, &vvgs})
            ASSERT_EQ(column->size(), N);
        EXPECT_EQ(TTs[0], 1 / gas.Zc);
        EXPECT_EQ(PPs[0], 1.0);
        EXPECT_EQ(vvls[0], 1.0);
        EXPECT_EQ(vvgs[0], 1.0);
        double T_end = 0.75 / gas.Zc;
        for (int i = 0; i < 30 && T_end > TTs[N - 1]; ++i)
            T_end /= 1.1;
        EXPECT_EQ(TTs[N - 1], T_end);
        EXPECT_LE(*std::min_element(PPs.begin(), PPs.end()), 0.001);
        // The first step makes the geometric series end at T_end.
        const double span = T_end - TTs[0];
        EXPECT_NEAR((TTs[1] - TTs[0]) / span, 0.05 / (std::pow(1.05, 255) - 1),
                    4 * support::epsilon / std::abs(span) * TTs[0]);
        for (std::size_t k = 2; k < N; ++k) {
            const double step = TTs[k] - TTs[k - 1], before = TTs[k - 1] - TTs[k - 2];
            EXPECT_LT(step, 0.0);
            EXPECT_NEAR(step, 1.05 * before, 16 * support::epsilon * TTs[0]) << k;
        }
    });
}

TEST_F(thermodynamics_saturation_test, the_end_is_lowered_until_the_pressure_is_low_enough) {
    // At 0.75/1.1^n of the critical temperature; one step earlier the pressure is still too high.
    const auto expect_end = [](std::int32_t type, const std::string &fluid, int lowered) {
        release();
        load(type, fluid);
        init_saturation_curves();
        ASSERT_EQ(support::shared_text(), "No errors");
        double T_end = 0.75 / gas.Zc;
        for (int i = 0; i < lowered; ++i)
            T_end /= 1.1;
        EXPECT_EQ(TTs.back(), T_end);
        EXPECT_LE(PPs.back(), 0.001);
        if (lowered > 0) {
            double P = 0, v_g = 0, v_l = 0;
            saturation__T(T_end * 1.1, P, v_g, v_l);
            EXPECT_EQ(support::shared_text(), "No errors");
            EXPECT_GT(P, 0.001);
        }
    };
    expect_end(2, support::vapor_fluid, 9);
    expect_end(4, nitrogen, 6);
    expect_end(6, support::vapor_fluid, 5);
    expect_end(7, support::vapor_fluid, 4);
    expect_end(3, nitrogen, 0);
}

/// The guards behind a step: the phases stay on their sides of the critical volume.
void keep_sides(double &g, double &l) {
    double kept = std::max(vmin, l);
    if (g <= 1 && kept < 1)
        g = 1 / kept;
    if (g >= 1 && kept > 1)
        kept = 1 / g;
    if (g <= 1)
        g = 10.0;
    l = kept < 1 ? kept : std::max(0.1, vmin);
}

/// The build as it is written down, pass after pass.
struct written_build {
    std::vector<double> T, P, v_g, v_l;
    std::string text;
    int doublings = 0;
    int passes = 0;

    written_build() {
        std::size_t N = 256;
        double T_end = 0.75 / gas.Zc;
        while (true) {
            ++passes;
            text = "No errors";
            const bool complete = pass(N, T_end);
            const double p_low = *std::min_element(P.begin(), P.end());
            if (p_low <= 0.001) {
                if (complete)
                    return;
                N = 2 * N;
                ++doublings;
            } else {
                T_end = T_end / 1.1;
            }
            if (N > 2048 || T_end < Tmin) {
                text = no_curve;
                return;
            }
        }
    }

private:
    bool sticky = false;

    bool pass(std::size_t N, double T_end) {
        T.assign(N, largest);
        P = v_g = v_l = T;
        T[0] = 1 / gas.Zc;
        P[0] = v_g[0] = v_l[0] = 1;
        T[N - 1] = T_end;
        double step = (T_end - T[0]) * 0.050000000000000044 / (std::pow(1.05, static_cast<double>(N - 1)) - 1);
        for (std::size_t k = 1; k + 1 < N; ++k) {
            T[k] = T[k - 1] + step;
            step *= 1.05;
        }
        for (std::size_t k = 1; k < N; ++k) {
            if (k == 1) {
                v_g[k] = 1.2;
                v_l[k] = 0.8;
            } else {
                extrapolate(k);
            }
            if (!solve(T[k], P[k], v_g[k], v_l[k]))
                return false;
        }
        return true;
    }
    void extrapolate(std::size_t k) {
        const double T1 = T[k - 1], g = v_g[k - 1], l = v_l[k - 1], dT = T1 - T[k];
        const double h_g = e__T_v(T1, g) + P__T_v(T1, g) * g, h_l = e__T_v(T1, l) + P__T_v(T1, l) * l;
        const double slope = (h_g - h_l) / ((g - l) * T1);
        const gradient of_g = pressure_slopes(T1, g), of_l = pressure_slopes(T1, l);
        P[k] = P[k - 1] - dT * slope;
        v_g[k] = g - dT * (slope - of_g[0]) / of_g[1];
        v_l[k] = std::max(l - dT * (slope - of_l[0]) / of_l[1], vmin);
    }
    bool solve(double T1, double &P1, double &g, double &l) {
        std::int32_t i1 = 0, i2 = 0;
        double w = 0;
        seek_in_vector(T1, T, i1, i2, w); // not a number between equal temperatures
        const auto interpolated = [&](const std::vector<double> &y) {
            return (1 - w) * y[static_cast<std::size_t>(i1 - 1)] + w * y[static_cast<std::size_t>(i2 - 1)];
        };
        P1 = interpolated(P);
        g = interpolated(v_g);
        l = interpolated(v_l);
        for (int i = 1; i <= 51; ++i) {
            const double F1 = gibbs(T1, g) - gibbs(T1, l), F2 = P__T_v(T1, g) - P__T_v(T1, l);
            if (std::max(std::abs(F1), std::abs(F2)) < 1e-6) {
                P1 = P__T_v(T1, g);
                return i <= 50;
            }
            const double a = dmu__dT_dv(T1, g)[1], b = -dmu__dT_dv(T1, l)[1];
            const double c = pressure_slopes(T1, g)[1], d = -pressure_slopes(T1, l)[1];
            const double det = a * d - c * b;
            sticky = sticky || det == 0;
            if (sticky)
                return false;
            g -= (d / det) * F1 + (-b / det) * F2;
            l -= (-c / det) * F1 + (a / det) * F2;
            keep_sides(g, l);
        }
        P1 = P__T_v(T1, g);
        return false;
    }
};

void expect_as_written(const written_build &expected) {
    EXPECT_EQ(support::shared_text(), expected.text);
    ASSERT_EQ(TTs.size(), expected.T.size());
    for (std::size_t k = 0; k < TTs.size(); ++k) {
        SCOPED_TRACE(k);
        ASSERT_DOUBLE_EQ(TTs[k], expected.T[k]);
        // Both solve to 1e-6 in P and g; what is beyond differs as Newton's method does by rounding.
        if (std::isnan(expected.P[k])) {
            ASSERT_TRUE(std::isnan(PPs[k]));
            continue;
        }
        ASSERT_NEAR(PPs[k] / expected.P[k], 1.0, 1e-7);
        ASSERT_NEAR(vvgs[k] / expected.v_g[k], 1.0, 1e-7);
        ASSERT_NEAR(vvls[k] / expected.v_l[k], 1.0, 1e-7);
    }
}

TEST_F(thermodynamics_saturation_test, the_table_is_built_as_it_is_written_down) {
    for (const std::string *const fluid : {&support::vapor_fluid, &nitrogen})
        for (const std::int32_t type : {2, 3, 4, 6, 7}) {
            SCOPED_TRACE(gas_names[static_cast<std::size_t>(type) - 1]);
            release();
            load(type, *fluid);
            init_saturation_curves();
            expect_as_written(written_build());
        }
}

TEST_F(thermodynamics_saturation_test, the_number_of_points_is_doubled_where_a_pass_ends_early_at_low_pressure) {
    load(3, low_boiling);
    init_saturation_curves();
    const written_build expected;
    EXPECT_EQ(expected.doublings, 2);
    EXPECT_EQ(TTs.size(), 1024U);
    expect_as_written(expected);
}

TEST_F(thermodynamics_saturation_test, the_number_of_points_is_not_more_than_doubled_by_one_pass) {
    load(3, "names\nlow\nlow\nconstants\n20.0\nT\n300.0\n50.0\n0.25\n200.0\n0.0\n0.0\n");
    init_saturation_curves();
    const written_build expected;
    EXPECT_EQ(expected.doublings, 1);
    EXPECT_EQ(TTs.size(), 512U);
    expect_as_written(expected);
}

// As if the covolume were larger: the curve reaches the lowest volume among points that follow each other closely.
TEST_F(thermodynamics_saturation_test, the_table_starts_no_liquid_below_the_lowest_volume) {
    for (const double lowest : {0.995, 0.99, 0.98, 0.97, 0.95}) {
        SCOPED_TRACE(lowest);
        release();
        load(2);
        vmin = lowest;
        init_saturation_curves();
        expect_as_written(written_build());
    }
}

TEST_F(thermodynamics_saturation_test, a_model_without_a_curve_gives_up) {
    for (const std::int32_t type : {1, 8})
        for (const request &by : {by_temperature, by_pressure}) {
            SCOPED_TRACE(testing::Message() << type << ", " << by.name);
            release();
            load(type);
            double y = 7.0, v_g = 8.0, v_l = 9.0;
            by.at(0.9 * by.critical_x(), y, v_g, v_l, nullptr);
            EXPECT_EQ(support::shared_text(), no_curve);
            EXPECT_EQ(y, 7.0);
            EXPECT_EQ(v_g, 8.0);
            EXPECT_EQ(v_l, 9.0);
            EXPECT_LT(TTs.back() / 1.1, Tmin);
        }
}

TEST_F(thermodynamics_saturation_test, a_failed_build_keeps_what_it_solved_and_the_largest_double) {
    load(3, low_boiling);
    init_saturation_curves();
    ASSERT_EQ(support::shared_text(), no_curve);
    ASSERT_EQ(TTs.size(), 1024U);
    EXPECT_EQ(PPs[0], 1.0);
    EXPECT_EQ(vvgs[0], 1.0);
    EXPECT_EQ(vvls[0], 1.0);
    EXPECT_TRUE(std::isnan(PPs[1])); // where the last pass failed
    for (std::size_t k = 2; k < 1024; ++k) {
        EXPECT_EQ(PPs[k], largest);
        EXPECT_EQ(vvgs[k], largest);
        EXPECT_EQ(vvls[k], largest);
    }
    // It stays allocated: the next request does not try again, and goes by its range.
    errmsg.reset();
    PPs[1] = largest;
    double T = 0, v_g = 0, v_l = 0;
    saturation__P(0.5, T, v_g, v_l);
    EXPECT_EQ(PPs[1], largest);
    EXPECT_EQ(support::shared_text(), "Pressure out of range: 50.663 < P < inf bar");
}

TEST_F(thermodynamics_saturation_test, a_fluid_without_a_critical_compressibility_has_no_curve) {
    load(4);
    gas.Zc = 0; // the reduced temperatures are infinite
    init_saturation_curves();
    EXPECT_EQ(support::shared_text(), no_curve);
    EXPECT_EQ(TTs.size(), 256U) << "one pass";
}

TEST_F(thermodynamics_saturation_test, every_pass_starts_without_a_message) {
    load(4);
    errmsg.report({"an old message"});
    init_saturation_curves();
    EXPECT_EQ(support::shared_text(), "No errors");
    EXPECT_EQ(TTs.size(), 256U);
}

TEST_F(thermodynamics_saturation_test, the_first_request_builds_the_table_and_the_second_does_not) {
    for (const request &by : {by_temperature, by_pressure}) {
        SCOPED_TRACE(by.name);
        release();
        load(4);
        double y = 0, v_g = 0, v_l = 0;
        const auto ask = [&] { by.at(0.9 * by.critical_x(), y, v_g, v_l, nullptr); };
        ask();
        ASSERT_EQ(support::shared_text(), "No errors");
        ASSERT_EQ(TTs.size(), 256U);
        for (std::vector<double> *const column : {&TTs, &PPs, &vvls, &vvgs})
            column->back() *= 1.0000001; // a mark
        const std::vector<double> kept[] = {TTs, PPs, vvls, vvgs};
        ask();
        EXPECT_EQ(support::shared_text(), "No errors");
        EXPECT_EQ(TTs, kept[0]);
        EXPECT_EQ(PPs, kept[1]);
        EXPECT_EQ(vvls, kept[2]);
        EXPECT_EQ(vvgs, kept[3]);
        init_saturation_curves();
        EXPECT_NE(TTs, kept[0]);
    }
}

TEST_F(thermodynamics_saturation_test, the_first_fluids_table_serves_the_second) {
    load(4);
    init_saturation_curves();
    const std::vector<double> kept[] = {TTs, PPs, vvls, vvgs};
    load(4, nitrogen);
    double T = 0, P = 0, v_g = 0, v_l = 0;
    saturation__P(0.4, T, v_g, v_l);
    ASSERT_EQ(support::shared_text(), "No errors");
    EXPECT_EQ(TTs, kept[0]);
    EXPECT_EQ(PPs, kept[1]);
    // A state of the second fluid, with the first one's only as a start.
    EXPECT_NEAR(P__T_v(T, v_g), 0.4, 1e-9);
    EXPECT_NEAR(P__T_v(T, v_l), 0.4, 1e-4);
    EXPECT_NEAR(gibbs(T, v_g), gibbs(T, v_l), 1e-4);
    EXPECT_GT(v_g, 3 * v_l);
    saturation__T(T, P, v_g, v_l);
    EXPECT_EQ(support::shared_text(), "No errors");
    EXPECT_NEAR(P, 0.4, 1e-5);
    // Its range is that of the first fluid, in units of the second.
    saturation__T(0.99 * TTs.back(), P, v_g, v_l);
    const auto celsius = [](double T_reduced) { return T_reduced * gas.Zc * gas.Tc - 273.15; };
    char text[256];
    std::snprintf(text, sizeof text,
                  "Temperature out of range: %.3f < T < %.3f \xb0"
                  "C",
                  celsius(kept[0].back()), celsius(kept[0].front()));
    EXPECT_EQ(support::shared_text(), text);
    EXPECT_EQ(TTs, kept[0]);
    EXPECT_EQ(vvls, kept[2]);
    EXPECT_EQ(vvgs, kept[3]);
}

// Requests

TEST_F(thermodynamics_saturation_test, above_the_critical_point_nothing_is_built) {
    load(2);
    double T = 7.0, P = 7.0, v_g = 8.0, v_l = 9.0;
    bool success = true;
    saturation__P(std::nextafter(1.0, 2.0), T, v_g, v_l, &success);
    EXPECT_EQ(support::shared_text(), "Saturation pressure higher than critical in saturation_P.");
    errmsg.reset();
    saturation__T(1.0000001 / gas.Zc, P, v_g, v_l, &success);
    EXPECT_EQ(support::shared_text(), "Saturation temperature higher than critical in saturation_T.");
    EXPECT_EQ(T, 7.0);
    EXPECT_EQ(P, 7.0);
    EXPECT_EQ(v_g, 8.0);
    EXPECT_EQ(v_l, 9.0);
    EXPECT_TRUE(TTs.empty());
}

TEST_F(thermodynamics_saturation_test, the_critical_point_itself_is_served) {
    for_each_true_curve([] {
        double T = 0, P = 0, v_g = 0, v_l = 0;
        bool success = false;
        saturation__P(1.0, T, v_g, v_l, &success);
        EXPECT_EQ(support::shared_text(), "No errors");
        EXPECT_TRUE(success);
        EXPECT_EQ(T, 1 / gas.Zc);
        EXPECT_EQ(v_g, 1.0);
        EXPECT_EQ(v_l, 1.0);
        success = false;
        saturation__T(1 / gas.Zc, P, v_g, v_l, &success);
        EXPECT_EQ(support::shared_text(), "No errors");
        EXPECT_TRUE(success);
        EXPECT_EQ(P, P__T_v(1 / gas.Zc, 1.0));
        EXPECT_EQ(v_g, 1.0);
        EXPECT_EQ(v_l, 1.0);
    });
}

TEST_F(thermodynamics_saturation_test, below_the_table_the_range_is_told) {
    load(2);
    init_saturation_curves();
    double T = 7.0, P = 7.0, v_g = 8.0, v_l = 9.0;
    saturation__P(0.999 * PPs.back(), T, v_g, v_l);
    // 72.8 atm, and the table's end.
    EXPECT_EQ(support::shared_text(), "Pressure out of range: 0.044 < P < 73.765 bar");
    EXPECT_NEAR(PPs.back() * 72.8 * 1.01325, 0.044, 0.0005);
    // 304.1282 K 0.75/1.1^9, and 304.1282 K.
    for (const double below : {std::nextafter(TTs.back(), 0.0), 0.0, -1e300}) {
        errmsg.reset();
        saturation__T(below, P, v_g, v_l);
        EXPECT_EQ(errmsg.padded().substr(0, 52), "Temperature out of range: -176.415 < T < 30.978 \xb0"
                                                 "C  ");
        EXPECT_EQ(support::shared_text().size(), 50U);
    }
    EXPECT_EQ(T, 7.0);
    EXPECT_EQ(P, 7.0);
    EXPECT_EQ(v_g, 8.0);
    EXPECT_EQ(v_l, 9.0);
    for (const double P_below : {0.0, -1.0, -1e300}) {
        errmsg.reset();
        saturation__P(P_below, T, v_g, v_l);
        EXPECT_EQ(support::shared_text(), "Pressure out of range: 0.044 < P < 73.765 bar");
    }
}

TEST_F(thermodynamics_saturation_test, a_NaN_ends_in_a_message) {
    for_each_true_curve([] {
        double T = 0, P = 0, v_g = 0, v_l = 0;
        bool success = true;
        saturation__T(not_a_number, P, v_g, v_l, &success);
        EXPECT_EQ(support::shared_text(), "Newton method failed to converge in subroutine saturation_T.");
        EXPECT_FALSE(success);
        errmsg.reset();
        saturation__P(not_a_number, T, v_g, v_l, &success);
        EXPECT_EQ(support::shared_text(), "ERROR: in T__P_v");
    });
}

TEST_F(thermodynamics_saturation_test, both_phases_have_equal_pressure_and_Gibbs_energy_at_a_temperature) {
    for_each_true_curve([] {
        for (double f = 0.02; f < (gas_type == 3 ? 0.9 : 1.0); f += 0.0173) {
            const double T = TTs[0] + f * (TTs.back() - TTs[0]);
            double P = 0, v_g = 0, v_l = 0;
            bool success = false;
            saturation__T(T, P, v_g, v_l, &success);
            SCOPED_TRACE(f);
            ASSERT_EQ(support::shared_text(), "No errors");
            EXPECT_TRUE(success);
            EXPECT_EQ(P, P__T_v(T, v_g));
            EXPECT_NEAR(P__T_v(T, v_g), P__T_v(T, v_l), 1e-6);
            EXPECT_NEAR(gibbs(T, v_g), gibbs(T, v_l), 1e-6);
            EXPECT_GT(v_g, 1.05);
            EXPECT_LT(v_l, 0.97);
            EXPECT_LT(P, 1.0);
            EXPECT_GT(P, 0.0);
            EXPECT_LT(pressure_slopes(T, v_g)[1], 0.0);
            EXPECT_LT(pressure_slopes(T, v_l)[1], 0.0);
        }
    });
}

TEST_F(thermodynamics_saturation_test, both_phases_have_equal_temperature_and_Gibbs_energy_at_a_pressure) {
    for_each_true_curve([] {
        for (const double P : {0.97, 0.9, 0.77, 0.5, 0.31, 0.1, 0.03, 0.011, 0.002}) {
            SCOPED_TRACE(P);
            double T = 0, v_g = 0, v_l = 0;
            bool success = false;
            saturation__P(P, T, v_g, v_l, &success);
            ASSERT_EQ(support::shared_text(), "No errors");
            EXPECT_TRUE(success);
            const double T_g = T__P_v(P, v_g, T), T_l = T__P_v(P, v_l, T);
            EXPECT_NEAR(T_g, T_l, 1e-5);
            EXPECT_NEAR(gibbs(T_g, v_g), gibbs(T_l, v_l), 1e-5);
            // The interpolated temperature where the first pass has converged already.
            EXPECT_NEAR(T, T_g, 1e-5);
            EXPECT_GT(v_g, 1.05);
            EXPECT_LT(v_l, 0.97);
            double P_back = 0;
            saturation__T(T, P_back, v_g, v_l);
            EXPECT_NEAR(P_back, P, 2e-5);
        }
        EXPECT_EQ(support::shared_text(), "No errors");
    });
}

// Next to the critical point the table is so dense that the interpolated phases need no step. Their temperature is then
// not searched either.
TEST_F(thermodynamics_saturation_test, phases_that_need_no_step_have_the_interpolated_temperature) {
    load(4);
    init_saturation_curves();
    int rough = 0;
    for (std::size_t k = 1; k < 120; ++k) {
        const double P = 0.5 * (PPs[k] + PPs[k + 1]);
        const place start = seek(P, PPs);
        double T = 0, v_g = 0, v_l = 0;
        saturation__P(P, T, v_g, v_l);
        ASSERT_EQ(support::shared_text(), "No errors");
        if (v_g != interpolated(vvgs, start) || v_l != interpolated(vvls, start))
            continue;
        EXPECT_EQ(T, interpolated(TTs, start));
        if (std::abs(P__T_v(T, v_g) - P) > 1e-8)
            ++rough;
    }
    EXPECT_GT(rough, 5) << "temperatures that a search would have moved";
}

TEST_F(thermodynamics_saturation_test, the_curve_has_the_slope_of_Clausius_and_Clapeyron) {
    for_each_true_curve([] {
        for (double f = 0.05; f < (gas_type == 3 ? 0.9 : 0.98); f += 0.031) {
            const double T = TTs[0] + f * (TTs.back() - TTs[0]), step = 1e-2 * TTs[0] * f;
            SCOPED_TRACE(f);
            // Newton's steps beyond the tolerance, so that the difference of pressures is good.
            const auto saturated = [](double T1, double &v_g, double &v_l) {
                double P = 0;
                saturation__T(T1, P, v_g, v_l);
                for (int i = 0; i < 4; ++i) {
                    const double F1 = gibbs(T1, v_g) - gibbs(T1, v_l), F2 = P__T_v(T1, v_g) - P__T_v(T1, v_l);
                    const double g = pressure_slopes(T1, v_g)[1], l = pressure_slopes(T1, v_l)[1];
                    // dg = v dP at constant temperature.
                    const double P_change = (F1 - v_l * F2) / (v_g - v_l);
                    v_g -= P_change / g;
                    v_l -= (P_change - F2) / l;
                }
                return P__T_v(T1, v_g);
            };
            double v_g = 0, v_l = 0;
            const double h1 = step / 8;
            const auto slope_over = [&](double h) {
                return (saturated(T + h, v_g, v_l) - saturated(T - h, v_g, v_l)) / (2 * h);
            };
            // Richardson's extrapolation of the central difference.
            const double slope = (4 * slope_over(h1 / 2) - slope_over(h1)) / 3;
            saturated(T, v_g, v_l);
            const double expected = (h__T_v(T, v_g) - h__T_v(T, v_l)) / ((v_g - v_l) * T);
            EXPECT_NEAR(slope / expected, 1.0, 1e-6);
        }
        EXPECT_EQ(support::shared_text(), "No errors");
    });
}

TEST_F(thermodynamics_saturation_test, Peng_Robinson_collapses_to_equal_phases) {
    // Its rounded constants put (1/Zc, 1) beside the model's critical point. Most tables leave the curve.
    load(5);
    init_saturation_curves();
    EXPECT_EQ(support::shared_text(), "No errors");
    const auto equal = [](std::size_t k) { return std::abs(vvgs[k] - vvls[k]) < 1e-3; };
    std::size_t collapsed = 0;
    for (std::size_t k = 1; k < TTs.size(); ++k)
        collapsed += equal(k);
    EXPECT_GT(collapsed, 200U);
    EXPECT_TRUE(equal(TTs.size() - 1));
    // Not even a positive pressure; this passes for a low one.
    EXPECT_LT(PPs.back(), 0.0);
}

TEST_F(thermodynamics_saturation_test, other_fluids_have_a_true_curve_below_the_collapse) {
    const std::string fluid = "names\nm\nm\nconstants\n20.0\nT\n300.0\n50.0\n0.27\n200.0\n0.0\n0.0\n";
    load(5, fluid);
    init_saturation_curves();
    EXPECT_EQ(support::shared_text(), "No errors");
    EXPECT_GT(vvgs.back(), 1000.0);
    EXPECT_LT(vvls.back(), 0.3);
    EXPECT_NEAR(gibbs(TTs.back(), vvgs.back()), gibbs(TTs.back(), vvls.back()), 1e-6);
}

TEST_F(thermodynamics_saturation_test, a_singular_Jacobian_hands_on_the_text_of_the_algebra) {
    load(4);
    init_saturation_curves();
    std::array<double, 4> unused{};
    lin_algebra::inverse({std::array<double, 4>{1, 2, 2, 4}, 2, 2}, unused);
    double T = 0, P = 0, v_g = 0, v_l = 0;
    bool success = false;
    saturation__T(0.8123 / gas.Zc, P, v_g, v_l, &success);
    EXPECT_EQ(support::shared_text(), singular);
    EXPECT_EQ(errmsg.padded(), linalg_errmsg.padded());
    EXPECT_TRUE(success);
    errmsg.reset();
    // The search does not come to the pressure of its last volume.
    const place start = seek(0.8123 / gas.Zc, TTs);
    EXPECT_EQ(P, interpolated(PPs, start));
    EXPECT_EQ(v_g, interpolated(vvgs, start));
    EXPECT_EQ(v_l, interpolated(vvls, start));
    EXPECT_GT(std::abs(P__T_v(0.8123 / gas.Zc, v_g) - P), 1e-9);
    saturation__P(0.3123, T, v_g, v_l);
    EXPECT_EQ(support::shared_text(), singular);
    // A start that is a solution needs no inverse.
    errmsg.reset();
    saturation__T(TTs[100], P, v_g, v_l);
    EXPECT_EQ(support::shared_text(), "No errors");
    EXPECT_EQ(P, PPs[100]);
    EXPECT_EQ(v_g, vvgs[100]);
    EXPECT_EQ(v_l, vvls[100]);
    // A table cannot be built any more.
    release();
    std::array<double, 4> again{};
    lin_algebra::inverse({std::array<double, 4>{1, 2, 2, 4}, 2, 2}, again);
    saturation__P(0.3123, T, v_g, v_l);
    EXPECT_EQ(support::shared_text(), no_curve);
}

TEST_F(thermodynamics_saturation_test, the_temperature_search_of_a_phase_may_fail) {
    // No temperature gives a van der Waals gas that pressure at a volume this close to the covolume.
    load(2);
    init_saturation_curves();
    for (std::size_t k = 0; k < vvls.size(); ++k)
        vvls[k] = 0.2;
    double T = 0, v_g = 0, v_l = 0;
    saturation__P(0.5, T, v_g, v_l);
    EXPECT_EQ(support::shared_text(), "ERROR: in T__P_v");
}

// Counted passes

/// One pass of the iteration as it is written down, without the guards.
struct phases {
    double v_g;
    double v_l;

    bool step(const gradient &F, const gradient &of_g, const gradient &of_l, bool lift) {
        const double a = of_g[0], b = -of_l[0], c = of_g[1], d = -of_l[1], det = a * d - b * c;
        if (det == 0)
            return false;
        v_g -= (d * F[0] - b * F[1]) / det;
        v_l -= (a * F[1] - c * F[0]) / det;
        if (lift) {
            v_g = std::max(v_g, vmin);
            v_l = std::max(v_l, vmin);
        }
        return true;
    }
};
/// The pass that converges, 0 if none does; `at` becomes what the iteration ends with.
int passes_at_T(double T, phases &at) {
    for (int i = 1; i <= 51; ++i) {
        const gradient F = {mu__T_v(T, at.v_g) - mu__T_v(T, at.v_l), P__T_v(T, at.v_g) - P__T_v(T, at.v_l)};
        if (std::abs(F[0]) < 1e-6 && std::abs(F[1]) < 1e-6)
            return i;
        if (!at.step(F, {dmu__dT_dv(T, at.v_g)[1], pressure_slopes(T, at.v_g)[1]},
                     {dmu__dT_dv(T, at.v_l)[1], pressure_slopes(T, at.v_l)[1]}, false))
            return 0;
        keep_sides(at.v_g, at.v_l);
    }
    return 0;
}
/// The same at a pressure, for an ideal gas: T = P v.
int passes_at_P(double P, phases &at) {
    for (int i = 1; i <= 101; ++i) {
        const double T_g = P * at.v_g, T_l = P * at.v_l;
        const gradient F = {mu__T_v(T_g, at.v_g) - mu__T_v(T_l, at.v_l), T_g - T_l};
        if (std::abs(F[0]) < 1e-5 && std::abs(F[1]) < 1e-5)
            return i;
        const auto slopes = [](double T, double v) {
            const gradient P_slopes = pressure_slopes(T, v), mu = dmu__dT_dv(T, v);
            const double dT = -P_slopes[1] / P_slopes[0];
            return gradient{mu[1] + mu[0] * dT, dT};
        };
        if (!at.step(F, slopes(T_g, at.v_g), slopes(T_l, at.v_l), true))
            return 0;
        keep_sides(at.v_g, at.v_l);
    }
    return 0;
}
/// A table from whose every point the iteration starts at given volumes.
void start_everywhere_at(const phases &start) {
    TTs = {1.0, 0.9, 0.8};
    PPs = {1.0, 0.9, 0.8};
    vvgs.assign(3, start.v_g);
    vvls.assign(3, start.v_l);
}
/// An ideal gas with volumes of any size.
void load_ideal_gas_without_bounds(const char *heat) {
    support::load({"", 1, support::vapor_fluid, ""}, {"", heat});
    ASSERT_EQ(gas.Zc, 1.0);
    Tmin = vmin = 0;
}
/// A start for every number of passes, found by trying.
template <class Passes>
std::map<int, phases> starts_by_passes(Passes passes, double v_g_ratio, double v_l_ratio) {
    std::map<int, phases> found;
    for (phases start = {1.001, 0.999}; start.v_g < 1e145 && start.v_l > 1e-30;) {
        phases at = start;
        found.insert({passes(at), start});
        start.v_g *= v_g_ratio;
        start.v_l *= v_l_ratio;
    }
    return found;
}

/// At x = 0.9 the iteration gets what it is written down to get for each of these numbers of passes, and calls that a
/// success for as many as `most`.
void expect_passes(const request &by, int (*passes_at)(double x, phases &at), double v_g_ratio, double v_l_ratio,
                   std::initializer_list<int> numbers, int most, void (*check)(double y, double v_g)) {
    const auto starts = starts_by_passes([&](phases &at) { return passes_at(0.9, at); }, v_g_ratio, v_l_ratio);
    for (const int passes : numbers) {
        SCOPED_TRACE(passes);
        ASSERT_TRUE(starts.contains(passes));
        phases at = starts.at(passes);
        start_everywhere_at(at);
        passes_at(0.9, at);
        double y = 0, v_g = 0, v_l = 0;
        const bool counts = passes >= 1 && passes <= most;
        bool success = !counts;
        by.at(0.9, y, v_g, v_l, &success);
        EXPECT_EQ(success, counts);
        const std::string text = counts ? "No errors" : by.no_convergence;
        EXPECT_EQ(support::shared_text(), text);
        errmsg.reset();
        by.at(0.9, y, v_g, v_l, nullptr); // nobody asks for success
        EXPECT_EQ(support::shared_text(), text);
        EXPECT_NEAR(v_g / at.v_g, 1.0, 1e-9);
        EXPECT_NEAR(v_l / at.v_l, 1.0, 1e-9);
        check(y, v_g);
        errmsg.reset();
    }
}

TEST_F(thermodynamics_saturation_test, at_a_temperature_fifty_passes_count) {
    load_ideal_gas_without_bounds("T\n1\n3.5\n");
    expect_passes(by_temperature, passes_at_T, 1.0, 0.83, {3, 25, 49, 50, 51, 0}, 50,
                  [](double P, double v_g) { EXPECT_EQ(P, P__T_v(0.9, v_g)); });
}

TEST_F(thermodynamics_saturation_test, at_a_pressure_a_hundred_passes_count) {
    // With cv proportional to T the Gibbs energy grows as T^2, and a pass halves a large volume.
    load_ideal_gas_without_bounds("T\n2\n3.5 1.0\n");
    expect_passes(by_pressure, passes_at_P, 1.3, 1.0, {6, 50, 99, 100, 101}, 100, [](double, double) {});
}

TEST_F(thermodynamics_saturation_test, the_temperature_search_behind_a_pass_may_fail) {
    // A first pass that takes the vapor below the covolume, where so low a pressure needs a temperature of almost 0.
    load(2);
    start_everywhere_at({1.5, 2.2});
    Tmin = 0.1;
    double T = 0, v_g = 0, v_l = 0;
    saturation__P(0.85, T, v_g, v_l);
    EXPECT_EQ(support::shared_text(), "ERROR: in T__P_v");
    EXPECT_EQ(v_g, vmin);
    EXPECT_GT(v_l, vmin);
}

// The first pass takes each phase to the other side of the critical volume. The lowest temperature then keeps the
// search for the liquid's temperature from converging, so that the volumes stay visible.
TEST_F(thermodynamics_saturation_test, phases_that_have_both_crossed_start_anew) {
    for (const double lowest : {0.09, 0.2}) {
        SCOPED_TRACE(lowest);
        errmsg.reset();
        load(7);
        start_everywhere_at({0.4, 0.9});
        for (double &T : TTs)
            T /= gas.Zc;
        Tmin = 3.0;
        vmin = lowest;
        double T = 0, v_g = 0, v_l = 0;
        saturation__P(0.85, T, v_g, v_l);
        EXPECT_EQ(support::shared_text(), "ERROR: in T__P_v");
        EXPECT_EQ(v_g, 10.0);
        EXPECT_EQ(v_l, std::max(0.1, lowest));
    }
}

// Sampled curves

void expect_sampled_curve(const request &by, double relative_end) {
    constexpr std::size_t N = 40;
    std::array<double, N> x{}, v_g{}, v_l{}, y{};
    const double x_end = relative_end * by.critical_x();
    bool success = false;
    by.curve(x, v_g, v_l, y, x_end, &success);
    EXPECT_TRUE(success);
    ASSERT_EQ(support::shared_text(), "No errors");
    EXPECT_EQ(x[0], by.critical_x());
    EXPECT_EQ(y[0], by.critical_y());
    EXPECT_EQ(v_g[0], 1.0);
    EXPECT_EQ(v_l[0], 1.0);
    EXPECT_EQ(x[N - 1], x_end);
    EXPECT_NEAR((x[1] - x[0]) / (x_end - x[0]), 0.05 / (std::pow(1.05, 39) - 1), 1e-12);
    for (std::size_t k = 1; k < N; ++k) {
        if (k > 1) {
            EXPECT_NEAR((x[k] - x[k - 1]) / (x[k - 1] - x[k - 2]), 1.05, 1e-10);
        }
        double expected_y = 0, expected_v_g = 0, expected_v_l = 0;
        by.at(x[k], expected_y, expected_v_g, expected_v_l, nullptr);
        EXPECT_EQ(y[k], expected_y);
        EXPECT_EQ(v_g[k], expected_v_g);
        EXPECT_EQ(v_l[k], expected_v_l);
    }
}

TEST_F(thermodynamics_saturation_test, a_sampled_curve_over_temperatures) {
    for_each_true_curve([] { expect_sampled_curve(by_temperature, 0.8); });
}

TEST_F(thermodynamics_saturation_test, a_sampled_curve_over_pressures) {
    for_each_true_curve([] { expect_sampled_curve(by_pressure, 0.2); });
}

TEST_F(thermodynamics_saturation_test, a_sampled_curve_stops_at_its_first_failure_where_success_is_asked_for) {
    load(4);
    init_saturation_curves();
    constexpr std::size_t N = 10;
    const double T_end = 0.3 / gas.Zc; // below the table
    for (const bool asked : {true, false}) {
        errmsg.reset();
        std::array<double, N> T{}, v_g{}, v_l{}, P{};
        v_g.fill(-1);
        bool success = true;
        saturation_curves_T(T, v_g, v_l, P, T_end, asked ? &success : nullptr);
        EXPECT_THAT(support::shared_text(), testing::StartsWith("Temperature out of range: "));
        std::size_t first = 1;
        while (T[first] >= TTs.back())
            ++first;
        ASSERT_LT(first, N - 1);
        EXPECT_GT(v_g[first - 1], 1.0);
        EXPECT_EQ(success, !asked);
        EXPECT_EQ(v_g[first + 1] == -1, asked);
    }
    errmsg.reset();
    std::array<double, N> T{}, v_g{}, v_l{}, P{};
    v_g.fill(-1);
    bool success = true;
    saturation_curves_P(P, v_g, v_l, T, 1e-9, &success);
    EXPECT_THAT(support::shared_text(), testing::StartsWith("Pressure out of range: "));
    EXPECT_FALSE(success);
    errmsg.reset();
    load_ideal_gas_without_bounds("T\n2\n3.5 1.0\n");
    start_everywhere_at({1e30, 0.999});
    v_g.fill(-1);
    success = true;
    saturation_curves_P(P, v_g, v_l, T, 0.8, &success);
    EXPECT_EQ(support::shared_text(), "Newton method failed to converge in subroutine saturation_P.");
    EXPECT_FALSE(success);
    EXPECT_NE(v_g[1], -1.0);
    EXPECT_EQ(v_g[2], -1.0);
    errmsg.reset();
    saturation_curves_P({}, {}, {}, {}, 0.5, &success);
    saturation_curves_T({}, {}, {}, {}, 0.5, &success);
    EXPECT_TRUE(success);
    EXPECT_EQ(support::shared_text(), "No errors");
}

} // namespace
