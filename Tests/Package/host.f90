! SPDX-License-Identifier: MIT
! Asks through module ostrel for the density that is an input itself. It sets host routines of its own and removes them.
module own_host
    use, intrinsic :: iso_c_binding
    use ostrel
    implicit none
    integer :: calls = 0
contains
    subroutine search(directory, pattern, names, directory_len, pattern_len, name_len) bind(c)
        integer(c_size_t), value, intent(in) :: directory_len, pattern_len, name_len
        character(kind=c_char), intent(in) :: directory(directory_len), pattern(pattern_len)
        character(kind=c_char), intent(inout) :: names(name_len, 500)
        calls = calls + 1
        if (len(text_of(directory)) == 0 .or. text_of(pattern) /= '*.osd') return
        call fill_field(names(:, 1), 'second.osd')
        call fill_field(names(:, 2), 'first.osd')
    end subroutine search

    function no_fluid(location, key, lines, found, location_len, key_len, line_len) bind(c) result(status)
        integer(c_size_t), value, intent(in) :: location_len, key_len, line_len
        character(kind=c_char), intent(in) :: location(location_len), key(key_len)
        character(kind=c_char), intent(inout) :: lines(line_len, 255)
        integer(c_int32_t), intent(out) :: found
        integer(c_int32_t) :: status
        if (text_of(location) == 'base' .and. text_of(key) == 'fluid') calls = calls + 10
        call fill_field(lines(:, 1), 'not used')
        found = 0
        status = 0
    end function no_fluid
end module own_host

program host
    use own_host
    implicit none
    procedure(host_searchdirectory), pointer :: checked_search
    procedure(host_getfluid), pointer :: checked_getfluid
    character(ostrel_name_len), allocatable :: names(:)
    character(256) :: message
    real(c_double) :: d

    checked_search => search
    checked_getfluid => no_fluid
    call ostrel_use_host(ostrel_host(searchdirectory=c_funloc(checked_search), getfluid=c_funloc(checked_getfluid)))
    call ostrel_fluids(names)
    if (size(names) /= 2) stop 1
    if (names(1) /= 'second' .or. names(2) /= 'first') stop 2
    call read_init_fluiddatadb('base', 'fluid')
    if (calls /= 11) stop 3
    call ostrel_use_host()
    call ostrel_fluids(names)
    if (all(names /= 'toluene') .or. calls /= 11) stop 4
    deallocate (names) ! a program's own arrays are kept until the process ends, which counts as a leak

    d = ostrel_prop('toluene', 'td', 500.0_c_double, 5.0_c_double, 'd', message)
    print '(f0.3, 2a)', d, ' kg/m3, ', trim(message)
    if (abs(d - 5) > 1e-9_c_double .or. .not. succeeded(message)) stop 5
    d = ostrel_prop('toluene', 'xy', 500.0_c_double, 5.0_c_double, 'd', message)
    if (abs(d - ostrel_failure) > 0 .or. succeeded(message)) stop 6
end program host
