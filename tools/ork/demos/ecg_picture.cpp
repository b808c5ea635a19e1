// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <fmt/format.h>

#include "demos/ecg.h"
#include "svg.h"

namespace ork::tool {
namespace {

using Anchor = Svg::Anchor;
using Points = std::vector<std::pair<double, double>>;

constexpr double width = 1120, margin = 64, plot_width = width - 2 * margin;
constexpr double from = 2, shown = 6; // s of the signal
constexpr double near_shown = 0.3;    // s, enlarged
constexpr const char *quiet = "#667", *before_colour = "#d55e00", *after_colour = "#0072b2", *beat_colour = "#009e73";

void heading(Svg& svg, double y, const std::string& title, const std::string& note)
{
    svg.text(margin, y, title, 16, Anchor::start, "#111", true);
    svg.text(margin, y + 19, note, 12, Anchor::start, quiet);
}

// A stretch of signals in one frame, with a time axis.
class Strip {
public:
    Strip(Svg& svg, double y, double height, double start, double duration, const std::vector<double>& scale)
        : svg_(svg), y_(y), height_(height), start_(start), duration_(duration)
    {
        const auto [low, high] = std::minmax_element(at(scale, start), at(scale, start + duration));
        low_ = *low;
        high_ = std::max(*high, *low + 1e-9);
        svg.frame(margin, y, plot_width, height, "#d0d0d8");
        const double step = duration > 2 ? 1 : 0.05;
        for (int i = 0; i * step <= duration + 1e-9; ++i) {
            const double x = margin + plot_width * i * step / duration;
            svg.line(x, y + height, x, y + height + 4, "#889");
            svg.text(x, y + height + 17, fmt::format("{:.2f} s", start + i * step), 11, Anchor::middle, quiet);
        }
    }
    void draw(const std::vector<double>& signal, const char* colour, double thickness)
    {
        Points points;
        for (auto i = at(signal, start_); i < at(signal, start_ + duration_); ++i)
            points.emplace_back(x(static_cast<double>(i - signal.begin()) / sample_rate),
                                y_ + height_ - 8 - (height_ - 16) * (*i - low_) / (high_ - low_));
        svg_.polyline(points, colour, thickness);
    }
    double x(double time) const { return margin + plot_width * (time - start_) / duration_; }

private:
    static std::vector<double>::const_iterator at(const std::vector<double>& signal, double time)
    {
        return signal.begin() + std::min<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(time * sample_rate),
                                                         static_cast<std::ptrdiff_t>(signal.size()));
    }

    Svg& svg_;
    double y_, height_, start_, duration_, low_, high_;
};

// Where the signal of the duration shown enlarged has the smallest range.
double stillest(const std::vector<double>& signal)
{
    const auto length = static_cast<std::ptrdiff_t>(near_shown * sample_rate);
    std::ptrdiff_t best = 0;
    double least = 1e300;
    for (std::ptrdiff_t at = 0; at + length < static_cast<std::ptrdiff_t>(signal.size()); at += 36) {
        const auto [low, high] = std::minmax_element(signal.begin() + at, signal.begin() + at + length);
        if (*high - *low < least) least = *high - *low, best = at;
    }
    return static_cast<double>(best) / sample_rate;
}

// Amplitude by frequency on a logarithmic scale, the largest of each pixel's frequencies.
void draw_spectrum(Svg& svg, double y, double height, const Ecg& e)
{
    constexpr double least = 1e-3, most = 100, last = sample_rate / 2;
    const auto up = [&](double amplitude) {
        return y + height - height * std::log10(std::clamp(amplitude, least, most) / least) / std::log10(most / least);
    };
    for (double level = least; level <= most * 1.01; level *= 10) {
        svg.line(margin, up(level), margin + plot_width, up(level), "#e6e6ea");
        svg.text(margin - 6, up(level) + 4, fmt::format("{:g}", level), 11, Anchor::end, quiet);
    }
    for (int f = 0; f <= last; f += 20) {
        const double x = margin + plot_width * f / last;
        svg.line(x, y + height, x, y + height + 4, "#889");
        svg.text(x, y + height + 17, fmt::format("{} Hz", f), 11, Anchor::middle, quiet);
    }
    for (const auto& [spectrum, colour] : {std::pair{&e.spectrum, before_colour}, {&e.clean_spectrum, after_colour}}) {
        Points points;
        for (size_t k = 1; k < spectrum->size(); ++k) {
            const double x = std::floor(margin + plot_width * e.frequency(k) / last),
                         top = up(e.amplitude(*spectrum, k));
            if (points.empty() || points.back().first < x)
                points.emplace_back(x, top);
            else
                points.back().second = std::min(points.back().second, top);
        }
        svg.polyline(points, colour, 1);
    }
}

} // namespace

void draw_ecg(const std::string& file, const Ecg& e)
{
    Svg svg(width, 940);
    svg.text(margin, 38, "A minute of an electrocardiogram", 22, Anchor::start, "#111", true);
    svg.text(
        margin, 60,
        fmt::format("{:.1f} beats a minute by autocorrelation, {:.1f} by the median interval; mains hum at {:.2f} Hz, "
                    "{:.2f} counts",
                    e.rate_autocorrelation, e.rate_median, e.frequency(e.hum), e.amplitude(e.spectrum, e.hum)),
        13, Anchor::start, quiet);

    heading(svg, 100, "Signal",
            "Without the hum. Green: beats found; below, the energy between 5 and 15 Hz that shows them.");
    Strip signal(svg, 132, 170, from, shown, e.clean);
    signal.draw(e.clean, after_colour, 1.3);
    Strip energy(svg, 330, 60, from, shown, e.energy);
    energy.draw(e.energy, beat_colour, 1.3);
    for (const size_t beat : e.beats) {
        const double time = static_cast<double>(beat) / sample_rate;
        if (time < from || time > from + shown) continue;
        svg.line(signal.x(time), 132, signal.x(time), 390, beat_colour, 0.8, "3 4");
    }

    heading(svg, 446, "The hum, enlarged", "The stillest 0.3 s, before (orange) and after (blue).");
    Strip near(svg, 478, 130, stillest(e.clean), near_shown, e.signal);
    near.draw(e.signal, before_colour, 1);
    near.draw(e.clean, after_colour, 1.4);

    heading(svg, 664, "Spectrum",
            "Amplitude in counts, before (orange) and after (blue); the mains and their harmonics stand out.");
    draw_spectrum(svg, 698, 190, e);
    svg.save(file);
}

} // namespace ork::tool
