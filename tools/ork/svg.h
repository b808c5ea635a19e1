// SPDX-License-Identifier: MIT
// Pictures that any browser opens: shapes and text in pixels, y downwards.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ork::tool {

// Words as text of XML and HTML.
std::string escaped(std::string_view words);

class Svg {
public:
    Svg(double width, double height);

    void rect(double x, double y, double width, double height, std::string_view fill, double radius = 0);
    void frame(double x, double y, double width, double height, std::string_view stroke);
    void line(double x1, double y1, double x2, double y2, std::string_view stroke, double width = 1,
              std::string_view dashes = "");
    void circle(double x, double y, double radius, std::string_view fill, double opacity = 1);
    void polyline(const std::vector<std::pair<double, double>>& points, std::string_view stroke, double width = 1.5,
                  std::string_view dashes = "");
    void image(double x, double y, double width, double height, std::string_view href);
    enum class Anchor { start, middle, end };
    void text(double x, double y, std::string_view words, double size = 12, Anchor anchor = Anchor::start,
              std::string_view fill = "#222", bool bold = false);
    void text_upwards(double x, double y, std::string_view words, double size = 12); // reads from below, centred

    std::string str() const;
    void save(const std::string& file) const; // throws std::runtime_error

private:
    double width_, height_;
    std::string body_;
};

// "#rrggbb"; from blue over white to red as t goes from -1 to 1.
std::string diverging(double t);
// From white to near black as t goes from 0 to 1.
std::string ink(double t);
// Ten colours that stay apart also for colour-blind readers.
const char* category_colour(size_t index);

} // namespace ork::tool
