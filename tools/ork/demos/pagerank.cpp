// SPDX-License-Identifier: MIT
// Which handwritten digits are typical: each image points at those that look most like it, and the ranks of this graph
// say where a walk from likeness to likeness is met most often.
//
// The ranks solve (I - damping M) r = (1 - damping) / n with M a matrix whose columns sum to 1, so whatever computed
// them, their error is at most |r - damping M r - (1 - damping) / n| / (1 - damping), both sums of absolute values.
#include "demos/pagerank.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <stdexcept>

#include "demos/demo.h"
#include "matrix_market.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

constexpr int neighbours = 8;

// How far the ranks may be from the exact ones, summed: by plain loops over the links in long double.
double error_bound(const Graph& graph, const std::vector<double>& rank)
{
    const size_t n = graph.nodes();
    long double stranded = 0, sum = 0;
    for (const size_t node : graph.dead_ends) stranded += rank[node];
    std::vector<long double> want(n, (1 - static_cast<long double>(damping) * (1 - stranded)) /
                                         static_cast<long double>(n));
    for (size_t i = 0; i < n; ++i) {
        const auto first = static_cast<size_t>(graph.links.ptr[i]), last = static_cast<size_t>(graph.links.ptr[i + 1]);
        for (size_t k = first; k < last; ++k)
            want[static_cast<size_t>(graph.links.col[k])] +=
                static_cast<long double>(damping) * rank[i] / static_cast<long double>(last - first);
    }
    for (size_t i = 0; i < n; ++i) sum += std::fabs(rank[i] - want[i]);
    return static_cast<double>(sum / (1 - static_cast<long double>(damping)));
}

double difference(const std::vector<double>& a, const std::vector<double>& b)
{
    double sum = 0;
    for (size_t i = 0; i < a.size(); ++i) sum += std::fabs(a[i] - b[i]);
    return sum;
}

// Two graphs whose ranks are fractions: 1 and 2 point at each other and 3 at 1; 1 points at 2, which leads nowhere.
void verify_known(Report& report)
{
    const auto graph = [](int nodes, std::vector<int> ptr, std::vector<int> col) {
        peers::CsrMatrix a;
        a.rows = a.columns = nodes;
        a.ptr = std::move(ptr);
        a.col = std::move(col);
        return links_of(a);
    };
    const Ranking three = rank_by_handle(graph(3, {0, 1, 2, 3}, {1, 0, 0})),
                  two = rank_by_handle(graph(2, {0, 1, 1}, {1}));
    report.check("ranks 18/37, 343/740 and 1/20 of a graph of three nodes",
                 difference(three.rank, {18.0 / 37, 343.0 / 740, 1.0 / 20}), 1e-11);
    report.check("ranks 20/57 and 37/57 of a graph with a dead end", difference(two.rank, {20.0 / 57, 37.0 / 57}),
                 1e-11);
}

// No image that is left out is nearer than one that is linked, of equal distances none comes first, and all are others.
void verify_neighbours(const Images& images, const Graph& graph, Report& report)
{
    const auto distance = [&](int a, int b) {
        int sum = 0;
        for (int p = 0; p < pixels_each; ++p)
            sum += (images.pixel(a, p) - images.pixel(b, p)) * (images.pixel(a, p) - images.pixel(b, p));
        return sum;
    };
    int wrong = 0;
    for (int i = 0; i < images.count; i += 7) {
        const auto first = graph.links.col.begin() + graph.links.ptr[static_cast<size_t>(i)], last = first + neighbours;
        std::pair<int, int> farthest{0, 0}, nearest_left{1 << 30, 0};
        for (int j = 0; j < images.count; ++j) {
            const std::pair<int, int> place{distance(i, j), j};
            if (std::find(first, last, j) != last)
                farthest = std::max(farthest, place);
            else if (j != i)
                nearest_left = std::min(nearest_left, place);
        }
        wrong += std::find(first, last, i) != last || farthest > nearest_left;
    }
    report.check("links that lead to another image than the nearest, every seventh image", wrong, 0);
}

void verify_ranks(const std::string& what, const Graph& graph, const Ranking& ranking, Report& report)
{
    const double n = static_cast<double>(graph.nodes());
    long double sum = 0;
    double shortfall = 0;
    for (const double r : ranking.rank) {
        sum += r;
        keep_largest(shortfall, (1 - damping) / n - r);
    }
    report.check(what + ": change in the last iteration", ranking.change, 1e-12);
    report.check(what + ": sum of the ranks less 1", static_cast<double>(std::fabs(sum - 1)), 1e-12);
    report.check(what + ": a rank below (1 - damping) / n, times n", shortfall * n, 1e-12);
    report.check(what + ": bound of the error by plain loops in long double", error_bound(graph, ranking.rank), 1e-11);
    report.check(what + ": difference from the same by ork/spblas.h",
                 difference(ranking.rank, rank_by_arrays(graph).rank), 1e-12);
}

