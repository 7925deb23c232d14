// Texts of bounded size, and comparisons that do not depend on the locale.

#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace vorn {

/// `character` in upper case if it is one of a to z, else as it is.
constexpr char AsciiUpper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

/// True for 0 to 9, A to Z and a to z.
constexpr bool IsAsciiLetterOrDigit(char character) {
    const char upper = AsciiUpper(character);
    return (upper >= '0' && upper <= '9') || (upper >= 'A' && upper <= 'Z');
}

/// True when both texts have the same bytes, letters compared without case.
bool EqualWithoutCase(std::string_view left, std::string_view right);

/// The longest start of `text` of at most `bytes` bytes that does not end inside a UTF-8 character.
std::string_view TextCut(std::string_view text, std::size_t bytes);

/// Copies `text` into a field of fixed size, cut as by `TextCut`, and fills the rest with zero bytes.
void TextCopy(char* field, std::size_t fieldBytes, std::string_view text);

template <std::size_t Bytes>
void TextCopy(char (&field)[Bytes], std::string_view text) {
    const std::string_view cut = text.size() < Bytes ? text : TextCut(text, Bytes - 1);
    std::memset(field, 0, Bytes);
    if (!cut.empty()) std::memcpy(field, cut.data(), cut.size());
}

}  // namespace vorn
