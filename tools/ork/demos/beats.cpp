// SPDX-License-Identifier: MIT
// Heart beats by a matched filter: a short wave shaped like a QRS complex is moved along the electrocardiogram, and
// their correlation peaks where the signal looks like it. The wave is the negative second derivative of a Gaussian,
// which answers neither to a constant nor to a slope, so the wandering of the base line doesn't matter.
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numeric>

#include "demos/correlation.h"
#include "demos/demo.h"
#include "demos/ecg.h"
#include "peers/measure.h"
#include "svg.h"

namespace ork::tool {
namespace {

constexpr double deviation = 0.02; // s, of the Gaussian
constexpr int half = 29;           // samples of the wave on either side of its middle: four deviations
constexpr double refractory = 0.2; // s, a heart that has just beaten does not beat
constexpr double least = 0.35;     // of the median over stretches of 2 s of their highest answer; less is no beat
constexpr double together = 0.1;   // s between what two methods take for the same beat
constexpr double row_seconds = 15; // of the picture

using Values = std::vector<double>;

// Of mean 0 and norm 1.
Values wave()
{
    Values w;
    for (int i = -half; i <= half; ++i) {
        const double t = i / sample_rate / deviation;
        w.push_back((1 - t * t) * std::exp(-t * t / 2));
    }
    const double mean = std::accumulate(w.begin(), w.end(), 0.0) / static_cast<double>(w.size());
    for (double& value : w) value -= mean;
    const double norm = std::sqrt(std::inner_product(w.begin(), w.end(), w.begin(), 0.0));
    for (double& value : w) value /= norm;
    return w;
}

size_t samples(double seconds) { return static_cast<size_t>(std::lround(seconds * sample_rate)); }

// Answers that are high enough, and the highest within the refractory period on either side.
std::vector<size_t> peaks(const Values& answer)
{
    Values highest;
    for (size_t from = 0; from < answer.size(); from += samples(2)) {
        const auto first = answer.begin() + static_cast<std::ptrdiff_t>(from);
        highest.push_back(
            *std::max_element(first, first + static_cast<std::ptrdiff_t>(std::min(samples(2), answer.size() - from))));
    }
    const double enough = least * peers::median(highest);
    const auto reach = static_cast<std::ptrdiff_t>(samples(refractory));
    std::vector<size_t> beats;
    for (auto at = answer.begin(); at != answer.end(); ++at)
        if (*at >= enough && at == std::max_element(at - std::min(reach, at - answer.begin()),
                                                    at + std::min(reach + 1, answer.end() - at)))
            beats.push_back(static_cast<size_t>(at - answer.begin()));
    return beats;
}

double rate(const std::vector<size_t>& beats)
{
    Values intervals;
    for (size_t b = 1; b < beats.size(); ++b)
        intervals.push_back(static_cast<double>(beats[b] - beats[b - 1]) / sample_rate);
    return intervals.empty() ? NAN : 60 / peers::median(intervals);
}

size_t in_both(const std::vector<size_t>& some, const std::vector<size_t>& others)
{
    size_t count = 0;
    for (const size_t beat : some)
        count += std::any_of(others.begin(), others.end(), [&](size_t other) {
            return std::max(beat, other) - std::min(beat, other) <= samples(together);
        });
    return count;
}

void draw(const std::string& file, const Values& signal, const Values& answer, const std::vector<size_t>& beats)
{
    constexpr double width = 1120, margin = 40, plot = width - 2 * margin, row_height = 110, gap = 34;
    const size_t row = samples(row_seconds), rows = (std::min(signal.size(), 8 * row) + row - 1) / row;
    Svg svg(width, 110 + static_cast<double>(rows) * (row_height + gap));
    svg.text(margin, 38, "Beats by a matched filter", 22, Svg::Anchor::start, "#111", true);
    svg.text(
        margin, 60,
        fmt::format("{} beats, {:.1f} a minute; blue the signal, orange the filter's answer, green what is counted",
                    beats.size(), rate(beats)),
        13, Svg::Anchor::start, "#667");
    const auto [low, high] = std::minmax_element(signal.begin(), signal.end());
    const double most = *std::max_element(answer.begin(), answer.end()), range = std::max(*high - *low, 1e-9);
    for (size_t r = 0; r < rows; ++r) {
        const double top = 80 + static_cast<double>(r) * (row_height + gap);
        const auto x = [&](size_t i) {
            return margin + plot * static_cast<double>(i - r * row) / static_cast<double>(row);
        };
        svg.frame(margin, top, plot, row_height, "#d0d0d8");
        std::vector<std::pair<double, double>> line, filter;
        for (size_t i = r * row; i < std::min(signal.size(), (r + 1) * row); ++i) {
            line.emplace_back(x(i), top + row_height - 30 - (row_height - 40) * (signal[i] - *low) / range);
            if (i % 2 == 0) filter.emplace_back(x(i), top + row_height - 4 - 24 * std::max(answer[i], 0.0) / most);
        }
        svg.polyline(filter, "#d55e00", 0.8);
        svg.polyline(line, "#0072b2", 1);
        for (const size_t beat : beats)
            if (beat / row == r) svg.circle(x(beat), top + 7, 3.5, "#009e73");
        for (int second = 0; second <= row_seconds; second += 5)
            svg.text(margin + plot * second / row_seconds, top + row_height + 16,
                     fmt::format("{:g} s", static_cast<double>(r) * row_seconds + second), 11, Svg::Anchor::middle,
                     "#667");
    }
    svg.save(file);
}

void run(const Places& places, Report& report)
{
    const Values signal = read_ecg(places.data + "/ecg.txt"), w = wave();
    const auto n = static_cast<int32_t>(signal.size()), length = static_cast<int32_t>(w.size());
    // lag -half puts the middle of the wave on the first sample
    const auto filter = [&](int32_t mode) { return Correlation(w, {length}, {n}, {-half}, {n}, mode); };
    const Correlation chosen = filter(ORK_CONV_AUTO), summed = filter(ORK_CONV_DIRECT),
                      transformed = filter(ORK_CONV_FFT);
    const Values answer = chosen(signal), by_sums = summed(signal), by_transforms = transformed(signal);
    const std::vector<size_t> beats = peaks(answer);
    const Ecg other = analyse_ecg(signal);

    const double size = std::sqrt(std::inner_product(signal.begin(), signal.end(), signal.begin(), 0.0));
    double sums = 0, methods = 0, highest = 0;
    for (int32_t k = 0; k < n; ++k) {
        long double sum = 0, terms = 0;
        for (int32_t i = std::max(0, half - k); i < std::min(length, n + half - k); ++i) {
            const auto term =
                static_cast<long double>(w[static_cast<size_t>(i)]) * signal[static_cast<size_t>(i + k - half)];
            sum += term, terms += std::fabs(term);
        }
        const auto at = static_cast<size_t>(k);
        keep_largest(sums, std::fabs(sum - answer[at]) / terms);
        keep_largest(methods, std::fabs(by_sums[at] - by_transforms[at]) / size);
    }
    for (const size_t beat : beats)
        for (size_t i = 0; i < signal.size(); ++i)
            if (i + samples(refractory) >= beat && i <= beat + samples(refractory))
                keep_largest(highest, answer[i] / answer[beat] - 1);
    const size_t same = in_both(beats, other.beats);
    report.check("answers against sums in long double, of the sum of magnitudes", sums, 1e-12);
    report.check("both methods, of the norms of wave and signal", methods, 1e-14);
    report.check("beats are the highest answers within the refractory period", highest, 0);
    report.check("beats that the filter or the energy of demo ecg alone shows",
                 static_cast<double>(beats.size() - same + other.beats.size() - in_both(other.beats, beats)), 6);
    report.check("rates by this and by demo ecg differ, beats a minute", std::fabs(rate(beats) - other.rate_median), 5);
    report.line(fmt::format("  {} samples, {:.1f} s; a wave of {:.2f} s", signal.size(), n / sample_rate,
                            length / sample_rate));
    report.line(fmt::format("  {} beats, {:.1f} a minute by the median interval", beats.size(), rate(beats)));
    report.line(fmt::format("  demo ecg counts {} by their energy, {} of them at the same times", other.beats.size(),
                            in_both(other.beats, beats)));
    report.line(fmt::format("  one pass {:.3f} ms, by summation {:.3f} ms, by transforms {:.3f} ms",
                            chosen.seconds(signal, 21) * 1e3, summed.seconds(signal, 21) * 1e3,
                            transformed.seconds(signal, 21) * 1e3));
    if (!report.all_hold()) return;
    const std::string picture = places.out + "/ork-demo-beats.svg";
    draw(picture, signal, answer, beats);
    report.picture(picture);
}

} // namespace

const Demo beats = {"beats", "ecg.txt, 60 s of an electrocardiogram sampled at 360 Hz: 21,600 samples",
                    "heart beats found and counted by a matched filter, a correlation", run};

} // namespace ork::tool
