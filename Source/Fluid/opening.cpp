// SPDX-License-Identifier: MIT
#include "Fluid/opening.h"

#include "Equations/fluid_parameters.h"
#include "Fluid/options.h"
#include "Fluid/status.h"
#include "Host/fluid_index.h"
#include "Records/record_reader.h"
#include "host.h"

#include <cerrno>
#include <filesystem>
#include <span>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace fluid {
namespace {

using equations::fluid_parameters;
using fluid_index::outcome;

/// Where the parameters of a fluid come from.
struct origin {
    std::string source; ///< for people
    std::string text;   ///< the parameters as they are
    fluid_index::fluid facts{};
};

/// The name of the form or model with a code in a file.
template <class Rows, class Name>
std::string name_of(const Rows &rows, std::int32_t code, Name name) {
    for (const auto &row : rows)
        if (row.code == code)
            return name(row);
    return "unknown, code " + std::to_string(code);
}

/// Whether the option can be fulfilled with these parameters; if so, puts the wanted model in its place.
int choose_model(fluid_parameters &parameters, const options &wanted) {
    const std::int32_t model = wanted.model();
    if (model == gas_types::none || model == parameters.gas_type)
        return OSTREL_OK;
    parameters.gas_type = model;
    parameters.model = equations::empty_model(model);
    if (auto *const ideal = std::get_if<equations::ideal_Z>(&parameters.model)) {
        if (!parameters.constants.vapor)
            return report(OSTREL_BAD_ARGUMENT, {"option model=izg: the parameters have neither Z nor Zc; the fluid can "
                                                "only be opened with its own model or with model=ig"});
        ideal->Z_const = parameters.constants.Zc;
    }
    return OSTREL_OK;
}

bool has_translation(std::int32_t gas_type) {
    return gas_type == gas_types::redlich_kwong || gas_type == gas_types::soave_redlich_kwong ||
           gas_type == gas_types::peng_robinson;
}

/// Makes the states. If that fails, it says whether the parameters or the options are at fault.
int make_states(const fluid_parameters &as_read, const fluid_parameters &parameters, const options &wanted,
                const origin &from, std::unique_ptr<const core> &states) {
    const settings settings = wanted.wanted();
    std::string why;
    states = core::make(parameters, settings, why);
    if (states != nullptr)
        return OSTREL_OK;
    const auto possible = [](const fluid_parameters &of, const fluid::settings &with) {
        std::string ignored;
        return core::make(of, with, ignored) != nullptr;
    };
    const bool own_model = parameters.gas_type == as_read.gas_type;
    if (settings.reference != zero_point::critical) {
        fluid::settings standard = settings;
        standard.reference = zero_point::critical;
        if (possible(parameters, standard))
            return report(OSTREL_BAD_ARGUMENT,
                          {"option reference=", words_of_references[*wanted.chosen[reference_option]], " of ",
                           printable(from.source), ": ", why, "; without it the fluid can be opened"});
    }
    if (!own_model)
        return report(OSTREL_BAD_ARGUMENT, {"option model=", equations::words_of_models[*wanted.chosen[model_option]],
                                            " of ", printable(from.source), ": ", why});
    return report(OSTREL_BAD_FILE, {printable(from.source), ": ", why});
}

/// Reads the records and opens the fluid.
int open(records::record_reader &records, const options &wanted, origin &&from, opened &result) {
    fluid_parameters as_read;
    equations::read(records, as_read);
    if (records.failed())
        return report(OSTREL_BAD_FILE, {printable(records.message())});
    fluid_parameters parameters = as_read;
    if (const int status = choose_model(parameters, wanted); status != OSTREL_OK)
        return status;
    if (equations::find_model(parameters.gas_type) == nullptr)
        return report(OSTREL_BAD_FILE, {printable(from.source), ": gas_type ", std::to_string(parameters.gas_type),
                                        " is no model; the models are 1 to ", std::to_string(equations::model_count),
                                        ", or choose one by the option model"});
    const std::string_view word = equations::words_of_models[static_cast<std::size_t>(parameters.gas_type - 1)];
    if (wanted.wanted().translated_volume && !has_translation(parameters.gas_type))
        return report(OSTREL_BAD_ARGUMENT, {"option volume=translated of ", printable(from.source), ": the model is ",
                                            word, "; only srk, pr and rk have translated volumes"});
    auto made = std::make_unique<ostrel_fluid>();
    if (const int status = make_states(as_read, parameters, wanted, from, made->states); status != OSTREL_OK)
        return status;

    made->settings = wanted.wanted();
    made->numbers = {.file = as_read.constants,
                     .equation = made->states->constants(),
                     .triple_temperature = from.facts.triple_temperature,
                     .heat_capacity_lowest = from.facts.heat_capacity_lowest,
                     .heat_capacity_highest = from.facts.heat_capacity_highest};
    known_texts &texts = made->texts;
    texts.name = as_read.constants.name.trimmed();
    texts.label = as_read.constants.label.trimmed();
    texts.model = word;
    texts.source = std::move(from.source);
    texts.text = std::move(from.text);
    texts.options = canonical(wanted, parameters.gas_type);
    texts.formula = std::move(from.facts.formula);
    texts.cas = std::move(from.facts.cas);
    for (const std::string &alias : from.facts.aliases)
        texts.aliases += (texts.aliases.empty() ? "" : "; ") + alias;
    texts.heat_capacity = name_of(ideal_gas_heat::forms, as_read.heat.function_type, [](const auto &form) {
        return std::string(form.name) + ": " + std::string(form.equation);
    });
    const auto name = [](const transport::model &model) { return std::string(model.name); };
    texts.viscosity = name_of(transport::viscosity_models, as_read.transport.viscosity_model, name);
    texts.conductivity = name_of(transport::thermal_cond_models, as_read.transport.thermal_cond_model, name);
    made->shown_name = in_quotes(texts.name.empty() ? texts.source : texts.name);
    result = std::move(made);
    return OSTREL_OK;
}

/// Why a file could not be read, from errno's code.
std::string problem_of(int code) {
    switch (code) {
    case ENOENT:
        return "there is no such file";
    case ENXIO:
        return "it is a pipe, a socket or a terminal";
    case EISDIR:
        return "it is a folder";
    case EFBIG:
        return "it is too large";
    default:
        return "it cannot be read, error " + std::to_string(code);
    }
}

/// Opens a file that is at a path.
int open_path(const std::string &path, const options &wanted, fluid_index::fluid &&facts, opened &result) {
    origin from{.source = path, .text = {}, .facts = std::move(facts)};
    int failed = records::read_file(path, from.text);
    std::error_code ignored;
    if (failed == 0 && from.text.empty() && std::filesystem::is_directory(path, ignored))
        failed = EISDIR;
    if (failed != 0)
        return report(OSTREL_CANNOT_OPEN,
                      {"file ", in_quotes(path), ": ", problem_of(failed), "; the path of a parameter file is needed"});
    records::text_reader records(records::source_of_file(path), from.text);
    return open(records, wanted, std::move(from), result);
}

std::string folder_of(const options &wanted) {
    if (!wanted.chosen[folder_option])
        return host::default_fluid_directory();
    return wanted.folder.ends_with('/') ? wanted.folder : wanted.folder + '/';
}

/// "a (b), c (d) or e"
std::string listed_fluids(const std::vector<fluid_index::fluid> &fluids) {
    std::vector<std::string> texts;
    texts.reserve(fluids.size());
    for (const fluid_index::fluid &one : fluids)
        texts.push_back(printable(fluid_index::described(one)));
    return joined(texts, " or ");
}

int report_unknown(const std::string &folder, std::string_view name) {
    const std::vector<fluid_index::fluid> near = fluid_index::index(folder).meant(name);
    if (near.empty())
        return report(OSTREL_CANNOT_OPEN,
                      {"fluid ", in_quotes(name), ": there are no parameter files in ", in_quotes(folder),
                       "; set OSTREL_FLUIDS or the option folder to a folder that has some"});
    return report(OSTREL_CANNOT_OPEN, {"fluid ", in_quotes(name), ": no such fluid in ", in_quotes(folder),
                                       "; did you mean ", listed_fluids(near), "?"});
}

} // namespace

