// The files of a locale of a test's own making: the machine need not have it installed.

#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/system.h"

/// The files of a locale, such as `de_DE` in `UTF-8`, there while the object lives and found by LOCPATH.
class LocaleFiles {
  public:
    LocaleFiles(const std::string& language, const std::string& codeset)
        : folder_(std::filesystem::temp_directory_path() /
                  ("vorn_locale_" + std::to_string(ProcessNumber()))),
          name_(language + "." + codeset) {
        std::filesystem::create_directories(folder_);
        const std::string build =
            "localedef -i " + language + " -f " + codeset + " '" + (folder_ / name_).string() + "'";
        // Its status also tells of mere warnings.
        [[maybe_unused]] const int status = std::system((build + " >/dev/null 2>&1").c_str());
        setenv("LOCPATH", folder_.c_str(), 1);
    }
    ~LocaleFiles() {
        unsetenv("LOCPATH");
        std::filesystem::remove_all(folder_);
    }
    LocaleFiles(const LocaleFiles&) = delete;
    LocaleFiles& operator=(const LocaleFiles&) = delete;

    /// False where it cannot be made: `localedef` or its sources (package locales) are missing.
    bool Made() const { return std::filesystem::exists(folder_ / name_ / "LC_CTYPE"); }
    const std::string& Name() const { return name_; }

  private:
    std::filesystem::path folder_;
    std::string name_;
};
