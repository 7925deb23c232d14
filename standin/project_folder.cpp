#include "standin/project_folder.h"

#include "text/project_name.h"

namespace standin {

namespace {

/// The name in upper case, empty for one that no project can bear.
std::string StoredName(std::string_view name) {
    std::string upper;
    vorn::ProjectNameUpper(name, upper);
    return upper;
}

}  // namespace

std::string ProjectFolder(std::string_view name) {
    const std::string stored = StoredName(name);
    return stored.empty() ? stored : vorn::ProjectFolderPath(stored);
}

std::string ProjectFile(std::string_view name, std::string_view ending) {
    const std::string folder = ProjectFolder(name);
    return folder.empty() ? folder : folder + StoredName(name) + std::string(ending);
}

std::string ProjectLockFile(std::string_view name) {
    std::string folder = ProjectFolder(name);
    if (folder.empty()) return folder;
    folder.pop_back();
    return folder + ".lock";
}

}  // namespace standin
