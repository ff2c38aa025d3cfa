// SPDX-License-Identifier: MIT
// Compares every formula with numbers of 30 digits that scripts/make_reference_vectors derives from the equations of
// state, the heat capacities and the published correlations alone. Beside each number stands its scale: its magnitude,
// and how far it moves with everything that it is computed from. Errors are in units of 2^-52 of the scale. A vector
// file has these lines:
//   # anything                  a remark
//   model gas_type suffix       a fluid begins, and the library is in its first state
//   set name values             one of the fluid's parameters, exact doubles
//   fluid, | record, load       a fluid begins, one record of its file, the initialisation
//   at T v                      a state, reduced, exact doubles
//   curve [T P v_g v_l ...]     the saturation table is built, or filled with these
//   name value scale ...        a result: of an operation at the state, for each component, or a parameter
//   along name value scale c1 c2 c3
//                               a parameter that moves by c1 x + c2 x^2 + c3 x^3 if the critical volume is off by x
#include "Tests/Support/thermodynamics.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iomanip>
#include <map>

namespace {

using gas_properties::gas;
namespace td = thermodynamics;
namespace tp = transport_properties;

// Errors allowed, in units of 2^-52 of the scale, and the largest ones found (GCC 12, glibc 2.36, x86-64).
constexpr double of_a_model = 2;            // 0.78
constexpr double of_the_ideal_gas = 2;      // 0.61
constexpr double of_derived_properties = 2; // 0.65
constexpr double of_transport = 2;          // 0.57
constexpr double of_initialisation = 2;     // 1.03
// A search ends where its residuals are within a tolerance; its result may have the error that such residuals make.
constexpr double of_saturation = 1; // 0.78

/// The greatest relative distance x between a triple root and the double in which the search for it ends. The residual
/// is x^3 times 1/(1 - (b/v)^2) critical pressures, formed from terms of 4, 3 and 1 critical pressures. Found: 0.66.
const double of_a_triple_root = std::cbrt(4 * support::epsilon * 8.1 / 1.07);

/// The errors of one group of results.
class tally {
public:
    tally(double tolerance, double unit) : tolerance_(tolerance), unit_(unit) {}

