// SPDX-License-Identifier: MIT
// Viscosities and conductivities by scripts/published_transport.py, which shares nothing with the library.
#pragma once

namespace support {

struct transport_state {
    const char *name;
    double T_r;
    double density;      ///< in units of the fluid's own critical density
    double viscosity;    ///< Pa s
    double conductivity; ///< W/(m K)
};
inline constexpr transport_state published_transport[] = {
    {"toluene", 0.7, 0.001, 9.368402373e-06, 1.920877161e-02}, {"toluene", 1.2, 1.5, 5.259013329e-05, 8.424963821e-02},
    {"ethanol", 0.7, 0.001, 1.029291738e-05, 1.761908465e-02}, {"ethanol", 1.2, 1.5, 4.472349380e-05, 1.482531019e-01},
    {"r134a", 0.7, 0.001, 1.110835232e-05, 1.074022191e-02},   {"r134a", 1.2, 1.5, 5.197160026e-05, 1.093213948e-01}};

} // namespace support