int open_name(const char *name, const char *option_text, opened &result) {
    options wanted;
    if (name == nullptr)
        return report_null("name", "a text is needed");
    if (const int status = read(option_text, true, wanted); status != OSTREL_OK)
        return status;
    const std::string folder = folder_of(wanted);
    fluid_index::answer found = fluid_index::find(folder, name);
    if (found.how == outcome::not_found)
        return report_unknown(folder, name);
    if (found.how == outcome::ambiguous)
        return report(OSTREL_CANNOT_OPEN, {"fluid ", in_quotes(name), ": several fluids have this name; it could be ",
                                           listed_fluids(found.fluids)});
    fluid_index::fluid &facts = found.fluids.front();
    const std::string path = folder + facts.file + ".osd";
    return open_path(path, wanted, std::move(facts), result);
}

int open_file(const char *path, const char *option_text, opened &result) {
    options wanted;
    if (path == nullptr)
        return report_null("path", "a text is needed");
    if (const int status = read(option_text, false, wanted); status != OSTREL_OK)
        return status;
    return open_path(path, wanted, {}, result);
}

int open_text(const char *text, const char *option_text, opened &result) {
    options wanted;
    if (text == nullptr)
        return report_null("text", "a text is needed");
    if (const int status = read(option_text, false, wanted); status != OSTREL_OK)
        return status;
    origin from{.source = "text", .text = text};
    records::text_reader records(from.source, from.text);
    return open(records, wanted, std::move(from), result);
}

