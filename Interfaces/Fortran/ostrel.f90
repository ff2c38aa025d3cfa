! SPDX-License-Identifier: MIT
!> Module ostrel: the library's entry points for Fortran programs, with interfaces that the compiler checks.
!!
!! Compile this file with the program. It is installed as source, in share/ostrel/Fortran, since every compiler
!! has its own form of module files. With CMake, ostrel::fortran compiles it and links the library; by hand,
!!   gfortran $(pkg-config --variable=fortran ostrel) host.f90 $(pkg-config --libs ostrel)
!! The module is standard Fortran 2008. Its names, arguments and behaviour are those of the external procedures that
!! older programs call: "external ostrel_prop" becomes "use ostrel". ostrel.h is the contract of all of them. The
!! library has one set of state and no locks: calls must not overlap. As units, [-] marks texts and counts, [SI] the
!! unit that stands beside the code of a quantity.
module ostrel
    use, intrinsic :: iso_c_binding, only: c_char, c_double, c_funptr, c_int32_t, c_loc, c_null_funptr, c_null_ptr, &
                                           c_ptr, c_size_t
    implicit none
    private

    public :: ostrel_prop, get_tv, ostrel_info, ostrel_fluids, getversion, ostrel_sub
    public :: read_init_fluiddata, read_init_fluiddatafile, read_init_fluiddatadb
    public :: ostrel_use_host, ostrel_host, host_fluidpath, host_searchdirectory, host_getfluid
    public :: succeeded, text_of, fill_field

    !> Value of a request that failed.
    real(c_double), parameter, public :: ostrel_failure = -8888.8_c_double
    !> Length of a fluid name in the list of fluids.
    integer, parameter, public :: ostrel_name_len = 256

    !> The routines that belong to the host. Each member is the c_funloc of a procedure with the interface below. A
    !! member that is not set stands for the library's own routine.
    type, bind(c) :: ostrel_host
        type(c_funptr) :: fluidpath = c_null_funptr       !! a host_fluidpath
        type(c_funptr) :: searchdirectory = c_null_funptr !! a host_searchdirectory
        type(c_funptr) :: getfluid = c_null_funptr        !! a host_getfluid
    end type ostrel_host

    ! The interfaces of host routines. The fields that they fill are blank before. text_of makes a text of a field, and
    ! fill_field puts a text into a field.
    abstract interface
        !> Fills path with the fluid directory, its separator included.
        subroutine host_fluidpath(path, key, path_len, key_len) bind(c)
            import :: c_char, c_size_t
            integer(c_size_t), value, intent(in) :: path_len               !! [-] 256
            integer(c_size_t), value, intent(in) :: key_len                !! [-] length of key
            character(kind=c_char), intent(inout) :: path(path_len)        !! [-] receives the directory
            character(kind=c_char), intent(in) :: key(key_len)             !! [-] "Ostrel"
        end subroutine host_fluidpath

        !> Fills names with the directory's files that match pattern.
        subroutine host_searchdirectory(directory, pattern, names, directory_len, pattern_len, name_len) bind(c)
            import :: c_char, c_size_t
            integer(c_size_t), value, intent(in) :: directory_len          !! [-] length of directory
            integer(c_size_t), value, intent(in) :: pattern_len            !! [-] length of pattern
            integer(c_size_t), value, intent(in) :: name_len               !! [-] length of one name
            character(kind=c_char), intent(in) :: directory(directory_len) !! [-] as fluidpath gave it
            character(kind=c_char), intent(in) :: pattern(pattern_len)     !! [-] "*.osd" and a NUL
            character(kind=c_char), intent(inout) :: names(name_len, 500)  !! [-] receives file names
        end subroutine host_searchdirectory

        !> Fills lines with a fluid's text, one record in each line, and returns non-zero on success. It must refuse a
        !! text with a longer line.
        function host_getfluid(location, key, lines, found, location_len, key_len, line_len) bind(c) result(status)
            import :: c_char, c_int32_t, c_size_t
            integer(c_size_t), value, intent(in) :: location_len           !! [-] length of location
            integer(c_size_t), value, intent(in) :: key_len                !! [-] length of key
            integer(c_size_t), value, intent(in) :: line_len               !! [-] length of one line, 255
            character(kind=c_char), intent(in) :: location(location_len)   !! [-] as read_init_fluiddatadb got it
            character(kind=c_char), intent(in) :: key(key_len)             !! [-] fluid name
            character(kind=c_char), intent(inout) :: lines(line_len, 255)  !! [-] receives the records
            integer(c_int32_t), intent(out) :: found                       !! [-] non-zero on success
            integer(c_int32_t) :: status
        end function host_getfluid
    end interface

    ! The C functions. The units of their arguments stand at the procedures below.
    interface
        function c_ostrel_prop(fluid, inputspec, input1, input2, outputspec, errmsg, fluid_len, inputspec_len, &
                               outputspec_len, errmsg_len) bind(c, name='ostrel_prop') result(property)
            import :: c_char, c_double, c_size_t
            character(kind=c_char), intent(in) :: fluid(*), inputspec(*), outputspec(*)
            real(c_double), intent(in) :: input1, input2
            character(kind=c_char), intent(inout) :: errmsg(*)
            integer(c_size_t), value, intent(in) :: fluid_len, inputspec_len, outputspec_len, errmsg_len
            real(c_double) :: property
        end function c_ostrel_prop

        subroutine c_get_tv(inputspec, input1, input2, T, v, inputspec_len) bind(c, name='get_tv')
            import :: c_char, c_double, c_size_t
            character(kind=c_char), intent(in) :: inputspec(*)
            real(c_double), intent(in) :: input1, input2
            real(c_double), intent(inout) :: T, v
            integer(c_size_t), value, intent(in) :: inputspec_len
        end subroutine c_get_tv

        function c_ostrel_info(fluid, name, errmsg, fluid_len, name_len, errmsg_len) &
            bind(c, name='ostrel_info') result(constant)
            import :: c_char, c_double, c_size_t
            character(kind=c_char), intent(in) :: fluid(*), name(*)
            character(kind=c_char), intent(inout) :: errmsg(*)
            integer(c_size_t), value, intent(in) :: fluid_len, name_len, errmsg_len
            real(c_double) :: constant
        end function c_ostrel_info

        subroutine c_ostrel_fluids(count, names, names_len) bind(c, name='ostrel_fluids')
            import :: c_char, c_int32_t, c_size_t
            integer(c_int32_t), intent(out) :: count
            character(kind=c_char), intent(inout) :: names(*)
            integer(c_size_t), value, intent(in) :: names_len
        end subroutine c_ostrel_fluids

        !> Version of the interface: 1, 0, 1, 14.
        subroutine getversion(version) bind(c, name='getversion')
            import :: c_int32_t
            integer(c_int32_t), intent(out) :: version(4) !! [-] receives four numbers
        end subroutine getversion

        !> Writes one line of greeting to standard output. A program that writes there too should flush its unit first,
        !! so that the lines stay in order.
        subroutine ostrel_sub() bind(c, name='ostrel_sub')
        end subroutine ostrel_sub

        subroutine c_read_init_fluiddata(name, name_len) bind(c, name='read_init_fluiddata')
            import :: c_char, c_size_t
            character(kind=c_char), intent(in) :: name(*)
            integer(c_size_t), value, intent(in) :: name_len
        end subroutine c_read_init_fluiddata

        subroutine c_read_init_fluiddatafile(file, file_len) bind(c, name='read_init_fluiddatafile')
            import :: c_char, c_size_t
            character(kind=c_char), intent(in) :: file(*)
            integer(c_size_t), value, intent(in) :: file_len
        end subroutine c_read_init_fluiddatafile

        subroutine c_read_init_fluiddatadb(location, name, location_len, name_len) &
            bind(c, name='read_init_fluiddatadb')
            import :: c_char, c_size_t
            character(kind=c_char), intent(in) :: location(*), name(*)
            integer(c_size_t), value, intent(in) :: location_len, name_len
        end subroutine c_read_init_fluiddatadb

        subroutine c_ostrel_use_host(host) bind(c, name='ostrel_use_host')
            import :: c_ptr
            type(c_ptr), value, intent(in) :: host
        end subroutine c_ostrel_use_host
    end interface

