// SPDX-License-Identifier: MIT
// The readers and the writer of the section.
#include "Tests/Support/thermodynamics.h"

#include <gmock/gmock.h>

namespace {

using support::both_sources;
using support::read;
using support::real;
using support::transport_section;
using transport_properties::active;
using parameters = transport::parameters;

struct transport_properties_test : support::thermodynamics_test {};

/// A model, and the values in its record.
struct model {
    std::int32_t code;
    std::vector<double parameters::*> values;
    std::vector<const char *> names;
};
const model viscosities[] = {
    {1, {&parameters::mu_const}, {"mu_const"}},
    {2, {}, {}},
    {3, {}, {}},
    {4, {}, {}},
    {5, {&parameters::mu_ref_s, &parameters::T_ref_s, &parameters::Tchar_s}, {"mu_ref_s", "T_ref_s", "Tchar_s"}},
    {6, {&parameters::mu_ref_l, &parameters::T_ref_l}, {"mu_ref_l", "T_ref_l"}},
    {0, {}, {}},
    {7, {}, {}},
    {-1, {}, {}},
};
const model conductivities[] = {
    {1, {&parameters::kk_const}, {"kk_const"}},
    {2, {}, {}},
    {3, {}, {}},
    {4, {&parameters::Pr}, {"Pr"}},
    {0, {}, {}},
    {5, {}, {}},
};

/// Values for the record of a model: first, first + 1, ...
std::vector<double> values_of(const model &m, double first) {
    std::vector<double> values;
    for (std::size_t i = 0; i < m.values.size(); ++i)
        values.push_back(first + static_cast<double>(i));
    return values;
}

std::string section_text(const model &viscosity, const model &conductivity) {
    std::string text;
    for (const auto &[m, first] : {std::pair(&viscosity, 10.5), {&conductivity, 20.5}}) {
        text += std::to_string(m->code) + " model\n";
        for (const double value : values_of(*m, first))
            text += std::to_string(value) + ", ";
        text += m->values.empty() ? "" : " remark\n";
    }
    return text;
}

constexpr double parameters::*all_values[] = {&parameters::mu_const, &parameters::kk_const, &parameters::mu_ref_s,
                                              &parameters::T_ref_s,  &parameters::Tchar_s,  &parameters::mu_ref_l,
                                              &parameters::T_ref_l,  &parameters::Pr};

void expect_values(const model &m, double first) {
    for (std::size_t i = 0; i < m.values.size(); ++i)
        EXPECT_EQ(active.*m.values[i], first + static_cast<double>(i)) << m.names[i];
}

template <class Visit>
void for_each_pair(Visit visit) {
    for (const model &viscosity : viscosities)
        for (const model &conductivity : conductivities) {
            SCOPED_TRACE(testing::Message() << "models " << viscosity.code << " and " << conductivity.code);
            visit(viscosity, conductivity);
        }
}

std::int64_t records_of(const model &viscosity, const model &conductivity) {
    return 2 + !viscosity.values.empty() + !conductivity.values.empty();
}

TEST_F(transport_properties_test, before_any_reading_all_is_zero) {
    EXPECT_EQ(active.viscosity_model, 0);
    EXPECT_EQ(active.thermal_cond_model, 0);
    for (const auto value : all_values)
        EXPECT_EQ(active.*value, 0.0);
}

TEST_F(transport_properties_test, both_readers_take_the_records_of_the_models) {
    for_each_pair([](const model &viscosity, const model &conductivity) {
        for (const auto from : both_sources) {
            SCOPED_TRACE(from);
            support::fresh_library();
            for (const auto value : all_values)
                active.*value = 7.25;
            const auto [message, last] =
                read(transport_section, from, "0\n0\n0\n" + section_text(viscosity, conductivity) + "9 9 9\n", 3);
            EXPECT_EQ(message, "");
            EXPECT_EQ(last, 3 + records_of(viscosity, conductivity));
            EXPECT_EQ(active.viscosity_model, viscosity.code);
            EXPECT_EQ(active.thermal_cond_model, conductivity.code);
            expect_values(viscosity, 10.5);
            expect_values(conductivity, 20.5);
            for (const auto value : all_values) {
                const auto has = [&](const model &m) { return std::ranges::count(m.values, value) > 0; };
                if (!has(viscosity) && !has(conductivity)) {
                    EXPECT_EQ(active.*value, 7.25);
                }
            }
        }
    });
}

TEST_F(transport_properties_test, the_writer_writes_the_same_records_and_they_read_back) {
    for_each_pair([](const model &viscosity, const model &conductivity) {
        support::fresh_library();
        support::read_well(transport_section, section_text(viscosity, conductivity));
        std::vector<std::string> expected;
        for (const auto &[m, first] : {std::pair(&viscosity, 10.5), {&conductivity, 20.5}}) {
            expected.push_back(records::list_directed({m->code}));
            std::string text;
            for (const double value : values_of(*m, first))
                text += real({value});
            if (!text.empty())
                expected.push_back(text);
        }
        EXPECT_EQ(support::written(transport_section), expected);

        records::record_writer writer;
        transport_section.write(writer);
        for (const auto from : both_sources) {
            SCOPED_TRACE(from);
            support::fresh_library();
            support::read_well(transport_section, writer.text(), from);
            EXPECT_EQ(active.viscosity_model, viscosity.code);
            EXPECT_EQ(active.thermal_cond_model, conductivity.code);
            expect_values(viscosity, 10.5);
            expect_values(conductivity, 20.5);
        }
    });
}

TEST_F(transport_properties_test, null_values_keep_the_old_ones) {
    support::read_well(transport_section, "5\n1e-5 300 110\n4\n0.7\n");
    support::read_well(transport_section, ",\n, 310 /\n,\n,\n");
    EXPECT_EQ(active.viscosity_model, 5);
    EXPECT_EQ(active.mu_ref_s, 1e-5);
    EXPECT_EQ(active.T_ref_s, 310.0);
    EXPECT_EQ(active.Tchar_s, 110.0);
    EXPECT_EQ(active.thermal_cond_model, 4);
    EXPECT_EQ(active.Pr, 0.7);
}

TEST_F(transport_properties_test, a_value_that_is_none_names_its_field_and_ends_the_reading) {
    const struct {
        const char *text;
        const char *message;
    } cases[] = {
        {"x\n1\n1\n", "record 1: expected viscosity_model (an integer), found \"x\"."},
        {"1\nx\n1\n1\n", "record 2: expected mu_const (a real), found \"x\"."},
        {"5\n1 2 x\n1\n1\n", "record 2: expected Tchar_s (a real), found \"x\"."},
        {"5\n1 x\n1\n1\n", "record 2: expected T_ref_s (a real), found \"x\"."},
        {"5\nx\n1\n1\n", "record 2: expected mu_ref_s (a real), found \"x\"."},
        {"6\n1 x\n1\n1\n", "record 2: expected T_ref_l (a real), found \"x\"."},
        {"6\nx\n1\n1\n", "record 2: expected mu_ref_l (a real), found \"x\"."},
        {"2\n1.0\n", "record 2: expected thermal_cond_model (an integer), found \"1.0\"."},
        {"2\n1\nx\n", "record 3: expected kk_const (a real), found \"x\"."},
        {"3\n4\nx\n", "record 3: expected Pr (a real), found \"x\"."},
        {"", "record 1: expected viscosity_model (an integer), found the end of the file."},
        {"3\n", "record 2: expected thermal_cond_model (an integer), found the end of the file."},
    };
    for (const auto &[text, message] : cases)
        for (const auto from : both_sources) {
            SCOPED_TRACE(testing::Message() << text << " " << from);
            support::fresh_library();
            active.thermal_cond_model = 77;
            EXPECT_EQ(read(transport_section, from, text).message, support::unread(from, message));
            if (std::string_view(message).find("kk_const") == std::string_view::npos &&
                std::string_view(message).find("Pr ") == std::string_view::npos) {
                EXPECT_EQ(active.thermal_cond_model, 77);
            }
        }
}

} // namespace
