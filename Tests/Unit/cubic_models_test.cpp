// SPDX-License-Identifier: MIT
// What the cubic equations of the Redlich-Kwong family satisfy, over a table of them: the search for the critical
// volume, the constants before and after it, the critical point, and the operations written out.
#include "Tests/Support/critical_models.h"
#include "Tests/Support/modules.h"

namespace {

using gas_properties::gas;
using support::critical_data;
using support::tracked;
using support::tracked_factors;

/// A model's numbers under common names.
struct constants {
    double Rgas;
    double a; ///< of the attraction: Redlich and Kwong's a, else c_a
    double b;
    double fw = 0; ///< of Soave's temperature factor
    double Zc = 0; ///< in Soave's temperature factor
};

/// The attraction's denominator and its slope.
struct denominator {
    double value;
    double slope;
};
denominator redlich_kwong_denominator(double b, double v) {
    return {v * (v + b), v + b + v};
}
denominator peng_robinson_denominator(double b, double v) {
    return {(2.0 * v - b) * b + v * v, 2.0 * (v + b)};
}

/// f with f' = -1/(v (v + b)), and f with f' = -1/(v^2 + 2 b v - b^2).
tracked_factors<1> redlich_kwong_f(tracked b, tracked v) {
    const tracked D = (v + b) * v;
    return {{{log((v + b) / v) / b, tracked(-1) / D, (tracked(2) * v + b) / (D * D),
              tracked(-2) * (tracked(3) * (v * v + v * b) + b * b) / (D * D * D)}}};
}
tracked_factors<1> peng_robinson_f(tracked b, tracked v) {
    const tracked D = (tracked(2) * v - b) * b + v * v;
    const tracked ratio = (v + tracked(2.414213562373095) * b) / (v + tracked(-0.41421356237309515) * b);
    return {
        {{log(ratio) / (tracked(2) * tracked(1.4142135623730951) * b), tracked(-1) / D, tracked(2) * (v + b) / (D * D),
          tracked(-2) * ((tracked(5) * b + tracked(6) * v) * b + tracked(3) * v * v) / (D * D * D)}}};
}
tracked_factors<1> redlich_kwong_q(const constants &p, tracked T) {
    const tracked a = p.a;
    return {{{a / sqrt(T), -(a / (tracked(2) * T * sqrt(T))), tracked(3) * a / (tracked(4) * T * T * sqrt(T)),
              tracked(-15) * a / (tracked(8) * T * T * T * sqrt(T))}}};
}
tracked_factors<1> soave_q(const constants &p, tracked T) {
    const tracked c_a = p.a, fw = p.fw, Zc = p.Zc;
    const tracked alpha = tracked(1) + fw * (tracked(1) - sqrt(Zc * T));
    const tracked g = Zc * fw + alpha * sqrt(Zc / T);
    return {{{c_a * alpha * alpha, -(fw * c_a * sqrt(Zc / T) * alpha), fw * c_a / (tracked(2) * T) * g,
              -(tracked(3) * c_a * fw / (tracked(4) * T * T) * g)}}};
}

/// The active numbers of a module with Soave's temperature factor.
template <auto &active>
constants soave_constants() {
    return {active.Rgas, active.c_a, active.b, active.fw, active.Zc};
}

struct cubic_model {
    std::int32_t gas_type;
    constants (*active)();
    void (*Q_f)(double T, double v, std::array<double, 4> &q, std::array<double, 4> &f);
    // The equation.
    tracked_factors<1> (*q)(const constants &p, tracked T) = soave_q;
    tracked_factors<1> (*f)(tracked b, tracked v);
    denominator (*D)(double b, double v);
    // Its constants, in SI units, and a behind the search for the critical volume v.
    constants (*dimensional)();
    double (*a_at_Tc)(double a) = [](double c_a) { return c_a; };
    double (*reduced_a)(double a, double v, double Zc) = [](double c_a, double v, double) {
        return c_a / (v * gas.Pc * v);
    };
    double Omega_a;                                     ///< Pc a(Tc)/(R Tc)^2
    double Omega_b;                                     ///< Pc b/(R Tc)
    std::vector<std::pair<double, double>> slopes = {}; ///< acentric factors, and fw; none without Soave's factor
    // The search for the critical volume.
    double tolerance; ///< of the residual [Pa]
    std::string failure;
    critical_data found; ///< and all of `fluids`
    std::vector<critical_data> not_found;
    std::vector<critical_data> last_found = {}, first_not_found = {}; ///< by the hundredth evaluation

