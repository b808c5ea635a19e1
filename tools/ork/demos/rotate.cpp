// SPDX-License-Identifier: MIT
// A photograph turned by quarters without a second picture: a quarter clockwise is the rows in reverse order, exchanged
// in pairs, and a transposition in place. Pixel (i, j) of a picture of h rows goes to (j, h - 1 - i). Four quarters
// make the picture again, bit for bit.
#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <stdexcept>
#include <tuple>
#include <utility>
#include <vector>

#include "demos/demo.h"
#include "demos/panels.h"
#include "ork/cblas.h"
#include "ork/ork.h"
#include "ork/trans.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

constexpr int smallest = 16;

// Grey levels as numbers, row by row.
struct Grey {
    int width, height;
    std::vector<float> pixels;

    float at(int i, int j) const
    {
        return pixels[static_cast<size_t>(i) * static_cast<size_t>(width) + static_cast<size_t>(j)];
    }
    double bytes() const { return static_cast<double>(pixels.size() * sizeof(float)); }
};

// Rows first .. first + height - 1.
Grey strip(const Picture& picture, int first, int height)
{
    const auto begin = picture.pixels.begin() + static_cast<std::ptrdiff_t>(first) * picture.width;
    return {picture.width, height, {begin, begin + static_cast<std::ptrdiff_t>(height) * picture.width}};
}

void transpose(Grey& g)
{
    cblas_simatcopy(CblasRowMajor, CblasTrans, g.height, g.width, 1, g.pixels.data(), g.width, g.height);
    std::swap(g.width, g.height);
}

void turn(Grey& g)
{
    for (std::ptrdiff_t i = 0, last = g.height - 1; i < last; ++i, --last)
        cblas_sswap(g.width, &g.pixels[static_cast<size_t>(i * g.width)], 1,
                    &g.pixels[static_cast<size_t>(last * g.width)], 1);
    transpose(g);
}

// Pixels that are not where a turn brings them.
int misplaced(const Grey& before, const Grey& after)
{
    if (after.width != before.height || after.height != before.width) return before.width * before.height;
    int count = 0;
    for (int i = 0; i < before.height; ++i)
        for (int j = 0; j < before.width; ++j) count += !(after.at(j, before.height - 1 - i) == before.at(i, j));
    return count;
}

Picture as_picture(const Grey& g) { return {g.width, g.height, {g.pixels.begin(), g.pixels.end()}}; }

// The picture after 0, 1, 2, 3 and 4 quarters.
std::vector<Grey> turns_of(const Grey& original, const std::string& what, Report& report)
{
    std::vector<Grey> all = {original};
    for (int quarter = 1; quarter <= 4; ++quarter) {
        all.push_back(all.back());
        turn(all.back());
        report.check(fmt::format("pixels of the {} misplaced by turn {}", what, quarter),
                     misplaced(all[static_cast<size_t>(quarter) - 1], all.back()), 0);
    }
    const bool same =
        all.back().width == original.width &&
        std::memcmp(all.back().pixels.data(), original.pixels.data(), original.pixels.size() * sizeof(float)) == 0;
    report.check(fmt::format("bits of the {} changed by four turns (1: some)", what), !same, 0);
    return all;
}

// Bytes read and written a second, one thread, beside a copy to another place of the same bytes.
void measure(const Grey& square, const Grey& crop, Report& report)
{
    Grey a = square, b = crop;
    std::vector<float> other(square.pixels.size());
    const int before = ork_set_num_threads_local(1);
    const auto seconds = peers::interleave(
        {[&](long calls) {
             while (calls-- > 0) transpose(a);
         },
         [&](long calls) {
             while (calls-- > 0) transpose(b);
         },
         [&](long calls) {
             while (calls-- > 0) turn(a);
         },
         [&](long calls) {
             while (calls-- > 0) turn(b);
         },
         [&](long calls) {
             while (calls-- > 0) {
                 std::memcpy(other.data(), square.pixels.data(), other.size() * sizeof(float));
                 asm volatile("" : : "r"(other.data()) : "memory"); // a copy that nobody reads is not left out
             }
         }},
        {1e-3, 0.2, 5, 25});
    ork_set_num_threads_local(before);
    const auto rate = [&](const Grey& g, size_t entrant) {
        return 2 * g.bytes() / peers::median(seconds[entrant]) / 1e9;
    };
    report.line(fmt::format("  {} x {}: transposed in place at {:.1f} GB/s, turned at {:.1f} GB/s", square.width,
                            square.height, rate(square, 0), rate(square, 2)));
    report.line(fmt::format("  {} x {}: transposed in place at {:.1f} GB/s, turned at {:.1f} GB/s", crop.width,
                            crop.height, rate(crop, 1), rate(crop, 3)));
    report.line(fmt::format("  memcpy of the first to another place: {:.1f} GB/s", rate(square, 4)));
}

void run(const Places& places, Report& report)
{
    const Picture original = read_pgm(places.data + "/ascent.pgm");
    if (std::min(original.width, original.height) < smallest)
        throw std::runtime_error(fmt::format("ascent.pgm: {} x {} pixels; sides of {} at least are wanted",
                                             original.width, original.height, smallest));
    const Grey whole = strip(original, 0, original.height);
    const int height = original.height * 300 / 512;
    const Grey crop = strip(original, original.height - height, height); // the lower part
    const auto turns = turns_of(whole, "photograph", report), cropped = turns_of(crop, "crop", report);
    report.line(fmt::format("  {} x {} and {} x {} numbers in single precision, no second picture", whole.width,
                            whole.height, crop.width, crop.height));
    measure(whole, crop, report);
    if (!report.all_hold()) return;

    std::vector<std::pair<std::string, Picture>> pictures;
    for (const auto& [title, name, grey] : {std::tuple{"Original", "", &turns[0]},
                                            {"A quarter", "quarter", &turns[1]},
                                            {"Two quarters", "half", &turns[2]},
                                            {"A crop, a quarter", "crop", &cropped[1]}}) {
        pictures.emplace_back(title, as_picture(*grey));
        if (*name == 0) continue;
        const std::string file = fmt::format("{}/ork-demo-rotate-{}.pgm", places.out, name);
        write_pgm(file, pictures.back().second);
        report.picture(file);
    }
    const std::string file = places.out + "/ork-demo-rotate.svg";
    std::vector<std::pair<std::string, const Picture*>> panels;
    for (const auto& [title, picture] : pictures) panels.emplace_back(title, &picture);
    draw_panels(file, panels, 300);
    report.picture(file);
}

} // namespace

const Demo rotate = {"rotate", "ascent.pgm, a photograph of 512 x 512 pixels",
                     "the photograph, and a crop that is not square, turned by quarters in place", run};

} // namespace ork::tool
