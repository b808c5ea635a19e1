// SPDX-License-Identifier: MIT
#include "page.h"

#include <ctime>
#include <filesystem>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "ork/ork.h"
#include "png.h"
#include "svg.h"

namespace ork::tool {
namespace {

constexpr char style[] =
    "body{font:16px/1.5 system-ui,'DejaVu Sans',Helvetica,Arial,sans-serif;color:#222;max-width:1180px;margin:2em "
    "auto;padding:0 1em}h1{font-size:1.8em}h2{margin-top:2em;border-bottom:1px solid #d0d0d8}.about{color:#556}"
    "pre{background:#f4f4f7;padding:.8em;overflow-x:auto}table{border-collapse:collapse}th,td{text-align:left;"
    "padding:.15em .9em .15em 0;border-bottom:1px solid #e4e4ea;font-size:.9em}figure{margin:1em 0;overflow-x:auto}";

std::string read(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    if (!in) throw std::runtime_error(file + ": can't be read");
    return all.str();
}

std::string cells(const char* kind, const Page::Row& row)
{
    std::string text = "<tr>";
    for (const std::string& cell : row) text += fmt::format("<{0}>{1}</{0}>", kind, escaped(cell));
    return text + "</tr>\n";
}

} // namespace

Page::Page(std::string_view title) : title_(title)
{
    char processor[128];
    ork_processor_name(processor, sizeof processor);
    body_ = fmt::format("<h1>{}</h1>\n<p class=\"about\">ork {}, code path {}; {}, up to {} threads; {:%Y-%m-%d "
                        "%H:%M} UTC</p>\n",
                        escaped(title), ork_version(), ork_code_path(), escaped(processor), ork_get_max_threads(),
                        fmt::gmtime(std::time(nullptr)));
}

void Page::section(std::string_view name, std::string_view about)
{
    body_ += fmt::format("<h2>{}</h2>\n<p class=\"about\">{}</p>\n", escaped(name), escaped(about));
}

void Page::paragraph(std::string_view words) { body_ += fmt::format("<p>{}</p>\n", escaped(words)); }

void Page::output(const std::vector<std::string>& lines)
{
    body_ += "<pre>";
    for (const std::string& line : lines) body_ += escaped(line) + "\n";
    body_ += "</pre>\n";
}

void Page::table(const Row& head, const std::vector<Row>& rows)
{
    body_ += "<table>\n" + cells("th", head);
    for (const Row& row : rows) body_ += cells("td", row);
    body_ += "</table>\n";
}

void Page::picture(const std::string& file)
{
    const std::string bytes = read(file), name = escaped(std::filesystem::path(file).filename().string());
    body_ += file.ends_with(".svg")
                 ? fmt::format("<figure>{}</figure>\n", bytes)
                 : fmt::format("<figure><img src=\"{}\" alt=\"{}\"/></figure>\n", data_uri(bytes), name);
}

std::string Page::str() const
{
    return fmt::format("<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"en\"><head>"
                       "<meta charset=\"utf-8\"/><title>{}</title><style>{}</style></head><body>\n{}</body></html>\n",
                       escaped(title_), style, body_);
}

void Page::save(const std::string& file) const
{
    std::ofstream out(file, std::ios::binary);
    out << str();
    out.close();
    if (!out) throw std::runtime_error(file + ": can't be written");
}

} // namespace ork::tool
