// SPDX-License-Identifier: MIT
// Serves fluids from an SQLite database, through the library's C++ modules.
//
//   fluid_database FOLDER DATABASE FLUID...     FOLDER: where the fluids' parameter files are
//
// The program makes the database from parameter files. Then it loads each fluid from the database and prints properties
// at one state; some of them are served by the modules only.
#include "Ostrel_Main.h"
#include "Thermodynamics/ideal_specific_heat.h"
#include "Thermodynamics/thermodynamics.h"
#include "Thermodynamics/transport_properties.h"
#include "ostrel.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sqlite3.h>
#include <string>

namespace {

[[noreturn]] void give_up(std::string_view what) {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(what.size()), what.data());
    std::exit(1);
}

/// Makes the table that the library reads: in each row a fluid's name and the text of its parameter file.
void make_database(const std::string &folder, const char *path, int count, char **fluids) {
    sqlite3 *database = nullptr;
    sqlite3_stmt *insertion = nullptr;
    bool done =
        sqlite3_open(path, &database) == SQLITE_OK &&
        sqlite3_exec(database,
                     "CREATE TABLE IF NOT EXISTS fluid(name TEXT PRIMARY KEY, text TEXT NOT NULL);"
                     "BEGIN",
                     nullptr, nullptr, nullptr) == SQLITE_OK &&
        sqlite3_prepare_v2(database, "INSERT OR REPLACE INTO fluid VALUES(?, ?)", -1, &insertion, nullptr) == SQLITE_OK;
    for (int i = 0; done && i < count; ++i) {
        std::ifstream file(folder + '/' + fluids[i] + ".osd", std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        done = file && sqlite3_bind_text(insertion, 1, fluids[i], -1, SQLITE_STATIC) == SQLITE_OK &&
               sqlite3_bind_text(insertion, 2, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT) ==
                   SQLITE_OK &&
               sqlite3_step(insertion) == SQLITE_DONE && sqlite3_reset(insertion) == SQLITE_OK;
    }
    sqlite3_finalize(insertion);
    done = done && sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(database);
    if (!done)
        give_up("The database cannot be made.");
}

/// Loads a fluid from the database. Reading derives nothing, so the modules must initialise themselves. The request
/// frame does not notice the new fluid, so the key of its kept state must be cleared.
void load(std::string_view database, std::string_view fluid) {
    auto &message = ideal_specific_heat::errmsg;
    message.reset();
    ostrel::read_init_fluiddatadb(database, fluid);
    if (message.clear())
        thermodynamics::init_thermodynamics();
    if (message.clear())
        transport_properties::init_transport_properties();
    if (!message.clear())
        give_up(message.trimmed());
    ostrel::os_inputspec = {};
}

/// A property of the loaded fluid; the blank name stands for it.
double property(std::string_view pair, double first, double second, std::string_view output) {
    char text[256];
    const double value = ostrel::ostrel_prop("", pair, first, second, output, text);
    if (!records::same_text({text, sizeof text}, records::no_errors))
        give_up({text, sizeof text});
    return value;
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 4)
        give_up("fluid_database FOLDER DATABASE FLUID...");
    make_database(argv[1], argv[2], argc - 3, argv + 3);

    std::printf(
        "Vapor at 1 bar and 0.9 times the critical temperature\n%-10s%8s%10s%12s%10s%10s\n%-10s%8s%10s%12s%10s%10s\n",
        "", "model", "t", "d", "cp", "c", "", "", "K", "kg/m3", "J/(kg K)", "m/s");
    for (int i = 3; i < argc; ++i) {
        load(argv[2], argv[i]);
        const auto &gas = gas_properties::gas;
        const double t = 0.9 * gas.Tc;
        const double d = property("pt", 1e5, t, "d");
        // The entry points do not serve these. The request has left its state in reduced variables.
        const double cp = thermodynamics::cp__T_v(ostrel::T, ostrel::v) * gas.R;
        const double c = thermodynamics::c__T_v(ostrel::T, ostrel::v) * gas.c_ref;
        const auto model = thermodynamics::gas_short_names[static_cast<std::size_t>(thermodynamics::gas_type) - 1];
        std::printf("%-10s%8.*s%10.3f%12.5f%10.3f%10.3f\n", argv[i], static_cast<int>(model.size()), model.data(), t, d,
                    cp, c);
    }
    return 0;
}
