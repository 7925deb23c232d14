#include "text/fixed_text.h"

#include <algorithm>
#include <cstring>

namespace vorn {

bool EqualWithoutCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return AsciiUpper(a) == AsciiUpper(b); });
}

std::string_view TextCut(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    // A character has at most three bytes behind its first; a longer run is no UTF-8 and is cut where it is.
    std::size_t end = bytes;
    while (end > 0 && bytes - end < 3 && continues(text[end])) --end;
    return text.substr(0, continues(text[end]) ? bytes : end);
}

void TextCopy(char* field, std::size_t fieldBytes, std::string_view text) {
    const std::string_view cut = TextCut(text, fieldBytes - 1);
    std::memset(field, 0, fieldBytes);
    std::memcpy(field, cut.data(), cut.size());
}

}  // namespace vorn
