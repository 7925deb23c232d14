// Texts between the narrow encodings and the system's wide characters.

#pragma once

#include <string>
#include <string_view>

namespace vorn {

/// `text` from the system code page or from UTF-8. What is no character there becomes some other one.
std::wstring WideFromCodePage(std::string_view text);
std::wstring WideFromUtf8(std::string_view text);

/// `text` in a code page, such as `CP_UTF8` or `CP_ACP`. A character that the code page does not have becomes
/// `?` (U+FFFD in UTF-8), and `lossy` true where it is given.
std::string NarrowFromWide(std::wstring_view text, unsigned codePage, bool* lossy = nullptr);

}  // namespace vorn
