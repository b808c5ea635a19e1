// SPDX-License-Identifier: MIT
// Ranks of a graph's nodes: how often a walker is met at each who follows a random link from where he is, or with a
// small chance goes anywhere at all (L. Page, S. Brin, R. Motwani and T. Winograd, "The PageRank citation ranking",
// 1999).
#pragma once

#include <string>
#include <vector>

#include "demos/digits.h"
#include "peers/sparse.h"

namespace ork::tool {

constexpr double damping = 0.85; // the chance of following a link

// Row i: the links from node i, each with one over their number. A node without links leads anywhere.
struct Graph {
    peers::CsrMatrix links;
    std::vector<size_t> dead_ends;
    size_t nodes() const { return static_cast<size_t>(links.rows); }
};

// From each image to the `count` others that look most like it: the least squared distances between pixels, of equal
// ones the first.
Graph nearest_neighbours(const Images& images, int count);
// A link for each entry of a square matrix off its diagonal.
Graph links_of(const peers::CsrMatrix& matrix);

struct Ranking {
    std::vector<double> rank; // sums up to 1
    int iterations = 0;
    double change = 1;     // sum of |differences| in the last iteration
    double seconds = 0;    // of the iterations
    double analysis = 0;   // seconds in optimize
    std::string storage{}; // what it chose
};

Ranking rank_by_handle(const Graph& graph);
Ranking rank_by_arrays(const Graph& graph); // the same by ork/spblas.h

// By rank, the highest first.
std::vector<size_t> order_of(const std::vector<double>& rank);

void draw_pagerank(const std::string& file, const Images& images, const Graph& graph, const Ranking& ranking);

} // namespace ork::tool
