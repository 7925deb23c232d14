#include "text/ansi_to_utf8.h"

#include <string>

#include "platform/code_page.h"

namespace vorn {

const char* AnsiToUtf8(const char* text) {
    thread_local std::string converted;
    converted = Utf8FromCodePage(text);
    return converted.c_str();
}

}  // namespace vorn
