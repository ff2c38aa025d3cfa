// SPDX-License-Identifier: MIT
#include "fluid_loading.h"

#include "Records/record_writer.h"
#include "Thermodynamics/ideal_specific_heat.h"
#include "Thermodynamics/thermodynamics.h"
#include "Thermodynamics/transport_properties.h"
#include "host.h"

#include <utility>

namespace loading {

using ideal_specific_heat::errmsg;
using records::trimmed;

namespace {

outcome report(outcome result, const records::record_reader &in) {
    if (result == outcome::broken)
        errmsg.report({in.message()});
    return result;
}

} // namespace

void report_failed_open(int status) {
    errmsg.report({records::list_directed({"IOSTAT returned ", std::int32_t{status}})});
}

records::line_reader line_reader_of(std::string source, const std::vector<char> &lines, std::int32_t &index) {
    return {std::move(source), lines.data(), index, host::line_count, static_cast<std::int32_t>(host::line_length)};
}

outcome read(records::file_reader &file) {
    if (file.open_status() != 0)
        return outcome::not_opened;
    thermodynamics::read_param_thermodynamics(file);
    transport_properties::read_param_transport_properties(file);
    return file.failed() ? outcome::broken : outcome::read;
}

outcome read(records::line_reader &lines) {
    thermodynamics::read_param_thermodynamicsdb(lines);
    transport_properties::read_param_transport_propertiesdb(lines);
    return lines.failed() ? outcome::broken : outcome::read;
}

outcome read_file(std::string_view path) {
    records::file_reader file(path);
    if (file.open_status() != 0)
        report_failed_open(file.open_status());
    return report(read(file), file);
}

outcome read_database(std::string_view location, std::string_view name) {
    const host::fluid_text text = host::fluid_lines(location, name);
    if (text.lines.empty()) {
        std::string message = "Error in Ostrel: error opening fluid " + std::string(trimmed(name));
        if (!text.problem.empty())
            message += ": " + text.problem + ".";
        errmsg.report({records::list_directed({message})});
        return outcome::not_opened;
    }
    std::int32_t index = 0;
    records::line_reader lines =
        line_reader_of("fluid database, " + std::string(trimmed(name).substr(0, 64)), text.lines, index);
    return report(read(lines), lines);
}

void initialise() {
    thermodynamics::init_thermodynamics();
    if (errmsg.clear())
        transport_properties::init_transport_properties();
}

} // namespace loading
