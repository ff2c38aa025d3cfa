// SPDX-License-Identifier: MIT
#include "Algebra/nonlinear_equations.h"

#include "Tests/Support/child_process.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

using namespace nonlinear_equations;
using support::child_process;
using support::expect_stop;
using support::standard_input;
using support::written;

constexpr double epsilon = 2.220446049250313e-16;
constexpr double ten_epsilon = 2.220446049250313e-15;
constexpr double infinity = std::numeric_limits<double>::infinity();
const double nan = std::nan("");

const std::string flat = "  Il Metodo di Newton ha trovato la derivata nulla\n"
                         "  Il calcolo e' interrotto\n";
const std::string no_root = "  L`intervallo [a,b] o [b,a] non contiene una radice.\n"
                            "  Calcolo interrotto in bisection.\n";
std::string not_found(const std::string &cap_in_12_columns) {
    return "  Il Metodo di Newton non ha trovato la soluzione\n"
           "  in n_max = " +
           cap_in_12_columns +
           "  iterazioni\n"
           "  Il calcolo e' interrotto\n";
}

double identity(double x) {
    return x;
}
double one(double) {
    return 1.0;
}
double square(double x) {
    return x * x;
}
double slope_of_square(double x) {
    return 2 * x;
}

/// A search that never meets a tolerance below 1: the step is always 1, and x moves away from 0 by each step.
void never_converges() {
    newton([](double) { return 1.0; }, [](double) { return -1.0; }, 0.0, 1e-12);
}

// These calls are made before any test has passed one of the kept arguments.
struct first_calls {
    std::string text;
    double root;
    first_calls() : root(newton([](double x) { return x - 3.0; }, one, 1.0, 1e-9)) {
        child_process child([] {
            newton(
                identity, [](double) { return -1.0; }, 1.0, 1e-9);
        });
        text = child.read_text();
        child.status();
    }
} const at_first;

TEST(nonlinear_equations_at_first, the_cap_is_50_and_f_sh_is_0) {
    EXPECT_EQ(at_first.text, not_found("          50"));
    EXPECT_EQ(at_first.root, 3.0);
}

struct nonlinear_equations_test : testing::Test {
    nonlinear_equations_test() { forget(); }
    ~nonlinear_equations_test() override { forget(); }
    static void forget() {
        std::int32_t n_max = 50;
        newton([](double) { return 0.0; }, one, 1.0, 1.0, &n_max, 0.0);
    }
};
struct newton_test : nonlinear_equations_test {};
struct bisection_test : nonlinear_equations_test {};

TEST_F(newton_test, finds_a_root) {
    EXPECT_NEAR(newton([](double x) { return x * x - 2.0; }, slope_of_square, 1.0, 1e-12), std::sqrt(2.0), epsilon);
    EXPECT_NEAR(newton([](double x) { return x * x - 2.0; }, slope_of_square, -1.0, 1e-12), -std::sqrt(2.0), epsilon);
    EXPECT_NEAR(
        newton([](double x) { return std::cos(x) - x; }, [](double x) { return -std::sin(x) - 1.0; }, 1.0, 1e-12),
        0.7390851332151607, epsilon);
}

TEST_F(newton_test, returns_the_number_of_iterations) {
    // The first step reaches the root, the second one does not move.
    std::int32_t n_max = 10;
    EXPECT_EQ(newton([](double x) { return 2.0 * x - 6.0; }, [](double) { return 2.0; }, 0.0, 1e-12, &n_max), 3.0);
    EXPECT_EQ(n_max, 2);
    n_max = 1;
    EXPECT_EQ(newton([](double x) { return x - 6.0; }, one, 6.0, 1e-12, &n_max), 6.0);
    EXPECT_EQ(n_max, 1) << "the last iteration counts";
}

TEST_F(newton_test, a_step_as_large_as_the_tolerance_is_too_large) {
    // x is 1, 2, 3; the step of 1 is half of 2.
    const auto minus = [](double) { return -1.0; };
    std::int32_t n_max = 10;
    EXPECT_EQ(newton(one, minus, 1.0, 0.5, &n_max), 3.0);
    EXPECT_EQ(n_max, 2);
    // It is the same on the other side of 0.
    n_max = 10;
    EXPECT_EQ(newton(one, one, -1.0, 0.5, &n_max), -3.0);
    EXPECT_EQ(n_max, 2);
}

