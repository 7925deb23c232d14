#include "tests/support/test_locale.h"

#include "tests/support/linux/locale_files.h"

TestLocale::TestLocale(int category, const std::string& language, const std::string& codeset) {
    // The files are needed only while it is set.
    const LocaleFiles files(language, codeset);
    set_ = std::setlocale(category, files.Name().c_str()) != nullptr;
}
