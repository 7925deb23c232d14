// Writing SVG: a text that grows element by element. Lengths are pixels.

#pragma once

#include <string>
#include <string_view>

namespace standin {

struct Point {
    double x = 0.0;
    double y = 0.0;
};

/// Appends a length with at most one decimal; of 1e6 and beyond, and of NaN, the limit.
void AppendLength(std::string& svg, double length);

/// `text` as it may stand in an XML text or attribute: escaped, and with U+FFFD in the place of bytes that
/// are no UTF-8 and of characters that XML does not have.
std::string XmlText(std::string_view text);

/// `text` cut behind so many half-width places that it fills at most `places`, with an ellipsis where it was
/// cut. A character beyond Latin takes two places.
std::string TextFitted(std::string_view text, int places);
/// Half-width places that `text` takes.
int TextPlaces(std::string_view text);

/// Begin and end a picture of that size, white, with the styles that `css` gives beside the text's own.
void SvgBegin(std::string& svg, double width, double height, std::string_view css);
void SvgEnd(std::string& svg);

/// One element each, of the class `style`. `text` is escaped here.
void SvgLine(std::string& svg, Point from, Point to, std::string_view style);
void SvgBox(std::string& svg, Point middle, Point size, double corner, std::string_view style);
void SvgCircle(std::string& svg, Point middle, double radius, std::string_view style);
void SvgText(std::string& svg, Point at, std::string_view text, std::string_view style);

}  // namespace standin
