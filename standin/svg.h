// Writing SVG: a text that grows piece by piece. Lengths are pixels, y runs downwards.

#pragma once

#include <string>
#include <string_view>

namespace standin {

struct Point {
    double x = 0.0;
    double y = 0.0;
};

inline void SvgPiece(std::string& svg, std::string_view text) {
    svg += text;
}
/// A length with at most one decimal.
void SvgPiece(std::string& svg, double length);

/// Appends texts, as they stand, and lengths.
template <typename... Pieces>
void SvgPut(std::string& svg, const Pieces&... pieces) {
    (SvgPiece(svg, pieces), ...);
}

/// A text of the class `style`, escaped. What is no UTF-8 and what XML does not have becomes U+FFFD.
void SvgText(std::string& svg, Point at, std::string_view style, std::string_view text);

/// A white picture of that size, with the styles of `css` and the elements of `content`.
std::string SvgWhole(Point size, std::string_view css, std::string_view content);

}  // namespace standin
