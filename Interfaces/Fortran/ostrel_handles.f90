! SPDX-License-Identifier: MIT
!> Module ostrel_handles: handles of fluids for Fortran programs. Any number of fluids may be open at the same time, and
!! any number of threads may use them.
!!
!!     program first
!!         use ostrel_handles
!!         implicit none
!!         type(ostrel_fluid) :: toluene
!!         call toluene%open('toluene')
!!         print '(f0.3, a)', toluene%value('pt', 1d5, 400d0, 'd'), ' kg/m3' ! prints 2.850 kg/m3
!!     end program first
!!
!! Compile this file with the program. It is installed as source, in share/ostrel/Fortran, since every compiler
!! has its own form of module files. With CMake, ostrel::fortran compiles it and links the library; by hand,
!!   gfortran $(pkg-config --variable=fortran_handles ostrel) host.f90 $(pkg-config --libs ostrel)
!! The module is standard Fortran 2008. ostrel_fluid.h is the contract: units, statuses, options, threads and special
!! points. This module adds:
!!
!! Failures. Each subroutine has the optional arguments status and message. The message is blank after a success, and cut
!! where the variable ends; it has at most 1023 characters. Without status, a failure ends the program with its message, as
!! a failed statement OPEN without IOSTAT does. Functions never end the program.
!!
!! Texts. Trailing blanks of names, paths and parameters do not count.
!!
!! Arrays. Values have the outputs of one state in a column: values(output, state). An array with a wrong shape is a
!! failure with OSTREL_BAD_ARGUMENT, and nothing is written. Arrays may be sections; those that are not contiguous are
!! copied.
!!
!! Lifetimes. A fluid closes its handle when it ceases to exist or opens another one. The main program's own variables
!! live until the program ends; close closes them earlier. A fluid cannot be assigned to another one: pass it, or open it
!! again.
!!
!! As units, [-] marks texts, counts and handles, [SI] the SI unit that ostrel_list has for the name.
module ostrel_handles
    use, intrinsic :: iso_c_binding, only: c_associated, c_char, c_double, c_f_pointer, c_funloc, c_funptr, c_int, &
                                           c_int32_t, c_loc, c_null_char, c_null_ptr, c_ptr, c_size_t
    use, intrinsic :: iso_fortran_env, only: error_unit
    implicit none
    private

    public :: ostrel_fluid, ostrel_state
    public :: ostrel_status_text, ostrel_last_message, ostrel_list, ostrel_list_size, ostrel_find

    ! Statuses of a state.
    integer(c_int), parameter, public :: OSTREL_OK = 0
    integer(c_int), parameter, public :: OSTREL_NOT_A_NUMBER = 1
    integer(c_int), parameter, public :: OSTREL_OUT_OF_RANGE = 2
    integer(c_int), parameter, public :: OSTREL_NO_STATE = 3
    integer(c_int), parameter, public :: OSTREL_TWO_PHASE = 4
    integer(c_int), parameter, public :: OSTREL_NO_SATURATION = 5
    integer(c_int), parameter, public :: OSTREL_NOT_CONVERGED = 6
    ! Statuses of a call.
    integer(c_int), parameter, public :: OSTREL_BAD_ARGUMENT = 10
    integer(c_int), parameter, public :: OSTREL_CANNOT_OPEN = 11
    integer(c_int), parameter, public :: OSTREL_BAD_FILE = 12
    integer(c_int), parameter, public :: OSTREL_OUT_OF_MEMORY = 13

    !> A state that has been solved. A program may keep and copy it, and ask any fluid that was opened in the same way
    !! for its outputs; it must not change it.
    type, bind(c) :: ostrel_state
        real(c_double) :: t            !! [K] temperature
        real(c_double) :: p            !! [Pa] pressure
        real(c_double) :: v            !! [m3/kg] specific volume
        real(c_double) :: q            !! [1] vapor quality, NaN outside of the dome
        real(c_double) :: first        !! [SI] first input
        real(c_double) :: second       !! [SI] second input
        integer(c_int32_t) :: inputs   !! [-] which pair they are
        integer(c_int32_t) :: status   !! [-] status of the state
        integer(c_int32_t) :: phase    !! [-] the output "phase"
        integer(c_int32_t) :: reserved !! [-] for the library
    end type ostrel_state

    !> An opened fluid, or none.
    type :: ostrel_fluid
        private
        type(c_ptr) :: handle = c_null_ptr
    contains
        procedure :: open => open_name
        procedure :: open_file
        procedure :: open_text
        procedure :: open_database
        procedure :: close => close_fluid
        procedure :: is_open
        procedure :: value => value_of
        procedure :: evaluate
        procedure :: saturation
        procedure :: solve
        procedure :: outputs => outputs_of
        procedure :: constant
        procedure :: text
        procedure, private :: refuse_to_copy
        generic :: assignment(=) => refuse_to_copy
        final :: finish
    end type ostrel_fluid

    !> What ostrel_find has collected.
    type :: found_fluids
        integer :: count = 0
        character(256), allocatable :: files(:), names(:)
    end type found_fluids

    ! The C functions. The units of their arguments stand at the procedures below.
    interface
        function c_open(name, options, fluid) bind(c, name='ostrel_fluid_open') result(status)
            import :: c_char, c_int, c_ptr
            character(kind=c_char), intent(in) :: name(*), options(*)
            type(c_ptr), intent(out) :: fluid
            integer(c_int) :: status
        end function c_open

        function c_open_file(path, options, fluid) bind(c, name='ostrel_fluid_open_file') result(status)
            import :: c_char, c_int, c_ptr
            character(kind=c_char), intent(in) :: path(*), options(*)
            type(c_ptr), intent(out) :: fluid
            integer(c_int) :: status
        end function c_open_file

        function c_open_text(text, options, fluid) bind(c, name='ostrel_fluid_open_text') result(status)
            import :: c_char, c_int, c_ptr
            character(kind=c_char), intent(in) :: text(*), options(*)
            type(c_ptr), intent(out) :: fluid
            integer(c_int) :: status
        end function c_open_text

        function c_open_database(location, name, options, fluid) bind(c, name='ostrel_fluid_open_database') &
            result(status)
            import :: c_char, c_int, c_ptr
            character(kind=c_char), intent(in) :: location(*), name(*), options(*)
            type(c_ptr), intent(out) :: fluid
            integer(c_int) :: status
        end function c_open_database

        subroutine c_close(fluid) bind(c, name='ostrel_fluid_close')
            import :: c_ptr
            type(c_ptr), value, intent(in) :: fluid
        end subroutine c_close

        function c_evaluate(fluid, inputs, outputs, count, first, second, values, status) &
            bind(c, name='ostrel_fluid_evaluate') result(failure)
            import :: c_char, c_double, c_int, c_ptr, c_size_t
            type(c_ptr), value, intent(in) :: fluid
            character(kind=c_char), intent(in) :: inputs(*), outputs(*)
            integer(c_size_t), value, intent(in) :: count
            real(c_double), intent(in) :: first(*), second(*)
            real(c_double), intent(inout) :: values(*)
            integer(c_int), intent(inout) :: status(*)
            integer(c_int) :: failure
        end function c_evaluate

        function c_evaluate_parallel(fluid, inputs, outputs, count, first, second, values, status, workers) &
            bind(c, name='ostrel_fluid_evaluate_parallel') result(failure)
            import :: c_char, c_double, c_int, c_ptr, c_size_t
            type(c_ptr), value, intent(in) :: fluid
            character(kind=c_char), intent(in) :: inputs(*), outputs(*)
            integer(c_size_t), value, intent(in) :: count
            real(c_double), intent(in) :: first(*), second(*)
            real(c_double), intent(inout) :: values(*)
            integer(c_int), intent(inout) :: status(*)
            integer(c_int), value, intent(in) :: workers
            integer(c_int) :: failure
        end function c_evaluate_parallel

        function c_value(fluid, inputs, first, second, output, status) bind(c, name='ostrel_fluid_value') result(value)
            import :: c_char, c_double, c_int, c_ptr
            type(c_ptr), value, intent(in) :: fluid
            character(kind=c_char), intent(in) :: inputs(*), output(*)
            real(c_double), value, intent(in) :: first, second
            integer(c_int), intent(out) :: status
            real(c_double) :: value
        end function c_value

        function c_saturation(fluid, input, outputs, count, values_in, liquid, vapor, status) &
            bind(c, name='ostrel_fluid_saturation') result(failure)
            import :: c_char, c_double, c_int, c_ptr, c_size_t
            type(c_ptr), value, intent(in) :: fluid
            character(kind=c_char), intent(in) :: input(*), outputs(*)
            integer(c_size_t), value, intent(in) :: count
            real(c_double), intent(in) :: values_in(*)
            real(c_double), intent(inout) :: liquid(*), vapor(*)
            integer(c_int), intent(inout) :: status(*)
            integer(c_int) :: failure
        end function c_saturation

        function c_solve(fluid, inputs, count, first, second, states) bind(c, name='ostrel_fluid_solve') result(failure)
            import :: c_char, c_double, c_int, c_ptr, c_size_t, ostrel_state
            type(c_ptr), value, intent(in) :: fluid
            character(kind=c_char), intent(in) :: inputs(*)
            integer(c_size_t), value, intent(in) :: count
            real(c_double), intent(in) :: first(*), second(*)
            type(ostrel_state), intent(inout) :: states(*)
            integer(c_int) :: failure
        end function c_solve

        function c_outputs(fluid, outputs, count, states, values, status) bind(c, name='ostrel_fluid_outputs') &
            result(failure)
            import :: c_char, c_double, c_int, c_ptr, c_size_t, ostrel_state
            type(c_ptr), value, intent(in) :: fluid
            character(kind=c_char), intent(in) :: outputs(*)
            integer(c_size_t), value, intent(in) :: count
            type(ostrel_state), intent(in) :: states(*)
            real(c_double), intent(inout) :: values(*)
            integer(c_int), intent(inout) :: status(*)
            integer(c_int) :: failure
        end function c_outputs

        function c_constant(fluid, name) bind(c, name='ostrel_fluid_constant') result(value)
            import :: c_char, c_double, c_ptr
            type(c_ptr), value, intent(in) :: fluid
            character(kind=c_char), intent(in) :: name(*)
            real(c_double) :: value
        end function c_constant

        function c_text(fluid, name) bind(c, name='ostrel_fluid_text') result(text)
            import :: c_char, c_ptr
            type(c_ptr), value, intent(in) :: fluid
            character(kind=c_char), intent(in) :: name(*)
            type(c_ptr) :: text
        end function c_text

        function c_status_text(status) bind(c, name='ostrel_status_text') result(text)
            import :: c_int, c_ptr
            integer(c_int), value, intent(in) :: status
            type(c_ptr) :: text
        end function c_status_text

        function c_last_message() bind(c, name='ostrel_last_message') result(text)
            import :: c_ptr
            type(c_ptr) :: text
        end function c_last_message

        function c_list(kind, index, what) bind(c, name='ostrel_list') result(text)
            import :: c_char, c_ptr, c_size_t
            character(kind=c_char), intent(in) :: kind(*), what(*)
            integer(c_size_t), value, intent(in) :: index
            type(c_ptr) :: text
        end function c_list

        function c_find(words, take, user) bind(c, name='ostrel_fluid_find') result(status)
            import :: c_char, c_funptr, c_int, c_ptr
            character(kind=c_char), intent(in) :: words(*)
            type(c_funptr), value, intent(in) :: take
            type(c_ptr), value, intent(in) :: user
            integer(c_int) :: status
        end function c_find
    end interface