    void compare(double computed, long double value, double scale, const std::string &where) {
        const long double distance = std::abs(static_cast<long double>(computed) - value);
        const auto error =
            distance == 0 ? 0.0 : static_cast<double>(distance / (static_cast<long double>(scale) * unit_));
        ++count_;
        if (!(error <= worst_)) {
            worst_ = error;
            where_ = where;
        }
        if (!(error <= tolerance_) && ++failures_ <= 3)
            ADD_FAILURE() << where << ": " << std::setprecision(17) << computed << " instead of "
                          << static_cast<double>(value) << ", " << error << " units of " << scale;
    }
    int count() const { return count_; }
    void print(const std::string &name) const {
        std::printf("%-32s %5d values, worst error %6.3f of %g allowed, %s\n", name.c_str(), count_, worst_, tolerance_,
                    where_.empty() ? "exact" : where_.c_str());
    }

private:
    double tolerance_;
    double unit_; ///< the size of an error of 1
    int count_ = 0;
    int failures_ = 0;
    double worst_ = 0;
    std::string where_;
};

using words = std::vector<std::string>;

double real(const std::string &word) {
    return std::strtod(word.c_str(), nullptr);
}
long double wide(const std::string &word) {
    return std::strtold(word.c_str(), nullptr);
}

using components = std::vector<double>;
components as_components(double value) {
    return {value};
}
template <std::size_t size>
components as_components(const std::array<double, size> &values) {
    return {values.begin(), values.end()};
}

/// A parameter of the library.
struct place {
    std::function<void(std::span<const std::string>)> set;
    std::function<components()> get;
};

template <class Object, class Member>
place in(Object &object, Member member) {
    using Target = std::remove_cvref_t<decltype(object.*member)>;
    if constexpr (std::is_arithmetic_v<Target>)
        return {[&object, member](auto values) { object.*member = static_cast<Target>(real(values[0])); },
                [&object, member] { return components{static_cast<double>(object.*member)}; }};
    else
        return {[&object, member](auto values) {
                    Target &target = object.*member;
                    if constexpr (requires { target.resize(1); })
                        target.resize(values.size());
                    ASSERT_EQ(target.size(), values.size());
                    std::transform(values.begin(), values.end(), target.begin(), [](const std::string &word) {
                        return static_cast<typename Target::value_type>(real(word));
                    });
                },
                [&object, member] { return components((object.*member).begin(), (object.*member).end()); }};
}
/// A constant of the fluid; the heat capacity keeps a copy of it.
place in_both(double gas_properties::gas_constants::*member, double ideal_specific_heat::heat_capacity::*copy) {
    return {[member, copy](auto values) { gas.*member = ideal_specific_heat::active.*copy = real(values[0]); },
            [member] { return components{gas.*member}; }};
}

const std::map<std::string, place> &places() {
    using gas_properties::gas_constants;
    using ideal_specific_heat::heat_capacity;
    using row = std::pair<const std::string, place>;
#define OSTREL_IN(X, module, field) row(#X "." #field, in(module::active, &module::parameters::field))
#define OSTREL_IN_GAS(field)        row("gas." #field, in(gas, &gas_constants::field))
#define OSTREL_IN_HEAT(field)       row("heat." #field, in(ideal_specific_heat::active, &heat_capacity::field))
    static const std::map<std::string, place> table = {
        OSTREL_IN(IG, ideal_gas, Rgas),
        OSTREL_IN(IZG, ideal_Z_gas, Rgas),
        OSTREL_IN(IZG, ideal_Z_gas, Z_const),
        OSTREL_IN(vdWG, van_der_waals_gas, Rgas),
        OSTREL_IN(vdWG, van_der_waals_gas, a),
        OSTREL_IN(vdWG, van_der_waals_gas, b),
        OSTREL_IN(RKG, redlich_kwong_gas, Rgas),
        OSTREL_IN(RKG, redlich_kwong_gas, a),
        OSTREL_IN(RKG, redlich_kwong_gas, b),
        OSTREL_IN(SRKG, soave_redlich_kwong_gas, Rgas),
        OSTREL_IN(SRKG, soave_redlich_kwong_gas, b),
        OSTREL_IN(SRKG, soave_redlich_kwong_gas, c_a),
        OSTREL_IN(SRKG, soave_redlich_kwong_gas, fw),
        OSTREL_IN(SRKG, soave_redlich_kwong_gas, Zc),
        OSTREL_IN(PRG, peng_robinson_gas, Rgas),
        OSTREL_IN(PRG, peng_robinson_gas, b),
        OSTREL_IN(PRG, peng_robinson_gas, c_a),
        OSTREL_IN(PRG, peng_robinson_gas, fw),
        OSTREL_IN(PRG, peng_robinson_gas, Zc),
        OSTREL_IN(CIIG, clausius_II_gas, Rgas),
        OSTREL_IN(CIIG, clausius_II_gas, a),
        OSTREL_IN(CIIG, clausius_II_gas, b),
        OSTREL_IN(CIIG, clausius_II_gas, c),
        OSTREL_IN(MHG, martin_hou_gas, Rgas),
        OSTREL_IN(MHG, martin_hou_gas, b),
        OSTREL_IN(MHG, martin_hou_gas, kk),
        OSTREL_IN(MHG, martin_hou_gas, aa),
        OSTREL_IN(MHG, martin_hou_gas, bb),
        OSTREL_IN(MHG, martin_hou_gas, cc),
        OSTREL_IN_GAS(vapor),
        OSTREL_IN_GAS(MM),
        OSTREL_IN_GAS(Tc),
        OSTREL_IN_GAS(Pc),
        OSTREL_IN_GAS(vc),
        OSTREL_IN_GAS(Zc),
        OSTREL_IN_GAS(Z_ref),
        OSTREL_IN_GAS(c_ref),
        OSTREL_IN_GAS(e_0),
        OSTREL_IN_GAS(s_0),
        OSTREL_IN_GAS(cv_ref),
        OSTREL_IN_GAS(cv0_ref),
        OSTREL_IN_GAS(cp0_ref),
        OSTREL_IN_GAS(omega),
        OSTREL_IN_GAS(mur),
        OSTREL_IN_GAS(kh),
        {"gas.R", in_both(&gas_constants::R, &heat_capacity::Rgas)},
        {"gas.T_ref", in_both(&gas_constants::T_ref, &heat_capacity::T_ref)},
        {"gas.P_ref", in_both(&gas_constants::P_ref, &heat_capacity::P_ref)},
        {"gas.v_ref", in_both(&gas_constants::v_ref, &heat_capacity::v_ref)},
        OSTREL_IN_HEAT(function_type),
        OSTREL_IN_HEAT(cv_0),
        OSTREL_IN_HEAT(cv_oo_Tc),
        OSTREL_IN_HEAT(np),
        OSTREL_IN_HEAT(Tc),
        OSTREL_IN_HEAT(a_i),
        OSTREL_IN_HEAT(n_i),
        OSTREL_IN_HEAT(T_k),
        OSTREL_IN_HEAT(cv_0_k),
        OSTREL_IN_HEAT(n_k),
        OSTREL_IN_HEAT(terms),
        OSTREL_IN_HEAT(a_ik),
        OSTREL_IN_HEAT(n_ik),
        OSTREL_IN_HEAT(phi0_k),
        OSTREL_IN_HEAT(psi0_k),
        OSTREL_IN_HEAT(Tv),
        OSTREL_IN(transport, tp, viscosity_model),
        OSTREL_IN(transport, tp, thermal_cond_model),
        OSTREL_IN(transport, tp, mu_const),
        OSTREL_IN(transport, tp, kk_const),
        OSTREL_IN(transport, tp, mu_ref_s),
        OSTREL_IN(transport, tp, T_ref_s),
        OSTREL_IN(transport, tp, Tchar_s),
        OSTREL_IN(transport, tp, mu_ref_l),
        OSTREL_IN(transport, tp, T_ref_l),
        OSTREL_IN(transport, tp, Pr),
        OSTREL_IN(transport, tp, fc),
        OSTREL_IN(transport, tp, beta),
        OSTREL_IN(transport, tp, aa),
        OSTREL_IN(transport, tp, bb),
        OSTREL_IN(transport, tp, mu_ref),
        OSTREL_IN(transport, tp, kk_ref),
        {"thermodynamics.vmin", {[](auto values) { td::vmin = real(values[0]); }, [] { return components{td::vmin}; }}},
    };
#undef OSTREL_IN
#undef OSTREL_IN_GAS
#undef OSTREL_IN_HEAT
    return table;
}

/// An operation at (T, v), by the dispatcher and, if each model has its own, by that of the active model.
struct operation {
    double tolerance;
    components (*evaluate)(double T, double v);
    components (*of_model)(double T, double v) = nullptr;
};

/// y = vc/(6 v) and G2.
template <std::size_t count>
components density_factors(const std::array<double, count> &coefficients, double v) {
    const transport::density_factors<double> factors(tp::active, coefficients, v);
    return {factors.y, factors.G2};
}

const std::map<std::string, operation> &operations() {
    using row = std::pair<const std::string, operation>;
#define OSTREL_OF_MODEL(name, type, Model, module, X, ...) \
    case type:                                             \
        return as_components(module::name##__##X(T, v));
#define OSTREL_BY_MODEL(name)                    \
    [](double T, double v) -> components {       \
        switch (td::gas_type) {                  \
            OSTREL_MODELS(OSTREL_OF_MODEL, name) \
        default:                                 \
            return {};                           \
        }                                        \
    }
#define OSTREL_SCALAR(unused, name) \
    row(#name, {of_a_model, [](double T, double v) { return as_components(td::name(T, v)); }, OSTREL_BY_MODEL(name)}),
#define OSTREL_ARRAY(unused, name, size)               \
    row(#name, {of_a_model,                            \
                [](double T, double v) {               \
                    std::array<double, size> result{}; \
                    td::name(T, v, result);            \
                    return as_components(result);      \
                },                                     \
                OSTREL_BY_MODEL(name)}),
#define OSTREL_IDEAL(name, argument) \
    row(#name, {of_the_ideal_gas, [](double T, double) { return as_components(ideal_specific_heat::name(argument)); }})
#define OSTREL_DERIVED(name) \
    row(#name, {of_derived_properties, [](double T, double v) { return as_components(td::name(T, v)); }})
// The search starts at its solution and must stay there.
#define OSTREL_SEARCHED(name, first, second, start)                 \
    row(#name, {of_derived_properties, [](double T, double v) {     \
                    td::gradient result{};                          \
                    td::name(first, second, result, start);         \
                    EXPECT_EQ(support::shared_text(), "No errors"); \
                    return as_components(result);                   \
                }})
// A transport operation at reduced t and w; T [K] and v [m3/kg] are the same state.
#define OSTREL_TRANSPORT(name, result)                               \
    row(#name, {of_transport, [](double t, double w) -> components { \
                    [[maybe_unused]] const double T = t * gas.T_ref; \
                    [[maybe_unused]] const double v = w * gas.v_ref; \
                    result;                                          \
                }})
    static const std::map<std::string, operation> table = {
        OSTREL_SCALAR_OPERATIONS(OSTREL_SCALAR, ) OSTREL_ARRAY_OPERATIONS(OSTREL_ARRAY, ) OSTREL_IDEAL(phi__T, T),
        OSTREL_IDEAL(phip__T, T),
        OSTREL_IDEAL(phipp__T, T),
        OSTREL_IDEAL(psi__T, T),
        OSTREL_IDEAL(cv_oo__Tdim, T * gas.T_ref),
        OSTREL_DERIVED(h__T_v),
        OSTREL_DERIVED(mu__T_v),
        OSTREL_DERIVED(c2__T_v),
        OSTREL_DERIVED(c__T_v),
        OSTREL_DERIVED(cp__T_v),
        OSTREL_DERIVED(G__T_v),
        OSTREL_DERIVED(dh__dT_dv),
        OSTREL_DERIVED(ds__dT_dv),
        OSTREL_DERIVED(dmu__dT_dv),
        OSTREL_DERIVED(dT__dP_dv__T_v),
        OSTREL_DERIVED(de__dP_dv__T_v),
        OSTREL_DERIVED(ds__dP_dv__T_v),
        OSTREL_DERIVED(dP__de_dr__T_v),
        OSTREL_DERIVED(dP__dre_dr__T_v),
        OSTREL_DERIVED(d2P__dre2_dr2__T_v),
        OSTREL_DERIVED(d2P__dre_dr__dT_dv),
        OSTREL_SEARCHED(dmu__dP_dv, td::P__T_v(T, v), v, T),
        OSTREL_SEARCHED(dP__ds_dv, td::s__T_v(T, v), v, T),
        OSTREL_SEARCHED(dP__ds_dT, td::s__T_v(T, v), T, v),
        OSTREL_SEARCHED(dv__ds_dT, td::s__T_v(T, v), T, v),
        {"collision_integral",
         {of_transport, [](double T_star, double) { return as_components(transport::collision_integral(T_star)); }}},
        {"transport_coefficients",
         {of_transport,
          [](double T, double v) {
              components result(2);
              tp::transport_coefficients(T, v, result[0], result[1]);
              return result;
          }}},
        OSTREL_TRANSPORT(transport_coefficients_dim, components both(2);
                         tp::transport_coefficients_dim(T, v, both[0], both[1]); return both),
        OSTREL_TRANSPORT(density_factors_of_viscosity, return density_factors(tp::active.aa, v)),
        OSTREL_TRANSPORT(density_factors_of_conductivity, return density_factors(tp::active.bb, v)),
        OSTREL_TRANSPORT(diluite_gas_viscosity, return {tp::diluite_gas_viscosity(T)}),
        OSTREL_TRANSPORT(dense_gas_viscosity, double mu0 = 0; const double mu = tp::dense_gas_viscosity(T, v, mu0);
                         return (components{mu, mu0})),
        OSTREL_TRANSPORT(corresp_state_viscosity, return {tp::corresp_state_viscosity(T)}),
        OSTREL_TRANSPORT(sutherland_law_viscosity, return {tp::sutherland_law_viscosity(T)}),
        OSTREL_TRANSPORT(linear_viscosity, return {tp::linear_viscosity(T)}),
        OSTREL_TRANSPORT(diluite_gas_thermal_cond,
                         return as_components(tp::diluite_gas_thermal_cond(T, tp::active.mu_const))),
        OSTREL_TRANSPORT(dense_gas_thermal_cond,
                         return as_components(tp::dense_gas_thermal_cond(T, v, tp::active.kk_const))),
    };
#undef OSTREL_OF_MODEL
#undef OSTREL_BY_MODEL
#undef OSTREL_SCALAR
#undef OSTREL_ARRAY
#undef OSTREL_IDEAL
#undef OSTREL_DERIVED
#undef OSTREL_SEARCHED
#undef OSTREL_TRANSPORT
    return table;
}

