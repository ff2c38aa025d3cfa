! SPDX-License-Identifier: MIT
! Asks through module ostrel_handles for the density that is an input itself, beside module ostrel.
program handle
    use, intrinsic :: iso_c_binding, only: c_double, c_int32_t
    use ostrel, only: getversion
    use ostrel_handles
    implicit none
    type(ostrel_fluid) :: toluene
    integer(c_int32_t) :: version(4)
    real(c_double) :: values(2, 1)

    call getversion(version)
    call toluene%open('toluene', 'model=pr')
    call toluene%evaluate('td', 't,d', [500.0_c_double], [5.0_c_double], values)
    print '(f0.1, a, f0.1, 2a)', values(1, 1), ' K, ', values(2, 1), ' kg/m3, ', toluene%text('model')
    if (any(abs(values(:, 1) - [500, 5]) > 0) .or. version(1) /= 1) error stop 1
end program handle
