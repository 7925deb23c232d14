// A folder of a test's own, so that what the process keeps in `../AlgProject` begins empty and leaves
// nothing.

#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

/// Makes a new temporary folder TMP with TMP/run in it and works there, so that `../AlgProject` lies inside
/// TMP. At the end the process is back where it was and TMP is gone with all that it holds.
class WorkingFolder {
  public:
    WorkingFolder() : before_(std::filesystem::current_path()) {
        std::string pattern = (std::filesystem::temp_directory_path() / "vorn_XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
        top_ = pattern;
        std::filesystem::create_directory(top_ / "run");
        std::filesystem::current_path(top_ / "run");
    }
    ~WorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
        std::filesystem::remove_all(top_, ignored);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

    /// The folder of all stored projects. It is not there until something makes it.
    std::filesystem::path Projects() const { return top_ / "AlgProject"; }

  private:
    std::filesystem::path before_;
    std::filesystem::path top_;
};
