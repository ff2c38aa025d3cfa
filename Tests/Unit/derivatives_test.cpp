// SPDX-License-Identifier: MIT
#include "Algebra/derivatives.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <vector>

namespace {

using namespace derivatives;
using testing::ElementsAre;
using vector = std::span<const double>;

constexpr double c1 = 1.0e-7;
constexpr double c2 = 0.00031622776601683794;

/// A function whose derivatives are known: f, f', f'', f''', f''''.
struct known_function {
    const char *name;
    double (*derivative[5])(double);
};

const known_function known_functions[] = {
    {"exp",
     {[](double x) { return std::exp(x); }, [](double x) { return std::exp(x); }, [](double x) { return std::exp(x); },
      [](double x) { return std::exp(x); }, [](double x) { return std::exp(x); }}},
    {"sin",
     {[](double x) { return std::sin(x); }, [](double x) { return std::cos(x); }, [](double x) { return -std::sin(x); },
      [](double x) { return -std::cos(x); }, [](double x) { return std::sin(x); }}},
    {"x^3",
     {[](double x) { return x * x * x; }, [](double x) { return 3 * x * x; }, [](double x) { return 6 * x; },
      [](double) { return 6.0; }, [](double) { return 0.0; }}},
    {"1/(x^2 + 1)",
     {[](double x) { return 1 / (x * x + 1); }, [](double x) { return -2 * x / std::pow(x * x + 1, 2); },
      [](double x) { return (6 * x * x - 2) / std::pow(x * x + 1, 3); },
      [](double x) { return 24 * x * (1 - x * x) / std::pow(x * x + 1, 4); },
      [](double x) { return 24 * (5 * std::pow(x, 4) - 10 * x * x + 1) / std::pow(x * x + 1, 5); }}},
};

TEST(derivatives_test, are_as_accurate_as_the_header_says) {
    double largest_first = 0, largest_second = 0;
    for (const known_function &known : known_functions) {
        const auto &f = known.derivative;
        for (double x = -10.0; x <= 10.0; x += 0.0371)
            for (const double x_scale : {0.5, 1.0, 4.0}) {
                const double L = std::max(std::abs(x), x_scale);
                const auto size = [&](int order) { return std::abs(f[order](x)); };
                const double first = std::abs(df_dx(f[0], x, x_scale) - f[1](x));
                // The bound has some room, since it is for the derivatives near x and not at x.
                const double first_allowed =
                    1.02 * (2.3e-9 * (size(0) / L + size(1)) + 2e-15 * L * L * size(3)) + 1e-14;
                EXPECT_LE(first, first_allowed) << known.name << " at " << x << ", " << x_scale;
                const double second = std::abs(d2f_dx2(f[0], x, x_scale) - f[2](x));
                const double second_allowed = 1.02 * (1e-8 * size(0) / (L * L) + 2.3e-9 * size(1) / L +
                                                      1e-12 * size(2) + 1e-8 * L * L * size(4)) +
                                              1e-13;
                EXPECT_LE(second, second_allowed) << known.name << " at " << x << ", " << x_scale;
                largest_first = std::max(largest_first, first / first_allowed);
                largest_second = std::max(largest_second, second / second_allowed);
            }
    }
    // The bounds are not much larger than necessary.
    EXPECT_GT(largest_first, 0.3);
    EXPECT_GT(largest_second, 0.3);
}

TEST(derivatives_test, exact_where_the_differences_are) {
    // At 0 neither x + h nor x - h is rounded.
    EXPECT_NEAR(df_dx([](double x) { return 4 * x; }, 0.0, 1.0), 4.0, 4e-15);
    EXPECT_NEAR(df_dx([](double x) { return x * x; }, 0.0, 3.0), 0.0, 0.0);
    EXPECT_NEAR(d2f_dx2([](double x) { return 3 * x * x; }, 0.0, 2.0), 6.0, 6e-15);
    EXPECT_EQ(d2f_dx2([](double) { return 5.0; }, 7.0, 2.0), 0.0);
}

/// The points at which a derivative asks for f.
template <class Derivative>
std::vector<double> asked(Derivative derivative, double x, double x_scale) {
    std::vector<double> points;
    derivative(
        [&](double at) {
            points.push_back(at);
            return 0.0;
        },
        x, x_scale);
    std::sort(points.begin(), points.end());
    return points;
}

TEST(derivatives_test, the_step_goes_with_the_larger_of_x_and_its_scale) {
    for (const auto &[x, x_scale, L] : {std::array{2.0, 1.0, 2.0},
                                        {-2.0, 1.0, 2.0},
                                        {0.5, 3.0, 3.0},
                                        {-0.5, 3.0, 3.0},
                                        {0.0, 0.25, 0.25},
                                        {-0.0, 0.25, 0.25},
                                        {7.0, 0.0, 7.0},
                                        {7.0, -9.0, 7.0},
                                        {3e200, 1.0, 3e200}}) {
        EXPECT_THAT(asked(df_dx, x, x_scale), ElementsAre(x - L * c1, x + L * c1));
        EXPECT_THAT(asked(d2f_dx2, x, x_scale), ElementsAre(x - L * c2, x, x + L * c2));
    }
}

TEST(derivatives_test, the_step_has_the_sign_of_x) {
    const auto first_asked = [](double x) {
        std::vector<double> points;
        df_dx(
            [&](double at) {
                points.push_back(at);
                return 0.0;
            },
            x, 1.0);
        return points.front() > x ? 1 : -1;
    };
    EXPECT_EQ(first_asked(2.0), -first_asked(-2.0));
    EXPECT_EQ(first_asked(0.0), first_asked(2.0));
    EXPECT_EQ(first_asked(-0.0), first_asked(2.0));
    // With an infinite value on one side, (f(x + h) - f(x - h))/(2h) shows that both signs are turned.
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(df_dx([=](double x) { return x > -2.0 ? infinity : 0.0; }, -2.0, 1.0), infinity);
    EXPECT_EQ(df_dx([=](double x) { return x > 2.0 ? infinity : 0.0; }, 2.0, 1.0), infinity);
}

TEST(derivatives_test, as_written) {
    for (const double x : {1.7, -1.7, 0.01, -0.01}) {
        const double L = std::max(std::abs(x), 0.3), sign = x < 0 ? -1.0 : 1.0;
        const auto f = [](double at) { return std::exp(std::sin(at)); };
        double h = L * 1.0e-7 * sign;
        EXPECT_EQ(df_dx(f, x, 0.3), (f(x + h) - f(x - h)) / (2.0 * h));
        h = L * 0.00031622776601683794 * sign;
        EXPECT_EQ(d2f_dx2(f, x, 0.3), (f(x + h) - 2.0 * f(x) + f(x - h)) / (h * h));
    }
}

TEST(derivatives_test, beyond_the_sizes_of_the_header_the_square_of_the_step_is_lost) {
    const auto parabola = [](double scale) { return [scale](double x) { return x / scale * (x / scale); }; };
    for (const double L : {2e-150, 5e156})
        EXPECT_NEAR(d2f_dx2(parabola(L), L, 0.0) * L * L, 2.0, 1e-6) << L;
    EXPECT_EQ(d2f_dx2(parabola(1e160), 1e160, 0.0), 0.0);
    EXPECT_TRUE(std::isnan(d2f_dx2([](double x) { return x; }, 1e-170, 0.0)));
}

TEST(derivatives_test, without_a_size_there_is_no_step) {
    const auto f = [](double x) { return x + 1.0; };
    const double nan = std::nan("");
    EXPECT_TRUE(std::isnan(df_dx(f, 0.0, 0.0)));
    EXPECT_TRUE(std::isnan(d2f_dx2(f, 0.0, 0.0)));
    EXPECT_TRUE(std::isnan(df_dx(f, 1.0, nan)));
    EXPECT_TRUE(std::isnan(d2f_dx2(f, 1.0, nan)));
    EXPECT_TRUE(std::isnan(df_dx(f, nan, 1.0)));
    EXPECT_TRUE(std::isnan(d2f_dx2(f, nan, 1.0)));
    EXPECT_TRUE(std::isnan(df_dx([=](double) { return nan; }, 1.0, 1.0)));
}

TEST(derivatives_test, parameters_are_passed_on_as_they_are) {
    const std::vector<double> pp = {3.0, -2.0, 0.5};
    const auto f = [&](double x, vector passed) {
        EXPECT_EQ(passed.data(), pp.data());
        EXPECT_EQ(passed.size(), pp.size());
        return passed[0] * x * x + passed[1] * x + passed[2];
    };
    EXPECT_NEAR(df_dx_pp(f, 2.0, 1.0, pp), 2 * 3.0 * 2.0 - 2.0, 1e-7);
    EXPECT_EQ(df_dx_pp(f, -2.0, 1.0, pp), df_dx([&](double x) { return f(x, pp); }, -2.0, 1.0));
    EXPECT_EQ(df_dx_pp([](double x, vector none) { return none.empty() ? x : 0.0; }, 0.0, 1.0, {}), 1.0);
}

double surface(vector x) {
    return std::exp(x[0]) * x[1] * x[1] + std::sin(x[1] * x[2]);
}

TEST(derivatives_test, the_gradient) {
    const std::vector<double> x = {0.5, -2.0, 3.0}, x_scale = {1.0, 1.0, 1.0};
    const auto gradient = df_dxx(surface, x, x_scale);
    ASSERT_EQ(gradient.size(), 3U);
    EXPECT_NEAR(gradient[0], std::exp(0.5) * 4.0, 2e-8);
    EXPECT_NEAR(gradient[1], std::exp(0.5) * -4.0 + 3.0 * std::cos(-6.0), 2e-8);
    EXPECT_NEAR(gradient[2], -2.0 * std::cos(-6.0), 2e-8);
}

TEST(derivatives_test, the_diagonal_of_the_second_derivatives) {
    const std::vector<double> x = {0.5, -2.0, 3.0}, x_scale = {1.0, 1.0, 1.0};
    const auto diagonal = d2f_dxx2(surface, x, x_scale);
    ASSERT_EQ(diagonal.size(), 3U);
    EXPECT_NEAR(diagonal[0], std::exp(0.5) * 4.0, 3e-7);
    EXPECT_NEAR(diagonal[1], std::exp(0.5) * 2.0 - 9.0 * std::sin(-6.0), 3e-6);
    EXPECT_NEAR(diagonal[2], -4.0 * std::sin(-6.0), 2e-6);
}

TEST(derivatives_test, each_component_follows_the_rule_for_one_variable) {
    const std::vector<double> x = {0.5, -2.0, 0.001}, x_scale = {1.0, 5.0, 0.1}, pp = {7.0, -0.5};
    const auto with_parameters = [&](vector at, vector passed) {
        EXPECT_EQ(passed.data(), pp.data());
        EXPECT_EQ(passed.size(), pp.size());
        return passed[0] * surface(at) + passed[1];
    };
    const auto first = df_dxx(surface, x, x_scale), second = d2f_dxx2(surface, x, x_scale),
               parameters = df_dxx_pp(with_parameters, x, x_scale, pp);
    for (std::size_t i = 0; i < x.size(); ++i) {
        const auto at = [&](double x_i) {
            auto moved = x;
            moved[i] = x_i;
            return moved;
        };
        EXPECT_EQ(first[i], df_dx([&](double x_i) { return surface(at(x_i)); }, x[i], x_scale[i]));
        EXPECT_EQ(second[i], d2f_dx2([&](double x_i) { return surface(at(x_i)); }, x[i], x_scale[i]));
        EXPECT_EQ(parameters[i], df_dx([&](double x_i) { return with_parameters(at(x_i), pp); }, x[i], x_scale[i]));
    }
}

TEST(derivatives_test, one_component_moves_at_a_time) {
    const std::vector<double> x = {1.0, 2.0, 3.0}, x_scale = {1.0, 1.0, 1.0};
    int calls = 0;
    const auto f = [&](vector at) {
        ++calls;
        int moved = 0;
        for (std::size_t i = 0; i < 3; ++i)
            moved += at[i] != x[i] ? 1 : 0;
        EXPECT_EQ(at.size(), 3U);
        EXPECT_LE(moved, 1);
        return 0.0;
    };
    df_dxx(f, x, x_scale);
    EXPECT_EQ(calls, 6);
    d2f_dxx2(f, x, x_scale);
    EXPECT_EQ(calls, 6 + 9);
}

TEST(derivatives_test, missing_scales_count_as_0) {
    const std::vector<double> x = {2.0, 3.0, 0.0}, one_scale = {10.0}, completed = {10.0, 0.0, 0.0};
    const auto sum = [](vector at) { return at[0] * at[0] + at[1] * at[2]; };
    const auto gradient = df_dxx(sum, x, one_scale), expected = df_dxx(sum, x, completed);
    EXPECT_EQ(gradient[0], expected[0]);
    EXPECT_EQ(gradient[1], expected[1]);
    EXPECT_TRUE(std::isnan(gradient[2]));
    EXPECT_TRUE(df_dxx(sum, {}, one_scale).empty());
    EXPECT_TRUE(d2f_dxx2(sum, {}, {}).empty());
}

} // namespace
