// SPDX-License-Identifier: MIT
// The six equations of state with saturation in long double, from their Helmholtz energies by differentiation. Nothing
// here is the library's: tests of handles compare with it.
//
// Given      the constants of a parameter file
// Returned   T [Tc], v [R Tc/Pc], P [Pc], energies [R Tc], entropies [R]; energy and entropy are 0 at the critical
// point
#pragma once

#include <array>
#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace support {

using wide = long double;
static_assert(std::numeric_limits<wide>::digits > std::numeric_limits<double>::digits);
/// For the saturation near the critical point, where nearly all digits of the Gibbs energies cancel.
__extension__ using quad = __float128;

namespace mathematics {
extern "C" quad logq(quad) noexcept;
extern "C" quad log1pq(quad) noexcept;
extern "C" quad expq(quad) noexcept;
extern "C" quad sqrtq(quad) noexcept;

inline wide log_of(wide x) {
    return std::log(x);
}
inline quad log_of(quad x) {
    return logq(x);
}
inline wide log_above_1_of(wide x) {
    return std::log1p(x);
}
inline quad log_above_1_of(quad x) {
    return log1pq(x);
}
inline wide exp_of(wide x) {
    return std::exp(x);
}
inline quad exp_of(quad x) {
    return expq(x);
}
inline wide sqrt_of(wide x) {
    return std::sqrt(x);
}
inline quad sqrt_of(quad x) {
    return sqrtq(x);
}
template <class Real>
Real absolute(Real x) {
    return x < 0 ? -x : x;
}
template <class Real>
Real cube_root_of(Real x) {
    Real y = std::cbrt(static_cast<wide>(x));
    for (int step = 0; step < 2; ++step)
        y -= (y * y * y - x) / (3 * y * y);
    return y;
}
/// A decimal number with all digits of the type.
template <class Real>
Real decimal(const char *text) {
    Real digits = 0, scale = 1;
    bool behind = false;
    for (; *text != 0; ++text) {
        if (*text == '.') {
            behind = true;
            continue;
        }
        digits = digits * 10 + (*text - '0');
        scale *= behind ? 10 : 1;
    }
    return digits / scale;
}
} // namespace mathematics
using namespace mathematics;

/// The constants of a parameter file, as far as states depend on them.
struct wide_fluid {
    wide M = 0, Tc = 0, Pc = 0, Zc = 0, Tb = 0; // kg/kmol, K, Pa, -, K
    int form = 0;
    wide cv_0 = 0;                      // R
    std::vector<wide> a, n;             // form 3, R and exponents, T in K
    std::vector<wide> characteristic{}; // form 5, K

    explicit wide_fluid(const std::string &path) {
        std::ifstream in(path);
        std::string line;
        const auto words = [&] {
            if (!std::getline(in, line))
                throw std::runtime_error(path + " is too short");
            std::istringstream text(line);
            return std::vector<std::string>(std::istream_iterator<std::string>(text), {});
        };
        const auto number = [&] { return static_cast<wide>(std::stod(words().at(0))); };
        const auto list = [&](std::size_t count) {
            std::vector<wide> result;
            for (const std::string &word : words()) {
                const std::size_t star = word.find('*');
                const std::size_t times = star == std::string::npos ? 1 : std::stoul(word);
                for (std::size_t k = 0; k < times && result.size() < count; ++k)
                    result.push_back(std::stod(star == std::string::npos ? word : word.substr(star + 1)));
                if (result.size() == count)
                    return result;
            }
            throw std::runtime_error(path + " has too short a list");
        };
        for (int k = 0; k < 4; ++k)
            words();
        M = number();
        if (words().at(0) != "T")
            throw std::runtime_error(path + " has no critical data");
        Tc = number();
        Pc = static_cast<double>(number()) * 101325.0; // rounded, as a double
        Zc = number();
        Tb = number();
        number();
        number();
        if (number() == 8)
            number();
        if (words().at(0) != "F")
            throw std::runtime_error(path + " has reduced heat capacities");
        form = static_cast<int>(number());
        const std::size_t count = form == 3 ? static_cast<std::size_t>(number()) : 0;
        cv_0 = number() / R();
        if (form == 3) {
            a = list(count);
            n = list(count);
            for (wide &one : a)
                one /= R();
        } else if (form == 5) {
            const auto modes = static_cast<std::size_t>(number());
            if (modes > 0)
                characteristic = list(modes);
        } else if (form != 1) {
            throw std::runtime_error(path + " has another heat capacity");
        }
    }

