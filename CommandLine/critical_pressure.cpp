// SPDX-License-Identifier: MIT
#include "CommandLine/critical_pressure.h"

#include "CommandLine/report.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace command {
namespace {

using equations::pascal_per_atm;

constexpr int significant_digits = 10;
constexpr int furthest = 1000;

/// A file that is removed when the object is destroyed.
class temporary_file {
public:
    temporary_file() {
        std::error_code failed;
        path_ = (std::filesystem::temp_directory_path(failed) / "ostrel-XXXXXX").string();
        const int descriptor = failed ? -1 : mkstemp(path_.data());
        if (descriptor < 0)
            path_.clear();
        else
            close(descriptor);
    }
    temporary_file(const temporary_file &) = delete;
    temporary_file &operator=(const temporary_file &) = delete;
    ~temporary_file() {
        std::error_code ignored;
        if (!path_.empty())
            std::filesystem::remove(path_, ignored);
    }
    const std::string &path() const { return path_; }

private:
    std::string path_;
};

/// The start and the length of the first value of a record in the text.
struct place {
    std::size_t start;
    std::size_t length;
};
place first_value(const std::string &text, std::int64_t record) {
    std::size_t start = 0;
    for (std::int64_t number = 1; number < record; ++number)
        start = text.find('\n', start) + 1;
    start = text.find_first_not_of(" \t", start);
    return {start, text.find_first_of(" \t,/\r\n", start) - start};
}

} // namespace

std::optional<replacement> nearest_critical_pressure(const parameter_file &file) {
    records::file_reader reader(file.path);
    const std::int64_t record = equations::record_of_critical_pressure(reader);
    const double Pc = file.constants.Pc / pascal_per_atm;
    const temporary_file changed;
    if (record == 0 || !(Pc > 0) || !std::isfinite(Pc) || changed.path().empty())
        return std::nullopt;

    const place value = first_value(file.text, record);
    const auto loads = [&](const std::string &tried) {
        std::string text = file.text;
        text.replace(value.start, value.length, tried);
        std::ofstream(changed.path(), std::ios::binary) << text;
        const parameter_file result = load_file(changed.path());
        double wanted = 0;
        std::from_chars(tried.data(), tried.data() + tried.size(), wanted);
        return result.unreadable.empty() && result.constants.Pc == wanted * pascal_per_atm &&
               result.not_initialised.find("v__P_T__") == std::string::npos;
    };
    const double scale = std::pow(10.0, significant_digits - 1 - std::floor(std::log10(Pc)));
    const double middle = std::round(Pc * scale);
    const double nearer = Pc * scale < middle ? -1 : 1;
    for (int step = 0; step <= furthest; ++step)
        for (const double side : {nearer, -nearer}) {
            std::string tried = number((middle + side * step) / scale);
            if (loads(tried))
                return replacement{record, tried};
        }
    return std::nullopt;
}

} // namespace command
