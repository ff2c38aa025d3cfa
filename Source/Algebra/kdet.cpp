// SPDX-License-Identifier: MIT
#include "Algebra/kdet.h"

#include "Algebra/console_stop.h"

namespace lin_algebra {

double kdet(const factored_matrix &A) {
    if (A.state == factored_matrix::states::not_factored)
        console::stop({must_factor, "BEFORE COMPUTING DETERMINANT"});
    if (A.state == factored_matrix::states::singular)
        return 0.0;
    double det = 1.0;
    for (std::size_t k = 0; k < A.order; ++k) {
        const double pivot = A(k + 1, k + 1);
        det *= A.pivots[k] == k ? pivot : -pivot;
    }
    return det;
}

} // namespace lin_algebra
