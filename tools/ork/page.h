// SPDX-License-Identifier: MIT
// One HTML page with everything in it: text, tables, pictures. XHTML syntax, so that what is forgotten shows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ork::tool {

class Page {
public:
    // The title, the library, the machine and the date.
    explicit Page(std::string_view title);

    void section(std::string_view name, std::string_view about);
    void paragraph(std::string_view words);
    void output(const std::vector<std::string>& lines); // as a terminal shows it
    using Row = std::vector<std::string>;
    void table(const Row& head, const std::vector<Row>& rows);
    void picture(const std::string& file); // an SVG or PNG file, copied into the page; throws std::runtime_error

    std::string str() const;
    void save(const std::string& file) const; // throws std::runtime_error

private:
    std::string title_, body_;
};

} // namespace ork::tool