contains

    !> One property of a fluid, or ostrel_failure.
    function ostrel_prop(fluid, inputspec, input1, input2, outputspec, errmsg) result(property)
        character(*), intent(in) :: fluid      !! [-] fluid name; with more than 8 characters it is read every time
        character(*), intent(in) :: inputspec  !! [-] input pair, such as "pt"
        real(c_double), intent(in) :: input1   !! [SI] first value of the pair: t K, p Pa, v m3/kg, d kg/m3, h J/kg
        real(c_double), intent(in) :: input2   !! [SI] second value of the pair; also s J/(kg K), u J/kg, quality q 1
        character(*), intent(in) :: outputspec !! [-] wanted property, such as "h"
        character(*), intent(out) :: errmsg    !! [-] "No errors" or the error text, up to 256 characters
        real(c_double) :: property             !! [SI]
        property = c_ostrel_prop(fluid, inputspec, input1, input2, outputspec, errmsg, len(fluid, c_size_t), &
                                 len(inputspec, c_size_t), len(outputspec, c_size_t), len(errmsg, c_size_t))
    end function ostrel_prop

    !> Reduced temperature and volume of an input pair, for the fluid that is loaded.
    subroutine get_tv(inputspec, input1, input2, T, v)
        character(*), intent(in) :: inputspec !! [-] input pair
        real(c_double), intent(in) :: input1  !! [SI] first value of the pair
        real(c_double), intent(in) :: input2  !! [SI] second value of the pair
        real(c_double), intent(inout) :: T    !! [T_ref] temperature; unchanged for an unknown pair
        real(c_double), intent(inout) :: v    !! [v_ref] specific volume; unchanged for an unknown pair
        call c_get_tv(inputspec, input1, input2, T, v, len(inputspec, c_size_t))
    end subroutine get_tv

    !> One constant of a fluid; 0 if the fluid cannot be loaded, ostrel_failure for an unknown name.
    function ostrel_info(fluid, name, errmsg) result(constant)
        character(*), intent(in) :: fluid   !! [-] fluid name
        character(*), intent(in) :: name    !! [-] "m_mol" kg/mol, "t_crit" K or "p_crit" Pa
        character(*), intent(out) :: errmsg !! [-] "No errors" or the error text
        real(c_double) :: constant          !! [SI]
        constant = c_ostrel_info(fluid, name, errmsg, len(fluid, c_size_t), len(name, c_size_t), len(errmsg, c_size_t))
    end function ostrel_info

    !> The fluids for which there are parameter files.
    subroutine ostrel_fluids(names)
        character(ostrel_name_len), allocatable, intent(out) :: names(:) !! [-] as many names as there are fluids
        integer(c_int32_t) :: count
        allocate (names(500))
        call c_ostrel_fluids(count, names, len(names, c_size_t))
        names = names(:count)
    end subroutine ostrel_fluids

    !> Loads and initialises a fluid from its parameter file in the fluid directory. ostrel_prop does not notice it.
    subroutine read_init_fluiddata(name)
        character(*), intent(in) :: name !! [-] fluid name
        call c_read_init_fluiddata(name, len(name, c_size_t))
    end subroutine read_init_fluiddata

    !> Reads a parameter file and derives nothing from it. This and the next procedure leave the message of a failure in
    !> the library's shared error text only.
    subroutine read_init_fluiddatafile(file)
        character(*), intent(in) :: file !! [-] path of the file, with its extension
        call c_read_init_fluiddatafile(file, len(file, c_size_t))
    end subroutine read_init_fluiddatafile

    !> Reads a fluid from a fluid database and derives nothing from it.
    subroutine read_init_fluiddatadb(location, name)
        character(*), intent(in) :: location !! [-] place of the database, as getfluid takes it
        character(*), intent(in) :: name     !! [-] fluid name
        call c_read_init_fluiddatadb(location, name, len(location, c_size_t), len(name, c_size_t))
    end subroutine read_init_fluiddatadb

    !> Replaces the host routines; without an argument, the library's own routines are used again.
    subroutine ostrel_use_host(host)
        type(ostrel_host), intent(in), optional, target :: host !! [-] the routines, copied
        if (present(host)) then
            call c_ostrel_use_host(c_loc(host))
        else
            call c_ostrel_use_host(c_null_ptr)
        end if
    end subroutine ostrel_use_host

    !> Whether a request succeeded. Only the text tells, since the value of a success may be any number.
    pure logical function succeeded(errmsg)
        character(*), intent(in) :: errmsg !! [-] the error text of the request, of at least 9 characters
        succeeded = index(errmsg, 'No errors') == 1
    end function succeeded

    !> For host routines: the text in a field up to a NUL, without trailing blanks.
    pure function text_of(field) result(text)
        character(kind=c_char), intent(in) :: field(:) !! [-] characters as C has them
        character(:), allocatable :: text
        character(size(field)) :: padded
        integer :: i
        padded = ''
        do i = 1, size(field)
            if (ichar(field(i)) == 0) exit
            padded(i:i) = field(i)
        end do
        text = trim(padded)
    end function text_of

    !> For host routines: puts a text into a field, truncated or blank-padded.
    pure subroutine fill_field(field, text)
        character(kind=c_char), intent(inout) :: field(:) !! [-] characters as C has them
        character(*), intent(in) :: text                  !! [-] the text that the field receives
        integer :: i
        field = ' '
        do i = 1, min(size(field), len(text))
            field(i) = text(i:i)
        end do
    end subroutine fill_field

end module ostrel
