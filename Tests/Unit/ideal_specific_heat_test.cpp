// SPDX-License-Identifier: MIT
#include "Tests/Support/thermodynamics.h"

#include <gmock/gmock.h>

namespace {

using namespace ideal_specific_heat;
using namespace ideal_gas_heat;
using gas_properties::gas;
using support::both_sources;
using support::heat_section;
using support::read;
using support::read_well;
using support::real;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max();

struct ideal_specific_heat_test : support::thermodynamics_test {
    ideal_specific_heat_test() { set_fluid(true); }

    /// Sets the fluid as a model leaves it: R = 200, Tc = 400, T_ref = 100.
    static void set_fluid(bool vapor) {
        gas.name = records::fixed_text<32>("model fluid");
        gas.R = 200.0;
        gas.vapor = vapor;
        gas.Tc = 400.0;
        gas.T_ref = 100.0;
        gas.P_ref = 1.0e5;
        gas.v_ref = 0.25;
    }
    /// Reads a section with the library in its first state, and initialises it.
    static void use(const std::string &records, bool vapor = true) {
        support::fresh_library();
        set_fluid(vapor);
        read_well(heat_section, records);
        init_ideal_specific_heat();
    }
};

// phi, psi and dcv/dT in the dimensions of cv, at T.
double phi_at(double T) {
    return phi__T(T / gas.T_ref) * (gas.P_ref * gas.v_ref);
}
double psi_at(double T) {
    return psi__T(T / gas.T_ref) * gas.R;
}
double dcv_at(double T) {
    return phipp__T(T / gas.T_ref) * (gas.P_ref * gas.v_ref) / (gas.T_ref * gas.T_ref);
}

void expect_all_zero_at(double T) {
    SCOPED_TRACE(T);
    const double t = T / active.T_ref;
    EXPECT_EQ(cv_oo__Tdim(T), 0.0);
    EXPECT_EQ(phi__T(t), 0.0);
    EXPECT_EQ(phip__T(t), 0.0);
    EXPECT_EQ(phipp__T(t), 0.0);
    EXPECT_EQ(psi__T(t), 0.0);
}

/// Evaluates everything, so that a sanitizer notices a read outside of the arrays.
void evaluate_everything() {
    init_ideal_specific_heat();
    for (const double T : {-1.0, 0.0, 1.0e-300, 50.0, 150.0, 250.0, 1.0e9, infinity, std::nan("")}) {
        const double t = T / 100.0;
        for (volatile const double result : {cv_oo__Tdim(T), phi__T(t), phip__T(t), phipp__T(t), psi__T(t)})
            (void)result;
    }
    support::written(heat_section);
}

// Reading

TEST_F(ideal_specific_heat_test, before_any_reading_all_is_zero) {
    EXPECT_FALSE(active.coeff_adim);
    EXPECT_EQ(active.function_type, 0);
    EXPECT_EQ(support::shared_text(), "No errors");
    EXPECT_EQ(errmsg.padded().size(), 256u);
    active.T_ref = active.P_ref = active.v_ref = active.Rgas = 1;
    expect_all_zero_at(300.0);
}

struct layout {
    const char *name;
    std::string text;
    std::int64_t last;
    void (*check)();
};
const layout layouts[] = {
    {"constant", "T remark\n1 remark\n2.5 remark\n", 3,
     [] {
         EXPECT_TRUE(active.coeff_adim);
         EXPECT_EQ(active.cv_0, 2.5);
     }},
    {"power law", "F\n2\n1200.0, 0.45 remark\n", 3,
     [] {
         EXPECT_FALSE(active.coeff_adim);
         EXPECT_EQ(active.cv_oo_Tc, 1200.0);
         EXPECT_EQ(active.np, 0.45);
     }},
    {"polynomial", "F\n3\n3 terms\n400.0\n1.5 -0.001,2.0e4\n1 2 -0.5\n", 6,
     [] {
         EXPECT_EQ(active.cv_0, 400.0);
         EXPECT_THAT(active.a_i, ElementsAre(1.5, -0.001, 2.0e4));
         EXPECT_THAT(active.n_i, ElementsAre(1.0, 2.0, -0.5));
     }},
    {"piecewise", "T\n4\n3\n100 200 300\n7 8 9\n2 0 1\n1.5 2.5\n1 2\n\n\n3.5\n3\n", 12,
     [] {
         EXPECT_THAT(active.T_k, ElementsAre(100.0, 200.0, 300.0, largest));
         EXPECT_THAT(active.cv_0_k, ElementsAre(7.0, 8.0, 9.0));
         EXPECT_THAT(active.n_k, ElementsAre(2, 0, 1));
         EXPECT_EQ(active.terms, 2u);
         EXPECT_THAT(active.a_ik, ElementsAre(1.5, 2.5, 0.0, 0.0, 3.5, 0.0));
         EXPECT_THAT(active.n_ik, ElementsAre(1.0, 2.0, 0.0, 0.0, 3.0, 0.0));
         EXPECT_EQ(active.phi0_k.size(), 3u);
         EXPECT_EQ(active.psi0_k.size(), 3u);
     }},
    {"Einstein", "F\n5\n500.0\n3\n2*957.3 1952.2\n", 5,
     [] {
         EXPECT_EQ(active.cv_0, 500.0);
         EXPECT_THAT(active.Tv, ElementsAre(957.3, 957.3, 1952.2));
     }},
};

TEST_F(ideal_specific_heat_test, both_readers_take_the_same_records) {
    for (const layout &form : layouts)
        for (const auto from : both_sources) {
            SCOPED_TRACE(testing::Message() << form.name << " " << from);
            support::fresh_library();
            const auto [message, last] = read(heat_section, from, "0\n0\n" + form.text + "99 99 99 99\n", 2);
            EXPECT_EQ(message, "");
            EXPECT_EQ(last, form.last + 2);
            form.check();
        }
}

TEST_F(ideal_specific_heat_test, the_appended_bound_is_the_largest_double) {
    read_well(heat_section, layouts[3].text);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(active.T_k.back()), 0x7FEFFFFFFFFFFFFFu);
}

