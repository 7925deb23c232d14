#include "standin/summed_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace standin {

namespace {

bool NeedsEscape(char character) {
    return static_cast<unsigned char>(character) < ' ' || character == '"' || character == '\\';
}

/// How a character that may not stand in quotes is written.
std::string Escape(char character) {
    constexpr char Digits[] = "0123456789ABCDEF";
    if (!NeedsEscape(character)) return {character};
    if (character == '"' || character == '\\') return {'\\', character};
    const auto code = static_cast<unsigned char>(character);
    return {'\\', 'u', '0', '0', Digits[code / 16], Digits[code % 16]};
}

}  // namespace

void SummedText::Integer(std::int64_t value) {
    char digits[24];
    const char* const end = std::to_chars(digits, std::end(digits), value).ptr;
    Raw({digits, static_cast<std::size_t>(end - digits)});
}

void SummedText::Real(double value) {
    constexpr double Whole = 1e9;  // so large a whole number is written as one
    char digits[40];
    const std::int64_t whole = std::fabs(value) < Whole ? static_cast<std::int64_t>(value) : 0;
    if (static_cast<double>(whole) == value && !std::signbit(value)) {
        Integer(whole);
        Raw(".0");
    } else if (std::isfinite(value)) {
        const char* const end = std::to_chars(digits, std::end(digits), value).ptr;
        Raw({digits, static_cast<std::size_t>(end - digits)});
    } else if (std::isnan(value)) {
        Raw("NaN");
    } else {
        Raw(value < 0 ? "-Infinity" : "Infinity");
    }
}

void SummedText::Quoted(std::string_view value) {
    Raw("\"");
    while (!value.empty()) {
        const auto plain =
            static_cast<std::size_t>(std::find_if(value.begin(), value.end(), NeedsEscape) - value.begin());
        Raw(value.substr(0, plain));
        value.remove_prefix(plain);
        if (value.empty()) break;
        Raw(Escape(value.front()));
        value.remove_prefix(1);
    }
    Raw("\"");
}

}  // namespace standin
