! SPDX-License-Identifier: MIT
! The interface as gfortran compiles it: functions with real, complex and logical results, hidden lengths of letters.
program fortran_program
    implicit none
    external :: dgemm
    double precision, external :: ddot, dnrm2, dzasum
    real, external :: sdot, sdsdot
    complex, external :: cdotu, cdotc
    double complex, external :: zdotu, zdotc
    integer, external :: isamax, izamax
    logical, external :: lsame

    double precision :: x(3) = [1d0, 2d0, 3d0], y(3) = [4d0, 5d0, 6d0]
    double precision :: a(2, 3), b(3, 2), c(2, 2)
    complex :: u(2) = [(1.0, 2.0), (3.0, -1.0)], v(2) = [(0.0, 1.0), (2.0, 2.0)]
    double complex :: p(2) = [(1d0, 2d0), (3d0, -1d0)], q(2) = [(0d0, 1d0), (2d0, 2d0)]

    call check(ddot(3, x, 1, y, -1) == dot_product(x, y(3:1:-1)), 1)
    call check(dnrm2(2, [3d0, 4d0], 1) == 5d0, 2)
    call check(sdot(2, [2.0, 3.0], 1, [4.0, 5.0], 1) == 23.0, 3)
    call check(sdsdot(2, 0.5, [2.0, 3.0], 1, [4.0, 5.0], 1) == 23.5, 4)
    call check(cdotu(2, u, 1, v, 1) == sum(u * v), 5)
    call check(cdotc(2, u, 1, v, 1) == sum(conjg(u) * v), 6)
    call check(zdotu(2, p, 1, q, 1) == sum(p * q), 7)
    call check(zdotc(2, p, 1, q, 1) == sum(conjg(p) * q), 8)
    call check(dzasum(2, p, 1) == 7d0, 9)
    call check(isamax(3, [1.0, -7.0, 2.0], 1) == 2, 10)
    call check(izamax(2, p, 1) == 2, 11)
    call check(lsame('n', 'N') .and. .not. lsame('n', 'T'), 12)

    a = reshape([1d0, 2d0, 3d0, 4d0, 5d0, 6d0], [2, 3])
    b = reshape([1d0, 0d0, 2d0, 0d0, 1d0, 1d0], [3, 2])
    c = 1d0
    call dgemm('No transpose', 'n', 2, 2, 3, 2d0, a, 2, b, 3, -1d0, c, 2)
    call check(all(c == 2d0 * matmul(a, b) - 1d0), 13)

contains

    subroutine check(good, number)
        logical, intent(in) :: good
        integer, intent(in) :: number
        if (.not. good) then
            print *, 'check', number, 'failed'
            stop 1
        end if
    end subroutine
end program