/// Walks through a vector file.
class walk {
public:
    explicit walk(std::initializer_list<const char *> names) {
        for (const std::string name : names) {
            std::ifstream in(OSTREL_TESTS "/Reference/" + name);
            EXPECT_TRUE(in) << name;
            int number = 0;
            for (std::string text; std::getline(in, text) && !testing::Test::HasFatalFailure();) {
                where_ = name + ":" + std::to_string(++number);
                if (text.starts_with('#'))
                    continue;
                if (text.starts_with('|')) {
                    records_ += text.substr(2) + '\n';
                    continue;
                }
                std::istringstream line(text);
                std::string kind, word;
                line >> kind;
                words values;
                while (line >> word)
                    values.push_back(word);
                use(kind, values);
            }
        }
    }

    /// Prints the groups, and returns their names with the numbers of their values.
    std::map<std::string, int> finish() const {
        std::map<std::string, int> result;
        for (const auto &[name, group] : tallies_) {
            group.print(name);
            result[name] = group.count();
        }
        return result;
    }

private:
    void use(const std::string &kind, const words &values) {
        if (kind == "model") {
            support::fresh_library();
            td::gas_type = static_cast<std::int32_t>(real(values[0]));
            model_ = values[1];
        } else if (kind == "fluid") {
            records_.clear();
        } else if (kind == "load") {
            support::fresh_fluid();
            support::read_well(support::thermodynamics_section, records_);
            td::init_thermodynamics();
            EXPECT_EQ(support::shared_text(), "No errors") << where_;
        } else if (kind == "set") {
            places().at(values[0]).set(std::span(values).subspan(1));
        } else if (kind == "initialise") {
            tp::init_transport_properties();
            EXPECT_EQ(support::shared_text(), "No errors") << where_;
            EXPECT_EQ(gas.mu_ref, tp::active.mu_ref);
            EXPECT_EQ(gas.kk_ref, tp::active.kk_ref);
        } else if (kind == "at") {
            T_ = real(values[0]);
            v_ = real(values[1]);
        } else if (kind == "curve") {
            prepare_curve(values);
        } else if (kind.starts_with("saturation__")) {
            saturated(kind, values);
        } else if (kind == "along") {
            along(values);
        } else if (const auto found = operations().find(kind); found != operations().end()) {
            const operation &asked = found->second;
            tally &group = group_of(kind, asked.tolerance);
            compare(group, asked.evaluate(T_, v_), values);
            if (asked.of_model != nullptr)
                compare(group, asked.of_model(T_, v_), values);
        } else {
            compare(group_of(kind, kind.starts_with("transport") ? of_transport : of_initialisation), parameter(kind),
                    values);
        }
    }

