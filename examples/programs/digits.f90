! SPDX-License-Identifier: MIT
! Handwritten digits in Fortran on LAPACK and BLAS: Gaussian kernels, least squares, singular values, eigenvalues. Every result
! is checked by what defines it. README.md says what is printed.
!     gfortran -O2 digits.f90 -llapack -lblas -o digits && ./digits ../data
program digits
  implicit none
  integer, parameter :: dp = kind(1d0), images = 1797, train = 1200, centres = 500, part = 700
  real(dp), parameter :: eps = epsilon(1d0)
  character(512) :: folder
  logical :: failed = .false.
  real(dp) :: pixels(64, images), wanted(images, 10)
  integer :: digit(images)
  call get_command_argument(1, folder)
  if (folder == '') folder = '../data'
  call load()
  call kernel_regression()
  call least_squares()
  call principal_components()
  call eigenvectors()
  call libraries()
  if (failed) stop 1, quiet=.true.

contains

  subroutine load()
    integer :: file, i, row(65)
    open (newunit=file, file=trim(folder)//'/digits.csv', status='old')
    wanted = -1
    do i = 1, images
      read (file, *) row
      pixels(:, i) = row(:64)
      digit(i) = row(65)
      wanted(i, digit(i) + 1) = 1
    end do
    close (file)
  end subroutine

  subroutine check(name, value, limit)
    character(*), intent(in) :: name
    real(dp), intent(in) :: value, limit
    logical :: right
    right = value <= limit ! a NaN is not
    failed = failed .or. .not. right
    print '(a,2es11.3,a)', 'check '//name, value, limit, trim(merge('      ', ' wrong', right))
  end subroutine

  ! Milliseconds since an unknown moment.
  function now()
    real(dp) :: now
    integer(8) :: count, rate
    call system_clock(count, rate)
    now = 1d3*count/rate
  end function

  subroutine report(name, start, info)
    character(*), intent(in) :: name
    real(dp), intent(in) :: start
    integer, intent(in) :: info
    print '(a,f0.3)', 'time '//name//' ', now() - start
    if (info /= 0) then
      print '(2a,i0)', name, ': info = ', info
      failed = .true.
    end if
  end subroutine

  ! exp(-|x - y|^2/1000) of every image of x with every image of y.
  subroutine kernel(x, y, k)
    real(dp), intent(in) :: x(:, :), y(:, :)
    real(dp), intent(out) :: k(:, :)
    integer :: j
    call dgemm('T', 'N', size(x, 2), size(y, 2), 64, -2d0, x, 64, y, 64, 0d0, k, size(k, 1))
    do j = 1, size(y, 2)
      k(:, j) = exp(-0.001_dp*(k(:, j) + sum(x*x, 1) + sum(y(:, j)**2)))
    end do
  end subroutine

  function errors(scores, first)
    real(dp), intent(in) :: scores(:, :)
    integer, intent(in) :: first
    real(dp) :: errors
    errors = count(maxloc(scores, 2) - 1 /= digit(first:first + size(scores, 1) - 1))/real(size(scores, 1), dp)
  end function

  subroutine kernel_regression()
    real(dp), allocatable :: k(:, :), factor(:, :), weight(:, :), rest(:, :), across(:, :), scores(:, :)
    real(dp) :: last(train), start
    integer :: i, info
    allocate (k(train, train), across(images - train, train), scores(images - train, 10))
    start = now()
    call kernel(pixels(:, :train), pixels(:, :train), k)
    call report('kernel-matrix', start, 0)
    last = exp(-0.001_dp*sum((pixels(:, :train) - spread(pixels(:, train), 2, train))**2, 1))
    call check('kernel-last-column', norm2(k(:, train) - last)/norm2(last), 4*eps)
    do i = 1, train
      k(i, i) = k(i, i) + 0.01_dp
    end do
    factor = k
    weight = wanted(:train, :)
    start = now()
    call dposv('L', train, 10, factor, train, weight, train, info)
    call report('kernel-regression', start, info)
    rest = wanted(:train, :)
    call dgemm('N', 'N', train, 10, train, -1d0, k, train, weight, train, 1d0, rest, train)
    call check('kernel-residual', norm2(rest)/(norm2(k)*norm2(weight)), 100*eps)
    call kernel(pixels(:, train + 1:), pixels(:, :train), across)
    call dgemm('N', 'N', images - train, 10, train, 1d0, across, images - train, weight, train, 0d0, scores, images - train)
    call check('kernel-errors', errors(scores, train + 1), 0.06_dp)
  end subroutine

  ! Gaussian bumps about the first images, fitted to all of them.
  subroutine least_squares()
    real(dp), allocatable :: a(:, :), factor(:, :), x(:, :), rest(:, :), gradient(:, :), work(:)
    real(dp) :: start
    integer :: info
    allocate (a(images, centres), work(64*images), gradient(centres, 10))
    call kernel(pixels, pixels(:, :centres), a)
    factor = a
    x = wanted
    start = now()
    call dgels('N', images, centres, 10, factor, images, x, images, work, size(work), info)
    call report('least-squares', start, info)
    rest = wanted
    call dgemm('N', 'N', images, 10, centres, -1d0, a, images, x, images, 1d0, rest, images)
    call check('least-squares-errors', errors(wanted - rest, 1), 0.05_dp)
    call dgemm('T', 'N', centres, 10, images, 1d0, a, images, rest, images, 0d0, gradient, centres)
    call check('least-squares-gradient', norm2(gradient)/(norm2(a)**2*norm2(x(:centres, :))), 100*eps)
  end subroutine

  subroutine principal_components()
    real(dp), allocatable :: a(:, :), centred(:, :), u(:, :), vt(:, :), work(:)
    real(dp) :: s(64), start
    integer :: iwork(8*64), info, i
    centred = pixels - spread(sum(pixels, 2)/images, 2, images)
    allocate (a(64, images), u(64, 64), vt(64, images), work(200000))
    a = centred
    start = now()
    call dgesdd('S', 64, images, a, 64, s, u, 64, vt, 64, work, size(work), iwork, info)
    call report('principal-components', start, info)
    call check('components-variance', abs(sum(s*s)/sum(centred*centred) - 1), 10000*eps)
    do i = 1, 64
      vt(i, :) = s(i)*vt(i, :)
    end do
    a = centred
    call dgemm('N', 'N', 64, images, 64, -1d0, u, 64, vt, 64, 1d0, a, 64)
    call check('components-product', norm2(a)/norm2(centred), 100*eps)
  end subroutine

  subroutine eigenvectors()
    real(dp), allocatable :: k(:, :), v(:, :), rest(:, :), work(:)
    real(dp) :: w(part), start
    integer :: iwork(3 + 5*part), info, i
    allocate (k(part, part), work(1 + 6*part + 2*part*part), rest(part, part))
    call kernel(pixels(:, :part), pixels(:, :part), k)
    v = k
    start = now()
    call dsyevd('V', 'L', part, v, part, w, work, size(work), iwork, size(iwork), info)
    call report('eigenvectors', start, info)
    do i = 1, part
      rest(:, i) = w(i)*v(:, i)
    end do
    call dsymm('L', 'U', part, part, -1d0, k, part, v, part, 1d0, rest, part)
    call check('eigenvectors-product', norm2(rest)/norm2(k), 100*eps)
    rest = 0
    do i = 1, part
      rest(i, i) = -1
    end do
    call dsyrk('L', 'T', part, part, 1d0, v, part, 1d0, rest, part)
    call check('eigenvectors-orthogonal', norm2(rest), 1e5*eps)
  end subroutine

  subroutine libraries()
    character(4096) :: line
    integer :: file, status
    open (newunit=file, file='/proc/self/maps', status='old')
    do
      read (file, '(a)', iostat=status) line
      if (status /= 0) exit
      if (index(line, '.so') > 0) print '(2a)', 'library ', trim(line(index(line, '/'):))
    end do
    close (file)
  end subroutine
end program
