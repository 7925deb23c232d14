#include "text/fixed_text.h"

#include <algorithm>
#include <cstring>

#include "platform/utf8.h"

namespace vorn {

bool EqualWithoutCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return AsciiUpper(a) == AsciiUpper(b); });
}

std::string_view TextCut(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    constexpr std::size_t BehindFirstAtMost = 3;  // bytes of a character behind its first
    for (std::size_t back = 1; back <= std::min(BehindFirstAtMost, bytes); ++back) {
        if (Utf8First(text.substr(bytes - back)).bytes > back) return text.substr(0, bytes - back);
    }
    return text.substr(0, bytes);
}

void TextCopy(char* field, std::size_t fieldBytes, std::string_view text) {
    const std::string_view cut = TextCut(text, fieldBytes - 1);
    std::memset(field, 0, fieldBytes);
    std::memcpy(field, cut.data(), cut.size());
}

}  // namespace vorn
