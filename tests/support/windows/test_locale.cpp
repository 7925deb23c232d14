#include "tests/support/test_locale.h"

#include <windows.h>

TestLocale::TestLocale(int category, const std::string& language, const std::string& codeset) {
    // The code page is the whole system's; the rest has names of its own here.
    constexpr unsigned ChineseCodePage = 936;
    if (codeset == "GBK") {
        set_ = GetACP() == ChineseCodePage;
    } else if (language == "de_DE") {
        set_ = std::setlocale(category, "German_Germany.1252") != nullptr;
    }
}
