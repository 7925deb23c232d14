#include "text/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

namespace vorn {

namespace {

// What `strtod` counts as white space in the C locale.
constexpr std::string_view WhiteSpace = " \t\n\v\f\r";

/// How a number's text is written: in tens, or in sixteens behind `0x`.
struct Notation {
    std::chars_format format = std::chars_format::general;
    std::string_view digits = "0123456789";
    std::string_view exponentMark = "eE";
    int exponentsPerDigit = 1;
};
constexpr Notation Decimal;
constexpr Notation Hexadecimal{std::chars_format::hex, "0123456789abcdefABCDEF", "pP", 4};

/// True for `0x` with a digit behind it, or a point and a digit. Without them the number is the `0`.
bool HexadecimalBegins(std::string_view text) {
    if (!text.starts_with("0x") && !text.starts_with("0X")) return false;
    text.remove_prefix(2);
    if (text.starts_with('.')) text.remove_prefix(1);
    return !text.empty() && Hexadecimal.digits.find(text.front()) != std::string_view::npos;
}

/// The side on which a number left the range of a double: its first digit that is not zero, seen from the
/// point, and its exponent tell. True when it is too large.
bool TooLarge(std::string_view number, const Notation& notation) {
    const std::size_t mark = std::min(number.find_first_of(notation.exponentMark), number.size());
    const std::string_view mantissa = number.substr(0, mark);
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first = mantissa.find_first_not_of("0.");
    const auto places = static_cast<long long>(point) - static_cast<long long>(first);
    const int exponent = mark == number.size() ? 0 : IntFromText(number.substr(mark + 1));
    return places * notation.exponentsPerDigit + exponent > 0;
}

/// A real with six decimals.
struct SixDecimals {
    std::uint64_t whole = 0;
    std::uint32_t millionths = 0;
};

/// Rounds to the nearest, and to the even one of two that are as near. False for a number whose bits behind
/// the point do not all fit 63, and for one that is large or no number.
bool SixDecimalsOf(double magnitude, SixDecimals& number) {
    constexpr double Least = 0x1p-11;  // a double has 53 bits
    constexpr double Most = 0x1p53;
    constexpr std::uint64_t Million = 1000000;
    constexpr std::uint64_t Half = std::uint64_t{1} << 62U;
    if (magnitude != 0.0 && !(magnitude >= Least && magnitude < Most)) return false;
    number.whole = static_cast<std::uint64_t>(magnitude);
    const double rest = (magnitude - static_cast<double>(number.whole)) * 0x1p63;
    const auto fraction = static_cast<std::uint64_t>(static_cast<std::int64_t>(rest));
    // The product of 83 bits, in two parts.
    const std::uint64_t low = (fraction & 0xFFFFFFFFU) * Million;
    const std::uint64_t high = (fraction >> 32U) * Million + (low >> 32U);
    const std::uint64_t left = (high & 0x7FFFFFFFU) << 32U | (low & 0xFFFFFFFFU);
    number.millionths = static_cast<std::uint32_t>(high >> 31U);
    if (left > Half || (left == Half && number.millionths % 2 == 1)) ++number.millionths;
    if (number.millionths == Million) number = {number.whole + 1, 0};
    return true;
}

/// Writes the two last digits of `number`.
void PairWrite(char* text, std::uint32_t number) {
    text[0] = static_cast<char>('0' + number / 10 % 10);
    text[1] = static_cast<char>('0' + number % 10);
}

}  // namespace

char* RealToText(char* first, char* last, double value, int decimals) {
    const auto [end, error] = std::to_chars(first, last, value, std::chars_format::fixed, decimals);
    return error == std::errc() ? end : nullptr;
}

void AppendReal(std::string& text, double value) {
    // The largest double has 309 digits before the point.
    char buffer[352];
    SixDecimals number;
    if (!SixDecimalsOf(std::fabs(value), number)) {
        text.append(buffer, RealToText(buffer, std::end(buffer), value, 6));
        return;
    }
    buffer[0] = '-';
    char* end = buffer + (std::signbit(value) ? 1 : 0);
    end = std::to_chars(end, std::end(buffer), number.whole).ptr;
    end[0] = '.';
    PairWrite(end + 1, number.millionths / 10000);
    PairWrite(end + 3, number.millionths / 100);
    PairWrite(end + 5, number.millionths);
    text.append(buffer, end + 7);
}

double RealFromText(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(WhiteSpace), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    if (text.starts_with('+') || text.starts_with('-')) return 0.0;
    const bool hexadecimal = HexadecimalBegins(text);
    const Notation& notation = hexadecimal ? Hexadecimal : Decimal;
    // GCC 12 takes an exponent with two signs in this notation.
    if (hexadecimal) text = text.substr(2, std::min(text.find("+-"), text.size()) - 2);
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, notation.format);
    if (error == std::errc::invalid_argument) return 0.0;
    if (error == std::errc::result_out_of_range) {
        const std::string_view number = text.substr(0, static_cast<std::size_t>(end - text.data()));
        value = TooLarge(number, notation) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return negative ? -value : value;
}

int IntFromText(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(WhiteSpace), text.size()));
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    int number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc::result_out_of_range) return number;
    return text.starts_with('-') ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
}

int IntFromReal(double value) {
    if (std::isnan(value)) return 0;
    constexpr double Low = std::numeric_limits<int>::min();
    constexpr double High = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, Low, High));
}

bool NumberFromDigits(std::string_view text, int& number) {
    if (text.empty() || text.front() < '0' || text.front() > '9') return false;
    int value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return false;
    number = value;
    return true;
}

}  // namespace vorn