    tally &group_of(const std::string &name, double tolerance, double unit = support::epsilon) {
        return tallies_.try_emplace(name.substr(0, name.find('(')), tolerance, unit).first->second;
    }

    void compare(tally &group, const components &computed, const words &values) {
        ASSERT_EQ(2 * computed.size(), values.size()) << where_;
        for (std::size_t i = 0; i < computed.size(); ++i)
            group.compare(computed[i], wide(values[2 * i]), real(values[2 * i + 1]), where_);
    }

    /// A parameter by its name, or one element of it, "name(i)" with i from 0.
    components parameter(const std::string &name) const {
        const std::size_t bracket = name.find('(');
        const components all = places().at(name.substr(0, bracket)).get();
        if (bracket == std::string::npos)
            return all;
        return {all.at(static_cast<std::size_t>(real(name.substr(bracket + 1))))};
    }

    void along(const words &values);
    void prepare_curve(const words &values);
    void saturated(const std::string &kind, const words &values);

    std::string where_;
    std::string model_;
    std::string records_;
    std::map<std::string, tally> tallies_;
    double T_ = 0;
    double v_ = 0;
    long double x_ = 0; ///< relative distance of the critical volume that was found from the root
};

void walk::along(const words &values) {
    const components computed = parameter(values[0]);
    ASSERT_EQ(computed.size(), 1U) << where_;
    const long double value = wide(values[1]);
    if (values[0] == "gas.vc") {
        x_ = computed[0] / value - 1;
        group_of("critical volume", 1, of_a_triple_root).compare(static_cast<double>(x_), 0, 1, where_);
    }
    const long double there = value + x_ * (wide(values[3]) + x_ * (wide(values[4]) + x_ * wide(values[5])));
    group_of(values[0], of_initialisation).compare(computed[0], there, real(values[2]), where_);
}