TEST_F(ideal_specific_heat_test, reading_again_replaces_the_lists_of_the_form_and_keeps_those_of_others) {
    for (const layout &form : layouts)
        read_well(heat_section, form.text);
    layouts[3].check();
    layouts[4].check();
    EXPECT_EQ(active.np, 0.45);
    EXPECT_THAT(active.a_i, ElementsAre(1.5, -0.001, 2.0e4));
    read_well(heat_section, "F\n3\n1\n0\n7\n8\n");
    EXPECT_THAT(active.a_i, ElementsAre(7.0));
    EXPECT_THAT(active.n_i, ElementsAre(8.0));
    EXPECT_EQ(active.Tv.size(), 3u);
    read_well(heat_section, "F\n4\n1\n50\n6\n1\n7\n8\n");
    EXPECT_THAT(active.T_k, ElementsAre(50.0, largest));
    EXPECT_THAT(active.a_ik, ElementsAre(7.0));
    EXPECT_EQ(active.phi0_k.size(), 1u);
}

TEST_F(ideal_specific_heat_test, an_unknown_form_reads_no_more_and_every_result_is_zero) {
    for (const layout &form : layouts)
        read_well(heat_section, form.text);
    for (const int code : {0, 6, -1, 2147483647})
        for (const auto from : both_sources) {
            SCOPED_TRACE(testing::Message() << code << " " << from);
            const auto [message, last] = read(heat_section, from, "T\n" + std::to_string(code) + "\n99\n99\n");
            EXPECT_EQ(message, "");
            EXPECT_EQ(last, 2);
            init_ideal_specific_heat();
            for (const double T : {50.0, 250.0, 1.0e4})
                expect_all_zero_at(T);
            EXPECT_EQ(gas.cv0_ref, 0.0);
            EXPECT_EQ(gas.cp0_ref, 200.0);
            EXPECT_THAT(support::written(heat_section), ElementsAre(" T", records::list_directed({code})));
        }
    EXPECT_EQ(active.cv_0, 500.0);
}

