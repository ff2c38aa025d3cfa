// SPDX-License-Identifier: MIT
// Compares the library with published numbers. A vector file has these lines:
//   # anything                                                     a remark: where the numbers come from
//   fluid                                                          a parameter file begins
//   | record                                                       one record of it
//   ask pair input1 input2 output published lowest highest         a request, in SI units
//   value name argument published lowest highest                   an inner quantity, of the table below
// computed/published - 1 must lie between lowest and highest. If that band is not around zero, it says how far the
// model is from the fluid.
#include "Tests/Support/thermodynamics.h"

#include <map>

namespace {

using gas_properties::gas;

/// The molar volume [cm3/mol] at T [K] and 9.4573 bar, searched from the reduced volume `start`.
double molar_volume(double T, double start) {
    const double v = thermodynamics::v__P_T(945730.0 / gas.P_ref, T / gas.T_ref, start);
    EXPECT_EQ(support::shared_text(), "No errors");
    return v * gas.v_ref * gas.MM * 1e3;
}

// Viscosity [micropoise] and conductivity [W/(m K)] of the dense gas at T [K] and a volume [cm3/mol], from the
// viscosity [micropoise] of the dilute gas.
double dense_viscosity(double T, double volume, double mu0) {
    return transport::dense_viscosity(transport_properties::active, T, volume * 1e-3 / gas.MM, mu0 * 1e-6) * 1e7;
}
double dense_conductivity(double T, double volume, double mu0) {
    const double k0 = transport_properties::diluite_gas_thermal_cond(T, mu0 * 1e-6);
    return transport_properties::dense_gas_thermal_cond(T, volume * 1e-3 / gas.MM, k0) * 418.4 * 418.4 / 1e4;
}

template <unsigned these>
ideal_gas_heat::caloric<double> of_ideal_gas(double T) {
    return ideal_gas_heat::evaluate<these>(ideal_specific_heat::active, T);
}

/// The inner quantities that a vector file may name; an argument that is not needed is 0.
double value_of(const std::string &name, double argument) {
    const std::map<std::string, double (*)(double)> values = {
        {"a", [](double) { return clausius_II_gas::active.a; }},
        {"b", [](double) { return clausius_II_gas::active.b; }},
        {"c", [](double) { return clausius_II_gas::active.c; }},
        {"omega", [](double) { return gas_properties::gas.omega; }},
        // The constants of van der Waals, in bar L2/mol2 and L/mol.
        {"vdW_a",
         [](double) {
             return van_der_waals_gas::active.a * gas.P_ref * gas.v_ref * gas.v_ref * gas.MM * gas.MM * 1e-5;
         }},
        {"vdW_b", [](double) { return van_der_waals_gas::active.b * gas.v_ref * gas.MM; }},
        // Molar volumes at T [K] and 9.4573 bar, in cm3/mol.
        {"molar_gas_volume", [](double T) { return molar_volume(T, (T / gas.T_ref) / (945730.0 / gas.P_ref)); }},
        {"molar_liquid_volume", [](double T) { return molar_volume(T, 1.05 * thermodynamics::vmin); }},
        {"collision_integral", [](double T_star) { return transport::collision_integral(T_star); }},
        {"viscosity_at_48.2_from_182", [](double T) { return dense_viscosity(T, 48.2, 182); }},
        {"conductivity_at_172.1_from_134", [](double T) { return dense_conductivity(T, 172.1, 134); }},
        // Functions of the ideal gas at T [K], in units of R and of R K.
        {"cv/R", [](double T) { return ideal_specific_heat::cv_oo__Tdim(T) / gas_properties::gas.R; }},
        {"phi/R", [](double T) { return of_ideal_gas<ideal_gas_heat::energy>(T).phi / gas_properties::gas.R; }},
        {"psi/R", [](double T) { return of_ideal_gas<ideal_gas_heat::entropy>(T).psi / gas_properties::gas.R; }},
    };
    const auto found = values.find(name);
    EXPECT_NE(found, values.end()) << name;
    return found == values.end() ? std::nan("") : found->second(argument);
}

struct vectors : testing::TestWithParam<const char *> {};

TEST_P(vectors, agree) {
    std::ifstream in(std::string(OSTREL_TESTS "/Vectors/") + GetParam() + ".txt");
    ASSERT_TRUE(in) << GetParam();
    const support::fluid_folder folder;
    static int fluids = 0;
    std::string fluid, records;
    int checks = 0;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        SCOPED_TRACE(std::string(GetParam()) + ".txt:" + std::to_string(++number) + ": " + line);
        std::istringstream words(line);
        std::string kind;
        words >> kind;
        if (kind.empty() || kind == "#")
            continue;
        if (kind == "fluid") {
            fluid = "vector" + std::to_string(++fluids % 100);
            records.clear();
            continue;
        }
        if (kind == "|") {
            records += line.substr(std::min<std::size_t>(line.find('|') + 2, line.size())) + '\n';
            folder.add(fluid, records);
            continue;
        }
        double computed = 0;
        if (kind == "ask") {
            std::string pair, output;
            double input1 = 0, input2 = 0;
            words >> pair >> input1 >> input2 >> output;
            const auto answer = support::ask(fluid, pair, input1, input2, output);
            EXPECT_EQ(answer.text, "No errors");
            computed = answer.value;
        } else {
            ASSERT_EQ(kind, "value");
            EXPECT_EQ(support::ask_info(fluid, "m_mol").text, "No errors");
            std::string name;
            double argument = 0;
            words >> name >> argument;
            computed = value_of(name, argument);
        }
        double published = 0, lowest = 0, highest = 0;
        words >> published >> lowest >> highest;
        ASSERT_TRUE(words && lowest <= highest);
        EXPECT_GE(computed / published - 1, lowest) << computed;
        EXPECT_LE(computed / published - 1, highest) << computed;
        ++checks;
    }
    EXPECT_GE(checks, 3);
}

INSTANTIATE_TEST_SUITE_P(published, vectors,
                         testing::Values("ideal_gas", "ideal_Z_gas", "clausius_II_gas", "van_der_waals_gas",
                                         "redlich_kwong_gas", "soave_redlich_kwong_gas", "peng_robinson_gas",
                                         "martin_hou_gas", "ideal_specific_heat", "transport_properties"),
                         [](const auto &file) { return std::string(file.param); });

} // namespace
