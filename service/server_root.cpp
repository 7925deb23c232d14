#include "service/server_root.h"

#include <algorithm>

#include "platform/executable_path.h"

namespace vorn {

namespace {

constexpr std::size_t DirectoryBytes = 256;

/// Cuts `path` behind its last separator but one.
void CutToParent(std::string& path) {
    const std::size_t last = path.rfind(PathSeparator);
    if (last == std::string::npos || last == 0) return;
    const std::size_t lastButOne = path.rfind(PathSeparator, last - 1);
    if (lastButOne != std::string::npos) path.resize(lastButOne + 1);
}

}  // namespace

const char* ServerRootGet() {
    thread_local std::string root;
    root = ExecutablePath();
    if (root.size() > DirectoryBytes) root.clear();
    CutToParent(root);
    return root.c_str();
}

std::string DirectoryText(std::string_view directory) {
    std::string text(directory);
    std::replace(text.begin(), text.end(), PathSeparator, '_');
    return text;
}

bool DirectoryHolds(std::string_view serverDirectory, std::string_view text) {
    const std::size_t length = serverDirectory.size();
    if (length == 0 || length > DirectoryBytes || text.size() < length) return false;
    if (text[length - 1] == '_') text = text.substr(0, length);
    return text == serverDirectory;
}

}  // namespace vorn
