// SPDX-License-Identifier: MIT
#include "demos/pgm.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <fstream>
#include <limits>
#include <stdexcept>

namespace ork::tool {
namespace {

// A positive number of the header; comments run from # to the end of the line.
int header_number(std::istream& in, const std::string& file, const char* what, int most)
{
    while ((in >> std::ws).peek() == '#') in.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    int value = 0;
    if (!(in >> value) || value < 1 || value > most)
        throw std::runtime_error(fmt::format("{}: {} is not a number from 1 to {}", file, what, most));
    return value;
}

} // namespace

Picture read_pgm(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error(fmt::format("{}: {}", file, std::strerror(errno)));
    char magic[2] = {0, 0};
    in.read(magic, 2);
    if (magic[0] != 'P' || magic[1] != '5') throw std::runtime_error(file + ": not a binary PGM file");
    Picture picture;
    picture.width = header_number(in, file, "the width", 8192);
    picture.height = header_number(in, file, "the height", 8192);
    header_number(in, file, "the largest grey", 255);
    in.get(); // the one white space before the pixels
    picture.pixels.resize(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height));
    in.read(reinterpret_cast<char*>(picture.pixels.data()), static_cast<std::streamsize>(picture.pixels.size()));
    if (in.gcount() != static_cast<std::streamsize>(picture.pixels.size()))
        throw std::runtime_error(fmt::format("{}: {} pixels instead of {}", file, in.gcount(), picture.pixels.size()));
    return picture;
}

void write_pgm(const std::string& file, const Picture& picture)
{
    std::ofstream out(file, std::ios::binary);
    out << fmt::format("P5\n{} {}\n255\n", picture.width, picture.height);
    out.write(reinterpret_cast<const char*>(picture.pixels.data()),
              static_cast<std::streamsize>(picture.pixels.size()));
    out.close();
    if (!out) throw std::runtime_error(file + ": can't be written");
}

} // namespace ork::tool
