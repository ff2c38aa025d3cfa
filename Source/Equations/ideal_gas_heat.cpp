// SPDX-License-Identifier: MIT
#include "Equations/ideal_gas_heat.h"

#include <limits>

namespace ideal_gas_heat {

namespace {

constexpr double no_upper_bound = std::numeric_limits<double>::max();

/// The number of elements for a count from a file; a negative count means none.
std::size_t length(std::int32_t count) {
    return static_cast<std::size_t>(std::max(count, 0));
}

bool read_count(records::record_reader &in, std::string_view field, std::int32_t &count) {
    return in.read({{field, count}}) && in.limit_count(field, count);
}

void read_polynomial(records::record_reader &in, heat_capacity &h) {
    auto N = static_cast<std::int32_t>(h.a_i.size());
    if (!read_count(in, "N", N) || !in.read({{"cv_0", h.cv_0}}))
        return;
    h.a_i.assign(length(N), 0.0);
    h.n_i.assign(length(N), 0.0);
    in.read_list("a_i", std::span(h.a_i));
    in.read_list("n_i", std::span(h.n_i));
}

/// Gives every array its new length before the first value is read, so that the heat capacity can be evaluated even if
/// the section is incomplete.
void allocate_intervals(heat_capacity &h, std::size_t K) {
    h.T_k.assign(K + 1, 0.0);
    h.T_k[K] = no_upper_bound;
    h.cv_0_k.assign(K, 0.0);
    h.n_k.assign(K, 0);
    h.phi0_k.assign(K, 0.0);
    h.psi0_k.assign(K, 0.0);
    h.terms = 0;
    h.a_ik.clear();
    h.n_ik.clear();
}

void read_piecewise(records::record_reader &in, heat_capacity &h) {
    auto count = static_cast<std::int32_t>(h.cv_0_k.size());
    if (!read_count(in, "K", count))
        return;
    const std::size_t K = length(count);
    allocate_intervals(h, K);
    in.read_list("T_k", std::span(h.T_k).first(K));
    in.read_list("cv_0_k", std::span(h.cv_0_k));
    if (!in.read_list("n_k", std::span(h.n_k)))
        return;
    std::int32_t M = 0;
    for (const std::int32_t n : h.n_k)
        M = std::max(M, n);
    if (!in.limit_count("n_k", M) || !in.limit_count("K times the largest n_k", std::int64_t{M} * count))
        return;
    h.terms = length(M);
    h.a_ik.assign(K * h.terms, 0.0);
    h.n_ik.assign(K * h.terms, 0.0);
    for (std::size_t k = 0; k < K; ++k) {
        in.read_list("a_ik", std::span(h.a_ik).subspan(k * h.terms, length(h.n_k[k])));
        in.read_list("n_ik", std::span(h.n_ik).subspan(k * h.terms, length(h.n_k[k])));
    }
}

void read_einstein(records::record_reader &in, heat_capacity &h) {
    auto NV = static_cast<std::int32_t>(h.Tv.size());
    if (!in.read({{"cv_0", h.cv_0}}) || !read_count(in, "NV", NV))
        return;
    h.Tv.assign(length(NV), 0.0);
    in.read_list("Tv", std::span(h.Tv));
}

std::int32_t count_of(const auto &values) {
    return static_cast<std::int32_t>(values.size());
}

void scale(std::span<double> values, double factor) {
    for (double &value : values)
        value *= factor;
}

void make_dimensional(heat_capacity &h) {
    switch (h.function_type) {
    case power_law:
        h.cv_oo_Tc *= h.Rgas;
        break;
    case constant:
        h.cv_0 *= h.Rgas;
        break;
    case polynomial:
        h.cv_0 *= h.Rgas;
        scale(h.a_i, h.Rgas);
        break;
    case piecewise:
        scale(h.cv_0_k, h.Rgas);
        scale(h.T_k, h.T_ref);
        scale(h.a_ik, h.Rgas);
        break;
    case einstein:
        h.cv_0 *= h.Rgas;
        scale(h.Tv, h.T_ref);
        break;
    default:
        break;
    }
}

/// Shifts phi and psi of each interval so that they meet those of the interval below at the common bound.
void join_intervals(heat_capacity &h) {
    const std::size_t K = h.cv_0_k.size();
    h.phi0_k.assign(K, 0.0);
    h.psi0_k.assign(K, 0.0);
    for (std::size_t k = 1; k < K; ++k) {
        const double bound = h.T_k[k];
        const caloric<double> below = interval_terms(h, k - 1).at(bound);
        const caloric<double> above = interval_terms(h, k).at(bound);
        h.phi0_k[k] = h.phi0_k[k - 1] + below.phi - above.phi;
        h.psi0_k[k] = h.psi0_k[k - 1] + below.psi - above.psi;
    }
}

} // namespace

void count_equal_terms(heat_capacity &h) {
    std::vector<double> different;
    h.counts.clear();
    for (const double Tv : h.Tv) {
        if (different.empty() || different.back() != Tv) {
            different.push_back(Tv);
            h.counts.push_back(0);
        }
        ++h.counts.back();
    }
    h.Tv = different;
}

void read(records::record_reader &in, heat_capacity &h) {
    in.read({{"coeff_adim", h.coeff_adim}});
    if (!in.read({{"function_type", h.function_type}}))
        return;
    switch (h.function_type) {
    case constant:
        in.read({{"cv_0", h.cv_0}});
        break;
    case power_law:
        in.read({{"cv_oo_Tc", h.cv_oo_Tc}, {"np", h.np}});
        break;
    case polynomial:
        read_polynomial(in, h);
        break;
    case piecewise:
        read_piecewise(in, h);
        break;
    case einstein:
        read_einstein(in, h);
        break;
    default:
        break;
    }
}

void write(records::record_writer &out, const heat_capacity &h) {
    const auto list = [&](const auto &values) { out.record_list(std::span(values)); };
    out.record({h.coeff_adim});
    out.record({h.function_type});
    switch (h.function_type) {
    case constant:
        out.record({h.cv_0});
        break;
    case power_law:
        out.record({h.cv_oo_Tc, h.np});
        break;
    case polynomial:
        out.record({count_of(h.a_i)});
        out.record({h.cv_0});
        list(h.a_i);
        list(h.n_i);
        break;
    case piecewise: {
        const std::size_t K = h.cv_0_k.size();
        out.record({count_of(h.cv_0_k)});
        out.record_list(std::span(h.T_k).first(K));
        list(h.cv_0_k);
        list(h.n_k);
        for (std::size_t k = 0; k < K; ++k) {
            const powers terms = interval_terms(h, k);
            out.record_list(std::span(terms.coefficient, terms.count));
            out.record_list(std::span(terms.exponent, terms.count));
        }
        break;
    }
    case einstein:
        out.record({h.cv_0});
        out.record({count_of(h.Tv)});
        list(h.Tv);
        break;
    default:
        break;
    }
}

void initialise(heat_capacity &h, equations::gas_constants &fluid, records::error_text &message) {
    h.T_ref = fluid.T_ref;
    h.P_ref = fluid.P_ref;
    h.v_ref = fluid.v_ref;
    h.Rgas = fluid.R;
    if (h.function_type == power_law) {
        if (!fluid.vapor) {
            report_not_a_vapor(message, fluid, "Dense gas power law is not applicable. ",
                               "In init_ideal_specific_heat.");
            return;
        }
        h.Tc = fluid.Tc;
    }
    if (h.coeff_adim)
        make_dimensional(h);
    if (h.function_type == piecewise)
        join_intervals(h);
    fluid.cv0_ref = cv(h, fluid.vapor ? fluid.Tc : fluid.T_ref);
    fluid.cp0_ref = fluid.cv0_ref + h.Rgas;
}

} // namespace ideal_gas_heat
