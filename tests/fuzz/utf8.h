// Whether texts are UTF-8, asked of a library.

#pragma once

#include <utf8.h>

#include <string_view>

inline bool IsUtf8(std::string_view text) {
    return utf8::is_valid(text.begin(), text.end());
}
