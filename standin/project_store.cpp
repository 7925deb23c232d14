#include "standin/project_store.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "engine/vorn_core.h"
#include "platform/fault_text.h"
#include "platform/file_path.h"
#include "platform/file_text.h"
#include "platform/notice.h"
#include "standin/project_folder.h"
#include "standin/project_json.h"
#include "standin/project_lock.h"
#include "standin/summed_text.h"
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

void Report(vorn::NoticeKind kind, string_view name, const std::string& what) {
    vorn::Notice(kind, "project store: " + std::string(name) + ": " + what);
}

/// The reason in the system's own words, and the file that it is about.
std::string Reason(const std::error_code& fault, const std::string& path) {
    return ": " + vorn::FaultText(fault) + (path.empty() ? "" : ": " + path);
}

std::string SumText(std::uint64_t sum) {
    char digits[SumDigits];
    const auto result = std::to_chars(digits, digits + SumDigits, sum, 16);
    const auto count = static_cast<std::size_t>(result.ptr - digits);
    return std::string(SumDigits - count, '0').append(digits, count);
}

/// About what a project takes as text. It is not made too small: a text that grows is copied.
std::size_t TextBytes(const Project& project) {
    constexpr std::size_t ElementBytes = 400;
    constexpr std::size_t LinkBytes = 120;
    constexpr std::size_t OtherBytes = 50000;
    const std::size_t elements = project.modules.rows.size() + project.nodes.rows.size();
    const std::size_t guess =
        elements * ElementBytes + project.links.rows.size() * LinkBytes + project.script.size() + OtherBytes;
    return std::max(guess, project.stored ? static_cast<std::size_t>(project.stored->bytes) : 0);
}

std::string FileText(const Project& project) {
    std::string text;
    text.reserve(TextBytes(project));
    text.append(Head).append(SumDigits, '0').append(Middle);
    const std::uint64_t sum = ProjectToJson(project, text);
    text.replace(Head.size(), SumDigits, SumText(sum));
    return text.append(Tail);
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
    if (whole.substr(Head.size() + SumDigits, Middle.size()) != Middle) return false;
    ByteSum found;
    found.Add(content);
    if (SumText(found.Value()) != sum) return false;
    text = std::string(content);
    return true;
}

std::string PathOf(string_view name) {
    return ProjectFile(name, ".json");
}

bool Exists(const std::string& path) {
    std::error_code error;
    return fs::symlink_status(vorn::FilePath(path), error).type() != fs::file_type::not_found;
}

/// What tells a file that was read or written from one that somebody put there since; none where there is no
/// file.
std::optional<StoredFile> FactsOf(const std::string& path) {
    std::error_code error;
    StoredFile facts;
    const fs::path file = vorn::FilePath(path);
    facts.bytes = fs::file_size(file, error);
    if (error) return std::nullopt;
    facts.written = fs::last_write_time(file, error);
    return error ? std::nullopt : std::optional(facts);
}

enum class Stored {
    None,
    Whole,
    Damaged,    ///< also a foreign file
    Unreadable  ///< what it holds cannot be told, perhaps only for the moment
};

/// Reads the stored project into `loaded`, which is empty but for its name and capacities. `fault` tells why
/// it is unreadable.
Stored Load(string_view name, Project& loaded, std::error_code& fault) {
    const std::string path = PathOf(name);
    if (path.empty() || !Exists(path)) return Stored::None;
    loaded.stored = FactsOf(path);
    std::string text;
    if (!vorn::FileRead(path, StoredBytesLimit, text, fault)) return Stored::Unreadable;
    return FileContent(text) && ProjectFromJson(text, loaded) ? Stored::Whole : Stored::Damaged;
}

/// A store on its way, apart from the project.
struct Order {
    std::string name;
    std::string path;                 ///< of the stored file, or of what the fault is about
    std::optional<StoredFile> known;  ///< the file that this project came from or was stored in
    std::string text{};
    std::error_code fault{};
};

/// Gives the stored file a second name, under which it outlives the one that takes its place. Empty when that
/// fails.
std::string KeepAside(string_view name, std::error_code& fault) {
    int number = 1;
    std::string aside;
    do {
        aside = ProjectFile(name, ".damaged." + std::to_string(number++));
    } while (Exists(aside));
    fs::create_hard_link(vorn::FilePath(PathOf(name)), vorn::FilePath(aside), fault);
    return fault ? std::string() : aside;
}

/// Sees to it that no damaged file is lost when `path` gets a new one: gives the name under which it is kept,
/// empty where there is none. False when that fails. The file that this project came from is known to be
/// whole.
bool ReadyToReplace(Order& order, std::string& aside) {
    if (order.known && FactsOf(order.path) == order.known) return true;
    Project loaded;
    loaded.modules.capacity = ModuleCapacity;
    loaded.nodes.capacity = NodeCapacity;
    loaded.links.capacity = LinkCapacity;
    if (Load(order.name, loaded, order.fault) == Stored::Damaged) aside = KeepAside(order.name, order.fault);
    return !order.fault;
}

