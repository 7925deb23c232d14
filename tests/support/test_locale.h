// A locale for a test.

#pragma once

#include <clocale>
#include <string>

/// Sets a category of the process's locale while the object lives, such as all of `de_DE` in `UTF-8`.
class TestLocale {
  public:
    TestLocale(int category, const std::string& language, const std::string& codeset);
    ~TestLocale() { std::setlocale(LC_ALL, "C"); }
    TestLocale(const TestLocale&) = delete;
    TestLocale& operator=(const TestLocale&) = delete;

    /// False where the system has none of that kind and none can be made.
    bool Set() const { return set_; }

  private:
    bool set_ = false;
};
