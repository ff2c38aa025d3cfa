// SPDX-License-Identifier: MIT
// The modules of the models, each with operations of its own, as one table: for tests that call a module by itself and
// not through the choice of gas_type.
#pragma once

#include "Tests/Support/thermodynamics.h"

#include <bit>

namespace support {

/// The operation set of one module, and the numbers that its parameters consist of.
struct module_operations {
    const char *name;
    std::int32_t gas_type;
    double (*covolume)();
    std::vector<double> (*numbers)();
    void (*fill)(double number); ///< gives all numbers this value
    void (*read_param)(records::record_reader &unit);
    void (*write_param)(records::record_writer &unit);
    void (*init)();
    double (*minimum_specific_volume)();
#define OSTREL_SCALAR_MEMBER(unused, operation)      double (*operation)(double T, double v);
#define OSTREL_ARRAY_MEMBER(unused, operation, size) std::array<double, size> (*operation)(double T, double v);
    OSTREL_SCALAR_OPERATIONS(OSTREL_SCALAR_MEMBER, )
    OSTREL_ARRAY_OPERATIONS(OSTREL_ARRAY_MEMBER, )
#undef OSTREL_SCALAR_MEMBER
#undef OSTREL_ARRAY_MEMBER
};

inline std::ostream &operator<<(std::ostream &out, const module_operations &module) {
    return out << module.name;
}

template <auto &active>
double covolume_of() {
    return active.covolume();
}
template <class Parameters>
using numbers_in = std::array<double, sizeof(Parameters) / sizeof(double)>;
template <auto &active>
std::vector<double> numbers_of() {
    const auto numbers = std::bit_cast<numbers_in<std::remove_cvref_t<decltype(active)>>>(active);
    return {numbers.begin(), numbers.end()};
}
template <auto &active>
void fill(double number) {
    using parameters = std::remove_cvref_t<decltype(active)>;
    numbers_in<parameters> numbers;
    numbers.fill(number);
    active = std::bit_cast<parameters>(numbers);
}

/// Where every operation is found by its name alone: the suffixes keep them apart.
namespace all_modules {
#define OSTREL_USING_MODULE(unused, type, Model, module, ...) using namespace module;
OSTREL_MODELS(OSTREL_USING_MODULE, )
#undef OSTREL_USING_MODULE
} // namespace all_modules

/// In the order of gas_type, from 1.
inline constexpr module_operations modules[] = {
#define OSTREL_OPERATION(X, operation, ...) all_modules::operation##__##X,
#define OSTREL_MODULE(unused, type, Model, module, X, ...) \
    {#module,                                              \
     type,                                                 \
     covolume_of<module::active>,                          \
     numbers_of<module::active>,                           \
     fill<module::active>,                                 \
     module::read_param_##X,                               \
     module::write_param_##X,                              \
     module::init_##X,                                     \
     module::minimum_specific_volume__##X,                 \
     OSTREL_SCALAR_OPERATIONS(OSTREL_OPERATION, X) OSTREL_ARRAY_OPERATIONS(OSTREL_OPERATION, X)},
    OSTREL_MODELS(OSTREL_MODULE, )
#undef OSTREL_MODULE
#undef OSTREL_OPERATION
};

inline constexpr const module_operations &module_of(std::int32_t gas_type) {
    return modules[gas_type - 1];
}

} // namespace support
