#include "standin/project_lock.h"

#include <array>
#include <string>
#include <system_error>
#include <utility>

#include "platform/file_lock.h"
#include "platform/file_text.h"
#include "platform/notice.h"
#include "standin/project.h"
#include "standin/project_folder.h"

namespace standin {

namespace {

std::array<vorn::FileLock, SlotCount>& Locks() {
    // Never destroyed: the process ends around the engine's threads, and its locks with it.
    static auto& locks = *new std::array<vorn::FileLock, SlotCount>;
    return locks;
}

vorn::FileLock& LockOf(int slot) {
    return Locks()[static_cast<std::size_t>(slot)];
}

/// What was told last of a project that is held; empty since one was taken.
std::string& LastTold() {
    static std::string& line = *new std::string;
    return line;
}

/// Tells who holds a project, and not once more while clients ask again and again.
void TellHeld(std::string_view name, const std::string& holder) {
    std::string line = "store: " + std::string(name) + " is open in another server";
    if (!holder.empty()) line += ", " + holder;
    if (line != LastTold()) vorn::Notice(vorn::NoticeKind::Information, line);
    LastTold() = std::move(line);
}

}  // namespace

bool ProjectLockTake(int slot, std::string_view name) {
    const std::string path = ProjectLockFile(name);
    if (path.empty()) return true;
    // Two servers that each make the first project of a store would both succeed if the store came later.
    std::error_code fault;
    vorn::FolderMake(path.substr(0, path.rfind('/')), fault);
    std::string& told = LastTold();
    std::string holder;
    if (LockOf(slot).Take(path, vorn::ProcessTitle(), holder) == vorn::LockResult::Held) {
        TellHeld(name, holder);
        return false;
    }
    told.clear();
    return true;
}

bool ProjectLockEnsure(int slot, std::string_view name) {
    return LockOf(slot).IsTaken() || ProjectLockTake(slot, name);
}

void ProjectLockRelease(int slot) {
    LockOf(slot).Release();
}

}  // namespace standin
