! SPDX-License-Identifier: MIT
! Shows how this compiler's runtime treats list-directed input and output.
!
! Arguments: a folder, in which the file `cases` lists one case in each line, and the file that receives the answers.
!   Fp###  name     two READs of ### values of pattern p from the file `name`
!   Lp###  name     the same, each READ from one line of the file, taken as a text of 255 characters
!   Wp###  words    the ### values, given as hexadecimal words, written as one record
! Patterns: r reals, i integers, l logicals, m an integer, a real, a logical and a real.
! The answer to a READ is 0 (success) or 1 and the values as hexadecimal words. The answer to a WRITE is the record.
program list_directed_oracle
  use, intrinsic :: iso_fortran_env, only: int32, int64, real64, iostat_end
  implicit none
  integer, parameter :: most = 40
  character(len=1024) :: folder, answers, name
  character(len=255) :: line
  character(len=1) :: form, pattern
  integer(int64) :: words(most)
  real(real64) :: x(most)
  integer(int32) :: n(most)
  logical :: flag(most)
  integer :: count, status, pass

  call get_command_argument(1, folder)
  call get_command_argument(2, answers)
  open (unit=10, file=trim(folder)//'/cases', status='old', action='read')
  open (unit=11, file=trim(answers), status='replace', action='write', recl=100000)
  do
    read (10, '(a1,a1,i3,1x,a)', iostat=status) form, pattern, count, name
    if (status == iostat_end) exit
    if (status /= 0 .or. count > most) error stop 'a case that cannot be read'
    if (form == 'W') then
      read (name, '(*(z16,1x))') words(:count)
      call write_record
      cycle
    end if
    open (unit=12, file=trim(folder)//'/'//trim(name), status='old', action='read')
    do pass = 1, 2
      x = -1.25_real64
      n = -77
      flag(1::2) = .true.
      flag(2::2) = .false.
      if (form == 'L') then
        read (12, '(a)', iostat=status) line
        if (status == 0) call read_line
      else
        call read_file
      end if
      call answer
      if (status /= 0) exit
    end do
    close (12)
  end do
  close (11)

contains

  subroutine read_file
    select case (pattern)
    case ('r')
      read (12, *, iostat=status) x(:count)
    case ('i')
      read (12, *, iostat=status) n(:count)
    case ('l')
      read (12, *, iostat=status) flag(:count)
    case default
      read (12, *, iostat=status) n(1), x(2), flag(3), x(4)
    end select
  end subroutine read_file

  subroutine read_line
    select case (pattern)
    case ('r')
      read (line, *, iostat=status) x(:count)
    case ('i')
      read (line, *, iostat=status) n(:count)
    case ('l')
      read (line, *, iostat=status) flag(:count)
    case default
      read (line, *, iostat=status) n(1), x(2), flag(3), x(4)
    end select
  end subroutine read_line

  subroutine answer
    integer :: i
    select case (pattern)
    case ('r')
      words(:count) = [(transfer(x(i), 0_int64), i=1, count)]
    case ('i')
      words(:count) = n(:count)
    case ('l')
      words(:count) = merge(1_int64, 0_int64, flag(:count))
    case default
      words(:4) = [int(n(1), int64), transfer(x(2), 0_int64), merge(1_int64, 0_int64, flag(3)), transfer(x(4), 0_int64)]
    end select
    write (11, '(i1,*(1x,z16.16))') merge(0, 1, status == 0), words(:count)
  end subroutine answer

  subroutine write_record
    x(:count) = [(transfer(words(pass), 0.0_real64), pass=1, count)]
    n(:count) = int(words(:count), int32)
    select case (pattern)
    case ('r')
      write (11, *) x(:count)
    case ('i')
      write (11, *) n(:count)
    case ('l')
      write (11, *) words(:count) == 1
    case default
      write (11, *) n(1), x(2), words(3) == 1, x(4)
    end select
  end subroutine write_record

end program list_directed_oracle