TEST_F(ideal_specific_heat_test, null_values_keep_the_old_ones) {
    read_well(heat_section, "T\n2\n1200.0 0.45\n");
    read_well(heat_section, ",\n,\n, 0.5\n");
    EXPECT_TRUE(active.coeff_adim);
    EXPECT_EQ(active.function_type, 2);
    EXPECT_EQ(active.cv_oo_Tc, 1200.0);
    EXPECT_EQ(active.np, 0.5);
    read_well(heat_section, ",\n,\n900.0 /\n");
    EXPECT_EQ(active.cv_oo_Tc, 900.0);
    EXPECT_EQ(active.np, 0.5);

    // A count that is missing keeps its value.
    for (const layout &form : layouts)
        read_well(heat_section, form.text);
    read_well(heat_section, "F\n3\n,\n,\n1 2 3\n4 5 6\n");
    EXPECT_THAT(active.a_i, ElementsAre(1.0, 2.0, 3.0));
    EXPECT_EQ(active.cv_0, 500.0);
    read_well(heat_section, "F\n4\n,\n1 2 3\n4 5 6\n3*0\n\n\n\n\n\n\n");
    EXPECT_THAT(active.T_k, ElementsAre(1.0, 2.0, 3.0, largest));
    // The values of intervals start from 0 each time.
    read_well(heat_section, "F\n4\n,\n1 2 3\n3*\n3*\n\n\n\n\n\n\n");
    EXPECT_THAT(active.cv_0_k, ElementsAre(0.0, 0.0, 0.0));
    EXPECT_THAT(active.n_k, ElementsAre(0, 0, 0));
    EXPECT_THAT(active.phi0_k, ElementsAre(0.0, 0.0, 0.0));
    EXPECT_THAT(active.psi0_k, ElementsAre(0.0, 0.0, 0.0));
    read_well(heat_section, "F\n5\n,\n,\n7 8 9\n");
    EXPECT_THAT(active.Tv, ElementsAre(7.0, 8.0, 9.0));
    EXPECT_EQ(active.cv_0, 500.0);
}

// In a file a value that is missing is sought on the next record, in lines it is an error.
TEST_F(ideal_specific_heat_test, missing_values_are_sought_in_files_only) {
    const std::string text = "F\n2\n1200.0\n0.45\n";
    const auto [message, last] = read(heat_section, support::source::file, text);
    EXPECT_EQ(message, "");
    EXPECT_EQ(last, 4);
    EXPECT_EQ(active.np, 0.45);
    active.np = 7.25;
    const auto lines = read(heat_section, support::source::lines, text);
    EXPECT_EQ(lines.message, "Ostrel error: fluid, record 3: expected np (a real), found the end of the line.");
    EXPECT_EQ(lines.last, 3);
    EXPECT_EQ(active.np, 7.25);
}

// An empty list still takes its record.
TEST_F(ideal_specific_heat_test, counts_of_zero_or_below_make_empty_lists) {
    const struct {
        const char *name;
        std::string before;
        std::string after;
        std::int64_t last;
        std::size_t records_written;
    } cases[] = {
        {"N", "F\n3\n", "\n750.0\nskipped\nskipped\n", 6, 6},
        {"K", "F\n4\n", "\nskipped\nskipped\nskipped\n", 6, 6},
        {"NV", "F\n5\n750.0\n", "\nskipped\n", 5, 5},
        {"n_k", "F\n4\n1\n10\n750.0\n", "\nskipped\nskipped\n", 8, 8},
    };
    for (const auto &[name, before, after, last, records_written] : cases)
        for (const char *count : {"0", "-1", "-2147483648"})
            for (const auto from : both_sources) {
                SCOPED_TRACE(testing::Message() << name << " = " << count << " " << from);
                support::fresh_library();
                set_fluid(true);
                for (const layout &form : layouts)
                    read_well(heat_section, form.text);
                const auto done = read(heat_section, from, before + count + after + "99\n99\n");
                EXPECT_EQ(done.message, "");
                EXPECT_EQ(done.last, last);
                evaluate_everything();
                EXPECT_EQ(cv_oo__Tdim(300.0), name == std::string("K") ? 0.0 : 750.0);
                EXPECT_EQ(support::written(heat_section).size(), records_written);
            }
}

TEST_F(ideal_specific_heat_test, a_section_that_breaks_off_can_be_evaluated) {
    for (const layout &form : layouts)
        for (const bool loaded_before : {false, true})
            for (std::int64_t present = 0; present < form.last; ++present)
                for (const auto from : both_sources) {
                    SCOPED_TRACE(testing::Message() << form.name << " with " << present << " records " << from);
                    support::fresh_library();
                    set_fluid(true);
                    if (loaded_before)
                        for (const layout &other : layouts)
                            read_well(heat_section, other.text);
                    const auto [message, last] = read(heat_section, from, support::first_records(form.text, present));
                    EXPECT_THAT(message, HasSubstr("record " + std::to_string(present + 1) + ": expected "));
                    EXPECT_THAT(message, HasSubstr(", found the end of the file."));
                    EXPECT_EQ(last, present + 1);
                    evaluate_everything();
                }
}