    const support::module_operations &module() const { return support::module_of(gas_type); }
    const support::model_case &of() const { return support::case_of(gas_type); }
};
std::ostream &operator<<(std::ostream &out, const cubic_model &model) {
    return out << model.module();
}

const std::vector<critical_data> fluids = {{400.0, 4.2e6},
                                           {304.1282, 7376460.0, 44.0, 0.2746, 0.225},
                                           {425.1, 3796000.0, 58.123, 0.274, 0.2},
                                           {300.0, 5066250.0},
                                           {410.0, 3.5e6},
                                           {425.0, 4.4e6},
                                           {500.0, 3.7e6},
                                           {500.0, 4.2e6, 31.0}};

/// The volume has a triple root at the critical point if b is this third of R Tc/Pc, and a(Tc) (R Tc)^2/(9 root Pc).
constexpr double root = 0.25992104989487316; // 2^(1/3) - 1, of which std::cbrt may miss the last digit

const cubic_model redlich_kwong = {
    .gas_type = 6,
    .active =
        [] {
            const auto &p = redlich_kwong_gas::active;
            return constants{p.Rgas, p.a, p.b};
        },
    .Q_f = redlich_kwong_gas::Q_f__T_v__RKG,
    .q = redlich_kwong_q,
    .f = redlich_kwong_f,
    .D = redlich_kwong_denominator,
    .dimensional =
        [] {
            const double R = gas.R, Tc = gas.Tc, Pc = gas.Pc;
            return constants{R, (Tc * std::sqrt(Tc) * Tc * R * R / Pc) * 0.4274802335403413,
                             (R * Tc / Pc) * 0.08664034996495773};
        },
    .a_at_Tc = [](double a) { return a / std::sqrt(gas.Tc); },
    .reduced_a = [](double a, double v, double Zc) { return a / (v * gas.Pc * v * std::sqrt(gas.Tc * Zc)); },
    .Omega_a = 1 / (9 * root),
    .Omega_b = root / 3,
    .tolerance = 1e-10,
    .failure = " ERROR:  v__P_T__RKG. STOP",
    .found = {410.0, 5.0e6, 18.0},
    .not_found = {{273.0, 6.9e6}, {546.0, 6.9e6}, {685.0, 5.5e6}},
    .last_found = {{297.5, 1888200.0}},
    .first_not_found = {{396.0, 1191100.0}},
};
const cubic_model soave = {
    .gas_type = 4,
    .active = soave_constants<soave_redlich_kwong_gas::active>,
    .Q_f = soave_redlich_kwong_gas::Q_f__T_v__SRKG,
    .f = redlich_kwong_f,
    .D = redlich_kwong_denominator,
    .dimensional =
        [] {
            const double R = gas.R, Tc = gas.Tc, Pc = gas.Pc, omega = gas.omega, RTc = R * Tc;
            return constants{R, RTc * RTc * 0.4274802335403413 / Pc, Tc * 0.08664034996495773 * R / Pc,
                             0.48 + (1.574 - 0.176 * omega) * omega};
        },
    .Omega_a = 1 / (9 * root),
    .Omega_b = root / 3,
    .slopes = {{0.0, 0.48}, {0.5, 1.223}, {-0.4, -0.17776}},
    .tolerance = 1e-14,
    .failure = " ERROR:  v__P_T__SRKG. STOP",
    .found = {410.0, 5.0e6, 18.0},
    .not_found = {{294.0, 1.9e6}, {294.0, 3.8e6}, {294.0, 7.6e6}},
    .last_found = {{407.0, 2608000.0}},
    .first_not_found = {{711.0, 2.3e6}},
};
const cubic_model peng_robinson = {
    .gas_type = 5,
    .active = soave_constants<peng_robinson_gas::active>,
    .Q_f = peng_robinson_gas::Q_f__T_v__PRG,
    .f = peng_robinson_f,
    .D = peng_robinson_denominator,
    .dimensional =
        [] {
            const double R = gas.R, Tc = gas.Tc, Pc = gas.Pc, omega = gas.omega, RTc = R * Tc;
            return constants{R, RTc * 0.45724 * RTc / Pc, Tc * 0.0778 * R / Pc,
                             0.37464 + (1.54226 - 0.26992 * omega) * omega};
        },
    .Omega_a = 0.45724,
    .Omega_b = 0.0778,
    .slopes = {{0.0, 0.37464}, {0.5, 1.07829}, {-0.4, -0.2854512}},
    .tolerance = 1e-10,
    .failure = " ERROR:  v__P_T__PRG. STOP",
    .found = {300.0, 3.2e6, 18.0},
    .not_found = {{400.0, 4.0e6}, {200.0, 1.0e6}},
};

struct cubic_models_test : support::thermodynamics_test, testing::WithParamInterface<cubic_model> {
    const cubic_model &model = GetParam();

    /// On a fluid of the file's.
    void load() const { support::load(model.of(), support::heat_cases[0]); }

