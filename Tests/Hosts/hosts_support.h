// SPDX-License-Identifier: MIT
// The tests of difficult hosts share this file: one long session with every entry point, all its answers, and the
// number of open descriptors.
#pragma once

#include "Tests/Support/frame.h"

#ifdef OSTREL_WITH_SQLITE
#include <sqlite3.h>
#endif

#include <bit>
#include <cfenv>
#include <cstdint>
#include <filesystem>
#include <iterator>

namespace support {

/// A value, compared by its bits so that NaNs and zeros compare too, and the text that came with it.
struct exact_answer {
    std::uint64_t bits;
    std::string text;
    friend bool operator==(const exact_answer &, const exact_answer &) = default;
};

inline void PrintTo(const exact_answer &answer, std::ostream *out) {
    *out << std::bit_cast<double>(answer.bits) << " \"" << answer.text << '"';
}

inline long open_descriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}) - 1; // without the listing's own
}

#ifdef OSTREL_WITH_SQLITE
/// An SQLite database with the one fluid.
inline void make_database(const std::string &path, const std::string &fluid, const std::string &text) {
    sqlite3 *database = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
    const std::string statements = "CREATE TABLE fluid(name TEXT PRIMARY KEY, text TEXT NOT NULL);"
                                   "INSERT INTO fluid VALUES('" +
                                   fluid + "', '" + text + "')";
    EXPECT_EQ(sqlite3_exec(database, statements.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_EQ(sqlite3_close(database), SQLITE_OK);
}
#endif

/// One session with every entry point: it loads from good and bad files and from a database, asks for all pairs and
/// outputs of fluids with every model, passes hostile numbers and has failures of each kind. The requests are prepared
/// beforehand, so that an environment can be set around the calls of the library alone.
class session {
public:
    session() {
        fresh_frame();
        for (const std::string &fluid : sample_fluids)
            for (const char *code : pair_codes) {
                const auto [input1, input2] = inputs_at(fluid, code, 500.0, 2.0);
                for (const auto &output : output_cases)
                    requests_.push_back({fluid, code, input1, input2, output.name});
            }
        using limits = std::numeric_limits<double>;
        constexpr double numbers[] = {0.0,
                                      -0.0,
                                      -1.0,
                                      1.0,
                                      1e-310,
                                      1e-160,
                                      1e160,
                                      limits::max(),
                                      limits::infinity(),
                                      -limits::infinity(),
                                      limits::quiet_NaN(),
                                      limits::signaling_NaN()};
        for (const char *fluid : {"toluene", "n2-ig", "co2-pr", "tolu-mh"})
            for (const char *code : pair_codes)
                for (const double input1 : numbers)
                    for (const double input2 : numbers)
                        for (const char *output : {"t", "s"})
                            requests_.push_back({fluid, code, input1, input2, output});
        requests_.push_back({"nofluid", "tv", 500, 0.5, "p"});
        requests_.push_back({"toluene", "xx", 500, 0.5, "p"});
        requests_.push_back({"toluene", "tv", 500, 0.5, "none"});
        requests_.push_back({"toluene", "tq", 500, 0.5, "h"});

        const auto file = [&](const std::string &name, const std::string &text) {
            files_.push_back(folder_.write(name, text));
        };
        file("good.osd", vapor_file());
        file("comma.osd", "names\nmodel fluid\nlabel\nconstants\n20,5 MM\nT vapor\n300,25 Tc\n1.234.567 Pc\n");
        file("letter.osd", "names\nmodel fluid\nlabel\nconstants\n1x\n");
        file("huge.osd", "names\nmodel fluid\nlabel\nconstants\n" + std::string(400, '9') + "\nT\n1e-400\n1e400\n");
        file("many.osd", vapor_section + "7\nT\n3\n2147483647\n");
        file("digits.osd", vapor_file("7\n") + "2.2250738585072011e-308 0.1000000000000000055511151231257827\n");
#ifdef OSTREL_WITH_SQLITE
        database_ = folder_.path() + "/fluids.sqlite";
        make_database(database_, "good", file_text(OSTREL_TESTS "/../Fluids/toluene.osd"));
        // The database makes texts of numbers that stand in place of texts.
        make_database(folder_.path() + "/numbers.sqlite", "good", "x");
        sqlite3 *numbers_database = nullptr;
        sqlite3_open((folder_.path() + "/numbers.sqlite").c_str(), &numbers_database);
        sqlite3_exec(numbers_database,
                     "DROP TABLE fluid; CREATE VIEW fluid AS SELECT 'good' AS name, 1e300*1e300-0.1/3 AS text", nullptr,
                     nullptr, nullptr);
        sqlite3_close(numbers_database);
#endif
    }

    /// All answers of a library in its first state. `around` is given each call of an entry point and makes it.
    template <class Around>
    std::vector<exact_answer> run(Around around) const {
        fresh_frame();
        std::vector<exact_answer> answers;
        double value = 0;
        std::string text;
        const auto keep = [&] {
            answers.push_back({std::bit_cast<std::uint64_t>(value), text});
            value = 0;
            text = shared_text();
        };
        const auto keep_loaded = [&] {
            value = gas_properties::gas.Tc;
            text = shared_text();
            keep();
            records::record_writer writer;
            gas_properties::write_param_gas_properties(writer);
            ideal_specific_heat::write_param_ideal_specific_heat(writer);
            text = writer.text();
            keep();
            ideal_specific_heat::errmsg.reset();
        };
        for (const request &r : requests_) {
            text.assign(256, '#');
            around([&] {
                value = ostrel_prop(r.fluid.data(), r.code.data(), &r.input1, &r.input2, r.output.data(), text.data(),
                                    r.fluid.size(), r.code.size(), r.output.size(), text.size());
            });
            keep();
        }
        for (const std::string &fluid : sample_fluids)
            for (const std::string_view name : {"m_mol", "T_CRIT", "p_crit", "none"}) {
                text.assign(256, '#');
                around([&] {
                    value = ostrel_info(fluid.data(), name.data(), text.data(), fluid.size(), name.size(), text.size());
                });
                keep();
            }
        for (const char *code : pair_codes) {
            ideal_specific_heat::errmsg.reset();
            const double one = 1.0, half = 0.7;
            double T = 0, v = 0;
            around([&] { get_tv(code, &one, &half, &T, &v, 2); });
            value = T;
            keep();
            value = v;
            keep();
        }
        for (const std::string &fluid : sample_fluids) {
            around([&] { read_init_fluiddata(fluid.data(), fluid.size()); });
            keep_loaded();
        }
        for (const std::string &file : files_) {
            around([&] { read_init_fluiddatafile(file.data(), file.size()); });
            keep_loaded();
        }
        for (const std::string &database : {database_, folder_.path() + "/numbers.sqlite", folder_.path() + "/none"}) {
            around([&] { read_init_fluiddatadb(database.data(), "good", database.size(), 4); });
            keep_loaded();
        }
        std::int32_t count = 0;
        std::array<std::int32_t, 4> version{};
        text.assign(500 * 256, '#');
        around([&] { ostrel_fluids(&count, text.data(), 256); });
        value = count;
        keep();
        around([&] { getversion(version.data()); });
        value = version[3];
        keep();
        around([] { ostrel_sub(); });
        return answers;
    }
    std::vector<exact_answer> run() const {
        return run([](auto call) { call(); });
    }

private:
    struct request {
        std::string_view fluid;
        std::string_view code;
        double input1; ///< [SI]
        double input2; ///< [SI]
        std::string_view output;
    };
    std::vector<request> requests_;
    temporary_folder folder_;
    std::vector<std::string> files_;
    std::string database_;
};

/// Expects the same answers to the same session, and tells the first differences.
inline void expect_same(const std::vector<exact_answer> &answers, const std::vector<exact_answer> &wanted) {
    ASSERT_EQ(answers.size(), wanted.size());
    int told = 0;
    for (std::size_t i = 0; i < answers.size() && told < 5; ++i)
        if (answers[i] != wanted[i]) {
            ADD_FAILURE() << "answer " << i << " is " << testing::PrintToString(answers[i]) << ", not "
                          << testing::PrintToString(wanted[i]);
            ++told;
        }
}

} // namespace support
