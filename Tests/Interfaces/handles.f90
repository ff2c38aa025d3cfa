! SPDX-License-Identifier: MIT
! Uses every procedure of module ostrel_handles. It stops with the number of lines of complaint.
!
!   handles FLUIDS     FLUIDS: the fluid folder
!   handles WORD       WORD: open, evaluate or copy; ends with the failure of that name
module handle_tests
    use, intrinsic :: iso_c_binding
    use, intrinsic :: ieee_arithmetic, only: ieee_is_nan
    use ostrel_handles
    implicit none
    integer :: complaints = 0
contains
    subroutine expect(holds, what)
        logical, intent(in) :: holds
        character(*), intent(in) :: what
        if (holds) return
        complaints = complaints + 1
        print '(2a)', 'not so: ', what
    end subroutine expect

    logical function same(a, b)
        real(c_double), intent(in) :: a, b
        same = transfer(a, 0_c_int64_t) == transfer(b, 0_c_int64_t)
    end function same

    subroutine test_opening(folder)
        character(*), intent(in) :: folder
        type(ostrel_fluid) :: fluid, other, several(2)
        character(1023) :: message
        character(32) :: padded
        integer(c_int) :: status
        call expect(.not. fluid%is_open(), 'a new fluid is not open')
        call fluid%open('toluene')
        call expect(fluid%is_open(), 'open')
        call expect(abs(fluid%constant('t_crit') - 591.75_c_double) < 1e-9_c_double, 't_crit')
        call expect(ieee_is_nan(fluid%constant('t_krit')), 'an unknown constant is a NaN')
        call expect(fluid%text('name') == 'toluene', 'name')
        call expect(len(fluid%text('nom')) == 0, 'an unknown text is empty')
        padded = 'toluene'
        call fluid%open(padded, 'model=pr', status, message)
        call expect(status == OSTREL_OK .and. message == '', 'opened with options')
        call expect(fluid%text('model') == 'pr', 'model')
        call fluid%open('toluene', options='model=no', status=status, message=message)
        call expect(status == OSTREL_BAD_ARGUMENT .and. index(message, 'no value of model') > 0, 'wrong options')
        call expect(.not. fluid%is_open(), 'not open after a failure')
        call fluid%open('tolune', status=status, message=message)
        call expect(status == OSTREL_CANNOT_OPEN .and. index(message, 'did you mean toluene') > 0, 'unknown name')
        call expect(message == ostrel_last_message(), 'the last message')
        call fluid%open_file(folder//'/toluene.osd', 'model=rk')
        call expect(fluid%text('model') == 'rk', 'opened from a file')
        call fluid%open_file('/no/such/file', status=status)
        call expect(status == OSTREL_CANNOT_OPEN, 'no such file')
        call other%open('water', 'folder='//folder)
        call fluid%open_text(other%text('text'))
        call expect(fluid%text('name') == other%text('name'), 'opened from a text')
        call fluid%open_text('nothing', status=status)
        call expect(status == OSTREL_BAD_FILE, 'no parameters')
        call fluid%open_database('/no/such/base', 'x', status=status)
        call expect(status == OSTREL_CANNOT_OPEN, 'no such database')
        call several(2)%open('argon')
        call other%close()
        call expect(.not. other%is_open(), 'closed')
        call other%close()
        call expect(ieee_is_nan(other%value('pt', 1e5_c_double, 400.0_c_double, 'd', status)), 'closed: NaN')
        call expect(status == OSTREL_BAD_ARGUMENT, 'closed: status')
    end subroutine test_opening

    subroutine test_states()
        type(ostrel_fluid) :: fluid
        real(c_double) :: t(3), q(3), values(2, 3), again(2, 3), wide(4, 6), liquid(2, 3), vapor(2, 3), wrong(2, 2)
        integer(c_int) :: statuses(3), few(2), status
        type(ostrel_state) :: states(3)
        character(1023) :: message
        integer :: i
        call fluid%open('toluene')
        t = [300, 400, 700]
        q = [0.0_c_double, 0.5_c_double, 0.5_c_double]
        call fluid%evaluate('tq', 'p, cv', t, q, values, statuses, status=status, message=message)
        call expect(status == OSTREL_TWO_PHASE .and. index(message, 'state 1 ') > 0, 'the first failure')
        call expect(all(statuses == [OSTREL_OK, OSTREL_TWO_PHASE, OSTREL_NO_SATURATION]), 'statuses')
        call expect(same(values(1, 2), fluid%value('tq', t(2), q(2), 'p')), 'values(output, state)')
        call expect(ieee_is_nan(values(2, 2)) .and. ieee_is_nan(values(1, 3)), 'NaN')
        call fluid%evaluate('tq', 'p,cv', t, q, again, workers=2, status=status)
        call expect(status == OSTREL_TWO_PHASE, 'status of the parallel call')
        call expect(all([(same(again(1, i), values(1, i)) .and. same(again(2, i), values(2, i)), i=1, 3)]), 'same bits')
        wide = 7
        call fluid%evaluate('tq', 'p,cv', t, q, wide(1:3:2, 2:6:2), status=status)
        call expect(same(wide(1, 4), values(1, 2)) .and. all(abs(wide(2, :) - 7) < 1e-9_c_double), 'a section')

        call fluid%evaluate('tq', 'p,cv', t, q(:2), values, status=status, message=message)
        call expect(status == OSTREL_BAD_ARGUMENT, 'wrong second')
        call expect(message == 'second: an array of 2 elements; there are 3 states', 'message of a wrong second')
        call fluid%evaluate('tq', 'p,cv,d', t, q, values, status=status, message=message)
        call expect(message == 'values: an array of 2 times 3 elements; the outputs and states need 3 times 3', &
                    'wrong outputs')
        call fluid%evaluate('tq', 'p,cv', t, q, wrong, few, status=status, message=message)
        call expect(index(message, 'statuses: an array of 2 ') > 0, 'two wrong arrays')
        call fluid%evaluate('tx', 'p,cv', t, q, values, statuses, status=status, message=message)
        call expect(status == OSTREL_BAD_ARGUMENT .and. index(message, 'there is no such pair') > 0, 'wrong pair')
        call expect(all(statuses == [OSTREL_OK, OSTREL_TWO_PHASE, OSTREL_NO_SATURATION]), 'nothing is written')
        call fluid%evaluate('tq', 'p', t(:0), q(:0), values(:1, :0))

        call fluid%saturation('t', 'p,h', t, liquid, vapor, statuses, status)
        call expect(status == OSTREL_NO_SATURATION .and. statuses(3) == status, 'saturation')
        call expect(same(liquid(1, 1), vapor(1, 1)) .and. vapor(2, 1) > liquid(2, 1), 'the two phases')
        call fluid%saturation('t', 'p', t, liquid, vapor, status=status, message=message)
        call expect(status == OSTREL_BAD_ARGUMENT .and. index(message, 'liquid: ') == 1, 'wrong shape of the liquid')

        call fluid%solve('tq', t, q, states, status)
        call expect(status == OSTREL_NO_SATURATION .and. states(2)%phase == 2, 'solve')
        call fluid%outputs('p,cv', states, again, statuses, status)
        call expect(status == OSTREL_TWO_PHASE .and. statuses(3) == OSTREL_NO_SATURATION, 'outputs')
        call expect(same(again(1, 2), states(2)%p), 'outputs of states')
        call fluid%solve('tq', t, q(:1), states, status)
        call expect(status == OSTREL_BAD_ARGUMENT, 'solve, wrong size')
        call fluid%outputs('p,cv', states, wrong, few, status)
        call expect(status == OSTREL_BAD_ARGUMENT, 'outputs, wrong size')

        call expect(ieee_is_nan(fluid%value('pt', -1.0_c_double, 400.0_c_double, 'd', status, message)), 'NaN')
        call expect(status == OSTREL_OUT_OF_RANGE .and. index(message, 'p = -1 Pa') > 0, 'out of range')
    end subroutine test_states

    subroutine test_lists()
        character(256), allocatable :: files(:), names(:)
        integer(c_int) :: status
        integer :: i
        call expect(ostrel_list_size('outputs') > 30, 'size of a list')
        call expect(ostrel_list_size('nothing') == 0, 'size of an unknown list')
        call expect(ostrel_list('outputs', 1, 'name') == 't', 'the first row')
        call expect(ostrel_list('outputs', 1, 'unit') == 'K', 'its unit')
        call expect(len(ostrel_list('outputs', 1000, 'name')) == 0, 'behind the list')
        do i = 1, ostrel_list_size('statuses')
            if (ostrel_list('statuses', i, 'name') == 'OSTREL_NO_STATE') &
                call expect(ostrel_status_text(OSTREL_NO_STATE) == ostrel_list('statuses', i, 'description'), &
                            'status text')
        end do
        call ostrel_find('toluene', files, names)
        call expect(size(files) > 0 .and. size(names) == size(files), 'find')
        if (size(files) > 0) call expect(files(1) == 'toluene', 'the best is the first')
        call ostrel_find('', files, names, status)
        call expect(size(files) > 300 .and. status == OSTREL_OK, 'every fluid')
    end subroutine test_lists

    subroutine end_by(word)
        character(*), intent(in) :: word
        type(ostrel_fluid) :: fluid, other
        real(c_double) :: values(1, 1)
        call fluid%open(merge('tolune ', 'toluene', word == 'open'))
        if (word == 'evaluate') call fluid%evaluate('pt', 'd,h', [1e5_c_double], [4e2_c_double], values)
        if (word == 'copy') other = fluid
        print '(a)', 'The program goes on.'
    end subroutine end_by
end module handle_tests

program handles
    use handle_tests
    implicit none
    character(4096) :: argument
    integer :: i
    call get_command_argument(1, argument)
    if (index(argument, '/') == 0) then
        call end_by(trim(argument))
        stop
    end if
    do i = 1, 3 ! what is left of the first round must not disturb the next ones
        call test_opening(trim(argument))
        call test_states()
        call test_lists()
    end do
    if (complaints > 0) error stop 1
end program handles