TEST_F(newton_test, asks_for_the_derivative_first_and_for_each_once) {
    std::string asked;
    newton(
        [&](double x) {
            asked += 'f';
            return x - 3.0;
        },
        [&](double) {
            asked += 'd';
            return 1.0;
        },
        1.0, 1e-9);
    EXPECT_EQ(asked, "dfdf");
}

TEST_F(newton_test, f_sh_is_what_f_is_to_be) {
    EXPECT_NEAR(newton(square, slope_of_square, 1.0, 1e-12, nullptr, 9.0), 3.0, 4 * epsilon);
}

TEST_F(newton_test, f_sh_is_kept_for_both_routines) {
    newton(square, slope_of_square, 1.0, 1e-12, nullptr, 9.0);
    EXPECT_NEAR(newton(square, slope_of_square, 1.0, 1e-12), 3.0, 4 * epsilon);
    EXPECT_NEAR(bisection(square, 0.0, 10.0, 1e-12), 3.0, 1e-11);
    bisection(square, 0.0, 10.0, 1e-12, 16.0);
    EXPECT_NEAR(newton(square, slope_of_square, 1.0, 1e-12), 4.0, 4 * epsilon);
    newton(square, slope_of_square, 1.0, 1e-12, nullptr, 0.25);
    EXPECT_NEAR(bisection(square, 0.0, 10.0, 1e-12), 0.5, 1e-12);
}

TEST_F(newton_test, the_cap_is_kept_not_the_number_of_iterations) {
    std::int32_t n_max = 10;
    newton([](double x) { return x - 3.0; }, one, 1.0, 1e-12, &n_max);
    EXPECT_EQ(n_max, 2);
    expect_stop(never_converges, not_found("          10"));
    n_max = 2147483647;
    newton([](double x) { return x - 3.0; }, one, 1.0, 1e-12, &n_max);
    EXPECT_EQ(n_max, 2);
}

TEST_F(newton_test, gives_up_after_the_cap) {
    expect_stop(never_converges, not_found("          50"));
    for (const auto &[cap, text] : {std::pair(1, "           1"), {3, "           3"}, {1234, "        1234"}}) {
        std::string calls;
        for (int i = 0; i < cap; ++i)
            calls += "df";
        const auto told = [](char name, double value) {
            return [=](double) {
                std::putchar(name);
                return value;
            };
        };
        expect_stop(
            [&, most = cap] {
                std::int32_t n_max = most;
                newton(told('f', 1.0), told('d', -1.0), 0.0, 1e-12, &n_max);
            },
            calls + not_found(text));
    }
}

TEST_F(newton_test, a_cap_below_1_asks_for_nothing) {
    const auto untouched = [](double) -> double { std::abort(); };
    for (const auto &[cap, text] : {std::pair(0, "           0"),
                                    {-5, "          -5"},
                                    {std::numeric_limits<std::int32_t>::min(), " -2147483648"}})
        expect_stop(
            [&, most = cap] {
                std::int32_t n_max = most;
                newton(untouched, untouched, 1.0, 1e-12, &n_max);
            },
            not_found(text));
}

TEST_F(newton_test, a_NaN_runs_to_the_cap) {
    const auto no_number = [](double) { return nan; };
    expect_stop([&] { newton(no_number, one, 1.0, 1e-12); }, not_found("          50"));
    expect_stop([&] { newton(one, no_number, 1.0, 1e-12); }, not_found("          50"));
    expect_stop([] { newton(identity, one, nan, 1e-12); }, not_found("          50"));
    expect_stop([] { newton(square, slope_of_square, 1.0, nan); }, not_found("          50"));
    expect_stop([] { newton(square, slope_of_square, 1.0, 1e-12, nullptr, nan); }, not_found("          50"));
    expect_stop([] { newton(identity, one, infinity, 1e-12); }, not_found("          50"));
    EXPECT_EQ(newton(one, one, infinity, 1e-12), infinity);
}

