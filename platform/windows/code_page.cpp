#include "platform/code_page.h"

#include <windows.h>

#include <algorithm>

#include "platform/windows/wide_text.h"

namespace vorn {

namespace {

/// No code page has characters of more bytes.
constexpr std::size_t CharacterBytesAtMost = 4;
constexpr wchar_t ReplacementCharacter = L'\xFFFD';

/// Appends `text` as wide characters; false, with nothing appended, where some of it is no character.
bool AppendWide(std::wstring& wide, std::string_view text, unsigned codePage, DWORD flags) {
    const int bytes = static_cast<int>(text.size());
    const int count = MultiByteToWideChar(codePage, flags, text.data(), bytes, nullptr, 0);
    if (count <= 0) return false;
    const std::size_t before = wide.size();
    wide.resize(before + static_cast<std::size_t>(count));
    MultiByteToWideChar(codePage, flags, text.data(), bytes, wide.data() + before, count);
    return true;
}

/// Appends the character that `text` begins with and gives its bytes; the replacement and 1 where there is
/// none.
std::size_t AppendCharacter(std::wstring& wide, std::string_view text) {
    for (std::size_t bytes = 1; bytes <= std::min(CharacterBytesAtMost, text.size()); ++bytes) {
        if (AppendWide(wide, text.substr(0, bytes), CP_ACP, MB_ERR_INVALID_CHARS)) return bytes;
    }
    wide += ReplacementCharacter;
    return 1;
}

}  // namespace

std::wstring WideFromCodePage(std::string_view text) {
    std::wstring wide;
    AppendWide(wide, text, CP_ACP, 0);
    return wide;
}

std::wstring WideFromUtf8(std::string_view text) {
    std::wstring wide;
    AppendWide(wide, text, CP_UTF8, 0);
    return wide;
}

std::string NarrowFromWide(std::wstring_view text, unsigned codePage, bool* lossy) {
    const unsigned page = codePage == CP_ACP ? GetACP() : codePage;
    // UTF-8 has every character and takes none of the other pages' settings.
    const DWORD flags = page == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS;
    const char* const replacement = page == CP_UTF8 ? nullptr : "?";
    BOOL replaced = FALSE;
    BOOL* const told = page == CP_UTF8 ? nullptr : &replaced;
    const int count = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(page, flags, text.data(), count, nullptr, 0, replacement, told);
    std::string narrow(static_cast<std::size_t>(std::max(bytes, 0)), '\0');
    WideCharToMultiByte(page, flags, text.data(), count, narrow.data(), bytes, replacement, told);
    if (lossy != nullptr) *lossy = replaced != FALSE;
    return narrow;
}

std::string Utf8FromCodePage(std::string_view text) {
    std::wstring wide;
    if (!AppendWide(wide, text, CP_ACP, MB_ERR_INVALID_CHARS)) {
        while (!text.empty()) text.remove_prefix(AppendCharacter(wide, text));
    }
    return NarrowFromWide(wide, CP_UTF8);
}

std::string CodePageFromUtf8(std::string_view text) {
    return NarrowFromWide(WideFromUtf8(text), CP_ACP);
}

}  // namespace vorn