    /// Newton's method for the critical volume as far as `most` evaluations: the volume, and whether the residual
    /// came below the tolerance.
    struct search_result {
        double v;
        bool found;
    };
    search_result search(int most = 100) const {
        const double RTc = gas.R * gas.Tc;
        const constants p = model.dimensional();
        const double a = model.a_at_Tc(p.a);
        double v = RTc / gas.Pc;
        for (int i = 1; i <= most; ++i) {
            const auto [D, slope] = model.D(p.b, v);
            const double F = RTc / (v - p.b) - gas.Pc - a / D;
            if (std::abs(F) < model.tolerance)
                return {v, true};
            v = v - F / (-RTc / ((v - p.b) * (v - p.b)) + a * slope / (D * D));
        }
        return {v, false};
    }
    void expect_constants(const constants &expected) const {
        const constants p = model.active();
        EXPECT_EQ(p.Rgas, expected.Rgas);
        EXPECT_EQ(p.a, expected.a);
        EXPECT_EQ(p.b, expected.b);
        EXPECT_EQ(p.fw, expected.fw);
        EXPECT_EQ(p.Zc, expected.Zc);
    }
    /// The constants as they are before the search for the critical volume, in SI units.
    void expect_dimensional(double Zc) const {
        constants expected = model.dimensional();
        expected.Zc = Zc;
        expect_constants(expected);
    }
};
using cubic_models_of_a_triple_root_test = cubic_models_test;
using cubic_models_of_Soave_test = cubic_models_test;

TEST_P(cubic_models_test, init_finds_the_critical_volume_and_reduces_the_constants) {
    std::vector<critical_data> found_ones = fluids;
    found_ones.push_back(model.found);
    for (const critical_data &fluid : found_ones) {
        SCOPED_TRACE(testing::Message() << fluid.Tc << " K, " << fluid.Pc << " Pa");
        support::use_record(fluid);
        const auto before = gas;
        const constants p = model.dimensional();
        const auto [v, found] = search();
        ASSERT_TRUE(found);
        model.module().init();
        EXPECT_EQ(support::shared_text(), "No errors");
        const double Zc = gas.Pc * v / (gas.R * gas.Tc);
        support::expect_critical_reference(before, v, Zc);
        EXPECT_NE(gas.Zc, fluid.Zc);
        const bool with_Zc = model.q == soave_q;
        expect_constants({1.0, model.reduced_a(p.a, v, Zc), p.b / v, p.fw, with_Zc ? Zc : 0});
    }
}

// Where the critical pressure is tiny, the terms of the residual are so small that its tolerance tells when to stop.
TEST_P(cubic_models_test, the_tolerance_is_in_Pa) {
    for (const double Pc : {0.1, 0.03, 1e-3, 3e-5, 1e-5}) {
        SCOPED_TRACE(testing::Message() << Pc << " Pa");
        support::use_record({400.0, Pc});
        const auto before = gas;
        const auto [v, found] = search();
        ASSERT_TRUE(found);
        model.module().init();
        EXPECT_EQ(support::shared_text(), "No errors");
        support::expect_critical_reference(before, v, gas.Pc * v / (gas.R * gas.Tc));
    }
}

TEST_P(cubic_models_test, an_old_message_leaves_the_dimensional_constants_and_the_record) {
    support::use_record({400.0, 4.2e6});
    const auto before = gas;
    ASSERT_TRUE(search().found);
    ideal_specific_heat::errmsg.report({"earlier"});
    model.module().init();
    EXPECT_EQ(support::shared_text(), "earlier");
    support::expect_record(before);
    expect_dimensional(0);
}

TEST_P(cubic_models_test, a_critical_volume_that_is_not_found_is_reported) {
    for (const critical_data &fluid : model.not_found) {
        SCOPED_TRACE(testing::Message() << fluid.Tc << " K, " << fluid.Pc << " Pa");
        for (const bool earlier : {false, true}) {
            support::use_record(fluid);
            const auto before = gas;
            ASSERT_FALSE(search(1000).found);
            if (earlier)
                ideal_specific_heat::errmsg.report({"earlier"});
            model.module().init();
            std::string text = model.failure;
            text.resize(256, ' ');
            EXPECT_EQ(ideal_specific_heat::errmsg.padded(), text);
            support::expect_record(before);
            expect_dimensional(0);
        }
    }
}

// The residual of the hundredth evaluation still counts, that of the hundred and first does not.
TEST_P(cubic_models_of_a_triple_root_test, the_hundredth_evaluation_is_the_last) {
    support::use_record(model.last_found.at(0));
    ASSERT_FALSE(search(99).found);
    ASSERT_TRUE(search(100).found);
    model.module().init();
    EXPECT_EQ(support::shared_text(), "No errors");
    EXPECT_EQ(model.active().Rgas, 1.0);

    support::use_record(model.first_not_found.at(0));
    ASSERT_FALSE(search(100).found);
    ASSERT_TRUE(search(101).found);
    model.module().init();
    EXPECT_EQ(support::shared_text(), model.failure);
    EXPECT_EQ(model.active().Rgas, gas.R);
}

// Nothing of the fluid before is left.
TEST_P(cubic_models_test, the_constants_of_a_failure_are_those_of_its_own_fluid) {
    support::use_record({400.0, 4.2e6});
    model.module().init();
    EXPECT_EQ(model.active().Rgas, 1.0);
    const double Zc = model.active().Zc;
    gas.Tc = model.not_found.at(0).Tc;
    gas.Pc = model.not_found.at(0).Pc;
    model.module().init();
    EXPECT_EQ(support::shared_text(), model.failure);
    expect_dimensional(Zc);
}

// The residual is flat at its triple root: steps of some 1e-9 Pa in it are 1e-5 in the volume.
TEST_P(cubic_models_of_a_triple_root_test, the_compressibility_is_a_third_whatever_that_of_the_fluid) {
    for (const double Zc : {0.2, 0.27, 0.31}) {
        support::use_record({400.0, 4.2e6, 20.0, Zc});
        model.module().init();
        EXPECT_NEAR(gas.Zc, 1.0 / 3.0, 2e-5);
        EXPECT_NE(gas.Zc, 1.0 / 3.0);
    }
}

// (1/Zc, 1) is as near the critical point as the critical volume was found: x off it P is x^3 off 1, dP/dv x^2
// and d2P/dv2 x.
TEST_P(cubic_models_of_a_triple_root_test, the_critical_point_is_met_as_far_as_it_was_found) {
    load();
    const double T = 1 / gas.Zc;
    EXPECT_NEAR(model.module().P__T_v(T, 1.0), 1.0, 1e-13);
    EXPECT_NEAR(model.module().dP__dT_dv(T, 1.0)[1], 0.0, 1e-8);
    EXPECT_NEAR(model.module().d2P__dT2_dv2(T, 1.0)[3], 0.0, 1e-3);
    EXPECT_NE(model.module().d2P__dT2_dv2(T, 1.0)[3], 0.0);
}

TEST_P(cubic_models_test, the_reduced_constants_are_those_of_the_critical_conditions) {
    load();
    std::array<double, 4> q{}, f{};
    model.Q_f(1 / gas.Zc, 1.0, q, f);
    EXPECT_DOUBLE_EQ(q[0] * gas.Zc * gas.Zc, model.Omega_a);
    EXPECT_DOUBLE_EQ(model.active().b * gas.Zc, model.Omega_b);
}

TEST_P(cubic_models_test, the_operations_are_their_formulas) {
    support::for_each_state_of(model.of(), [&](double T, double v) {
        const constants p = model.active();
        const tracked_factors<1> q = model.q(p, T), f = model.f(p.b, v);
        std::array<std::array<double, 4>, 1> computed_q{}, computed_f{};
        model.Q_f(T, v, computed_q[0], computed_f[0]);
        support::expect_factors(computed_q, q);
        support::expect_factors(computed_f, f);
        support::expect_formulas(q, f, p.b, T, v);
    });
}

// At the critical temperature the temperature factor is 1, and it falls with the slope -fw sqrt(Zc T).
TEST_P(cubic_models_of_Soave_test, the_temperature_factor_is_one_at_the_critical_temperature) {
    load();
    std::array<double, 4> q{}, f{};
    model.Q_f(1 / gas.Zc, 1.0, q, f);
    const constants p = model.active();
    EXPECT_DOUBLE_EQ(q[0], p.a);
    EXPECT_DOUBLE_EQ(q[1] / gas.Zc, -p.fw * p.a);
}

TEST_P(cubic_models_of_Soave_test, the_slope_of_the_temperature_factor_follows_the_acentric_factor) {
    for (const auto &[omega, fw] : model.slopes) {
        support::use_record({400.0, 4.2e6, 20.0, 0.27, omega});
        model.module().init();
        EXPECT_NEAR(model.active().fw, fw, 4 * support::epsilon) << omega;
    }
}

using models = std::vector<cubic_model>;
INSTANTIATE_TEST_SUITE_P(, cubic_models_test, testing::ValuesIn(models{redlich_kwong, soave, peng_robinson}),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(, cubic_models_of_a_triple_root_test, testing::ValuesIn(models{redlich_kwong, soave}),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(, cubic_models_of_Soave_test, testing::ValuesIn(models{soave, peng_robinson}),
                         testing::PrintToStringParamName());

} // namespace
