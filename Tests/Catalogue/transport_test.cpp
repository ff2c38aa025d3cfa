// SPDX-License-Identifier: MIT
// Viscosity and conductivity of every shipped fluid must be sensible wherever its model has a single phase, in the form
// of the entry points and in the published one.
#include "Equations/fluid_parameters.h"
#include "Tests/Support/frame.h"
#include "Tests/Support/published_transport.h"

#include <algorithm>
#include <limits>

namespace {

using transport::constants_of_form;

constexpr std::size_t shards = 8;

struct shipped_fluid {
    equations::fluid_parameters parameters;
    transport::parameters published;
    double vc = 0; ///< the fluid's own critical volume [m3/kg]

    explicit shipped_fluid(const std::string &name) {
        records::file_reader reader(support::shipped_folder + ("/" + name + ".osd"));
        equations::read(reader, parameters);
        EXPECT_FALSE(reader.failed()) << reader.message();
        const double Zc = parameters.constants.Zc;
        records::error_text message;
        equations::complete(parameters, message);
        EXPECT_TRUE(message.clear()) << message.trimmed();
        published = transport::published_form(parameters.transport, Zc);
        vc = published.vc;
    }

    template <const constants_of_form &form>
    transport::coefficients<double> coefficients(double T, double v) const {
        const bool in_published_form = &form == &transport::published;
        return transport::evaluate<form>(
            in_published_form ? published : parameters.transport, T, v,
            [&] { return ideal_gas_heat::cv(parameters.heat, T); },
            [] { return std::numeric_limits<double>::quiet_NaN(); }); // no shipped fluid has a Prandtl number
    }
};

/// The largest density in units of the critical density: 2.5, or less if 1.05 covolumes of the model come first.
double largest_density(const shipped_fluid &fluid) {
    const double smallest_volume = 1.05 * fluid.parameters.lowest.vmin * fluid.parameters.constants.v_ref;
    return std::min(2.5, fluid.vc / smallest_volume);
}

/// The volumes of the model's saturated phases [m3/kg]; equal ones if there are none.
std::pair<double, double> dome(const std::string &name, double T) {
    const support::answer liquid = support::ask(name, "tq", T, 0, "v"), vapor = support::ask(name, "tq", T, 1, "v");
    return liquid.ok() && vapor.ok() ? std::pair(liquid.value, vapor.value) : std::pair(0.0, 0.0);
}

template <const constants_of_form &form>
constexpr const char *name_of = &form == &transport::published ? "published" : "entry points";

/// Requires positive coefficients that are at least half of those of the dilute gas.
template <const constants_of_form &form>
void expect_sensible(const shipped_fluid &fluid, double T, double v, const transport::coefficients<double> &dilute) {
    const auto [mu, k] = fluid.coefficients<form>(T, v);
    EXPECT_TRUE(mu > 0 && k > 0 && mu >= 0.5 * dilute.mu && k >= 0.5 * dilute.k)
        << name_of<form> << ", " << T / fluid.published.Tc << " Tc, " << fluid.vc / v << " critical densities: " << mu
        << ", " << k << "; dilute: " << dilute.mu << ", " << dilute.k;
}

/// Coefficients in Pa s and W/(m K).
template <const constants_of_form &form>
transport::coefficients<double> in_si(const shipped_fluid &fluid, transport::coefficients<double> given) {
    if (&form == &transport::published)
        return given;
    constexpr double unit = 418.4 * 418.4 / 1e4; // W/(m K)
    const bool chung = fluid.parameters.transport.viscosity_model == fluid.parameters.transport.thermal_cond_model;
    return {fluid.parameters.transport.viscosity_model == transport::dilute_gas ? given.mu / 10 : given.mu,
            given.k * (chung ? unit : 10 * unit)};
}

/// Returns the coefficients of the dilute gas. Requires a conductivity of at least that of a monatomic gas of the same
/// viscosity, and a viscosity near that of corresponding states (L. I. Stiel, G. Thodos, AIChE J. 7 (1961) 611).
template <const constants_of_form &form>
transport::coefficients<double> expect_sensible_dilute_gas(const shipped_fluid &fluid, double T) {
    const transport::coefficients<double> dilute = fluid.coefficients<form>(T, 1e6 * fluid.vc);
    const auto [mu, k] = in_si<form>(fluid, dilute);
    const transport::parameters &p = fluid.published;
    EXPECT_GE(k, 0.999 * 3.75 * p.Rgas * mu) << name_of<form> << ", " << T / p.Tc << " Tc";
    const double usual = transport::corresponding_states_viscosity(p, T);
    EXPECT_GT(mu, 0.5 * usual) << name_of<form> << ", " << T / p.Tc << " Tc";
    EXPECT_LT(mu, 1.5 * usual) << name_of<form> << ", " << T / p.Tc << " Tc";
    return dilute;
}

struct shipped_transport : support::frame_test, testing::WithParamInterface<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(part, shipped_transport, testing::Range(std::size_t{0}, shards));

TEST_P(shipped_transport, is_sensible_from_dilute_to_dense) {
    const std::vector<std::string> names = support::shipped_fluids();
    ASSERT_GT(names.size(), shards);
    constexpr int temperatures = 48, densities = 60;
    for (std::size_t i = GetParam(); i < names.size(); i += shards) {
        SCOPED_TRACE(names[i]);
        support::fresh_frame(support::shipped_folder);
        const shipped_fluid fluid(names[i]);
        const double Tc = fluid.published.Tc;
        for (int j = 0; j <= temperatures; ++j) {
            const double T_r = 0.6 + 2.4 * j / temperatures;
            const auto [liquid, vapor] = T_r < 1 ? dome(names[i], T_r * Tc) : std::pair(0.0, 0.0);
            const auto entry_points = expect_sensible_dilute_gas<transport::entry_points>(fluid, T_r * Tc);
            const auto published = expect_sensible_dilute_gas<transport::published>(fluid, T_r * Tc);
            for (int step = 1; step <= densities; ++step) {
                const double v = fluid.vc / (largest_density(fluid) * step / densities);
                if (liquid < v && v < vapor)
                    continue;
                expect_sensible<transport::entry_points>(fluid, T_r * Tc, v, entry_points);
                expect_sensible<transport::published>(fluid, T_r * Tc, v, published);
            }
        }
    }
}

// Gases at a hundredth of the critical pressure, from Documentation/Reference/states.csv.
TEST(published_form, is_in_si_units_and_meets_measured_gases) {
    const struct {
        const char *name;
        double T;            // K
        double d;            // kg/m3
        double viscosity;    // Pa s
        double conductivity; // W/(m K)
    } gases[] = {{"nitrogen", 227.1456, 0.5039129441, 1.433088784e-05, 0.02044146553},
                 {"argon", 271.2366, 0.8618216173, 2.088169879e-05, 0.01636602849},
                 {"methane", 305.8552243, 0.2903518617, 1.143294106e-05, 0.03518061348},
                 {"co2", 310.210764, 1.262852861, 1.548753018e-05, 0.01754716926},
                 {"toluene", 603.5840605, 0.7602102833, 1.379598399e-05, 0.04154390741},
                 {"r134a", 399.9084044, 1.249108907, 1.570212757e-05, 0.0215164043}};
    for (const auto &gas : gases) {
        const shipped_fluid fluid(gas.name);
        const auto [mu, k] = fluid.coefficients<transport::published>(gas.T, 1 / gas.d);
        EXPECT_NEAR(mu / gas.viscosity, 1, 0.1) << gas.name;
        EXPECT_NEAR(k / gas.conductivity, 1, 0.1) << gas.name;
    }
}

TEST(published_form, has_the_numbers_of_an_independent_evaluation) {
    for (const support::transport_state &state : support::published_transport) {
        const shipped_fluid fluid(state.name);
        const auto [mu, k] =
            fluid.coefficients<transport::published>(state.T_r * fluid.published.Tc, fluid.vc / state.density);
        EXPECT_NEAR(mu / state.viscosity, 1, 1e-7) << state.name;
        EXPECT_NEAR(k / state.conductivity, 1, 1e-7) << state.name;
    }
}

// Only units, the critical volume and the sine differ. The sine changes the collision integral by up to 0.2 %.
TEST(published_form, differs_from_that_of_the_entry_points_in_units_and_sine) {
    for (const auto code : {transport::dilute_gas, transport::dense_gas}) {
        shipped_fluid fluid("toluene");
        transport::parameters &p = fluid.published;
        p.viscosity_model = p.thermal_cond_model = code;
        fluid.parameters.transport = p;
        const double T = 700, v = 2 * fluid.vc;
        const auto published = fluid.coefficients<transport::published>(T, v);
        const auto entry_points = fluid.coefficients<transport::entry_points>(T, v);
        const double unit = code == transport::dilute_gas ? 10 : 1;
        EXPECT_NEAR(entry_points.mu / (unit * published.mu), 1, 3e-3);
        EXPECT_NEAR(entry_points.k * 418.4 * 418.4 / (1e4 * published.k), 1, 3e-3);
        EXPECT_NE(entry_points.mu, unit * published.mu);
    }
}

// Conductivities 2 and 3 do not depend on which unit the viscosity has, and 3 has its part of the dilute gas always.
TEST(published_form, takes_any_viscosity_in_its_unit) {
    shipped_fluid fluid("toluene");
    transport::parameters &p = fluid.published;
    const double T = 500;
    const auto conductivity = [&](std::int32_t viscosity_model, std::int32_t conductivity_model, double v) {
        p.viscosity_model = viscosity_model;
        p.thermal_cond_model = conductivity_model;
        return fluid.coefficients<transport::published>(T, v).k;
    };
    p.mu_const = 0.1 * transport::dilute_viscosity<transport::published>(p, T);
    const double dilute = conductivity(transport::dilute_gas, transport::dilute_gas_conductivity, 1);
    EXPECT_NEAR(conductivity(transport::constant_viscosity, transport::dilute_gas_conductivity, 1) / dilute, 1, 1e-14);
    EXPECT_NEAR(conductivity(transport::dense_gas, transport::dense_gas_conductivity, 1e9) / dilute, 1, 1e-6);
    EXPECT_EQ(conductivity(transport::constant_viscosity, transport::dense_gas_conductivity, 0.01),
              conductivity(transport::dense_gas, transport::dense_gas_conductivity, 0.01));
}

} // namespace
