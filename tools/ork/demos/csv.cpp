// SPDX-License-Identifier: MIT
#include "demos/csv.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <fmt/format.h>
#include <fstream>
#include <stdexcept>

namespace ork::tool {
namespace {

std::vector<int> read_row(std::string_view line, const IntegerTable& shape, const std::string& where)
{
    std::vector<int> row;
    while (true) {
        const size_t comma = line.find(',');
        const std::string_view field = line.substr(0, comma);
        const bool last = static_cast<int>(row.size()) == shape.columns - 1;
        const int low = last ? shape.last_low : shape.low, high = last ? shape.last_high : shape.high;
        int value = 0;
        const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
        if (error != std::errc() || end != field.data() + field.size())
            throw std::runtime_error(
                fmt::format("{}: field {} is \"{}\", not an integer", where, row.size() + 1, field));
        if (value < low || value > high)
            throw std::runtime_error(
                fmt::format("{}: field {} is {}, outside {} to {}", where, row.size() + 1, value, low, high));
        row.push_back(value);
        if (comma == std::string_view::npos) break;
        if (last) throw std::runtime_error(fmt::format("{}: more than {} fields", where, shape.columns));
        line.remove_prefix(comma + 1);
    }
    if (static_cast<int>(row.size()) != shape.columns)
        throw std::runtime_error(fmt::format("{}: {} fields instead of {}", where, row.size(), shape.columns));
    return row;
}

} // namespace

std::vector<std::vector<int>> read_csv(const std::string& file, const IntegerTable& shape)
{
    std::ifstream in(file);
    if (!in) throw std::runtime_error(fmt::format("{}: {}", file, std::strerror(errno)));
    std::vector<std::vector<int>> rows;
    std::string line;
    size_t blank = 0; // number of the first blank line
    for (size_t number = 1; std::getline(in, line); ++number) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty()) {
            if (blank == 0) blank = number;
            continue;
        }
        if (blank != 0) throw std::runtime_error(fmt::format("{}:{}: blank line between rows", file, blank));
        rows.push_back(read_row(line, shape, fmt::format("{}:{}", file, number)));
    }
    if (in.bad()) throw std::runtime_error(fmt::format("{}:{}: can't be read further", file, rows.size() + 1));
    if (rows.empty()) throw std::runtime_error(fmt::format("{}:1: no rows", file));
    return rows;
}

} // namespace ork::tool
