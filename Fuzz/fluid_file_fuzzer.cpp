// SPDX-License-Identifier: MIT
// The input is the text of a parameter file. The fuzzer loads the fluid through the entry points and asks for every
// output with every input pair, and for every constant. Then it reads the text as a file and as the lines of a fluid
// database, and writes it.
//
// A heat capacity may have very many terms; such a fluid is asked for less.
#include "Fuzz/fuzz_support.h"

#include "Records/record_writer.h"

#include <array>

namespace {

using fuzz::require;

std::string_view text_of_file;

/// Gives the lines of the file, as a host does that finds them in its database.
int32_t getfluid(const char *, const char *, char *lines, int32_t *found, size_t, size_t, size_t line_len) {
    *found = 1;
    for (std::string_view line : fuzz::split(text_of_file, '\n')) {
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        lines = std::copy(line.begin(), line.end(), lines) + (line_len - line.size());
    }
    return 1;
}

bool fits_database(std::string_view text) {
    const auto lines = fuzz::split(text, '\n');
    return lines.size() <= 255 && text.find('\0') == std::string_view::npos &&
           std::all_of(lines.begin(), lines.end(), [](std::string_view line) { return line.size() <= 255; });
}

/// Two states of the fluid in memory, in SI units.
struct state {
    double t;
    double v;
};
std::array<state, 2> states() {
    const auto &gas = gas_properties::gas;
    const double T_ref = gas.T_ref / gas.Z_ref;
    return {{{1.1 * T_ref, 5.0 * gas.v_ref}, {0.9 * T_ref, 0.6 * gas.v_ref}}};
}

double ask(std::string_view pair, double input1, double input2, std::string_view output) {
    fuzz::output_field errmsg(256, '\xff');
    return fuzz::ask({"fuzz", pair, input1, input2, output}, &errmsg);
}

/// Asks for all outputs, and for the first one once more.
void ask_outputs(std::string_view pair, double input1, double input2) {
    const auto outputs = ostrel::described_outputs();
    const double first = ask(pair, input1, input2, outputs[0].text.name);
    const bool solved = ideal_specific_heat::errmsg.clear();
    for (const auto &output : outputs.subspan(1))
        ask(pair, input1, input2, output.text.name);
    if (solved)
        require(fuzz::same_bits(ask(pair, input1, input2, outputs[0].text.name), first),
                "the same request has the same answer", pair);
}

void ask_everything(const state &at) {
    const auto input = [&](std::string_view name) {
        return name == "t" ? at.t : name == "v" ? at.v : name == "q" ? 1.0 : ask("tv", at.t, at.v, name);
    };
    ask_outputs("tv", at.t, at.v);
    // The outputs belong to the state, whichever pair gave it.
    for (const auto &pair : ostrel::described_input_pairs())
        for (const std::string_view output : {"h", "t"})
            ask(pair.name, input(pair.first.name), input(pair.second.name), output);
    for (const std::string_view pair : {"pq", "tq"})
        ask_outputs(pair, input(pair.substr(0, 1)), 0.3);
    for (const auto &constant : ostrel::described_informations()) {
        fuzz::output_field errmsg(256, '\xff');
        fuzz::ask_info("fuzz", constant.name, &errmsg);
    }
}

/// All parameters as the library writes them.
std::string written() {
    records::record_writer out;
    thermodynamics::write_param_thermodynamics(out);
    transport_properties::write_param_transport_propert(out);
    return out.text();
}

/// Reads with the library in the state of a new one; returns the error text.
template <class Read>
std::string text_after(Read read) {
    support::fresh_library();
    read();
    fuzz::expect_documented_error_text();
    return support::shared_text();
}

void read_as_file_and_lines(const std::string &path, const support::fluid_folder &folder, std::string_view text) {
    const auto read_file = [](const std::string &file) {
        return text_after([&] { read_init_fluiddatafile(file.data(), file.size()); });
    };
    if (read_file(path) != "No errors")
        return;
    const std::string from_file = written();
    // The writer puts a text in front of the record of an ideal gas with constant Z, and the readers refuse that.
    constexpr std::int32_t ideal_Z = 8;
    require(thermodynamics::gas_type == ideal_Z || read_file(folder.write("written", from_file)) == "No errors",
            "what is written can be read", support::shared_text());
    if (!fits_database(text))
        return;
    text_of_file = text;
    const ostrel_host routines = {nullptr, nullptr, getfluid};
    ostrel_use_host(&routines);
    const std::string message = text_after([] { read_init_fluiddatadb("place", "fuzz", 5, 4); });
    ostrel_use_host(nullptr);
    if (message == "No errors")
        require(written() == from_file, "a file and a database give the same parameters");
    else
        // In a file, missing values are sought in the next record, and a file may end with records that nobody reads.
        require(message.ends_with("found the end of the line."), "a database gives what a file gives", message);
}

/// Whether the heat capacity is evaluated as fast as that of real fluids; 10,000 terms are allowed.
bool is_fast() {
    const auto &heat = ideal_specific_heat::active;
    return std::max({heat.a_i.size(), heat.T_k.size(), heat.a_ik.size(), heat.Tv.size()}) <= 64;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const support::fluid_folder folder;
    const std::string_view text = fuzz::as_text(data, size);
    fuzz::console::taken();
    support::fresh_frame();
    setenv("OSTREL_FLUIDS", folder.path().c_str(), 1);
    const std::string path = folder.write("fuzz.osd", text);
    ask("tv", 300.0, 1.0, "t");
    if (!fuzz::builds_table(text))
        fuzz::make_up_saturation_table(gas_properties::gas.Zc);
    for (const state &at : states())
        if (is_fast())
            ask_everything(at);
        else
            ask("ts", at.t, 1.0, "h");
    read_as_file_and_lines(path, folder, text);
    require(fuzz::console::taken() == 0, "nothing is printed");
    return 0;
}
