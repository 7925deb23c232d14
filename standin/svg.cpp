#include "standin/svg.h"

#include <algorithm>
#include <charconv>

#include "platform/utf8.h"

namespace standin {

namespace {

/// The first character of a text that is not empty, as XML wants it. Takes it off the text.
std::string_view XmlCharacter(std::string_view& text) {
    constexpr std::string_view Special = "&<>\"'";
    constexpr std::string_view Escapes[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"};
    const vorn::Utf8Character character = vorn::Utf8First(text);
    const std::string_view bytes = text.substr(0, character.bytes);
    text.remove_prefix(std::max<std::size_t>(character.bytes, 1));
    const bool space = character.code == '\t' || character.code == '\n' || character.code == '\r';
    const bool none = (character.code < 0x20 && !space) || (character.code & ~1U) == 0xfffe;
    if (bytes.empty() || none) return "\uFFFD";
    const std::size_t special = Special.find(bytes);
    return special == std::string_view::npos ? bytes : Escapes[special];
}

}  // namespace

void SvgPiece(std::string& svg, double length) {
    char buffer[352];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, length, std::chars_format::fixed, 1);
    std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
    if (text.ends_with(".0")) text.remove_suffix(2);
    svg += text;
}

void SvgText(std::string& svg, Point at, std::string_view style, std::string_view text) {
    SvgPut(svg, "<text class=\"", style, "\" x=\"", at.x, "\" y=\"", at.y, "\">");
    while (!text.empty()) svg += XmlCharacter(text);
    svg += "</text>\n";
}

std::string SvgWhole(Point size, std::string_view css, std::string_view content) {
    std::string svg;
    SvgPut(svg, R"(<?xml version="1.0" encoding="UTF-8"?>)", "\n",
           R"(<svg xmlns="http://www.w3.org/2000/svg" width=")", size.x, "\" height=\"", size.y,
           "\">\n<style>text{font:12px sans-serif;fill:#333}", css,
           "</style>\n<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n", content, "</svg>\n");
    return svg;
}

}  // namespace standin
