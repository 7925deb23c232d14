// The writing of files and folders, of the steps that each system gives.

#include <charconv>

#include "platform/file_steps.h"
#include "platform/file_text.h"

namespace vorn {

namespace {

constexpr const char* FreshEnding = ".new.";

std::string FolderOf(const std::string& path) {
    const std::size_t end = path.rfind('/');
    return end == std::string::npos ? "./" : path.substr(0, end + 1);
}

bool WriteAll(FileNumber file, std::string_view content, std::error_code& fault) {
    while (!content.empty()) {
        const std::size_t count = FileStepsInUse().write(file, content, fault);
        if (count == 0) return false;
        content.remove_prefix(count);
    }
    return true;
}

bool WriteNew(const std::string& path, std::string_view content, std::error_code& fault) {
    const FileSteps& steps = FileStepsInUse();
    // Anything of that name is in the way, and a link or a pipe would lead elsewhere.
    steps.remove(path);
    const FileNumber file = steps.make(path, fault);
    if (file == NoFile) return false;
    const bool written = WriteAll(file, content, fault) && steps.flush(file, fault);
    steps.close(file);
    return written;
}

/// Removes what an earlier process began to put in the place of `path` and did not finish.
void LeftoversRemove(const std::string& path) {
    const std::string folder = FolderOf(path);
    const std::string beginning = path.substr(path.rfind('/') + 1) + FreshEnding;
    for (const std::string& name : FileStepsInUse().names(folder)) {
        unsigned long process = 0;
        if (!name.starts_with(beginning)) continue;
        std::from_chars(name.data() + beginning.size(), name.data() + name.size(), process);
        if (process > 0 && ProcessIsGone(process)) FileStepsInUse().remove(folder + name);
    }
}

/// Makes a folder, and those above it where they are missing.
bool FolderMakeAt(const std::string& path, std::error_code& fault) {
    const FileSteps& steps = FileStepsInUse();
    const std::string above = FolderOf(path);
    bool made = false;
    if (!steps.makeFolder(path, made, fault)) {
        if (fault != std::errc::no_such_file_or_directory || above.size() < 2) return false;
        fault.clear();
        if (!FolderMakeAt(above.substr(0, above.size() - 1), fault)) return false;
        if (!steps.makeFolder(path, made, fault)) return false;
    }
    // The name of a new folder stands in the one above it.
    return !made || steps.flushFolder(above, fault);
}

}  // namespace

bool FolderMake(const std::string& path, std::error_code& fault) {
    fault.clear();
    return FolderMakeAt(path.substr(0, path.find_last_not_of('/') + 1), fault);
}

bool FileReplace(const std::string& path, std::string_view content, std::error_code& fault) {
    fault.clear();
    const FileSteps& steps = FileStepsInUse();
    const std::string fresh = path + FreshEnding + std::to_string(ThisProcess());
    if (!WriteNew(fresh, content, fault) || !steps.rename(fresh, path, fault)) {
        steps.remove(fresh);
        return false;
    }
    LeftoversRemove(path);
    return steps.flushFolder(FolderOf(path), fault);
}

}  // namespace vorn
