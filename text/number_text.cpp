#include "text/number_text.h"

#include <locale.h>
#include <stdlib.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace vorn {

namespace {

// What `strtod` counts as white space in the C locale.
constexpr std::string_view WhiteSpace = " \t\n\v\f\r";

locale_t CLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

}  // namespace

char* RealToText(char* first, char* last, double value, int decimals) {
    const auto [end, error] = std::to_chars(first, last, value, std::chars_format::fixed, decimals);
    return error == std::errc() ? end : nullptr;
}

void AppendReal(std::string& text, double value) {
    // The largest double has 309 digits before the point.
    char buffer[352];
    text.append(buffer, RealToText(buffer, std::end(buffer), value, 6));
}

double RealFromText(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(WhiteSpace), text.size()));
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    double value = 0.0;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, value);
    const bool hexadecimal = end != last && (*end == 'x' || *end == 'X');
    if (error != std::errc::result_out_of_range && !hexadecimal) return value;
    // The two forms that are left to the slow reader, which wants a terminated text.
    const std::string copy(text);
    return strtod_l(copy.c_str(), nullptr, CLocale());
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