    wide R() const { return 8314 / M; } ///< J/(kg K)
    // Of the ideal gas at T [K]: cv, the integrals of cv [K] and of cv/T, and the size of their terms.
    struct heat {
        wide cv, energy, entropy, energy_size, entropy_size;
    };
    heat ideal(wide T) const {
        heat h = {cv_0, cv_0 * T, cv_0 * std::log(T), cv_0 * T, cv_0 * std::abs(std::log(T))};
        const auto add = [&](wide cv, wide energy, wide entropy) {
            h.cv += cv;
            h.energy += energy;
            h.entropy += entropy;
            h.energy_size += std::abs(energy);
            h.entropy_size += std::abs(entropy);
        };
        for (std::size_t i = 0; i < a.size(); ++i) {
            const wide term = a[i] * std::pow(T, n[i]);
            add(term, term * T / (n[i] + 1), term / n[i]);
        }
        for (const wide Tv : characteristic) {
            const wide x = Tv / T, less = std::expm1(x);
            add(x * x * (less + 1) / (less * less), Tv / less, x / less - std::log1p(-std::exp(-x)));
        }
        return h;
    }
};

/// A function of T and v with its first and second derivatives.
template <class Real>
struct jet {
    Real x = 0, T = 0, v = 0, TT = 0, Tv = 0, vv = 0;
    jet(Real value = 0) : x(value) {}
    jet(Real value, Real by_T, Real by_v, Real by_TT, Real by_Tv, Real by_vv)
        : x(value), T(by_T), v(by_v), TT(by_TT), Tv(by_Tv), vv(by_vv) {}

    /// f of this one, with f' and f''.
    jet chained(Real f, Real slope, Real bend) const {
        return {
            f, slope * T, slope * v, slope * TT + bend * T * T, slope * Tv + bend * T * v, slope * vv + bend * v * v};
    }
    friend jet operator+(const jet &a, const jet &b) {
        return {a.x + b.x, a.T + b.T, a.v + b.v, a.TT + b.TT, a.Tv + b.Tv, a.vv + b.vv};
    }
    friend jet operator-(const jet &a, const jet &b) { return a + b * jet(-1); }
    friend jet operator*(const jet &a, const jet &b) {
        return {a.x * b.x,
                a.x * b.T + a.T * b.x,
                a.x * b.v + a.v * b.x,
                a.x * b.TT + 2 * a.T * b.T + a.TT * b.x,
                a.x * b.Tv + a.T * b.v + a.v * b.T + a.Tv * b.x,
                a.x * b.vv + 2 * a.v * b.v + a.vv * b.x};
    }
    friend jet operator/(const jet &a, const jet &b) {
        return a * b.chained(1 / b.x, -1 / (b.x * b.x), 2 / (b.x * b.x * b.x));
    }
    friend jet sqrt(const jet &a) {
        const Real root = sqrt_of(a.x);
        return a.chained(root, 1 / (2 * root), -1 / (4 * root * a.x));
    }
    friend jet exp(const jet &a) {
        const Real e = exp_of(a.x);
        return a.chained(e, e, e);
    }
    friend jet log(const jet &a) { return a.chained(log_of(a.x), 1 / a.x, -1 / (a.x * a.x)); }
    /// ln(1 + a)
    friend jet log_above_1(const jet &a) {
        const Real y = 1 + a.x;
        return a.chained(log_above_1_of(a.x), 1 / y, -1 / (y * y));
    }
};

/// A state with everything that first derivatives need. A mixture is a state too: P_v = 0.
struct wide_state {
    wide T = 0, v = 0, P = 0, P_T = 0, P_v = 0, u = 0, s = 0, cv = 0, u_v = 0;
    wide u_size = 0, s_size = 0; ///< sums of the absolute terms of u and s
    wide T_size = 0;             ///< a change of T by its last place of this size is the rounding of the equation
    wide q = std::numeric_limits<wide>::quiet_NaN();
    wide q_T = 0, q_v = 0;

    wide h() const { return u + P * v; }
};

/// The equation alone.
template <class Real>
class equation {
public:
    using jets = jet<Real>;

