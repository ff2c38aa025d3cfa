! SPDX-License-Identifier: MIT
! Expands toluene vapor in a turbine from 1 MPa and 280 C to several outlet pressures, with 80 % efficiency.
! The entry points are external procedures without interfaces, as older programs declare them: the program passes the
! texts, and the compiler adds their lengths.
program turbine
    use, intrinsic :: iso_fortran_env, only: real64
    implicit none

    real(real64), external :: ostrel_prop
    real(real64), parameter :: p_in = 1.0e6_real64, t_in = 553.15_real64        ! Pa, K
    real(real64), parameter :: p_out(5) = [5.0e5_real64, 2.0e5_real64, 1.0e5_real64, 5.0e4_real64, 2.0e4_real64] ! Pa
    real(real64), parameter :: efficiency = 0.8_real64
    real(real64) :: h_in, s_in, d_in, h_ideal, h_out, t_out, d_out
    integer :: i

    h_in = property('pt', p_in, t_in, 'h')
    s_in = property('pt', p_in, t_in, 's')
    d_in = property('pt', p_in, t_in, 'd')
    print '(3(a, f0.2), a)', 'Toluene at ', p_in*1e-3_real64, ' kPa, ', t_in, ' K, ', d_in, ' kg/m3'
    print '(a)', '     p_out  work, ideal  work, real     t_out       d_out   d_in/d_out', &
        '       kPa        kJ/kg       kJ/kg         K       kg/m3'
    do i = 1, size(p_out)
        h_ideal = property('ps', p_out(i), s_in, 'h')
        h_out = h_in - efficiency*(h_in - h_ideal)
        t_out = property('ph', p_out(i), h_out, 't')
        d_out = property('ph', p_out(i), h_out, 'd')
        print '(f10.1, 2f12.3, f12.3, f12.5, f12.4)', p_out(i)*1e-3_real64, (h_in - h_ideal)*1e-3_real64, &
            (h_in - h_out)*1e-3_real64, t_out, d_out, d_in/d_out
    end do

contains

    ! A property in SI units. After a failure the program ends with the library's error text.
    function property(pair, first, second, output)
        character(*), intent(in) :: pair, output
        real(real64), intent(in) :: first, second
        real(real64) :: property
        character(256) :: message
        property = ostrel_prop('toluene', pair, first, second, output, message)
        if (message(1:9) /= 'No errors') then
            print '(2a)', pair//' -> '//output//': ', trim(message)
            stop 1
        end if
    end function property

end program turbine
