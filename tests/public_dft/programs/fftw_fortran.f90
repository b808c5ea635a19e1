! SPDX-License-Identifier: MIT
! The old Fortran names of FFTW: two dimensions, complex and real, beside sums.
program fftw_fortran
    implicit none
    integer, parameter :: estimate = 64, nx = 6, ny = 5
    real(8), parameter :: pi = acos(-1d0)
    complex(8) :: z(nx, ny), w(nx, ny), half(nx / 2 + 1, ny)
    real(8) :: x(nx, ny), y(nx, ny)
    integer(8) :: plan
    integer :: i, j
    do j = 1, ny
        do i = 1, nx
            x(i, j) = sin(real(i * i + 3 * j, 8))
            z(i, j) = cmplx(x(i, j), cos(real(i + j * j, 8)), 8)
        end do
    end do
    call dfftw_plan_dft_2d(plan, nx, ny, z, w, -1, estimate)
    call dfftw_execute(plan)
    call dfftw_destroy_plan(plan)
    do j = 1, ny
        do i = 1, nx
            if (.not. abs(w(i, j) - transform(z, i - 1, j - 1)) < 1d-12) stop 1
        end do
    end do
    call dfftw_plan_dft_r2c_2d(plan, nx, ny, x, half, estimate)
    call dfftw_execute_dft_r2c(plan, x, half)
    call dfftw_destroy_plan(plan)
    do j = 1, ny
        do i = 1, nx / 2 + 1
            if (.not. abs(half(i, j) - transform(cmplx(x, 0d0, 8), i - 1, j - 1)) < 1d-12) stop 2
        end do
    end do
    call dfftw_plan_dft_c2r_2d(plan, nx, ny, half, y, estimate)
    call dfftw_execute(plan)
    call dfftw_destroy_plan(plan)
    if (.not. maxval(abs(y - nx * ny * x)) < 1d-12) stop 3
contains
    complex(8) function transform(a, k, l)
        complex(8), intent(in) :: a(nx, ny)
        integer, intent(in) :: k, l
        integer :: p, q
        transform = 0
        do q = 1, ny
            do p = 1, nx
                transform = transform + a(p, q) * exp(cmplx(0d0, -2 * pi * (real((p - 1) * k, 8) / nx &
                    + real((q - 1) * l, 8) / ny), 8))
            end do
        end do
    end function
end program
