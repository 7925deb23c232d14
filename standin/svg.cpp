#include "standin/svg.h"

#include <algorithm>
#include <charconv>

#include "platform/utf8.h"

namespace standin {

namespace {

constexpr double LengthLimit = 1e6;
constexpr std::string_view Replacement = "\uFFFD";

/// A character of a UTF-8 text.
struct Character {
    std::size_t bytes = 1;
    bool valid = false;  ///< well formed, and one that XML has
    bool wide = false;   ///< fills two half-width places
};

bool InXml(char32_t code) {
    if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
    return code != 0xfffe && code != 0xffff;
}

/// The character at the start of a text that is not empty. A faulty byte stands alone.
Character CharacterAt(std::string_view text) {
    constexpr char32_t WideFrom = 0x1100;
    const vorn::Utf8Character read = vorn::Utf8First(text);
    if (read.bytes == 0) return {};
    return {.bytes = read.bytes, .valid = InXml(read.code), .wide = read.code >= WideFrom};
}

std::string_view Escaped(char character) {
    switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&apos;";
        default:
            return {};
    }
}

void AppendAttribute(std::string& svg, std::string_view name, double length) {
    svg += ' ';
    svg += name;
    svg += "=\"";
    AppendLength(svg, length);
    svg += '"';
}

void AppendStyle(std::string& svg, std::string_view style) {
    svg += " class=\"";
    svg += style;
    svg += '"';
}

}  // namespace

void AppendLength(std::string& svg, double length) {
    if (!(length < LengthLimit)) length = LengthLimit;
    length = std::max(length, -LengthLimit);
    char buffer[32];
    const auto [end, error] =
        std::to_chars(buffer, buffer + sizeof buffer, length, std::chars_format::fixed, 1);
    std::string_view text(buffer, static_cast<std::size_t>(end - buffer));
    if (text.ends_with(".0")) text.remove_suffix(2);
    svg += text;
}

std::string XmlText(std::string_view text) {
    std::string xml;
    while (!text.empty()) {
        const Character character = CharacterAt(text);
        const std::string_view bytes = text.substr(0, character.bytes);
        const std::string_view escape = Escaped(text[0]);
        xml += !character.valid ? Replacement : escape.empty() ? bytes : escape;
        text.remove_prefix(character.bytes);
    }
    return xml;
}

int TextPlaces(std::string_view text) {
    int places = 0;
    while (!text.empty()) {
        const Character character = CharacterAt(text);
        places += character.wide ? 2 : 1;
        text.remove_prefix(character.bytes);
    }
    return places;
}

std::string TextFitted(std::string_view text, int places) {
    if (TextPlaces(text) <= places) return std::string(text);
    std::size_t end = 0;
    for (int left = places - 1; end < text.size();) {
        const Character character = CharacterAt(text.substr(end));
        left -= character.wide ? 2 : 1;
        if (left < 0) break;
        end += character.bytes;
    }
    return std::string(text.substr(0, end)) + "…";
}

void SvgBegin(std::string& svg, double width, double height, std::string_view css) {
    svg += R"(<?xml version="1.0" encoding="UTF-8"?>)"
           "\n"
           R"(<svg xmlns="http://www.w3.org/2000/svg")";
    AppendAttribute(svg, "width", width);
    AppendAttribute(svg, "height", height);
    svg += " viewBox=\"0 0 ";
    AppendLength(svg, width);
    svg += ' ';
    AppendLength(svg, height);
    svg +=
        "\">\n<style>text{font-family:'Noto Sans CJK SC','Microsoft YaHei','WenQuanYi Zen Hei',sans-serif;"
        "font-size:12px;fill:#333}";
    svg += css;
    svg += "</style>\n<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n";
}

void SvgEnd(std::string& svg) {
    svg += "</svg>\n";
}

void SvgLine(std::string& svg, Point from, Point to, std::string_view style) {
    svg += "<line";
    AppendAttribute(svg, "x1", from.x);
    AppendAttribute(svg, "y1", from.y);
    AppendAttribute(svg, "x2", to.x);
    AppendAttribute(svg, "y2", to.y);
    AppendStyle(svg, style);
    svg += "/>\n";
}

void SvgBox(std::string& svg, Point middle, Point size, double corner, std::string_view style) {
    svg += "<rect";
    AppendAttribute(svg, "x", middle.x - size.x / 2);
    AppendAttribute(svg, "y", middle.y - size.y / 2);
    AppendAttribute(svg, "width", size.x);
    AppendAttribute(svg, "height", size.y);
    AppendAttribute(svg, "rx", corner);
    AppendStyle(svg, style);
    svg += "/>\n";
}

void SvgCircle(std::string& svg, Point middle, double radius, std::string_view style) {
    svg += "<circle";
    AppendAttribute(svg, "cx", middle.x);
    AppendAttribute(svg, "cy", middle.y);
    AppendAttribute(svg, "r", radius);
    AppendStyle(svg, style);
    svg += "/>\n";
}

void SvgText(std::string& svg, Point at, std::string_view text, std::string_view style) {
    svg += "<text";
    AppendAttribute(svg, "x", at.x);
    AppendAttribute(svg, "y", at.y);
    AppendStyle(svg, style);
    svg += '>';
    svg += XmlText(text);
    svg += "</text>\n";
}

}  // namespace standin
