// SPDX-License-Identifier: MIT
// The tests of the thermodynamics share this file: the library in its first state, sections read from files and from
// databases, and the tables of models and heat capacities over which tests run.
#pragma once

#include "Tests/Support/entry_points.h"
#include "library_state.h"

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <limits>
#include <sstream>
#include <vector>

namespace support {

inline constexpr double epsilon = std::numeric_limits<double>::epsilon();

/// Sets every variable that a fluid sets to the value that it has when the library is loaded.
inline void fresh_fluid() {
    library_state::forget_fluid();
}

/// Does the same for every variable, also for those that outlive a fluid.
inline void fresh_library() {
    library_state::forget_everything();
}

/// Every test starts with the library in its first state, also when all tests run in one process.
class thermodynamics_test : public testing::Test {
protected:
    thermodynamics_test() { library_state::forget_everything(); }
};

/// One section of a parameter file: its two readers and its writer.
struct section {
    void (*read_file)(records::file_reader &);
    void (*read_lines)(records::line_reader &);
    void (*write)(records::record_writer &);
};
inline constexpr section gas_section = {gas_properties::read_param_gas_properties,
                                        gas_properties::read_param_gas_propertiesdb,
                                        gas_properties::write_param_gas_properties};
inline constexpr section heat_section = {ideal_specific_heat::read_param_ideal_specific_heat,
                                         ideal_specific_heat::read_param_ideal_specific_heatdb,
                                         ideal_specific_heat::write_param_ideal_specific_heat};
inline constexpr section thermodynamics_section = {thermodynamics::read_param_thermodynamics,
                                                   thermodynamics::read_param_thermodynamicsdb,
                                                   thermodynamics::write_param_thermodynamics};
inline constexpr section transport_section = {transport_properties::read_param_transport_properties,
                                              transport_properties::read_param_transport_propertiesdb,
                                              transport_properties::write_param_transport_propert};

enum class source { file, lines };
inline constexpr source both_sources[] = {source::file, source::lines};
inline std::ostream &operator<<(std::ostream &out, source from) {
    return out << (from == source::file ? "from a file" : "from lines");
}

struct reading {
    std::string message; ///< empty after a success
    std::int64_t last;   ///< the number of the last record that was used, from 1
};

/// Reads the section from a text with one record in each line, as a file or as the lines of a database. Both start
/// behind `before` records of another section.
inline reading read(const section &what, source from, const std::string &text, std::int32_t before = 0) {
    if (from == source::file) {
        const temporary_folder folder;
        records::file_reader reader(folder.write("fluid.osd", text));
        for (std::int32_t i = 0; i < before; ++i)
            reader.skip("a record");
        what.read_file(reader);
        return {std::string(reader.message()), reader.record_number()};
    }
    constexpr std::int32_t length = 255;
    std::istringstream in(text);
    std::string lines;
    std::int32_t count = 0;
    for (std::string line; std::getline(in, line); ++count) {
        line.resize(length, ' ');
        lines += line;
    }
    std::int32_t index = before;
    records::line_reader reader("fluid", lines.data(), index, count, length);
    what.read_lines(reader);
    return {std::string(reader.message()), index};
}

/// The message of such a reading about a record.
inline std::string unread(source from, const std::string &record) {
    return "Ostrel error: " + std::string(from == source::file ? "file fluid.osd" : "fluid") + ", " + record;
}

/// The text as far as its first records go.
inline std::string first_records(const std::string &text, std::int64_t count) {
    std::size_t end = 0;
    for (std::int64_t i = 0; i < count; ++i)
        end = text.find('\n', end) + 1;
    return text.substr(0, end);
}

/// Reads a section and expects no message.
inline void read_well(const section &what, const std::string &text, source from = source::file) {
    EXPECT_EQ(read(what, from, text).message, "") << text;
}

/// The records that the section's writer writes.
inline std::vector<std::string> written(const section &what) {
    records::record_writer writer;
    what.write(writer);
    std::istringstream in(writer.text());
    std::vector<std::string> result;
    for (std::string line; std::getline(in, line);)
        result.push_back(line);
    return result;
}

/// The list-directed form of a double, and of several in one record.
inline std::string real(std::initializer_list<double> values) {
    std::string result;
    for (const double value : values)
        result += records::list_directed({value});
    return result;
}

/// Fluids with and without critical data.
inline const std::string vapor_fluid = "names\ncarbon dioxide\nCO2\nconstants\n"
                                       "44.0\nT\n304.1282\n72.8\n0.2746\n184.0\n0.0\n0.0\n";
inline const std::string reference_fluid = "names\nnitrogen\nN2\nconstants\n"
                                           "28.0\nF\n300.0\n1.0\n0.9\n0.0\n0.0\n";

/// Heat capacities of every form, most of them in both kinds of coefficients.
struct heat_case {
    const char *name;
    const char *records;
};
inline constexpr heat_case heat_cases[] = {
    {"constant", "F\n1\n655.0\n"},
    {"constant, dimensionless", "T\n1\n3.5\n"},
    {"power law", "F\n2\n640.0, 0.41\n"},
    {"power law, dimensionless", "T\n2\n3.4, -0.37\n"},
    {"polynomial", "F\n3\n3\n310.0\n1.4 -6.0e-4 9000.0\n1.0 2.0 -0.5\n"},
    {"polynomial, dimensionless", "T\n3\n2\n2.1\n0.006 -1.0e-6\n1.0 1.9\n"},
    {"piecewise", "F\n4\n3\n10.0 299.5 1007.0\n420.0 350.0 900.0\n1 3 0\n0.7\n1.0\n"
                  "1.3 -6.0e-4 3000.0\n1.0 2.0 -0.5\n\n\n"},
    {"piecewise, dimensionless", "T\n4\n2\n0.01 2.0\n2.0 2.5\n1 2\n0.007\n1.0\n0.004 -1.0e-6\n1.0 2.0\n"},
    {"Einstein", "F\n5\n472.3\n4\n2*957.3 1952.2 3280.5\n"},
    {"Einstein, dimensionless", "T\n5\n2.5\n2\n4.1 11.7\n"},
};

/// The models on the fluids they accept.
struct model_case {
    const char *name;
    std::int32_t gas_type;
    const std::string &fluid;
    const char *records; ///< the records of the model itself
};
inline const model_case model_cases[] = {
    {"ideal gas", 1, vapor_fluid, ""},           {"ideal gas, reference fluid", 1, reference_fluid, ""},
    {"Clausius II", 7, vapor_fluid, ""},         {"ideal Z gas", 8, vapor_fluid, "0.9\n"},
    {"van der Waals", 2, vapor_fluid, ""},       {"Martin-Hou", 3, vapor_fluid, ""},
    {"Soave-Redlich-Kwong", 4, vapor_fluid, ""}, {"Peng-Robinson", 5, vapor_fluid, ""},
    {"Redlich-Kwong", 6, vapor_fluid, ""},
};

/// The first case of a model.
inline const model_case &case_of(std::int32_t gas_type) {
    return *std::find_if(std::begin(model_cases), std::end(model_cases),
                         [&](const model_case &model) { return model.gas_type == gas_type; });
}

/// Reads and initialises a fluid; both must succeed.
inline void load(const model_case &model, const heat_case &heat) {
    library_state::forget_fluid();
    read_well(thermodynamics_section,
              model.fluid + std::to_string(model.gas_type) + "\n" + model.records + heat.records);
    thermodynamics::init_thermodynamics();
    EXPECT_EQ(shared_text(), "No errors");
}

inline bool accepts(const model_case &model, const heat_case &heat) {
    return &model.fluid == &vapor_fluid || std::string_view(heat.name).find("power law") == std::string_view::npos;
}

/// Calls visit(parameters) with the parameters of the active model.
template <class Visit>
void with_active_model(Visit visit) {
    thermodynamics::with_parameters([&](const auto &model) { visit(model); },
                                    [] { FAIL() << "gas_type " << thermodynamics::gas_type; });
}

/// b of the active model.
inline double active_covolume() {
    double b = 0;
    with_active_model([&](const auto &model) { b = model.covolume(); });
    return b;
}

/// Calls visit(parameters) for every model with every heat capacity, loaded and initialised. A visit() that takes
/// nothing is compiled once and not for each model.
template <class Visit>
void for_each_loaded(Visit visit) {
    for (const model_case &model : model_cases)
        for (const heat_case &heat : heat_cases) {
            if (!accepts(model, heat))
                continue;
            SCOPED_TRACE(std::string(model.name) + ", " + heat.name);
            load(model, heat);
            if constexpr (std::invocable<Visit>)
                visit();
            else
                with_active_model(visit);
        }
}

struct state {
    const char *name;
    double T; ///< temperature, as a multiple of that of the reference point
    double w; ///< volume above the co-volume, as a multiple of that of the reference point
};
inline constexpr state states[] = {
    {"dilute, cold", 0.62, 2000.0}, {"dilute", 1.1, 500.0},        {"dilute, hot", 7.3, 3000.0},
    {"vapor", 0.83, 12.0},          {"compressed", 1.5, 0.7},      {"dense, cold", 0.7, 0.35},
    {"dense", 1.2, 0.29},           {"dense, hot", 4.1, 0.11},     {"near the covolume", 1.3, 0.012},
    {"critical", 1.0, 1.0},         {"just below", 0.9999, 1.003}, {"just above", 1.0001, 0.998},
};

/// Calls visit(T, v) at every state of the fluid in memory, T and v reduced.
template <class Visit>
void for_each_state_of_the_fluid(Visit visit) {
    const double b = active_covolume();
    for (const state &at : states) {
        SCOPED_TRACE(at.name);
        visit(at.T / gas_properties::gas.Z_ref, b + at.w * (1 - b));
    }
}

/// The same with every heat capacity for one model.
template <class Visit>
void for_each_state_of(const model_case &model, Visit visit) {
    for (const heat_case &heat : heat_cases) {
        SCOPED_TRACE(heat.name);
        load(model, heat);
        for_each_state_of_the_fluid(visit);
    }
}

/// The same for every case; visit(parameters, T, v) gets the model's own parameters, and is compiled for each model.
template <class Visit>
void for_each_state(Visit visit) {
    if constexpr (std::invocable<Visit, double, double>)
        for_each_loaded([&] { for_each_state_of_the_fluid(visit); });
    else
        for_each_loaded(
            [&](const auto &model) { for_each_state_of_the_fluid([&](double T, double v) { visit(model, T, v); }); });
}

} // namespace support
