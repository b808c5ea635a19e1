// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "demos/transform.h"

namespace ork::tool {

constexpr double sample_rate = 360; // Hz
constexpr double mains = 60;        // Hz, where the record was made

struct Ecg {
    std::vector<double> signal;                       // ADC counts about their mean, 200 a millivolt
    std::vector<Complex> spectrum;                    // element k is the frequency k over the duration
    std::vector<double> clean;                        // without the hum
    std::vector<Complex> clean_spectrum;              // of clean, transformed anew
    std::vector<double> energy;                       // of the QRS band, smoothed: one peak a beat
    std::vector<double> autocorrelation;              // of the energy about its mean, by lag in samples; 1 at lag 0
    std::vector<size_t> beats;                        // samples
    size_t hum = 0;                                   // element of the spectrum
    double rate_autocorrelation = 0, rate_median = 0; // beats a minute

    double frequency(size_t k) const
    {
        return static_cast<double>(k) * sample_rate / static_cast<double>(signal.size());
    }
    double amplitude(const std::vector<Complex>& of, size_t k) const // counts
    {
        return 2 * std::abs(of[k]) / static_cast<double>(signal.size());
    }
};

// The samples of a file about their mean.
std::vector<double> read_ecg(const std::string& file);
Ecg analyse_ecg(const std::vector<double>& signal);
void draw_ecg(const std::string& file, const Ecg& ecg);

} // namespace ork::tool
