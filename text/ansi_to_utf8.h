// Texts of the system code page as UTF-8.

#pragma once

namespace vorn {

/// `text` converted from the system code page to UTF-8; a byte that the code page does not have becomes
/// U+FFFD. The result is a per-thread text, valid until the next call on that thread.
const char* AnsiToUtf8(const char* text);

}  // namespace vorn
