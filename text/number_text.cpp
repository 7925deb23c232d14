#include "text/number_text.h"

#include <locale.h>
#include <stdlib.h>

#include <algorithm>
#include <charconv>
#include <cmath>
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

void AppendReal(std::string& text, double value) {
    // The largest double has 309 digits before the point.
    char buffer[352];
    const auto [end, error] =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 6);
    text.append(buffer, end);
}

double RealFromText(std::string_view text) {
    // A terminated copy: a number's text is short, and only what follows it can be long.
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
    if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) return false;
    int value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc()) return false;
    number = value;
    return true;
}

}  // namespace vorn