void walk::prepare_curve(const words &values) {
    td::Tmin = 1e-6;
    td::vmin = td::minimum_specific_volume() * 1.000000001;
    if (values.empty()) {
        td::init_saturation_curves();
        EXPECT_EQ(support::shared_text(), "No errors") << where_;
        return;
    }
    for (std::size_t i = 0; i + 3 < values.size(); i += 4) {
        td::TTs.push_back(real(values[i]));
        td::PPs.push_back(real(values[i + 1]));
        td::vvgs.push_back(real(values[i + 2]));
        td::vvls.push_back(real(values[i + 3]));
    }
}

void walk::saturated(const std::string &kind, const words &values) {
    double other = 0, v_g = 0, v_l = 0;
    const bool at_T = kind == "saturation__T";
    (at_T ? td::saturation__T : td::saturation__P)(T_, other, v_g, v_l, nullptr);
    EXPECT_EQ(support::shared_text(), "No errors") << where_;
    compare(group_of(kind + " " + model_, of_saturation, at_T ? 1e-6 : 1e-5), {other, v_g, v_l}, values);
}

struct reference : support::thermodynamics_test {};

TEST_F(reference, states) {
    const auto counts = walk({"states.txt"}).finish();
    EXPECT_EQ(counts.size(), 34U);
    // The dispatcher and the model's own operation are asked for 160 states, derived properties for half of them; c
    // exists only where c^2 is positive. Each form of the heat capacity has 10 temperatures for each of 2 fluids.
    for (const auto &[name, count] : counts)
        EXPECT_GE(count, operations().at(name).of_model != nullptr ? 320 : name == "c__T_v" ? 79 : 80) << name;
    for (const char *name : {"phi__T", "phip__T", "phipp__T", "psi__T", "cv_oo__Tdim"})
        EXPECT_EQ(counts.at(name), 100) << name;
}