TEST_F(ideal_specific_heat_test, a_list_that_breaks_off_can_be_evaluated) {
    const struct {
        const char *text;
        const char *message;
    } cases[] = {
        {"F\n3\n3\n400\n1 2 x\n", "record 5: expected a_i(3) (a real), found \"x\"."},
        {"F\n3\n3\n400\n1 2 3\n1 x\n", "record 6: expected n_i(2) (a real), found \"x\"."},
        {"F\n3\n2.0\n", "record 3: expected N (an integer), found \"2.0\"."},
        {"F\n4\n2\n100 x\n", "record 4: expected T_k(2) (a real), found \"x\"."},
        {"F\n4\n2\n100 200\nx\n", "record 5: expected cv_0_k(1) (a real), found \"x\"."},
        {"F\n4\n2\n100 200\n7 8\n9 x\n", "record 6: expected n_k(2) (an integer), found \"x\"."},
        {"F\n4\n2\n100 200\n7 8\n2 2\n1 x\n", "record 7: expected a_ik(2) (a real), found \"x\"."},
        {"F\n4\n2\n100 200\n7 8\n2 2\n1 2\n1 2\n3 4\nx\n", "record 10: expected n_ik(1) (a real), found \"x\"."},
        {"F\n5\n1\n2\n900 x\n", "record 5: expected Tv(2) (a real), found \"x\"."},
        {"F\n5\n1\n1\nx\n", "record 5: expected Tv(1) (a real), found \"x\"."},
        {"x\n", "record 1: expected coeff_adim (a logical), found \"x\"."},
        {"T\nx\n", "record 2: expected function_type (an integer), found \"x\"."},
        {"T\n1\nx\n", "record 3: expected cv_0 (a real), found \"x\"."},
        {"T\n2\n1 x\n", "record 3: expected np (a real), found \"x\"."},
        {"T\n2\nx\n", "record 3: expected cv_oo_Tc (a real), found \"x\"."},
        {"F\n5\n1\nx\n", "record 4: expected NV (an integer), found \"x\"."},
        {"F\n4\nx\n", "record 3: expected K (an integer), found \"x\"."},
    };
    for (const auto &[text, message] : cases)
        for (const auto from : both_sources) {
            SCOPED_TRACE(testing::Message() << text << " " << from);
            support::fresh_library();
            set_fluid(true);
            EXPECT_EQ(read(heat_section, from, text).message, support::unread(from, message));
            evaluate_everything();
        }
}

// The section before had terms for three intervals. None of them may be left for the numbers of terms read last.
TEST_F(ideal_specific_heat_test, numbers_of_terms_without_their_terms_count_for_nothing) {
    for (const char *broken : {"F\n4\n2\n100 200\n7 8\n9 x\n", "F\n4\n2\n100 200\n7 8\n9 20000\n"}) {
        SCOPED_TRACE(broken);
        read_well(heat_section, layouts[3].text);
        EXPECT_NE(read(heat_section, support::source::file, broken).message, "");
        init_ideal_specific_heat();
        EXPECT_EQ(cv_oo__Tdim(150.0), 7.0);
        EXPECT_EQ(cv_oo__Tdim(250.0), 8.0);
        EXPECT_EQ(dcv_at(150.0), 0.0);
    }
}

TEST_F(ideal_specific_heat_test, a_huge_count_is_refused_before_anything_is_allocated) {
    const struct {
        const char *text;
        const char *wanted;
    } cases[] = {
        {"F\n3\n2147483647\n", "record 3: expected N of at most 10000, found 2147483647."},
        {"F\n3\n10001\n", "record 3: expected N of at most 10000, found 10001."},
        {"F\n4\n2147483647\n", "record 3: expected K of at most 10000, found 2147483647."},
        {"F\n5\n1\n2147483647\n", "record 4: expected NV of at most 10000, found 2147483647."},
        {"F\n4\n2\n1 2\n1 2\n0 2147483647\n", "record 6: expected n_k of at most 10000, found 2147483647."},
        {"F\n4\n3\n1 2 3\n1 2 3\n0 0 9999\n",
         "record 6: expected K times the largest n_k of at most 10000, found 29997."},
    };
    for (const auto &[text, wanted] : cases) {
        SCOPED_TRACE(text);
        support::fresh_library();
        set_fluid(true);
        EXPECT_EQ(read(heat_section, support::source::file, text).message,
                  support::unread(support::source::file, wanted));
        EXPECT_LT(active.a_i.size() + active.T_k.size() + active.a_ik.size() + active.Tv.size(), 10u);
        evaluate_everything();
    }
}