TEST_F(newton_test, a_root_of_exactly_0_is_not_recognised) {
    expect_stop([] { newton(identity, one, 1.0, 1e-3); }, not_found("          50"));
}

TEST_F(newton_test, stops_at_a_vanishing_derivative) {
    expect_stop([] { newton([](double x) { return x * x + 1.0; }, slope_of_square, 0.0, 1e-12); }, flat);
    for (const double slope : {0.0, -0.0, std::nextafter(epsilon, 0.0), -std::nextafter(epsilon, 0.0), 5e-324})
        expect_stop(
            [=] {
                newton(
                    identity, [=](double) { return slope; }, 1.0, 1e-12);
            },
            flat);
    for (const double slope : {epsilon, -epsilon})
        EXPECT_EQ(newton([](double) { return 0.0; }, [=](double) { return slope; }, 1.0, 1e-12), 1.0);
}

TEST_F(newton_test, takes_the_steps_that_are_written) {
    const auto f = [](double x) { return std::exp(x) - 3.0 * x * x; };
    const auto df = [](double x) { return std::exp(x) - 6.0 * x; };
    for (const double x0 : {-2.0, -0.3, 0.9, 3.0, 5.0}) {
        std::vector<double> asked, expected;
        double x = x0, step = 0;
        do {
            expected.push_back(x);
            step = (f(x) - 0.25) / -df(x);
            x = x + step;
        } while (!(std::abs(step) < std::abs(x) * 1e-10));
        const auto recorded = [&](double at) {
            asked.push_back(at);
            return f(at);
        };
        EXPECT_EQ(newton(recorded, df, x0, 1e-10, nullptr, 0.25), x);
        EXPECT_EQ(asked, expected);
        EXPECT_NEAR(f(x), 0.25, 1e-12);
    }
}

TEST_F(newton_test, a_search_inside_another_does_not_disturb_it) {
    // The inner search leaves another f_sh and another greatest number of iterations.
    const auto root_of = [](double y) {
        std::int32_t n_max = 40;
        return newton(square, slope_of_square, 1.0, 1e-14, &n_max, y);
    };
    std::int32_t n_max = 20;
    EXPECT_NEAR(newton(
                    root_of, [&](double y) { return 0.5 / root_of(y); }, 1.0, 1e-10, &n_max, 1.5),
                2.25, 1e-12);
}

TEST_F(newton_test, an_exception_passes_through) {
    EXPECT_THROW(newton([](double) -> double { throw std::domain_error("f"); }, one, 1.0, 1e-12), std::domain_error);
}

std::string warning(const std::string &value_in_26_columns) {
    return "  Attenzione: rel_tol =" + value_in_26_columns +
           "  < precisione macchina.\n"
           "  Precisione relativa modificata:   2.2204460492503131E-015\n";
}

TEST_F(nonlinear_equations_test, a_tolerance_below_rounding_is_replaced_with_a_warning) {
    const auto cases = {std::pair(epsilon, "   2.2204460492503131E-016"),
                        {1e-17, "   1.0000000000000001E-017"},
                        {0.0, "   0.0000000000000000     "},
                        {-1.0, "  -1.0000000000000000     "},
                        {-infinity, "                 -Infinity"}};
    for (const auto &[rel_tol, text] : cases) {
        const auto f = [](double x) { return x * x - 2.0; };
        double found = 0;
        EXPECT_EQ(written([&, tolerance = rel_tol] { found = newton(f, slope_of_square, 1.0, tolerance); }),
                  warning(text));
        EXPECT_EQ(found, newton(f, slope_of_square, 1.0, ten_epsilon));
        int calls = 0, calls_expected = 0;
        const auto counted = [&](int &count) {
            return [&](double x) {
                ++count;
                return f(x);
            };
        };
        EXPECT_EQ(written([&, tolerance = rel_tol] { found = bisection(counted(calls), 1.0, 2.0, tolerance); }),
                  warning(text));
        EXPECT_EQ(found, bisection(counted(calls_expected), 1.0, 2.0, ten_epsilon));
        EXPECT_EQ(calls, calls_expected);
    }
}

