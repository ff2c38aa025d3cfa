// SPDX-License-Identifier: MIT
#include "CommandLine/loading.h"

#include "CommandLine/command.h"
#include "CommandLine/naming.h"
#include "CommandLine/report.h"
#include "Ostrel_Main.h"
#include "Thermodynamics/gas_properties.h"
#include "fluid_loading.h"
#include "library_state.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace command {
namespace {

namespace fs = std::filesystem;

using ideal_specific_heat::errmsg;

/// Advice for a fluid that cannot be loaded.
std::vector<std::string> loading_advice(const std::string &fluid) {
    std::error_code ignored;
    const std::string path = path_of(fluid);
    if (fs::exists(path, ignored) && fluid.find('/') == std::string::npos)
        return {"\"ostrel check " + path + "\" says more about this file."};
    std::vector<std::string> advice = {"There is no file " + fluid + ".osd in the fluid folder " + fluid_folder()};
    if (fluid.find('/') != std::string::npos)
        advice = {
            "A fluid is named by its file in the fluid folder, without \".osd\"; --fluids chooses another folder."};
    const std::string meant = nearest_fluids(fluid);
    advice.push_back(!meant.empty() ? meant : "\"ostrel fluids\" lists the fluids that are there.");
    return advice;
}

} // namespace

std::string error_text(std::string_view text) {
    std::string result = printable(records::trimmed(text));
    // The degree sign in the library's texts is Latin-1.
    const std::size_t degree = result.find(" \xB0"
                                           "C");
    if (degree != std::string::npos)
        result.insert(degree + 1, 1, '\xC2');
    return result;
}

std::string fluid_folder() {
    std::string folder = ostrel::fluid_directory();
    std::error_code ignored;
    if (!fs::is_directory(folder, ignored))
        throw failure("there is no fluid folder " + folder,
                      {"--fluids and the environment variable OSTREL_FLUIDS name the folder of the parameter files."});
    return folder;
}

std::string path_of(const std::string &fluid) {
    return fluid_folder() + fluid + ".osd";
}

void load_fluid(const std::string &fluid) {
    fluid_folder();
    library_state::forget_fluid();
    ostrel::read_init_fluiddata(fluid);
    if (!errmsg.clear())
        throw failure(error_text(errmsg.padded()), loading_advice(fluid));
}

answer request_property(std::string_view fluid, std::string_view pair, double input1, double input2,
                        std::string_view output) {
    std::array<char, 256> field{};
    const double value = ostrel::ostrel_prop(fluid, pair, input1, input2, output, field);
    const std::string text = error_text({field.data(), field.size()});
    return {value, text == records::no_errors ? std::string() : text};
}

parameter_file load_file(const std::string &path) {
    parameter_file result{.path = path};
    library_state::forget_fluid();
    std::error_code ignored;
    if (fs::exists(path, ignored) && !fs::is_regular_file(path, ignored)) {
        result.unreadable = path + (fs::is_directory(path, ignored) ? " is a folder" : " is not a regular file");
        return result;
    }
    records::file_reader file(path);
    if (file.open_status() != 0) {
        result.unreadable = path + ": " + std::generic_category().message(file.open_status());
        return result;
    }
    std::ifstream stream(path, std::ios::binary);
    result.text.assign(std::istreambuf_iterator<char>(stream), {});
    const loading::outcome outcome = loading::read(file);
    result.last_record = file.record_number();
    result.constants = gas_properties::gas;
    result.heat_capacity = ideal_specific_heat::active;
    if (outcome == loading::outcome::broken) {
        result.unreadable = file.message();
    } else {
        loading::initialise();
        if (!errmsg.clear())
            result.not_initialised = error_text(errmsg.padded());
    }
    return result;
}

} // namespace command
