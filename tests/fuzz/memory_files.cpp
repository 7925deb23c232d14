#include "tests/fuzz/memory_files.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "engine/vorn_core.h"
#include "platform/file_text.h"
#include "standin/project.h"
#include "standin/project_folder.h"
#include "standin/project_json.h"
#include "standin/project_lock.h"
#include "standin/project_store.h"

namespace {

/// The files by path. Drawings are written by a thread of their own.
struct Folder {
    std::mutex lock;
    std::map<std::string, std::string> files;
};

Folder& TheFolder() {
    static Folder& folder = *new Folder;
    return folder;
}

void FileWrite(const std::string& path, std::string content) {
    const std::lock_guard guard(TheFolder().lock);
    TheFolder().files[path] = std::move(content);
}

std::optional<std::string> FileContent(const std::string& path) {
    const std::lock_guard guard(TheFolder().lock);
    const auto found = TheFolder().files.find(path);
    return found == TheFolder().files.end() ? std::nullopt : std::optional(found->second);
}

std::string Stored(const char* name) {
    return standin::ProjectFile(name, ".json");
}

}  // namespace

void FilesForget() {
    const std::lock_guard guard(TheFolder().lock);
    TheFolder().files.clear();
}

namespace vorn {

bool FolderMake(const std::string& /*path*/, std::error_code& fault) {
    fault.clear();
    return true;
}

bool FileRead(const std::string& path, std::size_t limit, std::string& content, std::error_code& fault) {
    fault.clear();
    const std::optional<std::string> found = FileContent(path);
    if (!found) fault = std::make_error_code(std::errc::no_such_file_or_directory);
    if (found && found->size() > limit) fault = std::make_error_code(std::errc::file_too_large);
    content = fault ? "" : *found;
    return !fault;
}

bool FileReplace(const std::string& path, std::string_view content, std::error_code& fault) {
    fault.clear();
    FileWrite(path, std::string(content));
    return true;
}

}  // namespace vorn

namespace standin {

bool ProjectLockTake(int /*slot*/, std::string_view /*name*/) {
    return true;
}
bool ProjectLockEnsure(int /*slot*/, std::string_view /*name*/) {
    return true;
}
void ProjectLockRelease(int /*slot*/) {}

bool StoreWrite(Project& project) {
    const std::string path = Stored(project.name);
    std::string content;
    ProjectToJson(project, content);
    if (!path.empty()) FileWrite(path, std::move(content));
    return !path.empty();
}

bool StoreRead(Project& project) {
    const std::optional<std::string> content = FileContent(Stored(project.name));
    return content && ProjectFromJson(*content, project);
}

}  // namespace standin

using namespace standin;

int ProjectInfoRead(const char* name) {
    const std::lock_guard guard(EngineLock());
    Project* const project = ProjectMake(name);
    if (project == nullptr) return 0;
    // What is read takes the place of the variables that each new project has.
    project->variables.clear();
    if (StoreRead(*project)) {
        TypesPublish(*project);
        return 1;
    }
    ProjectFree(*project);
    return 0;
}

void ProjectDBRead(const char* /*name*/) {}
void ProjectInfoWrite(const char* /*name*/) {}

void ProjectDBWrite(const char* name) {
    const std::lock_guard guard(EngineLock());
    if (Project* const project = ProjectFind(name)) StoreWrite(*project);
}
