// SPDX-License-Identifier: MIT
// The paths through the library whose cost is measured: by time (request_benchmark) and by instructions
// (instruction_counter).
#pragma once

#include "Benchmarks/handle_states.h"
#include "Ostrel_Main.h"
#include "Thermodynamics/thermodynamics.h"
#include "ostrel.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace benchmarks {

/// The short names of the models, in the order of gas_type.
inline std::array<std::string_view, 8> models() {
    std::array<std::string_view, 8> names = thermodynamics::gas_short_names;
    for (std::string_view &name : names)
        name = records::trimmed(name);
    return names;
}

/// An ideal gas with one of the heat capacities; the end of its name says which.
struct heat_case {
    std::string_view name;
    std::string_view records;
};
inline constexpr heat_case heats[] = {
    {"IG-const", "1\n700.0\n"},
    {"IG-power", "2\n900.0 0.4\n"},
    {"IG-poly", "3\n4\n300.0\n1.5 -8e-4 1.2e-7 3e-11\n1 2 3 4\n"},
    {"IG-parts", "4\n2\n200.0 1000.0\n300.0 350.0\n2 2\n1.5 -8e-4\n1 2\n1.4 -7e-4\n1 2\n"},
    {"IG-vib", "5\n472.3\n4\n2*957.3 1952.2 3280.5\n"},
};

/// A folder with one fluid (its numbers are those of carbon dioxide) in every model and with every heat capacity. The
/// program removes the folder when it ends.
class fluids {
public:
    fluids() {
        std::string name = (std::filesystem::temp_directory_path() / "ostrel-benchmark-XXXXXX").string();
        path_ = mkdtemp(name.data());
        std::size_t gas_type = 0;
        for (const std::string_view model : models())
            write(model, ++gas_type, std::end(heats)[-1].records);
        for (const heat_case &heat : heats)
            write(heat.name, 1, heat.records);
        setenv("OSTREL_FLUIDS", path_.c_str(), 1);
    }
    fluids(const fluids &) = delete;
    fluids &operator=(const fluids &) = delete;
    ~fluids() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

private:
    void write(std::string_view name, std::size_t gas_type, std::string_view heat) const {
        std::ofstream(path_ / (std::string(name) + ".osd"))
            << "names\nmodel fluid\nlabel\nconstants\n44.0\nT\n304.1282\n72.8\n0.2746\n184.0\n0\n0\n"
            << gas_type << (gas_type == 8 ? "\n0.9\n" : "\n") << "F\n"
            << heat << "3\n3\n";
    }
    std::filesystem::path path_;
};

struct answer {
    double value;
    bool ok;
};

/// Asks as a host in C does.
inline answer ask(std::string_view fluid, std::string_view pair, double input1, double input2,
                  std::string_view output) {
    char text[256];
    const double value = ostrel_prop(fluid.data(), pair.data(), &input1, &input2, output.data(), text, fluid.size(),
                                     pair.size(), output.size(), sizeof text);
    return {value, std::string_view(text, 9) == "No errors"};
}

/// Both inputs of a pair at one state of a dense vapor, 1.1 of the critical temperature.
inline std::array<double, 2> inputs(std::string_view fluid, std::string_view pair) {
    if (pair == "pq")
        return {2.5e6, 1.0};
    if (pair == "tq")
        return {265.0, 1.0};
    const auto value = [&](char letter) { return ask(fluid, "tv", 334.541, 0.01, std::string_view(&letter, 1)).value; };
    return {value(pair[0]), value(pair[1])};
}

/// One way through the library. `run` makes one pass and returns whether it succeeded.
struct path {
    std::string name;
    std::function<void()> prepare;
    std::function<bool()> run;
    bool costly = false;
};

/// A request whose first input differs a little from call to call, so that no call is answered from the kept state.
/// With `cached` the input stays, and every call is.
inline path request(const std::string &name, std::string_view fluid, std::string_view pair, std::string_view output,
                    bool cached = false) {
    struct state {
        std::array<double, 2> at;
        std::size_t number = 0;
    };
    const auto kept = std::make_shared<state>();
    return {name,
            [=] {
                ask(fluid, "tv", 334.541, 0.01, "t");
                // A table that exists is that of the fluid before.
                if (pair[1] == 'q')
                    thermodynamics::init_saturation_curves();
                *kept = {inputs(fluid, pair)};
                ask(fluid, pair, kept->at[0], kept->at[1], output);
            },
            [=] {
                if (!cached)
                    ++kept->number;
                const double factor = 1 + 1e-7 * static_cast<double>(kept->number % 1000);
                return ask(fluid, pair, kept->at[0] * factor, kept->at[1], output).ok;
            }};
}