// Medians of several runs in turn.
void compare_interfaces(const Graph& graph, const Ranking& ranking, Report& report)
{
    std::vector<double> handle, arrays, analysis;
    for (int round = 0; round < 7; ++round) {
        const Ranking one = rank_by_handle(graph);
        handle.push_back(one.seconds);
        analysis.push_back(one.analysis);
        arrays.push_back(rank_by_arrays(graph).seconds);
    }
    const double seconds = peers::median(handle), legacy = peers::median(arrays);
    report.line(
        fmt::format("  {} iterations through the handle ({}) {:.2f} ms, after {:.2f} ms of analysis; by ork/spblas.h "
                    "{:.2f} ms: {:.2f} times",
                    ranking.iterations, ranking.storage, 1e3 * seconds, 1e3 * peers::median(analysis), 1e3 * legacy,
                    peers::speed_ratio(handle, arrays)));
    const double n = static_cast<double>(graph.nodes());
    report.timing(seconds, ranking.iterations * (2 * static_cast<double>(graph.links.entries()) + 4 * n));
}

void describe_digits(const Images& images, const Graph& graph, const Ranking& ranking, Report& report)
{
    const double n = static_cast<double>(graph.nodes());
    const std::vector<size_t> order = order_of(ranking.rank);
    std::vector<int> arriving(graph.nodes(), 0);
    double alike = 0;
    for (size_t i = 0; i < graph.nodes(); ++i)
        for (auto k = static_cast<size_t>(graph.links.ptr[i]); k < static_cast<size_t>(graph.links.ptr[i + 1]); ++k) {
            const auto j = static_cast<size_t>(graph.links.col[k]);
            ++arriving[j];
            alike += images.digit[i] == images.digit[j];
        }
    report.line(
        fmt::format("  {} images, each pointing at the {} most like it; {:.1f} % of the links join equal digits, to {} "
                    "images leads none",
                    images.count, neighbours, 100 * alike / static_cast<double>(graph.links.entries()),
                    std::count(arriving.begin(), arriving.end(), 0)));
    std::string digits = "  digit         ", best = "  most typical  ", rank = "  its rank x n  ",
                least = "  least typical ", low = "  its rank x n  ";
    for (int digit = 0; digit < 10; ++digit) {
        const auto is = [&](size_t image) { return images.digit[image] == digit; };
        const auto high_at = std::find_if(order.begin(), order.end(), is);
        if (high_at == order.end()) continue;
        const size_t high = *high_at, last = *std::find_if(order.rbegin(), order.rend(), is);
        digits += fmt::format("{:>7}", digit);
        best += fmt::format("{:>7}", fmt::format("#{}", high + 1));
        rank += fmt::format("{:>7.2f}", ranking.rank[high] * n);
        least += fmt::format("{:>7}", fmt::format("#{}", last + 1));
        low += fmt::format("{:>7.3f}", ranking.rank[last] * n);
    }
    for (const std::string& line : {digits, best, rank, least, low}) report.line(line);
}

void describe_matrix(const std::string& name, const Graph& graph, const Ranking& ranking, Report& report)
{
    const std::vector<size_t> order = order_of(ranking.rank);
    std::string highest;
    for (size_t i = 0; i < std::min<size_t>(5, order.size()); ++i)
        highest += fmt::format("{} {} ({:.2f})", i == 0 ? "" : ",", order[i] + 1,
                               ranking.rank[order[i]] * static_cast<double>(graph.nodes()));
    report.line(fmt::format("  {}: {} nodes, {} links, {} dead ends, {} iterations; highest ranks (x n):{}", name,
                            graph.nodes(), graph.links.entries(), graph.dead_ends.size(), ranking.iterations, highest));
}

void run(const Places& places, Report& report)
{
    verify_known(report);
    for (const std::string& file :
         places.matrices.empty() ? std::vector{places.data + "/west0479.mtx"} : places.matrices) {
        const peers::CsrMatrix matrix = read_matrix_market(file);
        if (matrix.rows != matrix.columns) throw std::runtime_error(file + ": a graph has as many rows as columns");
        const Graph graph = links_of(matrix);
        const Ranking ranking = rank_by_handle(graph);
        const std::string name = file.substr(file.rfind('/') + 1);
        verify_ranks(name, graph, ranking, report);
        describe_matrix(name, graph, ranking, report);
    }
    const Images images = read_digits(places.data + "/digits.csv");
    const Graph graph = nearest_neighbours(images, neighbours);
    const Ranking ranking = rank_by_handle(graph);
    verify_neighbours(images, graph, report);
    verify_ranks("digits", graph, ranking, report);
    describe_digits(images, graph, ranking, report);
    compare_interfaces(graph, ranking, report);
    if (!report.all_hold()) return;
    const std::string picture = places.out + "/ork-demo-pagerank.svg";
    draw_pagerank(picture, images, graph, ranking);
    report.picture(picture);
}

} // namespace

const Demo pagerank = {"pagerank",
                       "digits.csv, 1797 handwritten digits, and the pattern of west0479.mtx or of FILE.mtx",
                       "how typical each handwritten digit is: its rank in the graph of nearest neighbours", run, true};

} // namespace ork::tool
