// Folders of a test's own, so that what the process keeps in `../AlgProject` begins empty and leaves nothing.

#pragma once

#include <filesystem>
#include <random>
#include <string>

#include "platform/file_path.h"

/// A new folder; gone at the object's end with all that it holds.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::random_device random;
        do {
            path_ = std::filesystem::temp_directory_path() / ("vorn_" + std::to_string(random()));
        } while (!std::filesystem::create_directory(path_));
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        const std::u8string path = path_.u8string();
        std::filesystem::remove_all(vorn::FilePath({path.begin(), path.end()}), ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }

  private:
    std::filesystem::path path_;
};

/// Makes a new temporary folder TMP with TMP/run in it and works there, so that `../AlgProject` lies inside
/// TMP. At the end the process is back where it was and TMP is gone with all that it holds.
class WorkingFolder {
  public:
    WorkingFolder() : before_(std::filesystem::current_path()) {
        std::filesystem::create_directory(top_.Path() / "run");
        std::filesystem::current_path(top_.Path() / "run");
    }
    ~WorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

    /// The folder of all stored projects. It is not there until something makes it.
    std::filesystem::path Projects() const { return top_.Path() / "AlgProject"; }

  private:
    TemporaryFolder top_;
    std::filesystem::path before_;
};
