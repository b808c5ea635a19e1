// SPDX-License-Identifier: MIT
// A minute of an electrocardiogram. The hum of the mains is the line of its spectrum near 60 Hz; brought down to the
// level of its neighbours, it is gone from the signal. The heart rate is found as Pan and Tompkins (1985) find beats:
// the QRS complexes have most of the energy between 5 and 15 Hz, so the signal is limited to that band, squared and
// smoothed. What is left peaks once a beat: its autocorrelation gives a rate, the intervals between peaks another.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <fmt/format.h>

#include "demos/csv.h"
#include "demos/demo.h"
#include "demos/ecg.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

constexpr double notch = 0.25, around = 1.5;             // Hz on either side of the hum and of what it is compared with
constexpr double low = 5, high = 15, edge = 1;           // Hz, band of the QRS complexes and its raised-cosine edges
constexpr double smoothing = 0.06;                       // s, standard deviation of a Gaussian
constexpr double fastest = 200, slowest = 40;            // beats a minute
constexpr double least_peak = 0.35;                      // of the median peak; less is no beat
constexpr size_t shortest = 10 * 360, longest = 1 << 22; // samples

} // namespace

std::vector<double> read_ecg(const std::string& file)
{
    std::vector<double> signal;
    for (const auto& row : read_csv(file, {1, 0, 4095, 0, 4095})) signal.push_back(row.back());
    if (signal.size() < shortest || signal.size() > longest)
        throw std::runtime_error(
            fmt::format("{}: {} samples; {} to {} are wanted", file, signal.size(), shortest, longest));
    double mean = 0;
    for (const double value : signal) mean += value / static_cast<double>(signal.size());
    for (double& value : signal) value -= mean;
    return signal;
}

namespace {

// Median amplitude near a frequency, the notch left out.
double level_around(const Ecg& e, const std::vector<Complex>& spectrum, double centre)
{
    std::vector<double> amplitudes;
    for (size_t k = 0; k < spectrum.size(); ++k) {
        const double distance = std::fabs(e.frequency(k) - centre);
        if (distance > notch && distance <= around) amplitudes.push_back(e.amplitude(spectrum, k));
    }
    return peers::median(std::move(amplitudes));
}

void remove_hum(Ecg& e, const RealTransform& transform)
{
    for (size_t k = 0; k < e.spectrum.size(); ++k)
        if (std::fabs(e.frequency(k) - mains) <= notch &&
            (e.hum == 0 || std::abs(e.spectrum[k]) > std::abs(e.spectrum[e.hum])))
            e.hum = k;
    std::vector<Complex> spectrum = e.spectrum;
    for (double harmonic = mains; harmonic <= sample_rate / 2; harmonic += mains) {
        const double level = level_around(e, spectrum, harmonic);
        for (size_t k = 0; k < spectrum.size(); ++k)
            if (std::fabs(e.frequency(k) - harmonic) <= notch && e.amplitude(spectrum, k) > level)
                spectrum[k] *= level / e.amplitude(spectrum, k);
    }
    e.clean = transform.backward(spectrum);
    e.clean_spectrum = transform.forward(e.clean);
}

double band_weight(double frequency)
{
    const double outside = std::max(low - frequency, frequency - high);
    if (outside <= 0) return 1;
    return outside >= edge ? 0 : 0.5 + 0.5 * std::cos(M_PI * outside / edge);
}

void find_energy(Ecg& e, const RealTransform& transform)
{
    std::vector<Complex> band = e.clean_spectrum;
    for (size_t k = 0; k < band.size(); ++k) band[k] *= band_weight(e.frequency(k));
    std::vector<double> squares = transform.backward(band);
    for (double& value : squares) value *= value;
    std::vector<Complex> smooth = transform.forward(squares);
    for (size_t k = 0; k < smooth.size(); ++k) {
        const double turns = M_PI * e.frequency(k) * smoothing;
        smooth[k] *= std::exp(-2 * turns * turns);
    }
    e.energy = transform.backward(smooth);
}

// As many zeros behind the signal as it is long keep its end from meeting its begin.
void find_autocorrelation(Ecg& e)
{
    const size_t n = e.energy.size();
    double mean = 0;
    for (const double value : e.energy) mean += value / static_cast<double>(n);
    std::vector<double> padded(2 * n, 0.0);
    for (size_t i = 0; i < n; ++i) padded[i] = e.energy[i] - mean;
    const RealTransform transform({static_cast<int64_t>(2 * n)});
    std::vector<Complex> spectrum = transform.forward(padded);
    for (Complex& value : spectrum) value = std::norm(value);
    e.autocorrelation = transform.backward(spectrum);
    e.autocorrelation.resize(n);
    const double all = e.autocorrelation[0];
    for (double& value : e.autocorrelation) value /= all;
}

void find_rates(Ecg& e)
{
    const auto lag = [](double rate) { return static_cast<size_t>(60 * sample_rate / rate); };
    const auto first = e.autocorrelation.begin();
    const auto peak = std::max_element(first + static_cast<std::ptrdiff_t>(lag(fastest)),
                                       first + static_cast<std::ptrdiff_t>(lag(slowest)));
    e.rate_autocorrelation = 60 * sample_rate / static_cast<double>(peak - first);

    std::vector<size_t> peaks;
    std::vector<double> heights;
    for (size_t i = 1; i + 1 < e.energy.size(); ++i)
        if (e.energy[i] > e.energy[i - 1] && e.energy[i] >= e.energy[i + 1]) {
            peaks.push_back(i);
            heights.push_back(e.energy[i]);
        }
    const double least = least_peak * peers::median(heights);
    for (const size_t at : peaks)
        if (e.energy[at] >= least) e.beats.push_back(at);
    std::vector<double> intervals;
    for (size_t b = 1; b < e.beats.size(); ++b)
        intervals.push_back(static_cast<double>(e.beats[b] - e.beats[b - 1]) / sample_rate);
    e.rate_median = intervals.empty() ? NAN : 60 / peers::median(intervals);
}

} // namespace