TEST_F(nonlinear_equations_test, a_tolerance_above_rounding_is_taken_in_silence) {
    const auto f = [](double x) { return x - 2.0; };
    for (const double rel_tol : {std::nextafter(epsilon, 1.0), ten_epsilon, 1.0, infinity}) {
        EXPECT_EQ(written([&] { newton(f, one, 1.0, rel_tol); }), "");
        EXPECT_EQ(written([&] { bisection(f, 1.0, 2.5, rel_tol); }), "");
    }
    EXPECT_EQ(written([&] { bisection(f, 1.0, 2.5, nan); }), "");
}

TEST_F(bisection_test, finds_a_root_in_an_interval_given_either_way) {
    for (const double rel_tol : {1e-3, 1e-9, 1e-14}) {
        const auto f = [](double x) { return x * x * x - 5.0; };
        EXPECT_NEAR(bisection(f, 0.0, 4.0, rel_tol), std::cbrt(5.0), 2 * rel_tol);
        EXPECT_NEAR(bisection(f, 4.0, 0.0, rel_tol), std::cbrt(5.0), 2 * rel_tol);
        const auto falling = [](double x) { return -x * x * x - 5.0; };
        EXPECT_NEAR(bisection(falling, -7.0, 4.0, rel_tol), -std::cbrt(5.0), 2 * rel_tol);
    }
}

/// The rule as it is written, with products of values; in these tests the products do not underflow.
template <class Function>
double as_written(Function f, double a, double b, double rel_tol) {
    const double fa = f(a), fb = f(b);
    if (fa == 0)
        return a;
    if (fb == 0)
        return b;
    double m = (a + b) / 2, fm = f(m);
    while (std::abs(b - a) > std::abs(m) * rel_tol) {
        if (fm == 0)
            return m;
        if (fm * fa <= 0)
            b = m;
        else
            a = m;
        m = (a + b) / 2;
        fm = f(m);
    }
    return m;
}

TEST_F(bisection_test, looks_where_the_rule_does) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> any(-3.0, 3.0);
    for (int i = 0; i < 300; ++i) {
        const double root = any(random), other = any(random), a = root - std::abs(any(random)) - 1e-3,
                     b = root + std::abs(any(random)) + 1e-3, sign = i % 2 == 0 ? 1.0 : -1.0;
        std::vector<double> asked, expected;
        const auto recorded = [&](std::vector<double> &points) {
            return [&](double x) {
                points.push_back(x);
                return sign * (x - root) * (1 + (x - other) * (x - other));
            };
        };
        const double rel_tol = std::pow(10.0, -14.0 * (i % 50) / 50);
        EXPECT_EQ(bisection(recorded(asked), i % 3 == 0 ? a : b, i % 3 == 0 ? b : a, rel_tol),
                  as_written(recorded(expected), i % 3 == 0 ? a : b, i % 3 == 0 ? b : a, rel_tol));
        EXPECT_EQ(asked, expected);
    }
}

TEST_F(bisection_test, a_root_at_an_end_is_returned_first) {
    const auto f = [](double x) { return (x - 1.0) * (x - 2.0); };
    EXPECT_EQ(bisection(f, 1.0, 5.0, 1e-9), 1.0);
    EXPECT_EQ(bisection(f, -5.0, 2.0, 1e-9), 2.0);
    const auto negative = [&](double x) { return -f(x); };
    EXPECT_EQ(bisection(negative, 1.0, 5.0, 1e-9), 1.0);
    EXPECT_EQ(bisection(negative, -5.0, 2.0, 1e-9), 2.0);
    EXPECT_EQ(bisection(f, 2.0, 1.0, 1e-9), 2.0) << "both ends";
    EXPECT_EQ(bisection(f, 1.0, nan, 1e-9), 1.0);
    EXPECT_EQ(written([&] { bisection(f, 1.0, 5.0, 0.0); }), "") << "before the tolerance is looked at";
    EXPECT_EQ(bisection([](double x) { return x - 7.0; }, 10.0, 20.0, 1e-9, 3.0), 10.0) << "where f is f_sh";
}

