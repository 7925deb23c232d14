#include "platform/visible.h"

#include <algorithm>

#include "platform/utf8.h"

namespace vorn {

namespace {

/// Bytes of the UTF-8 character that `text` begins with; 0 when it begins with none that may be shown.
std::size_t ShownBytes(std::string_view text) {
    const Utf8Character character = Utf8First(text);
    const bool control = character.code < 0x20 || (character.code >= 0x7F && character.code < 0xA0);
    return control ? 0 : character.bytes;
}

}  // namespace

std::string Visible(std::string_view text) {
    constexpr std::string_view HexDigits = "0123456789ABCDEF";
    std::string visible;
    while (!text.empty()) {
        const std::size_t shown = ShownBytes(text);
        if (shown > 0) {
            visible += text.substr(0, shown);
        } else {
            const auto byte = static_cast<unsigned char>(text[0]);
            visible.append("\\x") += HexDigits[byte >> 4U];
            visible += HexDigits[byte & 0xFU];
        }
        text.remove_prefix(std::max<std::size_t>(shown, 1));
    }
    return visible;
}

}  // namespace vorn
