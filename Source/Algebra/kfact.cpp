// SPDX-License-Identifier: MIT
#include "Algebra/kfact.h"

#include <cmath>
#include <utility>

namespace lin_algebra {

factored_matrix kfact(const matrix_view &A) {
    factored_matrix result;
    if (A.rows != A.columns)
        return result;
    const std::size_t n = A.rows;
    result.state = factored_matrix::states::factored;
    result.order = n;
    const auto elements = A.elements.first(n * n);
    result.factors.assign(elements.begin(), elements.end());
    result.pivots.resize(n);
    const auto column = [&](std::size_t j) { return result.factors.data() + j * n; };

    for (std::size_t k = 0; k < n; ++k) {
        double *const left = column(k);
        std::size_t pivot = k;
        // The first NaN becomes the pivot, so that it is not lost where the rest of its column is 0.
        for (std::size_t i = k + 1; i < n && !std::isnan(left[pivot]); ++i)
            if (!(std::abs(left[i]) <= std::abs(left[pivot])))
                pivot = i;
        result.pivots[k] = pivot;
        if (left[pivot] == 0.0) {
            result.state = factored_matrix::states::singular;
            continue;
        }
        if (pivot != k)
            for (std::size_t j = 0; j < n; ++j)
                std::swap(column(j)[k], column(j)[pivot]);
        for (std::size_t i = k + 1; i < n; ++i)
            left[i] /= left[k];
        for (std::size_t j = k + 1; j < n; ++j) {
            double *const right = column(j);
            for (std::size_t i = k + 1; i < n; ++i)
                right[i] -= left[i] * right[k];
        }
    }
    return result;
}

} // namespace lin_algebra
