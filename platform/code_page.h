// The system code page, in which some of the engine's texts come.

#pragma once

#include <string>
#include <string_view>

namespace vorn {

/// `text` from the system code page as UTF-8. A byte that the code page does not have becomes U+FFFD, so that
/// the result is UTF-8 whatever comes in.
std::string Utf8FromCodePage(std::string_view text);

/// `text` from UTF-8 in the system code page. A character that the code page does not have becomes `?`.
std::string CodePageFromUtf8(std::string_view text);

}  // namespace vorn
