! SPDX-License-Identifier: MIT
! Prints the flow of a vapor through a nozzle without losses, down to the smallest pressure, and the throat, through
! module ostrel_handles.
!
!   nozzle [FLUID]
program nozzle
    use, intrinsic :: iso_fortran_env, only: real64
    use ostrel_handles
    implicit none

    integer, parameter :: rows = 10
    real(real64), parameter :: t_inlet = 500, p_inlet = 5.0e5_real64 ! K, Pa
    type(ostrel_fluid) :: fluid
    character(32) :: name
    character(1023) :: message
    integer :: status, i
    real(real64) :: inlet(2, 1), p(rows), s(rows), flow(4, rows), w(rows), flux(rows), t

    name = 'toluene'
    if (command_argument_count() > 0) call get_command_argument(1, name)
    call fluid%open(name)

    call fluid%evaluate('pt', 'h,s', [p_inlet], [t_inlet], inlet)
    p = [(p_inlet*(1 - 0.08_real64*i), i=1, rows)]
    s = inlet(2, 1)
    call fluid%evaluate('ps', 't,d,h,c', p, s, flow)
    w = sqrt(2*(inlet(1, 1) - flow(3, :)))
    flux = flow(2, :)*w

    print '(2a, f0.2, a, f0.2, a)', fluid%text('name'), ' from rest at ', p_inlet*1e-5_real64, ' bar and ', &
        t_inlet, ' K'
    print '(a)', '     p bar       t K   d kg/m3     w m/s       w/c    d w kg/(m2 s)'
    do i = 1, rows
        print '(f10.3, f10.2, f10.4, f10.3, f10.4, f17.3, a)', p(i)*1e-5_real64, flow(1, i), flow(2, i), w(i), &
            w(i)/flow(4, i), flux(i), trim(merge('  throat', '        ', i == maxloc(flux, 1)))
    end do

    ! With status, a failure does not end the program.
    t = fluid%value('pq', 1.0e8_real64, 1.0_real64, 't', status, message)
    print '(i0, 2a)', status, ': ', trim(message)
end program nozzle
