// The one reader of UTF-8.

#pragma once

#include <utf8.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace vorn {

struct Utf8Character {
    std::size_t bytes = 0;  ///< 0 where there is no character
    char32_t code = 0;
};

/// The character that `text` begins with. None at the text's end, and where the bytes are no UTF-8: too long
/// a form, a surrogate, beyond U+10FFFF, cut off.
inline Utf8Character Utf8First(std::string_view text) {
    constexpr std::size_t BytesAtMost = 4;
    // No character is the beginning of another one.
    for (std::size_t bytes = 1; bytes <= std::min(BytesAtMost, text.size()); ++bytes) {
        const char* const start = text.data();
        if (utf8::is_valid(start, start + bytes)) return {bytes, utf8::unchecked::peek_next(start)};
    }
    return {};
}

}  // namespace vorn
