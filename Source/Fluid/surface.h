// SPDX-License-Identifier: MIT
// The isotherms of each model and its saturation line, in one form for all models.
//
// Given      reduced T [T_ref] and P [P_ref], r = 1/(v - b) [1/v_ref]
// Returned   r on a branch of an isotherm, and both phases at saturation
// Valid      T > 0, P > 0
// Accuracy   see saturated_cubic.h and martin_hou_isotherm.h
#pragma once

#include "Equations/exact_models.h"
#include "Equations/martin_hou_isotherm.h"
#include "Equations/saturated_cubic.h"

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace fluid {

inline constexpr double infinite = std::numeric_limits<double>::infinity();
inline constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

/// Both phases at saturation.
struct phases {
    double P = 0;     ///< 0 if there is no saturation
    double slope = 0; ///< d ln P/d ln T
    double r_l = 0;
    double r_g = 0;
};

// What a surface offers:
//   saturates            whether the model has a saturation line at all
//   T_c, T_line          the critical temperature, and the lowest one of the saturation line
//   P_c                  the highest pressure of the saturation line
//   has_loops, T_loop    whether isotherms directly above T_c end at a finite r; above T_loop they do
//   line_ends            whether the line ends at T_line, so that below it there is no liquid; otherwise its pressure
//                        underflows there
//   at(T)                the isotherm: P(r), gas(P), liquid(P), single(P), gas_end(), liquid_end(), top()
//   saturated(T)         for T_line <= T < T_c
//   turn(v)              the temperature above which dP/dT < 0 at this volume

/// How tau = t/t_c depends on the temperature, for each cubic model.
struct reduced_temperature {
    double tau;
    double one_minus_tau;
    double slope; ///< d ln(tau)/d ln T
};
inline reduced_temperature reduce(const equations::van_der_waals &, double Tr, double distance) {
    return {Tr, distance, 1.0};
}
inline reduced_temperature reduce(const equations::redlich_kwong &, double Tr, double distance) {
    const double root = std::sqrt(Tr);
    return {Tr * root, distance * (1.0 + root + Tr) / (1.0 + root), 1.5};
}
inline reduced_temperature reduce(const equations::clausius_II &, double Tr, double distance) {
    return {Tr * Tr, distance * (1.0 + Tr), 2.0};
}
inline reduced_temperature reduce(const cubic_attraction::soave_parameters &p, double Tr, double distance) {
    const double root = std::sqrt(Tr);
    const double s = distance / (1.0 + root); // 1 - sqrt(Tr)
    const double alpha_root = 1.0 + p.fw * s;
    const double inverse = 1.0 / (alpha_root * alpha_root);
    return {Tr * inverse, s * (1.0 + p.fw) * (2.0 + s * (p.fw - 1.0)) * inverse, 1.0 + p.fw * root / alpha_root};
}

template <class Model>
constexpr const saturated_cubic::family &family_of() {
    if constexpr (std::is_same_v<Model, equations::exact_model<equations::peng_robinson>>)
        return saturated_cubic::peng_robinson;
    else if constexpr (std::is_same_v<Model, equations::exact_model<equations::redlich_kwong>> ||
                       std::is_same_v<Model, equations::exact_model<equations::soave_redlich_kwong>>)
        return saturated_cubic::redlich_kwong;
    else
        return saturated_cubic::van_der_waals;
}
/// b of the dimensionless form.
template <class Model>
double width(const Model &p) {
    if constexpr (std::is_base_of_v<equations::clausius_II, Model>)
        return p.b + p.c;
    else
        return p.b;
}

template <class Model>
class cubic_surface {
public:
    static constexpr bool saturates = true;
    /// Whether isotherms above the critical temperature have a state at every v > b.
    static constexpr bool never_ends = !std::is_base_of_v<equations::clausius_II, Model>;

    /// The critical temperature is in T_ref; P_lowest [P_ref] is the pressure below which the saturation line has
    /// underflowed.
    cubic_surface(const Model &model, double critical_temperature, double P_lowest)
        : T_c(critical_temperature), model_(model), width_(width(model)) {
        if constexpr (std::is_base_of_v<equations::clausius_II, Model>)
            if (model.b < 0)
                top_ = -1.0 / model.b;
        if constexpr (std::is_base_of_v<cubic_attraction::soave_parameters, Model>) {
            if (model.fw > 1.0) { // tau = 1 where the root of alpha is -sqrt(T/T_c)
                const double root = (model.fw + 1.0) / (model.fw - 1.0);
                T_loop = T_c * root * root;
            }
        }
        find_end(P_lowest);
    }

    double T_c;
    double P_c = 1.0; ///< the highest pressure of the saturation line
    double T_line = 0;
    bool line_ends = false;
    static constexpr bool has_loops = false; ///< whether isotherms above T_c end at a finite r
    double T_loop = infinite;                ///< above it isotherms have a loop again, and end before it

    class isotherm {
    public:
        isotherm(const cubic_surface &of, double T)
            : isotherm(of, T, reduce(of.model_, T / of.T_c, (of.T_c - T) / of.T_c)) {}

        double P(double r) const {
            const double x = r * width_;
            if (std::abs(one_minus_tau_) < 0.05 && std::abs(x - of_.of().r_c) < 0.3 * of_.of().r_c) {
                // P - 1 = Pi/Pi_c T/T_c - 1
                const double from_critical = of_.Pi_from_critical(x) / of_.of().Pi_c;
                return 1.0 + (from_critical * Tr_ - distance_);
            }
            return of_.Pi(x) * unit_;
        }
        double slope(double r) const { return of_.slope(r * width_) * unit_ * width_; }
        double gas(double P) const { return of_.gas(P / unit_, difference(P)) / width_; }
        double liquid(double P) const { return of_.liquid(P / unit_, difference(P)) / width_; }
        double single(double P) const {
            if (one_minus_tau_ > 0 && distance_ < 0) // the attraction has come back: a loop, and only its gas counts
                return P < this->P(gas_end()) ? gas(P) : infinite;
            return of_.single(P / unit_, difference(P)) / width_;
        }
        double gas_end() const { return of_.gas_spinodal() / width_; }
        double liquid_end() const { return of_.liquid_spinodal() / width_; }
        double top() const { return one_minus_tau_ > 0 && distance_ < 0 ? gas_end() : top_; }
        /// On the gas's side of the inflection, where every stable state below Tc is a gas.
        bool beside_gas(double r) const { return r * width_ < of_.of().r_c; }

    private:
        isotherm(const cubic_surface &of, double T, const reduced_temperature &reduced)
            : of_(family_of<Model>(), reduced.tau, reduced.one_minus_tau), one_minus_tau_(reduced.one_minus_tau),
              Tr_(T / of.T_c), distance_((of.T_c - T) / of.T_c), width_(of.width_), unit_(T / of.width_),
              top_(of.top_) {}
        /// Pi - Pi_c at P.
        double difference(double P) const { return of_.of().Pi_c * (((P - 1.0) + distance_) / Tr_); }

        saturated_cubic::isotherm of_;
        double one_minus_tau_;
        double Tr_;
        double distance_;
        double width_;
        double unit_; ///< P/Pi
        double top_;
    };
    isotherm at(double T) const { return {*this, T}; }

    OSTREL_INLINE phases saturated(double T) const { return saturated_with_slopes(T).at; }
    /// The phases at T, with the slopes d ln r/d ln T.
    struct with_slopes {
        phases at;
        double slope_l;
        double slope_g;
    };
    OSTREL_INLINE with_slopes saturated_with_slopes(double T) const {
        const double Tr = T / T_c;
        const reduced_temperature reduced = reduce(model_, Tr, (T_c - T) / T_c);
        const saturated_cubic::saturated of =
            saturated_cubic::saturation(family_of<Model>(), reduced.tau, reduced.one_minus_tau);
        return {{std::exp(of.log_Pi) * Tr, 1.0 + of.slope * reduced.slope, of.r_l / width_, of.r_g / width_},
                of.slope_l * reduced.slope,
                of.slope_g * reduced.slope};
    }

    double turn(double v) const {
        if constexpr (std::is_base_of_v<cubic_attraction::soave_parameters, Model>) {
            // P = y^2/w - c_a (A - B y)^2/D with y = sqrt(T/T_c), A = 1 + fw, B = fw
            const double w = v - model_.b;
            const double force = -model_.f(v)[0][1] * model_.c_a;
            const double squares = T_c / w - force * model_.fw * model_.fw;
            if (squares < 0 && model_.fw > 0) {
                const double y = -force * (1.0 + model_.fw) * model_.fw / squares;
                return T_c * y * y;
            }
        }
        return infinite;
    }

private:
    void find_end(double P_lowest) {
        // In ln(T) the pressure and the liquid's r fall and rise monotonically.
        const auto beyond = [&](double T) {
            const reduced_temperature reduced = reduce(model_, T / T_c, (T_c - T) / T_c);
            if (!(reduced.tau >= saturated_cubic::lowest_tau))
                return true;
            const phases at_T = saturated(T);
            return !(at_T.P >= P_lowest) || at_T.r_l >= top_;
        };
        double low = 0;
        double high = T_c * (1.0 - 1e-9);
        while (high - low > 2e-16 * high) {
            const double middle = 0.5 * (low + high);
            if (middle <= low || middle >= high)
                break;
            (beyond(middle) ? low : high) = middle;
        }
        T_line = high;
        line_ends = top_ < infinite && saturated(high).P > 2 * P_lowest;
    }

    Model model_;
    double width_;
    double top_ = infinite; ///< r where v would be 0
};

/// Martin-Hou: a table, made with the surface, gives the starts of the searches for the saturation.
class martin_hou_surface {
public:
    static constexpr bool saturates = true;
    static constexpr bool never_ends = false;

    martin_hou_surface(const equations::martin_hou &model, double critical_temperature, double P_lowest);

    double T_c;
    double P_c = 1.0;
    double T_line = 0;
    bool line_ends = true;
    bool has_loops = false;
    static constexpr double T_loop = infinite;

    class isotherm {
    public:
        isotherm(const martin_hou_surface &of, double T)
            : of_(of.model_, T, of.T_c), simple_(of.simple_), without_top_(!of.has_loops && T >= of.T_c) {}
        double P(double r) const { return of_.P(r); }
        double slope(double r) const { return of_.slope(r); }
        double gas(double P) const { return of_.gas(P, simple_); }
        double liquid(double P) const { return of_.liquid(P); }
        double single(double P) const {
            const double unbounded = infinite;
            return of_.gas(P, without_top_ ? unbounded : simple_);
        }
        double gas_end() const { return of_.gas_end(); }
        double liquid_end() const { return of_.liquid_end(); }
        double top() const { return without_top_ ? infinite : of_.top(); }
        bool beside_gas(double r) const { return r < simple_ || 2.0 * r < of_.gas_end() + of_.liquid_end(); }

    private:
        equations::martin_hou_isotherm of_;
        double simple_;
        bool without_top_;
    };
    isotherm at(double T) const { return {*this, T}; }
    phases saturated(double T) const;
    static double turn(double) { return infinite; }

private:
    /// At equal steps of sigma = sqrt(1 - T/T_c) from the critical point to the end of the line.
    struct start {
        double log_P;
        double r_l;
        double r_g;
    };

    equations::martin_hou model_;
    std::vector<start> starts_;
    double sigma_step_ = 0;
    double simple_ = 0; ///< the lowest r of a first inflection from 0.3 to 10 T_c
};

/// The ideal gases never saturate.
template <class Model>
class ideal_surface {
public:
    static constexpr bool saturates = false;

    ideal_surface(const Model &model, double critical_temperature, double)
        : T_c(critical_temperature), repulsion_(model.repulsion()) {}

    double T_c;
    double P_c = 1.0;
    double T_line = 0;
    bool line_ends = false;
    static constexpr bool has_loops = false;
    static constexpr double T_loop = infinite;

    struct isotherm {
        double unit;
        double P(double r) const { return unit * r; }
        double slope(double) const { return unit; }
        double gas(double P_given) const { return P_given / unit; }
        double liquid(double P_given) const { return P_given / unit; }
        double single(double P_given) const { return P_given / unit; }
        static double liquid_end() { return infinite; }
        static double top() { return infinite; }
        static bool beside_gas(double) { return true; }
    };
    isotherm at(double T) const { return {repulsion_ * T}; }
    static double turn(double) { return infinite; }

private:
    double repulsion_;
};

template <class Model>
struct surface_of {
    using type = cubic_surface<Model>;
};
template <>
struct surface_of<equations::exact_model<equations::martin_hou>> {
    using type = martin_hou_surface;
};
template <>
struct surface_of<equations::exact_model<equations::ideal_gas>> {
    using type = ideal_surface<equations::exact_model<equations::ideal_gas>>;
};
template <>
struct surface_of<equations::exact_model<equations::ideal_Z>> {
    using type = ideal_surface<equations::exact_model<equations::ideal_Z>>;
};

} // namespace fluid
