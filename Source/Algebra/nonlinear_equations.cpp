// SPDX-License-Identifier: MIT
#include "Algebra/nonlinear_equations.h"

#include "Records/console.h"

#include <cmath>
#include <numeric>

namespace nonlinear_equations {
namespace {

using function = algebra::function_ref<double(double)>;
using namespace std::string_view_literals;

constexpr double machine_epsilon = 2.220446049250313e-16;
constexpr double ten_epsilon = 10.0 * machine_epsilon;

std::int32_t kept_n_max = 50;
double kept_f_sh = 0.0;

/// Stores the value if one is passed, for later calls too, and returns the value in force.
template <class Value, class Passed>
Value kept(Value &variable, const Passed &passed) {
    if (passed)
        variable = *passed;
    return variable;
}

double attainable(double rel_tol) {
    if (rel_tol <= machine_epsilon) {
        console::write({" Attenzione: rel_tol ="sv, rel_tol, " < precisione macchina."sv});
        console::write({" Precisione relativa modificata:"sv, ten_epsilon});
        return ten_epsilon;
    }
    return rel_tol;
}

[[noreturn]] void interrupt() {
    console::write({" Il calcolo e' interrotto"sv});
    console::pause();
    console::stop();
}

/// Whether x y is positive, also where the product would be rounded to 0.
bool same_sign(double x, double y) {
    return (x > 0.0 && y > 0.0) || (x < 0.0 && y < 0.0);
}

} // namespace

double newton(function f, function df, double x0, double rel_tol, std::int32_t *n_max, std::optional<double> f_sh) {
    const std::int32_t cap = kept(kept_n_max, n_max);
    const double shift = kept(kept_f_sh, f_sh);
    const double tolerance = attainable(rel_tol);
    double x = x0;
    for (std::int32_t done = 0; done < cap; ++done) {
        const double d = df(x);
        if (std::abs(d) < machine_epsilon) {
            console::write({" Il Metodo di Newton ha trovato la derivata nulla"sv});
            interrupt();
        }
        const double step = (f(x) - shift) / -d;
        x += step;
        if (std::abs(step) < std::abs(x) * tolerance) {
            if (n_max != nullptr)
                *n_max = done + 1;
            return x;
        }
    }
    console::write({" Il Metodo di Newton non ha trovato la soluzione"sv});
    console::write({" in n_max = "sv, cap, " iterazioni"sv});
    interrupt();
}

double bisection(function f, double a, double b, double rel_tol, std::optional<double> f_sh) {
    const double shift = kept(kept_f_sh, f_sh);
    const double fa = f(a) - shift;
    const double fb = f(b) - shift;
    if (same_sign(fa, fb))
        console::stop({" L`intervallo [a,b] o [b,a] non contiene una radice.", " Calcolo interrotto in bisection."});
    if (fa == 0.0)
        return a;
    if (fb == 0.0)
        return b;
    const double tolerance = attainable(rel_tol);
    double m = std::midpoint(a, b);
    double fm = f(m) - shift;
    while (std::abs(b - a) > std::abs(m) * tolerance && m != a && m != b && fm != 0.0) {
        if (same_sign(fm, -fa))
            b = m;
        else
            a = m;
        m = std::midpoint(a, b);
        fm = f(m) - shift;
    }
    return m;
}

} // namespace nonlinear_equations
