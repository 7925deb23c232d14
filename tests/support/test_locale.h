// A locale of a test's own making: the machine need not have it installed.

#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/system.h"

/// Sets a category of the process's locale while the object lives, such as all of `de_DE` in `UTF-8`.
class TestLocale {
  public:
    TestLocale(int category, const std::string& language, const std::string& codeset) {
        namespace fs = std::filesystem;
        // Its files are needed only while it is set.
        const fs::path folder =
            fs::temp_directory_path() / ("vorn_locale_" + std::to_string(ProcessNumber()));
        const std::string name = language + "." + codeset;
        fs::create_directories(folder);
        const std::string build =
            "localedef -i " + language + " -f " + codeset + " '" + (folder / name).string() + "'";
        // Its status also tells of mere warnings.
        [[maybe_unused]] const int status = std::system((build + " >/dev/null 2>&1").c_str());
        setenv("LOCPATH", folder.c_str(), 1);
        set_ = std::setlocale(category, name.c_str()) != nullptr;
        unsetenv("LOCPATH");
        fs::remove_all(folder);
    }
    ~TestLocale() { std::setlocale(LC_ALL, "C"); }
    TestLocale(const TestLocale&) = delete;
    TestLocale& operator=(const TestLocale&) = delete;

    /// False where it cannot be made: `localedef` or its sources (package locales) are missing.
    bool Set() const { return set_; }

  private:
    bool set_ = false;
};
