// SPDX-License-Identifier: MIT
// The small programs of `ork demo`. A demo is one file with a Demo record, and a row in demos(): it reads real input,
// computes with ork's public routines, and proves every number that it is about to print by another way.
#pragma once

#include <string>
#include <vector>

namespace ork::tool {

class Page;

// Keeps the larger of the two, or the NaN once it has met one.
void keep_largest(double& largest, long double value);

// Collects what a demo computed. Nothing is printed unless every check holds.
class Report {
public:
    // What must hold: an error that does not exceed its bound. NaN fails.
    void check(const std::string& what, double error, double bound);
    // A line of output, every number of which some check covers.
    void line(const std::string& text);
    void picture(const std::string& file) { pictures_.push_back(file); }
    // The computation alone, without reading, checking and drawing.
    void timing(double seconds, double flops);

    bool all_hold() const;
    // Prints the results, or the checks that failed; returns the exit status.
    int print(bool with_checks) const;
    // The same, all checks included, to a page.
    void write(Page& page) const;

private:
    struct Check {
        std::string what;
        double error, bound;
        bool holds() const { return error <= bound; } // false for NaN
    };
    std::string rate() const; // "" without a timing
    std::vector<Check> checks_;
    std::vector<std::string> lines_, pictures_;
    double seconds_ = 0, flops_ = 0;
};

struct Places {
    std::string data;                       // folder with the input files
    std::string out;                        // folder for pictures
    std::vector<std::string> matrices = {}; // Matrix Market files named beside the demos
};

struct Demo {
    const char* name;
    const char* input;                                 // file in the data folder, and what it is
    const char* computes;                              // one sentence
    void (*run)(const Places& places, Report& report); // throws std::runtime_error when the input is no good
    bool takes_matrices = false;
};

const std::vector<Demo>& demos();
extern const Demo pca, linear_system, ecg, beats, blur, match, structure, pagerank, kalman, residual, rotate, clone,
    charges_in_a_box;

} // namespace ork::tool
