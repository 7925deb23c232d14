#include "standin/project_store.h"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

#include "engine/vorn_core.h"
#include "platform/file_text.h"
#include "standin/project_folder.h"
#include "standin/project_json.h"
#include "standin/trace.h"

namespace standin {

namespace {

namespace fs = std::filesystem;
using std::string_view;

/// A stored project is this head, the sum of its content in 16 hexadecimal digits, the middle, the content
/// and the tail: one JSON object. The head tells the form and its version.
constexpr string_view Head = R"({"format":"VornServer project","version":1,"sum":")";
constexpr string_view Middle = R"(","content":)";
constexpr string_view Tail = "}\n";
constexpr std::size_t SumDigits = 16;

/// Bytes of a stored project at most. A project at full capacity with all values set takes about 150 MB.
constexpr std::size_t StoredBytesLimit = std::size_t{512} << 20;

void Report(string_view name, const char* what) {
    std::fprintf(stderr, "project store: %.*s: %s\n", static_cast<int>(name.size()), name.data(), what);
}

/// FNV-1a of 64 bits: it finds each single changed byte.
std::string SumOf(string_view content) {
    std::uint64_t sum = 14695981039346656037U;
    for (const char byte : content) sum = (sum ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    char digits[SumDigits];
    const auto result = std::to_chars(digits, digits + SumDigits, sum, 16);
    const auto count = static_cast<std::size_t>(result.ptr - digits);
    return std::string(SumDigits - count, '0').append(digits, count);
}

std::string FileText(const Project& project) {
    std::string content;
    ProjectToJson(project, content);
    std::string text(Head);
    text.append(SumOf(content)).append(Middle).append(content).append(Tail);
    return text;
}

/// Leaves the content of a file in `text`. False when the file is none of ours or was changed.
bool FileContent(std::string& text) {
    const std::size_t contentStart = Head.size() + SumDigits + Middle.size();
    const string_view whole(text);
    if (whole.size() < contentStart + Tail.size() || !whole.starts_with(Head) || !whole.ends_with(Tail)) {
        return false;
    }
    const string_view sum = whole.substr(Head.size(), SumDigits);
    const string_view content = whole.substr(contentStart, whole.size() - contentStart - Tail.size());
    if (whole.substr(Head.size() + SumDigits, Middle.size()) != Middle || SumOf(content) != sum) return false;
    text = std::string(content);
    return true;
}

std::string PathOf(string_view name) {
    return ProjectFile(name, ".json");
}

bool Exists(const std::string& path) {
    std::error_code error;
    return fs::symlink_status(path, error).type() != fs::file_type::not_found;
}

enum class Stored {
    None,
    Whole,
    Damaged,    ///< also a foreign file
    Unreadable  ///< what it holds cannot be told, perhaps only for the moment
};

/// Reads the stored project into `loaded`, which is empty but for its name and capacities.
Stored Load(string_view name, Project& loaded) {
    const std::string path = PathOf(name);
    if (path.empty() || !Exists(path)) return Stored::None;
    std::string text;
    if (!vorn::FileRead(path, StoredBytesLimit, text)) return Stored::Unreadable;
    return FileContent(text) && ProjectFromJson(text, loaded) ? Stored::Whole : Stored::Damaged;
}

/// As `Load`, with a line where a file is there that cannot be taken.
bool LoadWhole(string_view name, Project& loaded) {
    const Stored stored = Load(name, loaded);
    if (stored == Stored::Damaged) Report(name, "the stored file is damaged or foreign, and left as it is");
    if (stored == Stored::Unreadable) Report(name, "the stored file cannot be read");
    return stored == Stored::Whole;
}

/// Enough of a project to load into.
Project Scratch() {
    Project project;
    project.modules.capacity = ModuleCapacity;
    project.nodes.capacity = NodeCapacity;
    project.links.capacity = LinkCapacity;
    return project;
}

/// Gives the stored file a second name, under which it outlives the one that takes its place. Empty when that
/// fails.
std::string KeepAside(string_view name) {
    int number = 1;
    std::string aside;
    do {
        aside = ProjectFile(name, ".damaged." + std::to_string(number++));
    } while (Exists(aside));
    std::error_code error;
    fs::create_hard_link(PathOf(name), aside, error);
    return error ? std::string() : aside;
}

/// Puts a new file in the place of the stored one. A damaged one is kept under another name.
bool Replace(string_view name, const std::string& text) {
    const std::string path = PathOf(name);
    if (path.empty() || text.size() > StoredBytesLimit || !vorn::FolderMake(ProjectFolder(name)))
        return false;
    Project scratch = Scratch();
    const Stored stored = Load(name, scratch);
    if (stored == Stored::Unreadable) return false;
    std::string aside;
    if (stored == Stored::Damaged) {
        aside = KeepAside(name);
        if (aside.empty()) return false;
        Report(name, ("the damaged file is kept as " + aside).c_str());
    }
    if (vorn::FileReplace(path, text)) return true;
    std::error_code error;
    if (!aside.empty()) fs::remove(aside, error);
    return false;
}

}  // namespace

bool StoreWrite(const Project& project) {
    if (Replace(project.name, FileText(project))) return true;
    Report(project.name, "the project cannot be stored; what was stored before stays");
    return false;
}

bool StoreHas(string_view name) {
    Project scratch = Scratch();
    return LoadWhole(name, scratch);
}

bool StoreRead(Project& project) {
    Project loaded;
    loaded.modules.capacity = project.modules.capacity;
    loaded.nodes.capacity = project.nodes.capacity;
    loaded.links.capacity = project.links.capacity;
    if (!LoadWhole(project.name, loaded)) return false;
    project.modules = std::move(loaded.modules);
    project.nodes = std::move(loaded.nodes);
    project.links = std::move(loaded.links);
    project.moduleIdentities = std::move(loaded.moduleIdentities);
    project.nodeIdentities = std::move(loaded.nodeIdentities);
    project.variables = std::move(loaded.variables);
    project.script = std::move(loaded.script);
    return true;
}

}  // namespace standin

using namespace standin;

int ProjectInfoRead(const char* name) {
    Trace("ProjectInfoRead", name);
    const std::lock_guard guard(EngineLock());
    return StoreHas(name) && ProjectMake(name) != nullptr ? 1 : 0;
}

void ProjectDBRead(const char* name) {
    Trace("ProjectDBRead", name);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(name)) StoreRead(*project);
}

// Information and content of a project are one file, so that no crash can leave one without the other. It is
// written with the content.
void ProjectInfoWrite(const char* name) {
    Trace("ProjectInfoWrite", name);
}

void ProjectDBWrite(const char* name) {
    Trace("ProjectDBWrite", name);
    const std::lock_guard guard(EngineLock());
    if (const Project* project = ProjectFind(name)) StoreWrite(*project);
}
