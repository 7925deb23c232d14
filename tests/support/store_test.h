// A fixture for tests of stored projects, and what they hold against each other.

#pragma once

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "platform/file_text.h"
#include "standin/project.h"
#include "standin/project_json.h"
#include "tests/support/service_test.h"

class StoreTest : public ServiceTest {
  protected:
    std::string FileOf(const std::string& name) { return (Folder(name) / (name + ".json")).string(); }
    std::filesystem::path Folder(const std::string& name) { return folder_.Projects() / name; }
    std::string Read(const std::string& path) {
        std::string text;
        std::error_code fault;
        return vorn::FileRead(path, 1 << 20, text, fault) ? text : "not read";
    }
    void Write(const std::string& path, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }

    /// The names in a project's folder, each with a space behind it.
    std::string FilesOf(const std::string& name) {
        std::set<std::string> names;
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(Folder(name), error)) {
            names.insert(entry.path().filename().string());
        }
        std::string text;
        for (const std::string& each : names) text += each + ' ';
        return text;
    }
};

inline std::string Json(int slot) {
    std::string text;
    standin::ProjectToJson(*standin::ProjectFind(slot), text);
    return text;
}

inline bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// A document of that many nodes.
inline std::string Nodes(int count) {
    std::string text = R"({"DeviceInfo":[)";
    for (int node = 0; node < count; ++node) text += R"({"DeviceID":3000,"PositionX":1.5},)";
    return text + "0]}";
}