TEST_F(reference, initialisation) {
    const auto counts = walk({"initialisation.txt"}).finish();
    // There are 13 fluids, each under 2 of 8 models, and 4 heat capacities of fluids without critical data under 2.
    EXPECT_EQ(counts.at("gas.omega"), 13);
    EXPECT_EQ(counts.at("gas.R"), 13 + 4 * 2);
    for (const char *name : {"gas.vc", "thermodynamics.vmin"})
        EXPECT_EQ(counts.at(name), 13 * 2) << name;
    for (const char *name : {"gas.e_0", "gas.s_0", "gas.T_ref", "gas.v_ref", "gas.cp0_ref"})
        EXPECT_EQ(counts.at(name), 13 * 2 + 4 * 2) << name;
    for (const char *name : {"MHG.aa", "MHG.bb", "MHG.cc"})
        EXPECT_EQ(counts.at(name), 3 * 4) << name;
}

TEST_F(reference, saturation) {
    const auto counts = walk({"saturation.txt"}).finish();
    EXPECT_EQ(counts.size(), 12U);
    for (const auto &[name, count] : counts)
        EXPECT_GE(count, 15) << name;
}

TEST_F(reference, transport) {
    const auto counts = walk({"transport.txt"}).finish();
    EXPECT_EQ(counts.at("transport.aa"), 20);
    EXPECT_EQ(counts.at("transport.bb"), 28);
}

} // namespace