// Writing

TEST_F(ideal_specific_heat_test, the_writer_writes_the_active_form_record_by_record) {
    const std::vector<std::string> expected[] = {
        {" T", "           1", "   2.5000000000000000     "},
        {" F", "           2", "   1200.0000000000000       0.45000000000000001     "},
        {" F", "           3", "           3", real({400}), real({1.5, -0.001, 2.0e4}), real({1, 2, -0.5})},
        {" T", "           4", "           3", real({100, 200, 300}), real({7, 8, 9}),
         "           2           0           1", real({1.5, 2.5}), real({1, 2}), "", "", real({3.5}), real({3})},
        {" F", "           5", real({500}), "           3", real({957.3, 957.3, 1952.2})},
    };
    for (std::size_t i = 0; i < std::size(layouts); ++i) {
        SCOPED_TRACE(layouts[i].name);
        read_well(heat_section, layouts[i].text);
        EXPECT_EQ(support::written(heat_section), expected[i]);
    }
}

TEST_F(ideal_specific_heat_test, a_written_section_reads_back) {
    for (const layout &form : layouts)
        for (const auto from : both_sources) {
            SCOPED_TRACE(testing::Message() << form.name << " " << from);
            support::fresh_library();
            read_well(heat_section, form.text);
            records::record_writer writer;
            heat_section.write(writer);
            support::fresh_library();
            const auto [message, last] = read(heat_section, from, writer.text());
            EXPECT_EQ(message, "");
            EXPECT_EQ(last, form.last);
            form.check();
        }
}

// Initialisation

TEST_F(ideal_specific_heat_test, init_copies_the_reference_state) {
    use("F\n1\n750\n");
    EXPECT_EQ(active.T_ref, 100.0);
    EXPECT_EQ(active.P_ref, 1.0e5);
    EXPECT_EQ(active.v_ref, 0.25);
    EXPECT_EQ(active.Rgas, 200.0);
    EXPECT_EQ(active.Tc, 0.0);
}

TEST_F(ideal_specific_heat_test, dimensionless_coefficients_become_dimensional_once) {
    use("T\n1\n2.5\n");
    EXPECT_EQ(active.cv_0, 500.0);
    use("T\n2\n2.5 0.5\n");
    EXPECT_EQ(active.cv_oo_Tc, 500.0);
    EXPECT_EQ(active.np, 0.5);
    EXPECT_EQ(active.Tc, 400.0);
    use("T\n3\n2\n2.5\n0.5 0.25\n1 2\n");
    EXPECT_EQ(active.cv_0, 500.0);
    EXPECT_THAT(active.a_i, ElementsAre(100.0, 50.0));
    EXPECT_THAT(active.n_i, ElementsAre(1.0, 2.0));
    use("T\n4\n2\n1 2\n2.5 3.5\n1 2\n0.5\n1\n0.25 0.125\n1 2\n");
    EXPECT_THAT(active.T_k, ElementsAre(100.0, 200.0, infinity));
    EXPECT_THAT(active.cv_0_k, ElementsAre(500.0, 700.0));
    EXPECT_THAT(active.a_ik, ElementsAre(100.0, 0.0, 50.0, 25.0));
    EXPECT_THAT(active.n_ik, ElementsAre(1.0, 0.0, 1.0, 2.0));
    use("T\n5\n2.5\n2\n9 20\n");
    EXPECT_EQ(active.cv_0, 500.0);
    EXPECT_THAT(active.Tv, ElementsAre(900.0, 2000.0));
}

TEST_F(ideal_specific_heat_test, dimensional_coefficients_stay) {
    for (std::size_t i = 0; i < std::size(layouts); ++i) {
        SCOPED_TRACE(layouts[i].name);
        std::string text = layouts[i].text;
        text[0] = 'F';
        use(text);
        if (i > 0) {
            active.coeff_adim = layouts[i].text[0] == 'T';
            layouts[i].check();
        } else {
            EXPECT_EQ(active.cv_0, 2.5);
        }
    }
}

