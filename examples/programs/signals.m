# SPDX-License-Identifier: MIT
# An electrocardiogram and a photograph in Octave: filters by FFT, a predictor by least squares, eigenvalues. Every result is
# checked by what defines it. Usage: octave-cli signals.m [folder of data]. README.md says what is printed.
1;
global failed = false;

function check(name, value, limit)
  global failed;
  verdict = "";
  if (! (value <= limit)) # a NaN is wrong
    failed = true;
    verdict = " wrong";
  endif
  printf("check %s %.3g %.3g%s\n", name, value, limit, verdict);
endfunction

function varargout = timed(name, work)
  start = tic;
  [varargout{1:max(nargout, 1)}] = work();
  printf("time %s %.3f\n", name, 1e3 * toc(start));
endfunction

if (isempty(argv()))
  folder = fullfile(fileparts(mfilename("fullpath")), "..", "data");
else
  folder = argv(){1};
endif
ecg = load(fullfile(folder, "ecg.txt"))(:) / 200; # mV
rate = 360;                                       # Hz
n = numel(ecg);

# 0.5 to 40 Hz: what is slower is breath, what is faster is muscle and mains.
f = (0:n-1)' * rate / n;
f = min(f, rate - f);
band = f >= 0.5 & f <= 40;
spectrum = timed("ecg-fft", @() fft(ecg));
check("ecg-parseval", abs(norm(spectrum)^2 / (n * norm(ecg)^2) - 1), 1000 * eps);
filtered = timed("ecg-filter", @() real(ifft(spectrum .* band)));
rest = real(ifft(spectrum .* ! band));
check("ecg-bands-add-up", norm(filtered + rest - ecg) / norm(ecg), 100 * eps);
check("ecg-bands-orthogonal", abs(filtered' * rest) / norm(ecg)^2, 100 * eps);

# The filter's own spectrum, one bin by its sum.
bin = 73; # 1.2 Hz
check("ecg-bin", abs(spectrum(bin + 1) - exp(-2i * pi / n * mod(bin * (0:n-1), n)) * ecg) / norm(ecg), 1e-11);

# Twice the length, so that the end does not meet the beginning.
beats = timed("ecg-autocorrelation", @() real(ifft(abs(fft([filtered; zeros(n, 1)])) .^ 2))(1:n));
check("ecg-autocorrelation-sum", abs(beats(101) - filtered(1:end-100)' * filtered(101:end)) / norm(filtered)^2, 100 * eps);

# Each sample from the 64 before it.
order = 64;
past = toeplitz(ecg(order:end-1), ecg(order:-1:1));
next = ecg(order+1:end);
predictor = timed("ecg-predictor", @() past \ next);
miss = past * predictor - next;
check("predictor-gradient", norm(past' * miss) / (norm(past, "fro") * norm(next)), 1000 * eps);
check("predictor-miss", norm(miss) / norm(next), 0.1);

# Oscillations in the signal: eigenvalues of the covariance of 400 neighbouring samples.
covariance = toeplitz(beats(1:400) / n);
[vector, value] = timed("ecg-eigenvectors", @() eig(covariance));
check("eigenvectors-product", norm(covariance * vector - vector * value, "fro") / norm(covariance, "fro"), 100 * eps);
check("eigenvectors-orthogonal", norm(vector' * vector - eye(400), "fro"), 1e5 * eps);
inverse = timed("ecg-inverse", @() inv(covariance + 1e-3 * eye(400)));
check("inverse-product", norm((covariance + 1e-3 * eye(400)) * inverse - eye(400), "fro")
      / (norm(covariance, "fro") * norm(inverse, "fro")), 100 * eps);

# The photograph under a Gaussian lens and sharp again, in the domain of its Fourier transform.
file = fopen(fullfile(folder, "ascent.pgm"));
head = fscanf(file, "P5 %d %d %d", 3)';
fread(file, 1);
photo = double(fread(file, head(1:2), "uint8"))';
fclose(file);
[x, y] = meshgrid([0:255, -256:-1]);
lens = exp(-(x .^ 2 + y .^ 2) / 2 / 0.8^2);
lens /= sum(lens(:));
blurred = timed("photo-blur", @() real(ifft2(fft2(photo) .* fft2(lens))));
near = circshift(lens, [8, 8])(1:17, 1:17);
direct = conv2(photo, near, "valid");
check("photo-blur-sum", norm(blurred(9:end-8, 9:end-8) - direct, "fro") / norm(direct, "fro"), 100 * eps);
sharp = timed("photo-sharpen", @() real(ifft2(fft2(blurred) ./ fft2(lens))));
check("photo-sharp", norm(sharp - photo, "fro") / norm(photo, "fro"), 1e-11);
product = timed("photo-product", @() photo * photo');
check("photo-product-integers", norm(product - round(product), "fro"), 0); # sums below 2^53 are exact in any order
check("photo-product-trace", abs(trace(product) - sumsq(photo(:))), 0);
svd_driver("gesdd");
[u, s, v] = timed("photo-svd", @() svd(photo));
check("photo-svd-product", norm(u * s * v' - photo, "fro") / norm(photo, "fro"), 100 * eps);

maps = strsplit(fileread("/proc/self/maps"), "\n");
paths = regexp(maps, "/\\S*\\.so\\S*$", "match", "once");
printf("library %s\n", unique(paths(! cellfun(@isempty, paths))){:});
exit(double(failed));
