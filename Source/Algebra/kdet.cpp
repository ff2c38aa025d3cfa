// SPDX-License-Identifier: MIT
#include "Algebra/kdet.h"

#include "Records/console.h"

#include <algorithm>
#include <cmath>

namespace lin_algebra {

double kdet(const factored_matrix &A) {
    if (A.state == factored_matrix::states::not_factored)
        console::stop({must_factor, "BEFORE COMPUTING DETERMINANT"});
    if (A.state == factored_matrix::states::singular)
        return 0.0;
    // The digits and the power of two are multiplied apart, so that no product on the way overflows or vanishes.
    long power = 0;
    const auto digits = [&](double x) {
        int exponent = 0;
        const double result = std::isfinite(x) ? std::frexp(x, &exponent) : x;
        power += exponent;
        return result;
    };
    double det = 1.0;
    for (std::size_t k = 0; k < A.order; ++k) {
        const double pivot = digits(A(k + 1, k + 1));
        det = digits(det * (A.pivots[k] == k ? pivot : -pivot));
    }
    constexpr long beyond_any = 5000;
    return std::ldexp(det, static_cast<int>(std::clamp(power, -beyond_any, beyond_any)));
}

} // namespace lin_algebra