// f_sh counts at the first middle too: at 0.5 the function and its distance from f_sh have different signs.
TEST_F(bisection_test, f_sh_is_what_f_is_to_be) {
    const auto f = [](double x) { return x; };
    for (const double f_sh : {0.1, 0.3, 0.6, 0.9}) {
        EXPECT_NEAR(bisection(f, 0.0, 1.0, 1e-12, f_sh), f_sh, 1e-12);
        EXPECT_NEAR(bisection(f, 1.0, 0.0, 1e-12, f_sh), f_sh, 1e-12);
    }
}

TEST_F(bisection_test, a_root_in_the_middle_ends_the_search) {
    int calls = 0;
    const auto f = [&](double x) {
        ++calls;
        return x - 1.0;
    };
    EXPECT_EQ(bisection(f, -1.0, 3.0, 1e-9), 1.0);
    EXPECT_EQ(calls, 3);
}

TEST_F(bisection_test, an_interval_as_large_as_the_tolerance_is_small_enough) {
    const auto f = [](double x) { return x - 1.2; };
    EXPECT_EQ(bisection(f, 1.0, 3.0, 1.0), 2.0);
    EXPECT_EQ(bisection(f, 1.0, 3.0, std::nextafter(1.0, 0.0)), 1.5);
}

TEST_F(bisection_test, stops_where_the_ends_have_the_same_sign) {
    expect_stop([] { bisection(square, 1.0, 2.0, 1e-9); }, no_root);
    expect_stop([] { bisection(square, 2.0, -3.0, 1e-9); }, no_root);
    expect_stop([] { bisection([](double) { return -1.0; }, 1.0, 2.0, 1e-9); }, no_root);
    expect_stop([] { bisection(square, 1.0, 2.0, 0.0); }, no_root); // before the tolerance is checked
    expect_stop([] { bisection(square, 1.0, 1.0, 1e-9); }, no_root);
    expect_stop([] { bisection(square, 0.0, 10.0, 1e-9, -1.0); }, no_root);
    expect_stop([] { bisection(square, -infinity, infinity, 1e-9); }, no_root);
}

// The products of the values are 0 in double precision.
TEST_F(bisection_test, tiny_values_have_a_sign) {
    const auto f = [](double x) { return 1e-200 * (x - 1.3); };
    EXPECT_NEAR(bisection(f, 0.0, 4.0, 1e-12), 1.3, 1e-11);
    expect_stop([&] { bisection(f, 2.0, 3.0, 1e-9); }, no_root);
}

TEST_F(bisection_test, ends_where_the_ends_meet_around_0) {
    int calls = 0;
    const auto limited = [&](double value) {
        if (++calls > 3000)
            throw std::length_error("endless");
        return value;
    };
    const auto bisected = [&](auto f, double a, double b) {
        calls = 0;
        return bisection([&](double x) { return limited(f(x)); }, a, b, 1e-12);
    };
    EXPECT_NEAR(bisected(identity, -1.0, 2.0), 0.0, 5e-324);
    EXPECT_GT(calls, 1000);
    // These functions have only signs, with the jump on either side of 0.
    const auto below = [](double x) { return x < 0.0 ? -1.0 : 1.0; };
    const auto above = [](double x) { return x <= 0.0 ? -1.0 : 1.0; };
    for (const auto &[a, b] : {std::pair(-1.0, 2.0), {2.0, -1.0}, {-3.0, 1.0}, {-5e-324, 5e-324}, {-5e-324, 1.0}}) {
        EXPECT_NEAR(bisected(below, a, b), 0.0, 5e-324);
        EXPECT_NEAR(bisected(above, a, b), 0.0, 5e-324);
    }
    EXPECT_NEAR(bisected([](double x) { return x - 1e-320; }, -1.0, 1.0), 1e-320, 5e-324);
}