/// The list of paths has commas between its columns.
inline std::string plus(std::string outputs) {
    std::replace(outputs.begin(), outputs.end(), ',', '+');
    return outputs;
}

/// The array calls of handles, each with 256 states; and opening.
inline void add_handles(std::vector<path> &all) {
    struct kept {
        std::unique_ptr<handle> stable;
        std::unique_ptr<handle> fluid;
        std::unique_ptr<query> asked;
    };
    for (const std::string_view model : {"SRK", "PR", "MH", "VDW"}) {
        for (const measured &row : measurements)
            for (const bool dome : {false, true}) {
                const auto state = std::make_shared<kept>();
                const std::string surface = *row.options != '\0' ? "/surface" : "";
                all.push_back({"handle/" + std::string(row.inputs) + "/" + std::string(model) + "/" +
                                   plus(row.outputs) + surface + (dome ? "/dome" : ""),
                               [=] {
                                   state->stable = std::make_unique<handle>(std::string(model), "");
                                   state->fluid = std::make_unique<handle>(std::string(model), row.options);
                                   const states at =
                                       dome ? states(*state->stable, region::dome) : mixed(*state->stable);
                                   state->asked = std::make_unique<query>(*state->stable, row.inputs, row.outputs, at);
                               },
                               [=] { return state->asked->run(*state->fluid); }, true});
            }
        for (const char *const input : {"t", "p"}) {
            struct lines {
                std::unique_ptr<handle> fluid;
                std::vector<double> at;
            };
            const auto state = std::make_shared<lines>();
            all.push_back({"handle/saturation/" + std::string(model) + "/" + input,
                           [=] {
                               state->fluid = std::make_unique<handle>(std::string(model), "");
                               const states dome(*state->fluid, region::dome);
                               state->at.resize(batch);
                               ostrel_fluid_evaluate(state->fluid->get(), "tv", input, batch, dome.t.data(),
                                                     dome.v.data(), state->at.data(), nullptr);
                           },
                           [=] {
                               std::array<double, 2 * batch> liquid{}, vapor{};
                               return ostrel_fluid_saturation(state->fluid->get(), input, "p,d", batch,
                                                              state->at.data(), liquid.data(), vapor.data(),
                                                              nullptr) == OSTREL_OK;
                           },
                           true});
        }
        all.push_back({"handle/open/" + std::string(model), [] {},
                       [=] { return handle(std::string(model), "").get() != nullptr; }, true});
    }
}

/// All paths: every pair and model, every output, every heat capacity, the kept state, loading, the saturation table.
inline std::vector<path> paths() {
    std::vector<path> all;
    for (const ostrel::described_pair &pair : ostrel::described_input_pairs())
        for (const std::string_view model : models()) {
            // The ideal gases have no saturation curve, and Martin-Hou's search does not end.
            if ((pair.name[1] == 'q' && (model == "IG" || model == "IZG")) ||
                (model == "MH" && (pair.name == "ps" || pair.name == "hs")))
                continue;
            all.push_back(request(std::string(pair.name) + "/" + std::string(model), model, pair.name, "p"));
        }
    for (const std::string_view model : models())
        all.push_back(request("cached/" + std::string(model), model, "tv", "p", true));
    for (const ostrel::described_output &output : ostrel::described_outputs())
        if (output.text.name != "p") // the pairs above have this output
            all.push_back(request("tv/PR/" + std::string(output.text.name), "PR", "tv", output.text.name));
    constexpr std::array<std::string_view, 2> caloric[] = {{"tv", "u"}, {"tv", "s"}, {"tv", "cv"},
                                                           {"vu", "t"}, {"vs", "t"}, {"ph", "t"}};
    for (const heat_case &heat : heats)
        for (const auto &[pair, output] : caloric)
            all.push_back(request(std::string(pair) + "/" + std::string(heat.name) + "/" + std::string(output),
                                  heat.name, pair, output));
    for (const std::string_view model : models()) {
        all.push_back({"load/" + std::string(model), [] {},
                       [=] {
                           ostrel::os_fluid = {}; // so that the name counts as new
                           return ask(model, "tv", 334.541, 0.01, "p").ok;
                       },
                       true});
        if (model != "IG" && model != "IZG")
            all.push_back({"table/" + std::string(model), [=] { ask(model, "tv", 334.541, 0.01, "p"); },
                           [] {
                               thermodynamics::init_saturation_curves();
                               return true;
                           },
                           true});
    }
    add_handles(all);
    return all;
}

} // namespace benchmarks
