// SPDX-License-Identifier: MIT
// The states of one fluid: what handles compute, without texts. Everything here is immutable once made, so that any
// number of threads may use one core at the same time.
//
// Given      SI values
// Returned   SI values and the statuses of ostrel_fluid.h; a failed state's values are NaN with the bits
//            0x7ff8000000000000
#pragma once

#include "Equations/fluid_parameters.h"
#include "ostrel_fluid.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace fluid {

/// Which states an equation may take.
enum class allowed_states : std::uint8_t { stable, metastable_liquid, metastable_vapor, surface };
/// Where energy and entropy are zero.
enum class zero_point : std::uint8_t { critical, nbp, iir, ashrae };

struct settings {
    allowed_states states = allowed_states::stable;
    bool translated_volume = false;
    zero_point reference = zero_point::critical;
};

/// The quantities of a state that inputs and derivatives are made of.
enum class letter : std::uint8_t { t, p, v, d, h, s, u, q };

/// Two inputs, in the canonical order of `input_pairs`. The number of a row is `inputs` of an ostrel_state.
struct input_pair {
    letter first;
    letter second;
};
inline constexpr input_pair input_pairs[] = {
    {letter::t, letter::v}, {letter::t, letter::d}, {letter::p, letter::t}, {letter::p, letter::v},
    {letter::p, letter::d}, {letter::p, letter::h}, {letter::p, letter::s}, {letter::p, letter::q},
    {letter::t, letter::s}, {letter::t, letter::q}, {letter::v, letter::h}, {letter::v, letter::s},
    {letter::v, letter::u}, {letter::d, letter::h}, {letter::d, letter::s}, {letter::d, letter::u},
    {letter::h, letter::s}, {letter::p, letter::u}, {letter::s, letter::u}, {letter::t, letter::h},
    {letter::t, letter::u},
};

/// What can be asked of a state.
enum class property : std::uint8_t {
    t,
    p,
    v,
    d,
    h,
    s,
    u,
    q,
    cv,
    dp_dt,
    dp_dv,
    d2p_dt2,
    d2p_dv2,
    d2p_dtdv,
    dcv_dt,
    eta,
    lambda,
    g,
    a,
    cp,
    c,
    z,
    fundamental,
    cp_cv,
    isentropic_exponent,
    kappa_t,
    beta_p,
    jt,
    prandtl,
    tsat,
    psat,
    phase,
    derivative ///< dX/dY at constant Z
};

struct output {
    property what = property::t;
    letter X = letter::t; ///< for a derivative
    letter Y = letter::t;
    letter Z = letter::t;
};

/// The constants of a handle that follow from its equation [SI]; NaN where there are none.
struct core_constants {
    double t_crit, p_crit, v_crit, z_crit, t_ref, p_ref, v_ref, v_min, t_sat_min;
};

class core {
public:
    virtual ~core() = default;

    /// Makes the states of a fluid. `parameters` are as a file gives them, with the model that is wanted, which must be
    /// one that has translated volumes if they are wanted, and not yet completed. Returns none if they cannot be
    /// completed or a reference state does not exist; `why` then has a sentence.
    static std::unique_ptr<const core> make(const equations::fluid_parameters &parameters, const settings &wanted,
                                            std::string &why);

    virtual const core_constants &constants() const = 0;

    // With allowed_states::surface only t with v or d can be solved from, and there is no saturation.

    /// Solves `count` states. `pair` is a row of input_pairs and says what `first` and `second` are, unless `swapped`,
    /// which says that the caller gave the letters in the other order; first and second of the states are in the
    /// caller's order then. Returns OSTREL_OK or the first status of a state that is not.
    virtual int solve(std::size_t pair, bool swapped, std::size_t count, const double *first, const double *second,
                      ostrel_state *states) const = 0;
    /// The outputs of solved states, values[state * outputs + output].
    virtual int outputs(std::span<const output> wanted, std::size_t count, const ostrel_state *states, double *values,
                        int *status) const = 0;
    /// Both, without keeping the states; the same bits.
    virtual int evaluate(std::size_t pair, bool swapped, std::span<const output> wanted, std::size_t count,
                         const double *first, const double *second, double *values, int *status) const = 0;
    /// The saturated phases at temperatures or, with `at_pressure`, at pressures. liquid and vapor may be null.
    virtual int saturation(bool at_pressure, std::span<const output> wanted, std::size_t count, const double *values_in,
                           double *liquid, double *vapor, int *status) const = 0;
};

} // namespace fluid