TEST_F(bisection_test, ends_in_the_widest_intervals) {
    constexpr double largest = std::numeric_limits<double>::max();
    const auto f = [](double x) { return x - 3.0; };
    EXPECT_NEAR(bisection(f, -largest, largest, 1e-12), 3.0, 1e-11);
    EXPECT_NEAR(bisection([](double x) { return x - 1.5e308; }, 1e308, largest, 1e-12), 1.5e308, 1e297)
        << "the sum of the ends is above the largest number";
    EXPECT_EQ(bisection(f, 0.0, infinity, 1e-12), infinity) << "no middle";
    EXPECT_EQ(bisection(f, -infinity, 5.0, 1e-12), -infinity);
    EXPECT_TRUE(std::isnan(bisection(f, -infinity, infinity, 1e-12)));
}

TEST_F(bisection_test, a_NaN_ends_the_search) {
    EXPECT_TRUE(std::isnan(bisection(identity, nan, 1.0, 1e-12)));
    EXPECT_TRUE(std::isnan(bisection(identity, -1.0, nan, 1e-12)));
    EXPECT_EQ(bisection(identity, -1.0, 2.0, nan), 0.5);
    // Where f has no value, the search goes on with the part next to b.
    EXPECT_NEAR(bisection([](double) { return nan; }, 1.0, 2.0, 1e-12), 2.0, 1e-11);
    EXPECT_NEAR(bisection(identity, 1.0, 2.0, 1e-12, nan), 2.0, 1e-11);
}

TEST_F(nonlinear_equations_test, at_a_terminal_newton_waits_for_a_line) {
    if (!support::has_pseudo_terminals())
        GTEST_SKIP() << "without pseudo-terminals";
    for (const std::string_view keys : {"\n", "va bene\n", "\4"}) { // the last one ends the input
        child_process child(
            [] {
                newton(
                    identity, [](double) { return 0.0; }, 1.0, 1e-12);
            },
            standard_input::terminal);
        EXPECT_EQ(child.read_text(flat.size()), flat);
        EXPECT_TRUE(child.waits());
        child.type(keys);
        EXPECT_EQ(child.status(), 1);
        EXPECT_EQ(child.read_text(), flat);
    }
    child_process child(never_converges, standard_input::terminal);
    const std::string text = not_found("          50");
    EXPECT_EQ(child.read_text(text.size()), text);
    EXPECT_TRUE(child.waits());
    child.type("no line end yet");
    EXPECT_TRUE(child.waits());
    child.type("\n");
    EXPECT_EQ(child.status(), 1);
}

TEST_F(nonlinear_equations_test, one_line_is_read_and_no_more) {
    if (!support::has_pseudo_terminals())
        GTEST_SKIP() << "without pseudo-terminals";
    child_process child(
        [] {
            std::atexit([] { std::printf("next: %c\n", std::getchar()); });
            never_converges();
        },
        standard_input::terminal);
    child.type("va bene\nother\n");
    EXPECT_EQ(child.read_text(), not_found("          50") + "next: o\n");
    EXPECT_EQ(child.status(), 1);
}

TEST_F(nonlinear_equations_test, without_a_terminal_nothing_is_read) {
    child_process child(never_converges, standard_input::silent_pipe);
    EXPECT_EQ(child.read_text(), not_found("          50"));
    EXPECT_EQ(child.status(), 1);
}

TEST_F(nonlinear_equations_test, at_a_terminal_bisection_does_not_wait) {
    if (!support::has_pseudo_terminals())
        GTEST_SKIP() << "without pseudo-terminals";
    child_process child([] { bisection(square, 1.0, 2.0, 1e-9); }, standard_input::terminal);
    EXPECT_EQ(child.read_text(), no_root);
    EXPECT_EQ(child.status(), 1);
}

TEST_F(nonlinear_equations_test, stopping_keeps_what_the_host_has_written_and_calls_its_exit_handlers) {
    expect_stop(
        [] {
            std::atexit([] { std::fputs("the host's last word\n", stdout); });
            std::fputs("before ", stdout);
            bisection(square, 1.0, 2.0, 1e-9);
        },
        "before " + no_root + "the host's last word\n");
}

} // namespace
