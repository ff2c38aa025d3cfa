! SPDX-License-Identifier: MIT
! Makes the requests of a table, and prints every number and text that the library returns.
! The entry points are external procedures without interfaces, as older programs declare them.
!
!   host_fortran TABLE
program host
    use, intrinsic :: iso_fortran_env, only: int32, int64, real64, output_unit
    implicit none

    real(real64), external :: ostrel_prop, ostrel_info
    external :: get_tv, ostrel_fluids, getversion, ostrel_sub
    external :: read_init_fluiddata, read_init_fluiddatafile, read_init_fluiddatadb

    character(256) :: names(500)
    character(256) :: path, text
    character(96) :: line
    character(12) :: fluid, output
    character(10) :: code, brief
    integer(int32) :: version(4), count, i
    integer :: status, table
    real(real64) :: first, second, value

    call get_command_argument(1, path)
    open (newunit=table, file=path, status='old', action='read')
    flush (output_unit)
    call ostrel_sub()
    call getversion(version)
    write (output_unit, '(i0, 3(1x, i0))') version
    call ostrel_fluids(count, names)
    write (output_unit, '(i0)') count
    do i = 1, count
        write (output_unit, '(3a)') '[', trim(names(i)), ']'
    end do

    do
        read (table, '(a)', iostat=status) line
        if (status /= 0) exit
        fluid = line(3:14)
        code = line(15:24)
        output = line(81:92)
        select case (line(1:1))
        case ('?')
            read (line(27:52), *) first
            read (line(54:79), *) second
            value = ostrel_prop(fluid, code, first, second, output, text)
            call print_answer(value, text)
        case ('!')
            value = ostrel_info(fluid, code, text)
            call print_answer(value, text)
        end select
    end do
    close (table)

    ! An error field that is too short for the text.
    value = ostrel_prop('toluene', 'td', 500.0_real64, 5.0_real64, 'nothing', brief)
    call print_answer(value, brief)
    call read_init_fluiddata('toluene')
    call print_state('tv')
    call print_state('td')
    call print_state('xy')
    call read_init_fluiddatafile('nowhere')
    call read_init_fluiddatadb('nowhere', 'toluene')
    value = ostrel_info('water', 'm_mol', text)
    call print_answer(value, text)

contains

    ! The bits of a number, then the number itself in 25 columns with three digits of exponent.
    function shown(number) result(field)
        real(real64), intent(in) :: number
        character(42) :: field
        write (field, '(z16.16, 1x, es25.16e3)') transfer(number, 0_int64), number
    end function shown

    subroutine print_answer(number, message)
        real(real64), intent(in) :: number
        character(*), intent(in) :: message
        write (output_unit, '(5a)') shown(number), ' [', trim(message), ']'
    end subroutine print_answer

    subroutine print_state(pair)
        character(2), intent(in) :: pair
        real(real64) :: T, v
        T = -1
        v = -1
        call get_tv(pair, 500.0_real64, 5.0_real64, T, v)
        write (output_unit, '(5a)') pair, ' ', shown(T), ' ', shown(v)
    end subroutine print_state
end program host
