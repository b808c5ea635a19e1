// SPDX-License-Identifier: MIT
// A patch looked for in a photograph by normalised cross-correlation (J. P. Lewis, "Fast normalized cross-correlation",
// 1995). With t the patch less its mean and f the photograph, the score of a place m is
//     sum of t(i) f(i + m) / sqrt(sum of t(i)^2 times the sum of (f(i + m) - mean of f there)^2),
// which brightness and contrast don't change: 1 where f is the patch, made lighter or darker. The sum above is a
// correlation, and so are the sums of f and of f^2 over a window, with ones in place of t.
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numeric>
#include <stdexcept>

#include "demos/correlation.h"
#include "demos/demo.h"
#include "demos/noise.h"
#include "demos/panels.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

constexpr int width = 48, height = 48;           // of the patch
constexpr int cut_x = 150, cut_y = 290;          // where it comes from: a child behind banisters
constexpr double darker = 0.5, noise_level = 16; // what is done to it
constexpr int smallest = 350, largest = 2048;    // sides of a photograph

using Values = std::vector<double>;

double norm(const Values& values)
{
    return std::sqrt(std::inner_product(values.begin(), values.end(), values.begin(), 0.0));
}

struct Search {
    int photo_width, photo_height, places_x, places_y;
    Values photo, squares, patch; // the patch less its mean
    Values score = {};

    Search(const Picture& photograph, const Picture& looked_for)
        : photo_width(photograph.width), photo_height(photograph.height), places_x(photo_width - width + 1),
          places_y(photo_height - height + 1), photo(photograph.pixels.begin(), photograph.pixels.end()),
          squares(photo.size()), patch(looked_for.pixels.begin(), looked_for.pixels.end())
    {
        for (size_t i = 0; i < photo.size(); ++i) squares[i] = photo[i] * photo[i];
        const double mean = std::accumulate(patch.begin(), patch.end(), 0.0) / static_cast<double>(patch.size());
        for (double& value : patch) value -= mean;
    }
    Correlation with(const Values& x, int32_t mode) const
    {
        return {x, {width, height}, {photo_width, photo_height}, {0, 0}, {places_x, places_y}, mode};
    }
    // A window that is all of one grey is like nothing.
    void find_scores(const Values& products, const Values& sums, const Values& sums_of_squares)
    {
        constexpr double count = width * height;
        const double size = norm(patch);
        score.resize(products.size());
        for (size_t k = 0; k < score.size(); ++k) {
            const double sum = std::round(sums[k]), varying = std::round(sums_of_squares[k]) - sum * sum / count;
            score[k] = varying < 1 ? 0 : products[k] / (size * std::sqrt(varying));
        }
    }
    long double score_by_definition(size_t place) const
    {
        const size_t from = place / static_cast<size_t>(places_x) * static_cast<size_t>(photo_width) +
                            place % static_cast<size_t>(places_x);
        long double mean = 0, products = 0, varying = 0;
        const auto at = [&](size_t i) {
            return static_cast<long double>(photo[from + i / width * static_cast<size_t>(photo_width) + i % width]);
        };
        for (size_t i = 0; i < patch.size(); ++i) mean += at(i) / static_cast<long double>(patch.size());
        for (size_t i = 0; i < patch.size(); ++i) {
            products += patch[i] * at(i);
            varying += (at(i) - mean) * (at(i) - mean);
        }
        return varying < 1 ? 0 : products / (norm(patch) * std::sqrt(varying));
    }
    size_t best() const { return static_cast<size_t>(std::max_element(score.begin(), score.end()) - score.begin()); }
    // Best score of the places that share less than half of a side with the best place.
    double next_best() const
    {
        const int x = static_cast<int>(best()) % places_x, y = static_cast<int>(best()) / places_x;
        double next = -1;
        for (int j = 0; j < places_y; ++j)
            for (int i = 0; i < places_x; ++i)
                if (std::abs(i - x) > width / 2 || std::abs(j - y) > height / 2)
                    next = std::max(next, score[static_cast<size_t>(j * places_x + i)]);
        return next;
    }
};

Picture cut_out(const Picture& photograph)
{
    Picture patch{width, height, {}};
    const Values noise = normal_noise(width * height, noise_level);
    for (size_t i = 0; i < width * height; ++i) {
        const size_t from = (cut_y + i / width) * static_cast<size_t>(photograph.width) + cut_x + i % width;
        patch.pixels.push_back(
            static_cast<uint8_t>(std::lround(std::clamp(darker * photograph.pixels[from] + noise[i], 0.0, 255.0))));
    }
    return patch;
}