TEST_F(ideal_specific_heat_test, the_reference_heat_capacities_are_those_at_Tc_or_T_ref) {
    for (const bool vapor : {true, false}) {
        use("F\n3\n1\n500\n0.5\n1\n", vapor);
        EXPECT_EQ(gas.cv0_ref, 500.0 + 0.5 * (vapor ? 400.0 : 100.0));
        EXPECT_EQ(gas.cp0_ref, gas.cv0_ref + 200.0);
    }
}

TEST_F(ideal_specific_heat_test, the_power_law_needs_critical_data) {
    set_fluid(false);
    gas.cv0_ref = gas.cp0_ref = 7.25;
    active.Tc = 7.25;
    read_well(heat_section, "T\n2\n2.5 0.5\n");
    init_ideal_specific_heat();
    std::string text =
        "The gas model fluid                      is not a vapor: Dense gas power law is not applicable. "
        "In init_ideal_specific_heat.";
    EXPECT_EQ(text.size(), 8u + 32u + 17u + 39u + 28u);
    text.resize(256, ' ');
    EXPECT_EQ(errmsg.padded(), text);
    EXPECT_EQ(active.cv_oo_Tc, 2.5);
    EXPECT_EQ(active.Tc, 7.25);
    EXPECT_EQ(gas.cv0_ref, 7.25);
    EXPECT_EQ(gas.cp0_ref, 7.25);
}

// The forms

TEST_F(ideal_specific_heat_test, phip_is_cv_in_reduced_units_for_every_form) {
    for (const auto &heat : support::heat_cases) {
        SCOPED_TRACE(heat.name);
        use(heat.records);
        for (const double t : {0.5, 1.0, 2.9, 3.1, 17.0}) {
            EXPECT_DOUBLE_EQ(phip__T(t) * gas.P_ref * gas.v_ref / gas.T_ref, cv_oo__Tdim(t * gas.T_ref));
            EXPECT_NE(phip__T(t), 0.0);
        }
    }
}

TEST_F(ideal_specific_heat_test, the_forms_are_their_formulas) {
    const double T = 320.0;
    const auto expect = [&](double cv, double phi, double dcv, double psi) {
        EXPECT_DOUBLE_EQ(cv_oo__Tdim(T), cv);
        EXPECT_DOUBLE_EQ(phi_at(T), phi);
        EXPECT_DOUBLE_EQ(dcv_at(T), dcv);
        EXPECT_DOUBLE_EQ(psi_at(T), psi);
    };
    use("F\n1\n750\n");
    expect(750.0, 750.0 * T, 0.0, 750.0 * std::log(T));
    use("F\n2\n750 0.5\n");
    const double root = std::sqrt(0.8);
    expect(750 * root, 400 * 0.8 * root * 750 / 1.5, 0.5 * 750 / root / 400, 750 * root / 0.5);
    use("F\n3\n2\n600\n0.5 3000\n1 -0.5\n");
    const double r = std::sqrt(T);
    expect(600 + 0.5 * T + 3000 / r, 600 * T + 0.25 * T * T + 6000 * r, 0.5 - 1500 / (r * r * r),
           600 * std::log(T) + 0.5 * T - 6000 / r);
    use("F\n4\n1\n100\n600\n2\n0.5 3000\n1 -0.5\n");
    expect(600 + 0.5 * T + 3000 / r, 600 * T + 0.25 * T * T + 6000 * r, 0.5 - 1500 / (r * r * r),
           600 * std::log(T) + 0.5 * T - 6000 / r);
    use("F\n5\n600\n2\n320 640\n");
    const double e = std::exp(1.0), e2 = e * e;
    const double E1 = e / ((e - 1) * (e - 1)), E2 = 4 * e2 / ((e2 - 1) * (e2 - 1));
    expect(600 + 200 * (E1 + E2), 600 * T + 200 * (320 / (e - 1) + 640 / (e2 - 1)),
           200 * (E1 / T * (2 * e / (e - 1) - 2 - 1) + E2 / T * (4 * e2 / (e2 - 1) - 2 - 2)),
           600 * std::log(T) + 200 * (1 / (e - 1) - std::log(1 - 1 / e) + 2 / (e2 - 1) - std::log(1 - 1 / e2)));
}