contains

    !> Opens a fluid of the fluid folder.
    subroutine open_name(this, name, options, status, message)
        class(ostrel_fluid), intent(inout) :: this      !! [-] a fluid; what was open is closed
        character(*), intent(in) :: name                !! [-] of a file, or as people know the fluid
        character(*), intent(in), optional :: options   !! [-] such as 'model=pr; reference=nbp'
        integer(c_int), intent(out), optional :: status !! [-] receives the status
        character(*), intent(out), optional :: message  !! [-] receives the message of a failure
        call this%close()
        call tell(c_open(c_text_of(name), given(options), this%handle), status, message)
    end subroutine open_name

    !> Opens a parameter file.
    subroutine open_file(this, path, options, status, message)
        class(ostrel_fluid), intent(inout) :: this      !! [-] a fluid; what was open is closed
        character(*), intent(in) :: path                !! [-] path of the file, with its extension
        character(*), intent(in), optional :: options   !! [-] options without folder
        integer(c_int), intent(out), optional :: status !! [-] receives the status
        character(*), intent(out), optional :: message  !! [-] receives the message of a failure
        call this%close()
        call tell(c_open_file(c_text_of(path), given(options), this%handle), status, message)
    end subroutine open_file

    !> Opens a text like that of a parameter file.
    subroutine open_text(this, text, options, status, message)
        class(ostrel_fluid), intent(inout) :: this      !! [-] a fluid; what was open is closed
        character(*), intent(in) :: text                !! [-] records, with new_line('a') between them
        character(*), intent(in), optional :: options   !! [-] options without folder
        integer(c_int), intent(out), optional :: status !! [-] receives the status
        character(*), intent(out), optional :: message  !! [-] receives the message of a failure
        call this%close()
        call tell(c_open_text(c_text_of(text), given(options), this%handle), status, message)
    end subroutine open_text

    !> Opens a fluid of a fluid database.
    subroutine open_database(this, location, name, options, status, message)
        class(ostrel_fluid), intent(inout) :: this      !! [-] a fluid; what was open is closed
        character(*), intent(in) :: location            !! [-] path of the SQLite file
        character(*), intent(in) :: name                !! [-] key of the fluid in the table
        character(*), intent(in), optional :: options   !! [-] options without folder
        integer(c_int), intent(out), optional :: status !! [-] receives the status
        character(*), intent(out), optional :: message  !! [-] receives the message of a failure
        call this%close()
        call tell(c_open_database(c_text_of(location), c_text_of(name), given(options), this%handle), status, message)
    end subroutine open_database

    !> Closes the fluid, if it is open.
    subroutine close_fluid(this)
        class(ostrel_fluid), intent(inout) :: this !! [-] a fluid
        call c_close(this%handle)
        this%handle = c_null_ptr
    end subroutine close_fluid

    impure elemental subroutine finish(this)
        type(ostrel_fluid), intent(inout) :: this !! [-] a fluid that ceases to exist
        call c_close(this%handle)
        this%handle = c_null_ptr
    end subroutine finish

    subroutine refuse_to_copy(this, other)
        class(ostrel_fluid), intent(inout) :: this !! [-] the fluid on the left
        type(ostrel_fluid), intent(in) :: other    !! [-] the fluid on the right
        if (c_associated(this%handle) .or. c_associated(other%handle)) &
            error stop 'ostrel_fluid: a fluid cannot be assigned; pass it, or open it again'
    end subroutine refuse_to_copy

    !> Whether a fluid is open.
    logical function is_open(this)
        class(ostrel_fluid), intent(in) :: this !! [-] a fluid
        is_open = c_associated(this%handle)
    end function is_open

    !> One property of one state; NaN after a failure.
    function value_of(this, inputs, first, second, output, status, message) result(value)
        class(ostrel_fluid), intent(in) :: this         !! [-] an open fluid
        character(*), intent(in) :: inputs              !! [-] input pair, such as 'pt'
        real(c_double), intent(in) :: first             !! [SI] first input
        real(c_double), intent(in) :: second            !! [SI] second input
        character(*), intent(in) :: output              !! [-] name of one output
        integer(c_int), intent(out), optional :: status !! [-] receives the status
        character(*), intent(out), optional :: message  !! [-] receives the message of a failure
        real(c_double) :: value                         !! [SI]
        integer(c_int) :: answer
        value = c_value(this%handle, c_text_of(inputs), first, second, c_text_of(output), answer)
        if (present(status)) status = answer
        if (present(message)) message = message_of(answer)
    end function value_of

    !> Properties of many states.
    subroutine evaluate(this, inputs, outputs, first, second, values, statuses, workers, status, message)
        class(ostrel_fluid), intent(in) :: this                !! [-] an open fluid
        character(*), intent(in) :: inputs                     !! [-] input pair, such as 'pt'
        character(*), intent(in) :: outputs                    !! [-] names of outputs with commas between them
        real(c_double), intent(in) :: first(:)                 !! [SI] first input of each state
        real(c_double), intent(in) :: second(:)                !! [SI] second input of each state
        real(c_double), intent(inout) :: values(:, :)          !! [SI] receives values(output, state)
        integer(c_int), intent(inout), optional :: statuses(:) !! [-] receives the status of each state
        integer, intent(in), optional :: workers               !! [-] number of threads, 0 for one on each core; 1
        integer(c_int), intent(out), optional :: status        !! [-] receives that of the call or the first failure
        character(*), intent(out), optional :: message         !! [-] receives the message of a failure
        integer(c_int), allocatable :: of_states(:)
        integer(c_int) :: answer
        character(:), allocatable :: wrong
        wrong = wrong_size('second', size(second), size(first))//wrong_shape('values', values, outputs, size(first))
        if (present(statuses)) wrong = wrong//wrong_size('statuses', size(statuses), size(first))
        if (refused(wrong, status, message)) return
        allocate (of_states(size(first)), source=OSTREL_OK)
        if (present(workers)) then
            answer = c_evaluate_parallel(this%handle, c_text_of(inputs), c_text_of(outputs), &
                                         size(first, kind=c_size_t), first, second, values, of_states, &
                                         int(workers, c_int))
        else
            answer = c_evaluate(this%handle, c_text_of(inputs), c_text_of(outputs), size(first, kind=c_size_t), &
                                first, second, values, of_states)
        end if
        if (present(statuses) .and. answer < OSTREL_BAD_ARGUMENT) statuses = of_states
        call tell(answer, status, message)
    end subroutine evaluate

    !> Properties of both saturated phases.
    subroutine saturation(this, input, outputs, at, liquid, vapor, statuses, status, message)
        class(ostrel_fluid), intent(in) :: this                !! [-] an open fluid
        character(*), intent(in) :: input                      !! [-] 't' or 'p'
        character(*), intent(in) :: outputs                    !! [-] names of outputs with commas between them
        real(c_double), intent(in) :: at(:)                    !! [SI] temperatures or pressures
        real(c_double), intent(inout) :: liquid(:, :)          !! [SI] receives liquid(output, state)
        real(c_double), intent(inout) :: vapor(:, :)           !! [SI] receives vapor(output, state)
        integer(c_int), intent(inout), optional :: statuses(:) !! [-] receives the status of each state
        integer(c_int), intent(out), optional :: status        !! [-] receives that of the call or the first failure
        character(*), intent(out), optional :: message         !! [-] receives the message of a failure
        integer(c_int), allocatable :: of_states(:)
        integer(c_int) :: answer
        character(:), allocatable :: wrong
        wrong = wrong_shape('liquid', liquid, outputs, size(at))//wrong_shape('vapor', vapor, outputs, size(at))
        if (present(statuses)) wrong = wrong//wrong_size('statuses', size(statuses), size(at))
        if (refused(wrong, status, message)) return
        allocate (of_states(size(at)), source=OSTREL_OK)
        answer = c_saturation(this%handle, c_text_of(input), c_text_of(outputs), size(at, kind=c_size_t), at, liquid, &
                              vapor, of_states)
        if (present(statuses) .and. answer < OSTREL_BAD_ARGUMENT) statuses = of_states
        call tell(answer, status, message)
    end subroutine saturation

    !> Finds states, for outputs that are asked later.
    subroutine solve(this, inputs, first, second, states, status, message)
        class(ostrel_fluid), intent(in) :: this         !! [-] an open fluid
        character(*), intent(in) :: inputs              !! [-] input pair, such as 'pt'
        real(c_double), intent(in) :: first(:)          !! [SI] first input of each state
        real(c_double), intent(in) :: second(:)         !! [SI] second input of each state
        type(ostrel_state), intent(inout) :: states(:)  !! [-] receives the states, each with its status
        integer(c_int), intent(out), optional :: status !! [-] receives that of the call or the first failure
        character(*), intent(out), optional :: message  !! [-] receives the message of a failure
        if (refused(wrong_size('second', size(second), size(first))//wrong_size('states', size(states), size(first)), &
                    status, message)) return
        call tell(c_solve(this%handle, c_text_of(inputs), size(first, kind=c_size_t), first, second, states), status, &
                  message)
    end subroutine solve

    !> Outputs of states that were solved.
    subroutine outputs_of(this, outputs, states, values, statuses, status, message)
        class(ostrel_fluid), intent(in) :: this                !! [-] an open fluid
        character(*), intent(in) :: outputs                    !! [-] names of outputs with commas between them
        type(ostrel_state), intent(in) :: states(:)            !! [-] the states
        real(c_double), intent(inout) :: values(:, :)          !! [SI] receives values(output, state)
        integer(c_int), intent(inout), optional :: statuses(:) !! [-] receives the status of each state
        integer(c_int), intent(out), optional :: status        !! [-] receives that of the call or the first failure
        character(*), intent(out), optional :: message         !! [-] receives the message of a failure
        integer(c_int), allocatable :: of_states(:)
        integer(c_int) :: answer
        character(:), allocatable :: wrong
        wrong = wrong_shape('values', values, outputs, size(states))
        if (present(statuses)) wrong = wrong//wrong_size('statuses', size(statuses), size(states))
        if (refused(wrong, status, message)) return
        allocate (of_states(size(states)), source=OSTREL_OK)
        answer = c_outputs(this%handle, c_text_of(outputs), size(states, kind=c_size_t), states, values, of_states)
        if (present(statuses) .and. answer < OSTREL_BAD_ARGUMENT) statuses = of_states
        call tell(answer, status, message)
    end subroutine outputs_of

    !> A constant; NaN where the fluid has none, and for an unknown name.
    function constant(this, name) result(value)
        class(ostrel_fluid), intent(in) :: this !! [-] an open fluid
        character(*), intent(in) :: name        !! [-] such as 't_crit'
        real(c_double) :: value                 !! [SI]
        value = c_constant(this%handle, c_text_of(name))
    end function constant

    !> A text; empty where nothing is known, and for an unknown name.
    function text(this, name)
        class(ostrel_fluid), intent(in) :: this !! [-] an open fluid
        character(*), intent(in) :: name        !! [-] such as 'label'
        character(:), allocatable :: text
        text = fortran_text(c_text(this%handle, c_text_of(name)))
    end function text

    !> What a status means.
    function ostrel_status_text(status) result(text)
        integer(c_int), intent(in) :: status !! [-] any number
        character(:), allocatable :: text
        text = fortran_text(c_status_text(status))
    end function ostrel_status_text

    !> The library's message of the calling thread; empty before the first one. It knows nothing of arrays with wrong
    !! shapes, which this module refuses.
    function ostrel_last_message() result(text)
        character(:), allocatable :: text
        text = fortran_text(c_last_message())
    end function ostrel_last_message

    !> A part of one row of a list; empty behind the last row.
    function ostrel_list(kind, index, what) result(text)
        character(*), intent(in) :: kind !! [-] such as 'outputs'
        integer, intent(in) :: index     !! [-] row of the list, from 1
        character(*), intent(in) :: what !! [-] 'name', 'unit' or 'description'
        character(:), allocatable :: text
        text = fortran_text(c_list(c_text_of(kind), int(index - 1, c_size_t), c_text_of(what)))
    end function ostrel_list

    !> Number of rows of a list; 0 for an unknown list.
    function ostrel_list_size(kind) result(count)
        character(*), intent(in) :: kind !! [-] such as 'outputs'
        integer :: count
        count = 0
        do while (c_associated(c_list(c_text_of(kind), int(count, c_size_t), c_text_of('name'))))
            count = count + 1
        end do
    end function ostrel_list_size

    !> Finds the fluids of the fluid folder that have to do with some words, the best first.
    subroutine ostrel_find(words, files, names, status, message)
        character(*), intent(in) :: words                    !! [-] as a person writes them, '' for all fluids
        character(256), allocatable, intent(out) :: files(:) !! [-] receives the names of the files, which open them
        character(256), allocatable, intent(out) :: names(:) !! [-] receives the names of the fluids
        integer(c_int), intent(out), optional :: status      !! [-] receives the status
        character(*), intent(out), optional :: message       !! [-] receives the message of a failure
        type(found_fluids), target :: found
        integer(c_int) :: answer
        allocate (found%files(16), found%names(16))
        answer = c_find(c_text_of(words), c_funloc(take), c_loc(found))
        files = found%files(:found%count)
        names = found%names(:found%count)
        call tell(answer, status, message)
    end subroutine ostrel_find

    subroutine take(user, file, name) bind(c)
        type(c_ptr), value, intent(in) :: user !! [-] the collection
        type(c_ptr), value, intent(in) :: file !! [-] name of the file
        type(c_ptr), value, intent(in) :: name !! [-] name of the fluid
        type(found_fluids), pointer :: found
        call c_f_pointer(user, found)
        if (found%count == size(found%files)) then
            found%files = [found%files, found%files]
            found%names = [found%names, found%names]
        end if
        found%count = found%count + 1
        found%files(found%count) = fortran_text(file)
        found%names(found%count) = fortran_text(name)
    end subroutine take

    !> A text for C, without its trailing blanks.
    pure function c_text_of(text)
        character(*), intent(in) :: text !! [-] a text
        character(kind=c_char, len=len_trim(text) + 1) :: c_text_of
        c_text_of = trim(text)//c_null_char
    end function c_text_of

    !> Options for C; none are an empty text.
    pure function given(options)
        character(*), intent(in), optional :: options !! [-] the options, if there are any
        character(kind=c_char, len=:), allocatable :: given
        given = c_null_char
        if (present(options)) given = c_text_of(options)
    end function given

    !> The text at a pointer of C; empty for a null pointer.
    function fortran_text(pointer) result(text)
        type(c_ptr), intent(in) :: pointer !! [-] the pointer
        character(:), allocatable :: text
        character(kind=c_char), pointer :: characters(:)
        integer :: length, i
        length = 0
        if (c_associated(pointer)) then
            call c_f_pointer(pointer, characters, [huge(0)])
            do while (characters(length + 1) /= c_null_char)
                length = length + 1
            end do
        end if
        allocate (character(length) :: text)
        do i = 1, length
            text(i:i) = characters(i)
        end do
    end function fortran_text

    !> The message of a call of this thread that has just ended.
    function message_of(answer) result(text)
        integer(c_int), intent(in) :: answer !! [-] the status that it returned
        character(:), allocatable :: text
        text = ''
        if (answer /= OSTREL_OK) text = ostrel_last_message()
    end function message_of

    !> Tells the caller how a call ended, or ends the program after a failure that the caller does not ask for.
    subroutine tell(answer, status, message, problem)
        integer(c_int), intent(in) :: answer            !! [-] the status of the call
        integer(c_int), intent(out), optional :: status !! [-] of the caller
        character(*), intent(out), optional :: message  !! [-] of the caller
        character(*), intent(in), optional :: problem   !! [-] the message, if it is not the library's
        character(:), allocatable :: text
        text = message_of(answer)
        if (present(problem)) text = problem
        if (present(message)) message = text
        if (present(status)) then
            status = answer
        else if (answer /= OSTREL_OK) then
            write (error_unit, '(a)') text
            stop 1
        end if
    end subroutine tell

    !> Whether arrays have wrong sizes; then the caller is told so.
    logical function refused(wrong, status, message)
        character(*), intent(in) :: wrong               !! [-] what is wrong; empty if nothing is
        integer(c_int), intent(out), optional :: status !! [-] of the caller
        character(*), intent(out), optional :: message  !! [-] of the caller
        refused = len(wrong) > 0
        if (refused) call tell(OSTREL_BAD_ARGUMENT, status, message, wrong(:len(wrong) - 2))
    end function refused

    !> Says what is wrong with the size of an array of all states.
    function wrong_size(name, there, states) result(text)
        character(*), intent(in) :: name !! [-] name of the array
        integer, intent(in) :: there     !! [-] number of its elements
        integer, intent(in) :: states    !! [-] number of states
        character(:), allocatable :: text
        character(200) :: line
        text = ''
        if (there == states) return
        write (line, '(2a, i0, a, i0, a)') name, ': an array of ', there, ' elements; there are ', states, ' states'
        text = trim(line)//'; '
    end function wrong_size

    !> Says what is wrong with the shape of an array of all outputs and states.
    function wrong_shape(name, values, outputs, states) result(text)
        character(*), intent(in) :: name           !! [-] name of the array
        real(c_double), intent(in) :: values(:, :) !! [SI] the array
        character(*), intent(in) :: outputs        !! [-] names with commas between them
        integer, intent(in) :: states              !! [-] number of states
        character(:), allocatable :: text
        character(200) :: line
        integer :: wanted, i
        wanted = 1
        do i = 1, len(outputs)
            if (outputs(i:i) == ',') wanted = wanted + 1
        end do
        text = ''
        if (size(values, 1) == wanted .and. size(values, 2) == states) return
        write (line, '(2a, 4(i0, a))') name, ': an array of ', size(values, 1), ' times ', size(values, 2), &
            ' elements; the outputs and states need ', wanted, ' times ', states, ''
        text = trim(line)//'; '
    end function wrong_shape

end module ostrel_handles