    /// `model` is the word of the option.
    equation(const wide_fluid &fluid, const std::string &model) : model_(model) {
        const Real root = cube_root_of<Real>(2) - 1;
        const Real two = sqrt_of(Real(2));
        Zc = fluid.Zc;
        if (model == "vdw") {
            Zc = Real(3) / 8;
            b = Real(1) / 8;
            a_ = Real(27) / 64;
        } else if (model == "rk" || model == "srk") {
            Zc = Real(1) / 3;
            b = root / 3;
            a_ = 1 / (9 * root);
        } else if (model == "pr") {
            const Real x = (-1 + cube_root_of(6 * two + 8) - cube_root_of(6 * two - 8)) / 3;
            b = x / (x + 3);
            Zc = 1 / (x + 3);
            a_ = 8 * (5 * x + 1) / (49 - 37 * x);
        } else if (model == "cii") {
            b = Zc - Real(1) / 4;
            c_ = Real(3) / 8 - Zc;
            a_ = Real(27) / 64;
        } else {
            make_martin_hou(fluid);
        }
        const Real theta = Real(fluid.Tb) / fluid.Tc;
        const Real w = 3 * log_of(Real(fluid.Pc) / 101325) / log_of(Real(10)) * theta / (7 * (1 - theta)) - 1;
        const auto of = [&](const char *constant, const char *first, const char *second) {
            return decimal<Real>(constant) + decimal<Real>(first) * w - decimal<Real>(second) * w * w;
        };
        m_ = model == "srk" ? of("0.48", "1.574", "0.176") : of("0.37464", "1.54226", "0.26992");
    }

    Real Zc = 0; ///< of the surface
    Real b = 0;  ///< covolume

    /// The Helmholtz energy without the part of the ideal gas that depends on T only.
    jets helmholtz(Real temperature, Real volume) const {
        const jets T(temperature, 1, 0, 0, 0, 0), v(volume, 0, 1, 0, 0, 0);
        const jets repulsion = T * jets(-1) * log(v - jets(b));
        if (model_ == "vdw")
            return repulsion - jets(a_) / v;
        if (model_ == "rk")
            return repulsion - jets(a_ / b) / sqrt(T) * log_above_1(jets(b) / v);
        if (model_ == "srk")
            return repulsion - jets(a_ / b) * alpha(T) * log_above_1(jets(b) / v);
        if (model_ == "pr") {
            const Real two = sqrt_of(Real(2)), width = 2 * two * b;
            return repulsion - jets(a_ / width) * alpha(T) * log_above_1(jets(width) / (v + jets((1 - two) * b)));
        }
        if (model_ == "cii")
            return repulsion - jets(a_) / (T * (v + jets(c_)));
        const jets E = exp(jets(-k_) * T), inverse = jets(1) / (v * jets(1 / Zc) - jets(b / Zc));
        jets sum = 0, power = inverse;
        for (int i = 0; i < 4; ++i) {
            sum = sum + (jets(A_[static_cast<std::size_t>(i)]) + jets(B_[static_cast<std::size_t>(i)]) * T +
                         jets(C_[static_cast<std::size_t>(i)]) * E) *
                            power * jets(Real(1) / (i + 1));
            power = power * inverse;
        }
        return repulsion + sum * jets(Zc);
    }

    /// By how much T would have to change to move P like the rounding of the coefficients does, in units of that
    /// rounding. Only Martin and Hou's are sums that cancel.
    Real coefficients_in_T(Real T, Real v, Real P_T) const {
        if (model_ != "mh")
            return 0;
        const Real inverse = Zc / (v - b), E = exp_of(-k_ * T);
        Real sum = Real(T) * inverse / Zc, power = inverse;
        for (int i = 0; i < 4; ++i) {
            power *= inverse;
            sum += (absolute(A_[static_cast<std::size_t>(i)]) + absolute(B_[static_cast<std::size_t>(i)] * T) +
                    absolute(C_[static_cast<std::size_t>(i)] * E)) *
                   power;
        }
        return sum / absolute(P_T);
    }