TEST_F(ideal_specific_heat_test, exponents_that_divide_by_zero) {
    use("F\n2\n750 -1\n");
    EXPECT_EQ(phi__T(2.0), infinity);
    EXPECT_DOUBLE_EQ(cv_oo__Tdim(200.0), 1500.0);
    EXPECT_DOUBLE_EQ(psi_at(200.0), -1500.0);
    use("F\n2\n750 0\n");
    EXPECT_EQ(psi__T(2.0), infinity);
    EXPECT_DOUBLE_EQ(cv_oo__Tdim(200.0), 750.0);
    EXPECT_DOUBLE_EQ(phi_at(200.0), 750.0 * 200.0);
    for (const std::string form : {"F\n3\n1\n600\n50\n", "F\n4\n1\n100\n600\n1\n50\n"}) {
        use(form + "-1\n");
        EXPECT_EQ(phi__T(2.0), infinity);
        EXPECT_DOUBLE_EQ(cv_oo__Tdim(200.0), 600.25);
        EXPECT_DOUBLE_EQ(psi_at(200.0), 600 * std::log(200.0) - 0.25);
        use(form + "0\n");
        EXPECT_EQ(psi__T(2.0), infinity);
        EXPECT_DOUBLE_EQ(cv_oo__Tdim(200.0), 650.0);
        EXPECT_DOUBLE_EQ(phi_at(200.0), 650.0 * 200.0);
    }
}

const std::string three_intervals = "F\n4\n3\n100 200 300\n500 600 700\n1 0 2\n0.5\n1\n\n\n0.25 30\n1 -0.5\n";

TEST_F(ideal_specific_heat_test, piecewise_at_its_bounds_and_below_the_first_is_zero) {
    use(three_intervals);
    for (const double T : {100.0, 200.0, 300.0, 99.999, 1.0, 0.0, -5.0})
        expect_all_zero_at(T);
    use("T\n4\n3\n1 2 3\n2.5 3 3.5\n1 0 2\n0.005\n1\n\n\n0.001 0.2\n1 -0.5\n");
    for (const double T : {100.0, 200.0, 300.0, 99.0})
        expect_all_zero_at(T);
}

TEST_F(ideal_specific_heat_test, piecewise_next_to_its_bounds_is_the_interval) {
    use(three_intervals);
    const struct {
        double bound;
        double below;
        double above;
    } cases[] = {{100.0, 0.0, 550.0}, {200.0, 600.0, 600.0}, {300.0, 600.0, 775.0 + 30 / std::sqrt(300.0)}};
    for (const auto &[bound, below, above] : cases) {
        SCOPED_TRACE(bound);
        EXPECT_NEAR(cv_oo__Tdim(std::nextafter(bound, 0.0)), below, 1e-9);
        EXPECT_NEAR(cv_oo__Tdim(std::nextafter(bound, infinity)), above, 1e-9);
    }
}

TEST_F(ideal_specific_heat_test, piecewise_above_its_last_bound_is_open) {
    use(three_intervals);
    for (const double T : {301.0, 5000.0, 1.0e200})
        EXPECT_DOUBLE_EQ(cv_oo__Tdim(T), 700 + 0.25 * T + 30 / std::sqrt(T));
    EXPECT_EQ(cv_oo__Tdim(largest), 0.0);
    use("T\n4\n1\n1\n2.5\n0\n\n\n");
    EXPECT_EQ(active.T_k[1], infinity);
    EXPECT_EQ(cv_oo__Tdim(1.0e300), 500.0);
    EXPECT_EQ(cv_oo__Tdim(largest), 500.0);
}

TEST_F(ideal_specific_heat_test, piecewise_with_one_interval_has_no_constants) {
    use("F\n4\n1\n100\n600\n1\n0.5\n1\n");
    EXPECT_THAT(active.phi0_k, ElementsAre(0.0));
    EXPECT_THAT(active.psi0_k, ElementsAre(0.0));
    expect_all_zero_at(100.0);
    EXPECT_EQ(cv_oo__Tdim(400.0), 800.0);
}

TEST_F(ideal_specific_heat_test, the_last_of_overlapping_intervals_holds) {
    use("F\n4\n3\n100 300 200\n500 600 700\n3*0\n\n\n\n\n\n\n");
    EXPECT_EQ(cv_oo__Tdim(150.0), 500.0);
    EXPECT_EQ(cv_oo__Tdim(200.0), 500.0);
    EXPECT_EQ(cv_oo__Tdim(250.0), 700.0);
    EXPECT_EQ(cv_oo__Tdim(300.0), 700.0);
    EXPECT_EQ(cv_oo__Tdim(350.0), 700.0);
}

