// SPDX-License-Identifier: MIT
// The table of the models. It makes the enumeration of their codes, the type that holds any of them, their names and
// every switch over gas_type, so that no switch can lack a model.
#pragma once

#include "Equations/clausius_II.h"
#include "Equations/ideal_Z.h"
#include "Equations/ideal_gas.h"
#include "Equations/martin_hou.h"
#include "Equations/peng_robinson.h"
#include "Equations/redlich_kwong.h"
#include "Equations/soave_redlich_kwong.h"
#include "Equations/van_der_waals.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <variant>

/// For each model: gas_type, the type of its parameters, the module and the suffix of its operations, the short name of
/// 3 and the long name of 29 characters, and the name that people use. USE receives `what` as its first argument.
#define OSTREL_MODELS(USE, what)                                                                                  \
    USE(what, 1, ideal_gas, ideal_gas, IG, "IG ", "IDEAL GAS MODEL              ", "ideal gas")                   \
    USE(what, 2, van_der_waals, van_der_waals_gas, vdWG, "VDW", "VAN DER WAALS GAS MODEL      ", "van der Waals") \
    USE(what, 3, martin_hou, martin_hou_gas, MHG, "MH ", "MARTIN-HOU GAS MODEL         ", "Martin-Hou")           \
    USE(what, 4, soave_redlich_kwong, soave_redlich_kwong_gas, SRKG, "SRK", "SOAVE-REDLICH-KWONG GAS MODEL",      \
        "Soave-Redlich-Kwong")                                                                                    \
    USE(what, 5, peng_robinson, peng_robinson_gas, PRG, "PR ", "PENG-ROBINSON GAS MODEL      ", "Peng-Robinson")  \
    USE(what, 6, redlich_kwong, redlich_kwong_gas, RKG, "RK ", "REDLICH-KWONG GAS MODEL      ", "Redlich-Kwong")  \
    USE(what, 7, clausius_II, clausius_II_gas, CIIG, "CII", "CLAUSIUS II GAS MODEL        ", "Clausius II")       \
    USE(what, 8, ideal_Z, ideal_Z_gas, IZG, "IZG", "IDEAL Z GAS MODEL            ", "ideal gas with constant Z")

/// The codes of the models in parameter files: gas_types::peng_robinson is 5.
namespace gas_types {
#define OSTREL_MODEL_CODE(unused, type, Model, ...) Model = type,
enum code : std::int32_t { none = 0, OSTREL_MODELS(OSTREL_MODEL_CODE, ) };
#undef OSTREL_MODEL_CODE
} // namespace gas_types

namespace equations {

/// Takes the place of a model if there is none: its pressure is zero, and so is everything that follows from it.
struct no_model : separated_attraction::no_attraction {
    static double repulsion() { return 0; }
};
inline void initialise(no_model &, gas_constants &, records::error_text &) {}

/// False for no_model, for code that is compiled for every model and for no_model.
template <class Model>
inline constexpr bool is_model = !std::is_same_v<Model, no_model>;

/// The parameters of one model; the index of the variant is the model's code.
#define OSTREL_MODEL_TYPE(unused, type, Model, ...) , Model
using any_model = std::variant<no_model OSTREL_MODELS(OSTREL_MODEL_TYPE, )>;
#undef OSTREL_MODEL_TYPE

inline constexpr std::size_t model_count = std::variant_size_v<any_model> - 1;

struct model_names {
    std::string_view short_name; ///< 3 characters, blank-padded
    std::string_view long_name;  ///< 29 characters, blank-padded
    std::string_view name;       ///< the name that people use
};
#define OSTREL_MODEL_NAMES(unused, type, Model, module, X, short_name, long_name, name) {short_name, long_name, name},
/// The names in the order of the codes, which start at 1.
inline constexpr std::array<model_names, model_count> names_of_models = {{OSTREL_MODELS(OSTREL_MODEL_NAMES, )}};
#undef OSTREL_MODEL_NAMES

/// The names of a model; null for a code that no model has.
constexpr const model_names *find_model(std::int32_t code) {
    return code >= 1 && code <= static_cast<std::int32_t>(model_count)
               ? &names_of_models[static_cast<std::size_t>(code - 1)]
               : nullptr;
}

/// The words for the models in options, which are their short names in lower case, in the order of the codes.
inline constexpr auto letters_of_model_words = [] {
    std::array<std::array<char, 4>, model_count> words{}; // with a NUL at the end
    for (std::size_t i = 0; i < model_count; ++i)
        for (std::size_t j = 0; j < records::trimmed(names_of_models[i].short_name).size(); ++j)
            words[i][j] = records::lower(names_of_models[i].short_name[j]);
    return words;
}();
inline constexpr auto words_of_models = [] {
    std::array<std::string_view, model_count> words{};
    for (std::size_t i = 0; i < model_count; ++i)
        words[i] = letters_of_model_words[i].data();
    return words;
}();

// Reading and writing of the records that only one model has in a parameter file.

inline void read_parameters(records::record_reader &in, ideal_Z &p) {
    in.read({{"Z_const", p.Z_const}});
}
inline void write_parameters(records::record_writer &out, const ideal_Z &p) {
    out.record({"Compressibility of ideal Z gas: ", p.Z_const});
}
template <class Model>
void read_parameters(records::record_reader &, Model &) {}
template <class Model>
void write_parameters(records::record_writer &, const Model &) {}

} // namespace equations