    /// Moves the volumes at T to equal pressures and equal Gibbs energies by Newton's method; whether it has ended.
    bool equilibrium(Real T, Real &v_l, Real &v_g) const {
        Real last = 1e30L;
        for (int step = 0; step < 60; ++step) {
            const jets l = helmholtz(T, v_l), g = helmholtz(T, v_g);
            const Real dP = g.v - l.v;
            const Real dg = l.x - g.x - g.v * (v_l - v_g);
            // d(dP) = P_l' dv_l - P_g' dv_g;  d(dg) = (P_g - P_l) dv_l + P_g' (v_l - v_g) dv_g
            const Real A = -l.vv, B = g.vv, C = l.v - g.v, D = -g.vv * (v_l - v_g);
            const Real det = A * D - B * C;
            Real change_l = -(dP * D - B * dg) / det, change_g = -(A * dg - C * dP) / det;
            const Real limit = Real(3) / 10;
            const Real size_l = absolute(change_l) / (v_l - b), size_g = absolute(change_g) / v_g;
            const Real size = size_l > size_g ? size_l : size_g;
            if (!(size < 1000))
                return false;
            if (size > limit) {
                change_l *= limit / size;
                change_g *= limit / size;
            }
            v_l += change_l;
            v_g += change_g;
            if (size == 0 || (size < 1e-9L && size >= last / 2))
                return v_l < v_g;
            last = size;
        }
        return false;
    }

private:
    jets alpha(const jets &T) const {
        const jets root = jets(1 + m_) - jets(m_) * sqrt(T);
        return root * root;
    }
    // The nine conditions of Martin and Hou (AIChE J. 1 (1955) 142; 5 (1959) 159) as a linear system, volumes in vc.
    void make_martin_hou(const wide_fluid &fluid) {
        const Real Tc = fluid.Tc, z = 1 / Zc;
        const Real b_v = 1 - (decimal<Real>("20.533") - decimal<Real>("31.883") * Zc) / 15, d = 1 - b_v;
        k_ = decimal<Real>("5.475");
        const Real m = decimal<Real>("9.654921") / Tc + decimal<Real>("2.505308") - decimal<Real>("0.0006492324") * Tc;
        const Real tau = decimal<Real>("0.9869") - decimal<Real>("0.6751") * Zc;
        const Real theta = fluid.Tb / Tc;
        const Real X = 36 / theta + 42 * log_of(theta) - 35 - theta * theta * theta * theta * theta * theta;
        const Real slope = (decimal<Real>("0.315") * X - log_of(101325 / Real(fluid.Pc))) /
                           (decimal<Real>("0.0838") * X - log_of(theta));
        const Real E = exp_of(-k_), h = decimal<Real>("0.5") - b_v;
        enum { A1, A2, A3, B1, B2, B4, C1, C2, C4, side, columns };
        std::array<std::array<Real, columns>, 9> rows{};
        rows[0][A1] = rows[0][B1] = 1, rows[0][C1] = E, rows[0][side] = 9 * d * d - decimal<Real>("3.8") * z * d;
        rows[1][A2] = rows[1][B2] = 1, rows[1][C2] = E,
        rows[1][side] = decimal<Real>("5.4") * z * d * d - 17 * d * d * d;
        rows[2][A3] = 1, rows[2][side] = 12 * d * d * d * d - decimal<Real>("3.4") * z * d * d * d;
        rows[3][B4] = 1, rows[3][C4] = E,
        rows[3][side] = decimal<Real>("0.8") * z * d * d * d * d - 3 * d * d * d * d * d;
        rows[4][A1] = 1, rows[4][B1] = m, rows[4][C1] = exp_of(-k_ * m), rows[4][side] = -b_v * z * m;
        rows[5][A1] = 1, rows[5][B1] = tau, rows[5][C1] = exp_of(-k_ * tau);
        rows[5][side] = -b_v * z * tau - (1 - Zc) * z * z * tau * tau;
        rows[6][C1] = d * d * d, rows[6][C2] = d * d, rows[6][C4] = 1;
        rows[7][C1] = h * h * h, rows[7][C2] = h * h, rows[7][C4] = 1;
        rows[8][B1] = 1 / (d * d), rows[8][B2] = 1 / (d * d * d), rows[8][B4] = 1 / (d * d * d * d * d);
        rows[8][side] = slope - z / d;
        for (std::size_t k = 0; k < 9; ++k) { // Gauss and Jordan
            std::size_t best = k;
            for (std::size_t i = k; i < 9; ++i)
                if (absolute(rows[i][k]) > absolute(rows[best][k]))
                    best = i;
            std::swap(rows[k], rows[best]);
            for (std::size_t i = 0; i < 9; ++i) {
                const Real factor = i == k ? 0 : rows[i][k] / rows[k][k];
                for (std::size_t j = 0; j < columns; ++j)
                    rows[i][j] -= factor * rows[k][j];
            }
        }
        const auto x = [&](std::size_t k) { return rows[k][side] / rows[k][k]; };
        A_ = {x(A1), x(A2), x(A3), 0};
        B_ = {x(B1), x(B2), 0, x(B4)};
        C_ = {x(C1), x(C2), 0, x(C4)};
        b = b_v * Zc;
    }

