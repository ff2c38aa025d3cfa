// SPDX-License-Identifier: MIT
// The numerics. The first line of the input, "load|model|heat capacity", chooses the fluid by places in the tables of
// cases. Each line behind it is an operation with its numbers, all reduced:
//
//   T__P_v|P|v|first T ...       the solvers; without a first value they take their own
//   set|variable|value           overwrites a bound or a constant of the fluid
//   kfact|order|elements ...     matrices, roots, derivatives, vectors
//
// A solver that leaves no message must have met its target, every operation must end soon, and an operation that
// promises to leave its result unchanged must do so. Calls that stop the process by their contract are not made:
// matrices that are not square or singular where they are refused, root finders that find nothing.
#include "Fuzz/fuzz_support.h"

#include "Algebra/derivatives.h"
#include "Algebra/kdet.h"
#include "Algebra/kvert.h"
#include "Algebra/non_lin_algebra.h"
#include "Algebra/nonlinear_equations.h"

#include <array>
#include <limits>
#include <map>

namespace {

using fuzz::require;
using ideal_specific_heat::errmsg;
using arguments = fuzz::command;
using namespace thermodynamics;

constexpr double epsilon = std::numeric_limits<double>::epsilon();

constexpr std::size_t models = std::size(support::model_cases);
constexpr std::size_t heats = std::size(support::heat_cases);

/// Loads a case with its saturation table. Each case is made once and put into place again for later inputs.
void load(std::size_t model, std::size_t heat) {
    static std::map<std::pair<std::size_t, std::size_t>, library_state::kept> cases;
    auto known = cases.find({model, heat});
    if (known == cases.end()) {
        support::fresh_library();
        support::load(support::model_cases[model], support::heat_cases[heat]);
        transport_properties::active.viscosity_model = 1 + static_cast<std::int32_t>(heat % 6);
        transport_properties::active.thermal_cond_model = 1 + static_cast<std::int32_t>(heat % 4);
        transport_properties::active.mu_ref_s = transport_properties::active.mu_ref_l = 1e-5;
        transport_properties::active.T_ref_s = transport_properties::active.T_ref_l = 300.0;
        transport_properties::active.Pr = 0.7;
        transport_properties::init_transport_properties();
        // With the first heat capacity the table is the model's own.
        if (heat == 0)
            init_saturation_curves();
        else
            fuzz::make_up_saturation_table(gas_properties::gas.Zc);
        errmsg.reset();
        lin_algebra::linalg_errmsg.reset();
        known = cases.emplace(std::pair(model, heat), library_state::keep()).first;
    }
    library_state::restore(known->second);
}

/// Whether a model is active: without one, no solver searches.
bool has_model() {
    return gas_type >= 1 && gas_type <= 8;
}

void expect_message_of(std::string_view name) {
    require(errmsg.trimmed() == "ERROR: in " + std::string(name), "a solver says that it has failed", errmsg.trimmed());
}

/// A solver in one unknown: its result must have the wanted value, or there must be a message.
template <double (*solve)(double, double, std::optional<double>), double (*value)(double, double)>
void solve_T(const arguments &line, double least) {
    const double target = line.number_or(0, 1.0);
    const double v = line.number_or(1, 1.0);
    const double T = solve(target, v, line.number(2));
    if (!has_model())
        return;
    if (!errmsg.clear())
        return expect_message_of(line.name());
    require(std::abs(value(T, v) - target) < 1e-9, "a solver meets its target", line.name());
    require(!(T < least), "a solver keeps above its bound", line.name());
}
template <double (*solve)(double, double, std::optional<double>), double (*value)(double, double)>
void solve_v(const arguments &line) {
    const double target = line.number_or(0, 1.0);
    const double T = line.number_or(1, 1.0);
    const double v = solve(target, T, line.number(2));
    if (!has_model())
        return;
    if (!errmsg.clear())
        return expect_message_of(line.name());
    require(std::abs(value(T, v) - target) < 1e-9, "a solver meets its target", line.name());
    require(!(v < vmin), "a solver keeps above its bound", line.name());
}
template <double (*solve)(double, double, std::optional<double>, std::optional<double>)>
void solve_both(const arguments &line) {
    const double v = solve(line.number_or(0, 1.0), line.number_or(1, 1.0), line.number(2), line.number(3));
    if (!has_model())
        return;
    if (!errmsg.clear())
        return expect_message_of(line.name());
    require(!(v < vmin), "a solver keeps above its bound", line.name());
}

/// A solver that evaluates its result: it must return 0 if there is a message.
template <double (*evaluate)(double, double, std::optional<double>)>
void after_solve(const arguments &line) {
    const double value = evaluate(line.number_or(0, 1.0), line.number_or(1, 1.0), line.number(2));
    require(errmsg.clear() || fuzz::same_bits(value, 0.0), "0 where a message stands", line.name());
}

constexpr double untouched = -7.25;

bool is_untouched(double value) {
    return value == untouched;
}
template <std::size_t size>
bool is_untouched(const std::array<double, size> &values) {
    return std::all_of(values.begin(), values.end(), [](double value) { return value == untouched; });
}
template <class Result>
Result untouched_result() {
    Result result{};
    if constexpr (std::is_same_v<Result, double>)
        result = untouched;
    else
        result.fill(untouched);
    return result;
}

/// An operation that must leave its result unchanged if there is a message.
template <class Result>
void at_found_state(void (*evaluate)(double, double, Result &, std::optional<double>), const arguments &line) {
    Result result = untouched_result<Result>();
    evaluate(line.number_or(0, 1.0), line.number_or(1, 1.0), result, line.number(2));
    require(errmsg.clear() || is_untouched(result), "a result is left where a message stands", line.name());
}

/// Calls every operation at (T, v): none may trap or leave a message.
void evaluate_all(const arguments &line) {
    const double T = line.number_or(0, 1.0);
    const double v = line.number_or(1, 1.0);
    for (const auto operation : {P__T_v, e__T_v, s__T_v, cv__T_v, h__T_v, mu__T_v, c2__T_v, c__T_v, cp__T_v, G__T_v})
        operation(T, v);
    for (const auto operation : {dh__dT_dv, ds__dT_dv, dmu__dT_dv, dT__dP_dv__T_v, de__dP_dv__T_v, ds__dP_dv__T_v,
                                 dP__de_dr__T_v, dP__dre_dr__T_v})
        operation(T, v);
    for (const auto operation : {d2P__dre2_dr2__T_v, d2P__dre_dr__dT_dv})
        operation(T, v);
    eos_ext__T_v(T, v);
    std::array<double, 2> first{};
    for (const auto operation : {dP__dT_dv, de__dT_dv, dcv__dT_dv})
        operation(T, v, first);
    std::array<double, 4> second{};
    for (const auto operation : {d2P__dT2_dv2, d2e__dT2_dv2})
        operation(T, v, second);
    for (const auto operation : {ideal_specific_heat::phi__T, ideal_specific_heat::phip__T,
                                 ideal_specific_heat::phipp__T, ideal_specific_heat::psi__T})
        operation(T);
    require(errmsg.clear(), "an evaluation leaves no message", errmsg.trimmed());
}

void evaluate_transport(const arguments &line) {
    using namespace transport;
    using namespace transport_properties;
    const double T = line.number_or(0, 1.0);
    const double v = line.number_or(1, 1.0);
    active.viscosity_model = static_cast<std::int32_t>(line.count(2, 1, 8));
    active.thermal_cond_model = static_cast<std::int32_t>(line.count(3, 1, 8));
    double eta = 0;
    double lambda = 0;
    transport_coefficients(T, v, eta, lambda);
    transport_coefficients_dim(T, v, eta, lambda);
    double mu0 = 0;
    diluite_gas_viscosity(T);
    dense_gas_viscosity(T, v, mu0);
    corresp_state_viscosity(T);
    sutherland_law_viscosity(T);
    linear_viscosity(T);
    diluite_gas_thermal_cond(T, mu0);
    dense_gas_thermal_cond(T, v, mu0);
    init_transport_properties();
}

/// Overwrites a variable with a value that a parameter file or a failed load could have left there.
void set(const arguments &line) {
    auto &gas = gas_properties::gas;
    static const std::map<std::string_view, double *> variables = {
        {"Zc", &gas.Zc},   {"Tc", &gas.Tc},         {"Pc", &gas.Pc}, {"e_0", &gas.e_0},
        {"s_0", &gas.s_0}, {"cv_ref", &gas.cv_ref}, {"Tmin", &Tmin}, {"vmin", &vmin},
        {"R", &gas.R},     {"T_ref", &gas.T_ref},   {"Pmin", &Pmin}, {"v_ref", &gas.v_ref},
    };
    const auto variable = variables.find(line.text(0).value_or(""));
    if (variable != variables.end())
        *variable->second = line.number_or(1, 0.0);
    else if (line.text(0) == "gas_type")
        gas_type = static_cast<std::int32_t>(line.count(1, 0, 9));
    else if (line.text(0) == "init")
        init_thermodynamics();
}

void saturation_T(const arguments &line) {
    const double T = line.number_or(0, 1.0);
    double P = untouched;
    double v_g = untouched;
    double v_l = untouched;
    bool success = true;
    saturation__T(T, P, v_g, v_l, line.text(1) ? nullptr : &success);
    require(success || !errmsg.clear(), "a failure has a message");
    if (!errmsg.clear())
        return;
    require(std::abs(P__T_v(T, v_g) - P__T_v(T, v_l)) < 1e-6, "phases of equal pressure");
    require(std::abs(mu__T_v(T, v_g) - mu__T_v(T, v_l)) < 1e-6, "phases of equal Gibbs energy");
    require(fuzz::same_bits(P, P__T_v(T, v_g)), "the pressure of the vapor");
}

void saturation_P(const arguments &line) {
    double T = untouched;
    double v_g = untouched;
    double v_l = untouched;
    bool success = true;
    saturation__P(line.number_or(0, 1.0), T, v_g, v_l, line.text(1) ? nullptr : &success);
    require(success || !errmsg.clear(), "a failure has a message");
}

template <void (*fill)(std::span<double>, std::span<double>, std::span<double>, std::span<double>, double, bool *)>
void saturation_curve(const arguments &line) {
    std::array<std::vector<double>, 4> columns;
    for (std::size_t i = 0; i < columns.size(); ++i)
        columns[i].assign(line.count(i + 2, line.count(1, 10, 64), 64), untouched);
    bool success = true;
    fill(columns[0], columns[1], columns[2], columns[3], line.number_or(0, 0.5),
         line.text(1) == "" ? nullptr : &success);
}

void saturation_table(const arguments &) {
    init_saturation_curves();
    require(TTs.size() == PPs.size() && TTs.size() == vvls.size() && TTs.size() == vvgs.size() && TTs.size() <= 2048,
            "the table's columns have one length, at most 2048");
}

/// The numbers of a line from the i-th on, `most` of them at most.
std::vector<double> numbers(const arguments &line, std::size_t i, std::size_t most) {
    std::vector<double> result;
    while (result.size() < most && line.text(i))
        result.push_back(*line.number(i++));
    return result;
}

void seek(const arguments &line) {
    std::int32_t i1 = -7;
    std::int32_t i2 = -7;
    double w = untouched;
    const std::vector<double> xx = numbers(line, 1, 300);
    seek_in_vector(line.number_or(0, 1.0), xx, i1, i2, w);
    if (errmsg.clear())
        require(i1 >= 1 && i2 == i1 + 1 && static_cast<std::size_t>(i2) <= xx.size(), "neighbours in the vector");
    else
        require(i1 == -7 && i2 == -7 && w == untouched && errmsg.trimmed() == "x is not in xx.",
                "nothing is found outside");
}

void state_vectors(const arguments &line) {
    basic_state state = untouched_result<basic_state>();
    eos__e_v(line.number_or(0, 1.0), line.number_or(1, 1.0), state, line.number(2));
    require(errmsg.clear() || is_untouched(state), "a state is left where a message stands");
    extended_state extended = untouched_result<extended_state>();
    eos_ext__e_v(line.number_or(0, 1.0), line.number_or(1, 1.0), extended, line.number(2));
    require(errmsg.clear() || is_untouched(extended), "a state is left where a message stands");
}

/// Whether products of a few of these elements neither overflow nor vanish.
bool moderate(std::span<const double> elements) {
    return std::all_of(elements.begin(), elements.end(),
                       [](double x) { return x == 0.0 || (std::abs(x) > 1e-30 && std::abs(x) < 1e30); });
}

struct square_matrix {
    std::size_t order;
    std::vector<double> elements;

