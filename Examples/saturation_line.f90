! SPDX-License-Identifier: MIT
! Prints the saturation line of a fluid, through module ostrel.
!
!   saturation_line [FLUID]
program saturation_line
    use, intrinsic :: iso_fortran_env, only: real64
    use ostrel
    implicit none

    integer, parameter :: rows = 8
    character(256) :: message
    character(8) :: fluid
    integer :: version(4), i
    real(real64) :: t, p, d_liquid, d_vapor, evaporation, t_reduced, v_reduced

    call getversion(version)
    print '(a, i0, 3(".", i0))', 'Interface version ', version
    fluid = 'water'
    if (command_argument_count() > 0) call get_command_argument(1, fluid)
    call look_for(fluid)
    t = critical_temperature()
    print '(3a, f0.3, a)', 'Saturation of ', trim(fluid), ', critical at ', t, ' K'
    print '(a)', '         t        p_sat    d_liquid     d_vapor   evaporation', &
        '         K          kPa       kg/m3       kg/m3         kJ/kg'
    do i = 1, rows
        t = critical_temperature()*(0.75_real64 + 0.03_real64*(i - 1))
        p = property('tq', t, 1.0_real64, 'p')
        d_liquid = property('tq', t, 0.0_real64, 'd')
        d_vapor = property('tq', t, 1.0_real64, 'd')
        ! The request for the liquid's enthalpy gives its density, since at q = 0 only t, p, v and d are served.
        evaporation = property('tq', t, 1.0_real64, 'h') - property('td', t, d_liquid, 'h')
        print '(f10.3, f13.3, f12.4, f12.5, f14.3)', t, p*1e-3_real64, d_liquid, d_vapor, evaporation*1e-3_real64
    end do

    ! The state in the library's own reduced variables, which are 1/Zc and 1 at the critical point.
    call get_tv('pt', p, t + 20, t_reduced, v_reduced)
    print '(a, 2f8.3)', '20 K above the last point, reduced T and v:', t_reduced, v_reduced

    ! The text tells that a request has failed; the value alone does not.
    p = ostrel_prop('nosuch', 'pt', 1.0e5_real64, 300.0_real64, 'd', message)
    print '(a, f0.1, 2a)', 'An unknown fluid: ', p, ', ', trim(message)

contains

    subroutine look_for(name)
        character(*), intent(in) :: name
        character(ostrel_name_len), allocatable :: names(:)
        call ostrel_fluids(names)
        if (any(names == name)) return
        print '(*(a, 1x))', 'Not there; the fluids are', (trim(names(i)), i=1, size(names))
        stop 1
    end subroutine look_for

    function critical_temperature() result(t_crit)
        real(real64) :: t_crit
        t_crit = ostrel_info(fluid, 't_crit', message)
        call want_success('t_crit')
    end function critical_temperature

    function property(pair, first, second, output) result(value)
        character(*), intent(in) :: pair, output
        real(real64), intent(in) :: first, second
        real(real64) :: value
        value = ostrel_prop(fluid, pair, first, second, output, message)
        call want_success(pair//' -> '//output)
    end function property

    subroutine want_success(what)
        character(*), intent(in) :: what
        if (succeeded(message)) return
        print '(3a)', what, ': ', trim(message)
        stop 1
    end subroutine want_success

end program saturation_line