/// Puts a new file in the place of the stored one. A damaged one is kept under another name.
bool Replace(Order& order) {
    std::string aside;
    if (!ReadyToReplace(order, aside)) return false;
    const bool replaced = vorn::FileReplace(order.path, order.text, order.fault);
    std::error_code error;
    // A name that the file still bears beside its own is not needed.
    if (!aside.empty() && fs::equivalent(vorn::FilePath(aside), vorn::FilePath(order.path), error)) {
        fs::remove(vorn::FilePath(aside), error);
    } else if (!aside.empty()) {
        Report(vorn::NoticeKind::Information, order.name, "the damaged file is kept as " + aside);
    }
    return replaced;
}

/// Readies a store. The engine lock is held.
Order OrderOf(const Project& project) {
    Order order{.name = project.name, .path = ProjectFolder(project.name), .known = project.stored};
    order.text = FileText(project);
    if (order.path.empty()) order.fault = std::make_error_code(std::errc::invalid_argument);
    if (order.text.size() > StoredBytesLimit) order.fault = std::make_error_code(std::errc::file_too_large);
    if (order.fault || !vorn::FolderMake(order.path, order.fault)) return order;
    order.path = PathOf(project.name);
    // A project has no lock yet where the store could not be made before.
    if (!ProjectLockEnsure(SlotOf(project), project.name))
        order.fault = std::make_error_code(std::errc::resource_unavailable_try_again);
    return order;
}

/// Writes the stored file. The engine lock need not be held.
bool CarryOut(Order& order) {
    const bool stored = !order.fault && Replace(order);
    order.known = stored ? FactsOf(order.path) : std::nullopt;
    if (stored) {
        Report(vorn::NoticeKind::Stored, order.name, "stored");
    } else {
        Report(vorn::NoticeKind::StoreFailed, order.name,
               "the project cannot be stored" + Reason(order.fault, order.path));
    }
    return stored;
}

}  // namespace

bool StoreWrite(Project& project) {
    Order order = OrderOf(project);
    const bool stored = CarryOut(order);
    project.stored = order.known;
    return stored;
}

bool StoreRead(Project& project) {
    Project loaded;
    loaded.modules.capacity = project.modules.capacity;
    loaded.nodes.capacity = project.nodes.capacity;
    loaded.links.capacity = project.links.capacity;
    std::error_code fault;
    const Stored stored = Load(project.name, loaded, fault);
    const std::string path = PathOf(project.name);
    if (stored == Stored::Unreadable) {
        Report(vorn::NoticeKind::Fault, project.name, "the stored file cannot be read" + Reason(fault, path));
    } else if (stored == Stored::Damaged) {
        Report(vorn::NoticeKind::Fault, project.name,
               "the stored file is damaged or foreign, and left as it is: " + path);
    }
    if (stored != Stored::Whole) return false;
    project.modules = std::move(loaded.modules);
    TypesPublish(project);
    project.nodes = std::move(loaded.nodes);
    project.links = std::move(loaded.links);
    project.shown = NextRevision();
    project.moduleIdentities = std::move(loaded.moduleIdentities);
    project.nodeIdentities = std::move(loaded.nodeIdentities);
    project.variables = std::move(loaded.variables);
    project.script = std::move(loaded.script);
    project.stored = loaded.stored;
    return true;
}

}  // namespace standin

using namespace standin;

// Information and content of a project are one file, so that no crash can leave one without the other. It is
// read with the information and written with the content.
int ProjectInfoRead(const char* name) {
    Trace("ProjectInfoRead", name);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectMake(name);
    if (project == nullptr) return 0;
    try {
        if (StoreRead(*project)) return 1;
    } catch (const std::exception&) {
        // Out of memory: an empty project must not stand for the stored one.
        ProjectFree(*project);
        throw;
    }
    ProjectFree(*project);
    return 0;
}

void ProjectDBRead(const char* name) {
    Trace("ProjectDBRead", name);
}

void ProjectInfoWrite(const char* name) {
    Trace("ProjectInfoWrite", name);
}

void ProjectDBWrite(const char* name) {
    Trace("ProjectDBWrite", name);
    std::unique_lock lock(EngineLock());
    const Project* const project = ProjectFind(name);
    if (project == nullptr) return;
    Order order = OrderOf(*project);
    lock.unlock();  // what runs goes on while the disk takes its time
    CarryOut(order);
    lock.lock();
    if (Project* const stored = ProjectFind(order.name)) stored->stored = order.known;
}
