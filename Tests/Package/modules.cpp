// SPDX-License-Identifier: MIT
// Uses operations, variables and readers of the library's modules, and includes all their headers first.
#include "all_headers.h"

#include <cmath>
#include <cstdio>
#include <string>
#include <typeinfo>

namespace {

bool solves() {
    const auto roots = non_lin_algebra::solve_eq_3(-6, 11, -6);
    const double root = nonlinear_equations::bisection([](double x) { return x * x - 2; }, 0, 2, 1e-12);
    const double slope = derivatives::df_dx([](double x) { return x * x; }, 3, 1);
    return std::abs(roots[0].real() - 3) < 1e-12 && std::abs(root * root - 2) < 1e-11 && std::abs(slope - 6) < 1e-6;
}

bool answers() {
    char text[256];
    const double h = ostrel::ostrel_prop("toluene", "td", 500, 5, "h", text);
    const double again =
        thermodynamics::h__T_v(ostrel::T, ostrel::v) * gas_properties::gas.P_ref * gas_properties::gas.v_ref;
    return records::same_text({text, sizeof text}, "No errors") && std::abs(h - again) <= 1e-12 * std::abs(h) &&
           thermodynamics::gas_type == 4 && soave_redlich_kwong_gas::P__T_v__SRKG(3, 2) == thermodynamics::P__T_v(3, 2);
}

/// Reads through a reader that the caller makes; its class is the library's, so that there is only one type_info.
bool reads() {
    std::string lines(255 * 255, ' ');
    lines.replace(0, 4, "12.5");
    std::int32_t index = 0;
    records::line_reader reader("lines", lines.data(), index, 255, 255);
    records::record_reader &base = reader;
    double value = 0;
    return base.read({{"value", value}}) && value == 12.5 && dynamic_cast<records::line_reader *>(&base) == &reader &&
           typeid(base) == typeid(records::line_reader);
}

} // namespace

int main() {
    std::printf("%d %d %d\n", solves(), answers(), reads());
    return solves() && answers() && reads() ? 0 : 1;
}
