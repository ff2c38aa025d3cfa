// SPDX-License-Identifier: MIT
#include "Algebra/kvert.h"

#include "Records/console.h"

#include <utility>

namespace lin_algebra {

std::vector<double> kvert(const factored_matrix &A) {
    if (A.state == factored_matrix::states::not_factored)
        console::stop({must_factor, "BEFORE COMPUTING INVERSE"});
    if (A.state == factored_matrix::states::singular)
        console::stop({"MATRIX HAS NO INVERSE"});
    const std::size_t n = A.order;
    std::vector<double> inverse(n * n, 0.0);
    for (std::size_t j = 0; j < n; ++j) {
        double *const x = inverse.data() + j * n;
        x[j] = 1.0;
        for (std::size_t k = 0; k < n; ++k)
            std::swap(x[k], x[A.pivots[k]]);
        for (std::size_t k = 0; k < n; ++k)
            for (std::size_t i = k + 1; i < n; ++i)
                x[i] -= A(i + 1, k + 1) * x[k];
        for (std::size_t k = n; k-- > 0;) {
            x[k] /= A(k + 1, k + 1);
            for (std::size_t i = 0; i < k; ++i)
                x[i] -= A(i + 1, k + 1) * x[k];
        }
    }
    return inverse;
}

} // namespace lin_algebra
