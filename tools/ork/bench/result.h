// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "bench/family.h"
#include "peers/limits.h"
#include "peers/measure.h"

namespace ork::tool::bench {

struct Figure {
    std::string name;
    peers::Kind kind;
    double seconds = 0;  // median of one call
    double rate = 0;     // in the family's unit
    std::string fault;   // why there is no time
    std::string note;    // what it does differently
    double analysis = 0; // seconds before the first call
};

struct Result {
    std::string family, routine, variant, shape, unit;
    double size = 0, work = 0;
    int rounds = 0;
    std::vector<Figure> figures; // in the order of the libraries
    std::string best_peer;       // name, "" when there is none
    double ratio = 0;            // ork over the best peer, median of the rounds; 0 when there is none
    double limit = 0;            // the machine's limit during the case, in the family's unit; 0 when there is none
    double of_limit = 0;         // ork's share of it
    double traffic = 0;          // ork's, GB/s of the operands counted once; 0: not counted
    double two_threads = 0;      // ork's rate on two threads, by the wall clock
    double speed_up = 0;         // two threads over one, median of the rounds
    double over_singles = 0;     // ork's speed over its own one right-hand side after the other

    const Figure* subject() const;
    const Figure* find(const std::string& name) const;
    // What is called where nothing is analysed: ork's own kernels, plain loops where it has none, or null.
    const Figure* without_analysis() const;
    // Of a figure with an analysis: after how many calls instead of that it has paid; below 0: never.
    double pays_after(const Figure& figure) const;
};

Result measure(const Family& family, const Case& c, const std::vector<peers::Library>& libraries, peers::Effort effort);

// The machine, as measured at the start of the run.
struct Machine {
    std::string processor;
    double arithmetic_double, arithmetic_single; // flops a second
    std::vector<peers::LevelRates> levels;
};

// Text table, row by row as results come. `all` shows every contender instead of the best peer.
class Table {
public:
    Table(std::vector<peers::Library> libraries, bool all) : libraries_(std::move(libraries)), all_(all) {}
    void row(const Result& result);
    void summary(const std::vector<Result>& results) const;

private:
    std::vector<peers::Library> libraries_;
    bool all_;
    std::string group_;
};

void write_json(const std::string& file, const Machine& machine, const std::vector<peers::Library>& libraries,
                const std::vector<Result>& results);
void write_plot(const std::string& file, const Machine& machine, const std::vector<Result>& results);

} // namespace ork::tool::bench