    std::string model_;
    Real a_ = 0, c_ = 0, m_ = 0, k_ = 0;
    std::array<Real, 4> A_{}, B_{}, C_{};
};

class wide_surface : public equation<wide> {
public:
    wide_surface(const wide_fluid &fluid, const std::string &model)
        : equation(fluid, model), fluid_(fluid), near_critical_(fluid, model) {
        const wide_state critical = at(1, Zc);
        u_0_ = critical.u;
        s_0_ = critical.s;
        u_0_size_ = critical.u_size;
        s_0_size_ = critical.s_size;
    }

    const wide_fluid &fluid() const { return fluid_; }

    /// The surface at T and v, without regard to phases.
    wide_state at(wide T, wide v) const {
        const jets a = helmholtz(T, v);
        const auto ideal = fluid_.ideal(T * fluid_.Tc);
        wide_state z;
        z.T = T;
        z.v = v;
        z.P = -a.v;
        z.P_T = -a.Tv;
        z.P_v = -a.vv;
        z.s = -a.T + ideal.entropy - s_0_;
        z.u = a.x - T * a.T + ideal.energy / fluid_.Tc - u_0_;
        z.cv = ideal.cv - T * a.TT;
        z.u_v = T * z.P_T - z.P;
        z.T_size = coefficients_in_T(T, v, z.P_T);
        const wide attraction = a.x + T * std::log(v - b); // of a
        z.u_size = std::abs(a.x - T * a.T) + ideal.energy_size / fluid_.Tc + u_0_size_;
        z.s_size = std::abs(std::log(v - b)) + std::abs(attraction / T) + ideal.entropy_size + s_0_size_;
        return z;
    }

    struct line {
        bool found = false;
        wide_state liquid, vapor;
        wide P_T = 0;
    };
    /// Both saturated phases at T, from a start.
    line saturated(wide T, wide v_l, wide v_g) const {
        line result;
        if (T > 0.9L) {
            quad l = v_l, g = v_g;
            result.found = near_critical_.equilibrium(T, l, g);
            v_l = static_cast<wide>(l);
            v_g = static_cast<wide>(g);
        } else {
            result.found = equilibrium(T, v_l, v_g);
        }
        if (!result.found)
            return result;
        result.liquid = at(T, v_l);
        result.vapor = at(T, v_g);
        result.liquid.P = result.vapor.P;
        result.found = result.liquid.P_v < 0 && result.vapor.P_v < 0;
        result.P_T = (result.vapor.s - result.liquid.s) / (v_g - v_l);
        return result;
    }
    /// The mixture of both phases with the volume v.
    static wide_state mixture(const line &of, wide v) {
        const wide_state &l = of.liquid, &g = of.vapor;
        wide_state z;
        z.T = l.T;
        z.v = v;
        z.P = g.P;
        z.P_T = of.P_T;
        z.q = (v - l.v) / (g.v - l.v);
        z.u = l.u + z.q * (g.u - l.u);
        z.s = l.s + z.q * (g.s - l.s);
        z.u_v = z.T * z.P_T - z.P;
        z.u_size = l.u_size + z.q * g.u_size;
        z.s_size = l.s_size + z.q * g.s_size;
        z.T_size = std::max(l.T_size, g.T_size);
        const auto along = [&](const wide_state &x, wide &v_T) { // heat capacity at constant volume of the whole
            v_T = (of.P_T - x.P_T) / x.P_v;
            return x.cv - x.T * v_T * v_T * x.P_v;
        };
        wide l_T = 0, g_T = 0;
        const wide cv_l = along(l, l_T), cv_g = along(g, g_T);
        z.cv = (1 - z.q) * cv_l + z.q * cv_g;
        z.q_v = 1 / (g.v - l.v);
        z.q_T = -(l_T + z.q * (g_T - l_T)) * z.q_v;
        return z;
    }

private:
    wide_fluid fluid_;
    equation<quad> near_critical_;
    wide u_0_ = 0, s_0_ = 0, u_0_size_ = 0, s_0_size_ = 0;
};

} // namespace support