TEST_F(ideal_specific_heat_test, piecewise_integrals_are_continuous) {
    for (const std::string &text :
         {three_intervals, std::string("T\n4\n3\n1 2 3\n2.5 3 3.5\n1 0 2\n0.005\n1\n\n\n0.001 0.2\n1 -0.5\n")}) {
        use(text);
        EXPECT_EQ(active.phi0_k[0], 0.0);
        EXPECT_EQ(active.psi0_k[0], 0.0);
        for (const double bound : {200.0, 300.0}) {
            SCOPED_TRACE(bound);
            const double below = std::nextafter(bound, 0.0), above = std::nextafter(bound, infinity);
            // phi is about 2e5 and psi 4e3 there, from a few terms of that size.
            EXPECT_NEAR(phi_at(below), phi_at(above), 4e5 * 8 * support::epsilon);
            EXPECT_NEAR(psi_at(below), psi_at(above), 8e3 * 8 * support::epsilon);
        }
    }
}

TEST_F(ideal_specific_heat_test, piecewise_constants_start_afresh_at_each_initialisation) {
    use(three_intervals);
    const auto phi0 = active.phi0_k, psi0 = active.psi0_k;
    EXPECT_NE(phi0[1], 0.0);
    EXPECT_NE(phi0[2], phi0[1]);
    init_ideal_specific_heat();
    EXPECT_EQ(active.phi0_k, phi0);
    EXPECT_EQ(active.psi0_k, psi0);
}

TEST_F(ideal_specific_heat_test, Einstein_without_terms_is_the_constant_form) {
    for (const double T : {0.1, 320.0, 5000.0}) {
        use("F\n5\n750\n0\n\n");
        const double einstein_results[] = {cv_oo__Tdim(T), phi_at(T), dcv_at(T), psi_at(T), gas.cv0_ref, gas.cp0_ref};
        EXPECT_DOUBLE_EQ(phi_at(T), 750.0 * T);
        EXPECT_DOUBLE_EQ(psi_at(T), 750.0 * std::log(T));
        use("F\n1\n750\n");
        EXPECT_THAT(einstein_results,
                    ElementsAre(cv_oo__Tdim(T), phi_at(T), dcv_at(T), psi_at(T), gas.cv0_ref, gas.cp0_ref));
    }
}

TEST_F(ideal_specific_heat_test, Einstein_far_below_its_temperatures_is_the_constant_term) {
    use("F\n5\n750\n2\n1000 20000\n");
    for (const double T : {1.3, 1.0, 1.0e-3, 1.0e-6, 1.0e-100, 1.0e-300}) {
        SCOPED_TRACE(T);
        EXPECT_EQ(cv_oo__Tdim(T), 750.0);
        EXPECT_EQ(dcv_at(T), 0.0);
        EXPECT_DOUBLE_EQ(phi_at(T), 750.0 * T);
        EXPECT_DOUBLE_EQ(psi_at(T), 750.0 * std::log(T));
    }
    // Where the terms vanish they fall without a step.
    for (const double T : {1.45, 1.6, 2.0, 5.0, 20.0}) {
        const double x = 1000.0 / T, expected = 200.0 * x * x * (x - 2) / T * std::exp(-x);
        EXPECT_DOUBLE_EQ(cv_oo__Tdim(T), 750.0 + 200.0 * x * x * std::exp(-x));
        EXPECT_NEAR(dcv_at(T) / expected, 1.0, 1e-14);
    }
}

// The terms are even in T. Where Tv/T is large, of either sign, they must not become inf/inf.
TEST_F(ideal_specific_heat_test, Einstein_at_negative_temperatures) {
    use("F\n5\n750\n2\n320 640\n");
    for (const double T : {50.0, 320.0, 2000.0}) {
        EXPECT_EQ(cv_oo__Tdim(-T), cv_oo__Tdim(T));
        EXPECT_EQ(dcv_at(-T), -dcv_at(T));
    }
    for (const double T : {-0.4, -1.0e-6, -1.0e-300}) {
        EXPECT_EQ(cv_oo__Tdim(T), 750.0);
        EXPECT_EQ(dcv_at(T), 0.0);
    }
}

TEST_F(ideal_specific_heat_test, Einstein_far_above_its_temperatures_is_equipartition) {
    use("F\n5\n750\n2\n1 2\n");
    EXPECT_NEAR(cv_oo__Tdim(1.0e4), 750.0 + 2 * 200.0, 400.0 * 1e-8);
}

} // namespace
