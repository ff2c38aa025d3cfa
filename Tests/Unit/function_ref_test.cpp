// SPDX-License-Identifier: MIT
#include "Algebra/function_ref.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

namespace {

using function = algebra::function_ref<double(double)>;

double at_2(function f) {
    return f(2.0);
}
double twice(double x) {
    return 2 * x;
}
double thrice(double x) noexcept {
    return 3 * x;
}

TEST(function_ref_test, refers_to_functions) {
    EXPECT_EQ(at_2(twice), 4.0);
    EXPECT_EQ(at_2(&twice), 4.0);
    EXPECT_EQ(at_2(thrice), 6.0);
    double (*pointer)(double) = twice;
    EXPECT_EQ(at_2(pointer), 4.0);
    EXPECT_EQ(at_2(std::sqrt), std::sqrt(2.0)) << "one of several overloads";
}

TEST(function_ref_test, refers_to_objects_without_copying_them) {
    const auto captured = std::make_unique<double>(5.0);
    EXPECT_EQ(at_2([&](double x) { return x + *captured; }), 7.0);
    const auto moved = [kept = std::make_unique<double>(6.0)](double x) { return x + *kept; };
    EXPECT_EQ(at_2(moved), 8.0);
    int calls = 0;
    auto counting = [count = 0, &calls](double x) mutable {
        calls = ++count;
        return x;
    };
    at_2(counting);
    at_2(counting);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(at_2(std::function<double(double)>(twice)), 4.0);
}

TEST(function_ref_test, a_copy_refers_to_the_same_function) {
    double factor = 2.0;
    const auto scaled = [&](double x) { return factor * x; };
    const function first = scaled;
    function second = twice;
    second = first;
    factor = 10.0;
    EXPECT_EQ(second(2.0), 20.0);
}

TEST(function_ref_test, converts_arguments_and_results) {
    EXPECT_EQ(at_2([](long double x) { return static_cast<int>(x) + 1; }), 3.0);
    const std::vector<double> values = {1.0, 2.0, 3.0};
    const algebra::function_ref<double(std::span<const double>)> last = [](auto x) { return x.back(); };
    EXPECT_EQ(last(values), 3.0);
    static_assert(!std::is_constructible_v<function, double (*)(double, double)>);
    static_assert(!std::is_constructible_v<function, double>);
}

} // namespace