    explicit square_matrix(const arguments &line)
        : order(line.count(0, 3, 12)), elements(numbers(line, 1, order * order)) {
        elements.resize(order * order, 1.0);
    }
    lin_algebra::matrix_view view() const { return {elements, order, order}; }
};

/// |P A - L U| <= n 2.2e-16 |L| |U|, element by element, and |L| <= 1.
void expect_factors(const square_matrix &A, const lin_algebra::factored_matrix &F) {
    std::vector<double> permuted = A.elements;
    const std::size_t n = A.order;
    for (std::size_t k = 0; k < n; ++k)
        for (std::size_t j = 0; j < n; ++j)
            std::swap(permuted[j * n + k], permuted[j * n + F.pivots[k]]);
    for (std::size_t i = 1; i <= n; ++i)
        for (std::size_t j = 1; j <= n; ++j) {
            long double product = 0;
            long double scale = 0;
            for (std::size_t k = 1; k <= std::min(i, j); ++k) {
                const long double term = (k == i ? 1.0L : F(i, k)) * F(k, j);
                product += term;
                scale += std::abs(term);
            }
            require(i <= j || std::abs(F(i, j)) <= 1.0, "a pivot is the largest element left in its column");
            const long double error = std::abs(product - permuted[(j - 1) * n + i - 1]);
            require(error <= static_cast<long double>(n) * 2.2e-16L * scale, "factors to their rounding");
        }
}

void factor(const arguments &line) {
    const square_matrix A(line);
    const lin_algebra::factored_matrix F = lin_algebra::kfact(A.view());
    require(F.state != lin_algebra::factored_matrix::states::not_factored, "a square matrix is factored");
    require(std::all_of(F.pivots.begin(), F.pivots.end(),
                        [&](std::size_t row) { return row < std::max<std::size_t>(A.order, 1); }),
            "pivots are rows");
    const double determinant = lin_algebra::kdet(F);
    if (F.state == lin_algebra::factored_matrix::states::singular) {
        require(determinant == 0.0, "a singular matrix has the determinant 0");
        return;
    }
    const bool finite = std::all_of(F.factors.begin(), F.factors.end(), [](double x) { return std::isfinite(x); });
    if (moderate(A.elements) && finite && moderate(F.factors))
        expect_factors(A, F);
    require(lin_algebra::kvert(F).size() == A.order * A.order, "an inverse has the matrix's shape");
}

/// Inverts a matrix with any numbers of rows and columns, also with those that are refused.
void invert(const arguments &line) {
    const std::size_t rows = line.count(0, 2, 5);
    const std::size_t columns = line.count(1, 2, 5);
    std::vector<double> elements = numbers(line, 2, rows * columns);
    elements.resize(rows * columns, 1.0);
    const lin_algebra::matrix_view A{elements, rows, columns};
    std::vector<double> result(rows * columns, untouched);
    lin_algebra::inverse(A, result);
    const bool served = rows == columns && rows >= 1 && rows <= 3;
    const bool left = std::all_of(result.begin(), result.end(), [](double x) { return x == untouched; });
    require(served || !lin_algebra::linalg_errmsg.clear(), "a wrong shape is reported");
    if (!served || lin_algebra::linalg_errmsg.trimmed().starts_with(" Matrix A is singular."))
        require(left, "an inverse is left where it is refused");
    const double determinant = lin_algebra::determinant(A);
    require(served || determinant == 0.0, "no determinant of a wrong shape");
}

void strike_out(const arguments &line) {
    const std::size_t row = line.count(0, 1, 20);
    const std::size_t column = line.count(1, 1, 20);
    const std::size_t order = line.count(2, 3, 12);
    std::vector<double> elements = numbers(line, 3, order * order);
    elements.resize(order * order, 1.0);
    const double minor = lin_algebra::minor({elements, order, order}, row, column);
    if (row < 1 || row > order || column < 1 || column > order)
        require(std::isnan(minor), "no minor of a row or column that is not there");
}

/// Solves x^3 + a x^2 + b x + c = 0: the roots must add up to -a, and two of them must be real or conjugate.
void cubic(const arguments &line) {
    const double a = line.number_or(0, 1.0);
    const auto roots = non_lin_algebra::solve_eq_3(a, line.number_or(1, 1.0), line.number_or(2, 1.0));
    require(fuzz::same_bits(roots[0].imag(), 0.0), "the first root is real");
    require(roots[1].imag() == -roots[2].imag() || std::isnan(roots[1].imag()), "roots are conjugate");
    double scale = std::abs(a);
    for (const auto &root : roots)
        scale += std::abs(root);
    if (std::isfinite(scale))
        require(std::abs(roots[0].real() + roots[1].real() + roots[2].real() + a) <= 32 * epsilon * scale,
                "the roots sum up to -a");
}

/// A cubic polynomial that counts its evaluations.
struct counted_cubic {
    std::array<double, 4> c;
    int &calls;
    double operator()(double x) const {
        ++calls;
        return ((c[3] * x + c[2]) * x + c[1]) * x + c[0];
    }
};

/// Thrown to leave the search where it would stop the process.
struct would_stop {};

/// newton|x0|tolerance|n_max|f_sh|c0|c1|c2|c3
void find_root(const arguments &line) {
    const std::array<double, 4> c = {line.number_or(4, -2.0), line.number_or(5, 0.0), line.number_or(6, 1.0),
                                     line.number_or(7, 0.0)};
    int calls = 0;
    auto n_max = static_cast<std::int32_t>(line.count(2, 50, 200));
    const std::int32_t cap = n_max;
    const double tolerance = std::max(line.number_or(1, 1e-12), 1e-15);
    const auto f = [&](double x) {
        const double value = counted_cubic{c, calls}(x);
        if (calls >= cap)
            throw would_stop();
        return value;
    };
    const auto df = [&](double x) {
        const double slope = (3 * c[3] * x + 2 * c[2]) * x + c[1];
        if (std::abs(slope) < epsilon)
            throw would_stop();
        return slope;
    };
    if (cap < 1)
        return;
    try {
        nonlinear_equations::newton(f, df, line.number_or(0, 1.0), tolerance, &n_max, line.number_or(3, 0.0));
        require(n_max == calls, "the number of iterations is that of the evaluations");
    } catch (const would_stop &) {
    }
}

/// bisection|a|b|tolerance|f_sh|c0|c1|c2|c3
void bisect(const arguments &line) {
    const double a = line.number_or(0, 0.0);
    const double b = line.number_or(1, 2.0);
    const double shift = line.number_or(3, 0.0);
    const std::array<double, 4> c = {line.number_or(4, -2.0), line.number_or(5, 0.0), line.number_or(6, 1.0),
                                     line.number_or(7, 0.0)};
    int calls = 0;
    const counted_cubic f{c, calls};
    const double fa = f(a) - shift;
    const double fb = f(b) - shift;
    if ((fa > 0.0 && fb > 0.0) || (fa < 0.0 && fb < 0.0))
        return;
    const double x = nonlinear_equations::bisection(f, a, b, std::max(line.number_or(2, 1e-12), 1e-15), shift);
    // An interval of any doubles needs one halving for each exponent and for each bit.
    require(calls < 2300, "a bisection ends when no number is left");
    if (std::isfinite(a) && std::isfinite(b))
        require(x >= std::min(a, b) && x <= std::max(a, b), "a root in its interval");
}

/// derivatives|x|x_scale|c0|c1|c2|c3
void differentiate(const arguments &line) {
    const double x = line.number_or(0, 1.0);
    const double scale = line.number_or(1, 1.0);
    int calls = 0;
    const counted_cubic f{
        {line.number_or(2, 1.0), line.number_or(3, 1.0), line.number_or(4, 1.0), line.number_or(5, 1.0)}, calls};
    derivatives::df_dx(f, x, scale);
    require(calls == 2, "two evaluations for a first derivative");
    derivatives::d2f_dx2(f, x, scale);
    require(calls == 5, "three for a second one");
    const std::vector<double> at = numbers(line, 0, 8);
    const std::vector<double> scales = numbers(line, 4, 8);
    const auto sum = [&](std::span<const double> xx) {
        double result = 0;
        for (const double component : xx)
            result += f(component);
        return result;
    };
    require(derivatives::df_dxx(sum, at, scales).size() == at.size(), "a partial derivative per component");
    require(derivatives::d2f_dxx2(sum, at, scales).size() == at.size(), "a partial derivative per component");
}

struct operation {
    std::string_view name;
    void (*run)(const arguments &line);
};

#define OSTREL_SOLVE_T(name, value)                                            \
    {                                                                          \
#name, [](const arguments &line) { solve_T<name, value>(line, Tmin); } \
    }
#define OSTREL_SOLVE_v(name, value) \
    { #name, solve_v < name, value> }
#define OSTREL_SOLVE_BOTH(name) \
    { #name, solve_both < name> }
#define OSTREL_AFTER_SOLVE(name) \
    { #name, after_solve < name> }
#define OSTREL_AT_FOUND_STATE(name)                                      \
    {                                                                    \
#name, [](const arguments &line) { at_found_state(name, line); } \
    }

const operation operations[] = {
    OSTREL_SOLVE_T(T__e_v, e__T_v),
    OSTREL_SOLVE_T(T__P_v, P__T_v),
    OSTREL_SOLVE_T(T__s_v, s__T_v),
    OSTREL_SOLVE_T(T__h_v, h__T_v),
    {"T__c_v",
     [](const arguments &line) {
         const double c = line.number_or(0, 1.0);
         const double v = line.number_or(1, 1.0);
         const double T = T__c_v(c, v, line.number(2));
         if (has_model() && errmsg.clear())
             require(std::abs(c2__T_v(T, v) - c * c) < 1e-9, "a solver meets its target", "T__c_v");
     }},
    OSTREL_SOLVE_v(v__P_T, P__T_v),
    OSTREL_SOLVE_v(v__s_T, s__T_v),
    OSTREL_SOLVE_BOTH(v__h_P),
    OSTREL_SOLVE_BOTH(v__s_P),
    OSTREL_SOLVE_BOTH(v__h_s),
    OSTREL_AFTER_SOLVE(P__e_v),
    OSTREL_AFTER_SOLVE(P__s_T),
    OSTREL_AFTER_SOLVE(P__c_v),
    OSTREL_AFTER_SOLVE(P__h_v),
    OSTREL_AFTER_SOLVE(e__P_v),
    OSTREL_AFTER_SOLVE(s__P_v),
    OSTREL_AT_FOUND_STATE(mu__P_v),
    OSTREL_AT_FOUND_STATE(c__P_v),
    OSTREL_AT_FOUND_STATE(G__P_v),
    OSTREL_AT_FOUND_STATE(dT__dP_dv),
    OSTREL_AT_FOUND_STATE(de__dP_dv),
    OSTREL_AT_FOUND_STATE(ds__dP_dv),
    OSTREL_AT_FOUND_STATE(dmu__dP_dv),
    OSTREL_AT_FOUND_STATE(dP__de_dr),
    OSTREL_AT_FOUND_STATE(dP__dre_dr),
    OSTREL_AT_FOUND_STATE(d2P__dre2_dr2),
    OSTREL_AT_FOUND_STATE(dP__ds_dv),
    OSTREL_AT_FOUND_STATE(dP__ds_dT),
    OSTREL_AT_FOUND_STATE(dv__ds_dT),
    {"eos__e_v", state_vectors},
    {"saturation__T", saturation_T},
    {"saturation__P", saturation_P},
    {"saturation_curves_T", saturation_curve<saturation_curves_T>},
    {"saturation_curves_P", saturation_curve<saturation_curves_P>},
    {"init_saturation_curves", saturation_table},
    {"seek_in_vector", seek},
    {"evaluate", evaluate_all},
    {"transport", evaluate_transport},
    {"set", set},
    {"kfact", factor},
    {"inverse", invert},
    {"minor", strike_out},
    {"solve_eq_3", cubic},
    {"newton", find_root},
    {"bisection", bisect},
    {"derivatives", differentiate},
};

/// Runs one operation from a clear error text, and requires that it ends soon.
void run(const arguments &line, bool builds_table) {
    for (const operation &candidate : operations) {
        if (candidate.name != line.name())
            continue;
        const bool builds = candidate.run == saturation_table || TTs.empty();
        if (candidate.run == saturation_table && !builds_table)
            return;
        errmsg.reset();
        lin_algebra::linalg_errmsg.reset();
        const double before = fuzz::processor_time();
        candidate.run(line);
        const double seconds = fuzz::processor_time() - before;
        require(seconds < (builds ? 8.0 : 1.0), "an operation ends soon", line.name());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::string_view script = fuzz::as_text(data, size);
    fuzz::console::taken();
    const arguments chosen(fuzz::take(script, '\n'));
    const std::size_t model = chosen.count(0, 0, models - 1);
    const std::size_t heat = chosen.count(1, 0, heats - 1);
    if (!support::accepts(support::model_cases[model], support::heat_cases[heat]))
        return 0;
    load(model, heat);
    const bool builds_table = fuzz::builds_table(script);
    std::size_t done = 0;
    constexpr std::size_t most_operations = 24;
    for (const std::string_view line : fuzz::split(script, '\n'))
        if (done++ < most_operations)
            run(arguments(line), builds_table);
    require(fuzz::console::taken() == 0, "nothing is printed");
    return 0;
}
