// SPDX-License-Identifier: MIT
// A family of benchmark cases. A new family is one file with a function that lists its cases, and a row in families().
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "peers/libraries.h"
#include "peers/problem.h"

namespace ork::tool::bench {

struct Contender {
    std::string name;
    peers::Kind kind;
    peers::Entrant run;
    std::string fault;     // not empty: the result was wrong, and there is nothing to time
    std::string note = {}; // what it does differently: a storage of its own
    double analysis = 0;   // seconds that it took before the first call to decide about it
};

// A case made ready: operands in place, every contender's result checked.
struct Contest {
    std::vector<Contender> contenders;
    double work = 0;                  // of one call, in the family's unit times 1e9
    std::vector<peers::Limit> limits; // may be empty
    std::shared_ptr<void> operands;   // what the entrants refer to
    bool threaded = false;            // a contender uses several threads, so only the wall clock is fair
    double bytes = 0;                 // of one call's operands, each counted once; 0: not counted
    peers::Entrant two_threads = {};  // the subject on two threads, measured beside it by the wall clock; may be empty
    peers::Entrant one_by_one = {};   // the subject, one right-hand side after the other; may be empty
};

struct Case {
    std::string routine; // "dgemm"
    std::string variant; // "NN beta=0"; cases of one routine and variant make one curve
    std::string shape;   // "512", "1000x1000x4"
    double size;         // abscissa of the plot, 0: not on a curve
    std::function<Contest(const std::vector<peers::Library>&)> prepare;

    std::string label() const { return routine + (variant.empty() ? "" : " " + variant) + " " + shape; }
};

struct Shape {
    int m, n, k; // k = 0: m x n, which gemm has no use for
    bool square() const { return m == n && n == k; }
    std::string label() const; // "512", "64x2000", "1000x1000x4"
};

// The sizes that are shapes: "512", "64x2000", "1000x1000x4".
std::vector<Shape> shapes_of(const std::vector<std::string>& sizes);

struct Selection {
    std::vector<std::string> routines; // empty: the family's usual ones
    std::vector<std::string> sizes;    // empty: the family's usual ones; what isn't a size of a family's, it skips
    std::vector<std::string> trans;    // letters of a routine together: "NN" of gemm, "LLNN" of trsm
    std::vector<double> beta;
    bool quick = false;
};

enum class Field { dense, transforms, sparse, handles }; // decides about the peers

struct Family {
    const char* name;
    const char* summary;
    const char* unit; // "GF/s" or "GB/s"
    Field field;
    std::vector<Case> (*cases)(const Selection&);
};

const std::vector<Family>& families();
std::vector<Case> gemm_cases(const Selection& selection);
std::vector<Case> sparse_cases(const Selection& selection);
std::vector<Case> handle_cases(const Selection& selection);
std::vector<Case> spgemm_cases(const Selection& selection);
std::vector<Case> level1_cases(const Selection& selection);
std::vector<Case> level2_cases(const Selection& selection);
std::vector<Case> level3_cases(const Selection& selection);
std::vector<Case> lapack_cases(const Selection& selection);
std::vector<Case> blocks_cases(const Selection& selection);
std::vector<Case> factor_cases(const Selection& selection);
std::vector<Case> compact_cases(const Selection& selection);
std::vector<Case> trans_cases(const Selection& selection);
std::vector<Case> xblas_cases(const Selection& selection);
std::vector<Case> trig_cases(const Selection& selection);
std::vector<Case> thread_cases(const Selection& selection);
std::vector<Case> fft_cases(const Selection& selection);
std::vector<Case> poisson_cases(const Selection& selection);
std::vector<Case> conv_cases(const Selection& selection);

// Every library that has the problem's routine, checked one after another.
Contest contest(std::unique_ptr<peers::Problem> problem, const std::vector<peers::Library>& libraries);

} // namespace ork::tool::bench