int open_database(const char *location, const char *name, const char *option_text, opened &result) {
    options wanted;
    if (location == nullptr)
        return report_null("location", "a text is needed");
    if (name == nullptr)
        return report_null("name", "a text is needed");
    if (const int status = read(option_text, false, wanted); status != OSTREL_OK)
        return status;
    host::fluid_text found = host::default_fluid_lines(location, name);
    if (!found.problem.empty())
        return report(OSTREL_BAD_FILE,
                      {"fluid ", in_quotes(name), " of database ", in_quotes(location), ": ", found.problem});
    if (found.lines.empty())
        return report(OSTREL_CANNOT_OPEN,
                      {"fluid ", in_quotes(name), " of database ", in_quotes(location),
                       ": no such fluid; the location must be an SQLite file with a table fluid(name, text)"});
    origin from{.source = std::string(location) + ", fluid " + name, .text = std::move(found.text)};
    std::int32_t index = 0;
    records::line_reader records("fluid database, " + printable(std::string_view(name).substr(0, 64)),
                                 found.lines.data(), index, host::line_count,
                                 static_cast<std::int32_t>(host::line_length));
    return open(records, wanted, std::move(from), result);
}

int find_fluids(const char *words, std::vector<found_fluid> &found) {
    if (words == nullptr)
        return report_null("words", "a text is needed");
    const std::string folder = host::default_fluid_directory();
    std::error_code failed;
    if (!std::filesystem::is_directory(folder, failed))
        return report(OSTREL_CANNOT_OPEN, {"the fluid folder ", in_quotes(folder),
                                           ": there is no such folder; set "
                                           "OSTREL_FLUIDS to a folder with parameter files"});
    for (fluid_index::fluid &one : fluid_index::index(folder).search(words)) {
        std::string name = one.name.empty() ? one.file : std::move(one.name);
        found.push_back({std::move(one.file), std::move(name)});
    }
    return OSTREL_OK;
}

} // namespace fluid