// White, with black on either side.
Picture framed(Picture picture, int x, int y)
{
    for (int j = -4; j < height + 4; ++j)
        for (int i = -4; i < width + 4; ++i) {
            const int out = std::max({-i, -j, i - width + 1, j - height + 1});
            const int px = x + i, py = y + j;
            if (out > 0 && px >= 0 && py >= 0 && px < picture.width && py < picture.height)
                picture.pixels[static_cast<size_t>(py * picture.width + px)] = out == 1 || out == 4 ? 0 : 255;
        }
    return picture;
}

void run(const Places& places, Report& report)
{
    const Picture photograph = read_pgm(places.data + "/ascent.pgm");
    if (std::min(photograph.width, photograph.height) < smallest ||
        std::max(photograph.width, photograph.height) > largest)
        throw std::runtime_error(fmt::format("ascent.pgm: {} x {} pixels; sides from {} to {} are wanted",
                                             photograph.width, photograph.height, smallest, largest));
    const Picture patch = cut_out(photograph);
    Search search(photograph, patch);
    const Correlation chosen = search.with(search.patch, ORK_CONV_AUTO);
    const Correlation summed = search.with(search.patch, ORK_CONV_DIRECT);
    const Correlation windows = search.with(Values(width * height, 1.0), ORK_CONV_FFT);
    const Values products = chosen(search.photo), by_summation = summed(search.photo);
    const Values sums = windows(search.photo), sums_of_squares = windows(search.squares);
    search.find_scores(products, sums, sums_of_squares);
    const double seconds = chosen.seconds(search.photo, 7), seconds_summed = summed.seconds(search.photo, 1);

    const double norms = norm(search.patch) * norm(search.photo);
    const size_t best = search.best();
    const double next_best = search.next_best();
    double methods = 0, whole = 0, scores = 0, beyond = 0;
    for (size_t k = 0; k < products.size(); ++k) {
        keep_largest(methods, std::fabs(products[k] - by_summation[k]) / norms);
        keep_largest(whole, std::fabs(sums[k] - std::round(sums[k])));
        keep_largest(whole, std::fabs(sums_of_squares[k] - std::round(sums_of_squares[k])));
        keep_largest(beyond, std::fabs(search.score[k]) - 1);
        if (k % 1499 == 2 || k == best)
            keep_largest(scores, std::fabs(search.score_by_definition(k) - search.score[k]));
    }
    const int x = static_cast<int>(best) % search.places_x, y = static_cast<int>(best) / search.places_x;
    report.check("both methods, of the norms of patch and photograph", methods, 1e-14);
    report.check("sums of grey levels and of their squares from whole numbers", whole, 1e-3);
    report.check("scores against the formula in long double", scores, 1e-12);
    report.check("scores beyond 1", beyond, 1e-12);
    report.check("pixels from where the patch was cut out", std::abs(x - cut_x) + std::abs(y - cut_y), 0);
    report.check("score of the next best place over the best", next_best / search.score[best], 0.9);
    report.line(fmt::format("  a patch of {} x {} pixels, {} as bright and with noise of {} grey levels, looked for at "
                            "{} x {} places",
                            width, height, darker, noise_level, search.places_x, search.places_y));
    report.line(fmt::format("  found at ({}, {}), where it was cut out: score {:.3f}, the next best place {:.3f}", x, y,
                            search.score[best], next_best));
    report.line(
        fmt::format("  one correlation {:.2f} ms, by summation {:.2f} ms", seconds * 1e3, seconds_summed * 1e3));
    if (!report.all_hold()) return;

    const Picture found = framed(photograph, x, y);
    Picture map{search.places_x, search.places_y, {}};
    for (const double score : search.score)
        map.pixels.push_back(static_cast<uint8_t>(std::lround(std::clamp(127.5 + 127.5 * score, 0.0, 255.0))));
    const std::string picture = places.out + "/ork-demo-match.png", panels = places.out + "/ork-demo-match.svg";
    write_png(picture, found);
    report.picture(picture);
    draw_panels(panels, {{"Found", &found}, {"Looked for", &patch}, {"Score", &map}}, 400);
    report.picture(panels);
}

} // namespace

const Demo match = {"match", "ascent.pgm, a photograph of 512 x 512 pixels",
                    "a patch of the photograph, made darker and noisy, found again by normalised cross-correlation",
                    run};

} // namespace ork::tool