Ecg analyse_ecg(const std::vector<double>& signal)
{
    Ecg e;
    e.signal = signal;
    const RealTransform transform({static_cast<int64_t>(signal.size())});
    e.spectrum = transform.forward(signal);
    remove_hum(e, transform);
    find_energy(e, transform);
    find_autocorrelation(e);
    find_rates(e);
    return e;
}

namespace {

// Amplitude of one frequency by the sum that defines it.
double direct_amplitude(const std::vector<double>& signal, size_t k)
{
    std::complex<long double> sum = 0;
    for (size_t j = 0; j < signal.size(); ++j)
        sum += static_cast<long double>(signal[j]) * root_of_unity(j * k, signal.size());
    return static_cast<double>(2 * std::abs(sum) / static_cast<long double>(signal.size()));
}

void verify(const Ecg& e, Report& report)
{
    const size_t n = e.signal.size();
    const RealTransform transform({static_cast<int64_t>(n)});
    const TransformErrors before = errors_of(transform, e.signal, e.spectrum, {0, 1, 97, n / 7, e.hum, n / 2}),
                          after = errors_of(transform, e.clean, e.clean_spectrum, {3, n / 5, e.hum});
    report.check("Parseval's identity, signal and cleaned signal", std::max(before.parseval, after.parseval), 1e-13);
    report.check("there and back, of the largest sample", std::max(before.there_and_back, after.there_and_back), 1e-13);
    report.check("elements of the spectra against sums in long double, of the root mean square",
                 std::max(before.elements, after.elements), 1e-14);

    double hum = 0, outside = 0, removed = 0, correlation = 0, beat = 0;
    keep_largest(hum, std::fabs(direct_amplitude(e.signal, e.hum) - e.amplitude(e.spectrum, e.hum)));
    keep_largest(hum, std::fabs(direct_amplitude(e.clean, e.hum) - e.amplitude(e.clean_spectrum, e.hum)));
    for (size_t k = 0; k < e.spectrum.size(); ++k) {
        const double to = std::fabs(std::remainder(e.frequency(k), mains));
        if (to > notch || e.frequency(k) < mains / 2)
            keep_largest(outside, std::abs(e.spectrum[k] - e.clean_spectrum[k]));
    }
    keep_largest(removed, e.amplitude(e.clean_spectrum, e.hum) / level_around(e, e.clean_spectrum, mains) - 1);
    report.check("amplitudes of the hum against sums in long double, counts", hum, 1e-11);
    report.check("change of the spectrum beside the hum and its harmonics", outside, 1e-7);
    report.check("what is left of the hum over the level around it", removed, 1e-9);

    long double mean = 0, all = 0;
    for (const double value : e.energy) mean += value / static_cast<long double>(n);
    for (const double value : e.energy) all += (value - mean) * (value - mean);
    const auto best = static_cast<size_t>(std::lround(60 * sample_rate / e.rate_autocorrelation));
    for (const size_t lag : {size_t{1}, size_t{100}, best, n / 2, n - 1}) {
        long double sum = 0;
        for (size_t i = 0; i + lag < n; ++i) sum += (e.energy[i] - mean) * (e.energy[i + lag] - mean);
        keep_largest(correlation, std::fabs(sum / all - e.autocorrelation[lag]));
    }
    report.check("autocorrelation against sums of products", correlation, 1e-13);
    for (const size_t at : e.beats)
        for (size_t i = at > 20 ? at - 20 : 0; i < std::min(n, at + 20); ++i)
            keep_largest(beat, e.energy[i] / e.energy[at] - 1);
    report.check("beats are the highest points around them", beat, 0);
    report.check("rates of beats by intervals and by autocorrelation differ, beats a minute",
                 std::fabs(e.rate_median - e.rate_autocorrelation), 15);
}

void run(const Places& places, Report& report)
{
    const std::vector<double> signal = read_ecg(places.data + "/ecg.txt");
    std::vector<double> seconds;
    Ecg e;
    for (double all = 0; seconds.size() < 5 || (all < 0.1 && seconds.size() < 51); all += seconds.back()) {
        const auto start = std::chrono::steady_clock::now();
        e = analyse_ecg(signal);
        seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    verify(e, report);
    const double before = e.amplitude(e.spectrum, e.hum), after = e.amplitude(e.clean_spectrum, e.hum);
    double removed = 0;
    for (size_t i = 0; i < signal.size(); ++i)
        removed += (e.clean[i] - signal[i]) * (e.clean[i] - signal[i]) / static_cast<double>(signal.size());
    report.line(fmt::format("  {} samples, {:.1f} s", signal.size(), static_cast<double>(signal.size()) / sample_rate));
    report.line(
        fmt::format("  heart rate {:.1f} beats a minute by autocorrelation, {:.1f} by the median of {} intervals",
                    e.rate_autocorrelation, e.rate_median, e.beats.size() - 1));
    report.line(fmt::format("  mains hum at {:.2f} Hz: amplitude {:.2f} counts, {:.1f} times the level around it",
                            e.frequency(e.hum), before, before / level_around(e, e.spectrum, mains)));
    report.line(fmt::format("  after its removal {:.2f} counts; {:.2f} counts (rms) taken out of the signal", after,
                            std::sqrt(removed)));
    // six transforms of the length, two of twice the length
    const double n = static_cast<double>(signal.size());
    report.timing(peers::median(seconds), 6 * 2.5 * n * std::log2(n) + 2 * 5 * n * std::log2(2 * n));
    if (!report.all_hold()) return;
    const std::string picture = places.out + "/ork-demo-ecg.svg";
    draw_ecg(picture, e);
    report.picture(picture);
}

} // namespace

const Demo ecg = {"ecg", "ecg.txt, 60 s of an electrocardiogram sampled at 360 Hz: 21,600 samples",
                  "the heart rate, and the hum of the mains found and removed, by real transforms", run};

} // namespace ork::tool
