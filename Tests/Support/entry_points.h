// SPDX-License-Identifier: MIT
// All tests share this file: calls of the entry points from C++, and temporary fluid directories.
#pragma once

#include "Thermodynamics/thermodynamics.h"
#include "ostrel.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace support {

inline constexpr double failed = -8888.8;

/// The answer of a request as a host sees it: the value and the error text without its padding.
struct answer {
    double value;
    std::string text;

    bool ok() const { return text == "No errors"; }
};

inline std::string without_padding(std::string text) {
    text.resize(text.find_last_not_of(' ') + 1);
    return text;
}

inline answer ask(std::string_view fluid, std::string_view pair, double input1, double input2, std::string_view output,
                  std::size_t errmsg_length = 256) {
    std::string text(errmsg_length, '#');
    const double value = ostrel_prop(fluid.data(), pair.data(), &input1, &input2, output.data(), text.data(),
                                     fluid.size(), pair.size(), output.size(), text.size());
    return {value, without_padding(text)};
}

inline answer ask_info(std::string_view fluid, std::string_view name, std::size_t errmsg_length = 256) {
    std::string text(errmsg_length, '#');
    const double value = ostrel_info(fluid.data(), name.data(), text.data(), fluid.size(), name.size(), text.size());
    return {value, without_padding(text)};
}

/// The shared error text without its padding.
inline std::string shared_text() {
    return std::string(ideal_specific_heat::errmsg.trimmed());
}

/// A new folder that is removed with the object.
class temporary_folder {
public:
    temporary_folder() {
        std::string name = (std::filesystem::temp_directory_path() / "ostrel-test-XXXXXX").string();
        path_ = mkdtemp(name.data());
    }
    temporary_folder(const temporary_folder &) = delete;
    temporary_folder &operator=(const temporary_folder &) = delete;
    ~temporary_folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::string path() const { return path_.string(); }
    std::string write(std::string_view name, std::string_view text) const {
        const std::filesystem::path file = path_ / name;
        std::ofstream(file, std::ios::binary) << text;
        return file.string();
    }

private:
    std::filesystem::path path_;
};

/// A temporary folder that is the fluid directory while the object lives.
class fluid_folder : public temporary_folder {
public:
    fluid_folder() { setenv("OSTREL_FLUIDS", path().c_str(), 1); }
    ~fluid_folder() { unsetenv("OSTREL_FLUIDS"); }
    void add(std::string_view fluid, std::string_view text) const { write(std::string(fluid) + ".osd", text); }
};

/// The parts of a parameter file, which tests put together or damage on purpose.
inline const std::string vapor_section = "names\nmodel fluid\nlabel\nconstants\n"
                                         "20.0    MM [kg/kmol]\n"
                                         "T       vapor\n"
                                         "300.0   Tc [K]\n"
                                         "50.0    Pc [atm]\n"
                                         "0.27    Zc\n"
                                         "200.0   Tb [K]\n"
                                         "0.0     mur\n"
                                         "0.0     kh\n";
inline const std::string reference_section = "names\nreference fluid\nlabel\nconstants\n"
                                             "28.0    MM [kg/kmol]\n"
                                             "F       vapor\n"
                                             "300.0   T_ref [K]\n"
                                             "1.0     P_ref [atm]\n"
                                             "0.9     v_ref [m3/kg]\n"
                                             "0.0     mur\n"
                                             "0.0     kh\n";
inline const std::string constant_heat = "T  coeff_adim\n1  function_type\n2.5  cv_0\n";
inline const std::string constant_transport = "1\n1.0e-5  mu_const\n1\n0.02  kk_const\n";

inline std::string vapor_file(std::string_view model_records = "7\n") {
    return vapor_section + std::string(model_records) + constant_heat + constant_transport;
}
inline std::string reference_file(std::string_view model_records = "1\n") {
    return reference_section + std::string(model_records) + constant_heat + constant_transport;
}

} // namespace support
