// SPDX-License-Identifier: MIT
#include "Fluid/core_making.h"

namespace fluid {

namespace {

template <class Model>
equations::exact_model<Model> exact(const Model &read) {
    equations::exact_model<Model> model{};
    static_cast<Model &>(model) = read;
    return model;
}

} // namespace

std::unique_ptr<const core> core::make(const equations::fluid_parameters &parameters, const settings &wanted,
                                       std::string &why) {
    std::unique_ptr<const core> made;
    std::visit(
        [&]<class Model>(const Model &read) {
            if constexpr (equations::is_model<Model>)
                made = make_core(parameters, exact(read), wanted, why);
        },
        parameters.model);
    return made;
}

} // namespace fluid
