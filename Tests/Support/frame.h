// SPDX-License-Identifier: MIT
// The tests of the entry points share this file: the library in its first state, hosts for tests, error texts.
#pragma once

#include "Ostrel_Main.h"
#include "Tests/Support/thermodynamics.h"

#include <span>

namespace support {

/// The catalogue, and the folder of most tests: some fluids of the catalogue, some of them also under other models.
inline constexpr char shipped_folder[] = OSTREL_TESTS "/../Fluids";
inline constexpr char tests_folder[] = OSTREL_TESTS "/Fluids";

/// Sets every variable of the library to the value that it has when the library is loaded.
inline void fresh_frame(const char *fluid_folder = tests_folder) {
    library_state::forget_everything();
    ostrel_use_host(nullptr);
    setenv("OSTREL_FLUIDS", fluid_folder, 1);
}

/// Every test starts with the library in its first state, with the default host and the tests' folder of fluids.
class frame_test : public testing::Test {
protected:
    frame_test() { fresh_frame(); }
    ~frame_test() override { ostrel_use_host(nullptr); }
};

/// A host whose fluid directory is exactly the given text. It counts how often it is asked for that, which is once in
/// each load.
class directory_host {
public:
    explicit directory_host(const std::string &directory) {
        directory_ = directory;
        asked_ = 0;
        const ostrel_host routines = {fluidpath, nullptr, nullptr};
        ostrel_use_host(&routines);
    }
    directory_host(const directory_host &) = delete;
    directory_host &operator=(const directory_host &) = delete;
    ~directory_host() { ostrel_use_host(nullptr); }
    int asked() const { return asked_; }
    std::string key() const { return key_; }

    static void fluidpath(char *path, const char *key, size_t path_len, size_t key_len) {
        ++asked_;
        key_.assign(key, key_len);
        records::fill_text({path, path_len}, {directory_});
    }

private:
    static inline std::string directory_;
    static inline std::string key_;
    static inline int asked_ = 0;
};

inline const std::string quality_text = "Ostrel error: calculation as function of q, while q /= 1, only available "
                                        "for P, T, v or d.";
inline std::string unknown_pair(std::string_view code) {
    return "Ostrel error: calculation as function of " + std::string(code) + " not available.";
}
inline std::string unknown_output(std::string_view name) {
    return "Ostrel error: calculation of " + std::string(name) + " not available.";
}
inline std::string unknown_constant(std::string_view name) {
    return "Ostrel error: no info available for " + std::string(name) + ".";
}
/// The text of a failed open: it has the status code right-adjusted in 12 columns.
inline std::string failed_open(int code) {
    const std::string digits = std::to_string(code);
    return " IOSTAT returned " + std::string(12 - digits.size(), ' ') + digits;
}

/// The 17 input pairs.
inline constexpr const char *pair_codes[] = {"tv", "td", "pt", "pv", "pd", "ph", "ps", "pq", "ts",
                                             "tq", "vh", "vs", "vu", "dh", "ds", "du", "hs"};
static_assert(std::size(pair_codes) == 17);

/// Whether the text may be the error text of a solver.
inline bool of_a_solver(std::string_view text) {
    return text.starts_with("ERROR: in ") || text.starts_with("Saturation ") ||
           text.starts_with("Temperature out of range: ") || text.starts_with("Pressure out of range: ") ||
           text.starts_with("Newton method failed to converge in subroutine saturation_") ||
           text == "No solution has been found in subroutine init_saturation_curves." ||
           text == " Matrix A is singular. In FUNCTION inverse, MODULE lin_algebra. STOP";
}

/// The two SI values of a pair at a state of a single phase, or of the saturated vapor if the pair has a quality.
inline std::pair<double, double> inputs_at(std::string_view fluid, std::string_view code, double t, double d) {
    const bool saturated = code[1] == 'q';
    const auto value = [&](char letter) {
        if (letter == 'q')
            return 1.0;
        return ask(fluid, saturated ? "tq" : "td", t, saturated ? 1.0 : d, std::string_view(&letter, 1)).value;
    };
    return {value(code[0]), value(code[1])};
}

/// The 16 outputs, and whether they are served at any quality.
struct output_case {
    const char *name;
    bool any_quality;
};
inline constexpr output_case output_cases[] = {
    {"t", true},         {"v", true},       {"d", true},      {"p", true},       {"h", false},       {"s", false},
    {"u", false},        {"cv", false},     {"dp_dt", false}, {"dp_dv", false},  {"d2p_dt2", false}, {"d2p_dv2", false},
    {"d2p_dtdv", false}, {"dcv_dt", false}, {"eta", false},   {"lambda", false},
};
static_assert(std::size(output_cases) == 16);

/// The shipped fluids, from their directory.
inline std::vector<std::string> shipped_fluids() {
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(shipped_folder))
        if (entry.path().extension() == ".osd")
            names.push_back(entry.path().filename().string());
    // The order is that of the file names, in which the point counts.
    std::sort(names.begin(), names.end());
    for (std::string &name : names)
        name.erase(name.rfind('.'));
    return names;
}

/// Some fluids for tests that take long; they have every model, and the pairs of transport models that are shipped.
inline const std::vector<std::string> sample_fluids = {
    "argon",    "argon-iz", "co2",   "co2-cii",  "co2-pr",  "mdm",     "mdm-cii", "n2-ig",
    "nitrogen", "aniline",  "r404a", "tolu-cii", "tolu-mh", "toluene", "water",   "water-ig"};

inline std::string upper(std::string text) {
    for (char &c : text)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - ('a' - 'A'));
    return text;
}

/// The text of a whole file.
inline std::string file_text(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace support
